#pragma once

#include "Classes/Interface/EditRun.h"
#include "Kit/Operations/ZQOperation.h"

// A change for a window's edit queue: in a context of its own, each save merged into the window's. Made on the main
// thread; `change` runs on the queue's.
class QueuedEdit : public ZQOperation
{
public:
    QueuedEdit(WindowContext &window, std::function<void(EditRun &)> change);
    void main() override;

private:
    WindowContext &m_window;
    std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    std::function<void(EditRun &)> m_change;
};
