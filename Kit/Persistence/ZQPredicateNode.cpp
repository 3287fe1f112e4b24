#include "Kit/Persistence/ZQPredicateNode.h"

#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQResemblance.h"

#include <algorithm>
#include <utility>

using Op = ZQComparisonOperator;
using Modifier = ZQComparisonModifier;

const std::vector<ZQSpelling<Op>> zqOperatorSpellings = {
    {"==", Op::Equal},
    {"=", Op::Equal},
    {"!=", Op::NotEqual},
    {"<>", Op::NotEqual},
    {"<=", Op::LessOrEqual},
    {"=<", Op::LessOrEqual},
    {"<", Op::Less},
    {">=", Op::GreaterOrEqual},
    {"=>", Op::GreaterOrEqual},
    {">", Op::Greater},
    {"BEGINSWITH", Op::BeginsWith},
    {"ENDSWITH", Op::EndsWith},
    {"CONTAINS", Op::Contains},
    {"LIKE", Op::Like},
    {"MATCHES", Op::Matches},
    {"IN", Op::In},
    {"BETWEEN", Op::Between},
    {"RESEMBLES", Op::Resembles},
};

const std::vector<ZQSpelling<Modifier>> zqModifierSpellings = {
    {"ANY", Modifier::Any},
    {"SOME", Modifier::Any},
    {"ALL", Modifier::All},
    {"NONE", Modifier::None},
};

bool zqIsReservedWord(const QString &word)
{
    static const QStringList others = {
        QStringLiteral("AND"),
        QStringLiteral("OR"),
        QStringLiteral("NOT"),
        QStringLiteral("YES"),
        QStringLiteral("NO"),
        QStringLiteral("TRUE"),
        QStringLiteral("FALSE"),
        QStringLiteral("NIL"),
        QStringLiteral("NULL"),
        QStringLiteral("SELF"),
        QStringLiteral("CAST"),
        QStringLiteral("TRUEPREDICATE"),
        QStringLiteral("FALSEPREDICATE"),
    };
    const auto isWord = [&word](const auto &spelling) {
        return word.compare(QLatin1String(spelling.text), Qt::CaseInsensitive) == 0;
    };
    return others.contains(word, Qt::CaseInsensitive) ||
           std::any_of(zqOperatorSpellings.begin(), zqOperatorSpellings.end(), isWord) ||
           std::any_of(zqModifierSpellings.begin(), zqModifierSpellings.end(), isWord);
}

bool ZQExpression::isListOfConstants() const
{
    return kind == Kind::List && std::all_of(elements.begin(), elements.end(), [](const ZQExpression &element) {
               return element.kind == Kind::Constant;
           });
}

bool operator==(const ZQExpression &a, const ZQExpression &b)
{
    return a.kind == b.kind && a.constant == b.constant && a.keys == b.keys && a.isCount == b.isCount &&
           a.elements == b.elements;
}

bool zqEqualNodes(const ZQPredicateNode &a, const ZQPredicateNode &b)
{
    if (a.kind != b.kind || a.depth != b.depth || a.children.size() != b.children.size()) {
        return false;
    }
    if (a.kind == ZQPredicateNode::Kind::Constant) {
        return a.constant == b.constant;
    }
    if (a.kind == ZQPredicateNode::Kind::Comparison) {
        const ZQComparison &x = a.comparison;
        const ZQComparison &y = b.comparison;
        return x.modifier == y.modifier && x.op == y.op && x.options == y.options && x.left == y.left &&
               x.right == y.right;
    }
    return std::equal(a.children.begin(), a.children.end(), b.children.begin(),
                      [](const auto &x, const auto &y) { return zqEqualNodes(*x, *y); });
}

namespace {

bool isSimpleEquality(const ZQPredicateNode &node)
{
    const ZQComparison &comparison = node.comparison;
    return node.kind == ZQPredicateNode::Kind::Comparison && comparison.modifier == Modifier::Direct &&
           comparison.op == Op::Equal && comparison.left.kind == ZQExpression::Kind::KeyPath &&
           comparison.right.kind == ZQExpression::Kind::Constant && !zqIsNull(comparison.right.constant);
}

QString keyOfEquality(const ZQComparison &comparison)
{
    return QStringLiteral("%1 %2 %3")
        .arg(comparison.options.flags())
        .arg(int(comparison.left.isCount))
        .arg(comparison.left.keys.join(u'.'));
}

// A search for duplicates asks for thousands of digests by equality; as one IN it is one look-up in memory and in the
// store. It stands where the first of them stood, the rest keeps its order: what is written reads back to the same.
std::vector<ZQPredicateNodePtr> withEqualitiesMerged(const std::vector<ZQPredicateNodePtr> &alternatives)
{
    constexpr size_t worthwhile = 8;
    if (alternatives.size() < worthwhile) {
        return alternatives;
    }
    QHash<QString, std::vector<ZQExpression>> values;
    for (const ZQPredicateNodePtr &node : alternatives) {
        if (isSimpleEquality(*node)) {
            values[keyOfEquality(node->comparison)].push_back(node->comparison.right);
        }
    }
    std::vector<ZQPredicateNodePtr> result;
    for (const ZQPredicateNodePtr &node : alternatives) {
        const auto group = isSimpleEquality(*node) ? values.find(keyOfEquality(node->comparison)) : values.end();
        if (group == values.end() || (!group->empty() && group->size() < worthwhile)) {
            result.push_back(node);
        } else if (!group->empty()) {
            ZQComparison merged = node->comparison;
            merged.op = Op::In;
            merged.right = {.kind = ZQExpression::Kind::List};
            merged.right.elements = std::exchange(*group, {});
            result.push_back(zqMakeComparison(std::move(merged)));
        }
    }
    return result;
}

bool resembles(const ZQScalar &data, const ZQScalar &described)
{
    const QByteArray *bytes = std::get_if<QByteArray>(&data);
    const QString *text = std::get_if<QString>(&described);
    const auto test = bytes && text ? zqResemblanceFor(*text) : nullptr;
    return test && (*test)({bytes->constData(), size_t(bytes->size())});
}

bool containsScalar(const ZQScalar &text, const ZQScalar &part)
{
    const QString *whole = std::get_if<QString>(&text);
    const QString *needle = std::get_if<QString>(&part);
    if (whole && needle) {
        return whole->contains(*needle);
    }
    return !zqIsNull(text) && text == part; // an object is an element of a to-many
}

} // namespace

