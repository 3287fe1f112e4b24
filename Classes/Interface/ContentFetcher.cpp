#include "Classes/Interface/ContentFetcher.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQModelFetch.h"

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
        QList<ZQFetchRequest> requests;
        std::function<void(IDs)> answerIDs; // one of these two
        std::function<void(QList<qint64>)> answerCounts;
    };
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;
    mutable std::mutex lock;
    std::condition_variable wake;
    std::deque<Job> waiting;
    std::array<quint64, 4> latest = {};
    quint64 next = 0;
    int unanswered = 0;
    bool stopping = false;
    std::thread thread;

    void add(ContentFetcher *owner, Job job);
    void run(ContentFetcher *owner);
    void perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job);
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
    }
    d->wake.notify_all();
    d->thread.join();
}

void ContentFetcher::Private::add(ContentFetcher *owner, Job job)
{
    Q_UNUSED(owner)
    const std::lock_guard guard(lock);
    job.number = ++next;
    latest[size_t(job.purpose)] = job.number;
    unanswered -= int(std::erase_if(waiting, [&job](const Job &other) { return other.purpose == job.purpose; }));
    ++unanswered;
    waiting.push_back(std::move(job));
    wake.notify_one();
}

void ContentFetcher::Private::run(ContentFetcher *owner)
{
    ZQManagedObjectContext context(coordinator);
    while (true) {
        std::unique_lock guard(lock);
        wake.wait(guard, [this] { return stopping || !waiting.empty(); });
        if (stopping) {
            return;
        }
        const Job job = std::move(waiting.front());
        waiting.pop_front();
        guard.unlock();
        perform(owner, context, job);
        context.reset();
    }
}

void ContentFetcher::Private::perform(ContentFetcher *owner, ZQManagedObjectContext &context, const Job &job)
{
    IDs ids;
    QList<qint64> counts;
    for (const ZQFetchRequest &request : job.requests) {
        if (!isLatest(job)) {
            break;
        }
        ZQError error;
        if (job.answerIDs) {
            auto found = context.fetchObjectIDs(request, &error);
            ids.append(found.value_or(QList<ZQObjectID>()));
        } else {
            counts.append(context.countForFetchRequest(request, &error).value_or(0));
        }
        if (!error.isNull()) {
            zqLogFetchError(error);
        }
    }
    QMetaObject::invokeMethod(
        owner,
        [owner, job, ids = std::move(ids), counts = std::move(counts)] {
            const bool isCurrent = owner->d->isLatest(job);
            {
                const std::lock_guard guard(owner->d->lock);
                --owner->d->unanswered;
            }
            if (isCurrent && job.answerIDs) {
                job.answerIDs(ids);
            } else if (isCurrent) {
                job.answerCounts(counts);
            }
        },
        Qt::QueuedConnection);
}

void ContentFetcher::fetchObjectIDs(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(IDs)> answer)
{
    d->add(this, {purpose, 0, std::move(requests), std::move(answer), {}});
}

void ContentFetcher::count(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(QList<qint64>)> answer)
{
    d->add(this, {purpose, 0, std::move(requests), {}, std::move(answer)});
}

bool ContentFetcher::isIdle() const
{
    const std::lock_guard guard(d->lock);
    return d->unanswered == 0;
}
