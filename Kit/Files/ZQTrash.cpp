#include "Kit/Files/ZQTrash.h"

#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
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

QString mountPointOf(const QString &path, dev_t device)
{
    QString top = QDir::cleanPath(path + QStringLiteral("/.."));
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

Trash trashFor(const QString &path, dev_t device)
{
    const QString home = ZQPaths::dataHome() + QStringLiteral("/Trash");
    if (nearestStatus(home).st_dev == device) {
        return {home, {}};
    }
    return trashAt(mountPointOf(path, device));
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

QString shortened(QString name, qsizetype bytes)
{
    while (name.toUtf8().size() > bytes) {
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    }
    return name;
}

// "Cat.png", "Cat 2.png", …
QString candidateName(const QString &name, int number)
{
    if (number == 1 && name.toUtf8().size() <= longestName) {
        return name;
    }
    const QString extension = zqPathExtension(name);
    const QString ending = (number == 1 ? QString() : QStringLiteral(" %1").arg(number)) +
                           (extension.isEmpty() || extension.size() > 32 ? QString() : u'.' + extension);
    const QString stem = extension.size() > 32 ? name : zqBaseName(name);
    return shortened(stem, longestName - ending.toUtf8().size()) + ending;
}

QByteArray infoFor(const QString &path, const Trash &trash)
{
    const QString noted = trash.top.isEmpty() ? path : QDir(trash.top).relativeFilePath(path);
    return "[Trash Info]\nPath=" + QUrl::toPercentEncoding(noted, "/") +
           "\nDeletionDate=" + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() +
           "\n";
}

enum class Outcome { Done, NameTaken, Failed };

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
    ZQError problem;
    if (!zqWriteAll(file.get(), info.constData(), info.size()) || !file.close()) {
        zqFailWithErrno(&problem, note);
    } else if (zqMoveNoReplace(path, trash.folder + QStringLiteral("/files/") + name, &problem)) {
        return Outcome::Done;
    }
    unlink(note.constData());
    if (problem.code == EEXIST) {
        return Outcome::NameTaken;
    }
    zqSetError(error, problem);
    return Outcome::Failed;
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
    const Trash trash = trashFor(clean, status->st_dev);
    if (!makeFolders(trash, error)) {
        return false;
    }
    const QString base = clean.mid(clean.lastIndexOf(u'/') + 1);
    for (int number = 1; number <= mostNames; ++number) {
        const QString candidate = candidateName(base, number);
        const Outcome outcome = moveUnder(candidate, clean, trash, error);
        if (outcome == Outcome::NameTaken) {
            continue;
        }
        if (outcome == Outcome::Done && trashedPath) {
            *trashedPath = trash.folder + QStringLiteral("/files/") + candidate;
        }
        return outcome == Outcome::Done;
    }
    zqSetError(error,
               ZQError::with(ZQError::posixDomain, EEXIST,
                             zqFormat(zqLocalized("The trash holds too many files named “%@”. Empty it and try again."),
                                      {base})));
    return false;
}

bool ZQTrash::contains(const QString &path)
{
    const QString below = QDir::cleanPath(path) + u'/';
    return below.contains(QStringLiteral("/.Trash")) || below.startsWith(QStringLiteral(".Trash")) ||
           below.contains(QStringLiteral("/.local/share/Trash/")) ||
           below.startsWith(ZQPaths::dataHome() + QStringLiteral("/Trash/"));
}
