#pragma once

#include "Kit/Imaging/ZQPalette.h"

#include <QByteArray>
#include <QString>

// Palettes as the files that drawing programs read. Each colour is named by its hexadecimal value. Line breaks and
// other control characters of `name` become spaces; what is longer than the format can say is cut. Any thread.

QByteArray zqASEPalette(const ZQPalette &palette, const QString &name); // Adobe Swatch Exchange 1.0: one group, RGB
QByteArray zqGPLPalette(const ZQPalette &palette, const QString &name); // GIMP palette, UTF-8
