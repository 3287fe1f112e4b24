#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QColor>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <random>

// A picture of soft spots of many colours on a ground; each seed another one.
inline QImage spots(unsigned seed, QSize size = {400, 300})
{
    std::mt19937 random(seed);
    const auto number = [&random](double most) { return double(random()) / double(std::mt19937::max()) * most; };
    struct Spot
    {
        double x, y, width, red, green, blue;
    };
    std::vector<Spot> all;
    for (int i = 0; i < 14; ++i) {
        all.push_back({number(1), number(1), 0.05 + number(0.15), number(255), number(255), number(255)});
    }
    QImage image(size, QImage::Format_RGBA8888);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            double red = 110;
            double green = 120;
            double blue = 130;
            for (const Spot &spot : all) {
                const double dx = (x + 0.5) / size.width() - spot.x;
                const double dy = (y + 0.5) / size.height() - spot.y;
                const double part = 1 / (1 + std::pow((dx * dx + dy * dy) / (spot.width * spot.width), 4));
                red += (spot.red - red) * part;
                green += (spot.green - green) * part;
                blue += (spot.blue - blue) * part;
            }
            image.setPixel(x, y, qRgb(int(red), int(green), int(blue)));
        }
    }
    return image;
}

inline QImage flat(QSize size, const QColor &color)
{
    QImage image(size, QImage::Format_RGBA8888);
    image.fill(color);
    return image;
}

// `picture` with its top left at `place` of `ground`; alpha is taken over, not mixed.
inline QImage placed(QImage ground, const QImage &picture, QPoint place)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            ground.setPixel(place.x() + x, place.y() + y, picture.pixel(x, y));
        }
    }
    return ground;
}

// Each pixel as `change` makes it of its colour.
template <typename Change>
QImage changed(QImage image, Change change)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.setPixel(x, y, change(image.pixel(x, y)));
        }
    }
    return image;
}
