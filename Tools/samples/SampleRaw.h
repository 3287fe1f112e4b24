#pragma once

#include <QByteArray>
#include <QImage>

// A camera raw file as a camera with a Bayer sensor would write it (DNG 1.4): 16 bits, linear, uncompressed, the
// sensor's colours being those of sRGB, so that a developed picture looks like `image`. Without a preview. Sides are
// made even.
QByteArray dngFile(const QImage &image);
