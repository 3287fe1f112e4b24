#include "Kit/Files/ZQFreeName.h"

#include <gtest/gtest.h>

TEST(FreeNameTest, AnyTextMakesANameForOneFile)
{
    const struct
    {
        QString text;
        QString marked;
        QString dropped;
    } rows[] = {
        {QStringLiteral("Cat.png"), QStringLiteral("Cat.png"), QStringLiteral("Cat.png")},
        {QStringLiteral("a/b\nc\td"), QStringLiteral("a-b-c-d"), QStringLiteral("a-b-c-d")},
        {QStringLiteral("a") + QChar(0) + QChar(QChar::LineSeparator) + u'b', QStringLiteral("a--b"),
         QStringLiteral("a--b")},
        {QStringLiteral(" .hidden "), QStringLiteral("_hidden"), QStringLiteral("hidden")},
        {QStringLiteral(". . .hidden"), QStringLiteral("_ . .hidden"), QStringLiteral("hidden")},
        {QStringLiteral("../../x"), QStringLiteral("_.-..-x"), QStringLiteral("-..-x")},
        {QStringLiteral(".."), QStringLiteral("_."), QStringLiteral("none")},
        {QStringLiteral("  "), QStringLiteral("none"), QStringLiteral("none")},
        {QString(), QStringLiteral("none"), QStringLiteral("none")},
        {QStringLiteral("\U0001F408 é"), QStringLiteral("\U0001F408 é"), QStringLiteral("\U0001F408 é")},
    };
    const QString none = QStringLiteral("none");
    for (const auto &row : rows) {
        EXPECT_EQ(zqSafeName(row.text, none), row.marked) << row.text.toStdString();
        EXPECT_EQ(zqSafeName(row.text, none, ZQLeadingDots::Dropped), row.dropped) << row.text.toStdString();
    }
    EXPECT_EQ(zqSafeName(QStringLiteral("a:b*c"), none, ZQLeadingDots::Marked, QStringLiteral("*:")),
              QStringLiteral("a-b-c"));
}

TEST(FreeNameTest, ANameIsNumberedAndShortenedWithoutLosingItsExtension)
{
    const QString longName = QString(300, u'\u00e4') + QStringLiteral(".png");
    const struct
    {
        QString name;
        int number;
        qsizetype longest;
        QString expected;
    } rows[] = {
        {QStringLiteral("Cat.png"), 0, zqLongestName, QStringLiteral("Cat.png")},
        {QStringLiteral("Cat.png"), 2, zqLongestName, QStringLiteral("Cat 2.png")},
        {longName, 0, 14, QString(5, u'\u00e4') + QStringLiteral(".png")},
        {longName, 1, 14, QString(4, u'\u00e4') + QStringLiteral(" 1.png")},
        {QStringLiteral("a\U0001F408b"), 0, 4, QStringLiteral("a")}, // no half of a pair stays
    };
    for (const auto &row : rows) {
        EXPECT_EQ(zqNumberedName(row.name, row.number, row.longest), row.expected);
    }
}
