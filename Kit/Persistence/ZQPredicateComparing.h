#pragma once

#include "Kit/Persistence/ZQPredicateNode.h"

#include <algorithm>

// How a comparison is decided, whatever its key paths lead through: what objects, plain values and columns share.
//
// A subject has `visit(keys, visit)`, which calls `visit(value, isElement)` for each value of a key path and stops when
// that answers true, answering true then; and `count(keys)`, for @count.

template <class Subject, class Visit>
bool zqVisitExpression(const ZQExpression &expression, const ZQScalar &foldedConstant, const ZQComparison &comparison,
                       const Subject &subject, const Visit &visit)
{
    if (expression.kind == ZQExpression::Kind::Constant) {
        return visit(foldedConstant, false);
    }
    if (expression.isCount) {
        return visit(subject.count(expression.keys), false);
    }
    if (!comparison.options.any()) {
        return subject.visit(expression.keys, visit);
    }
    return subject.visit(expression.keys, [&](const ZQScalar &value, bool isElement) {
        return visit(zqFoldedFor(value, comparison.op, comparison.options), isElement);
    });
}

template <class Subject>
bool zqIsInList(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    if (comparison.set) {
        return comparison.set->find(left) != comparison.set->end();
    }
    const std::vector<ZQExpression> &elements = comparison.right.elements;
    return std::any_of(elements.begin(), elements.end(), [&](const ZQExpression &element) {
        const ZQScalar folded = zqFoldedFor(element.constant, comparison.op, comparison.options);
        return zqVisitExpression(element, folded, comparison, subject,
                                 [&](const ZQScalar &value, bool) { return left == value; });
    });
}

template <class Subject>
bool zqIsBetween(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    const auto satisfies = [&](const ZQExpression &bound, ZQComparisonOperator op) {
        const ZQScalar folded = zqFoldedFor(bound.constant, comparison.op, comparison.options);
        return zqVisitExpression(bound, folded, comparison, subject, [&](const ZQScalar &value, bool) {
            return zqCompareScalars(left, value, op, comparison.options, false);
        });
    };
    return satisfies(comparison.right.elements[0], ZQComparisonOperator::GreaterOrEqual) &&
           satisfies(comparison.right.elements[1], ZQComparisonOperator::LessOrEqual);
}

// `left` is folded already.
template <class Subject>
bool zqComparesLeft(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    if (comparison.op == ZQComparisonOperator::Between) {
        return zqIsBetween(comparison, left, subject);
    }
    if (comparison.right.kind == ZQExpression::Kind::List) {
        return zqIsInList(comparison, left, subject);
    }
    return zqVisitExpression(comparison.right, comparison.foldedRight, comparison, subject,
                             [&](const ZQScalar &right, bool isElement) {
                                 return zqCompareScalars(left, right, comparison.op, comparison.options, isElement);
                             });
}

template <class Subject>
bool zqEvaluateComparison(const ZQComparison &comparison, const Subject &subject)
{
    // ALL is that no value fails; ANY and NONE look for one that holds.
    const bool wanted = comparison.modifier != ZQComparisonModifier::All;
    const bool isFound =
        zqVisitExpression(comparison.left, comparison.foldedLeft, comparison, subject, [&](const ZQScalar &left, bool) {
            return zqComparesLeft(comparison, left, subject) == wanted;
        });
    const bool isAny =
        comparison.modifier == ZQComparisonModifier::Direct || comparison.modifier == ZQComparisonModifier::Any;
    return isFound == isAny;
}
