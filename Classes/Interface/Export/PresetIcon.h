#pragma once

#include <QImage>
#include <QSize>

struct ExportItem;

// The drawn icon of an export preset: its format and size on the ground of its colour, with a mark when it makes an
// archive. Main thread.
namespace PresetIcon {

constexpr QSize size{126, 126};    // of the base images
constexpr double dragScale = 1.5;  // under the pointer it is that much smaller
constexpr QSize dragSize{84, 84};  // `size` over `dragScale`
constexpr QSize shownSize{96, 96}; // in the panel, where its labels are to be read

// With `scale` pixels for each point of `size`. A colour without a base image gives the labels alone.
QImage dragImage(const ExportItem &preset, qreal scale = 1);
QImage baseImage(const QString &name, QSize pixels); // null where there is none of that name

} // namespace PresetIcon
