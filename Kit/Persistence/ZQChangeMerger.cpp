#include "Kit/Persistence/ZQContextPrivate.h"

using Private = ZQManagedObjectContext::Private;

// How the state of the store, and of other contexts, reaches the held objects; and how observers are told.

void Private::forgetLoadedLists(ZQManagedObject *object)
{
    for (ToMany &many : object->m_toMany) {
        many.isLoaded = false;
        many.keys.clear();
    }
}

void Private::reloadKeepingChanges(const QList<Object> &objects)
{
    QHash<Root *, QList<qint64>> keys;
    for (const Object &object : objects) {
        forgetLoadedLists(object.get());
        if (!object->m_isFault && object->m_key > 0) {
            keys[&rootOf(object.get())].append(object->m_key);
        }
    }
    for (auto entry = keys.cbegin(); entry != keys.cend(); ++entry) {
        selectRows(*entry.key(), entry.value(), [&](ZQSQLiteStatement &row) {
            if (ZQManagedObject *object = entry.key()->objects.value(row.int64(0))) {
                readRow(row, object, object->m_changed);
            }
        });
    }
}

// Goes back to what the store holds, on both sides of each relationship.
void Private::discardChanges(ZQManagedObject *object)
{
    const Object kept(object);
    const quint64 changed = object->m_changed;
    if (changed && object->m_key > 0) {
        const Object stored(object->m_plan->entityClass->create());
        stored->m_entity = object->m_entity;
        stored->m_plan = object->m_plan;
        selectRows(rootOf(object), {object->m_key}, [&](ZQSQLiteStatement &row) { readRow(row, stored.get(), 0); });
        for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
            const int field = object->m_plan->relationshipFields[i];
            if (field >= 0 && (changed >> field) & 1U) {
                const qint64 key = toOneKey(stored.get(), int(i));
                const Object target = key ? objectForKey(relationship(object, int(i)).destination, key) : Object();
                setToOne(object, int(i), target.get());
            }
        }
    }
    for (size_t i = 0; i < object->m_toMany.size(); ++i) {
        const ZQRelationshipDescription &forward = relationship(object, int(i));
        const QList<qint64> added = object->m_toMany[i].added;
        const QList<qint64> removed = object->m_toMany[i].removed;
        for (const qint64 key : added) {
            if (const Object target = objectForKey(forward.destination, key)) {
                removeFromMany(object, int(i), target.get());
            }
        }
        for (const qint64 key : removed) {
            const Object target = objectForKey(forward.destination, key);
            if (target && !target->m_isDeleted) {
                addToMany(object, int(i), target.get());
            }
        }
    }
    updated.remove(object);
    lastTouched = nullptr;
    becomeFault(object);
}

void Private::mergeDeleted(ZQManagedObject *object)
{
    const Object kept(object);
    // Unsaved objects may lead here; they must not lead to nothing.
    for (size_t i = 0; i < object->m_toMany.size(); ++i) {
        const ZQRelationshipDescription &forward = relationship(object, int(i));
        const int inverse = object->m_plan->inverses[i];
        for (const qint64 key : QList<qint64>(object->m_toMany[i].added)) {
            ZQManagedObject *target = held(forward.destination, key);
            if (!target || target->m_isDeleted) {
                continue;
            }
            if (forward.inverse->toMany) {
                listRemove(target, inverse, object->m_key);
            } else if (toOneKey(target, inverse) == object->m_key) {
                writeToOne(target, inverse, 0);
            }
        }
    }
    // An unsaved move to another parent is off as well.
    for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
        const int field = object->m_plan->relationshipFields[i];
        const ZQRelationshipDescription &forward = relationship(object, int(i));
        const qint64 key = field >= 0 && (object->m_changed >> field) & 1U ? toOneKey(object, int(i)) : 0;
        ZQManagedObject *target = key ? held(forward.destination, key) : nullptr;
        if (target && forward.inverse->toMany) {
            listRemove(target, object->m_plan->inverses[i], object->m_key);
        }
    }
    inserted.remove(object);
    updated.remove(object);
    deleted.remove(object);
    orphan(object);
    object->m_isDeleted = true;
}

