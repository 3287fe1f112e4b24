#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>

// Live folders as a test says that they stand: rows are made as they are asked for, and nothing is read of the disk.
class FakeLiveFolders : public LiveFolderManaging
{
public:
    QStringList calls; // "sync Pictures", "stop Pictures", "changed Pictures"

    void start(const ZQSidebarBaseItem &folder) { post(didStartSync, folder); }
    void end(const ZQSidebarBaseItem &folder) { post(didEndSync, folder); }
    void setStatus(const ZQSidebarBaseItem &folder, const LiveFolderStatus &status)
    {
        m_statuses.insert(folder.objectID(), status);
        post(statusDidChange, folder);
    }

    ZQOperationQueue &syncOperationQueue() override { return m_queue; }
    void getLiveFolderPermissionFromSandbox() override {}
    void startObservingWatchedFolders() override {}
    void stopObservingWatchedFolders() override {}
    void syncRootWatchedFolders() override {}
    void syncWatchedFolder(const ZQObjectID &folder, bool force) override
    {
        note(force ? "sync" : "look at", {folder});
    }
    void syncAndRemoveMissing(const ZQObjectID &folder) override { note("remove missing", {folder}); }
    void stopSyncingWatchedFolders(const QList<ZQObjectID> &folders) override { note("stop", folders); }
    void watchedFoldersDidChange(const QList<ZQObjectID> &folders) override { note("changed", folders); }
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID &folder) const override { return m_statuses.value(folder); }
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex) override
    {
        AddedLiveFolders result;
        for (const QString &path : paths) {
            if (const auto known = ZQSidebarWatchedFolder::watchedFolderWithPath(path, context())) {
                result.alreadyThere.append(known->objectID());
            } else if (!QFileInfo(path).isDir()) {
                result.refused.append({path, QStringLiteral("It is no folder.")});
            } else {
                const auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, context());
                folder->setIs_root(true);
                folder->setActive(true);
                ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(context())->addChild(
                    folder.get(), atIndex + quint32(result.added.size()));
                tamberin_AppDelegate::sharedDelegate()->saveAction();
                result.added.append(folder->objectID());
            }
        }
        return result;
    }

private:
    static ZQManagedObjectContext &context() { return *tamberin_AppDelegate::sharedDelegate()->managedObjectContext(); }
    void post(const QString &name, const ZQSidebarBaseItem &folder)
    {
        ZQNotificationCenter::defaultCenter().postNotification(name, this, {{QStringLiteral("folder"), folder.UUID()}});
    }
    void note(const char *what, const QList<ZQObjectID> &folders)
    {
        for (const ZQObjectID &id : folders) {
            calls.append(QLatin1StringView(what) + u' ' +
                         zqCast<ZQSidebarBaseItem>(context().objectWithID(id))->title());
        }
    }

    ZQOperationQueue m_queue{QStringLiteral("fake live folders"), 1};
    QHash<ZQObjectID, LiveFolderStatus> m_statuses;
};
