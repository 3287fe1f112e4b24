#include "Kit/Imaging/Decoders/ZQJPEG2000Layout.h"
#include "Kit/Imaging/Decoders/ZQByteWalker.h"

#include <limits>

namespace {

constexpr quint16 codestreamMark = 0xff4f;
constexpr quint16 sizeMark = 0xff51;
constexpr quint16 tilePartMark = 0xff90;
constexpr quint16 dataMark = 0xff93;
constexpr quint16 endMark = 0xffd9;
constexpr quint64 mostTiles = 65'535;

struct Span
{
    quint64 begin;
    quint64 end;
};

// Every number is stored with its high byte first.
template <class T>
T numberAt(ZQByteWalker &walker, quint64 at)
{
    return walker.value<T>(at, true);
}

std::optional<Span> codestreamInBoxes(ZQByteWalker &walker)
{
    constexpr quint32 codestreamBox = 0x6a703263; // "jp2c"
    for (quint64 at = 0; walker.size() - at >= 8;) {
        const bool isWide = numberAt<quint32>(walker, at) == 1;
        const quint64 headerBytes = isWide ? 16 : 8;
        const quint64 rest = walker.size() - at;
        quint64 length = isWide ? numberAt<quint64>(walker, at + 8) : numberAt<quint32>(walker, at);
        length = length == 0 ? rest : qMin(length, rest);
        if (length < headerBytes) {
            return std::nullopt;
        }
        if (numberAt<quint32>(walker, at + 4) == codestreamBox) {
            return Span{at + headerBytes, at + length};
        }
        at += length;
    }
    return std::nullopt;
}

bool readGrid(ZQByteWalker &walker, quint64 at, ZQJPEG2000Layout &layout)
{
    quint32 values[8]; // ends and origin of the area, size and origin of the first tile: across, down
    for (quint64 i = 0; i < 8; ++i) {
        values[i] = numberAt<quint32>(walker, at + 6 + i * 4);
        if (values[i] > quint32(std::numeric_limits<int>::max())) {
            return false;
        }
    }
    const auto [right, bottom, left, top, tileWidth, tileHeight, tileLeft, tileTop] = values;
    if (left >= right || top >= bottom || tileLeft > left || tileTop > top || tileWidth == 0 || tileHeight == 0) {
        return false;
    }
    const quint64 across = (quint64(right) - tileLeft + tileWidth - 1) / tileWidth;
    const quint64 down = (quint64(bottom) - tileTop + tileHeight - 1) / tileHeight;
    if (across > mostTiles || down > mostTiles || across * down > mostTiles) {
        return false;
    }
    layout.area = QRect(int(left), int(top), int(right - left), int(bottom - top));
    layout.firstTile = QPoint(int(tileLeft), int(tileTop));
    layout.tileSize = QSize(int(tileWidth), int(tileHeight));
    layout.tilesAcross = int(across);
    layout.isTile.assign(across * down, false);
    layout.components = numberAt<quint16>(walker, at + 38);
    return layout.components > 0;
}

// Where the marker `wanted` is among the segments from `at` on.
std::optional<quint64> markerFrom(ZQByteWalker &walker, quint64 at, quint16 wanted)
{
    while (!walker.isPastEnd()) {
        const auto mark = numberAt<quint16>(walker, at);
        if (mark == wanted) {
            return at;
        }
        const auto length = numberAt<quint16>(walker, at + 2);
        if (mark < 0xff00 || length < 2) {
            return std::nullopt;
        }
        at += quint64(length) + 2;
    }
    return std::nullopt;
}

// The end mark never occurs inside data.
quint64 endOfOpenPart(ZQByteWalker &walker, quint64 at, quint64 end)
{
    while (at + 2 <= end && numberAt<quint16>(walker, at) != endMark) {
        ++at;
    }
    return at + 2 <= end ? at : end;
}

void readTileParts(ZQByteWalker &walker, Span rest, ZQJPEG2000Layout &layout)
{
    quint64 at = rest.begin;
    while (at < rest.end && numberAt<quint16>(walker, at) == tilePartMark) {
        const auto tile = numberAt<quint16>(walker, at + 4);
        const quint64 length = numberAt<quint32>(walker, at + 6);
        const std::optional<quint64> mark = markerFrom(walker, at + 12, dataMark);
        if (!mark || *mark + 2 > rest.end || tile >= layout.isTile.size()) {
            return;
        }
        const quint64 data = *mark + 2;
        const quint64 next = length == 0 ? endOfOpenPart(walker, data, rest.end) : at + length;
        if (next < data) {
            return;
        }
        layout.dataEnd = qMin(next, rest.end);
        layout.dataBytes += layout.dataEnd - data;
        layout.parts.push_back({tile, at});
        layout.isTile[tile] = layout.isTile[tile] || layout.dataEnd > data;
        at = next;
    }
    layout.isWhole = at + 2 <= rest.end && numberAt<quint16>(walker, at) == endMark;
}

} // namespace

