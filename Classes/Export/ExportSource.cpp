#include "Classes/Export/ExportSource.h"

#include "Classes/Export/ExportRequest.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageExport.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QFileInfo>

namespace {

ExportSource sourceWithFile(const ZQLibraryBaseItem &item, const QString &file)
{
    ExportSource source = ExportSource::sourceWithoutFile(item);
    source.file = !file.isEmpty() && QFileInfo::exists(file) ? file : QString();
    source.extension = zqPathExtension(source.file);
    return source;
}

} // namespace

QList<ZQRef<ZQLibraryBaseItem>> ExportSource::itemsWithIDs(const QList<ZQObjectID> &ids,
                                                           ZQManagedObjectContext &context)
{
    QList<ZQRef<ZQManagedObject>> objects; // held while they are filled
    objects.reserve(ids.size());
    for (const ZQObjectID &id : ids) {
        objects.append(context.objectWithID(id));
    }
    context.fillFaults(ids);
    QList<ZQRef<ZQProjectItem>> memberships;
    for (ZQRef<ZQManagedObject> &object : objects) {
        if (object && object->isFault()) {
            object = {}; // it has no row
        }
        if (auto membership = zqCast<ZQProjectItem>(object)) {
            memberships.append(std::move(membership));
        }
    }
    const auto held = zqPrefetch(memberships, QStringLiteral("item"));
    QList<ZQRef<ZQLibraryBaseItem>> items;
    items.reserve(objects.size());
    for (const ZQRef<ZQManagedObject> &object : objects) {
        const auto membership = zqCast<ZQProjectItem>(object);
        items.append(membership ? membership->item() : zqCast<ZQLibraryBaseItem>(object));
    }
    return items;
}

std::vector<ExportSource> ExportSource::sources(const ExportRequest &request, ZQManagedObjectContext &context)
{
    const auto items = itemsWithIDs(request.items, context);
    ZQLibraryBaseItem::lookForFiles(items);
    const auto held = request.fileFormat ? zqPrefetch(items, QStringLiteral("tags")) : QList<ZQRef<ZQManagedObject>>();
    std::vector<ExportSource> sources;
    sources.reserve(std::size_t(items.size()));
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        if (ZQCancellation::isCurrentCancelled()) {
            break;
        }
        ExportSource &source = sources.emplace_back();
        if (!item) {
            source.title = zqLocalized("Untitled");
            continue;
        }
        source = sourceWithFile(*item, item->findItemURL());
        if (request.fileFormat) {
            source.picture = item->exportRepresentation();
            source.tags = item->tagsOfCopy();
        }
    }
    return sources;
}

ExportSource ExportSource::sourceOfItem(const ZQLibraryBaseItem &item)
{
    return sourceWithFile(item, item.itemURL());
}

ExportSource ExportSource::sourceWithoutFile(const ZQLibraryBaseItem &item)
{
    ExportSource source;
    source.title = item.title();
    source.bundleID = item.bundleID();
    source.extension = item.originalExtension();
    source.pixelSize = QSize(item.pixelWidth(), item.pixelHeight());
    source.date = item.creation_date();
    return source;
}

ExportNames::Source ExportSource::name(const ExportRequest &request) const
{
    const bool isConverted = request.fileFormat.has_value();
    const auto scaled = isConverted && !pixelSize.isEmpty()
                            ? zqExportPixelSize(pixelSize, {request.imageSizePercentage, request.imageSize})
                            : std::nullopt;
    const bool isNamedByType = isConverted && request.namesByType;
    return {title, isNamedByType ? zqExtensionOfFileType(*request.fileFormat) : extension, hasFile(),
            scaled.value_or(pixelSize), date};
}
