#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQImageExport.h"

// Decodes a file of any known format, and encodes its first picture into `output`, scaled by the rule. What the system
// refuses to write is an error of the domain "POSIX".
std::optional<ZQExportedImage> zqExportFile(const ZQSourceFile &file, const ZQExportEncoding &encoding, int output,
                                            ZQError *error);
