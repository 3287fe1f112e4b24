// TGA and PSD, which are read here and not by a library: every field of their headers, pixel by pixel.

#include "Tests/Kit/Imaging/Decoders/Bytes.h"

#include <gtest/gtest.h>

namespace {

struct Targa
{
    int type = 2;
    int width = 2;
    int height = 1;
    int depth = 24;
    int descriptor = 0x20; // from the top
    QByteArray data = {};
    int idLength = 0;
    int mapType = 0;
    int mapFirst = 0;
    int mapCount = 0;
    int mapDepth = 0;
};

QByteArray tga(const Targa &t)
{
    return QByteArray(1, char(t.idLength)) + char(t.mapType) + char(t.type) + little(quint16(t.mapFirst)) +
           little(quint16(t.mapCount)) + char(t.mapDepth) + little(quint32(0)) + little(quint16(t.width)) +
           little(quint16(t.height)) + char(t.depth) + char(t.descriptor) + t.data;
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

struct Photoshop
{
    int channels = 3;
    int width = 2;
    int height = 1;
    int depth = 8;
    int mode = 3;
    QByteArray data = {}; // the composite
    int version = 1;
    int compression = 0;
    QByteArray palette = {};
    int layers = 0; // 0: no list of layers
};

QByteArray psd(const Photoshop &p)
{
    const bool isLarge = p.version == 2;
    const auto length = [&](qsizetype size) { return isLarge ? big(qint64(size)) : big(quint32(size)); };
    const QByteArray layers =
        p.layers == 0 ? QByteArray() : length(4) + big(qint16(p.layers)) + QByteArray("\0\0\0\0\0\0", 6);
    return "8BPS" + big(quint16(p.version)) + QByteArray(6, '\0') + big(quint16(p.channels)) + big(quint32(p.height)) +
           big(quint32(p.width)) + big(quint16(p.depth)) + big(quint16(p.mode)) + big(quint32(p.palette.size())) +
           p.palette + big(quint32(3)) + "res" + length(layers.size()) + layers + big(quint16(p.compression)) + p.data;
}

struct Row
{
    const char *what;
    QByteArray bytes;
    std::string drawn;
    std::string described = {}; // empty: not asked for
};

void expectEach(const ZQDecoder &decoder, const char *name, const QList<Row> &rows)
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(drawn(decoder, {fileOf(row.bytes, name), {}}), row.drawn);
        if (!row.described.empty()) {
            EXPECT_EQ(described(decoder, fileOf(row.bytes, name)), row.described);
        }
    }
}

} // namespace

