// How files are laid out: which format they are of, and whether all of them is there. Nothing here is decoded but
// icons.

#include "Kit/Imaging/Decoders/ZQFrameWalk.h"
#include "Kit/Imaging/Decoders/ZQImageFormat.h"
#include "Kit/Imaging/Decoders/ZQJPEG2000Layout.h"
#include "Tests/Kit/Imaging/Decoders/Bytes.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <limits>

namespace {

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

struct Grid
{
    quint32 right = 20;
    quint32 bottom = 10;
    quint32 left = 0;
    quint32 top = 0;
    quint32 tileWidth = 12;
    quint32 tileHeight = 6;
    quint32 tileLeft = 0;
    quint32 tileTop = 0;
    quint16 components = 3;
};

// The codestream up to its first tile.
QByteArray openingOf(const Grid &g)
{
    QByteArray size = big(quint16(0));
    for (const quint32 value : {g.right, g.bottom, g.left, g.top, g.tileWidth, g.tileHeight, g.tileLeft, g.tileTop}) {
        size += big(value);
    }
    size += big(g.components);
    return hex("ff4f ff51") + big(quint16(size.size() + 2)) + size + hex("ff52 0004 abcd");
}

// A part of a tile with so many bytes of data; its length is said, or left open.
QByteArray partOf(int tile, int data, bool isOpen = false)
{
    const QByteArray inside = hex("ff58 0003 01") + hex("ff93") + QByteArray(data, 'd');
    return hex("ff90 000a") + big(quint16(tile)) + big(quint32(isOpen ? 0 : 12 + inside.size())) + hex("0001") + inside;
}

std::optional<ZQJPEG2000Layout> layoutOf(const QByteArray &bytes)
{
    return zqLayoutOfJPEG2000(ZQSourceFile::Bytes(fileOf(bytes, "a.jp2")));
}

// "whole, tiles 1010, 20 bytes, to 123, parts 0@50 2@70, 200 pixels"
std::string told(const std::optional<ZQJPEG2000Layout> &layout)
{
    if (!layout) {
        return "nothing";
    }
    std::string out = layout->isWhole ? "whole, tiles " : "cut, tiles ";
    for (const bool isThere : layout->isTile) {
        out += isThere ? '1' : '0';
    }
    out += ", " + std::to_string(layout->dataBytes) + " bytes, to " + std::to_string(layout->dataEnd) + ", parts";
    for (const auto &part : layout->parts) {
        out += ' ' + std::to_string(part.tile) + '@' + std::to_string(part.place);
    }
    return out + ", " + std::to_string(layout->coveredPixels()) + " pixels";
}

QByteArray pngOf(int side, QRgb color)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "PNG"));
    return bytes;
}

// The pictures lie behind the directory, one after another.
QByteArray icoOf(const QList<QByteArray> &pictures)
{
    QByteArray directory;
    QByteArray data;
    for (const QByteArray &picture : pictures) {
        directory += hex("0808 0000 0100 2000") + little(quint32(picture.size())) +
                     little(quint32(6 + 16 * pictures.size() + data.size()));
        data += picture;
    }
    return hex("0000 0100") + little(quint16(pictures.size())) + directory + data;
}

QByteArray icnsOf(const QList<QByteArray> &pictures)
{
    QByteArray data;
    for (const QByteArray &picture : pictures) {
        data += "ic07" + big(quint32(picture.size() + 8)) + picture;
    }
    return "icns" + big(quint32(data.size() + 8)) + data;
}

// Its sides, largest first, with "!" behind when the file is not whole; of nothing, the reason why.
std::string iconsIn(const QByteArray &bytes)
{
    const ZQSourceFile file = fileOf(bytes, "a.ico");
    ZQError error;
    const auto properties = zqIconDecoder.properties(file, &error);
    if (!properties) {
        EXPECT_TRUE(zqIconDecoder.decode({file, {}}, nullptr).isNull());
        return error.userInfo.value(ZQError::failureReasonKey).toString().toStdString();
    }
    std::string out;
    for (int i = 0; i < properties->frameCount; ++i) {
        const ZQBitmap bitmap = zqIconDecoder.decode({file, {}, i}, nullptr);
        out += (i ? " " : "") + std::to_string(bitmap.width()) + (bitmap.isIncomplete() ? "!" : "");
    }
    EXPECT_EQ(drawn(zqIconDecoder, {file, {}, properties->frameCount}),
              "It has no frame " + std::to_string(properties->frameCount) + ".");
    return out;
}

