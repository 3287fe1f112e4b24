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

// Writes the library's pending messages to the log and forgets them.
void zqLogVipsError(const QString &path);
// Whether one of those that this thread wrote since it last asked was that memory ran out.
bool zqTakeVipsMemoryShortage();
