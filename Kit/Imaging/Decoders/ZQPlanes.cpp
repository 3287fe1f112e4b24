#include "Kit/Imaging/Decoders/ZQPlanes.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/Decoders/ZQLargeMemory.h"
#include "Kit/Imaging/Decoders/ZQWholePNG.h"
#include "Kit/Imaging/ZQPackBits.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr int channels = ZQPackedPicture::channelCount;
constexpr int alphaChannel = 3;

#if defined(__SSE2__)
constexpr std::size_t blockSize = sizeof(__m128i);

// One channel of 16 pixels.
__m128i blockOf(const __m128i (&pixels)[4], int channel)
{
    const __m128i shift = _mm_cvtsi32_si128(8 * channel);
    const auto four = [&](std::size_t index) {
        return _mm_and_si128(_mm_srl_epi32(pixels[index], shift), _mm_set1_epi32(255));
    };
    return _mm_packus_epi16(_mm_packs_epi32(four(0), four(1)), _mm_packs_epi32(four(2), four(3)));
}
#endif

bool failForMemory(const ZQSourceFile &file, ZQError *error)
{
    zqSetError(error, zqImagingError(ZQImagingErrorCode::TooMuchMemory, file.name(),
                                     zqLocalized("There is not enough memory to show it.")));
    return false;
}

// Rows of a picture of that size, until the part is complete. `row` gives R, G, B, A of the next one, and whether it is
// the same as the one before.
template <class Row>
void addRows(ZQPlanes &planes, Row row)
{
    const QRect part = planes.part();
    for (int y = 0; y <= part.bottom(); ++y) {
        bool isSame = false;
        const uchar *const pixels = row(y, &isSame);
        if (y == part.top() || (y > part.top() && !isSame)) {
            planes.add(pixels + qsizetype(part.left()) * channels);
        } else if (y > part.top()) {
            planes.addAgain();
        }
    }
}

// `from` has fewer channels than R, G, B and A.
void widen(const uchar *from, int channelCount, std::vector<uchar> &to)
{
    const bool hasAlpha = channelCount == 2;
    const bool isGray = channelCount < 3;
    for (std::size_t i = 0; i < to.size(); i += channels, from += channelCount) {
        to[i] = from[0];
        to[i + 1] = isGray ? from[0] : from[1];
        to[i + 2] = isGray ? from[0] : from[2];
        to[i + alphaChannel] = hasAlpha ? from[1] : uchar(255);
    }
}

void addRowsOf(ZQWholePNG &png, ZQPlanes &planes)
{
    const std::size_t rowBytes = std::size_t(png.size().width()) * std::size_t(png.channels());
    std::vector<uchar> wide(png.channels() == channels ? 0 : std::size_t(png.size().width()) * channels);
    addRows(planes, [&](int y, bool *isSame) -> const uchar * {
        const uchar *const row = png.nextRow();
        *isSame = y > 0 && std::memcmp(row, row - rowBytes, rowBytes) == 0;
        if (wide.empty()) {
            return row;
        }
        if (!*isSame) {
            widen(row, png.channels(), wide);
        }
        return wide.data();
    });
}

std::optional<ZQPlanes> planesFor(const ZQSourceFile &file, QSize size, const QRect &window, ZQError *error)
{
    const QRect part = ZQPackedPicture::partOf(size, window);
    if (part.width() > ZQPackedPicture::widest) {
        zqSetError(error, zqTooBigError(file.name(), size.width(), size.height()));
        return std::nullopt;
    }
    ZQPlanes planes(size, part);
    return planes.hasMemory() || failForMemory(file, error) ? std::optional(std::move(planes)) : std::nullopt;
}

} // namespace

ZQPlanes::ZQPlanes(QSize size, QRect part) : m_size(size), m_part(part)
{
    const auto height = qsizetype(std::max(part.height(), 0));
    const auto width = qsizetype(std::max(part.width(), 0));
    for (Plane &plane : m_planes) {
        plane.counts.resize(2 * height);
        plane.memory = zqLargeMemory(std::size_t(std::max<qsizetype>(1, ZQPackBits::mostPacked(width) * height)));
        plane.last = plane.end = reinterpret_cast<char *>(plane.memory.get());
        plane.samples.resize(std::size_t(width));
    }
}

