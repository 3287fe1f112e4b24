#pragma once

#include <QColor>
#include <QImage>
#include <QList>

// Pictures drawn from formulas. The same arguments give the same pixels everywhere.
namespace SampleScenes {

enum class Style { Mountains, Waves, Bokeh, Mesh, Poster, Marble };

// `palette` has five colours, from the background (or sky) to the strongest accent.
QImage scene(Style style, const QList<QColor> &palette, QSize size, quint32 seed);

// A mark on transparent ground; `shape` 0 to 7.
QImage logo(int shape, const QColor &color, const QColor &accent, int side);

// No two of the eight ways to turn it look alike: red, green, blue and yellow quarters, and a black arrow upwards.
QImage asymmetricScene(QSize size);

// `upright` stored in such a way that showing it with the EXIF orientation gives it back.
QImage storedForOrientation(const QImage &upright, int orientation);

} // namespace SampleScenes
