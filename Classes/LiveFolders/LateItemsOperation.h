#pragma once

#include "Kit/Operations/ZQOperation.h"

#include <memory>

class ImportOwner;
class ZQPersistentStoreCoordinator;

// Takes items out of sight whose live folder was removed or disabled without them: by a process that was cut off in the
// middle, or because a run saved a batch after that. For the edit queue, where it takes its turn with the edits that
// bring such items back. A cancel ends it at its last save; what is left is found the next time.
//
// Made on the main thread; runs on the queue's.
class LateItemsOperation : public ZQOperation
{
public:
    // `owner` merges what is saved, and outlives it.
    LateItemsOperation(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, ImportOwner &owner);
    void main() override;

private:
    const std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    ImportOwner &m_owner;
};
