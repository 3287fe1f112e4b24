#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/LiveFolders/LiveFolderRecords.h"
#include "Classes/LiveFolders/LiveFolderWatching.h"
#include "Classes/LiveFolders/WatchFoldersImportOperation.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>

// Keeps live folders in step with the disk: has them watched, and synchronised one run after another. What is asked for
// while a run goes on becomes one run together. Main thread.
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

private:
    struct Wanted
    {
        bool everythingBelow = false;
        bool isForced = false;
    };

    ZQManagedObjectContext *context() const; // null without a library
    QList<ZQRef<ZQSidebarWatchedFolder>> roots() const;
    void note(const ZQObjectID &folder, Wanted wanted);
    void noteFolderAtPath(const QString &path, bool everythingBelow);
    void start();
    void putAwayWhatCameTooLate();
    void askAboutRemovals();
    void didEnd(const std::shared_ptr<WatchFoldersImportOperation> &operation);
    std::shared_ptr<LiveFolderRecords> records();
    void watchRoots();
    void folderDidChange(const QString &path, bool everythingBelow);
    void entryDidMove(const QString &from, const QString &to);
    bool isRunningFor(const ZQObjectID &folder) const;
    bool isFollowed(const ZQObjectID &id) const; // or was removed, or disabled
    void postStatus(const ZQObjectID &folder);
    static bool isBelow(const ZQRef<ZQSidebarWatchedFolder> &folder, const QList<ZQObjectID> &folders);

    ZQOperationQueue m_syncOperationQueue;
    std::shared_ptr<WatchFoldersImportOperation> m_running;
    bool m_wasStopped = false; // the running one, to leave out some of its folders
    QHash<ZQObjectID, Wanted> m_wanted;
    QHash<qint64, QString> m_reasons; // by folder
    QSet<qint64> m_left;              // that were removed or disabled since the last run began
    QList<SyncQuestion> m_questions;
    QList<SyncQuestion> m_allowed; // by the next run, as what follows
    QSet<qint64> m_postponed;      // roots whose question was put off
    bool m_isAsking = false;
    std::unique_ptr<LiveFolderWatching> m_watching;
    QTimer m_statusTimer;
    std::shared_ptr<LiveFolderRecords> m_records;
    QString m_recordsBundle;
    QByteArray m_recordsStore;
};
