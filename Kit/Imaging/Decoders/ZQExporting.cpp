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

// With what was lost of its frames and of its depth. Cameras' raw pictures are made into others, and icons hold one
// picture in several sizes: nothing of them is lost.
ZQExportedImage told(ZQExportedImage exported, const ZQSourceFile &file, bool isDeep)
{
    const ZQImageFormat format = zqImageFormatOfFile(file);
    const bool hasFrames = format == ZQImageFormat::GIF || format == ZQImageFormat::WebP ||
                           format == ZQImageFormat::TIFF || format == ZQImageFormat::JPEGXL;
    const bool mayBeDeep = format == ZQImageFormat::PNG || format == ZQImageFormat::TIFF ||
                           format == ZQImageFormat::JPEG2000 || format == ZQImageFormat::JPEGXL ||
                           format == ZQImageFormat::HEIF || format == ZQImageFormat::PSD;
    ZQError error; // it was read all the same
    const auto properties = hasFrames || mayBeDeep ? zqPropertiesOfFile(file, &error) : std::nullopt;
    exported.isFirstOfSeveral = properties && hasFrames && properties->frameCount > 1;
    exported.isReduced = properties && mayBeDeep && !isDeep && properties->bitsPerSample > 8;
    return exported;
}

// Row by row from file to file, in memory for a few rows; but for PNGs that are not huge, which are decoded at once.
// Nothing without an error: the picture takes another way.
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
        zqFileTypeKeepsDepth(encoding.fileType), &size);
    if (!refusal.isNull()) {
        zqSetError(error, refusal);
        return std::nullopt;
    }
    ZQError failure;
    if (image && zqEncodeImage(image.get(), encoding, output, &failure)) {
        const bool isDeep = image->BandFmt == VIPS_FORMAT_USHORT;
        return told({.pixelSize = size, .isIncomplete = zqEndsBeforeLastFrame(file, format)}, file, isDeep);
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
        const auto encoded = zqEncodeBitmap(bitmap, encoding, output, error);
        return encoded ? std::optional(told(*encoded, file, false)) : std::nullopt;
    }
    if (zqTakeVipsMemoryShortage()) {
        failure.code = int(ZQImagingErrorCode::TooMuchMemory);
    }
    zqSetError(error, failure);
    return std::nullopt;
}
