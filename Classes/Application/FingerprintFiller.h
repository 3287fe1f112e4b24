#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQPictureFingerprint.h"

#include <QSet>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ZQLibraryBaseItem;

// Gives the items that have none the fingerprints of their pictures: those of a library from before the store kept
// them, and those whose picture changed and was not drawn since. Thumbnails are read, and where there is none, the file
// that views show. A picture that cannot be read is noted as looked at; one that is not there now (its disk is absent)
// is left for another time. The store alone says what is still to do, so that any end loses no more than what was not
// saved yet, and several at once do no harm. Any thread, one run at a time.
class FingerprintFiller
{
public:
    struct Uses
    {
        std::function<bool()> goesOn;                        // asked before each picture; may wait; false ends the run
        std::function<void(const ZQContextDidSave &)> saved; // on the thread that runs
        std::function<void(qint64 done, qint64 total)> progressed{}; // once before, and now and then; may be null
    };
    struct Result
    {
        qint64 found = 0;        // have a fingerprint now
        qint64 nothing = 0;      // were looked at: they show nothing, or cannot be read
        qint64 left = 0;         // are not there now
        bool isComplete = false; // nothing ended it before
        ZQError error;           // what did, but for `goesOn`
    };

    explicit FingerprintFiller(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator)
        : m_coordinator(std::move(coordinator))
    {
    }
    // Of items that were left before, this one asks no more.
    Result run(const Uses &uses);

    // Which items are to be looked at, as the store has an index of.
    static ZQFetchRequest request();

private:
    struct Picture
    {
        ZQObjectID item;
        QString path; // empty: there is none
        bool isThumbnail = false;
        std::optional<ZQPictureFingerprint> fingerprint{}; // nothing: it is left
    };
    std::vector<Picture> picturesOf(const QList<ZQObjectID> &items, ZQManagedObjectContext &context) const;
    // False when the run is to end before the last of them, which are left out then.
    bool look(std::vector<Picture> &pictures, const std::function<bool()> &goesOn, ZQError *error) const;
    bool store(const std::vector<Picture> &pictures, ZQManagedObjectContext &context, Result &result) const;

    const std::shared_ptr<ZQPersistentStoreCoordinator> m_coordinator;
    QSet<ZQObjectID> m_left;
};
