#pragma once

#include "Classes/Interface/WindowContext.h"

class ZQOperation;

// One way through the rows of a change, at once in the window's context or on the window's edit queue (`QueuedEdit`):
// saving, telling what failed, progress with cancel. On the thread of its context.
class EditRun
{
public:
    explicit EditRun(WindowContext &window); // at once; main thread
    EditRun(WindowContext &window, ZQManagedObjectContext &context, std::weak_ptr<ZQOperation> operation,
            std::shared_ptr<UserProgress> progress); // on the queue; without progress, null

    ZQManagedObjectContext &context() const { return m_context; }
    bool save(); // false when that failed, which was told
    void presentError(const ZQError &error);

    // Calls `change` for one batch of `count` rows after another until it answers false or the person cancels. How many
    // rows were done.
    qsizetype inBatches(const QString &progressText, qsizetype count,
                        const std::function<bool(qsizetype first, qsizetype size)> &change);

    bool isQueued() const { return m_isQueued; }
    bool isCancelled() const;

    static constexpr qsizetype batchSize = 1000;

private:
    WindowContext &m_window;
    ZQManagedObjectContext &m_context;
    std::weak_ptr<ZQOperation> m_operation;
    std::shared_ptr<UserProgress> m_progress;
    bool m_isQueued;
};
