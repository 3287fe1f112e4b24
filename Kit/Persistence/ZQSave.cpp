#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSaveWork.h"

using Private = ZQManagedObjectContext::Private;

namespace {

ZQError validationError(const ZQManagedObject &object, const QString &property, const char *advice)
{
    ZQError error =
        ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Validation), zqLocalized("The changes cannot be saved."),
                      zqFormat(zqLocalized(advice), {object.entity()->name + u'.' + property}));
    error.userInfo.insert(QStringLiteral("object"), QVariant::fromValue(object.objectID()));
    error.userInfo.insert(QStringLiteral("property"), property);
    return error;
}

ZQError conflictError(const QList<ZQObjectID> &conflicts)
{
    ZQError error = ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Conflict),
                                  zqLocalized("Some of the changed objects were changed elsewhere in the meantime."),
                                  zqLocalized("Look at them again, then repeat your change."));
    QVariantList ids;
    for (const ZQObjectID &id : conflicts) {
        ids.append(QVariant::fromValue(id));
    }
    error.userInfo.insert(QStringLiteral("conflicts"), ids);
    return error;
}

} // namespace

bool ZQManagedObjectContext::save(ZQError *error)
{
    d->assertThread();
    ZQTrace trace("store", "save");
    ZQSaveWork work;
    if (!d->collect(work, error)) {
        return false;
    }
    if (work.isEmpty()) {
        d->updated.clear();
        d->lastTouched = nullptr;
        return true;
    }
    Private::notify(d->willSaveObservers, {});
    if (!d->write(work, error)) {
        return false;
    }
    ZQContextDidSave notification;
    ZQContextDidSave announcement;
    d->applySave(work, notification, announcement);
    Private::notify(d->didSaveObservers, notification);
    Private::notify(d->didChangeObservers, announcement);
    return true;
}

bool Private::collect(ZQSaveWork &work, ZQError *error)
{
    work.inserted = inserted.objects();
    work.deleted = deleted.objects();
    for (const Object &object : updated.objects()) {
        if (isDirty(object.get())) {
            work.updated.append(object);
        }
    }
    return validate(work, error);
}

bool Private::validate(const ZQSaveWork &work, ZQError *error)
{
    for (const QList<Object> *objects : {&work.inserted, &work.updated}) {
        for (const Object &object : *objects) {
            const quint64 looked = object->m_isInserted ? ~quint64(0) : object->m_changed;
            if (!(looked & object->m_nulls)) {
                continue;
            }
            for (const ZQAttributeDescription &attribute : object->m_entity->attributes) {
                if (attribute.optional) {
                    continue;
                }
                const int field = object->m_plan->properties.value(attribute.name).field;
                if (field >= 0 && (looked & object->m_nulls) >> field & 1U) {
                    zqSetError(error, validationError(*object, attribute.name, "%@ needs a value."));
                    return false;
                }
            }
        }
    }
    for (const Object &object : work.deleted) {
        if (isDenied(object.get(), error)) {
            return false;
        }
    }
    return true;
}

bool Private::isDenied(ZQManagedObject *object, ZQError *error)
{
    for (size_t i = 0; i < object->m_entity->relationships.size(); ++i) {
        const ZQRelationshipDescription &forward = object->m_entity->relationships[i];
        if (forward.deleteRule != ZQDeleteRule::Deny) {
            continue;
        }
        QList<qint64> keys = forward.toMany ? loadedKeys(object, int(i)) : QList<qint64>{toOneKey(object, int(i))};
        if (forward.toMany && !list(object, int(i)).isLoaded) { // it could not be read
            zqSetError(error, storeError());
            return true;
        }
        keys.removeIf([&](qint64 key) {
            const ZQManagedObject *target = held(forward.destination, key);
            return key == 0 || (target && target->m_isDeleted);
        });
        if (!keys.isEmpty()) {
            zqSetError(error, validationError(*object, forward.name,
                                              "An object that is still used by others through %@ cannot be deleted."));
            return true;
        }
    }
    return false;
}

