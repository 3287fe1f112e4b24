#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandContext.h"
#include "Kit/Foundation/ZQStopScope.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

// A look at the whole library for a command: where a window would have to wait for it, it is done on a thread and a
// context of its own, which ends when nobody wants the answer any more, or with this. Main thread.
template <class Result>
class WorkBeside
{
public:
    using Work = std::function<Result(ZQManagedObjectContext &store, const std::stop_token &stop)>;
    using Finish = std::function<int(const Result &result, CommandContext &context)>;

    static int run(CommandContext &context, Work work, Finish finish)
    {
        if (!context.mayBeFinishedLater) {
            return finish(work(context.store(), {}), context);
        }
        context.delegate->saveAction(); // the other context sees what is saved
        const auto job = std::make_shared<WorkBeside>();
        job->m_queue.addOperationWithBlock(
            [job = job.get(), work = std::move(work), store = context.delegate->persistentStoreCoordinator()] {
                const std::stop_token stop = job->m_stop.get_token();
                const ZQStopScope scope(stop);
                ZQManagedObjectContext own(store);
                job->m_result = work(own, stop);
                job->m_isDone = true;
            });
        const auto isDone = [job, isAbandoned = context.isAbandoned] {
            if (isAbandoned && isAbandoned()) {
                job->m_stop.request_stop();
            }
            return job->m_isDone.load();
        };
        context.pending = PendingCommand{
            isDone,
            [job, finish = std::move(finish)](CommandContext &finished) { return finish(*job->m_result, finished); },
            {}};
        return 0;
    }

    WorkBeside() = default;
    ~WorkBeside() { m_stop.request_stop(); }
    WorkBeside(const WorkBeside &) = delete;
    WorkBeside &operator=(const WorkBeside &) = delete;

private:
    std::optional<Result> m_result; // the thread's until it is done
    std::atomic<bool> m_isDone = false;
    std::stop_source m_stop;
    ZQOperationQueue m_queue{QStringLiteral("beside"), 1}; // last: it goes first, and waits for what runs
};
