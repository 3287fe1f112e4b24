#include "Classes/Application/LibraryMove.h"

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Files/ZQTrash.h"
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

bool isStrictlyBelow(const QString &path, const QString &folder)
{
    return path.startsWith(folder + u'/');
}

// Whether a folder can be renamed from beside `one` to beside `other`. Not told by the device alone: two mounts of one
// file system refuse it.
bool canRename(const QString &one, const QString &other)
{
    struct stat first = {};
    struct stat second = {};
    if (::stat(QFile::encodeName(one).constData(), &first) != 0 ||
        ::stat(QFile::encodeName(other).constData(), &second) != 0 || first.st_dev != second.st_dev) {
        return false;
    }
    QByteArray probe = QFile::encodeName(one + QStringLiteral("/.zelto-probe-XXXXXX"));
    if (!::mkdtemp(probe.data())) {
        return false;
    }
    const QByteArray there = QFile::encodeName(other) + probe.mid(probe.lastIndexOf('/'));
    const bool can = ::rename(probe.constData(), there.constData()) == 0;
    ::rmdir(can ? there.constData() : probe.constData());
    return can;
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
            zqSetError(error, ZQError::with(LibraryLocation::errorDomain, LibraryMove::Cancelled,
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

bool moveByRenaming(const QString &source, const QString &destination, ZQError *error)
{
    if (!clearPlace(destination, error) || !LibraryLocation::noteMove({source, destination, {}}, error)) {
        return false;
    }
    if (!zqMoveNoReplace(source, destination, error)) {
        LibraryLocation::noteMove({});
        return false;
    }
    if (zqSyncFileSystem(destination, error) && LibraryLocation::remember(destination, error)) {
        LibraryLocation::noteMove({});
        return true;
    }
    if (zqMoveNoReplace(destination, source)) {
        LibraryLocation::noteMove({});
    } // else the note tells the next launch where it is
    return false;
}

bool copyToPlace(const QString &source, const QString &destination, const QString &folder,
                 const LibraryMove::Progress &progress, ZQError *error)
{
    const QString copy = folder + u'/' + QFileInfo(destination).fileName();
    if (!copyEntries(source, copy, progress, false, error) || !zqSyncFileSystem(copy, error) ||
        !clearPlace(destination, error) || !zqMoveNoReplace(copy, destination, error)) {
        return false;
    }
    if (zqSyncFileSystem(destination, error) && LibraryLocation::remember(destination, error)) {
        return true;
    }
    zqMoveNoReplace(destination, copy); // goes with the folder: the library is where it was
    return false;
}

bool moveByCopying(const QString &source, const QString &destination, const LibraryMove::Progress &progress,
                   ZQError *error)
{
    QByteArray folderName = QFile::encodeName(destination + QStringLiteral(".moving-XXXXXX"));
    if (!::mkdtemp(folderName.data())) {
        return zqFailWithErrno(error, folderName);
    }
    const QString folder = QFile::decodeName(folderName);
    const bool isMoved = LibraryLocation::noteMove({source, destination, folder}, error) &&
                         copyToPlace(source, destination, folder, progress, error);
    zqRemoveTree(folderName);
    if (zqSyncFileSystem(QFileInfo(destination).path())) { // else the next launch removes it
        LibraryLocation::noteMove({});
    }
    if (isMoved && LibraryLocation::isSamePlace(LibraryLocation::remembered(), destination) &&
        !LibraryLocation::isSamePlace(source, destination)) {
        zqRemoveTree(QFile::encodeName(source));
    }
    return isMoved;
}

} // namespace

ZQError LibraryMove::refusal(const QString &source, const QString &destination)
{
    const QString from = LibraryLocation::realPath(source);
    // The name itself may be a link; what counts for it is where the name is, unless it leads to the library.
    const QString to =
        LibraryLocation::realPath(QFileInfo(destination).path()) + u'/' + QFileInfo(destination).fileName();
    const auto refuse = [&](ErrorCode code, const QString &text) {
        return ZQError::with(LibraryLocation::errorDomain, code, zqFormat(text, {destination}),
                             zqLocalized("Choose another place for the library."));
    };
    if (LibraryLocation::isSamePlace(from, destination)) {
        return refuse(SamePlace, zqLocalized("The library is at “%@” already."));
    }
    if (isStrictlyBelow(to, from) || isStrictlyBelow(LibraryLocation::realPath(destination), from)) {
        return refuse(InsideLibrary, zqLocalized("“%@” is inside the library itself."));
    }
    if (isStrictlyBelow(from, LibraryLocation::realPath(destination)) || isStrictlyBelow(from, to)) {
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
    const QString from = LibraryLocation::realPath(source);
    return canRename(QFileInfo(from).path(), QFileInfo(destination).path())
               ? moveByRenaming(from, destination, error)
               : moveByCopying(from, destination, progress, error);
}

void LibraryMove::removeInterruptedCopy(const QString &bundle)
{
    static const QRegularExpression ours(QStringLiteral("/[^/]+\\.ztlibrary\\.moving-[A-Za-z0-9]{6}$"));
    const LibraryLocation::Move move = LibraryLocation::notedMove();
    const bool isFrom = LibraryLocation::isSamePlace(bundle, move.from);
    if (move.isNull() || (!isFrom && !LibraryLocation::isSamePlace(bundle, move.to))) {
        return;
    }
    if (ours.match(move.copy).hasMatch() &&
        !isStrictlyBelow(LibraryLocation::realPath(bundle), LibraryLocation::realPath(move.copy))) {
        const QByteArray name = QFile::encodeName(move.copy);
        qCInfo(zqLogApplication) << "Removing what an interrupted move left:" << move.copy;
        if (isFrom) {
            zqRemoveTree(name);
        } else {
            ::rmdir(name.constData()); // the copy has left it
        }
    }
    LibraryLocation::noteMove({});
}
