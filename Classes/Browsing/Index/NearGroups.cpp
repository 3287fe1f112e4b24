#include "Classes/Browsing/Index/NearGroups.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQPages.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace {

constexpr int partCount = 16;
constexpr int mostDiffering = 2; // bits of a part: with each more, five times as much is compared
constexpr int partBits = ZQPictureHash::bitCount / partCount;
constexpr size_t bucketCount = size_t(1) << partBits;
constexpr quint32 blockBuckets = 16; // those whose values differ in the lowest bits only
constexpr quint32 blockCount = bucketCount / blockBuckets;
constexpr double workOfPairs = 0.95; // of all
constexpr size_t comparisonsBetweenLooks = size_t(1) << 22;

// Every sixteenth bit: neighbouring bits of a hash say much the same, and would leave a part few different values.
quint32 partOf(const HashWords &hash, int part)
{
    constexpr quint64 every16th = 0x0001000100010001;
    constexpr quint64 gather = (quint64(1) << 48) | (quint64(1) << 33) | (quint64(1) << 18) | (quint64(1) << 3);
    quint32 result = 0;
    for (const quint64 word : hash) {
        result = result << 4 | quint32((((word >> part) & every16th) * gather) >> 48 & 0xF);
    }
    return result;
}

// In what the numbers of blocks may differ.
std::vector<quint32> masksWithin(int bits)
{
    std::vector<quint32> masks;
    for (quint32 mask = 0; mask < blockCount; ++mask) {
        if (std::popcount(mask) <= bits) {
            masks.push_back(mask);
        }
    }
    return masks;
}

class Joined
{
public:
    explicit Joined(size_t count) : m_fathers(count) { std::iota(m_fathers.begin(), m_fathers.end(), 0U); }
    quint32 root(quint32 place)
    {
        while (m_fathers[place] != place) {
            m_fathers[place] = m_fathers[m_fathers[place]];
            place = m_fathers[place];
        }
        return place;
    }
    void join(quint32 a, quint32 b)
    {
        const quint32 x = root(a);
        const quint32 y = root(b);
        m_fathers[std::max(x, y)] = std::min(x, y);
    }

private:
    ZQPagedVector<quint32> m_fathers;
};

class Search
{
public:
    Search(std::span<const HashWords> hashes, int farthest, const NearGroups::Progress &progress, size_t fewHashes)
        : m_hashes(hashes), m_farthest(farthest), m_progress(progress), m_fewHashes(fewHashes), m_joined(0)
    {
    }
    std::optional<NearGroups::Groups> groups();

private:
    struct Bucket
    {
        size_t first;
        std::span<const HashWords> hashes;
    };

    void gatherEqual();
    bool joinEach();
    bool joinByPart(int part);
    void sortByPart(int part);
    bool joinBlocks(quint32 a, quint32 b, int differing);
    bool joinBuckets(const Bucket &a, const Bucket &b);
    Bucket bucket(quint32 value) const
    {
        const size_t first = m_starts[value];
        return {first, std::span(m_sorted).subspan(first, m_starts[value + 1] - first)};
    }
    bool holds(quint32 block) const
    {
        return m_starts[size_t(block) * blockBuckets] != m_starts[(size_t(block) + 1) * blockBuckets];
    }
    bool cutAll(NearGroups::Groups &groups);
    bool cut(std::vector<quint32> linked, NearGroups::Groups &groups);
    void addGroup(const std::vector<quint32> &different, NearGroups::Groups &groups) const;
    bool orderByNeighbours(std::vector<quint32> &linked, const std::vector<HashWords> &hashes);
    bool isStopped(size_t comparisons);
    void report(double done) const
    {
        if (m_progress) {
            m_progress(done);
        }
    }

    std::span<const HashWords> m_hashes;
    int m_farthest;
    const NearGroups::Progress &m_progress;
    size_t m_fewHashes;
    // Different hashes, and the places of those that have each.
    ZQPagedVector<quint32> m_places;
    ZQPagedVector<quint32> m_firsts; // among the places; with the end
    Joined m_joined;                 // different hashes
    // In the order of one of their parts.
    ZQPagedVector<HashWords> m_sorted;
    ZQPagedVector<quint32> m_order;
    std::vector<quint32> m_starts;
    std::vector<quint32> m_found;
    HashPairs m_pairs;
    size_t m_comparisons = 0;

    size_t differentCount() const { return m_firsts.size() - 1; }
    const HashWords &hash(quint32 different) const { return m_hashes[m_places[m_firsts[different]]]; }
};

