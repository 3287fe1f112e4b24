#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

using testing::ElementsAre;

namespace {
const QString name = QStringLiteral("TestDidHappen");
}

TEST(MainThread, RunsBlocksOfAnotherThreadThereInOrder)
{
    std::vector<int> order;
    std::thread other([&] {
        EXPECT_FALSE(zqIsMainThread());
        for (int i = 0; i < 50; ++i) {
            zqOnMainThread([&order, i] {
                EXPECT_TRUE(zqIsMainThread());
                order.push_back(i);
            });
        }
        EXPECT_TRUE(zqOnMainThreadAndWait([&] { order.push_back(50); }));
    });
    zqRunMainLoopUntil([&] { return order.size() == 51; });
    other.join();
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(MainThread, RunsAtOnceWhenAskedFromItself)
{
    bool ran = false;
    EXPECT_TRUE(zqOnMainThreadAndWait([&] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(MainThread, WaitingThreadsGiveUpWhenCallsAreStopped)
{
    std::atomic<bool> ran = false;
    auto waiting = std::async(std::launch::async, [&] { return zqOnMainThreadAndWait([&] { ran = true; }); });
    zqStopMainThreadCalls();
    EXPECT_FALSE(waiting.get()); // nobody runs the main loop meanwhile
    auto refused = std::async(std::launch::async, [&] { return zqOnMainThreadAndWait([&] { ran = true; }); });
    EXPECT_FALSE(refused.get());
    zqResumeMainThreadCalls();
    zqRunMainLoopFor(std::chrono::milliseconds(1));
    EXPECT_FALSE(ran);
}

TEST(MainThread, ServesTheNextCallFromALoopNestedInACall)
{
    bool secondRan = false;
    bool firstDone = false;
    zqOnMainThread([&] {
        zqRunMainLoopUntil([&] { return secondRan; });
        firstDone = true;
    });
    zqOnMainThread([&] { secondRan = true; });
    zqRunMainLoopUntil([&] { return firstDone; });
    EXPECT_TRUE(secondRan);
}

TEST(MainThread, LoopDeliversTimersAndDeferredDeletions)
{
    bool fired = false;
    QTimer::singleShot(0, [&] { fired = true; });
    auto *const object = new QObject;
    bool deleted = false;
    QObject::connect(object, &QObject::destroyed, [&] { deleted = true; });
    object->deleteLater();
    zqRunMainLoopUntil([&] { return fired && deleted; }, std::chrono::milliseconds(1));
    EXPECT_TRUE(fired && deleted);
}

TEST(NotificationCenter, DeliversByNameAndObject)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    const int one = 1;
    const int two = 2;
    std::vector<std::string> calls;
    const auto any = center.addObserver(name, nullptr, [&](const ZQNotification &notification) {
        calls.push_back("any " + notification.userInfo.value(QStringLiteral("key")).toString().toStdString());
    });
    const auto about = center.addObserver(name, &one, [&](const ZQNotification &) { calls.push_back("one"); });
    center.postNotification(name, &one, {{QStringLiteral("key"), QStringLiteral("a")}});
    center.postNotification(name, &two, {{QStringLiteral("key"), QStringLiteral("b")}});
    center.postNotification(QStringLiteral("Other"), &one);
    EXPECT_THAT(calls, ElementsAre("any a", "one", "any b"));
}

TEST(NotificationCenter, AnObserverMayDestroyItsOwnAndAnotherTokenWhileCalled)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    int firstCalls = 0;
    int secondCalls = 0;
    ZQNotificationCenter::Token first;
    ZQNotificationCenter::Token second;
    first = center.addObserver(name, nullptr, [&](const ZQNotification &) {
        first.reset();
        second.reset();
        ++firstCalls;
    });
    second = center.addObserver(name, nullptr, [&](const ZQNotification &) { ++secondCalls; });
    center.postNotification(name);
    center.postNotification(name);
    EXPECT_EQ(firstCalls, 1);
    EXPECT_EQ(secondCalls, 0);
}

TEST(NotificationCenter, DeliversOnTheMainThreadWhatIsPostedElsewhere)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    std::vector<int> order;
    const auto token = center.addObserver(name, nullptr, [&](const ZQNotification &notification) {
        EXPECT_TRUE(zqIsMainThread());
        order.push_back(notification.userInfo.value(QStringLiteral("n")).toInt());
    });
    std::thread other([&] {
        for (int i = 0; i < 20; ++i) {
            center.postNotification(name, nullptr, {{QStringLiteral("n"), i}});
        }
    });
    other.join();
    EXPECT_TRUE(order.empty());
    zqRunMainLoopUntil([&] { return order.size() == 20; });
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(NotificationCenter, MergesWhatWaitsForAnIdleLoopIntoTheFirst)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    std::vector<int> values;
    const auto token = center.addObserver(name, nullptr, [&](const ZQNotification &notification) {
        values.push_back(notification.userInfo.value(QStringLiteral("n")).toInt());
    });
    for (int i = 1; i <= 3; ++i) {
        center.enqueueWhenIdle(name, nullptr, {{QStringLiteral("n"), i}});
    }
    EXPECT_TRUE(values.empty());
    zqRunMainLoopUntil([&] { return !values.empty(); });
    center.enqueueWhenIdle(name, nullptr, {{QStringLiteral("n"), 4}});
    zqRunMainLoopUntil([&] { return values.size() > 1; });
    EXPECT_THAT(values, ElementsAre(1, 4));
}
