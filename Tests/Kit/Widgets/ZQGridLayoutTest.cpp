#include "Kit/Widgets/ZQGridLayout.h"
#include "Kit/Widgets/ZQTheme.h"

#include <gtest/gtest.h>

namespace {

ZQGridLayout plain(qint64 count, int width = 932, double zoom = 0.5)
{
    ZQGridLayout layout;
    layout.setContent({count}, false);
    layout.setGeometry(width, zoom, true);
    return layout;
}

ZQGridLayout grouped(const QList<qint64> &counts, const QList<bool> &collapsed = {})
{
    ZQGridLayout layout;
    layout.setContent(counts, true, collapsed);
    layout.setGeometry(932, 0.5, true);
    return layout;
}

} // namespace

TEST(ZQGridLayout, AMillionItemsAreFoundWhereTheyAreDrawn)
{
    const ZQGridLayout layout = plain(1000000);
    ASSERT_EQ(layout.columns(), 5);
    for (const qint64 index : {qint64(0), qint64(4), qint64(5), qint64(499999), qint64(999999)}) {
        const ZQGridLayout::Cell cell = layout.cell(index);
        EXPECT_EQ(layout.indexAt(cell.left, cell.top), index);
        EXPECT_EQ(layout.indexAt(cell.left + cell.width - 1, cell.top + cell.height - 1), index);
        EXPECT_EQ(layout.indexAt(cell.left + cell.width + 2, cell.top), -1) << "between columns";
        EXPECT_EQ(layout.indexAt(cell.left, cell.top + cell.height + 1), -1) << "between rows";
    }
    const qint64 middle = layout.contentHeight() / 2;
    EXPECT_LE(layout.indexesBetween(middle, middle + 900).count(), 5 * (900 / layout.rowHeight() + 2));
}

TEST(ZQGridLayout, LastColumnEndsAtTheMargin)
{
    for (const int width : {300, 777, 932, 2560}) {
        const ZQGridLayout layout = plain(100, width);
        const ZQGridLayout::Cell last = layout.cell(layout.columns() - 1);
        if (layout.columns() > 1) {
            EXPECT_NEAR(last.left + last.width, width - ZQGridLayout::sideMargin, 2) << width;
        }
    }
}

TEST(ZQGridLayout, UpAndDownKeepTheColumnAndStopAtTheEnds)
{
    const ZQGridLayout layout = grouped({7, 13}); // five columns
    struct Case
    {
        qint64 from;
        int rows;
        qint64 to;
    };
    const Case cases[] = {{1, 1, 6},  {3, 1, 6},   {6, 1, 8},    {8, -1, 6},   {10, -1, 6},
                          {2, -1, 2}, {18, 1, 18}, {1, 100, 18}, {19, -100, 2}};
    for (const Case &c : cases) {
        EXPECT_EQ(layout.movedByRows(c.from, c.rows), c.to) << c.from << " by " << c.rows;
    }
}

