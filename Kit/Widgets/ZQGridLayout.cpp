#include "Kit/Widgets/ZQGridLayout.h"

#include "Kit/Widgets/ZQTheme.h"

#include <algorithm>
#include <cmath>

int ZQGridLayout::cellWidthForZoom(double zoom)
{
    constexpr double smallest = 64;
    constexpr double largest = 420;
    return int(std::lround(smallest * std::pow(largest / smallest, std::clamp(zoom, 0.0, 1.0))));
}

int ZQGridLayout::rowHeightForZoom(double zoom)
{
    constexpr double smallest = 28;
    constexpr double largest = 60;
    return int(std::lround(smallest + (largest - smallest) * std::clamp(zoom, 0.0, 1.0)));
}

void ZQGridLayout::setContent(const QList<qint64> &groupCounts, bool hasHeads, const QList<bool> &collapsed)
{
    m_groups.clear();
    m_groups.reserve(groupCounts.size());
    m_hasHeads = hasHeads;
    m_count = 0;
    for (qsizetype i = 0; i < groupCounts.size(); ++i) {
        m_groups.append({m_count, groupCounts[i], 0, hasHeads && i < collapsed.size() && collapsed[i]});
        m_count += groupCounts[i];
    }
    place();
}

void ZQGridLayout::setGeometry(int width, double zoom, bool hasTitles)
{
    m_isList = false;
    const int room = std::max(1, width - 2 * sideMargin);
    m_cellWidth = std::min(room, cellWidthForZoom(zoom));
    m_columns = std::max(1, (room + columnGap) / (m_cellWidth + columnGap));
    m_pitch = m_columns > 1 ? double(room - m_cellWidth) / (m_columns - 1) : room + columnGap;
    m_pictureHeight = std::max(40, int(std::lround(m_cellWidth * 0.76)));
    m_rowGap = rowGap;
    m_rowHeight = m_pictureHeight + (hasTitles ? titleGap + titleHeight : 0) + m_rowGap;
    place();
}

void ZQGridLayout::setListGeometry(int width, double zoom)
{
    m_isList = true;
    m_columns = 1;
    m_cellWidth = std::max(1, width - 2 * sideMargin);
    m_pitch = m_cellWidth + columnGap;
    m_rowGap = 0;
    m_rowHeight = m_pictureHeight = rowHeightForZoom(zoom);
    place();
}

void ZQGridLayout::place()
{
    qint64 y = m_hasHeads ? 0 : m_isList ? 6 : 12;
    for (Group &group : m_groups) {
        group.top = y;
        y = cellsTop(group) + rowsOf(group) * m_rowHeight;
    }
    m_contentHeight = y;
}

qint64 ZQGridLayout::cellsTop(const Group &group) const
{
    return group.top + (m_hasHeads ? ZQMeasure::groupHeadHeight + gapBelowHead(group) : 0);
}

int ZQGridLayout::gapBelowHead(const Group &group) const
{
    return group.collapsed ? 4 : m_isList ? 6 : headGap;
}

qint64 ZQGridLayout::groupBottom(int group) const
{
    return group + 1 < m_groups.size() ? m_groups[group + 1].top : m_contentHeight;
}

int ZQGridLayout::groupOfIndex(qint64 index) const
{
    const auto it = std::upper_bound(m_groups.begin(), m_groups.end(), index,
                                     [](qint64 i, const Group &g) { return i < g.first + g.count; });
    return it == m_groups.end() ? -1 : int(it - m_groups.begin());
}

int ZQGridLayout::groupAtY(qint64 y) const
{
    const auto it =
        std::upper_bound(m_groups.begin(), m_groups.end(), y, [](qint64 v, const Group &g) { return v < g.top; });
    return int(it - m_groups.begin()) - 1;
}

ZQGridLayout::Cell ZQGridLayout::cell(qint64 index) const
{
    const int position = groupOfIndex(index);
    if (position < 0) {
        return {};
    }
    const Group &group = m_groups[position];
    Cell result;
    result.width = m_cellWidth;
    result.height = m_rowHeight - m_rowGap;
    if (group.collapsed) {
        result.top = group.top;
        result.left = sideMargin;
        result.height = ZQMeasure::groupHeadHeight;
        return result;
    }
    const qint64 inGroup = index - group.first;
    result.top = cellsTop(group) + inGroup / m_columns * m_rowHeight;
    result.left = sideMargin + int(double(inGroup % m_columns) * m_pitch);
    return result;
}

qint64 ZQGridLayout::indexAt(int x, qint64 y) const
{
    const int position = groupAtY(y);
    if (position < 0) {
        return -1;
    }
    const Group &group = m_groups[position];
    const qint64 inside = y - cellsTop(group);
    int column = int((x - sideMargin + 1) / m_pitch);
    column -= int(column * m_pitch) > x - sideMargin ? 1 : 0; // left edges are rounded down
    if (group.collapsed || inside < 0 || x < sideMargin || column >= m_columns ||
        inside % m_rowHeight >= m_rowHeight - m_rowGap || x - sideMargin - int(column * m_pitch) >= m_cellWidth) {
        return -1;
    }
    const qint64 inGroup = inside / m_rowHeight * m_columns + column;
    return inGroup < group.count ? group.first + inGroup : -1;
}

