#include "Kit/Imaging/ZQPackBits.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr qsizetype wordSize = qsizetype(sizeof(quint64));
constexpr quint64 lowBits = 0x0101010101010101;
constexpr quint64 highBits = 0x8080808080808080;
constexpr qsizetype longestLiteral = 128;
constexpr qsizetype longestRun = 127;

quint64 wordAt(const uchar *at)
{
    quint64 word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// Of a word whose lowest byte was the first: the first that is zero; 8 for none.
qsizetype firstZero(quint64 word)
{
    const quint64 zeros = (word - lowBits) & ~word & highBits;
    return std::countr_zero(zeros) / 8; // 64 / 8 where there is none
}

#if defined(__SSE2__)
constexpr qsizetype blockSize = qsizetype(sizeof(__m128i));

__m128i blockAt(const uchar *at)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}
#endif

// The first of three equal bytes, or the end.
const uchar *nextRun(const uchar *at, const uchar *end)
{
#if defined(__SSE2__)
    for (; end - at >= blockSize + 2; at += blockSize) {
        const __m128i second = blockAt(at + 1);
        const __m128i equal =
            _mm_and_si128(_mm_cmpeq_epi8(blockAt(at), second), _mm_cmpeq_epi8(second, blockAt(at + 2)));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(equal));
        if (found != 0) {
            return at + std::countr_zero(found);
        }
    }
#endif
    if constexpr (std::endian::native == std::endian::little) {
        for (; end - at >= wordSize + 2; at += wordSize) {
            const quint64 second = wordAt(at + 1);
            const qsizetype found = firstZero((wordAt(at) ^ second) | (second ^ wordAt(at + 2)));
            if (found < wordSize) {
                return at + found;
            }
        }
    }
    for (; end - at >= 3; ++at) {
        if (at[0] == at[1] && at[1] == at[2]) {
            return at;
        }
    }
    return end;
}

// The first byte from `at` on that differs from the one there, or the end.
const uchar *endOfRun(const uchar *at, const uchar *end)
{
    const uchar value = *at;
    for (const quint64 same = value * lowBits; end - at >= wordSize; at += wordSize) {
        if (const quint64 differs = wordAt(at) ^ same) {
            if constexpr (std::endian::native == std::endian::little) {
                return at + std::countr_zero(differs) / 8;
            }
            break;
        }
    }
    while (at < end && *at == value) {
        ++at;
    }
    return at;
}

char *putLiterals(const uchar *from, const uchar *to, char *out)
{
    while (from < to) {
        const qsizetype count = std::min<qsizetype>(to - from, longestLiteral);
        *out++ = char(count - 1);
        std::memcpy(out, from, std::size_t(count));
        out += count;
        from += count;
    }
    return out;
}

} // namespace

char *ZQPackBits::pack(std::span<const uchar> samples, char *out)
{
    const uchar *at = samples.data();
    const uchar *const end = at + samples.size();
    while (at < end) {
        const uchar *const run = nextRun(at, end);
        out = putLiterals(at, run, out);
        if (run == end) {
            break;
        }
        // What a run has beyond its longest packet is looked at anew: two bytes of it are literals.
        const uchar *const stop = endOfRun(run, run + std::min<qsizetype>(end - run, longestRun));
        *out++ = char(1 - (stop - run));
        *out++ = char(*run);
        at = stop;
    }
    return out;
}

void ZQPackBits::unpack(const char *packed, const char *end, std::span<uchar> samples)
{
    uchar *out = samples.data();
    uchar *const full = out + samples.size();
    while (packed < end && out < full) {
        const int header = static_cast<signed char>(*packed++);
        const qsizetype room = full - out;
        if (header >= 0) {
            const qsizetype count = std::min({qsizetype(header) + 1, room, qsizetype(end - packed)});
            std::memcpy(out, packed, std::size_t(count));
            out += count;
            packed += count;
        } else if (header != -128 && packed < end) {
            const qsizetype count = std::min<qsizetype>(1 - header, room);
            std::memset(out, uchar(*packed++), std::size_t(count));
            out += count;
        }
    }
    std::fill(out, full, uchar(0));
}

qsizetype ZQPackBits::countOf(std::span<const char> packed)
{
    constexpr int meaningless = -128;
    qsizetype count = 0;
    std::size_t at = 0;
    while (at < packed.size()) {
        const int header = static_cast<signed char>(packed[at]);
        if (header == meaningless) {
            return -1;
        }
        count += header >= 0 ? header + 1 : 1 - header;
        at += header >= 0 ? std::size_t(header) + 2 : 2;
    }
    return at == packed.size() ? count : -1;
}
