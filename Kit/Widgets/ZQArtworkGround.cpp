#include "Kit/Widgets/ZQArtworkGround.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr int samplesPerSide = 96;
constexpr double leastContrast = 2;
constexpr double shareThatCounts = 0.1; // of what is not transparent
constexpr int square = 10;
constexpr double radius = 3;

std::array<double, 256> makeLinear()
{
    std::array<double, 256> result{};
    for (size_t i = 0; i < result.size(); ++i) {
        const double value = double(i) / 255;
        result[i] = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    }
    return result;
}

double luminance(QRgb color)
{
    static const std::array<double, 256> linear = makeLinear();
    return 0.2126 * linear[size_t(qRed(color))] + 0.7152 * linear[size_t(qGreen(color))] +
           0.0722 * linear[size_t(qBlue(color))];
}

double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

std::pair<QColor, QColor> squaresOf(ZQArtworkGround ground)
{
    switch (ground) {
    case ZQArtworkGround::Light:
        return {zqColor(ZQColorRole::ArtworkLight), zqColor(ZQColorRole::ArtworkLight2)};
    case ZQArtworkGround::Dark:
        return {zqColor(ZQColorRole::ArtworkDark), zqColor(ZQColorRole::ArtworkDark2)};
    case ZQArtworkGround::Middle:
        return {zqColor(ZQColorRole::ArtworkMiddle), zqColor(ZQColorRole::ArtworkMiddle2)};
    case ZQArtworkGround::None:
        break;
    }
    return {zqColor(ZQColorRole::Cell), zqColor(ZQColorRole::Raised2)};
}

} // namespace

ZQArtworkTone zqArtworkTone(const QImage &image)
{
    ZQArtworkTone tone;
    if (!image.hasAlphaChannel()) {
        return tone;
    }
    // Darker and lighter than either theme's ground: what stands out from these stands out there, too.
    constexpr double darkGround = 0.0116;
    constexpr double lightGround = 0.955;
    double all = 0;
    double dark = 0;
    double light = 0;
    const int stepX = std::max(1, image.width() / samplesPerSide);
    const int stepY = std::max(1, image.height() / samplesPerSide);
    for (int row = 0; row * stepY < image.height(); ++row) {
        const int y = std::min(image.height() - 1, row * stepY + stepY / 2);
        for (int x = row % stepX; x < image.width(); x += stepX) { // stripes have no place to hide
            const QRgb pixel = image.pixel(x, y);
            const double weight = qAlpha(pixel) / 255.0;
            tone.isTransparent = tone.isTransparent || weight < 1;
            const double level = luminance(pixel);
            all += weight;
            dark += contrast(level, darkGround) < leastContrast ? weight : 0;
            light += contrast(level, lightGround) < leastContrast ? weight : 0;
        }
    }
    tone.hasDark = dark > shareThatCounts * all;
    tone.hasLight = light > shareThatCounts * all;
    return tone;
}

ZQArtworkGround zqArtworkGround(const ZQArtworkTone &tone, bool isDarkTheme)
{
    if (!tone.isTransparent || !(isDarkTheme ? tone.hasDark : tone.hasLight)) {
        return ZQArtworkGround::None;
    }
    if (tone.hasDark && tone.hasLight) {
        return ZQArtworkGround::Middle;
    }
    return isDarkTheme ? ZQArtworkGround::Light : ZQArtworkGround::Dark;
}

void zqPaintArtworkGround(QPainter &painter, const QRectF &target, ZQArtworkGround ground)
{
    if (ground == ZQArtworkGround::None) {
        return;
    }
    if (ground == ZQArtworkGround::Middle) {
        const QRectF plate({}, target.size());
        painter.save();
        painter.translate(target.topLeft()); // the squares go where it goes
        zqPaintCheckerboard(painter, plate, plate.toAlignedRect(), ground);
        painter.restore();
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(squaresOf(ground).first);
    painter.drawRoundedRect(target, radius, radius);
}

void zqPaintCheckerboard(QPainter &painter, const QRectF &target, const QRect &seen, ZQArtworkGround ground)
{
    const auto [first, second] = squaresOf(ground);
    painter.fillRect(target, first);
    painter.save();
    painter.setClipRect(target, Qt::IntersectClip);
    const QRect drawn = target.toAlignedRect().intersected(seen);
    for (int y = drawn.top() / square; y <= drawn.bottom() / square; ++y) {
        for (int x = drawn.left() / square + (drawn.left() / square + y) % 2; x <= drawn.right() / square; x += 2) {
            painter.fillRect(QRect(x * square, y * square, square, square), second);
        }
    }
    painter.restore();
}
