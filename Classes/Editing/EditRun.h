#pragma once

#include "Classes/Editing/EditContext.h"

class ZQOperation;

// How many rows are changed or move, how many of them may be changed at once, and how many a save.
struct EditSize
{
    qint64 rows = 0;
    qint64 mostAtOnce = 0;
    qsizetype perBatch = 1000;
};

// One way through the rows of a change, at once in the caller's context or on the edit queue (`QueuedEdit`):
// saving, telling what failed, progress with cancel. On the thread of its context.
class EditRun
{
public:
    EditRun(EditContext &edits, qsizetype perBatch); // at once; main thread
    // On the queue; without progress, null.
    EditRun(EditContext &edits, qsizetype perBatch, ZQManagedObjectContext &context,
            std::weak_ptr<ZQOperation> operation, std::shared_ptr<UserProgress> progress);

    ZQManagedObjectContext &context() const { return m_context; }
    bool save(); // false when that failed, which was told, and what was changed is gone
    void presentError(const ZQError &error);

    // Calls `change` for one batch of `count` rows after another until it answers false or the person cancels. How many
    // rows were done.
    qsizetype inBatches(const QString &progressText, qsizetype count,
                        const std::function<bool(qsizetype first, qsizetype size)> &change);

    qsizetype perBatch() const { return m_perBatch; }
    bool isQueued() const { return m_isQueued; }
    bool isCancelled() const;

    // Items that were changed and may be there again: who takes a step back wants to see them.
    void didBring(const QList<ZQObjectID> &items) { m_brought += items; }
    const QList<ZQObjectID> &brought() const { return m_brought; }
    std::shared_ptr<ZQOperation> operation() const { return m_operation.lock(); } // null when it is not queued

private:
    EditContext &m_edits;
    ZQManagedObjectContext &m_context;
    std::weak_ptr<ZQOperation> m_operation;
    std::shared_ptr<UserProgress> m_progress;
    QList<ZQObjectID> m_brought;
    qsizetype m_perBatch;
    bool m_isQueued;
};
