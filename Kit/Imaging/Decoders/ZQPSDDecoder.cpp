#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <QFile>
#include <QtEndian>

#include <array>
#include <cstdlib>

// The flattened composite at the end of a PSD or PSB file. Layers are not drawn.

namespace {

enum Mode { Bitmap = 0, Gray = 1, Indexed = 2, RGB = 3, CMYK = 4, Duotone = 8, Lab = 9 };

struct Document
{
    bool isLarge = false; // PSB: wider length fields
    int channels = 0;
    int width = 0;
    int height = 0;
    int depth = 8;
    int mode = RGB;
    QByteArray palette;
    bool hasMergedAlpha = false; // the first channel beyond the colours is the composite's transparency
    int compression = 0;
    qint64 dataStart = 0;

    int colors() const { return mode == RGB || mode == Lab ? 3 : (mode == CMYK ? 4 : 1); }
    qint64 rowBytes() const { return depth == 1 ? (qint64(width) + 7) / 8 : qint64(width) * (depth / 8); }
};

template <class T>
bool readBig(QFile &file, T &value)
{
    std::array<char, sizeof(T)> bytes{};
    if (file.read(bytes.data(), qint64(sizeof(T))) != qint64(sizeof(T))) {
        return false;
    }
    value = qFromBigEndian<T>(bytes.data());
    return true;
}

bool readLength(QFile &file, bool wide, qint64 &length)
{
    if (wide) {
        return readBig(file, length) && length >= 0;
    }
    quint32 value = 0;
    const bool done = readBig(file, value);
    length = value;
    return done;
}

bool skip(QFile &file, qint64 bytes)
{
    return bytes <= file.size() - file.pos() && file.seek(file.pos() + bytes);
}

bool readHeader(QFile &file, Document &out)
{
    quint16 version = 0;
    quint16 channels = 0;
    quint32 height = 0;
    quint32 width = 0;
    quint16 depth = 0;
    quint16 mode = 0;
    if (file.read(4) != "8BPS" || !readBig(file, version) || !skip(file, 6) || !readBig(file, channels) ||
        !readBig(file, height) || !readBig(file, width) || !readBig(file, depth) || !readBig(file, mode)) {
        return false;
    }
    out.isLarge = version == 2;
    out.channels = channels;
    out.depth = depth;
    out.mode = mode;
    out.width = int(qMin(width, quint32(INT_MAX)));
    out.height = int(qMin(height, quint32(INT_MAX)));
    return (version == 1 || version == 2) && channels >= 1 && channels <= 56;
}

bool readSections(QFile &file, Document &out)
{
    qint64 length = 0;
    if (!readLength(file, false, length)) {
        return false;
    }
    const qint64 afterMap = file.pos() + length;
    if (out.mode == Indexed) {
        out.palette = file.read(qMin<qint64>(length, 768));
    }
    if (!file.seek(afterMap) || !readLength(file, false, length) || !skip(file, length)) {
        return false;
    }
    if (!readLength(file, out.isLarge, length)) {
        return false;
    }
    const qint64 afterLayers = file.pos() + length;
    qint64 layerInfo = 0;
    qint16 layers = 0;
    if (length > 6 && readLength(file, out.isLarge, layerInfo) && layerInfo > 0 && readBig(file, layers)) {
        out.hasMergedAlpha = layers < 0;
    }
    quint16 compression = 0;
    if (afterLayers > file.size() || !file.seek(afterLayers) || !readBig(file, compression)) {
        return false;
    }
    out.compression = compression;
    out.dataStart = file.pos();
    return true;
}

bool isSupported(const Document &document)
{
    const bool knownMode = document.mode == Bitmap || document.mode == Gray || document.mode == Indexed ||
                           document.mode == RGB || document.mode == CMYK || document.mode == Duotone ||
                           document.mode == Lab;
    const bool knownDepth =
        document.depth == 8 || document.depth == 16 || (document.depth == 1 && document.mode == Bitmap);
    return knownMode && knownDepth && document.channels >= document.colors() && document.compression <= 1;
}

std::optional<Document> readDocument(QFile &file, const ZQSourceFile &source, ZQError *error)
{
    Document out;
    if (!source.openIn(file) || !readHeader(file, out)) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    if (!zqCheckSize(source.name(), out.width, out.height, ZQImageSource::maximumPixels, error)) {
        return std::nullopt;
    }
    if (!readSections(file, out) || !isSupported(out)) {
        zqSetError(error, zqDamagedError(source.name()));
        return std::nullopt;
    }
    return out;
}

// Unpacks one row of PackBits; whether it was a whole one.
bool unpackRow(const QByteArray &packed, QByteArray &row, char missing)
{
    row.fill(missing);
    qsizetype in = 0;
    qsizetype out = 0;
    while (in < packed.size() && out < row.size()) {
        const int code = static_cast<signed char>(packed.at(in++));
        if (code == -128) {
            continue;
        }
        const qsizetype count = qMin<qsizetype>(code < 0 ? 1 - code : code + 1, row.size() - out);
        for (qsizetype i = 0; i < count && in < packed.size(); ++i) {
            row[out++] = packed.at(code < 0 ? in : in++);
        }
        in += code < 0 ? 1 : 0;
    }
    return out == row.size();
}

// Reads the composite plane by plane, averaging blocks of `shrink` × `shrink` pixels on the way, so that a large
// document costs what its thumbnail costs.
class PlaneReader
{
public:
    PlaneReader(QFile &file, const Document &document, int shrink)
        : m_file(file), m_document(document), m_shrink(shrink),
          m_size((document.width + shrink - 1) / shrink, (document.height + shrink - 1) / shrink),
          m_row(document.rowBytes(), '\0'), m_sums(size_t(m_size.width()))
    {
    }

