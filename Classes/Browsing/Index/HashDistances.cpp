#include "Classes/Browsing/Index/HashDistances.h"

#include <algorithm>
#include <array>

// The same loops for two processors, chosen when they run: the program is built for those that cannot count bits, too.
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

ZQ_INLINED int distance(const HashWords &a, const HashWords &b)
{
    return __builtin_popcountll(a[0] ^ b[0]) + __builtin_popcountll(a[1] ^ b[1]) + __builtin_popcountll(a[2] ^ b[2]) +
           __builtin_popcountll(a[3] ^ b[3]);
}

// Without a branch, which would be guessed wrong just where something is near.
ZQ_INLINED size_t nearOf(const HashWords &hash, std::span<const HashWords> others, int farthest, Places &places)
{
    size_t count = 0;
    for (size_t i = 0; i < others.size(); ++i) {
        places[count] = quint32(i);
        count += distance(hash, others[i]) <= farthest ? 1 : 0;
    }
    return count;
}

ZQ_INLINED void distancesOf(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances)
{
    for (size_t i = 0; i < others.size(); ++i) {
        distances[i] = quint16(distance(hash, others[i]));
    }
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

void zqDistances(const HashWords &hash, std::span<const HashWords> others, std::span<quint16> distances)
{
    static const Distances all = ZQ_IS_COUNTING ? distancesCounting : distancesPlainly;
    all(hash, others, distances);
}
