#pragma once

#include "Kit/Persistence/ZQDigests.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQScalar.h"
#include "Kit/Persistence/ZQTextBlocks.h"

#include <functional>
#include <span>

// The third back end of predicates: evaluation over columns, a value or a list of values for each row of something.
// It agrees with the other two on every input that it takes.
//
// The columns point into what a source holds; they are good for as long as that does not change.

// Whole numbers or dates (milliseconds since 1970 UTC).
struct ZQNumberColumn
{
    std::variant<std::span<const qint8>, std::span<const qint16>, std::span<const qint32>, std::span<const qint64>>
        values;
    const ZQRowSet *nulls = nullptr; // rows without a value; a null pointer: there are none
    bool isDate = false;
};

// Yes or no.
struct ZQFlagColumn
{
    const ZQRowSet *rows = nullptr;
    const ZQRowSet *nulls = nullptr; // as above
};

// One of few different values, by its position in `values`.
struct ZQCodedColumn
{
    std::variant<std::span<const quint16>, std::span<const quint32>> codes;
    std::vector<ZQScalar> values;
};

struct ZQTextColumn
{
    const ZQTextBlocks *folded = nullptr; // as `zqFold` leaves them with both options
    const ZQTextBlocks *exact = nullptr;  // may be missing: then only comparisons [cd] with constants can be answered
};

// The rows' own identifiers.
struct ZQObjectColumn
{
    std::span<const qint64> keys;
    const ZQEntityDescription *entity = nullptr;
};

// What a to-many relationship leads to: elements, by number, that rows share.
class ZQListColumn
{
public:
    virtual ~ZQListColumn() = default;
    virtual size_t elementCount() const = 0;
    virtual ZQScalar element(size_t element) const = 0;
    virtual void addRows(size_t element, ZQRowSet &rows) const = 0; // those that lead to it
    virtual void addSizes(std::vector<quint32> &sizes) const = 0;   // of the lists of all rows, to what is there
    // The elements of a row, until `visit` answers true, which is then the answer.
    virtual bool visit(size_t row, const std::function<bool(size_t element)> &visit) const = 0;
};

using ZQColumn = std::variant<ZQNumberColumn, ZQFlagColumn, ZQCodedColumn, ZQTextColumn, const ZQDigests *,
                              ZQObjectColumn, std::shared_ptr<const ZQListColumn>>;

// What a row's single value is; not of a list. Text as it was written, when the column has it.
ZQScalar zqColumnScalar(const ZQColumn &column, size_t row);

class ZQColumnSource
{
public:
    virtual ~ZQColumnSource() = default;
    virtual size_t rowCount() const = 0;
    // Nothing when there is none for this path; no keys: the row itself.
    virtual std::optional<ZQColumn> column(const QStringList &keys) const = 0;
    // Whether it has columns for RESEMBLES of the data there, and the rows among `among` whose data do (of a text that
    // describes nothing, none). Nothing when cancelled.
    virtual bool hasResemblances(const QStringList &keys) const;
    virtual std::optional<ZQRowSet> resembling(const QStringList &keys, const QString &text,
                                               const ZQRowSet &among) const;
};

// Those of `among` that match. Nothing when the source lacks a column, or when the thread's ZQCancellation was
// cancelled meanwhile.
std::optional<ZQRowSet> zqRowsMatching(const ZQPredicate &predicate, const ZQColumnSource &source,
                                       const ZQRowSet &among);
