#include "Classes/Browsing/Tabs/TabState.h"

#include "Classes/Browsing/Content/StoreSearch.h"
#include "Classes/Browsing/Search/LikeArgument.h"
#include "Classes/Browsing/Search/SearchManager.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QUndoCommand>
#include <QUndoStack>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
constexpr double usualZoom = 0.5;
constexpr double leastZoomChange = 0.001;

// The part of a step that has its tab come to the front, before the others are made again or, at the end, taken back:
// what they bring is selected there.
class FrontCommand : public QUndoCommand
{
public:
    enum class Place { First, Last };
    FrontCommand(std::weak_ptr<TabState> tab, Place place) : m_tab(std::move(tab)), m_place(place) {}
    void redo() override { bringToFront(Place::First); }
    void undo() override { bringToFront(Place::Last); }

private:
    void bringToFront(Place place)
    {
        if (const auto tab = m_tab.lock(); tab && tab->selectTabForState && place == m_place) {
            tab->selectTabForState(*tab);
        }
    }

    std::weak_ptr<TabState> m_tab;
    Place m_place;
};
} // namespace

TabState::TabState(EditContext &edits, QList<ZQObjectID> sidebarSelectedItems)
    : m_edits(edits), m_sidebarSelectedItems(std::move(sidebarSelectedItems))
{
}

// What is shown.

void TabState::setSidebarSelectedItems(const QList<ZQObjectID> &items)
{
    m_sidebarSelectedItems = items;
    m_editsSearch = false;
    invalidateCache();
}

void TabState::goToSidebarItems(const QList<ZQObjectID> &items)
{
    savePersistentStateInformations();
    const auto smart = zqCast<ZQSidebarSmartFolder>(singleSidebarElement());
    if (m_editsSearch) {
        if (smart && !filter().isEmpty() && filter() != smart->searchText().trimmed()) {
            m_unsavedSearches.insert(smart->objectID(), m_searchString);
        }
        setSearchString({}); // it belongs to what was shown
    }
    setSidebarSelectedItems(items);
    if (items.size() == 1 && filter().isEmpty() && m_unsavedSearches.contains(items.first())) {
        m_searchString = m_unsavedSearches.take(items.first());
        m_editsSearch = true;
    }
    m_sortKeys.reset();
    m_sortDirection.reset();
    m_zoom.reset();
    const TabViewState left = std::exchange(view, {});
    view.infoPanelOpen = left.infoPanelOpen;
    view.infoPanelHeight = left.infoPanelHeight;
    view.exportPanelOpen = left.exportPanelOpen;
    view.showsList = left.showsList;
    // Groups by what items are mean the same everywhere.
    if (m_browserDisplayStyle && *m_browserDisplayStyle <= BrowserDisplayStyle::BySidebarItem) {
        m_browserDisplayStyle.reset();
    }
    const auto single = singleSidebarElement();
    const bool isInOrder = browserCanManuallySort() && sortKeysValue() == ZQSortValue::Manual;
    if (!m_browserDisplayStyle && (isInOrder || (single && single->isRecent()))) {
        m_browserDisplayStyle = BrowserDisplayStyle::BySidebarItem; // a plain list has neither an order nor groups
    }
}

QList<ZQRef<ZQSidebarBaseItem>> TabState::selectedSidebarElements() const
{
    QList<ZQRef<ZQSidebarBaseItem>> result;
    for (const ZQObjectID &id : m_sidebarSelectedItems) {
        if (auto item = m_edits.sidebarItem(id)) {
            result.append(std::move(item));
        }
    }
    return result;
}

ZQRef<ZQSidebarBaseItem> TabState::singleSidebarElement() const
{
    return m_sidebarSelectedItems.size() == 1 ? m_edits.sidebarItem(m_sidebarSelectedItems.first())
                                              : ZQRef<ZQSidebarBaseItem>();
}

