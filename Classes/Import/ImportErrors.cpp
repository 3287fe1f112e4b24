#include "Classes/Import/ImportErrors.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <cerrno>

bool isFullDisk(const ZQError &error)
{
    return error.domain == ZQError::posixDomain && (error.code == ENOSPC || error.code == EDQUOT);
}

QString fullDiskReason()
{
    return zqLocalized("The disk is full. Free some space and import it again.");
}

QString importReasonForError(const ZQError &error)
{
    if (error.domain == ZQError::posixDomain) {
        switch (error.code) {
        case ENOSPC:
        case EDQUOT:
            return fullDiskReason();
        case EACCES:
        case EPERM:
            return zqLocalized("You have no permission to read it. Change its permissions and import it again.");
        case ENOENT:
            return zqLocalized("It is not there any more. Look where it went and import it from there.");
        case EIO:
            return zqLocalized("Its disk cannot read it. Check the disk, or import it from a copy.");
        default:
            break;
        }
    }
    return error.localizedDescription();
}

void presentImportError(const ZQError &error)
{
    qCWarning(zqLogImport).noquote() << error.localizedDescription();
    zqOnMainThread([error] {
        if (tamberin_AppDelegate *delegate = tamberin_AppDelegate::sharedDelegate()) {
            delegate->userInteraction().presentError(error);
        }
    });
}
