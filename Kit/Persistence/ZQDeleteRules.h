#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

// What the deletion of an object means for those it is related to, as the model's delete rules say. Costs grow with the
// related objects, which are read where they have to change. On the context's thread.
class ZQDeleteRules
{
public:
    using Object = ZQRef<ZQManagedObject>;

    explicit ZQDeleteRules(ZQManagedObjectContext::Private &context) : m_context(context) {}

    // Marks the object and all that goes with it.
    void deleteObject(ZQManagedObject *object);
    // The name of the relationship through which a deleted object is still used by others, so that it cannot go; empty
    // for none. Nothing after an error of the store.
    std::optional<QString> denyingRelationship(const ZQManagedObject *object);

private:
    void deleteOne(ZQManagedObject *object, QList<Object> &cascade);
    void releaseTargets(ZQManagedObject *object, int index, QList<Object> &cascade);
    void releaseList(ZQManagedObject *object, int index, QList<Object> &cascade);

    ZQManagedObjectContext::Private &m_context;
};
