#include "Kit/Operations/ZQMainThread.h"

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <deque>
#include <memory>

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
    ZQMutex mutex;
    ZQCondition changed;
    std::deque<std::shared_ptr<Call>> pending ZQ_GUARDED_BY(mutex);
    QObject *receiver ZQ_GUARDED_BY(mutex) = nullptr; // there as long as the application object is
    bool stopped ZQ_GUARDED_BY(mutex) = false;

    void run(std::deque<std::shared_ptr<Call>>::iterator which) ZQ_REQUIRES(mutex);
    void enqueue(const std::shared_ptr<Call> &call) ZQ_REQUIRES(mutex);
    bool refuses() const ZQ_REQUIRES(mutex) { return stopped || !receiver; }
};

Calls &calls()
{
    static Calls *const instance = new Calls; // outlives static destruction, which other threads may still see
    return *instance;
}

void Calls::run(std::deque<std::shared_ptr<Call>>::iterator which)
{
    const std::shared_ptr<Call> call = *which;
    pending.erase(which);
    call->state = Call::State::Running;
    {
        const ZQUnlockGuard open(mutex);
        call->block();
        call->block = nullptr;
    }
    call->state = Call::State::Done;
    changed.notifyAll();
}

class Receiver : public QObject
{
public:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        Calls &all = calls();
        const ZQLockGuard lock(all.mutex);
        if (!all.pending.empty()) {
            all.run(all.pending.begin());
        }
        return true;
    }
};

void applicationWillEnd()
{
    QObject *receiver = nullptr;
    Calls &all = calls();
    {
        const ZQLockGuard lock(all.mutex);
        receiver = std::exchange(all.receiver, nullptr);
        all.changed.notifyAll();
    }
    delete receiver;
}

void applicationDidStart()
{
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    all.receiver = new Receiver;
    for (size_t i = 0; i < all.pending.size(); ++i) {
        QCoreApplication::postEvent(all.receiver, new QEvent(QEvent::User));
    }
    qAddPostRoutine(applicationWillEnd);
}

void Calls::enqueue(const std::shared_ptr<Call> &call)
{
    pending.push_back(call);
    changed.notifyAll();
    if (receiver) {
        QCoreApplication::postEvent(receiver, new QEvent(QEvent::User));
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
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    all.enqueue(call);
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
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    if (all.refuses()) {
        return false;
    }
    all.enqueue(call);
    while (call->state != Call::State::Done && !(call->state == Call::State::Pending && all.refuses())) {
        all.changed.wait(all.mutex);
    }
    if (call->state == Call::State::Pending) {
        std::erase(all.pending, call);
        return false;
    }
    return true;
}

void zqStopMainThreadCalls()
{
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    all.stopped = true;
    all.changed.notifyAll();
}

void zqResumeMainThreadCalls()
{
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    all.stopped = false;
}

void zqServeWaitingMainThreadCalls()
{
    if (!zqIsMainThread()) {
        return;
    }
    Calls &all = calls();
    const ZQLockGuard lock(all.mutex);
    for (;;) {
        auto &pending = all.pending;
        const auto next =
            std::find_if(pending.begin(), pending.end(), [](const auto &call) { return call->isAwaited; });
        if (next == pending.end()) {
            return;
        }
        all.run(next);
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