struct Bmp
{
    int width = 2;
    int height = 2; // negative: from the top
    int bits = 24;
    int compression = 0;
    QByteArray palette = {};
    QByteArray data = {};
};

QByteArray bmp(const Bmp &b)
{
    const quint32 start = quint32(54 + b.palette.size());
    return "BM" + little(quint32(start + quint32(b.data.size()))) + little(quint32(0)) + little(start) +
           little(quint32(40)) + little(qint32(b.width)) + little(qint32(b.height)) + little(quint16(1)) +
           little(quint16(b.bits)) + little(quint32(b.compression)) + little(quint32(b.data.size())) +
           little(quint32(2835)) + little(quint32(2835)) + little(quint32(b.palette.size() / 4)) + little(quint32(0)) +
           b.palette + b.data;
}

} // namespace

TEST(JPEG2000LayoutTest, TilesAreFoundWhereTheyAre)
{
    const QByteArray opening = openingOf({});
    const QByteArray codestream = opening + partOf(0, 5) + partOf(2, 1) + partOf(0, 0) + partOf(3, 7) + hex("ffd9");
    const auto whole = layoutOf(codestream);
    EXPECT_EQ(told(whole), "whole, tiles 1011, 13 bytes, to 137, parts 0@48 2@72 0@92 3@111, 152 pixels");
    EXPECT_FALSE(whole->isFile);
    EXPECT_EQ(whole->components, 3);
    EXPECT_EQ(whole->area, QRect(0, 0, 20, 10));
    EXPECT_EQ(whole->firstTile, QPoint(0, 0));
    EXPECT_EQ(whole->tileSize, QSize(12, 6));
    EXPECT_EQ(whole->tilesAcross, 2);
    EXPECT_EQ(whole->tileArea(3), QRect(12, 6, 8, 4));

    const QByteArray signature = hex("0000000c 6a502020 0d0a870a");
    for (const QByteArray &box : {big(quint32(codestream.size() + 8)) + "jp2c", big(quint32(0)) + "jp2c",
                                  QByteArray("\0\0\0\1jp2c", 8) + big(quint64(codestream.size() + 16))}) {
        const auto inBoxes = layoutOf(signature + box + codestream);
        ASSERT_TRUE(inBoxes);
        EXPECT_TRUE(inBoxes->isFile);
        EXPECT_TRUE(inBoxes->isWhole);
        EXPECT_EQ(inBoxes->dataEnd, whole->dataEnd + quint64(signature.size() + box.size()));
    }
    // What is behind the box is none of the picture.
    const QByteArray shortBox = big(quint32(codestream.size() + 6)) + "jp2c";
    EXPECT_FALSE(layoutOf(signature + shortBox + codestream)->isWhole);
    EXPECT_EQ(told(layoutOf(signature)), "nothing");
    EXPECT_EQ(told(layoutOf(signature + big(quint32(7)) + "free" + codestream)), "nothing") << "a box without an end";
    EXPECT_EQ(told(layoutOf(signature + hex("00000008") + "jp2c" + codestream)),
              "cut, tiles 0000, 0 bytes, to 0, parts, 0 pixels");
    EXPECT_EQ(told(layoutOf({})), "nothing");
}

