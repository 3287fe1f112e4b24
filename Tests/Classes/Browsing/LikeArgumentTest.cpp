#include "Classes/Browsing/Search/LikeArgument.h"

#include <gtest/gtest.h>

TEST(LikeArgument, SaysHowNearInTheTextItIsTypedAs)
{
    struct Case
    {
        const char *text;
        const char *name;
        int apart;
    };
    const int all = LikeArgument::farthestApart;
    for (const Case &each : {Case{"hero", "hero", all},
                             {"hero~20", "hero", 20},
                             {"hero~0", "hero", 0},
                             {"a~5~7", "a~5", 7},
                             {"hero~101", "hero~101", all}, // a name
                             {"~5", "~5", all},
                             {"hero~x", "hero~x", all}}) {
        const LikeArgument like = LikeArgument::of(QLatin1StringView(each.text));
        EXPECT_EQ(like.name, QLatin1StringView(each.name)) << each.text;
        EXPECT_EQ(like.apart, each.apart) << each.text;
        EXPECT_EQ(like.text(), QLatin1StringView(each.text));
    }
    EXPECT_EQ(LikeArgument::of(QStringLiteral("hero~100")).text(), QStringLiteral("hero")) << "none is similar beyond";
    EXPECT_EQ(LikeArgument::of(QStringLiteral("hero")).farthestBits(), ZQPictureHash::similarDistance);
    EXPECT_EQ(LikeArgument::of(QStringLiteral("hero~0")).farthestBits(), 0);
    EXPECT_EQ(LikeArgument::likeness(0), 100);
    EXPECT_EQ(LikeArgument::likeness(ZQPictureHash::bitCount), 0) << "a negative is no more unlike than unlike";
}

TEST(LikeArgument, IsFoundWhereItStandsInASearch)
{
    struct Case
    {
        const char *text;
        const char *found; // with its quotes; null: none
        const char *name;
    };
    for (const Case &each : {Case{"", nullptr, nullptr},
                             {"like hero", nullptr, nullptr},
                             {"#like", nullptr, nullptr},
                             {"-#like hero", nullptr, nullptr},
                             {"#like hero", "hero", "hero"},
                             {"logo #LIKE hero~20 #rating>2", "hero~20", "hero"},
                             {"#like \"hero dawn~20\" x", "\"hero dawn~20\"", "hero dawn"},
                             {"#tag #like a", "a", "a"},
                             {"-#like a #like b", "b", "b"}}) {
        const QString text = QLatin1StringView(each.text);
        const auto place = LikeArgument::in(text);
        ASSERT_EQ(place.has_value(), each.found != nullptr) << each.text;
        if (place) {
            EXPECT_EQ(text.mid(place->position, place->length), QLatin1StringView(each.found)) << each.text;
            EXPECT_EQ(place->argument.name, QLatin1StringView(each.name)) << each.text;
        }
    }
}
