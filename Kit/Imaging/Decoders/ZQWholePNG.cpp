#include "Kit/Imaging/Decoders/ZQWholePNG.h"

#include "Kit/Imaging/Decoders/ZQLargeMemory.h"
#include "Kit/Imaging/Decoders/ZQPNGChunks.h"

#include <QtEndian>

#include <libdeflate.h>
#include <png.h>

#include <cstring>
#include <span>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

using namespace std::string_view_literals;

bool hasRightChecksum(const ZQPNGChunk &chunk)
{
    const char *const end = chunk.data.data() + chunk.data.size();
    return libdeflate_crc32(0, chunk.name.data(), chunk.name.size() + chunk.data.size()) ==
           qFromBigEndian<quint32>(end);
}

// Moves the compressed pixels together, behind the first of them. Nothing when a checksum is wrong, or something lies
// between them.
std::span<uchar> joinedPixels(ZQSourceFile::Bytes &bytes)
{
    std::string_view rest(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    rest.remove_prefix(8);
    uchar *start = nullptr;
    size_t size = 0;
    bool isOver = false;
    for (auto chunk = zqTakePNGChunk(rest); chunk; chunk = zqTakePNGChunk(rest)) {
        if (!hasRightChecksum(*chunk)) {
            return {};
        }
        if (chunk->name == "IEND"sv) {
            break;
        }
        if (chunk->name != "IDAT"sv) {
            isOver = start != nullptr;
            continue;
        }
        if (isOver) {
            return {};
        }
        const size_t at = size_t(reinterpret_cast<const uchar *>(chunk->data.data()) - bytes.data());
        start = start ? start : bytes.data() + at;
        std::memmove(start + size, bytes.data() + at, chunk->data.size());
        size += chunk->data.size();
    }
    return {start, size};
}

bool inflateInto(std::span<const uchar> packed, uchar *out, size_t size)
{
    const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater(
        libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
    return inflater && libdeflate_zlib_decompress(inflater.get(), packed.data(), packed.size(), out, size, nullptr) ==
                           LIBDEFLATE_SUCCESS;
}

int channelsOf(const ZQPNGOutline &png)
{
    switch (png.colorType) {
    case PNG_COLOR_TYPE_GRAY:
        return 1;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 0;
    }
}

#if defined(__SSE2__)
template <int channels>
__m128i pixelAt(const uchar *at)
{
    int value = 0;
    std::memcpy(&value, at, channels);
    return _mm_cvtsi32_si128(value);
}

template <int channels>
void putPixel(uchar *at, __m128i pixel)
{
    const int value = _mm_cvtsi128_si32(pixel);
    std::memcpy(at, &value, channels);
}

__m128i widened(__m128i bytes)
{
    return _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
}

__m128i magnitude(__m128i values)
{
    return _mm_max_epi16(values, _mm_sub_epi16(_mm_setzero_si128(), values));
}

__m128i chosen(__m128i mask, __m128i yes, __m128i no)
{
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

template <int channels>
void undoSub(uchar *row, size_t size)
{
    __m128i left = _mm_setzero_si128();
    for (size_t i = 0; i < size; i += channels) {
        left = _mm_add_epi8(left, pixelAt<channels>(row + i));
        putPixel<channels>(row + i, left);
    }
}

template <int channels>
void undoAverage(uchar *row, const uchar *above, size_t size)
{
    __m128i left = _mm_setzero_si128();
    for (size_t i = 0; i < size; i += channels) {
        const __m128i up = pixelAt<channels>(above + i);
        // The instruction rounds up.
        const __m128i odd = _mm_and_si128(_mm_xor_si128(left, up), _mm_set1_epi8(1));
        left = _mm_add_epi8(pixelAt<channels>(row + i), _mm_sub_epi8(_mm_avg_epu8(left, up), odd));
        putPixel<channels>(row + i, left);
    }
}

template <int channels>
void undoPaeth(uchar *row, const uchar *above, size_t size)
{
    __m128i left = _mm_setzero_si128();
    __m128i corner = _mm_setzero_si128();
    for (size_t i = 0; i < size; i += channels) {
        const __m128i up = widened(pixelAt<channels>(above + i));
        const __m128i rise = _mm_sub_epi16(up, corner);
        const __m128i run = _mm_sub_epi16(left, corner);
        const __m128i toLeft = magnitude(rise);
        const __m128i toUp = magnitude(run);
        const __m128i toCorner = magnitude(_mm_add_epi16(rise, run));
        const __m128i least = _mm_min_epi16(toCorner, _mm_min_epi16(toLeft, toUp));
        const __m128i guess =
            chosen(_mm_cmpeq_epi16(least, toLeft), left, chosen(_mm_cmpeq_epi16(least, toUp), up, corner));
        left = _mm_and_si128(_mm_add_epi16(widened(pixelAt<channels>(row + i)), guess), _mm_set1_epi16(255));
        corner = up;
        putPixel<channels>(row + i, _mm_packus_epi16(left, left));
    }
}
#else
int closest(int left, int above, int corner)
{
    const int toLeft = qAbs(above - corner);
    const int toAbove = qAbs(left - corner);
    const int toCorner = qAbs(left + above - 2 * corner);
    return toLeft <= toAbove && toLeft <= toCorner ? left : toAbove <= toCorner ? above : corner;
}

// What a byte is counted from: the one to its left, the one above, and the one above that to the left.
template <int channels, class Guess>
void addGuesses(uchar *row, const uchar *above, size_t size, Guess guess)
{
    for (size_t i = 0; i < size; ++i) {
        const bool isFirst = i < size_t(channels);
        row[i] = uchar(row[i] + guess(isFirst ? 0 : row[i - channels], above[i], isFirst ? 0 : above[i - channels]));
    }
}

template <int channels>
void undoSub(uchar *row, size_t size)
{
    addGuesses<channels>(row, row, size, [](int left, int, int) { return left; });
}

template <int channels>
void undoAverage(uchar *row, const uchar *above, size_t size)
{
    addGuesses<channels>(row, above, size, [](int left, int up, int) { return (left + up) / 2; });
}

template <int channels>
void undoPaeth(uchar *row, const uchar *above, size_t size)
{
    addGuesses<channels>(row, above, size, closest);
}
#endif

void undoUp(uchar *row, const uchar *above, size_t size)
{
    size_t i = 0;
#if defined(__SSE2__)
    constexpr size_t block = sizeof(__m128i);
    for (; size - i >= block; i += block) {
        const __m128i up = _mm_loadu_si128(reinterpret_cast<const __m128i *>(above + i));
        auto *const at = reinterpret_cast<__m128i *>(row + i);
        _mm_storeu_si128(at, _mm_add_epi8(_mm_loadu_si128(at), up));
    }
#endif
    for (; i < size; ++i) {
        row[i] = uchar(row[i] + above[i]);
    }
}

template <int channels>
void undoFilter(int filter, uchar *row, const uchar *above, size_t size)
{
    switch (filter) {
    case PNG_FILTER_VALUE_UP:
        return undoUp(row, above, size);
    case PNG_FILTER_VALUE_SUB:
        return undoSub<channels>(row, size);
    case PNG_FILTER_VALUE_AVG:
        return undoAverage<channels>(row, above, size);
    case PNG_FILTER_VALUE_PAETH:
        return undoPaeth<channels>(row, above, size);
    default:
        return;
    }
}

void undoFilter(int channels, int filter, uchar *row, const uchar *above, size_t size)
{
    switch (channels) {
    case 1:
        return undoFilter<1>(filter, row, above, size);
    case 2:
        return undoFilter<2>(filter, row, above, size);
    case 3:
        return undoFilter<3>(filter, row, above, size);
    default:
        return undoFilter<4>(filter, row, above, size);
    }
}

bool areFiltersKnown(const uchar *rows, int count, size_t stride)
{
    for (int row = 0; row < count; ++row) {
        if (rows[size_t(row) * stride] >= PNG_FILTER_VALUE_LAST) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<ZQWholePNG> ZQWholePNG::inflated(const ZQSourceFile &file, bool mayHaveProfile)
{
    constexpr size_t bestRatio = 1040; // of what deflating can do
    if (!file.start().startsWith("\x89PNG")) {
        return std::nullopt;
    }
    ZQSourceFile::Bytes bytes(file);
    const auto png = bytes.data() ? zqPlainPNGOutline({reinterpret_cast<char *>(bytes.data()), bytes.size()},
                                                      mostPixels, mayHaveProfile)
                                  : std::nullopt;
    ZQWholePNG out;
    out.m_channels = png && png->depth == 8 && !png->hasTransparency ? channelsOf(*png) : 0;
    if (out.m_channels == 0) {
        return std::nullopt;
    }
    out.m_size = png->size;
    const size_t stride = size_t(out.m_size.width()) * size_t(out.m_channels) + 1; // a byte in front names the filter
    const size_t size = stride * size_t(out.m_size.height());
    const std::span<uchar> packed = joinedPixels(bytes);
    out.m_pixels = size / bestRatio <= packed.size() ? zqLargeMemory(size) : nullptr;
    const bool isWhole = out.m_pixels && inflateInto(packed, out.m_pixels.get(), size) &&
                         areFiltersKnown(out.m_pixels.get(), out.m_size.height(), stride);
    return isWhole ? std::optional(std::move(out)) : std::nullopt;
}

const uchar *ZQWholePNG::nextRow()
{
    const size_t rowBytes = size_t(m_size.width()) * size_t(m_channels);
    uchar *const filtered = m_pixels.get() + size_t(m_row) * (rowBytes + 1);
    uchar *const finished = m_pixels.get() + size_t(m_row) * rowBytes;
    const int filter = *filtered;
    std::memmove(finished, filtered + 1, rowBytes);
    if (m_row > 0) {
        undoFilter(m_channels, filter, finished, finished - rowBytes, rowBytes);
    } else if (filter != PNG_FILTER_VALUE_UP && filter != PNG_FILTER_VALUE_NONE) {
        const std::vector<uchar> nothing(rowBytes, 0);
        undoFilter(m_channels, filter, finished, nothing.data(), rowBytes);
    }
    ++m_row;
    return finished;
}
