#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQVips.h"

using ZQVipsSource = std::unique_ptr<VipsSource, ZQVipsUnref>;

// Null when the file cannot be read. Reads from the beginning.
ZQVipsSource zqVipsSource(const ZQSourceFile &file);
// Runs the pipeline behind `image`: converted to sRGB, 8 bits and alpha. Null when a row fails.
ZQBitmap zqBitmapOfVips(VipsImage *image);
