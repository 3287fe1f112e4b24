#include "Classes/Export/PSDWriter.h"

#include "Classes/Export/PSDBytes.h"
#include "Classes/Export/PSDFront.h"
#include "Classes/Export/PSDMergedImage.h"
#include "Classes/Export/PSDPixels.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPackBits.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

using Alpha = PSDPackedLayers::Alpha;

constexpr int channels = PSDPackedLayers::channelCount;
constexpr qsizetype usualLayers = 200; // for which there is room in front, so that nothing has to move

// Whole pixels of a length; what is none is 0, and what is too long stays so.
int wholePixels(double length)
{
    return length >= 1 ? int(std::min(length, 1e9)) : 0;
}

PSDException noLayers()
{
    return {PSDException::invalidUse, QStringLiteral("Please provide layer data, flattened data and set layer channel "
                                                     "count to at least 3.")};
}

PSDException noSize()
{
    return {PSDException::invalidUse,
            QStringLiteral("You must specify a non-zero documentSize before calling addLayer:")};
}

PSDException tooLong()
{
    return {PSDException::documentTooLarge, zqLocalized("The document would be larger than 2 GB, which other programs "
                                                        "do not open: make it smaller, or of fewer layers.")};
}

} // namespace

PSDWriter::PSDWriter(QSizeF documentSize)
    : m_documentSize(documentSize), m_canvas(wholePixels(documentSize.width()), wholePixels(documentSize.height()))
{
    if (std::max(m_canvas.width(), m_canvas.height()) > longestSide) {
        m_canvas = {};
    }
    m_packed = emptyLayers();
}

std::optional<PSDException> PSDWriter::refusal(QSizeF documentSize, qsizetype layers)
{
    const qsizetype width = wholePixels(documentSize.width());
    const qsizetype height = wholePixels(documentSize.height());
    if (std::max(width, height) > longestSide) {
        return PSDException(PSDException::documentTooLarge,
                            zqFormat(zqLocalized("A document of %d × %d pixels is too large: other programs open none "
                                                 "with a side of more than %d."),
                                     {width, height, longestSide}));
    }
    if (width == 0 || height == 0) {
        return noSize();
    }
    // One repeat packet for each 127 samples: nothing packs better.
    const qsizetype row = 2 + 2 * std::max<qsizetype>(1, width / 127);
    const qsizetype ofOne = row * height * channels;
    const bool fits = layers < 0x8000 && layers + 1 <= PSDPackedLayers::longestDocument / ofOne;
    return fits ? std::nullopt : std::optional(tooLong());
}

PSDPackedLayers PSDWriter::emptyLayers() const
{
    return PSDPackedLayers(m_canvas.isEmpty() ? QSize(0, 0) : m_canvas, PSDFront::size(usualLayers));
}

QList<float> PSDWriter::opacities() const
{
    QList<float> list;
    for (const Entry &entry : m_entries) {
        list.append(entry.opacity);
    }
    return list;
}

std::optional<QByteArray> PSDWriter::flattenedData() const
{
    if (m_flattenedData || !m_isPreprocessed || m_entries.isEmpty()) {
        return m_flattenedData;
    }
    return PSDMergedImage(m_packed, opacities()).pixels();
}

QList<PSDLayer> PSDWriter::layers() const
{
    QList<PSDLayer> list;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        QByteArray pixels = m_packed.pixelsOf(i);
        if (!m_isPreprocessed && m_packed.alphaOf(i) == Alpha::Straight) {
            PSDPixels::premultiply(pixels);
        }
        list.append({pixels, m_entries[i].name, m_entries[i].opacity, m_entries[i].rect});
    }
    return list;
}

Alpha PSDWriter::alpha() const
{
    return m_shouldUnpremultiplyLayerData ? Alpha::Straight : Alpha::Premultiplied;
}

