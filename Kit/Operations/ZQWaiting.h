#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"
#include "Kit/Operations/ZQMainThread.h"

#include <chrono>

// Waits on `condition` until `isTrue`. On the main thread the calls that wait for that thread are served meanwhile,
// since what is waited for may be behind one of them.
template <class Predicate>
void zqWaitServingMainThread(ZQMutex &mutex, ZQCondition &condition, Predicate isTrue)
    ZQ_REQUIRES(mutex) ZQ_NO_THREAD_SAFETY_ANALYSIS
{
    const bool serves = zqIsMainThread();
    while (!isTrue()) {
        if (!serves) {
            condition.wait(mutex);
        } else if (!condition.waitFor(mutex, std::chrono::milliseconds(4))) {
            const ZQUnlockGuard open(mutex);
            zqServeWaitingMainThreadCalls();
        }
    }
}
