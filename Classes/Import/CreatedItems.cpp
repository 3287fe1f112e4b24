#include "Classes/Import/CreatedItems.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Import/BatchResumption.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportedFile.h"
#include "Classes/Import/MovedSource.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"

#include <QDir>
#include <QFileInfo>

namespace {

// Of an item that was saved before, the store tells it, and a store may come from elsewhere.
bool isPlainName(const QString &name)
{
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') && !name.contains(QChar::Null);
}

QString bundlePath(const QString &bundleID)
{
    return ZQLibraryEnvironment::current().libraryDirectory() + u'/' + bundleID +
           ZQLibraryBaseItem::itemDirectoryExtension;
}

} // namespace

ZQRef<ZQLibraryBaseItem> CreatedItems::object(const CreatedItem &item) const
{
    return zqCast<ZQLibraryBaseItem>(m_batch.context->objectWithID(item.objectID));
}

void CreatedItems::add(const ImportedFile &file, const ItemInserter::Inserted &inserted)
{
    const ZQRef<ZQLibraryBaseItem> &item = inserted.item;
    m_unsaved.append(item);
    m_items.push_back({.objectID = item->objectID(),
                       .bundleID = item->bundleID(),
                       .SHA1 = item->SHA1(),
                       .filePath = file.filePath,
                       .thumbName = item->thumbName(),
                       .sourcePath = file.sourcePath,
                       .movedPath = file.movedPath,
                       .movedModification = file.movedModification,
                       .tags = inserted.tags,
                       .notes = item->notes()});
}

void CreatedItems::addEarlier(const PendingImportFile::Source &source, ZQLibraryBaseItem &item)
{
    CreatedItem created{.objectID = item.objectID(),
                        .bundleID = item.bundleID(),
                        .SHA1 = item.SHA1(),
                        .filePath = item.managedItemURL(),
                        .thumbName = item.thumbName(),
                        .sourcePath = source.path,
                        .movedPath = source.movedPath,
                        .movedModification = source.movedModification,
                        .tags = {},
                        .notes = item.notes(),
                        .isEarlier = true};
    for (const ZQRef<ZQSidebarTag> &tag : item.itemTags()) {
        created.tags.append(tag->title());
    }
    m_items.push_back(created);
    m_savedCount = qsizetype(m_items.size());
}

bool CreatedItems::save(ZQError *failure)
{
    ZQError error;
    const bool isRemembered = rememberUnsaved(&error);
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    const bool isSynced = isRemembered && (m_unsaved.isEmpty() ||
                                           zqSyncFileSystem(library, &error)); // files are safe before rows name them
    m_batch.context->processPendingChanges();
    if (!isSynced || !m_batch.context->save(&error)) {
        logImportSaveError(error);
        const QString reason =
            zqFormat(zqLocalized("The library could not be saved: %@ Import it again once that is mended."),
                     {error.localizedDescription()});
        if (!isRemembered) {
            m_resumption.postpone(reason);
        }
        forgetUnsaved(reason);
        zqSetError(failure, error);
        return false;
    }
    const std::size_t firstSaved = std::size_t(m_savedCount);
    for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(m_unsaved)) {
        m_items[std::size_t(m_savedCount++)].objectID = item->objectID();
    }
    m_unsaved.clear();
    writeTags(firstSaved);
    return true;
}

// At once: from here on people change them too, and what they write must not be followed by what was read before.
void CreatedItems::writeTags(std::size_t first)
{
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    if (!environment.writesTagsToFiles()) {
        return;
    }
    for (std::size_t i = first; i < m_items.size(); ++i) {
        const CreatedItem &created = m_items[i];
        if (!created.isGone) {
            environment.writeTagsToFileOfItem(
                created.bundleID, created.filePath,
                {.tags = created.tags, .comment = created.notes, .rating = {}, .isFirst = true, .isSaved = true});
        }
    }
}

// Those files are where they were before, and no further ones are begun.
void CreatedItems::forgetUnsaved(const QString &reason)
{
    m_batch.record.setRefusal(reason);
    m_batch.context->rollback();
    m_batch.inserter->forgetTags();
    m_unsaved.clear();
    for (std::size_t i = std::size_t(m_savedCount); i < m_items.size(); ++i) {
        m_bundlesToRemove.append(m_items[i].bundleID);
        if (!m_items[i].isGone) {
            m_batch.record.fileDidDrop({m_items[i].sourcePath, reason});
        }
    }
    m_items.resize(std::size_t(m_savedCount));
}

