#include "Kit/Operations/ZQOperationQueue.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQSignalStack.h"
#include "Kit/Operations/ZQOperationPrivate.h"
#include "Kit/Operations/ZQWaiting.h"

#include <QThread>

#include <pthread.h>

#include <algorithm>
#include <deque>
#include <exception>

// Locks are taken in the order queue, operation. An operation calls its hooks without a lock.
struct ZQOperationQueue::Private : std::enable_shared_from_this<ZQOperationQueue::Private>
{
    using Operation = std::shared_ptr<ZQOperation>;

    QString name;
    ZQMutex mutex;
    ZQCondition workToDo;
    ZQCondition stateChanged; // of the queue, or of who waits for it
    int maximum ZQ_GUARDED_BY(mutex) = 1;
    // No lists with implicit sharing: a copy given to a caller would share its cells beyond the lock.
    std::deque<Operation> waiting ZQ_GUARDED_BY(mutex);
    std::deque<Operation> running ZQ_GUARDED_BY(mutex);  // given to a thread and not yet finished
    std::deque<Operation> starting ZQ_GUARDED_BY(mutex); // those of `running` no thread has picked up
    std::vector<std::thread> threads ZQ_GUARDED_BY(mutex);
    size_t idleThreads ZQ_GUARDED_BY(mutex) = 0;
    size_t aside ZQ_GUARDED_BY(mutex) = 0;     // of `running`, those whose places others may have
    size_t returning ZQ_GUARDED_BY(mutex) = 0; // of those, the ones that want them back
    bool isStopping ZQ_GUARDED_BY(mutex) = false;

    void add(const Operation &operation);
    void schedule();
    void scheduleLocked() ZQ_REQUIRES(mutex);
    void didFinish(const ZQOperation *operation);
    void work();
    static void run(const Operation &operation);
    size_t placesTaken() const ZQ_REQUIRES(mutex) { return running.size() - aside; }
    int count() const ZQ_REQUIRES(mutex) { return static_cast<int>(waiting.size() + running.size()); }
};

namespace {
thread_local void *currentQueue = nullptr;

std::shared_ptr<ZQOperation> take(std::deque<std::shared_ptr<ZQOperation>> &list, const ZQOperation *operation)
{
    const auto found = std::find_if(list.begin(), list.end(), [=](const auto &one) { return one.get() == operation; });
    if (found == list.end()) {
        return nullptr;
    }
    auto taken = std::move(*found);
    list.erase(found);
    return taken;
}
} // namespace

void ZQOperationQueue::Private::add(const Operation &operation)
{
    {
        const ZQLockGuard lock(mutex);
        waiting.push_back(operation);
    }
    const std::weak_ptr<Private> weakQueue = weak_from_this();
    const auto reschedule = [weakQueue] {
        if (const auto queue = weakQueue.lock()) {
            queue->schedule();
        }
    };
    for (const Operation &dependency : operation->dependencies()) {
        dependency->d->addFinishHook(reschedule);
    }
    {
        const ZQLockGuard lock(operation->d->mutex);
        operation->d->readinessHooks.push_back(reschedule);
    }
    operation->d->addFinishHook([weakQueue, raw = operation.get()] {
        if (const auto queue = weakQueue.lock()) {
            queue->didFinish(raw);
        }
    });
    schedule();
}

void ZQOperationQueue::Private::schedule()
{
    const ZQLockGuard lock(mutex);
    scheduleLocked();
}

void ZQOperationQueue::Private::scheduleLocked()
{
    const auto most = static_cast<size_t>(maximum);
    for (size_t i = 0; i < waiting.size() && placesTaken() + returning < most;) {
        const bool hasPlace = running.size() < most || waiting[i]->overtakes();
        if (!hasPlace || !waiting[i]->d->isReady()) {
            ++i;
            continue;
        }
        const Operation operation = waiting[i];
        waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(i));
        running.push_back(operation);
        starting.push_back(operation);
        if (idleThreads < starting.size() && threads.size() < most + aside) {
            ++idleThreads;
            threads.emplace_back([self = shared_from_this()] {
                const ZQSignalStack stack;
                self->work();
            });
        }
        workToDo.notifyOne();
    }
}

void ZQOperationQueue::Private::didFinish(const ZQOperation *operation)
{
    Operation keptWaiting; // their destructors are not to run under the lock
    Operation keptRunning;
    const ZQLockGuard lock(mutex);
    keptWaiting = take(waiting, operation);
    keptRunning = take(running, operation);
    scheduleLocked();
    stateChanged.notifyAll();
}

