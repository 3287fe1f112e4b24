#include "Kit/Imaging/ZQOklab.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

std::array<float, 256> linearValues()
{
    std::array<float, 256> values{};
    for (size_t i = 0; i < values.size(); ++i) {
        const double value = double(i) / 255;
        values[i] = float(value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return values;
}

int encoded(float linear)
{
    const float value = std::clamp(linear, 0.F, 1.F);
    const float bent = value <= 0.0031308F ? value * 12.92F : 1.055F * std::pow(value, 1 / 2.4F) - 0.055F;
    return int(std::lround(bent * 255));
}

} // namespace

ZQOklab ZQOklab::of(QRgb rgb)
{
    static const std::array<float, 256> linear = linearValues();
    const float red = linear[size_t(qRed(rgb))];
    const float green = linear[size_t(qGreen(rgb))];
    const float blue = linear[size_t(qBlue(rgb))];
    const float l = std::cbrt(0.4122214708F * red + 0.5363325363F * green + 0.0514459929F * blue);
    const float m = std::cbrt(0.2119034982F * red + 0.6806995451F * green + 0.1073969566F * blue);
    const float s = std::cbrt(0.0883024619F * red + 0.2817188376F * green + 0.6299787005F * blue);
    return {0.2104542553F * l + 0.7936177850F * m - 0.0040720468F * s,
            1.9779984951F * l - 2.4285922050F * m + 0.4505937099F * s,
            0.0259040371F * l + 0.7827717662F * m - 0.8086757660F * s};
}

QRgb ZQOklab::rgb() const
{
    const float l = L + 0.3963377774F * a + 0.2158037573F * b;
    const float m = L - 0.1055613458F * a - 0.0638541728F * b;
    const float s = L - 0.0894841775F * a - 1.2914855480F * b;
    const float l3 = l * l * l;
    const float m3 = m * m * m;
    const float s3 = s * s * s;
    return qRgb(encoded(4.0767416621F * l3 - 3.3077115913F * m3 + 0.2309699292F * s3),
                encoded(-1.2684380046F * l3 + 2.6097574011F * m3 - 0.3413193965F * s3),
                encoded(-0.0041960863F * l3 - 0.7034186147F * m3 + 1.7076147010F * s3));
}

float ZQOklab::distance(const ZQOklab &other) const
{
    const float dL = L - other.L;
    const float da = a - other.a;
    const float db = b - other.b;
    return std::sqrt(dL * dL + da * da + db * db);
}
