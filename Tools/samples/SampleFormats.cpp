#include "Tools/samples/SampleFormats.h"

#include <QBuffer>
#include <QFile>
#include <QImageWriter>
#include <QtEndian>

#include <exiv2/exiv2.hpp>
#include <sqlite3.h>
#include <vips/vips.h>

#include <array>
#include <memory>

namespace {

struct Unref
{
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Unref>;

bool startVips()
{
    static const bool started = VIPS_INIT("zelto_samples") == 0;
    return started;
}

// A copy, RGB or RGBA.
Image vipsImage(const QImage &image)
{
    if (!startVips()) {
        return nullptr;
    }
    const int bands = image.hasAlphaChannel() ? 4 : 3;
    const QImage pixels = image.convertToFormat(bands == 4 ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    QByteArray packed;
    for (int y = 0; y < pixels.height(); ++y) {
        packed.append(reinterpret_cast<const char *>(pixels.constScanLine(y)), qsizetype(pixels.width()) * bands);
    }
    VipsImage *copy = vips_image_new_from_memory_copy(packed.constData(), size_t(packed.size()), pixels.width(),
                                                      pixels.height(), bands, VIPS_FORMAT_UCHAR);
    if (copy) {
        copy->Type = VIPS_INTERPRETATION_sRGB;
    }
    return Image(copy);
}

Image inColourspace(const QImage &image, VipsInterpretation space)
{
    const Image in = vipsImage(image);
    VipsImage *out = nullptr;
    if (!in || vips_colourspace(in.get(), &out, space, nullptr)) {
        return nullptr;
    }
    return Image(out);
}

Image joined(const QList<QImage> &frames)
{
    std::vector<Image> owned;
    std::vector<VipsImage *> raw;
    for (const QImage &frame : frames) {
        owned.push_back(vipsImage(frame));
        raw.push_back(owned.back().get());
    }
    VipsImage *out = nullptr;
    if (raw.empty() || vips_arrayjoin(raw.data(), &out, int(raw.size()), "across", 1, nullptr)) {
        return nullptr;
    }
    vips_image_set_int(out, VIPS_META_PAGE_HEIGHT, frames.first().height());
    return Image(out);
}

template <class T>
void appendBig(QByteArray &out, T value)
{
    std::array<char, sizeof(T)> bytes{};
    qToBigEndian(value, bytes.data());
    out.append(bytes.data(), qsizetype(bytes.size()));
}

template <class T>
void appendLittle(QByteArray &out, T value)
{
    std::array<char, sizeof(T)> bytes{};
    qToLittleEndian(value, bytes.data());
    out.append(bytes.data(), qsizetype(bytes.size()));
}

QByteArray pngBytes(const QImage &image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return buffer.data();
}

QByteArray packBits(const QByteArray &row)
{
    QByteArray out;
    for (qsizetype at = 0; at < row.size();) {
        qsizetype run = 1;
        while (run < 128 && at + run < row.size() && row.at(at + run) == row.at(at)) {
            ++run;
        }
        if (run > 1) {
            out.append(char(1 - run)).append(row.at(at));
        } else {
            while (run < 128 && at + run < row.size() && row.at(at + run) != row.at(at + run - 1)) {
                ++run;
            }
            out.append(char(run - 1)).append(row.mid(at, run));
        }
        at += run;
    }
    return out;
}

// One channel of one row; blended with white where transparent, as such files store it.
QByteArray channelRow(const QImage &image, int y, int channel, int depth)
{
    QByteArray row;
    const uchar *pixel = image.constScanLine(y);
    for (int x = 0; x < image.width(); ++x, pixel += 4) {
        const int alpha = pixel[3];
        const int value = channel == 3 ? alpha : (pixel[channel] * alpha + 255 * (255 - alpha)) / 255;
        row.append(char(value));
        if (depth == 16) {
            row.append(char(value));
        }
    }
    return row;
}

} // namespace

bool SampleFormats::writeBytes(const QByteArray &bytes, const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

bool SampleFormats::writeJPEG(const QImage &image, const QString &path, const JPEGOptions &options)
{
    const Image out = vipsImage(image.convertToFormat(QImage::Format_RGB888));
    if (!out) {
        return false;
    }
    if (options.orientation != 1) {
        vips_image_set_int(out.get(), VIPS_META_ORIENTATION, options.orientation);
    }
    return vips_jpegsave(out.get(), QFile::encodeName(path).constData(), "Q", options.quality, "interlace",
                         gboolean(options.progressive), nullptr) == 0;
}

bool SampleFormats::writePNG(const QImage &image, const QString &path)
{
    const Image out = vipsImage(image);
    return out && vips_pngsave(out.get(), QFile::encodeName(path).constData(), "compression", 6, nullptr) == 0;
}

bool SampleFormats::writePNG16(const QImage &image, const QString &path)
{
    const Image out = inColourspace(image, VIPS_INTERPRETATION_RGB16);
    return out && vips_pngsave(out.get(), QFile::encodeName(path).constData(), nullptr) == 0;
}

bool SampleFormats::writeGrayPNG(const QImage &image, const QString &path)
{
    const Image out = inColourspace(image.convertToFormat(QImage::Format_RGB888), VIPS_INTERPRETATION_B_W);
    return out && vips_pngsave(out.get(), QFile::encodeName(path).constData(), nullptr) == 0;
}

bool SampleFormats::writeCMYKJPEG(const QImage &image, const QString &path)
{
    const Image out = inColourspace(image.convertToFormat(QImage::Format_RGB888), VIPS_INTERPRETATION_CMYK);
    return out && vips_jpegsave(out.get(), QFile::encodeName(path).constData(), "Q", 92, nullptr) == 0;
}

bool SampleFormats::writeCMYKTIFF(const QImage &image, const QString &path)
{
    const Image out = inColourspace(image.convertToFormat(QImage::Format_RGB888), VIPS_INTERPRETATION_CMYK);
    return out && vips_tiffsave(out.get(), QFile::encodeName(path).constData(), "compression",
                                VIPS_FOREIGN_TIFF_COMPRESSION_LZW, nullptr) == 0;
}

bool SampleFormats::writeTIFF(const QList<QImage> &pages, const QString &path)
{
    const Image out = joined(pages);
    return out && vips_tiffsave(out.get(), QFile::encodeName(path).constData(), "compression",
                                VIPS_FOREIGN_TIFF_COMPRESSION_LZW, nullptr) == 0;
}

bool SampleFormats::writeGIF(const QList<QImage> &frames, const QString &path)
{
    const Image out = joined(frames);
    if (!out) {
        return false;
    }
    std::vector<int> delays(size_t(frames.size()), 120);
    vips_image_set_array_int(out.get(), "delay", delays.data(), int(delays.size()));
    return vips_gifsave(out.get(), QFile::encodeName(path).constData(), nullptr) == 0;
}

bool SampleFormats::writeJPEG2000(const QImage &image, const QString &path)
{
    const Image out = vipsImage(image);
    return out && vips_jp2ksave(out.get(), QFile::encodeName(path).constData(), "Q", 60, nullptr) == 0;
}

bool SampleFormats::writeWebP(const QImage &image, const QString &path)
{
    const Image out = vipsImage(image);
    return out && vips_webpsave(out.get(), QFile::encodeName(path).constData(), "Q", 85, nullptr) == 0;
}

bool SampleFormats::writeAnimatedWebP(const QList<QImage> &frames, const QString &path)
{
    const Image out = joined(frames);
    if (!out) {
        return false;
    }
    std::vector<int> delays(size_t(frames.size()), 120);
    vips_image_set_array_int(out.get(), "delay", delays.data(), int(delays.size()));
    return vips_webpsave(out.get(), QFile::encodeName(path).constData(), "lossless", TRUE, nullptr) == 0;
}

bool SampleFormats::writeBMP(const QImage &image, const QString &path)
{
    return QImageWriter(path, "bmp").write(image.convertToFormat(QImage::Format_RGB32));
}

bool SampleFormats::writeHugePNG(int side, const QString &path)
{
    if (!startVips()) {
        return false;
    }
    VipsImage *black = nullptr;
    VipsImage *tinted = nullptr;
    double one[] = {1, 1, 1};
    double tint[] = {40, 110, 170};
    if (vips_black(&black, side, side, nullptr)) {
        return false;
    }
    const Image ground(black);
    if (vips_linear(ground.get(), &tinted, one, tint, 3, "uchar", TRUE, nullptr)) {
        return false;
    }
    const Image flat(tinted);
    flat->Type = VIPS_INTERPRETATION_sRGB;
    return vips_pngsave(flat.get(), QFile::encodeName(path).constData(), "compression", 1, nullptr) == 0;
}

QByteArray SampleFormats::tgaFile(const QImage &image, Packing packing)
{
    const bool alpha = image.hasAlphaChannel();
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
    QByteArray out(18, '\0');
    out[2] = packing == Packing::RunLength ? char(10) : char(2);
    qToLittleEndian(quint16(pixels.width()), out.data() + 12);
    qToLittleEndian(quint16(pixels.height()), out.data() + 14);
    out[16] = alpha ? char(32) : char(24);
    out[17] = alpha ? char(8) : char(0); // rows from the bottom
    for (int y = pixels.height() - 1; y >= 0; --y) {
        const uchar *row = pixels.constScanLine(y);
        const auto same = [row](int left, int right) {
            return std::equal(row + left * 4, row + left * 4 + 4, row + right * 4);
        };
        for (int x = 0; x < pixels.width();) {
            int run = 1;
            while (packing == Packing::RunLength && run < 128 && x + run < pixels.width() && same(x, x + run)) {
                ++run;
            }
            if (packing == Packing::RunLength) {
                out.append(char(128 | (run - 1)));
            }
            const uchar *pixel = row + x * 4;
            out.append(char(pixel[2])).append(char(pixel[1])).append(char(pixel[0]));
            if (alpha) {
                out.append(char(pixel[3]));
            }
            x += run;
        }
    }
    return out + QByteArray(8, '\0') + QByteArray("TRUEVISION-XFILE.\0", 18);
}

namespace {

// The layer and mask section with the picture as its only layer.
QByteArray psdLayers(const QImage &pixels, int depth)
{
    QByteArray info;
    appendBig(info, qint16(-1)); // one layer; the first extra channel of the merged picture is its transparency
    for (const int edge : {0, 0, pixels.height(), pixels.width()}) {
        appendBig(info, qint32(edge));
    }
    constexpr qint16 channelIDs[] = {0, 1, 2, -1};
    appendBig(info, quint16(4));
    const qsizetype channelBytes = qsizetype(pixels.width()) * pixels.height() * depth / 8;
    for (const qint16 id : channelIDs) {
        appendBig(info, id);
        appendBig(info, quint32(2 + channelBytes));
    }
    info += "8BIMnorm";
    info.append("\xff\0\0\0", 4); // opaque, visible
    const QByteArray name("\3art", 4);
    appendBig(info, quint32(8 + name.size()));
    info.append(8, '\0'); // no mask, no blending ranges
    info += name;
    for (int channel = 0; channel < 4; ++channel) {
        appendBig(info, quint16(0));
        for (int y = 0; y < pixels.height(); ++y) {
            info += channelRow(pixels, y, channel, depth);
        }
    }
    info.append(info.size() % 2, '\0');
    QByteArray section;
    appendBig(section, quint32(info.size()));
    section += info;
    appendBig(section, quint32(0)); // no global mask
    return section;
}

} // namespace

QByteArray SampleFormats::psdFile(const QImage &image, Packing packing, int depth)
{
    const int channels = image.hasAlphaChannel() ? 4 : 3;
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
    QByteArray out("8BPS\0\1\0\0\0\0\0\0", 12);
    appendBig(out, quint16(channels));
    appendBig(out, quint32(pixels.height()));
    appendBig(out, quint32(pixels.width()));
    appendBig(out, quint16(depth));
    appendBig(out, quint16(3)); // RGB
    appendBig(out, quint32(0)); // colour mode data
    appendBig(out, quint32(0)); // resources
    const QByteArray layers = channels == 4 ? psdLayers(pixels, depth) : QByteArray();
    appendBig(out, quint32(layers.size()));
    out += layers;
    appendBig(out, quint16(packing == Packing::RunLength ? 1 : 0));
    QByteArray lengths;
    QByteArray data;
    for (int channel = 0; channel < channels; ++channel) {
        for (int y = 0; y < pixels.height(); ++y) {
            const QByteArray row = channelRow(pixels, y, channel, depth);
            const QByteArray stored = packing == Packing::RunLength ? packBits(row) : row;
            appendBig(lengths, quint16(stored.size()));
            data += stored;
        }
    }
    return out + (packing == Packing::RunLength ? lengths : QByteArray()) + data;
}

QByteArray SampleFormats::icoFile(const QList<QImage> &images)
{
    QByteArray directory("\0\0\1\0", 4);
    QByteArray data;
    appendLittle(directory, quint16(images.size()));
    const qsizetype start = 6 + 16 * images.size();
    for (const QImage &image : images) {
        const QByteArray png = pngBytes(image);
        directory.append(char(image.width() & 255)).append(char(image.height() & 255)).append("\0\0", 2);
        appendLittle(directory, quint16(1));
        appendLittle(directory, quint16(32));
        appendLittle(directory, quint32(png.size()));
        appendLittle(directory, quint32(start + data.size()));
        data += png;
    }
    return directory + data;
}

QByteArray SampleFormats::icnsFile(const QList<QImage> &images)
{
    QByteArray body;
    for (const QImage &image : images) {
        const QByteArray png = pngBytes(image);
        body += image.width() == 128 ? "ic07" : (image.width() == 256 ? "ic08" : "ic09");
        appendBig(body, quint32(png.size() + 8));
        body += png;
    }
    QByteArray out("icns");
    appendBig(out, quint32(body.size() + 8));
    return out + body;
}

QByteArray SampleFormats::pdfFile(QSize size, const QByteArray &content)
{
    const QByteArray box = "[0 0 " + QByteArray::number(size.width()) + ' ' + QByteArray::number(size.height()) + ']';
    const QList<QByteArray> objects{"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                    "<</Type/Page/Parent 2 0 R/MediaBox" + box + "/Contents 4 0 R/Resources<<>>>>",
                                    "<</Length " + QByteArray::number(content.size()) + ">>stream\n" + content +
                                        "\nendstream"};
    QByteArray out("%PDF-1.5\n");
    QByteArray table("xref\n0 5\n0000000000 65535 f \n");
    for (qsizetype i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(out.size()).rightJustified(10, '0') + " 00000 n \n";
        out += QByteArray::number(i + 1) + " 0 obj\n" + objects.at(i) + "\nendobj\n";
    }
    const QByteArray start = QByteArray::number(out.size());
    return out + table + "trailer<</Size 5/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
}

QByteArray SampleFormats::epsFile(QSize size, const QByteArray &content)
{
    return "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 " + QByteArray::number(size.width()) + ' ' +
           QByteArray::number(size.height()) + "\n%%EndComments\n" + content + "\nshowpage\n%%EOF\n";
}

QByteArray SampleFormats::lyingPNG(quint32 width, quint32 height)
{
    QImage one(1, 1, QImage::Format_RGB888);
    one.fill(Qt::white);
    QByteArray bytes = pngBytes(one);
    qToBigEndian(width, bytes.data() + 16);
    qToBigEndian(height, bytes.data() + 20);
    quint32 check = 0xffffffffU; // of the chunk's type and content
    for (const char byte : bytes.mid(12, 17)) {
        check ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit) {
            check = (check >> 1) ^ ((check & 1U) ? 0xedb88320U : 0U);
        }
    }
    qToBigEndian(~check, bytes.data() + 29);
    return bytes;
}

bool SampleFormats::setKeywords(const QString &path, const QStringList &keywords)
{
    try {
        const auto image = Exiv2::ImageFactory::open(QFile::encodeName(path).toStdString());
        image->readMetadata();
        for (const QString &keyword : keywords) {
            Exiv2::StringValue value;
            value.read(keyword.toStdString());
            image->iptcData().add(Exiv2::IptcKey("Iptc.Application2.Keywords"), &value);
        }
        image->writeMetadata();
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

bool SampleFormats::writeAcorn(const QByteArray &composite, const QString &path)
{
    QFile::remove(path);
    sqlite3 *database = nullptr;
    sqlite3_stmt *statement = nullptr;
    const bool made =
        sqlite3_open(QFile::encodeName(path).constData(), &database) == SQLITE_OK &&
        sqlite3_exec(database, "create table image_attributes (name text, value blob)", nullptr, nullptr, nullptr) ==
            SQLITE_OK &&
        sqlite3_prepare_v2(database, "insert into image_attributes values ('composite', ?)", -1, &statement, nullptr) ==
            SQLITE_OK &&
        sqlite3_bind_blob(statement, 1, composite.constData(), int(composite.size()), nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return made;
}
