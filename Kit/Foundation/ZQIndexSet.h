#pragma once

#include <QList>

#include <utility>

// A set of indexes kept as ranges, so that everything of a million items is one entry.
// Membership is logarithmic in the number of ranges; changing a range is linear in it.
class ZQIndexSet
{
public:
    struct Range
    {
        qint64 first;
        qint64 last; // included
        bool operator==(const Range &) const = default;
    };

    ZQIndexSet() = default;
    ZQIndexSet(qint64 first, qint64 last) { insert(first, last); }

    bool isEmpty() const { return m_ranges.isEmpty(); }
    qint64 count() const { return m_count; }
    bool contains(qint64 index) const;
    qint64 first() const { return m_ranges.isEmpty() ? -1 : m_ranges.first().first; }
    qint64 last() const { return m_ranges.isEmpty() ? -1 : m_ranges.last().last; }
    QList<Range> ranges() const { return m_ranges; } // shared, not copied
    QList<qint64> indexes(qint64 atMost = -1) const; // ascending

    void clear();
    void insert(qint64 first, qint64 last); // nothing when last < first
    void insert(qint64 index) { insert(index, index); }
    void remove(qint64 first, qint64 last);
    void remove(qint64 index) { remove(index, index); }
    void toggle(qint64 index);
    void toggle(const ZQIndexSet &others);
    void unite(const ZQIndexSet &others);

    bool operator==(const ZQIndexSet &other) const { return m_ranges == other.m_ranges; }

private:
    QList<Range> m_ranges; // ascending, apart by at least one index
    qint64 m_count = 0;
};
