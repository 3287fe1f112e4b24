// How live folders stand and how far they are, as it is told.

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/LiveFolders/LiveFolderManager.h"
#include "Classes/LiveFolders/RootFolders.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QLocale>

void LiveFolderManager::postStatus(const ZQObjectID &folder)
{
    if (ZQManagedObjectContext *const store = context()) {
        ZQNotificationCenter::defaultCenter().postNotification(
            statusDidChange, static_cast<LiveFolderManaging *>(this),
            {{QStringLiteral("folder"), folder.URIRepresentation(store->persistentStoreCoordinator()->storeUUID())}});
    }
}

bool LiveFolderManager::isRunningFor(const ZQObjectID &folder) const
{
    const QList<ZQObjectID> alone = m_running ? m_running->alsoLookedAt() : QList<ZQObjectID>();
    if (m_wanted.contains(folder) || alone.contains(folder)) {
        return true;
    }
    QList<ZQObjectID> whole = m_running ? m_running->watchedFoldersIDs() : QList<ZQObjectID>();
    const auto &waiting = m_wanted.all();
    for (auto wanted = waiting.constBegin(); wanted != waiting.constEnd(); ++wanted) {
        if (wanted->everythingBelow) {
            whole.append(wanted.key());
        }
    }
    ZQManagedObjectContext *const store = whole.isEmpty() ? nullptr : context();
    return store && isBelow(zqCast<ZQSidebarWatchedFolder>(store->existingObjectWithID(folder)), whole);
}

SyncProgress::State LiveFolderManager::progressOf(qint64 root) const
{
    const SyncProgress::State earlier = m_earlierTurns.value(root);
    const SyncProgress::State now =
        m_running && m_runningRoots.contains(root) ? m_running->progress(root) : SyncProgress::State();
    return {earlier.done + now.done, now.total > 0 ? earlier.done + now.total : earlier.total};
}

void LiveFolderManager::noteTurn(const WatchFoldersImportOperation &operation)
{
    QSet<qint64> toGoOn;
    for (const WatchFoldersImportOperation::CutShort &cut : operation.cutShort()) {
        toGoOn.insert(cut.root.key);
        m_earlierTurns.insert(cut.root.key, progressOf(cut.root.key));
    }
    if (operation.isCancelled()) {
        noteUnfinished(m_wasStopped ? QSet<qint64>() : m_runningRoots);
        return;
    }
    for (const ZQObjectID &folder : operation.watchedFoldersIDs()) {
        if (!toGoOn.contains(folder.key)) { // where it is a root, all of it was looked at
            m_earlierTurns.remove(folder.key);
            m_unfinished.remove(folder.key);
        }
    }
}

void LiveFolderManager::noteUnfinished(const QSet<qint64> &roots)
{
    for (const qint64 root : roots) {
        m_unfinished.insert(root, progressOf(root));
        m_earlierTurns.remove(root);
    }
}

QString LiveFolderManager::reasonForUnfinished(const ZQSidebarWatchedFolder &row) const
{
    const auto unfinished = m_unfinished.constFind(row.objectID().key);
    const bool isCancelled = unfinished != m_unfinished.constEnd();
    if (!row.is_root() || !row.active() || !row.isFollowed() || (!isCancelled && row.lastSyncDate().isValid())) {
        return {};
    }
    const QLocale locale;
    return isCancelled && unfinished->total > 0
               ? zqFormat(zqLocalized("Syncing did not come to its end: %@ of %@ files were taken. Sync now goes on."),
                          {locale.toString(unfinished->done), locale.toString(unfinished->total)})
               : zqLocalized("Syncing did not come to its end. Sync now goes on.");
}

LiveFolderStatus LiveFolderManager::statusOfWatchedFolder(const ZQObjectID &folder) const
{
    LiveFolderStatus status;
    status.isSyncing = isRunningFor(folder);
    if (status.isSyncing) {
        const SyncProgress::State progress = progressOf(rootOf(folder));
        status.filesDone = progress.done;
        status.filesTotal = progress.total;
    }
    ZQManagedObjectContext *const store = context();
    const auto row = store ? zqCast<ZQSidebarWatchedFolder>(store->existingObjectWithID(folder)) : nullptr;
    if (!row) {
        return status;
    }
    status.isSwept = m_watching && m_watching->isSwept(row->folderPath());
    status.filesKept = m_filesKept.value(folder.key);
    status.reason = m_reasons.value(folder.key);
    const auto standing = row->standing();
    status.holdsAnother = row->is_root() && standing == ZQSidebarWatchedFolder::Standing::Missing &&
                          status.reason == RootFolders::reasonForAnother();
    if (status.reason.isEmpty() && standing == ZQSidebarWatchedFolder::Standing::Trashed) {
        status.reason = zqLocalized("Its folder is in the trash. Restore it there, or remove the live folder.");
    } else if (status.reason.isEmpty() && standing == ZQSidebarWatchedFolder::Standing::Missing) {
        status.reason = zqLocalized("Its folder cannot be found. Connect the drive it is on, or put the folder back.");
    } else if (status.reason.isEmpty()) {
        status.reason = status.isSyncing ? QString() : reasonForUnfinished(*row);
        if (status.reason.isEmpty() && m_watching) {
            status.reason = m_watching->reasonFor(row->folderPath());
        }
    }
    return status;
}
