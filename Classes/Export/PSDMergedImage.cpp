#include "Classes/Export/PSDMergedImage.h"

#include "Classes/Export/PSDBytes.h"
#include "Classes/Export/PSDPixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr int alphaChannel = 3;
constexpr uchar opaque = 255;
constexpr quint32 wholeOpacity = 1U << 16;

// Of premultiplied samples; the loops have no branches, so that the compiler makes vectors of them.
void drawOver(std::span<const uchar> color, std::span<const uchar> alpha, uchar *samples)
{
    for (std::size_t i = 0; i < color.size(); ++i) {
        const auto under = static_cast<quint16>(samples[i] * (opaque - alpha[i]) + 128);
        const auto sum = static_cast<quint16>(color[i] + ((under + (under >> 8)) >> 8));
        samples[i] = static_cast<uchar>(std::min<quint16>(sum, opaque));
    }
}

void fade(std::span<uchar> samples, quint32 opacity)
{
    for (uchar &sample : samples) {
        sample = static_cast<uchar>((sample * opacity + wholeOpacity / 2) >> 16);
    }
}

void unpack(std::span<const char> packed, std::span<uchar> samples)
{
    PSDBytes::unpackBits(packed.data(), packed.data() + packed.size(), samples);
}

} // namespace

PSDMergedImage::PSDMergedImage(const PSDPackedLayers &layers, QList<float> opacities)
    : m_layers(layers), m_opacities(std::move(opacities)),
      m_opaqueRow(PSDPackedLayers::packedRow(layers.canvas().width(), opaque))
{
}

bool PSDMergedImage::covers(qsizetype layer, std::span<const char> alphaRow) const
{
    return m_opacities[layer] >= 1 && qsizetype(alphaRow.size()) == m_opaqueRow.size() &&
           std::equal(alphaRow.begin(), alphaRow.end(), m_opaqueRow.cbegin());
}

PSDMergedImage::Rows::Rows(const PSDMergedImage &image, int channel, int firstRow)
    : m_image(image), m_channel(channel), m_row(firstRow), m_color(std::size_t(image.m_layers.canvas().width())),
      m_alpha(m_color.size())
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
    if (m_row < rect.top() || m_row > rect.bottom() || rect.width() <= 0) {
        return;
    }
    unpack(m_layers[index].colorRow, m_color);
    unpack(m_layers[index].alphaRow, m_alpha);
    const auto part = [&rect](std::span<uchar> row) {
        return row.subspan(std::size_t(rect.x()), std::size_t(rect.width()));
    };
    if (m_image.m_layers.alphaOf(qsizetype(index)) == PSDPackedLayers::Alpha::Straight) {
        PSDPixels::multiply(part(m_color), part(m_alpha));
    }
    const float opacity = m_image.m_opacities[qsizetype(index)];
    if (opacity < 1) {
        const auto factor = static_cast<quint32>(std::lround(opacity * float(wholeOpacity)));
        fade(part(m_color), factor);
        fade(part(m_alpha), factor);
    }
    drawOver(part(m_color), part(m_alpha), part(samples).data());
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
