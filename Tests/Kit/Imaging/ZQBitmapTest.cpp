#include "Tests/Kit/Imaging/ImagingSupport.h"

TEST(ZQBitmap, ScalesByAveragingWhatEachPixelCovers)
{
    QImage image(4, 2, QImage::Format_RGBA8888);
    image.fill(Qt::black);
    image.setPixelColor(0, 0, QColor(200, 100, 40));
    const ZQBitmap half = ZQBitmap(image).scaled({2, 1}, ZQBitmap::Quality::High);
    EXPECT_EQ(half.image().pixelColor(0, 0), QColor(50, 25, 10));
    EXPECT_EQ(half.image().pixelColor(1, 0), QColor(0, 0, 0));
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
    image.setPixelColor(2, 2, QColor(0, 0, 0, 254));
    EXPECT_TRUE(ZQBitmap(image).hasAlpha());
}
