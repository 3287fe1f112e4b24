#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQListRows.h"

#include <QString>
#include <QVariant>

// How a tab groups what it shows. The numbers are those of the open tabs' file.
enum class BrowserDisplayStyle {
    Plain = 0, // library items, each once, in one list
    BySidebarItem = 1,
    ByExtension = 2,
    ByColor = 3,
    BySize = 4,
};

// What a tab is to show.
struct ContentQuery
{
    QList<ZQObjectID> sidebarItems;
    QString filter; // a search text; all rows when there is nothing in it to search for
    ZQSortValue sortValue = ZQSortValue::Manual;
    bool isAscending = false;
    BrowserDisplayStyle displayStyle = BrowserDisplayStyle::BySidebarItem;
    bool editsSearch = false;  // of the one smart folder that is shown: `filter` stands in the place of its text
    bool isByNearness = false; // to the picture that the filter names, before the order
    // Only so many rows, where the store has the first ones at once; 0 for all.
    int firstRows = 0;

    // Projects have an order of their own, and several sidebar items none. A list that is not by sidebar item has
    // neither: it goes by modification date then, the oldest first. Whether that changed anything.
    bool settleOrder();
};

// Rows that follow each other, and what they have in common.
struct ContentGroup
{
    QString title;
    qint64 first = 0;
    qint64 count = 0;
    ZQObjectID sidebarItem; // that the group stands for; null when it is a value
    QVariant value;         // the extension, colour or key of the size class it stands for
    friend bool operator==(const ContentGroup &, const ContentGroup &) = default;
};

// The rows of a tab with the library items they stand for, and its groups in their order; no groups for a plain list.
// Groups without rows are left out. After an error there are no rows, which is not an empty tab.
struct Content
{
    ZQRelatedIDs rows;
    QList<ContentGroup> groups;
    ZQError error = {};
    bool isBeginning = false; // the first rows, and there are more

    // The groups when only these rows remain, one behind the other from 0; `matches` has an entry a row.
    QList<ContentGroup> filteredGroups(const QList<bool> &matches) const;
};
