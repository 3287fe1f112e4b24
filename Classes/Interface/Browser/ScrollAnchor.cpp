#include "Classes/Interface/Browser/ScrollAnchor.h"

#include "Classes/Interface/Browser/BrowserContent.h"
#include "Kit/Widgets/ZQGridView.h"

ScrollAnchor::ScrollAnchor(const ZQGridView &grid, const BrowserContent &content)
{
    const ZQIndexSet visible = grid.visibleIndexes();
    for (const auto &[first, last] : visible.ranges()) {
        for (qint64 index = first; index <= last; ++index) {
            const bool isSelected = grid.selection().contains(index);
            m_hasSeenSelection = m_hasSeenSelection || isSelected;
            m_index = m_index < 0 && !isSelected ? index : m_index;
        }
    }
    m_index = m_index < 0 ? visible.first() : m_index;
    if (grid.scrollOffset() > 0 && m_index >= 0 && m_index < content.count()) {
        m_row = content.rowIDs()[m_index];
        m_top = grid.visualRect(m_index).top();
    }
}

void ScrollAnchor::restore(ZQGridView &grid, const BrowserContent &content) const
{
    if (m_row.isNull()) {
        return;
    }
    const QList<ZQObjectID> &rows = content.rowIDs();
    const bool isInPlace = m_index < rows.size() && rows[m_index] == m_row;
    const qint64 index = isInPlace ? m_index : rows.indexOf(m_row);
    if (index >= 0) {
        grid.setScrollOffset(grid.scrollOffset() + grid.visualRect(index).top() - m_top);
    }
}
