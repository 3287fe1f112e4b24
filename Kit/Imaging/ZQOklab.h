#pragma once

#include <QRgb>

// A colour in Oklab (Björn Ottosson, "A perceptual color space for image processing", 2020), where distances are those
// that people see: L from 0 (black) to 1 (white), a and b around 0, less than 0.4 away from it for every colour of
// sRGB. Alpha plays no part. Any thread.
struct ZQOklab
{
    float L = 0;
    float a = 0;
    float b = 0;

    static ZQOklab of(QRgb rgb); // sRGB
    QRgb rgb() const;            // opaque; what lies outside of sRGB is cut off at each channel's end

    // 1 from black to white; 0.02 is about the least difference that is seen side by side.
    float distance(const ZQOklab &other) const;
};
