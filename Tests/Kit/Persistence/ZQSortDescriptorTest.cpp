#include "Tests/Kit/Persistence/PredicateDatabase.h"

#include <gtest/gtest.h>

namespace {
using Comparison = ZQSortDescriptor::Comparison;
}

TEST(ZQSortDescriptor, OrdersValues)
{
    struct Case
    {
        QVariant smaller;
        QVariant greater;
        Comparison comparison;
    };
    const Case cases[] = {
        {{}, QStringLiteral(""), Comparison::Standard},
        {{}, -5, Comparison::Standard},
        {false, true, Comparison::Standard},
        {1, 1.5, Comparison::Standard},
        {9007199254740992.0, 9007199254740993LL, Comparison::Standard},
        {QStringLiteral("B"), QStringLiteral("a"), Comparison::Standard},
        {QStringLiteral("\uffff"), QString::fromUtf8("😀"), Comparison::Standard},
        {QStringLiteral("10"), QStringLiteral("9"), Comparison::Standard},
        {QStringLiteral("item 9"), QStringLiteral("item 10"), Comparison::LocalizedStandard},
        {QStringLiteral("a"), QStringLiteral("B"), Comparison::LocalizedStandard},
        {QString::fromUtf8("é"), QStringLiteral("f"), Comparison::LocalizedStandard},
        {{}, QStringLiteral("a"), Comparison::LocalizedStandard},
        {QDateTime::fromMSecsSinceEpoch(1), QDateTime::fromMSecsSinceEpoch(2), Comparison::Standard},
    };
    for (const Case &test : cases) {
        EXPECT_LT(zqCompareValues(test.smaller, test.greater, test.comparison), 0)
            << test.greater.toString().toStdString();
        EXPECT_GT(zqCompareValues(test.greater, test.smaller, test.comparison), 0)
            << test.greater.toString().toStdString();
    }
    EXPECT_EQ(zqCompareValues(1, 1.0, Comparison::Standard), 0);
}

TEST(ZQSortDescriptor, RefusesKeysThatAreNoValue)
{
    PredicateDatabase database;
    for (const char *path : {"nothing", "parent", "tags.name", "title.x", ""}) {
        ZQError error;
        const QList<ZQSortDescriptor> descriptors = {{QLatin1String(path)}};
        EXPECT_FALSE(
            zqSQLForSortDescriptors(descriptors, database.document(), QStringLiteral("t"), &error).has_value());
        EXPECT_FALSE(error.isNull()) << path;
    }
}

TEST(ZQSortDescriptor, JoinsEachRelationshipOnce)
{
    PredicateDatabase database;
    const QList<ZQSortDescriptor> descriptors = {{QStringLiteral("parent.title")}, {QStringLiteral("parent.date")}};
    const auto order = zqSQLForSortDescriptors(descriptors, database.document(), QStringLiteral("t0"));
    EXPECT_EQ(order->joins.count(QStringLiteral("LEFT JOIN")), 1);
}
