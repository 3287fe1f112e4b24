#include "Tests/Kit/Imaging/ImagingSupport.h"

#include <QSet>
#include <QTransform>

TEST(ZQBitmap, ScalesByAveragingWhatEachPixelCovers)
{
    QImage image(4, 2, QImage::Format_RGBA8888);
    image.fill(Qt::black);
    image.setPixelColor(0, 0, QColor(200, 100, 40));
    const ZQBitmap half = ZQBitmap(image).scaled({2, 1}, ZQBitmap::Quality::High);
    EXPECT_EQ(half.image().pixelColor(0, 0), QColor(50, 25, 10));
    EXPECT_EQ(half.image().pixelColor(1, 0), QColor(0, 0, 0));
}

TEST(ZQBitmap, SharesAPixelBetweenThoseThatCoverAPartOfIt)
{
    QImage image(3, 3, QImage::Format_RGB32); // kept as RGBA
    image.fill(Qt::black);
    for (int i = 0; i < 3; ++i) {
        image.setPixelColor(1, i, QColor(90, 0, 0));
        image.setPixelColor(2, i, QColor(240, 0, 0));
    }
    EXPECT_EQ(ZQBitmap(image).image().format(), QImage::Format_RGBA8888);
    const ZQBitmap across = ZQBitmap(image).scaled({2, 3}, ZQBitmap::Quality::High);
    const ZQBitmap down = ZQBitmap(image.transformed(QTransform().rotate(90))).scaled({3, 2}, ZQBitmap::Quality::High);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(across.image().pixelColor(0, i).red(), 30);
        EXPECT_EQ(across.image().pixelColor(1, i).red(), 190);
        EXPECT_EQ(down.image().pixelColor(i, 0).red(), 30);
        EXPECT_EQ(down.image().pixelColor(i, 1).red(), 190);
    }
}

TEST(ZQBitmap, MixesNeighboursWhenItIsEnlargedInOneDirectionAlone)
{
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.fill(Qt::black);
    image.setPixelColor(1, 0, Qt::white);
    image.setPixelColor(0, 1, Qt::white);
    for (const QSize size : {QSize(8, 2), QSize(2, 8), QSize(8, 1), QSize(1, 8)}) {
        const QImage large = ZQBitmap(image).scaled(size, ZQBitmap::Quality::High).image();
        EXPECT_EQ(large.size(), size);
        QSet<int> shades;
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                shades.insert(large.pixelColor(x, y).red());
            }
        }
        EXPECT_FALSE(shades == QSet<int>({0, 255}) || (size.width() > 1 && size.height() > 1 && shades.size() < 3));
    }
}

TEST(ZQBitmap, OfNoSizeOrItsOwnIsNothingOrItself)
{
    QImage image(3, 2, QImage::Format_RGBA8888);
    image.fill(Qt::red);
    ZQBitmap bitmap(image);
    bitmap.setIncomplete(true);
    for (const auto quality : {ZQBitmap::Quality::High, ZQBitmap::Quality::Low}) {
        EXPECT_TRUE(ZQBitmap().scaled({2, 2}, quality).isNull());
        EXPECT_TRUE(bitmap.scaled({0, 2}, quality).isNull());
        EXPECT_TRUE(bitmap.scaled({2, -1}, quality).isNull());
        EXPECT_EQ(bitmap.scaled({3, 2}, quality).constScanLine(0), bitmap.constScanLine(0)) << "not copied";
        EXPECT_TRUE(bitmap.scaled({2, 2}, quality).isIncomplete());
    }
    EXPECT_FALSE(ZQBitmap(image).scaled({2, 2}, ZQBitmap::Quality::High).isIncomplete());
    for (const QSize box : {QSize(3, 2), QSize(9, 9), QSize(0, 0), QSize(-1, 5)}) {
        EXPECT_EQ(bitmap.scaledToFit(box).constScanLine(0), bitmap.constScanLine(0));
    }
    EXPECT_EQ(bitmap.scaledToFit({2, 9}).size(), QSize(2, 1));
    EXPECT_EQ(bitmap.scaledToFit({9, 1}).size(), QSize(1, 1));
    image.fill(QColor(9, 9, 9, 0));
    EXPECT_EQ(ZQBitmap(image).scaled({1, 1}, ZQBitmap::Quality::High).image().pixel(0, 0), 0U);
}

TEST(ZQBitmap, DoesNotLetTransparentPixelsColourTheirNeighbours)
{
    QImage image(2, 1, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(255, 0, 0, 255));
    image.setPixelColor(1, 0, QColor(0, 255, 0, 0));
    const QColor mixed = ZQBitmap(image).scaled({1, 1}, ZQBitmap::Quality::High).image().pixelColor(0, 0);
    EXPECT_EQ(mixed.red(), 255);
    EXPECT_EQ(mixed.green(), 0);
    EXPECT_NEAR(mixed.alpha(), 128, 1);
}

TEST(ZQBitmap, TakesPixelsUnmixedWhenQualityIsLow)
{
    QImage image(100, 100, QImage::Format_RGBA8888);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            image.setPixelColor(x, y, (x + y) % 2 ? Qt::white : Qt::red);
        }
    }
    const ZQBitmap small = ZQBitmap(image).scaled({10, 10}, ZQBitmap::Quality::Low);
    for (int x = 0; x < 10; ++x) {
        const QColor color = small.image().pixelColor(x, 3);
        EXPECT_TRUE(color == QColor(Qt::white) || color == QColor(Qt::red));
    }
}

TEST(ZQBitmap, FitsABoxKeepingTheRatio)
{
    struct Row
    {
        QSize size;
        QSize box;
        QSize expected;
    };
    for (const Row &row : {Row{{600, 300}, {512, 512}, {512, 256}}, Row{{400, 400}, {512, 512}, {400, 400}},
                           Row{{1, 1000}, {24, 24}, {1, 24}}, Row{{300, 600}, {512, 512}, {256, 512}}}) {
        QImage image(row.size, QImage::Format_RGBA8888);
        image.fill(Qt::blue);
        EXPECT_EQ(ZQBitmap(image).scaledToFit(row.box).size(), row.expected);
    }
    EXPECT_TRUE(ZQBitmap().scaledToFit({10, 10}).isNull());
}

TEST(ZQBitmap, KnowsWhetherAnyPixelIsSeeThrough)
{
    QImage image(3, 3, QImage::Format_RGBA8888);
    image.fill(Qt::white);
    EXPECT_FALSE(ZQBitmap(image).hasAlpha());
    for (const QPoint place : {QPoint(0, 0), QPoint(2, 2), QPoint(2, 0)}) {
        QImage clear = image;
        clear.setPixelColor(place, QColor(0, 0, 0, 254));
        EXPECT_TRUE(ZQBitmap(clear).hasAlpha());
    }
}
