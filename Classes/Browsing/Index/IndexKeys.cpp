#include "Classes/Browsing/Index/IndexKeys.h"

#include <algorithm>

// Keys ascend by one at least, so that a key is at most as far from the first as their difference says, and just there
// where none is missing. From there it is looked for backwards, in steps that double.
std::optional<quint32> IndexKeys::rowOf(qint64 key) const
{
    if (m_ascending > 0 && key >= m_keys.front()) {
        const quint64 farthest = std::min<quint64>(quint64(key) - quint64(m_keys.front()), m_ascending - 1);
        auto end = m_keys.begin() + qsizetype(farthest) + 1;
        auto first = end - 1;
        for (qsizetype step = 1; *first > key; step *= 2) { // not the first of all
            end = first;
            first -= std::min<qsizetype>(step, first - m_keys.begin());
        }
        const auto found = std::lower_bound(first, end, key);
        if (found != end && *found == key) {
            return quint32(found - m_keys.begin());
        }
    }
    const auto other = m_others.constFind(key);
    return other == m_others.cend() ? std::nullopt : std::optional(*other);
}

void IndexKeys::appendAll(const IndexKeys &other)
{
    reserve(size() + other.size());
    for (const qint64 key : other.m_keys) {
        append(key);
    }
}

quint32 IndexKeys::append(qint64 key)
{
    const auto row = quint32(m_keys.size());
    const bool isNext = m_ascending == m_keys.size() && (m_keys.empty() || m_keys.back() < key);
    m_keys.push_back(key);
    if (isNext) {
        ++m_ascending;
    } else {
        m_others.insert(key, row);
    }
    return row;
}
