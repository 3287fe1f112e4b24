#pragma once

#include "Classes/Browsing/Index/PictureColors.h"
#include "Kit/Imaging/ZQPictureHash.h"

#include <QRgb>
#include <QString>

#include <optional>

// What a search asks of pictures, as the text behind RESEMBLES. Store and objects evaluate it on the attributes, the
// index on its own columns; all find the same.

// Of the attribute `pictureHash`: "picture HASH within DISTANCE".
struct PictureCondition
{
    ZQPictureHash hash;
    int farthest = 0; // bits

    QString text() const;
    static std::optional<PictureCondition> fromText(const QString &text);
};

// Of the attribute `palette`: "color #rrggbb within TOLERANCE".
struct ColorCondition
{
    QRgb color = 0;
    int tolerance = usualTolerance; // hundredths in Oklab, where black and white are a hundred apart

    static constexpr int usualTolerance = 10; // "the same blue" in a lighter and a darker one
    static constexpr int greatestTolerance = 100;
    ColorNearness nearness() const { return {ZQOklab::of(color), float(tolerance) / 100}; }
    QString text() const;
    static std::optional<ColorCondition> fromText(const QString &text);
};
