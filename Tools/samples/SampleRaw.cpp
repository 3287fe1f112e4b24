#include "Tools/samples/SampleRaw.h"

#include <QtEndian>

#include <array>
#include <cmath>
#include <vector>

namespace {

enum FieldType : quint16 { Byte = 1, Text = 2, Short = 3, Long = 4, Rational = 5, SignedRational = 10 };

template <class T>
QByteArray little(T value)
{
    QByteArray bytes(sizeof(T), Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// The entries of a TIFF directory, in rising order of their tags, and the data that does not fit into them.
class Directory
{
public:
    void add(quint16 tag, FieldType type, quint32 count, const QByteArray &value)
    {
        m_entries.push_back({tag, type, count, value});
    }
    void addShort(quint16 tag, quint16 value) { add(tag, Short, 1, little(value)); }
    void addLong(quint16 tag, quint32 value) { add(tag, Long, 1, little(value)); }
    void addText(quint16 tag, const QByteArray &text) { add(tag, Text, quint32(text.size() + 1), text + '\0'); }
    // In ten-thousandths.
    void addFractions(quint16 tag, FieldType type, const std::vector<double> &values)
    {
        QByteArray bytes;
        for (const double value : values) {
            bytes += little(qint32(std::lround(value * 10000))) + little(qint32(10000));
        }
        add(tag, type, quint32(values.size()), bytes);
    }

    qsizetype size() const
    {
        qsizetype size = 2 + 12 * qsizetype(m_entries.size()) + 4;
        for (const Entry &entry : m_entries) {
            size += entry.value.size() > 4 ? even(entry.value.size()) : 0;
        }
        return size;
    }
    QByteArray bytesAt(qsizetype offset) const
    {
        QByteArray out = little(quint16(m_entries.size()));
        QByteArray data;
        const qsizetype dataStart = offset + 2 + 12 * qsizetype(m_entries.size()) + 4;
        for (const Entry &entry : m_entries) {
            out += little(entry.tag) + little(quint16(entry.type)) + little(entry.count);
            if (entry.value.size() > 4) {
                out += little(quint32(dataStart + data.size()));
                data += entry.value.leftJustified(even(entry.value.size()), '\0');
            } else {
                out += entry.value.leftJustified(4, '\0');
            }
        }
        return out + little(quint32(0)) + data;
    }

private:
    struct Entry
    {
        quint16 tag;
        FieldType type;
        quint32 count;
        QByteArray value;
    };
    static qsizetype even(qsizetype size) { return size + size % 2; }
    std::vector<Entry> m_entries;
};

quint16 linear(int value)
{
    const double c = value / 255.0;
    const double light = c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    return quint16(std::lround(light * 65535));
}

// One sample a place: red and green in even rows, green and blue in odd ones.
QByteArray mosaic(const QImage &pixels)
{
    QByteArray out;
    out.reserve(qsizetype(pixels.width()) * pixels.height() * 2);
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            const QRgb color = pixels.pixel(x, y);
            const int value = (x + y) % 2 == 1 ? qGreen(color) : (y % 2 == 0 ? qRed(color) : qBlue(color));
            out += little(linear(value));
        }
    }
    return out;
}

} // namespace

QByteArray dngFile(const QImage &image)
{
    const QImage pixels =
        image.copy(0, 0, image.width() & ~1, image.height() & ~1).convertToFormat(QImage::Format_RGB32);
    const QByteArray samples = mosaic(pixels);
    constexpr qsizetype start = 8;
    const auto directory = [&](qsizetype samplesAt) {
        Directory out;
        out.addLong(254, 0); // the full picture
        out.addLong(256, quint32(pixels.width()));
        out.addLong(257, quint32(pixels.height()));
        out.addShort(258, 16);
        out.addShort(259, 1);     // uncompressed
        out.addShort(262, 32803); // colour filter array
        out.addText(271, "Zelto");
        out.addText(272, "Sample Camera");
        out.addLong(273, quint32(samplesAt));
        out.addShort(274, 1);
        out.addShort(277, 1);
        out.addLong(278, quint32(pixels.height()));
        out.addLong(279, quint32(samples.size()));
        out.addShort(284, 1);
        out.add(33421, Short, 2, little(quint16(2)) + little(quint16(2)));
        out.add(33422, Byte, 4, QByteArray("\0\1\1\2", 4));
        out.add(50706, Byte, 4, QByteArray("\1\4\0\0", 4)); // DNG version
        out.add(50707, Byte, 4, QByteArray("\1\1\0\0", 4));
        out.addText(50708, "Zelto Sample Camera");
        out.addShort(50714, 0); // black
        out.addLong(50717, 65535);
        out.addFractions(50721, SignedRational, // XYZ to linear sRGB
                         {3.2406, -1.5372, -0.4986, -0.9689, 1.8758, 0.0415, 0.0557, -0.2040, 1.0570});
        out.addFractions(50728, Rational, {1, 1, 1}); // neutral as shot
        out.addShort(50778, 21);                      // D65
        return out;
    };
    const qsizetype samplesAt = start + directory(0).size();
    return QByteArray("II*\0", 4) + little(quint32(start)) + directory(samplesAt).bytesAt(start) + samples;
}
