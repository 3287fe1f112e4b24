#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>
#include <future>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;
using namespace std::chrono_literals;

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
    using ZQOperation::setExecuting;
    using ZQOperation::setFinished;
    void end() { setFinished(true); }
    void waitUntilStarted() { m_started.get_future().wait(); }

private:
    std::promise<void> m_started;
};

// "executing", "stopped", "finished", "cancelled" as they are announced, until the token goes.
ZQOperation::Token note(const std::shared_ptr<ZQOperation> &operation, std::vector<std::string> &events)
{
    return operation->observe([&events, raw = operation.get()](ZQOperation::Key key) {
        events.push_back(key == ZQOperation::Key::IsFinished    ? "finished"
                         : key == ZQOperation::Key::IsExecuting ? (raw->isExecuting() ? "executing" : "stopped")
                                                                : "cancelled");
    });
}

std::string nameOfThread()
{
    char name[32] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    return name;
}

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
    std::set<std::thread::id> threads;
    ZQOperationQueue queue;
    for (int i = 0; i < 200; ++i) {
        queue.addOperationWithBlock([&, i] {
            order.push_back(i);
            threads.insert(std::this_thread::get_id());
        });
    }
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(threads.size(), 1U);
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
    std::mutex mutex;
    std::set<std::thread::id> threads;
    for (int i = 0; i < 30; ++i) {
        queue.addOperationWithBlock([&, i] {
            {
                const std::lock_guard lock(mutex);
                threads.insert(std::this_thread::get_id());
            }
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
    EXPECT_EQ(threads.size(), 3U);
}

TEST(OperationQueue, TakesACountBelowOneAsThatOfTheProcessors)
{
    ZQOperationQueue queue;
    for (const auto &[count, taken] : {std::pair(1, 1), std::pair(2, 2), std::pair(0, QThread::idealThreadCount()),
                                       std::pair(-3, QThread::idealThreadCount()), std::pair(1, 1)}) {
        queue.setMaxConcurrentOperationCount(count);
        EXPECT_EQ(queue.maxConcurrentOperationCount(), taken) << count;
    }
}

TEST(OperationQueue, GivesItsThreadsAsMuchOfItsNameAsTheSystemTakes)
{
    for (const auto &[name, expected] : {std::pair("zelto.a-long-name", std::string("zelto.a-long-na")),
                                         std::pair("short", std::string("short")), std::pair("", nameOfThread())}) {
        std::string found;
        ZQOperationQueue queue(QString::fromLatin1(name));
        queue.addOperationWithBlock([&] { found = nameOfThread(); });
        queue.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(found, expected);
    }
}

TEST(OperationQueue, ListsWhatRunsBeforeWhatWaitsAndIgnoresNothing)
{
    ZQOperationQueue queue;
    Gate gate;
    const auto running = gate.operation();
    const auto waiting = zqBlockOperation([] {});
    queue.addOperation(nullptr);
    queue.addOperation(running);
    gate.waitUntilEntered();
    queue.addOperation(waiting);
    EXPECT_EQ(queue.operations(), (QList<std::shared_ptr<ZQOperation>>{running, waiting}));
    EXPECT_EQ(queue.operationCount(), 2);
}

TEST(OperationQueue, TakesOnesThatHaveFinishedAlready)
{
    ZQOperationQueue queue;
    const auto finished = zqBlockOperation([] {});
    finished->start();
    const auto dependent = zqBlockOperation([] {});
    dependent->addDependency(finished);
    queue.addOperation(finished);
    queue.addOperation(dependent);
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(queue.operationCount(), 0);
    EXPECT_TRUE(dependent->isFinished());
}

TEST(OperationQueue, ACancelEndsTheWaitForADependency)
{
    ZQOperationQueue queue;
    const auto never = std::make_shared<SelfManagedOperation>();
    const auto waiting = std::make_shared<SelfManagedOperation>();
    std::vector<std::string> events;
    const auto token = note(waiting, events);
    waiting->setCompletionBlock([&] { events.push_back("completion"); });
    waiting->addDependency(never);
    queue.addOperation(waiting);
    waiting->cancel();
    waiting->cancel(); // once only
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(events, ElementsAre("cancelled", "finished", "completion")) << "without a start";
}

TEST(OperationQueue, MayBeWaitedForByAnyThreadButItsOwn)
{
    ZQOperationQueue queue;
    Gate gate;
    queue.addOperation(gate.operation());
    std::atomic_bool didWait = false;
    queue.addOperationWithBlock([&] { queue.waitUntilAllOperationsAreFinished(); }); // at once
    ZQOperationQueue another;
    another.addOperationWithBlock([&] {
        queue.waitUntilAllOperationsAreFinished();
        didWait = queue.operationCount() == 0;
    });
    gate.waitUntilEntered();
    std::this_thread::sleep_for(20ms); // so that the other does wait
    gate.open();
    another.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(didWait);
}

TEST(OperationQueue, CancelsWhatIsLeftWhenItIsDestroyed)
{
    std::promise<void> entered;
    bool waitingRan = false;
    const auto running = zqBlockOperation([&] {
        entered.set_value();
        while (!ZQCancellation::isCurrentCancelled()) {
            std::this_thread::yield();
        }
    });
    {
        ZQOperationQueue queue;
        queue.addOperation(running);
        queue.addOperationWithBlock([&] { waitingRan = true; });
        entered.get_future().wait();
    }
    EXPECT_TRUE(running->isFinished());
    EXPECT_FALSE(waitingRan);
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

namespace {

class OvertakingOperation : public ZQOperation
{
public:
    explicit OvertakingOperation(std::function<void()> work) : m_work(std::move(work)) {}
    void main() override { m_work(); }
    bool overtakes() const override { return true; }

private:
    const std::function<void()> m_work;
};

} // namespace

TEST(OperationQueue, OneThatStandsAsideLeavesItsPlaceToThoseThatOvertakeAlone)
{
    std::vector<std::string> order; // unguarded, too
    Gate passed;
    std::promise<void> isAside;
    std::promise<void> answer;
    ZQOperationQueue queue;
    queue.addOperationWithBlock([&] {
        order.push_back("asks");
        ZQOperationQueue::standAside([&] {
            isAside.set_value();
            answer.get_future().wait();
        });
        order.push_back("asked");
    });
    queue.addOperationWithBlock([&] { order.push_back("behind"); });
    isAside.get_future().wait();
    queue.addOperation(std::make_shared<OvertakingOperation>([&, gate = passed.operation()] {
        gate->start();
        order.push_back("overtakes");
    }));
    passed.waitUntilEntered();
    EXPECT_EQ(queue.operationCount(), 3);
    answer.set_value();                // and it waits until the other is done
    std::this_thread::sleep_for(20ms); // gives one that did not wait its chance; nothing is concluded from it otherwise
    passed.open();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_THAT(order, ElementsAre("asks", "overtakes", "asked", "behind"));
}

TEST(OperationQueue, SeveralMayStandAsideAndEachGetsItsPlaceBack)
{
    std::atomic<int> atOnce = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ended = 0;
    std::promise<void> answer;
    const auto answered = answer.get_future().share();
    std::promise<void> last;
    ZQOperationQueue queue;
    const auto work = [&] {
        most = std::max(most.load(), ++atOnce);
        --atOnce;
    };
    constexpr int asking = 20;
    std::atomic<int> aside = 0;
    for (int i = 0; i < asking; ++i) {
        queue.addOperation(std::make_shared<OvertakingOperation>([&] {
            work();
            ZQOperationQueue::standAside([&] {
                if (++aside == asking) {
                    last.set_value();
                }
                answered.wait();
            });
            work();
            ++ended;
        }));
    }
    last.get_future().wait();
    answer.set_value();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(ended, asking);
    EXPECT_EQ(most, 1);
    ZQOperationQueue::standAside([&] { ++ended; }); // on no queue's thread
    EXPECT_EQ(ended, asking + 1);
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
    class BrokenStart : public ZQOperation
    {
        void start() override { throw std::runtime_error("broken"); }
    };
    ZQOperationQueue queue;
    const auto broken = zqBlockOperation([] { throw std::runtime_error("broken"); });
    queue.addOperation(broken);
    queue.addOperation(std::make_shared<BrokenStart>());
    bool ran = false;
    queue.addOperationWithBlock([&] { ran = true; });
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_TRUE(ran);
    EXPECT_TRUE(broken->isFinished());
    EXPECT_FALSE(broken->isExecuting());
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
    const auto token = note(operation, events);
    operation->setCompletionBlock([&] { events.push_back("completion"); });
    operation->start();
    operation->start(); // once only
    operation->cancel();
    EXPECT_THAT(events, ElementsAre("executing", "work", "stopped", "finished", "completion"));
    operation->setCompletionBlock([&] { events.push_back("late"); });
    operation->setCompletionBlock(nullptr);
    EXPECT_EQ(events.back(), "late");
    EXPECT_FALSE(operation->isCancelled()) << "it was over";
}

TEST(Operation, AnnouncesOnlyChangesOfAStateItManagesItself)
{
    const auto operation = std::make_shared<SelfManagedOperation>();
    std::vector<std::string> events;
    const auto token = note(operation, events);
    int completions = 0;
    operation->setCompletionBlock([&] { ++completions; });
    operation->setExecuting(false);
    operation->setExecuting(true);
    operation->setExecuting(true);
    operation->setFinished(false);
    EXPECT_FALSE(operation->isFinished());
    operation->setExecuting(false);
    operation->ZQOperation::start(); // it was started
    operation->setFinished(true);
    operation->setFinished(true);
    operation->setExecuting(true);
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_THAT(events, ElementsAre("executing", "stopped", "finished"));
    EXPECT_EQ(completions, 1);
}

TEST(Operation, DoesNotStartOnceItHasFinished)
{
    const auto operation = std::make_shared<SelfManagedOperation>();
    std::vector<std::string> events;
    const auto token = note(operation, events);
    operation->end();
    operation->ZQOperation::start();
    EXPECT_THAT(events, ElementsAre("finished"));
}

TEST(Operation, LetsGoOfWhatItDependedOnAndOfItsWork)
{
    const auto operation = zqBlockOperation([held = std::make_shared<int>()] { EXPECT_TRUE(held); });
    auto dependency = zqBlockOperation([] {});
    const std::weak_ptr<ZQOperation> weak = dependency;
    operation->addDependency(nullptr);
    operation->addDependency(operation);
    EXPECT_TRUE(operation->dependencies().isEmpty());
    operation->addDependency(std::move(dependency));
    EXPECT_EQ(operation->dependencies(), QList<std::shared_ptr<ZQOperation>>{weak.lock()});
    operation->start();
    EXPECT_TRUE(operation->dependencies().isEmpty());
    EXPECT_TRUE(weak.expired());
}

TEST(Operation, IsWaitedForUntilAllWereToldOfItsEnd)
{
    std::atomic_bool wasTold = false;
    std::promise<void> telling;
    const auto operation = zqBlockOperation([] {});
    operation->setCompletionBlock([&] {
        telling.set_value();
        std::this_thread::sleep_for(50ms); // so that the others do wait; right either way
        wasTold = true;
    });
    ZQOperationQueue queue;
    queue.addOperation(operation);
    telling.get_future().wait();
    auto elsewhere = std::async(std::launch::async, [&] {
        operation->waitUntilFinished();
        return wasTold.load();
    });
    operation->waitUntilFinished();
    EXPECT_TRUE(wasTold);
    EXPECT_TRUE(elsewhere.get());
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
