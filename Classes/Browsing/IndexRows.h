#pragma once

#include "Models/DataModel/ZQListRows.h"

#include <QVariant>

#include <vector>

// A list of the library by numbers of rows: of items, or of memberships with the items they lead to at the same places.
struct IndexRows
{
    ZQListRows kind = ZQListRows::LibraryItems;
    std::vector<quint32> items;
    std::vector<quint32> memberships; // empty where the rows are items

    size_t size() const { return items.size(); }
};

// Where a part of a list begins, how long it is, and what its rows have in common: the extension as text, the main
// colour as number, the key of the size class's title ("none", "icon", …) as text. Invalid for rows without a value.
struct IndexGroup
{
    QVariant value;
    size_t first = 0;
    size_t count = 0;
};

enum class IndexGrouping { Extension, MainColor, SizeClass };

// What rows are counted by. The value of a count is: the name of the entity; the colour's number; the tag, live folder
// or project as ZQObjectID; the stars; the key of the size class's title; the first day of the month of the
// modification, in local time; a name, in any of its spellings, as a search for it finds it.
enum class IndexFacet {
    Kind,
    MainColor,
    Tag,
    Rating,
    SizeClass,
    ModificationMonth,
    LiveFolder,
    Project,
    ExtensionName,
    TagName,
    LiveFolderName,
};

struct IndexCount
{
    QVariant value;
    qint64 count = 0;
};