    QSize size() const { return m_size; }
    // What stands for the samples that the file does not hold.
    void setMissing(char sample) { m_missing = sample; }

    bool begin()
    {
        if (m_document.compression == 0) {
            return m_file.seek(m_document.dataStart);
        }
        const qint64 rows = qint64(m_document.height) * m_document.channels;
        const qint64 tableBytes = rows * (m_document.isLarge ? 4 : 2);
        if (tableBytes > m_file.size()) {
            return false;
        }
        m_lengths = m_file.seek(m_document.dataStart) ? m_file.read(tableBytes) : QByteArray();
        return m_lengths.size() == tableBytes;
    }

    // Writes the plane into every `stride`th byte from `target`. Answers how many rows of the document were there.
    int readPlane(int plane, char *target, int stride)
    {
        int present = 0;
        for (int y = 0; y < m_size.height(); ++y) {
            std::fill(m_sums.begin(), m_sums.end(), 0U);
            const int rows = qMin(m_shrink, m_document.height - y * m_shrink);
            for (int i = 0; i < rows; ++i) {
                present += readRow(qint64(plane) * m_document.height + y * m_shrink + i) ? 1 : 0;
                addRow();
            }
            for (int x = 0; x < m_size.width(); ++x, target += stride) {
                const int columns = qMin(m_shrink, m_document.width - x * m_shrink);
                *target = char(m_sums[size_t(x)] / quint32(rows * columns));
            }
            if (m_file.atEnd()) { // a header may promise rows without end
                for (qint64 left = qint64(m_size.height() - y - 1) * m_size.width(); left > 0; --left) {
                    *target = m_missing;
                    target += stride;
                }
                break;
            }
        }
        return present;
    }

private:
    bool readRow(qint64 index)
    {
        if (m_document.compression == 0) {
            const qint64 got = m_file.read(m_row.data(), m_row.size());
            if (got < m_row.size()) {
                std::fill(m_row.begin() + qMax<qint64>(got, 0), m_row.end(), m_missing);
            }
            return got == m_row.size();
        }
        const char *entry = m_lengths.constData() + index * (m_document.isLarge ? 4 : 2);
        const qint64 length =
            m_document.isLarge ? qint64(qFromBigEndian<quint32>(entry)) : qint64(qFromBigEndian<quint16>(entry));
        const QByteArray packed = m_file.read(qMin(length, 2 * qint64(m_row.size()) + 128));
        const bool isWhole = unpackRow(packed, m_row, m_missing);
        return isWhole && packed.size() == length;
    }

    void addRow()
    {
        const int step = m_document.depth == 16 ? 2 : 1; // the high byte of a 16-bit sample is the 8-bit one
        for (int x = 0; x < m_document.width; ++x) {
            const int bit = 7 - (x & 7);
            const uchar value = m_document.depth == 1 ? uchar((m_row.at(x >> 3) >> bit & 1) ? 0 : 255)
                                                      : uchar(m_row.at(qsizetype(x) * step));
            m_sums[size_t(x / m_shrink)] += value;
        }
    }

