#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>
#include <QSet>
#include <QString>

#include <chrono>

class BatchResumption;
struct DroppedFile;
struct ImportOutcome;
class CreatedItems;
struct BatchRequest;
struct BatchState;

// What became of one batch, for the person: the last lines of its report, a notification in the window, and one of the
// desktop's when the batch took so long that the person may be elsewhere. The batch's thread, once the batch's items
// are safe; what is shown is shown by the main thread later.
class BatchResult
{
public:
    BatchResult(BatchState &batch, const BatchResumption &resumption);

    // Every file asked for is in the report afterwards, imported or with a reason. `followedUp`: archives whose own
    // requests report what was in them.
    void report(const CreatedItems &items, const QSet<QString> &followedUp, bool wasCancelled);
    struct End
    {
        bool hasFollowUps = false; // what came out of archives is yet to be imported
        bool wasCancelled = false;
        bool isKept = false; // a cancel is not the person's, and keeps the request
    };
    void tell(const End &end);
    // Of a request that was cancelled before its turn.
    static void tellOfCancel(const BatchRequest &request);

private:
    bool isTold(const DroppedFile &file) const;
    ImportOutcome outcome() const;
    void tellOutcome(bool gaveNothing);
    static void tell(const ImportOutcome &outcome);
    void notify(const QString &text, std::chrono::milliseconds time);

    BatchState &m_batch;
    const BatchResumption &m_resumption;
    const std::chrono::steady_clock::time_point m_startDate;
    QList<ZQObjectID> m_imported;
};
