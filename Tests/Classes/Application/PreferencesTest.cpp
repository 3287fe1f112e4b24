#include "Tests/Classes/Application/ApplicationFixture.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

// What the format promises to whoever reads or writes the preferences is what is registered, and nothing else is.
TEST_F(ApplicationTest, EveryDefaultIsTheOneTheFormatNames)
{
    QFile format(QStringLiteral(ZELTO_DOCS "/FORMAT.md"));
    ASSERT_TRUE(format.open(QIODevice::ReadOnly));
    static const QRegularExpression row(QStringLiteral("^\\| `([A-Za-z]+)` \\| (.+?) \\|"),
                                        QRegularExpression::MultilineOption);
    PreferencesController::registerDefaultPreferences();
    const ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    QVariantMap rest = PreferencesController::defaultPreferences();
    for (auto match = row.globalMatch(QString::fromUtf8(format.readAll())); match.hasNext();) {
        const auto found = match.next();
        const QString key = found.captured(1);
        const QJsonArray value = QJsonDocument::fromJson('[' + found.captured(2).toUtf8() + ']').array();
        if (value.isEmpty()) {
            continue; // a row of another table
        }
        EXPECT_TRUE(rest.remove(key)) << qPrintable(key) << " is not registered";
        EXPECT_EQ(QJsonArray{QJsonValue::fromVariant(defaults.objectForKey(key))}, value) << qPrintable(key);
    }
    EXPECT_EQ(rest.keys(), QStringList()) << "registered, but not in the format";
}

// Whoever sets one that is documented is not told that there is none of that name.
TEST_F(ApplicationTest, EveryPreferenceThatTheFormatNamesIsKnown)
{
    QFile format(QStringLiteral(ZELTO_DOCS "/FORMAT.md"));
    ASSERT_TRUE(format.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(format.readAll());
    const QString chapter =
        text.section(QStringLiteral("\n## Preferences\n"), 1).section(QStringLiteral("\n## "), 0, 0);
    static const QRegularExpression name(QStringLiteral("`([A-Z][A-Za-z]+)`"));
    int names = 0;
    for (auto match = name.globalMatch(chapter); match.hasNext(); ++names) {
        const QString key = match.next().captured(1);
        EXPECT_TRUE(PreferencesController::isKnown(key)) << qPrintable(key);
    }
    EXPECT_GT(names, 60) << "the chapter was not found";
    EXPECT_FALSE(PreferencesController::isKnown(QStringLiteral("UseDarkIU")));
}
