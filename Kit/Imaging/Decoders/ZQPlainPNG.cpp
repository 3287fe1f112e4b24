#include "Kit/Imaging/Decoders/ZQPlainPNG.h"

#include "Kit/Imaging/Decoders/ZQPNGChunks.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <string_view>

namespace {

constexpr qint64 mostPixels = qint64(1024) * 1024;

// Nothing for a file that is large.
std::optional<ZQPNGOutline> plainPNG(const ZQSourceFile &file)
{
    const QByteArray &bytes = file.start();
    return bytes.size() == file.size() ? zqPlainPNGOutline({bytes.constData(), size_t(bytes.size())}, mostPixels)
                                       : std::nullopt;
}

[[noreturn]] void giveUp(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

struct Reading
{
    png_structp png;
    png_infop info;
    std::string_view rest;
    uchar *rows;
    size_t rowBytes;
    int height;
};

void readBytes(png_structp png, png_bytep out, size_t size)
{
    auto *const reading = static_cast<Reading *>(png_get_io_ptr(png));
    if (size > reading->rest.size()) {
        giveUp(png, nullptr);
    }
    std::memcpy(out, reading->rest.data(), size);
    reading->rest.remove_prefix(size);
}

// Leaves through the jump when anything is wrong, so nothing here may need tidying up.
bool readRows(Reading &reading)
{
    static constexpr png_byte ignored[] = "gAMA\0cHRM\0sRGB\0sBIT\0bKGD\0hIST\0tIME\0tEXt\0zTXt\0iTXt\0pHYs\0vpAg";
    static_assert(sizeof ignored == 5 * zqPlainPNGChunks.size(), "the same ones, each with a null behind it");
    if (setjmp(png_jmpbuf(reading.png))) {
        return false;
    }
    png_set_read_fn(reading.png, &reading, readBytes);
    png_set_keep_unknown_chunks(reading.png, PNG_HANDLE_CHUNK_NEVER, ignored, int(zqPlainPNGChunks.size()));
    png_read_info(reading.png, reading.info);
    png_set_expand(reading.png);
    png_set_gray_to_rgb(reading.png);
    png_set_add_alpha(reading.png, 0xff, PNG_FILLER_AFTER);
    png_read_update_info(reading.png, reading.info);
    if (png_get_rowbytes(reading.png, reading.info) != reading.rowBytes ||
        png_get_image_height(reading.png, reading.info) != png_uint_32(reading.height)) {
        return false;
    }
    for (int y = 0; y < reading.height; ++y) {
        png_read_row(reading.png, reading.rows + size_t(y) * reading.rowBytes, nullptr);
    }
    png_read_end(reading.png, nullptr);
    return true;
}

ZQBitmap decodePlain(const ZQSourceFile &file, const ZQPNGOutline &plain)
{
    QImage image(plain.size, QImage::Format_RGBA8888);
    Reading reading{png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, giveUp, giveUp),
                    nullptr,
                    std::string_view(file.start().constData(), size_t(file.start().size())),
                    image.bits(),
                    size_t(image.bytesPerLine()),
                    plain.size.height()};
    reading.info = reading.png ? png_create_info_struct(reading.png) : nullptr;
    const bool isRead = reading.info && !image.isNull() && readRows(reading);
    png_destroy_read_struct(&reading.png, &reading.info, nullptr);
    return isRead ? ZQBitmap(std::move(image)) : ZQBitmap();
}

} // namespace

std::optional<ZQImageProperties> zqPropertiesOfPlainPNG(const ZQSourceFile &file)
{
    const std::optional<ZQPNGOutline> plain = plainPNG(file);
    if (!plain) {
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = plain->size.width();
    out.pixelHeight = plain->size.height();
    out.bitsPerSample = plain->colorType == PNG_COLOR_TYPE_PALETTE ? plain->depth : 8; // shades are widened
    out.dpi = plain->dpi();
    out.hasAlpha = plain->hasAlpha();
    out.colorModel = plain->isGray() ? QStringLiteral("Gray") : QStringLiteral("RGB");
    return out;
}

ZQBitmap zqBitmapOfPlainPNG(const ZQDecodeRequest &request)
{
    const std::optional<ZQPNGOutline> plain = request.frame == 0 ? plainPNG(request.file) : std::nullopt;
    const bool isWanted = plain && zqFittedSize(plain->size, request) == plain->size;
    return isWanted ? decodePlain(request.file, *plain) : ZQBitmap();
}

namespace {

std::optional<ZQImageProperties> properties(const ZQSourceFile &file, ZQError *error)
{
    const std::optional<ZQImageProperties> plain = zqPropertiesOfPlainPNG(file);
    return plain ? plain : zqVipsDecoder.properties(file, error);
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    const ZQBitmap plain = zqBitmapOfPlainPNG(request);
    return plain.isNull() ? zqVipsDecoder.decode(request, error) : plain;
}

} // namespace

const ZQDecoder zqPNGDecoder{properties, decode};