    QFile &m_file;
    const Document &m_document;
    int m_shrink;
    QSize m_size;
    QByteArray m_row;
    QByteArray m_lengths;
    std::vector<quint32> m_sums;
    char m_missing = '\0';
};

// The composite was blended with white where it is transparent; takes that white out again.
void removeWhite(uchar *pixel)
{
    const int alpha = pixel[3];
    for (int channel = 0; alpha > 0 && alpha < 255 && channel < 3; ++channel) {
        const int value = (pixel[channel] - 255 + alpha) * 255 / alpha;
        pixel[channel] = uchar(qBound(0, value, 255));
    }
}

QImage imageOfChannels(const QByteArray &channels, int perPixel, QSize size, const Document &document)
{
    QImage image(size, QImage::Format_RGBA8888);
    if (image.isNull()) {
        return image;
    }
    const auto *in = reinterpret_cast<const uchar *>(channels.constData());
    const qsizetype entries = document.palette.size() / 3;
    for (int y = 0; y < size.height(); ++y) {
        uchar *out = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x, in += perPixel, out += 4) {
            const int colors = document.colors();
            for (int channel = 0; channel < 3; ++channel) {
                out[channel] = colors == 3 ? in[channel] : in[0];
                if (document.mode == Indexed) {
                    out[channel] = in[0] < entries ? uchar(document.palette.at(in[0] + channel * entries)) : uchar(0);
                }
            }
            out[3] = perPixel > colors ? in[colors] : uchar(255);
            removeWhite(out);
        }
    }
    return image;
}

ZQBitmap bitmapOfChannels(QByteArray channels, int perPixel, QSize size, const Document &document)
{
    if (document.mode != CMYK && document.mode != Lab) {
        return ZQBitmap(imageOfChannels(channels, perPixel, size, document));
    }
    if (document.mode == Lab) {
        return zqBitmapOfLab(channels, size);
    }
    for (char &ink : channels) {
        ink = char(255 - uchar(ink)); // stored with 255 for no ink
    }
    return zqBitmapOfCMYK(channels, size);
}

int shrinkFor(const Document &document, const ZQDecodeRequest &request)
{
    if (request.isFullSize() || document.mode == Indexed) {
        return 1; // palette indexes cannot be averaged
    }
    const QSize fitted = zqFittedSize({document.width, document.height}, request);
    return qBound(1, qMin(document.width / fitted.width(), document.height / fitted.height()), 4096);
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &source, ZQError *error)
{
    QFile file;
    const std::optional<Document> document = readDocument(file, source, error);
    if (!document) {
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = document->width;
    out.pixelHeight = document->height;
    out.bitsPerSample = document->depth;
    out.hasAlpha = document->hasMergedAlpha && document->channels > document->colors();
    out.colorModel = document->mode == CMYK                                 ? QStringLiteral("CMYK")
                     : document->mode == Lab                                ? QStringLiteral("Lab")
                     : document->colors() == 1 && document->mode != Indexed ? QStringLiteral("Gray")
                                                                            : QStringLiteral("RGB");
    return out;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    QFile file;
    const std::optional<Document> document = readDocument(file, request.file, error);
    if (!document) {
        return {};
    }
    const bool alpha = document->hasMergedAlpha && document->channels > document->colors() && document->mode != CMYK &&
                       document->mode != Lab;
    const int perPixel = document->colors() + (alpha ? 1 : 0);
    PlaneReader planes(file, *document, shrinkFor(*document, request));
    const QSize size = planes.size();
    if (!zqCheckSize(request.file.name(), size.width(), size.height(), zqMaximumPixelsInMemory, error)) {
        return {};
    }
    // No packed row is shorter than a sixty-fourth of what it holds.
    const qint64 promised = document->rowBytes() * document->height * document->colors();
    if (file.size() * 64 < promised / 100 || !planes.begin()) {
        zqSetError(error, zqDamagedError(request.file.name()));
        return {};
    }
    QByteArray channels(qsizetype(size.width()) * size.height() * perPixel, '\0');
    bool isIncomplete = false;
    for (int plane = 0; plane < perPixel; ++plane) {
        // Where ink or transparency is missing there is none.
        planes.setMissing(document->mode == CMYK || plane == document->colors() ? '\xff' : '\0');
        const int rows = planes.readPlane(plane, channels.data() + plane, perPixel);
        isIncomplete = isIncomplete || rows < document->height;
        if (plane == 0 && !zqIsPartOfPicture(rows, document->height)) {
            zqSetError(error, zqDamagedError(request.file.name()));
            return {};
        }
    }
    ZQBitmap bitmap = bitmapOfChannels(std::move(channels), perPixel, size, *document);
    bitmap.setIncomplete(isIncomplete);
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqPSDDecoder{properties, decode};
