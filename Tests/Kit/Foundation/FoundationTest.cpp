#include "Kit/Foundation/ZQError.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(Format, FillsItsPlacesInOrder)
{
    const struct
    {
        const char16_t *format;
        QVariantList arguments;
        const char16_t *expected;
    } rows[] = {
        {u"%@ %d%@", {QStringLiteral("Cat"), 2, QStringLiteral(".png")}, u"Cat 2.png"},
        {u"%ld of %d", {qlonglong(5000000000), 7}, u"5000000000 of 7"},
        {u"100%% of %@", {QStringLiteral("it")}, u"100% of it"},
        {u"%f", {0.5}, u"0.500000"},
        {u"%@ and %@", {QStringLiteral("one")}, u"one and "},
        {u"%@", {QStringLiteral("one"), QStringLiteral("two")}, u"one"},
        {u"%@", {QStringLiteral("50%@ off %d")}, u"50%@ off %d"},
        {u"no places", {1}, u"no places"},
        {u"ends in %", {}, u"ends in %"},
        {u"unknown %q kept", {1}, u"unknown %q kept"},
        {u"", {}, u""},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(zqFormat(QString::fromUtf16(row.format), row.arguments), QString::fromUtf16(row.expected));
    }
}

TEST(Localized, IsTheKeyItselfWithoutATranslation)
{
    EXPECT_EQ(zqLocalized("Café %@ — “quoted”"), QStringLiteral("Café %@ — “quoted”"));
    EXPECT_EQ(zqLocalized(QStringLiteral("Ünïcode")), QStringLiteral("Ünïcode"));
}

TEST(Error, ShowsDescriptionAndReason)
{
    const QString domain = QStringLiteral("test");
    EXPECT_EQ(ZQError::with(domain, 3, QStringLiteral("It failed.")).localizedDescription(),
              QStringLiteral("It failed."));
    EXPECT_EQ(
        ZQError::with(domain, 3, QStringLiteral("It failed."), QStringLiteral("No space.")).localizedDescription(),
        QStringLiteral("It failed. No space."));
    EXPECT_EQ((ZQError{domain, 3, {}}).localizedDescription(), QStringLiteral("test 3"));
    EXPECT_TRUE(ZQError().isNull());
    EXPECT_FALSE((ZQError{domain, 0, {}}).isNull());
}

TEST(Error, OfTheSystemNamesWhatAndWhy)
{
    const ZQError error = ZQError::posix(ENOENT, QStringLiteral("/no/file"));
    EXPECT_EQ(error.domain, ZQError::posixDomain);
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(error.localizedDescription().startsWith(QStringLiteral("/no/file: ")));
    EXPECT_GT(error.localizedDescription().size(), 12);
}

TEST(Error, IsStoredOnlyWhereSomeoneAsks)
{
    ZQError error;
    zqSetError(&error, ZQError::posix(EACCES, QStringLiteral("x")));
    EXPECT_EQ(error.code, EACCES);
    zqSetError(nullptr, error);
}
