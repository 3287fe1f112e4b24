#include "Kit/Imaging/ZQImageDecoding.h"

#include "Kit/Imaging/ZQImageFormat.h"

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

// Largest first; of equal sizes the deeper comes first in such files already.
QList<QImage> iconsOfFile(const QString &path)
{
    QList<QImage> icons;
    const char *const format = zqImageFormatOfFile(path) == ZQImageFormat::ICNS ? "icns" : "ico";
    QImageReader counter(path, format);
    const int count = qMin(counter.imageCount(), maximumIcons);
    for (int i = 0; i < count; ++i) {
        QImageReader reader(path, format);
        if (i > 0 && !reader.jumpToImage(i)) {
            continue;
        }
        const QImage icon = reader.read();
        if (!icon.isNull()) {
            icons.append(icon);
        }
    }
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
