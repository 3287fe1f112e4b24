// What an item does to its file: deletion states, renaming, copying, tags of the file.

#include "Models/DataModel/ZQLibraryBaseItem.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQHiddenFile.h"
#include "Models/DataModel/ZQItemTitle.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQPictureFingerprint.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <cerrno>

namespace {

const QString errorDomain = QStringLiteral("zelto.model");

constexpr int missingFile = 1;

bool isHidden(const QString &path)
{
    return QFileInfo(path).fileName().startsWith(QLatin1Char('.'));
}

QString withExtension(const QString &name, const QString &extension)
{
    return extension.isEmpty() ? name : name + QLatin1Char('.') + extension;
}

QString sibling(const QString &path, const QString &name)
{
    return QFileInfo(path).path() + QLatin1Char('/') + name;
}

// In two steps, so that a change of letter case alone also succeeds where case does not count. Nothing moved after a
// failure.
bool moveThroughTemporaryName(const QString &from, const QString &to, ZQError *error)
{
    const QString name = QFileInfo(from).fileName() + QStringLiteral(".tmp");
    const QString temporary = sibling(from, zqNumberedName(name, 0)); // shortened where it must be
    if (!zqMoveNoted(from, temporary, error)) {
        return false;
    }
    if (zqMoveNoted(temporary, to, error)) {
        return true;
    }
    ZQError backError;
    if (!zqMoveNoted(temporary, from, &backError)) {
        qCWarning(zqLogFiles, "%s stays at %s: %s", qUtf8Printable(from), qUtf8Printable(temporary),
                  qUtf8Printable(backError.localizedDescription()));
    }
    return false;
}

void copyIfThere(const QString &from, const QString &to)
{
    ZQError error;
    if (!from.isEmpty() && QFileInfo::exists(from) && !zqCopyFile(from, to, &error)) {
        qCInfo(zqLogFiles, "%s was not copied: %s", qUtf8Printable(from), qUtf8Printable(error.localizedDescription()));
    }
}

QDateTime modificationDate(const QString &path)
{
    const auto dates = zqFileDates(path);
    return dates ? QDateTime::fromMSecsSinceEpoch(dates->modification, Qt::UTC) : QDateTime();
}

void logHidingError(const QString &what)
{
    const QString text = zqFormat(QStringLiteral("error while hiding watched file %@"), {what});
    qCWarning(zqLogFiles, "%s", qUtf8Printable(text));
}

} // namespace

void ZQLibraryBaseItem::deleteSelf()
{
    setActive(false);
    if (hasWatchingFolder()) {
        hideFileFromFileSystem();
    }
    if (zqIsMainThread()) {
        ZQNotificationCenter::defaultCenter().enqueueWhenIdle(didDeleteNotification,
                                                              static_cast<ZQManagedObject *>(this));
    }
}

void ZQLibraryBaseItem::restoreSelf()
{
    if (hasWatchingFolder()) {
        unHideFileFromFileSystem();
    }
    setActive(true);
}

bool ZQLibraryBaseItem::hideFileFromFileSystem(ZQError *error)
{
    const QString path = findItemURL();
    if (path.isEmpty()) {
        logHidingError(title());
        return true;
    }
    if (isHidden(path)) {
        return true;
    }
    const QString hidden = zqHiddenPathFor(path);
    ZQError problem;
    if (!zqMoveNoted(path, hidden, &problem)) {
        logHidingError(problem.localizedDescription());
        zqSetError(error, problem);
        return false;
    }
    setItemURLData(zqDataForPersistentURL(hidden));
    return true;
}

bool ZQLibraryBaseItem::unHideFileFromFileSystem(ZQError *error)
{
    const QString path = findItemURL();
    if (path.isEmpty()) {
        zqSetError(error, ZQError::posix(ENOENT, title()));
        return false;
    }
    if (!isHidden(path)) {
        return true;
    }
    const QString name = withExtension(title(), zqPathExtension(path)).replace(u'/', u'_');
    ZQError problem;
    const QString visible = zqUnderFreeName(
        QFileInfo(path).path(), name,
        [&path](const QString &free, ZQError *failure) { return zqMoveNoted(path, free, failure); }, &problem);
    if (visible.isEmpty()) {
        logHidingError(problem.localizedDescription());
        zqSetError(error, problem);
        return false;
    }
    setItemURLData(zqDataForPersistentURL(visible));
    if (QFileInfo(visible).fileName() != name) {
        setTitle(zqBaseName(visible));
    }
    return true;
}

bool ZQLibraryBaseItem::deletePermanently()
{
    if (!managed() && zqIsHiddenByLibrary(findItemURL())) {
        unHideFileFromFileSystem(); // the trash shows it under its own name
        if (!deleteItemBundleAndTrashFile(true)) {
            hideFileFromFileSystem(); // else it would come back as a new file
            return false;
        }
    }
    if (ZQManagedObjectContext *context = managedObjectContext()) {
        context->deleteObject(this);
    }
    return true;
}

