#pragma once

#include "Classes/Export/PSDPackedLayers.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <span>

// Pixels on their way into a layer of a PSD document. Any thread.
namespace PSDPixels {

// What of an image is on the canvas.
struct Crop
{
    QRectF rect;   // the layer's place
    QRect target;  // in whole pixels
    QPoint source; // its top left within the image
};
Crop crop(QSize image, QPointF offset, QSizeF canvas);

std::optional<QRect> wholeRect(const QRectF &rect); // rounded down; nothing for what is none
float opacity(float value);                         // from 0 to 1

// Of an image from a point on; it is held meanwhile. Straight, what is wholly transparent is white.
PSDPackedLayers::Reader readerOf(const ZQBitmap &image, QPoint source, PSDPackedLayers::Alpha alpha);
// Of R, G, B, A in rows of so many pixels, as they are; missing ones are transparent.
PSDPackedLayers::Reader readerOf(const QByteArray &pixels, int width);

void multiply(std::span<uchar> samples, std::span<const uchar> alpha); // of one channel
// Draws samples of one channel, multiplied by their alpha, over others.
void drawOver(std::span<const uchar> color, std::span<const uchar> alpha, std::span<uchar> samples);
void premultiply(QByteArray &pixels);
// Divides by alpha; what is wholly transparent becomes white.
void unpremultiply(QByteArray &pixels);
void flip(QByteArray &pixels, int height); // top to bottom

} // namespace PSDPixels
