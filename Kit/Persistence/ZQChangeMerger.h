#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

// How the state of the store, and of other contexts, reaches the objects that a context holds. On the context's thread.
class ZQChangeMerger
{
public:
    using Object = ZQRef<ZQManagedObject>;

    explicit ZQChangeMerger(ZQManagedObjectContext::Private &context) : m_context(context) {}

    // Brings another context's save into the held objects; the answer is what this context's observers are to hear.
    // Linear in the notification.
    ZQContextDidSave merge(const ZQContextDidSave &notification);
    // A row that others deleted: the object goes, and nothing unsaved leads to it any more.
    void removeDeleted(ZQManagedObject *object);
    // Of a saved object: what is stored, under its own unsaved changes or, without `keepsChanges`, instead of them.
    void refresh(ZQManagedObject *object, bool keepsChanges);
    // Takes back all that is unsaved, and reads nothing.
    void rollBack();

private:
    void reloadKeepingChanges(const QList<Object> &objects);
    void discardChanges(ZQManagedObject *object);

    ZQManagedObjectContext::Private &m_context;
};