bool ZQLibraryBaseItem::deleteItemBundleAndTrashFile(bool trashFile)
{
    const QString path = trashFile ? findItemURL() : QString();
    ZQError error;
    if (path.isEmpty() || !QFileInfo::exists(path) || ZQTrash::recycle(path, nullptr, &error)) {
        return true;
    }
    qCWarning(zqLogFiles, "%s cannot be moved to the trash: %s", qUtf8Printable(path),
              qUtf8Printable(error.localizedDescription()));
    return false;
}

void ZQLibraryBaseItem::updateFileURLsForURL(const QString &path)
{
    if (!active() || path.isEmpty()) {
        return;
    }
    const QByteArray reference = zqDataForPersistentURL(path);
    if (!reference.isEmpty()) {
        setItemURLData(reference);
    }
    setTitle(zqBaseName(path));
}

bool ZQLibraryBaseItem::setNewTitle(const QString &newTitle)
{
    if (newTitle == title()) {
        return true;
    }
    const QString path = findItemURL();
    const QString extension = zqPathExtension(path);
    ZQError error = zqErrorForItemTitle(newTitle, extension);
    if (error.isNull() && (path.isEmpty() || !QFileInfo::exists(path))) {
        error = ZQError::with(errorDomain, missingFile,
                              zqFormat(zqLocalized("\"%@\" cannot be renamed: its file is missing."), {title()}));
    }
    const QString renamed = sibling(path, withExtension(newTitle, extension));
    if (ZQError problem; error.isNull() && !moveThroughTemporaryName(path, renamed, &problem)) {
        error = ZQError::with(problem.domain, problem.code,
                              zqFormat(zqLocalized("\"%@\" cannot be renamed."), {title()}) + u' ' +
                                  zqAdviceForFileError(problem));
    }
    if (!error.isNull()) {
        ZQLibraryEnvironment::current().presentError(error);
        return false;
    }
    renameThumb(newTitle);
    updateFileURLsForURL(renamed);
    setTitle(newTitle);
    setThumbVersion(thumbVersion() + 1);
    ZQNotificationCenter::defaultCenter().postNotification(dataDidUpdateNotification,
                                                           static_cast<ZQManagedObject *>(this));
    return true;
}

void ZQLibraryBaseItem::renameThumb(const QString &newTitle)
{
    const QString thumb = thumbURL();
    if (thumb.isEmpty()) {
        return;
    }
    const QString name = withExtension(newTitle + QStringLiteral("_thumb"), zqPathExtension(thumb));
    ZQError error;
    if (!moveThroughTemporaryName(thumb, sibling(thumb, name), &error)) {
        const QString text = zqFormat(QStringLiteral("Error while renaming thumb %@"), {error.localizedDescription()});
        qCWarning(zqLogFiles, "%s", qUtf8Printable(text));
        return; // the thumbnail is still under its old name
    }
    setThumbName(name);
}

ZQRef<ZQLibraryBaseItem> ZQLibraryBaseItem::insertCopy(const QString &inDirectory)
{
    auto copy = zqCast<ZQLibraryBaseItem>(managedObjectContext()->insertNewObjectForEntityForName(entity()->name));
    if (!copy) {
        return {};
    }
    for (const ZQAttributeDescription &attribute : entity()->attributes) {
        copy->setValueForKey(valueForKey(attribute.name), attribute.name);
    }
    copy->setTags(tags());
    copy->setActive(true);
    copy->setImport_date(zqNow());
    copy->setBundleID(zqBaseName(inDirectory));
    return copy;
}

void ZQLibraryBaseItem::copyPicturesTo(const QString &directory, const QString &ownFile) const
{
    copyIfThere(thumbURL(), directory + QLatin1Char('/') + thumbName());
    const QString detail = detailItemURL();
    if (detail != ownFile && !detail.startsWith(ownFile + QLatin1Char('/'))) {
        copyIfThere(detail, directory + QLatin1Char('/') + QFileInfo(detail).fileName());
    }
}

ZQRef<ZQLibraryBaseItem> ZQLibraryBaseItem::duplicate()
{
    const QString path = findItemURL();
    if (!managedObjectContext() || path.isEmpty() || !QFileInfo::exists(path)) {
        return {};
    }
    const QString copyPath = ZQLibraryEnvironment::current().libraryPathForFilePath(path);
    const QString directory = QFileInfo(copyPath).path();
    const auto copy = copyPath.isEmpty() ? ZQRef<ZQLibraryBaseItem>() : insertCopy(directory);
    if (!copy) {
        return {};
    }
    copy->setManaged(true);
    copy->setWatchingFolder(nullptr);
    copy->setTitle(zqBaseName(copyPath));
    copy->setOriginalExtension(zqPathExtension(copyPath));
    copyIfThere(path, copyPath);
    copy->setItemURLData(zqDataForPersistentURL(copyPath));
    copyPicturesTo(directory, path);
    return copy;
}

