#include "Classes/Import/ColorFinder.h"

#include <QColor>

#include <gtest/gtest.h>

namespace {

QString nameOf(const QColor &color)
{
    return ColorFinder::compareUsingHUE(color.redF(), color.greenF(), color.blueF(), color.alphaF());
}

// A strong colour of exactly that hue in degrees (a little above, against rounding).
QString nameOfHue(double degrees)
{
    const double sector = (degrees + 1e-6) / 60;
    const double rising = sector - int(sector);
    const double high = 0.9;
    const double low = 0.1;
    const double up = low + (high - low) * rising;
    const double down = high - (high - low) * rising;
    switch (int(sector) % 6) {
    case 0:
        return ColorFinder::compareUsingHUE(high, up, low, 1);
    case 1:
        return ColorFinder::compareUsingHUE(down, high, low, 1);
    case 2:
        return ColorFinder::compareUsingHUE(low, high, up, 1);
    case 3:
        return ColorFinder::compareUsingHUE(low, down, high, 1);
    case 4:
        return ColorFinder::compareUsingHUE(up, low, high, 1);
    default:
        return ColorFinder::compareUsingHUE(high, low, down, 1);
    }
}

ZQBitmap filled(const QColor &color, QSize size = {60, 40})
{
    QImage image(size, QImage::Format_RGBA8888);
    image.fill(color);
    return ZQBitmap(image);
}

TEST(ColorFinder, NamesHuesAtTheirBounds)
{
    for (const auto &[hue, name] : std::initializer_list<std::pair<int, const char *>>{{0, "red"},
                                                                                       {20, "red"},
                                                                                       {21, "orange"},
                                                                                       {45, "orange"},
                                                                                       {46, "yellow"},
                                                                                       {65, "yellow"},
                                                                                       {66, "green"},
                                                                                       {160, "green"},
                                                                                       {161, "blue"},
                                                                                       {240, "blue"},
                                                                                       {241, "purple"},
                                                                                       {300, "purple"},
                                                                                       {301, "pink"},
                                                                                       {330, "pink"},
                                                                                       {331, "red"},
                                                                                       {359, "red"}}) {
        EXPECT_EQ(nameOfHue(hue), QLatin1String(name)) << hue;
    }
}

TEST(ColorFinder, NamesWhatHasNoHue)
{
    EXPECT_EQ(nameOf(Qt::white), QStringLiteral("white"));
    EXPECT_EQ(nameOf(QColor(250, 250, 255)), QStringLiteral("white")); // light enough whatever its hue
    EXPECT_EQ(nameOf(QColor(244, 244, 244)), QStringLiteral("white")); // nearly as light, without hue
    EXPECT_EQ(nameOf(QColor(236, 244, 255)), QStringLiteral("blue"));  // as light, with hue
    EXPECT_EQ(nameOf(QColor(38, 38, 38)), QStringLiteral("black"));    // lightness 0.149
    EXPECT_EQ(nameOf(QColor(39, 39, 39)), QStringLiteral("gray"));
    EXPECT_EQ(nameOf(QColor(128, 128, 128)), QStringLiteral("gray"));
    EXPECT_EQ(nameOf(QColor(92, 92, 110)), QStringLiteral("gray"));   // weak and dark
    EXPECT_EQ(nameOf(QColor(170, 170, 187)), QStringLiteral("blue")); // weak, but not so dark
    EXPECT_EQ(nameOf(QColor(255, 0, 0, 25)), QString());
    EXPECT_EQ(nameOf(QColor(255, 0, 0, 26)), QStringLiteral("red"));
}

TEST(ColorFinder, AnswersHueInWholeDegrees)
{
    const ColorFinder::HSL orange = ColorFinder::getHue(1, 0.5, 0, 0.25);
    EXPECT_EQ(orange.hue, 30);
    EXPECT_DOUBLE_EQ(orange.saturation, 1);
    EXPECT_DOUBLE_EQ(orange.lightness, 0.5);
    EXPECT_DOUBLE_EQ(orange.alpha, 0.25);
    EXPECT_EQ(ColorFinder::getHue(1, 0, 0.01, 1).hue, 359);
    EXPECT_EQ(ColorFinder::getHue(1, 0, 1, 1).hue, 300);
    EXPECT_EQ(ColorFinder::getHue(0.3, 0.3, 0.3, 1).hue, 0);
    EXPECT_DOUBLE_EQ(ColorFinder::getHue(0.9, 0.7, 0.7, 1).saturation, 0.2 / (2 - 1.6));
}

TEST(ColorFinder, ChoosesDominatingColours)
{
    struct Row
    {
        QList<ColorFinder::Count> counts;
        qint32 total;
        QStringList chosen;
    };
    const QString red = QStringLiteral("red");
    const QString blue = QStringLiteral("blue");
    const QString gray = QStringLiteral("gray");
    for (const Row &row : {
             Row{{{red, 300}, {blue, 700}}, 1000, {blue, red}},
             Row{{{red, 500}, {blue, 500}}, 1000, {blue}}, // equal counts: the later one survives
             Row{{{blue, 500}, {red, 500}}, 1000, {red}},
             Row{{{red, 249}, {blue, 751}}, 1000, {blue}},                   // 24 whole percent
             Row{{{red, 99}, {blue, 220}, {gray, 681}}, 1000, {gray}},       // 220 of 901 is 24 percent
             Row{{{red, 99}, {blue, 226}, {gray, 675}}, 1000, {gray, blue}}, // 226 of 901 is 25
             Row{{}, 0, {}},
             Row{{{red, 0}}, 0, {}},
         }) {
        EXPECT_EQ(ColorFinder::estractPredominantColors(row.counts, row.total), row.chosen);
    }
}

TEST(ColorFinder, NamesThePicture)
{
    EXPECT_EQ(ColorFinder::colorsForBitmap(filled(Qt::white)), QStringList(QStringLiteral("white")));
    EXPECT_EQ(ColorFinder::colorsForBitmap(filled(Qt::transparent)), QStringList());
    EXPECT_EQ(ColorFinder::colorsForBitmap(ZQBitmap()), QStringList());
    EXPECT_EQ(ColorFinder::colorsForBitmap(filled(Qt::red, {1, 3000})), QStringList(QStringLiteral("red")));
    QImage halves = filled(Qt::red, {48, 48}).image();
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 16; ++x) {
            halves.setPixelColor(x, y, Qt::blue);
        }
    }
    EXPECT_EQ(ColorFinder::colorsForBitmap(ZQBitmap(halves)),
              QStringList({QStringLiteral("red"), QStringLiteral("blue")}));
    EXPECT_EQ(ColorFinder::colorsForImageURL(QStringLiteral("/no/such/file.png")), QStringList());
    // Of two that cover as much the one that is met later: here red is met first, though blue comes up twice before it.
    constexpr int side = 24;
    QImage even = filled(Qt::red, {side, side}).image();
    for (int i = 1; i <= side * side / 2; ++i) {
        even.setPixelColor(i % side, i / side, Qt::blue);
    }
    EXPECT_EQ(ColorFinder::colorsForBitmap(ZQBitmap(even)), QStringList(QStringLiteral("blue")));
}

