#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

// PDF and SVG, drawn at the size that is wanted.

namespace {

enum class Kind { PDF, SVG };

ZQVipsImage load(Kind kind, const ZQDecodeRequest &request, double scale)
{
    const ZQVipsSource source = zqVipsSource(request.file);
    if (!source) {
        return nullptr;
    }
    VipsImage *out = nullptr;
    if (kind == Kind::SVG) {
        vips_svgload_source(source.get(), &out, "scale", scale, nullptr);
        return ZQVipsImage(out);
    }
    const double paper = request.paper == ZQPaper::White ? 255 : 0;
    VipsArrayDouble *background = vips_array_double_newv(4, paper, paper, paper, paper);
    vips_pdfload_source(source.get(), &out, "page", request.frame, "scale", scale, "background", background, nullptr);
    vips_area_unref(VIPS_AREA(background));
    return ZQVipsImage(out);
}

std::optional<ZQImageProperties> vectorProperties(Kind kind, const ZQSourceFile &source, ZQError *error)
{
    zqEnterVips();
    const ZQVipsImage image = load(kind, {source, {}}, 1.0);
    zqLogVipsError(source.name());
    if (!image) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = image->Xsize;
    out.pixelHeight = image->Ysize;
    out.dpi = 72;
    out.frameCount = qMax(1, vips_image_get_n_pages(image.get()));
    out.hasAlpha = true;
    out.isVector = true;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

double scaleFor(QSize size, const ZQDecodeRequest &request)
{
    if (request.isFullSize()) {
        return 1.0;
    }
    const double scale = qMin(double(request.box.width()) / size.width(), double(request.box.height()) / size.height());
    return request.fillBox ? scale : qMin(1.0, scale);
}

ZQBitmap draw(Kind kind, const ZQDecodeRequest &request, ZQError *error)
{
    zqEnterVips();
    const std::optional<ZQImageProperties> properties = vectorProperties(kind, request.file, error);
    if (!properties) {
        return {};
    }
    if (request.frame >= properties->frameCount) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    const double scale = scaleFor({properties->pixelWidth, properties->pixelHeight}, request);
    if (!zqCheckSize(request.file.name(), qint64(properties->pixelWidth * scale) + 1,
                     qint64(properties->pixelHeight * scale) + 1, zqMaximumPixelsInMemory, error)) {
        return {};
    }
    const ZQVipsImage image = load(kind, request, qMax(scale, 0.001));
    const ZQBitmap bitmap = image ? zqBitmapOfVips(image.get()) : ZQBitmap();
    zqLogVipsError(request.file.name());
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
    }
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqPDFDecoder{
    [](const ZQSourceFile &source, ZQError *error) { return vectorProperties(Kind::PDF, source, error); },
    [](const ZQDecodeRequest &request, ZQError *error) { return draw(Kind::PDF, request, error); }};
const ZQDecoder zqSVGDecoder{
    [](const ZQSourceFile &source, ZQError *error) { return vectorProperties(Kind::SVG, source, error); },
    [](const ZQDecodeRequest &request, ZQError *error) { return draw(Kind::SVG, request, error); }};
