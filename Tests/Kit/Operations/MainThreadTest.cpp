#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Kit/Operations/ApplicationLife.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

using testing::ElementsAre;

namespace {
using namespace std::chrono_literals;
const QString name = QStringLiteral("TestDidHappen");
} // namespace

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
    const auto call = [&] { return zqOnMainThreadAndWait([&] { ran = true; }); };
    auto waiting = std::async(std::launch::async, call);
    std::this_thread::sleep_for(50ms); // so that it does wait; right either way
    zqStopMainThreadCalls();
    EXPECT_FALSE(waiting.get()); // nobody runs the main loop meanwhile
    EXPECT_FALSE(std::async(std::launch::async, call).get());
    zqResumeMainThreadCalls();
    zqServeWaitingMainThreadCalls();
    zqRunMainLoopFor(1ms);
    EXPECT_FALSE(ran);
    auto served = std::async(std::launch::async, call);
    zqRunMainLoopUntil([&] { return ran.load(); });
    EXPECT_TRUE(served.get());
}

TEST(MainThread, ServesOnlyWhatIsWaitedForAndOnlyOnItself)
{
    bool laterRan = false;
    zqOnMainThread([&] { laterRan = true; });
    std::atomic<int> served = 0;
    const auto call = [&] {
        return zqOnMainThreadAndWait([&] {
            EXPECT_TRUE(zqIsMainThread());
            ++served;
        });
    };
    auto first = std::async(std::launch::async, call);
    auto second = std::async(std::launch::async, call);
    std::this_thread::sleep_for(50ms);
    std::async(std::launch::async, [] { zqServeWaitingMainThreadCalls(); }).wait();
    while (served < 2) {
        zqServeWaitingMainThreadCalls();
    }
    EXPECT_TRUE(first.get() && second.get());
    EXPECT_FALSE(laterRan);
    zqRunMainLoopUntil([&] { return laterRan; });
}

TEST(MainThread, CallsWaitForTheApplicationAndAreRefusedOnceItEnds)
{
    QProcess life;
    life.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(applicationLifeArgument)});
    ASSERT_TRUE(life.waitForFinished());
    EXPECT_EQ(life.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(life.exitCode(), 0);
    EXPECT_EQ(life.readAllStandardOutput(), "refused\napplication\nfirst\nsecond\nrefused\nrefused\n");
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

TEST(NotificationCenter, DeliversEachNameThatWaitsForAnIdleLoopAfterTheEventsThatWaitAlready)
{
    auto &center = ZQNotificationCenter::defaultCenter();
    const QString other = QStringLiteral("OtherDidHappen");
    std::vector<std::string> events;
    std::vector<ZQNotificationCenter::Token> tokens;
    for (const QString &each : {name, other}) {
        tokens.push_back(center.addObserver(
            each, nullptr, [&](const ZQNotification &one) { events.push_back(one.name.toStdString()); }));
    }
    std::thread([&] {
        center.enqueueWhenIdle(other);
        center.enqueueWhenIdle(name);
        center.enqueueWhenIdle(other);
    }).join();
    zqOnMainThread([&] { events.push_back("event"); });
    zqRunMainLoopUntil([&] { return events.size() >= 3; });
    zqRunMainLoopFor(1ms);
    EXPECT_THAT(events, ElementsAre("event", "OtherDidHappen", "TestDidHappen"));
    tokens.clear();
    center.postNotification(name);
    EXPECT_EQ(events.size(), 3U);
}
