#include "Classes/Editing/LiveFolderPlace.h"

#include "Classes/Editing/EditRun.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <cerrno>

ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(EditRun &run, const ZQObjectID &id)
{
    auto folder = zqCast<ZQSidebarWatchedFolder>(run.context().existingObjectWithID(id));
    QString reason;
    if (!folder || !folder->active()) {
        reason = zqLocalized("The live folder is not in the sidebar any more. Choose another one.");
    } else if (folder->is_missing() || folder->is_trashed() || folder->folderURL().isEmpty()) {
        reason = zqFormat(zqLocalized("“%@” is not there now. Look whether its disk is there, and try again."),
                          {folder->title()});
    } else if (!folder->is_enabled()) {
        reason = zqFormat(zqLocalized("“%@” is disabled. Enable it, and try again."), {folder->title()});
    }
    if (reason.isEmpty()) {
        return folder;
    }
    run.presentError(ZQError::with(ZQError::posixDomain, ENOENT, reason));
    return {};
}
