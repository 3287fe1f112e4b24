#include "Kit/Imaging/ZQImageSource.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQImageDecoding.h"
#include "Kit/Imaging/ZQImageFormat.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

#include <QFileInfo>

#include <array>
#include <new>

namespace {

struct FormatDecoder
{
    ZQImageFormat format;
    const ZQDecoder *decoder;
};

constexpr std::array decoders{
    FormatDecoder{ZQImageFormat::JPEG, &zqVipsDecoder}, FormatDecoder{ZQImageFormat::PNG, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::GIF, &zqVipsDecoder},  FormatDecoder{ZQImageFormat::TIFF, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::WebP, &zqVipsDecoder}, FormatDecoder{ZQImageFormat::JPEG2000, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::BMP, &zqBMPDecoder},   FormatDecoder{ZQImageFormat::ICO, &zqIconDecoder},
    FormatDecoder{ZQImageFormat::ICNS, &zqIconDecoder}, FormatDecoder{ZQImageFormat::TGA, &zqTGADecoder},
    FormatDecoder{ZQImageFormat::PSD, &zqPSDDecoder},   FormatDecoder{ZQImageFormat::CameraRaw, &zqRawDecoder},
    FormatDecoder{ZQImageFormat::PDF, &zqPDFDecoder},   FormatDecoder{ZQImageFormat::PostScript, &zqPostScriptDecoder},
};

const ZQDecoder *decoderOfFile(const QString &path, ZQError *error)
{
    ZQImageSource::initialize("zelto");
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable()) {
        zqSetError(error,
                   zqImagingError(ZQImagingErrorCode::CannotRead, path,
                                  zqLocalized("It does not exist or you don't have the permission to read it.")));
        return nullptr;
    }
    if (info.size() == 0) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::Empty, path, zqLocalized("The file is empty.")));
        return nullptr;
    }
    const ZQImageFormat format = zqImageFormatOfFile(path);
    for (const FormatDecoder &row : decoders) {
        if (row.format == format) {
            return row.decoder;
        }
    }
    zqSetError(error, zqImagingError(ZQImagingErrorCode::UnknownFormat, path,
                                     zqLocalized("It is not a picture of a known kind.")));
    return nullptr;
}

} // namespace

ZQBitmap zqDecodeFile(const ZQDecodeRequest &request, ZQError *error)
{
    const ZQDecoder *decoder = decoderOfFile(request.path, error);
    if (!decoder) {
        return {};
    }
    if (request.frame < 0) {
        zqSetError(error, zqNoSuchFrameError(request.path, request.frame));
        return {};
    }
    try {
        return decoder->decode(request, error);
    } catch (const std::bad_alloc &) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::TooBig, request.path,
                                         zqLocalized("There is not enough memory to show it.")));
        return {};
    }
}

ZQPaper zqPaperOfFile(const QString &path)
{
    return path.endsWith(QLatin1String(".ai"), Qt::CaseInsensitive) ? ZQPaper::Transparent : ZQPaper::White;
}

ZQError zqImagingError(ZQImagingErrorCode code, const QString &path, const QString &reason)
{
    const QString description =
        zqFormat(zqLocalized("The picture \"%@\" can't be opened."), {QFileInfo(path).fileName()});
    return ZQError::with(QStringLiteral("zelto.imaging"), int(code), description, reason);
}

ZQError zqDamagedError(const QString &path)
{
    return zqImagingError(ZQImagingErrorCode::Damaged, path, zqLocalized("The file is damaged or incomplete."));
}

ZQError zqTooBigError(const QString &path, qint64 width, qint64 height)
{
    return zqImagingError(ZQImagingErrorCode::TooBig, path,
                          zqFormat(zqLocalized("Its size of %ld x %ld pixels is too big."), {width, height}));
}

ZQError zqNoSuchFrameError(const QString &path, int frame)
{
    return zqImagingError(ZQImagingErrorCode::NoSuchFrame, path, zqFormat(zqLocalized("It has no frame %d."), {frame}));
}

QSize zqFittedSize(QSize size, const ZQDecodeRequest &request)
{
    if (request.isFullSize() || (size.width() <= request.box.width() && size.height() <= request.box.height())) {
        return size;
    }
    return size.scaled(request.box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

bool zqCheckSize(const QString &path, qint64 width, qint64 height, qint64 limit, ZQError *error)
{
    if (width < 1 || height < 1) {
        zqSetError(error, zqDamagedError(path));
        return false;
    }
    if (width > limit / height) {
        zqSetError(error, zqTooBigError(path, width, height));
        return false;
    }
    return true;
}

std::optional<ZQImageProperties> ZQImageSource::propertiesOfFile(const QString &path, ZQError *error)
{
    const ZQDecoder *decoder = decoderOfFile(path, error);
    if (!decoder) {
        return std::nullopt;
    }
    std::optional<ZQImageProperties> properties = decoder->properties(path, error);
    if (properties) {
        properties->keywords = zqKeywordsOfFile(path);
    }
    return properties;
}

ZQBitmap ZQImageSource::thumbnailOfFile(const QString &path, int maximumSize, ZQError *error, int frame)
{
    const int side = qMax(1, maximumSize);
    return zqDecodeFile({path, QSize(side, side), frame, false, zqPaperOfFile(path)}, error);
}

ZQBitmap ZQImageSource::bitmapOfFile(const QString &path, ZQError *error, int frame)
{
    return zqDecodeFile({path, QSize(), frame, false, zqPaperOfFile(path)}, error);
}

QStringList ZQImageSource::supportedExtensions()
{
    static const QStringList extensions =
        QStringLiteral(
            "jpg jpeg jpe jp2 j2k jpf jpx tiff tif gif png icns bmp dib ico cur tga targa psd psb webp ai eps ps "
            "3fr arw cr2 cr3 crw dcr dng erf fff iiq k25 kdc mef mos mrw nef nrw orf pef raf raw rw2 rwl sr2 srf srw "
            "x3f")
            .split(u' ');
    return extensions;
}

void ZQImageSource::initialize(const char *programName)
{
    zqInitializeImagingLibraries(programName);
}
