#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Imaging/ZQImageDestination.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQPreviewService.h"
#include "Tests/Kit/Imaging/ImagingSupport.h"
#include "Tools/samples/SampleCollection.h"
#include "Tools/samples/SampleFormats.h"
#include "Tools/samples/SampleScenes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <thread>

namespace {

using SampleFormats::Packing;

// The collection is written once for all tests.
class SampleTest : public ImagingTest
{
protected:
    static void SetUpTestSuite()
    {
        s_samples = new QTemporaryDir;
        ASSERT_EQ(SampleCollection::write(s_samples->path(), SampleCollection::Huge::Without), QString());
    }
    static void TearDownTestSuite()
    {
        delete s_samples;
        s_samples = nullptr;
    }
    static QString sample(const char *name) { return s_samples->filePath(QString::fromUtf8(name)); }

    static QByteArray contentOf(const char *name)
    {
        QFile file(sample(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    static inline QTemporaryDir *s_samples = nullptr;
};

QImage smallScene()
{
    const QList<QColor> palette{"#cfe8ff", "#8fc1e8", "#4b83b6", "#16324f", "#ffffff"};
    return SampleScenes::scene(SampleScenes::Style::Mountains, palette, {640, 480}, 77);
}

TEST_F(SampleTest, SaysWhatAFileIsWithoutDecodingIt)
{
    struct Row
    {
        const char *name;
        QSize size;
        int orientation;
        int bits;
        int frames;
        bool alpha;
        const char *model;
    };
    for (const Row &row : {
             Row{"Formats/keywords.jpg", {640, 480}, 1, 8, 1, false, "RGB"},
             Row{"Orientations/orientation-6.jpg", {300, 400}, 6, 8, 1, false, "RGB"},
             Row{"Formats/deep.png", {640, 480}, 1, 16, 1, false, "RGB"},
             Row{"Formats/gray.png", {640, 480}, 1, 8, 1, false, "Gray"},
             Row{"Formats/cmyk.jpg", {640, 480}, 1, 8, 1, false, "CMYK"},
             Row{"Formats/cmyk.tiff", {640, 480}, 1, 8, 1, false, "CMYK"},
             Row{"Formats/pages.tiff", {640, 480}, 1, 8, 2, false, "RGB"},
             Row{"Formats/wavelet.jp2", {640, 480}, 1, 8, 1, false, "RGB"},
             Row{"Formats/web.webp", {320, 320}, 1, 8, 1, true, "RGB"},
             Row{"Formats/phone.heic", {640, 480}, 1, 8, 1, false, "RGB"},
             Row{"Formats/web.avif", {320, 320}, 1, 8, 1, true, "RGB"},
             Row{"Formats/modern.jxl", {320, 320}, 1, 8, 1, true, "RGB"},
             Row{"Formats/New.sketch", {640, 480}, 1, 8, 1, false, "RGB"},
             Row{"Formats/plain.bmp", {640, 480}, 1, 8, 1, false, "RGB"},
             Row{"Formats/icon.ico", {256, 256}, 1, 8, 2, true, "RGB"},
             Row{"Formats/icon.icns", {256, 256}, 1, 8, 2, true, "RGB"},
             Row{"Formats/runs.tga", {320, 320}, 1, 8, 1, true, "RGB"},
             Row{"Formats/layered.psd", {320, 320}, 1, 8, 1, true, "RGB"},
             Row{"Formats/deep.psd", {640, 480}, 1, 16, 1, false, "RGB"},
             Row{"Brand 2026/Artwork.ai", {400, 300}, 1, 8, 1, true, "RGB"},
             Row{"Broken/really-a-jpeg.png", {640, 480}, 1, 8, 1, false, "RGB"},
         }) {
        SCOPED_TRACE(row.name);
        ZQError error;
        const auto properties = ZQImageSource::propertiesOfFile(sample(row.name), &error);
        ASSERT_TRUE(properties) << qPrintable(error.localizedDescription());
        EXPECT_EQ(QSize(properties->pixelWidth, properties->pixelHeight), row.size);
        EXPECT_EQ(properties->orientation, row.orientation);
        EXPECT_EQ(properties->bitsPerSample, row.bits);
        EXPECT_EQ(properties->frameCount, row.frames);
        EXPECT_EQ(properties->hasAlpha, row.alpha);
        EXPECT_EQ(properties->colorModel, QLatin1String(row.model));
    }
    EXPECT_EQ(ZQImageSource::propertiesOfFile(sample("Formats/animated.gif"))->frameCount, 6);
    EXPECT_EQ(ZQImageSource::propertiesOfFile(sample("Formats/keywords.jpg"))->keywords,
              QStringList({QStringLiteral("harbour"), QStringLiteral("été"), QStringLiteral("blue")}));
}

TEST_F(SampleTest, ShowsEveryOrientationUpright)
{
    const QImage upright = SampleScenes::asymmetricScene({400, 300});
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const QByteArray name = "Orientations/orientation-" + QByteArray::number(orientation) + ".jpg";
        const ZQBitmap full = ZQImageSource::bitmapOfFile(sample(name.constData()));
        EXPECT_LT(distance(full.image(), upright), 4);
        const ZQBitmap small = ZQImageSource::thumbnailOfFile(sample(name.constData()), 100);
        EXPECT_EQ(small.size(), QSize(100, 75));
        EXPECT_GT(colorAt(small, 0.1, 0.1).red(), 180);
        EXPECT_GT(colorAt(small, 0.1, 0.9).blue(), 180);
    }
}

TEST_F(SampleTest, DecodesEveryFormatToTheSamePicture)
{
    const QImage scene = smallScene();
    for (const auto &[name, tolerance] :
         std::initializer_list<std::pair<const char *, double>>{{"Formats/keywords.jpg", 5},
                                                                {"Formats/progressive.jpg", 5},
                                                                {"Formats/deep.png", 1},
                                                                {"Formats/cmyk.jpg", 12},
                                                                {"Formats/cmyk.tiff", 12},
                                                                {"Formats/wavelet.jp2", 6},
                                                                {"Formats/phone.heic", 6},
                                                                {"Formats/New.sketch", 0.01},
                                                                {"Formats/plain.bmp", 0.01},
                                                                {"Formats/plain.tga", 0.01},
                                                                {"Formats/deep.psd", 0.01},
                                                                {"Formats/pages.tiff", 0.01}}) {
        SCOPED_TRACE(name);
        ZQError error;
        const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(sample(name), &error);
        EXPECT_LE(distance(bitmap.image(), scene), tolerance) << qPrintable(error.localizedDescription());
        const ZQBitmap small = ZQImageSource::thumbnailOfFile(sample(name), 128);
        EXPECT_LE(distance(small.image(), ZQBitmap(scene).scaledToFit({128, 128}).image()), tolerance + 3);
    }
}

TEST_F(SampleTest, KeepsTransparency)
{
    for (const char *name : {"Formats/runs.tga", "Formats/layered.psd", "Formats/web.webp", "Formats/web.avif",
                             "Formats/modern.jxl", "Formats/icon.icns", "Formats/icon.ico", "Formats/animated.gif",
                             "Brand 2026/Logos/Coin.png", "Brand 2026/Artwork.ai", "Brand 2026/Stamp.eps"}) {
        SCOPED_TRACE(name);
        const ZQBitmap bitmap = ZQImageSource::thumbnailOfFile(sample(name), 512);
        ASSERT_FALSE(bitmap.isNull());
        EXPECT_EQ(colorAt(bitmap, 0, 0).alpha(), 0);
        EXPECT_TRUE(bitmap.hasAlpha());
    }
}

TEST_F(SampleTest, GivesTheFrameAskedForAndRefusesOthers)
{
    const ZQBitmap first = ZQImageSource::bitmapOfFile(sample("Formats/pages.tiff"), nullptr, 0);
    const ZQBitmap second = ZQImageSource::bitmapOfFile(sample("Formats/pages.tiff"), nullptr, 1);
    EXPECT_LT(distance(second.image(), first.image().mirrored(true, false)), 0.01);
    ASSERT_FALSE(ZQImageSource::thumbnailOfFile(sample("Formats/animated.gif"), 64, nullptr, 5).isNull());
    for (const char *name : {"Formats/pages.tiff", "Formats/animated.gif", "Formats/plain.bmp", "Formats/plain.tga",
                             "Formats/deep.psd", "Formats/icon.ico", "Brand 2026/Artwork.ai"}) {
        SCOPED_TRACE(name);
        ZQError error;
        EXPECT_TRUE(ZQImageSource::bitmapOfFile(sample(name), &error, 6).isNull());
        EXPECT_EQ(error.domain, QStringLiteral("zelto.imaging"));
    }
}

TEST_F(SampleTest, NeverEnlargesAPhotograph)
{
    EXPECT_EQ(ZQImageSource::thumbnailOfFile(sample("Broken/one-pixel.png"), 512).size(), QSize(1, 1));
    EXPECT_EQ(ZQImageSource::thumbnailOfFile(sample("Formats/animated.gif"), 512).size(), QSize(200, 200));
    EXPECT_EQ(ZQImageSource::thumbnailOfFile(sample("Photos/Panorama.jpg"), 512).size(), QSize(512, 149));
}

TEST_F(SampleTest, RefusesWhatCannotBeReadWithAReason)
{
    for (const auto &[name, words] :
         std::initializer_list<std::pair<const char *, const char *>>{{"Broken/empty.png", "empty"},
                                                                      {"Broken/text.jpg", "not a picture"},
                                                                      {"Broken/hardly-there.jpg", "damaged"},
                                                                      {"Broken/claims-much.png", "100000 x 100000"},
                                                                      {"Broken/not-there.png", "does not exist"},
                                                                      {"Broken", "does not exist"}}) {
        SCOPED_TRACE(name);
        ZQError error;
        EXPECT_TRUE(ZQImageSource::thumbnailOfFile(sample(name), 512, &error).isNull());
        EXPECT_EQ(error.domain, QStringLiteral("zelto.imaging"));
        EXPECT_TRUE(error.localizedDescription().contains(QLatin1String(words)))
            << qPrintable(error.localizedDescription());
    }
}

TEST_F(SampleTest, DrawsWhatIsThereOfATruncatedPictureInEveryFormat)
{
    struct Row
    {
        const char *name;
        QList<int> percents; // of the file; not less than its headers take
    };
    const QList<int> most{90, 60, 30, 15};
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::psdFile(smallScene(), Packing::RunLength),
                                          sample("Formats/packed.psd")));
    for (const Row &row : {
             Row{"Formats/keywords.jpg", most},
             Row{"Formats/progressive.jpg", most},
             Row{"Formats/cmyk.jpg", {95}},
             Row{"Formats/deep.png", most},
             Row{"Formats/gray.png", most},
             Row{"Photos/Ocean Swell.png", {90, 60, 30}},
             Row{"Formats/animated.gif", most},
             Row{"Formats/web.webp", {90, 60}},
             Row{"Formats/plain.bmp", most},
             Row{"Formats/plain.tga", most},
             Row{"Formats/runs.tga", most},
             Row{"Formats/packed.psd", most},
             Row{"Formats/deep.psd", most},
             Row{"Formats/sensor.dng", most},
             Row{"Formats/icon.ico", {90, 60}},
             Row{"Formats/icon.icns", {90, 60}},
             Row{"Formats/pages.tiff", {90, 60}},
             Row{"Formats/wavelet.jp2", most},
         }) {
        const QByteArray whole = contentOf(row.name);
        EXPECT_FALSE(ZQImageSource::thumbnailOfFile(sample(row.name), 256).isIncomplete()) << row.name;
        const QString cut = path(QStringLiteral("cut.") + QString::fromUtf8(row.name).section(u'.', -1));
        for (const int percent : row.percents) {
            SCOPED_TRACE(testing::Message() << row.name << " " << percent);
            ASSERT_TRUE(SampleFormats::writeBytes(whole.left(whole.size() * percent / 100), cut));
            ZQError error;
            EXPECT_TRUE(ZQImageSource::propertiesOfFile(cut));
            EXPECT_TRUE(ZQImageSource::thumbnailOfFile(cut, 256, &error).isIncomplete());
            EXPECT_TRUE(error.isNull()) << qPrintable(error.localizedDescription());
            EXPECT_TRUE(ZQImageSource::bitmapOfFile(cut).isIncomplete());
            EXPECT_TRUE(ZQPreviewService::previewOfFile(cut, {100, 100}).isIncomplete());
        }
    }
}

TEST_F(SampleTest, DrawsTheTilesThatAreThereOfATruncatedJPEG2000Picture)
{
    constexpr int firstTileWidth = 512;
    const QImage scene = smallScene();
    const QRect firstTile(0, 0, firstTileWidth, scene.height());
    const QByteArray file = contentOf("Formats/wavelet.jp2");
    const qsizetype start = file.indexOf("\xff\x4f\xff\x51");
    ASSERT_GT(start, 0);
    for (const bool isInBoxes : {true, false}) {
        const QByteArray whole = isInBoxes ? file : file.mid(start);
        const QString cut = path(isInBoxes ? QStringLiteral("cut.jp2") : QStringLiteral("cut.j2k"));
        const auto drawn = [&](qsizetype bytes) {
            EXPECT_TRUE(SampleFormats::writeBytes(whole.left(bytes), cut));
            return ZQImageSource::bitmapOfFile(cut);
        };
        const qsizetype first = whole.indexOf(QByteArray("\xff\x90\0\x0a\0\0", 6));
        const qsizetype second = whole.indexOf(QByteArray("\xff\x90\0\x0a\0\1", 6));
        ASSERT_TRUE(first > 0 && second > first);
        EXPECT_FALSE(drawn(whole.size()).isIncomplete());
        EXPECT_LE(distance(drawn(whole.size()).image(), scene), 6);

        const ZQBitmap unended = drawn(whole.size() - 2);
        EXPECT_TRUE(unended.isIncomplete());
        EXPECT_LE(distance(unended.image(), scene), 6);

        for (const qsizetype bytes : {second, second + 5, second + 13}) {
            SCOPED_TRACE(testing::Message() << isInBoxes << " " << bytes - second);
            const ZQBitmap bitmap = drawn(bytes);
            EXPECT_TRUE(bitmap.isIncomplete());
            EXPECT_EQ(bitmap.size(), scene.size());
            EXPECT_LE(distance(bitmap.image().copy(firstTile), scene.copy(firstTile)), 6);
            EXPECT_EQ(bitmap.image().pixelColor(firstTileWidth - 1, 200).alpha(), 255);
            EXPECT_EQ(bitmap.image().pixelColor(firstTileWidth, 200).alpha(), 0);
        }
        const ZQBitmap coarse = drawn(first + (second - first) / 2);
        EXPECT_LE(distance(coarse.image().copy(firstTile), scene.copy(firstTile)), 20);
        EXPECT_TRUE(drawn(first + 20).isNull()) << "a tile of which next to nothing is there";
    }
}

TEST_F(SampleTest, DrawsTilesOfAJPEG2000PictureWhoseLaterPartsAreMissing)
{
    const QImage scene = smallScene();
    const QByteArray file = contentOf("Formats/wavelet.jp2");
    const qsizetype first = file.indexOf(QByteArray("\xff\x90\0\x0a\0\0", 6));
    const qsizetype second = file.indexOf(QByteArray("\xff\x90\0\x0a\0\1", 6));
    constexpr qsizetype lengthPlace = 6;
    constexpr qsizetype countPlace = 11;
    ASSERT_TRUE(first > 0 && second > first);
    QByteArray opening = file.mid(first, (second - first) / 2);
    qToBigEndian(quint32(opening.size()), opening.data() + lengthPlace);
    opening[countPlace] = 2;
    const QString cut = path(QStringLiteral("parts.jp2"));
    ASSERT_TRUE(SampleFormats::writeBytes(file.left(first) + opening + file.mid(second).chopped(100), cut));

    const ZQBitmap bitmap = ZQImageSource::bitmapOfFile(cut);
    EXPECT_TRUE(bitmap.isIncomplete());
    EXPECT_FALSE(bitmap.hasAlpha());
    const QRect firstTile(0, 0, 512, scene.height());
    const QRect secondTile(512, 0, scene.width() - 512, scene.height());
    EXPECT_LE(distance(bitmap.image().copy(firstTile), scene.copy(firstTile)), 20);
    EXPECT_LE(distance(bitmap.image().copy(secondTile), scene.copy(secondTile)), 6);
}

TEST_F(SampleTest, SurvivesEveryCutAndManyChangedBytes)
{
    for (const char *name : {"Formats/layered.psd", "Formats/runs.tga", "Formats/icon.ico", "Formats/icon.icns",
                             "Formats/animated.gif", "Orientations/orientation-5.jpg", "Brand 2026/Logos/Tile.png",
                             "Formats/web.webp", "Formats/wavelet.jp2", "Formats/phone.heic", "Formats/web.avif",
                             "Formats/modern.jxl", "Formats/New.sketch", "Brand 2026/Artwork.ai"}) {
        SCOPED_TRACE(name);
        const QByteArray whole = contentOf(name);
        const QString broken = path(QStringLiteral("broken.") + QString::fromUtf8(name).section(u'.', -1));
        for (int i = 0; i < 24; ++i) {
            QByteArray bytes = i % 2 ? whole : whole.left(whole.size() * i / 24);
            for (int change = 0; i % 2 && change < 3; ++change) {
                const quint32 place = quint32(i * 7919 + change * 104729) * 2654435761U;
                bytes[qsizetype(place % quint32(qMin<qsizetype>(bytes.size(), change ? bytes.size() : 64)))] =
                    char(place >> 24);
            }
            ASSERT_TRUE(SampleFormats::writeBytes(bytes, broken));
            ZQError error;
            const ZQBitmap bitmap = ZQImageSource::thumbnailOfFile(broken, 64, &error);
            EXPECT_NE(bitmap.isNull(), error.isNull());
        }
    }
}

TEST_F(SampleTest, ReadsPSDInEveryPacking)
{
    const QImage scene = smallScene();
    for (const Packing packing : {Packing::None, Packing::RunLength}) {
        for (const int depth : {8, 16}) {
            ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::psdFile(scene, packing, depth),
                                                  path(QStringLiteral("a.psd"))));
            EXPECT_LT(distance(ZQImageSource::bitmapOfFile(path(QStringLiteral("a.psd"))).image(), scene), 0.01);
        }
    }
}