TEST(ZQGridLayout, CellsAreWhereTheNumbersSay)
{
    EXPECT_EQ(ZQGridLayout::cellWidthForZoom(0), 64);
    EXPECT_EQ(ZQGridLayout::cellWidthForZoom(0.5), 164);
    EXPECT_EQ(ZQGridLayout::cellWidthForZoom(1), 420);
    EXPECT_EQ(ZQGridLayout::cellWidthForZoom(-1), 64);
    EXPECT_EQ(ZQGridLayout::cellWidthForZoom(2), 420);
    struct Case
    {
        const char *what;
        int width;
        double zoom;
        bool titles;
        int columns, cellWidth, pictureHeight, rowHeight;
        qint64 height; // of twelve items
    };
    for (const Case &each : {Case{"five fit", 924, 0.5, true, 5, 164, 125, 168, 12 + 3 * 168},
                             {"one pixel short of five", 923, 0.5, true, 4, 164, 125, 168, 12 + 3 * 168},
                             {"without titles", 924, 0.5, false, 5, 164, 125, 143, 12 + 3 * 143},
                             {"smallest", 664, 0, true, 8, 64, 49, 92, 12 + 2 * 92},
                             {"narrower than a cell", 100, 1, true, 1, 60, 46, 89, 12 + 12 * 89},
                             {"no room at all", 30, 1, true, 1, 1, 40, 83, 12 + 12 * 83}}) {
        ZQGridLayout layout;
        layout.setContent({12}, false);
        layout.setGeometry(each.width, each.zoom, each.titles);
        EXPECT_EQ(layout.columns(), each.columns) << each.what;
        EXPECT_EQ(layout.cell(0).width, each.cellWidth) << each.what;
        EXPECT_EQ(layout.pictureHeight(), each.pictureHeight) << each.what;
        EXPECT_EQ(layout.rowHeight(), each.rowHeight) << each.what;
        EXPECT_EQ(layout.cell(0).height, each.rowHeight - 18) << each.what;
        EXPECT_EQ(layout.contentHeight(), each.height) << each.what;
        EXPECT_EQ(layout.cell(0).left, 20);
        EXPECT_EQ(layout.cell(0).top, 12);
    }
    const ZQGridLayout layout = plain(12, 924); // columns from 20, 200, 380, 560, 740; rows from 12, 180, 348
    EXPECT_EQ(layout.cell(6).left, 200);
    EXPECT_EQ(layout.cell(6).top, 180);
    EXPECT_EQ(layout.cell(12).width, 0) << "there is none";
    struct Point
    {
        int x;
        qint64 y;
        qint64 index;
        qint64 insertion;
    };
    for (const Point &each :
         {Point{20, 12, 0, 0}, {19, 12, -1, 0},    {20, 11, -1, 0},   {183, 161, 0, 1}, {184, 161, -1, 1},
          {183, 162, -1, 1},   {101, 20, 0, 0},    {102, 20, 0, 1},   {199, 20, -1, 1}, {200, 20, 1, 1},
          {281, 20, 1, 1},     {282, 20, 1, 2},    {903, 20, 4, 5},   {904, 20, -1, 5}, {922, 20, -1, 5},
          {1500, 20, -1, 5},   {20, 179, -1, 0},   {20, 180, 5, 5},   {20, 347, -1, 5}, {20, 348, 10, 10},
          {200, 348, 11, 11},  {380, 348, -1, 12}, {20, 516, -1, 12}, {20, 5, -1, 0},   {0, -100, -1, 0}}) {
        EXPECT_EQ(layout.indexAt(each.x, each.y), each.index) << each.x << "," << each.y;
        EXPECT_EQ(layout.insertionIndexAt(each.x, each.y), each.insertion) << each.x << "," << each.y;
    }
    struct Band
    {
        int left;
        qint64 top;
        int right;
        qint64 bottom;
        QList<qint64> inside;
    };
    for (const Band &each : {Band{20, 12, 20, 12, {0}},
                             {183, 161, 183, 161, {0}},
                             {185, 12, 199, 12, {}},
                             {185, 12, 200, 12, {1}},
                             {20, 0, 900, 11, {}},
                             {20, 163, 900, 179, {}},
                             {20, 162, 900, 162, {0, 1, 2, 3, 4}},
                             {20, 163, 20, 180, {5}},
                             {0, 0, 19, 600, {}},
                             {910, 0, 2000, 600, {}},
                             {740, 12, 2000, 600, {4, 9}},
                             {200, 348, 2000, 348, {11}},
                             {380, 348, 2000, 348, {}},
                             {-50, -50, 2000, 2000, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}}}) {
        EXPECT_EQ(layout.indexesIn(each.left, each.top, each.right, each.bottom).indexes(), each.inside)
            << each.left << "," << each.top << " " << each.right << "," << each.bottom;
    }
    struct Rows
    {
        qint64 top, bottom;
        ZQIndexSet shown;
    };
    for (const Rows &each : {Rows{0, 0, ZQIndexSet()},
                             {0, 11, ZQIndexSet()},
                             {0, 12, ZQIndexSet(0, 4)},
                             {179, 179, ZQIndexSet(0, 4)},
                             {180, 347, ZQIndexSet(5, 9)},
                             {180, 348, ZQIndexSet(5, 11)},
                             {-50, 5000, ZQIndexSet(0, 11)}}) {
        EXPECT_EQ(layout.indexesBetween(each.top, each.bottom), each.shown) << each.top << " " << each.bottom;
    }
}

