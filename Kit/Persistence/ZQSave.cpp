#include "Kit/Persistence/ZQSave.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQChangeMerger.h"
#include "Kit/Persistence/ZQDeleteRules.h"
#include "Kit/Persistence/ZQRowWriter.h"

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

bool ZQSave::collect(ZQError *error)
{
    m_work.inserted = m_context.changes.inserted().objects();
    m_work.deleted = m_context.changes.deleted().objects();
    m_work.updated = m_context.changes.reallyUpdated();
    return validate(error);
}

bool ZQSave::validate(ZQError *error)
{
    for (const QList<Object> *objects : {&m_work.inserted, &m_work.updated}) {
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
                    zqSetError(error, validationError(*object, attribute.name, zqKey("%@ needs a value.")));
                    return false;
                }
            }
        }
    }
    for (const Object &object : m_work.deleted) {
        const auto denying = ZQDeleteRules(m_context).denyingRelationship(object.get());
        if (!denying) {
            zqSetError(error, m_context.store.error());
            return false;
        }
        if (!denying->isEmpty()) {
            zqSetError(error,
                       validationError(*object, *denying,
                                       zqKey("An object that is still used by others through %@ cannot be deleted.")));
            return false;
        }
    }
    return true;
}

bool ZQSave::write(ZQError *error)
{
    ZQSQLiteConnection *connection = m_context.store.connection();
    if (!connection) {
        zqSetError(error, m_context.store.error());
        return false;
    }
    const auto &coordinator = m_context.store.coordinator();
    const ZQLockGuard lock(coordinator->writeLock());
    ZQSQLiteTransaction transaction(*connection);
    const bool isWritten = transaction.isOpen() && ZQRowWriter(m_context, m_work).write();
    if (isWritten && !m_work.conflicts.isEmpty()) {
        zqSetError(error, conflictError(m_work.conflicts));
        return false;
    }
    if (!isWritten || !transaction.commit()) {
        zqSetError(error, m_context.store.error());
        return false;
    }
    coordinator->noteSavedRows(*connection, m_work.inserted.size() + m_work.deleted.size());
    return true;
}

void ZQSave::replaceTemporaryKeys(ZQManagedObject *object)
{
    for (size_t i = 0; i < object->m_plan->relationshipFields.size(); ++i) {
        const int field = object->m_plan->relationshipFields[i];
        if (field < 0) {
            continue;
        }
        qint64 &key = zqKeySlot(object->m_plan->root->fields[size_t(field)], object->row());
        if (key < 0) {
            key = m_work.permanent(key);
            if (key == 0) {
                object->m_nulls |= quint64(1) << field;
            }
        }
    }
    for (ZQRelationships::ToMany &many : object->m_toMany) {
        many.added.clear();
        many.removed.clear();
        for (qint64 &key : many.keys) {
            if (key < 0) {
                key = m_work.permanent(key);
            }
        }
    }
}

void ZQSave::applyKeys()
{
    for (const Object &object : m_work.inserted) {
        m_context.rows.changeKey(object.get(), m_work.permanent(object->m_key));
        object->m_version = 1;
        object->m_isInserted = false;
        object->m_changed = 0;
    }
    for (const Object &object : m_work.inserted) {
        replaceTemporaryKeys(object.get());
    }
    for (const Object &object : m_work.updated) {
        replaceTemporaryKeys(object.get());
        object->m_changed = 0;
        object->m_version = m_work.versions.value(object.get(), object->m_version);
    }
}

ZQSave::Outcome ZQSave::apply()
{
    Outcome outcome;
    ZQContextDidSave &notification = outcome.notification;
    notification.source = m_context.q;
    applyKeys();
    ZQIDList touched;
    for (const Object &object : m_work.inserted) {
        notification.inserted.append(object->objectID());
    }
    for (const Object &object : m_work.updated) {
        if (!m_work.goneFromStore.contains(object.get())) {
            touched.add(object->objectID());
        }
    }
    // A row written for an inserted object may have been put right as well.
    for (ZQManagedObject *object : std::as_const(m_work.mergedWithStore)) {
        if (!m_work.goneFromStore.contains(object)) {
            m_context.rows.becomeFault(object);
        }
    }
    QSet<ZQObjectID> gone;
    for (const Object &object : m_work.deleted) {
        notification.deleted.append(object->objectID());
        gone.insert(object->objectID());
        m_context.orphan(object.get());
    }
    const QSet<ZQObjectID> fresh(notification.inserted.cbegin(), notification.inserted.cend());
    for (const ZQObjectID &id : std::as_const(m_work.neighbours)) {
        if (!gone.contains(id) && !fresh.contains(id)) {
            touched.add(id);
        }
    }
    notification.updated = touched.list;
    outcome.announcement = notification;
    for (const Object &object : m_work.updated) {
        if (m_work.goneFromStore.contains(object.get())) {
            outcome.announcement.deleted.append(object->objectID());
            ZQChangeMerger(m_context).removeDeleted(object.get());
        }
    }
    // Who was told of a temporary identifier learns that it stands for nothing any more.
    outcome.announcement.deleted += m_context.changes.didSave();
    return outcome;
}
