#pragma once

#include "Classes/Browsing/Content/Content.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Editing/EditContext.h"
#include "Kit/Foundation/ZQIndexSet.h"

#include <QHash>
#include <QPointF>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

// How a tab was left: what nobody set is as the window has it.
struct TabViewState
{
    std::optional<QPointF> scroll; // of the browser, in its pixels
    ZQIndexSet selectionIndexes;
    QList<ZQObjectID> selectedRows;  // the same by row while the program runs; none of a large selection
    ZQObjectID detailItem;           // open in the detail view; null for none
    QList<ZQObjectID> comparedItems; // while the program runs; none: they are not compared
    std::optional<double> detailZoom;
    std::optional<QPointF> detailScroll;
    std::optional<bool> infoPanelOpen;
    std::optional<double> infoPanelHeight;
    std::optional<bool> exportPanelOpen;
    std::optional<bool> showsList; // columns in place of thumbnails, where that can be
    QSet<QString> collapsedGroups; // by title, while the program runs
};

// What one tab shows: which sidebar items, filtered by what, in which order, groups and size. The one home of that:
// sidebar, browser and tab strip follow it. Number, order and groups of its rows are a cache that is built on the
// fetcher's thread. Main thread.
class TabState : public std::enable_shared_from_this<TabState>
{
public:
    explicit TabState(EditContext &edits, QList<ZQObjectID> sidebarSelectedItems = {});

    const QList<ZQObjectID> &sidebarSelectedItems() const { return m_sidebarSelectedItems; }
    void setSidebarSelectedItems(const QList<ZQObjectID> &items);
    // The same as a person goes there: what was shown keeps its zoom and order, and the tab takes those of what comes.
    // What is ordered by hand, or has groups of its own, is listed by sidebar item then.
    void goToSidebarItems(const QList<ZQObjectID> &items);
    ZQRef<ZQSidebarBaseItem> singleSidebarElement() const; // null unless exactly one is selected
    QList<ZQRef<ZQSidebarBaseItem>> selectedSidebarElements() const;

    QString tabName() const; // of the sidebar items, or of the picture to whose likeness things are searched
    QString generateTabTitleForItems(const QList<ZQObjectID> &items) const;

    const QString &searchString() const { return m_searchString; } // as it was typed
    void setSearchString(const QString &text);
    QString filter() const { return m_searchString.trimmed(); }
    // While a person edits the text of the smart folder that is shown, the field has it and all of it.
    bool editsSearch() const { return m_editsSearch; }
    const QHash<ZQObjectID, QString> &unsavedSearches() const { return m_unsavedSearches; }
    void setUnsavedSearch(const ZQObjectID &smartFolder, const QString &text)
    {
        m_unsavedSearches.insert(smartFolder, text);
    }
    void setEditsSearch(bool edits); // `goToSidebarItems` keeps what was edited, for when it comes back there
    // Whether what is shown is found by a saved search, so that any change may touch it.
    bool showsSavedSearch() const;
    // Of rows of library items; null: all. What the search makes of the text, whose "today" is today; what was set
    // where there is no text.
    ZQPredicate filterPredicate() const;
    void setFilterPredicate(const ZQPredicate &predicate);
    // Its format, for other readers of the tab; empty for none. Made when it is first asked for, and kept as long as
    // the text stays.
    const QString &filterFormat() const;

    // The tab's own values; what is unset is taken from the single element.
    std::optional<ZQSortValue> sortKeys() const { return m_sortKeys; }
    std::optional<bool> sortDirection() const { return m_sortDirection; }
    std::optional<double> zoom() const { return m_zoom; }
    std::optional<BrowserDisplayStyle> browserDisplayStyle() const { return m_browserDisplayStyle; }
    void setSortKeys(std::optional<ZQSortValue> value);
    void setSortDirection(std::optional<bool> isAscending);
    void setZoom(std::optional<double> zoom) { m_zoom = zoom; }
    void setBrowserDisplayStyle(std::optional<BrowserDisplayStyle> style);
    // As a person chooses it: an order that only a list by sidebar item has brings one.
    void setSort(ZQSortValue sortKeys, bool sortDirection);

