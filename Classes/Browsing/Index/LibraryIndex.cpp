#include "Classes/Browsing/Index/LibraryIndex.h"

#include "Classes/Browsing/Index/IndexCounts.h"
#include "Classes/Browsing/Index/IndexReader.h"
#include "Classes/Browsing/Index/IndexRequests.h"
#include "Classes/Browsing/Index/SimilarPictures.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQSignalStack.h"
#include "Kit/Foundation/ZQThreadSafety.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <algorithm>
#include <atomic>
#include <malloc.h>
#include <thread>

struct LibraryIndex::Private
{
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;

    // Many readers, and the index's thread, which alone writes and so may read without it.
    mutable ZQSharedMutex columnsLock;
    std::unique_ptr<LibraryColumns> columns; // null until it is ready
    std::atomic<quint64> generation = 0;
    mutable IndexRequests::Orders orders;

    mutable ZQMutex lock;
    ZQCondition wake;
    ZQCondition taken;
    IndexReader::Asked asked ZQ_GUARDED_BY(lock);
    quint64 announced ZQ_GUARDED_BY(lock) = 1; // the first is the whole library
    quint64 tried ZQ_GUARDED_BY(lock) = 0;
    quint64 current ZQ_GUARDED_BY(lock) = 0; // so many are in
    bool isStarted ZQ_GUARDED_BY(lock) = false;
    bool isOrdering ZQ_GUARDED_BY(lock) = false; // titles, after the rest was built
    bool isStopping ZQ_GUARDED_BY(lock) = false;

    std::shared_ptr<ZQCancellation> cancellation = std::make_shared<ZQCancellation>();
    std::vector<ZQManagedObjectContext::Token> tokens; // of the thread that follows
    std::thread thread;

    void run(LibraryIndex *owner);
    bool build(LibraryIndex *owner);
    void order();
    template <class Done>
    bool wait(Done done) ZQ_REQUIRES(lock) ZQ_NO_THREAD_SAFETY_ANALYSIS; // of `done`
    bool update(ZQManagedObjectContext &context, const IndexReader::Asked &batch, LibraryIndex *owner);
    // Waits for something to do; nothing when the index ends.
    std::optional<IndexReader::Asked> take(quint64 &number);
    void did(quint64 number, bool isDone);
    template <class Signal>
    static void tell(LibraryIndex *owner, Signal signal)
    {
        QMetaObject::invokeMethod(
            owner,
            [owner, signal] {
                Q_EMIT(owner->*signal)
                ();
            },
            Qt::QueuedConnection);
    }
};

struct LibraryIndex::Reading::State
{
    std::shared_ptr<Private> index;
    std::unique_ptr<ZQReadHold> hold;
    const LibraryColumns &columns;
    quint64 generation;

    IndexRequests requests() const { return {columns, index->orders, generation}; }
    std::optional<quint32> rowOf(const ZQObjectID &item) const; // of one that is there
};

LibraryIndex::LibraryIndex(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent)
    : QObject(parent), d(std::make_shared<Private>())
{
    d->coordinator = std::move(coordinator);
    d->thread = std::thread([this] {
        const ZQSignalStack stack;
        d->run(this);
    });
}

LibraryIndex::~LibraryIndex()
{
    d->tokens.clear();
    {
        const ZQLockGuard guard(d->lock);
        d->isStopping = true;
    }
    d->cancellation->cancel();
    d->wake.notifyAll();
    d->taken.notifyAll();
    d->thread.join();
}

void LibraryIndex::start()
{
    const ZQLockGuard guard(d->lock);
    d->isStarted = true;
    d->wake.notifyAll();
}

void LibraryIndex::follow(ZQManagedObjectContext &context)
{
    d->tokens.push_back(context.observeObjectsDidChange([this](const ZQContextDidSave &change) { take(change); }));
    d->tokens.push_back(context.observeDidSave([this](const ZQContextDidSave &saved) { take(saved); }));
}

