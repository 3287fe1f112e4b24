#pragma once

#include <QString>

// How a list of a library is ordered. The numbers are those of the store ("sortKeys").
enum class ZQSortValue {
    Manual = 0, // the order of memberships
    ImportDate = 1,
    Title = 2,
    Size = 3, // in pixels
    Color = 4,
    None = 5, // several sidebar items at once
    ModificationDate = 6,
    CreationDate = 7,
    // Columns of a list besides; see ListOrder.
    ListKind = 101,
    ListRating = 102,
    ListTags = 103,
    ListHue = 104,
};

// What the rows of a list are: library items, or the memberships through which a project holds them.
enum class ZQListRows { LibraryItems, Memberships };

ZQListRows zqListRowsOfEntity(const QString &entityName);

// The key path by which rows reach an attribute of their library items.
QString zqItemKeyPath(ZQListRows rows, const QString &key);
// The other way round: without what leads from a membership to its item.
QString zqItemKey(const QString &keyPath);
