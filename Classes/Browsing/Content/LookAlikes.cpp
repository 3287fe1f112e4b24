#include "Classes/Browsing/Content/LookAlikes.h"

#include "Kit/Imaging/ZQPictureHash.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr qsizetype itemsPerReading = 16; // changes of the index wait meanwhile
constexpr qsizetype mostOthers = 8;       // the nearest may be copies of the same file

} // namespace

LookAlikes::LookAlikes(QList<ZQObjectID> arrived, qint64 mostComparisons)
    : m_arrived(std::move(arrived)), m_isArrived(m_arrived.begin(), m_arrived.end()), m_mostComparisons(mostComparisons)
{
}

bool LookAlikes::look(LibraryIndex &index, ZQManagedObjectContext &context, const std::function<bool()> &isWanted)
{
    if (!index.waitUntilCurrent()) {
        return false;
    }
    if (!isWorth(index)) {
        m_next = m_arrived.size();
    }
    while (m_next < m_arrived.size()) {
        const qsizetype end = std::min(m_next + itemsPerReading, m_arrived.size());
        QList<Candidate> candidates;
        {
            const auto reading = index.read();
            if (!reading) {
                return false;
            }
            for (qsizetype i = m_next; i < end; ++i) {
                compare(*reading, m_arrived.at(i), candidates);
            }
        }
        const QList<Pair> pairs = pairsOf(candidates, context);
        if (!isWanted()) {
            return false; // what was cut off in the middle finds less than there is
        }
        take(pairs);
        m_next = end;
    }
    return true;
}

bool LookAlikes::isWorth(const LibraryIndex &index) const
{
    const auto reading = index.read();
    if (!reading) {
        return true; // which is told then
    }
    const size_t all = reading->active().count();
    const bool isFirst = all == reading->rowsOf(m_arrived).count();
    return !isFirst && qint64(all) * m_arrived.size() <= m_mostComparisons;
}

void LookAlikes::compare(const LibraryIndex::Reading &reading, const ZQObjectID &item,
                         QList<Candidate> &candidates) const
{
    const auto hash = reading.pictureHash(item);
    if (!hash) {
        return;
    }
    const int farthest = ZQPictureHash::alikeDistanceAmong(qint64(reading.active().count()));
    // So many that those that came with it cannot keep the others out.
    const auto limit = static_cast<size_t>(m_arrived.size() + mostOthers);
    Candidate candidate{.item = item, .others = {}};
    for (const auto &[other, distance] : reading.similar(*hash, limit, farthest)) {
        if (!m_isArrived.contains(other) && candidate.others.size() < mostOthers) {
            candidate.others.append(other);
        }
    }
    if (!candidate.others.isEmpty()) {
        candidates.append(std::move(candidate));
    }
}

QList<LookAlikes::Pair> LookAlikes::pairsOf(const QList<Candidate> &candidates, ZQManagedObjectContext &context)
{
    QList<Pair> pairs;
    for (const Candidate &candidate : candidates) {
        const auto items = ZQLibraryBaseItem::itemsWithIDs(QList{candidate.item} + candidate.others, context);
        if (items.isEmpty() || items.first()->objectID() != candidate.item) {
            continue; // deleted meanwhile
        }
        const QString digest = items.first()->SHA1();
        const auto other = std::find_if(items.begin() + 1, items.end(), [&digest](const auto &each) {
            return each->active() && (digest.isEmpty() || each->SHA1() != digest);
        });
        if (other != items.end()) {
            pairs.append({candidate.item, (*other)->objectID()});
        }
    }
    return pairs;
}

void LookAlikes::take(const QList<Pair> &pairs)
{
    for (const auto &[item, before] : pairs) {
        m_found.append(item);
        if (!m_before.contains(before)) {
            m_before.append(before);
        }
    }
}
