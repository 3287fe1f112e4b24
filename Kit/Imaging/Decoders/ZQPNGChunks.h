#pragma once

#include <QSize>
#include <QtGlobal>

#include <array>
#include <optional>
#include <string_view>

// What the chunks of a PNG say, for those that read such files themselves.

// Chunks that say nothing about how the pixels come out. One with a colour profile or an orientation is not plain.
inline constexpr std::array<std::string_view, 12> zqPlainPNGChunks{"gAMA", "cHRM", "sRGB", "sBIT", "bKGD", "hIST",
                                                                   "tIME", "tEXt", "zTXt", "iTXt", "pHYs", "vpAg"};

struct ZQPNGChunk
{
    std::string_view name;
    std::string_view data;
};

// Takes the next chunk off `rest`; nothing when it is cut off. Its checksum follows its data, and is not looked at.
std::optional<ZQPNGChunk> zqTakePNGChunk(std::string_view &rest);

struct ZQPNGOutline
{
    QSize size;
    int depth = 8;
    int colorType = 0;
    bool hasTransparency = false; // a chunk of its own says what shows through
    quint32 pixelsPerMeter = 0;   // 0: not said

    int dpi() const; // 0: not said
    bool isGray() const;
    bool hasAlpha() const;
};

// Nothing for a file that has more pixels, is not whole, has more than 8 bits, is interlaced or in any way unusual.
// `mayHaveProfile`: a colour profile is nothing unusual; that one is there is all that is known of it.
std::optional<ZQPNGOutline> zqPlainPNGOutline(std::string_view bytes, qint64 mostPixels, bool mayHaveProfile = false);
