#pragma once

#include "Kit/Imaging/Decoders/ZQImageFormat.h"

// Whether a GIF or TIFF file ends before its last frame or page does, although the first ones can be drawn. False for
// other formats. Reads the structure only.
bool zqEndsBeforeLastFrame(const ZQSourceFile &file, ZQImageFormat format);
