#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/Decoders/ZQImageFormat.h"

#include <array>
#include <new>

namespace {

struct FormatDecoder
{
    ZQImageFormat format;
    const ZQDecoder *decoder;
};

constexpr std::array decoders{
    FormatDecoder{ZQImageFormat::JPEG, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::PNG, &zqPNGDecoder},
    FormatDecoder{ZQImageFormat::GIF, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::TIFF, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::WebP, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::JPEG2000, &zqVipsDecoder},
    FormatDecoder{ZQImageFormat::JPEGXL, &zqJPEGXLDecoder},
    FormatDecoder{ZQImageFormat::HEIF, &zqHEIFDecoder},
    FormatDecoder{ZQImageFormat::BMP, &zqBMPDecoder},
    FormatDecoder{ZQImageFormat::ICO, &zqIconDecoder},
    FormatDecoder{ZQImageFormat::ICNS, &zqIconDecoder},
    FormatDecoder{ZQImageFormat::TGA, &zqTGADecoder},
    FormatDecoder{ZQImageFormat::PSD, &zqPSDDecoder},
    FormatDecoder{ZQImageFormat::CameraRaw, &zqRawDecoder},
    FormatDecoder{ZQImageFormat::PDF, &zqPDFDecoder},
    FormatDecoder{ZQImageFormat::PostScript, &zqPostScriptDecoder},
    FormatDecoder{ZQImageFormat::Acorn, &zqAcornDecoder},
    FormatDecoder{ZQImageFormat::Sketch, &zqSketchDecoder},
};

const ZQDecoder *decoderOfFile(const ZQSourceFile &file, ZQError *error)
{
    const ZQImageFormat format = zqImageFormatOfFile(file);
    for (const FormatDecoder &row : decoders) {
        if (row.format == format) {
            return row.decoder;
        }
    }
    zqSetError(error, zqImagingError(ZQImagingErrorCode::UnknownFormat, file.name(),
                                     zqLocalized("It is not a picture of a known kind.")));
    return nullptr;
}

} // namespace

ZQBitmap zqDecodeFile(const ZQDecodeRequest &request, ZQError *error)
{
    const ZQDecoder *decoder = decoderOfFile(request.file, error);
    if (!decoder) {
        return {};
    }
    if (request.frame < 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    try {
        return decoder->decode(request, error);
    } catch (const std::bad_alloc &) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::TooMuchMemory, request.file.name(),
                                         zqLocalized("There is not enough memory to show it.")));
        return {};
    }
}

ZQPaper zqPaperOfName(const QString &name)
{
    return name.endsWith(QLatin1String(".ai"), Qt::CaseInsensitive) ? ZQPaper::Transparent : ZQPaper::White;
}

ZQError zqDamagedError(const QString &name)
{
    return zqImagingError(ZQImagingErrorCode::Damaged, name, zqLocalized("The file is damaged or incomplete."));
}

ZQError zqTooBigError(const QString &name, qint64 width, qint64 height)
{
    return zqImagingError(ZQImagingErrorCode::TooBig, name,
                          zqFormat(zqLocalized("Its size of %ld x %ld pixels is too big."), {width, height}));
}

ZQError zqNoSuchFrameError(const QString &name, int frame)
{
    return zqImagingError(ZQImagingErrorCode::NoSuchFrame, name, zqFormat(zqLocalized("It has no frame %d."), {frame}));
}

QSize zqFittedSize(QSize size, const ZQDecodeRequest &request)
{
    if (request.isFullSize() || (size.width() <= request.box.width() && size.height() <= request.box.height())) {
        return size;
    }
    return size.scaled(request.box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

bool zqCheckSize(const QString &name, qint64 width, qint64 height, qint64 limit, ZQError *error)
{
    if (width < 1 || height < 1) {
        zqSetError(error, zqDamagedError(name));
        return false;
    }
    if (width > limit / height) {
        zqSetError(error, zqTooBigError(name, width, height));
        return false;
    }
    return true;
}

bool zqIsPartOfPicture(qint64 rows, qint64 height)
{
    return rows > 0 && rows * 100 >= height;
}

namespace {

bool isSVG(const ZQSourceFile &source)
{
    constexpr qint64 sniffedBytes = 4096;
    QFile file;
    if (!source.openIn(file)) {
        return false;
    }
    const QByteArray head = file.read(sniffedBytes);
    const bool compressed =
        head.startsWith("\x1f\x8b") && source.name().endsWith(QLatin1String(".svgz"), Qt::CaseInsensitive);
    return compressed || head.contains("<svg") || head.contains(":svg");
}

} // namespace

std::optional<ZQImageProperties> zqPropertiesOfFile(const ZQSourceFile &file, ZQError *error)
{
    ZQError failure;
    const ZQDecoder *decoder = decoderOfFile(file, &failure);
    if (!decoder && isSVG(file)) {
        decoder = &zqSVGDecoder;
    }
    if (!decoder) {
        zqSetError(error, failure);
        return std::nullopt;
    }
    std::optional<ZQImageProperties> properties = decoder->properties(file, error);
    if (properties) {
        properties->keywords = zqKeywordsOfFile(file);
    }
    return properties;
}

ZQBitmap zqPreviewOfFile(const ZQSourceFile &file, QSize box, int frame, ZQError *error)
{
    ZQError failure;
    const ZQBitmap decoded = zqDecodeFile({file, box, frame, true, zqPaperOfName(file.name())}, &failure);
    if (!decoded.isNull()) {
        return decoded;
    }
    if (failure.code == int(ZQImagingErrorCode::UnknownFormat) && isSVG(file)) {
        return zqSVGDecoder.decode({file, box, frame, true, ZQPaper::Transparent}, error);
    }
    zqSetError(error, failure);
    return {};
}
