#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

// The container says how its picture is to be turned, and the library that reads it does so: the size is that of the
// picture upright, and the EXIF orientation beside it, which says the same once more, is nobody's business.

namespace {

// Null when it cannot be read. The loader is called by name, since the library does not know every brand by its mark,
// such as that of animations.
ZQVipsImage openPicture(const ZQSourceFile &file)
{
    const ZQVipsSource source = zqVipsSource(file);
    VipsImage *out = nullptr;
    if (source && vips_heifload_source(source.get(), &out, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                       VIPS_FAIL_ON_TRUNCATED, nullptr) != 0) {
        out = nullptr;
    }
    return ZQVipsImage(out);
}

int bitsPerSample(VipsImage *image)
{
    int bits = 0;
    const bool isSaid = vips_image_get_typeof(image, "heif-bitdepth") != 0 &&
                        vips_image_get_int(image, "heif-bitdepth", &bits) == 0 && bits > 0;
    return isSaid ? bits : int(vips_format_sizeof(image->BandFmt)) * 8;
}

// Of several pictures the primary one stands for the file, and of an animation the still one beside it.
std::optional<ZQImageProperties> properties(const ZQSourceFile &file, ZQError *error)
{
    zqEnterVips();
    const ZQVipsImage image = openPicture(file);
    zqLogVipsError(file.name());
    if (!image) {
        zqSetError(error, zqDamagedError(file.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = image->Xsize;
    out.pixelHeight = image->Ysize;
    out.bitsPerSample = bitsPerSample(image.get());
    out.hasAlpha = vips_image_hasalpha(image.get());
    out.colorModel = image->Bands < 3 ? QStringLiteral("Gray") : QStringLiteral("RGB");
    return out;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    zqEnterVips();
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    ZQBitmap bitmap;
    bool mayHaveProfile = true;
    while (bitmap.isNull()) {
        const ZQVipsImage image = openPicture(request.file);
        if (!image) {
            break;
        }
        if (!zqCheckSize(request.file.name(), image->Xsize, image->Ysize, zqMaximumPixelsInMemory, error)) {
            return {};
        }
        const bool useProfile = mayHaveProfile && zqHasProfile(image.get());
        bitmap = zqFittedVips(image.get(), request, useProfile);
        if (!useProfile) {
            break;
        }
        mayHaveProfile = false; // a damaged one is left alone
    }
    zqLogVipsError(request.file.name());
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
    }
    return bitmap;
}

} // namespace

const ZQDecoder zqHEIFDecoder{properties, decode};