TEST(JPEG2000LayoutTest, WhatIsCutIsKnown)
{
    const QByteArray opening = openingOf({});
    const QByteArray first = partOf(0, 5);
    const QByteArray second = partOf(1, 4);
    const QByteArray whole = opening + first + second + hex("ffd9");
    struct Row
    {
        const char *what;
        QByteArray bytes;
        const char *told;
    };
    for (const Row &row :
         {Row{"without an end", whole.chopped(2), "cut, tiles 1100, 9 bytes, to 95, parts 0@48 1@72, 120 pixels"},
          Row{"half an end", whole.chopped(1), "cut, tiles 1100, 9 bytes, to 95, parts 0@48 1@72, 120 pixels"},
          Row{"within data", whole.chopped(5), "cut, tiles 1100, 6 bytes, to 92, parts 0@48 1@72, 120 pixels"},
          Row{"before data", whole.chopped(6), "cut, tiles 1000, 5 bytes, to 91, parts 0@48 1@72, 72 pixels"},
          Row{"within a header", whole.chopped(7), "cut, tiles 1000, 5 bytes, to 72, parts 0@48, 72 pixels"},
          Row{"before the tiles", opening, "nothing"},
          Row{"open to the end", opening + partOf(0, 5, true) + hex("ffd9"),
              "whole, tiles 1000, 5 bytes, to 72, parts 0@48, 72 pixels"},
          Row{"open without an end", opening + partOf(0, 5, true),
              "cut, tiles 1000, 5 bytes, to 72, parts 0@48, 72 pixels"},
          Row{"a tile that is none", opening + first + partOf(4, 5),
              "cut, tiles 1000, 5 bytes, to 72, parts 0@48, 72 pixels"},
          Row{"the last tile", opening + partOf(3, 1) + hex("ffd9"),
              "whole, tiles 0001, 1 bytes, to 68, parts 3@48, 32 pixels"},
          Row{"shorter than itself", opening + hex("ff90 000a 0000 00000010 0001 ff58 0003 01 ff93 646464"),
              "cut, tiles 0000, 0 bytes, to 0, parts, 0 pixels"},
          Row{"no marker", opening + hex("ff90 000a 0000 00000010 0001 fe58 0003 01 ff93 646464"),
              "cut, tiles 0000, 0 bytes, to 0, parts, 0 pixels"},
          Row{"a marker without length", opening + hex("ff90 000a 0000 00000010 0001 ff58 0001 01 ff93 646464"),
              "cut, tiles 0000, 0 bytes, to 0, parts, 0 pixels"}}) {
        EXPECT_EQ(told(layoutOf(row.bytes)), row.told) << row.what;
    }
}

TEST(JPEG2000LayoutTest, AGridThatMakesNoSenseIsNone)
{
    const quint32 largest = 0x7fffffff;
    struct Row
    {
        Grid grid;
        int tiles; // 0: none
        QRect first = {};
    };
    for (const Row &row : {Row{{.left = 19, .top = 9}, 4, {19, 9, 0, 0}},
                           Row{{.left = 20}, 0},
                           Row{{.top = 10}, 0},
                           Row{{.left = 3, .top = 2, .tileLeft = 3, .tileTop = 2}, 4, {3, 2, 12, 6}},
                           Row{{.left = 4, .top = 3, .tileLeft = 3, .tileTop = 2}, 4, {4, 3, 11, 5}},
                           Row{{.left = 2, .tileLeft = 3}, 0},
                           Row{{.top = 2, .tileTop = 3}, 0},
                           Row{{.tileWidth = 0}, 0},
                           Row{{.tileHeight = 0}, 0},
                           Row{{.tileWidth = 20, .tileHeight = 10}, 1, {0, 0, 20, 10}},
                           Row{{.tileWidth = 19, .tileHeight = 9}, 4, {0, 0, 19, 9}},
                           Row{{.tileWidth = largest, .tileHeight = largest}, 1, {0, 0, 20, 10}},
                           Row{{.tileWidth = largest + 1}, 0},
                           Row{{.components = 0}, 0},
                           Row{{.components = 1}, 4, {0, 0, 12, 6}},
                           Row{{.right = 65535, .bottom = 1, .tileWidth = 1}, 65535, {0, 0, 1, 1}},
                           Row{{.right = 65536, .bottom = 1, .tileWidth = 1}, 0},
                           Row{{.right = 1, .bottom = 65535, .tileHeight = 1}, 65535, {0, 0, 1, 1}},
                           Row{{.right = 1, .bottom = 65536, .tileHeight = 1}, 0},
                           Row{{.right = 256, .bottom = 256, .tileWidth = 1, .tileHeight = 1}, 0},
                           Row{{.right = 255, .bottom = 257, .tileWidth = 1, .tileHeight = 1}, 65535, {0, 0, 1, 1}}}) {
        const auto layout = layoutOf(openingOf(row.grid) + partOf(0, 1));
        SCOPED_TRACE(testing::Message() << row.grid.right << ' ' << row.grid.left << ' ' << row.grid.tileWidth);
        EXPECT_EQ(layout ? int(layout->isTile.size()) : 0, row.tiles);
        if (layout) {
            EXPECT_EQ(layout->tileArea(0), row.first);
        }
    }
    QByteArray other = openingOf({}) + partOf(0, 1);
    other[3] = 0x52; // no size where it has to be
    EXPECT_EQ(told(layoutOf(other)), "nothing");
}

