#pragma once

#include "Classes/Browsing/Index/IndexRows.h"
#include "Classes/Browsing/Index/LibraryColumns.h"

// Counts rows by names, as a search tells names apart: whatever their case and accents.
class IndexNames
{
public:
    explicit IndexNames(const LibraryColumns &columns) : m_columns(columns) {}

    // By extension; rows without one are left out.
    std::vector<IndexCount> extensions(const ZQRowSet &rows) const;
    // By the name of a user's tag: rows that carry any tag of that name, each once.
    std::vector<IndexCount> tags(const ZQRowSet &rows) const;
    // By the name of a live folder: rows in folders whose name contains it, and in those below them.
    std::vector<IndexCount> folders(const ZQRowSet &rows) const;
    // By the title of a project: rows in projects whose title contains it, each once.
    std::vector<IndexCount> projects(const ZQRowSet &rows) const;

private:
    QStringList foldedPath(quint32 folder) const; // its name, and those above it

    const LibraryColumns &m_columns;
};
