#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QObject>

#include <functional>
#include <memory>

class LibraryIndex;

// Runs fetches on a thread and context of its own, so that long lists and many counts never hold up the window.
// It sees what was saved. Used from the main thread; answers arrive there.
class ContentFetcher : public QObject
{
    Q_OBJECT
public:
    explicit ContentFetcher(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent = nullptr);
    ~ContentFetcher() override;

    // What answers instead of the store once it is ready; null: nothing. Before the first request.
    void setIndex(std::shared_ptr<LibraryIndex> index);

    // Those named first go first: what runs gives way to them, and begins anew afterwards. `Idle`: nobody waits for it,
    // and it may take long.
    enum class Priority { Content, Typing, Counts, Summary, Idle };

    // What its owner is waiting for: one request at a time. A new one replaces the one before, also while that runs,
    // and only the answer of the latest is delivered. When the ticket ends, what was asked for ends with it: no answer
    // reaches an owner that is gone. May outlive the fetcher.
    class Ticket
    {
    public:
        Ticket(ContentFetcher &fetcher, Priority priority);
        ~Ticket();
        Ticket(const Ticket &) = delete;
        Ticket &operator=(const Ticket &) = delete;

        using IDs = QList<QList<ZQObjectID>>; // one list a request; no answer comes after an error
        void fetchObjectIDs(QList<ZQFetchRequest> requests, std::function<void(IDs)> answer);
        // No answer comes after an error: what is shown stays.
        void count(QList<ZQFetchRequest> requests, std::function<void(QList<qint64>)> answer);
        // `work` runs on the fetcher's thread, more than once when it had to give way, and should give up once
        // `isWanted` says no: fetches fail as cancelled from then on. What it returns runs on the main thread, unless
        // it was given up.
        using IsWanted = std::function<bool()>;
        using Answer = std::function<void()>;
        using Work = std::function<Answer(ZQManagedObjectContext &, const IsWanted &isWanted)>;
        void run(Work work);
        // Of the fetcher; null without one. For the work, which shares it.
        std::shared_ptr<LibraryIndex> index() const;

    private:
        friend class ContentFetcher;
        struct State;
        std::shared_ptr<State> m_state;
    };

    bool isIdle() const; // nothing asked is unanswered

    // Rows in order and the library items they stand for: themselves, or what a membership leads to. On the thread of
    // the context. Nothing after an error, or when it was given up.
    static std::optional<ZQRelatedIDs> rows(const ZQFetchRequest &request, ZQManagedObjectContext &context,
                                            ZQError *error);

    // What a view says in the place of what it could not read.
    static QString textForError(const ZQError &error);
    static bool isDamage(const ZQError &error); // the store is damaged, and can be recovered

private:
    struct Private;
    std::shared_ptr<Private> d;
};
