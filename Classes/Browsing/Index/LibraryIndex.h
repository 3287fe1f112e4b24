#pragma once

#include "Classes/Browsing/Index/IndexRows.h"
#include "Classes/Browsing/Index/PictureSet.h"
#include "Classes/Browsing/Index/SizeClasses.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQRowSet.h"
#include "Models/DataModel/ZQListRows.h"

#include <QDate>
#include <QHash>
#include <QObject>
#include <QVariant>

#include <memory>
#include <optional>
#include <vector>

// What is searched, sorted and counted of all items of a library, as columns in memory: under 300 bytes an item,
// and 60 more for one whose picture is known.
//
// Built by one pass over the store on threads of its own, and kept by reading again, on its own thread, the rows that
// saves announce. It is never a second truth: it answers what the saved store would answer, a moment later, and says
// nothing where it has no column, so that the caller asks the store instead.
//
// Read in place under a shared lock, not as snapshots: a snapshot for each save would copy columns of a hundred
// megabytes for one changed item, while what a save changes here is written in a few milliseconds. Readers do not wait
// for each other. Numbers of rows are good within one `Reading`; across changes, only identifiers are.
//
// All functions may be called from any thread, except where said.
class LibraryIndex : public QObject
{
    Q_OBJECT
public:
    // Begins when it is first waited for, or at `start`.
    explicit LibraryIndex(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent = nullptr);
    ~LibraryIndex() override; // ends the build, if need be

    void start();

    // Hears of what this context saves and of what is merged into it. On the context's thread; before the first
    // change that is to be in the index.
    void follow(ZQManagedObjectContext &context);
    // A save of another context.
    void take(const ZQContextDidSave &saved);

    // It answers, though for a moment not yet in the order of titles.
    bool isReady() const;
    // It could not be read, and is tried again with what is announced next.
    bool hasFailed() const;
    // Waits until what was announced before the call is in, all of the library the first time. False when the store
    // could not be read, or the thread's ZQCancellation was cancelled meanwhile.
    bool waitUntilCurrent();
    // The same, and until titles have their order, which comes last.
    bool waitUntilOrdered();
    // What a fetch of all that is in when it is asked gives; waits for that. Nothing for a request that needs the
    // store, or when it was cancelled.
    std::optional<ZQRelatedIDs> answer(const ZQFetchRequest &request);

    // The same for library items, by the live folders they lie in, those of each in the order of the request; one pass,
    // however many folders there are. What lies in none is left out.
    std::optional<QHash<ZQObjectID, QList<ZQObjectID>>> answerByLiveFolder(const ZQFetchRequest &request);

    // Looks at one state of the index, as long as it lives; changes wait meanwhile, so it lives no longer than one
    // answer takes. Fetches and saves of the same thread have no place in it.
    //
    // Long answers give up, with nothing, once the thread's ZQCancellation is cancelled.
    class Reading
    {
    public:
        ~Reading();
        Reading(Reading &&other) noexcept;
        Reading(const Reading &) = delete;
        Reading &operator=(const Reading &) = delete;

        size_t rowCount() const;       // numbers of rows are below this
        const ZQRowSet &items() const; // rows that name an item, active or not
        ZQRowSet active() const;       // those whose item is not deleted

        // As a fetch of identifiers gives them; `related` are the items.
        ZQRelatedIDs ids(const IndexRows &rows) const;
        QHash<ZQObjectID, QList<ZQObjectID>> idsByLiveFolder(const IndexRows &rows) const; // of library items

        // What a fetch of library items, or of the memberships of one project, gives: predicate, order, and ties by
        // key. `contentRequest` of each kind of sidebar item is such a request, also with a search added to it. Nothing
        // for a request that needs the store.
        std::optional<IndexRows> rows(const ZQFetchRequest &request) const;
        // The same for each of several requests with a search in common, whose items are looked for once.
        std::optional<std::vector<IndexRows>> rows(const QList<ZQFetchRequest> &requests,
                                                   const ZQPredicate &search) const;
        // The rows among `among` that match; key paths begin with "item." where `prefix` is Memberships.
        std::optional<ZQRowSet> matching(const ZQPredicate &predicate, ZQListRows prefix, const ZQRowSet &among) const;

        // The value of each with its count, none of 0: tags, folders and projects by key, the others in their order.
        std::vector<IndexCount> counts(IndexFacet facet, const ZQRowSet &rows, const SizeClasses::Limits &sizes) const;
        // How many rows were imported before the first of `bounds`, from each to the next, and from the last on.
        // Milliseconds since 1970, ascending.
        std::vector<qint64> importedBetween(const std::vector<qint64> &bounds, const ZQRowSet &rows) const;
        // The digests that more than one of the rows have, "0" left out.
        QStringList repeatedDigests(const ZQRowSet &rows) const;

        // What the picture of an item looks like; nothing for one that shows nothing, or was not yet looked at.
        std::optional<ZQPictureHash> pictureHash(const ZQObjectID &item) const;
        // The active items that look most like it, with how many bits they are apart: nearest first. Some of them when
        // the thread's ZQCancellation was cancelled.
        std::vector<std::pair<ZQObjectID, int>> similar(const ZQPictureHash &hash, size_t limit, int farthest) const;
        // The pictures of rows, to be looked at for longer than an answer may take.
        PictureSet pictures(const ZQRowSet &among) const;
        // The rows of active items; others are left out.
        ZQRowSet rowsOf(const QList<ZQObjectID> &items) const;

        static ZQRowSet setOf(const IndexRows &rows, size_t rowCount);

    private:
        friend class LibraryIndex;
        struct State;
        explicit Reading(std::unique_ptr<State> state);
        std::unique_ptr<State> d;
    };
    std::optional<Reading> read() const; // nothing while it is not ready

    size_t bytes() const; // of memory

Q_SIGNALS:
    void ready();   // on the index's thread of affinity
    void failed();  // the same; what was ready is no more
    void changed(); // the same, after what was announced is in

private:
    std::optional<IndexRows> rowsWhenCurrent(const ZQFetchRequest &request, std::optional<Reading> &reading);

    struct Private;
    std::shared_ptr<Private> d;
};