ZQRef<ZQLibraryBaseItem> ZQLibraryBaseItem::duplicateForWatchedFolder(ZQSidebarWatchedFolder *folder,
                                                                      const QString &path)
{
    const QString place = ZQLibraryEnvironment::current().libraryPathForFilePath(path);
    const QString directory = QFileInfo(place).path();
    const auto copy = place.isEmpty() ? ZQRef<ZQLibraryBaseItem>() : insertCopy(directory);
    if (copy) {
        copy->setManaged(false);
        copy->setWatchingFolder(folder);
        copy->setTitle(zqBaseName(path));
        copy->setItemURLData(zqDataForPersistentURL(path));
        copyPicturesTo(directory, findItemURL());
    }
    return copy;
}

QList<ZQRef<ZQLibraryBaseItem>> ZQLibraryBaseItem::duplicatesOf(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                                                const std::function<bool()> &isWanted,
                                                                QList<qsizetype> *which)
{
    QList<ZQRef<ZQLibraryBaseItem>> copies;
    for (qsizetype i = 0; i < items.size() && isWanted(); ++i) {
        if (auto copy = items[i]->duplicate()) {
            copies.append(std::move(copy));
            if (which) {
                which->append(i);
            }
        }
    }
    ZQError error;
    if (!copies.isEmpty() && !zqSyncFileSystem(ZQLibraryEnvironment::current().libraryDirectory(), &error)) {
        qCWarning(zqLogFiles, "the copies of items may not be on the disk: %s",
                  qUtf8Printable(error.localizedDescription()));
    }
    return copies;
}

void ZQLibraryBaseItem::updateItemData()
{
    const QString path = findItemURL();
    if (!path.isEmpty()) {
        updateItemData(path);
    }
}

void ZQLibraryBaseItem::updateItemData(const QString &path)
{
    const QDateTime fileDate = modificationDate(path);
    if (!fileDate.isValid()) {
        return;
    }
    const bool fileDidChange = !modification_date().isValid() || modification_date() < fileDate;
    if (hasRepresentationBitmap() && !updateRepresentationBitmap(path, fileDidChange)) {
        return;
    }
    if (!fileDidChange) {
        if (zqBaseName(path) != title()) {
            updateFileURLsForURL(path);
        }
        return;
    }
    setSort_date(fileDate);
    setModification_date(fileDate);
    const QByteArray digest = zqSHA1OfFile(path);
    if (!digest.isEmpty()) {
        setSHA1(QString::fromLatin1(digest));
    }
    updateFileURLsForURL(path);
    if (!hasRepresentationBitmap()) {
        readPixelSize(path);
    }
    ZQPictureFingerprint::removeFrom(*this);
    ZQLibraryEnvironment::current().thumbForLibraryItem(this);
    setThumbVersion(thumbVersion() + 1);
}

// False when the bitmap was needed and could not be made, so that the old data must stay.
bool ZQLibraryBaseItem::updateRepresentationBitmap(const QString &path, bool fileDidChange)
{
    const QString destination = detailItemURL();
    if (destination.isEmpty() || (!fileDidChange && QFileInfo::exists(destination))) {
        return true;
    }
    ZQError error;
    const ZQBitmap bitmap = renderRepresentationBitmap(path, &error);
    if (bitmap.isNull() || !QDir().mkpath(QFileInfo(destination).path()) ||
        !ZQImageDestination::writePNG(bitmap, destination, &error)) {
        const QString text = zqFormat(invalidImageMessage(), {path});
        qCWarning(zqLogImport, "%s", qUtf8Printable(text));
        return false;
    }
    setPixelWidth(bitmap.width());
    setPixelHeight(bitmap.height());
    setPixelTotal(qint64(bitmap.width()) * bitmap.height());
    return true;
}

void ZQLibraryBaseItem::readPixelSize(const QString &path)
{
    const auto properties = ZQImageSource::propertiesOfFile(path);
    if (!properties || properties->pixelWidth <= 0 || properties->pixelHeight <= 0) {
        return;
    }
    const bool isTurned = properties->orientation == 6 || properties->orientation == 8;
    setPixelWidth(isTurned ? properties->pixelHeight : properties->pixelWidth);
    setPixelHeight(isTurned ? properties->pixelWidth : properties->pixelHeight);
    setPixelTotal(qint64(properties->pixelWidth) * properties->pixelHeight);
}

