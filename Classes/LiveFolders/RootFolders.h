#pragma once

#include "Classes/LiveFolders/FolderListing.h"
#include "Classes/LiveFolders/SyncRun.h"

// The roots of a run: finds each where it is now, and says whether what lies there may be compared with what the store
// has. One that cannot be found, or in whose place something else lies, is marked and its items are put aside, nothing
// is removed, and it comes back when its place does.
//
// What is changed is not saved here.
class RootFolders
{
public:
    explicit RootFolders(SyncRun &run) : m_run(run) {}

    // Once for each root of the run; the same answer afterwards. Null: it is not to be looked at, as one that a person
    // disabled.
    LiveFolderRecord *open(const ZQRef<ZQSidebarWatchedFolder> &root);
    QList<ZQRef<ZQSidebarWatchedFolder>> all(); // active ones
    // The root of a folder; null for one that hangs nowhere.
    static ZQRef<ZQSidebarWatchedFolder> rootOf(const ZQRef<ZQSidebarWatchedFolder> &folder);
    static QString reasonForAnother(); // a root is missing: another folder lies at its place; localized
    static qint64 stampOf(const ZQSidebarWatchedFolder &root);

    // The folder moved, with all it holds: rows and records say so.
    void move(LiveFolderRecord &from, qint64 key, LiveFolderRecord &to, qint64 father, const QByteArray &path);
    void bringBack(ZQSidebarWatchedFolder &folder);
    void putAside(ZQSidebarWatchedFolder &folder, const QString &reason);
    // Whether at least half of what the store has of a folder is in it; of nothing, always.
    static bool isWhatStoreKnows(const ZQSidebarWatchedFolder &folder, const FolderListing &listing);

private:
    LiveFolderRecord &recordFor(const ZQRef<ZQSidebarWatchedFolder> &root);
    void noteEarlierPaths(LiveFolderRecord &record, qint64 key); // with all below
    void dropRowsThatWent(LiveFolderRecord &record);
    bool isAtItsPlace(ZQSidebarWatchedFolder &root, LiveFolderRecord &record);
    bool follow(ZQSidebarWatchedFolder &root, LiveFolderRecord &record, const QString &path);
    bool findNewFather(ZQSidebarWatchedFolder &root, LiveFolderRecord &record, const QString &path);
    void renewRows(qint64 key, const LiveFolderRecord &record);

    SyncRun &m_run;
    QHash<qint64, LiveFolderRecord *> m_opened;
    std::optional<QList<ZQRef<ZQSidebarWatchedFolder>>> m_all;
    std::optional<QSet<qint64>> m_rows; // of live folders, that are active
};
