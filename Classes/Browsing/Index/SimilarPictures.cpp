#include "Classes/Browsing/Index/SimilarPictures.h"

#include "Kit/Foundation/ZQCancellation.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr size_t blockSize = 65536; // of slots between two looks at the cancellation

// Calls `visit(first slot, end)` for one part of all slots after the other; false when cancelled.
template <class Visit>
bool visitBlocks(size_t slotCount, const Visit &visit)
{
    for (size_t first = 0; first < slotCount; first += blockSize) {
        if (ZQCancellation::isCurrentCancelled()) {
            return false;
        }
        visit(first, std::min(slotCount, first + blockSize));
    }
    return true;
}

// Calls `visit(slot, distance)` for what is near enough; false when cancelled.
template <class Visit>
bool visitNear(const IndexPictures &pictures, const ZQPictureHash &hash, int farthest, const ZQRowSet &among,
               const Visit &visit)
{
    std::vector<quint16> distances(blockSize);
    const auto rows = pictures.rows();
    return visitBlocks(rows.size(), [&](size_t first, size_t end) {
        zqDistances(hash.words, pictures.hashes().subspan(first, end - first), distances);
        for (size_t slot = first; slot < end; ++slot) {
            const int distance = distances[slot - first];
            if (distance <= farthest && pictures.hasHash(slot) && among.contains(rows[slot])) {
                visit(slot, distance);
            }
        }
    });
}

} // namespace

std::vector<SimilarPicture> zqNearestPictures(const IndexPictures &pictures, const ZQPictureHash &hash,
                                              const ZQRowSet &among, size_t limit, int farthest)
{
    // Distances are few different numbers: they are counted, then only those that are near enough for the limit are
    // taken and sorted.
    std::vector<size_t> counts(ZQPictureHash::bitCount + 2);
    constexpr int notNear = ZQPictureHash::bitCount + 1;
    std::vector<quint16> distances(pictures.rows().size(), notNear);
    visitNear(pictures, hash, farthest, among, [&](size_t slot, int distance) {
        distances[slot] = quint16(distance);
        ++counts[size_t(distance) + 1];
    });
    std::partial_sum(counts.begin(), counts.end(), counts.begin()); // now the first place of each distance
    const auto first = std::lower_bound(counts.begin(), counts.end(), limit);
    const auto tooFar = std::min<qsizetype>(first - counts.begin(), notNear); // all places are beyond the limit
    std::vector<SimilarPicture> near;
    near.reserve(std::min(counts.back(), 2 * limit));
    for (size_t slot = 0; slot < distances.size(); ++slot) {
        if (distances[slot] < tooFar) {
            near.push_back({pictures.rows()[slot], distances[slot]});
        }
    }
    std::sort(near.begin(), near.end(), [](const SimilarPicture &a, const SimilarPicture &b) {
        return a.distance != b.distance ? a.distance < b.distance : a.row < b.row;
    });
    near.resize(std::min(limit, near.size()));
    return near;
}

std::optional<ZQRowSet> zqPicturesWithin(const IndexPictures &pictures, const ZQPictureHash &hash, int farthest,
                                         const ZQRowSet &among)
{
    ZQRowSet found(among.rowCount());
    const bool isWhole =
        visitNear(pictures, hash, farthest, among, [&](size_t slot, int) { found.insert(pictures.rows()[slot]); });
    return isWhole ? std::optional(std::move(found)) : std::nullopt;
}

std::optional<ZQRowSet> zqPicturesWithColor(const IndexPictures &pictures, const ColorNearness &color,
                                            const ZQRowSet &among)
{
    ZQRowSet found(among.rowCount());
    const auto rows = pictures.rows();
    const auto palettes = pictures.palettes();
    const bool isWhole = visitBlocks(rows.size(), [&](size_t first, size_t end) {
        for (size_t slot = first; slot < end; ++slot) {
            if (color(palettes[slot])) {
                found.insert(rows[slot]);
            }
        }
    });
    found &= among;
    return isWhole ? std::optional(std::move(found)) : std::nullopt;
}
