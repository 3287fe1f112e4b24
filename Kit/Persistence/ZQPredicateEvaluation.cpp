#include "Kit/Persistence/ZQManagedObject.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQPredicateNode.h"

#include <algorithm>

using Op = ZQComparisonOperator;
using Modifier = ZQComparisonModifier;

namespace {

struct Subject
{
    const ZQManagedObject *object = nullptr; // when null, `value` is the subject
    const QVariant *value = nullptr;
};

// Whether following `keys` from `index` on, from any object of `entity`, can lead to many values.
bool leadsToMany(const ZQEntityDescription *entity, const QStringList &keys, qsizetype index)
{
    for (; entity && index < keys.size(); ++index) {
        const ZQRelationshipDescription *relationship = entity->relationship(keys[index]);
        if (!relationship) {
            return false;
        }
        if (relationship->toMany) {
            return true;
        }
        entity = relationship->destination;
    }
    return false;
}

// The visitors below call `visit(value, isElement)` for each value and stop when it answers true, answering true then.

template <class Visit>
bool visitVariant(const QVariant &value, const QStringList &keys, qsizetype index, bool isElement, const Visit &visit)
{
    if (const std::optional<QVariantList> elements = zqListFromVariant(value)) {
        return std::any_of(elements->begin(), elements->end(),
                           [&](const QVariant &element) { return visitVariant(element, keys, index, true, visit); });
    }
    if (index == keys.size()) {
        return visit(value, isElement);
    }
    if (value.typeId() == QMetaType::QVariantMap) {
        return visitVariant(value.toMap().value(keys[index]), keys, index + 1, isElement, visit);
    }
    if (value.typeId() == QMetaType::QVariantHash) {
        return visitVariant(value.toHash().value(keys[index]), keys, index + 1, isElement, visit);
    }
    return visit(QVariant(), isElement);
}

template <class Visit>
bool visitObject(const ZQManagedObject &object, const QStringList &keys, qsizetype index, bool isElement,
                 const Visit &visit)
{
    if (index == keys.size()) {
        return visit(ZQScalar(object.objectID()), isElement);
    }
    const QString &key = keys[index];
    const bool isLast = index + 1 == keys.size();
    if (const ZQRelationshipDescription *relationship = object.entity()->relationship(key)) {
        if (relationship->toMany && isLast) {
            const QList<ZQObjectID> ids = object.relatedObjectIDs(key);
            return std::any_of(ids.begin(), ids.end(), [&](const ZQObjectID &id) { return visit(ZQScalar(id), true); });
        }
        if (relationship->toMany) {
            const QList<ZQRef<ZQManagedObject>> targets = object.relatedObjects(key);
            return std::any_of(targets.begin(), targets.end(), [&](const ZQRef<ZQManagedObject> &target) {
                return visitObject(*target, keys, index + 1, true, visit);
            });
        }
        if (!isLast) {
            if (const ZQRef<ZQManagedObject> target = object.relatedObject(key)) {
                return visitObject(*target, keys, index + 1, isElement, visit);
            }
            return !leadsToMany(relationship->destination, keys, index + 1) && visit(ZQScalar(), isElement);
        }
    } else if (!isLast || !object.entity()->attribute(key)) {
        return visit(ZQScalar(), isElement);
    }
    return visit(zqScalarFromVariant(object.valueForKey(key)), isElement);
}

template <class Visit>
bool visitKeyPath(const Subject &subject, const QStringList &keys, const Visit &visit)
{
    if (subject.object) {
        return visitObject(*subject.object, keys, 0, false, visit);
    }
    return visitVariant(*subject.value, keys, 0, false, [&visit](const QVariant &value, bool isElement) {
        return visit(zqScalarFromVariant(value), isElement);
    });
}

// Whether a to-one relationship before the first to-many names nothing, which makes a count null instead of zero.
bool endsBeforeToMany(const ZQManagedObject *object, const QStringList &keys)
{
    ZQRef<ZQManagedObject> held;
    for (qsizetype i = 0; object && i < keys.size() && leadsToMany(object->entity(), keys, i); ++i) {
        if (object->entity()->relationship(keys[i])->toMany) {
            return false;
        }
        held = object->relatedObject(keys[i]);
        object = held.get();
    }
    return !object;
}

ZQScalar countOf(const Subject &subject, const QStringList &keys)
{
    qint64 count = 0;
    if (!subject.object) {
        visitVariant(*subject.value, keys, 0, false, [&count](const QVariant &value, bool) {
            bool isScalar = true; // a map is a thing to count, though not to compare
            const bool isNull = zqIsNull(zqScalarFromVariant(value, &isScalar)) && isScalar;
            count += isNull ? 0 : 1;
            return false;
        });
        return count;
    }
    if (endsBeforeToMany(subject.object, keys)) {
        return {};
    }
    visitObject(*subject.object, keys, 0, false, [&count](const ZQScalar &value, bool) {
        count += zqIsNull(value) ? 0 : 1;
        return false;
    });
    return count;
}

template <class Visit>
bool visitExpression(const ZQExpression &expression, const ZQScalar &foldedConstant, const ZQComparison &comparison,
                     const Subject &subject, const Visit &visit)
{
    if (expression.kind == ZQExpression::Kind::Constant) {
        return visit(foldedConstant, false);
    }
    if (expression.isCount) {
        return visit(countOf(subject, expression.keys), false);
    }
    if (!comparison.options.any()) {
        return visitKeyPath(subject, expression.keys, visit);
    }
    return visitKeyPath(subject, expression.keys, [&](const ZQScalar &value, bool isElement) {
        return visit(zqFoldedFor(value, comparison.op, comparison.options), isElement);
    });
}

bool isInList(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    if (comparison.set) {
        return comparison.set->find(left) != comparison.set->end();
    }
    const std::vector<ZQExpression> &elements = comparison.right.elements;
    return std::any_of(elements.begin(), elements.end(), [&](const ZQExpression &element) {
        const ZQScalar folded = zqFoldedFor(element.constant, comparison.op, comparison.options);
        return visitExpression(element, folded, comparison, subject,
                               [&](const ZQScalar &value, bool) { return left == value; });
    });
}

bool isBetween(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    const auto satisfies = [&](const ZQExpression &bound, Op op) {
        const ZQScalar folded = zqFoldedFor(bound.constant, comparison.op, comparison.options);
        return visitExpression(bound, folded, comparison, subject, [&](const ZQScalar &value, bool) {
            return zqCompareScalars(left, value, op, comparison.options, false);
        });
    };
    return satisfies(comparison.right.elements[0], Op::GreaterOrEqual) &&
           satisfies(comparison.right.elements[1], Op::LessOrEqual);
}

bool comparesLeft(const ZQComparison &comparison, const ZQScalar &left, const Subject &subject)
{
    if (comparison.op == Op::Between) {
        return isBetween(comparison, left, subject);
    }
    if (comparison.right.kind == ZQExpression::Kind::List) {
        return isInList(comparison, left, subject);
    }
    return visitExpression(comparison.right, comparison.foldedRight, comparison, subject,
                           [&](const ZQScalar &right, bool isElement) {
                               return zqCompareScalars(left, right, comparison.op, comparison.options, isElement);
                           });
}

bool evaluateComparison(const ZQComparison &comparison, const Subject &subject)
{
    // ALL is that no value fails; ANY and NONE look for one that holds.
    const bool wanted = comparison.modifier != Modifier::All;
    const bool isFound =
        visitExpression(comparison.left, comparison.foldedLeft, comparison, subject,
                        [&](const ZQScalar &left, bool) { return comparesLeft(comparison, left, subject) == wanted; });
    const bool isAny = comparison.modifier == Modifier::Direct || comparison.modifier == Modifier::Any;
    return isFound == isAny;
}

bool evaluate(const ZQPredicateNode &node, const Subject &subject)
{
    const auto holds = [&subject](const ZQPredicateNodePtr &child) { return evaluate(*child, subject); };
    switch (node.kind) {
    case ZQPredicateNode::Kind::Constant:
        return node.constant;
    case ZQPredicateNode::Kind::And:
        return std::all_of(node.children.begin(), node.children.end(), holds);
    case ZQPredicateNode::Kind::Or:
        return std::any_of(node.children.begin(), node.children.end(), holds);
    case ZQPredicateNode::Kind::Not:
        return !evaluate(*node.children.front(), subject);
    case ZQPredicateNode::Kind::Comparison:
        return evaluateComparison(node.comparison, subject);
    }
    return false;
}

} // namespace

bool ZQPredicate::evaluateWithObject(const ZQManagedObject *object) const
{
    if (!object) {
        return evaluateWithObject(QVariant());
    }
    return !m_root || evaluate(*m_root, {object, nullptr});
}

bool ZQPredicate::evaluateWithObject(const QVariant &value) const
{
    return !m_root || evaluate(*m_root, {nullptr, &value});
}
