#include "Kit/Persistence/ZQColumns.h"

#include "Kit/Persistence/ZQColumnScan.h"
#include "Kit/Persistence/ZQPredicateComparing.h"
#include "Kit/Persistence/ZQRowLoop.h"

#include <QHash>

using Kind = ZQPredicateNode::Kind;

namespace {

struct ScalarOf
{
    size_t row;

    ZQScalar operator()(const ZQNumberColumn &column) const
    {
        if (column.nulls && column.nulls->contains(row)) {
            return {};
        }
        const qint64 number = std::visit([this](const auto &values) { return qint64(values[row]); }, column.values);
        return column.isDate ? ZQScalar(ZQDateValue{number}) : ZQScalar(number);
    }
    ZQScalar operator()(const ZQFlagColumn &column) const
    {
        const bool isNull = column.nulls && column.nulls->contains(row);
        return isNull ? ZQScalar() : ZQScalar(qint64(column.rows->contains(row)));
    }
    ZQScalar operator()(const ZQCodedColumn &column) const
    {
        return column.values[std::visit([this](const auto &codes) { return size_t(codes[row]); }, column.codes)];
    }
    ZQScalar operator()(const ZQTextColumn &column) const
    {
        const ZQTextBlocks &texts = column.exact ? *column.exact : *column.folded;
        return texts.isNull(row) ? ZQScalar() : ZQScalar(texts.string(row));
    }
    ZQScalar operator()(const ZQDigests *column) const
    {
        return column->isNull(row) ? ZQScalar() : ZQScalar(column->string(row));
    }
    ZQScalar operator()(const ZQObjectColumn &column) const { return ZQObjectID{column.entity, column.keys[row]}; }
    ZQScalar operator()(const std::shared_ptr<const ZQListColumn> &) const { return {}; }
};

// Of one row's data a text; columns keep data only in the form that this needs.
bool isResemblance(const ZQComparison &comparison)
{
    return comparison.op == ZQComparisonOperator::Resembles && comparison.left.kind == ZQExpression::Kind::KeyPath &&
           !comparison.left.isCount && comparison.right.kind == ZQExpression::Kind::Constant &&
           std::holds_alternative<QString>(comparison.right.constant);
}

class Evaluation
{
public:
    explicit Evaluation(const ZQColumnSource &source) : m_source(source) {}

    bool canAnswer(const ZQPredicateNode &node);
    std::optional<ZQRowSet> rows(const ZQPredicateNode &node, const ZQRowSet &among) const;

private:
    struct Subject
    {
        const Evaluation &evaluation;
        size_t row;

        template <class Visit>
        bool visit(const QStringList &keys, const Visit &visit) const;
        ZQScalar count(const QStringList &keys) const;
    };

    bool canAnswer(const ZQExpression &expression, bool takesFolded);
    const ZQColumn &column(const QStringList &keys) const { return m_columns.find(keys.join(u'.'))->value(); }
    static int cost(const ZQPredicateNode &node, const Evaluation &evaluation);
    std::optional<ZQRowSet> all(const ZQPredicateNode &node, const ZQRowSet &among) const;
    std::optional<ZQRowSet> any(const ZQPredicateNode &node, const ZQRowSet &among) const;
    std::optional<ZQRowSet> comparison(const ZQComparison &comparison, const ZQRowSet &among) const;
    std::optional<ZQRowSet> resembling(const ZQComparison &comparison, const ZQRowSet &among) const;
    std::vector<ZQPredicateNodePtr> cheapFirst(const ZQPredicateNode &node) const;

