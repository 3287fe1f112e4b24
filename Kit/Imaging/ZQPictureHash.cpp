#include "Kit/Imaging/ZQPictureHash.h"

#include "Kit/Imaging/ZQLumaPlane.h"
#include "Kit/Imaging/ZQPictureFrame.h"

#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace {

constexpr int side = 64;        // of the square that is transformed
constexpr int frequencies = 19; // each way, from 0: none of the lowest 256 of both is beyond
constexpr float leastRange = 4; // of 255, between the darkest and the lightest part; less shows nothing

using Values = std::array<float, ZQPictureHash::bitCount>;

// cos(π (2x + 1) u / 2n), one row for each frequency.
std::vector<float> cosines()
{
    std::vector<float> values;
    for (int u = 0; u < frequencies; ++u) {
        for (int x = 0; x < side; ++x) {
            values.push_back(float(std::cos(std::numbers::pi * (2 * x + 1) * u / (2.0 * side))));
        }
    }
    return values;
}

// Where the lowest frequencies are among all, the lowest first; without the one that is the mean.
std::vector<size_t> lowestFrequencies()
{
    std::vector<std::pair<int, size_t>> places; // by the distance from the mean
    for (int v = 0; v < frequencies; ++v) {
        for (int u = 0; u < frequencies; ++u) {
            places.emplace_back(u * u + v * v, size_t(v * frequencies + u));
        }
    }
    std::sort(places.begin(), places.end());
    std::vector<size_t> lowest;
    for (size_t i = 1; i <= ZQPictureHash::bitCount; ++i) {
        lowest.push_back(places[i].second);
    }
    return lowest;
}

Values transformed(const std::vector<float> &square)
{
    static const std::vector<float> table = cosines();
    static const std::vector<size_t> lowest = lowestFrequencies();
    std::array<float, size_t(frequencies) * frequencies> all{};
    std::array<float, side> row;
    for (int v = 0; v < frequencies; ++v) {
        row.fill(0);
        for (size_t y = 0; y < side; ++y) {
            const float factor = table[size_t(v) * side + y];
            for (size_t x = 0; x < side; ++x) {
                row[x] += factor * square[y * side + x];
            }
        }
        for (int u = 0; u < frequencies; ++u) {
            float sum = 0;
            for (size_t x = 0; x < side; ++x) {
                sum += table[size_t(u) * side + x] * row[x];
            }
            all[size_t(v * frequencies + u)] = sum;
        }
    }
    Values values;
    for (size_t i = 0; i < values.size(); ++i) {
        values[i] = all[lowest[i]];
    }
    return values;
}

std::optional<ZQPictureHash> hashOnGround(const ZQBitmap &bitmap, quint8 ground)
{
    const ZQLumaPlane plane(bitmap, ground);
    const std::vector<float> square = plane.averaged(zqWithoutFrame(bitmap), side);
    const auto [darkest, lightest] = std::minmax_element(square.begin(), square.end());
    if (*lightest - *darkest < leastRange) {
        return std::nullopt;
    }
    const Values values = transformed(square);
    Values sorted = values;
    std::nth_element(sorted.begin(), sorted.begin() + sorted.size() / 2, sorted.end());
    const float median = sorted[sorted.size() / 2];
    ZQPictureHash hash;
    for (size_t i = 0; i < values.size(); ++i) {
        hash.words[i / 64] |= quint64(values[i] > median) << (i % 64);
    }
    return hash;
}

} // namespace

std::optional<ZQPictureHash> ZQPictureHash::of(const ZQBitmap &bitmap)
{
    if (bitmap.isNull()) {
        return std::nullopt;
    }
    const std::optional<ZQPictureHash> hash = hashOnGround(bitmap, 255);
    return hash || !bitmap.hasAlpha() ? hash : hashOnGround(bitmap, 0);
}

std::optional<ZQPictureHash> ZQPictureHash::fromBytes(const QByteArray &bytes)
{
    ZQPictureHash hash;
    if (bytes.size() != qsizetype(sizeof hash.words)) {
        return std::nullopt;
    }
    for (size_t i = 0; i < hash.words.size(); ++i) {
        hash.words[i] = qFromLittleEndian<quint64>(bytes.constData() + i * sizeof(quint64));
    }
    return hash;
}

int ZQPictureHash::alikeDistanceAmong(qint64 count)
{
    constexpr double few = 1000;
    constexpr double bitsForTenfold = 13;
    constexpr int least = 30; // what compression and scaling change
    const double tenfolds = double(count) > few ? std::log10(double(count) / few) : 0;
    return std::max(least, alikeDistance - int(std::lround(tenfolds * bitsForTenfold)));
}

QByteArray ZQPictureHash::bytes() const
{
    QByteArray bytes(qsizetype(sizeof words), Qt::Uninitialized);
    for (size_t i = 0; i < words.size(); ++i) {
        qToLittleEndian(words[i], bytes.data() + i * sizeof(quint64));
    }
    return bytes;
}

int ZQPictureHash::distance(const ZQPictureHash &other) const
{
    int count = 0;
    for (size_t i = 0; i < words.size(); ++i) {
        count += std::popcount(words[i] ^ other.words[i]);
    }
    return count;
}
