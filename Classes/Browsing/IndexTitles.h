#pragma once

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
    size_t bytes() const { return 4 * (m_ranks.capacity() + m_order.capacity()); }

private:
    bool m_isBuilt = false;
    std::vector<quint32> m_ranks;
    std::vector<quint32> m_order; // all rows, by rank
};
