#include "Classes/Export/ExportManager.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportItem.h"
#include "Classes/Export/ExportNames.h"
#include "Classes/Export/ExportReport.h"
#include "Classes/Export/ExportSource.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QSet>

namespace {

QStringList filenames(const QList<ZQRef<ZQLibraryBaseItem>> &items, const ExportRequest &request)
{
    if (request.archive) {
        return {ExportNames::archiveName(request.destinationURL)};
    }
    QList<ExportNames::Source> sources;
    sources.reserve(items.size());
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        sources.append((item ? ExportSource::sourceOfItem(*item) : ExportSource()).name(request));
    }
    const ExportNames::Names names =
        ExportNames::filenames(sources, request.destinationURL, request.fileFormat, request.namePattern);
    if (request.tellsPerson) {
        ExportReport::tellOfMissing(names.missing);
    }
    return names.paths;
}

} // namespace

ExportRequest ExportRequest::with(const ExportItem &preset, const QList<ZQObjectID> &items,
                                  const QString &destinationURL)
{
    return {.items = items,
            .destinationURL = destinationURL,
            .fileFormat = preset.imageFileType,
            .imageSize = preset.imageSize(),
            .imageSizePercentage = preset.imageSizePercentage(),
            .archive = preset.archive,
            .imageQuality = ExportItem::hasQuality(preset.imageFileType) ? preset.imageQuality : std::nullopt,
            .namePattern = preset.namePattern,
            .tellsPerson = true};
}

ExportManager &ExportManager::sharedExportManager()
{
    static ExportManager manager;
    return manager;
}

std::shared_ptr<ExportOperation> ExportManager::exportItems(const ExportRequest &request)
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    if (!delegate || !delegate->managedObjectContext()) {
        return nullptr;
    }
    delegate->saveAction();
    auto operation = std::make_shared<ExportOperation>(request);
    delegate->backgroundOperationQueue().addOperation(operation);
    return operation;
}

std::shared_ptr<ExportOperation>
ExportManager::exportItems(const QList<ZQObjectID> &items, const QString &destinationURL, std::optional<int> fileFormat,
                           std::optional<QSizeF> imageSize, std::optional<double> imageSizePercentage, bool archive)
{
    ExportRequest request;
    request.items = items;
    request.destinationURL = destinationURL;
    request.fileFormat = fileFormat;
    request.imageSize = imageSize;
    request.imageSizePercentage = imageSizePercentage;
    request.archive = archive;
    return exportItems(request);
}

QStringList ExportManager::filenamesForItems(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                             const QString &destinationURL, std::optional<int> fileFormat, bool archive)
{
    ExportRequest request;
    request.destinationURL = destinationURL;
    request.fileFormat = fileFormat;
    request.archive = archive;
    return filenames(items, request);
}

QStringList ExportManager::filenamesForRequest(const ExportRequest &request)
{
    const tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    ZQManagedObjectContext *const context =
        delegate ? tamberin_AppDelegate::sharedDelegate()->managedObjectContext() : nullptr;
    return context ? filenames(ExportSource::itemsWithIDs(request.items, *context), request) : QStringList();
}

QString ExportManager::safeNameForFile(const QString &path)
{
    return ExportNames::safeNameForFile(path);
}

QString ExportManager::safeNameForFile(const QString &path, const QStringList &withinFiles)
{
    return ExportNames::safeNameForFile(path, QSet<QString>(withinFiles.begin(), withinFiles.end()));
}
