#include "Kit/Widgets/ZQViewColumns.h"

#include <gtest/gtest.h>

namespace {

ZQViewColumns columns()
{
    const auto column = [](const char *name, int width, int least, bool isShown) {
        return ZQViewColumn{QString::fromLatin1(name), QString::fromLatin1(name), width, least, true, isShown};
    };
    return ZQViewColumns({column("title", 0, 0, true), column("kind", 54, 40, true), column("size", 100, 60, true),
                          column("made", 80, 60, false), column("date", 110, 70, true)});
}

// "NAME LEFT+WIDTH" of each place.
std::string places(const ZQViewColumns &columns, int width)
{
    QStringList texts;
    for (const ZQViewColumns::Place &place : columns.places(width)) {
        texts.append(
            QStringLiteral("%1 %2+%3").arg(columns.all()[place.column].identifier).arg(place.left).arg(place.width));
    }
    return texts.join(u'|').toStdString();
}

} // namespace

TEST(ZQViewColumns, TheTitleTakesWhatTheOthersLeaveWhichShrinkBeforeTheLastGiveWay)
{
    struct Case
    {
        int width;
        const char *places;
    };
    for (const Case &each : {Case{600, "title 54+252|kind 316+54|size 380+100|date 490+110"},
                             {468, "title 54+120|kind 184+54|size 248+100|date 358+110"},
                             {467, "title 54+122|kind 186+53|size 249+99|date 358+109"},
                             {374, "title 54+120|kind 184+40|size 234+60|date 304+70"},
                             {373, "title 54+145|kind 209+54|size 273+100"},
                             {224, "title 54+120|kind 184+40"},
                             {223, "title 54+169"},
                             {40, "title 54+1"}}) {
        EXPECT_EQ(places(columns(), each.width), each.places) << each.width;
    }
    EXPECT_TRUE(ZQViewColumns().places(500).isEmpty());
    ZQViewColumns chosen = columns();
    EXPECT_TRUE(chosen.setShown(QStringLiteral("made"), true));
    EXPECT_FALSE(chosen.setShown(QStringLiteral("made"), true));
    EXPECT_TRUE(chosen.setShown(QStringLiteral("kind"), false));
    EXPECT_FALSE(chosen.setShown(QStringLiteral("title"), false)) << "there is always one";
    EXPECT_TRUE(chosen.isShown(QStringLiteral("title")));
    EXPECT_EQ(places(chosen, 600), "title 54+226|size 290+100|made 400+80|date 490+110");
}

TEST(ZQViewColumns, ABoundaryMovesWithThePointerAndStopsAtTheLeastWidths)
{
    struct Case
    {
        qsizetype place;
        int by;
        bool moves;
        const char *places;
    };
    for (const Case &each : {Case{0, 10, true, "title 54+262|kind 326+44|size 380+100|date 490+110"},
                             {0, -10, true, "title 54+242|kind 306+64|size 380+100|date 490+110"},
                             {0, 500, true, "title 54+266|kind 330+40|size 380+100|date 490+110"},
                             {0, -500, true, "title 54+120|kind 184+186|size 380+100|date 490+110"},
                             {1, 30, true, "title 54+252|kind 316+84|size 410+70|date 490+110"},
                             {1, -500, true, "title 54+252|kind 316+40|size 366+114|date 490+110"},
                             {2, 500, true, "title 54+252|kind 316+54|size 380+140|date 530+70"},
                             {3, 10, false, "title 54+252|kind 316+54|size 380+100|date 490+110"},
                             {-1, 10, false, "title 54+252|kind 316+54|size 380+100|date 490+110"}}) {
        ZQViewColumns moved = columns();
        EXPECT_EQ(moved.moveBoundary(each.place, each.by, 600), each.moves);
        EXPECT_EQ(places(moved, 600), each.places) << each.place << " by " << each.by;
    }
    ZQViewColumns shrunk = columns();
    EXPECT_TRUE(shrunk.moveBoundary(1, 10, 400));
    EXPECT_EQ(places(shrunk, 400), "title 54+121|kind 185+53|size 248+61|date 319+81") << "from where it looks to be";
    ZQViewColumns stuck = columns();
    stuck.moveBoundary(0, 500, 600);
    EXPECT_FALSE(stuck.moveBoundary(0, 1, 600));
}

TEST(ZQViewColumns, WhatWasChosenComesBackAndNonsenseDoesNot)
{
    ZQViewColumns chosen = columns();
    chosen.setShown(QStringLiteral("made"), true);
    chosen.setShown(QStringLiteral("size"), false);
    chosen.moveBoundary(0, -20, 600);
    ZQViewColumns back = columns();
    back.restore(chosen.state());
    EXPECT_EQ(places(back, 600), places(chosen, 600));

    const QString shown = QStringLiteral("shown");
    const QString widths = QStringLiteral("widths");
    const std::string usual = places(columns(), 600);
    for (const QVariantMap &state : {QVariantMap(), QVariantMap{{shown, 7}}, QVariantMap{{shown, QVariantMap()}},
                                     QVariantMap{{widths, QStringLiteral("wide")}},
                                     QVariantMap{{widths, QVariantMap{{QStringLiteral("kind"), QStringLiteral("wide")},
                                                                      {QStringLiteral("none"), 5}}}}}) {
        ZQViewColumns same = columns();
        same.restore(state);
        EXPECT_EQ(places(same, 600), usual) << state.keys().join(u' ').toStdString();
    }
    ZQViewColumns bounded = columns();
    bounded.restore({{shown, QStringList{QStringLiteral("kind"), QStringLiteral("none")}},
                     {widths, QVariantMap{{QStringLiteral("kind"), -4}}}});
    EXPECT_EQ(places(bounded, 600), "title 54+496|kind 560+40");
    bounded.restore({{shown, QStringList()}, {widths, QVariantMap{{QStringLiteral("kind"), 1000000}}}});
    EXPECT_EQ(places(bounded, 600), "title 54+546") << "all of them can be hidden";
    EXPECT_EQ(bounded.all()[1].width, 1200);
}
