#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QStringList>

class ZQOperationQueue;

// Keeps live folders in step with the disk. No command makes a live folder, so a library has none: there is nothing to
// watch, to get access to or to synchronise, and every call returns at once. Main thread.
class LiveFolderManager
{
public:
    explicit LiveFolderManager(ZQOperationQueue &syncOperationQueue) : m_syncOperationQueue(syncOperationQueue) {}

    void getLiveFolderPermissionFromSandbox() {}
    void startObservingWatchedFolders() { m_isObserving = true; }
    void stopObservingWatchedFolders() { m_isObserving = false; }
    bool isObserving() const { return m_isObserving; }

    void syncRootWatchedFolders(bool forceSync) { Q_UNUSED(forceSync) }
    void syncWatchedFolders(const QList<ZQObjectID> &folders, bool shouldTraversSubFolders, bool forceSync);
    void stopSyncingWatchedFolders();

private:
    ZQOperationQueue &m_syncOperationQueue;
    bool m_isObserving = false;
};