void PSDWriter::append(const Entry &entry, const QRect &rect, const PSDPackedLayers::Reader &reader, Alpha alpha)
{
    if (!m_packed.append(rect, reader, alpha)) {
        throw tooLong();
    }
    m_entries.append(entry);
}

void PSDWriter::appendPixels(const PSDLayer &layer)
{
    const Entry entry{layer.name, PSDPixels::opacity(layer.opacity), layer.rect};
    const std::optional<QRect> rect = PSDPixels::wholeRect(layer.rect);
    if (!rect || !QRect(QPoint(), m_packed.canvas()).contains(*rect)) {
        append(entry, {0, 0, 0, 0}, {}); // is refused with its number when the document is made
        return;
    }
    append(entry, *rect, PSDPixels::readerOf(layer.imageData, rect->width()));
}

void PSDWriter::setLayers(const QList<PSDLayer> &layers)
{
    PSDWriter changed(m_documentSize);
    for (const PSDLayer &layer : layers) {
        changed.appendPixels(layer);
    }
    m_entries = std::move(changed.m_entries);
    m_packed = std::move(changed.m_packed);
}

void PSDWriter::addLayerWithCGImage(const ZQBitmap &image, const QString &andName, float andOpacity, QPointF andOffset)
{
    if (const auto refused = refusal(m_documentSize, m_entries.size() + 1); refused && !m_documentSize.isEmpty()) {
        throw *refused;
    }
    const PSDPixels::Crop crop = PSDPixels::crop(image.size(), andOffset, m_documentSize);
    append({andName, PSDPixels::opacity(andOpacity), crop.rect}, crop.target,
           PSDPixels::readerOf(image, crop.source, alpha()), alpha());
    if (m_canvas.isEmpty() && !m_flattenedData) {
        throw noSize();
    }
}

bool PSDWriter::addLayerWithPlanes(const ZQPackedPicture &picture, const QString &andName, float andOpacity,
                                   QPointF andOffset)
{
    if (const auto refused = refusal(m_documentSize, m_entries.size() + 1)) {
        throw *refused;
    }
    const PSDPixels::Crop crop = PSDPixels::crop(picture.size(), andOffset, m_documentSize);
    const bool isThatPart =
        crop.target.isEmpty() ? picture.part().isEmpty() : picture.part() == QRect(crop.source, crop.target.size());
    if (!isThatPart) {
        return false;
    }
    if (!m_packed.append(crop.target.topLeft(), picture)) {
        throw tooLong();
    }
    m_entries.append({andName, PSDPixels::opacity(andOpacity), crop.rect});
    return true;
}

bool PSDWriter::needsTransform() const
{
    for (qsizetype i = 0; i < m_packed.count(); ++i) {
        if (m_packed.alphaOf(i) != alpha()) {
            return true;
        }
    }
    return m_shouldFlipLayerData;
}

// As if each had been packed that way from the start. The merged image is that of the layers as they were added.
void PSDWriter::transformLayers()
{
    PSDPackedLayers changed = emptyLayers();
    for (qsizetype i = 0; i < m_packed.count(); ++i) {
        const QRect rect = m_packed.rectOf(i);
        QByteArray pixels = m_packed.pixelsOf(i);
        if (m_packed.alphaOf(i) != alpha()) {
            alpha() == Alpha::Straight ? PSDPixels::unpremultiply(pixels) : PSDPixels::premultiply(pixels);
        }
        if (m_shouldFlipLayerData && rect.size() == m_canvas) {
            PSDPixels::flip(pixels, m_canvas.height());
        }
        if (!changed.append(rect, PSDPixels::readerOf(pixels, rect.width()), alpha())) {
            throw tooLong();
        }
    }
    m_packed = std::move(changed);
}

void PSDWriter::preprocess()
{
    m_isPreprocessed = true;
    if (needsTransform()) {
        m_flattenedData = flattenedData();
        transformLayers();
    }
}

