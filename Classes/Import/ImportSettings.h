#pragma once

#include <QString>

#include <chrono>

// What the person set about imports, read once for a batch.
struct ImportSettings
{
    bool useAutoTagging = true;
    bool importIPTCTags = true;
    bool importOpenMetaTags = true;
    int iconTagSize = 0;
    int smallTagSize = 0;
    int mediumTagSize = 0;
    std::chrono::milliseconds firstSaveAfter{500}; // when the first items of a batch are to be seen

    static ImportSettings current();

    // "icon", "small", "medium" or "large", for pixels on both sides.
    QString sizeTag(int width, int height) const;
};
