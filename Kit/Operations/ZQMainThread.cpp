#include "Kit/Operations/ZQMainThread.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace {

struct Call
{
    enum class State { Pending, Running, Done };
    std::function<void()> block;
    bool isAwaited = false;
    State state = State::Pending;
};

// Every call is announced by one event of its own, so that an event loop nested in one call still serves the next.
struct Calls
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Call>> pending;
    QObject *receiver = nullptr; // there as long as the application object is
    bool stopped = false;
};

Calls &calls()
{
    static Calls *const instance = new Calls; // outlives static destruction, which other threads may still see
    return *instance;
}

void run(std::unique_lock<std::mutex> &lock, std::deque<std::shared_ptr<Call>>::iterator which)
{
    const std::shared_ptr<Call> call = *which;
    calls().pending.erase(which);
    call->state = Call::State::Running;
    lock.unlock();
    call->block();
    call->block = nullptr;
    lock.lock();
    call->state = Call::State::Done;
    calls().changed.notify_all();
}

class Receiver : public QObject
{
public:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        std::unique_lock lock(calls().mutex);
        if (!calls().pending.empty()) {
            run(lock, calls().pending.begin());
        }
        return true;
    }
};

void applicationWillEnd()
{
    QObject *receiver = nullptr;
    {
        const std::lock_guard lock(calls().mutex);
        receiver = std::exchange(calls().receiver, nullptr);
        calls().changed.notify_all();
    }
    delete receiver;
}

void applicationDidStart()
{
    const std::lock_guard lock(calls().mutex);
    calls().receiver = new Receiver;
    for (size_t i = 0; i < calls().pending.size(); ++i) {
        QCoreApplication::postEvent(calls().receiver, new QEvent(QEvent::User));
    }
    qAddPostRoutine(applicationWillEnd);
}

void enqueue(const std::shared_ptr<Call> &call)
{
    calls().pending.push_back(call);
    calls().changed.notify_all();
    if (calls().receiver) {
        QCoreApplication::postEvent(calls().receiver, new QEvent(QEvent::User));
    }
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(applicationDidStart)

bool zqIsMainThread()
{
    static thread_local const bool isMain = gettid() == getpid();
    return isMain;
}

void zqOnMainThread(std::function<void()> block)
{
    const auto call = std::make_shared<Call>();
    call->block = std::move(block);
    const std::lock_guard lock(calls().mutex);
    enqueue(call);
}

bool zqOnMainThreadAndWait(std::function<void()> block)
{
    if (zqIsMainThread()) {
        block();
        return true;
    }
    const auto call = std::make_shared<Call>();
    call->block = std::move(block);
    call->isAwaited = true;
    std::unique_lock lock(calls().mutex);
    const auto isRefused = [] { return calls().stopped || !calls().receiver; };
    if (isRefused()) {
        return false;
    }
    enqueue(call);
    calls().changed.wait(
        lock, [&] { return call->state == Call::State::Done || (call->state == Call::State::Pending && isRefused()); });
    if (call->state == Call::State::Pending) {
        std::erase(calls().pending, call);
        return false;
    }
    return true;
}

void zqStopMainThreadCalls()
{
    const std::lock_guard lock(calls().mutex);
    calls().stopped = true;
    calls().changed.notify_all();
}

void zqResumeMainThreadCalls()
{
    const std::lock_guard lock(calls().mutex);
    calls().stopped = false;
}

void zqServeWaitingMainThreadCalls()
{
    if (!zqIsMainThread()) {
        return;
    }
    std::unique_lock lock(calls().mutex);
    for (;;) {
        auto &pending = calls().pending;
        const auto next =
            std::find_if(pending.begin(), pending.end(), [](const auto &call) { return call->isAwaited; });
        if (next == pending.end()) {
            return;
        }
        run(lock, next);
    }
}

void zqRunMainLoopUntil(const std::function<bool()> &isDone, std::chrono::milliseconds step)
{
    while (!isDone()) {
        zqRunMainLoopFor(step);
    }
}

// Not a QEventLoop: that one refuses to run once the application was told to quit, which is when the queues are waited
// for.
void zqRunMainLoopFor(std::chrono::milliseconds time)
{
    if (!QCoreApplication::instance()) {
        zqServeWaitingMainThreadCalls();
        QThread::msleep(static_cast<unsigned long>(time.count()));
        return;
    }
    bool isOver = false;
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { isOver = true; });
    timer.start(time);
    while (!isOver) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        if (QThread::currentThread()->loopLevel() == 0) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}