QString TabState::tabName() const
{
    const auto like = LikeArgument::in(filter());
    if (!like) {
        return generateTabTitleForItems(m_sidebarSelectedItems);
    }
    return zqFormat(zqLocalized("Like %@"), {StoreSearch::titleOfPicture(like->argument.name, m_edits.context)});
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

void TabState::setSearchString(const QString &text)
{
    if (const QString before = filter(); m_searchString = text, filter() != before) {
        setFilterPredicate({});
        invalidateCache();
    }
}

ZQPredicate TabState::filterPredicate() const
{
    return filter().isEmpty() ? m_filterPredicate
                              : SearchManager::predicateForSearchString(filter(), {.rows = ZQListRows::LibraryItems});
}

void TabState::setFilterPredicate(const ZQPredicate &predicate)
{
    m_filterPredicate = predicate;
    m_filterFormat.reset();
}

const QString &TabState::filterFormat() const
{
    if (const QString text = filter(); !m_filterFormat || m_filterFormat->first != text) {
        const ZQPredicate predicate = filterPredicate();
        m_filterFormat.emplace(text, predicate.isNull() ? QString() : predicate.predicateFormat());
    }
    return m_filterFormat->second;
}

void TabState::setEditsSearch(bool edits)
{
    m_editsSearch = edits;
    invalidateCache();
}

bool TabState::showsSavedSearch() const
{
    const auto shown = ZQSidebarFolder::expandedProjects(selectedSidebarElements());
    return std::any_of(shown.begin(), shown.end(), [](const auto &item) { return item->isSmartFolder(); });
}

// Order, groups and size.

void TabState::setSortKeys(std::optional<ZQSortValue> value)
{
    m_sortKeys = value;
    invalidateCache();
}

void TabState::setSortDirection(std::optional<bool> isAscending)
{
    m_sortDirection = isAscending;
    invalidateCache();
}

void TabState::setBrowserDisplayStyle(std::optional<BrowserDisplayStyle> style)
{
    m_browserDisplayStyle = style;
    invalidateCache();
}

void TabState::setSort(ZQSortValue sortKeys, bool sortDirection)
{
    setSortKeys(sortKeys);
    setSortDirection(sortDirection);
    if (sortKeys == ZQSortValue::Manual || sortKeys == ZQSortValue::None) {
        setBrowserDisplayStyle(BrowserDisplayStyle::BySidebarItem);
    }
}

ZQSortValue TabState::sortKeysValue() const
{
    if (m_sortKeys) {
        return *m_sortKeys;
    }
    if (const auto single = singleSidebarElement()) {
        return ZQSortValue(single->sortKeys());
    }
    return m_sidebarSelectedItems.size() < 2 ? ZQSortValue::Manual : ZQSortValue::None;
}

bool TabState::sortDirectionValue() const
{
    const auto single = singleSidebarElement();
    return m_sortDirection.value_or(single && single->sortDirection());
}

double TabState::zoomValue() const
{
    if (m_zoom) {
        return *m_zoom;
    }
    const auto single = singleSidebarElement();
    return single && !single->zoomIsNull() ? double(single->zoom()) : usualZoom;
}

BrowserDisplayStyle TabState::browserDisplayStyleValue() const
{
    const auto single = singleSidebarElement();
    const bool isPlain = single && !single->isFolder() && !single->isWatchedFolder();
    return m_browserDisplayStyle.value_or(isPlain ? BrowserDisplayStyle::Plain : BrowserDisplayStyle::BySidebarItem);
}

void TabState::savePersistentStateInformations()
{
    const auto single = singleSidebarElement();
    if (!single || !single->active()) {
        return;
    }
    bool differs = false;
    if (m_zoom && std::abs(double(single->zoom()) - *m_zoom) > leastZoomChange) {
        single->setZoom(float(*m_zoom));
        differs = true;
    }
    if (m_sortKeys && single->sortKeys() != qint16(*m_sortKeys)) {
        single->setSortKeys(qint16(*m_sortKeys));
        differs = true;
    }
    if (m_sortDirection && single->sortDirection() != *m_sortDirection) {
        single->setSortDirection(*m_sortDirection);
        differs = true;
    }
    if (differs) {
        m_edits.save();
    }
}

// What can be done.

bool TabState::browserCanManuallySort() const
{
    const auto single = singleSidebarElement();
    return single && (single->isProject() || single->isScreenshot());
}

bool TabState::browserCanShowListStyle() const
{
    const auto selected = selectedSidebarElements();
    return std::any_of(selected.begin(), selected.end(), [](const auto &item) { return !item->isLabel(); });
}

bool TabState::canImportItems() const
{
    const auto single = singleSidebarElement();
    return single && SidebarTargetRules::files({.hasSupported = true}, single.get());
}

bool TabState::canMoveItemToOtherProject() const
{
    return SidebarTargetRules::canRemoveItems(singleSidebarElement().get());
}

bool TabState::hasTags() const
{
    const auto selected = selectedSidebarElements();
    return std::any_of(selected.begin(), selected.end(), [](const auto &item) { return item->isTag(); });
}

bool TabState::hasWatchedFolders() const
{
    const auto selected = selectedSidebarElements();
    return std::any_of(selected.begin(), selected.end(), [](const auto &item) { return item->isWatchedFolder(); });
}

bool TabState::hasDisabledWatchedFolders() const
{
    const auto selected = selectedSidebarElements();
    return std::any_of(selected.begin(), selected.end(), [](const auto &item) {
        const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
        return folder && !folder->is_enabled();
    });
}

// Membership.

namespace {

qsizetype numberOfHeld(const QList<ZQRef<ZQLibraryBaseItem>> &items, const ZQSidebarBaseItem &holder)
{
    const auto memberships = holder.hasOrderedMembers() ? holder.membershipsOfItems(items) : ZQFetched<ZQProjectItem>();
    return memberships ? memberships->size() : std::count_if(items.begin(), items.end(), [&holder](const auto &item) {
        return holder.containsItem(item.get());
    });
}

} // namespace

// The others would leave empty parts of a step.
QList<ZQObjectID> TabState::holdersOf(const QList<ZQObjectID> &items, const QList<ZQObjectID> &sidebarItems,
                                      bool lacking) const
{
    constexpr qsizetype batch = 500; // the first one nearly always tells
    QList<ZQObjectID> result;
    for (const ZQObjectID &id : sidebarItems) {
        const auto holder = m_edits.sidebarItem(id);
        for (qsizetype first = 0; holder && !result.contains(id) && first < items.size(); first += batch) {
            const auto objects = ZQLibraryBaseItem::itemsWithIDs(items.mid(first, batch), m_edits.context);
            const qsizetype held = numberOfHeld(objects, *holder);
            if (lacking ? held < objects.size() : held > 0) {
                result.append(id);
            }
        }
    }
    return result;
}

void TabState::changeMembers(const QString &name, const QList<ZQObjectID> &sidebarItems, bool updateBrowser,
                             const std::function<void(qsizetype index)> &change)
{
    if (selectTabForState) {
        selectTabForState(*this);
    }
    if (m_edits.undoStack && !sidebarItems.isEmpty()) {
        m_edits.undoStack->beginMacro(name);
        m_edits.undoStack->push(new FrontCommand(weak_from_this(), FrontCommand::Place::First));
    }
    for (qsizetype i = 0; i < sidebarItems.size(); ++i) {
        change(i);
    }
    if (m_edits.undoStack && !sidebarItems.isEmpty()) {
        m_edits.undoStack->push(new FrontCommand(weak_from_this(), FrontCommand::Place::Last));
        m_edits.undoStack->endMacro();
    }
    if (updateBrowser) {
        invalidateCache();
    }
}

void TabState::removeItems(const QList<ZQObjectID> &items, const QList<ZQObjectID> &forSidebarItems, bool updateBrowser)
{
    const QList<ZQObjectID> holders = holdersOf(items, forSidebarItems);
    changeMembers(zqLocalized("remove items"), holders, updateBrowser,
                  [&](qsizetype index) { LibraryCommands(m_edits).removeItems(items, holders[index]); });
}

void TabState::addItems(const QList<ZQObjectID> &items, const QList<ZQObjectID> &toSidebarItems,
                        const QList<quint32> &atIndexes, bool updateBrowser)
{
    const QList<ZQObjectID> holders = holdersOf(items, toSidebarItems, true);
    changeMembers(zqLocalized("copy items"), holders, updateBrowser, [&](qsizetype index) {
        LibraryCommands(m_edits).addItems(
            items, holders[index],
            atIndexes.value(toSidebarItems.indexOf(holders[index]), ZQSidebarBaseItem::appendIndex));
    });
}
