#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>

#include <functional>
#include <utility>

// Live folders as a test says that they stand: rows are made as they are asked for, nothing is read of the disk, and
// what was asked for is remembered.
class ScriptedLiveFolders : public LiveFolderManaging
{
public:
    explicit ScriptedLiveFolders(std::function<ZQManagedObjectContext &()> context) : m_context(std::move(context)) {}

    QStringList calls; // "sync Pictures", "look at Pictures", "stop Pictures", "changed Pictures"
    QList<ZQObjectID> synced;
    QList<ZQObjectID> changed;
    bool wasForced = false;

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
        synced.append(folder);
        wasForced = wasForced || force;
    }
    void syncAndRemoveMissing(const ZQObjectID &folder) override { note("remove missing", {folder}); }
    void stopSyncingWatchedFolders(const QList<ZQObjectID> &folders) override { note("stop", folders); }
    void watchedFoldersDidChange(const QList<ZQObjectID> &folders) override
    {
        note("changed", folders);
        changed += folders;
    }
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID &folder) const override { return m_statuses.value(folder); }
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex) override
    {
        AddedLiveFolders result;
        for (const QString &path : paths) {
            if (const auto known = ZQSidebarWatchedFolder::watchedFolderWithPath(path, m_context())) {
                result.alreadyThere.append(known->objectID());
            } else if (!QFileInfo(path).isDir()) {
                result.refused.append({path, QStringLiteral("It is no folder.")});
            } else {
                const auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, m_context());
                folder->setIs_root(true);
                folder->setActive(true);
                ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(m_context())
                    ->addChild(folder.get(), atIndex + quint32(result.added.size()));
                m_context().save();
                result.added.append(folder->objectID());
            }
        }
        return result;
    }

private:
    void post(const QString &name, const ZQSidebarBaseItem &folder)
    {
        ZQNotificationCenter::defaultCenter().postNotification(name, this, {{QStringLiteral("folder"), folder.UUID()}});
    }
    void note(const char *what, const QList<ZQObjectID> &folders)
    {
        for (const ZQObjectID &id : folders) {
            calls.append(QLatin1StringView(what) + u' ' +
                         zqCast<ZQSidebarBaseItem>(m_context().objectWithID(id))->title());
        }
    }

    std::function<ZQManagedObjectContext &()> m_context;
    ZQOperationQueue m_queue{QStringLiteral("Live folders"), 1};
    QHash<ZQObjectID, LiveFolderStatus> m_statuses;
};
