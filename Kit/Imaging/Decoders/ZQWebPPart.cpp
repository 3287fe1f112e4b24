#include "Kit/Imaging/Decoders/ZQVipsPixels.h"

#include <webp/decode.h>

#include <memory>

// libvips draws a WebP picture whole or not at all; the codec itself hands out rows as they come.

namespace {

struct DecoderDelete
{
    void operator()(WebPIDecoder *decoder) const { WebPIDelete(decoder); }
};

} // namespace

std::optional<ZQImageProperties> zqPropertiesOfPartOfWebP(const ZQSourceFile &file)
{
    const ZQSourceFile::Bytes bytes(file);
    WebPBitstreamFeatures features{};
    if (!bytes.data() || WebPGetFeatures(bytes.data(), bytes.size(), &features) != VP8_STATUS_OK) {
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = features.width;
    out.pixelHeight = features.height;
    out.hasAlpha = features.has_alpha != 0;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

ZQBitmap zqPartOfWebP(const ZQDecodeRequest &request)
{
    const std::optional<ZQImageProperties> properties = zqPropertiesOfPartOfWebP(request.file);
    if (request.frame > 0 || !properties) {
        return {};
    }
    const int width = properties->pixelWidth;
    const int height = properties->pixelHeight;
    if (!zqCheckSize(request.file.name(), width, height, zqMaximumPixelsInMemory, nullptr)) {
        return {};
    }
    const ZQSourceFile::Bytes bytes(request.file);
    QImage image(width, height, QImage::Format_RGBA8888);
    if (image.isNull()) {
        return {};
    }
    image.fill(0);
    const auto rowBytes = int(image.bytesPerLine());
    const std::unique_ptr<WebPIDecoder, DecoderDelete> decoder(
        WebPINewRGB(MODE_RGBA, image.bits(), size_t(image.sizeInBytes()), rowBytes));
    int rows = 0;
    if (!decoder || WebPIAppend(decoder.get(), bytes.data(), bytes.size()) > VP8_STATUS_SUSPENDED ||
        !WebPIDecGetRGB(decoder.get(), &rows, nullptr, nullptr, nullptr) || !zqIsPartOfPicture(rows, height)) {
        return {};
    }
    ZQBitmap bitmap(image);
    bitmap.setIncomplete(true);
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}
