#include "Classes/Export/PSDPixels.h"

#include <algorithm>
#include <cmath>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr int channels = PSDPackedLayers::channelCount;
constexpr int alphaChannel = 3;

// Along one side of the canvas.
struct Span
{
    double start = 0;
    double length = 0;
    int cut = 0; // of the image, before what is seen
};

Span spanOf(int image, double offset, double canvas)
{
    Span span{offset, double(image), 0};
    if (!std::isfinite(offset) || offset >= canvas || offset + image <= 0) {
        return {}; // nothing of it is seen
    }
    span.length = std::min(span.length, canvas - offset);
    if (offset < 0) {
        span.cut = int(-offset);
        span.length += offset;
        span.start = 0;
    }
    span.length = std::max(span.length, 0.0);
    return span;
}

uchar product(uchar sample, uchar alpha)
{
    const auto wide = static_cast<quint16>(sample * alpha + 128);
    return static_cast<uchar>((wide + (wide >> 8)) >> 8);
}

#if defined(__SSE2__)
constexpr std::size_t blockSize = sizeof(__m128i);

// One channel of 16 pixels.
__m128i blockOf(const uchar *pixel, int channel)
{
    const __m128i shift = _mm_cvtsi32_si128(8 * channel);
    const auto four = [&](int index) {
        const __m128i whole = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pixel) + index);
        return _mm_and_si128(_mm_srl_epi32(whole, shift), _mm_set1_epi32(255));
    };
    return _mm_packus_epi16(_mm_packs_epi32(four(0), four(1)), _mm_packs_epi32(four(2), four(3)));
}
#endif

#if defined(__SSE2__)
__m128i blockAt(const uchar *samples)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(samples));
}

__m128i productOf(__m128i samples, __m128i alpha)
{
    const auto half = [](__m128i a, __m128i b) {
        const __m128i wide = _mm_add_epi16(_mm_mullo_epi16(a, b), _mm_set1_epi16(128));
        return _mm_srli_epi16(_mm_add_epi16(wide, _mm_srli_epi16(wide, 8)), 8);
    };
    const __m128i zero = _mm_setzero_si128();
    return _mm_packus_epi16(half(_mm_unpacklo_epi8(samples, zero), _mm_unpacklo_epi8(alpha, zero)),
                            half(_mm_unpackhi_epi8(samples, zero), _mm_unpackhi_epi8(alpha, zero)));
}
#endif

// One channel; with `isWhite`, 255 where alpha is 0.
void take(const uchar *pixel, int channel, bool isWhite, std::span<uchar> samples)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; samples.size() - i >= blockSize; i += blockSize, pixel += blockSize * channels) {
        __m128i block = blockOf(pixel, channel);
        if (isWhite) {
            block = _mm_or_si128(block, _mm_cmpeq_epi8(blockOf(pixel, alphaChannel), _mm_setzero_si128()));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i *>(samples.data() + i), block);
    }
#endif
    for (; i < samples.size(); ++i, pixel += channels) {
        samples[i] = isWhite && pixel[alphaChannel] == 0 ? uchar(255) : pixel[channel];
    }
}

} // namespace

std::optional<QRect> PSDPixels::wholeRect(const QRectF &rect)
{
    constexpr double most = 1e6;
    for (const double value : {rect.x(), rect.y(), rect.width(), rect.height()}) {
        if (!(std::abs(value) <= most)) {
            return std::nullopt;
        }
    }
    if (rect.width() < 0 || rect.height() < 0) {
        return std::nullopt;
    }
    return QRect(int(std::floor(rect.x())), int(std::floor(rect.y())), int(rect.width()), int(rect.height()));
}

PSDPixels::Crop PSDPixels::crop(QSize image, QPointF offset, QSizeF canvas)
{
    Span across = spanOf(image.width(), offset.x(), canvas.width());
    Span down = spanOf(image.height(), offset.y(), canvas.height());
    if (across.length <= 0 || down.length <= 0) {
        across = down = {};
    }
    const QRectF rect(across.start, down.start, across.length, down.length);
    return {rect, wholeRect(rect).value_or(QRect(0, 0, 0, 0)), {across.cut, down.cut}};
}

