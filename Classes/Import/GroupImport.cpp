#include "Classes/Import/GroupImport.h"

#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/CreatedItems.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImporterForFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QHash>

#include <algorithm>

namespace {
constexpr qsizetype largeBatch = 1000;
constexpr qsizetype chunkSize = 256;
} // namespace

GroupImport::GroupImport(BatchState &batch, CreatedItems &items)
    : m_batch(batch), m_items(items), m_queue(QStringLiteral("Import"), 3)
{
}

void GroupImport::importGroups(QList<FileGroup> &groups)
{
    orderLikeTheDrop(groups);
    qsizetype fileCount = 0;
    for (const FileGroup &group : std::as_const(groups)) {
        fileCount += group.files.size();
    }
    m_batch.record.beginProgress(m_batch.user, fileCount, m_batch.operation.weak_from_this());
    for (const FileGroup &group : std::as_const(groups)) {
        if (m_batch.isCancelled()) {
            return;
        }
        importFiles(group);
    }
}

void GroupImport::importFiles(const FileGroup &group)
{
    const bool isLarge = m_batch.requestedFiles.size() > largeBatch;
    const qsizetype size = isLarge ? chunkSize : std::max<qsizetype>(group.files.size(), 1);
    const bool holdsArchives = ImportQueries::fileAtPathIsArchive(group.files.value(0));
    m_batch.isProcessed = m_batch.isProcessed && holdsArchives; // their own requests tell what they gave

    ItemInserter::Place place{.project = group.project,
                              .position = m_batch.request.index,
                              .isExplicit = m_batch.request.index != ZQSidebarBaseItem::appendIndex};
    std::unique_ptr<Chunk> running = startChunk(group, 0, size);
    if (!place.isExplicit && !place.project->isLibrary() && !place.project->isTag()) {
        place.position = quint32(place.project->numberOfItems());
    }
    for (qsizetype next = size; running; next += size) {
        std::unique_ptr<Chunk> following;
        if (next < group.files.size() && !m_batch.isCancelled()) {
            following = startChunk(group, next, size);
        }
        finishChunk(*running, place);
        if (isLarge && m_items.unsavedCount() >= chunkSize && !m_batch.isCancelled()) {
            m_items.save();
        }
        running = std::move(following);
    }
    ZQNotificationCenter::defaultCenter().postNotification(
        sidebarItemDidAddItem, nullptr, {{QStringLiteral("objectID"), QVariant::fromValue(group.project->objectID())}});
}

// Files finish in any order, and lists are sorted by the import date: each file's place in the drop gives its date.
void GroupImport::orderLikeTheDrop(QList<FileGroup> &groups)
{
    struct Entry
    {
        qsizetype dropped;
        FileGroup *group;
        std::size_t file;
    };
    QHash<QString, qsizetype> dropped;
    for (qsizetype i = m_batch.request.paths.size() - 1; i >= 0; --i) {
        dropped.insert(m_batch.request.paths.at(i), i);
    }
    std::vector<Entry> places;
    for (FileGroup &group : groups) {
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

std::unique_ptr<GroupImport::Chunk> GroupImport::startChunk(const FileGroup &group, qsizetype first, qsizetype count)
{
    auto chunk = std::make_unique<Chunk>();
    const qsizetype end = std::min(first + count, group.files.size());
    chunk->fileProcessed.resize(std::size_t(std::max<qsizetype>(end - first, 0)));
    for (qsizetype i = first; i < end; ++i) {
        const QString &path = group.files.at(i);
        const auto operation = importOperationForFilePath(path);
        if (!operation) {
            m_batch.record.fileDidDrop(unsupportedFile(path)); // it is not what it was a moment ago
            continue;
        }
        operation->setMetadata(m_batch.request.metadata);
        operation->setSettings(m_batch.settings);
        operation->setSidebarItem(group.project->objectID());
        operation->setImportDate(m_firstImportDate.addMSecs(group.milliseconds[std::size_t(i)]));
        operation->setImportData(&chunk->fileProcessed[chunk->operations.size()]);
        operation->setFatherOperation(&m_batch.record);
        chunk->operations.push_back(operation);
        m_queue.addOperation(operation);
    }
    if (m_batch.isCancelled()) {
        m_queue.cancelAllOperations(); // the cancel may have come before the last of them was queued
    }
    return chunk;
}

void GroupImport::finishChunk(Chunk &chunk, ItemInserter::Place &place)
{
    for (const auto &operation : chunk.operations) {
        operation->waitUntilFinished();
    }
    chunk.operations.clear();
    for (const ImportedFile &file : chunk.fileProcessed) {
        if (file.fileData.isEmpty()) {
            qCDebug(zqLogImport) << "NULL Found in file array!!";
            continue;
        }
        m_batch.isProcessed = true;
        if (m_batch.isCancelled()) {
            m_items.giveUpDirectory(file.fileData.value(QStringLiteral("bundleID")).toString());
        } else {
            insertItem(file, place);
        }
    }
    m_batch.inserter->putWaiting(place);
}

void GroupImport::insertItem(const ImportedFile &file, ItemInserter::Place &place)
{
    ItemInserter::Inserted inserted = m_batch.inserter->insert(file.fileData);
    if (!inserted.item) {
        m_items.giveUpDirectory(file.fileData.value(QStringLiteral("bundleID")).toString());
        m_batch.record.fileDidDrop({file.sourcePath, zqLocalized("The library has no items of this kind.")});
        return;
    }
    m_batch.inserter->put(inserted, place);
    m_items.add(file, inserted);
}
