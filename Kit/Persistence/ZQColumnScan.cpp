#include "Kit/Persistence/ZQColumnScan.h"

#include "Kit/Persistence/ZQPredicateComparing.h"
#include "Kit/Persistence/ZQRowLoop.h"
#include "Kit/Persistence/ZQTextScan.h"

#include <bitset>
#include <cstring>
#include <limits>
#include <unordered_set>

using Op = ZQComparisonOperator;

namespace {

// For expressions that are constants.
struct NoSubject
{
    template <class Visit>
    bool visit(const QStringList &, const Visit &) const
    {
        return false;
    }
    ZQScalar count(const QStringList &) const { return {}; }
};

bool isConstant(const ZQExpression &expression)
{
    return expression.kind == ZQExpression::Kind::Constant || expression.isListOfConstants();
}

std::optional<qint64> numberOf(const ZQScalar &value, bool isDate)
{
    if (const ZQDateValue *date = std::get_if<ZQDateValue>(&value); date && isDate) {
        return date->milliseconds;
    }
    const qint64 *number = std::get_if<qint64>(&value);
    return number && !isDate ? std::optional(*number) : std::nullopt;
}

ZQScalar scalarOf(qint64 number, bool isDate)
{
    return isDate ? ZQScalar(ZQDateValue{number}) : ZQScalar(number);
}

// Digests to look for; a few bits say no for nearly all others.
struct WantedDigests
{
    struct Hash
    {
        size_t operator()(const ZQDigests::Digest &digest) const { return ZQDigests::hashOf(digest); }
    };
    std::unordered_set<ZQDigests::Digest, Hash> digests;
    std::bitset<65536> starts;

    static size_t start(const ZQDigests::Digest &digest) { return ZQDigests::hashOf(digest) >> 48; }
    void add(const ZQScalar &value)
    {
        const QString *text = std::get_if<QString>(&value);
        const QByteArray bytes = text ? text->toUtf8() : QByteArray();
        if (const auto digest = ZQDigests::digestOf({bytes.constData(), size_t(bytes.size())})) {
            digests.insert(*digest);
            starts.set(start(*digest));
        }
    }
    bool has(const ZQDigests::Digest &digest) const { return starts[start(digest)] && digests.contains(digest); }
};

} // namespace

bool ZQColumnScan::isFor(const ZQComparison &comparison)
{
    return comparison.left.kind == ZQExpression::Kind::KeyPath && isConstant(comparison.right);
}

bool ZQColumnScan::looksAtFolded(const ZQComparison &comparison)
{
    // Whether there is a text at all, any form tells.
    const bool isAboutNull =
        comparison.right.kind == ZQExpression::Kind::Constant && zqIsNull(comparison.right.constant);
    return isAboutNull || (comparison.options.caseInsensitive && comparison.options.diacriticInsensitive &&
                           comparison.op != Op::Matches);
}

bool ZQColumnScan::holds(const ZQScalar &value) const
{
    return holdsFolded(zqFoldedFor(value, m_comparison.op, m_comparison.options));
}

bool ZQColumnScan::holdsFolded(const ZQScalar &value) const
{
    return zqComparesLeft(m_comparison, value, NoSubject());
}

std::optional<ZQColumnScan::Range> ZQColumnScan::range(bool isDate) const
{
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    constexpr qint64 highest = std::numeric_limits<qint64>::max();
    constexpr Range none{1, 0, false};
    if (m_comparison.op == Op::Between) {
        const auto low = numberOf(m_comparison.right.elements[0].constant, isDate);
        const auto high = numberOf(m_comparison.right.elements[1].constant, isDate);
        return low && high ? std::optional(Range{*low, *high, false}) : std::nullopt;
    }
    const auto number = m_comparison.right.kind == ZQExpression::Kind::Constant
                            ? numberOf(m_comparison.foldedRight, isDate)
                            : std::nullopt;
    if (!number) {
        return std::nullopt;
    }
    switch (m_comparison.op) {
    case Op::Equal:
        return Range{*number, *number, false};
    case Op::NotEqual:
        return Range{*number, *number, true};
    case Op::LessOrEqual:
        return Range{lowest, *number, false};
    case Op::GreaterOrEqual:
        return Range{*number, highest, false};
    case Op::Less:
        return *number == lowest ? none : Range{lowest, *number - 1, false};
    case Op::Greater:
        return *number == highest ? none : Range{*number + 1, highest, false};
    default:
        return std::nullopt;
    }
}

