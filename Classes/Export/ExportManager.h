#pragma once

#include "Classes/Export/ExportOperation.h"
#include "Classes/Export/ExportRequest.h"
#include "Kit/Foundation/ZQRef.h"

#include <QList>
#include <QSet>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class ZQLibraryBaseItem;

// The one way by which files leave the library: names them, and has an ExportOperation write them on the application's
// background queue, one export at a time. One for the process. Main thread.
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
    std::shared_ptr<ExportOperation> exportItems(const QList<ZQObjectID> &items, const QString &destinationURL,
                                                 std::optional<int> fileFormat, std::optional<QSizeF> imageSize,
                                                 std::optional<double> imageSizePercentage, bool archive);

    // The paths that an export of these would write to now; those without a file get none, and the person is told how
    // many there are. Of an archive: its path alone. To be asked before the export starts to write.
    static QStringList filenamesForItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QString &destinationURL,
                                         std::optional<int> fileFormat, bool archive = false);
    static QStringList filenamesForRequest(const ExportRequest &request);

    static QString safeNameForFile(const QString &path);
    static QString safeNameForFile(const QString &path, const QStringList &withinFiles);
};
