#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryEnvironment.h"
#include "Models/DataModel/ZQProjectItem.h"

#include <QDir>

#include <algorithm>

// A group becomes items once all its files have been read. A batch of very many files would show nothing for minutes
// that way and keep every result in memory, so it goes in chunks of one group after another: while one chunk becomes
// items and is saved, the files of the next are being read. The order, the positions and the tags come out the same,
// since chunks follow each other in the order of the files and the positions run on. What a chunk saved stays on the
// batch's account until the end: a cancel removes it, and duplicates are asked about once, after the last file.
namespace {
constexpr qsizetype largeBatch = 1000;
constexpr qsizetype chunkSize = 256;
} // namespace

void ImportOperation::importGroups(QList<Group> &groups)
{
    orderLikeTheDrop(groups);
    beginProgress();
    for (const Group &group : groups) {
        if (isCancelled()) {
            return;
        }
        importFiles(group);
    }
}

void ImportOperation::importFiles(const Group &group)
{
    const bool isLarge = m_requestedFiles.size() > largeBatch;
    const qsizetype size = isLarge ? chunkSize : std::max<qsizetype>(group.files.size(), 1);
    const bool holdsArchives = ImportQueries::fileAtPathIsArchive(group.files.value(0));
    m_isProcessed = m_isProcessed && holdsArchives; // their own requests tell what they gave

    Place place{.project = group.project, .position = m_index, .isExplicit = m_index != appendIndex};
    std::unique_ptr<Chunk> running = startChunk(group, 0, size);
    if (!place.isExplicit && !place.project->isLibrary() && !place.project->isTag()) {
        place.position = quint32(place.project->numberOfItems());
    }
    for (qsizetype next = size; running; next += size) {
        std::unique_ptr<Chunk> following;
        if (next < group.files.size() && !isCancelled()) {
            following = startChunk(group, next, size);
        }
        finishChunk(*running, place);
        if (isLarge && m_unsavedItems.size() >= chunkSize && !isCancelled()) {
            saveItems();
        }
        running = std::move(following);
    }
    ZQNotificationCenter::defaultCenter().postNotification(
        sidebarItemDidAddItem, nullptr, {{QStringLiteral("objectID"), QVariant::fromValue(group.project->objectID())}});
}

// Files finish in any order, and lists are sorted by the import date: each file's place in the drop gives its date.
void ImportOperation::orderLikeTheDrop(QList<Group> &groups)
{
    struct Entry
    {
        qsizetype dropped;
        Group *group;
        std::size_t file;
    };
    QHash<QString, qsizetype> dropped;
    for (qsizetype i = m_itemsToImport.size() - 1; i >= 0; --i) {
        dropped.insert(m_itemsToImport.at(i), i);
    }
    std::vector<Entry> places;
    for (Group &group : groups) {
        group.milliseconds.resize(std::size_t(group.files.size()));
        for (std::size_t i = 0; i < group.milliseconds.size(); ++i) {
            const QString &root = group.droppedFolder.isEmpty() ? group.files.at(qsizetype(i)) : group.droppedFolder;
            places.push_back({dropped.value(root), &group, i});
        }
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const Entry &a, const Entry &b) { return a.dropped < b.dropped; });
    qint64 milliseconds = 0;
    for (const Entry &place : places) {
        place.group->milliseconds[place.file] = milliseconds++;
    }
    m_firstImportDate = zqNow();
}

std::unique_ptr<ImportOperation::Chunk> ImportOperation::startChunk(const Group &group, qsizetype first,
                                                                    qsizetype count)
{
    auto chunk = std::make_unique<Chunk>();
    const qsizetype end = std::min(first + count, group.files.size());
    chunk->fileProcessed.resize(std::size_t(std::max<qsizetype>(end - first, 0)));
    for (qsizetype i = first; i < end; ++i) {
        const QString &path = group.files.at(i);
        const auto operation = BaseImportOperation::importOperationForFilePath(path);
        if (!operation) {
            fileDidDrop(unsupportedFile(path)); // it is not what it was a moment ago
            continue;
        }
        operation->setMetadata(m_metadata);
        operation->setSettings(m_settings);
        operation->setSidebarItem(group.project->objectID());
        operation->setImportDate(m_firstImportDate.addMSecs(group.milliseconds[std::size_t(i)]));
        operation->setImportData(&chunk->fileProcessed[chunk->operations.size()]);
        operation->setFatherOperation(this);
        chunk->operations.push_back(operation);
        m_importOperationQueue->addOperation(operation);
    }
    if (isCancelled()) {
        m_importOperationQueue->cancelAllOperations(); // the cancel may have come before the last of them was queued
    }
    return chunk;
}

void ImportOperation::finishChunk(Chunk &chunk, Place &place)
{
    for (const auto &operation : chunk.operations) {
        operation->waitUntilFinished();
    }
    chunk.operations.clear();
    QList<ZQRef<ZQLibraryBaseItem>> placed;
    QList<quint32> positions;
    for (const ImportedFile &file : chunk.fileProcessed) {
        if (file.fileData.isEmpty()) {
            qCDebug(zqLogImport) << "NULL Found in file array!!";
            continue;
        }
        m_isProcessed = true;
        if (isCancelled()) {
            m_bundlesToRemove.append(file.fileData.value(QStringLiteral("bundleID")).toString());
            continue;
        }
        const ZQRef<ZQLibraryBaseItem> item = insertItem(file);
        if (!item) {
            continue;
        }
        if (const auto tag = zqCast<ZQSidebarTag>(place.project)) {
            item->addTagsObject(tag.get());
            m_createdItems.back().tags.append(tag->title());
        } else if (place.isExplicit && !place.project->isLibrary()) {
            placed.append(item);
            positions.append(place.position++);
        } else if (!place.project->isLibrary()) {
            const auto membership = m_moc->insertNewObject<ZQProjectItem>();
            membership->setProject(place.project.get());
            membership->setItem(item.get());
            membership->setOrder(qint32(place.position++));
        }
        --m_numberOfItemToImport;
    }
    if (!placed.isEmpty()) {
        place.project->addItems(placed, positions); // all at once: each one moves the members behind it
    }
}

