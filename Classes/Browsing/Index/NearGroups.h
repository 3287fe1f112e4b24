#pragma once

#include "Classes/Browsing/Index/HashDistances.h"

#include <functional>
#include <optional>

// Finds groups of pictures that look alike, among many.
//
// Of few, each pair is compared. Of many, pairs within a distance are found by an index of parts of the hashes (M.
// Norouzi, A. Punjani, D. Fleet, "Fast Search in Hamming Space with Multi-Index Hashing", CVPR 2012): hashes that
// differ in few bits are nearly equal in at least one of sixteen parts, so that only those with such a part in common,
// but for two bits, are compared. That is all pairs within 47 bits, and nearly all beyond: of those at 60 one of a
// hundred is missed, of those at 70 one of twelve. Pairs are joined by union-find. What hangs together so may be a long
// chain, whose ends look like nothing of each other; it is cut: the picture with the most others within the distance
// takes those, the one with the most of what is left takes the next, and so on. So each picture of a group is within
// the distance of the group's first one.
class NearGroups
{
public:
    using Groups = std::vector<std::vector<quint32>>; // places in the hashes; the one in the middle first
    using Progress = std::function<void(double)>;     // 0 … 1, now and then; may be null

    // Groups of two and more, the others of each ascending, by their smallest place. Nothing when the thread's
    // ZQCancellation was cancelled. About 100 bytes a hash, beside the answer.
    static std::optional<Groups> of(std::span<const HashWords> hashes, int farthest, const Progress &progress,
                                    size_t fewHashes = few);
    static constexpr size_t few = 50000; // different ones; a matter of seconds
};
