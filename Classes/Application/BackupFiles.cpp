#include "Classes/Application/BackupFiles.h"

#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <cerrno>
#include <climits>
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

QStringList entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

BackupFiles::BackupFiles(Places places, IsStopped isStopped)
    : m_places(std::move(places)), m_isStopped(std::move(isStopped))
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
    struct stat status = {};
    // A file system may note times two seconds late.
    const qint64 began = m_places.lastBegan.addSecs(-2).toMSecsSinceEpoch() * 1'000'000;
    return look(m_places.library + u'/' + path, &status) && nanoseconds(status.st_ctim) < began;
}

qint64 BackupFiles::bytesToCopy(const QString &name) const
{
    qint64 bytes = 0;
    for (const QString &entry : entriesOf(m_places.library + u'/' + name)) {
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
    if (!look(source, &status) || !S_ISDIR(status.st_mode)) {
        result.outcome = Outcome::Vanished;
        return;
    }
    if (::mkdir(target.constData(), (status.st_mode & ALLPERMS) | S_IRWXU) != 0 && errno != EEXIST) {
        zqFailWithErrno(&result.error, target);
        result.outcome = Outcome::Failed;
        return;
    }
    for (const QString &entry : entriesOf(source)) {
        if (result.outcome == Outcome::Failed) {
            return;
        }
        const QString below = path + u'/' + entry;
        struct stat there = {};
        if (!look(m_places.library + u'/' + below, &status)) {
            result.outcome = Outcome::Vanished;
        } else if (S_ISDIR(status.st_mode)) {
            copyFolder(below, result);
        } else if (look(m_places.backup + u'/' + below, &there)) {
            continue;
        } else if (S_ISLNK(status.st_mode)) {
            copyLink(below, result);
        } else if (S_ISREG(status.st_mode)) {
            copyFile(below, result);
        } else {
            result.problems.append(zqFormat(zqLocalized("%@: is no file, and is not in the backup"), {below}));
        }
    }
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
    } else if (!look(source, &status)) {
        result.outcome = Outcome::Vanished;
    } else if (ZQError reading; zqSHA1OfFile(source, &reading).isEmpty()) {
        result.problems.append(zqFormat(QStringLiteral("%@: %@"), {path, zqAdviceForFileError(reading)}));
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
