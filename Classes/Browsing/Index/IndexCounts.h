#pragma once

#include "Classes/Browsing/Index/IndexRows.h"
#include "Classes/Browsing/Index/LibraryColumns.h"
#include "Classes/Browsing/Index/SizeClasses.h"

// Counts what rows have in common, in one pass over them each.
class IndexCounts
{
public:
    IndexCounts(const LibraryColumns &columns, const SizeClasses::Limits &sizes) : m_columns(columns), m_sizes(sizes) {}

    std::vector<IndexCount> counts(IndexFacet facet, const ZQRowSet &rows) const;

    std::vector<qint64> importedBetween(const std::vector<qint64> &bounds, const ZQRowSet &rows) const;
    QStringList repeatedDigests(const ZQRowSet &rows) const;

private:
    std::vector<quint8> vectorExtensions() const; // by position among the extensions: 1 for vector graphics
    quint32 sizesOf(quint32 row,
                    const std::vector<quint8> &isVector) const; // a bit for each class, as SizeClasses::keys

    std::vector<IndexCount> countSidebar(IndexFacet facet, const ZQRowSet &rows) const;

    const LibraryColumns &m_columns;
    SizeClasses::Limits m_sizes;
};