    const ZQColumnSource &m_source;
    QHash<QString, std::optional<ZQColumn>> m_columns; // by key path
};

template <class Visit>
bool Evaluation::Subject::visit(const QStringList &keys, const Visit &visit) const
{
    const ZQColumn &values = evaluation.column(keys);
    if (const auto *list = std::get_if<std::shared_ptr<const ZQListColumn>>(&values)) {
        return (*list)->visit(row, [&](size_t element) { return visit((*list)->element(element), true); });
    }
    return visit(zqColumnScalar(values, row), false);
}

ZQScalar Evaluation::Subject::count(const QStringList &keys) const
{
    qint64 count = 0;
    visit(keys, [&count](const ZQScalar &value, bool) {
        count += zqIsNull(value) ? 0 : 1;
        return false;
    });
    return count;
}

bool Evaluation::canAnswer(const ZQExpression &expression, bool takesFolded)
{
    if (expression.kind == ZQExpression::Kind::List) {
        return std::all_of(expression.elements.begin(), expression.elements.end(),
                           [this](const ZQExpression &element) { return canAnswer(element, false); });
    }
    if (expression.kind == ZQExpression::Kind::Constant) {
        return true;
    }
    std::optional<ZQColumn> &found = m_columns[expression.keys.join(u'.')];
    if (!found) {
        found = m_source.column(expression.keys);
    }
    const ZQTextColumn *text = found ? std::get_if<ZQTextColumn>(&*found) : nullptr;
    return found && (!text || text->exact || takesFolded || expression.isCount);
}

bool Evaluation::canAnswer(const ZQPredicateNode &node)
{
    if (node.kind != Kind::Comparison) {
        return std::all_of(node.children.begin(), node.children.end(),
                           [this](const ZQPredicateNodePtr &child) { return canAnswer(*child); });
    }
    const ZQComparison &comparison = node.comparison;
    if (isResemblance(comparison) && m_source.hasResemblances(comparison.left.keys)) {
        return true;
    }
    const bool takesFolded = ZQColumnScan::isFor(comparison) && ZQColumnScan::looksAtFolded(comparison);
    return canAnswer(comparison.left, takesFolded) && canAnswer(comparison.right, false);
}

// Roughly, what looking at one row costs.
int Evaluation::cost(const ZQPredicateNode &node, const Evaluation &evaluation)
{
    if (node.kind != Kind::Comparison) {
        int sum = 0;
        for (const ZQPredicateNodePtr &child : node.children) {
            sum += cost(*child, evaluation);
        }
        return sum;
    }
    if (isResemblance(node.comparison)) {
        return 15;
    }
    if (!ZQColumnScan::isFor(node.comparison)) {
        return node.comparison.left.kind == ZQExpression::Kind::Constant ? 50 : 100;
    }
    const ZQColumn &values = evaluation.column(node.comparison.left.keys);
    const bool isText = std::holds_alternative<ZQTextColumn>(values);
    return isText ? 20 : (std::holds_alternative<const ZQDigests *>(values) ? 5 : 1);
}

std::vector<ZQPredicateNodePtr> Evaluation::cheapFirst(const ZQPredicateNode &node) const
{
    std::vector<ZQPredicateNodePtr> children = node.children;
    std::stable_sort(children.begin(), children.end(),
                     [this](const auto &a, const auto &b) { return cost(*a, *this) < cost(*b, *this); });
    return children;
}

std::optional<ZQRowSet> Evaluation::all(const ZQPredicateNode &node, const ZQRowSet &among) const
{
    ZQRowSet standing = among;
    for (const ZQPredicateNodePtr &child : cheapFirst(node)) {
        auto found = rows(*child, standing);
        if (!found) {
            return std::nullopt;
        }
        standing = std::move(*found);
    }
    return standing;
}

std::optional<ZQRowSet> Evaluation::any(const ZQPredicateNode &node, const ZQRowSet &among) const
{
    ZQRowSet found(among.rowCount());
    ZQRowSet left = among;
    for (const ZQPredicateNodePtr &child : cheapFirst(node)) {
        const auto more = rows(*child, left);
        if (!more) {
            return std::nullopt;
        }
        found |= *more;
        left -= *more;
    }
    return found;
}

// A single value: ALL of it is the value, too.
std::optional<ZQRowSet> Evaluation::resembling(const ZQComparison &comparison, const ZQRowSet &among) const
{
    auto found = m_source.resembling(comparison.left.keys, std::get<QString>(comparison.right.constant), among);
    if (!found || comparison.modifier != ZQComparisonModifier::None) {
        return found;
    }
    ZQRowSet others = among;
    others -= *found;
    return others;
}

std::optional<ZQRowSet> Evaluation::comparison(const ZQComparison &comparison, const ZQRowSet &among) const
{
    if (isResemblance(comparison) && m_source.hasResemblances(comparison.left.keys)) {
        return resembling(comparison, among);
    }
    if (ZQColumnScan::isFor(comparison)) {
        return ZQColumnScan(comparison).rows(column(comparison.left.keys), among);
    }
    ZQRowSet found(among.rowCount());
    const bool isMarked = zqMarkWhere(among, found, [&](size_t row) {
        return zqEvaluateComparison(comparison, Subject{*this, row});
    });
    return isMarked ? std::optional(std::move(found)) : std::nullopt;
}

std::optional<ZQRowSet> Evaluation::rows(const ZQPredicateNode &node, const ZQRowSet &among) const
{
    switch (node.kind) {
    case Kind::Constant:
        return node.constant ? among : ZQRowSet(among.rowCount());
    case Kind::And:
        return all(node, among);
    case Kind::Or:
        return any(node, among);
    case Kind::Not: {
        const auto found = rows(*node.children.front(), among);
        if (!found) {
            return std::nullopt;
        }
        ZQRowSet others = among;
        others -= *found;
        return others;
    }
    case Kind::Comparison:
        return comparison(node.comparison, among);
    }
    return std::nullopt;
}

} // namespace

ZQScalar zqColumnScalar(const ZQColumn &column, size_t row)
{
    return std::visit(ScalarOf{row}, column);
}

bool ZQColumnSource::hasResemblances(const QStringList &) const
{
    return false;
}

std::optional<ZQRowSet> ZQColumnSource::resembling(const QStringList &, const QString &, const ZQRowSet &) const
{
    return std::nullopt;
}

std::optional<ZQRowSet> zqRowsMatching(const ZQPredicate &predicate, const ZQColumnSource &source,
                                       const ZQRowSet &among)
{
    if (predicate.isNull()) {
        return among;
    }
    Evaluation evaluation(source);
    if (!evaluation.canAnswer(*predicate.root()) || ZQCancellation::isCurrentCancelled()) {
        return std::nullopt;
    }
    return evaluation.rows(*predicate.root(), among);
}
