#include "Classes/Import/ImportOperation.h"
#include "Classes/Import/ImportQueries.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSortDescriptor.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <dirent.h>
#include <memory>

namespace {

// What a folder directly holds, each list in the order of a file browser.
struct DirectoryContent
{
    QStringList subfolders;
    QStringList archives;
    QStringList files;
    QStringList refused;
    QList<DroppedFile> dropped;
};

void sortLikeAPerson(QStringList &paths)
{
    std::sort(paths.begin(), paths.end(), [](const QString &a, const QString &b) {
        return zqCompareValues(a, b, ZQSortDescriptor::Comparison::LocalizedStandard) < 0;
    });
}

void addEntry(const QString &path, DirectoryContent &content)
{
    const QFileInfo info(path);
    if (info.isSymLink()) {
        content.dropped.append(
            {path, zqLocalized("It is a link. Import what it leads to."), DroppedFile::Telling::Quietly});
    } else if (ImportQueries::fileAtPathIsSupported(path)) {
        (ImportQueries::fileAtPathIsArchive(path) ? content.archives : content.files).append(path);
    } else if (info.isDir()) {
        content.subfolders.append(path);
    } else {
        content.refused.append(path);
    }
}

DirectoryContent contentOfDirectory(const QString &directory)
{
    DirectoryContent content;
    const std::unique_ptr<DIR, int (*)(DIR *)> stream(::opendir(QFile::encodeName(directory).constData()), ::closedir);
    if (!stream) {
        content.dropped.append(
            {directory,
             ZQError::posix(errno,
                            zqLocalized("The folder cannot be opened. Change its permissions and import it again"))
                 .localizedDescription()});
        return content;
    }
    while (const dirent *entry = ::readdir(stream.get())) {
        const QByteArray name(entry->d_name);
        if (name.startsWith('.')) {
            continue;
        }
        const QString path = directory + u'/' + QString::fromUtf8(name);
        if (QFile::encodeName(path).endsWith('/' + name)) {
            addEntry(path, content);
        } else {
            content.dropped.append({path, zqLocalized("Its name is not valid text. Rename it and import it again.")});
        }
    }
    for (QStringList *paths : {&content.subfolders, &content.archives, &content.files}) {
        sortLikeAPerson(*paths);
    }
    return content;
}

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

void ImportOperation::importStructured(ZQSidebarBaseItem &target)
{
    quint32 dropIndex = m_index == appendIndex ? quint32(target.numberofChilds()) : m_index;
    m_originalDropIndex = dropIndex;
    m_index = appendIndex;

    QStringList folders;
    QStringList archives;
    QStringList files;
    const QStringList paths = remaining(m_itemsToImport);
    for (const QString &path : paths) {
        if (!ImportQueries::fileAtPathIsSupported(path) && QFileInfo(path).isDir()) {
            folders.append(path);
            m_foldersAndArchivesPathOrdered.append(path);
        } else if (!ImportQueries::fileAtPathIsSupported(path)) {
            fileDidDrop(unsupportedFile(path));
        } else if (ImportQueries::fileAtPathIsArchive(path)) {
            archives.append(path);
            m_foldersAndArchivesPathOrdered.append(path);
        } else {
            files.append(path);
        }
    }
    m_hasArchives = !archives.isEmpty();

    QList<Group> groups;
    if (!archives.isEmpty()) {
        groups.append({.project = ZQRef<ZQSidebarBaseItem>(&target), .files = archives, .droppedFolder = {}});
        m_numberOfItemToImport += archives.size();
    }
    addLooseFiles(files, target, dropIndex, groups);
    if (!folders.isEmpty() && !isCancelled()) {
        const QStringList readable = screened(folders); // asks; what cannot be opened is told apart when it is listed
        Q_UNUSED(readable)
    }
    for (const QString &folder : folders) {
        if (isCancelled()) {
            return;
        }
        m_requestedFiles.removeAll(folder); // its files stand for it
        const QList<Group> found = projectsToImportFromDirectory(folder, &target, dropIndex);
        if (found.isEmpty()) {
            m_foldersAndArchivesPathOrdered.removeAll(folder);
            fileDidDrop(
                {folder, zqLocalized("The folder holds nothing that can be imported."), DroppedFile::Telling::Quietly});
        } else {
            ++dropIndex;
        }
        groups.append(found);
    }
    if (isCancelled() || !saveStructure() || !rememberGroups(groups)) {
        return;
    }
    importGroups(groups);
}

void ImportOperation::addLooseFiles(const QStringList &files, ZQSidebarBaseItem &target, quint32 &dropIndex,
                                    QList<Group> &groups)
{
    const QStringList valid = files.isEmpty() ? files : screened(files);
    if (valid.isEmpty() || isCancelled()) {
        return;
    }
    const auto project = newSidebarItem<ZQSidebarProject>(*m_moc, zqLocalized("New Project"));
    m_createdSidebarItems.append(project);
    target.addChild(project.get(), dropIndex++);
    groups.append({.project = project, .files = valid, .droppedFolder = {}});
    m_numberOfItemToImport += valid.size();
}

bool ImportOperation::saveStructure()
{
    ZQError error;
    if (m_moc->save(&error)) {
        return true;
    }
    logSaveError(error);
    m_moc->rollback();
    m_createdSidebarItems.clear();
    setRefusal(zqFormat(zqLocalized("The library could not be saved: %@"), {error.localizedDescription()}));
    return false;
}

void ImportOperation::dropRefused(const QStringList &refused, const QList<DroppedFile> &dropped)
{
    for (const QString &path : refused) {
        fileDidDrop(unsupportedFile(path));
    }
    for (const DroppedFile &file : dropped) {
        fileDidDrop(file);
    }
}

// For a place that takes no folders.
QStringList ImportOperation::filesBelowDirectory(const QString &directoryPath)
{
    QStringList files;
    QStringList directories{directoryPath};
    while (!directories.isEmpty() && !isCancelled()) {
        DirectoryContent content = contentOfDirectory(directories.takeFirst());
        dropRefused(content.refused, content.dropped);
        files.append(content.files + content.archives);
        directories = content.subfolders + directories;
    }
    return files;
}

// A folder with sub-folders stays one node: a sidebar folder that holds them and, for its own files, a project of the
// same name. An archive counts as a sub-folder, which it becomes when its turn comes.
QList<ImportOperation::Group> ImportOperation::projectsToImportFromDirectory(const QString &directoryPath,
                                                                             ZQSidebarBaseItem *inFolder,
                                                                             quint32 atIndex)
{
    struct Record
    {
        QString directoryPath;
        ZQRef<ZQSidebarBaseItem> father;
        bool isRoot;
    };
    QList<Group> groups;
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
        if (isCancelled()) {
            return {};
        }
        Record record = std::move(records.front());
        records.pop_front();
        DirectoryContent content = contentOfDirectory(record.directoryPath);
        dropRefused(content.refused, content.dropped);
        const QString title = titleForDirectory(record.directoryPath);
        if (!content.subfolders.isEmpty() || !content.archives.isEmpty()) {
            const ZQRef<ZQSidebarBaseItem> folder = newSidebarItem<ZQSidebarFolder>(*m_moc, title);
            addChild(record, folder);
            for (const QString &subfolder : std::as_const(content.subfolders)) {
                records.push_back({subfolder, folder, false});
            }
            record = {record.directoryPath, folder, false};
        }
        if (!content.files.isEmpty()) {
            const ZQRef<ZQSidebarBaseItem> project = newSidebarItem<ZQSidebarProject>(*m_moc, title);
            addChild(record, project);
            m_numberOfItemToImport += content.files.size();
            m_requestedFiles.append(content.files);
            groups.append({.project = project, .files = content.files, .droppedFolder = directoryPath});
        }
        if (!content.archives.isEmpty()) {
            m_numberOfItemToImport += content.archives.size();
            m_requestedFiles.append(content.archives);
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
