#pragma once

#include <QByteArray>
#include <QRectF>
#include <QString>

// One layer as the PSD writer holds it. A value.
struct PSDLayer
{
    QByteArray imageData; // R, G, B, A of 8 bits, alpha premultiplied, the rows of `rect` from its top, without padding
    QString name;
    float opacity = 1; // 0 to 1
    QRectF rect;       // in pixels of the canvas, from its top left
};
