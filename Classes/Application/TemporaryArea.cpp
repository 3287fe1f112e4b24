#include "Classes/Application/TemporaryArea.h"

#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace {

const QString usualName = QStringLiteral("ZeltoTemporaryFolder");
const QString prefix = QStringLiteral("t."); // of the folders in it
constexpr mode_t ownOnly = S_IRWXU;

struct Area
{
    QString base; // the temporary directory it lies in: a test redirects that
    QString path;
    ZQFileDescriptor descriptor; // of the folder, with the lock
    QStringList made;            // by this process
};

ZQMutex areaMutex;
Area area ZQ_GUARDED_BY(areaMutex);

QString withFreshName(const QString &path, ZQError *error)
{
    QByteArray name = QFile::encodeName(path + QStringLiteral("-XXXXXX"));
    if (!::mkdtemp(name.data())) {
        zqFailWithErrno(error, name);
        return {};
    }
    return QFile::decodeName(name);
}

// Opens `path` as a folder that only this user can have put anything into; not open when it is anything else.
ZQFileDescriptor openedOwnFolder(const QByteArray &path)
{
    ZQFileDescriptor folder(::open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!folder.isOpen() || ::fstat(folder.get(), &status) != 0 || status.st_uid != ::geteuid() ||
        (status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        return ZQFileDescriptor();
    }
    if ((status.st_mode & ALLPERMS) != ownOnly && ::fchmod(folder.get(), ownOnly) != 0) {
        return ZQFileDescriptor();
    }
    return folder;
}

bool isAt(const ZQFileDescriptor &folder, const QByteArray &path)
{
    struct stat opened = {};
    struct stat named = {};
    return folder.isOpen() && ::fstat(folder.get(), &opened) == 0 && ::lstat(path.constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

// Takes the folder at `path` into use; false when it is not ours to use.
bool use(const QString &path) ZQ_REQUIRES(areaMutex)
{
    const QByteArray name = QFile::encodeName(path);
    for (int attempt = 0; attempt < 100; ++attempt) {
        ::mkdir(name.constData(), ownOnly); // or it is there
        ZQFileDescriptor folder = openedOwnFolder(name);
        if (!folder.isOpen()) {
            return false;
        }
        // Whoever removes it holds the lock alone, and has set it aside by the time this one gets it.
        if (::flock(folder.get(), LOCK_SH) == 0 && isAt(folder, name)) {
            area.path = path;
            area.descriptor = std::move(folder);
            return true;
        }
    }
    return false;
}

QString folderLocked(ZQError *error) ZQ_REQUIRES(areaMutex)
{
    const QString base = ZQPaths::temporaryDir();
    if (area.base == base && isAt(area.descriptor, QFile::encodeName(area.path))) {
        return area.path;
    }
    area = Area();
    area.base = base;
    const QString usual = base + u'/' + usualName;
    // The second name is found again by the next process of this user.
    if (use(usual) || use(usual + u'-' + QString::number(::geteuid()))) {
        return area.path;
    }
    const QString fresh = withFreshName(usual, error);
    if (fresh.isEmpty()) {
        return {};
    }
    if (!use(fresh)) {
        zqFailWithErrno(error, QFile::encodeName(fresh));
        return {};
    }
    return area.path;
}

} // namespace

QString TemporaryArea::folder(ZQError *error)
{
    const ZQLockGuard lock(areaMutex);
    return folderLocked(error);
}

QString TemporaryArea::newFolder(ZQError *error)
{
    const ZQLockGuard lock(areaMutex);
    const QString base = folderLocked(error);
    if (base.isEmpty()) {
        return {};
    }
    QByteArray name = QFile::encodeName(base + u'/' + prefix + QStringLiteral("XXXXXX"));
    if (!::mkdtemp(name.data())) {
        zqFailWithErrno(error, name);
        return {};
    }
    area.made.append(QFile::decodeName(name));
    return area.made.last();
}

bool TemporaryArea::isFolderOfOurs(const QString &path)
{
    const QFileInfo folder(path);
    const QString parent = QFileInfo(TemporaryArea::folder()).canonicalFilePath();
    return !parent.isEmpty() && folder.fileName().startsWith(prefix) && folder.isDir() && !folder.isSymLink() &&
           QFileInfo(folder.absolutePath()).canonicalFilePath() == parent;
}

QStringList TemporaryArea::takeForRemoval()
{
    const ZQLockGuard lock(areaMutex);
    const QString usual = ZQPaths::temporaryDir() + u'/' + usualName;
    struct stat status = {};
    const bool isUnused = area.base != ZQPaths::temporaryDir();
    if (isUnused && (::lstat(QFile::encodeName(usual).constData(), &status) != 0 || !use(usual))) {
        return {}; // nothing of ours is there
    }
    if (isAt(area.descriptor, QFile::encodeName(area.path)) && ::flock(area.descriptor.get(), LOCK_EX | LOCK_NB) == 0) {
        // Another process may start at any moment; it finds the usual name free, and never what is being removed.
        const QString aside = withFreshName(area.path, nullptr);
        if (!aside.isEmpty() &&
            ::rename(QFile::encodeName(area.path).constData(), QFile::encodeName(aside).constData()) == 0) {
            area = Area();
            return {aside};
        }
        if (!aside.isEmpty()) {
            ::rmdir(QFile::encodeName(aside).constData());
        }
        ::flock(area.descriptor.get(), LOCK_SH);
    }
    return std::exchange(area.made, {});
}
