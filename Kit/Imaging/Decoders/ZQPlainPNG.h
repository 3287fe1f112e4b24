#pragma once

#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

// Icons come by the thousand, and a pipeline takes longer to set up than one of them to decode: a whole, small PNG of
// at most 8 bits with nothing unusual about it is read directly, to the pixels that the pipeline would give. Both
// answer nothing for any other file, for one in which anything at all is wrong, and for one that has to be shrunk;
// those go the long way.
std::optional<ZQImageProperties> zqPropertiesOfPlainPNG(const ZQSourceFile &file);
ZQBitmap zqBitmapOfPlainPNG(const ZQDecodeRequest &request);
