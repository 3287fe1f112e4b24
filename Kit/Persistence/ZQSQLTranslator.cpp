#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQPredicateNode.h"
#include "Kit/Persistence/ZQSQLList.h"
#include "Kit/Persistence/ZQSQLPath.h"

#include <QDateTime>

#include <algorithm>
#include <functional>

// Every condition below is 0 or 1, never NULL, so that NOT is the opposite. A comparison of a bare column keeps the
// form an index can answer: "x IS ?", "x < ? AND x IS NOT NULL". Of a partial index the planner has to see the
// condition: 0 and 1, which the conditions of indexes are about, stand in the text, and what is not null says so.

using Op = ZQComparisonOperator;
using Modifier = ZQComparisonModifier;

namespace {

constexpr qsizetype maximumBindings = 32000; // below SQLite's limit, with room for the surrounding statement

struct Operand
{
    ZQSQLFragment sql;
    ZQSQLType type = ZQSQLType::Null;
    const ZQEntityDescription *root = nullptr;
    bool isConstant = false;
    bool isColumn = false;

    bool isNeverNull() const { return isConstant && type != ZQSQLType::Null; }
};

ZQSQLFragment plain(const QString &text)
{
    return {text, {}};
}

// `form` with %1 and %2 replaced by the operands; both occur at most once, in this order.
ZQSQLFragment joined(const QString &form, const ZQSQLFragment &a, const ZQSQLFragment &b)
{
    return {QString(form).arg(a.text, b.text), a.bindings + b.bindings};
}

ZQSQLFragment negated(const ZQSQLFragment &condition)
{
    return {QStringLiteral("NOT (") + condition.text + u')', condition.bindings};
}

Operand constantOperand(const ZQScalar &value)
{
    Operand operand{.sql = plain(QStringLiteral("?")), .isConstant = true};
    const auto bind = [&operand](ZQSQLType type, const QVariant &bound) {
        operand.type = type;
        operand.sql.bindings = {bound};
    };
    if (const qint64 *number = std::get_if<qint64>(&value)) {
        bind(ZQSQLType::Number, *number);
    } else if (const double *fraction = std::get_if<double>(&value)) {
        bind(ZQSQLType::Number, *fraction);
    } else if (const QString *text = std::get_if<QString>(&value)) {
        bind(ZQSQLType::Text, *text);
    } else if (const ZQDateValue *date = std::get_if<ZQDateValue>(&value)) {
        bind(ZQSQLType::Date, date->milliseconds);
    } else if (const QByteArray *data = std::get_if<QByteArray>(&value)) {
        bind(ZQSQLType::Binary, *data);
    } else if (const ZQObjectID *id = std::get_if<ZQObjectID>(&value)) {
        bind(ZQSQLType::Object, id->key);
        operand.root = id->rootEntity();
    } else {
        operand.sql = plain(QStringLiteral("NULL"));
    }
    return operand;
}

bool haveOneType(const Operand &a, const Operand &b)
{
    return a.type == b.type && a.type != ZQSQLType::Null && a.root == b.root;
}

ZQSQLFragment never()
{
    return plain(QStringLiteral("0"));
}

ZQSQLFragment sqlForColumnIs(const Operand &column, const Operand &constant)
{
    if (constant.type == ZQSQLType::Object) {
        return joined(QStringLiteral("(%1 IS %2 AND ") + column.sql.text + QStringLiteral(" IS NOT NULL)"), column.sql,
                      constant.sql);
    }
    const QVariant value = constant.sql.bindings.value(0);
    const bool isInText = value.typeId() == QMetaType::LongLong && (value.toLongLong() == 0 || value.toLongLong() == 1);
    return joined(QStringLiteral("%1 IS %2"), column.sql,
                  isInText ? plain(QString::number(value.toLongLong())) : constant.sql);
}

ZQSQLFragment sqlForEquality(const Operand &a, const Operand &b)
{
    if (a.isColumn && b.isConstant && haveOneType(a, b)) {
        return sqlForColumnIs(a, b);
    }
    if (haveOneType(a, b)) {
        return joined(QStringLiteral("%1 IS %2"), a.sql, b.sql);
    }
    // Values of two types are equal only when both are null.
    if (a.isNeverNull() || b.isNeverNull()) {
        return never();
    }
    return joined(QStringLiteral("(%1 IS NULL AND %2 IS NULL)"), a.sql, b.sql);
}

// Without a look at the values a quarter of all rows would seem to be later than any date, and no index worth it. Who
// asks for what came since a moment not long ago means the few newest.
bool isLately(const char *symbol, const Operand &constant)
{
    constexpr qint64 span = qint64(31) * 24 * 60 * 60 * 1000;
    return constant.type == ZQSQLType::Date && symbol[0] == '>' &&
           constant.sql.bindings.value(0).toLongLong() > QDateTime::currentMSecsSinceEpoch() - span;
}

ZQSQLFragment sqlForOrder(const char *symbol, const Operand &a, const Operand &b)
{
    if (!haveOneType(a, b) || a.type == ZQSQLType::Object) {
        return never();
    }
    const QString comparison = QStringLiteral("%1 ") + QLatin1String(symbol) + QStringLiteral(" %2");
    if (a.isColumn && b.isConstant) {
        const QString hinted =
            isLately(symbol, b) ? QStringLiteral("likelihood(") + comparison + QStringLiteral(", 0.001)") : comparison;
        return joined(QStringLiteral("(") + hinted + QStringLiteral(" AND ") + a.sql.text +
                          QStringLiteral(" IS NOT NULL)"),
                      a.sql, b.sql);
    }
    return joined(QStringLiteral("COALESCE(") + comparison + QStringLiteral(", 0)"), a.sql, b.sql);
}

ZQSQLFragment sqlForText(const char *function, const Operand &a, const Operand &b, int flags)
{
    if (a.type != ZQSQLType::Text || b.type != ZQSQLType::Text) {
        return never();
    }
    return joined(QLatin1String(function) + QStringLiteral("(%1, %2, ") + QString::number(flags) + u')', a.sql, b.sql);
}

// Text within text, or one object that is the other; null contains nothing.
ZQSQLFragment sqlForContains(const Operand &whole, const Operand &part, bool partIsFirst)
{
    const Operand &first = partIsFirst ? part : whole;
    const Operand &second = partIsFirst ? whole : part;
    if (!haveOneType(whole, part)) {
        return never();
    }
    if (whole.type == ZQSQLType::Text) {
        return joined(partIsFirst ? QStringLiteral("zq_is_in(%1, %2)") : QStringLiteral("zq_contains(%1, %2)"),
                      first.sql, second.sql);
    }
    return joined(QStringLiteral("COALESCE(%1 = %2, 0)"), first.sql, second.sql);
}

struct OrderSymbol
{
    Op op;
    const char *symbol;
};
constexpr OrderSymbol orderSymbols[] = {
    {Op::Less, "<"}, {Op::LessOrEqual, "<="}, {Op::Greater, ">"}, {Op::GreaterOrEqual, ">="}};

ZQSQLFragment sqlForScalars(Op op, const Operand &a, const Operand &b, ZQFoldOptions options, bool rightIsElement)
{
    for (const OrderSymbol &order : orderSymbols) {
        if (order.op == op) {
            return sqlForOrder(order.symbol, a, b);
        }
    }
    switch (op) {
    case Op::Equal:
        return sqlForEquality(a, b);
    case Op::NotEqual:
        return negated(sqlForEquality(a, b));
    case Op::BeginsWith:
        return sqlForText("zq_begins_with", a, b, 0);
    case Op::EndsWith:
        return sqlForText("zq_ends_with", a, b, 0);
    case Op::Like:
        return sqlForText("zq_like", a, b, 0);
    case Op::Matches:
        return sqlForText("zq_matches", a, b, options.flags());
    case Op::Resembles:
        return a.type == ZQSQLType::Binary && b.type == ZQSQLType::Text
                   ? joined(QStringLiteral("zq_resembles(%1, %2)"), a.sql, b.sql)
                   : never();
    case Op::Contains:
        return sqlForContains(a, b, false);
    case Op::In:
        return rightIsElement ? sqlForEquality(a, b) : sqlForContains(b, a, true);
    case Op::Between:
    default:
        return never(); // two bounds: handled by its caller
    }
}

class Translator
{
public:
    Translator(const ZQEntityDescription *entity, const QString &alias, ZQError *error)
        : m_entity(entity), m_alias(alias), m_aliases(alias + QStringLiteral("_p")), m_error(error)
    {
    }
    std::optional<ZQSQLFragment> node(const ZQPredicateNode &node);

private:
    using Fragment = std::optional<ZQSQLFragment>;
    using Values = std::function<Fragment(const Operand &value, bool isElement)>;

