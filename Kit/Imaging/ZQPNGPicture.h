#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QImage>

// A PNG picture that another program handed over as bytes, decoded in a worker process: straight RGBA at full size, in
// sRGB. Null with why not. Any thread; the bytes lie in memory only.
QImage zqPictureOfPNG(const QByteArray &png, ZQError *error = nullptr);