ZQPredicateNodePtr zqMakeCompound(ZQPredicateNode::Kind kind, const std::vector<ZQPredicateNodePtr> &children)
{
    std::vector<ZQPredicateNodePtr> flat;
    for (const ZQPredicateNodePtr &child : children) {
        if (child->kind == kind) {
            flat.insert(flat.end(), child->children.begin(), child->children.end());
        } else {
            flat.push_back(child);
        }
    }
    if (kind == ZQPredicateNode::Kind::Or) {
        flat = withEqualitiesMerged(flat);
    }
    if (flat.size() == 1) {
        return flat.front();
    }
    auto node = std::make_shared<ZQPredicateNode>();
    node->kind = kind;
    for (const ZQPredicateNodePtr &child : flat) {
        node->depth = std::max(node->depth, child->depth + 1);
    }
    if (node->depth > zqMaximumPredicateDepth) {
        return nullptr;
    }
    node->children = std::move(flat);
    return node;
}

ZQPredicateNodePtr zqMakeNot(const ZQPredicateNodePtr &child)
{
    if (child->kind == ZQPredicateNode::Kind::Not) {
        return child->children.front();
    }
    if (child->depth >= zqMaximumPredicateDepth) {
        return nullptr;
    }
    auto node = std::make_shared<ZQPredicateNode>();
    node->kind = ZQPredicateNode::Kind::Not;
    node->depth = child->depth + 1;
    node->children = {child};
    return node;
}

ZQPredicateNodePtr zqMakeConstant(bool value)
{
    auto node = std::make_shared<ZQPredicateNode>();
    node->constant = value;
    return node;
}

ZQPredicateNodePtr zqMakeComparison(ZQComparison comparison)
{
    comparison.foldedLeft = zqFoldedFor(comparison.left.constant, comparison.op, comparison.options);
    comparison.foldedRight = zqFoldedFor(comparison.right.constant, comparison.op, comparison.options);
    comparison.set = nullptr;
    if (comparison.op == Op::In && comparison.right.isListOfConstants()) {
        auto set = std::make_shared<ZQScalarSet>();
        for (const ZQExpression &element : comparison.right.elements) {
            set->insert(zqFoldedFor(element.constant, comparison.op, comparison.options));
        }
        comparison.set = std::move(set);
    }
    auto node = std::make_shared<ZQPredicateNode>();
    node->kind = ZQPredicateNode::Kind::Comparison;
    node->comparison = std::move(comparison);
    return node;
}

ZQScalar zqFoldedFor(const ZQScalar &value, ZQComparisonOperator op, ZQFoldOptions options)
{
    const QString *text = std::get_if<QString>(&value);
    if (!text || !options.any() || op == Op::Matches) {
        return value;
    }
    return zqFold(*text, options.caseInsensitive, options.diacriticInsensitive);
}

bool zqCompareScalars(const ZQScalar &left, const ZQScalar &right, ZQComparisonOperator op, ZQFoldOptions options,
                      bool rightIsElement)
{
    switch (op) {
    case Op::Equal:
        return left == right;
    case Op::NotEqual:
        return !(left == right);
    case Op::Contains:
        return containsScalar(left, right);
    case Op::In:
        return rightIsElement ? left == right : containsScalar(right, left);
    case Op::Resembles:
        return resembles(left, right);
    case Op::Less:
    case Op::LessOrEqual:
    case Op::Greater:
    case Op::GreaterOrEqual: {
        const std::optional<int> order = zqOrderOfScalars(left, right);
        if (!order) {
            return false;
        }
        const bool wantsLess = op == Op::Less || op == Op::LessOrEqual;
        const bool allowsEqual = op == Op::LessOrEqual || op == Op::GreaterOrEqual;
        return *order == 0 ? allowsEqual : (*order < 0) == wantsLess;
    }
    default:
        break;
    }
    const QString *text = std::get_if<QString>(&left);
    const QString *part = std::get_if<QString>(&right);
    if (!text || !part) {
        return false;
    }
    switch (op) {
    case Op::BeginsWith:
        return text->startsWith(*part);
    case Op::EndsWith:
        return text->endsWith(*part);
    case Op::Like:
        return zqMatchesWildcards(*text, *part);
    case Op::Matches:
        return zqMatchesExpression(*text, *part, options);
    default:
        return false;
    }
}
