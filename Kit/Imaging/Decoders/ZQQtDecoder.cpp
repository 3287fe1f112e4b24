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
    if (size.width() < 1) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = size.width();
    out.pixelHeight = qAbs(size.height()); // below zero when the rows come from the top
    out.hasAlpha = QImage::toPixelFormat(reader.imageFormat()).alphaUsage() == QPixelFormat::UsesAlpha;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

// What the header of a BMP says of where its rows lie.
struct BMPLayout
{
    qint64 height = 0;
    qint64 width = 0;
    qint64 dataStart = 0;
    qint64 rowBytes = 0;
    bool fromTop = false;
    bool isRunLength = false;
    bool hasHalfBytes = false; // runs of pixels of four bits
};

std::optional<BMPLayout> bmpLayout(QFile &file, QSize size)
{
    constexpr int headerBytes = 34;
    const QByteArray head = file.read(headerBytes);
    if (head.size() < headerBytes) {
        return std::nullopt;
    }
    const char *raw = head.constData();
    const bool isOld = qFromLittleEndian<quint32>(raw + 14) == 12;
    const quint32 compression = isOld ? 0 : qFromLittleEndian<quint32>(raw + 30);
    const qint64 bits = qFromLittleEndian<quint16>(raw + (isOld ? 24 : 28));
    BMPLayout out;
    out.width = size.width();
    out.height = size.height();
    out.dataStart = qFromLittleEndian<quint32>(raw + 10);
    out.rowBytes = (bits * size.width() + 31) / 32 * 4;
    out.fromTop = !isOld && qFromLittleEndian<qint32>(raw + 22) < 0;
    out.isRunLength = compression == 1 || compression == 2;
    out.hasHalfBytes = compression == 2;
    return out;
}

// How many rows a run-length coded picture has before its data ends; all of them when it says that it is at its end.
qint64 rowsOfRuns(const QByteArray &data, const BMPLayout &layout)
{
    qint64 row = 0;
    for (qsizetype at = 0; at + 1 < data.size() && row < layout.height;) {
        const int count = uchar(data.at(at));
        const int code = uchar(data.at(at + 1));
        at += 2;
        if (count > 0) {
            continue;
        }
        if (code == 1) {
            return layout.height;
        }
        if (code == 0) {
            ++row;
        } else if (code == 2) {
            row += at + 1 < data.size() ? uchar(data.at(at + 1)) : 0;
            at += 2;
        } else {
            const int bytes = layout.hasHalfBytes ? (code + 1) / 2 : code;
            at += bytes + bytes % 2;
        }
    }
    return qMin(row, layout.height);
}

// How many rows are in the file.
qint64 presentRows(QFile &file, const BMPLayout &layout)
{
    if (layout.isRunLength) {
        return file.seek(layout.dataStart) ? rowsOfRuns(file.readAll(), layout) : 0;
    }
    const qint64 bytes = qMax<qint64>(0, file.size() - layout.dataStart);
    return layout.rowBytes > 0 ? qMin(bytes / layout.rowBytes, layout.height) : 0;
}

// The reader leaves what is not there as it finds it.
void clearMissingRows(QImage &image, qint64 present, bool fromTop)
{
    image.convertTo(QImage::Format_RGBA8888);
    for (qint64 row = present; row < image.height(); ++row) {
        uchar *line = image.scanLine(int(fromTop ? row : image.height() - 1 - row));
        std::fill(line, line + image.bytesPerLine(), uchar(0));
    }
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
    QFile file;
    const auto layout =
        request.file.openIn(file) ? bmpLayout(file, {properties->pixelWidth, properties->pixelHeight}) : std::nullopt;
    const qint64 rows = layout ? presentRows(file, *layout) : 0;
    const bool isPart = layout && zqIsPartOfPicture(rows, layout->height) && file.seek(0);
    QImage image = isPart ? QImageReader(&file, "bmp").read() : QImage();
    if (image.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    const bool isIncomplete = rows < layout->height;
    if (isIncomplete) {
        clearMissingRows(image, rows, layout->fromTop);
    }
    ZQBitmap bitmap(image);
    bitmap.setIncomplete(isIncomplete);
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

// Whether the file ends before what it says that it holds does.
bool endsEarly(const QByteArray &bytes)
{
    constexpr qsizetype directory = 6;
    constexpr qsizetype entryBytes = 16;
    if (bytes.startsWith("icns")) {
        return bytes.size() < 8 || qFromBigEndian<quint32>(bytes.constData() + 4) > bytes.size();
    }
    const int count = bytes.size() > directory ? qFromLittleEndian<quint16>(bytes.constData() + 4) : 0;
    for (int i = 0; i < qMin(count, maximumIcons); ++i) {
        const qsizetype at = directory + i * entryBytes;
        if (at + entryBytes > bytes.size() || qint64(qFromLittleEndian<quint32>(bytes.constData() + at + 8)) +
                                                      qFromLittleEndian<quint32>(bytes.constData() + at + 12) >
                                                  bytes.size()) {
            return true;
        }
    }
    return false;
}

struct Icons
{
    QList<QImage> images; // largest first; of equal sizes the deeper comes first in such files already
    bool isIncomplete = false;
};

Icons iconsOfFile(const ZQSourceFile &source)
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
    return {icons, bytes.size() < maximumFileSize && endsEarly(bytes)};
}

std::optional<ZQImageProperties> iconProperties(const ZQSourceFile &source, ZQError *error)
{
    const QList<QImage> icons = iconsOfFile(source).images;
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
    const auto [icons, isIncomplete] = iconsOfFile(request.file);
    if (icons.isEmpty()) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    if (request.frame >= icons.size()) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    ZQBitmap bitmap(icons.at(request.frame));
    bitmap.setIncomplete(isIncomplete);
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqBMPDecoder{bmpProperties, bmpDecode};
const ZQDecoder zqIconDecoder{iconProperties, iconDecode};
