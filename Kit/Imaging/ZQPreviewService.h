#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"
#include "Kit/Imaging/ZQImageSource.h"

#include <QString>

#include <functional>

// The desktop's preview service: any file → a picture within a box. What the image decoder cannot read is drawn from
// its document kind (PDF, SVG), a vector document filling the box; the rest goes to the thumbnailers the desktop has
// registered. `frame` is that of an animation, or the page of a document. Null with an error naming the reason. Any
// thread.
class ZQPreviewService
{
public:
    // Starts what draws, in the background, so that the first picture need not wait for it.
    static void prepare();
    // `handler` is called once, from any thread, when the system turns out to lack what confines the programs that
    // draw: these are then not used, and pictures that take them fail with that reason.
    static void setUnconfinedHandler(std::function<void()> handler);
    // `properties` as for ZQImageSource::thumbnailOfFile.
    static ZQBitmap previewOfFile(const QString &path, QSize box, ZQError *error = nullptr, int frame = 0,
                                  std::optional<ZQImageProperties> *properties = nullptr);
};