void PSDWriter::checkBounds() const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        const QRectF &rect = m_entries[i].rect;
        if (std::floor(rect.x()) < 0 || std::floor(rect.y()) < 0) {
            throw PSDException(PSDException::layerOutOfBounds,
                               QStringLiteral("Layer %1's x or y origin is negative, which is unsupported").arg(i));
        }
        const bool isWithin = std::floor(rect.x()) + std::floor(rect.width()) <= m_documentSize.width() &&
                              std::floor(rect.y()) + std::floor(rect.height()) <= m_documentSize.height();
        if (!isWithin || !PSDPixels::wholeRect(rect)) {
            throw PSDException(
                PSDException::layerOutOfBounds,
                QStringLiteral("Layer %1's bottom-right corner is beyond the edge of the canvas, which is unsupported")
                    .arg(i));
        }
    }
}

void PSDWriter::appendMergedImage()
{
    QByteArray &bytes = m_packed.bytes();
    const PSDMergedImage image(m_packed, opacities());
    PSDBytes::appendValue(bytes, 1, 2);
    const qsizetype countsAt = bytes.size();
    const qsizetype countsSize = 2 * qsizetype(m_canvas.height());
    bytes.resize(countsAt + channels * countsSize);
    for (int channel = 0; channel < channels; ++channel) {
        const auto packerFrom = [&](int firstRow) -> PSDRows::Packer {
            std::vector<uchar> samples(std::size_t(m_canvas.width()));
            if (m_flattenedData) {
                return [row = firstRow, channel, samples,
                        read = PSDPixels::readerOf(*m_flattenedData, m_canvas.width())](char *out) mutable {
                    read(row++, channel, samples);
                    return ZQPackBits::pack(samples, out);
                };
            }
            return [samples, rows = PSDMergedImage::Rows(image, channel, firstRow)](char *out) mutable {
                rows.take(samples);
                return ZQPackBits::pack(samples, out);
            };
        };
        if (!PSDRows::append({m_canvas.height(), ZQPackBits::mostPacked(m_canvas.width()), packerFrom}, bytes,
                             countsAt + channel * countsSize, PSDPackedLayers::longestDocument)) {
            throw tooLong();
        }
    }
}

QByteArray PSDWriter::front() const
{
    QList<PSDFront::Record> records;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        PSDFront::Record record{m_entries[i].name, m_entries[i].opacity, {}};
        for (int channel = 0; channel < channels; ++channel) {
            record.lengths[std::size_t(channel)] = m_packed.lengthOf(i, channel);
        }
        records.append(record);
    }
    return PSDFront::bytes(m_canvas, m_layerChannelCount, records);
}

QByteArray PSDWriter::createPSDData()
{
    if (m_layerChannelCount < 3 || m_entries.isEmpty()) {
        throw noLayers();
    }
    if (const auto refused = refusal(m_documentSize, m_entries.size())) {
        throw *refused;
    }
    if (m_flattenedData && m_flattenedData->size() < qsizetype(m_canvas.width()) * m_canvas.height() * channels) {
        throw noLayers();
    }
    checkBounds();
    preprocess();
    const QByteArray front = this->front();
    const qsizetype room = PSDFront::size(usualLayers);
    QByteArray &bytes = m_packed.bytes();
    const qsizetype endOfLayers = bytes.size();
    try {
        if ((endOfLayers - room + front.size() - PSDFront::beforeLayers) % 2 != 0) {
            PSDBytes::appendValue(bytes, 0, 1);
        }
        appendMergedImage();
    } catch (const PSDException &) {
        bytes.truncate(endOfLayers);
        throw;
    }
    QByteArray document = std::exchange(m_packed, emptyLayers()).bytes();
    m_entries.clear();
    if (front.size() > room) {
        const qsizetype size = document.size() - room;
        document.resize(front.size() + size);
        std::memmove(document.data() + front.size(), document.constData() + room, std::size_t(size));
    } else {
        document.remove(0, room - front.size()); // moves nothing
    }
    std::memcpy(document.data(), front.constData(), std::size_t(front.size()));
    return document;
}
