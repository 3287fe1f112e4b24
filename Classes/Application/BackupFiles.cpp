#include "Classes/Application/BackupFiles.h"

#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <cerrno>
#include <climits>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool look(const QString &path, struct stat *status)
{
    return ::lstat(QFile::encodeName(path).constData(), status) == 0;
}

qint64 nanoseconds(const timespec &time)
{
    constexpr qint64 aSecond = 1'000'000'000;
    return qint64(time.tv_sec) * aSecond + time.tv_nsec;
}

bool isSame(const struct stat &one, const struct stat &other)
{
    return S_ISREG(one.st_mode) && S_ISREG(other.st_mode) && one.st_size == other.st_size &&
           nanoseconds(one.st_mtim) == nanoseconds(other.st_mtim);
}

QMap<QString, QByteArray> attributesOf(const QString &path)
{
    QMap<QString, QByteArray> attributes;
    for (const QString &name : ZQExtendedAttributes::list(path)) {
        attributes.insert(name, ZQExtendedAttributes::get(path, name).value_or(QByteArray()));
    }
    return attributes;
}

bool haveSameContents(const QString &one, const QString &other, const BackupFiles::IsStopped &isStopped)
{
    QFile first(one);
    QFile second(other);
    if (!first.open(QIODevice::ReadOnly) || !second.open(QIODevice::ReadOnly)) {
        return false;
    }
    constexpr qint64 block = 1 << 20;
    while (!isStopped()) {
        const QByteArray read = first.read(block);
        if (read != second.read(block)) {
            return false;
        }
        if (read.isEmpty()) {
            return first.atEnd() && first.error() == QFileDevice::NoError && second.error() == QFileDevice::NoError;
        }
    }
    return false;
}

struct Entries
{
    QStringList names;
    int problem = 0; // errno: there may be more than these
};

Entries entriesOf(const QString &folder)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> open(::opendir(QFile::encodeName(folder).constData()), ::closedir);
    if (!open) {
        return {{}, errno};
    }
    Entries entries;
    for (;;) {
        errno = 0;
        const dirent *const entry = ::readdir(open.get());
        if (!entry) {
            entries.problem = errno;
            return entries;
        }
        if (const QByteArray name(entry->d_name); name != "." && name != "..") {
            entries.names.append(QFile::decodeName(name));
        }
    }
}

} // namespace

BackupFiles::BackupFiles(Places places, IsStopped isStopped)
    : m_places(std::move(places)), m_isStopped(std::move(isStopped)), m_began(QDateTime::currentDateTimeUtc())
{
}

bool BackupFiles::isInLast(const QString &path) const
{
    struct stat now = {};
    struct stat before = {};
    return !m_places.last.isEmpty() && look(m_places.library + u'/' + path, &now) &&
           look(m_places.last + u'/' + path, &before) && isSame(now, before);
}

bool BackupFiles::isSureFromDates(const QString &path) const
{
    if (!m_places.lastBegan.isValid() || m_places.lastBegan >= m_began) {
        return false; // the clock was ahead then, and what changed since may look older
    }
    struct stat status = {};
    // A file system may note times two seconds late.
    const qint64 began = m_places.lastBegan.addSecs(-2).toMSecsSinceEpoch() * 1'000'000;
    return look(m_places.library + u'/' + path, &status) && nanoseconds(status.st_ctim) < began;
}

qint64 BackupFiles::bytesToCopy(const QString &name) const
{
    qint64 bytes = 0;
    for (const QString &entry : entriesOf(m_places.library + u'/' + name).names) {
        const QString path = name + u'/' + entry;
        struct stat status = {};
        if (!look(m_places.library + u'/' + path, &status)) {
            continue;
        }
        if (S_ISDIR(status.st_mode)) {
            bytes += bytesToCopy(path);
        } else if (S_ISREG(status.st_mode) && !(m_canLink && isInLast(path))) {
            bytes += status.st_size;
        }
    }
    return bytes;
}

BackupFiles::Result BackupFiles::copyItem(const QString &name, const QHash<QString, QByteArray> &known)
{
    m_known = &known;
    Result result;
    copyFolder(name, result);
    return result;
}

void BackupFiles::copyFolder(const QString &path, Result &result)
{
    const QString source = m_places.library + u'/' + path;
    const QByteArray target = QFile::encodeName(m_places.backup + u'/' + path);
    struct stat status = {};
    const int code = !look(source, &status) ? errno : S_ISDIR(status.st_mode) ? 0 : ENOTDIR;
    if (code != 0) {
        noteUnread(path, code, result);
        return;
    }
    if (::mkdir(target.constData(), (status.st_mode & ALLPERMS) | S_IRWXU) != 0 && errno != EEXIST) {
        zqFailWithErrno(&result.error, target);
        result.outcome = Outcome::Failed;
        return;
    }
    const Entries entries = entriesOf(source);
    for (const QString &entry : entries.names) {
        copyEntry(path + u'/' + entry, result);
        if (result.outcome == Outcome::Failed) {
            return;
        }
    }
    if (entries.problem != 0) {
        noteUnread(path, entries.problem, result);
    }
    zqKeepFolderMetadata(source, m_places.backup + u'/' + path);
}

