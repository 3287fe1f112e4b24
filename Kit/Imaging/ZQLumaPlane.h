#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QRect>

#include <vector>

// How light each pixel of a picture is, on a ground of one grey where it lets something through. Any thread.
class ZQLumaPlane
{
public:
    ZQLumaPlane(const ZQBitmap &bitmap, quint8 ground);

    // `size` × `size` means of equal parts of `area`, row by row, whatever its ratio; parts may be less than a pixel.
    std::vector<float> averaged(const QRect &area, int size) const;

private:
    int m_width;
    int m_height;
    std::vector<quint8> m_pixels;
};
