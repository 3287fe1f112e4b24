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
        EXPECT_NEAR(last.left + last.width, width - ZQGridLayout::sideMargin, 2) << width;
    }
}

TEST(ZQGridLayout, GroupsBeginOnARowOfTheirOwnUnderTheirHead)
{
    const ZQGridLayout layout = grouped({7, 3});
    EXPECT_EQ(layout.groupOfIndex(6), 0);
    EXPECT_EQ(layout.groupOfIndex(7), 1);
    const ZQGridLayout::Cell seventh = layout.cell(7);
    EXPECT_EQ(seventh.left, layout.cell(0).left);
    EXPECT_EQ(seventh.top, layout.groupTop(1) + ZQMeasure::groupHeadHeight + ZQGridLayout::headGap);
    EXPECT_EQ(layout.indexAt(seventh.left, layout.groupTop(1) + 5), -1) << "a head is no item";
    EXPECT_EQ(layout.indexAt(layout.cell(6).left + layout.cell(6).width + 20, layout.cell(6).top), -1)
        << "after a group's last item";
}

TEST(ZQGridLayout, CollapsedGroupsShowNoItems)
{
    const ZQGridLayout layout = grouped({7, 300, 3}, {false, true, false});
    EXPECT_LE(layout.groupTop(2) - layout.groupTop(1), ZQMeasure::groupHeadHeight + 4);
    const ZQIndexSet all = layout.indexesBetween(0, layout.contentHeight());
    EXPECT_TRUE(all.contains(6));
    EXPECT_FALSE(all.contains(7));
    EXPECT_FALSE(all.contains(306));
    EXPECT_TRUE(all.contains(307));
    EXPECT_EQ(layout.movedByItems(6, 1), 307);
    EXPECT_EQ(layout.movedByItems(307, -1), 6);
    EXPECT_EQ(layout.movedByRows(5, 1), 307);
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

TEST(ZQGridLayout, ABandTakesTheCellsItTouches)
{
    const ZQGridLayout layout = plain(100);
    const ZQGridLayout::Cell a = layout.cell(6);
    const ZQGridLayout::Cell b = layout.cell(12);
    const ZQIndexSet inside = layout.indexesIn(a.left + 4, a.top + 4, b.left + 4, b.top + 4);
    EXPECT_EQ(inside.indexes(), (QList<qint64>{6, 7, 11, 12}));
    EXPECT_TRUE(layout.indexesIn(a.left + a.width + 2, a.top, a.left + a.width + 5, a.top + 10).isEmpty());
}

TEST(ZQGridLayout, InsertionIsBeforeTheNearestGap)
{
    const ZQGridLayout layout = plain(7);
    const ZQGridLayout::Cell second = layout.cell(1);
    EXPECT_EQ(layout.insertionIndexAt(second.left + 2, second.top + 10), 1);
    EXPECT_EQ(layout.insertionIndexAt(second.left + second.width - 2, second.top + 10), 2);
    EXPECT_EQ(layout.insertionIndexAt(0, second.top + 10), 0);
    EXPECT_EQ(layout.insertionIndexAt(600, layout.contentHeight() + 500), 7);
    EXPECT_EQ(plain(0).insertionIndexAt(10, 10), 0);
}
