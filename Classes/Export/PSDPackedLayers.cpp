#include "Classes/Export/PSDPackedLayers.h"

#include "Classes/Export/PSDBytes.h"
#include "Kit/Imaging/ZQPackBits.h"

#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

namespace {

constexpr qsizetype compressionSize = 2;
constexpr qsizetype countSize = 2;

qsizetype valueAt(const char *at)
{
    return (qsizetype(uchar(at[0])) << 8) | uchar(at[1]);
}

} // namespace

PSDPackedLayers::PSDPackedLayers(QSize canvas, qsizetype roomInFront)
    : m_canvas(canvas), m_bytes(roomInFront, '\0'), m_emptyRow(packedRow(canvas.width(), 0))
{
}

QByteArray PSDPackedLayers::packedRow(int width, uchar sample)
{
    const std::vector<uchar> samples(std::size_t(std::max(width, 0)), sample);
    QByteArray packed(ZQPackBits::mostPacked(qsizetype(samples.size())), Qt::Uninitialized);
    packed.truncate(ZQPackBits::pack(samples, packed.data()) - packed.constData());
    return packed;
}

PSDRows::Packer PSDPackedLayers::packer(const QRect &rect, int channel, int firstRow, const Reader &reader) const
{
    struct Piece
    {
        QByteArray left;
        std::vector<uchar> samples;
        QByteArray right;
    };
    const auto piece = std::make_shared<Piece>();
    piece->left = packedRow(rect.x(), 0);
    piece->samples.resize(std::size_t(rect.width()));
    piece->right = packedRow(m_canvas.width() - rect.x() - rect.width(), 0);
    const auto put = [](const QByteArray &bytes, char *out) {
        std::memcpy(out, bytes.constData(), std::size_t(bytes.size()));
        return out + bytes.size();
    };
    return [this, rect, channel, row = firstRow, piece, put, &reader](char *out) mutable {
        const int own = row++ - rect.y();
        if (own < 0 || own >= rect.height()) {
            return put(m_emptyRow, out);
        }
        reader(own, channel, piece->samples);
        return put(piece->right, ZQPackBits::pack(piece->samples, put(piece->left, out)));
    };
}

bool PSDPackedLayers::appendChannel(Layer &layer, int channel, const Reader &reader)
{
    const qsizetype start = m_bytes.size();
    const qsizetype countsAt = start + compressionSize;
    if (countsAt + m_canvas.height() * countSize > longestDocument) {
        return false;
    }
    PSDBytes::appendValue(m_bytes, 1, int(compressionSize));
    m_bytes.resize(countsAt + m_canvas.height() * countSize);
    const qsizetype mostBytes = ZQPackBits::mostPacked(m_canvas.width()) + 2; // each piece may have a header more
    const auto packerFrom = [&](int firstRow) { return packer(layer.rect, channel, firstRow, reader); };
    if (!PSDRows::append({m_canvas.height(), mostBytes, packerFrom}, m_bytes, countsAt, longestDocument)) {
        return false;
    }
    layer.lengths[std::size_t(channel)] = m_bytes.size() - start;
    return true;
}

bool PSDPackedLayers::appendChannel(Layer &layer, int channel, const ZQPackedPicture &picture)
{
    const QRect rect = layer.rect;
    const QByteArray left = packedRow(rect.x(), 0);
    const QByteArray right = packedRow(m_canvas.width() - rect.x() - rect.width(), 0);
    const qsizetype around = left.size() + right.size();
    const std::span<const char> counts = picture.counts(channel);
    const std::span<const char> rows = picture.rows(channel);
    const qsizetype size = compressionSize + m_canvas.height() * countSize +
                           (m_canvas.height() - rect.height()) * m_emptyRow.size() + rect.height() * around +
                           qsizetype(rows.size());
    const qsizetype start = m_bytes.size();
    if (start + size > longestDocument) {
        return false;
    }
    m_bytes.resize(start + size);
    PSDBytes::putValue(m_bytes.data() + start, 1, int(compressionSize));
    char *count = m_bytes.data() + start + compressionSize;
    char *out = count + m_canvas.height() * countSize;
    const auto put = [&out](const char *bytes, qsizetype length) {
        if (length > 0) {
            std::memcpy(out, bytes, std::size_t(length));
            out += length;
        }
    };
    const char *row = rows.data();
    for (int y = 0; y < m_canvas.height(); ++y, count += countSize) {
        const int own = y - rect.y();
        if (own < 0 || own >= rect.height()) {
            put(m_emptyRow.constData(), m_emptyRow.size());
            PSDBytes::putValue(count, m_emptyRow.size(), int(countSize));
            continue;
        }
        const qsizetype length = valueAt(counts.data() + own * countSize);
        put(left.constData(), left.size());
        put(row, length);
        put(right.constData(), right.size());
        PSDBytes::putValue(count, around + length, int(countSize));
        row += length;
    }
    layer.lengths[std::size_t(channel)] = size;
    return true;
}

template <class AppendOne>
bool PSDPackedLayers::appendLayer(Layer layer, AppendOne appendOne)
{
    layer.start = m_bytes.size();
    for (int channel = 0; channel < channelCount; ++channel) {
        if (!appendOne(layer, channel)) {
            m_bytes.truncate(layer.start);
            return false;
        }
    }
    m_layers.append(layer);
    return true;
}

bool PSDPackedLayers::append(const QRect &rect, const Reader &reader, Alpha alpha)
{
    return appendLayer({rect, alpha, 0, {}},
                       [&](Layer &layer, int channel) { return appendChannel(layer, channel, reader); });
}

bool PSDPackedLayers::append(QPoint at, const ZQPackedPicture &picture)
{
    const QRect rect = picture.part().isEmpty() ? QRect(0, 0, 0, 0) : QRect(at, picture.part().size());
    return appendLayer({rect, Alpha::Straight, 0, {}},
                       [&](Layer &layer, int channel) { return appendChannel(layer, channel, picture); });
}

PSDPackedLayers::Cursor PSDPackedLayers::cursor(qsizetype layer, int channel, int row) const
{
    const Layer &wanted = m_layers[layer];
    const auto before = wanted.lengths.begin() + channel;
    Cursor cursor;
    cursor.counts = std::accumulate(wanted.lengths.begin(), before, wanted.start) + compressionSize;
    cursor.row = cursor.counts + m_canvas.height() * countSize;
    for (int i = 0; i < row; ++i) {
        takeRow(cursor);
    }
    return cursor;
}

std::span<const char> PSDPackedLayers::takeRow(Cursor &cursor) const
{
    const qsizetype size = valueAt(m_bytes.constData() + cursor.counts);
    const std::span<const char> row(m_bytes.constData() + cursor.row, std::size_t(size));
    cursor.counts += countSize;
    cursor.row += size;
    return row;
}

QByteArray PSDPackedLayers::pixelsOf(qsizetype layer) const
{
    const QRect rect = rectOf(layer);
    QByteArray pixels(qsizetype(rect.width()) * rect.height() * channelCount, Qt::Uninitialized);
    std::vector<uchar> samples(std::size_t(m_canvas.width()));
    for (int channel = 0; channel < channelCount; ++channel) {
        Cursor rows = cursor(layer, channel, rect.y());
        char *out = pixels.data() + channel;
        for (int row = 0; row < rect.height(); ++row) {
            const auto packed = takeRow(rows);
            ZQPackBits::unpack(packed.data(), packed.data() + packed.size(), samples);
            for (int i = 0; i < rect.width(); ++i, out += channelCount) {
                *out = char(samples[std::size_t(rect.x() + i)]);
            }
        }
    }
    return pixels;
}
