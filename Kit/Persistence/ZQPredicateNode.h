#pragma once

#include "Kit/Persistence/ZQScalar.h"
#include "Kit/Persistence/ZQStringMatching.h"

#include <QStringList>

#include <memory>
#include <vector>

// The tree of a predicate. Immutable once built by the functions below, which keep it in a normal form.

// Deeper trees are refused: SQLite's parser has a fixed stack, and both back ends recurse.
inline constexpr int zqMaximumPredicateDepth = 50;

enum class ZQComparisonModifier { Direct, Any, All, None };

enum class ZQComparisonOperator {
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    BeginsWith,
    EndsWith,
    Contains,
    Like,
    Matches,
    In,
    Between,
    Resembles
};

// How an operator or modifier is written. The first spelling of each is the one `predicateFormat` uses.
template <class T>
struct ZQSpelling
{
    const char *text;
    T value;
};
extern const std::vector<ZQSpelling<ZQComparisonOperator>> zqOperatorSpellings;
extern const std::vector<ZQSpelling<ZQComparisonModifier>> zqModifierSpellings;
bool zqIsReservedWord(const QString &word);

struct ZQExpression
{
    enum class Kind {
        Constant,
        List,    // right of IN and BETWEEN only; its elements are no lists
        KeyPath, // from the object being looked at; no keys: that object itself
    };

    Kind kind = Kind::Constant;
    ZQScalar constant = {};
    std::vector<ZQExpression> elements = {};
    QStringList keys = {};
    bool isCount = false; // the number of values that are not null; null when a to-one before the first to-many is

    bool isListOfConstants() const;
};
bool operator==(const ZQExpression &a, const ZQExpression &b);

// `left` may lead through to-many relationships and then stands for many values: Direct and Any ask for one that
// compares, All for every one, None for no one. Many values on the right always ask for one.
struct ZQComparison
{
    ZQComparisonModifier modifier = ZQComparisonModifier::Direct;
    ZQComparisonOperator op = ZQComparisonOperator::Equal;
    ZQFoldOptions options = {};
    ZQExpression left = {};
    ZQExpression right = {};

    // Derived: folded constants and, for an IN over constants, all of them.
    ZQScalar foldedLeft = {};
    ZQScalar foldedRight = {};
    std::shared_ptr<const ZQScalarSet> set = nullptr;
};

struct ZQPredicateNode
{
    enum class Kind { Constant, And, Or, Not, Comparison };

    Kind kind = Kind::Constant;
    bool constant = true;
    int depth = 1;
    std::vector<std::shared_ptr<const ZQPredicateNode>> children = {};
    ZQComparison comparison = {};
};
using ZQPredicateNodePtr = std::shared_ptr<const ZQPredicateNode>;

bool zqEqualNodes(const ZQPredicateNode &a, const ZQPredicateNode &b);

// `kind` is And or Or. Nested nodes of the same kind are flattened, one child is itself, and many equalities of one key
// path under an Or become one IN. Null when the tree would be too deep.
ZQPredicateNodePtr zqMakeCompound(ZQPredicateNode::Kind kind, const std::vector<ZQPredicateNodePtr> &children);
ZQPredicateNodePtr zqMakeNot(const ZQPredicateNodePtr &child);
ZQPredicateNodePtr zqMakeConstant(bool value);
ZQPredicateNodePtr zqMakeComparison(ZQComparison comparison);

// `value` as the comparison looks at it: folded, unless the operator folds on its own.
ZQScalar zqFoldedFor(const ZQScalar &value, ZQComparisonOperator op, ZQFoldOptions options);
// One value against one value; both already folded. `rightIsElement` says that `right` is one of many, so that IN asks
// for equality.
bool zqCompareScalars(const ZQScalar &left, const ZQScalar &right, ZQComparisonOperator op, ZQFoldOptions options,
                      bool rightIsElement);

// The text of a tree, and the values of the %@ in it.
QString zqFormatOfNode(const ZQPredicateNode &node, QVariantList *arguments);
