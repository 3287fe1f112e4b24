#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"

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
    Acorn,
};

// Reads at most a few kilobytes. The extension only decides between a TIFF and the camera raw formats that are TIFFs
// inside, and for TGA, whose older files carry no mark. `Unknown` for a file that cannot be read. Any thread.
ZQImageFormat zqImageFormatOfFile(const ZQSourceFile &source);