    // The values in effect.
    ZQSortValue sortKeysValue() const;
    bool sortDirectionValue() const; // ascending
    double zoomValue() const;        // 0 to 1
    // Nobody chose another order for what is found by the likeness to a picture.
    bool isByNearness() const;
    BrowserDisplayStyle browserDisplayStyleValue() const;
    // Writes the tab's own zoom and order into the single element, saved, if that differs. When the tab is left or
    // closed.
    void savePersistentStateInformations();

    // What can be done with what is selected in the sidebar.
    bool browserCanManuallySort() const;
    bool browserCanShowListStyle() const; // rows of a kind, whose columns mean something
    bool canImportItems() const;
    bool canMoveItemToOtherProject() const;
    bool hasTags() const;
    bool hasWatchedFolders() const;
    bool hasDisabledWatchedFolders() const;

    // Membership, one undo step each. The tab comes to the front, also when the step is taken back.
    void addItems(const QList<ZQObjectID> &items, const QList<ZQObjectID> &toSidebarItems,
                  const QList<quint32> &atIndexes, bool updateBrowser); // one index a sidebar item; none: at the end
    void removeItems(const QList<ZQObjectID> &items, const QList<ZQObjectID> &forSidebarItems, bool updateBrowser);
    std::function<void(TabState &)> selectTabForState; // null: nothing comes to the front

    // What the tab is to show. A list that has no order of its own gives the tab one.
    ContentQuery contentQuery();
    // Null while it is not known, or no longer.
    const Content *content() const { return m_content ? &*m_content : nullptr; }
    void setContent(const Content &content) { m_content = content; }
    // `done` comes twice when there is a beginning first.
    void buildCache(ContentFetcher::Ticket &ticket, std::function<void(const Content &)> done);
    void invalidateCache() { m_content.reset(); }
    // When the change touches what the tab shows.
    void evaluateCache(const ZQContextDidSave &change);
    QList<ContentGroup> groups() const { return m_content ? m_content->groups : QList<ContentGroup>(); }
    // Those of the cache under the filter predicate.
    QList<ContentGroup> filteredGroups() const;
    // The library items of the rows that were selected when the tab was left.
    QList<ZQObjectID> selectedBrowserItems() const;

    TabViewState view;

private:
    void ask(ContentFetcher::Ticket &ticket, const ContentQuery &query, std::function<void(const Content &)> done);
    bool isBelowSelection(const ZQObjectID &sidebarItem) const;
    bool belongsToSelection(const ZQObjectID &libraryItem) const;
    bool isTouchedBy(const ZQContextDidSave &change) const;
    void changeMembers(const QString &name, const QList<ZQObjectID> &sidebarItems, bool updateBrowser,
                       const std::function<void(qsizetype index)> &change);
    // Those of them that hold any of the items; or, with `lacking`, that do not hold all of them.
    QList<ZQObjectID> holdersOf(const QList<ZQObjectID> &items, const QList<ZQObjectID> &sidebarItems,
                                bool lacking = false) const;

    EditContext &m_edits;
    QList<ZQObjectID> m_sidebarSelectedItems;
    QString m_searchString;
    bool m_editsSearch = false;
    QHash<ZQObjectID, QString> m_unsavedSearches; // of smart folders that were left while their texts were edited
    ZQPredicate m_filterPredicate;
    mutable std::optional<std::pair<QString, QString>> m_filterFormat; // a text and its format
    std::optional<ZQSortValue> m_sortKeys;
    std::optional<bool> m_sortDirection;
    std::optional<double> m_zoom;
    std::optional<BrowserDisplayStyle> m_browserDisplayStyle;
    std::optional<Content> m_content;
};