bool ZQPlanes::hasMemory() const
{
    return std::all_of(m_planes.begin(), m_planes.end(), [](const Plane &plane) { return plane.memory != nullptr; });
}

void ZQPlanes::split(const uchar *pixels)
{
    const std::size_t width = m_planes[0].samples.size();
    std::size_t x = 0;
#if defined(__SSE2__)
    for (; width - x >= blockSize; x += blockSize, pixels += blockSize * channels) {
        const auto *const at = reinterpret_cast<const __m128i *>(pixels);
        const __m128i sixteen[4] = {_mm_loadu_si128(at), _mm_loadu_si128(at + 1), _mm_loadu_si128(at + 2),
                                    _mm_loadu_si128(at + 3)};
        const __m128i alpha = blockOf(sixteen, alphaChannel);
        const __m128i clear = _mm_cmpeq_epi8(alpha, _mm_setzero_si128());
        const auto put = [&](int channel, __m128i block) {
            _mm_storeu_si128(reinterpret_cast<__m128i *>(m_planes[std::size_t(channel)].samples.data() + x), block);
        };
        put(0, _mm_or_si128(blockOf(sixteen, 0), clear));
        put(1, _mm_or_si128(blockOf(sixteen, 1), clear));
        put(2, _mm_or_si128(blockOf(sixteen, 2), clear));
        put(alphaChannel, alpha);
    }
#endif
    for (; x < width; ++x, pixels += channels) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const bool isClear = channel != alphaChannel && pixels[alphaChannel] == 0;
            m_planes[channel].samples[x] = isClear ? uchar(255) : pixels[channel];
        }
    }
}

void ZQPlanes::count(Plane &plane) const
{
    qToBigEndian(quint16(plane.end - plane.last), plane.counts.data() + 2 * qsizetype(m_row));
}

void ZQPlanes::add(const uchar *pixels)
{
    split(pixels);
    for (Plane &plane : m_planes) {
        plane.last = plane.end;
        plane.end = ZQPackBits::pack(plane.samples, plane.last);
        count(plane);
    }
    ++m_row;
}

void ZQPlanes::addAgain()
{
    for (Plane &plane : m_planes) {
        const auto size = std::size_t(plane.end - plane.last);
        std::memcpy(plane.end, plane.last, size);
        plane.last = plane.end;
        plane.end += size;
        count(plane);
    }
    ++m_row;
}

bool ZQPlanes::write(int descriptor) const
{
    return std::all_of(m_planes.begin(), m_planes.end(), [descriptor](const Plane &plane) {
        const auto *const start = reinterpret_cast<const char *>(plane.memory.get());
        return zqWriteAll(descriptor, plane.counts.constData(), plane.counts.size()) &&
               zqWriteAll(descriptor, start, plane.end - start);
    });
}

std::optional<ZQPlanes> zqPlanesOfFile(const ZQSourceFile &file, const QRect &window, ZQError *error)
{
    if (std::optional<ZQWholePNG> png = ZQWholePNG::inflated(file)) {
        std::optional<ZQPlanes> planes = planesFor(file, png->size(), window, error);
        if (planes) {
            addRowsOf(*png, *planes);
        }
        return planes;
    }
    const ZQBitmap bitmap = zqDecodeFile({file, {}, 0, false, zqPaperOfName(file.name())}, error);
    std::optional<ZQPlanes> planes = bitmap.isNull() ? std::nullopt : planesFor(file, bitmap.size(), window, error);
    if (planes) {
        planes->setIncomplete(bitmap.isIncomplete());
        const std::size_t rowBytes = std::size_t(bitmap.width()) * channels;
        addRows(*planes, [&](int y, bool *isSame) {
            *isSame = y > 0 && std::memcmp(bitmap.constScanLine(y), bitmap.constScanLine(y - 1), rowBytes) == 0;
            return bitmap.constScanLine(y);
        });
    }
    return planes;
}