qint64 ZQGridLayout::insertionIndexAt(int x, qint64 y) const
{
    const int position = std::max(0, groupAtY(y));
    if (m_groups.isEmpty()) {
        return 0;
    }
    const Group &group = m_groups[position];
    if (m_isList) {
        const qint64 row = (std::max<qint64>(0, y - cellsTop(group)) + m_rowHeight / 2) / m_rowHeight;
        return group.first + std::min(group.count, row);
    }
    const qint64 row = std::max<qint64>(0, (y - cellsTop(group)) / m_rowHeight);
    const double gap = m_pitch - m_cellWidth;
    const int column = std::clamp(int(std::floor((x - sideMargin + gap / 2) / m_pitch + 0.5)), 0, m_columns);
    return group.first + std::min(group.count, row * m_columns + column);
}

ZQIndexSet ZQGridLayout::indexesBetween(qint64 top, qint64 bottom) const
{
    ZQIndexSet result;
    for (int i = std::max(0, groupAtY(top)); i < m_groups.size() && m_groups[i].top <= bottom; ++i) {
        const Group &group = m_groups[i];
        const qint64 rows = rowsOf(group);
        const qint64 firstRow = std::max<qint64>(0, (top - cellsTop(group)) / m_rowHeight);
        const qint64 lastRow =
            std::min(rows - 1, bottom < cellsTop(group) ? -1 : (bottom - cellsTop(group)) / m_rowHeight);
        result.insert(group.first + firstRow * m_columns,
                      group.first + std::min(group.count, (lastRow + 1) * m_columns) - 1);
    }
    return result;
}

ZQIndexSet ZQGridLayout::indexesIn(int left, qint64 top, int right, qint64 bottom) const
{
    ZQIndexSet result;
    for (const ZQIndexSet::Range &range : indexesBetween(top, bottom).ranges()) {
        for (qint64 index = range.first; index <= range.last;) {
            const Group &group = m_groups[groupOfIndex(index)];
            const Cell first = cell(index);
            const qint64 rowEnd = std::min(index + m_columns, group.first + group.count);
            if (first.top <= bottom && first.top + first.height >= top) {
                const int firstColumn = std::max(0, int(std::ceil((left - sideMargin - m_cellWidth) / m_pitch)));
                const int lastColumn = int(std::floor((right - sideMargin) / m_pitch));
                result.insert(index + firstColumn, std::min(rowEnd - 1, index + lastColumn));
            }
            index = rowEnd;
        }
    }
    return result;
}

qint64 ZQGridLayout::firstShown() const
{
    for (const Group &group : m_groups) {
        if (!group.collapsed && group.count > 0) {
            return group.first;
        }
    }
    return -1;
}

qint64 ZQGridLayout::lastShown() const
{
    for (auto it = m_groups.rbegin(); it != m_groups.rend(); ++it) {
        if (!it->collapsed && it->count > 0) {
            return it->first + it->count - 1;
        }
    }
    return -1;
}

qint64 ZQGridLayout::movedByItems(qint64 index, qint64 items) const
{
    const qint64 target = std::clamp<qint64>(index + items, 0, std::max<qint64>(0, m_count - 1));
    int group = groupOfIndex(target);
    const int step = items < 0 ? -1 : 1;
    if (group < 0 || !m_groups[group].collapsed) {
        return m_count == 0 ? -1 : target;
    }
    while (group >= 0 && group < m_groups.size() && (m_groups[group].collapsed || m_groups[group].count == 0)) {
        group += step;
    }
    if (group < 0 || group >= m_groups.size()) {
        return index;
    }
    return step > 0 ? m_groups[group].first : m_groups[group].first + m_groups[group].count - 1;
}

qint64 ZQGridLayout::movedByRows(qint64 index, int rows) const
{
    int position = groupOfIndex(index);
    if (position < 0) {
        return firstShown();
    }
    const qint64 inGroup = m_groups[position].collapsed ? 0 : index - m_groups[position].first;
    const int step = rows < 0 ? -1 : 1;
    // From a head, the first row below it is one on.
    qint64 row = inGroup / m_columns + rows - (m_groups[position].collapsed && rows > 0 ? 1 : 0);
    const qint64 column = inGroup % m_columns;
    int best = position;
    qint64 bestRow = std::clamp<qint64>(row, 0, std::max<qint64>(0, rowsOf(m_groups[position]) - 1));
    while (row < 0 || row >= rowsOf(m_groups[position])) {
        if (row >= 0) {
            row -= rowsOf(m_groups[position]);
        }
        position += step;
        if (position < 0 || position >= m_groups.size()) {
            break;
        }
        const qint64 available = rowsOf(m_groups[position]);
        if (row < 0) {
            row += available;
        }
        if (available > 0) {
            best = position;
            bestRow = std::clamp<qint64>(row, 0, available - 1);
        }
    }
    const Group &group = m_groups[best];
    const qint64 target = group.first + std::min(group.count - 1, bestRow * m_columns + column);
    if (group.collapsed) {
        return index; // nothing else can be seen that way
    }
    const bool isLastRow = bestRow == rowsOf(group) - 1;
    return rows > 0 && best == groupOfIndex(index) && isLastRow && target < index ? index : target;
}
