// Pictures in packed planes, and the PNGs that are inflated at once for them.

#include "Kit/Imaging/Decoders/ZQPlanes.h"
#include "Kit/Imaging/Decoders/ZQWholePNG.h"
#include "Kit/Imaging/ZQPackBits.h"
#include "Tests/Kit/Imaging/Decoders/PNGBytes.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace PNGBytes;

namespace {

ZQSourceFile fileOf(const QByteArray &bytes)
{
    return ZQSourceFile::ofBytes(bytes, QStringLiteral("picture.png"));
}

QByteArray writtenBy(const ZQPlanes &planes)
{
    const ZQSourceFile file = ZQSourceFile::ofBytes({}, {});
    QFile memory;
    if (!file.openIn(memory)) {
        return {};
    }
    EXPECT_TRUE(planes.write(memory.handle()));
    memory.seek(0);
    return memory.readAll();
}

std::optional<ZQPackedPicture> packedOf(const QByteArray &bytes, QSize size, QRect part)
{
    const auto kept = std::make_shared<QByteArray>(bytes);
    return ZQPackedPicture::of({kept, kept->constData()}, bytes.size(), size, part);
}

// What the planes say a pixel is.
QImage unpacked(const ZQPackedPicture &picture)
{
    QImage image(picture.part().size(), QImage::Format_RGBA8888);
    std::vector<uchar> samples(std::size_t(picture.part().width()));
    for (int channel = 0; channel < ZQPackedPicture::channelCount; ++channel) {
        const char *row = picture.rows(channel).data();
        for (int y = 0; y < image.height(); ++y) {
            const auto size = qFromBigEndian<quint16>(picture.counts(channel).data() + 2 * y);
            ZQPackBits::unpack(row, row + size, samples);
            row += size;
            for (int x = 0; x < image.width(); ++x) {
                image.scanLine(y)[4 * x + channel] = samples[std::size_t(x)];
            }
        }
    }
    return image;
}

QImage whiteWhereClear(QImage image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (uchar *pixel = image.scanLine(y), *end = pixel + 4 * image.width(); pixel < end; pixel += 4) {
            if (pixel[3] == 0) {
                std::fill(pixel, pixel + 3, uchar(255));
            }
        }
    }
    return image;
}

void expectPlanesOfPipeline(const ZQSourceFile &file, const QRect &window)
{
    constexpr QSize large(1024, 1024); // a file that is to fit somewhere is read row by row
    const QImage whole = whiteWhereClear(zqVipsDecoder.decode({file, large}, nullptr).image());
    const auto planes = zqPlanesOfFile(file, window, nullptr);
    ASSERT_TRUE(planes);
    EXPECT_EQ(planes->size(), whole.size());
    const QRect part = ZQPackedPicture::partOf(whole.size(), window);
    const auto picture = packedOf(writtenBy(*planes), planes->size(), part);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->part().isEmpty() ? QImage() : unpacked(*picture), part.isEmpty() ? QImage() : whole.copy(part));
}

// The pixels of `png` in as many chunks as there are bytes.
QByteArray inSmallChunks(const QByteArray &png)
{
    constexpr qsizetype start = 33; // of what follows the header
    const qsizetype size = qFromBigEndian<qint32>(png.constData() + start);
    QByteArray out = png.left(start);
    for (qsizetype i = 0; i < size; ++i) {
        out += chunk("IDAT", png.mid(start + 8 + i, 1));
    }
    return out + chunk("IEND", {});
}

} // namespace

TEST(PlanesTest, HoldThePixelsThatThePipelineGives)
{
    for (const int colorType : {0, 2, 4, 6}) {
        for (const QSize size : {QSize(1, 1), QSize(7, 5), QSize(33, 20), QSize(130, 11)}) {
            SCOPED_TRACE(testing::Message() << colorType << ' ' << size.width());
            const QByteArray png = pngOf({.size = size, .colorType = colorType});
            EXPECT_TRUE(ZQWholePNG::inflated(fileOf(png)));
            const QRect whole(QPoint(), size);
            for (const QRect &window : {whole, whole.adjusted(-3, -2, 5, 1), whole.translated(2, 3),
                                        whole.translated(-1, -1), whole.translated(1000, 0), QRect()}) {
                expectPlanesOfPipeline(fileOf(png), window);
            }
            EXPECT_TRUE(ZQWholePNG::inflated(fileOf(inSmallChunks(png))));
            expectPlanesOfPipeline(fileOf(inSmallChunks(png)), whole);
        }
    }
    expectPlanesOfPipeline(fileOf(pngOf({.size = {60, 90}, .colorType = 3})), {0, 0, 60, 90}); // has a palette
    const QByteArray row(40 * 4 + 1, '\0'); // rows that are all the same
    const QByteArray clear = pngOf({.size = {40, 30}, .colorType = 6}, row.repeated(30));
    expectPlanesOfPipeline(fileOf(clear), {0, 0, 40, 30});
}

