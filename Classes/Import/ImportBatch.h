#pragma once

#include <QString>

struct DroppedFile;
struct UnfoldedArchive;

// Whom a file's operation reports to. Any thread.
class ImportBatch
{
public:
    virtual ~ImportBatch() = default;
    virtual void fileDidDrop(const DroppedFile &file) = 0;
    virtual void fileDidFinish() = 0;
    // Why no further file can be taken (a full disk); empty as long as there is no reason.
    virtual QString refusal() const = 0;
    virtual void setRefusal(const QString &reason) = 0;
    virtual void archiveDidUnfold(const UnfoldedArchive &archive) = 0;
};
