#include "Kit/Files/ZQSharedFile.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

bool isMarked(const QString &path)
{
    return QFileInfo(QFileInfo(path).absolutePath() + QStringLiteral("/../../") + ZQSharedFile::markName).isFile();
}

bool isShared(const struct stat &status)
{
    return S_ISREG(status.st_mode) && status.st_nlink > 1;
}

bool replaceByCopy(const QByteArray &name, ZQError *error)
{
    const QByteArray copy = zqTemporaryNameBeside(name);
    if (!zqCopyFile(QFile::decodeName(name), QFile::decodeName(copy), error)) {
        return false;
    }
    const ZQFileDescriptor file(::open(copy.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (::fdatasync(file.get()) != 0 || ::rename(copy.constData(), name.constData()) != 0) {
        zqFailWithErrno(error, name);
        ::unlink(copy.constData());
        return false;
    }
    return true;
}

bool replaceAll(const QByteArray &name, ZQError *error)
{
    struct stat status = {};
    if (::lstat(name.constData(), &status) != 0) {
        return errno == ENOENT || zqFailWithErrno(error, name);
    }
    if (!S_ISDIR(status.st_mode)) {
        return !isShared(status) || replaceByCopy(name, error);
    }
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(name.constData()), ::closedir);
    if (!folder) {
        return zqFailWithErrno(error, name);
    }
    std::vector<QByteArray> names; // before the copies come among them
    while (const dirent *const entry = ::readdir(folder.get())) {
        if (const QByteArray each(entry->d_name); each != "." && each != "..") {
            names.push_back(name + '/' + each);
        }
    }
    return std::all_of(names.begin(), names.end(), [error](const QByteArray &each) { return replaceAll(each, error); });
}

} // namespace

bool ZQSharedFile::makeOwn(const QString &path, ZQError *error)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(path);
    const bool isToReplace = ::lstat(name.constData(), &status) == 0 && isShared(status) && isMarked(path);
    return !isToReplace || replaceByCopy(name, error);
}

bool ZQSharedFile::makeAllOwn(const QString &path, ZQError *error)
{
    return !isMarked(path) || replaceAll(QFile::encodeName(path), error);
}
