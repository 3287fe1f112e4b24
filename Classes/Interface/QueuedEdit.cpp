#include "Classes/Interface/QueuedEdit.h"

#include "Kit/Operations/ZQMainThread.h"

#include <utility>

QueuedEdit::QueuedEdit(WindowContext &window, std::function<void(EditRun &)> change)
    : m_window(window), m_coordinator(window.context.persistentStoreCoordinator()), m_change(std::move(change))
{
}

void QueuedEdit::main()
{
    ZQManagedObjectContext context(m_coordinator, ZQMergePolicy::PropertyObjectTrump);
    const auto merging = context.observeDidSave([this](const ZQContextDidSave &saved) {
        zqOnMainThreadAndWait([&] { m_window.context.mergeChangesFromContextDidSaveNotification(saved); });
    });
    EditRun run(m_window, context, weak_from_this());
    m_change(run);
}
