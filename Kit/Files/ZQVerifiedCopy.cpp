#include "Kit/Files/ZQVerifiedCopy.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace {

ZQTreeState::Entry entryOf(const struct stat &status)
{
    ZQTreeState::Entry entry;
    entry.type = status.st_mode & S_IFMT;
    if (!S_ISDIR(status.st_mode)) {
        entry.size = status.st_size;
        entry.modified = qint64(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    }
    return entry;
}

bool addEntries(const QByteArray &root, const QByteArray &below, ZQTreeState &state, ZQError *error)
{
    const QByteArray path = below.isEmpty() ? root : root + '/' + below;
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0) {
        return zqFailWithErrno(error, path);
    }
    state.entries.insert(below, entryOf(status));
    if (!S_ISDIR(status.st_mode)) {
        return true;
    }
    const std::unique_ptr<DIR, int (*)(DIR *)> folder(::opendir(path.constData()), ::closedir);
    if (!folder) {
        return zqFailWithErrno(error, path);
    }
    errno = 0;
    while (const dirent *const each = ::readdir(folder.get())) {
        const QByteArray name(each->d_name);
        if (name != "." && name != ".." &&
            !addEntries(root, below.isEmpty() ? name : below + '/' + name, state, error)) {
            return false;
        }
        errno = 0;
    }
    return errno == 0 || zqFailWithErrno(error, path);
}

ZQError changedError(const QString &path)
{
    return zqExplainedFileError(EBUSY, zqFormat(zqLocalized("“%@” was changed meanwhile. Try again."), {path}));
}

QString below(const QString &path, const QByteArray &entry)
{
    return entry.isEmpty() ? path : path + u'/' + QFile::decodeName(entry);
}

// `digest`: what was read of the source while it was copied; empty for a folder.
bool isAlike(const QString &source, const QString &copy, const ZQTreeState &state, const QByteArray &digest,
             ZQError *error)
{
    for (auto each = state.entries.cbegin(); each != state.entries.cend(); ++each) {
        if (each->type != S_IFREG) {
            continue;
        }
        const QByteArray from = digest.isEmpty() ? zqSHA1OfFile(below(source, each.key()), error) : digest;
        const QByteArray to = from.isEmpty() ? QByteArray() : zqSHA1OfFile(below(copy, each.key()), error);
        if (to.isEmpty()) {
            return false;
        }
        if (from != to) {
            zqSetError(error, ZQError::posix(EIO, below(copy, each.key())));
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<ZQTreeState> ZQTreeState::of(const QString &path, ZQError *error)
{
    const auto name = zqSystemPath(path, error);
    ZQTreeState state;
    return name && addEntries(*name, {}, state, error) ? std::optional(state) : std::nullopt;
}

std::optional<ZQVerifiedCopy> ZQVerifiedCopy::make(const QString &source, const QString &destination, ZQError *error,
                                                   const std::function<bool()> &isCancelled)
{
    auto before = ZQTreeState::of(source, error);
    if (!before) {
        return std::nullopt;
    }
    if (const quint32 type = before->entries.first().type; type != S_IFREG && type != S_IFDIR) {
        zqSetError(error, ZQError::with(ZQError::posixDomain, EINVAL,
                                        zqFormat(zqLocalized("“%@” is no file and no folder."), {source})));
        return std::nullopt;
    }
    const auto copied = zqCopyFile(source, destination, error, isCancelled);
    if (!copied) {
        return std::nullopt;
    }
    ZQError problem;
    if (isAlike(source, destination, *before, copied->SHA1, &problem) && ZQTreeState::of(source, &problem) != before &&
        problem.isNull()) {
        problem = changedError(source);
    }
    if (!problem.isNull()) {
        zqRemoveTree(QFile::encodeName(destination)); // it was made a moment ago, and nobody knows of it
        zqSetError(error, problem);
        return std::nullopt;
    }
    ZQVerifiedCopy copy;
    copy.m_source = source;
    copy.m_destination = destination;
    copy.m_state = std::move(*before);
    return copy;
}

bool ZQVerifiedCopy::removeSource(ZQError *error) const
{
    if (!zqSyncFileSystem(m_destination, error)) { // takes long: what others write meanwhile is to be seen
        return false;
    }
    const auto now = ZQTreeState::of(m_source, error);
    if (!now) {
        return false;
    }
    if (*now != m_state) {
        zqSetError(error, changedError(m_source));
        return false;
    }
    const QByteArray root = QFile::encodeName(m_source);
    for (auto each = m_state.entries.cend(); each != m_state.entries.cbegin();) { // what a folder holds before it
        --each;
        const QByteArray path = each.key().isEmpty() ? root : root + '/' + each.key();
        const bool isFolder = each->type == S_IFDIR;
        struct stat status = {};
        if (::lstat(path.constData(), &status) != 0) {
            return zqFailWithErrno(error, path);
        }
        if (entryOf(status) != *each) {
            zqSetError(error, changedError(QFile::decodeName(path)));
            return false;
        }
        if ((isFolder ? ::rmdir(path.constData()) : ::unlink(path.constData())) != 0 &&
            !(isFolder && errno == ENOTEMPTY)) {
            return zqFailWithErrno(error, path);
        }
    }
    return true;
}
