#include "Classes/Interface/QueuedEdit.h"

#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <malloc.h>
#include <utility>

QueuedEdit::QueuedEdit(WindowContext &window, qint64 rows, std::function<void(EditRun &)> change)
    : m_window(window), m_coordinator(window.context.persistentStoreCoordinator()), m_rows(rows),
      m_change(std::move(change))
{
}

void QueuedEdit::begin(WindowContext &window, const QString &progressText, qint64 rows,
                       std::function<void(EditRun &)> change)
{
    const auto edit = std::make_shared<QueuedEdit>(window, rows, std::move(change));
    const bool isShown = rows > EditRun::batchSize || window.editQueue.operationCount() > 0;
    if (isShown && !progressText.isEmpty()) {
        edit->m_progress = window.user.beginProgress(progressText, double(rows), [weak = edit->weak_from_this()] {
            if (const auto waitingOrRunning = weak.lock()) {
                waitingOrRunning->cancel();
            }
        });
    }
    window.editQueue.addOperation(edit);
}

void QueuedEdit::main()
{
    {
        ZQManagedObjectContext context(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
        const auto merging = context.observeDidSave([this](const ZQContextDidSave &saved) {
            zqOnMainThreadAndWait([&] { m_window.context.mergeChangesFromContextDidSaveNotification(saved); });
        });
        EditRun run(m_window, context, weak_from_this(), std::move(m_progress));
        m_change(run);
    }
    // What the batches freed lies in the heaps of several threads, and none gives it back by itself.
    if (m_rows > EditRun::batchSize) {
        ::malloc_trim(0);
    }
}