TEST(TargaTest, EveryKindOfPixelComesOutAsItWasMeant)
{
    const QByteArray four = hex("0000ff 00ff00 ff0000 ffffff"); // red, green, blue, white
    expectEach(
        zqTGADecoder, "a.tga",
        {{"grey", tga({.type = 3, .depth = 8, .data = hex("0ac8")}), "2x1 0a0a0aff c8c8c8ff", "2x1 8 bits Gray"},
         {"from the top left", tga({.height = 2, .data = four}), "2x2 ff0000ff 00ff00ff 0000ffff ffffffff",
          "2x2 8 bits RGB"},
         {"from the bottom", tga({.height = 2, .descriptor = 0, .data = four}),
          "2x2 0000ffff ffffffff ff0000ff 00ff00ff"},
         {"from the right", tga({.height = 2, .descriptor = 0x30, .data = four}),
          "2x2 00ff00ff ff0000ff ffffffff 0000ffff"},
         {"from the bottom right", tga({.height = 2, .descriptor = 0x10, .data = four}),
          "2x2 ffffffff 0000ffff 00ff00ff ff0000ff"},
         {"16 bits", tga({.width = 3, .depth = 16, .data = hex("007c e003 1f80")}), "3x1 ff0000ff 00ff00ff 0000ffff",
          "3x1 5 bits RGB"},
         {"16 bits, one of transparency", tga({.depth = 16, .descriptor = 0x21, .data = hex("0104 0184")}),
          "2x1 08000800 080008ff", "2x1 5 bits RGB alpha"},
         {"15 bits", tga({.depth = 15, .descriptor = 0x21, .data = hex("1042 ff7f")}), "2x1 848484ff ffffffff",
          "2x1 5 bits RGB alpha"},
         {"32 bits", tga({.depth = 32, .descriptor = 0x28, .data = hex("01020304 0a0b0cff")}), "2x1 03020104 0c0b0aff",
          "2x1 8 bits RGB alpha"},
         {"32 bits, none of transparency", tga({.depth = 32, .data = hex("01020304 0a0b0c00")}),
          "2x1 030201ff 0c0b0aff", "2x1 8 bits RGB"},
         {"mapped",
          tga({.type = 1,
               .width = 4,
               .depth = 8,
               .data = hex("0000ff ff0000 05060704"),
               .mapType = 1,
               .mapFirst = 5,
               .mapCount = 2,
               .mapDepth = 24}),
          "4x1 ff0000ff 0000ffff 000000ff 000000ff", "4x1 8 bits RGB"},
         {"mapped by two bytes",
          tga({.type = 1,
               .depth = 16,
               .data = hex("01020304 05060708 0101 0001"),
               .mapType = 1,
               .mapFirst = 256,
               .mapCount = 2,
               .mapDepth = 32}),
          "2x1 07060508 03020104"},
         {"mapped to 16 bits",
          tga({.type = 1, .depth = 8, .data = hex("007c 1f00 0001"), .mapType = 1, .mapCount = 2, .mapDepth = 16}),
          "2x1 ff0000ff 0000ffff"},
         {"a map that is not used",
          tga({.data = hex("999999 0000ff ff0000"), .mapType = 1, .mapCount = 1, .mapDepth = 24}),
          "2x1 ff0000ff 0000ffff"},
         {"a text of its own", tga({.data = "ABC" + hex("0000ff ff0000"), .idLength = 3}), "2x1 ff0000ff 0000ffff"},
         {"runs", tga({.type = 10, .width = 3, .height = 2, .data = hex("81 0000ff 00 00ff00 82 ff0000")}),
          "3x2 ff0000ff ff0000ff 00ff00ff 0000ffff 0000ffff 0000ffff"},
         {"a run over the end of a row", tga({.type = 11, .height = 2, .depth = 8, .data = hex("82 07 00 09")}),
          "2x2 070707ff 070707ff 070707ff 090909ff"},
         {"a map of a strange depth that is not there", tga({.data = hex("0000ff ff0000"), .mapDepth = 9}),
          "2x1 ff0000ff 0000ffff"}});
    std::string longest = "128x1";
    for (int i = 0; i < 128; ++i) {
        longest += " 050505ff";
    }
    expectEach(zqTGADecoder, "a.tga",
               {{"the longest run", tga({.type = 11, .width = 128, .depth = 8, .data = hex("ff05")}), longest}});
}

