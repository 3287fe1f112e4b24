#include "Classes/Capture/PendingCaptures.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdlib>

namespace {

const QString prefix = QStringLiteral("c.");

QString folderIn(const QString &bundle)
{
    return QDir::cleanPath(bundle + QStringLiteral("/pending-captures"));
}

} // namespace

QString PendingCaptures::newPath(const QString &bundle, const QString &name, ZQError *error)
{
    const QString all = folderIn(bundle);
    QByteArray folder = QFile::encodeName(all + u'/' + prefix + QStringLiteral("XXXXXX"));
    if (!zqMakeFolder(all) || !::mkdtemp(folder.data())) {
        zqFailWithErrno(error, folder);
        return {};
    }
    return QFile::decodeName(folder) + u'/' + name;
}

QStringList PendingCaptures::left(const QString &bundle)
{
    QStringList found;
    const QFileInfo all(folderIn(bundle));
    if (bundle.isEmpty() || all.isSymLink()) {
        return {};
    }
    const auto folders = QDir(all.filePath()).entryInfoList({prefix + u'*'}, QDir::Dirs | QDir::NoSymLinks, QDir::Time);
    for (const QFileInfo &folder : folders) {
        const auto pictures =
            QDir(folder.filePath())
                .entryInfoList({QStringLiteral("*.png"), QStringLiteral("*.psd")}, QDir::Files | QDir::NoSymLinks);
        for (const QFileInfo &picture : pictures) {
            found.prepend(picture.filePath());
        }
        QDir().rmdir(folder.filePath()); // only an empty one
    }
    return found;
}

void PendingCaptures::remove(const QString &bundle, const QString &path)
{
    const QFileInfo folder(QFileInfo(path).path());
    if (!bundle.isEmpty() && folder.path() == folderIn(bundle) && folder.fileName().startsWith(prefix) &&
        !folder.isSymLink()) {
        QFile::remove(path);
        QDir().rmdir(folder.filePath());
    }
}
