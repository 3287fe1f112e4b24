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
