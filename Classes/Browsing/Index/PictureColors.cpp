#include "Classes/Browsing/Index/PictureColors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr float steps = 255;
constexpr int middle = 128; // of a and b

quint8 stepsOf(float value, int from)
{
    return quint8(std::clamp(int(std::lround(value * steps)) + from, 0, 255));
}

} // namespace

PictureColor PictureColor::of(const ZQOklab &color, quint8 share)
{
    return {stepsOf(color.L, 0), stepsOf(color.a, middle), stepsOf(color.b, middle), share};
}

PictureColors PictureColors::of(std::string_view bytes)
{
    constexpr size_t bytesOfColor = ZQPalette::bytesOfColor;
    PictureColors result;
    if (bytes.size() % bytesOfColor != 0 || bytes.size() > bytesOfColor * result.colors.size()) {
        return result;
    }
    for (size_t i = 0; i < bytes.size() / bytesOfColor; ++i) {
        const auto byte = [&](size_t place) { return quint8(bytes[bytesOfColor * i + place]); };
        const QRgb rgb = qRgb(byte(0), byte(1), byte(2));
        result.colors[i] = PictureColor::of(ZQOklab::of(rgb), std::max<quint8>(byte(3), 1));
    }
    return result;
}

int PictureColors::huePlace() const
{
    constexpr int leastChroma = 10; // below, it is some grey
    constexpr int leastShare = 8;
    constexpr int hues = 4096;
    constexpr double firstHue = 0.2; // in radians: between pink, which comes last, and red
    if (isEmpty()) {
        return lastPlace;
    }
    for (const PictureColor &color : colors) {
        const int a = color.a - middle;
        const int b = color.b - middle;
        if (color.share >= leastShare && a * a + b * b >= leastChroma * leastChroma) {
            const double turn = (std::atan2(double(b), double(a)) - firstHue) / (2 * std::numbers::pi);
            return std::clamp(int((turn - std::floor(turn)) * hues), 0, hues - 1);
        }
    }
    return hues + 255 - colors[0].lightness;
}

ColorNearness::ColorNearness(const ZQOklab &color, float tolerance) : m_color(PictureColor::of(color, 0))
{
    constexpr float fullShare = 38; // a seventh of the picture
    constexpr float least = 0.4F;   // of the tolerance, for a trace of it
    m_farthest[0] = -1;
    for (size_t share = 1; share < m_farthest.size(); ++share) {
        const float part = least + (1 - least) * std::min(1.0F, float(share) / fullShare);
        const float farthest = std::max(0.0F, tolerance) * steps * part;
        m_farthest[share] = int(farthest * farthest);
    }
}
