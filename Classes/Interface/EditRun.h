#pragma once

#include "Classes/Interface/WindowContext.h"

class ZQOperation;

// One way through the rows of a change, at once in the window's context or on the window's edit queue (`QueuedEdit`):
// saving, telling what failed, progress with cancel. On the thread of its context.
class EditRun
{
public:
    explicit EditRun(WindowContext &window); // at once; main thread
    EditRun(WindowContext &window, ZQManagedObjectContext &context, std::weak_ptr<ZQOperation> operation);

    ZQManagedObjectContext &context() const { return m_context; }
    bool save(); // false when that failed, which was told
    void presentError(const ZQError &error);

    // Calls `change` for one batch of `count` rows after another until it answers false or the person cancels; progress
    // where there is more than one. How many rows were done.
    qsizetype inBatches(const QString &progressText, qsizetype count,
                        const std::function<bool(qsizetype first, qsizetype size)> &change);

    static constexpr qsizetype batchSize = 1000;

private:
    bool isCancelled() const;

    WindowContext &m_window;
    ZQManagedObjectContext &m_context;
    std::weak_ptr<ZQOperation> m_operation;
    bool m_isQueued;
};