    Fragment compound(const ZQPredicateNode &node);
    Fragment comparison(const ZQComparison &comparison);
    Fragment comparesLeft(const ZQComparison &comparison, const Operand &left);
    Fragment isInList(const ZQComparison &comparison, const Operand &left);
    // The condition that some value of `expression` meets `condition`; every one when `isEvery`.
    Fragment some(const ZQExpression &expression, const ZQComparison &comparison, bool isEvery,
                  const Values &condition);
    Operand countOperand(const ZQSQLPath &path);
    Operand folded(Operand operand, const ZQComparison &comparison);

    const ZQEntityDescription *m_entity;
    QString m_alias;
    ZQSQLAliases m_aliases;
    ZQError *m_error;
};

Translator::Fragment Translator::node(const ZQPredicateNode &node)
{
    switch (node.kind) {
    case ZQPredicateNode::Kind::Constant:
        return plain(node.constant ? QStringLiteral("1") : QStringLiteral("0"));
    case ZQPredicateNode::Kind::Comparison:
        return comparison(node.comparison);
    case ZQPredicateNode::Kind::Not: {
        const Fragment child = this->node(*node.children.front());
        return child ? Fragment(negated(*child)) : std::nullopt;
    }
    default:
        return compound(node);
    }
}

// SQLite refuses an expression more than 1000 levels deep, and a chain is as deep as it is long; its parser's stack
// holds 100 entries, so the deepest part goes first, where it costs one entry a level.
Translator::Fragment Translator::compound(const ZQPredicateNode &node)
{
    constexpr qsizetype chainLength = 64;
    const bool isAnd = node.kind == ZQPredicateNode::Kind::And;
    std::vector<ZQPredicateNodePtr> children = node.children;
    std::stable_sort(children.begin(), children.end(),
                     [](const auto &a, const auto &b) { return a->depth > b->depth; });
    QStringList parts;
    QVariantList bindings;
    for (const ZQPredicateNodePtr &child : children) {
        const Fragment part = this->node(*child);
        if (!part) {
            return std::nullopt;
        }
        const bool isCompound = child->kind == ZQPredicateNode::Kind::And || child->kind == ZQPredicateNode::Kind::Or;
        parts.append(isCompound ? u'(' + part->text + u')' : part->text);
        bindings += part->bindings;
    }
    const QString separator = isAnd ? QStringLiteral(" AND ") : QStringLiteral(" OR ");
    while (parts.size() > chainLength) {
        QStringList chains;
        for (qsizetype i = 0; i < parts.size(); i += chainLength) {
            chains.append(u'(' + parts.mid(i, chainLength).join(separator) + u')');
        }
        parts = chains;
    }
    return ZQSQLFragment{parts.join(separator), bindings};
}

Operand Translator::folded(Operand operand, const ZQComparison &comparison)
{
    if (operand.type != ZQSQLType::Text || !comparison.options.any() || comparison.op == Op::Matches) {
        return operand;
    }
    operand.sql = {QStringLiteral("zq_fold(%1, %2)").arg(operand.sql.text).arg(comparison.options.flags()),
                   operand.sql.bindings};
    operand.isColumn = false;
    return operand;
}

Operand Translator::countOperand(const ZQSQLPath &path)
{
    Operand operand;
    operand.type = ZQSQLType::Number;
    if (!path.isToMany) {
        operand.sql = plain(u'(' + path.scalar() + QStringLiteral(" IS NOT NULL)"));
        return operand;
    }
    const QString count = QStringLiteral("(SELECT COUNT(%1) FROM %2 WHERE %3)").arg(path.value, path.from, path.where);
    operand.sql = plain(QStringLiteral("CASE WHEN %1 IS NOT NULL THEN %2 END").arg(path.startKey, count));
    return operand;
}

Translator::Fragment Translator::some(const ZQExpression &expression, const ZQComparison &comparison, bool isEvery,
                                      const Values &condition)
{
    if (expression.kind == ZQExpression::Kind::Constant) {
        return condition(constantOperand(zqFoldedFor(expression.constant, comparison.op, comparison.options)), false);
    }
    const auto path = zqSQLPathForKeys(expression.keys, m_entity, m_alias, &m_aliases, m_error);
    if (!path) {
        return std::nullopt;
    }
    if (expression.isCount) {
        return condition(countOperand(*path), false);
    }
    Operand operand;
    operand.type = path->type;
    operand.root = path->root;
    if (!path->isToMany) {
        operand.sql = plain(path->scalar());
        operand.isColumn = path->isColumn();
        return condition(folded(operand, comparison), false);
    }
    operand.sql = plain(path->value);
    operand.isColumn = true;
    const Fragment inner = condition(folded(operand, comparison), true);
    if (!inner) {
        return std::nullopt;
    }
    // The rows a few objects are tied to are found from those objects, not by trying every row.
    if (!isEvery && !path->ownColumn.isEmpty() && path->type == ZQSQLType::Object && expression.keys.size() == 1) {
        return ZQSQLFragment{QStringLiteral("%1 IN (SELECT %2 FROM %3 WHERE %4)")
                                 .arg(path->startKey, path->ownColumn, path->from, inner->text),
                             inner->bindings};
    }
    const ZQSQLFragment tested = isEvery ? negated(*inner) : ZQSQLFragment{u'(' + inner->text + u')', inner->bindings};
    return ZQSQLFragment{QStringLiteral("%1EXISTS (SELECT 1 FROM %2 WHERE %3 AND %4)")
                             .arg(isEvery ? QStringLiteral("NOT ") : QString(), path->from, path->where, tested.text),
                         tested.bindings};
}

Translator::Fragment Translator::isInList(const ZQComparison &comparison, const Operand &left)
{
    if (comparison.set) {
        return zqSQLForMembership(left.sql, left.type, left.root, left.isNeverNull(), *comparison.set);
    }
    ZQSQLFragment result = plain(QStringLiteral("("));
    for (const ZQExpression &element : comparison.right.elements) {
        const Fragment part =
            some(element, comparison, false, [&](const Operand &value, bool) { return sqlForEquality(left, value); });
        if (!part) {
            return std::nullopt;
        }
        result.text += (result.text.size() > 1 ? QStringLiteral(" OR ") : QString()) + part->text;
        result.bindings += part->bindings;
    }
    result.text += u')';
    return result;
}

Translator::Fragment Translator::comparesLeft(const ZQComparison &comparison, const Operand &left)
{
    if (comparison.op == Op::Between) {
        const std::vector<ZQExpression> &bounds = comparison.right.elements;
        const auto bound = [&](const ZQExpression &expression, const char *symbol) {
            return some(expression, comparison, false,
                        [&](const Operand &value, bool) { return sqlForOrder(symbol, left, value); });
        };
        const Fragment low = bound(bounds[0], ">=");
        const Fragment high = bound(bounds[1], "<=");
        return low && high ? Fragment(joined(QStringLiteral("(%1 AND %2)"), *low, *high)) : std::nullopt;
    }
    if (comparison.right.kind == ZQExpression::Kind::List) {
        return isInList(comparison, left);
    }
    return some(comparison.right, comparison, false, [&](const Operand &right, bool isElement) {
        return sqlForScalars(comparison.op, left, right, comparison.options, isElement);
    });
}

Translator::Fragment Translator::comparison(const ZQComparison &comparison)
{
    const bool isEvery = comparison.modifier == Modifier::All;
    const Fragment result = some(comparison.left, comparison, isEvery,
                                 [&](const Operand &left, bool) { return comparesLeft(comparison, left); });
    if (!result || comparison.modifier != Modifier::None) {
        return result;
    }
    return negated(*result);
}

} // namespace

std::optional<ZQSQLFragment> zqSQLForPredicate(const ZQPredicate &predicate, const ZQEntityDescription *entity,
                                               const QString &alias, ZQError *error)
{
    if (predicate.isNull()) {
        return plain(QStringLiteral("1"));
    }
    auto fragment = Translator(entity, alias, error).node(*predicate.root());
    if (fragment && fragment->bindings.size() > maximumBindings) {
        zqSetError(error, ZQError::with(QStringLiteral("ZQPredicate"), 2, zqLocalized("The condition is too long."),
                                        zqLocalized("Search for less at once.")));
        return std::nullopt;
    }
    return fragment;
}
