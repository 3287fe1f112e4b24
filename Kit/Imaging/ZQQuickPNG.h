#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QImage>
#include <QString>

// Writes pixels that are to be on the disk at once, as of a screen: a lossless PNG, twice as fast as the usual way and
// no larger. Its resolution is 72 dpi for each pixel of a point (the device pixel ratio), and it has an alpha channel
// only where something shows through. The file appears whole or not at all. Any thread.
bool zqWriteQuickPNG(const QImage &image, const QString &path, ZQError *error = nullptr);
