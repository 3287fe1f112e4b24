#pragma once

#include "Classes/LiveFolders/FolderFilesSync.h"
#include "Classes/LiveFolders/FolderTreeSync.h"
#include "Classes/LiveFolders/RootFolders.h"
#include "Classes/LiveFolders/SyncRun.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QList>

#include <memory>

class ImportOwner;

// Brings live folders in step with the disk: sub-folders become live folders below them, files become items that stay
// where they are, what changed is read again, what moved is followed, and what is gone leaves the library. Files are
// never written to but for their tags, and never moved, hidden or removed.
//
// Everything is compared with what was there the last time, so that a folder that is as it was costs no look at the
// store. Files reach the disk before the store names them, and the record of what was seen follows the store, so that a
// killed run is gone on with by the next. A cancel ends it at its last save. The end of its turn ends it with what is
// being read: what is in step by then is kept as such, and nothing is removed yet.
//
// Made on the main thread; runs on the queue's.
class WatchFoldersImportOperation : public ZQOperation
{
public:
    struct Uses
    {
        std::shared_ptr<ZQPersistentStoreCoordinator> coordinator; // null: there is no store
        std::shared_ptr<LiveFolderRecords> records;
        ImportOwner &owner;          // merges what is saved
        ZQOperationQueue *syncQueue; // null: orphans are looked for in any case
        const void *sender;          // the notifications' object
    };
    // With `shouldTraversSubFolders` everything below the folders is looked at as well; new and moved ones always are.
    WatchFoldersImportOperation(const QList<ZQObjectID> &watchedFoldersIDs, bool shouldTraversSubFolders,
                                const Uses &uses);

    void setForced(bool forced) { m_isForced = forced; } // before the start
    bool isForced() const { return m_isForced; }
    void setAlsoLookedAt(const QList<ZQObjectID> &folders) { m_alone = folders; } // without what is below; the same

    void setReadsUnreadAgain(bool reads) { m_readsUnreadAgain = reads; }            // the same
    void setRemovesMissing(const QSet<qint64> &roots) { m_removesMissing = roots; } // the same, as what follows
    void setBegun(const QSet<ZQObjectID> &begun) { m_begun = begun; }               // a run before told of their start
    SyncTurn &turn() { return m_turn; }

    const QList<ZQObjectID> &watchedFoldersIDs() const { return m_watchedFoldersIDs; }
    const QList<ZQObjectID> &alsoLookedAt() const { return m_alone; }
    SyncProgress::State progress(qint64 root) const { return m_progress.state(root); } // any thread
    // After the end: why folders are out of reach or were left as they are; an empty text: they are no longer.
    const QHash<qint64, QString> &reasons() const { return m_reasons; }

    const QList<SyncQuestion> &questions() const { return m_questions; }
    // Roots of which the end of its turn kept the run from reading all files. Those of its folders that are in them
    // are not told of as ended: another run goes on there.
    struct CutShort
    {
        ZQObjectID root;
        qsizetype filesLeft = 0; // of all of them
    };
    const QList<CutShort> &cutShort() const { return m_cutShort; }
    const QSet<ZQObjectID> &toGoOn() const { return m_toGoOn; }
    // Folders in which an edit was at work.
    const QList<ZQObjectID> &toLookAtAgain() const { return m_toLookAtAgain; }

    void main() override;

private:
    void setupManagedObjectContext(SyncRun &run);
    void post(const QString &name, const ZQObjectID &folder) const;
    void syncFolders(SyncRun &run);
    static void tellRefusal(SyncRun &run, FolderTreeSync &tree);
    void endTurn(SyncRun &run, FolderTreeSync &tree, const FolderFilesSync &files);
    void finish(SyncRun &run, FolderTreeSync &tree, const FolderFilesSync &files);
    void checkOrphans(SyncRun &run, RootFolders &roots);
    static void readTags(SyncRun &run, qint64 folder, const QSet<QString> &paths);
    void writeRecords(SyncRun &run, const std::vector<FolderTreeSync::Changed> &changed, const FolderFilesSync &files);
    using NamesByFolder = QHash<QByteArray, QList<QByteArray>>;
    static NamesByFolder byFolder(const QStringList &paths);

    const QList<ZQObjectID> m_watchedFoldersIDs;
    const bool m_shouldTraversSubFolders;
    const Uses m_uses;
    QList<ZQObjectID> m_alone;
    bool m_isForced = false;
    bool m_readsUnreadAgain = false;
    QSet<qint64> m_removesMissing;
    SyncTurn m_turn;
    QSet<ZQObjectID> m_begun;
    QList<CutShort> m_cutShort;
    QSet<ZQObjectID> m_toGoOn;
    SyncProgress m_progress;
    QHash<qint64, QString> m_reasons;
    QList<SyncQuestion> m_questions;
    QList<ZQObjectID> m_toLookAtAgain;
    ZQManagedObjectContext::Token m_saveObserver;
};