TEST_F(SampleTest, RefusesHeadersThatPromiseMoreThanTheFileHolds)
{
    QByteArray psd = SampleFormats::psdFile(smallScene(), Packing::RunLength);
    psd.replace(14, 8, QByteArray::fromHex("00007530 00007530")); // 30000 x 30000
    QByteArray tga = SampleFormats::tgaFile(smallScene(), Packing::None);
    tga.replace(12, 4, QByteArray::fromHex("ffffffff"));
    QByteArray map = SampleFormats::tgaFile(smallScene(), Packing::None);
    map.replace(1, 7, QByteArray::fromHex("01010000ffff09")); // a map of nine bits a colour
    QByteArray bmp = contentOf("Formats/plain.bmp");
    bmp.replace(18, 8, QByteArray::fromHex("f0550000 f0550000"));
    for (const auto &[name, bytes] :
         {std::pair("a.psd", psd), std::pair("a.tga", tga), std::pair("b.tga", map), std::pair("a.bmp", bmp),
          std::pair("a.png", SampleFormats::lyingPNG(20000, 20000))}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(SampleFormats::writeBytes(bytes, path(QLatin1String(name))));
        ZQError error;
        EXPECT_TRUE(ZQImageSource::thumbnailOfFile(path(QLatin1String(name)), 512, &error).isNull());
        EXPECT_EQ(error.domain, QStringLiteral("zelto.imaging"));
    }
}

