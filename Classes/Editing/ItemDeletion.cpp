#include "Classes/Editing/ItemDeletion.h"

#include "Classes/Editing/FileProblems.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

bool zqDeleteItem(ZQLibraryBaseItem &item, ZQOwnMoves &moves, FileProblems &problems)
{
    const QString before = item.hasWatchingFolder() ? item.findItemURL() : QString();
    ZQError error;
    if (item.hasWatchingFolder() && !item.hideFileFromFileSystem(&error)) {
        problems.add(item.title(), error);
        return false;
    }
    item.deleteSelf();
    if (!before.isEmpty()) {
        moves.add(before, item.findItemURL());
    }
    return true;
}

bool zqRestoreItem(ZQLibraryBaseItem &item, ZQOwnMoves &moves, FileProblems &problems)
{
    const auto folder = item.watchingFolder();
    const QString before = folder ? item.findItemURL() : QString();
    ZQError error;
    if (folder && folder->standing() == ZQSidebarWatchedFolder::Standing::Off) {
        error = ZQError::with(
            QStringLiteral("zelto.editing"), 1,
            zqFormat(zqLocalized("Its live folder “%@” is disabled. Enable it, and try again."), {folder->title()}));
    }
    if (!error.isNull() || (folder && !item.unHideFileFromFileSystem(&error))) {
        problems.add(item.title(), error);
        return false;
    }
    item.restoreSelf();
    if (!before.isEmpty()) {
        moves.add(before, item.findItemURL());
    }
    return true;
}
