#include "Classes/Import/ThumbGenerator.h"

#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQPreviewService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr QSize thumbnailBox(ThumbGenerator::thumbnailSize, ThumbGenerator::thumbnailSize);
constexpr int tooBigSide = 10000;

bool isRaw(const QString &type)
{
    return !type.isEmpty() && (ZQTypeIdentifier::conforms(type, ZQTypeIdentifier::CameraRaw) ||
                               ZQTypeIdentifier::conforms(type, ZQTypeIdentifier::AdobeRaw));
}

bool isSketch(const QString &path)
{
    return zqPathExtension(path).compare(u"sketch", Qt::CaseInsensitive) == 0;
}

bool isAcorn(const QString &type, const QString &path)
{
    return type == ZQTypeIdentifier::Acorn || zqPathExtension(path).compare(u"acorn", Qt::CaseInsensitive) == 0;
}

void logInvalid(const char *format, const QString &path)
{
    qCWarning(zqLogImport, "%s", qUtf8Printable(zqFormat(QLatin1String(format), {path})));
}

// A name as long as file names may be leaves no room for what a thumbnail's adds: its end goes, never half a character.
QString thumbName(const QString &path, const QString &dottedExtension)
{
    constexpr qsizetype longestName = 255 - 32; // files are written under a longer name first
    const QString ending = QStringLiteral("_thumb") + dottedExtension;
    QString base = zqBaseName(path);
    while (QFile::encodeName(base).size() + ending.size() > longestName) {
        base.chop(base.back().isLowSurrogate() ? 2 : 1);
    }
    return zqFormat(QStringLiteral("%@_thumb"), {base}) + dottedExtension;
}

ZQError importError(const QString &description)
{
    return ZQError::with(QStringLiteral("zelto.import"), 1, description);
}

} // namespace

bool ThumbGenerator::willUseNativeQuicklookThumbnailForURL(const QString &path)
{
    const QString type = ZQTypeIdentifier::forPath(path);
    static const QStringList native{ZQTypeIdentifier::JPEG, ZQTypeIdentifier::JPEG2000, ZQTypeIdentifier::TIFF,
                                    ZQTypeIdentifier::GIF,  ZQTypeIdentifier::PNG,      ZQTypeIdentifier::ICNS,
                                    ZQTypeIdentifier::BMP,  ZQTypeIdentifier::ICO,      ZQTypeIdentifier::PSD,
                                    ZQTypeIdentifier::TGA};
    return !type.isEmpty() && native.contains(type);
}

ZQBitmap ThumbGenerator::newThumbForImageURL(const QString &path, std::optional<ZQImageProperties> *properties,
                                             ZQError *error)
{
    const QString type = ZQTypeIdentifier::forPath(path);
    const bool isDocument = type == ZQTypeIdentifier::AI || isAcorn(type, path) || isSketch(path);
    if (isDocument && properties) {
        *properties = ZQImageSource::propertiesOfFile(path);
    }
    if (type == ZQTypeIdentifier::AI) {
        return newThumbForAIFileAtURL(path, error);
    }
    if (isRaw(type)) {
        return ZQImageSource::thumbnailOfFile(path, thumbnailSize, error, 0, properties);
    }
    if (isAcorn(type, path)) {
        return newThumbForAcornFileAtURL(path, error);
    }
    if (isSketch(path)) {
        return newThumbForSketchFileAtURL(path, error);
    }
    return ZQPreviewService::previewOfFile(path, thumbnailBox, error, 0, properties);
}

QString ThumbGenerator::writeThumb(const ZQBitmap &thumb, const QString &path, const QString &thumbDestinationPath,
                                   ZQError *error)
{
    const QString type = ZQTypeIdentifier::forPath(path);
    const bool asJPEG = type == ZQTypeIdentifier::JPEG || isRaw(type);
    const QString name = thumbName(path, asJPEG ? QStringLiteral(".jpg") : QStringLiteral(".png"));
    const QString target = QDir(thumbDestinationPath).filePath(name);
    ZQError failure;
    const bool written = asJPEG ? ZQImageDestination::writeJPEG(thumb, target, 85, &failure)
                                : ZQImageDestination::writePNG(thumb, target, &failure);
    if (!written) {
        qCWarning(zqLogImport, "%s", qUtf8Printable(failure.localizedDescription()));
        zqSetError(error, failure);
    }
    return target;
}

QString ThumbGenerator::thumbPathForImageURL(const QString &path, const QString &thumbDestinationPath,
                                             ZQBitmap *madeBitmap, ZQError *error)
{
    const ZQBitmap bitmap = newThumbForImageURL(path, nullptr, error);
    if (madeBitmap) {
        *madeBitmap = bitmap;
    }
    return bitmap.isNull() ? QString() : writeThumb(bitmap, path, thumbDestinationPath, error);
}

ZQBitmap ThumbGenerator::newThumbForAIFileAtURL(const QString &path, ZQError *error)
{
    const auto properties = ZQImageSource::propertiesOfFile(path, error);
    if (!properties) {
        logInvalid("AI %@ is not a valid image", path);
        return {};
    }
    if (properties->pixelWidth >= tooBigSide && properties->pixelHeight >= tooBigSide) {
        logInvalid("AI %@ is too big to import", path);
        zqSetError(error, importError(zqFormat(zqLocalized("AI %@ is too big to import"), {path})));
        return {};
    }
    const ZQBitmap bitmap = ZQImageSource::thumbnailOfFile(path, thumbnailSize, error);
    if (bitmap.isNull()) {
        logInvalid("AI %@ is not a valid image", path);
    }
    return bitmap;
}

ZQBitmap ThumbGenerator::newThumbForRawFileAtURL(const QString &path, ZQError *error)
{
    return ZQImageSource::thumbnailOfFile(path, thumbnailSize, error);
}

ZQBitmap ThumbGenerator::newThumbForEPSFileAtURL(const QString &path, ZQError *error)
{
    const ZQBitmap bitmap = ZQImageSource::thumbnailOfFile(path, thumbnailSize, error);
    if (bitmap.isNull()) {
        logInvalid("EPS %@ is not a valid image", path);
    }
    return bitmap;
}

ZQBitmap ThumbGenerator::newThumbForSketchFileAtURL(const QString &path, ZQError *error)
{
    return sketchBitmapImageRepAtPath(path, error).scaledToFit(thumbnailBox);
}

ZQBitmap ThumbGenerator::newThumbForAcornFileAtURL(const QString &path, ZQError *error)
{
    return grabAcornBitmapImageRepAtPath(path, error).scaledToFit(thumbnailBox);
}

ZQBitmap ThumbGenerator::sketchBitmapImageRepAtPath(const QString &path, ZQError *error)
{
    const bool isPackage = !QFileInfo(path).isFile();
    return ZQImageSource::bitmapOfFile(isPackage ? path + QStringLiteral("/QuickLook/Preview.png") : path, error);
}

QByteArray ThumbGenerator::grabAcornCompositeDataAtPath(const QString &path)
{
    ZQError error;
    const QByteArray data = ZQImageSource::embeddedPictureOfFile(path, &error);
    if (data.isEmpty()) {
        qCWarning(zqLogImport, "%s", qUtf8Printable(error.localizedDescription()));
    }
    return data;
}

ZQBitmap ThumbGenerator::grabAcornBitmapImageRepAtPath(const QString &path, ZQError *error)
{
    return ZQImageSource::bitmapOfFile(path, error);
}
