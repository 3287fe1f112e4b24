#pragma once

#include "Kit/Foundation/ZQIndexSet.h"

#include <QList>
#include <QRect>

#include <functional>

// Where the cells of a grid, or the rows of a list, are. Cells have one size, so every question is answered by
// arithmetic: constant without groups, logarithmic in the number of groups with them; nothing is kept for an item.
//
// Lengths are device-independent pixels of the content, whose height may exceed what an int holds.
class ZQGridLayout
{
public:
    struct Cell
    {
        qint64 top = 0;
        int left = 0;
        int width = 0;
        int height = 0; // picture and title
    };

    // Counts of consecutive groups; one nameless group without a head is the plain grid.
    void setContent(const QList<qint64> &groupCounts, bool hasHeads, const QList<bool> &collapsed = {});
    // A grid: the zoom alone says how large cells are, as long as one has room; what is left goes between the columns.
    void setGeometry(int width, double zoom, bool hasTitles);
    void setListGeometry(int width, double zoom); // a list: one cell a row, as wide as there is room

    qint64 count() const { return m_count; }
    int columns() const { return m_columns; }
    int rowHeight() const { return m_rowHeight; }
    int pictureHeight() const { return m_pictureHeight; }
    qint64 contentHeight() const { return m_contentHeight; }
    int groupCount() const { return int(m_groups.size()); }
    bool hasHeads() const { return m_hasHeads; }
    bool isList() const { return m_isList; }

    int groupOfIndex(qint64 index) const;
    int groupAtY(qint64 y) const; // the last one beginning at or above y; -1 when there is none
    qint64 groupTop(int group) const { return m_groups[group].top; }
    qint64 groupBottom(int group) const;
    qint64 firstOfGroup(int group) const { return m_groups[group].first; }
    qint64 countOfGroup(int group) const { return m_groups[group].count; }
    bool isCollapsed(int group) const { return m_groups[group].collapsed; }

    Cell cell(qint64 index) const;                  // a collapsed group's items lie on its head
    qint64 indexAt(int x, qint64 y) const;          // -1 beside cells
    qint64 insertionIndexAt(int x, qint64 y) const; // 0 to count
    // The items of rows that touch [top, bottom].
    ZQIndexSet indexesBetween(qint64 top, qint64 bottom) const;
    // The items whose cells touch the rectangle. Linear in the rows it covers.
    ZQIndexSet indexesIn(int left, qint64 top, int right, qint64 bottom) const;
    // `rows` up or down in the same column, over group borders; stays within the items that are shown.
    qint64 movedByRows(qint64 index, int rows) const;
    qint64 movedByItems(qint64 index, qint64 items) const;
    qint64 firstShown() const;
    qint64 lastShown() const;

    static constexpr int sideMargin = 20;
    static constexpr int columnGap = 16;
    static constexpr int rowGap = 18;
    static constexpr int titleGap = 7;
    static constexpr int titleHeight = 18;
    static constexpr int headGap = 14;
    static int cellWidthForZoom(double zoom); // 0 to 1
    static int rowHeightForZoom(double zoom); // of a list

private:
    struct Group
    {
        qint64 first = 0;
        qint64 count = 0;
        qint64 top = 0;
        bool collapsed = false;
    };
    void place();
    int gapBelowHead(const Group &group) const;
    qint64 rowsOf(const Group &group) const { return group.collapsed ? 0 : (group.count + m_columns - 1) / m_columns; }
    qint64 cellsTop(const Group &group) const;

    QList<Group> m_groups;
    bool m_hasHeads = false;
    qint64 m_count = 0;
    bool m_isList = false;
    int m_columns = 1;
    double m_pitch = 1; // from one column to the next
    int m_cellWidth = 1;
    int m_pictureHeight = 1;
    int m_rowHeight = 1;
    int m_rowGap = rowGap;
    qint64 m_contentHeight = 0;
};
