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
// where members have no order. With `areMembers` they are members already, and only come to stand there. False after
// an error, which was told; the copies are in the library then. On the run's thread.
bool zqPutBesideOriginals(EditRun &run, const ZQObjectID &project, const QList<CopyOfItem> &copies,
                          bool areMembers = false);