bool ZQColumnScan::mark(const ZQNumberColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    const bool nullHolds = holds(ZQScalar());
    const std::optional<Range> wanted = range(column.isDate);
    const bool isMarked = std::visit(
        [&](const auto &values) {
            if (wanted) {
                const Range range = *wanted;
                return zqMarkWhere(among, found, [values, range](size_t row) {
                    const qint64 value = values[row];
                    return ((value >= range.low) & (value <= range.high)) != range.isInverted;
                });
            }
            return zqMarkWhere(among, found, [&](size_t row) { return holds(scalarOf(values[row], column.isDate)); });
        },
        column.values);
    if (isMarked && column.nulls) {
        ZQRowSet nulls = *column.nulls;
        nulls &= among;
        nullHolds ? found |= nulls : found -= nulls;
    }
    return isMarked;
}

bool ZQColumnScan::mark(const ZQFlagColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    const quint64 yes = holds(ZQScalar(qint64(1))) ? ~quint64(0) : 0;
    const quint64 no = holds(ZQScalar(qint64(0))) ? ~quint64(0) : 0;
    const quint64 nothing = holds(ZQScalar()) ? ~quint64(0) : 0;
    for (size_t i = 0; i < among.words().size(); ++i) {
        const quint64 flags = column.rows->words()[i];
        const quint64 nulls = column.nulls ? column.nulls->words()[i] : 0;
        const quint64 values = (flags & yes) | (~flags & no);
        found.words()[i] = among.words()[i] & ((values & ~nulls) | (nothing & nulls));
    }
    return true;
}

bool ZQColumnScan::mark(const ZQCodedColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    std::vector<quint8> holding;
    holding.reserve(column.values.size());
    for (const ZQScalar &value : column.values) {
        holding.push_back(holds(value));
    }
    return std::visit(
        [&](const auto &codes) {
            return zqMarkWhere(among, found, [&holding, codes](size_t row) { return holding[codes[row]] != 0; });
        },
        column.codes);
}

bool ZQColumnScan::mark(const ZQTextColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    const bool isFolded = column.folded && looksAtFolded(m_comparison);
    const ZQTextBlocks &texts = isFolded ? *column.folded : *column.exact;
    const bool isReady = isFolded || !m_comparison.options.any() || m_comparison.op == Op::Matches;
    const QString *other = std::get_if<QString>(&m_comparison.foldedRight);
    const bool isOne = m_comparison.right.kind == ZQExpression::Kind::Constant && other;
    if (isReady && isOne && zqHasTextScan(m_comparison.op)) {
        return zqMarkTexts(m_comparison.op, *other, texts, among, found);
    }
    return zqMarkWhere(among, found, [&](size_t row) {
        const ZQScalar value = texts.isNull(row) ? ZQScalar() : ZQScalar(texts.string(row));
        return isReady ? holdsFolded(value) : holds(value);
    });
}

bool ZQColumnScan::mark(const ZQDigests *column, const ZQRowSet &among, ZQRowSet &found) const
{
    const bool isOne = m_comparison.right.kind == ZQExpression::Kind::Constant && m_comparison.op == Op::Equal;
    if (!isOne && !m_comparison.set) {
        return zqMarkWhere(among, found, [&](size_t row) {
            return holds(column->isNull(row) ? ZQScalar() : ZQScalar(column->string(row)));
        });
    }
    const auto wanted = std::make_unique<WantedDigests>();
    if (isOne) {
        wanted->add(m_comparison.foldedRight);
    } else {
        for (const ZQScalar &value : *m_comparison.set) {
            wanted->add(value);
        }
    }
    const bool nullHolds = holds(ZQScalar());
    return zqMarkWhere(among, found, [&](size_t row) {
        if (column->isNull(row)) {
            return nullHolds;
        }
        return column->isOther(row) ? holds(ZQScalar(column->string(row))) : wanted->has(column->digests()[row]);
    });
}

