#include "Kit/Imaging/ZQQuickPNG.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImagingError.h"

#include <QSaveFile>
#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <memory>

namespace {

constexpr int fastest = 1;
constexpr char filterSub = 1; // each byte less that of the pixel before it

bool showsThrough(const QImage &image)
{
    if (!image.hasAlphaChannel()) {
        return false;
    }
    for (int y = 0; y < image.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (!std::all_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) == 255; })) {
            return true;
        }
    }
    return false;
}

template <int bands>
void addRow(const QRgb *row, int width, char *out)
{
    *out++ = filterSub;
    QRgb before = 0;
    for (const QRgb *pixel = row; pixel < row + width; before = *pixel++) {
        *out++ = char(qRed(*pixel) - qRed(before));
        *out++ = char(qGreen(*pixel) - qGreen(before));
        *out++ = char(qBlue(*pixel) - qBlue(before));
        if constexpr (bands == 4) {
            *out++ = char(qAlpha(*pixel) - qAlpha(before));
        }
    }
}

QByteArray filtered(const QImage &image, bool hasAlpha)
{
    const int bands = hasAlpha ? 4 : 3;
    const qsizetype rowBytes = 1 + qsizetype(image.width()) * bands;
    QByteArray rows(rowBytes * image.height(), Qt::Uninitialized);
    for (int y = 0; y < image.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        char *const out = rows.data() + y * rowBytes;
        hasAlpha ? addRow<4>(row, image.width(), out) : addRow<3>(row, image.width(), out);
    }
    return rows;
}

QByteArray compressed(const QByteArray &bytes)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(fastest), libdeflate_free_compressor);
    if (!compressor) {
        return {};
    }
    QByteArray out(qsizetype(libdeflate_zlib_compress_bound(compressor.get(), size_t(bytes.size()))),
                   Qt::Uninitialized);
    out.truncate(qsizetype(libdeflate_zlib_compress(compressor.get(), bytes.constData(), size_t(bytes.size()),
                                                    out.data(), size_t(out.size()))));
    return out;
}

QByteArray number(quint32 value)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

void write(QSaveFile &file, const QByteArray &type, const QByteArray &data)
{
    const quint32 typeSum = libdeflate_crc32(0, type.constData(), size_t(type.size()));
    const quint32 sum = libdeflate_crc32(typeSum, data.constData(), size_t(data.size()));
    file.write(number(quint32(data.size())));
    file.write(type);
    file.write(data);
    file.write(number(sum));
}

QByteArray header(const QImage &image, bool hasAlpha)
{
    constexpr char depth = 8;
    constexpr char rgb = 2;
    constexpr char rgba = 6;
    const std::array<char, 5> kind{depth, hasAlpha ? rgba : rgb, 0, 0, 0};
    return number(quint32(image.width())) + number(quint32(image.height())) + QByteArray(kind.data(), kind.size());
}

QByteArray resolution(double pixelsAPoint)
{
    constexpr double pointsAMetre = 72 / 0.0254;
    const QByteArray pixelsAMetre = number(quint32(qRound(pixelsAPoint * pointsAMetre)));
    return pixelsAMetre + pixelsAMetre + char(1);
}

bool fail(const QString &path, const QString &reason, ZQError *error)
{
    zqSetError(error, ZQError::with(QStringLiteral("zelto.imaging"), int(ZQImagingErrorCode::ToolFailed),
                                    zqFormat(zqLocalized("The picture can't be written to “%@”."), {path}), reason));
    return false;
}

} // namespace

bool zqWriteQuickPNG(const QImage &image, const QString &path, ZQError *error)
{
    constexpr qsizetype longestChunk = 0x7fffffff;
    const QImage pixels = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const bool hasAlpha = showsThrough(pixels);
    const QByteArray data = pixels.isNull() ? QByteArray() : compressed(filtered(pixels, hasAlpha));
    if (data.isEmpty() || data.size() > longestChunk) {
        return fail(path, zqLocalized("It is empty, or too large for a PNG file."), error);
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(path, file.errorString(), error);
    }
    file.write(QByteArray::fromHex("89504e470d0a1a0a"));
    write(file, "IHDR", header(pixels, hasAlpha));
    write(file, "sRGB", QByteArray(1, '\0'));
    write(file, "pHYs", resolution(image.devicePixelRatio()));
    write(file, "IDAT", data);
    write(file, "IEND", {});
    return file.commit() || fail(path, file.errorString(), error);
}
