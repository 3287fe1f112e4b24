#include "Tools/samples/SampleFormats.h"

#include <QFile>
#include <QtEndian>

#include <vips/vips.h>

#include <memory>

// The encoder of HEIC keeps some memory when it ends. A sanitized program asks this.
extern "C" const char *__lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char *__lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libx265\n";
}

namespace {

struct Unref
{
    void operator()(VipsImage *image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Unref>;

// A copy with the samples that the options ask for.
Image imageFor(const QImage &image, const SampleFormats::ModernOptions &options)
{
    static const bool isStarted = VIPS_INIT("zelto_samples") == 0;
    if (!isStarted) {
        return nullptr;
    }
    vips_operation_block_set("VipsForeignSaveJxl", FALSE); // the decoders' process may have forbidden it
    const bool hasAlpha = image.hasAlphaChannel();
    const bool isDeep = options.bits > 8;
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA64);
    const int bands = hasAlpha ? 4 : 3;
    QList<quint16> deep;
    QByteArray plain;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *samples = reinterpret_cast<const quint16 *>(pixels.constScanLine(y));
        for (int i = 0; i < pixels.width() * 4; ++i) {
            if (i % 4 < bands) {
                isDeep ? deep.append(samples[i]) : void(plain.append(char(samples[i] >> 8)));
            }
        }
    }
    const void *data = isDeep ? static_cast<const void *>(deep.constData()) : plain.constData();
    const size_t bytes = isDeep ? size_t(deep.size()) * 2 : size_t(plain.size());
    Image copy(vips_image_new_from_memory_copy(data, bytes, pixels.width(), pixels.height(), bands,
                                               isDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR));
    if (copy) {
        copy->Type = isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
        const auto attach = [&copy](const char *name, const QByteArray &content) {
            if (!content.isEmpty()) {
                vips_image_set_blob_copy(copy.get(), name, content.constData(), size_t(content.size()));
            }
        };
        attach(VIPS_META_ICC_NAME, options.profile);
        attach(VIPS_META_EXIF_NAME, options.metadata);
    }
    return copy;
}

bool writeHEIF(const QImage &image, const QString &path, const SampleFormats::ModernOptions &options,
               VipsForeignHeifCompression compression)
{
    const Image out = imageFor(image, options);
    return out && vips_heifsave(out.get(), QFile::encodeName(path).constData(), "compression", compression, "Q", 85,
                                "bitdepth", options.bits, "effort", 0, nullptr) == 0;
}

struct Box
{
    qsizetype start = 0;
    qsizetype size = 0;

    qsizetype end() const { return start + size; }
};

// The first box of that type in a run of boxes.
Box boxIn(const QByteArray &file, qsizetype from, qsizetype to, QByteArrayView type)
{
    while (from + 8 <= to) {
        const Box box{from, qsizetype(qFromBigEndian<quint32>(file.constData() + from))};
        if (QByteArrayView(file).sliced(from + 4, 4) == type || box.size < 8) {
            return box;
        }
        from = box.end();
    }
    return {};
}

void grow(QByteArray &file, const Box &box, int by)
{
    qToBigEndian(quint32(box.size + by), file.data() + box.start);
}

} // namespace

bool SampleFormats::writeHEIC(const QImage &image, const QString &path, const ModernOptions &options)
{
    return writeHEIF(image, path, options, VIPS_FOREIGN_HEIF_COMPRESSION_HEVC);
}

bool SampleFormats::writeAVIF(const QImage &image, const QString &path, const ModernOptions &options)
{
    return writeHEIF(image, path, options, VIPS_FOREIGN_HEIF_COMPRESSION_AV1);
}

bool SampleFormats::writeJPEGXL(const QImage &image, const QString &path, const ModernOptions &options)
{
    const Image out = imageFor(image, options);
    return out &&
           vips_jxlsave(out.get(), QFile::encodeName(path).constData(), "distance", 0.5, "effort", 3, nullptr) == 0;
}

// A property of the turning more, which the first picture has: all that lies behind moves.
QByteArray SampleFormats::turnedHEIF(QByteArray file, int quarters)
{
    constexpr int turnBytes = 9;
    constexpr int added = turnBytes + 1;
    const Box meta = boxIn(file, 0, file.size(), "meta");
    const Box places = boxIn(file, meta.start + 12, meta.end(), "iloc");
    const Box properties = boxIn(file, meta.start + 12, meta.end(), "iprp");
    const Box container = boxIn(file, properties.start + 8, properties.end(), "ipco");
    const Box uses = boxIn(file, properties.start + 8, properties.end(), "ipma");
    if (!meta.size || !places.size || !container.size || !uses.size) {
        return {};
    }
    char index = 1;
    for (qsizetype at = container.start + 8; at + 8 <= container.end(); ++index) {
        at += boxIn(file, at, container.end(), QByteArrayView(file).sliced(at + 4, 4)).size;
    }
    constexpr qsizetype firstPlace = 16; // number, two bytes, an offset of four, and how many parts: one
    constexpr qsizetype placeBytes = 18;
    for (qsizetype at = places.start + firstPlace; at + placeBytes <= places.end(); at += placeBytes) {
        char *offset = file.data() + at + 4;
        qToBigEndian(qFromBigEndian<quint32>(offset) + added, offset);
    }
    const qsizetype count = uses.start + 18;
    grow(file, meta, added);
    grow(file, properties, added);
    grow(file, container, turnBytes);
    grow(file, uses, 1);
    file[count] = char(file.at(count) + 1);
    file.insert(count + file.at(count), char(0x80 | index));
    return file.insert(container.end(), QByteArray("\0\0\0\x09irot", 8).append(char(quarters)));
}
