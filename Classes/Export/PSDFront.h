#pragma once

#include "Classes/Export/PSDPackedLayers.h"

#include <QByteArray>
#include <QList>
#include <QSize>
#include <QString>

#include <array>

// What comes in a PSD document before the channels of its layers: header, image resources, and a record for each layer.
namespace PSDFront {

struct Record
{
    QString name;
    float opacity = 1;
    std::array<qsizetype, PSDPackedLayers::channelCount> lengths = {}; // of the channels' data
};

constexpr qsizetype beforeLayers = 26 + 4 + 4 + 42 + 4 + 4; // up to the layer information
constexpr qsizetype recordSize = 82;
constexpr qsizetype size(qsizetype layers)
{
    return beforeLayers + 2 + recordSize * layers;
}

QByteArray bytes(QSize canvas, int channelCount, const QList<Record> &records);
QByteArray storedName(const QString &name); // the 15 characters

} // namespace PSDFront
