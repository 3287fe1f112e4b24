#include "Kit/Imaging/ZQPalette.h"

#include "Kit/Imaging/ZQOklab.h"
#include "Kit/Imaging/ZQPaletteFiles.h"
#include "Tests/Kit/Imaging/DrawnPictures.h"

#include <QDataStream>
#include <QIODevice>

#include <gtest/gtest.h>

namespace {

QImage columns(const QList<std::pair<QColor, int>> &parts, int height = 300)
{
    int width = 0;
    for (const auto &part : parts) {
        width += part.second;
    }
    QImage image = flat({width, height}, Qt::black);
    int x = 0;
    for (const auto &[color, count] : parts) {
        image = placed(image, flat({count, height}, color), {x, 0});
        x += count;
    }
    return image;
}

ZQPalette paletteOf(const QImage &image)
{
    return ZQPalette::of(ZQBitmap(image));
}

QStringList names(const ZQPalette &palette)
{
    QStringList found;
    for (const ZQPalette::Color &color : palette.colors) {
        found.append(QColor(color.rgb).name());
    }
    return found;
}

} // namespace

TEST(ZQPalette, HasTheColorsOfFlatArtworkExactlyByShare)
{
    const ZQPalette palette = paletteOf(
        columns({{QColor(255, 102, 0), 60}, {QColor(0, 48, 73), 200}, {QColor(241, 233, 210), 120}, {Qt::red, 20}}));
    EXPECT_EQ(names(palette), QStringList({QStringLiteral("#003049"), QStringLiteral("#f1e9d2"),
                                           QStringLiteral("#ff6600"), QStringLiteral("#ff0000")}));
    const double shares[] = {0.5, 0.3, 0.15, 0.05};
    for (qsizetype i = 0; i < palette.colors.size(); ++i) {
        EXPECT_NEAR(palette.colors[i].share / 255.0, shares[i], 0.02);
    }
}

TEST(ZQPalette, JoinsShadesAndKeepsAccents)
{
    std::mt19937 random(3);
    QImage wall = changed(flat({400, 400}, Qt::gray), [&random](QRgb) {
        const int grey = 120 + int(random() % 16);
        return qRgb(grey, grey, grey);
    });
    wall = placed(wall, flat({70, 70}, QColor(200, 30, 40)), {200, 90}); // 3 %
    const ZQPalette palette = paletteOf(wall);
    ASSERT_EQ(palette.colors.size(), 2);
    EXPECT_LT(ZQOklab::of(palette.colors[0].rgb).distance(ZQOklab::of(qRgb(127, 127, 127))), 0.02F);
    EXPECT_EQ(palette.colors[1].rgb, qRgb(200, 30, 40));
    EXPECT_NEAR(palette.colors[1].share, 8, 3);
}

TEST(ZQPalette, OfAPhotographIsFiveColorsThatDiffer)
{
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const ZQPalette palette = paletteOf(spots(seed));
        ASSERT_EQ(palette.colors.size(), ZQPalette::maximum);
        int sum = 0;
        for (qsizetype i = 0; i < palette.colors.size(); ++i) {
            sum += palette.colors[i].share;
            for (qsizetype j = 0; j < i; ++j) {
                EXPECT_GE(palette.colors[j].share, palette.colors[i].share);
                EXPECT_GT(ZQOklab::of(palette.colors[j].rgb).distance(ZQOklab::of(palette.colors[i].rgb)), 0.04F);
            }
        }
        EXPECT_GT(sum, 127);
        EXPECT_LE(sum, 257); // each is rounded
        EXPECT_EQ(paletteOf(spots(seed)), palette);
    }
}

TEST(ZQPalette, SeesWhatIsVisibleAndNothingElse)
{
    EXPECT_TRUE(paletteOf(QImage()).colors.isEmpty());
    EXPECT_TRUE(paletteOf(flat({90, 90}, QColor(255, 0, 0, 3))).colors.isEmpty());
    const QImage half = columns({{QColor(10, 200, 40, 0), 300}, {QColor(20, 60, 200), 100}});
    EXPECT_EQ(names(paletteOf(half)), QStringList(QStringLiteral("#143cc8")));
    EXPECT_EQ(paletteOf(half).colors[0].share, 255);
    EXPECT_EQ(names(paletteOf(flat({1, 1}, Qt::yellow))), QStringList(QStringLiteral("#ffff00")));
    for (const int width : {1, 2, 8}) { // stripes, which a sample in steps would see one of
        QImage stripes = flat({512, 512}, Qt::white);
        for (int x = 0; x < 512; x += 2 * width) {
            stripes = placed(stripes, flat({width, 512}, Qt::blue), {x, 0});
        }
        const ZQPalette palette = paletteOf(stripes);
        ASSERT_EQ(palette.colors.size(), 2) << width;
        EXPECT_NEAR(palette.colors[0].share, 128, 16) << width;
    }
}

TEST(ZQPalette, GoesThroughBytes)
{
    const ZQPalette palette{{{qRgb(255, 128, 0), 200}, {qRgb(0, 1, 2), 55}}};
    EXPECT_EQ(palette.bytes().toHex(), QByteArray("ff8000c8"
                                                  "00010237"));
    EXPECT_EQ(ZQPalette::fromBytes(palette.bytes()), palette);
    for (const qsizetype size : {0, 1, 3, 5, 24}) {
        EXPECT_TRUE(ZQPalette::fromBytes(QByteArray(size, 'a')).colors.isEmpty()) << size;
    }
    EXPECT_EQ(ZQPalette::fromBytes(QByteArray(20, 'a')).colors.size(), 5);
}

