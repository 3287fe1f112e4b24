#pragma once

#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQRowSet.h"

#include <QHash>

#include <span>
#include <utility>
#include <vector>

// Which tags items carry, both ways: the tags of a row, and the rows of a tag, neither in an order.
class IndexTags
{
public:
    using Links = ZQPagedVector<std::pair<quint32, quint32>>; // row, tag

    void build(size_t rows, size_t tags, const Links &links);
    // Other lists for some rows; rows and tags beyond what there was are added.
    void set(const QHash<quint32, std::vector<quint32>> &lists, size_t rows, size_t tags);
    void removeTag(quint32 tag); // from all rows

    std::span<const quint32> tagsOf(size_t row) const
    {
        return std::span(m_pool).subspan(m_starts[row], m_counts[row]);
    }
    const std::vector<quint32> &rowsOf(size_t tag) const { return m_rowsOf[tag]; }
    size_t tagCount() const { return m_rowsOf.size(); }
    size_t bytes() const;

private:
    void write(quint32 row, const std::vector<quint32> &tags);
    void compact();

    ZQPagedVector<quint32> m_starts; // by row, into the pool
    ZQPagedVector<quint16> m_counts;
    ZQPagedVector<quint32> m_pool;
    size_t m_unused = 0; // in the pool
    std::vector<std::vector<quint32>> m_rowsOf;
};
