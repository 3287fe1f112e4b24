#pragma once

#include "Kit/Foundation/ZQPages.h"
#include "Kit/Persistence/ZQTextBlocks.h"

#include <QHash>

// The places of titles in the order of a person, so that sorting by title compares numbers.
class IndexTitles
{
public:
    // Of all rows, on two threads. False when the thread's ZQCancellation was cancelled.
    bool build(const ZQTextBlocks &titles);
    // As `titles` will be once the rows among `changed` have their new ones, and with rows added up to `rows`.
    IndexTitles updated(const ZQTextBlocks &titles, const QHash<quint32, std::optional<std::string>> &changed,
                        size_t rows) const;

    // 0 for no title; titles that a person takes for the same have the same.
    quint32 rank(size_t row) const { return m_ranks[row]; }
    bool isBuilt() const { return m_isBuilt; }
    size_t size() const { return m_ranks.size(); }
    size_t bytes() const { return sizeof(quint32) * m_ranks.capacity(); }

private:
    ZQPagedVector<quint32> inOrder(const ZQRowSet &without) const; // by rank, then by row

    bool m_isBuilt = false;
    ZQPagedVector<quint32> m_ranks;
};
