#include "Classes/Browsing/Index/IndexTitles.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQCollator.h"

#include <algorithm>
#include <numeric>
#include <thread>

namespace {

struct Key
{
    quint64 start = 0; // its first bytes, the first one highest
    quint32 place = 0; // of the whole, in the pool of its part
    quint32 size = 0;
    quint32 row = 0;
    bool isNull = false;
};

// The rows from `first` to before `end`, by their titles.
struct Part
{
    ZQPagedVector<char> pool;
    ZQPagedVector<Key> keys;

    std::string_view whole(const Key &key) const { return {pool.data() + key.place, key.size}; }
    void make(const ZQTextBlocks &titles, size_t first, size_t end);
};

quint64 startOf(std::string_view bytes)
{
    quint64 start = 0;
    for (size_t i = 0; i < 8; ++i) {
        start = start << 8 | (i < bytes.size() ? quint8(bytes[i]) : 0U);
    }
    return start;
}

int compare(const Part &partA, const Key &a, const Part &partB, const Key &b)
{
    if (a.isNull != b.isNull) {
        return a.isNull ? -1 : 1;
    }
    if (a.start != b.start) {
        return a.start < b.start ? -1 : 1;
    }
    const int order = partA.whole(a).compare(partB.whole(b));
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

void Part::make(const ZQTextBlocks &titles, size_t first, size_t end)
{
    const ZQCollator collator; // of this thread
    std::string whole;
    keys.reserve(end - first);
    pool.reserve((end - first) * 24);
    for (size_t row = first; row < end; ++row) {
        Key key;
        key.row = quint32(row);
        key.place = quint32(pool.size());
        key.isNull = titles.isNull(row);
        whole.clear();
        collator.appendSortKey(titles.string(row), whole);
        pool.insert(pool.end(), whole.begin(), whole.end());
        key.size = quint32(whole.size());
        key.start = startOf(whole);
        keys.push_back(key);
    }
    std::sort(keys.begin(), keys.end(), [this](const Key &a, const Key &b) {
        const int order = compare(*this, a, *this, b);
        return order ? order < 0 : a.row < b.row;
    });
}

// What a row's title will be.
class FutureTitles
{
public:
    FutureTitles(const ZQTextBlocks &titles, const QHash<quint32, std::optional<std::string>> &changed)
        : m_titles(titles), m_changed(changed)
    {
    }
    std::optional<std::string_view> of(quint32 row) const
    {
        const auto changed = m_changed.constFind(row);
        if (changed != m_changed.cend()) {
            return *changed ? std::optional(std::string_view(**changed)) : std::nullopt;
        }
        return m_titles.isNull(row) ? std::nullopt : std::optional(m_titles.text(row));
    }
    int compare(quint32 a, quint32 b) const
    {
        const auto titleA = of(a);
        const auto titleB = of(b);
        if (!titleA || !titleB) {
            return int(titleA.has_value()) - int(titleB.has_value());
        }
        return ZQCollator::forThisThread().compareUTF8(*titleA, *titleB);
    }

private:
    const ZQTextBlocks &m_titles;
    const QHash<quint32, std::optional<std::string>> &m_changed;
};

} // namespace

bool IndexTitles::build(const ZQTextBlocks &titles)
{
    const size_t rows = titles.rowCount();
    Part parts[2];
    std::thread other([&] { parts[1].make(titles, rows / 2, rows); });
    parts[0].make(titles, 0, rows / 2);
    other.join();
    if (ZQCancellation::isCurrentCancelled()) {
        return false;
    }
    m_ranks.assign(rows, 0);
    size_t places[2] = {0, 0};
    quint32 rank = 0;
    std::pair<int, size_t> before{-1, 0};
    for (size_t ranked = 0; ranked < rows; ++ranked) {
        const bool isFirst = places[1] == parts[1].keys.size() ||
                             (places[0] < parts[0].keys.size() &&
                              compare(parts[0], parts[0].keys[places[0]], parts[1], parts[1].keys[places[1]]) <= 0);
        const int part = isFirst ? 0 : 1;
        const Key &key = parts[part].keys[places[part]];
        const bool isSame = before.first >= 0 && compare(parts[before.first], parts[before.first].keys[before.second],
                                                         parts[part], key) == 0;
        rank += isSame ? 0 : 1;
        m_ranks[key.row] = key.isNull ? 0 : rank;
        before = {part, places[part]++};
    }
    m_isBuilt = true;
    return true;
}

ZQPagedVector<quint32> IndexTitles::inOrder(const ZQRowSet &without) const
{
    const quint32 highest = m_ranks.empty() ? 0 : *std::max_element(m_ranks.begin(), m_ranks.end());
    ZQPagedVector<quint32> ends(size_t(highest) + 1, 0);
    for (size_t row = 0; row < m_ranks.size(); ++row) {
        ends[m_ranks[row]] += without.contains(row) ? 0 : 1;
    }
    std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), quint32(0));
    ZQPagedVector<quint32> order(m_ranks.size());
    size_t count = 0;
    for (size_t row = 0; row < m_ranks.size(); ++row) {
        if (!without.contains(row)) {
            order[ends[m_ranks[row]]++] = quint32(row);
            ++count;
        }
    }
    order.resize(count);
    return order;
}

IndexTitles IndexTitles::updated(const ZQTextBlocks &titles, const QHash<quint32, std::optional<std::string>> &changed,
                                 size_t rows) const
{
    const FutureTitles future(titles, changed);
    std::vector<quint32> moved;
    ZQRowSet isChanged(rows);
    for (auto entry = changed.cbegin(); entry != changed.cend(); ++entry) {
        moved.push_back(entry.key());
        isChanged.insert(entry.key());
    }
    std::sort(moved.begin(), moved.end(), [&future](quint32 a, quint32 b) {
        const int order = future.compare(a, b);
        return order ? order < 0 : a < b;
    });
    const ZQPagedVector<quint32> kept = inOrder(isChanged);
    ZQPagedVector<quint32> order;
    order.reserve(rows);
    auto from = kept.begin();
    for (const quint32 row : moved) {
        const auto place = std::upper_bound(from, kept.end(), row,
                                            [&future](quint32 a, quint32 b) { return future.compare(a, b) < 0; });
        order.insert(order.end(), from, place);
        order.push_back(row);
        from = place;
    }
    order.insert(order.end(), from, kept.end());
    IndexTitles result;
    result.m_ranks.assign(rows, 0);
    result.m_isBuilt = true;
    quint32 rank = 0;
    for (size_t i = 0; i < order.size(); ++i) {
        const quint32 row = order[i];
        const quint32 before = i ? order[i - 1] : row;
        const bool areOld = !isChanged.contains(row) && !isChanged.contains(before);
        const bool isSame = i && (areOld ? m_ranks[row] == m_ranks[before] : future.compare(row, before) == 0);
        rank += isSame ? 0 : 1;
        const bool isNull = isChanged.contains(row) ? !future.of(row) : titles.isNull(row);
        result.m_ranks[row] = isNull ? 0 : rank;
    }
    return result;
}
