#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QRect>

#include <vector>

// How light each pixel of a picture is, on a ground of one grey where it lets something through. Any thread.
class ZQLumaPlane
{
public:
    ZQLumaPlane(const ZQBitmap &bitmap, quint8 ground);

    QRect bounds() const { return {0, 0, m_width, m_height}; }
    quint8 at(int x, int y) const { return m_pixels[size_t(y) * size_t(m_width) + size_t(x)]; }

    // What is left without the margins of one shade each, which end at an edge and do not fade into the picture. All of
    // it when nothing else is there.
    QRect withoutMargins() const;
    // `size` × `size` means of equal parts of `area`, row by row, whatever its ratio; parts may be less than a pixel.
    std::vector<float> averaged(const QRect &area, int size) const;

private:
    QRect sideTrimmed(const QRect &area, Qt::Edge edge) const;

    int m_width;
    int m_height;
    std::vector<quint8> m_pixels;
};
