#pragma once

#include "Kit/Operations/ZQOperation.h"

#include <QString>

// Runs operations in order on threads of its own, at most `maxConcurrentOperationCount` at a time. Any thread.
// An operation counts until its observers and completion block were told. Destroying a queue cancels what is left and
// waits for what runs.
class ZQOperationQueue
{
public:
    explicit ZQOperationQueue(const QString &name = {}, int maxConcurrentOperationCount = 1);
    ~ZQOperationQueue();
    ZQOperationQueue(const ZQOperationQueue &) = delete;
    ZQOperationQueue &operator=(const ZQOperationQueue &) = delete;

    void setMaxConcurrentOperationCount(int count); // below 1: as many as there are processors
    int maxConcurrentOperationCount() const;

    void addOperation(std::shared_ptr<ZQOperation> operation);
    void addOperationWithBlock(std::function<void()> block);

    QList<std::shared_ptr<ZQOperation>> operations() const; // waiting and running ones
    int operationCount() const;
    void cancelAllOperations();
    // Called on the main thread while it must stay responsive, use `zqRunMainLoopUntil` instead: this one blocks and
    // serves only `zqOnMainThreadAndWait`. An operation must not wait for its own queue; that returns at once with a
    // warning.
    void waitUntilAllOperationsAreFinished();
    // The same until at most `most` of them are left, or `waiting`, which does work elsewhere, is cancelled; null: for
    // nobody who could be.
    void waitUntilOperationCount(int most, ZQOperation *waiting = nullptr);

    // By an operation, on the thread of its queue, that has to wait for a person: while `wait` runs its place is free
    // for those that overtake. It still counts as running, and returns when none of them has its place any more. On
    // other threads just `wait`.
    static void standAside(const std::function<void()> &wait);

private:
    struct Private;
    std::shared_ptr<Private> d;
};
