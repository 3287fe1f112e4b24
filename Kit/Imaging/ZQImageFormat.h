#pragma once

#include <QString>

// The kinds of picture files the decoders know, told apart by their first bytes.
enum class ZQImageFormat {
    Unknown,
    JPEG,
    PNG,
    GIF,
    TIFF,
    WebP,
    JPEG2000,
    BMP,
    ICO,
    ICNS,
    TGA,
    PSD,
    CameraRaw,
    PDF,
    PostScript,
};

// Reads at most a few kilobytes. The extension only decides between a TIFF and the camera raw formats that are TIFFs
// inside, and for TGA, whose older files carry no mark. `Unknown` for a file that cannot be opened. Any thread.
ZQImageFormat zqImageFormatOfFile(const QString &path);
