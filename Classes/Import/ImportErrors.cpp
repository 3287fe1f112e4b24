#include "Classes/Import/ImportErrors.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/ImportKind.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QDebug>
#include <QFileInfo>

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

QString cancelledImportReason()
{
    return zqLocalized("The import was cancelled. Import it again if you want it.");
}

DroppedFile unsupportedFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        return {path, zqLocalized("There is no such file. Check its name."), DroppedFile::Telling::Quietly};
    }
    if (info.isDir()) {
        return {path, zqLocalized("It is a folder. Import it into a folder of the sidebar, or into PROJECTS."),
                DroppedFile::Telling::Quietly};
    }
    if (isSketchFile(path)) {
        return {path, zqLocalized(
                          "It is a document of a newer Sketch, which cannot be imported. Export it from Sketch as PNG, "
                          "SVG or PDF and import that.")};
    }
    const ImportKind *modern = importKindForPath(path, ModernImages::Always);
    if (modern && modern->takesFiles()) {
        return {path,
                zqLocalized("Files of this kind are not taken, as the preferences say. Have them taken there (Import), "
                            "or convert it to PNG or JPEG."),
                DroppedFile::Telling::Quietly};
    }
    return {path, zqLocalized("Files of this kind cannot be imported. Convert it to an image, a PDF or an SVG first."),
            DroppedFile::Telling::Quietly};
}

void logImportSaveError(const ZQError &error)
{
    QString details;
    QDebug(&details).nospace() << error.userInfo;
    qCWarning(zqLogImport).noquote() << zqFormat(QStringLiteral("error ->%@ %@"),
                                                 {error.localizedDescription(), details});
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
