#pragma once

// What the person set about imports, read once for a batch.
struct ImportSettings
{
    bool useAutoTagging = true;
    bool importIPTCTags = true;
    bool importOpenMetaTags = true;
    int iconTagSize = 0;
    int smallTagSize = 0;
    int mediumTagSize = 0;

    static ImportSettings current();
};
