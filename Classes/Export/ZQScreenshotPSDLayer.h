#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QPointF>
#include <QString>

// What a capture of a page hands over for one layer of a PSD document. A value.
struct ZQScreenshotPSDLayer
{
    QPointF offset;    // of the element, in pixels from the top left of the page
    double zIndex = 0; // the layers come in its ascending order, the bottom one first
    QString name;
    ZQBitmap imageRep; // the element as drawn
};
