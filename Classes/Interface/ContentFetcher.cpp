#include "Classes/Interface/ContentFetcher.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

struct ContentFetcher::Private
{
    struct Job
    {
        Purpose purpose;
        quint64 number;
        std::function<Answer(ZQManagedObjectContext &, const IsWanted &)> work;
    };
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;
    mutable std::mutex lock;
    std::condition_variable wake;
    std::deque<Job> waiting;
    std::array<quint64, size_t(Purpose::Count)> latest = {};
    quint64 next = 0;
    int unanswered = 0;
    bool stopping = false;
    Purpose runningPurpose = Purpose::Count;
    std::shared_ptr<ZQCancellation> running; // null while nothing runs
    std::thread thread;

    void add(Job job);
    void run(ContentFetcher *owner);
    void perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job,
                 const std::shared_ptr<ZQCancellation> &cancellation);
    bool putBack(const Job &job); // false for one that is not wanted any more
    bool isLatest(const Job &job) const
    {
        const std::lock_guard guard(lock);
        return latest[size_t(job.purpose)] == job.number;
    }
};

ContentFetcher::ContentFetcher(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent)
    : QObject(parent), d(std::make_shared<Private>())
{
    d->coordinator = std::move(coordinator);
    d->thread = std::thread([this] { d->run(this); });
}

ContentFetcher::~ContentFetcher()
{
    {
        const std::lock_guard guard(d->lock);
        d->stopping = true;
        if (d->running) {
            d->running->cancel();
        }
    }
    d->wake.notify_all();
    d->thread.join();
}

void ContentFetcher::Private::add(Job job)
{
    const std::lock_guard guard(lock);
    job.number = ++next;
    latest[size_t(job.purpose)] = job.number;
    unanswered -= int(std::erase_if(waiting, [&job](const Job &other) { return other.purpose == job.purpose; }));
    ++unanswered;
    if (running && job.purpose <= runningPurpose) {
        running->cancel();
    }
    waiting.push_back(std::move(job));
    wake.notify_one();
}

void ContentFetcher::Private::run(ContentFetcher *owner)
{
    ZQManagedObjectContext context(coordinator);
    context.setFetchesAreCancellable(true);
    while (true) {
        std::unique_lock guard(lock);
        wake.wait(guard, [this] { return stopping || !waiting.empty(); });
        if (stopping) {
            return;
        }
        const auto first = std::min_element(waiting.begin(), waiting.end(),
                                            [](const Job &a, const Job &b) { return a.purpose < b.purpose; });
        const Job job = std::move(*first);
        waiting.erase(first);
        const auto cancellation = std::make_shared<ZQCancellation>();
        running = cancellation;
        runningPurpose = job.purpose;
        guard.unlock();
        perform(owner, context, job, cancellation);
        context.reset();
    }
}

bool ContentFetcher::Private::putBack(const Job &job)
{
    const std::lock_guard guard(lock);
    if (stopping || latest[size_t(job.purpose)] != job.number) {
        return false;
    }
    waiting.push_back(job);
    return true;
}

void ContentFetcher::Private::perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job,
                                      const std::shared_ptr<ZQCancellation> &cancellation)
{
    Answer answer;
    {
        const ZQCancellation::Scope scope(cancellation);
        answer = job.work(context, [&] { return isLatest(job) && !cancellation->isCancelled(); });
    }
    {
        const std::lock_guard guard(lock);
        running.reset();
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
                const std::lock_guard guard(owner->d->lock);
                --owner->d->unanswered;
            }
            if (isCurrent && answer) {
                answer();
            }
        },
        Qt::QueuedConnection);
}

void ContentFetcher::run(Purpose purpose, std::function<Answer(ZQManagedObjectContext &, const IsWanted &)> work)
{
    d->add({purpose, 0, std::move(work)});
}

namespace {

// What `fetch(request, error)` gives for each request, then handed to `answer` with the first error.
template <class Result, class Fetch>
auto each(QList<ZQFetchRequest> requests, std::function<void(QList<Result>, ZQError)> answer, Fetch fetch)
{
    return [requests = std::move(requests), answer = std::move(answer), fetch](
               ZQManagedObjectContext &context, const ContentFetcher::IsWanted &isWanted) -> ContentFetcher::Answer {
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
                return [answer, error] { answer({}, error); };
            }
            results.append(std::move(*result));
        }
        return [answer, results] { answer(results, {}); };
    };
}

template <class Result>
std::function<void(QList<Result>, ZQError)> onlyWithoutError(std::function<void(QList<Result>)> answer)
{
    return [answer = std::move(answer)](const QList<Result> &results, const ZQError &error) {
        if (error.isNull()) {
            answer(results);
        }
    };
}

} // namespace

void ContentFetcher::fetchObjectIDs(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(IDs)> answer)
{
    run(purpose, each<QList<ZQObjectID>>(std::move(requests), onlyWithoutError<QList<ZQObjectID>>(std::move(answer)),
                                         [](ZQManagedObjectContext &context, const ZQFetchRequest &request,
                                            ZQError *error) { return context.fetchObjectIDs(request, error); }));
}

void ContentFetcher::fetchRows(Purpose purpose, QList<ZQFetchRequest> requests,
                               std::function<void(Rows, ZQError)> answer)
{
    const auto rowsOf = [](ZQManagedObjectContext &context, const ZQFetchRequest &request,
                           ZQError *error) -> std::optional<ZQRelatedIDs> {
        if (request.entityName == ZQProjectItem::entityName()) {
            return context.fetchObjectIDsWithRelated(request, QStringLiteral("item"), error);
        }
        const auto ids = context.fetchObjectIDs(request, error);
        return ids ? std::optional<ZQRelatedIDs>({*ids, *ids}) : std::nullopt;
    };
    run(purpose, each<ZQRelatedIDs>(std::move(requests), std::move(answer), rowsOf));
}

void ContentFetcher::count(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(QList<qint64>)> answer)
{
    run(purpose, each<qint64>(std::move(requests), onlyWithoutError<qint64>(std::move(answer)),
                              [](ZQManagedObjectContext &context, const ZQFetchRequest &request, ZQError *error) {
                                  return context.countForFetchRequest(request, error);
                              }));
}

bool ContentFetcher::isIdle() const
{
    const std::lock_guard guard(d->lock);
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
