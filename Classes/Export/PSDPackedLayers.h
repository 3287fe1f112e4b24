#pragma once

#include "Classes/Export/PSDRows.h"
#include "Kit/Imaging/ZQPackedPicture.h"

#include <QByteArray>
#include <QList>
#include <QRect>
#include <QSize>

#include <array>
#include <functional>
#include <span>

// The channel image data of layers, as a PSD document has it, at the end of bytes that become the document: nobody
// holds the pixels beside it, and what was packed can be read back a row at a time. One thread at a time, except for
// reading.
class PSDPackedLayers
{
public:
    static constexpr int channelCount = 4;                   // red, green, blue, alpha
    static constexpr qsizetype longestDocument = 2147483647; // that other programs open

    // `roomInFront`: what is kept free before the first layer.
    explicit PSDPackedLayers(QSize canvas = {}, qsizetype roomInFront = 0);

    enum class Alpha { Premultiplied, Straight };
    // Gives the samples of one channel of a row of the layer, counted from its own top. Any thread.
    using Reader = std::function<void(int row, int channel, std::span<uchar> samples)>;
    // `rect` lies on the canvas; the rest of it is transparent. False, with nothing added, when the document becomes
    // too long.
    bool append(const QRect &rect, const Reader &reader, Alpha alpha = Alpha::Premultiplied);
    // The same with rows that are packed already, of straight alpha: the part of the picture lies at `at`.
    bool append(QPoint at, const ZQPackedPicture &picture);

    QSize canvas() const { return m_canvas; }
    qsizetype count() const { return m_layers.size(); }
    QRect rectOf(qsizetype layer) const { return m_layers[layer].rect; }
    Alpha alphaOf(qsizetype layer) const { return m_layers[layer].alpha; }
    qsizetype lengthOf(qsizetype layer, int channel) const { return m_layers[layer].lengths[std::size_t(channel)]; }
    QByteArray pixelsOf(qsizetype layer) const; // of its rect: R, G, B, A, as they were given

    // Where a row of a channel is.
    struct Cursor
    {
        qsizetype counts = 0; // of the row, in the bytes
        qsizetype row = 0;
    };
    Cursor cursor(qsizetype layer, int channel, int row) const;
    std::span<const char> takeRow(Cursor &cursor) const; // packed, as wide as the canvas; goes on to the next row

    QByteArray &bytes() { return m_bytes; }
    // What a row of the canvas is when every sample is this one.
    static QByteArray packedRow(int width, uchar sample);

private:
    struct Layer
    {
        QRect rect;
        Alpha alpha = Alpha::Premultiplied;
        qsizetype start = 0;
        std::array<qsizetype, channelCount> lengths = {};
    };
    bool appendChannel(Layer &layer, int channel, const Reader &reader);
    bool appendChannel(Layer &layer, int channel, const ZQPackedPicture &picture);
    template <class AppendOne>
    bool appendLayer(Layer layer, AppendOne appendOne);
    PSDRows::Packer packer(const QRect &rect, int channel, int firstRow, const Reader &reader) const;

    QSize m_canvas;
    QByteArray m_bytes;
    QByteArray m_emptyRow;
    QList<Layer> m_layers;
};