TEST(TargaTest, RefusesWhatMakesNoSenseAndDrawsWhatIsThere)
{
    expectEach(
        zqTGADecoder, "a.tga",
        {{"no header", tga({.data = hex("0000ffff0000")}).left(17), damaged, damaged},
         {"nothing but a header", tga({}), damaged, "2x1 8 bits RGB"},
         {"an odd depth", tga({.depth = 9, .data = QByteArray(9, 'x')}), damaged, damaged},
         {"a map of an odd depth", tga({.data = QByteArray(99, 'x'), .mapType = 1, .mapCount = 1, .mapDepth = 9}),
          damaged, damaged},
         {"mapped without a map", tga({.type = 1, .depth = 8, .data = hex("0001")}), damaged},
         {"no width", tga({.width = 0, .data = QByteArray(9, 'x')}), damaged},
         {"no height", tga({.height = 0, .data = QByteArray(9, 'x')}), damaged},
         {"too large", tga({.width = 65535, .height = 65535, .data = QByteArray(9, 'x')}),
          "Its size of 65535 x 65535 pixels is too big."},
         {"more than it can hold", tga({.width = 1000, .height = 1000, .depth = 8, .data = QByteArray(9981, 'x')}),
          damaged},
         {"runs of more than it can hold",
          tga({.type = 11, .width = 1000, .height = 1000, .depth = 8, .data = QByteArray(60, char(0xff))}), damaged},
         {"one row of two", tga({.height = 2, .data = hex("0000ff ff0000 0000ff ff00")}),
          "2x2 ff0000ff 0000ffff ff0000ff 00000000 incomplete"},
         {"a run whose pixel is missing", tga({.type = 11, .height = 2, .depth = 8, .data = hex("81 07 81")}),
          "2x2 070707ff 070707ff 00000000 00000000 incomplete"}});
    const auto rows = [](int promised) {
        return drawn(zqTGADecoder,
                     {fileOf(tga({.type = 3, .width = 1, .height = promised, .depth = 8, .data = "x"}), "a.tga"), {}});
    };
    EXPECT_TRUE(rows(100).starts_with("1x100 787878ff 00000000"));
    EXPECT_EQ(rows(101), damaged);
    const ZQSourceFile large = fileOf(
        tga({.type = 11, .width = 1000, .height = 1000, .depth = 8, .data = QByteArray("\xff\x07").repeated(40)}), "a");
    EXPECT_EQ(zqTGADecoder.decode({large, {10, 10}}, nullptr).size(), QSize(0, 0)) << "five rows of a thousand";
    const ZQSourceFile fine = fileOf(tga({.data = hex("0000ff ff0000")}), "a.tga");
    EXPECT_EQ(drawn(zqTGADecoder, {fine, {}, 1}), "It has no frame 1.");
    EXPECT_EQ(drawn(zqTGADecoder, {fine, {1, 1}}), "1x1 800080ff");
    EXPECT_EQ(drawn(zqTGADecoder, {ZQSourceFile(), {}}), damaged);
    EXPECT_EQ(described(zqTGADecoder, ZQSourceFile()), damaged);
}

