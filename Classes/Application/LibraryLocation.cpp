#include "Classes/Application/LibraryLocation.h"

#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>

namespace {

const QString locationKey = QStringLiteral("ZeltoLibraryLocation");
const QString moveKey = QStringLiteral("ZeltoLibraryMove");

ZQError noLibrary(const QString &text, const QString &path, const QString &suggestion)
{
    return ZQError::with(LibraryLocation::errorDomain, LibraryLocation::NoLibrary, zqFormat(text, {path}), suggestion);
}

ZQError notNamedLikeOne(const QString &path)
{
    return noLibrary(zqLocalized("“%@” is no Zelto library."), path,
                     zqLocalized("Choose a folder whose name ends in .ztlibrary."));
}

ZQError notThere(const QString &path)
{
    return noLibrary(zqLocalized("There is no library at “%@”."), path, zqLocalized("Check its name and where it is."));
}

// On the disk, or not at all: what is only in memory is forgotten by the next launch.
bool write(const QVariant &value, const QString &key, ZQError *error)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    const QVariant before = defaults.objectForKey(key);
    defaults.setObjectForKey(value, key);
    if (defaults.synchronize()) {
        return true;
    }
    defaults.setObjectForKey(before, key);
    zqSetError(error, ZQError::with(LibraryLocation::errorDomain, LibraryLocation::NotNoted,
                                    zqLocalized("The preferences can't be written, so the library would not be found."),
                                    zqLocalized("Free some space, or check the permissions of the settings.")));
    return false;
}

bool isNamedLikeOne(const QString &path)
{
    return path.endsWith(LibraryLocation::suffix, Qt::CaseInsensitive);
}

// Where the library is when a move was cut off after its renaming.
QString placeAfterMove()
{
    const LibraryLocation::Move move = LibraryLocation::notedMove();
    const bool wasRenamed = !move.isNull() && move.copy.isEmpty() && !QFileInfo::exists(move.from) &&
                            QFileInfo::exists(move.to + QStringLiteral("/storedata"));
    return wasRenamed ? move.to : QString();
}

} // namespace

ZQError LibraryLocation::refusal(const QString &path)
{
    const QFileInfo info(path);
    if (!isNamedLikeOne(path) || (info.exists() && !info.isDir())) {
        return notNamedLikeOne(path);
    }
    if (!info.exists()) {
        return notThere(path);
    }
    if (ZQTrash::contains(path) || ZQTrash::contains(realPath(path))) {
        return noLibrary(zqLocalized("The library “%@” is in the trash."), path,
                         zqLocalized("Put it back, and open it then."));
    }
    return {};
}

ZQError LibraryLocation::refusalOfNamed(const QString &path, Missing missing)
{
    const QFileInfo info(path);
    if (info.isDir()) {
        const bool isOne =
            isNamedLikeOne(QDir::cleanPath(path)) || QFileInfo::exists(path + QStringLiteral("/storedata"));
        return isOne ? ZQError() : notNamedLikeOne(path);
    }
    if (info.exists() || (missing == Missing::MayBeMade && !isNamedLikeOne(QDir::cleanPath(path)))) {
        return notNamedLikeOne(path);
    }
    return missing == Missing::MayBeMade ? ZQError() : notThere(path);
}

bool LibraryLocation::remember(const QString &path, ZQError *error)
{
    const ZQError refused = refusal(path);
    const QByteArray reference = refused.isNull() ? zqDataForPersistentURL(path) : QByteArray();
    if (reference.isEmpty()) {
        // What is remembered stays: nothing in its place would be the default library, as if this one were lost.
        zqSetError(error, refused.isNull() ? ZQError::posix(EIO, path) : refused);
        return false;
    }
    return write(reference, locationKey, error);
}

QString LibraryLocation::remembered()
{
    const QString moved = placeAfterMove();
    if (!moved.isEmpty() && remember(moved)) {
        return moved;
    }
    const QByteArray data = ZQUserDefaults::standardUserDefaults().dataForKey(locationKey);
    const QString path = data.isEmpty() ? QString() : zqFindPersistentURL(data);
    const bool isInTrash = path.contains(QStringLiteral(".Trash")) || ZQTrash::contains(path);
    return path.isEmpty() || isInTrash || !QFileInfo(path).isDir() ? QString() : path;
}

QString LibraryLocation::rememberedOrDefault()
{
    const QString path = remembered();
    return path.isEmpty() ? ZQPaths::dataHome() + QStringLiteral("/Zelto/Zelto") + suffix : path;
}

QString LibraryLocation::realPath(const QString &path)
{
    const QFileInfo info(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    const QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty()) {
        return canonical;
    }
    return info.path() == info.filePath() ? info.filePath()
                                          : QDir::cleanPath(realPath(info.path()) + u'/' + info.fileName());
}

bool LibraryLocation::isSamePlace(const QString &one, const QString &other)
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

bool LibraryLocation::noteMove(const Move &move, ZQError *error)
{
    if (move.isNull() && notedMove().isNull()) {
        return true;
    }
    return write(move.isNull() ? QVariant()
                               : QVariantMap{{QStringLiteral("from"), move.from},
                                             {QStringLiteral("to"), move.to},
                                             {QStringLiteral("copy"), move.copy}},
                 moveKey, error);
}

LibraryLocation::Move LibraryLocation::notedMove()
{
    const QVariantMap noted = ZQUserDefaults::standardUserDefaults().objectForKey(moveKey).toMap();
    return {noted.value(QStringLiteral("from")).toString(), noted.value(QStringLiteral("to")).toString(),
            noted.value(QStringLiteral("copy")).toString()};
}
