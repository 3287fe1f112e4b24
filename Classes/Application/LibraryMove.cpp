#include "Classes/Application/LibraryMove.h"

#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A dictionary with "from", "to" and, while a copy is being made, "copy": the folder it is made in.
const QString intentKey = QStringLiteral("ZeltoLibraryMove");

void writeIntent(const QString &from, const QString &to, const QString &copy)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    defaults.setObjectForKey(
        QVariantMap{{QStringLiteral("from"), from}, {QStringLiteral("to"), to}, {QStringLiteral("copy"), copy}},
        intentKey);
    defaults.synchronize();
}

QVariantMap intent()
{
    return ZQUserDefaults::standardUserDefaults().objectForKey(intentKey).toMap();
}

void clearIntent()
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    if (defaults.objectForKey(intentKey).isValid()) {
        defaults.removeObjectForKey(intentKey);
        defaults.synchronize();
    }
}

bool isStrictlyBelow(const QString &path, const QString &folder)
{
    return path.startsWith(folder + u'/');
}

bool isOnOneFileSystem(const QString &one, const QString &other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(QFile::encodeName(one).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(other).constData(), &second) == 0 && first.st_dev == second.st_dev;
}

// Links are copied as links: what they lead to may be the library itself.
bool copyEntry(const QFileInfo &entry, const QString &folder, const LibraryMove::Progress &progress, ZQError *error)
{
    const QString to = folder + u'/' + entry.fileName();
    if (entry.isSymLink()) {
        const QByteArray name = QFile::encodeName(entry.filePath());
        QByteArray target(PATH_MAX, '\0');
        const ssize_t length = ::readlink(name.constData(), target.data(), std::size_t(target.size() - 1));
        target.truncate(std::max<ssize_t>(length, 0));
        return length >= 0 && ::symlink(target.constData(), QFile::encodeName(to).constData()) == 0
                   ? true
                   : zqFailWithErrno(error, name);
    }
    return zqCopyFile(entry.filePath(), to, error, progress.isCancelled).has_value();
}

QFileInfoList entriesOf(const QString &folder)
{
    return QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

bool makeFolderLike(const QString &original, const QString &copy, ZQError *error)
{
    struct stat status = {};
    const QByteArray name = QFile::encodeName(copy);
    return ::stat(QFile::encodeName(original).constData(), &status) == 0 &&
                   ::mkdir(name.constData(), status.st_mode & ALLPERMS) == 0
               ? true
               : zqFailWithErrno(error, name);
}

bool copyEntries(const QString &source, const QString &copy, const LibraryMove::Progress &progress, bool tells,
                 ZQError *error)
{
    if (!makeFolderLike(source, copy, error)) {
        return false;
    }
    const QFileInfoList entries = entriesOf(source);
    double done = 0;
    for (const QFileInfo &entry : entries) {
        if (progress.isCancelled && progress.isCancelled()) {
            zqSetError(error, ZQError::with(LibraryMove::errorDomain, LibraryMove::Cancelled,
                                            zqLocalized("The library was not moved.")));
            return false;
        }
        const bool isItems = !tells && entry.fileName() == u"Library" && entry.isDir() && !entry.isSymLink();
        const bool isCopied = isItems
                                  ? copyEntries(entry.filePath(), copy + u'/' + entry.fileName(), progress, true, error)
                                  : copyEntry(entry, copy, progress, error);
        if (!isCopied) {
            return false;
        }
        if (tells && progress.didCopy) {
            progress.didCopy(++done, double(entries.size()));
        }
    }
    return true;
}

// Nothing is removed without a way back.
bool clearPlace(const QString &destination, ZQError *error)
{
    const QFileInfo existing(destination);
    return !(existing.exists() || existing.isSymLink()) || ZQTrash::recycle(destination, nullptr, error);
}

bool giveName(const QString &from, const QString &to, ZQError *error)
{
    return zqMoveNoReplace(from, to, error) && zqSyncFileSystem(QFileInfo(to).path(), error);
}

bool moveByRenaming(const QString &source, const QString &destination, ZQError *error)
{
    if (!clearPlace(destination, error)) {
        return false;
    }
    writeIntent(source, destination, {});
    const bool isMoved =
        giveName(source, destination, error) && tamberin_AppDelegate::saveNewLibraryURL(destination, error);
    if (isMoved || QFileInfo(source).isDir()) {
        clearIntent();
    }
    return isMoved;
}

bool copyToPlace(const QString &source, const QString &destination, const QString &folder,
                 const LibraryMove::Progress &progress, ZQError *error)
{
    const QString copy = folder + u'/' + QFileInfo(destination).fileName();
    return copyEntries(source, copy, progress, false, error) && zqSyncFileSystem(copy, error) &&
           clearPlace(destination, error) && giveName(copy, destination, error) &&
           tamberin_AppDelegate::saveNewLibraryURL(destination, error);
}

bool moveByCopying(const QString &source, const QString &destination, const LibraryMove::Progress &progress,
                   ZQError *error)
{
    QByteArray folderName = QFile::encodeName(destination + QStringLiteral(".moving-XXXXXX"));
    if (!::mkdtemp(folderName.data())) {
        return zqFailWithErrno(error, folderName);
    }
    const QString folder = QFile::decodeName(folderName);
    writeIntent(source, destination, folder);
    const bool isMoved = copyToPlace(source, destination, folder, progress, error);
    zqRemoveTree(folderName);
    clearIntent();
    if (isMoved && LibraryMove::isSamePlace(tamberin_AppDelegate::loadLibraryURL(), destination) &&
        !LibraryMove::isSamePlace(source, destination)) {
        zqRemoveTree(QFile::encodeName(source));
    }
    return isMoved;
}

} // namespace

