#include "Classes/Export/PSDMergedImage.h"

#include "Classes/Export/PSDBytes.h"
#include "Classes/Export/PSDPixels.h"
#include "Kit/Imaging/ZQPackBits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr int alphaChannel = 3;
constexpr uchar opaque = 255;
constexpr quint32 wholeOpacity = 1U << 16;

void fade(std::span<uchar> samples, quint32 opacity)
{
    for (uchar &sample : samples) {
        sample = static_cast<uchar>((sample * opacity + wholeOpacity / 2) >> 16);
    }
}

// From the first sample that is not 0 to the last one.
std::pair<std::size_t, std::size_t> rangeSeen(std::span<const uchar> alpha)
{
    constexpr std::size_t block = 64;
    static constexpr std::array<uchar, block> clear{};
    std::size_t first = 0;
    std::size_t last = alpha.size();
    while (first + block <= last && std::memcmp(alpha.data() + first, clear.data(), block) == 0) {
        first += block;
    }
    while (first < last && alpha[first] == 0) {
        ++first;
    }
    while (first + block <= last && std::memcmp(alpha.data() + last - block, clear.data(), block) == 0) {
        last -= block;
    }
    while (first < last && alpha[last - 1] == 0) {
        --last;
    }
    return {first, last};
}

void unpack(std::span<const char> packed, std::span<uchar> samples)
{
    ZQPackBits::unpack(packed.data(), packed.data() + packed.size(), samples);
}

} // namespace

PSDMergedImage::PSDMergedImage(const PSDPackedLayers &layers, QList<float> opacities)
    : m_layers(layers), m_opacities(std::move(opacities)),
      m_opaqueRow(PSDPackedLayers::packedRow(layers.canvas().width(), opaque)),
      m_clearRow(PSDPackedLayers::packedRow(layers.canvas().width(), 0))
{
}

bool PSDMergedImage::covers(qsizetype layer, std::span<const char> alphaRow) const
{
    return m_opacities[layer] >= 1 && qsizetype(alphaRow.size()) == m_opaqueRow.size() &&
           std::equal(alphaRow.begin(), alphaRow.end(), m_opaqueRow.cbegin());
}

PSDMergedImage::Rows::Rows(const PSDMergedImage &image, int channel, int firstRow)
    : m_image(image), m_row(firstRow), m_color(std::size_t(image.m_layers.canvas().width())), m_alpha(m_color.size())
{
    if (channel == alphaChannel) {
        return; // over white everything is opaque
    }
    for (qsizetype i = 0; i < image.m_layers.count(); ++i) {
        m_layers.push_back(
            {image.m_layers.cursor(i, channel, firstRow), image.m_layers.cursor(i, alphaChannel, firstRow), {}, {}});
    }
}

std::size_t PSDMergedImage::Rows::takeRows()
{
    std::size_t bottom = 0;
    for (std::size_t i = 0; i < m_layers.size(); ++i) {
        Layer &layer = m_layers[i];
        layer.colorRow = m_image.m_layers.takeRow(layer.color);
        layer.alphaRow = m_image.m_layers.takeRow(layer.alpha);
        if (m_image.covers(qsizetype(i), layer.alphaRow)) {
            bottom = i;
        }
    }
    return bottom;
}

void PSDMergedImage::Rows::draw(std::size_t index, std::span<uchar> samples)
{
    const QRect rect = m_image.m_layers.rectOf(qsizetype(index));
    const std::span<const char> alphaRow = m_layers[index].alphaRow;
    const bool isClear =
        std::equal(alphaRow.begin(), alphaRow.end(), m_image.m_clearRow.cbegin(), m_image.m_clearRow.cend());
    if (m_row < rect.top() || m_row > rect.bottom() || rect.width() <= 0 || isClear) {
        return;
    }
    unpack(alphaRow, m_alpha);
    const auto [first, last] = rangeSeen(m_alpha);
    if (first == last) {
        return;
    }
    unpack(m_layers[index].colorRow, m_color);
    const auto part = [first = first, last = last](std::span<uchar> row) { return row.subspan(first, last - first); };
    if (m_image.m_layers.alphaOf(qsizetype(index)) == PSDPackedLayers::Alpha::Straight) {
        PSDPixels::multiply(part(m_color), part(m_alpha));
    }
    const float opacity = m_image.m_opacities[qsizetype(index)];
    if (opacity < 1) {
        const auto factor = static_cast<quint32>(std::lround(opacity * float(wholeOpacity)));
        fade(part(m_color), factor);
        fade(part(m_alpha), factor);
    }
    PSDPixels::drawOver(part(m_color), part(m_alpha), part(samples));
}

void PSDMergedImage::Rows::take(std::span<uchar> samples)
{
    std::fill(samples.begin(), samples.end(), opaque);
    for (std::size_t i = takeRows(); i < m_layers.size(); ++i) {
        draw(i, samples);
    }
    ++m_row;
}

QByteArray PSDMergedImage::pixels() const
{
    constexpr int channels = PSDPackedLayers::channelCount;
    const QSize size = m_layers.canvas();
    QByteArray pixels(qsizetype(size.width()) * size.height() * channels, Qt::Uninitialized);
    std::vector<uchar> samples(std::size_t(size.width()));
    for (int channel = 0; channel < channels; ++channel) {
        Rows rows(*this, channel, 0);
        char *out = pixels.data() + channel;
        for (int row = 0; row < size.height(); ++row) {
            rows.take(samples);
            for (const uchar sample : samples) {
                *out = char(sample);
                out += channels;
            }
        }
    }
    return pixels;
}
