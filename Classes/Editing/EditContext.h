#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <functional>

class QUndoStack;
class ZQOperationQueue;

// What edits work with: of a window, or of a command. Outlives what it put on the edit queue. Main thread.
struct EditContext
{
    ZQManagedObjectContext &context;
    UserInteraction &user;
    ZQOperationQueue &editQueue; // changes of many items, one after another; the application's
    // Saves `context`. A failure was told; false when what was changed is gone with it.
    std::function<bool()> save;
    QUndoStack *undoStack = nullptr; // null: nothing is taken back

    ZQRef<ZQSidebarBaseItem> sidebarItem(const ZQObjectID &id) const
    {
        return zqCast<ZQSidebarBaseItem>(context.objectWithID(id));
    }
    ZQRef<ZQLibraryBaseItem> libraryItem(const ZQObjectID &id) const
    {
        return zqCast<ZQLibraryBaseItem>(context.objectWithID(id));
    }
    bool isBusy() const; // many items are being changed, or wait to be
};
