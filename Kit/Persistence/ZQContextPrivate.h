#pragma once

#include "Kit/Persistence/ZQChangeTracker.h"
#include "Kit/Persistence/ZQContextObservers.h"
#include "Kit/Persistence/ZQContextStore.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQRelationships.h"
#include "Kit/Persistence/ZQRowCache.h"

// The parts of a context that keep something, each using those before it. What a context does with them has classes of
// its own, which keep nothing: ZQFetcher, ZQPrefetcher, ZQDeleteRules, ZQSave, ZQChangeMerger, ZQObjectURIs.
struct ZQManagedObjectContext::Private
{
    Private(ZQManagedObjectContext *context, std::shared_ptr<ZQPersistentStoreCoordinator> coordinator,
            ZQMergePolicy policy);

    // The object leaves this context; it keeps its values.
    void orphan(ZQManagedObject *object)
    {
        changes.willOrphan(object);
        rows.orphan(object);
    }
    void released(ZQManagedObject *object); // nobody holds it any more

    ZQManagedObjectContext *q;
    ZQMergePolicy mergePolicy;
    ZQContextStore store;
    ZQRowCache rows;
    ZQChangeTracker changes;
    ZQRelationships relationships;
    ZQContextObservers willSaveObservers;
    ZQContextObservers didSaveObservers;
    ZQContextObservers didChangeObservers;
};

// The context's insides for tests and tools of this folder.
class ZQObjectAccess
{
public:
    static ZQSQLiteConnection *connection(ZQManagedObjectContext &context) { return context.d->store.connection(); }
    static ZQManagedObjectContext::Private &parts(ZQManagedObjectContext &context) { return *context.d; }
    static qsizetype heldObjects(const ZQManagedObjectContext &context);
};