TEST(ZQGridLayout, CellsNeverGrowWhileTheWindowNarrows)
{
    for (const double zoom : {0.0, 0.3, 0.5, 0.8, 1.0}) {
        ZQGridLayout layout;
        layout.setContent({100}, false);
        int before = ZQGridLayout::cellWidthForZoom(zoom);
        int columns = 1000;
        for (int width = 2000; width > 40; --width) {
            layout.setGeometry(width, zoom, true);
            ASSERT_LE(layout.cell(0).width, before) << width;
            ASSERT_LE(layout.columns(), columns) << width;
            const ZQGridLayout::Cell last = layout.cell(layout.columns() - 1);
            ASSERT_LE(last.left + last.width, width - ZQGridLayout::sideMargin) << width;
            before = layout.cell(0).width;
            columns = layout.columns();
        }
    }
}

TEST(ZQGridLayout, AListHasARowForEach)
{
    constexpr int head = ZQMeasure::groupHeadHeight;
    ZQGridLayout layout;
    layout.setContent({3, 2}, true, {});
    layout.setListGeometry(640, 0.5);
    EXPECT_TRUE(layout.isList());
    EXPECT_EQ(layout.columns(), 1);
    EXPECT_EQ(layout.rowHeight(), 44);
    EXPECT_EQ(layout.cell(1).width, 600);
    EXPECT_EQ(layout.cell(1).height, 44);
    EXPECT_EQ(layout.cell(1).top, head + 6 + 44);
    EXPECT_EQ(layout.cell(3).top, 2 * head + 12 + 3 * 44);
    EXPECT_EQ(layout.indexAt(600, head + 6 + 43), 0) << "rows touch";
    EXPECT_EQ(layout.indexAt(600, head + 6 + 44), 1);
    EXPECT_EQ(layout.indexAt(10, head + 6 + 44), -1) << "beside the rows";
    EXPECT_EQ(layout.insertionIndexAt(600, head + 6 + 21), 0);
    EXPECT_EQ(layout.insertionIndexAt(600, head + 6 + 22), 1);
    EXPECT_EQ(layout.insertionIndexAt(600, 2000), 5);
    EXPECT_EQ(layout.indexesIn(300, head + 10, 310, head + 60), ZQIndexSet(0, 1));
    EXPECT_EQ(layout.movedByRows(2, 1), 3);
    layout.setGeometry(640, 0.5, true);
    EXPECT_FALSE(layout.isList());
    EXPECT_GT(layout.columns(), 1);
}

