#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace {

constexpr int headerBytes = 18;
constexpr int longestRun = 128;

struct Header
{
    int idLength = 0;
    bool hasMap = false;
    int type = 0; // without the run-length bit: 1 mapped, 2 colour, 3 grey
    bool isRunLength = false;
    int mapFirst = 0;
    int mapCount = 0;
    int mapDepth = 0;
    int width = 0;
    int height = 0;
    int depth = 0;
    int alphaBits = 0;
    bool fromRight = false;
    bool fromTop = false;

    int bytesPerPixel() const { return (depth + 7) / 8; }
};

using Pixel = std::array<uchar, 4>;

bool isDepth(int bits)
{
    constexpr std::array depths{8, 15, 16, 24, 32};
    return std::find(depths.begin(), depths.end(), bits) != depths.end();
}

std::optional<Header> readHeader(QFile &file)
{
    const QByteArray bytes = file.read(headerBytes);
    if (bytes.size() < headerBytes) {
        return std::nullopt;
    }
    const auto *raw = reinterpret_cast<const uchar *>(bytes.constData());
    const auto word = [raw](int offset) { return int(qFromLittleEndian<quint16>(raw + offset)); };
    Header out;
    out.idLength = raw[0];
    out.hasMap = raw[1] == 1;
    out.type = raw[2] & 7;
    out.isRunLength = (raw[2] & 8) != 0;
    out.mapFirst = word(3);
    out.mapCount = word(5);
    out.mapDepth = raw[7];
    out.width = word(12);
    out.height = word(14);
    out.depth = raw[16];
    out.alphaBits = raw[17] & 15;
    out.fromRight = (raw[17] & 16) != 0;
    out.fromTop = (raw[17] & 32) != 0;
    return isDepth(out.depth) && (!out.hasMap || isDepth(out.mapDepth)) ? std::optional(out) : std::nullopt;
}

// 5 bits → 8 bits, the highest staying the highest.
uchar widened(int five)
{
    return uchar((five << 3) | (five >> 2));
}

Pixel colourOf(const uchar *raw, int depth, bool useAlpha)
{
    switch (depth) {
    case 8:
        return {raw[0], raw[0], raw[0], 255};
    case 15:
    case 16: {
        const int value = raw[0] | raw[1] << 8;
        const uchar alpha = useAlpha && depth == 16 && !(value & 0x8000) ? 0 : 255;
        return {widened(value >> 10 & 31), widened(value >> 5 & 31), widened(value & 31), alpha};
    }
    case 24:
        return {raw[2], raw[1], raw[0], 255};
    default:
        return {raw[2], raw[1], raw[0], useAlpha ? raw[3] : uchar(255)};
    }
}

// Hands out the pixels in stored order.
class PixelReader
{
public:
    PixelReader(QFile &file, const Header &header) : m_file(file), m_header(header) {}

    bool readMap()
    {
        if (!m_header.hasMap) {
            return m_header.type != 1;
        }
        const int bytes = (m_header.mapDepth + 7) / 8;
        const QByteArray raw = m_file.read(qint64(bytes) * m_header.mapCount);
        for (qsizetype i = 0; i + bytes <= raw.size(); i += bytes) {
            m_map.append(colourOf(reinterpret_cast<const uchar *>(raw.constData() + i), m_header.mapDepth,
                                  m_header.mapDepth == 32));
        }
        return true;
    }

    bool next(Pixel &pixel)
    {
        if (m_header.isRunLength && m_left == 0) {
            uchar packet = 0;
            if (!m_file.getChar(reinterpret_cast<char *>(&packet))) {
                return false;
            }
            m_left = (packet & 127) + 1;
            m_repeats = (packet & 128) != 0;
            if (m_repeats && !readPixel()) {
                return false;
            }
        }
        if (!(m_header.isRunLength && m_repeats) && !readPixel()) {
            return false;
        }
        --m_left;
        pixel = m_pixel;
        return true;
    }

private:
    bool readPixel()
    {
        std::array<uchar, 4> raw{};
        const int bytes = m_header.bytesPerPixel();
        if (m_file.read(reinterpret_cast<char *>(raw.data()), bytes) != bytes) {
            return false;
        }
        if (m_header.type != 1) {
            m_pixel = colourOf(raw.data(), m_header.depth, m_header.alphaBits > 0);
            return true;
        }
        const int index = (bytes > 1 ? raw[0] | raw[1] << 8 : raw[0]) - m_header.mapFirst;
        m_pixel = index >= 0 && index < m_map.size() ? m_map.at(index) : Pixel{0, 0, 0, 255};
        return true;
    }

    QFile &m_file;
    const Header &m_header;
    QList<Pixel> m_map;
    Pixel m_pixel{};
    int m_left = 0;
    bool m_repeats = false;
};

// A header may promise no more than its file can hold.
bool checkHeader(const QString &name, const Header &header, qint64 fileSize, ZQError *error)
{
    if (!zqCheckSize(name, header.width, header.height, zqMaximumPixelsInMemory, error)) {
        return false;
    }
    const qint64 pixels = qint64(header.width) * header.height;
    const qint64 possible = fileSize / header.bytesPerPixel() * (header.isRunLength ? longestRun : 1);
    if (possible < pixels / 100) {
        zqSetError(error, zqDamagedError(name));
        return false;
    }
    return true;
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &source, ZQError *error)
{
    QFile file;
    const std::optional<Header> header = source.openIn(file) ? readHeader(file) : std::nullopt;
    if (!header) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = header->width;
    out.pixelHeight = header->height;
    out.bitsPerSample = header->depth == 15 || header->depth == 16 ? 5 : 8;
    out.hasAlpha = header->alphaBits > 0;
    out.colorModel = header->type == 3 ? QStringLiteral("Gray") : QStringLiteral("RGB");
    return out;
}

// Answers how many rows were there.
int readRows(PixelReader &pixels, const Header &header, QImage &image)
{
    Pixel pixel{};
    for (int row = 0; row < header.height; ++row) {
        uchar *line = image.scanLine(header.fromTop ? row : header.height - 1 - row);
        for (int column = 0; column < header.width; ++column) {
            if (!pixels.next(pixel)) {
                return row;
            }
            uchar *out = line + size_t(header.fromRight ? header.width - 1 - column : column) * 4;
            std::copy(pixel.begin(), pixel.end(), out);
        }
    }
    return header.height;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    QFile file;
    const std::optional<Header> header = request.file.openIn(file) ? readHeader(file) : std::nullopt;
    if (!header) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    if (!checkHeader(request.file.name(), *header, file.size(), error)) {
        return {};
    }
    QImage image(header->width, header->height, QImage::Format_RGBA8888);
    image.fill(0);
    PixelReader pixels(file, *header);
    const bool begun = !image.isNull() && file.seek(headerBytes + header->idLength) && pixels.readMap();
    const int rows = begun ? readRows(pixels, *header, image) : 0;
    if (!zqIsPartOfPicture(rows, header->height)) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    ZQBitmap bitmap(image);
    bitmap.setIncomplete(rows < header->height);
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqTGADecoder{properties, decode};
