#pragma once

#include "Classes/Export/PSDException.h"
#include "Classes/Export/PSDLayer.h"
#include "Classes/Export/PSDPackedLayers.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QByteArray>
#include <QList>
#include <QPointF>
#include <QSizeF>
#include <QString>

#include <optional>

// Makes a layered Photoshop document (version 1, RGB, 8 bits a channel) with its merged image, in memory, once.
//
// A layer is packed while it is added, and its pixels are let go: what a writer holds is about what it will answer.
// Pixels that are asked for (`layers`) are unpacked again. Both options below cost a second copy of the packed layers,
// except for unpremultiplying images that are added once it is set: their straight pixels go in as they are, which
// loses nothing to rounding.
//
// Every layer is written at the size of the canvas, transparent around its own rectangle. One that is wholly outside
// stays as a transparent layer, so that the others keep their places. Offsets that are no whole pixels are rounded
// down. Names are written in ASCII, cut to 15 characters: letters lose their accents, and what is no letter of ASCII
// even then becomes "?".
//
// Misuse and what does not fit in a document are told by a PSDException, and the writer is as before. One thread.
class PSDWriter
{
public:
    static constexpr int longestSide = 30000; // that other programs open

    explicit PSDWriter(QSizeF documentSize); // in pixels; fractions of one do not count
    // Whether a document of that size with so many layers can be made at all, before any is read: the exception that
    // says why not.
    static std::optional<PSDException> refusal(QSizeF documentSize, qsizetype layers);

    QSizeF documentSize() const { return m_documentSize; }
    int layerChannelCount() const { return m_layerChannelCount; }
    void setLayerChannelCount(int count) { m_layerChannelCount = count; } // only 4 makes a consistent document
    // R, G, B, A of the canvas. Without it the merged image is all layers over white; it is there once it was made.
    std::optional<QByteArray> flattenedData() const;
    void setFlattenedData(std::optional<QByteArray> data) { m_flattenedData = std::move(data); }
    // Reverses the rows of every layer that is as large as the canvas; others stay as they are.
    bool shouldFlipLayerData() const { return m_shouldFlipLayerData; }
    void setShouldFlipLayerData(bool flips) { m_shouldFlipLayerData = flips; }
    bool shouldUnpremultiplyLayerData() const { return m_shouldUnpremultiplyLayerData; }
    void setShouldUnpremultiplyLayerData(bool does) { m_shouldUnpremultiplyLayerData = does; }

    QList<PSDLayer> layers() const; // the bottom one first
    // Instead of those that were added. Bytes that are missing in one are transparent. Whether each lies on the canvas
    // is looked at when the document is made.
    void setLayers(const QList<PSDLayer> &layers);
    // Above the others; what of it lies beyond the canvas is left out.
    void addLayerWithCGImage(const ZQBitmap &image, const QString &andName, float andOpacity, QPointF andOffset);
    // The same of a picture whose planes are packed already, whole or as far as it lies on the canvas; its alpha is
    // straight, as layers are with `shouldUnpremultiplyLayerData`. False, with nothing added, when they are of another
    // part of it.
    bool addLayerWithPlanes(const ZQPackedPicture &picture, const QString &andName, float andOpacity,
                            QPointF andOffset);

    // The merged image and the options, as `createPSDData` does them.
    void preprocess();
    // The document. The layers are gone from the writer.
    QByteArray createPSDData();

private:
    struct Entry
    {
        QString name;
        float opacity = 1;
        QRectF rect;
    };
    void append(const Entry &entry, const QRect &rect, const PSDPackedLayers::Reader &reader,
                PSDPackedLayers::Alpha alpha = PSDPackedLayers::Alpha::Premultiplied);
    PSDPackedLayers::Alpha alpha() const; // that the document is to have
    void appendPixels(const PSDLayer &layer);
    PSDPackedLayers emptyLayers() const;
    QList<float> opacities() const;
    bool needsTransform() const;
    void transformLayers();
    void checkBounds() const;
    void appendMergedImage();
    QByteArray front() const; // what comes before the channels of the layers

    QSizeF m_documentSize;
    QSize m_canvas; // in whole pixels; empty when none can be made of this size
    int m_layerChannelCount = PSDPackedLayers::channelCount;
    std::optional<QByteArray> m_flattenedData;
    bool m_shouldFlipLayerData = false;
    bool m_shouldUnpremultiplyLayerData = false;
    bool m_isPreprocessed = false;
    QList<Entry> m_entries; // of the packed layers
    PSDPackedLayers m_packed;
};
