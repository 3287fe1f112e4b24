#pragma once

#include "Kit/Imaging/ZQPictureHash.h"

#include <QString>

#include <optional>

// What stands behind "#like": the name or bundleID of a picture, and how far from it what is found may be, as in
// "hero-dawn~20", in hundredths: 0 for the very picture, 100 for what has nothing in common; beyond `farthestApart` as
// without a number. A name that ends so itself is written with one: "photo~1~81". Any thread.
struct LikeArgument
{
    static constexpr int unrelated = ZQPictureHash::bitCount / 2; // bits
    static constexpr int farthestApart = ZQPictureHash::similarDistance * 100 / unrelated;

    QString name;
    int apart = farthestApart;

    static LikeArgument of(const QString &text);
    QString text() const;    // as it is typed, without quotes
    int farthestBits() const // all that is similar, where no number says less
    {
        return apart == farthestApart ? ZQPictureHash::similarDistance : apart * unrelated / 100;
    }
    // How alike two pictures are, of 100.
    static int likeness(int distance);

    // The first one of a search text that is not negated, and where it stands, its quotes included.
    struct Place;
    static std::optional<Place> in(const QString &searchText);
};

struct LikeArgument::Place
{
    LikeArgument argument;
    qsizetype position = 0;
    qsizetype length = 0;
};