TEST(PhotoshopTest, EveryModeComesOutAsItWasMeant)
{
    expectEach(
        zqPSDDecoder, "a.psd",
        {{"RGB", psd({.data = hex("0102 0304 0506")}), "2x1 010305ff 020406ff", "2x1 8 bits RGB"},
         {"RGB of 16 bits", psd({.depth = 16, .data = hex("01ff02ff 03ff04ff 05ff06ff")}), "2x1 010305ff 020406ff",
          "2x1 16 bits RGB"},
         {"bits", psd({.channels = 1, .width = 9, .depth = 1, .mode = 0, .data = hex("c100")}),
          "9x1 000000ff 000000ff ffffffff ffffffff ffffffff ffffffff ffffffff 000000ff ffffffff", "9x1 1 bits Gray"},
         {"grey", psd({.channels = 1, .mode = 1, .data = hex("0af0")}), "2x1 0a0a0aff f0f0f0ff", "2x1 8 bits Gray"},
         {"grey with transparency", psd({.channels = 2, .mode = 1, .data = hex("0af0 ff00"), .layers = -1}),
          "2x1 0a0a0aff f0f0f000", "2x1 8 bits Gray alpha"},
         {"two inks", psd({.channels = 1, .mode = 8, .data = hex("0af0")}), "2x1 0a0a0aff f0f0f0ff", "2x1 8 bits Gray"},
         {"a palette",
          psd({.channels = 1, .width = 3, .mode = 2, .data = hex("000102"), .palette = hex("0102 0304 0506")}),
          "3x1 010305ff 020406ff 000000ff", "3x1 8 bits RGB"},
         {"no ink", psd({.channels = 4, .width = 1, .mode = 4, .data = hex("ff ff ff ff")}), "1x1 ffffffff",
          "1x1 8 bits CMYK"},
         {"Lab", psd({.width = 1, .mode = 9, .data = hex("ff 80 80")}), "1x1 ffffffff", "1x1 8 bits Lab"},
         {"the most channels", psd({.channels = 56, .width = 1, .data = QByteArray(56, '\x05')}), "1x1 050505ff"},
         {"transparency, white taken out",
          psd({.channels = 4, .width = 3, .data = hex("ff807f 80ff80 ff00ff 0080ff"), .layers = -1}),
          "3x1 ff80ff00 01ff0080 7f80ffff", "3x1 8 bits RGB alpha"},
         {"a channel that is no transparency",
          psd({.channels = 4, .width = 1, .data = hex("01 02 03 00"), .layers = 1}), "1x1 010203ff", "1x1 8 bits RGB"},
         {"transparency that is not there", psd({.width = 1, .data = hex("01 02 03"), .layers = -1}), "1x1 010203ff",
          "1x1 8 bits RGB"},
         {"large", psd({.data = hex("0102 0304 0506"), .version = 2}), "2x1 010305ff 020406ff"},
         {"large, with transparency",
          psd({.channels = 4, .width = 1, .data = hex("01 02 03 ff"), .version = 2, .layers = -2}), "1x1 010203ff",
          "1x1 8 bits RGB alpha"},
         {"packed", psd({.width = 4, .data = hex("0002 0003 0006 fd07 80fd09 800301020304"), .compression = 1}),
          "4x1 070901ff 070902ff 070903ff 070904ff"},
         {"large, packed",
          psd({.width = 3, .data = hex("00000002 00000002 00000002 fe01 fe02 fe03"), .version = 2, .compression = 1}),
          "3x1 010203ff 010203ff 010203ff"}});
}

