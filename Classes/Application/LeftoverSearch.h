#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <QDateTime>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

class ZQManagedObjectContext;
class ZQPersistentStoreCoordinator;

// Item directories that no item of the store names, by their names, and what speaks for and against removing them.
struct LibraryLeftovers
{
    QStringList lost;          // which a store that is gone may have named
    QStringList leftovers;     // made for items that were never saved, or whose items were removed
    qsizetype unexplained = 0; // of the leftovers, those that neither a purge nor a cut-off import accounts for
    qsizetype directories = 0; // all there are
    bool storeIsEmpty = false; // when the search began, the store listed no item at all
};

// Looks for item directories that no item names, and changes nothing but the note of pending removals. Any thread but
// the main one in a window: it takes seconds for a million directories. In memory there are one batch of names and what
// was found, so the cost grows with what is wrong, not with the library.
//
// The directory is read before the store is asked about what was read: a save that comes in between is seen. A save
// that comes after both belongs to an import of this process, as no other one has the library; its directory is younger
// than the launch and, should the clock have been set back or a file server's be slow, among those this process
// remembers having made. Whoever acts on the answer asks `unnamedOf` again first, for what was saved meanwhile.
class LeftoverSearch
{
public:
    // What it goes by.
    struct Place
    {
        QString library;      // the "Library" directory
        QString removalsPath; // the note of the directories of purged items
        QDateTime launch;
        std::function<CutOffImports(const QSet<QString> &bundleIDs)> cutOffImports; // may be none
        std::shared_ptr<ZQPersistentStoreCoordinator> store;
    };

    explicit LeftoverSearch(Place place);
    ~LeftoverSearch();

    // Nothing when it was stopped, or when the directory or the store could not be read to the end, which is logged.
    std::optional<LibraryLeftovers> run(const std::stop_token &stop);
    // Those of the directories that the store does not name now; nothing after a stop or an error, which is logged.
    std::optional<QStringList> unnamedOf(const QStringList &names, const std::stop_token &stop = {});

    // Called after each batch, on the searching thread, with how many names are held. For tests and measurements.
    static void setObserver(std::function<void(qsizetype namesHeld)> observer);

private:
    struct Candidate;

    std::optional<QSet<QString>> namedAmong(const QStringList &bundleIDs);
    bool keepDueRemovals(const std::stop_token &stop);
    bool readDirectory(const std::stop_token &stop);
    bool judgeBatch(const QStringList &names);
    bool dropThoseInOtherLetters(const std::stop_token &stop);
    void classify(const Candidate &candidate, const CutOffImports &imports);
    void tellObserver(qsizetype namesInBatch) const;

    const Place m_place;
    std::unique_ptr<ZQManagedObjectContext> m_context;
    QSet<QString> m_dueRemovals;
    QList<Candidate> m_candidates;
    LibraryLeftovers m_found;
};
