#include "Kit/Files/ZQFileCopy.h"

#include "Kit/Files/ZQCopyParts.h"
#include "Kit/Files/ZQDigest.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

using namespace ZQCopyParts;

namespace {

constexpr qint64 blockSize = 1 << 20;

struct Request
{
    const IsCancelled &isCancelled;
    ZQError *error;

    bool isStopped() const { return ZQCopyParts::isStopped(isCancelled, error); }
};

bool fail(ZQError *error, int code, const char *format, const QByteArray &path)
{
    zqSetError(error,
               ZQError::with(ZQError::posixDomain, code, zqFormat(zqLocalized(format), {QFile::decodeName(path)})));
    return false;
}

// Reads `source` to its end, digests it and hands each block to `write`.
template <class Write>
std::optional<ZQCopyResult> readThrough(int source, const QByteArray &path, const Request &request, Write write)
{
    thread_local const std::unique_ptr<char[]> buffer(new char[blockSize]);
    ZQDigest digest;
    ZQCopyResult result;
    for (;;) {
        if (request.isStopped()) {
            return std::nullopt;
        }
        const ssize_t size = pread(source, buffer.get(), blockSize, result.bytes);
        if (size < 0 && errno == EINTR) {
            continue;
        }
        if (size < 0) {
            zqFailWithErrno(request.error, path);
            return std::nullopt;
        }
        if (size == 0) {
            result.SHA1 = digest.hex();
            return result;
        }
        digest.add(buffer.get(), size);
        if (!write(buffer.get(), size)) {
            return std::nullopt;
        }
        result.bytes += size;
    }
}

constexpr auto writeNothing = [](const char *, qint64) { return true; };

// Reads as `readThrough` does, again when the source changed meanwhile; `prepare` is called before each pass.
template <class Prepare, class Write>
std::optional<ZQCopyResult> digestUnchanged(int source, const QByteArray &path, const Request &request, Prepare prepare,
                                            Write write)
{
    std::optional<ZQCopyResult> result;
    const auto pass = [&]() -> std::optional<qint64> {
        result = prepare() ? readThrough(source, path, request, write) : std::nullopt;
        return result ? std::optional(result->bytes) : std::nullopt;
    };
    return readUnchanged(source, path, pass, request.error) ? result : std::nullopt;
}

std::optional<ZQCopyResult> copyContent(int source, int target, const QByteArray &from, const QByteArray &to,
                                        const Request &request)
{
    if (clone(source, target)) {
        return readThrough(target, to, request, writeNothing);
    }
    return digestUnchanged(
        source, from, request, [&] { return empty(target) || zqFailWithErrno(request.error, to); },
        [&](const char *data, qint64 size) {
            return zqWriteAll(target, data, size) || zqFailWithErrno(request.error, to);
        });
}

constexpr qint64 worthBeginning = 1LL << 20; // bytes

std::optional<ZQCopyResult> copyRegularFile(const QByteArray &from, const QByteArray &to, LinkRule rule,
                                            const Request &request)
{
    struct stat status = {};
    const ZQFileDescriptor source = openRegularFile(from, rule, &status, request.error);
    if (!source.isOpen()) {
        return std::nullopt;
    }
    ZQFileDescriptor target(open(to.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!target.isOpen()) {
        zqFailWithErrno(request.error, to);
        return std::nullopt;
    }
    auto result = copyContent(source.get(), target.get(), from, to, request);
    if (result) {
        if (result->bytes >= worthBeginning) {
            // On its way while its picture is decoded, so that the flush that it needs later has less to wait for.
            sync_file_range(target.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
        }
        keepMetadata(source.get(), target.get());
        if (!target.close()) {
            zqFailWithErrno(request.error, to);
            result.reset();
        }
    }
    if (!result) {
        unlink(to.constData());
    }
    return result;
}

bool copyLink(const QByteArray &from, const QByteArray &to, const struct stat &status, ZQError *error)
{
    QByteArray target(PATH_MAX, '\0');
    const ssize_t size = readlink(from.constData(), target.data(), PATH_MAX);
    if (size < 0) {
        return zqFailWithErrno(error, from);
    }
    target.truncate(size);
    if (symlink(target.constData(), to.constData()) != 0) {
        return zqFailWithErrno(error, to);
    }
    const timespec times[] = {status.st_atim, status.st_mtim};
    utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW);
    return true;
}

bool copyEntries(const QByteArray &from, const QByteArray &to, const Request &request, qint64 *bytes);

bool copyEntry(const QByteArray &from, const QByteArray &to, const Request &request, qint64 *bytes)
{
    struct stat status = {};
    if (lstat(from.constData(), &status) != 0) {
        return zqFailWithErrno(request.error, from);
    }
    if (S_ISDIR(status.st_mode)) {
        return (mkdir(to.constData(), S_IRWXU) == 0 || zqFailWithErrno(request.error, to)) &&
               copyEntries(from, to, request, bytes);
    }
    if (S_ISLNK(status.st_mode)) {
        return copyLink(from, to, status, request.error);
    }
    const auto copied = copyRegularFile(from, to, LinkRule::Refuse, request);
    *bytes += copied ? copied->bytes : 0;
    return copied.has_value();
}

// Copies what `from` holds into the folder `to`. What is there after a failure is left for the caller to remove.
bool copyEntries(const QByteArray &from, const QByteArray &to, const Request &request, qint64 *bytes)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir(from.constData()), closedir);
    if (!folder) {
        return zqFailWithErrno(request.error, from);
    }
    while (const dirent *const entry = readdir(folder.get())) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != ".." && !copyEntry(from + '/' + name, to + '/' + name, request, bytes)) {
            return false;
        }
    }
    const ZQFileDescriptor target(open(to.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (target.isOpen()) {
        keepMetadata(dirfd(folder.get()), target.get());
    }
    return true;
}

QByteArray resolved(const QByteArray &path)
{
    const std::unique_ptr<char, void (*)(void *)> real(realpath(path.constData(), nullptr), free);
    return real ? QByteArray(real.get()) : QByteArray();
}

std::optional<ZQCopyResult> copyFolder(const QByteArray &from, const QByteArray &to, const Request &request)
{
    const QByteArray parent = resolved(to.left(std::max<qsizetype>(to.lastIndexOf('/'), 0)) + '/');
    const QByteArray source = resolved(from);
    if (!source.isEmpty() && (parent + '/').startsWith(source + '/')) {
        fail(request.error, EINVAL, zqKey("“%@” cannot be copied into itself."), from);
        return std::nullopt;
    }
    if (mkdir(to.constData(), S_IRWXU) != 0) {
        zqFailWithErrno(request.error, to);
        return std::nullopt;
    }
    ZQCopyResult result;
    if (!copyEntries(source, to, request, &result.bytes)) {
        zqRemoveTree(to);
        return std::nullopt;
    }
    return result;
}

QByteArray withoutSlashes(QByteArray path)
{
    while (path.size() > 1 && path.endsWith('/')) {
        path.chop(1);
    }
    return path;
}

} // namespace