void LibraryIndex::take(const ZQContextDidSave &saved)
{
    const ZQLockGuard guard(d->lock);
    d->asked.add(saved);
    if (!d->asked.isEmpty()) {
        ++d->announced;
        d->wake.notifyAll();
    }
}

bool LibraryIndex::isReady() const
{
    const ZQReadHold guard(d->columnsLock);
    return d->columns != nullptr;
}

bool LibraryIndex::hasFailed() const
{
    const ZQLockGuard guard(d->lock);
    return d->tried > d->current;
}

// A cancellation wakes nobody.
template <class Done>
bool LibraryIndex::Private::wait(Done done)
{
    constexpr std::chrono::milliseconds look{10};
    while (!done() && !isStopping && !ZQCancellation::isCurrentCancelled()) {
        taken.waitFor(lock, look);
    }
    return done();
}

bool LibraryIndex::waitUntilCurrent()
{
    start();
    const ZQLockGuard guard(d->lock);
    const quint64 wanted = d->announced;
    return d->wait([this, wanted]() ZQ_REQUIRES(d->lock) { return d->tried >= wanted; }) && d->current >= wanted;
}

bool LibraryIndex::waitUntilOrdered()
{
    if (!waitUntilCurrent()) {
        return false;
    }
    const ZQLockGuard guard(d->lock);
    return d->wait([this]() ZQ_REQUIRES(d->lock) { return !d->isOrdering; });
}

