#include "Classes/Browsing/Content/ContentFetcher.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQSignalStack.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <thread>

struct ContentFetcher::Ticket::State
{
    Priority priority;
    std::weak_ptr<Private> fetcher; // gone when that is
    quint64 latest = 0;             // the number of the job whose answer is wanted; 0 for none. Guarded by its lock
};

struct ContentFetcher::Private
{
    struct Job
    {
        std::shared_ptr<Ticket::State> ticket;
        quint64 number = 0;
        Ticket::Work work;
    };
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;
    std::shared_ptr<LibraryIndex> index; // of the main thread
    mutable ZQMutex lock;
    ZQCondition wake;
    std::deque<Job> waiting ZQ_GUARDED_BY(lock);
    quint64 next ZQ_GUARDED_BY(lock) = 0;
    int unanswered ZQ_GUARDED_BY(lock) = 0;
    bool stopping ZQ_GUARDED_BY(lock) = false;
    std::shared_ptr<Ticket::State> runningTicket ZQ_GUARDED_BY(lock);
    std::shared_ptr<ZQCancellation> running ZQ_GUARDED_BY(lock); // null while nothing runs
    std::thread thread;

    void add(Job job);
    void end(const std::shared_ptr<Ticket::State> &ticket);
    void dropWaiting(const std::shared_ptr<Ticket::State> &ticket) ZQ_REQUIRES(lock);
    Job takeFirst() ZQ_REQUIRES(lock);
    // Waits for one; nothing when the fetcher ends.
    std::optional<Job> take(std::shared_ptr<ZQCancellation> &cancellation);
    void run(ContentFetcher *owner);
    void perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job,
                 const std::shared_ptr<ZQCancellation> &cancellation);
    bool putBack(const Job &job); // false for one that is not wanted any more
    bool isLatest(const Job &job) const
    {
        const ZQLockGuard guard(lock);
        return job.ticket->latest == job.number;
    }
};

ContentFetcher::ContentFetcher(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent)
    : QObject(parent), d(std::make_shared<Private>())
{
    d->coordinator = std::move(coordinator);
    d->thread = std::thread([this] {
        const ZQSignalStack stack;
        d->run(this);
    });
}

ContentFetcher::~ContentFetcher()
{
    {
        const ZQLockGuard guard(d->lock);
        d->stopping = true;
        if (d->running) {
            d->running->cancel();
        }
    }
    d->wake.notifyAll();
    d->thread.join();
}

void ContentFetcher::setIndex(std::shared_ptr<LibraryIndex> index)
{
    d->index = std::move(index);
}

std::shared_ptr<LibraryIndex> ContentFetcher::Ticket::index() const
{
    const auto fetcher = m_state->fetcher.lock();
    return fetcher ? fetcher->index : nullptr;
}

ContentFetcher::Ticket::Ticket(ContentFetcher &fetcher, Priority priority) : m_state(new State{priority, fetcher.d}) {}

ContentFetcher::Ticket::~Ticket()
{
    if (const auto fetcher = m_state->fetcher.lock()) {
        fetcher->end(m_state);
    }
}

void ContentFetcher::Private::dropWaiting(const std::shared_ptr<Ticket::State> &ticket)
{
    unanswered -= int(std::erase_if(waiting, [&ticket](const Job &other) { return other.ticket == ticket; }));
}

void ContentFetcher::Private::end(const std::shared_ptr<Ticket::State> &ticket)
{
    const ZQLockGuard guard(lock);
    ticket->latest = 0;
    dropWaiting(ticket);
    if (running && runningTicket == ticket) {
        running->cancel();
    }
}

void ContentFetcher::Private::add(Job job)
{
    const ZQLockGuard guard(lock);
    job.number = ++next;
    job.ticket->latest = job.number;
    dropWaiting(job.ticket);
    ++unanswered;
    if (running && (job.ticket == runningTicket || job.ticket->priority < runningTicket->priority)) {
        running->cancel();
    }
    waiting.push_back(std::move(job));
    wake.notifyOne();
}

ContentFetcher::Private::Job ContentFetcher::Private::takeFirst()
{
    const auto first = std::min_element(waiting.begin(), waiting.end(), [](const Job &a, const Job &b) {
        return a.ticket->priority < b.ticket->priority;
    });
    Job job = std::move(*first);
    waiting.erase(first);
    return job;
}

std::optional<ContentFetcher::Private::Job> ContentFetcher::Private::take(std::shared_ptr<ZQCancellation> &cancellation)
{
    const ZQLockGuard guard(lock);
    while (!stopping && waiting.empty()) {
        wake.wait(lock);
    }
    if (stopping) {
        return std::nullopt;
    }
    Job job = takeFirst();
    running = cancellation = std::make_shared<ZQCancellation>();
    runningTicket = job.ticket;
    return job;
}

