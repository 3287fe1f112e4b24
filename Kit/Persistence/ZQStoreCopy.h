#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

class ZQPersistentStoreCoordinator;

// Copies a store that is open, as it is at one moment, into a new file; what is saved meanwhile is not in it, and is
// not held up. The copy is a store of its own, of the same identifiers. Any thread; the thread's ZQCancellation ends
// it. After a failure, with an error of the store's domain, half a file may be at `path`.
bool zqCopyStore(const ZQPersistentStoreCoordinator &store, const QString &path, ZQError *error);