std::optional<ZQCopyResult> zqCopyFile(const QString &source, const QString &destination, ZQError *error,
                                       const IsCancelled &isCancelled)
{
    const auto from = zqSystemPath(source, error);
    const auto to = from ? zqSystemPath(destination, error) : std::nullopt;
    if (!to) {
        return std::nullopt;
    }
    const Request request{isCancelled, error};
    return isFolder(*from) ? copyFolder(withoutSlashes(*from), withoutSlashes(*to), request)
                           : copyRegularFile(*from, *to, LinkRule::Follow, request);
}

std::optional<ZQCopyResult> zqLinkOrCopyFile(const QString &source, const QString &destination, ZQError *error,
                                             const IsCancelled &isCancelled)
{
    const auto from = zqSystemPath(source, error);
    const auto to = from ? zqSystemPath(destination, error) : std::nullopt;
    if (!to) {
        return std::nullopt;
    }
    struct stat status = {};
    if (isFolder(*from)) {
        return zqCopyFile(source, destination, error, isCancelled);
    }
    const ZQFileDescriptor file = openRegularFile(*from, LinkRule::Follow, &status, error);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    // With one more name somewhere, what is written there later would be written here.
    const bool hasOtherNames = status.st_nlink > 1;
    if (hasOtherNames || linkat(AT_FDCWD, from->constData(), AT_FDCWD, to->constData(), AT_SYMLINK_FOLLOW) != 0) {
        return zqCopyFile(source, destination, error, isCancelled);
    }
    const auto result = digestUnchanged(
        file.get(), *from, {isCancelled, error}, [] { return true; }, writeNothing);
    if (!result) {
        unlink(to->constData());
    }
    return result;
}

void zqKeepFolderMetadata(const QString &source, const QString &copy)
{
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const ZQFileDescriptor from(open(QFile::encodeName(source).constData(), flags));
    const ZQFileDescriptor to(open(QFile::encodeName(copy).constData(), flags));
    struct stat status = {};
    if (from.isOpen() && to.isOpen() && fstat(from.get(), &status) == 0) {
        keepMetadata(from.get(), to.get());
        fchmod(to.get(), (status.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO)) | S_IRWXU);
    }
}

QByteArray zqSHA1OfFile(const QString &path, ZQError *error)
{
    const auto name = zqSystemPath(path, error);
    struct stat status = {};
    const ZQFileDescriptor file = name ? openRegularFile(*name, LinkRule::Follow, &status, error) : ZQFileDescriptor();
    if (!file.isOpen()) {
        return {};
    }
    const auto result = digestUnchanged(
        file.get(), *name, {{}, error}, [] { return true; }, writeNothing);
    return result ? result->SHA1 : QByteArray();
}

