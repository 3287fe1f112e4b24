#include "Classes/LiveFolders/LiveFolderPlaces.h"

#include "Classes/LiveFolders/LiveFolderNames.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

bool isInside(const QString &path, const QString &folder)
{
    return !folder.isEmpty() && (path + u'/').startsWith(folder + u'/');
}

QString canonical(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

} // namespace

QString LiveFolderPlaces::refusal(const QString &path, const QString &libraryBundle)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        return zqLocalized("There is no such folder. Check its name.");
    }
    if (!info.isDir()) {
        return zqLocalized("It is no folder. Add the folder it is in.");
    }
    if (!info.isReadable() || !info.isExecutable()) {
        return zqLocalized("It cannot be read. Allow reading it, then add it again.");
    }
    const QString real = canonical(path);
    const QString bundle = canonical(libraryBundle);
    if (isInside(real, bundle)) {
        return zqLocalized("It is a part of the library itself. Add a folder outside of it.");
    }
    if (isInside(bundle, real) && !bundle.endsWith(QStringLiteral(".ztlibrary"), Qt::CaseInsensitive)) {
        return zqLocalized("It holds the library itself. Add the folders beside the library instead.");
    }
    if (ZQTrash::contains(real) || ZQTrash::contains(path)) {
        return zqLocalized("It is in the trash. Restore it first.");
    }
    if (QDir(real).isRoot()) {
        return zqLocalized("It holds everything of this computer. Add the folders with your pictures instead.");
    }
    static const QStringList ofSystem{QStringLiteral("/proc"), QStringLiteral("/sys"), QStringLiteral("/dev"),
                                      QStringLiteral("/run")};
    for (const QString &folder : ofSystem) {
        const bool isMedia =
            real.startsWith(QStringLiteral("/run/media/")) || real.startsWith(QStringLiteral("/run/user/"));
        if (isInside(real, folder) && !isMedia && !real.startsWith(QStringLiteral("/dev/shm/"))) {
            return zqLocalized("It belongs to the system. Add the folders with your pictures instead.");
        }
    }
    if (real == canonical(QDir::homePath())) {
        return zqLocalized("It is your whole home folder, with what programs keep there. Add the folders with your "
                           "pictures instead.");
    }
    const QByteArray name = QFile::encodeName(info.fileName());
    if (LiveFolderNames::kindOfDirectory({name.constData(), std::size_t(name.size())}) != EntryKind::Folder) {
        return zqLocalized("It counts as one document. Import it, or add the folder it is in.");
    }
    return {};
}

std::optional<ZQObjectID> LiveFolderPlaces::folderThatShows(const QString &path, ZQManagedObjectContext &context)
{
    const QString real = canonical(path);
    const auto roots = ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(context);
    for (const ZQRef<ZQSidebarWatchedFolder> &root : roots.value_or(QList<ZQRef<ZQSidebarWatchedFolder>>())) {
        if (root->folderPath() == path || canonical(root->folderPath()) == real) {
            return root->objectID();
        }
        if (!isInside(real, canonical(root->folderPath())) && !isInside(path, root->folderPath())) {
            continue;
        }
        for (const ZQRef<ZQSidebarWatchedFolder> &folder : root->orderedChildrenAndSubChildren()) {
            if (folder->folderPath() == path || canonical(folder->folderPath()) == real) {
                return folder->objectID();
            }
        }
    }
    return std::nullopt;
}