TEST(PlanesTest, WhatIsUnusualOrDamagedIsNotInflatedAtOnce)
{
    const QByteArray plain = pngOf({.size = {60, 90}});
    QByteArray wrongSum = plain;
    wrongSum[wrongSum.size() - 20] = char(wrongSum.at(wrongSum.size() - 20) ^ 0x55);
    QByteArray parted = inSmallChunks(plain);
    parted.insert(33 + 13, chunk("tEXt", QByteArray("a\0b", 3)));
    const QByteArray rows = QByteArray(60 * 3 + 1, '\0').repeated(90);
    QByteArray strange = rows;
    strange[0] = 5;
    struct Row
    {
        const char *what;
        QByteArray bytes;
    };
    for (const Row &row :
         {Row{"16 bits", pngOf({.depth = 16, .colorType = 6})}, Row{"4 bits", pngOf({.depth = 4, .colorType = 0})},
          Row{"palette", pngOf({.colorType = 3})}, Row{"interlaced", pngOf({.size = {1, 1}, .isInterlaced = true})},
          Row{"clear colour", pngOf({.chunks = chunk("tRNS", QByteArray(6, '\1'))})},
          Row{"profile", pngOf({.chunks = chunk("iCCP", QByteArray("p\0\0", 3) + qCompress("x"))})},
          Row{"pixels in two places", parted}, Row{"cut in the pixels", plain.left(plain.size() / 2)},
          Row{"cut before the end", plain.left(plain.size() - 12)}, Row{"wrong checksum", wrongSum},
          Row{"unknown filter", pngOf({.size = {60, 90}}, strange)},
          Row{"rows are missing", pngOf({.size = {60, 90}}, rows.left(60 * 3 + 1))},
          Row{"more rows than said", pngOf({.size = {60, 90}}, rows + rows)},
          Row{"says to be huge", pngOf({.size = {8000, 8000}}, rows)}, Row{"nothing", {}}}) {
        SCOPED_TRACE(row.what);
        EXPECT_FALSE(ZQWholePNG::inflated(fileOf(row.bytes)));
    }
    EXPECT_TRUE(ZQWholePNG::inflated(fileOf(pngOf({.size = {60, 90}}, rows))));
    const QByteArray profiled = pngOf({.chunks = chunk("iCCP", QByteArray("p\0\0", 3) + qCompress("x"))});
    EXPECT_TRUE(ZQWholePNG::inflated(fileOf(profiled), true)) << "where its pixels are converted afterwards";
}

TEST(PlanesTest, OnlyRowsOfThePartAreBelieved)
{
    const QRect part(0, 0, 2, 2);
    const QByteArray plane = QByteArray("\0\3\0\2", 4) + QByteArray("\1ab\xff"
                                                                    "c",
                                                                    5);
    const QByteArray right = plane.repeated(4);
    ASSERT_TRUE(packedOf(right, {2, 2}, part));
    EXPECT_TRUE(packedOf({}, {2, 2}, {}));
    QByteArray meaningless = right;
    meaningless[7] = char(-128);
    QByteArray longer = right;
    longer[3] = 3;
    QByteArray wider = right;
    wider[7] = char(-2);
    for (const QByteArray &wrong : {QByteArray(), right.chopped(1), right + 'x', meaningless, longer, wider}) {
        EXPECT_FALSE(packedOf(wrong, {2, 2}, part));
    }
    EXPECT_FALSE(packedOf(right, {2, 1}, part)) << "the part lies beyond the picture";
    EXPECT_FALSE(packedOf(right, {3, 2}, {0, 0, 3, 2}));
    EXPECT_FALSE(packedOf(right, {2, 2}, {}));
}
