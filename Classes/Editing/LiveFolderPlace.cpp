#include "Classes/Editing/LiveFolderPlace.h"

#include "Classes/Editing/EditRun.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

namespace {

bool isInPlace(const ZQSidebarWatchedFolder &folder)
{
    const QString path = folder.isOutOfReach() ? QString() : folder.folderURL();
    const QByteArray reference = folder.folderURLSecureData();
    return !path.isEmpty() && !ZQTrash::contains(path) && (reference.isEmpty() || zqPersistentURLIsAt(reference, path));
}

} // namespace

ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(ZQManagedObjectContext &context, const ZQObjectID &id, ZQError *error)
{
    auto folder = zqCast<ZQSidebarWatchedFolder>(context.existingObjectWithID(id));
    QString reason;
    if (!folder || !folder->active()) {
        reason = zqLocalized("The live folder is not in the sidebar any more. Choose another one.");
    } else if (folder->standing() == ZQSidebarWatchedFolder::Standing::Off) {
        reason = zqFormat(zqLocalized("“%@” is disabled. Enable it, and try again."), {folder->title()});
    } else if (!isInPlace(*folder)) {
        reason = zqFormat(zqLocalized("“%@” is not there now. Look whether its disk is there, and try again."),
                          {folder->title()});
    }
    if (reason.isEmpty()) {
        return folder;
    }
    zqSetError(error, ZQError::with(QStringLiteral("zelto.editing"), 1, reason));
    return {};
}

ZQRef<ZQSidebarWatchedFolder> zqFolderForFiles(EditRun &run, const ZQObjectID &id)
{
    ZQError error;
    const auto folder = zqFolderForFiles(run.context(), id, &error);
    if (!folder) {
        run.presentError(error);
    }
    return folder;
}
