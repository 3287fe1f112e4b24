#include "Classes/Capture/PortalPicture.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 mostBytes = qint64(1) << 30; // of the file, and of the picture

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

QImage read(QFile &file, ZQError *error)
{
    QImageReader reader(&file, "png");
    reader.setAutoDetectImageFormat(false); // the name says nothing, and the content nothing but this
    const QSize size = reader.size();
    const QImage::Format format = reader.imageFormat();
    const qint64 bytes =
        size.isValid() ? qint64(size.width()) * size.height() * QImage::toPixelFormat(format).bitsPerPixel() / 8 : 0;
    if (size.isEmpty() || format == QImage::Format_Invalid || bytes > mostBytes) {
        zqSetError(error, PortalPicture::unreadable(reader.errorString()));
        return {};
    }
    // Made here, since what a reader makes itself is limited, by one number for all readers of the process.
    QImage image(size, format);
    if (image.isNull() || !reader.read(&image)) {
        zqSetError(error, PortalPicture::unreadable(reader.errorString()));
        return {};
    }
    return image;
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
    QFile file;
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > mostBytes || !file.open(descriptor.get(), QIODevice::ReadOnly)) {
        zqSetError(error, unreadable());
        return {};
    }
    QImage image = read(file, error);
    if (!image.isNull()) {
        removeIfPassedOn(path, status);
    }
    return image;
}
