#pragma once

#include "Classes/Interface/EditRun.h"
#include "Kit/Operations/ZQOperation.h"

// A change for a window's edit queue: in a context of its own, each save merged into the window's. Made on the main
// thread; `change` runs on the queue's.
class QueuedEdit : public ZQOperation
{
public:
    // Puts a change of about `rows` rows on the queue. A person sees at once, and can cancel, one of more than a batch
    // or one that has to wait for its turn.
    static void begin(WindowContext &window, const QString &progressText, qint64 rows,
                      std::function<void(EditRun &)> change);

    QueuedEdit(WindowContext &window, qint64 rows, std::function<void(EditRun &)> change);
    void main() override;

private:
    WindowContext &m_window;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    qint64 m_rows; // about
    std::function<void(EditRun &)> m_change;
    std::shared_ptr<UserProgress> m_progress; // null for none
};
