#include "Classes/Capture/PortalPicture.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 mostBytes = qint64(1) << 30; // of the file

// A temporary directory that somebody set to a place where people keep things is none.
bool isInTemporaryDirectory(const QString &path)
{
    const QString folder = QFileInfo(QFileInfo(path).path()).canonicalFilePath();
    const QString keeping[] = {QDir::rootPath(), QDir::homePath(),
                               QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                               QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
                               QStandardPaths::writableLocation(QStandardPaths::DownloadLocation)};
    for (const QString &place : keeping) {
        if (folder == QFileInfo(place).canonicalFilePath()) {
            return false;
        }
    }
    return !folder.isEmpty() && folder == QFileInfo(QDir::tempPath()).canonicalFilePath();
}

// `opened`: what was read.
void removeIfPassedOn(const QString &path, const struct stat &opened)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat named = {};
    if (isInTemporaryDirectory(path) && ::lstat(name.constData(), &named) == 0 && S_ISREG(named.st_mode) &&
        named.st_uid == ::geteuid() && named.st_nlink == 1 && named.st_dev == opened.st_dev &&
        named.st_ino == opened.st_ino) {
        ::unlink(name.constData());
    }
}

} // namespace

ZQError PortalPicture::unreadable(const QString &reason)
{
    return ZQError::with(QStringLiteral("ScreenCapture"), 1,
                         zqLocalized("The desktop took a picture, and it can't be read. Try again."), reason);
}

QImage PortalPicture::take(const QString &path, ZQError *error)
{
    // A pipe would wait for who writes into it.
    const ZQFileDescriptor descriptor(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > mostBytes) {
        zqSetError(error, unreadable());
        return {};
    }
    // What was opened, whatever the name leads to meanwhile.
    ZQError reason;
    const QString opened = QStringLiteral("/proc/self/fd/%1").arg(descriptor.get());
    QImage image = ZQImageSource::bitmapOfFile(opened, &reason).image();
    if (image.isNull()) {
        zqSetError(error, unreadable(reason.localizedDescription()));
    }
    if (!image.isNull()) {
        removeIfPassedOn(path, status);
    }
    return image;
}
