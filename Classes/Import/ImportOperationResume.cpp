// Going on with a batch that was cut off: what it saved is its own again, and the rest is imported.

#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportOperation.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

namespace {
constexpr qsizetype namesInOneQuery = 500;
}

void ImportOperation::setPendingImport(std::shared_ptr<PendingImportFile> file, bool isResumed)
{
    m_pendingImport = std::move(file);
    m_isResumed = isResumed;
}

void ImportOperation::restoreEarlierItems()
{
    const QList<PendingImportFile::Source> sources = m_pendingImport->sources();
    for (qsizetype first = 0; first < sources.size(); first += namesInOneQuery) {
        QHash<QString, ZQRef<ZQLibraryBaseItem>> items;
        QStringList names;
        for (const PendingImportFile::Source &source : sources.mid(first, namesInOneQuery)) {
            names.append(source.bundleID);
        }
        const auto found = zqFetch<ZQLibraryBaseItem>(*m_moc, QStringLiteral("bundleID in %@"), {names});
        for (const ZQRef<ZQLibraryBaseItem> &item : found.value_or(QList<ZQRef<ZQLibraryBaseItem>>())) {
            items.insert(item->bundleID(), item);
        }
        for (const PendingImportFile::Source &source : sources.mid(first, namesInOneQuery)) {
            const ZQRef<ZQLibraryBaseItem> item = items.value(source.bundleID);
            if (item || source.bundleID.isEmpty()) {
                ++m_earlierPaths[source.path];
            }
            if (item && item->active()) {
                restoreEarlierItem(source, *item);
            }
        }
    }
    m_savedItemCount = qsizetype(m_createdItems.size());
    m_isProcessed = m_savedItemCount > 0;
    qCInfo(zqLogImport) << "An import goes on behind" << m_savedItemCount << "items";
}

void ImportOperation::restoreEarlierItem(const PendingImportFile::Source &source, ZQLibraryBaseItem &item)
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
    m_createdItems.push_back(created);
}

// One of each path for each time it is in already.
QStringList ImportOperation::withoutEarlier(const QStringList &files)
{
    if (m_earlierPaths.isEmpty()) {
        return files;
    }
    QStringList rest;
    for (const QString &path : files) {
        const auto earlier = m_earlierPaths.find(path);
        if (earlier != m_earlierPaths.end() && *earlier > 0) {
            --*earlier;
        } else {
            rest.append(path);
        }
    }
    return rest;
}

// The folders and projects were made before the batch was cut off; what they were to hold goes into them.
void ImportOperation::importRemainingGroups()
{
    const ZQRef<ZQSidebarBaseItem> library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*m_moc);
    m_index = appendIndex;
    m_originalDropIndex = appendIndex; // where archives were to go has moved since
    m_requestedFiles.clear();
    QList<Group> groups;
    for (const PendingImport::Group &group : m_pendingImport->request().groups) {
        m_requestedFiles.append(group.files);
        ZQRef<ZQSidebarBaseItem> project = zqCast<ZQSidebarBaseItem>(m_moc->objectWithURIRepresentation(group.project));
        if (!project || !project->active()) {
            project = library; // somebody removed it meanwhile
        }
        const QStringList files = screened(withoutEarlier(group.files));
        if (isCancelled() || !project) {
            return;
        }
        if (!files.isEmpty()) {
            m_numberOfItemToImport += files.size();
            groups.append({.project = project, .files = files, .droppedFolder = {}});
        }
    }
    if (groups.isEmpty()) {
        return;
    }
    m_target = m_rootSidebarItem;
    orderLikeTheDrop(groups);
    beginProgress();
    for (const Group &group : groups) {
        if (isCancelled()) {
            return;
        }
        importFiles(group);
    }
}

void ImportOperation::rememberGroups(const QList<Group> &groups)
{
    if (!m_pendingImport) {
        return;
    }
    const QUuid store = m_coordinator->storeUUID();
    QList<PendingImport::Group> remembered;
    for (const Group &group : groups) {
        remembered.append({group.project->objectID().URIRepresentation(store), group.files});
    }
    m_pendingImport->setGroups(remembered);
}

void ImportOperation::rememberUnsavedItems()
{
    if (!m_pendingImport) {
        return;
    }
    QList<PendingImportFile::Source> sources;
    for (std::size_t i = std::size_t(m_savedItemCount); i < m_createdItems.size(); ++i) {
        const CreatedItem &created = m_createdItems[i];
        if (!created.isGone) {
            sources.append({created.bundleID, created.sourcePath, created.movedPath, created.movedModification});
        }
    }
    for (const QString &path : std::as_const(m_discardedPaths)) { // not asked about again
        sources.append({.bundleID = {}, .path = path, .movedPath = {}, .movedModification = 0});
    }
    m_pendingImport->addSources(sources);
}

void ImportOperation::endPendingImport(bool wasCancelled)
{
    if (!m_pendingImport) {
        return;
    }
    if (!wasCancelled || !AImportManager::sharedAImportManager().keepsCancelledImports()) {
        m_pendingImport->remove();
    } else if (!m_isResumed) {
        m_pendingImport->setGroups({}); // what it had made went with it
    }
    m_pendingImport.reset();
}