TEST(JPEG2000LayoutTest, ClosedTilesSayHowManyPartsThereAre)
{
    QByteArray file = openingOf({});
    QList<qsizetype> places;
    for (const int tile : {0, 1, 0}) {
        places.append(file.size());
        file += partOf(tile, 3);
    }
    for (int i = 0; i < 256; ++i) {
        file += partOf(2, 0);
    }
    const ZQSourceFile source = fileOf(file, "a.j2k");
    ZQSourceFile::Bytes bytes(source);
    const auto layout = zqLayoutOfJPEG2000(bytes);
    ASSERT_TRUE(layout);
    zqCloseTilesOfJPEG2000(bytes, *layout);
    EXPECT_EQ(bytes.data()[places.at(0) + 11], 2);
    EXPECT_EQ(bytes.data()[places.at(1) + 11], 1);
    EXPECT_EQ(bytes.data()[places.at(2) + 11], 2);
    EXPECT_EQ(bytes.data()[layout->parts.back().place + 11], 255);
}

TEST(FrameWalkTest, AFileIsWholeWhenNothingThatItBeginsIsMissing)
{
    const QByteArray start = "GIF89a" + hex("0200 0200 80 00 00") + QByteArray(6, 'p');
    const QByteArray image = "," + hex("0000 0000 0200 0200 80") + QByteArray(6, 'p') + hex("02 03 aabbcc 01 dd 00");
    const QByteArray extension = "!" + hex("f9 04 00000000 00");
    const QByteArray directory = little(quint16(1)) + QByteArray(12, 'e');
    const QByteArray tiff = "II*" + QByteArray(1, '\0') + little(quint32(8)) + directory + little(quint32(30)) +
                            QByteArray(4, 'x') + directory + little(quint32(0));
    const QByteArray bigTiff =
        QByteArray("MM\0+\0\x08\0\0", 8) + big(quint64(16)) + big(quint64(1)) + QByteArray(20, 'e') + big(quint64(0));
    const QByteArray codestream = openingOf({}) + partOf(0, 5) + hex("ffd9");
    struct Row
    {
        const char *what;
        ZQImageFormat format;
        QByteArray bytes;
        bool endsEarly;
    };
    using Format = ZQImageFormat;
    for (const Row &row : {
             Row{"a trailer", Format::GIF, start + extension + image + ';', false},
             Row{"no trailer", Format::GIF, start + image, false},
             Row{"no table of colours", Format::GIF, "GIF89a" + hex("0200 0200 07 00 00") + extension + ';', false},
             Row{"no picture, no trailer", Format::GIF, start + extension, true},
             Row{"cut in a block", Format::GIF, start + image.chopped(2), true},
             Row{"no last block", Format::GIF, start + image.chopped(1), true},
             Row{"cut in the colours", Format::GIF, start.chopped(1), true},
             Row{"cut in the second", Format::GIF, start + image + image.left(9), true},
             Row{"something else behind", Format::GIF, start + image + "?", false},
             Row{"two pages", Format::TIFF, tiff, false},
             Row{"a cut second page", Format::TIFF, tiff.chopped(1), true},
             Row{"a second page beyond", Format::TIFF, tiff.left(30), true},
             Row{"no page", Format::TIFF, QByteArray("II*\0\0\0\0\0", 8), false},
             Row{"a circle", Format::TIFF, tiff.chopped(4) + little(quint32(8)), false},
             Row{"wide numbers", Format::TIFF, bigTiff, false},
             Row{"wide numbers, cut", Format::TIFF, bigTiff.chopped(1), true},
             Row{"entries without end", Format::TIFF, bigTiff.left(16) + big(~quint64(0) / 20) + bigTiff.mid(24), true},
             Row{"an end mark", Format::JPEG2000, codestream, false},
             Row{"no end mark", Format::JPEG2000, codestream.chopped(1), true},
             Row{"no picture", Format::JPEG2000, codestream.left(20), false},
             Row{"of another format", Format::PNG, start.left(8), false},
             Row{"nothing", Format::GIF, {}, true},
         }) {
        EXPECT_EQ(zqEndsBeforeLastFrame(fileOf(row.bytes, "a"), row.format), row.endsEarly) << row.what;
    }
}

