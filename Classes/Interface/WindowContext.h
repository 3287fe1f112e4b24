#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QUndoCommand>
#include <QUndoStack>

#include <functional>

class ContentFetcher;
class ZQOperationQueue;

// What the parts of one window share. Main thread.
struct WindowContext
{
    ZQManagedObjectContext &context;
    UserInteraction &user;
    QUndoStack &undoStack;
    ContentFetcher &fetcher;
    ZQOperationQueue &editQueue; // changes of many items, one after another
    std::function<void()> save;

    ZQRef<ZQSidebarBaseItem> sidebarItem(const ZQObjectID &id) const
    {
        return zqCast<ZQSidebarBaseItem>(context.objectWithID(id));
    }
    ZQRef<ZQLibraryBaseItem> libraryItem(const ZQObjectID &id) const
    {
        return zqCast<ZQLibraryBaseItem>(context.objectWithID(id));
    }
};

// A step that can be taken back. Pushing it takes it. What it touches it finds by identifier, since objects come and
// go.
class BlockUndoCommand : public QUndoCommand
{
public:
    BlockUndoCommand(const QString &text, std::function<void()> redo, std::function<void()> undo)
        : QUndoCommand(text), m_redo(std::move(redo)), m_undo(std::move(undo))
    {
    }
    void redo() override { m_redo(); }
    void undo() override { m_undo(); }

private:
    std::function<void()> m_redo;
    std::function<void()> m_undo;
};
