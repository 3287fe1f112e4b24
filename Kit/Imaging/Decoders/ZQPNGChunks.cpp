#include "Kit/Imaging/Decoders/ZQPNGChunks.h"

#include <QtEndian>

#include <png.h>

#include <algorithm>
#include <utility>

namespace {

using namespace std::string_view_literals;

bool isKnownKind(const ZQPNGOutline &png)
{
    const bool hasShades = png.colorType == PNG_COLOR_TYPE_GRAY || png.colorType == PNG_COLOR_TYPE_PALETTE;
    const bool hasChannels = png.colorType == PNG_COLOR_TYPE_RGB || png.colorType == PNG_COLOR_TYPE_GRAY_ALPHA ||
                             png.colorType == PNG_COLOR_TYPE_RGB_ALPHA;
    return png.depth == 8 ? hasShades || hasChannels
                          : hasShades && (png.depth == 1 || png.depth == 2 || png.depth == 4);
}

bool readHeader(const ZQPNGChunk &chunk, qint64 mostPixels, ZQPNGOutline &out)
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
    if (width < 1 || height < 1 || quint64(width) * height > quint64(mostPixels) || !isUsualWay || !isKnownKind(out)) {
        return false;
    }
    out.size = QSize(int(width), int(height));
    return true;
}

bool readResolution(std::string_view data, ZQPNGOutline &out)
{
    if (data.size() != 9 || data[8] != PNG_RESOLUTION_METER || out.pixelsPerMeter != 0) {
        return false;
    }
    out.pixelsPerMeter = qFromBigEndian<quint32>(data.data());
    return out.pixelsPerMeter != 0;
}

// Whether a chunk between the header and the end leaves the picture plain.
bool readChunk(const ZQPNGChunk &chunk, ZQPNGOutline &out)
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
    return std::find(zqPlainPNGChunks.begin(), zqPlainPNGChunks.end(), chunk.name) != zqPlainPNGChunks.end();
}

} // namespace

int ZQPNGOutline::dpi() const
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

bool ZQPNGOutline::isGray() const
{
    return !(colorType & PNG_COLOR_MASK_COLOR);
}

bool ZQPNGOutline::hasAlpha() const
{
    return hasTransparency || (colorType & PNG_COLOR_MASK_ALPHA);
}

std::optional<ZQPNGChunk> zqTakePNGChunk(std::string_view &rest)
{
    constexpr size_t around = 12; // length, name and checksum
    const quint32 length = rest.size() >= around ? qFromBigEndian<quint32>(rest.data()) : 0;
    if (rest.size() < around || length > rest.size() - around) {
        return std::nullopt;
    }
    const ZQPNGChunk chunk{rest.substr(4, 4), rest.substr(8, length)};
    rest.remove_prefix(length + around);
    return chunk;
}

std::optional<ZQPNGOutline> zqPlainPNGOutline(std::string_view bytes, qint64 mostPixels, bool mayHaveProfile)
{
    if (!bytes.starts_with("\x89PNG\r\n\x1a\n"sv)) {
        return std::nullopt;
    }
    bytes.remove_prefix(8);
    ZQPNGOutline out;
    std::optional<ZQPNGChunk> chunk = zqTakePNGChunk(bytes);
    bool isPlain = chunk && readHeader(*chunk, mostPixels, out);
    for (chunk = zqTakePNGChunk(bytes); isPlain && chunk && chunk->name != "IEND"sv; chunk = zqTakePNGChunk(bytes)) {
        isPlain = readChunk(*chunk, out) || (mayHaveProfile && chunk->name == "iCCP"sv);
    }
    return isPlain && chunk ? std::optional(out) : std::nullopt;
}
