#pragma once

#include "Classes/Browsing/Index/IndexPictures.h"

#include <vector>

// Pictures that look like one, or show a colour, by a pass over all of them: a few milliseconds a million, so that
// nothing has to be kept for it. Any thread, while the index does not change.

struct SimilarPicture
{
    quint32 row;
    int distance;
};

// The nearest of `among` to `hash`, nearest first and equally near ones by row, at most `limit`, none beyond
// `farthest`. Some of them when the thread's ZQCancellation was cancelled.
std::vector<SimilarPicture> zqNearestPictures(const IndexPictures &pictures, const ZQPictureHash &hash,
                                              const ZQRowSet &among, size_t limit, int farthest);

// Those of `among` that look like it; nothing when it was cancelled, here and below.
std::optional<ZQRowSet> zqPicturesWithin(const IndexPictures &pictures, const ZQPictureHash &hash, int farthest,
                                         const ZQRowSet &among);
// Those of `among` that show the colour.
std::optional<ZQRowSet> zqPicturesWithColor(const IndexPictures &pictures, const ColorNearness &color,
                                            const ZQRowSet &among);
