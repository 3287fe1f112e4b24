#pragma once

#include <QImage>

// Where two pictures of one size differ. What cannot be seen, the colour of what is fully transparent, counts as equal.
// Any thread; takes as long as reading both pictures' pixels, and ends early with nothing when the thread's work is
// cancelled.
struct ZQPictureDifference
{
    QImage image;     // grey: black where both are equal, white where they differ most
    double share = 0; // of the pixels that differ, 0 to 1
    int greatest = 0; // in a channel, of 255
    bool isNull() const { return image.isNull(); }

    static ZQPictureDifference of(const QImage &first, const QImage &second); // nothing for two sizes
};
