#include "Classes/Export/ExportManager.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Export/ExportItem.h"
#include "Classes/Export/ExportNames.h"
#include "Classes/Export/ExportReport.h"
#include "Classes/Export/ExportSource.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <algorithm>

namespace {

ZQManagedObjectContext *contextOfLibrary()
{
    tamberin_AppDelegate *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate ? delegate->managedObjectContext() : nullptr;
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

QStringList ExportManager::filenamesForItems(const ExportRequest &request)
{
    if (request.archive) {
        return {ExportNames::archiveName(request.destinationURL)};
    }
    ZQManagedObjectContext *const context = contextOfLibrary();
    if (!context) {
        return {};
    }
    QList<ExportNames::Source> sources;
    sources.reserve(request.items.size());
    for (const ZQRef<ZQLibraryBaseItem> &item : ExportSource::itemsWithIDs(request.items, *context)) {
        sources.append((item ? ExportSource::sourceOfItem(*item) : ExportSource()).name(request));
    }
    const ExportNames::Names names =
        ExportNames::filenames(sources, request.destinationURL, request.fileFormat, request.namePattern);
    if (request.tellsPerson) {
        ExportReport::tellOfMissing(names.missing);
    }
    return names.paths;
}

QString ExportManager::proposedName(const ExportRequest &request)
{
    if (request.archive) {
        return ExportNames::archive;
    }
    ZQManagedObjectContext *const context = contextOfLibrary();
    const auto items =
        context
            ? ExportSource::itemsWithIDs(request.items.first(std::min<qsizetype>(request.items.size(), 1)), *context)
            : QList<ZQRef<ZQLibraryBaseItem>>();
    const ZQRef<ZQLibraryBaseItem> item = items.value(0);
    return item ? ExportNames::filename(ExportSource::sourceWithoutFile(*item).name(request), request.fileFormat,
                                        request.namePattern, 1)
                : QString();
}
