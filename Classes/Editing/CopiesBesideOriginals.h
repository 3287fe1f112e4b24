#pragma once

#include "Kit/Persistence/ZQObjectID.h"

#include <QList>

class EditRun;

struct CopyOfItem
{
    ZQObjectID original;
    ZQObjectID copy;
};

// Makes the copies of its members members of a project or the like too, each behind its original, in one save. Nothing
// where members have no order, and nothing of deleted copies. False after an error, which was told; the copies are in
// the library then. On the run's thread.
bool zqPutBesideOriginals(EditRun &run, const ZQObjectID &project, const QList<CopyOfItem> &copies);
// And takes them out again: until they come back their originals may have been elsewhere.
bool zqTakeFromOriginals(EditRun &run, const ZQObjectID &project, const QList<ZQObjectID> &copies);
