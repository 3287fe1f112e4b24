#include "Kit/Persistence/ZQDeleteRules.h"

// Cascades are a list of work rather than a recursion: a tree may be deep.
void ZQDeleteRules::deleteObject(ZQManagedObject *object)
{
    QList<Object> work{Object(object)};
    while (!work.isEmpty()) {
        const Object next = work.takeLast();
        if (next->m_context == m_context.q && !next->m_isDeleted) {
            deleteOne(next.get(), work);
        }
    }
}

void ZQDeleteRules::deleteOne(ZQManagedObject *object, QList<Object> &cascade)
{
    object->willAccess();
    object->m_isDeleted = true;
    for (size_t i = 0; i < object->m_entity->relationships.size(); ++i) {
        releaseTargets(object, int(i), cascade);
    }
    const Object kept(object);
    m_context.changes.didDelete(object);
    if (object->m_isInserted) {
        m_context.orphan(object);
    }
}

void ZQDeleteRules::releaseTargets(ZQManagedObject *object, int index, QList<Object> &cascade)
{
    const ZQRelationshipDescription &forward = ZQRelationships::relationship(object, index);
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (forward.deleteRule == ZQDeleteRule::Deny) {
        return; // looked at when saving: the targets may be deleted by then
    }
    if (forward.toMany) {
        releaseList(object, index, cascade);
        return;
    }
    const qint64 key = ZQRelationships::toOneKey(object, index);
    const bool needsTarget = forward.deleteRule == ZQDeleteRule::Cascade || !forward.inverse->toMany;
    const Object target = key == 0      ? Object()
                          : needsTarget ? m_context.rows.objectForKey(forward.destination, key)
                                        : Object(m_context.rows.held(forward.destination, key));
    if (!target || target->m_isDeleted) {
        return;
    }
    if (forward.inverse->toMany) {
        m_context.relationships.removeFromList(target.get(), inverse, object->m_key);
    } else {
        m_context.relationships.writeToOne(target.get(), inverse, 0);
    }
    if (forward.deleteRule == ZQDeleteRule::Cascade) {
        cascade.append(target);
    }
}

void ZQDeleteRules::releaseList(ZQManagedObject *object, int index, QList<Object> &cascade)
{
    ZQRelationships &relationships = m_context.relationships;
    const ZQRelationshipDescription &forward = ZQRelationships::relationship(object, index);
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (forward.deleteRule == ZQDeleteRule::Cascade) {
        cascade += relationships.related(object, index);
    } else if (!forward.inverse->toMany) {
        for (const Object &target : relationships.related(object, index)) {
            relationships.writeToOne(target.get(), inverse, 0);
        }
        return;
    }
    if (forward.inverse->toMany) {
        // The store removes the pairs with the row; only what is in memory has to follow.
        for (const qint64 key : QList<qint64>(relationships.loadedKeys(object, index))) {
            if (ZQManagedObject *target = m_context.rows.held(forward.destination, key)) {
                relationships.removeFromList(target, inverse, object->m_key);
            }
        }
    }
}

std::optional<QString> ZQDeleteRules::denyingRelationship(const ZQManagedObject *object)
{
    ZQRelationships &relationships = m_context.relationships;
    for (size_t i = 0; i < object->m_entity->relationships.size(); ++i) {
        const ZQRelationshipDescription &forward = object->m_entity->relationships[i];
        if (forward.deleteRule != ZQDeleteRule::Deny) {
            continue;
        }
        QList<qint64> keys = forward.toMany ? relationships.loadedKeys(object, int(i))
                                            : QList<qint64>{ZQRelationships::toOneKey(object, int(i))};
        if (forward.toMany && !ZQRelationships::list(object, int(i)).isLoaded) { // it could not be read
            return std::nullopt;
        }
        keys.removeIf([&](qint64 key) {
            const ZQManagedObject *target = m_context.rows.held(forward.destination, key);
            return key == 0 || (target && target->m_isDeleted);
        });
        if (!keys.isEmpty()) {
            return forward.name;
        }
    }
    return QString();
}