QString LibraryMove::realPath(const QString &path)
{
    const QFileInfo info(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    const QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty()) {
        return canonical;
    }
    return info.path() == info.filePath() ? info.filePath()
                                          : QDir::cleanPath(realPath(info.path()) + u'/' + info.fileName());
}

bool LibraryMove::isSamePlace(const QString &one, const QString &other)
{
    if (one.isEmpty() || other.isEmpty()) {
        return false;
    }
    struct stat first = {};
    struct stat second = {};
    if (::stat(QFile::encodeName(one).constData(), &first) == 0 &&
        ::stat(QFile::encodeName(other).constData(), &second) == 0) {
        return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    }
    return realPath(one) == realPath(other);
}

ZQError LibraryMove::refusal(const QString &source, const QString &destination)
{
    const QString from = realPath(source);
    // The name itself may be a link; what counts for it is where the name is, unless it leads to the library.
    const QString to = realPath(QFileInfo(destination).path()) + u'/' + QFileInfo(destination).fileName();
    const auto refuse = [&](ErrorCode code, const QString &text) {
        return ZQError::with(errorDomain, code, zqFormat(text, {destination}),
                             zqLocalized("Choose another place for the library."));
    };
    if (isSamePlace(from, destination)) {
        return refuse(SamePlace, zqLocalized("The library is at “%@” already."));
    }
    if (isStrictlyBelow(to, from) || isStrictlyBelow(realPath(destination), from)) {
        return refuse(InsideLibrary, zqLocalized("“%@” is inside the library itself."));
    }
    if (isStrictlyBelow(from, realPath(destination)) || isStrictlyBelow(from, to)) {
        return refuse(AroundLibrary, zqLocalized("The library is inside “%@”, which it would replace."));
    }
    if (ZQTrash::contains(to)) {
        return refuse(InTrash, zqLocalized("“%@” is in the trash."));
    }
    if (!QFileInfo(QFileInfo(destination).path()).isDir()) {
        return refuse(NoFolder, zqLocalized("The folder for “%@” does not exist."));
    }
    if (LibraryLock::isInUse(destination)) {
        return refuse(DestinationInUse, zqLocalized("“%@” is a library that another Zelto has open."));
    }
    return {};
}

bool LibraryMove::move(const QString &source, const QString &destination, const Progress &progress, ZQError *error)
{
    const ZQError refused = refusal(source, destination);
    if (!refused.isNull()) {
        zqSetError(error, refused);
        return false;
    }
    const QString from = realPath(source);
    return isOnOneFileSystem(from, QFileInfo(destination).path()) ? moveByRenaming(from, destination, error)
                                                                  : moveByCopying(from, destination, progress, error);
}

QString LibraryMove::placeAfterInterruption()
{
    const QVariantMap pending = intent();
    const QString from = pending.value(QStringLiteral("from")).toString();
    const QString to = pending.value(QStringLiteral("to")).toString();
    if (from.isEmpty() || !pending.value(QStringLiteral("copy")).toString().isEmpty() || QFileInfo::exists(from) ||
        !QFileInfo::exists(to + QStringLiteral("/storedata"))) {
        return {};
    }
    return to;
}

void LibraryMove::removeInterruptedCopy(const QString &bundle)
{
    static const QRegularExpression ours(QStringLiteral("/[^/]+\\.ztlibrary\\.moving-[A-Za-z0-9]{6}$"));
    const QVariantMap pending = intent();
    if (pending.isEmpty()) {
        return;
    }
    const QString copy = pending.value(QStringLiteral("copy")).toString();
    const QString from = pending.value(QStringLiteral("from")).toString();
    if (!copy.isEmpty() && isSamePlace(bundle, from) && ours.match(copy).hasMatch() &&
        !isStrictlyBelow(realPath(bundle), realPath(copy))) {
        qCInfo(zqLogApplication) << "Removing the half of an interrupted move:" << copy;
        zqRemoveTree(QFile::encodeName(copy));
    }
    if (isSamePlace(bundle, from) || isSamePlace(bundle, pending.value(QStringLiteral("to")).toString())) {
        clearIntent();
    }
}
