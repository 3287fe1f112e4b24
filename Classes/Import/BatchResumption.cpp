// Going on with a batch that was cut off: what it saved is its own again, and the rest is imported.

#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportOwner.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFileInfo>

namespace {
constexpr qsizetype namesInOneQuery = 500;

// The deepest folder that all of them lie in.
QString commonFolder(const QStringList &paths)
{
    QString folder = QFileInfo(paths.first()).path();
    for (const QString &path : paths) {
        while (folder.size() > 1 && !path.startsWith(folder + u'/')) {
            folder = QFileInfo(folder).path();
        }
    }
    return folder;
}
} // namespace

void ImportOperation::setPendingImport(std::shared_ptr<PendingImportFile> file, bool isResumed)
{
    m_pendingImport = std::move(file);
    m_isResumed = isResumed;
    m_firstRequest = m_pendingImport ? m_pendingImport->request() : PendingImport();
}

void ImportOperation::setRequestOfArchive(std::shared_ptr<PendingImportFile> file)
{
    m_requestOfArchive = std::move(file);
    m_isResumed = true;
}

// Ends the batch before its time, and not the request.
void ImportOperation::postpone(const QString &reason)
{
    m_postponement = reason;
    setRefusal(reason);
}

void ImportOperation::resume()
{
    if (!restoreEarlierItems()) {
        m_requestedFiles.clear(); // told in one sentence
        return;
    }
    if (m_firstRequest.groups.isEmpty()) {
        importIntoTarget();
        return;
    }
    importRemainingGroups();
    m_itemsToImport = m_firstRequest.ungrouped;
    // Making folders saves them, and with them what was imported so far, which is to be noted before.
    if (!m_itemsToImport.isEmpty() && !isCancelled() && refusal().isEmpty() && saveItems()) {
        m_requestedFiles.append(m_itemsToImport);
        importIntoTarget();
    }
}

