#pragma once

#include "Classes/Editing/EditContext.h"
#include "Classes/Editing/EditRun.h"

#include <QString>

#include <functional>

// The one way in which items and memberships are changed. Few rows are changed at once in the caller's context; many on
// the edit queue, in a context of their own, with progress and cancel, so that the window stays free. While the queue
// is busy the few wait there, too, so that everything happens in the order it was asked for. Main thread.

// One way through a change.
struct EditPass
{
    std::function<bool(EditRun &run)> apply; // answers whether there is anything to take back, or was
    QString progressText;                    // empty for none
    bool isWhole = false; // half of it would be wrong: it cannot be cancelled, and quitting waits for it
};

// Whether anything was changed, or is going to be looked at.
bool zqPerformEdit(EditContext &edits, EditSize size, const EditPass &pass);

// Changes, and makes an undo step of it unless there was nothing to change. What waits for its turn gets a step before
// that is known. What `undo` does not come to, because the person cancelled, it has to leave for the next time.
void zqPushEdit(EditContext &edits, const QString &name, EditSize size, EditPass redo, EditPass undo);

// A step of the caller's context alone: rows of the sidebar. It finds what it touches by identifier, since objects come
// and go, saves, and says with `zqTellOfRows` which are there again. `redo` is called at once.
void zqPushBlocks(EditContext &edits, const QString &name, std::function<void()> redo, std::function<void()> undo);
void zqTellOfRows(const EditContext &edits, const QList<ZQObjectID> &rows);