TEST_F(SampleTest, TakesTheNameOfAFileAsItIs)
{
    for (const char *name : {"photo[page=3].jpg", "100% \"big\".jpg", "été.jpg", "-o.jpg", "noextension"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(QFile::copy(sample("Orientations/orientation-1.jpg"), path(QString::fromUtf8(name))));
        EXPECT_EQ(ZQImageSource::thumbnailOfFile(path(QString::fromUtf8(name)), 512).size(), QSize(400, 300));
    }
}

TEST_F(SampleTest, DecodesOnSeveralThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::array<bool, 6> right{};
    for (size_t i = 0; i < right.size(); ++i) {
        threads.emplace_back([i, &right] {
            const char *name = i % 2 ? "Formats/cmyk.jpg" : "Broken/hardly-there.jpg";
            bool all = true;
            for (int round = 0; round < 5; ++round) {
                all = all && ZQImageSource::thumbnailOfFile(sample(name), 200).isNull() == (i % 2 == 0);
            }
            right[i] = all;
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const bool each : right) {
        EXPECT_TRUE(each);
    }
}

TEST_F(SampleTest, PreviewsFillTheBoxWithDrawingsOnly)
{
    for (const auto &[name, size] :
         std::initializer_list<std::pair<const char *, QSize>>{{"Brand 2026/Mark.svg", {1000, 750}},
                                                               {"Brand 2026/Guidelines.pdf", {707, 1000}},
                                                               {"Brand 2026/Stamp.eps", {1000, 643}},
                                                               {"Orientations/orientation-6.jpg", {400, 300}},
                                                               {"Formats/Screen.sketch", {640, 480}}}) {
        SCOPED_TRACE(name);
        ZQError error;
        const QSize got = ZQPreviewService::previewOfFile(sample(name), {1000, 1000}, &error).size();
        EXPECT_NEAR(got.width(), size.width(), 1) << qPrintable(error.localizedDescription());
        EXPECT_NEAR(got.height(), size.height(), 1);
    }
    ZQError error;
    EXPECT_TRUE(ZQPreviewService::previewOfFile(sample("CONTENTS.txt"), {512, 512}, &error).isNull());
    EXPECT_FALSE(error.isNull());
    EXPECT_EQ(colorAt(ZQPreviewService::previewOfFile(sample("Brand 2026/Guidelines.pdf"), {64, 64}), 0, 0),
              QColor(Qt::white));
}

TEST_F(SampleTest, PostScriptCannotReachFilesAndNeedsABox)
{
    const QString victim = path(QStringLiteral("victim.txt"));
    const QByteArray writing = "(" + victim.toUtf8() + ") (w) file dup (x) writestring closefile";
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::epsFile({10, 10}, writing), path(QStringLiteral("a.eps"))));
    ZQError error;
    EXPECT_TRUE(ZQImageSource::bitmapOfFile(path(QStringLiteral("a.eps")), &error).isNull());
    EXPECT_FALSE(QFile::exists(victim));
    ASSERT_TRUE(SampleFormats::writeBytes(SampleFormats::epsFile({0, 10}, "newpath"), path(QStringLiteral("b.eps"))));
    EXPECT_TRUE(ZQImageSource::bitmapOfFile(path(QStringLiteral("b.eps")), &error).isNull());
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("bounding box")));
}

