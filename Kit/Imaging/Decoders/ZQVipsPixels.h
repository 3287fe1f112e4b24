#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/ZQVips.h"

#include <functional>

using ZQVipsSource = std::unique_ptr<VipsSource, ZQVipsUnref>;

// Null when the file cannot be read. Reads from the beginning.
ZQVipsSource zqVipsSource(const ZQSourceFile &file);
// What a WebP picture which ends too early says of itself, and the rows that are there of it: nothing when it is no
// such picture or there are too few.
std::optional<ZQImageProperties> zqPropertiesOfPartOfWebP(const ZQSourceFile &file);
ZQBitmap zqPartOfWebP(const ZQDecodeRequest &request);
// What can be drawn of a JPEG 2000 picture that is damaged or ends too early: coarse where details are missing, nothing
// where a tile is. Null when too little is there, or when it would take more than the samples of a picture in memory.
ZQBitmap zqPartOfJPEG2000(const ZQDecodeRequest &request);
// The whole picture of a file of zqVipsDecoder's formats: upright, in sRGB of 8 bits, with alpha or without, of the
// size that `sizeOf` wants for its upright size (nothing: as it is), which is stored in `size`. Rows are computed as
// they are asked for, which fails where the file is damaged. Null when it is no such file, or needs more care.
// `keepsDepth`: 16 bits where the file has them.
ZQVipsImage zqUprightPicture(const ZQSourceFile &file, const std::function<std::optional<QSize>(QSize upright)> &sizeOf,
                             bool keepsDepth, QSize *size);
// `image` made to fit the request, its colours converted from its profile where they are to be.
ZQBitmap zqFittedVips(VipsImage *image, const ZQDecodeRequest &request, bool useProfile);
bool zqHasProfile(VipsImage *image);
// Runs the pipeline behind `image`: converted to sRGB, 8 bits and alpha. Null when a row fails.
ZQBitmap zqBitmapOfVips(VipsImage *image);
