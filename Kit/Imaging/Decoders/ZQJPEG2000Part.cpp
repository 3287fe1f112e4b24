#include "Kit/Imaging/Decoders/ZQJPEG2000Layout.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"

#include <openjpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>

// libvips draws a JPEG 2000 picture whole or not at all; the codec itself goes on without what is missing.

namespace {

struct CodecDelete
{
    void operator()(opj_codec_t *codec) const { opj_destroy_codec(codec); }
};
struct StreamDelete
{
    void operator()(opj_stream_t *stream) const { opj_stream_destroy(stream); }
};
struct ImageDelete
{
    void operator()(opj_image_t *image) const { opj_image_destroy(image); }
};
struct InformationDelete
{
    void operator()(opj_codestream_info_v2_t *information) const { opj_destroy_cstr_info(&information); }
};
using Image = std::unique_ptr<opj_image_t, ImageDelete>;

// The file up to its last data and then an end mark: without one the codec gives up tiles that it has read.
struct Content
{
    const uchar *bytes;
    quint64 size;
    quint64 at = 0;

    static constexpr uchar endMark[] = {0xff, 0xd9};
    quint64 total() const { return size + sizeof(endMark); }
};

OPJ_SIZE_T readContent(void *buffer, OPJ_SIZE_T count, void *user)
{
    auto &content = *static_cast<Content *>(user);
    if (content.at >= content.total()) {
        return OPJ_SIZE_T(-1);
    }
    const quint64 taken = std::min<quint64>(count, content.total() - content.at);
    const quint64 ofFile = content.at < content.size ? std::min(taken, content.size - content.at) : 0;
    auto *to = static_cast<uchar *>(buffer);
    std::memcpy(to, content.bytes + content.at, ofFile);
    const quint64 ofMark = content.at + ofFile - content.size;
    if (taken > ofFile) {
        std::memcpy(to + ofFile, Content::endMark + ofMark, taken - ofFile);
    }
    content.at += taken;
    return taken;
}

OPJ_OFF_T skipContent(OPJ_OFF_T count, void *user)
{
    auto &content = *static_cast<Content *>(user);
    if (count < 0 || quint64(count) > content.total() - content.at) {
        return -1;
    }
    content.at += quint64(count);
    return count;
}

OPJ_BOOL seekContent(OPJ_OFF_T place, void *user)
{
    auto &content = *static_cast<Content *>(user);
    if (place < 0 || quint64(place) > content.total()) {
        return OPJ_FALSE;
    }
    content.at = quint64(place);
    return OPJ_TRUE;
}

// The halvings that leave the picture large enough, of those that it keeps.
OPJ_UINT32 halvings(opj_codec_t *codec, QSize size, const ZQDecodeRequest &request)
{
    const std::unique_ptr<opj_codestream_info_v2_t, InformationDelete> information(opj_get_cstr_info(codec));
    if (!information || !information->m_default_tile_info.tccp_info) {
        return 0;
    }
    const QSize fitted = zqFittedSize(size, request);
    const OPJ_UINT32 levels = information->m_default_tile_info.tccp_info[0].numresolutions;
    OPJ_UINT32 count = 0;
    while (count + 1 < levels && size.width() >> (count + 1) >= fitted.width() &&
           size.height() >> (count + 1) >= fitted.height()) {
        ++count;
    }
    return count;
}

// The codec takes four bytes for a sample, and most of its samples twice.
bool fitsMemory(const ZQJPEG2000Layout &layout, OPJ_UINT32 reduction)
{
    const QSize size = layout.area.size();
    const qint64 width = (size.width() >> reduction) + 1;
    const qint64 height = (size.height() >> reduction) + 1;
    return zqCheckSize({}, width, height, zqMaximumPixelsInMemory / layout.components, nullptr);
}

Image decodeLeniently(Content &content, const ZQJPEG2000Layout &layout, const ZQDecodeRequest &request,
                      OPJ_UINT32 &reduction)
{
    const std::unique_ptr<opj_stream_t, StreamDelete> stream(opj_stream_default_create(OPJ_STREAM_READ));
    const std::unique_ptr<opj_codec_t, CodecDelete> codec(
        opj_create_decompress(layout.isFile ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    if (!stream || !codec || !opj_setup_decoder(codec.get(), &parameters) ||
        !opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE)) {
        return nullptr;
    }
    opj_stream_set_user_data(stream.get(), &content, nullptr);
    opj_stream_set_user_data_length(stream.get(), content.total());
    opj_stream_set_read_function(stream.get(), readContent);
    opj_stream_set_skip_function(stream.get(), skipContent);
    opj_stream_set_seek_function(stream.get(), seekContent);

    opj_image_t *header = nullptr;
    const bool isRead = opj_read_header(stream.get(), codec.get(), &header);
    Image image(header);
    if (!isRead || !image) {
        return nullptr;
    }
    reduction = halvings(codec.get(), layout.area.size(), request);
    if (!fitsMemory(layout, reduction) || !opj_set_decoded_resolution_factor(codec.get(), reduction) ||
        !opj_decode(codec.get(), stream.get(), image.get())) {
        return nullptr;
    }
    return image;
}

bool hasSamples(const opj_image_comp_t &component)
{
    return component.data && component.w > 0 && component.h > 0 && component.prec > 0 && component.prec < 32;
}

// One byte of every four in `row` from a component, which may be coarser than the picture.
void fillChannel(const opj_image_comp_t &component, int y, QSize size, uchar *row)
{
    const qint64 highest = (qint64(1) << component.prec) - 1;
    const qint64 bias = component.sgnd ? qint64(1) << (component.prec - 1) : 0;
    const quint64 line = quint64(y) * component.h / quint64(size.height());
    const OPJ_INT32 *samples = component.data + line * component.w;
    const bool isFine = int(component.w) == size.width();
    for (int x = 0; x < size.width(); ++x) {
        const auto column = isFine ? quint64(x) : quint64(x) * component.w / quint64(size.width());
        const qint64 value = std::clamp<qint64>(samples[column] + bias, 0, highest);
        row[x * 4] = uchar(highest == 255 ? value : value * 255 / highest);
    }
}

void convertFromYCC(uchar *row, int width)
{
    for (uchar *pixel = row; pixel < row + qsizetype(width) * 4; pixel += 4) {
        const double luminance = pixel[0];
        const double blue = pixel[1] - 128.0;
        const double red = pixel[2] - 128.0;
        const auto byte = [](double value) { return uchar(qBound(0, qRound(value), 255)); };
        pixel[0] = byte(luminance + 1.402 * red);
        pixel[1] = byte(luminance - 0.344136 * blue - 0.714136 * red);
        pixel[2] = byte(luminance + 1.772 * blue);
    }
}

// Colours that do not say what they are and come coarser than the first component are differences to it.
bool isYCC(const opj_image_t &image)
{
    return image.numcomps >= 3 &&
           (image.color_space == OPJ_CLRSPC_SYCC || (image.color_space != OPJ_CLRSPC_SRGB && image.comps[0].dx == 1 &&
                                                     image.comps[1].dx > 1 && image.comps[2].dx > 1));
}

// Grey or three colours, then alpha.
QImage imageOfColors(const opj_image_t &image, QSize size)
{
    QImage out(size, QImage::Format_RGBA8888);
    if (out.isNull()) {
        return {};
    }
    out.fill(0xffffffff);
    const bool isGray = image.numcomps < 3;
    const OPJ_UINT32 alpha = isGray ? 1 : 3;
    for (int y = 0; y < size.height(); ++y) {
        uchar *row = out.scanLine(y);
        for (OPJ_UINT32 channel = 0; channel < 3; ++channel) {
            fillChannel(image.comps[isGray ? 0 : channel], y, size, row + channel);
        }
        if (isYCC(image)) {
            convertFromYCC(row, size.width());
        }
        if (image.numcomps > alpha) {
            fillChannel(image.comps[alpha], y, size, row + 3);
        }
    }
    return out;
}

QImage imageOfInks(const opj_image_t &image, QSize size)
{
    QByteArray pixels(qsizetype(size.width()) * size.height() * 4, Qt::Uninitialized);
    for (int y = 0; y < size.height(); ++y) {
        auto *row = reinterpret_cast<uchar *>(pixels.data()) + qsizetype(y) * size.width() * 4;
        for (OPJ_UINT32 channel = 0; channel < 4; ++channel) {
            fillChannel(image.comps[channel], y, size, row + channel);
        }
    }
    return zqBitmapOfCMYK(pixels, size).image();
}

QImage imageOfSamples(const opj_image_t &image)
{
    QSize size(0, 0);
    for (OPJ_UINT32 i = 0; i < image.numcomps; ++i) {
        if (!hasSamples(image.comps[i])) {
            return {};
        }
        size = size.expandedTo(QSize(int(image.comps[i].w), int(image.comps[i].h)));
    }
    if (!zqCheckSize({}, size.width(), size.height(), zqMaximumPixelsInMemory, nullptr)) {
        return {};
    }
    const bool isInks = image.color_space == OPJ_CLRSPC_CMYK && image.numcomps >= 4;
    return isInks ? imageOfInks(image, size) : imageOfColors(image, size);
}

// The codec leaves them black, or whatever zero stands for.
void clearMissingTiles(QImage &image, const ZQJPEG2000Layout &layout)
{
    const QPoint origin = layout.area.topLeft();
    const auto scaled = [](qint64 place, qint64 whole, int pixels) {
        return int((place * pixels + whole - 1) / whole);
    };
    for (int tile = 0; tile < int(layout.isTile.size()); ++tile) {
        if (layout.isTile[size_t(tile)]) {
            continue;
        }
        const QRect place = layout.tileArea(tile).translated(-origin);
        const int left = scaled(place.x(), layout.area.width(), image.width());
        const int right = scaled(qint64(place.x()) + place.width(), layout.area.width(), image.width());
        const int top = scaled(place.y(), layout.area.height(), image.height());
        const int bottom = scaled(qint64(place.y()) + place.height(), layout.area.height(), image.height());
        for (int y = top; y < bottom; ++y) {
            std::fill_n(image.scanLine(y) + qsizetype(left) * 4, qsizetype(right - left) * 4, uchar(0));
        }
    }
}

// A block of samples takes a bit at least.
bool isWorthDrawing(const ZQJPEG2000Layout &layout)
{
    constexpr qint64 leastBytes = 16;
    constexpr qint64 blockSamples = 4096;
    constexpr qint64 mostBytes = qint64(1) << 32; // more than enough for any picture
    const qint64 bytes = qint64(std::min<quint64>(layout.dataBytes, mostBytes)) - leastBytes;
    const qint64 drawn = std::min(layout.coveredPixels(), bytes * 8 * blockSamples);
    return zqIsPartOfPicture(drawn, qint64(layout.area.width()) * layout.area.height());
}

} // namespace

ZQBitmap zqPartOfJPEG2000(const ZQDecodeRequest &request)
{
    ZQSourceFile::Bytes bytes(request.file);
    const std::optional<ZQJPEG2000Layout> layout = zqLayoutOfJPEG2000(bytes);
    if (request.frame > 0 || !layout || !isWorthDrawing(*layout)) {
        return {};
    }
    zqCloseTilesOfJPEG2000(bytes, *layout);
    Content content{bytes.data(), layout->dataEnd};
    OPJ_UINT32 reduction = 0;
    const Image decoded = decodeLeniently(content, *layout, request, reduction);
    QImage image = decoded ? imageOfSamples(*decoded) : QImage();
    clearMissingTiles(image, *layout);
    ZQBitmap bitmap(image);
    bitmap.setIncomplete(true);
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}
