#pragma once

#include "Classes/Application/LibraryRecovery.h"
#include "Kit/Foundation/ZQError.h"

#include <memory>
#include <optional>

class LibraryLock;
class LibraryPlaces;
class RunningParts;
class ZQManagedObjectContext;
class ZQManagedObjectModel;
class ZQPersistentStoreCoordinator;
struct ZQContextDidSave;

// The library's store as this process holds it: the lock, the model, the store, and the context of the main thread.
// Made when first asked for, once; the bundle is locked before anything in it is read. A store that cannot be opened is
// told of once, a damaged one is offered to be recovered, and from then on everything answers nothing. Main thread;
// opening a large store for the first time takes a while, with the main loop served meanwhile.
class LibraryStore
{
public:
    LibraryStore(LibraryPlaces &places, RunningParts &running);
    ~LibraryStore();

    std::shared_ptr<const ZQManagedObjectModel> managedObjectModel();
    // Keeps other processes out of the library.
    bool lockLibrary(ZQError *error);
    bool isLocked() const { return m_lock != nullptr; }
    bool open(ZQError *error); // says why it failed instead of presenting it
    std::shared_ptr<ZQPersistentStoreCoordinator> persistentStoreCoordinator();
    ZQManagedObjectContext *managedObjectContext();
    // Without opening: null while it is closed.
    const std::shared_ptr<ZQPersistentStoreCoordinator> &coordinatorIfOpen() const { return m_coordinator; }
    ZQManagedObjectContext *contextIfOpen() const { return m_context.get(); }

    void saveAction(); // with what is being typed; an error is logged
    void mergeSaved(const ZQContextDidSave &notification);
    // Copies what can be read of the damaged store into a new one that takes its place. The store must not be open.
    std::optional<LibraryRecovery> recoverLibrary(ZQError *error);

    void close();                            // the context and the store, not the lock
    std::unique_ptr<LibraryLock> takeLock(); // for a move of the bundle
    void unlock();
    void stayClosed(); // whoever asks from now on gets nothing

private:
    bool offerRecovery(const ZQError &damage);

    LibraryPlaces &m_places;
    RunningParts &m_running;
    std::shared_ptr<const ZQManagedObjectModel> m_model;
    std::unique_ptr<LibraryLock> m_lock;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::unique_ptr<ZQManagedObjectContext> m_context;
    bool m_hasFailed = false;
    bool m_wasCancelled = false; // while it was opened: nothing failed that a person could be told
};