void ZQManagedObjectContext::mergeChangesFromContextDidSaveNotification(const ZQContextDidSave &notification)
{
    d->assertThread();
    if (notification.source == this) {
        return;
    }
    ZQContextDidSave announcement;
    announcement.source = this;
    QList<ZQRef<ZQManagedObject>> changed; // here, too
    for (const ZQObjectID &id : notification.updated) {
        ZQManagedObject *object = d->held(id.entity, id.key);
        if (object && !object->m_isDeleted) {
            if (Private::isDirty(object)) {
                changed.append(ZQRef<ZQManagedObject>(object));
            } else {
                d->becomeFault(object);
            }
            announcement.updated.append(object->objectID());
        } else if (!object) {
            announcement.updated.append(id);
        }
    }
    d->reloadKeepingChanges(changed);
    for (const ZQObjectID &id : notification.deleted) {
        if (ZQManagedObject *object = d->held(id.entity, id.key)) {
            d->mergeDeleted(object);
        }
        announcement.deleted.append(id);
    }
    announcement.inserted = notification.inserted;
    Private::notify(d->didChangeObservers, announcement);
}

void ZQManagedObjectContext::refreshObject(ZQManagedObject *object, bool mergeChanges)
{
    d->assertThread();
    if (!object || object->m_context != this || object->m_isInserted || object->m_isDeleted) {
        return;
    }
    if (!mergeChanges) {
        d->discardChanges(object);
    } else if (Private::isDirty(object)) {
        d->reloadKeepingChanges({ZQRef<ZQManagedObject>(object)});
    } else {
        d->becomeFault(object);
    }
}

void ZQManagedObjectContext::rollback()
{
    d->assertThread();
    const QList<ZQRef<ZQManagedObject>> inserted = d->inserted.objects();
    const QList<ZQRef<ZQManagedObject>> changed = d->updated.objects() + d->deleted.objects();
    for (const ZQRef<ZQManagedObject> &object : inserted) {
        d->newlyInserted.remove(object->objectID());
        if (d->announcedTemporary.contains(object->objectID())) {
            d->newlyDeleted.add(object->objectID());
        }
        d->orphan(object.get());
        object->m_isDeleted = true;
    }
    for (const ZQRef<ZQManagedObject> &object : changed) {
        d->newlyDeleted.remove(object->objectID());
        d->newlyUpdated.add(object->objectID());
        object->m_isDeleted = false;
        d->becomeFault(object.get());
    }
    // A list read meanwhile leaves out what was deleted.
    for (const auto &root : d->roots) {
        for (ZQManagedObject *object : std::as_const(root->objects)) {
            Private::forgetLoadedLists(object);
        }
    }
    d->announcedTemporary.clear();
    d->inserted.clear();
    d->updated.clear();
    d->deleted.clear();
    d->lastTouched = nullptr;
    processPendingChanges();
}

void ZQManagedObjectContext::processPendingChanges()
{
    d->assertThread();
    d->lastTouched = nullptr;
    if (d->newlyInserted.list.isEmpty() && d->newlyUpdated.list.isEmpty() && d->newlyDeleted.list.isEmpty()) {
        return;
    }
    const ZQContextDidSave announcement{d->newlyInserted.list, d->newlyUpdated.list, d->newlyDeleted.list, this};
    for (const ZQObjectID &id : std::as_const(d->newlyInserted.list)) {
        d->announcedTemporary.insert(id);
    }
    for (ZQIDList *list : {&d->newlyInserted, &d->newlyUpdated, &d->newlyDeleted}) {
        list->clear();
    }
    Private::notify(d->didChangeObservers, announcement);
}

void Private::notify(Observers &observers, const ZQContextDidSave &notification)
{
    // An observer may add or remove observers.
    std::erase_if(observers, [](const auto &observer) { return observer.expired(); });
    for (const std::weak_ptr<Observer> &observer : Observers(observers)) {
        if (const auto alive = observer.lock()) {
            (*alive)(notification);
        }
    }
}

ZQManagedObjectContext::Token Private::addObserver(Observers &observers, Observer observer)
{
    auto token = std::make_shared<Observer>(std::move(observer));
    observers.push_back(token);
    return token;
}

ZQManagedObjectContext::Token ZQManagedObjectContext::observeWillSave(std::function<void()> observer)
{
    return Private::addObserver(d->willSaveObservers, [observer = std::move(observer)](const auto &) { observer(); });
}

ZQManagedObjectContext::Token
ZQManagedObjectContext::observeDidSave(std::function<void(const ZQContextDidSave &)> observer)
{
    return Private::addObserver(d->didSaveObservers, std::move(observer));
}

ZQManagedObjectContext::Token
ZQManagedObjectContext::observeObjectsDidChange(std::function<void(const ZQContextDidSave &)> observer)
{
    return Private::addObserver(d->didChangeObservers, std::move(observer));
}