void ContentFetcher::Private::run(ContentFetcher *owner)
{
    ZQManagedObjectContext context(coordinator);
    context.setFetchesAreCancellable(true);
    std::shared_ptr<ZQCancellation> cancellation;
    while (const auto job = take(cancellation)) {
        perform(owner, context, *job, cancellation);
        context.reset();
    }
}

bool ContentFetcher::Private::putBack(const Job &job)
{
    const ZQLockGuard guard(lock);
    if (stopping || job.ticket->latest != job.number) {
        return false;
    }
    waiting.push_back(job);
    return true;
}

void ContentFetcher::Private::perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job,
                                      const std::shared_ptr<ZQCancellation> &cancellation)
{
    Ticket::Answer answer;
    {
        const ZQCancellation::Scope scope(cancellation);
        answer = job.work(context, [&] { return isLatest(job) && !cancellation->isCancelled(); });
    }
    {
        const ZQLockGuard guard(lock);
        running.reset();
        runningTicket.reset();
    }
    if (cancellation->isCancelled()) {
        if (putBack(job)) {
            return;
        }
        answer = {};
    }
    QMetaObject::invokeMethod(
        owner,
        [owner, job, answer = std::move(answer)] {
            const bool isCurrent = owner->d->isLatest(job);
            {
                const ZQLockGuard guard(owner->d->lock);
                --owner->d->unanswered;
            }
            if (isCurrent && answer) {
                answer();
            }
        },
        Qt::QueuedConnection);
}

void ContentFetcher::Ticket::run(Work work)
{
    if (const auto fetcher = m_state->fetcher.lock()) {
        fetcher->add({m_state, 0, std::move(work)});
    }
}

namespace {

// What `fetch(context, request, error)` gives for each request; none after an error.
template <class Result, class Fetch>
ContentFetcher::Ticket::Work each(QList<ZQFetchRequest> requests, std::function<void(QList<Result>)> answer,
                                  Fetch fetch)
{
    return [requests = std::move(requests), answer = std::move(answer),
            fetch](ZQManagedObjectContext &context,
                   const ContentFetcher::Ticket::IsWanted &isWanted) -> ContentFetcher::Ticket::Answer {
        QList<Result> results;
        for (const ZQFetchRequest &request : requests) {
            if (!isWanted()) {
                return {};
            }
            ZQError error;
            auto result = fetch(context, request, &error);
            if (!result && ZQCancellation::isCurrentCancelled()) {
                return {};
            }
            if (!result) {
                zqLogFetchError(error);
                return {};
            }
            results.append(std::move(*result));
        }
        return [answer, results] { answer(results); };
    };
}

} // namespace

void ContentFetcher::Ticket::fetchObjectIDs(QList<ZQFetchRequest> requests, std::function<void(IDs)> answer)
{
    run(each<QList<ZQObjectID>>(std::move(requests), std::move(answer),
                                [](ZQManagedObjectContext &context, const ZQFetchRequest &request, ZQError *error) {
                                    return context.fetchObjectIDs(request, error);
                                }));
}

void ContentFetcher::Ticket::count(QList<ZQFetchRequest> requests, std::function<void(QList<qint64>)> answer)
{
    run(each<qint64>(std::move(requests), std::move(answer),
                     [](ZQManagedObjectContext &context, const ZQFetchRequest &request, ZQError *error) {
                         return context.countForFetchRequest(request, error);
                     }));
}

std::optional<ZQRelatedIDs> ContentFetcher::rows(const ZQFetchRequest &request, ZQManagedObjectContext &context,
                                                 ZQError *error)
{
    if (request.entityName == ZQProjectItem::entityName()) {
        return context.fetchObjectIDsWithRelated(request, QStringLiteral("item"), error);
    }
    const auto ids = context.fetchObjectIDs(request, error);
    return ids ? std::optional<ZQRelatedIDs>({*ids, *ids}) : std::nullopt;
}

bool ContentFetcher::isIdle() const
{
    const ZQLockGuard guard(d->lock);
    return d->unanswered == 0;
}

bool ContentFetcher::isDamage(const ZQError &error)
{
    return error.domain == ZQStoreErrorDomain && error.code == static_cast<int>(ZQStoreError::Damaged);
}

QString ContentFetcher::textForError(const ZQError &error)
{
    return zqLocalized("The library could not be read") + QStringLiteral("\n\n") +
           (isDamage(error) ? zqLocalized("Its database is damaged. Everything that can still be read can be recovered "
                                          "into a new one.")
                            : error.localizedDescription());
}
