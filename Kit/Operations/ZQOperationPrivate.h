#pragma once

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Operations/ZQOperation.h"

#include <condition_variable>
#include <thread>
#include <vector>

struct ZQOperation::Private
{
    struct Observer
    {
        std::function<void(Key)> function;
    };

    const std::shared_ptr<ZQCancellation> cancellation = std::make_shared<ZQCancellation>();
    std::mutex mutex;
    std::condition_variable announced;
    bool isStarted = false;
    bool isExecuting = false;
    bool isFinished = false;
    bool isCancelled = false;
    bool completionIsDue = false; // a completion block set from here on is called at once
    bool isAnnounced = false;     // observers, completion block and hooks were told of the end
    std::thread::id announcer;
    std::vector<std::shared_ptr<ZQOperation>> dependencies; // not a list that shares its cells beyond the lock
    std::function<void()> completion;
    std::vector<std::weak_ptr<Observer>> observers;
    std::vector<std::function<void()>> finishHooks;
    std::vector<std::function<void()>> readinessHooks; // called when a cancel ends the wait for dependencies

    bool isReady();
    // `hook` is called after the completion block; at once when that has been.
    void addFinishHook(std::function<void()> hook);
    std::vector<std::shared_ptr<Observer>> currentObservers();
};
