#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

// The desktop's preview service: any file → a picture within a box. What the image decoder cannot read is drawn from
// its document kind (PDF, SVG), a vector document filling the box; the rest goes to the thumbnailers the desktop has
// registered. `frame` is that of an animation, or the page of a document. Null with an error naming the reason. Any
// thread.
class ZQPreviewService
{
public:
    // Starts what draws, in the background, so that the first picture need not wait for it.
    static void prepare();
    static ZQBitmap previewOfFile(const QString &path, QSize box, ZQError *error = nullptr, int frame = 0);
};
