#include "Kit/Imaging/ZQPictureHash.h"

#include "Tests/Kit/Imaging/DrawnPictures.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using Bytes = QByteArray;

std::optional<ZQPictureHash> hashOf(const QImage &image)
{
    return ZQPictureHash::of(ZQBitmap(image));
}

// 256 where one of them shows nothing.
int distanceOf(const QImage &left, const QImage &right)
{
    const auto a = hashOf(left);
    const auto b = hashOf(right);
    return a && b ? a->distance(*b) : ZQPictureHash::bitCount;
}

QImage brighter(const QImage &image, double factor)
{
    return changed(image, [factor](QRgb pixel) {
        const auto channel = [factor](int value) { return std::min(int(value * factor), 255); };
        return qRgba(channel(qRed(pixel)), channel(qGreen(pixel)), channel(qBlue(pixel)), qAlpha(pixel));
    });
}

QImage noisy(const QImage &image)
{
    std::mt19937 random(5);
    return changed(image, [&random](QRgb pixel) {
        const auto channel = [&random](int value) { return std::clamp(value + int(random() % 25) - 12, 0, 255); };
        return qRgb(channel(qRed(pixel)), channel(qGreen(pixel)), channel(qBlue(pixel)));
    });
}

QImage scaled(const QImage &image, QSize size)
{
    return ZQBitmap(image).scaled(size, ZQBitmap::Quality::High).image();
}

// A mark with an outline that is not its box, on nothing.
QImage mark(const QColor &color)
{
    QImage image = flat({240, 240}, Qt::transparent);
    for (int y = 0; y < 240; ++y) {
        for (int x = 0; x < 240; ++x) {
            const bool isInRing = std::abs(std::hypot(x - 120, y - 100) - 60) < 18;
            if (isInRing || (x > 60 && x < 190 && y > 190 && y < 215) || (y > 40 && y < 90 && x > 170)) {
                image.setPixelColor(x, y, color);
            }
        }
    }
    return image;
}

QImage flattened(const QImage &image, const QColor &ground)
{
    return changed(image, [&ground](QRgb pixel) { return qAlpha(pixel) ? pixel : ground.rgba(); });
}

} // namespace

// What two sides mix with their frame may meet in the middle of a small picture.
TEST(ZQPictureHash, AFrameLeavesSomethingOfAPicture)
{
    const auto framed = [](int thick, bool isUpright) {
        QImage image = flat({10, 10}, Qt::white);
        for (int line = 2; line < 8; ++line) {
            const bool isMiddle = line > 5 - thick && line <= 5;
            for (int place = 0; place < 10; ++place) {
                const QPoint at = isUpright ? QPoint(line, place) : QPoint(place, line);
                image.setPixelColor(at, isMiddle ? QColor(0, 0, 0) : QColor(238, 238, 238));
            }
        }
        return image;
    };
    for (const int thick : {1, 2}) {
        for (const bool isUpright : {false, true}) {
            const auto hash = hashOf(framed(thick, isUpright));
            ASSERT_TRUE(hash) << thick << isUpright;
            EXPECT_NE(*hash, ZQPictureHash{}) << thick << isUpright;
        }
    }
}

TEST(ZQPictureHash, KnowsAPictureInAnotherForm)
{
    struct Form
    {
        const char *name;
        std::function<QImage(const QImage &)> make;
    };
    const QImage corner = flat({60, 20}, Qt::white);
    const Form forms[] = {
        {"itself", [](const QImage &image) { return image; }},
        {"half size", [](const QImage &image) { return scaled(image, image.size() / 2); }},
        {"an odd size",
         [](const QImage &image) {
             return scaled(image, {137, 103});
         }},
        {"squeezed",
         [](const QImage &image) {
             return scaled(image, {300, 300});
         }},
        {"brighter", [](const QImage &image) { return brighter(image, 1.15); }},
        {"darker", [](const QImage &image) { return brighter(image, 0.85); }},
        {"grey", [](const QImage &image) { return image.convertToFormat(QImage::Format_Grayscale8); }},
        {"blurred",
         [](const QImage &image) {
             return scaled(scaled(image, {50, 38}), image.size());
         }},
        {"noisy", noisy},
        {"with a mark",
         [&corner](const QImage &image) {
             return placed(image, corner, {330, 270});
         }},
        {"on white",
         [](const QImage &image) {
             return placed(flat({480, 380}, Qt::white), image, {40, 40});
         }},
        {"between bars",
         [](const QImage &image) {
             return placed(flat({400, 360}, Qt::black), image, {0, 30});
         }},
        {"with a frame",
         [](const QImage &image) {
             return placed(flat({424, 324}, QColor(20, 40, 70)), image, {12, 12});
         }},
    };
    for (const Form &form : forms) {
        for (unsigned seed = 1; seed <= 4; ++seed) {
            const QImage picture = spots(seed);
            EXPECT_LE(distanceOf(picture, form.make(picture)), ZQPictureHash::alikeDistance)
                << form.name << " " << seed;
        }
    }
}

