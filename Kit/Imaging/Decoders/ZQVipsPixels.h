#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/ZQVips.h"

using ZQVipsSource = std::unique_ptr<VipsSource, ZQVipsUnref>;

// Null when the file cannot be read. Reads from the beginning.
ZQVipsSource zqVipsSource(const ZQSourceFile &file);
// What a WebP picture which ends too early says of itself, and the rows that are there of it: nothing when it is no
// such picture or there are too few.
std::optional<ZQImageProperties> zqPropertiesOfPartOfWebP(const ZQSourceFile &file);
ZQBitmap zqPartOfWebP(const ZQDecodeRequest &request);
// Runs the pipeline behind `image`: converted to sRGB, 8 bits and alpha. Null when a row fails.
ZQBitmap zqBitmapOfVips(VipsImage *image);