TEST(ColorFinder, CountsASmoothAndASharpSample)
{
    // Three quarters are a fine pattern of red and blue: smooth sampling sees purple there, sharp sampling blue.
    QImage pattern(240, 240, QImage::Format_RGBA8888);
    for (int y = 0; y < 240; ++y) {
        for (int x = 0; x < 240; ++x) {
            pattern.setPixelColor(x, y, x < 180 && (x / 5 + y / 5) % 2 ? QColor(255, 0, 0) : QColor(0, 0, 255));
        }
    }
    EXPECT_EQ(ColorFinder::colorsForBitmap(ZQBitmap(pattern)),
              QStringList({QStringLiteral("blue"), QStringLiteral("purple")}));
}

TEST(ColorFinder, TurnsNamesIntoCodesAndBack)
{
    const QStringList names{QStringLiteral("white"), QStringLiteral("black"),  QStringLiteral("gray"),
                            QStringLiteral("red"),   QStringLiteral("orange"), QStringLiteral("yellow"),
                            QStringLiteral("green"), QStringLiteral("blue"),   QStringLiteral("purple"),
                            QStringLiteral("pink")};
    for (qsizetype i = 0; i < names.size(); ++i) {
        EXPECT_EQ(ColorFinder::colorValueForName(names.at(i)), 1000 + i);
        EXPECT_EQ(ColorFinder::colorNameForValue(qint32(1000 + i)), names.at(i));
    }
    EXPECT_EQ(ColorFinder::colorValueForName(QStringLiteral("teal")), -1);
    EXPECT_EQ(ColorFinder::colorNameForValue(-1), QStringLiteral("None"));
}

} // namespace
