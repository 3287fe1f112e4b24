#include "Kit/Files/ZQCopyParts.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr int attempts = 3;

bool isUnchanged(const struct stat &before, const struct stat &after)
{
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec &&
           before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

} // namespace

bool ZQCopyParts::isStopped(const IsCancelled &isCancelled, ZQError *error)
{
    if (!isCancelled || !isCancelled()) {
        return false;
    }
    zqSetError(error, ZQError::posix(ECANCELED, zqLocalized("The copy was cancelled")));
    return true;
}

ZQFileDescriptor ZQCopyParts::openRegularFile(const QByteArray &path, LinkRule rule, struct stat *status,
                                              ZQError *error)
{
    const int flags = rule == LinkRule::Refuse ? O_NOFOLLOW : 0;
    if (fstatat(AT_FDCWD, path.constData(), status, flags ? AT_SYMLINK_NOFOLLOW : 0) != 0) {
        zqFailWithErrno(error, path);
        return ZQFileDescriptor();
    }
    if (S_ISDIR(status->st_mode)) {
        errno = EISDIR;
        zqFailWithErrno(error, path);
        return ZQFileDescriptor();
    }
    if (S_ISREG(status->st_mode)) {
        ZQFileDescriptor file(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags));
        if (!file.isOpen() || fstat(file.get(), status) != 0) {
            zqFailWithErrno(error, path);
            return ZQFileDescriptor();
        }
        if (S_ISREG(status->st_mode)) {
            posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
            return file;
        }
    }
    zqSetError(error,
               ZQError::with(ZQError::posixDomain, EINVAL,
                             zqFormat(zqLocalized("“%@” is neither a file nor a folder, so it cannot be copied."),
                                      {QFile::decodeName(path)})));
    return ZQFileDescriptor();
}

bool ZQCopyParts::isFolder(const QByteArray &path)
{
    struct stat status = {};
    return stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool ZQCopyParts::clone(int source, int target)
{
    return ioctl(target, FICLONE, source) == 0;
}

bool ZQCopyParts::readUnchanged(int source, const QByteArray &path, const std::function<std::optional<qint64>()> &pass,
                                ZQError *error)
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        struct stat before = {};
        struct stat after = {};
        if (fstat(source, &before) != 0) {
            return zqFailWithErrno(error, path);
        }
        const auto bytes = pass();
        if (!bytes) {
            return false;
        }
        if (fstat(source, &after) == 0 && isUnchanged(before, after) && *bytes == before.st_size) {
            return true;
        }
    }
    zqSetError(error,
               zqExplainedFileError(EBUSY, zqFormat(zqLocalized("“%@” changed while it was being copied. Close it in "
                                                                "other programs and try again."),
                                                    {QFile::decodeName(path)})));
    return false;
}

bool ZQCopyParts::empty(int target)
{
    return ftruncate(target, 0) == 0 && lseek(target, 0, SEEK_SET) == 0;
}

void ZQCopyParts::keepMetadata(int source, int destination)
{
    struct stat status = {};
    if (fstat(source, &status) != 0) {
        return;
    }
    zqCopyUserAttributes(source, destination); // before the mode, which may forbid it
    fchmod(destination, status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO));
    const timespec times[] = {status.st_atim, status.st_mtim};
    futimens(destination, times);
}
