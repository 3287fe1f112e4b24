#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>

// BMP and the icon files, read by Qt's image plugins.

namespace {

constexpr int maximumIcons = 256;

ZQImageProperties propertiesOf(const QImage &image)
{
    ZQImageProperties out;
    out.pixelWidth = image.width();
    out.pixelHeight = image.height();
    out.hasAlpha = image.hasAlphaChannel();
    out.colorModel = image.isGrayscale() && !image.hasAlphaChannel() ? QStringLiteral("Gray") : QStringLiteral("RGB");
    return out;
}

std::optional<ZQImageProperties> bmpProperties(const ZQSourceFile &source, ZQError *error)
{
    QFile file;
    source.openIn(file);
    QImageReader reader(&file, "bmp");
    const QSize size = reader.size();
    if (!size.isValid()) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = size.width();
    out.pixelHeight = size.height();
    out.hasAlpha = QImage::toPixelFormat(reader.imageFormat()).alphaUsage() == QPixelFormat::UsesAlpha;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

// Whether more than half of the rows that the header promises are in the file. A compressed one is left to its reader.
bool hasMostRows(const ZQSourceFile &source, QSize size)
{
    constexpr int headerBytes = 34;
    QFile file;
    const QByteArray head = source.openIn(file) ? file.read(headerBytes) : QByteArray();
    if (head.size() < headerBytes) {
        return false;
    }
    const char *raw = head.constData();
    const bool isOld = qFromLittleEndian<quint32>(raw + 14) == 12;
    const quint32 compression = isOld ? 0 : qFromLittleEndian<quint32>(raw + 30);
    if (compression == 1 || compression == 2) {
        constexpr qint64 longestRun = 255;
        return file.size() / 2 * longestRun >= qint64(size.width()) * size.height() / 2;
    }
    const qint64 bits = qFromLittleEndian<quint16>(raw + (isOld ? 24 : 28));
    const qint64 rowBytes = (bits * size.width() + 31) / 32 * 4;
    const qint64 dataBytes = file.size() - qFromLittleEndian<quint32>(raw + 10);
    return rowBytes > 0 && dataBytes / rowBytes > size.height() / 2;
}

ZQBitmap bmpDecode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    const std::optional<ZQImageProperties> properties = bmpProperties(request.file, error);
    if (!properties || !zqCheckSize(request.file.name(), properties->pixelWidth, properties->pixelHeight,
                                    zqMaximumPixelsInMemory, error)) {
        return {};
    }
    const bool complete = hasMostRows(request.file, {properties->pixelWidth, properties->pixelHeight});
    QFile file;
    const ZQBitmap bitmap(complete && request.file.openIn(file) ? QImageReader(&file, "bmp").read() : QImage());
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

// Pictures inside icon files that are files of their own.
bool isEncodedPicture(const QByteArray &payload)
{
    return payload.startsWith("\x89PNG") || payload.startsWith(QByteArray::fromHex("0000000c6a502020"));
}

QImage iconByQt(const ZQSourceFile &source, const char *format, int index)
{
    QFile file;
    source.openIn(file);
    QImageReader reader(&file, format);
    return index == 0 || reader.jumpToImage(index) ? reader.read() : QImage();
}

QList<QImage> iconsOfICO(const ZQSourceFile &source, const QByteArray &bytes)
{
    constexpr qsizetype directory = 6;
    constexpr qsizetype entryBytes = 16;
    QList<QImage> icons;
    const int count = qMin(int(qFromLittleEndian<quint16>(bytes.constData() + 4)), maximumIcons);
    for (int i = 0; i < count && directory + (i + 1) * entryBytes <= bytes.size(); ++i) {
        const char *entry = bytes.constData() + directory + i * entryBytes;
        const QByteArray payload =
            bytes.mid(qFromLittleEndian<quint32>(entry + 12), qFromLittleEndian<quint32>(entry + 8));
        icons.append(isEncodedPicture(payload) ? zqDecodeBytes(payload, {}, std::nullopt).image()
                                               : iconByQt(source, "ico", i));
    }
    return icons;
}

QList<QImage> iconsOfICNS(const ZQSourceFile &source, const QByteArray &bytes)
{
    constexpr qsizetype headerBytes = 8;
    QList<QImage> icons;
    for (qsizetype at = headerBytes; at + headerBytes <= bytes.size() && icons.size() < maximumIcons;) {
        const qsizetype length = qFromBigEndian<quint32>(bytes.constData() + at + 4);
        const QByteArray payload = bytes.mid(at + headerBytes, length - headerBytes);
        if (length >= headerBytes && isEncodedPicture(payload)) {
            icons.append(zqDecodeBytes(payload, {}, std::nullopt).image());
        }
        at += qMax(length, headerBytes);
    }
    if (icons.isEmpty()) {
        QFile file;
        source.openIn(file);
        const int count = qMin(QImageReader(&file, "icns").imageCount(), maximumIcons);
        for (int i = 0; i < count; ++i) {
            icons.append(iconByQt(source, "icns", i));
        }
    }
    return icons;
}

// Largest first; of equal sizes the deeper comes first in such files already.
QList<QImage> iconsOfFile(const ZQSourceFile &source)
{
    constexpr qint64 maximumFileSize = qint64(64) << 20;
    QFile file;
    const QByteArray bytes = source.openIn(file) ? file.read(maximumFileSize) : QByteArray();
    QList<QImage> icons = bytes.startsWith("icns") ? iconsOfICNS(source, bytes)
                          : bytes.size() > 6       ? iconsOfICO(source, bytes)
                                                   : QList<QImage>();
    icons.removeIf([](const QImage &icon) { return icon.isNull(); });
    std::stable_sort(icons.begin(), icons.end(), [](const QImage &left, const QImage &right) {
        return qint64(left.width()) * left.height() > qint64(right.width()) * right.height();
    });
    return icons;
}

std::optional<ZQImageProperties> iconProperties(const ZQSourceFile &source, ZQError *error)
{
    const QList<QImage> icons = iconsOfFile(source);
    if (icons.isEmpty()) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    ZQImageProperties out = propertiesOf(icons.first());
    out.frameCount = int(icons.size());
    return out;
}

ZQBitmap iconDecode(const ZQDecodeRequest &request, ZQError *error)
{
    const QList<QImage> icons = iconsOfFile(request.file);
    if (icons.isEmpty()) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    if (request.frame >= icons.size()) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    const ZQBitmap bitmap(icons.at(request.frame));
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqBMPDecoder{bmpProperties, bmpDecode};
const ZQDecoder zqIconDecoder{iconProperties, iconDecode};
