#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QSize>
#include <QtEndian>

#include <algorithm>

namespace PNGBytes {

// What libpng would not write: any kind of picture, chunk by chunk.
struct Picture
{
    QSize size{7, 5};
    int depth = 8;
    int colorType = 2;
    bool isInterlaced = false;
    QByteArray chunks = {}; // between the header and the pixels
};

inline QByteArray bigEndian(quint32 value)
{
    QByteArray out(4, Qt::Uninitialized);
    qToBigEndian(value, out.data());
    return out;
}

inline quint32 checksum(const QByteArray &bytes)
{
    quint32 crc = 0xffffffff;
    for (const char byte : bytes) {
        crc ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320U : 0);
        }
    }
    return ~crc;
}

inline QByteArray chunk(const QByteArray &name, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + name + data + bigEndian(checksum(name + data));
}

inline int channelsOf(int colorType)
{
    return colorType == 2 ? 3 : colorType == 4 ? 2 : colorType == 6 ? 4 : 1;
}

inline QByteArray randomBytes(qsizetype count, QRandomGenerator &random)
{
    QByteArray out(count, Qt::Uninitialized);
    std::generate(out.begin(), out.end(), [&random] { return char(random.bounded(256)); });
    return out;
}

// Noise in every row filter; a whole number of passes only for what is not interlaced.
// `given`: other rows, each with its filter in front.
inline QByteArray pngOf(const Picture &picture, const QByteArray &given = {})
{
    QRandomGenerator random(quint32(picture.depth * 100 + picture.colorType));
    const int bits = picture.depth * channelsOf(picture.colorType);
    QByteArray rows;
    for (int y = 0; given.isEmpty() && y < picture.size.height(); ++y) {
        rows += char(y % 5);
        rows += randomBytes((picture.size.width() * bits + 7) / 8, random);
    }
    const QByteArray header = bigEndian(quint32(picture.size.width())) + bigEndian(quint32(picture.size.height())) +
                              QByteArray(1, char(picture.depth)) + char(picture.colorType) + QByteArray(2, '\0') +
                              char(picture.isInterlaced);
    const QByteArray palette =
        picture.colorType == 3 ? chunk("PLTE", randomBytes(768 >> (8 - picture.depth), random)) : QByteArray();
    return QByteArray("\x89PNG\r\n\x1a\n") + chunk("IHDR", header) + palette + picture.chunks +
           chunk("IDAT", qCompress(given.isEmpty() ? rows : given).mid(4)) + chunk("IEND", {});
}

} // namespace PNGBytes
