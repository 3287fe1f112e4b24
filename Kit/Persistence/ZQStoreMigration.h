#pragma once

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

class ZQSQLiteConnection;

// Brings a store into the form of `model` by comparing it with the model kept in the store: properties and entities
// that were added, removed, renamed (by renaming identifier) or whose type was widened. What cannot be told from the
// two models, such as a text that became a number, is refused. One transaction; a failure leaves the store as it was.
// So does the thread's ZQCancellation, with ZQStoreError::Cancelled; under a ZQStoreInterruption it ends soon.
bool zqMigrateStore(ZQSQLiteConnection &connection, const ZQStoreMetadata &metadata, const ZQManagedObjectModel &model,
                    const ZQStoreOptions &options, ZQError *error);
