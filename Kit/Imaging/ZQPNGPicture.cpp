#include "Kit/Imaging/ZQPNGPicture.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QString>

#include <cerrno>
#include <sys/mman.h>

QImage zqPictureOfPNG(const QByteArray &png, ZQError *error)
{
    const ZQFileDescriptor memory(::memfd_create("picture.png", MFD_CLOEXEC));
    if (!memory.isOpen() || !zqWriteAll(memory.get(), png.constData(), png.size())) {
        zqSetError(error, ZQError::posix(errno, QStringLiteral("memory")));
        return {};
    }
    const QString path = QStringLiteral("/proc/self/fd/%1").arg(memory.get());
    return ZQImageSource::bitmapOfFile(path, error).image();
}
