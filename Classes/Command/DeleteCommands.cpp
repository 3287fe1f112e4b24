#include "Classes/Command/Commands.h"

#include "Classes/Application/Quit.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace {
std::optional<QList<ZQObjectID>> itemIDs(const QStringList &references, CommandContext &context)
{
    const auto items = zqItemsForReferences(references, context);
    if (!items) {
        return std::nullopt;
    }
    QList<ZQObjectID> ids;
    for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
        ids.append(item->objectID());
    }
    return ids;
}
} // namespace

int zqRunDelete(const QStringList &items, CommandContext &context)
{
    const auto ids = itemIDs(items, context);
    if (!ids) {
        return 2;
    }
    CommandEdits edits(context);
    LibraryCommands(edits.context()).deleteItems(*ids);
    return edits.finish(ids->size(), ZQCountedKey{"1 item deleted", "%d items deleted"});
}

int zqRunRestore(const QStringList &items, CommandContext &context)
{
    const auto ids = itemIDs(items, context);
    if (!ids) {
        return 2;
    }
    CommandEdits edits(context);
    LibraryCommands(edits.context()).restoreItems(std::make_shared<QList<ZQObjectID>>(*ids));
    return edits.finish(ids->size(), ZQCountedKey{"1 item restored", "%d items restored"});
}

int zqRunPurge(CommandContext &context)
{
    if (context.delegate->mainWindowController()) {
        return context.fail(zqLocalized("the library is open in a window; quitting it purges"));
    }
    if (context.delegate->applicationShouldTerminate() == TerminateReply::Cancel) {
        return context.fail(zqLocalized("the library could not be saved, so nothing was removed"));
    }
    context.delegate->waitForRemovals();
    return 0;
}
