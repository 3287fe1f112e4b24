#pragma once

#include "Classes/Import/ImportSettings.h"
#include "Classes/LiveFolders/LiveFolderRecords.h"
#include "Classes/LiveFolders/SyncTurn.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperation.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDateTime>
#include <QHash>
#include <QSet>

#include <memory>
#include <optional>
#include <utility>

// How far a run is with each root, for whoever shows it. Any thread.
class SyncProgress
{
public:
    struct State
    {
        qsizetype done = 0;
        qsizetype total = 0;
    };
    State state(qint64 root) const
    {
        const ZQLockGuard lock(m_mutex);
        return m_states.value(root);
    }
    void begin(const QHash<qint64, qsizetype> &totals)
    {
        const ZQLockGuard lock(m_mutex);
        for (auto total = totals.constBegin(); total != totals.constEnd(); ++total) {
            m_states.insert(total.key(), {0, *total});
        }
    }
    void advance(qint64 root)
    {
        const ZQLockGuard lock(m_mutex);
        ++m_states[root].done;
    }

private:
    mutable ZQMutex m_mutex;
    QHash<qint64, State> m_states ZQ_GUARDED_BY(m_mutex);
};

// Much that is gone from a root at once, and stays until the person says that it may go.
struct SyncQuestion
{
    ZQObjectID root;
    size_t what = 0; // which items
    qsizetype count = 0;
    QString title; // of the root
};

// What the parts of one synchronisation share. The operation's thread.
struct SyncRun
{
    ZQOperation &operation; // its cancel ends the run
    const ImportSettings settings;
    const std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;
    LiveFolderRecords &records;
    SyncProgress &progress;
    SyncTurn &turn;
    const bool isForced;               // what records say does not count, and what was decided is asked again
    const bool readsUnreadAgain;       // a person asked: files that made no item get another chance
    const QSet<qint64> removesMissing; // roots: however much is gone leaves the library, and nobody is asked

    std::unique_ptr<ZQManagedObjectContext> moc = {};
    QSet<qint64> changedRoots = {};                     // something below them is not as the store had it
    QHash<qint64, QList<QByteArray>> earlierPaths = {}; // of folders that moved in this run
    QHash<qint64, QString> reasons = {};                // why a folder is out of reach, or was left as it is; localized
    QList<SyncQuestion> questions = {};                 // to be asked after the end
    QSet<qint64> toLookAtAgain = {};                    // folders in which an edit is at work
    bool didFail = false; // a save or a fetch did: what is pending is given up, and nothing further is begun

    QString refusal = {}; // why not all could be brought in, as for a full disk; localized

    bool isWanted() const { return !operation.isCancelled() && !didFail; }
    ZQObjectID folderID(qint64 key) const { return {moc->model().entity(ZQSidebarWatchedFolder::entityName()), key}; }
    // Null when it is gone.
    ZQRef<ZQSidebarWatchedFolder> folder(qint64 key) const
    {
        return zqCast<ZQSidebarWatchedFolder>(moc->existingObjectWithID(folderID(key)));
    }
    // Everything or nothing; a failure is logged.
    bool save();
    // What a fetch found. Where it failed the run ends: from what the store did not say nothing may be concluded.
    template <class Found>
    Found found(std::optional<Found> fetched)
    {
        didFail = didFail || !fetched;
        return std::move(fetched).value_or(Found());
    }
};
