#include "Kit/Files/ZQTrash.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQVerifiedCopy.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr qsizetype longestName = 255 - 10; // bytes, with ".trashinfo" behind
constexpr int mostNames = 10000;

struct Trash
{
    QString folder;
    QString top; // the mount point paths are noted relative to; empty for the trash at home
};

std::optional<struct stat> statusOf(const QString &path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

// The status of the nearest folder on the way to `path` that is there.
struct stat nearestStatus(QString path)
{
    struct stat status = {};
    while (stat(QFile::encodeName(path).constData(), &status) != 0 && path != u"/") {
        path = QDir::cleanPath(path + QStringLiteral("/.."));
    }
    return status;
}

// The same file by a path without links on the way to it; it may be one itself.
QString resolved(const QString &path)
{
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return folder.isEmpty() ? path : QDir::cleanPath(folder + u'/' + info.fileName());
}

QString mountPointOf(const QString &path, dev_t device)
{
    QString top = QDir::cleanPath(resolved(path) + QStringLiteral("/.."));
    while (top != u"/") {
        const QString above = QDir::cleanPath(top + QStringLiteral("/.."));
        const auto status = statusOf(above);
        if (!status || status->st_dev != device) {
            break;
        }
        top = above;
    }
    return top;
}

// A trash folder of another user's making is not used: only a real folder, and the shared one only with its sticky bit.
Trash trashAt(const QString &top)
{
    const QString user = QString::number(getuid());
    const auto shared = statusOf(top + QStringLiteral("/.Trash"));
    if (shared && S_ISDIR(shared->st_mode) && (shared->st_mode & S_ISVTX)) {
        return {top + QStringLiteral("/.Trash/") + user, top};
    }
    return {top + QStringLiteral("/.Trash-") + user, top};
}

Trash homeTrash()
{
    return {ZQPaths::dataHome() + QStringLiteral("/Trash"), {}};
}

Trash trashFor(const QString &path, dev_t device)
{
    const Trash home = homeTrash();
    return nearestStatus(home.folder).st_dev == device ? home : trashAt(mountPointOf(path, device));
}

bool makeFolders(const Trash &trash, ZQError *error)
{
    QDir().mkpath(QDir::cleanPath(trash.folder + QStringLiteral("/..")));
    for (const char *const part : {"", "/files", "/info"}) {
        const QByteArray name = QFile::encodeName(trash.folder) + part;
        struct stat status = {};
        if (mkdir(name.constData(), S_IRWXU) != 0 && errno != EEXIST) {
            return zqFailWithErrno(error, name);
        }
        if (lstat(name.constData(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != getuid()) {
            errno = EACCES;
            return zqFailWithErrno(error, name);
        }
    }
    return true;
}

QByteArray infoFor(const QString &path, const Trash &trash)
{
    const QString noted = trash.top.isEmpty() ? path : QDir(trash.top).relativeFilePath(resolved(path));
    return "[Trash Info]\nPath=" + QUrl::toPercentEncoding(noted, "/") +
           "\nDeletionDate=" + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() +
           "\n";
}

enum class Outcome { Done, NameTaken, Failed };

// Where a trash is on another file system, or behind another mount of the same one.
bool moveByCopying(const QString &path, const QString &destination, ZQError *error)
{
    const QByteArray folder = QFile::encodeName(QDir::cleanPath(path + QStringLiteral("/..")));
    if (access(folder.constData(), W_OK) != 0) {
        return zqFailWithErrno(error, folder); // before anything is copied for nothing
    }
    const auto copy = ZQVerifiedCopy::make(path, destination, error);
    if (!copy) {
        return false;
    }
    if (!copy->removeSource(error)) {
        // Not for a folder of which a part is gone from its place.
        if (ZQTreeState::of(path) == copy->state()) {
            zqRemoveTree(QFile::encodeName(destination));
        }
        return false;
    }
    return true;
}

bool moveInto(const QString &path, const QString &destination, ZQError *error)
{
    ZQError problem;
    if (zqMoveNoReplace(path, destination, &problem)) {
        return true;
    }
    if (problem.code == EXDEV) {
        return moveByCopying(path, destination, error);
    }
    zqSetError(error, problem);
    return false;
}

// The note comes first, under a name nobody else has, so that no file is ever in the trash without one.
Outcome moveUnder(const QString &name, const QString &path, const Trash &trash, ZQError *error)
{
    const QByteArray note =
        QFile::encodeName(trash.folder + QStringLiteral("/info/") + name + QStringLiteral(".trashinfo"));
    ZQFileDescriptor file(open(note.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen()) {
        return errno == EEXIST ? Outcome::NameTaken : (zqFailWithErrno(error, note), Outcome::Failed);
    }
    const QByteArray info = infoFor(path, trash);
    const QString destination = trash.folder + QStringLiteral("/files/") + name;
    ZQError problem;
    if (!zqWriteAll(file.get(), info.constData(), info.size()) || !file.close()) {
        zqFailWithErrno(&problem, note);
    } else if (moveInto(path, destination, &problem)) {
        return Outcome::Done;
    }
    if (problem.code == EEXIST) {
        unlink(note.constData());
        return Outcome::NameTaken;
    }
    if (!statusOf(destination)) {
        unlink(note.constData());
    }
    zqSetError(error, problem);
    return Outcome::Failed;
}

bool moveToTrash(const QString &path, const Trash &trash, QString *trashedPath, ZQError *error)
{
    if (!makeFolders(trash, error)) {
        return false;
    }
    const QString base = path.mid(path.lastIndexOf(u'/') + 1);
    for (int number = 1; number <= mostNames; ++number) {
        const QString candidate = zqNumberedName(base, number == 1 ? 0 : number, longestName);
        const Outcome outcome = moveUnder(candidate, path, trash, error);
        if (outcome == Outcome::NameTaken) {
            continue;
        }
        if (outcome == Outcome::Done && trashedPath) {
            *trashedPath = trash.folder + QStringLiteral("/files/") + candidate;
        }
        return outcome == Outcome::Done;
    }
    zqSetError(error,
               zqExplainedFileError(
                   EEXIST, zqFormat(zqLocalized("The trash holds too many files named “%@”. Empty it and try again."),
                                    {base})));
    return false;
}

// A disk may give its user no place for a trash, which is no reason to keep what they delete.
bool isWithoutTrash(const Trash &trash, const ZQError &error)
{
    return !trash.top.isEmpty() && error.domain == ZQError::posixDomain &&
           (error.code == EACCES || error.code == EPERM || error.code == EROFS);
}

} // namespace

bool ZQTrash::recycle(const QString &path, QString *trashedPath, ZQError *error)
{
    const auto name = zqSystemPath(path, error);
    if (!name) {
        return false;
    }
    const QString clean = QDir::cleanPath(QDir::current().absoluteFilePath(path));
    const auto status = statusOf(clean);
    if (!status) {
        return zqFailWithErrno(error, *name);
    }
    const ZQOwnChange own(clean);
    const Trash trash = trashFor(clean, status->st_dev);
    ZQError problem;
    bool isDone = moveToTrash(clean, trash, trashedPath, &problem);
    if (!isDone && isWithoutTrash(trash, problem)) {
        isDone = moveToTrash(clean, homeTrash(), trashedPath, &problem);
    }
    if (!isDone) {
        zqSetError(error, problem);
    }
    return isDone;
}

void ZQTrash::didTakeOut(const QString &trashedPath)
{
    const QFileInfo file(trashedPath);
    const QDir files = file.dir();
    if (!contains(trashedPath) || files.dirName() != u"files" || statusOf(trashedPath)) {
        return;
    }
    const QString note = files.path() + QStringLiteral("/../info/") + file.fileName() + QStringLiteral(".trashinfo");
    unlink(QFile::encodeName(note).constData());
}

bool ZQTrash::contains(const QString &path)
{
    const QString below = QDir::cleanPath(path) + u'/';
    return below.contains(QStringLiteral("/.Trash")) || below.startsWith(QStringLiteral(".Trash")) ||
           below.contains(QStringLiteral("/.local/share/Trash/")) ||
           below.startsWith(ZQPaths::dataHome() + QStringLiteral("/Trash/"));
}
