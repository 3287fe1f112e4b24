#pragma once

#include "Classes/Export/PSDPackedLayers.h"

// The merged image of packed layers: all of them in order over white. It is composed a row at a time, so that nobody
// holds a canvas for it. Any thread; the layers stay as they are meanwhile.
class PSDMergedImage
{
public:
    // `opacities`: of each layer, 0 to 1.
    PSDMergedImage(const PSDPackedLayers &layers, QList<float> opacities);

    // Rows of one channel, in their order. One thread.
    class Rows
    {
    public:
        Rows(const PSDMergedImage &image, int channel, int firstRow);
        void take(std::span<uchar> samples); // the next; as wide as the canvas

    private:
        struct Layer
        {
            PSDPackedLayers::Cursor color;
            PSDPackedLayers::Cursor alpha;
            std::span<const char> colorRow;
            std::span<const char> alphaRow;
        };
        std::size_t takeRows(); // the bottom layer of what is seen
        void draw(std::size_t index, std::span<uchar> samples);

        const PSDMergedImage &m_image;
        int m_row;
        std::vector<Layer> m_layers;
        std::vector<uchar> m_color;
        std::vector<uchar> m_alpha;
    };

    QByteArray pixels() const; // R, G, B, A

private:
    bool covers(qsizetype layer, std::span<const char> alphaRow) const;

    const PSDPackedLayers &m_layers;
    QList<float> m_opacities;
    QByteArray m_opaqueRow; // packed
    QByteArray m_clearRow;
};
