#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QObject>

#include <functional>
#include <memory>

// Runs fetches on a thread and context of its own, so that long lists and many counts never hold up the window.
// It sees what was saved. Used from the main thread; answers arrive there.
class ContentFetcher : public QObject
{
    Q_OBJECT
public:
    explicit ContentFetcher(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator, QObject *parent = nullptr);
    ~ContentFetcher() override;

    // What a caller is waiting for; a new request under the same name replaces the one before, also while that runs,
    // and only the answer of the latest is delivered. Those named first go first: one that runs gives way to them, and
    // begins anew afterwards.
    enum class Purpose { Content, Typing, ProjectCounts, TagCounts, Summary, Count };

    using IDs = QList<QList<ZQObjectID>>; // one list a request; no answer comes after an error
    void fetchObjectIDs(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(IDs)> answer);
    // Rows in order and the library items they stand for: themselves, or what a membership leads to.
    // With a null error the answer is whole; otherwise it is none, which is not an empty one.
    using Rows = QList<ZQRelatedIDs>;
    void fetchRows(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(Rows, ZQError)> answer);
    // No answer comes after an error: what is shown stays.
    void count(Purpose purpose, QList<ZQFetchRequest> requests, std::function<void(QList<qint64>)> answer);
    // `work` runs on the fetcher's thread, more than once when it had to give way, and should give up once `isWanted`
    // says no: fetches fail as cancelled from then on. What it returns runs on the main thread, unless it was given up.
    using IsWanted = std::function<bool()>;
    using Answer = std::function<void()>;
    void run(Purpose purpose, std::function<Answer(ZQManagedObjectContext &, const IsWanted &isWanted)> work);
    bool isIdle() const; // nothing asked is unanswered

    // What a view says in the place of what it could not read.
    static QString textForError(const ZQError &error);
    static bool isDamage(const ZQError &error); // the store is damaged, and can be recovered

private:
    struct Private;
    std::shared_ptr<Private> d;
};