TEST(ZQPictureHash, TellsPicturesApart)
{
    std::vector<ZQPictureHash> hashes;
    for (unsigned seed = 1; seed <= 16; ++seed) {
        const QImage picture = spots(seed);
        hashes.push_back(*hashOf(picture));
        hashes.push_back(*hashOf(picture.mirrored(true, false)));
        hashes.push_back(*hashOf(picture.mirrored(false, true)));
    }
    for (size_t i = 0; i < hashes.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            EXPECT_GT(hashes[i].distance(hashes[j]), ZQPictureHash::alikeDistance) << i << " " << j;
        }
    }
}

TEST(ZQPictureHash, AmongManyTheSameHasToBeNearer)
{
    for (const auto &[count, distance] : {std::pair<qint64, int>{0, ZQPictureHash::alikeDistance},
                                          {1000, ZQPictureHash::alikeDistance},
                                          {10000, ZQPictureHash::alikeDistance - 13},
                                          {1000000, ZQPictureHash::alikeDistance - 39},
                                          {1000000000000, 30}}) {
        EXPECT_EQ(ZQPictureHash::alikeDistanceAmong(count), distance) << count;
    }
}

TEST(ZQPictureHash, OfWhatShowsNothingIsNothing)
{
    const QImage hidden = changed(spots(1), [](QRgb pixel) { return pixel & 0x00FFFFFF; });
    for (const QImage &image : {QImage(), flat({1, 1}, Qt::red), flat({300, 200}, QColor(90, 90, 90)), hidden,
                                flat({40, 40}, Qt::transparent), flat({1, 900}, Qt::white)}) {
        EXPECT_EQ(hashOf(image), std::nullopt);
    }
    QImage speck = flat({300, 200}, QColor(90, 90, 90));
    speck.setPixelColor(150, 100, QColor(93, 93, 93));
    EXPECT_EQ(hashOf(speck), std::nullopt);
}

TEST(ZQPictureHash, TakesTheTransparentAsWhiteOrAsBlackWhereNothingShows)
{
    const QImage black = mark(Qt::black);
    EXPECT_EQ(hashOf(black), hashOf(flattened(black, Qt::white)));
    EXPECT_EQ(hashOf(mark(QColor(230, 140, 30))), hashOf(flattened(mark(QColor(230, 140, 30)), Qt::white)));
    EXPECT_EQ(hashOf(mark(Qt::white)), hashOf(flattened(mark(Qt::white), Qt::black)));
    EXPECT_NE(hashOf(mark(Qt::white)), std::nullopt);
    const QImage otherwise = changed(black, [](QRgb pixel) { return qAlpha(pixel) ? pixel : qRgba(7, 200, 90, 0); });
    EXPECT_EQ(hashOf(black), hashOf(otherwise));
}

TEST(ZQPictureHash, CutsOffNothingButFrames)
{
    // Were all that is even around a mark cut off, a dot would change everything.
    const QImage black = mark(Qt::black);
    EXPECT_LE(distanceOf(black, placed(black, flat({10, 10}, Qt::black), {222, 8})), ZQPictureHash::alikeDistance);
    // A sky that fades: were its even part cut off, where it ends would change with every form.
    QImage sky = spots(3);
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < sky.width(); ++x) {
            const int part = std::max(0, y - 60);
            const auto mixed = [part](int value) { return 200 + (value - 200) * part / 90; };
            const QRgb pixel = sky.pixel(x, y);
            sky.setPixel(x, y, qRgb(mixed(qRed(pixel)), mixed(qGreen(pixel)), mixed(qBlue(pixel))));
        }
    }
    EXPECT_LE(distanceOf(sky, brighter(sky, 0.85)), ZQPictureHash::alikeDistance / 2);
}

TEST(ZQPictureHash, TakesAnySize)
{
    for (const QSize size : {QSize(1, 500), QSize(500, 1), QSize(3000, 2), QSize(2, 2), QSize(3, 64), QSize(63, 65)}) {
        const QImage picture = spots(2, size);
        EXPECT_EQ(distanceOf(picture, picture), 0) << size.width() << "x" << size.height();
    }
    const QImage small = spots(7, {16, 12});
    EXPECT_LE(distanceOf(small, spots(7, {512, 384})), ZQPictureHash::alikeDistance);
}

TEST(ZQPictureHash, GoesThroughBytesAndCountsBits)
{
    ZQPictureHash hash;
    hash.words = {1, 0, quint64(1) << 63, 0xFF00};
    EXPECT_EQ(hash.bytes().toHex(), Bytes("0100000000000000"
                                          "0000000000000000"
                                          "0000000000000080"
                                          "00ff000000000000"));
    EXPECT_EQ(ZQPictureHash::fromBytes(hash.bytes()), hash);
    EXPECT_EQ(hash.distance({}), 10);
    EXPECT_EQ(hash.distance(hash), 0);
    for (const Bytes &bytes : {Bytes(), Bytes(31, 'x'), Bytes(33, 'x')}) {
        EXPECT_EQ(ZQPictureHash::fromBytes(bytes), std::nullopt);
    }
}
