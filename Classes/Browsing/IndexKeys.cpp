#include "Classes/Browsing/IndexKeys.h"

#include <algorithm>

std::optional<quint32> IndexKeys::rowOf(qint64 key) const
{
    const auto end = m_keys.begin() + qsizetype(m_ascending);
    const auto found = std::lower_bound(m_keys.begin(), end, key);
    if (found != end && *found == key) {
        return quint32(found - m_keys.begin());
    }
    const auto other = m_others.constFind(key);
    return other == m_others.cend() ? std::nullopt : std::optional(*other);
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