namespace {

bool isSame(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// On a file system that cannot be told to replace nothing. A link refuses an existing name as well; where there are
// none, the name is taken first, by what the renaming then replaces: nobody else gets it in between.
bool moveToOwnName(const QByteArray &from, const QByteArray &to, ZQError *error)
{
    struct stat source = {};
    struct stat taken = {};
    struct stat now = {};
    if (lstat(from.constData(), &source) != 0) {
        return zqFailWithErrno(error, from);
    }
    if (link(from.constData(), to.constData()) == 0) {
        const bool isStill = lstat(from.constData(), &now) == 0 && isSame(now, source);
        return !isStill || unlink(from.constData()) == 0 || zqFailWithErrno(error, from);
    }
    const bool isFolder = S_ISDIR(source.st_mode);
    const ZQFileDescriptor file(isFolder ? -1 : open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (isFolder ? mkdir(to.constData(), S_IRWXU) != 0 : !file.isOpen()) {
        return zqFailWithErrno(error, errno == EEXIST ? to : from);
    }
    const bool isKnown = lstat(to.constData(), &taken) == 0;
    if (rename(from.constData(), to.constData()) == 0) {
        return true;
    }
    const int failure = errno;
    if (isFolder) {
        rmdir(to.constData()); // not one that holds anything
    } else if (isKnown && lstat(to.constData(), &now) == 0 && isSame(now, taken) && now.st_size == 0) {
        unlink(to.constData());
    }
    errno = failure;
    return zqFailWithErrno(error, from);
}

} // namespace

bool zqMoveNoReplace(const QString &source, const QString &destination, ZQError *error)
{
    const auto from = zqSystemPath(source, error);
    const auto to = from ? zqSystemPath(destination, error) : std::nullopt;
    if (!to) {
        return false;
    }
    if (renameat2(AT_FDCWD, from->constData(), AT_FDCWD, to->constData(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return zqFailWithErrno(error, errno == EEXIST ? *to : *from);
    }
    return moveToOwnName(*from, *to, error);
}

namespace {

void syncFolder(const QByteArray &folder)
{
    const ZQFileDescriptor directory(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen()) {
        fsync(directory.get()); // some file systems refuse it, and keep the names all the same
    }
}

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : path.left(slash + 1);
}

bool makeFolder(const QByteArray &path)
{
    if (isFolder(path)) {
        return true;
    }
    const QByteArray parent = withoutSlashes(folderOf(path));
    if (parent == path || !makeFolder(parent) ||
        (mkdir(path.constData(), S_IRWXU | S_IRWXG | S_IRWXO) != 0 && !isFolder(path))) {
        return false;
    }
    syncFolder(parent);
    return true;
}

} // namespace

bool zqMakeFolder(const QString &path)
{
    const auto name = zqSystemPath(path, nullptr);
    return name && makeFolder(withoutSlashes(*name));
}

void zqSyncFolder(const QString &folder)
{
    if (const auto name = zqSystemPath(folder, nullptr)) {
        syncFolder(*name);
    }
}

bool zqWriteFileAtomically(const QString &path, const QByteArray &data, ZQError *error)
{
    const auto name = zqSystemPath(path, error);
    if (!name) {
        return false;
    }
    const QByteArray target = resolved(*name).isEmpty() ? *name : resolved(*name); // a link stays one
    const QByteArray temporary = zqTemporaryNameBeside(target);
    struct stat status = {};
    const bool isThere = stat(target.constData(), &status) == 0;
    ZQFileDescriptor file(open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        return zqFailWithErrno(error, *name);
    }
    if (isThere) {
        fchmod(file.get(), status.st_mode & 0777);
    }
    if (!zqWriteAll(file.get(), data.constData(), data.size()) || fsync(file.get()) != 0 || !file.close() ||
        rename(temporary.constData(), target.constData()) != 0) {
        zqFailWithErrno(error, *name);
        unlink(temporary.constData());
        return false;
    }
    syncFolder(folderOf(target));
    return true;
}

bool zqSyncFileSystem(const QString &path, ZQError *error)
{
    const auto name = zqSystemPath(path, error);
    const ZQFileDescriptor file(name ? open(name->constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK) : -1);
    if (!file.isOpen() || syncfs(file.get()) != 0) {
        return name && zqFailWithErrno(error, *name);
    }
    return true;
}

std::optional<ZQFileDates> zqFileDates(const QString &path)
{
    const auto name = zqSystemPath(path, nullptr);
    struct statx status = {};
    if (!name || statx(AT_FDCWD, name->constData(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
        return std::nullopt;
    }
    const auto milliseconds = [](const statx_timestamp &time) {
        return static_cast<qint64>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
    };
    ZQFileDates dates;
    dates.modification = milliseconds(status.stx_mtime);
    dates.attributeModification = milliseconds(status.stx_ctime);
    dates.birth = status.stx_mask & STATX_BTIME ? milliseconds(status.stx_btime) : dates.modification;
    return dates;
}
