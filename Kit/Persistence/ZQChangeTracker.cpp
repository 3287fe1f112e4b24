#include "Kit/Persistence/ZQChangeTracker.h"

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <algorithm>

QList<ZQRef<ZQManagedObject>> ZQChangeTracker::reallyUpdated() const
{
    QList<ZQRef<ZQManagedObject>> objects = m_updated.objects();
    objects.removeIf([](const auto &object) { return !isDirty(object.get()); });
    return objects;
}

bool ZQChangeTracker::hasChanges() const
{
    if (!m_inserted.isEmpty() || !m_deleted.isEmpty()) {
        return true;
    }
    const QList<ZQRef<ZQManagedObject>> updated = m_updated.objects();
    return std::any_of(updated.begin(), updated.end(), [](const auto &object) { return isDirty(object.get()); });
}

bool ZQChangeTracker::hasListChanges(const ZQManagedObject *object)
{
    return std::any_of(object->m_toMany.begin(), object->m_toMany.end(), [](const ZQManagedObject::ToMany &list) {
        return !list.added.isEmpty() || !list.removed.isEmpty();
    });
}

bool ZQChangeTracker::isDirty(const ZQManagedObject *object)
{
    return object->m_isInserted || object->m_isDeleted || object->m_changed || hasListChanges(object);
}

bool ZQChangeTracker::isTouched(const ZQManagedObject &object, quint64 fields, const QSet<int> &lists)
{
    if (object.m_isDeleted || (object.m_changed & fields)) {
        return true;
    }
    return !object.m_toMany.empty() && std::any_of(lists.begin(), lists.end(), [&object](int index) {
        const ZQManagedObject::ToMany &list = object.m_toMany[size_t(index)];
        return !list.added.isEmpty() || !list.removed.isEmpty();
    });
}

void ZQChangeTracker::didInsert(ZQManagedObject *object)
{
    m_inserted.add(object);
    m_newlyInserted.add(object->objectID());
}

void ZQChangeTracker::touch(ZQManagedObject *object)
{
    m_store.assertThread();
    if (m_lastTouched == object) {
        return;
    }
    m_lastTouched = object;
    if (!object->m_isInserted) {
        m_updated.add(object);
    }
    const ZQObjectID id = object->objectID();
    if (!m_newlyInserted.set.contains(id)) {
        m_newlyUpdated.add(id);
    }
}

void ZQChangeTracker::didDelete(ZQManagedObject *object)
{
    const ZQObjectID id = object->objectID();
    m_newlyUpdated.remove(id);
    if (object->m_isInserted) {
        m_newlyInserted.remove(id);
        if (m_announcedTemporary.remove(id)) {
            m_newlyDeleted.add(id);
        }
        m_inserted.remove(object);
    } else {
        m_newlyDeleted.add(id);
        m_deleted.add(object);
        m_updated.remove(object);
    }
}

void ZQChangeTracker::didDiscard(ZQManagedObject *object)
{
    m_updated.remove(object);
    m_lastTouched = nullptr;
}

void ZQChangeTracker::forget(ZQManagedObject *object)
{
    m_inserted.remove(object);
    m_updated.remove(object);
    m_deleted.remove(object);
}

void ZQChangeTracker::didFindNothingToSave()
{
    m_updated.clear();
    m_lastTouched = nullptr;
}

QList<ZQObjectID> ZQChangeTracker::didSave()
{
    const QList<ZQObjectID> announced = m_announcedTemporary.values();
    clear();
    return announced;
}

void ZQChangeTracker::didRollBack()
{
    m_inserted.visit([this](const auto &object) {
        m_newlyInserted.remove(object->objectID());
        if (m_announcedTemporary.contains(object->objectID())) {
            m_newlyDeleted.add(object->objectID());
        }
    });
    for (const ZQObjectList *list : {&m_updated, &m_deleted}) {
        list->visit([this](const auto &object) {
            m_newlyDeleted.remove(object->objectID());
            m_newlyUpdated.add(object->objectID());
        });
    }
    m_announcedTemporary.clear();
    clearObjects();
}

void ZQChangeTracker::clear()
{
    clearNews();
    m_announcedTemporary.clear();
    clearObjects();
}

std::optional<ZQContextDidSave> ZQChangeTracker::takeAnnouncement(const void *source)
{
    m_lastTouched = nullptr;
    if (m_newlyInserted.list.isEmpty() && m_newlyUpdated.list.isEmpty() && m_newlyDeleted.list.isEmpty()) {
        return std::nullopt;
    }
    ZQContextDidSave announcement{m_newlyInserted.list, m_newlyUpdated.list, m_newlyDeleted.list, source};
    for (const ZQObjectID &id : std::as_const(m_newlyInserted.list)) {
        m_announcedTemporary.insert(id);
    }
    clearNews();
    return announcement;
}

void ZQChangeTracker::clearNews()
{
    for (ZQIDList *list : {&m_newlyInserted, &m_newlyUpdated, &m_newlyDeleted}) {
        list->clear();
    }
}

void ZQChangeTracker::clearObjects()
{
    m_lastTouched = nullptr;
    m_inserted.clear();
    m_updated.clear();
    m_deleted.clear();
}
