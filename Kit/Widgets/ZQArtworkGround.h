#pragma once

#include <QImage>

class QPainter;

// How much of artwork with transparent places would be lost on a dark and on a light ground.
struct ZQArtworkTone
{
    bool isTransparent = false;
    bool hasDark = false;  // a part that counts is hardly seen on a dark ground
    bool hasLight = false; // or on a light one
};

// Looks at no more than a few thousand pixels. Any thread.
ZQArtworkTone zqArtworkTone(const QImage &image);

// What is painted behind artwork so that all of it stands out.
enum class ZQArtworkGround {
    None, // it stands out from the theme's own ground
    Light,
    Dark,
    Middle, // neither of the two would do
};

ZQArtworkGround zqArtworkGround(const ZQArtworkTone &tone, bool isDarkTheme);

// As a calm plate, which is a checkerboard for `Middle`. Nothing for `None`.
void zqPaintArtworkGround(QPainter &painter, const QRectF &target, ZQArtworkGround ground);
// As a checkerboard for all of them; only within `seen` are squares drawn.
void zqPaintCheckerboard(QPainter &painter, const QRectF &target, const QRect &seen, ZQArtworkGround ground);