TEST(ZQOklab, HasTheValuesOfItsPaper)
{
    struct Known
    {
        QRgb rgb;
        float L, a, b;
    };
    for (const Known &known :
         {Known{qRgb(255, 255, 255), 1, 0, 0}, Known{qRgb(0, 0, 0), 0, 0, 0},
          Known{qRgb(255, 0, 0), 0.62796F, 0.22486F, 0.12585F}, Known{qRgb(0, 255, 0), 0.86644F, -0.23389F, 0.17950F},
          Known{qRgb(0, 0, 255), 0.45201F, -0.03246F, -0.31153F}}) {
        const ZQOklab color = ZQOklab::of(known.rgb);
        EXPECT_NEAR(color.L, known.L, 0.0005);
        EXPECT_NEAR(color.a, known.a, 0.0005);
        EXPECT_NEAR(color.b, known.b, 0.0005);
    }
    EXPECT_NEAR(ZQOklab::of(qRgb(0, 0, 0)).distance(ZQOklab::of(qRgb(255, 255, 255))), 1, 0.001);
    EXPECT_EQ((ZQOklab{2, 0.5F, 0.5F}.rgb()) >> 24, 255U); // beyond sRGB
}

TEST(ZQOklab, GoesThereAndBack)
{
    for (int red = 0; red < 256; red += 15) {
        for (int green = 0; green < 256; green += 15) {
            for (int blue = 0; blue < 256; blue += 15) {
                const QRgb rgb = qRgb(red, green, blue);
                ASSERT_EQ(ZQOklab::of(rgb).rgb(), rgb) << red << " " << green << " " << blue;
            }
        }
    }
}

TEST(ZQPaletteFiles, SwatchExchangeHasAGroupWithEachColor)
{
    const ZQPalette palette{{{qRgb(255, 102, 0), 200}, {qRgb(0, 0, 51), 55}}};
    const QByteArray bytes = zqASEPalette(palette, QStringLiteral("Spring\ncampaign"));
    QDataStream stream(bytes);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    quint32 signature = 0;
    quint32 count = 0;
    quint16 major = 0;
    quint16 minor = 0;
    stream >> signature >> major >> minor >> count;
    EXPECT_EQ(signature, 0x41534546U);
    EXPECT_EQ(major, 1);
    EXPECT_EQ(minor, 0);
    ASSERT_EQ(count, 4U);
    const auto readName = [&stream] {
        quint16 length = 0;
        stream >> length;
        QString name;
        for (int i = 0; i < length; ++i) {
            quint16 unit = 0;
            stream >> unit;
            name.append(QChar(unit));
        }
        return name;
    };
    quint16 kind = 0;
    quint32 length = 0;
    stream >> kind >> length;
    EXPECT_EQ(kind, 0xC001);
    EXPECT_EQ(readName(), QStringLiteral("Spring campaign") + QChar(u'\0'));
    const float expected[2][3] = {{1, 0.4F, 0}, {0, 0, 0.2F}};
    const QString hex[] = {QStringLiteral("#FF6600"), QStringLiteral("#000033")};
    for (size_t i = 0; i < 2; ++i) {
        stream >> kind >> length;
        EXPECT_EQ(kind, 1);
        const qint64 start = stream.device()->pos();
        EXPECT_EQ(readName(), hex[i] + QChar(u'\0'));
        quint32 model = 0;
        stream >> model;
        EXPECT_EQ(model, 0x52474220U); // "RGB "
        for (const float channel : expected[i]) {
            float value = -1;
            stream >> value;
            EXPECT_FLOAT_EQ(value, channel);
        }
        quint16 type = 0;
        stream >> type;
        EXPECT_EQ(type, 2);
        EXPECT_EQ(stream.device()->pos() - start, qint64(length));
    }
    stream >> kind >> length;
    EXPECT_EQ(kind, 0xC002);
    EXPECT_EQ(length, 0U);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_EQ(stream.status(), QDataStream::Ok);
}

TEST(ZQPaletteFiles, GimpPaletteIsLinesOfColors)
{
    const ZQPalette palette{{{qRgb(255, 102, 0), 200}, {qRgb(0, 0, 51), 55}}};
    EXPECT_EQ(zqGPLPalette(palette, QStringLiteral(" Grün\n255 0 0\tfake ")), QByteArray("GIMP Palette\n"
                                                                                         "Name: Grün 255 0 0 fake\n"
                                                                                         "Columns: 2\n"
                                                                                         "#\n"
                                                                                         "255 102   0\t#FF6600\n"
                                                                                         "  0   0  51\t#000033\n"));
    EXPECT_EQ(zqGPLPalette({}, {}), QByteArray("GIMP Palette\nName: \nColumns: 1\n#\n"));
}

TEST(ZQPaletteFiles, CutsNamesWithinNoCharacter)
{
    const QString name = QString(254, u'a') + QStringLiteral("🎨");
    const QByteArray cut = QByteArray("Name: ") + QByteArray(254, 'a') + "\n";
    EXPECT_TRUE(zqGPLPalette({}, name).contains(cut));
    EXPECT_EQ(zqASEPalette({}, name).size(), 4 + 2 + 2 + 4 + (2 + 4 + 2 + 255 * 2) + (2 + 4));
}
