#include "Classes/Import/ImportPlan.h"

#include "Classes/Application/UserInteraction.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Import/BatchResumption.h"
#include "Classes/Import/DirectoryContent.h"
#include "Classes/Import/ImportConflictResolver.h"
#include "Classes/Import/ImportErrors.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"

#include <QFileInfo>
#include <QHash>

#include <deque>

namespace {

constexpr quint32 appendIndex = ZQSidebarBaseItem::appendIndex;

// A sidebar item that is made by an import and comes into use at its end.
template <class T>
ZQRef<T> newSidebarItem(ZQManagedObjectContext &context, const QString &title)
{
    ZQRef<T> item = context.insertNewObject<T>();
    item->setTitle(title);
    item->setEnabled(false);
    return item;
}

QString titleForDirectory(const QString &directory)
{
    return QFileInfo(directory).fileName().replace(u':', u'/');
}

} // namespace

std::optional<ImportPlan::Planned> ImportPlan::groupsForTarget()
{
    const ZQRef<ZQSidebarBaseItem> target =
        m_batch.request.target.isNull()
            ? ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*m_batch.context)
            : zqCast<ZQSidebarBaseItem>(m_batch.context->existingObjectWithID(m_batch.request.target));
    if (!target) {
        m_batch.record.dropAll(
            m_batch.request.paths,
            zqLocalized("The sidebar item it was to go to does not exist any more. Import it into another one."));
        return std::nullopt;
    }
    m_batch.target = target->objectID();
    switch (SidebarTargetRules::holding(*target)) {
    case SidebarTargetRules::Holding::Items:
        return flat(*target);
    case SidebarTargetRules::Holding::Tree:
        return structured(*target);
    case SidebarTargetRules::Holding::Nothing:
        break;
    }
    m_batch.record.dropAll(m_batch.request.paths,
                           zqFormat(zqLocalized("“%@” takes no files. Import it into the library, a project or a tag."),
                                    {target->title()}));
    return std::nullopt;
}

QStringList ImportPlan::supportedFiles()
{
    if (m_batch.request.origin && !ImportQueries::fileAtPathIsSupported(m_batch.request.origin->folder)) {
        m_batch.requestedFiles = filesBelowDirectory(
            m_batch.request.origin->folder); // they stand for the archive, which was asked for as a file
        return m_resumption.remaining(m_batch.requestedFiles);
    }
    QStringList files;
    const QStringList paths = m_resumption.remaining(m_batch.request.paths);
    for (const QString &path : paths) {
        if (ImportQueries::fileAtPathIsSupported(path)) {
            if (ImportQueries::fileAtPathIsArchive(path)) {
                m_batch.hasArchives = true;
                m_batch.foldersAndArchivesPathOrdered.append(path);
            }
            files.append(path);
        } else {
            m_batch.record.fileDidDrop(unsupportedFile(path));
        }
    }
    return files;
}

QStringList ImportPlan::screened(const QStringList &files)
{
    ImportConflictResolver resolver(files, m_batch.user);
    bool isStopped = false;
    const QStringList valid = resolver.validFilesCancellingOperation(&isStopped);
    if (isStopped) {
        m_batch.operation.cancel();
        return {};
    }
    for (const QString &path : resolver.excludedFiles()) {
        const QString reason =
            QFileInfo::exists(path)
                ? zqLocalized("It cannot be read. Change its permissions, or unlock it, and import it again.")
                : zqLocalized("There is no such file. Check its name.");
        m_batch.record.fileDidDrop({path, reason});
    }
    return valid;
}

std::optional<ImportPlan::Planned> ImportPlan::flat(ZQSidebarBaseItem &target)
{
    const QStringList supported = supportedFiles();
    if (m_batch.request.origin && m_batch.requestedFiles.isEmpty() && !m_batch.isCancelled()) {
        m_batch.record.fileDidDrop({m_batch.request.origin->root,
                                    zqLocalized("The archive holds nothing that can be imported."),
                                    DroppedFile::Telling::Quietly});
    }
    const QStringList files = screened(supported);
    if (m_batch.request.index != appendIndex) {
        m_batch.request.index += quint32(m_resumption.earlierItemCount());
    }
    if (m_batch.isCancelled() || files.isEmpty()) {
        return std::nullopt;
    }
    return Planned{{{.project = ZQRef<ZQSidebarBaseItem>(&target),
                     .files = files,
                     .droppedFolder = m_batch.request.origin ? m_batch.request.origin->folder : QString()}}};
}

