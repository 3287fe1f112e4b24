#pragma once

#include "Classes/Import/BatchState.h"
#include "Classes/Import/PendingImport.h"

#include <QHash>
#include <QSet>

#include <functional>

// How a batch stands to the request that the bundle keeps.
struct KeptRequest
{
    enum class Kind : quint8 {
        New,      // it was noted just now
        GoesOn,   // an earlier process did not end it: what that one did not save is imported
        UnpacksOf // of what came out of the archive that this batch unpacks once more, which goes on with it then
    };
    std::shared_ptr<PendingImportFile> pending = {}; // null: it could not be noted, and cannot go on if it is cut off
    Kind kind = Kind::New;
};

// The request of one batch as the bundle keeps it: notes what the batch is about to save before it does, tells what an
// earlier process had saved and what is left of it, and at the end removes the request or keeps what of it is still to
// be done. A batch without a kept request has nothing to note, and every call succeeds.
//
// The batch's thread. Notes are small writes to one file, which reach the disk with the next flush of the file system;
// what an earlier process had saved is one query for 500 of its files.
class BatchResumption
{
public:
    using Restore = std::function<void(const PendingImportFile::Source &source, ZQLibraryBaseItem &item)>;

    BatchResumption(BatchState &batch, const KeptRequest &kept);

    bool goesOn() const { return m_isResumed && m_pending; }
    bool unpacksOf() const { return m_requestOfArchive != nullptr; }
    const std::shared_ptr<PendingImportFile> &requestOfArchive() const { return m_requestOfArchive; }
    const PendingImport &firstRequest() const { return m_firstRequest; } // as it was before the start

    // Calls `restore` with each item that the batch had saved before it was cut off, in their order. False when they
    // cannot be told: the batch is postponed.
    bool restoreEarlierItems(const Restore &restore);
    qsizetype earlierItemCount() const { return m_earlierItemCount; }
    // Each path as often as it is not in yet, and of a request that was cut off only what is there now.
    QStringList remaining(const QStringList &files);
    // Paths that the report needs no line for: they were in before, or cannot be found, which is told of all together.
    QSet<QString> accountedFor() const;

    bool rememberGroups(const QList<FileGroup> &groups, ZQError *error);
    bool remember(const QList<PendingImportFile::Source> &sources, ZQError *error);
    // Ends the batch before its time, and not the request.
    void postpone(const QString &reason);

    // At the end of the batch. `keepsCancelled`: a cancel keeps the request.
    void end(bool wasCancelled, bool keepsCancelled, qsizetype savedItemCount, bool hasFollowUps);
    bool isRequestKept() const { return m_isRequestKept; }
    QString textForUnfinished() const; // why it is kept

private:
    void endPending(bool wasCancelled, bool keepsCancelled, qsizetype savedItemCount);
    void keepPending(qsizetype savedItemCount);
    void endRequestOfArchive(bool wasCancelled, bool keepsCancelled, bool hasFollowUps);

    BatchState &m_batch;
    std::shared_ptr<PendingImportFile> m_pending;
    std::shared_ptr<PendingImportFile> m_requestOfArchive;
    const bool m_isResumed;
    const PendingImport m_firstRequest;
    QHash<QString, int> m_earlierPaths; // how often each is in already
    qsizetype m_earlierItemCount = 0;
    QStringList m_outOfReach; // what a request that was cut off names, and nobody finds
    QString m_postponement;   // why the request is kept
    bool m_isRequestKept = false;
};