bool ImportOperation::restoreEarlierItems()
{
    const QString reason = zqLocalized("An import cannot go on, since it cannot be told which of its files are in the "
                                       "library. It is kept: go on with it once that is mended, or forget it.");
    ZQError error;
    const auto noted = m_pendingImport->sources(&error);
    if (!noted) {
        qCWarning(zqLogImport).noquote() << error.localizedDescription();
        postpone(reason);
        return false;
    }
    const QList<PendingImportFile::Source> &sources = *noted;
    for (qsizetype first = 0; first < sources.size(); first += namesInOneQuery) {
        QHash<QString, ZQRef<ZQLibraryBaseItem>> items;
        QStringList names;
        for (const PendingImportFile::Source &source : sources.mid(first, namesInOneQuery)) {
            names.append(source.bundleID);
        }
        const auto found = zqFetch<ZQLibraryBaseItem>(*m_moc, QStringLiteral("bundleID in %@"), {names});
        if (!found) {
            postpone(reason);
            return false;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *found) {
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
    return true;
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

// Each path as often as it is not in yet, and of a request that was cut off only what is there now.
QStringList ImportOperation::remaining(const QStringList &files)
{
    QStringList rest;
    for (const QString &path : files) {
        const auto earlier = m_earlierPaths.find(path);
        if (earlier != m_earlierPaths.end() && *earlier > 0) {
            --*earlier;
        } else if (m_isResumed && !QFileInfo::exists(path)) {
            m_outOfReach.append(path);
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
    for (const PendingImport::Group &group : m_firstRequest.groups) {
        m_requestedFiles.append(group.files);
        ZQRef<ZQSidebarBaseItem> project = zqCast<ZQSidebarBaseItem>(m_moc->objectWithURIRepresentation(group.project));
        if (!project || !project->active()) {
            project = library; // somebody removed it meanwhile
        }
        const QStringList files = screened(remaining(group.files));
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
    importGroups(groups);
}

bool ImportOperation::rememberGroups(const QList<Group> &groups)
{
    if (!m_pendingImport) {
        return true;
    }
    const QUuid store = m_coordinator->storeUUID();
    PendingImport request = m_pendingImport->request();
    for (const Group &group : groups) {
        request.groups.append({group.project->objectID().URIRepresentation(store), group.files});
    }
    request.ungrouped = m_outOfReach;
    for (const PendingImport::Group &group : m_firstRequest.groups) {
        request.ungrouped.removeIf([&group](const QString &path) { return group.files.contains(path); });
    }
    ZQError error;
    if (groups.isEmpty() || m_pendingImport->setRequest(request, &error)) {
        return true;
    }
    removeEverythingCreated(); // or going on would make the same projects again
    postpone(zqFormat(zqLocalized("%@ Import it again once that is mended."), {error.localizedDescription()}));
    return false;
}

bool ImportOperation::rememberUnsavedItems(ZQError *error)
{
    if (!m_pendingImport) {
        return true;
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
    return m_pendingImport->addSources(sources, error);
}

void ImportOperation::endPendingImport(bool wasCancelled)
{
    if (!m_pendingImport) {
        return;
    }
    const bool isKept = !m_postponement.isEmpty() || (m_isResumed && (!m_outOfReach.isEmpty() || !refusal().isEmpty()));
    const bool isPutOff = wasCancelled && m_owner.keepsCancelledImports();
    m_isRequestKept = isPutOff || (!wasCancelled && isKept);
    ZQError error;
    if (isPutOff) {
        // What it had made went with it.
        PendingImport request = m_pendingImport->request();
        request.groups = m_firstRequest.groups;
        request.ungrouped = m_firstRequest.ungrouped;
        if (!m_pendingImport->setRequest(request, &error)) {
            qCWarning(zqLogImport).noquote() << error.localizedDescription();
        }
    } else if (m_isRequestKept) {
        keepPendingImport();
    } else {
        m_pendingImport->remove();
    }
    m_pendingImport.reset();
}

// What an archive's request asks for is found in the archive alone.
void ImportOperation::keepPendingImport()
{
    m_report.setUnfinished();
    PendingImport rest = m_pendingImport->request();
    const bool isFlat = rest.groups.isEmpty();
    if (!m_postponement.isEmpty() || !refusal().isEmpty() || (isFlat && !rest.archiveRoot.isEmpty())) {
        return;
    }
    const QSet<QString> outOfReach(m_outOfReach.begin(), m_outOfReach.end());
    for (PendingImport::Group &group : rest.groups) {
        group.files.removeIf([&outOfReach](const QString &path) { return !outOfReach.contains(path); });
    }
    rest.groups.removeIf([](const PendingImport::Group &group) { return group.files.isEmpty(); });
    rest.ungrouped.removeIf([&outOfReach](const QString &path) { return !outOfReach.contains(path); });
    if (rest.groups.isEmpty()) {
        rest.paths = m_outOfReach;
        rest.ungrouped.clear();
    }
    if (isFlat && rest.index != appendIndex) {
        rest.index += quint32(m_savedItemCount);
    }
    ZQError error;
    if (!m_pendingImport->narrow(rest, &error)) {
        qCWarning(zqLogImport).noquote() << error.localizedDescription();
    }
}

void ImportOperation::endRequestOfArchive(bool wasCancelled)
{
    if (m_requestOfArchive && wasCancelled && !m_owner.keepsCancelledImports()) {
        m_requestOfArchive->remove();
    } else if (m_requestOfArchive && !wasCancelled && m_followUps.isEmpty()) {
        m_report.setUnfinished();
    }
    m_requestOfArchive.reset();
}

QString ImportOperation::textForUnfinished() const
{
    const QString whatToDo = zqLocalized("The import is kept: go on with it once that is mended, or forget it.");
    if (m_origin && !m_outOfReach.isEmpty()) {
        return zqFormat(zqLocalized("%d files of “%@” cannot be found. The import is kept: go on with it, or forget "
                                    "it."),
                        {m_outOfReach.size(), m_origin->archivePath});
    }
    if (m_outOfReach.isEmpty()) {
        return m_postponement.isEmpty() ? whatToDo : m_postponement;
    }
    if (m_outOfReach.size() == 1) {
        return zqFormat(zqLocalized("“%@” cannot be found. %@"), {m_outOfReach.first(), whatToDo});
    }
    return zqFormat(zqLocalized("%d files or folders cannot be found in “%@”. %@"),
                    {m_outOfReach.size(), commonFolder(m_outOfReach), whatToDo});
}