float PSDPixels::opacity(float value)
{
    return value > 0 ? std::min(value, 1.0F) : 0.0F;
}

PSDPackedLayers::Reader PSDPixels::readerOf(const ZQBitmap &image, QPoint source, PSDPackedLayers::Alpha alpha)
{
    const bool isStraight = alpha == PSDPackedLayers::Alpha::Straight;
    return [image, source, isStraight](int row, int channel, std::span<uchar> samples) {
        const uchar *const pixels = image.constScanLine(source.y() + row) + qsizetype(source.x()) * channels;
        const bool isColor = channel != alphaChannel;
        take(pixels, channel, isStraight && isColor, samples);
        if (isColor && !isStraight) {
            for (std::size_t i = 0; i < samples.size(); ++i) {
                samples[i] = product(samples[i], pixels[i * channels + alphaChannel]);
            }
        }
    };
}

PSDPackedLayers::Reader PSDPixels::readerOf(const QByteArray &pixels, int width)
{
    return [pixels, width](int row, int channel, std::span<uchar> samples) {
        qsizetype at = qsizetype(row) * width * channels + channel;
        for (uchar &sample : samples) {
            sample = at < pixels.size() ? static_cast<uchar>(pixels.at(at)) : uchar(0);
            at += channels;
        }
    };
}

void PSDPixels::multiply(std::span<uchar> samples, std::span<const uchar> alpha)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; samples.size() - i >= blockSize; i += blockSize) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(samples.data() + i),
                         productOf(blockAt(samples.data() + i), blockAt(alpha.data() + i)));
    }
#endif
    for (; i < samples.size(); ++i) {
        samples[i] = product(samples[i], alpha[i]);
    }
}

void PSDPixels::drawOver(std::span<const uchar> color, std::span<const uchar> alpha, std::span<uchar> samples)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    const __m128i opaque = _mm_set1_epi8(-1);
    for (; samples.size() - i >= blockSize; i += blockSize) {
        const __m128i under = productOf(blockAt(samples.data() + i), _mm_sub_epi8(opaque, blockAt(alpha.data() + i)));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(samples.data() + i),
                         _mm_adds_epu8(blockAt(color.data() + i), under));
    }
#endif
    for (; i < samples.size(); ++i) {
        const int under = product(samples[i], static_cast<uchar>(255 - alpha[i]));
        samples[i] = static_cast<uchar>(std::min(color[i] + under, 255));
    }
}

void PSDPixels::premultiply(QByteArray &pixels)
{
    auto *pixel = reinterpret_cast<uchar *>(pixels.data());
    for (uchar *const end = pixel + pixels.size() / channels * channels; pixel < end; pixel += channels) {
        for (int channel = 0; channel < alphaChannel; ++channel) {
            pixel[channel] = product(pixel[channel], pixel[alphaChannel]);
        }
    }
}

void PSDPixels::unpremultiply(QByteArray &pixels)
{
    auto *pixel = reinterpret_cast<uchar *>(pixels.data());
    for (uchar *const end = pixel + pixels.size() / channels * channels; pixel < end; pixel += channels) {
        const int alpha = pixel[alphaChannel];
        for (int channel = 0; channel < alphaChannel; ++channel) {
            pixel[channel] = alpha == 0 ? uchar(255) : static_cast<uchar>(std::min(pixel[channel] * 255 / alpha, 255));
        }
    }
}

void PSDPixels::flip(QByteArray &pixels, int height)
{
    const qsizetype row = height > 0 ? pixels.size() / height : 0;
    char *top = pixels.data();
    char *bottom = top + row * height;
    for (int i = 0; i < height / 2; ++i, top += row) {
        bottom -= row;
        std::swap_ranges(top, top + row, bottom);
    }
}
