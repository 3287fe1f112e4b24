#pragma once

#include "Classes/Export/ExportOperation.h"
#include "Classes/Export/ExportRequest.h"

#include <QString>
#include <QStringList>

#include <memory>

// The one way by which files leave the library: names them, and has an ExportOperation write them on the application's
// background queue, one export at a time. One for the process. Main thread.
//
// What files are called, `safeNameForFile` included, is in ExportNames: the operation and its writer ask there, too.
//
// Paths are those of folders and files. An export whose destination is not there, or that has no items, ends as any
// other, with the reason in its result.
class ExportManager
{
public:
    // Posted on the main thread without an object when an export has ended, also one that never began.
    static inline const QString didFinishExportOperation = ExportOperation::didFinish;
    static inline const QString didCancelExportOperation = ExportOperation::didCancel;

    static ExportManager &sharedExportManager();

    // What is not saved is saved first, so that the export sees what the person sees. The operation has the result once
    // it has finished; null when the library is not open.
    std::shared_ptr<ExportOperation> exportItems(const ExportRequest &request);

    // The paths that an export of these would write to now; those without a file get none, and the person is told how
    // many there are where the request tells them. Of an archive: its path alone. To be asked before the export starts
    // to write.
    static QStringList filenamesForItems(const ExportRequest &request);
    // What the first of its items is called in a folder with nothing in it, or the archive. Touches no file; empty when
    // there is no such item.
    static QString proposedName(const ExportRequest &request);
};
