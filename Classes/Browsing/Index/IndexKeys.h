#pragma once

#include "Kit/Foundation/ZQPages.h"

#include <QHash>

#include <optional>

// The keys of rows, and the way back. Keys that come in ascending order, as nearly all do, cost nothing but themselves.
class IndexKeys
{
public:
    size_t size() const { return m_keys.size(); }
    qint64 operator[](size_t row) const { return m_keys[row]; }
    const ZQPagedVector<qint64> &all() const { return m_keys; }

    std::optional<quint32> rowOf(qint64 key) const;
    quint32 append(qint64 key); // one that is not in it
    void reserve(size_t rows) { m_keys.reserve(rows); }
    void appendAll(const IndexKeys &other); // all of other keys
    void shrink() { zqShrink(m_keys); }
    size_t bytes() const { return m_keys.capacity() * sizeof(qint64) + size_t(m_others.capacity()) * 24; }

private:
    ZQPagedVector<qint64> m_keys;
    size_t m_ascending = 0;          // the first so many are in order
    QHash<qint64, quint32> m_others; // the rest
};