bool ZQLibraryBaseItem::replaceTags(const QStringList &titles)
{
    QSet<QString> wanted;
    for (const QString &title : titles) {
        wanted.insert(ZQSidebarTag::tagNameForText(title));
    }
    QStringList unwanted;
    for (const ZQRef<ZQSidebarTag> &tag : itemTags()) {
        if (!wanted.contains(ZQSidebarTag::tagNameForText(tag->title()))) {
            unwanted.append(tag->title());
        }
    }
    return changeTags(titles, unwanted);
}

bool ZQLibraryBaseItem::changeTags(const QStringList &add, const QStringList &remove)
{
    ZQManagedObjectContext *context = managedObjectContext();
    QHash<QString, ZQRef<ZQSidebarTag>> present;
    for (const ZQRef<ZQSidebarTag> &tag : itemTags()) {
        present.insert(ZQSidebarTag::tagNameForText(tag->title()), tag);
    }
    bool didChange = false;
    for (const QString &title : context ? remove : QStringList()) {
        if (const ZQRef<ZQSidebarTag> tag = present.take(ZQSidebarTag::tagNameForText(title))) {
            removeTagsObject(tag.get());
            didChange = true;
        }
    }
    for (const QString &title : context ? add : QStringList()) {
        const QString name = ZQSidebarTag::tagNameForText(title);
        const auto tag =
            present.contains(name) ? ZQRef<ZQSidebarTag>() : ZQSidebarTag::getOrCreateTagWithName(name, *context);
        if (tag) {
            present.insert(name, tag);
            addTagsObject(tag.get());
            didChange = true;
        }
    }
    return didChange;
}

ZQFileTags ZQLibraryBaseItem::fileTags() const
{
    ZQFileTags tags{{}, notes(), int(rating())};
    for (const ZQRef<ZQSidebarTag> &tag : itemTags()) {
        tags.tags.append(tag->title());
        if (!tag->isUserTag()) {
            tags.measured.append(tag->title());
        }
    }
    return tags;
}

void ZQLibraryBaseItem::metadataDidComeFromFile()
{
    const QDateTime now = zqNow();
    setModification_date(now);
    // What the next comparison with the file's own dates looks at.
    setAttributes_modification_date(now);
}

bool ZQLibraryBaseItem::readOpenMetaFromDisk()
{
    const QString path = itemURL();
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    ZQFileTags present = fileTags();
    present.measured.clear(); // the file's list takes the place of all
    present.isFirst = isInserted();
    const auto read = path.isEmpty() ? std::nullopt : environment.tagsAfterReadingFile(path, present);
    if (!read) {
        return false;
    }
    bool didChange = replaceTags(read->tags);
    if (read->comment != notes()) {
        setNotes(read->comment);
        didChange = true;
    }
    if (read->rating && *read->rating != rating()) {
        setRating(qint16(*read->rating));
        didChange = true;
    }
    if (didChange) {
        metadataDidComeFromFile();
        const bool isFirst = present.isFirst;
        present = fileTags();
        present.isFirst = isFirst;
        environment.didTakeInTagsOfFile(bundleID(), path, present);
    }
    return didChange;
}

void ZQLibraryBaseItem::writeOpenMetaToDisk()
{
    writeOwnFile(false);
}

void ZQLibraryBaseItem::writeRatingToDisk()
{
    writeOwnFile(true);
}

void ZQLibraryBaseItem::writeOwnFile(bool ratingIsMeant)
{
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    if (!environment.writesTagsToFiles()) {
        return;
    }
    ZQFileTags tags = fileTags();
    tags.ratingIsMeant = ratingIsMeant;
    tags.isSaved = managedObjectContext() && !managedObjectContext()->hasChanges();
    const QString path = itemURL();
    if (!path.isEmpty()) {
        environment.writeTagsToFileOfItem(bundleID(), path, tags);
        metadataOfFileDidChange();
    } else if (!managed() && !itemURLData().isEmpty()) {
        environment.writeTagsToMovedFileOfItem(bundleID(), itemURLData(), tags);
        metadataOfFileDidChange();
    }
}

void ZQLibraryBaseItem::copyOpenMetaToPath(const QString &path)
{
    if (path.isEmpty()) {
        return;
    }
    ZQLibraryEnvironment::current().writeTagsToFile(path, tagsOfCopy());
    metadataOfFileDidChange();
}

ZQFileTags ZQLibraryBaseItem::tagsOfCopy() const
{
    ZQFileTags tags = fileTags();
    if (tags.rating == 0) {
        tags.rating.reset(); // a copy of the file has its rating
    }
    return tags;
}

void ZQLibraryBaseItem::metadataOfFileDidChange()
{
    if (const auto folder = managed() ? ZQRef<ZQSidebarWatchedFolder>() : watchingFolder()) {
        folder->folderContentMetadataDidChanged();
    }
}
