#pragma once

#include "Kit/Imaging/ZQOklab.h"
#include "Kit/Imaging/ZQPalette.h"

#include <array>
#include <string_view>

// A colour of a palette as the index holds it: Oklab in steps of 1/255, a and b around 128, so that distances are whole
// numbers; and its share of the picture in 1/255, 0 where there is none.
struct PictureColor
{
    quint8 lightness = 0;
    quint8 a = 0;
    quint8 b = 0;
    quint8 share = 0;

    static PictureColor of(const ZQOklab &color, quint8 share);
    friend bool operator==(const PictureColor &, const PictureColor &) = default;
};

// Those of one picture, the largest share first.
struct PictureColors
{
    std::array<PictureColor, ZQPalette::maximum> colors;

    // Of the attribute `palette`; without any for what is no palette.
    static PictureColors of(std::string_view bytes);
    bool isEmpty() const { return colors[0].share == 0; }
    // The place in the order by hue: red, yellow, green, blue, violet, then from white to black what has no hue, then
    // what has no palette. At most `lastPlace`.
    int huePlace() const;
    static constexpr int lastPlace = 8192;
    friend bool operator==(const PictureColors &, const PictureColors &) = default;
};

// Whether a picture has a colour near to one. The less of it a picture shows, the nearer it has to be; a colour of its
// own palette is found in any share.
class ColorNearness
{
public:
    // In Oklab, where differences of hue and chroma count double: they are small there beside those of lightness, so
    // that a muted colour would be near to every grey.
    ColorNearness(const ZQOklab &color, float tolerance);
    bool operator()(const PictureColors &picture) const
    {
        bool isNear = false;
        for (const PictureColor &each : picture.colors) {
            const int lightness = int(each.lightness) - m_color.lightness;
            const int a = 2 * (int(each.a) - m_color.a);
            const int b = 2 * (int(each.b) - m_color.b);
            isNear |= lightness * lightness + a * a + b * b <= m_farthest[each.share];
        }
        return isNear;
    }

private:
    PictureColor m_color;
    std::array<int, 256> m_farthest; // squared, by share
};