TEST(PhotoshopTest, RefusesWhatMakesNoSenseAndDrawsWhatIsThere)
{
    const Photoshop fine{.data = hex("0102 0304 0506")};
    const auto with = [&](auto change) {
        Photoshop out = fine;
        out.data += QByteArray(200, 'x');
        change(out);
        return psd(out);
    };
    QList<Row> refused{{"another version", with([](Photoshop &p) { p.version = 3; }), damaged, damaged},
                       {"no version", with([](Photoshop &p) { p.version = 0; }), damaged, damaged},
                       {"no channels", with([](Photoshop &p) { p.channels = 0; }), damaged, damaged},
                       {"too many channels", with([](Photoshop &p) { p.channels = 57; }), damaged, damaged},
                       {"too few channels", with([](Photoshop &p) { p.channels = 2; }), damaged, damaged},
                       {"too few inks", with([](Photoshop &p) { p.mode = 4; }), damaged, damaged},
                       {"an unknown mode", with([](Photoshop &p) { p.mode = 7; }), damaged, damaged},
                       {"an unknown depth", with([](Photoshop &p) { p.depth = 32; }), damaged, damaged},
                       {"colours of one bit", with([](Photoshop &p) { p.depth = 1; }), damaged, damaged},
                       {"another packing", with([](Photoshop &p) { p.compression = 2; }), damaged, damaged},
                       {"no width", with([](Photoshop &p) { p.width = 0; }), damaged, damaged},
                       {"no height", with([](Photoshop &p) { p.height = 0; }), damaged, damaged},
                       {"too large", with([](Photoshop &p) { p.width = p.height = 0x7fffffff; }),
                        "Its size of 2147483647 x 2147483647 pixels is too big.",
                        "Its size of 2147483647 x 2147483647 pixels is too big."},
                       {"negative sizes", with([](Photoshop &p) { p.width = p.height = -1; }),
                        "Its size of 2147483647 x 2147483647 pixels is too big."},
                       {"too large at full size", with([](Photoshop &p) {
                            p.width = 32768;
                            p.height = 32768;
                        }),
                        "Its size of 32768 x 32768 pixels is too big."},
                       {"more than it can hold", with([](Photoshop &p) { p.width = p.height = 20000; }), damaged},
                       {"a table of rows that is cut", psd({.data = hex("0002 0002 00"), .compression = 1}), damaged}};
    expectEach(zqPSDDecoder, "a.psd", refused);
    const QByteArray whole = psd({.channels = 4, .data = hex("0102 0304 0506 ffff"), .layers = -1});
    for (qsizetype size = 0; size < whole.size() - 8; ++size) { // everything before the composite
        EXPECT_EQ(drawn(zqPSDDecoder, {fileOf(whole.left(size), "a.psd"), {}}), damaged) << size;
        EXPECT_EQ(described(zqPSDDecoder, fileOf(whole.left(size), "a.psd")), damaged) << size;
    }
    expectEach(zqPSDDecoder, "a.psd",
               {{"colours missing", whole.chopped(5), "2x1 010300ff 020000ff incomplete"},
                {"half a row", psd({.height = 2, .data = hex("0102 03")}),
                 "2x2 010000ff 020000ff 030000ff 000000ff incomplete"},
                {"no part of a row", psd({.data = hex("01")}), damaged},
                {"ink missing", psd({.channels = 4, .width = 1, .height = 2, .mode = 4, .data = hex("ff ff ff")}),
                 "1x2 ffffffff ffffffff incomplete"},
                {"a packed row that is too short",
                 psd({.channels = 1, .height = 2, .mode = 1, .data = hex("0002 0002 ff07 0009"), .compression = 1}),
                 "2x2 070707ff 070707ff 090909ff 000000ff incomplete"},
                {"a packed row that is cut",
                 psd({.channels = 1, .height = 2, .mode = 1, .data = hex("0002 0003 ff07 0109"), .compression = 1}),
                 "2x2 070707ff 070707ff 090909ff 000000ff incomplete"},
                {"a packed row that goes on",
                 psd({.channels = 1, .height = 1, .mode = 1, .data = hex("0004 fd07 fd09"), .compression = 1}),
                 "2x1 070707ff 070707ff"}});
    const ZQSourceFile file = fileOf(psd(fine), "a.psd");
    EXPECT_EQ(drawn(zqPSDDecoder, {file, {}, 1}), "It has no frame 1.");
    EXPECT_EQ(described(zqPSDDecoder, ZQSourceFile()), damaged);
}

TEST(PhotoshopTest, AThumbnailIsAveragedOnTheWay)
{
    const QByteArray grey = hex("00 02 10 14 20  04 06 18 1c 20  40 40 50 50 60"); // five columns, three rows
    const ZQSourceFile file = fileOf(psd({.channels = 1, .width = 5, .height = 3, .mode = 1, .data = grey}), "a.psd");
    EXPECT_EQ(drawn(zqPSDDecoder, {file, {3, 2}}).substr(0, 3), "3x2");
    const ZQSourceFile even =
        fileOf(psd({.channels = 1, .width = 4, .height = 2, .mode = 1, .data = hex("00021014 04061820")}), "a.psd");
    EXPECT_EQ(drawn(zqPSDDecoder, {even, {2, 1}}), "2x1 030303ff 171717ff");
    EXPECT_EQ(drawn(zqPSDDecoder, {even, {4, 2}}),
              "4x2 000000ff 020202ff 101010ff 141414ff 040404ff 060606ff 181818ff 202020ff");
    const ZQSourceFile palette =
        fileOf(psd({.channels = 1, .mode = 2, .data = hex("0002"), .palette = hex("00ff64 00ff64 00ff64")}), "a.psd");
    EXPECT_EQ(drawn(zqPSDDecoder, {palette, {1, 1}}), "1x1 323232ff") << "numbers of colours cannot be averaged";
}
