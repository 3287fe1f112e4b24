#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

// What `zqRenderWindowSnapshot` draws.
struct SnapshotOptions
{
    QSize size = {1280, 800};
    double scale = 1;
    QString select;           // a sidebar item by its identifier text or its title; empty: as it was left, else Library
    QString selectItem;       // a library item of it by its identifier text or its title; empty: none
    std::optional<bool> dark; // nothing: as the person chose
    bool infoPanel = true;
};

// Draws the main window off screen once its content and thumbnails are there. False with an error when there is no
// library, or nothing to select by that reference. Main thread.
bool zqRenderWindowSnapshot(const SnapshotOptions &options, QImage *image, ZQError *error);
// Before the QApplication is made: a scale other than the screen's, to have every icon sharp.
void zqPrepareSnapshotScale(double scale);
