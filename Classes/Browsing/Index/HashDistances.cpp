#include "Classes/Browsing/Index/HashDistances.h"

#include <algorithm>
#include <array>

// The same loops for two processors, chosen when they run: the program is built for those that cannot count bits,
// too.
#if defined(__x86_64__)
#define ZQ_COUNTING __attribute__((target("popcnt")))
#define ZQ_IS_COUNTING __builtin_cpu_supports("popcnt")
#else
#define ZQ_COUNTING
#define ZQ_IS_COUNTING true
#endif
#define ZQ_INLINED __attribute__((always_inline)) inline

namespace {

constexpr size_t blockSize = 256;
using Places = std::array<quint32, blockSize>;

// Of one half: words 0 and 1, or 2 and 3.
ZQ_INLINED int halfDistance(const HashWords &a, const HashWords &b, size_t first)
{
    return __builtin_popcountll(a[first] ^ b[first]) + __builtin_popcountll(a[first + 1] ^ b[first + 1]);
}

// One half tells of nearly all that they are far.
ZQ_INLINED size_t nearOf(const HashWords &hash, std::span<const HashWords> others, int farthest, Places &places)
{
    size_t count = 0;
    for (size_t i = 0; i < others.size(); ++i) {
        const int half = halfDistance(hash, others[i], 0);
        if (half <= farthest) {
            places[count] = quint32(i);
            count += half + halfDistance(hash, others[i], 2) <= farthest ? 1 : 0;
        }
    }
    return count;
}

ZQ_INLINED void distancesOf(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances)
{
    for (size_t i = 0; i < others.size(); ++i) {
        distances[i] = quint16(halfDistance(hash, others[i], 0) + halfDistance(hash, others[i], 2));
    }
}

ZQ_INLINED void pairsOf(std::span<const HashWords> a, std::span<const HashWords> b, int farthest, HashPairs &found)
{
    for (size_t i = 0; i < a.size(); ++i) {
        const HashWords hash = a[i];
        for (size_t j = 0; j < b.size(); ++j) {
            const int half = halfDistance(hash, b[j], 0);
            if (half <= farthest && half + halfDistance(hash, b[j], 2) <= farthest) [[unlikely]] {
                found.emplace_back(quint32(i), quint32(j));
            }
        }
    }
}

using Pairs = void (*)(std::span<const HashWords>, std::span<const HashWords>, int, HashPairs &);
ZQ_COUNTING void pairsCounting(std::span<const HashWords> a, std::span<const HashWords> b, int farthest,
                               HashPairs &found)
{
    pairsOf(a, b, farthest, found);
}
void pairsPlainly(std::span<const HashWords> a, std::span<const HashWords> b, int farthest, HashPairs &found)
{
    pairsOf(a, b, farthest, found);
}

using Near = size_t (*)(const HashWords &, std::span<const HashWords>, int, Places &);
ZQ_COUNTING size_t nearCounting(const HashWords &hash, std::span<const HashWords> others, int farthest, Places &places)
{
    return nearOf(hash, others, farthest, places);
}
size_t nearPlainly(const HashWords &hash, std::span<const HashWords> others, int farthest, Places &places)
{
    return nearOf(hash, others, farthest, places);
}

using Distances = void (*)(const HashWords &, std::span<const HashWords>, std::span<quint16>);
ZQ_COUNTING void distancesCounting(const HashWords &hash, std::span<const HashWords> others,
                                   std::span<quint16> distances)
{
    distancesOf(hash, others, distances);
}
void distancesPlainly(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances)
{
    distancesOf(hash, others, distances);
}

} // namespace

void zqAddNear(const HashWords &hash, std::span<const HashWords> others, int farthest, std::vector<quint32> &found)
{
    static const Near near = ZQ_IS_COUNTING ? nearCounting : nearPlainly;
    Places places;
    for (size_t first = 0; first < others.size(); first += blockSize) {
        const size_t count =
            near(hash, others.subspan(first, std::min(blockSize, others.size() - first)), farthest, places);
        for (size_t i = 0; i < count; ++i) {
            found.push_back(quint32(first + places[i]));
        }
    }
}

void zqAddNearPairs(std::span<const HashWords> a, std::span<const HashWords> b, int farthest, HashPairs &found)
{
    static const Pairs pairs = ZQ_IS_COUNTING ? pairsCounting : pairsPlainly;
    pairs(a, b, farthest, found);
}

void zqDistances(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances)
{
    static const Distances all = ZQ_IS_COUNTING ? distancesCounting : distancesPlainly;
    all(hash, others, distances);
}
