#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <atomic>
#include <functional>
#include <memory>

class LiveFolderManaging;
class QUndoStack;
class ZQOperationQueue;

// What edits work with: of a window, or of a command. Outlives what it put on the edit queue. Main thread.
struct EditContext
{
    ZQManagedObjectContext &context;
    UserInteraction &user;
    ZQOperationQueue &editQueue; // changes of many items, one after another; the application's
    // Saves `context`. False when that failed, which was told, and what was changed is given up; a window keeps what it
    // could not save for the next time instead, and answers true.
    std::function<bool()> save;
    QUndoStack *undoStack = nullptr; // null: nothing is taken back
    // Files are written also where the store needs no change: who names an item wants its file to say so.
    bool writesUnchangedFiles = false;
    // Takes in what the edit queue saved; null: `context` does.
    std::function<void(const ZQContextDidSave &)> merge = {};
    std::function<void()> wasCancelled = {}; // something asked for did not come to its end; null: nobody asks
    std::shared_ptr<std::atomic<int>> queued = std::make_shared<std::atomic<int>>(0); // of these, what runs or waits
    // Asked when a step is taken back, or made again. What it answers is told, on the main thread, of the items or the
    // rows of the sidebar that this changed and that may be there again, once `context` has them. Null: nobody asks.
    using Brought = std::function<void(const QList<ZQObjectID> &ids)>;
    std::function<Brought()> whenStepBrings = {};
    LiveFolderManaging *liveFolderManager =
        nullptr; // told of what becomes of live folders; null: nobody keeps them in step

    ZQRef<ZQSidebarBaseItem> sidebarItem(const ZQObjectID &id) const
    {
        return zqCast<ZQSidebarBaseItem>(context.objectWithID(id));
    }
    ZQRef<ZQLibraryBaseItem> libraryItem(const ZQObjectID &id) const
    {
        return zqCast<ZQLibraryBaseItem>(context.objectWithID(id));
    }
    bool isBusy() const; // many items are being changed, or wait to be, whoever asked for it
};