bool Private::write(ZQSaveWork &work, ZQError *error)
{
    if (!connection) {
        zqSetError(error, connectionError);
        return false;
    }
    const ZQLockGuard lock(coordinator->writeLock());
    ZQSQLiteTransaction transaction(*connection);
    const bool isWritten = transaction.isOpen() && allocateKeys(work) && insertRows(work) && updateRows(work) &&
                           deleteRows(work) && writeJoins(work) &&
                           (!connection->hasDanglingReferences() || clearDanglingReferences(work));
    if (isWritten && !work.conflicts.isEmpty()) {
        zqSetError(error, conflictError(work.conflicts));
        return false;
    }
    if (!isWritten || !transaction.commit()) {
        zqSetError(error, storeError());
        return false;
    }
    coordinator->noteSavedRows(*connection, work.inserted.size() + work.deleted.size());
    return true;
}

void Private::replaceTemporaryKeys(const ZQSaveWork &work, ZQManagedObject *object)
{
    for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
        const int field = object->m_plan->relationshipFields[i];
        if (field < 0) {
            continue;
        }
        qint64 &key = zqKeySlot(object->m_plan->root->fields[size_t(field)], object->row());
        if (key < 0) {
            key = work.permanent(key);
            if (key == 0) {
                object->m_nulls |= quint64(1) << field;
            }
        }
    }
    for (ToMany &many : object->m_toMany) {
        many.added.clear();
        many.removed.clear();
        for (qint64 &key : many.keys) {
            if (key < 0) {
                key = work.permanent(key);
            }
        }
    }
}

void Private::applySave(ZQSaveWork &work, ZQContextDidSave &notification, ZQContextDidSave &announcement)
{
    notification.source = q;
    ZQIDList touched;
    for (const Object &object : work.inserted) {
        Root &root = rootOf(object.get());
        root.objects.remove(object->m_key);
        object->m_key = work.permanent(object->m_key);
        object->m_version = 1;
        object->m_isInserted = false;
        object->m_changed = 0;
        root.objects.insert(object->m_key, object.get());
        notification.inserted.append(object->objectID());
    }
    for (const Object &object : work.inserted) {
        replaceTemporaryKeys(work, object.get());
    }
    for (const Object &object : work.updated) {
        replaceTemporaryKeys(work, object.get());
        object->m_changed = 0;
        object->m_version = work.versions.value(object.get(), object->m_version);
        if (!work.goneFromStore.contains(object.get())) {
            touched.add(object->objectID());
        }
    }
    // A row written for an inserted object may have been put right as well.
    for (ZQManagedObject *object : std::as_const(work.mergedWithStore)) {
        if (!work.goneFromStore.contains(object)) {
            becomeFault(object);
        }
    }
    QSet<ZQObjectID> gone;
    for (const Object &object : work.deleted) {
        notification.deleted.append(object->objectID());
        gone.insert(object->objectID());
        orphan(object.get());
    }
    const QSet<ZQObjectID> fresh(notification.inserted.cbegin(), notification.inserted.cend());
    for (const ZQObjectID &id : std::as_const(work.neighbours)) {
        if (!gone.contains(id) && !fresh.contains(id)) {
            touched.add(id);
        }
    }
    notification.updated = touched.list;
    announcement = notification;
    for (const Object &object : work.updated) {
        if (work.goneFromStore.contains(object.get())) {
            announcement.deleted.append(object->objectID());
            mergeDeleted(object.get());
        }
    }
    // Who was told of a temporary identifier learns that it stands for nothing any more.
    announcement.deleted += announcedTemporary.values();
    announcedTemporary.clear();
    for (ZQIDList *list : {&newlyInserted, &newlyUpdated, &newlyDeleted}) {
        list->clear();
    }
    lastTouched = nullptr;
    inserted.clear();
    updated.clear();
    deleted.clear();
}
