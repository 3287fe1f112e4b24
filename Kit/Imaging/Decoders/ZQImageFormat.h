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
    JPEGXL,
    HEIF, // HEIC and AVIF
    BMP,
    ICO,
    ICNS,
    TGA,
    PSD,
    CameraRaw,
    PDF,
    PostScript,
    Acorn,
    Sketch, // in one file
};

// Reads at most a few kilobytes. The extension only decides between a TIFF and the camera raw formats that are TIFFs
// inside, for TGA, whose older files carry no mark, and for Sketch, whose documents are zip archives. `Unknown` for a
// file that cannot be read. Any thread.
ZQImageFormat zqImageFormatOfFile(const ZQSourceFile &source);