TEST_F(SampleTest, WritesWholeFilesThatReadBackTheSame)
{
    const ZQBitmap logo(SampleScenes::logo(2, Qt::red, Qt::yellow, 100));
    ASSERT_TRUE(ZQImageDestination::writePNG(logo, path(QStringLiteral("a.png"))));
    EXPECT_LT(distance(ZQImageSource::bitmapOfFile(path(QStringLiteral("a.png"))).image(), logo.image()), 1);
    ASSERT_TRUE(ZQImageDestination::writeJPEG(logo, path(QStringLiteral("a.jpg")), 95));
    const QColor corner = colorAt(ZQImageSource::bitmapOfFile(path(QStringLiteral("a.jpg"))), 0, 0);
    EXPECT_GT(qMin(corner.red(), qMin(corner.green(), corner.blue())), 250);
    ZQError error;
    const QString nowhere = path(QStringLiteral("no/such/folder.png"));
    EXPECT_FALSE(ZQImageDestination::writePNG(logo, nowhere, &error));
    EXPECT_EQ(error.localizedDescription(), nowhere + QStringLiteral(": No such file or directory"));
    for (const bool isPNG : {true, false}) {
        const QString none = path(QStringLiteral("b.png"));
        EXPECT_FALSE(isPNG ? ZQImageDestination::writePNG(ZQBitmap(), none, &error)
                           : ZQImageDestination::writeJPEG(ZQBitmap(), none, 90, &error));
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("The picture \"b.png\" can't be opened. There is no picture to write."));
    }
    ASSERT_TRUE(QDir().mkpath(path(QStringLiteral("folder"))));
    EXPECT_FALSE(ZQImageDestination::writePNG(logo, path(QStringLiteral("folder")), &error));
    EXPECT_EQ(error.localizedDescription(), path(QStringLiteral("folder")) + QStringLiteral(": Is a directory"));
    EXPECT_EQ(QDir(path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name),
              (QStringList{QStringLiteral("a.jpg"), QStringLiteral("a.png"), QStringLiteral("folder")}));
}

