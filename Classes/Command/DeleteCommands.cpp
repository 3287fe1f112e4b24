#include "Classes/Command/Commands.h"

#include "Classes/Application/Quit.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace {
int changeItems(const QStringList &references, CommandContext &context, void (*change)(ZQLibraryBaseItem &),
                const char *one, const char *several)
{
    const auto items = zqItemsForReferences(references, context);
    if (!items) {
        return 2;
    }
    ZQLibraryBaseItem::lookForFiles(*items);
    for (const ZQRef<ZQLibraryBaseItem> &item : *items) {
        change(*item);
    }
    ZQError error;
    if (!context.store().save(&error)) {
        context.store().rollback();
        return context.fail(error.localizedDescription());
    }
    context.print(items->size() == 1 ? zqLocalized(one) : zqFormat(zqLocalized(several), {items->size()}));
    return 0;
}
} // namespace

int zqRunDelete(const QStringList &items, CommandContext &context)
{
    return changeItems(
        items, context, [](ZQLibraryBaseItem &item) { item.deleteSelf(); }, "1 item deleted", "%d items deleted");
}

int zqRunRestore(const QStringList &items, CommandContext &context)
{
    return changeItems(
        items, context, [](ZQLibraryBaseItem &item) { item.restoreSelf(); }, "1 item restored", "%d items restored");
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