QRect ZQJPEG2000Layout::tileArea(int tile) const
{
    const qint64 left = firstTile.x() + qint64(tile % tilesAcross) * tileSize.width();
    const qint64 top = firstTile.y() + qint64(tile / tilesAcross) * tileSize.height();
    const qint64 right = qMin<qint64>(left + tileSize.width(), qint64(area.x()) + area.width());
    const qint64 bottom = qMin<qint64>(top + tileSize.height(), qint64(area.y()) + area.height());
    const qint64 shownLeft = qMax<qint64>(left, area.x());
    const qint64 shownTop = qMax<qint64>(top, area.y());
    return QRect(int(shownLeft), int(shownTop), int(qMax<qint64>(right - shownLeft, 0)),
                 int(qMax<qint64>(bottom - shownTop, 0)));
}

qint64 ZQJPEG2000Layout::coveredPixels() const
{
    qint64 pixels = 0;
    for (int tile = 0; tile < int(isTile.size()); ++tile) {
        const QSize size = isTile[size_t(tile)] ? tileArea(tile).size() : QSize(0, 0);
        pixels += qint64(size.width()) * size.height();
    }
    return pixels;
}

std::optional<ZQJPEG2000Layout> zqLayoutOfJPEG2000(const ZQSourceFile::Bytes &bytes)
{
    ZQByteWalker walker(bytes.data(), bytes.size());
    ZQJPEG2000Layout layout;
    layout.isFile = numberAt<quint16>(walker, 0) != codestreamMark;
    const std::optional<Span> codestream =
        layout.isFile ? codestreamInBoxes(walker) : std::optional(Span{0, walker.size()});
    if (!codestream || numberAt<quint16>(walker, codestream->begin) != codestreamMark ||
        numberAt<quint16>(walker, codestream->begin + 2) != sizeMark ||
        !readGrid(walker, codestream->begin + 2, layout)) {
        return std::nullopt;
    }
    const std::optional<quint64> tiles = markerFrom(walker, codestream->begin + 2, tilePartMark);
    if (!tiles) {
        return std::nullopt;
    }
    readTileParts(walker, {*tiles, codestream->end}, layout);
    return layout;
}

void zqCloseTilesOfJPEG2000(ZQSourceFile::Bytes &bytes, const ZQJPEG2000Layout &layout)
{
    constexpr quint64 countPlace = 11;
    constexpr int mostParts = 255;
    std::vector<int> counts(layout.isTile.size(), 0);
    for (const ZQJPEG2000Layout::TilePart &part : layout.parts) {
        ++counts[part.tile];
    }
    for (const ZQJPEG2000Layout::TilePart &part : layout.parts) {
        bytes.data()[part.place + countPlace] = uchar(qMin(counts[part.tile], mostParts));
    }
}