// Hundreds of one picture are compared as one.
void Search::gatherEqual()
{
    m_places.resize(m_hashes.size());
    std::iota(m_places.begin(), m_places.end(), 0U);
    std::sort(m_places.begin(), m_places.end(),
              [this](quint32 a, quint32 b) { return m_hashes[a] != m_hashes[b] ? m_hashes[a] < m_hashes[b] : a < b; });
    for (size_t i = 0; i < m_places.size(); ++i) {
        if (i == 0 || m_hashes[m_places[i]] != m_hashes[m_places[i - 1]]) {
            m_firsts.push_back(quint32(i));
        }
    }
    m_firsts.push_back(quint32(m_places.size()));
    m_joined = Joined(differentCount());
}

bool Search::isStopped(size_t comparisons)
{
    m_comparisons += comparisons;
    if (m_comparisons < comparisonsBetweenLooks) {
        return false;
    }
    m_comparisons = 0;
    return ZQCancellation::isCurrentCancelled();
}

void Search::sortByPart(int part)
{
    const size_t count = differentCount();
    ZQPagedVector<quint16> values(count);
    m_starts.assign(bucketCount + 1, 0);
    for (size_t i = 0; i < count; ++i) {
        values[i] = quint16(partOf(hash(quint32(i)), part));
        ++m_starts[values[i] + size_t(1)];
    }
    std::partial_sum(m_starts.begin(), m_starts.end(), m_starts.begin());
    std::vector<quint32> next(m_starts.begin(), m_starts.end() - 1);
    m_sorted.resize(count);
    m_order.resize(count);
    for (size_t i = 0; i < count; ++i) {
        const quint32 place = next[values[i]]++;
        m_sorted[place] = hash(quint32(i));
        m_order[place] = quint32(i);
    }
}

bool Search::joinBuckets(const Bucket &a, const Bucket &b)
{
    constexpr size_t mostPairs = size_t(1) << 22; // that may all be found
    const size_t atOnce = std::max<size_t>(1, mostPairs / (b.hashes.size() + 1));
    for (size_t first = 0; first < a.hashes.size(); first += atOnce) {
        const auto some = a.hashes.subspan(first, std::min(atOnce, a.hashes.size() - first));
        // Within one bucket each pair comes once, but for those of one part, and each hash with itself.
        const size_t skipped = a.first == b.first ? first : 0;
        m_pairs.clear();
        zqAddNearPairs(some, b.hashes.subspan(skipped), m_farthest, m_pairs);
        for (const auto &[own, other] : m_pairs) {
            m_joined.join(m_order[a.first + first + own], m_order[b.first + skipped + other]);
        }
        if (isStopped(some.size() * b.hashes.size())) {
            return false;
        }
    }
    return true;
}

// What differs in the lowest bits lies side by side: buckets are compared by blocks of them, which stay in the cache.
bool Search::joinBlocks(quint32 a, quint32 b, int differing)
{
    for (quint32 i = 0; i < blockBuckets; ++i) {
        const Bucket own = bucket(a * blockBuckets + i);
        for (quint32 j = a == b ? i : 0; j < blockBuckets && !own.hashes.empty(); ++j) {
            if (std::popcount(i ^ j) <= differing && !joinBuckets(own, bucket(b * blockBuckets + j))) {
                return false;
            }
        }
    }
    return true;
}

bool Search::joinByPart(int part)
{
    // When every part of two hashes differed in more than this, they would differ in more than `farthest` bits.
    const int needed = m_farthest / partCount - (part <= m_farthest % partCount ? 0 : 1);
    const int differing = std::min(needed, mostDiffering);
    if (differing < 0) {
        return true;
    }
    sortByPart(part);
    const std::vector<quint32> masks = masksWithin(differing);
    for (quint32 block = 0; block < blockCount; ++block) {
        for (const quint32 mask : masks) {
            const quint32 other = block ^ mask;
            const bool isWorth = other >= block && holds(block) && holds(other);
            if (isWorth && !joinBlocks(block, other, differing - std::popcount(mask))) {
                return false;
            }
        }
        if (block % 64 == 0) {
            report(workOfPairs * (part + double(block) / blockCount) / partCount);
        }
    }
    return true;
}

void Search::addGroup(const std::vector<quint32> &different, NearGroups::Groups &groups) const
{
    std::vector<quint32> group;
    for (const quint32 each : different) {
        group.insert(group.end(), m_places.begin() + m_firsts[each], m_places.begin() + m_firsts[each + 1]);
    }
    if (group.size() > 1) {
        std::sort(group.begin() + 1, group.end());
        groups.push_back(std::move(group));
    }
}

