#pragma once

#include "Classes/Browsing/IndexRows.h"
#include "Classes/Browsing/LibraryColumns.h"
#include "Classes/Browsing/SizeClasses.h"

// Parts rows into groups and counts what they have in common, in one pass over them each.
class IndexGroups
{
public:
    IndexGroups(const LibraryColumns &columns, const SizeClasses::Limits &sizes) : m_columns(columns), m_sizes(sizes) {}

    std::vector<IndexGroup> group(IndexRows &rows, IndexGrouping grouping) const;
    std::vector<IndexCount> counts(IndexFacet facet, const ZQRowSet &rows) const;

    std::vector<qint64> importedBetween(const std::vector<qint64> &bounds, const ZQRowSet &rows) const;
    QStringList repeatedDigests(const ZQRowSet &rows) const;

    static constexpr const char *sizeNames[] = {"none", "icon", "small", "medium", "large", "vector"};

private:
    std::vector<IndexGroup> groupByExtension(IndexRows &rows) const;
    std::vector<IndexGroup> groupByColor(IndexRows &rows) const;
    std::vector<IndexGroup> groupBySize(IndexRows &rows) const;
    std::vector<quint8> vectorExtensions() const; // by position among the extensions: 1 for vector graphics
    quint32 sizesOf(quint32 row, const std::vector<quint8> &isVector) const; // a bit for each class

    std::vector<IndexCount> countSidebar(IndexFacet facet, const ZQRowSet &rows) const;
    std::vector<IndexCount> countMonths(const ZQRowSet &rows) const;

    const LibraryColumns &m_columns;
    SizeClasses::Limits m_sizes;
};