ZQRef<ZQLibraryBaseItem> ImportOperation::insertItem(const ImportedFile &file)
{
    QVariantMap values = file.fileData;
    const QStringList tags = values.take(QStringLiteral("tags")).toStringList();
    const QString itemClass = values.take(QStringLiteral("itemClass")).toString();
    const auto item = zqCast<ZQLibraryBaseItem>(m_moc->insertNewObjectForEntityForName(itemClass));
    if (!item) {
        qCWarning(zqLogImport) << "There is no item class" << itemClass;
        m_bundlesToRemove.append(values.value(QStringLiteral("bundleID")).toString());
        fileDidDrop({file.sourcePath, zqLocalized("The library has no items of this kind.")});
        return {};
    }
    for (auto value = values.constBegin(); value != values.constEnd(); ++value) {
        item->setValueForKey(value.value(), value.key());
    }
    m_unsavedItems.append(item);
    m_createdItems.push_back({.objectID = item->objectID(),
                              .bundleID = item->bundleID(),
                              .SHA1 = item->SHA1(),
                              .filePath = file.filePath,
                              .thumbName = item->thumbName(),
                              .sourcePath = file.sourcePath,
                              .movedPath = file.movedPath,
                              .movedModification = file.movedModification,
                              .tags = {},
                              .notes = item->notes()});
    tagItem(*item, tags);
    return item;
}

void ImportOperation::tagItem(ZQLibraryBaseItem &item, const QStringList &tags)
{
    for (const QString &name : tags) {
        const ZQRef<ZQSidebarTag> tag = tagWithName(name);
        if (tag && !m_createdItems.back().tags.contains(tag->title())) { // two spellings in the file are one tag
            item.addTagsObject(tag.get());
            m_createdItems.back().tags.append(tag->title());
        }
    }
}

ZQRef<ZQSidebarTag> ImportOperation::tagWithName(const QString &text)
{
    const QString name = ZQSidebarTag::tagNameForText(text);
    if (const auto known = m_tags.constFind(name); known != m_tags.constEnd()) {
        return *known;
    }
    bool isNew = false;
    const ZQRef<ZQSidebarTag> tag = ZQSidebarTag::getOrCreateTagWithName(name, *m_moc, &isNew);
    if (tag && isNew) {
        m_createdSidebarItems.append(tag);
    }
    m_tags.insert(name, tag);
    return tag;
}

bool ImportOperation::saveItems(ZQError *failure)
{
    ZQError error;
    const bool isRemembered = rememberUnsavedItems(&error);
    const QString library = ZQLibraryEnvironment::current().libraryDirectory();
    const bool isSynced = isRemembered && (m_unsavedItems.isEmpty() ||
                                           zqSyncFileSystem(library, &error)); // files are safe before rows name them
    m_moc->processPendingChanges();
    if (!isSynced || !m_moc->save(&error)) {
        logSaveError(error);
        const QString reason =
            zqFormat(zqLocalized("The library could not be saved: %@ Import it again once that is mended."),
                     {error.localizedDescription()});
        if (!isRemembered) {
            postpone(reason);
        }
        forgetUnsavedItems(reason);
        zqSetError(failure, error);
        return false;
    }
    const std::size_t firstSaved = std::size_t(m_savedItemCount);
    for (const ZQRef<ZQLibraryBaseItem> &item : std::as_const(m_unsavedItems)) {
        m_createdItems[std::size_t(m_savedItemCount++)].objectID = item->objectID();
    }
    m_unsavedItems.clear();
    writeTagsOfItems(firstSaved);
    return true;
}

// At once: from here on people change them too, and what they write must not be followed by what was read before.
void ImportOperation::writeTagsOfItems(std::size_t first)
{
    ZQLibraryEnvironment &environment = ZQLibraryEnvironment::current();
    if (!environment.writesTagsToFiles()) {
        return;
    }
    for (std::size_t i = first; i < m_createdItems.size(); ++i) {
        const CreatedItem &created = m_createdItems[i];
        if (!created.isGone) {
            environment.writeTagsToFileOfItem(
                created.bundleID, created.filePath,
                {.tags = created.tags, .comment = created.notes, .rating = {}, .isFirst = true, .isSaved = true});
        }
    }
}

// Those files are where they were before, and no further ones are begun.
void ImportOperation::forgetUnsavedItems(const QString &reason)
{
    setRefusal(reason);
    m_moc->rollback();
    m_tags.clear();
    m_unsavedItems.clear();
    for (std::size_t i = std::size_t(m_savedItemCount); i < m_createdItems.size(); ++i) {
        m_bundlesToRemove.append(m_createdItems[i].bundleID);
        if (!m_createdItems[i].isGone) {
            fileDidDrop({m_createdItems[i].sourcePath, reason});
        }
    }
    m_createdItems.resize(std::size_t(m_savedItemCount));
}
