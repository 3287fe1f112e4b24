#pragma once

#include <QColor>

// Of the line around a swatch of ZQTheme, so that it can be seen where its colour is nearly that of the ground.
QColor zqSwatchRing(const QColor &color, const QColor &ground);
QColor zqSwatchRing(int code, const QColor &ground);
