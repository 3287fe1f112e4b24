#include "Classes/Import/ColorFinder.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QMap>

#include <algorithm>
#include <array>

namespace {

constexpr int sampledSize = 24;

constexpr qint32 unknownColor = -1;

enum Color { White, Black, Gray, Red, Orange, Yellow, Green, Blue, Purple, Pink, ColorCount };

struct NamedColor
{
    const char *name;
    qint32 value;
};

constexpr std::array<NamedColor, ColorCount> colors{{{zqKey("white"), 1000},
                                                     {zqKey("black"), 1001},
                                                     {zqKey("gray"), 1002},
                                                     {zqKey("red"), 1003},
                                                     {zqKey("orange"), 1004},
                                                     {zqKey("yellow"), 1005},
                                                     {zqKey("green"), 1006},
                                                     {zqKey("blue"), 1007},
                                                     {zqKey("purple"), 1008},
                                                     {zqKey("pink"), 1009}}};

struct HueRange
{
    int last;
    Color color;
};

constexpr std::array hueRanges{HueRange{20, Red},   HueRange{45, Orange},  HueRange{65, Yellow}, HueRange{160, Green},
                               HueRange{240, Blue}, HueRange{300, Purple}, HueRange{330, Pink},  HueRange{360, Red}};

std::optional<Color> colorOf(const ColorFinder::HSL &hsl)
{
    if (hsl.alpha < 0.1) {
        return std::nullopt;
    }
    if (hsl.lightness >= 0.97 || (hsl.lightness >= 0.95 && hsl.saturation <= 0.02)) {
        return White;
    }
    if (hsl.lightness <= 0.15) {
        return Black;
    }
    if (hsl.saturation <= 0.07 || (hsl.saturation <= 0.1 && hsl.lightness <= 0.4)) {
        return Gray;
    }
    for (const HueRange &range : hueRanges) {
        if (hsl.hue <= range.last) {
            return range.color;
        }
    }
    return std::nullopt;
}

// Pixels by colour, the colours in the order they were met.
class Tally
{
public:
    void addPixels(const ZQBitmap &bitmap)
    {
        for (int y = 0; y < bitmap.height(); ++y) {
            const uchar *pixel = bitmap.constScanLine(y);
            for (int x = 0; x < bitmap.width(); ++x, pixel += 4) {
                const auto color = colorOf(
                    ColorFinder::getHue(pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0, pixel[3] / 255.0));
                if (color) {
                    add(*color);
                }
            }
        }
    }

    qint32 total() const { return m_total; }

    QList<ColorFinder::Count> counts() const
    {
        QList<ColorFinder::Count> out;
        for (const Color color : m_order) {
            out.append({zqLocalized(colors[color].name), m_pixels[color]});
        }
        return out;
    }

private:
    void add(Color color)
    {
        if (m_pixels[color]++ == 0) {
            m_order.append(color);
        }
        ++m_total;
    }

    std::array<qint32, ColorCount> m_pixels{};
    QList<Color> m_order;
    qint32 m_total = 0;
};

// A share in whole percent. Nothing is a share of nothing.
qint32 percent(qint32 part, qint32 whole)
{
    return whole == 0 ? 0 : qint32(quint32(part) * 100U) / whole;
}

} // namespace

QStringList ColorFinder::colorsForImageURL(const QString &path)
{
    ZQError error;
    const ZQBitmap bitmap = ZQImageSource::thumbnailOfFile(path, decodedSize, &error);
    if (bitmap.isNull()) {
        qCDebug(zqLogImport, "no colours: %s", qUtf8Printable(error.localizedDescription()));
    }
    return colorsForBitmap(bitmap);
}

QStringList ColorFinder::colorsForBitmap(const ZQBitmap &bitmap)
{
    // The picture is sampled smoothly, for its overall colours, and sharply, for its pure ones; both samples count.
    Tally tally;
    for (const ZQBitmap::Quality quality : {ZQBitmap::Quality::High, ZQBitmap::Quality::Low}) {
        ZQBitmap sample = bitmap.scaledToFit({sampledSize, sampledSize}, quality);
        if (sample.isNull()) {
            sample = bitmap.scaled({sampledSize, sampledSize}, quality);
        }
        tally.addPixels(sample);
    }
    return tally.total() == 0 ? QStringList() : estractPredominantColors(tally.counts(), tally.total());
}

QStringList ColorFinder::estractPredominantColors(const QList<Count> &counts, qint32 inNumberOfPixels)
{
    qint32 remainder = inNumberOfPixels;
    QList<Count> kept;
    for (const Count &count : counts) {
        if (percent(count.pixels, inNumberOfPixels) >= 10) {
            kept.append(count);
        } else {
            remainder -= count.pixels;
        }
    }
    QMap<qint32, QString> chosen;
    for (const Count &count : kept) {
        if (percent(count.pixels, remainder) >= 25) {
            chosen.insert(count.pixels, count.name);
        }
    }
    QStringList names = chosen.values();
    std::reverse(names.begin(), names.end());
    return names;
}

QString ColorFinder::compareUsingHUE(double red, double green, double blue, double alpha)
{
    const std::optional<Color> color = colorOf(getHue(red, green, blue, alpha));
    return color ? zqLocalized(colors[*color].name) : QString();
}

ColorFinder::HSL ColorFinder::getHue(double red, double green, double blue, double alpha)
{
    const double highest = std::max({red, green, blue});
    const double lowest = std::min({red, green, blue});
    HSL out{0, 0, (highest + lowest) / 2, alpha};
    const double range = highest - lowest;
    if (range == 0) {
        return out;
    }
    if (highest == red) {
        out.hue = int((green - blue) / range * 60 + 360) % 360;
    } else if (highest == green) {
        out.hue = int((blue - red) / range * 60 + 120);
    } else {
        out.hue = int((red - green) / range * 60 + 240);
    }
    out.saturation = out.lightness <= 0.5 ? range / (2 * out.lightness) : range / (2 - 2 * out.lightness);
    return out;
}

qint32 ColorFinder::colorValueForName(const QString &name)
{
    for (const NamedColor &color : colors) {
        if (name == zqLocalized(color.name) || name == QLatin1String(color.name)) {
            return color.value;
        }
    }
    return unknownColor;
}

QString ColorFinder::colorNameForValue(qint32 value)
{
    for (const NamedColor &color : colors) {
        if (color.value == value) {
            return zqLocalized(color.name);
        }
    }
    return zqLocalized("None");
}
