#include "Kit/Foundation/ZQIndexSet.h"

#include <algorithm>

namespace {
bool endsBefore(const ZQIndexSet::Range &range, qint64 index)
{
    return range.last < index;
}
} // namespace

bool ZQIndexSet::contains(qint64 index) const
{
    const auto it = std::lower_bound(m_ranges.begin(), m_ranges.end(), index, endsBefore);
    return it != m_ranges.end() && it->first <= index;
}

QList<qint64> ZQIndexSet::indexes(qint64 atMost) const
{
    QList<qint64> result;
    const qint64 limit = atMost < 0 ? m_count : std::min(atMost, m_count);
    result.reserve(limit);
    for (const Range &range : m_ranges) {
        for (qint64 index = range.first; index <= range.last && result.size() < limit; ++index) {
            result.append(index);
        }
    }
    return result;
}

void ZQIndexSet::clear()
{
    m_ranges.clear();
    m_count = 0;
}

void ZQIndexSet::insert(qint64 first, qint64 last)
{
    if (last < first) {
        return;
    }
    auto begin = std::lower_bound(m_ranges.begin(), m_ranges.end(), first - 1, endsBefore);
    auto end = begin;
    while (end != m_ranges.end() && end->first <= last + 1) {
        first = std::min(first, end->first);
        last = std::max(last, end->last);
        m_count -= end->last - end->first + 1;
        ++end;
    }
    begin = m_ranges.erase(begin, end);
    m_ranges.insert(begin, Range{first, last});
    m_count += last - first + 1;
}

void ZQIndexSet::remove(qint64 first, qint64 last)
{
    if (last < first) {
        return;
    }
    auto it = std::lower_bound(m_ranges.begin(), m_ranges.end(), first, endsBefore);
    QList<Range> kept;
    auto end = it;
    while (end != m_ranges.end() && end->first <= last) {
        m_count -= std::min(last, end->last) - std::max(first, end->first) + 1;
        if (end->first < first) {
            kept.append({end->first, first - 1});
        }
        if (end->last > last) {
            kept.append({last + 1, end->last});
        }
        ++end;
    }
    qsizetype position = it - m_ranges.begin();
    m_ranges.erase(it, end);
    for (const Range &range : kept) {
        m_ranges.insert(position++, range);
    }
}

void ZQIndexSet::toggle(qint64 index)
{
    if (contains(index)) {
        remove(index);
    } else {
        insert(index);
    }
}

void ZQIndexSet::toggle(const ZQIndexSet &others)
{
    for (const Range &range : others.m_ranges) {
        ZQIndexSet both = *this;
        both.remove(0, range.first - 1);
        both.remove(range.last + 1, last());
        insert(range.first, range.last);
        for (const Range &common : both.m_ranges) {
            remove(common.first, common.last);
        }
    }
}

void ZQIndexSet::unite(const ZQIndexSet &others)
{
    for (const Range &range : others.m_ranges) {
        insert(range.first, range.last);
    }
}