bool CreatedItems::rememberUnsaved(ZQError *error)
{
    QList<PendingImportFile::Source> sources;
    for (std::size_t i = std::size_t(m_savedCount); i < m_items.size(); ++i) {
        const CreatedItem &created = m_items[i];
        if (!created.isGone) {
            sources.append({created.bundleID, created.sourcePath, created.movedPath, created.movedModification});
        }
    }
    for (const QString &path : std::as_const(m_discardedPaths)) { // not asked about again
        sources.append({.bundleID = {}, .path = path, .movedPath = {}, .movedModification = 0});
    }
    return m_resumption.remember(sources, error);
}

// The directory of an item whose row was saved must outlive that row, which goes with the next save or stays.
void CreatedItems::takeOut(std::size_t index)
{
    CreatedItem &created = m_items[index];
    if (const ZQRef<ZQLibraryBaseItem> item = object(created); item && !created.isGone) {
        item->deletePermanently();
    }
    created.isGone = true;
    const bool isNamed = index < std::size_t(m_savedCount);
    (isNamed ? m_bundlesToRemoveOnceSaved : m_bundlesToRemove).append(created.bundleID);
}

void CreatedItems::takeOut(std::size_t index, const DroppedFile &reportedOnceSaved)
{
    takeOut(index);
    m_droppedOnceSaved.append(reportedOnceSaved);
}

void CreatedItems::takeOutAll()
{
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        if (!m_items[i].isEarlier) {
            takeOut(i);
        }
    }
}

void CreatedItems::removeSources()
{
    for (const CreatedItem &created : m_items) {
        if (created.isGone || created.movedPath.isEmpty() || !QFileInfo::exists(created.movedPath)) {
            continue;
        }
        if (created.isEarlier && !mayRemoveRecordedSource(created.movedPath, created.filePath)) {
            qCInfo(zqLogImport).noquote() << "The file" << created.movedPath
                                          << "is no temporary copy of what the library has and stays where it is";
            continue;
        }
        removeMovedSource(created.movedPath, created.movedModification);
    }
}

void CreatedItems::keepWhatCouldNotBeTakenOut(const ZQError &error)
{
    if (m_bundlesToRemoveOnceSaved.isEmpty()) {
        return;
    }
    const qsizetype count = m_bundlesToRemoveOnceSaved.size();
    qCWarning(zqLogImport).noquote() << count << "items could not be taken out of the library again:"
                                     << error.localizedDescription();
    for (CreatedItem &created : m_items) {
        created.isGone = false;
    }
    m_bundlesToRemoveOnceSaved.clear();
    m_droppedOnceSaved.clear();
    const ZQError told = ZQError::with(
        QStringLiteral("zelto.import"), 2,
        zqFormat(zqLocalized("%d imported items could not be taken out of the library again."), {count}),
        zqFormat(zqLocalized("%@ Delete them in the library once that is mended."), {error.localizedDescription()}));
    zqOnMainThread([&user = m_batch.user, told] { user.presentError(told); });
}

void CreatedItems::removeDirectories()
{
    m_bundlesToRemove.append(m_bundlesToRemoveOnceSaved);
    m_bundlesToRemoveOnceSaved.clear();
    for (const DroppedFile &file : std::as_const(m_droppedOnceSaved)) {
        m_batch.record.fileDidDrop(file);
    }
    m_droppedOnceSaved.clear();
    for (const QString &bundleID : std::as_const(m_bundlesToRemove)) {
        if (!isPlainName(bundleID) || QFileInfo(bundlePath(bundleID)).isSymLink()) {
            qCWarning(zqLogImport).noquote()
                << "An item's directory has an unsafe name and is not removed:" << bundleID;
        } else if (!QDir(bundlePath(bundleID)).removeRecursively()) {
            qCWarning(zqLogImport).noquote() << "Error while deleting unused bundle item" << bundlePath(bundleID);
        }
    }
    m_bundlesToRemove.clear();
}
