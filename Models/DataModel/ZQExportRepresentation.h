#pragma once

#include "Kit/Foundation/ZQError.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

// The picture of an item that goes out at full resolution: which file it is drawn from, and how. A value, so that
// whoever draws need not hold the item. Any thread.
struct ZQExportRepresentation
{
    enum class Drawing {
        Picture,          // decoded
        PictureOrPreview, // decoded, or drawn by the preview service where it cannot be
        Page,             // drawn by the preview service
    };

    QString path; // empty: there is no picture
    Drawing drawing = Drawing::Picture;

    ZQBitmap bitmap(ZQError *error = nullptr) const;
    ZQBitmap preview(ZQError *error = nullptr) const; // as the preview service draws it
};