std::optional<ImportPlan::Planned> ImportPlan::structured(ZQSidebarBaseItem &target)
{
    quint32 dropIndex = m_batch.request.index == appendIndex ? quint32(target.numberofChilds()) : m_batch.request.index;
    m_batch.originalDropIndex = dropIndex;
    m_batch.request.index = appendIndex;

    QStringList folders;
    QStringList archives;
    QStringList files;
    const QStringList paths = m_resumption.remaining(m_batch.request.paths);
    for (const QString &path : paths) {
        if (!ImportQueries::fileAtPathIsSupported(path) && QFileInfo(path).isDir()) {
            folders.append(path);
            m_batch.foldersAndArchivesPathOrdered.append(path);
        } else if (!ImportQueries::fileAtPathIsSupported(path)) {
            m_batch.record.fileDidDrop(unsupportedFile(path));
        } else if (ImportQueries::fileAtPathIsArchive(path)) {
            archives.append(path);
            m_batch.foldersAndArchivesPathOrdered.append(path);
        } else {
            files.append(path);
        }
    }
    m_batch.hasArchives = !archives.isEmpty();

    QList<FileGroup> groups;
    if (!archives.isEmpty()) {
        groups.append({.project = ZQRef<ZQSidebarBaseItem>(&target), .files = archives, .droppedFolder = {}});
    }
    addLooseFiles(files, target, dropIndex, groups);
    if (!addFolders(folders, target, dropIndex, groups) || m_batch.isCancelled() || !save()) {
        return std::nullopt;
    }
    return Planned{groups, true};
}

bool ImportPlan::addFolders(const QStringList &folders, ZQSidebarBaseItem &target, quint32 dropIndex,
                            QList<FileGroup> &groups)
{
    if (!folders.isEmpty() && !m_batch.isCancelled()) {
        const QStringList readable = screened(folders); // asks; what cannot be opened is told apart when it is listed
        Q_UNUSED(readable)
    }
    for (const QString &folder : folders) {
        if (m_batch.isCancelled()) {
            return false;
        }
        m_batch.requestedFiles.removeAll(folder); // its files stand for it
        const QList<FileGroup> found = projectsToImportFromDirectory(folder, &target, dropIndex);
        if (found.isEmpty()) {
            m_batch.foldersAndArchivesPathOrdered.removeAll(folder);
            m_batch.record.fileDidDrop(
                {folder, zqLocalized("The folder holds nothing that can be imported."), DroppedFile::Telling::Quietly});
        } else {
            ++dropIndex;
        }
        groups.append(found);
    }
    return true;
}

void ImportPlan::addLooseFiles(const QStringList &files, ZQSidebarBaseItem &target, quint32 &dropIndex,
                               QList<FileGroup> &groups)
{
    const QStringList valid = files.isEmpty() ? files : screened(files);
    if (valid.isEmpty() || m_batch.isCancelled()) {
        return;
    }
    const auto project = newSidebarItem<ZQSidebarProject>(*m_batch.context, zqLocalized("New Project"));
    m_createdSidebarItems.append(project);
    target.addChild(project.get(), dropIndex++);
    groups.append({.project = project, .files = valid, .droppedFolder = {}});
}

bool ImportPlan::save()
{
    ZQError error;
    if (m_batch.context->save(&error)) {
        return true;
    }
    logImportSaveError(error);
    m_batch.context->rollback();
    m_createdSidebarItems.clear();
    m_batch.record.setRefusal(
        zqFormat(zqLocalized("The library could not be saved: %@"), {error.localizedDescription()}));
    return false;
}

std::optional<QList<FileGroup>> ImportPlan::remainingGroups()
{
    const ZQRef<ZQSidebarBaseItem> library = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*m_batch.context);
    m_batch.request.index = appendIndex;
    m_batch.originalDropIndex = appendIndex; // where archives were to go has moved since
    m_batch.requestedFiles.clear();
    QList<FileGroup> groups;
    for (const PendingImport::Group &group : m_resumption.firstRequest().groups) {
        m_batch.requestedFiles.append(group.files);
        ZQRef<ZQSidebarBaseItem> project =
            zqCast<ZQSidebarBaseItem>(m_batch.context->objectWithURIRepresentation(group.project));
        if (!project || !project->active()) {
            project = library; // somebody removed it meanwhile
        }
        const QStringList files = screened(m_resumption.remaining(group.files));
        if (m_batch.isCancelled() || !project) {
            return std::nullopt;
        }
        if (!files.isEmpty()) {
            groups.append({.project = project, .files = files, .droppedFolder = {}});
        }
    }
    if (groups.isEmpty()) {
        return std::nullopt;
    }
    m_batch.target = m_batch.request.target;
    return groups;
}

