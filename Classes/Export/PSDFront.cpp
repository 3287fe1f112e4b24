#include "Classes/Export/PSDFront.h"

#include "Classes/Export/PSDBytes.h"

#include <cmath>
#include <numeric>

using PSDBytes::appendValue;

namespace {

constexpr qsizetype nameLength = 15;

void appendHeader(QByteArray &out, QSize canvas, int channelCount)
{
    out += "8BPS";
    appendValue(out, 1, 2);
    out.append(6, '\0');
    appendValue(out, channelCount, 2);
    appendValue(out, canvas.height(), 4);
    appendValue(out, canvas.width(), 4);
    appendValue(out, 8, 2); // bits
    appendValue(out, 3, 2); // RGB
    appendValue(out, 0, 4); // no colour table
}

void appendResource(QByteArray &out, int identifier, const QByteArray &data)
{
    out += "8BIM";
    appendValue(out, identifier, 2);
    appendValue(out, 0, 2); // without a name
    appendValue(out, data.size(), 4);
    out += data;
}

void appendResources(QByteArray &out)
{
    constexpr int resolution = 1005;
    constexpr int targetLayer = 1024;
    QByteArray resources;
    // 72 pixels an inch both ways
    appendResource(resources, resolution, QByteArray::fromHex("00480000000100010048000000010001"));
    appendResource(resources, targetLayer, QByteArray(2, '\0'));
    appendValue(out, resources.size(), 4);
    out += resources;
}

void appendRecord(QByteArray &out, QSize canvas, int channelCount, const PSDFront::Record &record)
{
    appendValue(out, 0, 4);
    appendValue(out, 0, 4);
    appendValue(out, canvas.height(), 4);
    appendValue(out, canvas.width(), 4);
    appendValue(out, channelCount, 2);
    for (const int channel : {0, 1, 2, 3}) {
        constexpr int alpha = 3;
        appendValue(out, channel == alpha ? -1 : channel, 2);
        appendValue(out, record.lengths[std::size_t(channel)], 4);
    }
    out += "8BIMnorm";
    appendValue(out, qint64(std::ceil(record.opacity * 255.0F)), 1);
    appendValue(out, 0, 1); // base
    appendValue(out, 1, 1); // transparency protected
    appendValue(out, 0, 1); // filler
    appendValue(out, 8 + nameLength + 1, 4);
    appendValue(out, 0, 4); // no mask
    appendValue(out, 0, 4); // no blending ranges
    appendValue(out, nameLength, 1);
    out += PSDFront::storedName(record.name);
}

} // namespace

QByteArray PSDFront::storedName(const QString &name)
{
    QByteArray ascii;
    const QString parts = name.left(1000).normalized(QString::NormalizationForm_KD);
    for (const char32_t character : parts.toUcs4()) {
        if (QChar::category(character) != QChar::Mark_NonSpacing) {
            ascii.append(character >= U' ' && character <= U'~' ? char(character) : '?');
        }
    }
    return (ascii + ' ').leftJustified(nameLength, ' ', true);
}

QByteArray PSDFront::bytes(QSize canvas, int channelCount, const QList<Record> &records)
{
    qsizetype information = 2 + recordSize * records.size();
    for (const Record &record : records) {
        information = std::accumulate(record.lengths.begin(), record.lengths.end(), information);
    }
    information += information % 2;
    QByteArray out;
    out.reserve(size(records.size()));
    appendHeader(out, canvas, channelCount);
    appendResources(out);
    appendValue(out, information + 4, 4);
    appendValue(out, information, 4);
    appendValue(out, records.size(), 2);
    for (const Record &record : records) {
        appendRecord(out, canvas, channelCount, record);
    }
    return out;
}
