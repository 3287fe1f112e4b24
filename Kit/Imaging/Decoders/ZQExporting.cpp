#include "Kit/Imaging/Decoders/ZQExporting.h"

#include "Kit/Imaging/Decoders/ZQFrameWalk.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQImageFormat.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/ZQImageEncoding.h"

namespace {

bool isStreamed(ZQImageFormat format)
{
    switch (format) {
    case ZQImageFormat::JPEG:
    case ZQImageFormat::PNG:
    case ZQImageFormat::GIF:
    case ZQImageFormat::TIFF:
    case ZQImageFormat::WebP:
    case ZQImageFormat::JPEG2000:
        return true;
    default:
        return false;
    }
}

// Row by row from file to file, in memory for a few rows. Nothing without an error: the picture takes another way.
std::optional<ZQExportedImage> stream(const ZQSourceFile &file, const ZQExportEncoding &encoding, int output,
                                      ZQError *error)
{
    const ZQImageFormat format = zqImageFormatOfFile(file);
    if (!isStreamed(format)) {
        return std::nullopt;
    }
    ZQError refusal;
    QSize size;
    const ZQVipsImage image = zqUprightPicture(
        file,
        [&](QSize upright) {
            const std::optional<QSize> wanted = zqExportPixelSize(upright, encoding.size);
            zqCheckEncoding(encoding, wanted.value_or(upright), &refusal);
            return refusal.isNull() ? wanted : std::nullopt;
        },
        &size);
    if (!refusal.isNull()) {
        zqSetError(error, refusal);
        return std::nullopt;
    }
    ZQError failure;
    if (image && zqEncodeImage(image.get(), encoding, output, &failure)) {
        return ZQExportedImage{size, zqEndsBeforeLastFrame(file, format)};
    }
    if (failure.domain == ZQError::posixDomain) {
        zqSetError(error, failure);
    }
    zqLogVipsError(file.name());
    zqTakeVipsMemoryShortage();
    return std::nullopt;
}

} // namespace

std::optional<ZQExportedImage> zqExportFile(const ZQSourceFile &file, const ZQExportEncoding &encoding, int output,
                                            ZQError *error)
{
    ZQError failure;
    const std::optional<ZQExportedImage> streamed = stream(file, encoding, output, &failure);
    if (streamed || !failure.isNull()) {
        zqSetError(error, failure);
        return streamed;
    }
    const ZQBitmap bitmap = zqDecodeFile({file, {}, 0, false, zqPaperOfName(file.name())}, &failure);
    if (!bitmap.isNull()) {
        return zqEncodeBitmap(bitmap, encoding, output, error);
    }
    if (zqTakeVipsMemoryShortage()) {
        failure.code = int(ZQImagingErrorCode::TooMuchMemory);
    }
    zqSetError(error, failure);
    return std::nullopt;
}
