#include "Kit/Persistence/ZQChangeMerger.h"

void ZQChangeMerger::reloadKeepingChanges(const QList<Object> &objects)
{
    QHash<ZQRowCache::Root *, QList<qint64>> keys;
    for (const Object &object : objects) {
        ZQRelationships::forgetLoadedLists(object.get());
        if (!object->m_isFault && object->m_key > 0) {
            keys[&m_context.rows.rootOf(object.get())].append(object->m_key);
        }
    }
    for (auto entry = keys.cbegin(); entry != keys.cend(); ++entry) {
        m_context.rows.selectRows(*entry.key(), entry.value(), [&](ZQSQLiteStatement &row) {
            if (ZQManagedObject *object = entry.key()->objects.value(row.int64(0))) {
                m_context.rows.readRow(row, object, object->m_changed);
            }
        });
    }
}

// Goes back to what the store holds, on both sides of each relationship.
void ZQChangeMerger::discardChanges(ZQManagedObject *object)
{
    const Object kept(object);
    const quint64 changed = object->m_changed;
    if (changed && object->m_key > 0) {
        const Object stored(object->m_plan->entityClass->create());
        stored->m_entity = object->m_entity;
        stored->m_plan = object->m_plan;
        m_context.rows.selectRows(m_context.rows.rootOf(object), {object->m_key},
                                  [&](ZQSQLiteStatement &row) { m_context.rows.readRow(row, stored.get(), 0); });
        for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
            const int field = object->m_plan->relationshipFields[i];
            if (field >= 0 && (changed >> field) & 1U) {
                const qint64 key = ZQRelationships::toOneKey(stored.get(), int(i));
                const Object target =
                    key ? m_context.rows.objectForKey(ZQRelationships::relationship(object, int(i)).destination, key)
                        : Object();
                m_context.relationships.setToOne(object, int(i), target.get());
            }
        }
    }
    for (size_t i = 0; i < object->m_toMany.size(); ++i) {
        const ZQRelationshipDescription &forward = ZQRelationships::relationship(object, int(i));
        const QList<qint64> added = object->m_toMany[i].added;
        const QList<qint64> removed = object->m_toMany[i].removed;
        for (const qint64 key : added) {
            if (const Object target = m_context.rows.objectForKey(forward.destination, key)) {
                m_context.relationships.removeFromMany(object, int(i), target.get());
            }
        }
        for (const qint64 key : removed) {
            const Object target = m_context.rows.objectForKey(forward.destination, key);
            if (target && !target->m_isDeleted) {
                m_context.relationships.addToMany(object, int(i), target.get());
            }
        }
    }
    m_context.changes.didDiscard(object);
    m_context.rows.becomeFault(object);
}

void ZQChangeMerger::removeDeleted(ZQManagedObject *object)
{
    const Object kept(object);
    // Unsaved objects may lead here; they must not lead to nothing.
    for (size_t i = 0; i < object->m_toMany.size(); ++i) {
        const ZQRelationshipDescription &forward = ZQRelationships::relationship(object, int(i));
        const int inverse = object->m_plan->inverses[i];
        for (const qint64 key : QList<qint64>(object->m_toMany[i].added)) {
            ZQManagedObject *target = m_context.rows.held(forward.destination, key);
            if (!target || target->m_isDeleted) {
                continue;
            }
            if (forward.inverse->toMany) {
                m_context.relationships.removeFromList(target, inverse, object->m_key);
            } else if (ZQRelationships::toOneKey(target, inverse) == object->m_key) {
                m_context.relationships.writeToOne(target, inverse, 0);
            }
        }
    }
    // An unsaved move to another parent is off as well.
    for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
        const int field = object->m_plan->relationshipFields[i];
        const ZQRelationshipDescription &forward = ZQRelationships::relationship(object, int(i));
        const qint64 key =
            field >= 0 && (object->m_changed >> field) & 1U ? ZQRelationships::toOneKey(object, int(i)) : 0;
        ZQManagedObject *target = key ? m_context.rows.held(forward.destination, key) : nullptr;
        if (target && forward.inverse->toMany) {
            m_context.relationships.removeFromList(target, object->m_plan->inverses[i], object->m_key);
        }
    }
    m_context.changes.forget(object);
    m_context.orphan(object);
    object->m_isDeleted = true;
}

ZQContextDidSave ZQChangeMerger::merge(const ZQContextDidSave &notification)
{
    ZQContextDidSave announcement;
    announcement.source = m_context.q;
    QList<Object> changed; // here, too
    for (const ZQObjectID &id : notification.updated) {
        ZQManagedObject *object = m_context.rows.held(id.entity, id.key);
        if (object && !object->m_isDeleted) {
            if (ZQChangeTracker::isDirty(object)) {
                changed.append(Object(object));
            } else {
                m_context.rows.becomeFault(object);
            }
            announcement.updated.append(object->objectID());
        } else if (!object) {
            announcement.updated.append(id);
        }
    }
    reloadKeepingChanges(changed);
    for (const ZQObjectID &id : notification.deleted) {
        if (ZQManagedObject *object = m_context.rows.held(id.entity, id.key)) {
            removeDeleted(object);
        }
        announcement.deleted.append(id);
    }
    announcement.inserted = notification.inserted;
    return announcement;
}

void ZQChangeMerger::refresh(ZQManagedObject *object, bool keepsChanges)
{
    if (!keepsChanges) {
        discardChanges(object);
    } else if (ZQChangeTracker::isDirty(object)) {
        reloadKeepingChanges({Object(object)});
    } else {
        m_context.rows.becomeFault(object);
    }
}

void ZQChangeMerger::rollBack()
{
    const QList<Object> inserted = m_context.changes.inserted().objects();
    const QList<Object> changed = m_context.changes.updated().objects() + m_context.changes.deleted().objects();
    m_context.changes.didRollBack();
    for (const Object &object : inserted) {
        m_context.orphan(object.get());
        object->m_isDeleted = true;
    }
    for (const Object &object : changed) {
        object->m_isDeleted = false;
        m_context.rows.becomeFault(object.get());
    }
    // A list read meanwhile leaves out what was deleted.
    for (const auto &root : m_context.rows.roots()) {
        for (ZQManagedObject *object : std::as_const(root->objects)) {
            ZQRelationships::forgetLoadedLists(object);
        }
    }
}
