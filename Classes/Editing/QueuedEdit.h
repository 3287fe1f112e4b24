#pragma once

#include "Classes/Editing/EditRun.h"
#include "Kit/Operations/ZQOperation.h"

// A change for the edit queue: in a context of its own, each save merged into that of whoever asked for it. Made on the
// main thread; `change` runs on the queue's.
class QueuedEdit : public ZQOperation
{
public:
    // Puts a change of about so many rows on the queue. A person sees at once, and can cancel, one of more than a batch
    // or one that has to wait for its turn; not cancel one that `isWhole`.
    static void begin(EditContext &edits, const QString &progressText, EditSize size,
                      std::function<void(EditRun &)> change, bool isWhole = false);

    QueuedEdit(EditContext &edits, EditSize size, std::function<void(EditRun &)> change, bool isWhole);
    ~QueuedEdit() override;
    void main() override;
    void endSoon() override; // one that is no more than a batch, or whole, is not lost

private:
    EditContext &m_edits;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    EditSize m_size;
    bool m_isWhole;
    std::function<void(EditRun &)> m_change;
    std::shared_ptr<UserProgress> m_progress; // null for none
    std::function<void()> m_wasCancelled;     // of the context, which may be gone by then
    std::shared_ptr<std::atomic<int>> m_queued;
};
