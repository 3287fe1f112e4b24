#include "Kit/Files/ZQRegularFile.h"

#include "Kit/Foundation/ZQLocalized.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

constexpr int noFile = 1;
constexpr int tooLarge = 2;

ZQError somethingElse(const QString &path)
{
    return ZQError::with(zqNoRegularFileDomain, noFile,
                         zqFormat(zqLocalized("“%@” is no file, but a folder, a pipe or a device."), {path}),
                         zqLocalized("Move it away, then try again."));
}

} // namespace

ZQFileDescriptor zqOpenRegularFile(const QString &path, int flags, ZQError *error, mode_t mode)
{
    const auto name = zqSystemPath(path, error);
    if (!name) {
        return ZQFileDescriptor();
    }
    ZQFileDescriptor file(::open(name->constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode));
    const int problem = errno;
    struct stat status = {};
    const bool isSeen = (file.isOpen() ? ::fstat(file.get(), &status) : ::stat(name->constData(), &status)) == 0;
    if (isSeen && !S_ISREG(status.st_mode)) { // a socket, and a pipe that nobody reads, cannot even be opened
        zqSetError(error, somethingElse(path));
        return ZQFileDescriptor();
    }
    if (!file.isOpen()) {
        zqSetError(error, ZQError::posix(problem, path));
    }
    return file;
}

std::optional<QByteArray> zqReadRegularFile(const QString &path, qint64 most, ZQError *error, int flags)
{
    const ZQFileDescriptor file = zqOpenRegularFile(path, O_RDONLY | flags, error);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    struct stat status = {};
    ::fstat(file.get(), &status);
    QByteArray data;
    qint64 filled = 0;
    for (qint64 room = std::max<qint64>(status.st_size, 0) + 1; filled <= most; room = filled + 65536) {
        data.resize(std::min(room, most + 1)); // it may grow while it is read
        const ssize_t count = ::read(file.get(), data.data() + filled, size_t(data.size() - filled));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            zqSetError(error, ZQError::posix(errno, path));
            return std::nullopt;
        }
        if (count == 0) {
            data.truncate(filled);
            return data;
        }
        filled += count;
    }
    zqSetError(error, ZQError::with(zqNoRegularFileDomain, tooLarge,
                                    zqFormat(zqLocalized("“%@” is larger than such a file can be."), {path}),
                                    zqLocalized("Move it away, then try again.")));
    return std::nullopt;
}
