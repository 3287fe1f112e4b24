#include "Classes/Application/FingerprintFiller.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

constexpr qsizetype itemsPerSave = 256;
constexpr qsizetype picturesPerProgress = 16;
constexpr int attempts = 3;      // whoever works with an item meanwhile saves first
constexpr int pictureSize = 512; // that of thumbnails

// Where it lies with the file, the file will not be read another time either.
bool isFaultOfFile(const ZQError &error)
{
    switch (ZQImagingErrorCode(error.code)) {
    case ZQImagingErrorCode::CannotRead:
    case ZQImagingErrorCode::NoRenderer:
    case ZQImagingErrorCode::Cancelled:
        return false;
    default:
        return true;
    }
}

// Otherwise none of the others is read either.
bool isAboutOneFile(const ZQError &error)
{
    return ZQImagingErrorCode(error.code) != ZQImagingErrorCode::NoRenderer &&
           ZQImagingErrorCode(error.code) != ZQImagingErrorCode::Cancelled;
}

ZQBitmap pictureAt(const QString &path, bool isThumbnail, ZQError *error)
{
    return isThumbnail ? ZQImageSource::thumbnailOfFile(path, pictureSize, error)
                       : ZQPreviewService::previewOfFile(path, QSize(pictureSize, pictureSize), error);
}

QString thumbnailOf(const ZQLibraryBaseItem &item)
{
    const QString path = item.thumbURL();
    return QFileInfo(path).isFile() ? path : QString();
}

} // namespace

ZQFetchRequest FingerprintFiller::request()
{
    return {.entityName = ZQLibraryBaseItem::entityName(),
            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("pictureHash == nil"))};
}

FingerprintFiller::Result FingerprintFiller::run(const Uses &uses)
{
    Result result;
    ZQManagedObjectContext context(m_coordinator);
    auto items = context.fetchObjectIDs(request(), &result.error);
    if (!items) {
        zqLogFetchError(result.error);
        return result;
    }
    items->removeIf([this](const ZQObjectID &id) { return m_left.contains(id); });
    // The newest first: those a person is likely to ask about.
    std::sort(items->begin(), items->end(), [](const ZQObjectID &a, const ZQObjectID &b) { return a.key > b.key; });
    const auto telling = context.observeDidSave(uses.saved);
    const auto progress = [&](qsizetype done) {
        if (uses.progressed && !items->isEmpty()) {
            uses.progressed(done, items->size());
        }
    };
    progress(0);
    for (qsizetype first = 0; first < items->size(); first += itemsPerSave) {
        std::vector<Picture> pictures = picturesOf(items->mid(first, itemsPerSave), context);
        qsizetype seen = 0;
        const bool goesOn = look(
            pictures,
            [&] {
                if (seen++ % picturesPerProgress == 0) {
                    progress(first + seen - 1);
                }
                return uses.goesOn();
            },
            &result.error);
        if (!store(pictures, context, result) || !goesOn) {
            return result;
        }
        for (const Picture &picture : pictures) {
            if (!picture.fingerprint) {
                m_left.insert(picture.item);
                ++result.left;
            }
        }
        progress(std::min(first + itemsPerSave, items->size()));
    }
    result.isComplete = true;
    return result;
}

std::vector<FingerprintFiller::Picture> FingerprintFiller::picturesOf(const QList<ZQObjectID> &items,
                                                                      ZQManagedObjectContext &context) const
{
    context.reset();
    std::vector<Picture> pictures;
    QList<ZQRef<ZQLibraryBaseItem>> shownByThemselves;
    for (const ZQRef<ZQLibraryBaseItem> &item : ZQLibraryBaseItem::itemsWithIDs(items, context)) {
        if (!item->pictureHash().isNull()) {
            continue;
        }
        const QString thumbnail = thumbnailOf(*item);
        if (thumbnail.isEmpty()) {
            shownByThemselves.append(item);
        } else {
            pictures.push_back({.item = item->objectID(), .path = thumbnail, .isThumbnail = true});
        }
    }
    ZQLibraryBaseItem::lookForFiles(shownByThemselves);
    for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(shownByThemselves)) {
        pictures.push_back({.item = item->objectID(),
                            .path = item->hasRepresentationBitmap() ? item->detailItemURL() : item->findItemURL()});
    }
    return pictures;
}

bool FingerprintFiller::look(std::vector<Picture> &pictures, const std::function<bool()> &goesOn,
                             ZQError *endedBy) const
{
    for (auto picture = pictures.begin(); picture != pictures.end(); ++picture) {
        if (!goesOn()) {
            pictures.erase(picture, pictures.end());
            return false;
        }
        if (picture->path.isEmpty() || !QFileInfo::exists(picture->path)) {
            continue;
        }
        ZQError error;
        const ZQBitmap bitmap = pictureAt(picture->path, picture->isThumbnail, &error);
        if (!bitmap.isNull() || isFaultOfFile(error)) {
            picture->fingerprint = ZQPictureFingerprint::of(bitmap);
            continue;
        }
        qCInfo(zqLogStore, "no fingerprint yet: %s", qUtf8Printable(error.localizedDescription()));
        if (!isAboutOneFile(error)) {
            *endedBy = error;
            pictures.erase(picture, pictures.end());
            return false;
        }
    }
    return true;
}

bool FingerprintFiller::store(const std::vector<Picture> &pictures, ZQManagedObjectContext &context,
                              Result &result) const
{
    QHash<ZQObjectID, ZQPictureFingerprint> found;
    for (const Picture &picture : pictures) {
        if (picture.fingerprint) {
            found.insert(picture.item, *picture.fingerprint);
        }
    }
    ZQError error;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        context.reset();
        Result stored;
        for (const ZQRef<ZQLibraryBaseItem> &item : ZQLibraryBaseItem::itemsWithIDs(found.keys(), context)) {
            if (item->pictureHash().isNull()) { // nobody was sooner
                const ZQPictureFingerprint &fingerprint = *found.constFind(item->objectID());
                fingerprint.applyTo(*item);
                (fingerprint.pictureHash.isEmpty() ? stored.nothing : stored.found) += 1;
            }
        }
        if (context.save(&error)) {
            result.found += stored.found;
            result.nothing += stored.nothing;
            return true;
        }
    }
    qCInfo(zqLogStore, "fingerprints not saved: %s", qUtf8Printable(error.localizedDescription()));
    result.error = error;
    return false;
}
