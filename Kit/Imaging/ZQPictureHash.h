#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QByteArray>

#include <array>
#include <optional>

// A perceptual hash of 256 bits, alike for pictures that look alike: the signs, against their median, of the lowest
// frequencies of a picture's lightness (discrete cosine transform; C. Zauner, "Implementation and Benchmarking of
// Perceptual Image Hash Functions", 2010), squeezed into a square after a frame of one colour is cut off. It hardly
// changes with size, compression, colour, brightness, borders, sharpness and small marks, a little with crops and turns
// of a few degrees, and entirely with a mirror or a quarter turn. Any thread.
struct ZQPictureHash
{
    static constexpr int bitCount = 256;
    // At most this far apart: the same picture in another form.
    static constexpr int alikeDistance = 70;
    // The same where each of so many is compared with each. By chance some are as near, above all icons and cut-outs
    // (about one pair of 20 000 within 70, a third of that for each 8 bits less): among many, two have to be nearer,
    // or most of what is said to be the same is not.
    static int alikeDistanceAmong(qint64 count);
    // Beyond this nothing is called similar: pictures that have nothing in common are 128 apart, give or take 8.
    static constexpr int similarDistance = 104;

    std::array<quint64, 4> words{};

    // Nothing for a picture that shows nothing (one flat colour, fully transparent). What is transparent is taken as
    // white, or as black where nothing shows on white.
    static std::optional<ZQPictureHash> of(const ZQBitmap &bitmap);
    static std::optional<ZQPictureHash> fromBytes(const QByteArray &bytes); // nothing unless 32 bytes
    QByteArray bytes() const;                                               // the same on every machine
    int distance(const ZQPictureHash &other) const;                         // how many bits differ
    friend bool operator==(const ZQPictureHash &, const ZQPictureHash &) = default;
};
