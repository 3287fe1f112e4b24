#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;

namespace {

// Starts and then stays executing until it is told to end, on whatever thread that is.
class SelfManagedOperation : public ZQOperation
{
public:
    void start() override
    {
        setExecuting(true);
        m_started.set_value();
    }
    void end() { setFinished(true); }
    void waitUntilStarted() { m_started.get_future().wait(); }

private:
    std::promise<void> m_started;
};

// Keeps a queue's thread busy until it is destroyed or opened.
class Gate
{
public:
    ~Gate() { open(); }
    std::shared_ptr<ZQOperation> operation()
    {
        return zqBlockOperation([this, future = m_opened.get_future().share()] {
            m_entered.set_value();
            future.wait();
        });
    }
    void waitUntilEntered() { m_entered.get_future().wait(); }
    void open()
    {
        if (!std::exchange(m_isOpen, true)) {
            m_opened.set_value();
        }
    }

private:
    std::promise<void> m_opened;
    std::promise<void> m_entered;
    bool m_isOpen = false;
};

} // namespace

TEST(OperationQueue, RunsSeriallyInTheOrderOfAdding)
{
    std::vector<int> order; // unguarded: one at a time is what is promised
    ZQOperationQueue queue;
    for (int i = 0; i < 200; ++i) {
        queue.addOperationWithBlock([&order, i] { order.push_back(i); });
    }
    queue.waitUntilAllOperationsAreFinished();
    ASSERT_EQ(order.size(), 200u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(queue.operationCount(), 0);
}

TEST(OperationQueue, NeverRunsMoreThanItsMaximumAndDoesReachIt)
{
    ZQOperationQueue queue(QStringLiteral("three"), 3);
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> arrived = 0;
    for (int i = 0; i < 30; ++i) {
        queue.addOperationWithBlock([&, i] {
            const int now = ++running;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            ++arrived;
            while (i < 3 && arrived < 3) { // the first three meet, which needs three threads
                std::this_thread::yield();
            }
            --running;
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(most, 3);
}

TEST(OperationQueue, CountsASelfManagedOperationUntilItFinishes)
{
    ZQOperationQueue queue;
    const auto first = std::make_shared<SelfManagedOperation>();
    bool secondRan = false;
    queue.addOperation(first);
    const auto second = zqBlockOperation([&] { secondRan = true; });
    queue.addOperation(second);
    first->waitUntilStarted();
    EXPECT_TRUE(first->isExecuting());
    EXPECT_FALSE(second->isExecuting() || second->isFinished());
    EXPECT_EQ(queue.operationCount(), 2);
    first->end();
    EXPECT_FALSE(first->isExecuting());
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(secondRan);
}

TEST(OperationQueue, StartsAnOperationAfterItsDependenciesOnOtherQueues)
{
    Gate gate;
    ZQOperationQueue one;
    ZQOperationQueue other;
    const auto dependency = gate.operation();
    bool sawItFinished = false;
    const auto dependent = zqBlockOperation([&] { sawItFinished = dependency->isFinished(); });
    dependent->addDependency(dependency);
    other.addOperation(dependent);
    bool laterRan = false;
    const auto later = zqBlockOperation([&] { laterRan = true; });
    other.addOperation(later); // is not held up by one that cannot run yet
    later->waitUntilFinished();
    EXPECT_TRUE(laterRan);
    EXPECT_FALSE(dependent->isFinished());
    one.addOperation(dependency);
    gate.open();
    dependent->waitUntilFinished();
    EXPECT_TRUE(sawItFinished);
}

TEST(OperationQueue, FinishesCancelledWaitingWorkWithoutRunningIt)
{
    Gate gate;
    ZQOperationQueue queue;
    queue.addOperation(gate.operation());
    gate.waitUntilEntered();
    bool ran = false;
    bool completed = false;
    const auto waiting = zqBlockOperation([&] { ran = true; });
    waiting->setCompletionBlock([&] { completed = true; });
    waiting->addDependency(std::make_shared<SelfManagedOperation>()); // one that never runs
    queue.addOperation(waiting);
    queue.cancelAllOperations();
    EXPECT_TRUE(waiting->isCancelled());
    EXPECT_FALSE(waiting->isFinished());
    gate.open();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(waiting->isFinished());
    EXPECT_TRUE(completed);
    EXPECT_FALSE(ran);
}

TEST(OperationQueue, RaisingTheMaximumStartsWhatWaits)
{
    ZQOperationQueue queue; // outlives the gate, which lets it end
    Gate gate;
    queue.addOperation(gate.operation());
    gate.waitUntilEntered();
    const auto second = zqBlockOperation([] {});
    queue.addOperation(second);
    queue.setMaxConcurrentOperationCount(2);
    second->waitUntilFinished();
    EXPECT_TRUE(second->isFinished());
    EXPECT_EQ(queue.operations().first()->isExecuting(), true);
}

TEST(OperationQueue, SurvivesAnOperationThatThrows)
{
    ZQOperationQueue queue;
    queue.addOperationWithBlock([] { throw std::runtime_error("broken"); });
    bool ran = false;
    queue.addOperationWithBlock([&] { ran = true; });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(ran);
}

TEST(OperationQueue, MayBeDestroyedWhileOperationsFinishElsewhere)
{
    for (int round = 0; round < 200; ++round) {
        const auto operation = std::make_shared<SelfManagedOperation>();
        std::thread ending;
        {
            ZQOperationQueue queue(QStringLiteral("short"), 2);
            queue.addOperation(operation);
            for (int i = 0; i < 5; ++i) {
                queue.addOperationWithBlock([] {});
            }
            operation->waitUntilStarted();
            ending = std::thread([&] { operation->end(); });
        }
        EXPECT_TRUE(operation->isFinished());
        ending.join();
    }
}

TEST(OperationQueue, MayBeDestroyedByOneOfItsOwnOperations)
{
    std::promise<void> done;
    auto queue = std::make_unique<ZQOperationQueue>();
    ZQOperationQueue &reference = *queue;
    Gate gate;
    reference.addOperation(gate.operation());
    reference.addOperationWithBlock([&] {
        queue.reset();
        done.set_value();
    });
    gate.open();
    done.get_future().wait();
    EXPECT_EQ(queue, nullptr);
}

TEST(OperationQueue, DoesNotDeadlockWithAnOperationThatNeedsTheWaitingMainThread)
{
    bool servedOnMain = false;
    {
        ZQOperationQueue queue;
        queue.addOperationWithBlock([&] { zqOnMainThreadAndWait([&] { servedOnMain = zqIsMainThread(); }); });
        queue.waitUntilAllOperationsAreFinished();
    }
    EXPECT_TRUE(servedOnMain);
}

TEST(Operation, AnnouncesItsStatesInOrderAndTheCompletionLast)
{
    std::vector<std::string> events;
    const auto operation = zqBlockOperation([&] { events.push_back("work"); });
    const auto token = operation->observe([&](ZQOperation::Key key) {
        events.push_back(key == ZQOperation::Key::IsFinished    ? "finished"
                         : key == ZQOperation::Key::IsExecuting ? (operation->isExecuting() ? "executing" : "stopped")
                                                                : "cancelled");
    });
    operation->setCompletionBlock([&] { events.push_back("completion"); });
    operation->start();
    operation->start(); // once only
    operation->cancel();
    EXPECT_THAT(events, ElementsAre("executing", "work", "stopped", "finished", "completion"));
    operation->setCompletionBlock([&] { events.push_back("late"); });
    EXPECT_EQ(events.back(), "late");
}

TEST(Operation, DoesNotCallAnObserverWhoseTokenIsGone)
{
    int calls = 0;
    const auto operation = zqBlockOperation([] {});
    ZQOperation::Token second;
    const auto first = operation->observe([&](ZQOperation::Key) { second.reset(); });
    second = operation->observe([&](ZQOperation::Key) { ++calls; });
    operation->start();
    EXPECT_EQ(calls, 0);
}

TEST(Operation, CancelledBeforeItsStartDoesNoWork)
{
    bool ran = false;
    const auto operation = zqBlockOperation([&] { ran = true; });
    operation->cancel();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(ran);
}

TEST(Operation, MayBeAskedToWaitByItsOwnObserver)
{
    const auto operation = zqBlockOperation([] {});
    operation->setCompletionBlock([&] { operation->waitUntilFinished(); });
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(OperationCancellation, WhatAnOperationCallsHearsOfItsCancelAndNoOtherDoes)
{
    ZQOperationQueue queue(QStringLiteral("test"), 1);
    std::atomic_bool isRunning = false;
    std::atomic_bool heard = false;
    const auto operation = zqBlockOperation([&] {
        EXPECT_FALSE(ZQCancellation::isCurrentCancelled());
        isRunning = true;
        while (!ZQCancellation::isCurrentCancelled()) {
            std::this_thread::yield();
        }
        heard = true;
    });
    queue.addOperation(operation);
    while (!isRunning) {
        std::this_thread::yield();
    }
    operation->cancel();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(heard);
    bool nextIsCancelled = true;
    queue.addOperationWithBlock([&] { nextIsCancelled = ZQCancellation::isCurrentCancelled(); });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_FALSE(nextIsCancelled);
}