TEST_F(SampleTest, WritesTransparencyWhereThereIsSomeAndWhiteBehindItWhereThereCannotBe)
{
    QImage image(2, 1, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(10, 20, 30));
    image.setPixelColor(1, 0, QColor(200, 100, 50));
    const QString file = path(QStringLiteral("a.png"));
    for (const bool hasAlpha : {false, true}) {
        if (hasAlpha) {
            image.setPixelColor(1, 0, QColor(200, 100, 50, 128));
        }
        ASSERT_TRUE(ZQImageDestination::writePNG(ZQBitmap(image), file));
        EXPECT_EQ(ZQImageSource::bitmapOfFile(file).image(), image);
        EXPECT_EQ(ZQImageSource::propertiesOfFile(file)->hasAlpha, hasAlpha);
    }
    QImage flat(16, 16, QImage::Format_RGBA8888);
    flat.fill(QColor(0, 0, 0, 51));
    const QString jpeg = path(QStringLiteral("a.jpg"));
    ASSERT_TRUE(ZQImageDestination::writeJPEG(ZQBitmap(flat), jpeg, 100));
    EXPECT_NEAR(colorAt(ZQImageSource::bitmapOfFile(jpeg), 0.5, 0.5).green(), 204, 1);
    const ZQBitmap scene(smallScene());
    QList<qint64> sizes;
    for (const int quality : {-5, 1, 50, 100, 900}) {
        ASSERT_TRUE(ZQImageDestination::writeJPEG(scene, jpeg, quality));
        sizes.append(QFileInfo(jpeg).size());
    }
    EXPECT_EQ(sizes.at(0), sizes.at(1));
    EXPECT_LT(sizes.at(1), sizes.at(2));
    EXPECT_LT(sizes.at(2), sizes.at(3));
    EXPECT_EQ(sizes.at(3), sizes.at(4));
}

