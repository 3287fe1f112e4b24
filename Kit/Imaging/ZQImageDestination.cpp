#include "Kit/Imaging/ZQImageDestination.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQImagingLibraries.h"
#include "Kit/Imaging/ZQVips.h"

#include <QFile>

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int fastCompression = 2;

enum class Bands { RGB = 3, RGBA = 4 };

// The pixels without gaps between rows. Without alpha, what shows through is white.
QByteArray packedPixels(const ZQBitmap &bitmap, Bands bands)
{
    const qsizetype width = bitmap.width();
    QByteArray packed(width * bitmap.height() * int(bands), Qt::Uninitialized);
    char *out = packed.data();
    for (int y = 0; y < bitmap.height(); ++y) {
        const uchar *row = bitmap.constScanLine(y);
        if (bands == Bands::RGBA) {
            std::memcpy(out, row, size_t(width) * 4);
            out += width * 4;
            continue;
        }
        for (const uchar *end = row + width * 4; row < end; row += 4) {
            const int alpha = row[3];
            for (int channel = 0; channel < 3; ++channel) {
                *out++ = char((row[channel] * alpha + 255 * (255 - alpha) + 127) / 255);
            }
        }
    }
    return packed;
}

ZQVipsImage vipsImageOf(const QByteArray &pixels, QSize size, Bands bands)
{
    return ZQVipsImage(vips_image_new_from_memory(pixels.constData(), size_t(pixels.size()), size.width(),
                                                  size.height(), int(bands), VIPS_FORMAT_UCHAR));
}

// Written beside its place and renamed into it, so that nobody sees half of it.
bool writeFile(const QString &path, const void *bytes, size_t size, ZQError *error)
{
    const QByteArray target = QFile::encodeName(path);
    const QByteArray temporary = zqTemporaryNameBeside(target);
    ZQFileDescriptor file(::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        return zqFailWithErrno(error, target);
    }
    if (!zqWriteAll(file.get(), static_cast<const char *>(bytes), qint64(size)) || !file.close() ||
        ::rename(temporary.constData(), target.constData()) != 0) {
        zqFailWithErrno(error, target);
        ::unlink(temporary.constData());
        return false;
    }
    return true;
}

bool refuseNull(const ZQBitmap &bitmap, const QString &path, ZQError *error)
{
    if (bitmap.isNull()) {
        zqSetError(error,
                   zqImagingError(ZQImagingErrorCode::Damaged, path, zqLocalized("There is no picture to write.")));
    }
    return bitmap.isNull();
}

// Takes the encoder's buffer.
bool finish(bool encoded, void *bytes, size_t size, const QString &path, ZQError *error)
{
    const std::unique_ptr<void, decltype(&g_free)> owned(bytes, g_free);
    if (!encoded) {
        zqLogVipsError(path);
        zqSetError(error, zqImagingError(ZQImagingErrorCode::TooBig, path, zqLocalized("It can't be encoded.")));
        return false;
    }
    return writeFile(path, bytes, size, error);
}

} // namespace

bool ZQImageDestination::writePNG(const ZQBitmap &bitmap, const QString &path, ZQError *error)
{
    zqEnterVips();
    if (refuseNull(bitmap, path, error)) {
        return false;
    }
    const Bands bands = bitmap.hasAlpha() ? Bands::RGBA : Bands::RGB;
    const QByteArray pixels = packedPixels(bitmap, bands);
    const ZQVipsImage image = vipsImageOf(pixels, bitmap.size(), bands);
    void *bytes = nullptr;
    size_t size = 0;
    const bool encoded =
        image && vips_pngsave_buffer(image.get(), &bytes, &size, "compression", fastCompression, "filter",
                                     VIPS_FOREIGN_PNG_FILTER_SUB, "strip", TRUE, nullptr) == 0;
    return finish(encoded, bytes, size, path, error);
}

bool ZQImageDestination::writeJPEG(const ZQBitmap &bitmap, const QString &path, int quality, ZQError *error)
{
    zqEnterVips();
    if (refuseNull(bitmap, path, error)) {
        return false;
    }
    const QByteArray pixels = packedPixels(bitmap, Bands::RGB);
    const ZQVipsImage image = vipsImageOf(pixels, bitmap.size(), Bands::RGB);
    void *bytes = nullptr;
    size_t size = 0;
    const bool encoded = image && vips_jpegsave_buffer(image.get(), &bytes, &size, "Q", qBound(1, quality, 100),
                                                       "strip", TRUE, nullptr) == 0;
    return finish(encoded, bytes, size, path, error);
}
