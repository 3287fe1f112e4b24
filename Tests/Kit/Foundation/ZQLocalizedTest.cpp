// Texts in another language: other order, other forms, and which language is shown at all.

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLanguage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>

#include <gtest/gtest.h>

namespace {

// Three forms, as Polish has them, without a catalogue in the way.
class ThreeForms : public QTranslator
{
public:
    QString translate(const char *, const char *source, const char *comment, int count) const override
    {
        if (qstrcmp(source, "%@ items in %@") != 0 || qstrcmp(comment, "counted") != 0) {
            return {};
        }
        const bool isFew = count % 10 >= 2 && count % 10 <= 4 && (count % 100 < 12 || count % 100 > 14);
        return count == 1 ? QStringLiteral("w %2$@: jeden")
               : isFew    ? QStringLiteral("w %2$@: %1$@ elementy")
                          : QStringLiteral("w %2$@: %1$@ elementów");
    }
    bool isEmpty() const override { return false; }
};

QString counted(qint64 count)
{
    return zqCounted({"1 item in %@%@", "%@ items in %@"}, count, {QStringLiteral("A")});
}

} // namespace

TEST(ZQLocalizedTest, ATranslationPutsItsPlacesInAnOrderOfItsOwn)
{
    const struct
    {
        const char *format;
        const char *expected;
    } rows[] = {{"%2$@ of %1$@", "b of a"}, {"%2$@ %@ %@", "b a b"}, {"%3$@|", "|"}, {"%1$", "%1$"},
                {"5%$@", "5%$@"},           {"%0$@", "%0$@"},        {"%9$ld", "0"}, {"100 %1$@", "100 a"}};
    for (const auto &row : rows) {
        EXPECT_EQ(zqFormat(QString::fromUtf8(row.format), {QStringLiteral("a"), QStringLiteral("b")}).toStdString(),
                  row.expected);
    }
}

TEST(ZQLocalizedTest, CountsTakeTheFormsOfTheLanguage)
{
    int argc = 0;
    QCoreApplication application(argc, nullptr);
    EXPECT_EQ(zqCounted({"1 item", "%@ items"}, 1), QStringLiteral("1 item"));
    EXPECT_EQ(zqCounted({"1 item", "%@ items"}, 0), QStringLiteral("0 items"));
    EXPECT_EQ(zqCounted({"%d file", "%d files"}, 12345), QStringLiteral("12345 files"));
    EXPECT_EQ(zqCounted({"1 item", "%@ items"}, qint64(5) << 32),
              QLocale().toString(qint64(5) << 32) + QStringLiteral(" items"));

    ThreeForms forms;
    QCoreApplication::installTranslator(&forms);
    EXPECT_EQ(counted(1), QStringLiteral("w A: jeden"));
    EXPECT_EQ(counted(3), QStringLiteral("w A: 3 elementy"));
    EXPECT_EQ(counted(13), QStringLiteral("w A: 13 elementów"));
    QCoreApplication::removeTranslator(&forms);
}

TEST(ZQLocalizedTest, NumbersAreInTheLanguageOfTheTextsAndAsThePersonsCountryWritesThem)
{
    int argc = 0;
    QCoreApplication application(argc, nullptr);
    QTemporaryDir none;
    const auto beside = [&none](const QLocale &locale) { return zqInstallLanguage(locale, none.path()).locale; };
    const struct
    {
        QLocale person;
        const char *number;
        const char *date;
    } cases[] = {{QLocale(QLocale::Arabic, QLocale::Egypt), "1,234", "27/11"},
                 {QLocale(QLocale::Persian, QLocale::Iran), "1,234", "27/11"},
                 {QLocale(QLocale::Dutch, QLocale::Netherlands), "1.234", "27/11"}};
    for (const auto &each : cases) {
        const auto locale = beside(each.person);
        ASSERT_TRUE(locale);
        EXPECT_EQ(locale->toString(1234).toStdString(), each.number);
        EXPECT_TRUE(
            locale->toString(QDate(2026, 11, 27), QLocale::ShortFormat).startsWith(QLatin1StringView(each.date)))
            << locale->name().toStdString();
        EXPECT_EQ(locale->language(), QLocale::English);
    }
    for (const QLocale &own : {QLocale::c(), QLocale(QLocale::English, QLocale::UnitedKingdom)}) {
        EXPECT_FALSE(beside(own)) << own.name().toStdString();
    }
}

TEST(ZQLocalizedTest, TheFirstLanguageThatThereIsACatalogueForIsShown)
{
    int argc = 0;
    QCoreApplication application(argc, nullptr);
    QTemporaryDir none;
    EXPECT_EQ(zqInstallLanguage(QLocale(QLocale::German, QLocale::Austria), none.path()).code, QStringLiteral("en"));
    EXPECT_EQ(zqInstallLanguage(QLocale::c(), none.path()).code, QStringLiteral("en"));

    QFile source(none.filePath(QStringLiteral("zelto_de.ts")));
    ASSERT_TRUE(source.open(QIODevice::WriteOnly));
    source.write("<?xml version=\"1.0\"?><!DOCTYPE TS><TS version=\"2.1\" language=\"de\"><context><name>Zelto</name>"
                 "<message numerus=\"yes\"><source>%@ items</source><comment>counted</comment><translation>"
                 "<numerusform>ein Objekt</numerusform><numerusform>%@ Objekte</numerusform></translation></message>"
                 "<message><source>Open</source><translation>Öffnen</translation></message></context></TS>");
    source.close();
    ASSERT_EQ(QProcess::execute(QStringLiteral(ZELTO_LRELEASE), {QStringLiteral("-silent"), source.fileName()}), 0);
    const ZQLanguage german = zqInstallLanguage(QLocale(QLocale::German, QLocale::Austria), none.path());
    EXPECT_EQ(german.code, QStringLiteral("de"));
    EXPECT_FALSE(german.locale) << "their own";
    EXPECT_EQ(zqInstallLanguage(QLocale(QLocale::Hebrew), none.path()).direction, Qt::LeftToRight)
        << "the language shown is English";
    ASSERT_TRUE(
        QFile::copy(none.filePath(QStringLiteral("zelto_de.qm")), none.filePath(QStringLiteral("zelto_he.qm"))));
    EXPECT_EQ(zqInstallLanguage(QLocale(QLocale::Hebrew), none.path()).direction, Qt::RightToLeft);
    EXPECT_EQ(zqLocalized("Open"), QStringLiteral("Öffnen"));
    EXPECT_EQ(zqLocalized("Close"), QStringLiteral("Close")) << "what is not in it stays English";
    EXPECT_EQ(zqCounted({"1 item", "%@ items"}, 1), QStringLiteral("ein Objekt"));
    EXPECT_EQ(zqCounted({"1 item", "%@ items"}, 7), QStringLiteral("7 Objekte"));
}