void ZQOperationQueue::Private::work()
{
    currentQueue = this;
    if (!name.isEmpty()) {
        pthread_setname_np(pthread_self(), name.toUtf8().left(15).constData());
    }
    const ZQLockGuard lock(mutex);
    for (;;) {
        while (starting.empty() && !isStopping) {
            workToDo.wait(mutex);
        }
        if (starting.empty()) {
            return;
        }
        Operation operation = std::move(starting.front());
        starting.pop_front();
        --idleThreads;
        {
            const ZQUnlockGuard open(mutex);
            run(operation);
            operation.reset();
        }
        ++idleThreads;
    }
}

void ZQOperationQueue::Private::run(const Operation &operation)
{
    if (operation->isCancelled()) {
        operation->setFinished(true);
        return;
    }
    try {
        operation->start();
    } catch (const std::exception &exception) {
        qCCritical(zqLogApplication, "An operation ended with an exception: %s", exception.what());
        operation->setFinished(true);
    }
}

ZQOperationQueue::ZQOperationQueue(const QString &name, int maxConcurrentOperationCount)
    : d(std::make_shared<Private>())
{
    d->name = name;
    setMaxConcurrentOperationCount(maxConcurrentOperationCount);
}

ZQOperationQueue::~ZQOperationQueue()
{
    cancelAllOperations();
    std::vector<std::thread> threads;
    const bool isInside = currentQueue == d.get();
    {
        const ZQLockGuard lock(d->mutex);
        if (!isInside) {
            zqWaitServingMainThread(d->mutex, d->stateChanged,
                                    [this]() ZQ_REQUIRES(d->mutex) { return d->count() == 0; });
        }
        d->isStopping = true;
        d->workToDo.notifyAll();
        threads.swap(d->threads);
    }
    for (std::thread &thread : threads) {
        if (isInside) {
            thread.detach();
        } else {
            thread.join();
        }
    }
}

void ZQOperationQueue::standAside(const std::function<void()> &wait)
{
    auto *const queue = static_cast<Private *>(currentQueue);
    if (!queue) {
        wait();
        return;
    }
    {
        const ZQLockGuard lock(queue->mutex);
        ++queue->aside;
        queue->scheduleLocked();
        queue->stateChanged.notifyAll(); // another may want its place back
    }
    wait();
    const ZQLockGuard lock(queue->mutex);
    ++queue->returning;
    while (queue->placesTaken() >= static_cast<size_t>(queue->maximum)) {
        queue->stateChanged.wait(queue->mutex);
    }
    --queue->returning;
    --queue->aside;
}

void ZQOperationQueue::setMaxConcurrentOperationCount(int count)
{
    const ZQLockGuard lock(d->mutex);
    d->maximum = count < 1 ? std::max(1, QThread::idealThreadCount()) : count;
    d->scheduleLocked();
}

int ZQOperationQueue::maxConcurrentOperationCount() const
{
    const ZQLockGuard lock(d->mutex);
    return d->maximum;
}

void ZQOperationQueue::addOperation(std::shared_ptr<ZQOperation> operation)
{
    if (operation) {
        d->add(operation);
    }
}

void ZQOperationQueue::addOperationWithBlock(std::function<void()> block)
{
    d->add(zqBlockOperation(std::move(block)));
}

QList<std::shared_ptr<ZQOperation>> ZQOperationQueue::operations() const
{
    const ZQLockGuard lock(d->mutex);
    QList<std::shared_ptr<ZQOperation>> all(d->running.begin(), d->running.end());
    for (const auto &operation : d->waiting) {
        all.append(operation);
    }
    return all;
}

int ZQOperationQueue::operationCount() const
{
    const ZQLockGuard lock(d->mutex);
    return d->count();
}

void ZQOperationQueue::cancelAllOperations()
{
    for (const auto &operation : operations()) {
        operation->cancel();
    }
}

void ZQOperationQueue::waitUntilAllOperationsAreFinished()
{
    waitUntilOperationCount(0);
}

void ZQOperationQueue::waitUntilOperationCount(int most, ZQOperation *waiting)
{
    if (currentQueue == d.get()) {
        qCWarning(zqLogApplication, "An operation waits for its own queue");
        return;
    }
    ZQOperation::Token cancelling;
    if (waiting) {
        cancelling = waiting->observe([queue = d](ZQOperation::Key key) {
            if (key == ZQOperation::Key::IsCancelled) {
                const ZQLockGuard lock(queue->mutex); // else it could come between the look and the wait
                queue->stateChanged.notifyAll();
            }
        });
    }
    const ZQLockGuard lock(d->mutex);
    zqWaitServingMainThread(d->mutex, d->stateChanged, [this, most, waiting]() ZQ_REQUIRES(d->mutex) {
        return d->count() <= most || (waiting && waiting->isCancelled());
    });
}
