#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QList>

// Keeps live folders in step with the disk. No command makes a live folder, so a library has none: there is nothing to
// watch, to get access to or to synchronise, and every call returns at once. Main thread.
class LiveFolderManager : public LiveFolderManaging
{
public:
    LiveFolderManager();

    ZQOperationQueue &syncOperationQueue() override { return m_syncOperationQueue; }
    void getLiveFolderPermissionFromSandbox() override {}
    void startObservingWatchedFolders() override { m_isObserving = true; }
    void stopObservingWatchedFolders() override { m_isObserving = false; }
    bool isObserving() const { return m_isObserving; }

    void syncRootWatchedFolders() override {}
    void syncWatchedFolder(const ZQObjectID &folder, bool force) override;
    void stopSyncingWatchedFolders(const QList<ZQObjectID> &folders) override;
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList & /*paths*/, quint32 /*atIndex*/) override
    {
        return {};
    }
    void watchedFoldersDidChange(const QList<ZQObjectID> & /*folders*/) override {}
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID & /*folder*/) const override { return {}; }

private:
    ZQOperationQueue m_syncOperationQueue;
    bool m_isObserving = false;
};
