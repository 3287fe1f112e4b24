#pragma once

#include "Kit/Persistence/ZQColumns.h"
#include "Kit/Persistence/ZQPredicateNode.h"

// A comparison of a key path with constants, over the one column that the path leads to.
class ZQColumnScan
{
public:
    // Whether only constants stand on the right, and a key path on the left.
    static bool isFor(const ZQComparison &comparison);
    // Whether the comparison looks at text as `folded` holds it.
    static bool looksAtFolded(const ZQComparison &comparison);

    explicit ZQColumnScan(const ZQComparison &comparison) : m_comparison(comparison) {}
    // Those of `among` for which the comparison holds, its modifier included. Nothing when cancelled.
    std::optional<ZQRowSet> rows(const ZQColumn &column, const ZQRowSet &among) const;

private:
    // Numbers from `low` to `high`, or those that are not.
    struct Range
    {
        qint64 low = 0;
        qint64 high = 0;
        bool isInverted = false;
    };

    bool holds(const ZQScalar &value) const;       // of a single value
    bool holdsFolded(const ZQScalar &value) const; // that is folded already
    std::optional<Range> range(bool isDate) const; // nothing when it is no matter of a range

    // Each marks the rows among `among` whose value holds; false when cancelled.
    bool mark(const ZQNumberColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    bool mark(const ZQFlagColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    bool mark(const ZQCodedColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    bool mark(const ZQTextColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    bool mark(const ZQDigests *column, const ZQRowSet &among, ZQRowSet &found) const;
    bool mark(const ZQObjectColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    bool markCounts(const ZQColumn &column, const ZQRowSet &among, ZQRowSet &found) const;
    std::optional<ZQRowSet> listRows(const ZQListColumn &column, const ZQRowSet &among) const;

    const ZQComparison &m_comparison;
};
