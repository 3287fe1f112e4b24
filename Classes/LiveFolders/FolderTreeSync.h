#pragma once

#include "Classes/LiveFolders/FolderListing.h"
#include "Classes/LiveFolders/RootFolders.h"
#include "Classes/LiveFolders/SyncRun.h"

#include <deque>
#include <unordered_map>
#include <vector>

// The directories of a run: looks at each, leaves alone what is as its record says, makes live folders of new ones, and
// follows those that moved. What is gone is only told; nothing is removed here.
//
// A directory is known again by its identity, or, across file systems and after a copy, by half of what it held. When
// something new was elsewhere in a live folder before, that place is looked at as well, so that what moved is never
// taken for removed by a run that saw only one end of it.
class FolderTreeSync
{
public:
    FolderTreeSync(SyncRun &run, RootFolders &roots) : m_run(run), m_roots(roots) {}

    void add(const ZQRef<ZQSidebarWatchedFolder> &folder, bool everythingBelow);
    // False when the store failed.
    bool run();

    // A folder whose files are to be compared with the store.
    struct Changed
    {
        LiveFolderRecord *record = nullptr;
        qint64 key = 0;
        FolderListing listing;
        bool isNew = false; // the store has no items of it
    };
    std::vector<Changed> &changed() { return m_changed; }
    // The highest of those that were not found again.
    struct Gone
    {
        LiveFolderRecord *record = nullptr;
        qint64 key = 0;
    };
    const std::vector<Gone> &gone() const { return m_gone; }

private:
    struct Look
    {
        LiveFolderRecord *record;
        qint64 key;
        bool everythingBelow;
        bool isNew = false;
        bool isSettled = false; // that it is the folder of this row
    };
    struct NewFolder
    {
        LiveFolderRecord *record;
        qint64 father;
        QByteArray path;
        quint64 inode;
        bool hasPassingInode;
    };
    struct Place
    {
        LiveFolderRecord *record;
        qint64 folder; // that held it
        qsizetype entry;
    };

    void look(const Look &look);
    bool isStillItself(const Look &look, RecordedFolder &folder, const FolderListing &listing);
    void compareFolders(const Look &look, const FolderListing &listing, bool isChanged);
    void lookWhereNewOnesWere(const Changed &changed);
    void lookWhereItWas(const FolderEntry &entry, const FolderListing &listing, qint64 folder);
    const std::unordered_multimap<quint64, Place> &places();
    void markGone(LiveFolderRecord &record, qint64 key);
    void putAside(LiveFolderRecord &record, qint64 key);
    void keepWhatHoldsMissing();
    bool settleFolders();
    bool follow(const NewFolder &folder);
    const Gone *findGone(const NewFolder &folder);
    bool takeOver(const NewFolder &folder);
    bool followGoneOnes();
    // Where folders are made.
    struct Father
    {
        ZQRef<ZQSidebarWatchedFolder> row;
        QHash<QString, ZQRef<ZQSidebarWatchedFolder>> children = {}; // by path; made by a run that was cut off
        qint32 nextOrder = 0;
    };
    using Fathers = std::unordered_map<qint64, Father>;
    Father &fatherOf(const NewFolder &folder, Fathers &fathers);
    void make(std::vector<NewFolder> folders);
    bool wasMounted(const LiveFolderRecord &record, const RecordedFolder &folder) const;

    SyncRun &m_run;
    RootFolders &m_roots;
    std::deque<Look> m_looks;
    QSet<qint64> m_seen; // that were looked at
    std::vector<Changed> m_changed;
    std::vector<NewFolder> m_newFolders;
    std::vector<Gone> m_gone;
    std::optional<std::unordered_multimap<quint64, Place>> m_places; // by inode
};
