#pragma once

#include "Classes/Capture/PageSnapshot.h"

#include <QList>
#include <QRect>
#include <QString>

// Which elements of a page are a layer together. Any thread.
namespace PageLayers {

struct Layer
{
    QString name;
    QList<int> marks;     // of the elements that are seen on it
    QRect bounds;         // on the page, with what is drawn around the elements
    qsizetype zIndex = 0; // its place in the order of painting; the ground has 0
};

struct Division
{
    QList<Layer> layers;  // the bottom one first: in the order in which they are painted
    QList<int> ground;    // the page's own elements, below all layers
    qsizetype joined = 0; // layers that are on others, since there are too many
};

constexpr qsizetype mostLayers = 100;

// What draws something of its own is a layer: text with what stands in its lines, pictures, controls, whatever has a
// ground, a border or a shadow. What only holds others is none. `page`: what of the page is seen, in points. Of more
// than `most` the smallest go onto those they lie in.
Division divide(const QList<PageSnapshot::Node> &nodes, const QRect &page, qsizetype most = mostLayers);

} // namespace PageLayers
