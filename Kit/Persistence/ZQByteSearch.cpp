#include "Kit/Persistence/ZQByteSearch.h"

#include <QtGlobal>

#include <bit>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

const char *findPlainly(const char *begin, const char *end, std::string_view needle)
{
    const void *found =
        begin == end ? nullptr : ::memmem(begin, static_cast<size_t>(end - begin), needle.data(), needle.size());
    return found ? static_cast<const char *>(found) : end;
}

#if defined(__x86_64__)

// Looks for the first and the last byte of the needle at their distance, 32 places at a time: what has both is rarely
// anything else.
__attribute__((target("avx2"))) const char *findWide(const char *begin, const char *end, std::string_view needle)
{
    constexpr ptrdiff_t width = 32;
    const auto last = static_cast<ptrdiff_t>(needle.size()) - 1;
    const __m256i firstByte = _mm256_set1_epi8(needle.front());
    const __m256i lastByte = _mm256_set1_epi8(needle.back());
    const char *place = begin;
    for (; end - place >= last + width; place += width) {
        const __m256i starts = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(place));
        const __m256i ends = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(place + last));
        auto mask = static_cast<quint32>(_mm256_movemask_epi8(
            _mm256_and_si256(_mm256_cmpeq_epi8(starts, firstByte), _mm256_cmpeq_epi8(ends, lastByte))));
        for (; mask; mask &= mask - 1) {
            const char *candidate = place + std::countr_zero(mask);
            if (std::memcmp(candidate, needle.data(), needle.size()) == 0) {
                return candidate;
            }
        }
    }
    return findPlainly(place, end, needle);
}

#endif

using Find = const char *(*)(const char *, const char *, std::string_view);

Find bestFind()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) {
        return findWide;
    }
#endif
    return findPlainly;
}

} // namespace

const char *zqFindBytes(const char *begin, const char *end, std::string_view needle)
{
    static const Find find = bestFind();
    return find(begin, end, needle);
}