TEST_F(SampleTest, APackageShowsTheBestOfItsOwnPreviews)
{
    const QString package = path(QStringLiteral("a.sketch"));
    ASSERT_TRUE(QDir().mkpath(package + QStringLiteral("/QuickLook")));
    ZQError error;
    std::optional<ZQImageProperties> properties;
    const auto width = [&](QSize box) {
        return ZQPreviewService::previewOfFile(package, box, &error, 0, &properties).width();
    };
    EXPECT_EQ(width({50, 50}), 0);
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("The picture \"a.sketch\" can't be opened. It holds no preview."));
    int side = 10;
    for (const char *name : {"Thumbnail.tiff", "Thumbnail.jpg", "Thumbnail.png", "Preview.pdf", "Preview.tiff",
                             "Preview.jpg", "Preview.png"}) {
        QImage image(++side, 5, QImage::Format_RGB32);
        image.fill(Qt::blue);
        const QString file = package + QStringLiteral("/QuickLook/") + QLatin1String(name);
        ASSERT_TRUE(image.save(file, "PNG"));
        EXPECT_EQ(width({50, 50}), side) << name;
        ASSERT_TRUE(properties);
        EXPECT_EQ(properties->pixelWidth, side);
    }
    error = {};
    EXPECT_EQ(width({0, 50}), 0);
    EXPECT_EQ(error.code, int(ZQImagingErrorCode::UnknownFormat));
    std::optional<ZQImageProperties> beside;
    const QString picture = package + QStringLiteral("/QuickLook/Preview.png");
    EXPECT_EQ(ZQImageSource::thumbnailOfFile(picture, 0, nullptr, 0, &beside).size(), QSize(1, 1));
    EXPECT_EQ(beside->pixelWidth, side);
    for (const char *extension : {"jpg", "psb", "x3f"}) {
        EXPECT_TRUE(ZQImageSource::supportedExtensions().contains(QLatin1String(extension))) << extension;
    }
}

} // namespace
