#pragma once

#include <QList>
#include <QObject>

#include <functional>
#include <memory>
#include <mutex>

class ZQOperationQueue;

// A piece of work that runs once, on a queue or by `start()`.
//
// A subclass overrides `main()` and is finished when it returns, or overrides `start()` and manages `setExecuting` and
// `setFinished` itself (a self-managed operation may go on after `start()` returned; the queue counts it until it
// finishes). Always held by std::shared_ptr. All functions may be called from any thread; observers are called on the
// thread that changes the state.
class ZQOperation : public std::enable_shared_from_this<ZQOperation>
{
public:
    enum class Key { IsExecuting, IsFinished, IsCancelled };

    ZQOperation();
    virtual ~ZQOperation();

    // The base: nothing when cancelled, else main(), with the state kept and the thread's ZQCancellation set.
    virtual void start();
    virtual void main() {}
    // Cooperative: sets the flag and tells the observers. Work that never started is finished by its queue when its
    // turn comes, without `start()`, and no longer waits for its dependencies.
    virtual void cancel();
    // The application is about to end. The base: cancels; what is soon done and not to be lost may come to its end.
    virtual void endSoon() { cancel(); }
    // Whether it may run in the place of one that stands aside, before what was queued earlier; see
    // `ZQOperationQueue`. Never changes.
    virtual bool overtakes() const { return false; }

    bool isCancelled() const;
    bool isExecuting() const;
    bool isFinished() const;

    // Starts only after `operation` has finished, on whatever queue that is. Before queueing only; let go at the end.
    void addDependency(std::shared_ptr<ZQOperation> operation);
    QList<std::shared_ptr<ZQOperation>> dependencies() const;

    // Called once when the operation has finished; at once when it already has.
    void setCompletionBlock(std::function<void()> block);
    using Token = std::shared_ptr<void>;
    [[nodiscard]] Token observe(std::function<void(Key)> observer);

    // Returns when the observers and the completion block were told as well. On the main thread it serves the calls
    // that wait for that thread, nothing else.
    void waitUntilFinished();

protected:
    void setExecuting(bool executing);
    void setFinished(bool finished);

private:
    friend class ZQOperationQueue;
    struct Private;
    std::unique_ptr<Private> d;
};

// An operation around a function.
std::shared_ptr<ZQOperation> zqBlockOperation(std::function<void()> block);