void ImportPlan::removeCreatedSidebarItems()
{
    for (const ZQRef<ZQSidebarBaseItem> &item : std::as_const(m_createdSidebarItems)) {
        if (item->managedObjectContext() && !item->isDeleted()) { // a father takes its children along
            item->deletePermanently();
        }
    }
}

void ImportPlan::dropRefused(const DirectoryContent &content)
{
    for (const QString &path : content.refused) {
        m_batch.record.fileDidDrop(unsupportedFile(path));
    }
    for (const DroppedFile &file : content.dropped) {
        m_batch.record.fileDidDrop(file);
    }
}

// For a place that takes no folders.
QStringList ImportPlan::filesBelowDirectory(const QString &directoryPath)
{
    QStringList files;
    QStringList directories{directoryPath};
    while (!directories.isEmpty() && !m_batch.isCancelled()) {
        DirectoryContent content = DirectoryContent::ofDirectory(directories.takeFirst());
        dropRefused(content);
        files.append(content.files + content.archives);
        directories = content.subfolders + directories;
    }
    return files;
}

// A folder with sub-folders stays one node: a sidebar folder that holds them and, for its own files, a project of the
// same name. An archive counts as a sub-folder, which it becomes when its turn comes.
QList<FileGroup> ImportPlan::projectsToImportFromDirectory(const QString &directoryPath, ZQSidebarBaseItem *inFolder,
                                                           quint32 atIndex)
{
    struct Record
    {
        QString directoryPath;
        ZQRef<ZQSidebarBaseItem> father;
        bool isRoot;
    };
    QList<FileGroup> groups;
    const qsizetype firstCreated = m_createdSidebarItems.size();
    QHash<const ZQSidebarBaseItem *, qint32> childCounts; // of the folders made here, which have no other children
    const auto addChild = [&](const Record &record, const ZQRef<ZQSidebarBaseItem> &child) {
        m_createdSidebarItems.append(child);
        if (record.isRoot) {
            record.father->addChild(child.get(), atIndex);
        } else {
            child->setFather(record.father.get());
            child->setOrder(childCounts[record.father.get()]++);
        }
    };
    std::deque<Record> records{{directoryPath, ZQRef<ZQSidebarBaseItem>(inFolder), true}};
    while (!records.empty()) {
        if (m_batch.isCancelled()) {
            return {};
        }
        Record record = std::move(records.front());
        records.pop_front();
        DirectoryContent content = DirectoryContent::ofDirectory(record.directoryPath);
        dropRefused(content);
        const QString title = titleForDirectory(record.directoryPath);
        if (!content.subfolders.isEmpty() || !content.archives.isEmpty()) {
            const ZQRef<ZQSidebarBaseItem> folder = newSidebarItem<ZQSidebarFolder>(*m_batch.context, title);
            folder->setSortKeys(qint16(ZQSortValue::None)); // the items of several projects have no order by hand
            addChild(record, folder);
            for (const QString &subfolder : std::as_const(content.subfolders)) {
                records.push_back({subfolder, folder, false});
            }
            record = {record.directoryPath, folder, false};
        }
        if (!content.files.isEmpty()) {
            const ZQRef<ZQSidebarBaseItem> project = newSidebarItem<ZQSidebarProject>(*m_batch.context, title);
            addChild(record, project);
            m_batch.requestedFiles.append(content.files);
            groups.append({.project = project, .files = content.files, .droppedFolder = directoryPath});
        }
        if (!content.archives.isEmpty()) {
            m_batch.requestedFiles.append(content.archives);
            groups.append({.project = record.father, .files = content.archives, .droppedFolder = directoryPath});
        }
    }
    if (groups.isEmpty()) { // folders in folders, and nothing in any of them
        while (m_createdSidebarItems.size() > firstCreated) {
            m_createdSidebarItems.takeLast()->deletePermanently();
        }
    }
    return groups;
}
