#include "Kit/Files/ZQPlainCopy.h"

#include "Kit/Files/ZQCopyParts.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQNewFile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include <cerrno>

using namespace ZQCopyParts;

namespace {

constexpr size_t blockSize = size_t(8) << 20;

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

// What can be copied of `source` from where both stand; how much that was.
std::optional<qint64> copyBlocks(int source, int target, const QByteArray &from, const QByteArray &to,
                                 const IsCancelled &isCancelled, ZQError *error)
{
    bool isWithinFileSystems = true;
    qint64 bytes = 0;
    for (;;) {
        if (isStopped(isCancelled, error)) {
            return std::nullopt;
        }
        const ssize_t size = copyBlock(source, target, &isWithinFileSystems);
        if (size < 0) {
            zqFailWithErrno(error, errno == EIO ? from : to);
            return std::nullopt;
        }
        if (size == 0) {
            return bytes;
        }
        bytes += size;
    }
}

bool copyContent(int source, int target, const QByteArray &from, const QByteArray &to, const IsCancelled &isCancelled,
                 ZQError *error)
{
    const auto pass = [&]() -> std::optional<qint64> {
        if (lseek(source, 0, SEEK_SET) != 0 || !empty(target)) {
            zqFailWithErrno(error, to);
            return std::nullopt;
        }
        return copyBlocks(source, target, from, to, isCancelled, error);
    };
    return clone(source, target) || readUnchanged(source, from, pass, error);
}

// A file without a name, which nobody sees and which goes with the process; closed, with errno, when there is none.
ZQFileDescriptor makeNameless(const QByteArray &destination)
{
    const QByteArray folder = destination.left(destination.lastIndexOf('/') + 1);
    return ZQFileDescriptor(
        open(folder.isEmpty() ? "." : folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR));
}

bool giveName(int target, const QByteArray &destination, ZQError *error)
{
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(target);
    return linkat(AT_FDCWD, link.constData(), AT_FDCWD, destination.constData(), AT_SYMLINK_FOLLOW) == 0 ||
           zqFailWithErrno(error, destination);
}

bool copyRegularFile(const QByteArray &from, const QByteArray &to, const IsCancelled &isCancelled, ZQError *error)
{
    struct stat status = {};
    const ZQFileDescriptor source = openRegularFile(from, LinkRule::Follow, &status, error);
    if (!source.isOpen()) {
        return false;
    }
    const auto fill = [&](int target) {
        const bool isDone = copyContent(source.get(), target, from, to, isCancelled, error);
        if (isDone) {
            keepMetadata(source.get(), target);
        }
        return isDone;
    };
    const ZQFileDescriptor nameless = makeNameless(to);
    if (nameless.isOpen()) {
        return fill(nameless.get()) && giveName(nameless.get(), to, error);
    }
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL && errno != ENOENT) {
        return zqFailWithErrno(error, to);
    }
    // Not every file system has files without a name. Nobody else reads this one before it has its source's mode.
    auto named = ZQNewFile::make(QFile::decodeName(to), error, S_IRUSR | S_IWUSR);
    return named && fill(named->descriptor()) && named->place(error);
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
    return isFolder(*from) ? copyFolder(*from, *to, isCancelled, error)
                           : copyRegularFile(*from, *to, isCancelled, error);
}
