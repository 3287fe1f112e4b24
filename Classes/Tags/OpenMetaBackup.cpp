#include "Classes/Tags/OpenMetaBackup.h"

#include "Classes/Tags/PathLock.h"
#include "Classes/Tags/TagAttributes.h"
#include "Classes/Tags/TagBackupQueue.h"
#include "Kit/Files/ZQExtendedAttributes.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <dirent.h>

#include <memory>

namespace {

// Where the file with this inode lies in the folder of `path`; empty: nowhere there.
QString placeOf(const TagBackup &backup, const QString &path)
{
    const QString folder = QFileInfo(path).path();
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(QFile::encodeName(folder).constData()), closedir);
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        const QString found = folder + u'/' + QFile::decodeName(entry->d_name);
        if (entry->d_ino == backup.inode && TagFileIdentity::ofFile(found).text == backup.identity) {
            return found;
        }
    }
    return {};
}

// What the file at `path` gets back: it is another one than the tagged file, and was put into its place.
std::optional<TagBackup> replacedBy(const QString &path, const TagBackup &backup, TagBackupStore &store)
{
    const TagFileIdentity identity = TagFileIdentity::ofFile(path);
    if (identity.text.isEmpty() || identity.text == backup.identity || identity.isFolder != backup.isFolder) {
        return std::nullopt;
    }
    const QString elsewhere = store.pathOfIdentity(backup.identity);
    const bool wasSeenElsewhere =
        !elsewhere.isEmpty() && elsewhere != path && TagFileIdentity::ofFile(elsewhere).text == backup.identity;
    if (wasSeenElsewhere) {
        return std::nullopt;
    }
    const QString aside = placeOf(backup, path);
    if (!aside.isEmpty()) {
        const bool isAnEditorsName = QFileInfo(aside).fileName().contains(QFileInfo(path).fileName());
        const auto present =
            isAnEditorsName ? TagBackupQueue::backupOf(aside) : std::nullopt; // it may have been tagged since
        return isAnEditorsName ? std::optional(present.value_or(backup)) : std::nullopt;
    }
    return backup.contents.isSameAs(TagFileContents::ofFile(path)) ? std::optional(backup) : std::nullopt;
}

} // namespace

QString OpenMetaBackup::folder()
{
    return TagBackupQueue::folder();
}

void OpenMetaBackup::backupMetadata(const QString &path)
{
    TagBackupQueue::shared().add(path);
}

void OpenMetaBackup::backupMetadata(const QString &path, const QByteArray &seen)
{
    TagBackupQueue::shared().add(path, seen);
}

bool OpenMetaBackup::hasAttributes(const QString &path)
{
    return TagBackupQueue::hasAnyOfOurs(ZQExtendedAttributes::list(path));
}

void OpenMetaBackup::waitUntilAllWritten(std::optional<std::chrono::milliseconds> most)
{
    using Clock = TagBackupQueue::Clock;
    TagBackupQueue::shared().flush(most ? std::optional<Clock::time_point>(Clock::now() + *most) : std::nullopt);
}

void OpenMetaBackup::restoreMetadata(const QString &path)
{
    if (!AttributeStore::canNameAFile(path)) {
        return;
    }
    ZQError error;
    const QStringList names = ZQExtendedAttributes::list(path, &error);
    if (error.isNull()) {
        restoreMetadata(path, names);
    }
}

void OpenMetaBackup::restoreMetadata(const QString &path, const QStringList &names)
{
    const std::shared_ptr<TagBackupStore> store = TagBackupQueue::shared().store();
    if (TagBackupQueue::hasAnyOfOurs(names)) {
        if (!store->contains(path)) {
            TagBackupQueue::shared().add(path); // tagged by another program, or moved here
        }
        return;
    }
    const std::optional<TagBackup> found = TagBackupQueue::shared().isOutdated(path) ? std::nullopt : store->find(path);
    const std::optional<TagBackup> backup = found ? replacedBy(path, *found, *store) : std::nullopt;
    if (!backup) {
        return;
    }
    const PathLock lock(path);
    bool isWhole = true;
    if (!backup->comment.isEmpty()) {
        isWhole = TagAttributes::setFinderComment(backup->comment, path).isNull();
    }
    if (backup->rating > 0) {
        isWhole = TagAttributes::setRating(backup->rating, path).isNull() && isWhole;
    }
    isWhole = TagAttributes::setUserTags(backup->tags, path).isNull() && isWhole; // which also notes the new file
    // These may be older than the library's: without the record, what they lack would count as taken away.
    if (isWhole && backup->seen && !backup->seen->isEmpty()) {
        ZQExtendedAttributes::set(path, AttributeStore::seenName, *backup->seen);
    }
}

std::optional<TagBackup> OpenMetaBackup::lastKnown(const QString &path)
{
    const std::shared_ptr<TagBackupStore> store = TagBackupQueue::shared().store();
    std::optional<TagBackup> backup = store->find(path);
    if (!backup) {
        return std::nullopt;
    }
    const bool isSame = TagFileIdentity::ofFile(path).text == backup->identity;
    if (TagBackupQueue::shared().isOutdated(path) || (!isSame && !replacedBy(path, *backup, *store))) {
        return std::nullopt;
    }
    const QVariant tagged =
        AttributeStore::getXAttr(AttributeStore::openmetaTimeKey(AttributeStore::userTagsKey), path);
    const bool isOutdated =
        tagged.typeId() == QMetaType::QDateTime && tagged.toDateTime().toMSecsSinceEpoch() > backup->saved;
    return isOutdated ? std::nullopt : backup;
}

void OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path)
{
    constexpr qint64 clearlyLaterMilliseconds = 2000;
    const QVariant olderTime =
        AttributeStore::getXAttr(AttributeStore::openmetaTimeKey(AttributeStore::olderUserTagsKey), path);
    if (olderTime.typeId() != QMetaType::QDateTime) {
        return;
    }
    ZQError error; // a time or a list that cannot be read is not an old or an empty one
    const QVariant time =
        AttributeStore::getXAttr(AttributeStore::openmetaTimeKey(AttributeStore::userTagsKey), path, &error);
    if (time.typeId() == QMetaType::QDateTime &&
        time.toDateTime().msecsTo(olderTime.toDateTime()) < clearlyLaterMilliseconds) {
        return;
    }
    const QVariant olderTags =
        AttributeStore::getXAttr(AttributeStore::openmetaKey(AttributeStore::olderUserTagsKey), path);
    const QVariant tags =
        AttributeStore::getXAttr(AttributeStore::openmetaKey(AttributeStore::userTagsKey), path, &error);
    if (AttributeStore::isOfSystem(error) || !olderTags.isValid() || olderTags == tags) {
        return;
    }
    for (const QString &name : {AttributeStore::openmetaKey(AttributeStore::userTagsKey),
                                AttributeStore::spotlightKey(AttributeStore::userTagsKey)}) {
        TagAttributes::setXAttr(olderTags, name, path);
    }
    TagAttributes::setXAttr(olderTime, AttributeStore::openmetaTimeKey(AttributeStore::userTagsKey),
                            path); // it is done
}
