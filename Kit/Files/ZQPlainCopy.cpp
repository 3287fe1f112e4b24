#include "Kit/Files/ZQPlainCopy.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr size_t blockSize = size_t(8) << 20;

using IsCancelled = std::function<bool()>;

bool isStopped(const IsCancelled &isCancelled, ZQError *error)
{
    if (!isCancelled || !isCancelled()) {
        return false;
    }
    zqSetError(error, ZQError::posix(ECANCELED, zqLocalized("The copy was cancelled")));
    return true;
}

bool isUnchanged(const struct stat &before, const struct stat &after)
{
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec &&
           before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

bool refuse(const QByteArray &path, ZQError *error)
{
    zqSetError(error,
               ZQError::with(ZQError::posixDomain, EINVAL,
                             zqFormat(zqLocalized("“%@” is neither a file nor a folder, so it cannot be copied."),
                                      {QFile::decodeName(path)})));
    return false;
}

ZQFileDescriptor openSource(const QByteArray &path, struct stat *status, ZQError *error)
{
    ZQFileDescriptor file(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen() || fstat(file.get(), status) != 0) {
        zqFailWithErrno(error, path);
        return ZQFileDescriptor();
    }
    if (!S_ISREG(status->st_mode)) {
        refuse(path, error);
        return ZQFileDescriptor();
    }
    return file;
}

// -1 with errno; 0 at the end. Not every pair of file systems knows the first way.
ssize_t copyBlock(int source, int target, bool *isWithinFileSystems)
{
    while (*isWithinFileSystems) {
        const ssize_t size = copy_file_range(source, nullptr, target, nullptr, blockSize, 0);
        if (size >= 0 || errno == ENOSPC || errno == EDQUOT || errno == EIO) {
            if (size == 0 && lseek(source, 0, SEEK_CUR) == 0) {
                break; // files of some file systems say that they are empty
            }
            return size;
        }
        if (errno != EINTR) {
            break;
        }
    }
    *isWithinFileSystems = false;
    for (;;) {
        const ssize_t size = sendfile(target, source, nullptr, blockSize);
        if (size >= 0 || errno != EINTR) {
            return size;
        }
    }
}

bool copyContent(int source, int target, const QByteArray &from, const QByteArray &to, const IsCancelled &isCancelled,
                 ZQError *error)
{
    struct stat before = {};
    struct stat after = {};
    if (ioctl(target, FICLONE, source) == 0) {
        return true;
    }
    if (fstat(source, &before) != 0) {
        return zqFailWithErrno(error, from);
    }
    bool isWithinFileSystems = true;
    off_t bytes = 0;
    for (;;) {
        if (isStopped(isCancelled, error)) {
            return false;
        }
        const ssize_t size = copyBlock(source, target, &isWithinFileSystems);
        if (size < 0) {
            return zqFailWithErrno(error, errno == EIO ? from : to);
        }
        if (size == 0) {
            break;
        }
        bytes += size;
    }
    if (fstat(source, &after) == 0 && isUnchanged(before, after) && bytes == before.st_size) {
        return true;
    }
    zqSetError(error,
               zqExplainedFileError(EBUSY, zqFormat(zqLocalized("“%@” changed while it was being copied. Close it in "
                                                                "other programs and try again."),
                                                    {QFile::decodeName(from)})));
    return false;
}

void keepMetadata(int source, int target)
{
    struct stat status = {};
    if (fstat(source, &status) != 0) {
        return;
    }
    zqCopyUserAttributes(source, target); // before the mode, which may forbid it
    fchmod(target, status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO));
    const timespec times[] = {status.st_atim, status.st_mtim};
    futimens(target, times);
}

// A file without a name, which nobody sees and which goes with the process. `temporary` is its name where the file
// system has no such files.
ZQFileDescriptor makeTarget(const QByteArray &destination, QByteArray *temporary, ZQError *error)
{
    const QByteArray folder = destination.left(destination.lastIndexOf('/') + 1);
    ZQFileDescriptor file(
        open(folder.isEmpty() ? "." : folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen() && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOENT)) {
        *temporary = zqTemporaryNameBeside(destination);
        file = ZQFileDescriptor(open(temporary->constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
        if (!file.isOpen()) {
            temporary->clear();
        }
    }
    if (!file.isOpen()) {
        zqFailWithErrno(error, destination);
    }
    return file;
}

bool giveName(ZQFileDescriptor &target, const QByteArray &temporary, const QByteArray &destination, ZQError *error)
{
    if (!temporary.isEmpty()) {
        return (target.close() || zqFailWithErrno(error, destination)) &&
               zqMoveNoReplace(QFile::decodeName(temporary), QFile::decodeName(destination), error);
    }
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(target.get());
    return linkat(AT_FDCWD, link.constData(), AT_FDCWD, destination.constData(), AT_SYMLINK_FOLLOW) == 0 ||
           zqFailWithErrno(error, destination);
}

bool copyRegularFile(const QByteArray &from, const QByteArray &to, const IsCancelled &isCancelled, ZQError *error)
{
    struct stat status = {};
    const ZQFileDescriptor source = openSource(from, &status, error);
    if (!source.isOpen()) {
        return false;
    }
    QByteArray temporary;
    ZQFileDescriptor target = makeTarget(to, &temporary, error);
    if (!target.isOpen()) {
        return false;
    }
    bool isDone = copyContent(source.get(), target.get(), from, to, isCancelled, error);
    if (isDone) {
        keepMetadata(source.get(), target.get());
        isDone = giveName(target, temporary, to, error);
    }
    if (!isDone && !temporary.isEmpty()) {
        unlink(temporary.constData());
    }
    return isDone;
}

bool copyFolder(const QByteArray &from, const QByteArray &to, const IsCancelled &isCancelled, ZQError *error)
{
    struct stat status = {};
    if (lstat(to.constData(), &status) == 0) {
        errno = EEXIST;
        return zqFailWithErrno(error, to);
    }
    const QString temporary = QFile::decodeName(zqTemporaryNameBeside(to));
    if (!zqCopyFile(QFile::decodeName(from), temporary, error, isCancelled)) {
        return false;
    }
    if (zqMoveNoReplace(temporary, QFile::decodeName(to), error)) {
        return true;
    }
    zqRemoveTree(QFile::encodeName(temporary));
    return false;
}

} // namespace

bool zqCopyPlainly(const QString &source, const QString &destination, ZQError *error, const IsCancelled &isCancelled)
{
    const auto from = zqSystemPath(source, error);
    const auto to = from ? zqSystemPath(destination, error) : std::nullopt;
    if (!to || isStopped(isCancelled, error)) {
        return false;
    }
    struct stat status = {};
    if (stat(from->constData(), &status) != 0) {
        return zqFailWithErrno(error, *from);
    }
    if (S_ISDIR(status.st_mode)) {
        return copyFolder(*from, *to, isCancelled, error);
    }
    // Before it is opened: a pipe could make that wait, and a device could act.
    return S_ISREG(status.st_mode) ? copyRegularFile(*from, *to, isCancelled, error) : refuse(*from, error);
}