TEST(ImageFormatTest, IsToldByTheContentFirst)
{
    using Format = ZQImageFormat;
    struct Row
    {
        QByteArray head;
        Format format;
        const char *name = "a";
    };
    const QByteArray icon = hex("0000 0100 0100 1010 00 00 0100 2000 01000000 16000000");
    const auto bmpOf = [](quint32 headerSize, qsizetype size = 30) {
        return ("BM" + QByteArray(12, '\0') + little(headerSize) + QByteArray(50, '\0')).left(size);
    };
    const auto tgaOf = [](int mapType, int type, int depth, int width = 1, int height = 1) {
        return QByteArray("\0", 1) + char(mapType) + char(type) + QByteArray(9, '\0') + little(quint16(width)) +
               little(quint16(height)) + char(depth) + '\0';
    };
    const auto with = [](QByteArray bytes, qsizetype place, char value) {
        bytes[place] = value;
        return bytes;
    };
    QList<Row> rows{{icon, Format::ICO},
                    {with(icon, 2, 2), Format::ICO},
                    {with(icon, 2, 3), Format::Unknown},
                    {with(icon, 3, 1), Format::Unknown},
                    {with(icon, 4, 0), Format::Unknown},
                    {with(with(icon, 4, 0), 5, 1), Format::ICO},
                    {with(icon, 9, 1), Format::Unknown},
                    {with(icon, 14, 0), Format::Unknown},
                    {icon.chopped(1), Format::Unknown},
                    {bmpOf(12), Format::BMP},
                    {bmpOf(40), Format::BMP},
                    {bmpOf(256), Format::BMP},
                    {bmpOf(257), Format::Unknown},
                    {bmpOf(39), Format::Unknown},
                    {bmpOf(40, 29), Format::Unknown},
                    {QByteArray(1019, 'x') + "%PDF-", Format::PDF},
                    {QByteArray(1020, 'x') + "%PDF-", Format::Unknown},
                    {tgaOf(0, 4, 24), Format::Unknown, "a.tga"},
                    {tgaOf(0, 2, 9), Format::Unknown, "a.tga"},
                    {tgaOf(2, 2, 24), Format::Unknown, "a.tga"},
                    {tgaOf(0, 2, 24, 0), Format::Unknown, "a.tga"},
                    {tgaOf(0, 2, 24, 1, 0), Format::Unknown, "a.tga"},
                    {tgaOf(0, 2, 24, 256, 256), Format::TGA, "a.tga"},
                    {tgaOf(0, 2, 24).chopped(1), Format::Unknown, "a.tga"},
                    {tgaOf(0, 2, 24), Format::TGA, "a.TARGA"},
                    {tgaOf(0, 2, 24), Format::Unknown, "a.png"},
                    {tgaOf(0, 2, 24), Format::Unknown, "a.tga/b"},
                    {tgaOf(0, 2, 24) + QByteArray(9, 'x') + "TRUEVISION-XFILE.", Format::Unknown},
                    {tgaOf(0, 2, 24) + QByteArray(9, 'x') + QByteArray("TRUEVISION-XFILE.\0", 18), Format::TGA},
                    {tgaOf(0, 2, 24) + QByteArray(8, 'x') + QByteArray("TRUEVISION-XFILE.\0", 18), Format::Unknown},
                    {tgaOf(0, 2, 24) + QByteArray(9, 'x') + QByteArray("TRUEVISION-XFILF.\0", 18), Format::Unknown},
                    {"II*" + QByteArray(1, '\0'), Format::TIFF, "a.tif"},
                    {"II*" + QByteArray(1, '\0'), Format::CameraRaw, "a.NEF"},
                    {"II*" + QByteArray(5, '\0') + "CR", Format::TIFF, "a.tif"},
                    {"II*" + QByteArray(5, '\0') + "CR\2", Format::CameraRaw, "a.tif"},
                    {"II*" + QByteArray(5, '\0') + "CX\2", Format::TIFF, "a.tif"},
                    {{}, Format::Unknown, "a.tga"}};
    for (const int type : {1, 2, 3, 9, 10, 11}) {
        rows.append({tgaOf(1, type, 24), Format::TGA, "a.tga"});
    }
    for (const int depth : {8, 15, 16, 24, 32}) {
        rows.append({tgaOf(0, 2, depth), Format::TGA, "a.tga"});
    }
    for (const auto &[mark, format] :
         std::initializer_list<std::pair<QByteArray, Format>>{{hex("ffd8ff"), Format::JPEG},
                                                              {hex("89504e470d0a1a0a"), Format::PNG},
                                                              {"GIF87a", Format::GIF},
                                                              {"GIF89a", Format::GIF},
                                                              {"RIFF....WEBPVP8", Format::WebP},
                                                              {hex("0000000c6a5020200d0a870a"), Format::JPEG2000},
                                                              {hex("ff4fff51"), Format::JPEG2000},
                                                              {hex("0000000c4a584c200d0a870a"), Format::JPEGXL},
                                                              {hex("ff0a"), Format::JPEGXL},
                                                              {"....ftypheic", Format::HEIF},
                                                              {"....ftypmif1", Format::HEIF},
                                                              {"....ftypavis", Format::HEIF},
                                                              {"8BPS", Format::PSD},
                                                              {QByteArray("SQLite format 3\0", 16), Format::Acorn},
                                                              {"icns", Format::ICNS},
                                                              {"%!PS", Format::PostScript},
                                                              {hex("c5d0d3c6"), Format::PostScript},
                                                              {"FUJIFILMCCD-RAW", Format::CameraRaw},
                                                              {"....ftypcrx ", Format::CameraRaw},
                                                              {"II....HEAPCCDR", Format::CameraRaw},
                                                              {QByteArray("MM\0+", 4), Format::TIFF}}) {
        rows.append({mark, format});
        rows.append({mark.chopped(1), Format::Unknown});
    }
    for (const Row &row : std::as_const(rows)) {
        EXPECT_EQ(zqImageFormatOfFile(fileOf(row.head, row.name)), row.format)
            << row.head.left(40).toHex().constData() << ' ' << row.name;
    }
}

