#pragma once

#include "Kit/Imaging/Decoders/ZQImageFormat.h"

// Whether a GIF, TIFF or JPEG 2000 file ends before its last frame, page or tile does, although what comes ahead can be
// drawn. False for other formats. Reads the structure only.
bool zqEndsBeforeLastFrame(const ZQSourceFile &file, ZQImageFormat format);
