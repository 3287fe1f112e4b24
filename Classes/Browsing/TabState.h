#pragma once

#include "Classes/Browsing/ContentBuilder.h"
#include "Classes/Editing/EditContext.h"

#include <QString>

// What one tab shows: which sidebar items, filtered by what, in which order and size. The one home of that: sidebar,
// browser and tab strip follow it. Main thread.
class TabState
{
public:
    explicit TabState(EditContext &edits, QList<ZQObjectID> sidebarSelectedItems = {}, QString searchString = {});

    const QList<ZQObjectID> &sidebarSelectedItems() const { return m_sidebarSelectedItems; }
    void setSidebarSelectedItems(const QList<ZQObjectID> &items) { m_sidebarSelectedItems = items; }
    ZQRef<ZQSidebarBaseItem> singleSidebarElement() const; // null unless exactly one is selected

    const QString &searchString() const { return m_searchString; } // as it was typed
    void setSearchString(const QString &text) { m_searchString = text; }

    // The values in effect: those of the single element, else what suits several.
    ZQSortValue sortKeysValue() const;
    bool sortDirectionValue() const; // ascending
    double zoomValue() const;        // 0 to 1
    // Kept in the single element, and saved; of several they are not kept.
    void setSort(ZQSortValue sortKeys, bool sortDirection);
    void keepZoom(double zoom);

    bool browserCanManuallySort() const;
    ContentQuery contentQuery() const;
    QString tabName() const { return generateTabTitleForItems(m_sidebarSelectedItems); }
    QString generateTabTitleForItems(const QList<ZQObjectID> &items) const;

private:
    EditContext &m_edits;
    QList<ZQObjectID> m_sidebarSelectedItems;
    QString m_searchString;
};
