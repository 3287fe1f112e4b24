#include "Classes/Editing/QueuedEdit.h"

#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <malloc.h>
#include <utility>

QueuedEdit::QueuedEdit(EditContext &edits, EditSize size, std::function<void(EditRun &)> change, bool isWhole)
    : m_edits(edits), m_coordinator(edits.context.persistentStoreCoordinator()), m_size(size), m_isWhole(isWhole),
      m_change(std::move(change)), m_wasCancelled(edits.wasCancelled), m_queued(edits.queued)
{
    ++*m_queued;
}

QueuedEdit::~QueuedEdit()
{
    if (isCancelled() && m_wasCancelled) {
        zqOnMainThread(m_wasCancelled);
    }
    --*m_queued;
}

void QueuedEdit::begin(EditContext &edits, const QString &progressText, EditSize size,
                       std::function<void(EditRun &)> change, bool isWhole)
{
    const auto edit = std::make_shared<QueuedEdit>(edits, size, std::move(change), isWhole);
    const bool isShown = size.rows > size.perBatch || edits.isBusy();
    if (isShown && !progressText.isEmpty()) {
        const auto cancel = [weak = edit->weak_from_this()] {
            if (const auto waitingOrRunning = weak.lock()) {
                waitingOrRunning->cancel();
            }
        };
        edit->m_progress =
            edits.user.beginProgress(progressText, double(size.rows), isWhole ? std::function<void()>() : cancel);
    }
    edits.editQueue.addOperation(edit);
}

void QueuedEdit::endSoon()
{
    if (m_size.rows > m_size.perBatch && !m_isWhole) {
        cancel();
    }
}

void QueuedEdit::main()
{
    {
        ZQManagedObjectContext context(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
        const auto merging = context.observeDidSave([this](const ZQContextDidSave &saved) {
            zqOnMainThreadAndWait([&] {
                m_edits.merge ? m_edits.merge(saved)
                              : m_edits.context.mergeChangesFromContextDidSaveNotification(saved);
            });
        });
        EditRun run(m_edits, m_size.perBatch, context, weak_from_this(), std::move(m_progress));
        m_change(run);
    }
    // What the batches freed lies in the heaps of several threads, and none gives it back by itself.
    if (m_size.rows > m_size.perBatch) {
        ::malloc_trim(0);
    }
}
