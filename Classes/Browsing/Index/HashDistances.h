#pragma once

#include "Kit/Imaging/ZQPictureHash.h"

#include <span>
#include <utility>
#include <vector>

// In how many bits hashes of pictures differ, for many at once: the processor's own count where it has one. Any thread.

using HashWords = decltype(ZQPictureHash::words);

// Those of `others` that differ from `hash` in at most `farthest` bits, by place: appended to `found`, ascending.
void zqAddNear(const HashWords &hash, std::span<const HashWords> others, int farthest, std::vector<quint32> &found);
// The same for each of `a` and each of `b`, by both places.
using HashPairs = std::vector<std::pair<quint32, quint32>>;
void zqAddNearPairs(std::span<const HashWords> a, std::span<const HashWords> b, int farthest, HashPairs &found);
// The distances of all, which are at most ZQPictureHash::bitCount.
void zqDistances(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances);