TEST(ZQGridLayout, HeadsAndCollapsedGroupsTakeTheirRoom)
{
    constexpr int head = ZQMeasure::groupHeadHeight;
    ZQGridLayout layout;
    layout.setContent({7, 4, 0, 3}, true, {false, true});
    layout.setGeometry(924, 0.5, true);
    EXPECT_EQ(layout.count(), 14);
    EXPECT_EQ(layout.groupCount(), 4);
    EXPECT_TRUE(layout.hasHeads());
    const QList<qint64> tops = {0, head + 14 + 336, 2 * head + 18 + 336, 3 * head + 32 + 336};
    const qint64 end = 4 * head + 46 + 336 + 168;
    EXPECT_EQ(layout.contentHeight(), end);
    for (int group = 0; group < 4; ++group) {
        EXPECT_EQ(layout.groupTop(group), tops[group]) << group;
        EXPECT_EQ(layout.groupBottom(group), group < 3 ? tops[group + 1] : end) << group;
        EXPECT_EQ(layout.isCollapsed(group), group == 1) << group;
        EXPECT_EQ(layout.groupAtY(tops[group]), group);
        EXPECT_EQ(layout.groupAtY(tops[group] - 1), group - 1);
        EXPECT_EQ(layout.firstOfGroup(group), (QList<qint64>{0, 7, 11, 11})[group]);
        EXPECT_EQ(layout.countOfGroup(group), (QList<qint64>{7, 4, 0, 3})[group]);
    }
    const ZQGridLayout::Cell hidden = layout.cell(8);
    EXPECT_EQ(hidden.top, tops[1]);
    EXPECT_EQ(hidden.left, 20);
    EXPECT_EQ(hidden.height, head);
    EXPECT_EQ(layout.cell(0).top, head + 14);
    EXPECT_EQ(layout.cell(11).top, tops[3] + head + 14);
    EXPECT_EQ(layout.indexAt(30, tops[1] + 2), -1);
    EXPECT_EQ(layout.indexAt(30, -1), -1);
    EXPECT_EQ(layout.indexAt(30, head + 13), -1);
    EXPECT_EQ(layout.indexAt(30, head + 14), 0);
    EXPECT_EQ(layout.insertionIndexAt(30, head + 14 + 336 + 5), 7) << "a collapsed one's beginning";
    EXPECT_EQ(layout.insertionIndexAt(899, tops[3] - 1), 11);
    EXPECT_EQ(layout.groupOfIndex(13), 3);
    EXPECT_EQ(layout.groupOfIndex(14), -1);
    EXPECT_EQ(layout.firstShown(), 0);
    EXPECT_EQ(layout.lastShown(), 13);
    EXPECT_EQ(layout.indexesBetween(tops[0], tops[1]), ZQIndexSet(0, 6));
    EXPECT_EQ(layout.indexesBetween(tops[1], tops[3] + head + 13), ZQIndexSet());
    EXPECT_EQ(layout.indexesBetween(tops[1], tops[3] + head + 14), ZQIndexSet(11, 13));
    EXPECT_EQ(layout.indexesIn(20, 0, 20, end).indexes(), (QList<qint64>{0, 5, 11}));

    struct Move
    {
        qint64 from, by, to;
    };
    for (const Move &each :
         {Move{0, -1, 0}, {0, 5, 5}, {6, 1, 11}, {11, -1, 6}, {2, 6, 11}, {13, 1, 13}, {13, -20, 0}}) {
        EXPECT_EQ(layout.movedByItems(each.from, each.by), each.to) << each.from << " by " << each.by;
    }
    for (const Move &each : {Move{0, 1, 5},
                             {2, 1, 6},
                             {5, 1, 11},
                             {6, 1, 12},
                             {13, -1, 6},
                             {12, -2, 1},
                             {11, -9, 0},
                             {3, 9, 13},
                             {13, 1, 13},
                             {3, -1, 3},
                             {4, 2, 13},
                             {-1, 1, -1}}) {
        const qint64 expected = each.from < 0 ? layout.firstShown() : each.to;
        EXPECT_EQ(layout.movedByRows(each.from < 0 ? 99 : each.from, int(each.by)), expected)
            << each.from << " by rows " << each.by;
    }
    layout.setContent({2, 3}, true, {true, true});
    EXPECT_EQ(layout.firstShown(), -1);
    EXPECT_EQ(layout.lastShown(), -1);
    EXPECT_EQ(layout.movedByItems(1, 1), 1) << "nowhere to go";
    EXPECT_EQ(layout.movedByItems(3, -1), 3);
    layout.setContent({2, 3, 2}, true, {true, false, true});
    EXPECT_EQ(layout.firstShown(), 2);
    EXPECT_EQ(layout.lastShown(), 4);
    EXPECT_EQ(layout.movedByItems(4, 1), 4) << "what is behind cannot be seen";
    EXPECT_EQ(layout.movedByItems(2, -1), 2);
    layout.setContent({2, 3}, false, {true, true});
    EXPECT_FALSE(layout.isCollapsed(0)) << "without a head it could never be opened";
    layout.setContent({}, false);
    EXPECT_EQ(layout.movedByItems(0, 1), -1);
    EXPECT_EQ(layout.movedByRows(0, 1), -1);
    EXPECT_EQ(layout.groupAtY(50), -1);
    EXPECT_EQ(layout.contentHeight(), 12);
    EXPECT_EQ(layout.insertionIndexAt(10, 10), 0);
}
