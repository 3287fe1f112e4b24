#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

#include <vips/vips.h>

#include <memory>

struct ZQVipsUnref
{
    void operator()(void *object) const { g_object_unref(object); }
};
using ZQVipsImage = std::unique_ptr<VipsImage, ZQVipsUnref>;
using ZQVipsSource = std::unique_ptr<VipsSource, ZQVipsUnref>;

// Null when the file cannot be opened.
ZQVipsSource zqVipsSource(const QString &path);
// Runs the pipeline behind `image`: converted to sRGB, 8 bits and alpha. Null when a row fails.
ZQBitmap zqBitmapOfVips(VipsImage *image);
// Writes the library's pending messages to the log and forgets them.
void zqLogVipsError(const QString &path);