TEST(IconTest, AllPicturesOfAFileAreFoundTheLargestFirst)
{
    const QByteArray small = pngOf(8, 0xff0000ff);
    const QByteArray middle = pngOf(9, 0xff00ff00);
    const QByteArray large = pngOf(16, 0x80ff0000);
    const QByteArray ico = icoOf({small, large, middle});
    const QByteArray icns = icnsOf({small, large, middle});
    const QByteArray broken = QByteArray("\x89PNG").append(QByteArray(40, 'x'));
    struct Row
    {
        const char *what;
        QByteArray bytes;
        std::string sides;
    };
    for (const Row &row :
         {Row{"three", ico, "16 9 8"}, Row{"one that is none", icoOf({small, broken, middle}), "9 8"},
          Row{"the third missing from the directory", hex("0000 0100 0300"), damaged},
          Row{"nothing", hex("0000 0100 0000"), damaged}, Row{"short", hex("0000 01"), damaged},
          Row{"empty", {}, damaged}, Row{"three of the other kind", icns, "16 9 8"},
          Row{"and what is no picture",
              "icns" + big(quint32(8 + 12 + icns.size() - 8)) + "TOC " + big(quint32(12)) + "none" + icns.mid(8),
              "16 9 8"},
          Row{"and a part without length",
              "icns" + big(quint32(8 + 8 + icns.size() - 8)) + "none" + big(quint32(0)) + icns.mid(8), "16 9 8"},
          Row{"said to be longer", "icns" + big(quint32(icns.size() + 1)) + icns.mid(8), "16! 9! 8!"},
          Row{"nothing of the other kind", "icns" + big(quint32(8)), damaged}, Row{"half a header", "icns", damaged}}) {
        EXPECT_EQ(iconsIn(row.bytes), row.sides) << row.what;
    }
    EXPECT_EQ(iconsIn(ico.chopped(middle.size())), "16! 8!");
    EXPECT_EQ(iconsIn(icns.chopped(middle.size() + 8)), "16! 8!");
    EXPECT_EQ(iconsIn(icnsOf(QList<QByteArray>(257, small))), QByteArray("8 ").repeated(256).trimmed().toStdString());
    EXPECT_EQ(described(zqIconDecoder, fileOf(ico, "a.ico")), "16x16 8 bits RGB alpha");
    EXPECT_EQ(zqIconDecoder.decode({fileOf(ico, "a.ico"), {4, 4}, 1}, nullptr).size(), QSize(4, 4));
}

