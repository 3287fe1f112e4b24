#include "Kit/Imaging/ZQImageDecoding.h"

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

std::optional<ZQImageProperties> bmpProperties(const QString &path, ZQError *error)
{
    QImageReader reader(path, "bmp");
    const QSize size = reader.size();
    if (!size.isValid()) {
        zqSetError(error, zqDamagedError(path));
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
bool hasMostRows(const QString &path, QSize size)
{
    constexpr int headerBytes = 34;
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(headerBytes) : QByteArray();
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
        zqSetError(error, zqNoSuchFrameError(request.path, request.frame));
        return {};
    }
    const std::optional<ZQImageProperties> properties = bmpProperties(request.path, error);
    if (!properties ||
        !zqCheckSize(request.path, properties->pixelWidth, properties->pixelHeight, zqMaximumPixelsInMemory, error)) {
        return {};
    }
    const bool complete = hasMostRows(request.path, {properties->pixelWidth, properties->pixelHeight});
    const ZQBitmap bitmap(complete ? QImageReader(request.path, "bmp").read() : QImage());
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.path));
        return {};
    }
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

// Pictures inside icon files that are files of their own.
bool isEncodedPicture(const QByteArray &payload)
{
    return payload.startsWith("\x89PNG") || payload.startsWith(QByteArray::fromHex("0000000c6a502020"));
}

QImage iconByQt(const QString &path, const char *format, int index)
{
    QImageReader reader(path, format);
    return index == 0 || reader.jumpToImage(index) ? reader.read() : QImage();
}

QList<QImage> iconsOfICO(const QString &path, const QByteArray &bytes)
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
                                               : iconByQt(path, "ico", i));
    }
    return icons;
}

QList<QImage> iconsOfICNS(const QString &path, const QByteArray &bytes)
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
        const int count = qMin(QImageReader(path, "icns").imageCount(), maximumIcons);
        for (int i = 0; i < count; ++i) {
            icons.append(iconByQt(path, "icns", i));
        }
    }
    return icons;
}

// Largest first; of equal sizes the deeper comes first in such files already.
QList<QImage> iconsOfFile(const QString &path)
{
    constexpr qint64 maximumFileSize = qint64(64) << 20;
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.read(maximumFileSize) : QByteArray();
    QList<QImage> icons = bytes.startsWith("icns") ? iconsOfICNS(path, bytes)
                          : bytes.size() > 6       ? iconsOfICO(path, bytes)
                                                   : QList<QImage>();
    icons.removeIf([](const QImage &icon) { return icon.isNull(); });
    std::stable_sort(icons.begin(), icons.end(), [](const QImage &left, const QImage &right) {
        return qint64(left.width()) * left.height() > qint64(right.width()) * right.height();
    });
    return icons;
}

std::optional<ZQImageProperties> iconProperties(const QString &path, ZQError *error)
{
    const QList<QImage> icons = iconsOfFile(path);
    if (icons.isEmpty()) {
        zqSetError(error, zqDamagedError(path));
        return std::nullopt;
    }
    ZQImageProperties out = propertiesOf(icons.first());
    out.frameCount = int(icons.size());
    return out;
}

ZQBitmap iconDecode(const ZQDecodeRequest &request, ZQError *error)
{
    const QList<QImage> icons = iconsOfFile(request.path);
    if (icons.isEmpty()) {
        zqSetError(error, zqDamagedError(request.path));
        return {};
    }
    if (request.frame >= icons.size()) {
        zqSetError(error, zqNoSuchFrameError(request.path, request.frame));
        return {};
    }
    const ZQBitmap bitmap(icons.at(request.frame));
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqBMPDecoder{bmpProperties, bmpDecode};
const ZQDecoder zqIconDecoder{iconProperties, iconDecode};
