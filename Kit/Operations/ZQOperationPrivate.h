#pragma once

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQOperation.h"

#include <thread>
#include <vector>

struct ZQOperation::Private
{
    struct Observer
    {
        std::function<void(Key)> function;
    };

    const std::shared_ptr<ZQCancellation> cancellation = std::make_shared<ZQCancellation>();
    ZQMutex mutex;
    ZQCondition announced;
    bool isStarted ZQ_GUARDED_BY(mutex) = false;
    bool isExecuting ZQ_GUARDED_BY(mutex) = false;
    bool isFinished ZQ_GUARDED_BY(mutex) = false;
    bool isCancelled ZQ_GUARDED_BY(mutex) = false;
    // A completion block set from here on is called at once.
    bool completionIsDue ZQ_GUARDED_BY(mutex) = false;
    // Observers, completion block and hooks were told of the end.
    bool isAnnounced ZQ_GUARDED_BY(mutex) = false;
    std::thread::id announcer ZQ_GUARDED_BY(mutex);
    // Not a list that shares its cells beyond the lock.
    std::vector<std::shared_ptr<ZQOperation>> dependencies ZQ_GUARDED_BY(mutex);
    std::function<void()> completion ZQ_GUARDED_BY(mutex);
    std::vector<std::weak_ptr<Observer>> observers ZQ_GUARDED_BY(mutex);
    std::vector<std::function<void()>> finishHooks ZQ_GUARDED_BY(mutex);
    // Called when a cancel ends the wait for dependencies.
    std::vector<std::function<void()>> readinessHooks ZQ_GUARDED_BY(mutex);

    bool isReady();
    // `hook` is called after the completion block; at once when that has been.
    void addFinishHook(std::function<void()> hook);
    std::vector<std::shared_ptr<Observer>> currentObservers() ZQ_REQUIRES(mutex);
};