TEST(BitmapFileTest, RowsAreCountedBeforeTheyAreDrawn)
{
    const QByteArray rows = hex("0000ff 00ff00 0000 ff0000 ffffff 0000"); // blue is first; two bytes fill a row
    const QByteArray palette = hex("00000000 0000ff00");
    struct Row
    {
        const char *what;
        QByteArray bytes;
        std::string drawn;
    };
    for (const Row &row : {
             Row{"from the bottom", bmp({.data = rows}), "2x2 0000ffff ffffffff ff0000ff 00ff00ff"},
             Row{"from the top", bmp({.height = -2, .data = rows}), "2x2 ff0000ff 00ff00ff 0000ffff ffffffff"},
             Row{"the upper row missing", bmp({.data = rows.left(8)}),
                 "2x2 00000000 00000000 ff0000ff 00ff00ff incomplete"},
             Row{"the lower row missing", bmp({.height = -2, .data = rows.left(8)}),
                 "2x2 ff0000ff 00ff00ff 00000000 00000000 incomplete"},
             Row{"half a row more", bmp({.data = rows.left(15)}), "2x2 00000000 00000000 ff0000ff 00ff00ff incomplete"},
             Row{"not a row", bmp({.data = rows.left(7)}), damaged},
             Row{"runs",
                 bmp({.width = 3,
                 .bits = 8,
                 .compression = 1,
                 .palette = palette,
                 .data = hex("0301 0000 0003 010001 00 0000 0001")}),
                 "3x2 ff0000ff 000000ff ff0000ff ff0000ff ff0000ff ff0000ff"},
             Row{"runs of half bytes",
                 bmp({.width = 4,
                 .bits = 4,
                 .compression = 2,
                 .palette = palette,
                 .data = hex("0411 0000 0004 0110 0000 0001")}),
                 "4x2 000000ff ff0000ff ff0000ff 000000ff ff0000ff ff0000ff ff0000ff ff0000ff"},
             Row{"runs of one row",
                 bmp({.width = 3, .bits = 8, .compression = 1, .palette = palette, .data = hex("0301 0000")}),
                 "3x2 00000000 00000000 00000000 ff0000ff ff0000ff ff0000ff incomplete"},
             Row{"runs without a row",
                 bmp({.width = 3, .bits = 8, .compression = 1, .palette = palette, .data = hex("0301")}), damaged},
             Row{"no size", bmp({.width = 0, .data = rows}), damaged},
             Row{"no header", bmp({.data = rows}).left(33), damaged},
             Row{"too large", bmp({.width = 32768, .height = 32768, .data = rows}), damaged},
             Row{"no height", bmp({.height = 0, .data = rows}), damaged},
             Row{"a height that cannot be turned", bmp({.height = std::numeric_limits<int>::min(), .data = rows}),
                 damaged},
         }) {
        EXPECT_EQ(drawn(zqBMPDecoder, {fileOf(row.bytes, "a.bmp"), {}}), row.drawn) << row.what;
    }
    // A step down two rows, then one across.
    const ZQSourceFile stepped = fileOf(bmp({.width = 2,
                                             .height = 5,
                                             .bits = 8,
                                             .compression = 1,
                                             .palette = palette,
                                             .data = hex("0201 0000 0002 0002 0201 0000")}),
                                        "a.bmp");
    const ZQBitmap bitmap = zqBMPDecoder.decode({stepped, {}}, nullptr);
    EXPECT_TRUE(bitmap.isIncomplete());
    EXPECT_EQ(bitmap.image().pixelColor(0, 0), QColor(0, 0, 0, 0)) << "the fifth row";
    EXPECT_EQ(bitmap.image().pixelColor(0, 1).red(), 255) << "the fourth";
    const ZQSourceFile fine = fileOf(bmp({.data = rows}), "a.bmp");
    EXPECT_EQ(drawn(zqBMPDecoder, {fine, {}, 1}), "It has no frame 1.");
    EXPECT_EQ(described(zqBMPDecoder, fine), "2x2 8 bits RGB");
    EXPECT_EQ(described(zqBMPDecoder, fileOf(bmp({.height = -2, .data = rows}), "a.bmp")), "2x2 8 bits RGB");
    EXPECT_EQ(described(zqBMPDecoder, fileOf("BM", "a.bmp")), damaged);
    EXPECT_EQ(zqBMPDecoder.decode({fine, {1, 1}}, nullptr).size(), QSize(1, 1));
}
