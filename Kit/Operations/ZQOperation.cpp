#include "Kit/Operations/ZQOperation.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQOperationPrivate.h"
#include "Kit/Operations/ZQWaiting.h"

#include <algorithm>
#include <exception>

bool ZQOperation::Private::isReady()
{
    const ZQLockGuard lock(mutex);
    return isCancelled || std::all_of(dependencies.cbegin(), dependencies.cend(),
                                      [](const auto &dependency) { return dependency->isFinished(); });
}

void ZQOperation::Private::addFinishHook(std::function<void()> hook)
{
    {
        const ZQLockGuard lock(mutex);
        if (!isAnnounced) {
            finishHooks.push_back(std::move(hook));
            return;
        }
    }
    hook();
}

std::vector<std::shared_ptr<ZQOperation::Private::Observer>> ZQOperation::Private::currentObservers()
{
    std::erase_if(observers, [](const auto &observer) { return observer.expired(); });
    std::vector<std::shared_ptr<Observer>> current;
    for (const auto &observer : observers) {
        if (auto alive = observer.lock()) {
            current.push_back(std::move(alive));
        }
    }
    return current;
}

namespace {
// The snapshot gives each observer up before the next is called, so that one destroyed meanwhile by its owner stays
// silent.
template <class Observers>
void announce(Observers observers, ZQOperation::Key key)
{
    std::vector<std::weak_ptr<typename Observers::value_type::element_type>> weak(observers.begin(), observers.end());
    observers.clear();
    for (const auto &observer : weak) {
        if (const auto alive = observer.lock()) {
            alive->function(key);
        }
    }
}
} // namespace

ZQOperation::ZQOperation() : d(std::make_unique<Private>()) {}

ZQOperation::~ZQOperation() = default;

void ZQOperation::start()
{
    const std::shared_ptr<ZQOperation> self = weak_from_this().lock();
    bool skipsWork = false;
    {
        const ZQLockGuard lock(d->mutex);
        if (d->isStarted || d->isFinished) {
            return;
        }
        d->isStarted = true;
        skipsWork = d->isCancelled;
    }
    if (!skipsWork) {
        setExecuting(true);
        const ZQCancellation::Scope scope(d->cancellation);
        try {
            main();
        } catch (const std::exception &exception) {
            qCCritical(zqLogApplication, "An operation ended with an exception: %s", exception.what());
        }
    }
    setFinished(true);
}

void ZQOperation::cancel()
{
    const std::shared_ptr<ZQOperation> self = weak_from_this().lock();
    std::vector<std::shared_ptr<Private::Observer>> observers;
    std::vector<std::function<void()>> hooks;
    {
        const ZQLockGuard lock(d->mutex);
        if (d->isCancelled || d->isFinished) {
            return;
        }
        d->isCancelled = true;
        d->cancellation->cancel();
        observers = d->currentObservers();
        hooks.swap(d->readinessHooks);
    }
    announce(std::move(observers), Key::IsCancelled);
    for (const auto &hook : hooks) {
        hook();
    }
}

bool ZQOperation::isCancelled() const
{
    const ZQLockGuard lock(d->mutex);
    return d->isCancelled;
}

bool ZQOperation::isExecuting() const
{
    const ZQLockGuard lock(d->mutex);
    return d->isExecuting;
}

bool ZQOperation::isFinished() const
{
    const ZQLockGuard lock(d->mutex);
    return d->isFinished;
}

void ZQOperation::addDependency(std::shared_ptr<ZQOperation> operation)
{
    if (operation && operation.get() != this) {
        const ZQLockGuard lock(d->mutex);
        d->dependencies.push_back(std::move(operation));
    }
}

QList<std::shared_ptr<ZQOperation>> ZQOperation::dependencies() const
{
    const ZQLockGuard lock(d->mutex);
    return {d->dependencies.begin(), d->dependencies.end()};
}

void ZQOperation::setCompletionBlock(std::function<void()> block)
{
    {
        const ZQLockGuard lock(d->mutex);
        if (!d->completionIsDue) {
            d->completion = std::move(block);
            return;
        }
    }
    if (block) {
        block();
    }
}

ZQOperation::Token ZQOperation::observe(std::function<void(Key)> observer)
{
    auto token = std::make_shared<Private::Observer>(Private::Observer{std::move(observer)});
    const ZQLockGuard lock(d->mutex);
    d->observers.push_back(token);
    return token;
}

void ZQOperation::waitUntilFinished()
{
    const std::shared_ptr<ZQOperation> self = weak_from_this().lock();
    const ZQLockGuard lock(d->mutex);
    if (d->isFinished && d->announcer == std::this_thread::get_id()) {
        return; // asked by an observer that is being told of the end
    }
    zqWaitServingMainThread(d->mutex, d->announced, [this]() ZQ_REQUIRES(d->mutex) { return d->isAnnounced; });
}

void ZQOperation::setExecuting(bool executing)
{
    std::vector<std::shared_ptr<Private::Observer>> observers;
    {
        const ZQLockGuard lock(d->mutex);
        if (d->isExecuting == executing || d->isFinished) {
            return;
        }
        d->isExecuting = executing;
        d->isStarted = d->isStarted || executing;
        observers = d->currentObservers();
    }
    announce(std::move(observers), Key::IsExecuting);
}

void ZQOperation::setFinished(bool finished)
{
    if (!finished) {
        return;
    }
    // The queue's reference may be the last but this one.
    const std::shared_ptr<ZQOperation> self = weak_from_this().lock();
    bool wasExecuting = false;
    std::vector<std::shared_ptr<Private::Observer>> observers;
    std::vector<std::shared_ptr<ZQOperation>> dependencies;
    {
        const ZQLockGuard lock(d->mutex);
        if (d->isFinished) {
            return;
        }
        wasExecuting = std::exchange(d->isExecuting, false);
        d->isFinished = true;
        d->announcer = std::this_thread::get_id();
        dependencies.swap(d->dependencies);
        observers = d->currentObservers();
    }
    if (wasExecuting) {
        announce(observers, Key::IsExecuting);
    }
    announce(std::move(observers), Key::IsFinished);
    std::function<void()> completion;
    {
        const ZQLockGuard lock(d->mutex);
        d->completionIsDue = true;
        completion.swap(d->completion);
    }
    if (completion) {
        completion();
    }
    std::vector<std::function<void()>> hooks;
    {
        const ZQLockGuard lock(d->mutex);
        d->isAnnounced = true;
        d->announcer = {};
        hooks.swap(d->finishHooks);
        d->announced.notifyAll();
    }
    for (const auto &hook : hooks) {
        hook();
    }
}

namespace {
class BlockOperation : public ZQOperation
{
public:
    explicit BlockOperation(std::function<void()> block) : m_block(std::move(block)) {}
    // What the block holds is let go with the work, not with the last reference to the operation.
    void main() override { std::exchange(m_block, nullptr)(); }

private:
    std::function<void()> m_block;
};
} // namespace

std::shared_ptr<ZQOperation> zqBlockOperation(std::function<void()> block)
{
    return std::make_shared<BlockOperation>(std::move(block));
}