std::optional<IndexRows> LibraryIndex::rowsWhenCurrent(const ZQFetchRequest &request, std::optional<Reading> &reading)
{
    for (const bool isOrderWanted : {false, true}) {
        reading.reset(); // what is waited for could not come in
        if (!(isOrderWanted ? waitUntilOrdered() : waitUntilCurrent())) {
            return std::nullopt;
        }
        if (auto now = read()) {
            reading.emplace(std::move(*now));
        }
        if (auto found = reading ? reading->rows(request) : std::nullopt) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<ZQRelatedIDs> LibraryIndex::answer(const ZQFetchRequest &request)
{
    std::optional<Reading> reading;
    const auto found = rowsWhenCurrent(request, reading);
    return found ? std::optional(reading->ids(*found)) : std::nullopt;
}

std::optional<QHash<ZQObjectID, QList<ZQObjectID>>> LibraryIndex::answerByLiveFolder(const ZQFetchRequest &request)
{
    std::optional<Reading> reading;
    const auto found = rowsWhenCurrent(request, reading);
    return found ? std::optional(reading->idsByLiveFolder(*found)) : std::nullopt;
}

size_t LibraryIndex::bytes() const
{
    const ZQReadHold guard(d->columnsLock);
    return d->columns ? d->columns->bytes() : 0;
}

std::optional<IndexReader::Asked> LibraryIndex::Private::take(quint64 &number)
{
    const ZQLockGuard guard(lock);
    while (!isStopping && (!isStarted || tried == announced)) {
        wake.wait(lock);
    }
    if (isStopping) {
        return std::nullopt;
    }
    number = announced;
    return std::exchange(asked, {});
}

void LibraryIndex::Private::did(quint64 number, bool isDone)
{
    const ZQLockGuard guard(lock);
    tried = number; // what failed is tried again with what is announced next
    current = isDone ? number : current;
    taken.notifyAll();
}

bool LibraryIndex::Private::build(LibraryIndex *owner)
{
    ZQError error;
    auto built = IndexReader::readAll(coordinator, &error);
    if (!built) {
        if (!cancellation->isCancelled()) {
            zqLogFetchError(error);
        }
        return false;
    }
    {
        const ZQWriteGuard guard(columnsLock);
        columns = std::move(built);
        ++generation;
    }
    {
        const ZQLockGuard guard(lock);
        isOrdering = true;
    }
    tell(owner, &LibraryIndex::ready);
    return true;
}

// The longest step of all, without which everything but an order by title can be answered.
void LibraryIndex::Private::order()
{
    IndexTitles titles;
    const bool isBuilt = titles.build(columns->items.title);
    {
        const ZQWriteGuard guard(columnsLock);
        if (isBuilt) {
            columns->titles = std::move(titles);
        }
    }
    const ZQLockGuard guard(lock);
    isOrdering = false;
    taken.notifyAll();
}

bool LibraryIndex::Private::update(ZQManagedObjectContext &context, const IndexReader::Asked &batch,
                                   LibraryIndex *owner)
{
    ZQError error;
    auto changes = IndexReader::read(context, *columns, batch, &error);
    if (!changes) {
        if (!cancellation->isCancelled()) {
            zqLogFetchError(error);
        }
        return false;
    }
    auto titles = columns->titlesAfter(*changes);
    {
        const ZQWriteGuard guard(columnsLock);
        columns->apply(std::move(*changes), std::move(titles));
        ++generation;
    }
    tell(owner, &LibraryIndex::changed);
    return true;
}

void LibraryIndex::Private::run(LibraryIndex *owner)
{
    const ZQCancellation::Scope scope(cancellation);
    std::unique_ptr<ZQManagedObjectContext> context;
    quint64 number = 0;
    while (const auto batch = take(number)) {
        if (!context) {
            context = std::make_unique<ZQManagedObjectContext>(coordinator);
        }
        if (columns && !update(*context, *batch, owner)) {
            // Nobody will say again what could not be read now: rather no index than one that lacks it.
            const ZQWriteGuard guard(columnsLock);
            columns.reset();
        }
        const bool isAnew = !columns && build(owner); // with all that was announced before it began
        did(number, columns != nullptr);
        if (isAnew) {
            order();
            malloc_trim(0); // what reading and ordering took is as much again, and lies between what stays
        } else if (!columns && !cancellation->isCancelled()) {
            tell(owner, &LibraryIndex::failed);
        }
    }
}

std::optional<LibraryIndex::Reading> LibraryIndex::read() const
{
    auto hold = std::make_unique<ZQReadHold>(d->columnsLock);
    if (!d->columns) {
        return std::nullopt;
    }
    return Reading(std::unique_ptr<Reading::State>(new Reading::State{d, std::move(hold), *d->columns, d->generation}));
}

LibraryIndex::Reading::Reading(std::unique_ptr<State> state) : d(std::move(state)) {}
LibraryIndex::Reading::Reading(Reading &&other) noexcept = default;
LibraryIndex::Reading::~Reading() = default;

size_t LibraryIndex::Reading::rowCount() const
{
    return d->columns.items.size();
}

const ZQRowSet &LibraryIndex::Reading::items() const
{
    return d->columns.items.present;
}

ZQRowSet LibraryIndex::Reading::active() const
{
    ZQRowSet rows = d->columns.items.present;
    rows &= d->columns.items.active.rows();
    return rows;
}

ZQRelatedIDs LibraryIndex::Reading::ids(const IndexRows &rows) const
{
    const IndexItems &items = d->columns.items;
    ZQRelatedIDs result;
    result.related.resize(qsizetype(rows.size()));
    std::transform(rows.items.begin(), rows.items.end(), result.related.begin(),
                   [&items](quint32 row) { return items.id(row); });
    if (rows.kind == ZQListRows::LibraryItems) {
        result.ids = result.related;
        return result;
    }
    result.ids.resize(qsizetype(rows.size()));
    std::transform(rows.memberships.begin(), rows.memberships.end(), result.ids.begin(), [this](quint32 membership) {
        const IndexMemberships &memberships = d->columns.memberships;
        return memberships.exists(membership) ? ZQObjectID{d->columns.membershipEntity, memberships.keys()[membership]}
                                              : ZQObjectID();
    });
    return result;
}

QHash<ZQObjectID, QList<ZQObjectID>> LibraryIndex::Reading::idsByLiveFolder(const IndexRows &rows) const
{
    const IndexItems &items = d->columns.items;
    QHash<quint32, QList<ZQObjectID>> byNumber;
    for (const quint32 row : rows.items) {
        if (const quint32 folder = items.folders[row]; folder != IndexSidebar::none) {
            byNumber[folder].append(items.id(row));
        }
    }
    QHash<ZQObjectID, QList<ZQObjectID>> result;
    for (const auto &[folder, ids] : byNumber.asKeyValueRange()) {
        result.insert(d->columns.sidebar.id(folder), ids);
    }
    return result;
}

std::optional<IndexRows> LibraryIndex::Reading::rows(const ZQFetchRequest &request) const
{
    auto found = d->requests().rows({request}, {});
    return found ? std::optional(std::move(found->front())) : std::nullopt;
}

std::optional<std::vector<IndexRows>> LibraryIndex::Reading::rows(const QList<ZQFetchRequest> &requests,
                                                                  const ZQPredicate &search) const
{
    return d->requests().rows(requests, search);
}

std::optional<ZQRowSet> LibraryIndex::Reading::matching(const ZQPredicate &predicate, ZQListRows prefix,
                                                        const ZQRowSet &among) const
{
    return d->requests().matching(predicate, prefix, among);
}

std::vector<IndexCount> LibraryIndex::Reading::counts(IndexFacet facet, const ZQRowSet &rows,
                                                      const SizeClasses::Limits &sizes) const
{
    return IndexCounts(d->columns, sizes).counts(facet, rows);
}

std::vector<qint64> LibraryIndex::Reading::importedBetween(const std::vector<qint64> &bounds,
                                                           const ZQRowSet &rows) const
{
    return IndexCounts(d->columns, {}).importedBetween(bounds, rows);
}

QStringList LibraryIndex::Reading::repeatedDigests(const ZQRowSet &rows) const
{
    return IndexCounts(d->columns, {}).repeatedDigests(rows);
}

std::optional<quint32> LibraryIndex::Reading::State::rowOf(const ZQObjectID &item) const
{
    const bool isItem = !item.isNull() && !item.isTemporary() && item.rootEntity() == columns.itemEntity;
    const auto row = isItem ? columns.items.keys.rowOf(item.key) : std::nullopt;
    return row && columns.items.present.contains(*row) ? row : std::nullopt;
}

std::optional<ZQPictureHash> LibraryIndex::Reading::pictureHash(const ZQObjectID &item) const
{
    const auto row = d->rowOf(item);
    const auto words = row ? d->columns.items.pictures.value(*row).hash : std::nullopt;
    return words ? std::optional(ZQPictureHash{*words}) : std::nullopt;
}

std::vector<std::pair<ZQObjectID, int>> LibraryIndex::Reading::similar(const ZQPictureHash &hash, size_t limit,
                                                                       int farthest) const
{
    const IndexItems &items = d->columns.items;
    std::vector<std::pair<ZQObjectID, int>> result;
    for (const SimilarPicture &each : zqNearestPictures(items.pictures, hash, active(), limit, farthest)) {
        result.emplace_back(items.id(each.row), each.distance);
    }
    return result;
}

PictureSet LibraryIndex::Reading::pictures(const ZQRowSet &among) const
{
    const IndexItems &items = d->columns.items;
    PictureSet result;
    result.items.reserve(items.pictures.rows().size());
    result.hashes.reserve(items.pictures.rows().size());
    among.forEach([&](size_t row) {
        if (const auto hash = items.pictures.value(row).hash; hash && items.present.contains(row)) {
            result.add(items.id(quint32(row)), *hash);
        }
    });
    return result;
}

ZQRowSet LibraryIndex::Reading::rowsOf(const QList<ZQObjectID> &items) const
{
    ZQRowSet rows(rowCount());
    for (const ZQObjectID &item : items) {
        if (const auto row = d->rowOf(item)) {
            rows.insert(*row);
        }
    }
    rows &= d->columns.items.active.rows();
    return rows;
}

ZQRowSet LibraryIndex::Reading::setOf(const IndexRows &rows, size_t rowCount)
{
    ZQRowSet set(rowCount);
    for (const quint32 row : rows.items) {
        set.insert(row);
    }
    return set;
}