// Those first that have the most others within the distance; of equal ones the first stays first.
bool Search::orderByNeighbours(std::vector<quint32> &linked, const std::vector<HashWords> &hashes)
{
    std::vector<std::pair<size_t, quint32>> counted;
    for (size_t i = 0; i < linked.size(); ++i) {
        m_found.clear();
        zqAddNear(hashes[i], hashes, m_farthest, m_found);
        size_t pictures = 0;
        for (const quint32 found : m_found) {
            pictures += m_firsts[linked[found] + 1] - m_firsts[linked[found]];
        }
        counted.emplace_back(pictures, linked[i]);
        if (isStopped(linked.size())) {
            return false;
        }
    }
    std::stable_sort(counted.begin(), counted.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    std::transform(counted.begin(), counted.end(), linked.begin(), [](const auto &each) { return each.second; });
    return true;
}

bool Search::cut(std::vector<quint32> linked, NearGroups::Groups &groups)
{
    constexpr size_t mostCounted = 4096; // of more, the order they came in has to do
    const auto hashesOf = [this](const std::vector<quint32> &list) {
        std::vector<HashWords> result;
        result.reserve(list.size());
        std::transform(list.begin(), list.end(), std::back_inserter(result),
                       [this](quint32 each) { return hash(each); });
        return result;
    };
    if (linked.size() > 2 && linked.size() <= mostCounted && !orderByNeighbours(linked, hashesOf(linked))) {
        return false;
    }
    std::vector<HashWords> hashes = hashesOf(linked);
    while (!linked.empty()) {
        if (isStopped(linked.size())) {
            return false;
        }
        m_found.clear();
        zqAddNear(hashes.front(), hashes, m_farthest, m_found);
        std::vector<quint32> group;
        size_t next = 0;
        size_t kept = 0;
        for (size_t i = 0; i < linked.size(); ++i) {
            if (next < m_found.size() && m_found[next] == i) {
                group.push_back(linked[i]);
                ++next;
            } else {
                linked[kept] = linked[i];
                hashes[kept++] = hashes[i];
            }
        }
        linked.resize(kept);
        hashes.resize(kept);
        addGroup(group, groups);
    }
    return true;
}

bool Search::cutAll(NearGroups::Groups &groups)
{
    const auto count = quint32(differentCount());
    ZQPagedVector<quint32> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::vector<quint32> roots(count);
    for (quint32 i = 0; i < count; ++i) {
        roots[i] = m_joined.root(i);
    }
    std::stable_sort(order.begin(), order.end(), [&roots](quint32 a, quint32 b) { return roots[a] < roots[b]; });
    for (size_t first = 0; first < count;) { // most hang together with nothing
        size_t end = first + 1;
        while (end < count && roots[order[end]] == roots[order[first]]) {
            ++end;
        }
        if (!cut({order.begin() + qsizetype(first), order.begin() + qsizetype(end)}, groups)) {
            return false;
        }
        first = end;
    }
    return true;
}

// Of few it is quicker to look at each pair than at each bucket; by blocks, which stay in the cache.
bool Search::joinEach()
{
    const size_t count = differentCount();
    const size_t block = std::clamp<size_t>(count / 128, 16, 1024);
    m_order.resize(count);
    std::iota(m_order.begin(), m_order.end(), 0U);
    std::transform(m_order.begin(), m_order.end(), std::back_inserter(m_sorted),
                   [this](quint32 each) { return hash(each); });
    const auto blockAt = [&](size_t first) {
        return Bucket{first, std::span(m_sorted).subspan(first, std::min(block, count - first))};
    };
    for (size_t own = 0; own < count; own += block) {
        for (size_t other = own; other < count; other += block) {
            if (!joinBuckets(blockAt(own), blockAt(other))) {
                return false;
            }
        }
        if (ZQCancellation::isCurrentCancelled()) {
            return false;
        }
        const double left = 1 - double(std::min(count, own + block)) / double(count); // of the rows, and of each row
        report(workOfPairs * (1 - left * left));
    }
    return true;
}

std::optional<NearGroups::Groups> Search::groups()
{
    gatherEqual();
    const bool isFew = differentCount() <= m_fewHashes;
    for (int part = 0; part < partCount && !isFew; ++part) {
        if (ZQCancellation::isCurrentCancelled() || !joinByPart(part)) {
            return std::nullopt;
        }
    }
    if (ZQCancellation::isCurrentCancelled() || (isFew && !joinEach())) {
        return std::nullopt;
    }
    ZQPagedVector<HashWords>().swap(m_sorted);
    NearGroups::Groups groups;
    if (!cutAll(groups)) {
        return std::nullopt;
    }
    const auto smallest = [](const std::vector<quint32> &group) { return std::min(group[0], group[1]); };
    std::sort(groups.begin(), groups.end(), [&](const auto &a, const auto &b) { return smallest(a) < smallest(b); });
    report(1);
    return groups;
}

} // namespace

std::optional<NearGroups::Groups> NearGroups::of(std::span<const HashWords> hashes, int farthest,
                                                 const Progress &progress, size_t fewHashes)
{
    return Search(hashes, farthest, progress, fewHashes).groups();
}
