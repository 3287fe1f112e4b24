#pragma once

#include "Classes/LiveFolders/FolderFilesSync.h"
#include "Classes/LiveFolders/FolderTreeSync.h"
#include "Classes/LiveFolders/SyncRun.h"

#include <optional>
#include <vector>

// What a run found gone leaves the library: items become inactive, so that they come back as they were when their files
// do, and sub-folders leave the sidebar. Where that is much of a live folder at once, the person is asked after the
// run, and until they say otherwise everything stays; many small removals within a minute are as one. No file is
// touched.
class FolderRemovals
{
public:
    explicit FolderRemovals(SyncRun &run) : m_run(run) {}

    // Saves nothing.
    void run(FolderTreeSync &tree, const FolderFilesSync &files);

    // Whether so many, of a folder that had `known`, are asked about.
    static bool isMuch(qsizetype gone, qsizetype known);

private:
    struct OfRoot
    {
        LiveFolderRecord *record = nullptr;
        QList<FolderTreeSync::Gone> folders;
        QList<FolderFilesSync::Gone> files;
        qsizetype count = 0;
        qsizetype countOfOlder = 0; // than the removals of the last minute
        size_t what = 0;            // which ones
        bool isMuch = false;
    };

    qsizetype countIn(qint64 folder, const std::optional<QDateTime> &importedBefore);
    static RecentRemovals::Sum olderOf(const FolderFilesSync::Gone &gone, const std::optional<QDateTime> &since);
    void noteRemoval(const OfRoot &gone, qsizetype known);
    OfRoot &ofRoot(LiveFolderRecord *record);
    void gather(const FolderTreeSync &tree, const FolderFilesSync &files);
    void remove(const OfRoot &gone);
    void endWhatIsKept(FolderTreeSync &tree);
    void endKept(qint64 rootKey, qint64 folderKey);
    bool mayRemove(const OfRoot &gone);
    void removeFolder(LiveFolderRecord &record, qint64 key);
    QList<qint64> withAllBelow(const LiveFolderRecord &record, qint64 key) const;

    SyncRun &m_run;
    std::vector<OfRoot> m_roots;
    const QDateTime m_now = zqNow();
    QSet<qint64> m_lacking; // folders that miss something still
};
