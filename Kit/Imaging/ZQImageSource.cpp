#include "Kit/Imaging/ZQImageSource.h"

#include "Kit/Imaging/ZQImagingLibraries.h"
#include "Kit/Imaging/ZQRenderPool.h"

std::optional<ZQImageProperties> ZQImageSource::propertiesOfFile(const QString &path, ZQError *error)
{
    return ZQRenderPool::shared().perform(ZQRenderRequest::Kind::Properties, path, {}, 0, error).properties;
}

ZQBitmap ZQImageSource::thumbnailOfFile(const QString &path, int maximumSize, ZQError *error, int frame,
                                        std::optional<ZQImageProperties> *properties)
{
    const int side = qMax(1, maximumSize);
    const ZQRenderPool::Result result = ZQRenderPool::shared().perform(
        ZQRenderRequest::Kind::Bitmap, path, QSize(side, side), frame, error, properties != nullptr);
    if (properties) {
        *properties = result.properties;
    }
    return result.bitmap;
}

ZQBitmap ZQImageSource::bitmapOfFile(const QString &path, ZQError *error, int frame)
{
    return ZQRenderPool::shared().perform(ZQRenderRequest::Kind::Bitmap, path, {}, frame, error).bitmap;
}

std::optional<ZQPackedPicture> ZQImageSource::planesOfFile(const QString &path, const QRect &window, ZQError *error)
{
    return ZQRenderPool::shared().planesOfFile(path, window, error);
}

QByteArray ZQImageSource::embeddedPictureOfFile(const QString &path, ZQError *error)
{
    return ZQRenderPool::shared().perform(ZQRenderRequest::Kind::EmbeddedPicture, path, {}, 0, error).bytes;
}

QStringList ZQImageSource::supportedExtensions()
{
    static const QStringList extensions =
        QStringLiteral(
            "jpg jpeg jpe jp2 j2k jpf jpx tiff tif gif png icns bmp dib ico cur tga targa psd psb webp heic heif hif "
            "avif jxl ai eps ps "
            "3fr arw cr2 cr3 crw dcr dng erf fff iiq k25 kdc mef mos mrw nef nrw orf pef raf raw rw2 rwl sr2 srf srw "
            "x3f")
            .split(u' ');
    return extensions;
}

void ZQImageSource::initialize(const char *programName)
{
    zqInitializeImagingLibraries(programName);
}
