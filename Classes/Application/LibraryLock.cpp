#include "Classes/Application/LibraryLock.h"

#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQRegularFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

std::unique_ptr<LibraryLock> LibraryLock::lockBundle(const QString &bundleDirectory, ZQError *error)
{
    const QString path = bundleDirectory + QStringLiteral("/lock");
    ZQError cause;
    ZQFileDescriptor file = zqOpenRegularFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, &cause, 0644);
    if (!file.isOpen() && cause.domain == zqNoRegularFileDomain) {
        zqSetError(error, ZQError::with(errorDomain, NotWritable, cause.userInfo[ZQError::descriptionKey].toString(),
                                        zqLocalized("Move it out of the library, then try again.")));
        return nullptr;
    }
    if (!file.isOpen()) {
        zqSetError(error, ZQError::with(errorDomain, NotWritable,
                                        zqFormat(zqLocalized("The library “%@” can't be written: %@."),
                                                 {bundleDirectory, QString::fromLocal8Bit(std::strerror(cause.code))}),
                                        zqLocalized("Check its permissions, or choose another library.")));
        return nullptr;
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        zqSetError(error, ZQError::with(
                              errorDomain, InUse,
                              zqFormat(zqLocalized("The library “%@” is in use by another Zelto."), {bundleDirectory}),
                              zqLocalized("Quit the other one, or choose another library.")));
        return nullptr;
    }
    return std::unique_ptr<LibraryLock>(new LibraryLock(std::move(file)));
}

bool LibraryLock::isInUse(const QString &bundleDirectory)
{
    const QByteArray path = QFile::encodeName(bundleDirectory + QStringLiteral("/lock"));
    const ZQFileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    return ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; // no file is held by nobody
}

QString LibraryLock::socketNameForBundle(const QString &bundleDirectory)
{
    const QString canonical = QFileInfo(bundleDirectory).canonicalFilePath();
    const QByteArray digest = QCryptographicHash::hash((canonical.isEmpty() ? bundleDirectory : canonical).toUtf8(),
                                                       QCryptographicHash::Sha1);
    return ZQPaths::runtimeDir() + QStringLiteral("/zelto-") + QString::fromLatin1(digest.toHex().left(16));
}
