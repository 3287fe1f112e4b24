#include "Kit/Persistence/ZQManagedObject.h"
#include "Kit/Persistence/ZQPredicate.h"
#include "Kit/Persistence/ZQPredicateComparing.h"

#include <algorithm>

namespace {

struct Subject
{
    const ZQManagedObject *object = nullptr; // when null, `value` is the subject
    const QVariant *value = nullptr;

    template <class Visit>
    bool visit(const QStringList &keys, const Visit &visit) const;
    ZQScalar count(const QStringList &keys) const;
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
bool Subject::visit(const QStringList &keys, const Visit &visit) const
{
    if (object) {
        return visitObject(*object, keys, 0, false, visit);
    }
    return visitVariant(*value, keys, 0, false, [&visit](const QVariant &each, bool isElement) {
        return visit(zqScalarFromVariant(each), isElement);
    });
}

// Whether a to-one relationship before the first to-many names nothing, which makes a count null instead of zero.
bool endsBeforeToMany(const ZQManagedObject *object, const QStringList &keys)
{
    ZQRef<ZQManagedObject> held;
    for (qsizetype i = 0; object && leadsToMany(object->entity(), keys, i); ++i) {
        if (object->entity()->relationship(keys[i])->toMany) {
            return false;
        }
        held = object->relatedObject(keys[i]);
        object = held.get();
    }
    return !object;
}

ZQScalar Subject::count(const QStringList &keys) const
{
    qint64 number = 0;
    if (!object) {
        visitVariant(*value, keys, 0, false, [&number](const QVariant &each, bool) {
            bool isScalar = true; // a map is a thing to count, though not to compare
            const bool isNull = zqIsNull(zqScalarFromVariant(each, &isScalar)) && isScalar;
            number += isNull ? 0 : 1;
            return false;
        });
        return number;
    }
    if (endsBeforeToMany(object, keys)) {
        return {};
    }
    visitObject(*object, keys, 0, false, [&number](const ZQScalar &each, bool) {
        number += zqIsNull(each) ? 0 : 1;
        return false;
    });
    return number;
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
        return zqEvaluateComparison(node.comparison, subject);
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
