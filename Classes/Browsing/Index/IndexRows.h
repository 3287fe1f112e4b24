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

// What rows are counted by. The value of a count is: the colour's number; the tag, live folder or project as
// ZQObjectID; the stars; the key of the size class's title; a name, in any of its spellings, as a search for it finds
// it.
enum class IndexFacet {
    MainColor,
    Tag,
    Rating,
    SizeClass,
    LiveFolder,
    Project,
    ExtensionName,
    TagName,
    LiveFolderName,
    ProjectName,
};

struct IndexCount
{
    QVariant value;
    qint64 count = 0;
};