bool ZQColumnScan::mark(const ZQObjectColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    return zqMarkWhere(among, found, [&](size_t row) {
        return holds(ZQScalar(ZQObjectID{column.entity, column.keys[row]}));
    });
}

bool ZQColumnScan::markCounts(const ZQColumn &column, const ZQRowSet &among, ZQRowSet &found) const
{
    const auto *list = std::get_if<std::shared_ptr<const ZQListColumn>>(&column);
    if (!list) {
        const bool none = holds(ZQScalar(qint64(0)));
        const bool one = holds(ZQScalar(qint64(1)));
        return zqMarkWhere(among, found,
                           [&](size_t row) { return zqIsNull(zqColumnScalar(column, row)) ? none : one; });
    }
    ZQRowSet withNulls(among.rowCount()); // which are not counted
    for (size_t element = 0; element < (*list)->elementCount(); ++element) {
        if (zqIsNull((*list)->element(element))) {
            (*list)->addRows(element, withNulls);
        }
    }
    const bool countsAll = withNulls.isEmpty();
    std::vector<quint32> sizes(among.rowCount(), 0);
    if (countsAll) {
        (*list)->addSizes(sizes);
    } else {
        among.forEach([&](size_t row) {
            (*list)->visit(row, [&](size_t element) {
                sizes[row] += zqIsNull((*list)->element(element)) ? 0 : 1;
                return false;
            });
        });
    }
    std::vector<qint8> known; // by count: -1 for not yet
    return zqMarkWhere(among, found, [&](size_t row) {
        const quint32 count = sizes[row];
        if (count >= known.size()) {
            known.resize(count + 1, -1);
        }
        known[count] = known[count] < 0 ? qint8(holds(ZQScalar(qint64(count)))) : known[count];
        return known[count] != 0;
    });
}

std::optional<ZQRowSet> ZQColumnScan::listRows(const ZQListColumn &column, const ZQRowSet &among) const
{
    const bool isEvery = m_comparison.modifier == ZQComparisonModifier::All;
    ZQRowSet marked(among.rowCount());
    for (size_t element = 0; element < column.elementCount(); ++element) {
        if (element % 4096 == 0 && ZQCancellation::isCurrentCancelled()) {
            return std::nullopt;
        }
        if (holds(column.element(element)) != isEvery) {
            column.addRows(element, marked);
        }
    }
    ZQRowSet found = among;
    if (isEvery || m_comparison.modifier == ZQComparisonModifier::None) {
        found -= marked;
    } else {
        found &= marked;
    }
    return found;
}

std::optional<ZQRowSet> ZQColumnScan::rows(const ZQColumn &column, const ZQRowSet &among) const
{
    const bool isCount = m_comparison.left.isCount;
    if (const auto *list = std::get_if<std::shared_ptr<const ZQListColumn>>(&column); list && !isCount) {
        return listRows(**list, among);
    }
    ZQRowSet found(among.rowCount());
    const bool isMarked =
        isCount
            ? markCounts(column, among, found)
            : std::visit(
                  [&](const auto &held) {
                      if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::shared_ptr<const ZQListColumn>>) {
                          return false;
                      } else {
                          return mark(held, among, found);
                      }
                  },
                  column);
    if (!isMarked) {
        return std::nullopt;
    }
    if (m_comparison.modifier == ZQComparisonModifier::None) {
        ZQRowSet others = among;
        others -= found;
        return others;
    }
    return found;
}
