#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

// Writing pictures. The file appears whole or not at all. Any thread.
namespace ZQImageDestination {

bool writePNG(const ZQBitmap &bitmap, const QString &path, ZQError *error = nullptr);
bool writeJPEG(const ZQBitmap &bitmap, const QString &path, int quality = 85,
               ZQError *error = nullptr); // transparency goes white

} // namespace ZQImageDestination
