#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QByteArray>
#include <QList>
#include <QRgb>

// The few colours that a picture is made of, each with its share: clusters (k-means after S. Lloyd, "Least squares
// quantization in PCM", 1982, from seeds far apart) in Oklab over a sample of the pixels. The same pixels give the same
// palette. Any thread.
struct ZQPalette
{
    struct Color
    {
        QRgb rgb = 0;     // opaque
        quint8 share = 0; // in 1/255 of the visible pixels, at least 1
        friend bool operator==(const Color &, const Color &) = default;
    };

    static constexpr int maximum = 5;
    QList<Color> colors; // by share, the largest first

    static ZQPalette of(const ZQBitmap &bitmap); // none for a picture without a visible pixel
    // Of each colour R, G, B and share; empty for what is no palette.
    static constexpr qsizetype bytesOfColor = 4;
    static ZQPalette fromBytes(const QByteArray &bytes);
    QByteArray bytes() const;
    friend bool operator==(const ZQPalette &, const ZQPalette &) = default;
};