void BackupFiles::copyEntry(const QString &path, Result &result)
{
    struct stat status = {};
    struct stat there = {};
    if (!look(m_places.library + u'/' + path, &status)) {
        noteUnread(path, errno, result);
    } else if (S_ISDIR(status.st_mode)) {
        copyFolder(path, result);
    } else if (look(m_places.backup + u'/' + path, &there)) {
        return;
    } else if (S_ISLNK(status.st_mode)) {
        copyLink(path, result);
    } else if (S_ISREG(status.st_mode)) {
        copyFile(path, result);
    } else {
        result.problems.append(zqFormat(zqLocalized("%@: is no file, and is not in the backup"), {path}));
    }
}

// What is gone may have another name by now; nothing else is concluded from what cannot be read.
void BackupFiles::noteUnread(const QString &path, int code, Result &result) const
{
    if (code == ENOENT || code == ENOTDIR) {
        result.outcome = Outcome::Vanished;
        result.vanished = path;
        return;
    }
    const ZQError reading = ZQError::posix(code, m_places.library + u'/' + path);
    result.problems.append(zqFormat(zqLocalized("%@: %@"), {path, zqAdviceForFileError(reading)}));
}

bool BackupFiles::copyLink(const QString &path, Result &result) const
{
    QByteArray target(PATH_MAX, '\0');
    const ssize_t length = ::readlink(QFile::encodeName(m_places.library + u'/' + path).constData(), target.data(),
                                      std::size_t(target.size() - 1));
    target.truncate(std::max<ssize_t>(length, 0));
    const QByteArray made = QFile::encodeName(m_places.backup + u'/' + path);
    if (length < 0 || ::symlink(target.constData(), made.constData()) != 0) {
        result.problems.append(zqFormat(zqLocalized("%@: is a link, which can't be made where the backup is"), {path}));
        return false;
    }
    return true;
}

bool BackupFiles::copyFile(const QString &path, Result &result)
{
    if (m_isStopped()) {
        result.error = ZQError::posix(ECANCELED, path);
        result.outcome = Outcome::Failed;
        return false;
    }
    const QString source = m_places.library + u'/' + path;
    const QString last = m_places.last + u'/' + path;
    const bool isAsBefore = m_canLink && isInLast(path) && attributesOf(source) == attributesOf(last) &&
                            (isSureFromDates(path) || haveSameContents(source, last, m_isStopped));
    if (!isAsBefore || !linkToLast(path, result)) {
        copyNew(path, result);
    }
    return result.outcome != Outcome::Failed;
}

bool BackupFiles::linkToLast(const QString &path, Result &result)
{
    const QString last = m_places.last + u'/' + path;
    const QString target = m_places.backup + u'/' + path;
    if (::link(QFile::encodeName(last).constData(), QFile::encodeName(target).constData()) != 0) {
        // Of one file there may be as many links as it can have; the others are no fault of the file.
        m_canLink = errno == EMLINK || errno == ENOENT;
        return false;
    }
    QByteArray digest = m_known->value(path);
    if (digest.isEmpty()) {
        digest = zqSHA1OfFile(target);
    }
    result.files.append({path, digest, QFileInfo(target).size(), false});
    return true;
}

void BackupFiles::copyNew(const QString &path, Result &result)
{
    const QString source = m_places.library + u'/' + path;
    ZQError error;
    const auto copied = zqCopyFile(source, m_places.backup + u'/' + path, &error, m_isStopped);
    struct stat status = {};
    if (copied) {
        result.files.append({path, copied->SHA1, copied->bytes, true});
    } else if (m_isStopped()) {
        result.error = error;
        result.outcome = Outcome::Failed;
    } else if (!look(source, &status) && errno == ENOENT) {
        noteUnread(path, ENOENT, result);
    } else if (ZQError reading; zqSHA1OfFile(source, &reading).isEmpty()) {
        result.problems.append(zqFormat(zqLocalized("%@: %@"), {path, zqAdviceForFileError(reading)}));
    } else { // it is the other side
        result.error = ZQError::with(
            error.domain, error.code,
            zqFormat(zqLocalized("“%@” can't be written into the backup: %@"), {path, error.localizedDescription()}),
            error.code == EFBIG || error.code == EINVAL || error.code == ENAMETOOLONG
                ? zqLocalized("The disk takes no files of that size or that name, as those with the file system FAT; "
                              "choose a folder on one with ext4, Btrfs or XFS.")
                : QString());
        result.outcome = Outcome::Failed;
    }
}
