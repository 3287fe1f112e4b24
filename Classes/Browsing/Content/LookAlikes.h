#pragma once

#include "Classes/Browsing/Index/LibraryIndex.h"

#include <QSet>

#include <functional>
#include <utility>

// Which of the items that just came look like one that was there before, beside plain copies of the same file, which
// were asked about. A pass over the index for each; may be cut off and goes on with the next call. Where nothing was
// there before, or it would take longer than a notice is worth, nothing is found. One thread at a time.
class LookAlikes
{
public:
    // Of two pictures each; the usual number takes a minute of one processor.
    explicit LookAlikes(QList<ZQObjectID> arrived, qint64 mostComparisons = 20'000'000'000);

    // On the context's thread. True once all were looked at; false when `isWanted` said no, or the index or the store
    // cannot be read.
    bool look(LibraryIndex &index, ZQManagedObjectContext &context, const std::function<bool()> &isWanted);

    const QList<ZQObjectID> &arrived() const { return m_found; } // those of them, in their order
    const QList<ZQObjectID> &before() const { return m_before; } // which they look like, each once

private:
    struct Candidate
    {
        ZQObjectID item;
        QList<ZQObjectID> others; // the nearest first
    };
    bool isWorth(const LibraryIndex &index) const;
    void compare(const LibraryIndex::Reading &reading, const ZQObjectID &item, QList<Candidate> &candidates) const;
    using Pair = std::pair<ZQObjectID, ZQObjectID>; // the item, and the one before that it looks like
    static QList<Pair> pairsOf(const QList<Candidate> &candidates, ZQManagedObjectContext &context);
    void take(const QList<Pair> &pairs);

    const QList<ZQObjectID> m_arrived;
    const QSet<ZQObjectID> m_isArrived;
    const qint64 m_mostComparisons;
    qsizetype m_next = 0;
    QList<ZQObjectID> m_found;
    QList<ZQObjectID> m_before;
};
