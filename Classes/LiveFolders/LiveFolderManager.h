#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/LiveFolders/LiveFolderRecords.h"
#include "Classes/LiveFolders/LiveFolderWatching.h"
#include "Classes/LiveFolders/RemovalQuestions.h"
#include "Classes/LiveFolders/SyncRequests.h"
#include "Classes/LiveFolders/WatchFoldersImportOperation.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <optional>

// Keeps live folders in step with the disk: has them watched, and synchronised one run after another. What is asked for
// while a run goes on becomes one run together; one that reads for long makes way for what concerns other roots, and
// goes on after that. Main thread.
class LiveFolderManager : public QObject, public LiveFolderManaging
{
    Q_OBJECT
public:
    LiveFolderManager();
    ~LiveFolderManager() override;

    ZQOperationQueue &syncOperationQueue() override { return m_syncOperationQueue; }
    void getLiveFolderPermissionFromSandbox() override;
    void startObservingWatchedFolders() override;
    void stopObservingWatchedFolders() override;

    void syncRootWatchedFolders() override { syncRootWatchedFoldersForceSync(false); }
    void syncRootWatchedFoldersForceSync(bool force);
    void syncWatchedFolder(const ZQObjectID &folder, bool force) override;
    void syncWatchedFolders(const QList<ZQObjectID> &folders, bool shouldTraversSubFolders, bool forceSync);
    void syncFolderAtPath(const QString &path) override;
    void stopSyncingWatchedFolders(const QList<ZQObjectID> &folders) override;
    AddedLiveFolders addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex) override;
    void watchedFoldersDidChange(const QList<ZQObjectID> &folders) override;
    LiveFolderStatus statusOfWatchedFolder(const ZQObjectID &folder) const override;
    void syncAndRemoveMissing(const ZQObjectID &folder) override;
    // Items that are still there though their live folder is removed or disabled. Beside the window, after the edits
    // that wait.
    void putAwayWhatCameTooLate();
    void setLengthOfTurns(SyncTurn::Length length) { m_lengthOfTurns = length; } // that begin after that
    RemovalQuestions &removalQuestions() { return m_removalQuestions; }

private:
    ZQManagedObjectContext *context() const; // null without a library
    QList<ZQRef<ZQSidebarWatchedFolder>> roots() const;
    // For the next run that concerns its root; `start` has it begin.
    void scheduleDbItemToUpdate(const ZQObjectID &folder, bool everythingBelow, bool isForced = false);
    qint64 rootOf(const ZQObjectID &folder) const; // 0 for none
    // The nearest folder around it that has a row; nothing for none that is followed.
    std::optional<ZQObjectID> scheduleFolderAtPath(const QString &path, bool everythingBelow);
    void start();
    std::shared_ptr<WatchFoldersImportOperation> operationFor(const SyncRequests::Next &next);
    void didEnd(const std::shared_ptr<WatchFoldersImportOperation> &operation);
    void goOnLater(const WatchFoldersImportOperation &operation);
    void postEnd(const QList<ZQObjectID> &folders) const; // of those whose run does not go on
    std::shared_ptr<LiveFolderRecords> records();
    void watchRoots();
    void updateWatchedFolder(const QString &path, bool everythingBelow);
    void observeExternalDisk();
    void externalDiskDidMount(const QString &path);
    void externalDiskDidUnmount(const QString &path);
    void entryDidMove(const QString &from, const QString &to);
    bool isRunningFor(const ZQObjectID &folder) const;
    bool isFollowed(const ZQObjectID &id) const; // or was removed, or disabled
    void postStatus(const ZQObjectID &folder);
    SyncProgress::State progressOf(qint64 root) const; // with the turns that it had before
    void noteTurn(const WatchFoldersImportOperation &operation);
    void noteUnfinished(const QSet<qint64> &roots);
    QString reasonForUnfinished(const ZQSidebarWatchedFolder &row) const; // empty for a root that is in step
    static bool isBelow(const ZQRef<ZQSidebarWatchedFolder> &folder, const QList<ZQObjectID> &folders);

    ZQOperationQueue m_syncOperationQueue;
    std::shared_ptr<WatchFoldersImportOperation> m_running;
    bool m_wasStopped = false; // the running one, to leave out some of its folders
    bool m_mayMakeWay = true;  // the running one
    QSet<qint64> m_runningRoots;
    SyncTurn::Length m_lengthOfTurns;
    SyncRequests m_wanted;
    QHash<qint64, QString> m_reasons; // by folder
    QSet<qint64> m_left;              // that were removed or disabled since the last run began
    RemovalQuestions m_removalQuestions;
    QHash<qint64, qsizetype> m_filesKept;              // by root
    QHash<qint64, SyncProgress::State> m_earlierTurns; // by root, while its run is to go on
    QHash<qint64, SyncProgress::State> m_unfinished; // by root, whose run was cancelled and none came to its end since
    std::unique_ptr<LiveFolderWatching> m_watching;
    QTimer m_statusTimer;
    std::shared_ptr<LiveFolderRecords> m_records;
    QString m_recordsBundle;
    QByteArray m_recordsStore;
};
