#pragma once

#include "Kit/Operations/ZQMainThread.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

// Waits on `condition` until `isTrue`. On the main thread the calls that wait for that thread are served meanwhile,
// since what is waited for may be behind one of them.
template <class Predicate>
void zqWaitServingMainThread(std::unique_lock<std::mutex> &lock, std::condition_variable &condition, Predicate isTrue)
{
    if (!zqIsMainThread()) {
        condition.wait(lock, isTrue);
        return;
    }
    while (!condition.wait_for(lock, std::chrono::milliseconds(4), isTrue)) {
        lock.unlock();
        zqServeWaitingMainThreadCalls();
        lock.lock();
    }
}
