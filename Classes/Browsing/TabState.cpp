#include "Classes/Browsing/TabState.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <cmath>
#include <utility>

namespace {
constexpr double usualZoom = 0.5;
constexpr double leastZoomChange = 0.001;
} // namespace

TabState::TabState(EditContext &edits, QList<ZQObjectID> sidebarSelectedItems, QString searchString)
    : m_edits(edits), m_sidebarSelectedItems(std::move(sidebarSelectedItems)), m_searchString(std::move(searchString))
{
}

ZQRef<ZQSidebarBaseItem> TabState::singleSidebarElement() const
{
    return m_sidebarSelectedItems.size() == 1 ? m_edits.sidebarItem(m_sidebarSelectedItems.first())
                                              : ZQRef<ZQSidebarBaseItem>();
}

ZQSortValue TabState::sortKeysValue() const
{
    if (const auto single = singleSidebarElement()) {
        return ZQSortValue(single->sortKeys());
    }
    return m_sidebarSelectedItems.size() < 2 ? ZQSortValue::Manual : ZQSortValue::None;
}

bool TabState::sortDirectionValue() const
{
    const auto single = singleSidebarElement();
    return single && single->sortDirection();
}

double TabState::zoomValue() const
{
    const auto single = singleSidebarElement();
    return single && !single->zoomIsNull() && single->zoom() > 0 ? double(single->zoom()) : usualZoom;
}

void TabState::setSort(ZQSortValue sortKeys, bool sortDirection)
{
    if (const auto single = singleSidebarElement()) {
        single->setSortKeys(qint16(sortKeys));
        single->setSortDirection(sortDirection);
        m_edits.save();
    }
}

void TabState::keepZoom(double zoom)
{
    const auto single = singleSidebarElement();
    if (single && std::abs(double(single->zoom()) - zoom) > leastZoomChange) {
        single->setZoom(float(zoom));
        m_edits.save();
    }
}

bool TabState::browserCanManuallySort() const
{
    const auto single = singleSidebarElement();
    return single && (single->isProject() || single->isScreenshot());
}

ContentQuery TabState::contentQuery() const
{
    return {m_sidebarSelectedItems, m_searchString.trimmed(), sortKeysValue(), sortDirectionValue()};
}

QString TabState::generateTabTitleForItems(const QList<ZQObjectID> &items) const
{
    if (items.isEmpty()) {
        return zqLocalized("nothing selected");
    }
    if (items.size() > 1) {
        return zqFormat(zqLocalized("%d items selected"), {int(items.size())});
    }
    const auto item = m_edits.sidebarItem(items.first());
    return item ? item->title() : QString();
}
