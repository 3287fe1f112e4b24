#include "Classes/Import/GroupImport.h"

#include "Classes/Import/BaseImportOperation.h"
#include "Classes/Import/CreatedItems.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportQueries.h"
#include "Classes/Import/ImporterForFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <utility>

namespace {
constexpr qsizetype largeBatch = 1000;
constexpr qsizetype mostUnsaved = 256; // of a large batch
constexpr qsizetype mostReading = 2 * mostUnsaved;
constexpr int longestInterval = 4; // times the first

// Nothing after an error.
std::optional<QStringList> liveFoldersIn(ZQManagedObjectContext &context)
{
    const auto roots = zqFetch<ZQSidebarWatchedFolder>(context, QStringLiteral("is_root == YES"));
    if (!roots) {
        return std::nullopt;
    }
    QStringList paths;
    for (const auto &root : *roots) {
        const QString real = QFileInfo(root->folderPath()).canonicalFilePath();
        for (const QString &path : {root->folderPath(), real}) {
            if (!path.isEmpty()) {
                paths.append(path + u'/');
            }
        }
    }
    return paths;
}
} // namespace

GroupImport::GroupImport(BatchState &batch, CreatedItems &items)
    : m_batch(batch), m_items(items), m_queue(QStringLiteral("Import"), 3), m_arrival(std::make_shared<Arrival>()),
      m_saveInterval(batch.settings.firstSaveAfter), m_nextSave(Clock::now() + m_saveInterval)
{
}

void GroupImport::importGroups(QList<FileGroup> &groups)
{
    orderLikeTheDrop(groups);
    m_liveFolders = liveFoldersIn(*m_batch.context);
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
    m_batch.record.showWholeProgress(); // what comes now may take a while, or asks
}

void GroupImport::importFiles(const FileGroup &group)
{
    const bool holdsArchives = ImportQueries::fileAtPathIsArchive(group.files.value(0));
    m_batch.isProcessed = m_batch.isProcessed && holdsArchives; // their own requests tell what they gave

    ItemInserter::Place place{.project = group.project,
                              .position = m_batch.request.index,
                              .isExplicit = m_batch.request.index != ZQSidebarBaseItem::appendIndex};
    qsizetype next = 0;
    startFurther(group, next);
    if (!place.isExplicit && !place.project->isLibrary() && !place.project->isTag()) {
        place.position = quint32(place.project->numberOfItems());
    }
    while (!m_reading.empty()) {
        if (waitForFirst()) {
            takeFirst(place);
            startFurther(group, next);
        }
        if (isSaveDue()) {
            save(place);
        }
    }
    m_batch.inserter->putWaiting(place);
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

void GroupImport::startFurther(const FileGroup &group, qsizetype &next)
{
    while (qsizetype(m_reading.size()) < mostReading && next < group.files.size() && !m_batch.isCancelled()) {
        const qsizetype file = next++;
        auto operation = operationFor(group, file);
        if (!operation) {
            m_batch.record.fileDidDrop(unsupportedFile(group.files.at(file))); // it is not what it was a moment ago
            continue;
        }
        Reading &reading = m_reading.emplace_back();
        reading.operation = operation;
        operation->setImportData(&reading.file);
        operation->setCompletionBlock([arrival = m_arrival] {
            const ZQLockGuard lock(arrival->mutex);
            arrival->arrived.notifyAll();
        });
        m_queue.addOperation(operation);
    }
    if (m_batch.isCancelled()) {
        m_queue.cancelAllOperations(); // the cancel may have come before the last of them was queued
    }
}

std::shared_ptr<BaseImportOperation> GroupImport::operationFor(const FileGroup &group, qsizetype file)
{
    auto operation = importOperationForFilePath(group.files.at(file));
    if (operation) {
        QVariantMap metadata = m_batch.request.metadata;
        metadata.insert(m_batch.request.fileMetadata.value(group.files.at(file)).toMap());
        operation->setMetadata(metadata);
        operation->setSettings(m_batch.settings);
        operation->setSidebarItem(group.project->objectID());
        operation->setImportDate(m_firstImportDate.addMSecs(group.milliseconds[std::size_t(file)]));
        operation->setKeepsSource(isOfLiveFolder(group.files.at(file)));
        operation->setFatherOperation(&m_batch.record);
    }
    return operation;
}

bool GroupImport::isOfLiveFolder(const QString &path) const
{
    if (!m_liveFolders) {
        return true; // it may be
    }
    const QString real = QFileInfo(path).canonicalFilePath();
    return std::any_of(m_liveFolders->begin(), m_liveFolders->end(),
                       [&](const QString &folder) { return path.startsWith(folder) || real.startsWith(folder); });
}

// False when a save was due first.
bool GroupImport::waitForFirst()
{
    BaseImportOperation &first = *m_reading.front().operation;
    {
        const ZQLockGuard lock(m_arrival->mutex);
        while (!first.isFinished()) {
            if (m_items.unsavedCount() == 0 || m_batch.isCancelled()) {
                m_arrival->arrived.wait(m_arrival->mutex);
            } else if (!m_arrival->arrived.waitUntil(m_arrival->mutex, m_nextSave) && !first.isFinished()) {
                return false;
            }
        }
    }
    first.waitUntilFinished(); // whoever looks at its end has been told
    return true;
}

void GroupImport::takeFirst(ItemInserter::Place &place)
{
    const ImportedFile file = std::move(m_reading.front().file);
    m_reading.pop_front();
    if (file.fileData.isEmpty()) {
        qCDebug(zqLogImport) << "NULL Found in file array!!";
        return;
    }
    m_batch.isProcessed = true;
    if (m_batch.isCancelled()) {
        m_items.giveUpDirectory(file.fileData.value(QStringLiteral("bundleID")).toString());
    } else {
        insertItem(file, place);
    }
}

bool GroupImport::isSaveDue() const
{
    const qsizetype unsaved = m_items.unsavedCount();
    const bool isLarge = m_batch.requestedFiles.size() > largeBatch;
    const bool isDue = (isLarge && unsaved >= mostUnsaved) || Clock::now() >= m_nextSave;
    return unsaved > 0 && isDue && !m_batch.isCancelled();
}

// What is saved is fetched and shown anew each time: the longer the batch takes, the more seldom.
void GroupImport::save(ItemInserter::Place &place)
{
    m_batch.inserter->putWaiting(place);
    m_items.save();
    m_saveInterval = std::min<Clock::duration>(2 * m_saveInterval, longestInterval * m_batch.settings.firstSaveAfter);
    m_nextSave = Clock::now() + m_saveInterval;
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
