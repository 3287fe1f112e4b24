#pragma once

#include <QHash>

#include <optional>
#include <vector>

// The keys of rows, and the way back. Keys that come in ascending order, as nearly all do, cost nothing but themselves.
class IndexKeys
{
public:
    size_t size() const { return m_keys.size(); }
    qint64 operator[](size_t row) const { return m_keys[row]; }
    const std::vector<qint64> &all() const { return m_keys; }
    bool areAscending() const { return m_ascending == m_keys.size(); }

    std::optional<quint32> rowOf(qint64 key) const;
    quint32 append(qint64 key); // one that is not in it
    void reserve(size_t rows) { m_keys.reserve(rows); }
    void shrink() { m_keys.shrink_to_fit(); }
    size_t bytes() const { return m_keys.capacity() * sizeof(qint64) + size_t(m_others.capacity()) * 24; }

private:
    std::vector<qint64> m_keys;
    size_t m_ascending = 0;          // the first so many are in order
    QHash<qint64, quint32> m_others; // the rest
};
