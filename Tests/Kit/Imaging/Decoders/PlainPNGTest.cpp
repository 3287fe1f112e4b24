#include "Kit/Imaging/Decoders/ZQPlainPNG.h"
#include "Tests/Kit/Imaging/Decoders/PNGBytes.h"
#include "Tools/samples/SampleCollection.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtEndian>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

using namespace PNGBytes;

namespace {

ZQSourceFile fileOf(const QByteArray &bytes)
{
    return ZQSourceFile::ofBytes(bytes, QStringLiteral("picture.png"));
}

auto saidBy(const std::optional<ZQImageProperties> &p)
{
    return p ? std::make_tuple(p->pixelWidth, p->pixelHeight, p->orientation, p->bitsPerSample, p->dpi, p->frameCount,
                               p->hasAlpha, p->colorModel.toStdString())
             : std::make_tuple(0, 0, 0, 0, 0, 0, false, std::string());
}

void expectSameAsPipeline(const ZQDecodeRequest &request)
{
    const ZQBitmap ours = zqPNGDecoder.decode(request, nullptr);
    const ZQBitmap theirs = zqVipsDecoder.decode(request, nullptr);
    EXPECT_EQ(ours.image(), theirs.image());
    EXPECT_EQ(ours.isIncomplete(), theirs.isIncomplete());
    EXPECT_EQ(saidBy(zqPNGDecoder.properties(request.file, nullptr)),
              saidBy(zqVipsDecoder.properties(request.file, nullptr)));
}

constexpr QSize box(512, 512);

TEST(PlainPNGTest, GivesThePixelsThatThePipelineGives)
{
    const QByteArray meters = chunk("pHYs", bigEndian(2835) + bigEndian(2835) + '\1');
    const QByteArray millimeters = chunk("pHYs", bigEndian(1000) + bigEndian(1000) + '\1');
    const QByteArray gamma = chunk("gAMA", bigEndian(100000));
    for (const int colorType : {0, 2, 3, 4, 6}) {
        for (const int depth : {1, 2, 4, 8}) {
            if (depth < 8 && colorType != 0 && colorType != 3) {
                continue;
            }
            const QByteArray clear = chunk("tRNS", colorType == 0   ? QByteArray("\0\1", 2)
                                                   : colorType == 2 ? QByteArray("\0\1\0\2\0\3", 6)
                                                                    : QByteArray("\0\x80", 2));
            QList<QByteArray> variants{{}, meters, millimeters, gamma, chunk("tEXt", QByteArray("Software\0me", 11))};
            if (colorType < 4) {
                variants.append(clear);
            }
            for (const QByteArray &chunks : std::as_const(variants)) {
                for (const QSize size : {QSize(1, 1), QSize(7, 5), QSize(33, 20), QSize(512, 3)}) {
                    SCOPED_TRACE(testing::Message() << colorType << ' ' << depth << ' ' << chunks.mid(4, 4).constData()
                                                    << ' ' << size.width());
                    const ZQSourceFile file =
                        fileOf(pngOf({.size = size, .depth = depth, .colorType = colorType, .chunks = chunks}));
                    EXPECT_FALSE(zqBitmapOfPlainPNG({file, box}).isNull());
                    EXPECT_TRUE(zqPropertiesOfPlainPNG(file));
                    expectSameAsPipeline({file, box});
                    expectSameAsPipeline({file, {}});
                }
            }
        }
    }
}

TEST(PlainPNGTest, LeavesWhatIsUnusualOrDamagedToThePipeline)
{
    const QByteArray plain = pngOf({.size = {60, 90}});
    QByteArray wrongSum = plain;
    wrongSum[wrongSum.size() - 20] = char(wrongSum.at(wrongSum.size() - 20) ^ 0x55);
    QByteArray wrongSize = plain;
    qToBigEndian(quint32(0x7fffffff), wrongSize.data() + 33);
    QByteArray large = plain;
    large.insert(33, chunk("tEXt", QByteArray("Comment\0", 8) + QByteArray(300'000, 'x')));
    const QByteArray exif("MM\0*\0\0\0\10\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0", 26);
    struct Row
    {
        const char *what;
        QByteArray bytes;
    };
    for (const Row &row :
         {Row{"16 bits", pngOf({.depth = 16, .colorType = 6})},
          Row{"interlaced", pngOf({.size = {1, 1}, .isInterlaced = true})},
          Row{"turned", pngOf({.chunks = chunk("eXIf", exif)})},
          Row{"profile", pngOf({.chunks = chunk("iCCP", QByteArray("p\0\0", 3) + qCompress("x"))})},
          Row{"no unit", pngOf({.chunks = chunk("pHYs", bigEndian(72) + bigEndian(72) + '\0')})},
          Row{"unknown", pngOf({.chunks = chunk("acTL", bigEndian(1) + bigEndian(0))})}, Row{"long text", large},
          Row{"cut in the pixels", plain.left(plain.size() / 2)},
          Row{"cut before the end", plain.left(plain.size() - 12)}, Row{"cut in the header", plain.left(30)},
          Row{"wrong checksum", wrongSum}, Row{"endless chunk", wrongSize}, Row{"odd depth", pngOf({.depth = 3})},
          Row{"odd colours", pngOf({.colorType = 5})}}) {
        SCOPED_TRACE(row.what);
        const ZQSourceFile file = fileOf(row.bytes);
        EXPECT_TRUE(zqBitmapOfPlainPNG({file, box}).isNull());
        expectSameAsPipeline({file, box});
    }
    const ZQSourceFile whole = fileOf(plain);
    EXPECT_TRUE(zqBitmapOfPlainPNG({whole, {60, 89}}).isNull()) << "has to be shrunk";
    EXPECT_TRUE(zqBitmapOfPlainPNG({whole, box, 1}).isNull()) << "has one frame";
    EXPECT_FALSE(zqBitmapOfPlainPNG({whole, {60, 90}}).isNull());
}

TEST(PlainPNGTest, DrawsTheSamplesAsThePipelineDoes)
{
    const QTemporaryDir folder;
    ASSERT_EQ(SampleCollection::write(folder.path(), SampleCollection::Huge::Without), QString());
    int plain = 0;
    QDirIterator files(folder.path(), {QStringLiteral("*.png")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        SCOPED_TRACE(path.toStdString());
        const ZQDecodeRequest request{ZQSourceFile::open(path), box};
        constexpr qint64 largestPlain = 256 * 1024;
        if (request.file.size() == 0 || request.file.size() > largestPlain) {
            continue; // no decoder is asked about it, or only the pipeline
        }
        plain += zqBitmapOfPlainPNG(request).isNull() ? 0 : 1;
        expectSameAsPipeline(request);
        expectSameAsPipeline({request.file, {}});
    }
    EXPECT_GT(plain, 0);
}

TEST(PlainPNGTest, KeepsItsKeywords)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("tagged.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(pngOf({}));
    file.close();
    EXPECT_EQ(zqKeywordsOfFile(ZQSourceFile::open(path)), QStringList());
    const auto image = Exiv2::ImageFactory::open(path.toStdString());
    image->readMetadata();
    image->iptcData()["Iptc.Application2.Keywords"] = std::string("harbour");
    image->writeMetadata();
    const ZQSourceFile tagged = ZQSourceFile::open(path);
    EXPECT_TRUE(zqPropertiesOfPlainPNG(tagged));
    const auto properties = zqPropertiesOfFile(tagged, nullptr);
    ASSERT_TRUE(properties);
    EXPECT_EQ(properties->keywords, QStringList{QStringLiteral("harbour")});
}

} // namespace
