#include "Kit/Imaging/Decoders/ZQPlainPNG.h"

#include <QtEndian>

#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

using namespace std::string_view_literals;

constexpr qint32 mostPixels = 1024 * 1024;

// Chunks that say nothing about how the pixels come out. One with a colour profile or an orientation is not plain.
constexpr std::array plainChunks{"gAMA"sv, "cHRM"sv, "sRGB"sv, "sBIT"sv, "bKGD"sv, "hIST"sv,
                                 "tIME"sv, "tEXt"sv, "zTXt"sv, "iTXt"sv, "pHYs"sv};

struct PlainPNG
{
    QSize size;
    int depth = 8;
    int colorType = 0;
    bool hasTransparency = false; // a chunk of its own says what shows through
    quint32 pixelsPerMeter = 0;   // 0: not said

    int dpi() const
    {
        constexpr int usual = 72;
        constexpr double metersInInch = 0.0254;
        constexpr quint32 onePerMillimeter = 1000; // stands for "not said"
        constexpr quint32 most = 1'000'000'000;
        if (pixelsPerMeter == 0) {
            return usual;
        }
        return pixelsPerMeter == onePerMillimeter || pixelsPerMeter >= most ? 0 : qRound(pixelsPerMeter * metersInInch);
    }
    bool isKnownKind() const
    {
        const bool hasShades = colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_PALETTE;
        const bool hasChannels = colorType == PNG_COLOR_TYPE_RGB || colorType == PNG_COLOR_TYPE_GRAY_ALPHA ||
                                 colorType == PNG_COLOR_TYPE_RGB_ALPHA;
        return depth == 8 ? hasShades || hasChannels : hasShades && (depth == 1 || depth == 2 || depth == 4);
    }
    bool isGray() const { return !(colorType & PNG_COLOR_MASK_COLOR); }
    bool hasAlpha() const { return hasTransparency || (colorType & PNG_COLOR_MASK_ALPHA); }
};

struct Chunk
{
    std::string_view name;
    std::string_view data;
};

// Takes the next chunk off `rest`; nothing when it is cut off.
std::optional<Chunk> takeChunk(std::string_view &rest)
{
    constexpr size_t around = 12; // length, name and checksum
    const quint32 length = rest.size() >= around ? qFromBigEndian<quint32>(rest.data()) : 0;
    if (rest.size() < around || length > rest.size() - around) {
        return std::nullopt;
    }
    const Chunk chunk{rest.substr(4, 4), rest.substr(8, length)};
    rest.remove_prefix(length + around);
    return chunk;
}

bool readHeader(const Chunk &chunk, PlainPNG &out)
{
    constexpr size_t headerBytes = 13;
    if (chunk.name != "IHDR"sv || chunk.data.size() != headerBytes) {
        return false;
    }
    const auto side = [&](size_t at) { return qFromBigEndian<quint32>(chunk.data.data() + at); };
    const quint32 width = side(0);
    const quint32 height = side(4);
    out.depth = uchar(chunk.data[8]);
    out.colorType = uchar(chunk.data[9]);
    const bool isUsualWay = chunk.data.substr(10) == "\0\0\0"sv; // of compressing, filtering and ordering rows
    if (width < 1 || height < 1 || width > quint32(mostPixels) / height || !isUsualWay || !out.isKnownKind()) {
        return false;
    }
    out.size = QSize(int(width), int(height));
    return true;
}

bool readResolution(std::string_view data, PlainPNG &out)
{
    if (data.size() != 9 || data[8] != PNG_RESOLUTION_METER || out.pixelsPerMeter != 0) {
        return false;
    }
    out.pixelsPerMeter = qFromBigEndian<quint32>(data.data());
    return out.pixelsPerMeter != 0;
}

// Whether a chunk between the header and the end leaves the picture plain.
bool readChunk(const Chunk &chunk, PlainPNG &out)
{
    if (chunk.name == "IDAT"sv || chunk.name == "PLTE"sv) {
        return true;
    }
    if (chunk.name == "tRNS"sv) {
        return !std::exchange(out.hasTransparency, true);
    }
    if (chunk.name == "pHYs"sv) {
        return readResolution(chunk.data, out);
    }
    return std::find(plainChunks.begin(), plainChunks.end(), chunk.name) != plainChunks.end();
}

// Nothing for a file that is large, damaged or in any way unusual.
std::optional<PlainPNG> plainPNG(const ZQSourceFile &file)
{
    const QByteArray &bytes = file.start();
    std::string_view rest(bytes.constData(), size_t(bytes.size()));
    if (bytes.size() != file.size() || !rest.starts_with("\x89PNG\r\n\x1a\n"sv)) {
        return std::nullopt;
    }
    rest.remove_prefix(8);
    PlainPNG out;
    std::optional<Chunk> chunk = takeChunk(rest);
    bool isPlain = chunk && readHeader(*chunk, out);
    for (chunk = takeChunk(rest); isPlain && chunk && chunk->name != "IEND"sv; chunk = takeChunk(rest)) {
        isPlain = readChunk(*chunk, out);
    }
    return isPlain && chunk ? std::optional(out) : std::nullopt;
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
    static constexpr png_byte ignored[] = "gAMA\0cHRM\0sRGB\0sBIT\0bKGD\0hIST\0tIME\0tEXt\0zTXt\0iTXt\0pHYs";
    static_assert(sizeof ignored == 5 * plainChunks.size(), "the same ones, each with a null behind it");
    if (setjmp(png_jmpbuf(reading.png))) {
        return false;
    }
    png_set_read_fn(reading.png, &reading, readBytes);
    png_set_keep_unknown_chunks(reading.png, PNG_HANDLE_CHUNK_NEVER, ignored, int(plainChunks.size()));
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

ZQBitmap decodePlain(const ZQSourceFile &file, const PlainPNG &plain)
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
    const std::optional<PlainPNG> plain = plainPNG(file);
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
    const std::optional<PlainPNG> plain = request.frame == 0 ? plainPNG(request.file) : std::nullopt;
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
