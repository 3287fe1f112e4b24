#pragma once

#include <QtGlobal>

#include <span>

// Bytes packed by PackBits: literal packets of 1 to 128 bytes and repeat packets of 3 to 127; from three equal bytes on
// it is a repeat. Any thread.
namespace ZQPackBits {

// The most that so many bytes take when packed.
constexpr qsizetype mostPacked(qsizetype count)
{
    return count + (count + 127) / 128;
}

// Packs to `out`, which has room for `mostPacked`. The end of what it wrote.
char *pack(std::span<const uchar> samples, char *out);

// So many samples from packed ones, which end at `end`; what they do not give is zero.
void unpack(const char *packed, const char *end, std::span<uchar> samples);

// How many samples whole packets give; -1 when the last packet is cut off or one means nothing.
qsizetype countOf(std::span<const char> packed);

} // namespace ZQPackBits
