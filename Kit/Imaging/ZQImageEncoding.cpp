#include "Kit/Imaging/ZQImageEncoding.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQFileTarget.h"
#include "Kit/Imaging/ZQImagingError.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

#include <QtEndian>

#include <array>
#include <cstring>

namespace {

using Quality = std::optional<int>;

// What is not given is left to the encoder.
template <class Save, class... Arguments>
int saveWith(Save save, VipsImage *image, VipsTarget *target, Quality quality, Arguments... arguments)
{
    return quality ? save(image, target, "strip", TRUE, "Q", qBound(1, *quality, 100), arguments..., nullptr)
                   : save(image, target, "strip", TRUE, arguments..., nullptr);
}

int saveJPEG(VipsImage *image, VipsTarget *target, Quality quality)
{
    return saveWith(vips_jpegsave_target, image, target, quality);
}

int savePNG(VipsImage *image, VipsTarget *target, Quality)
{
    return saveWith(vips_pngsave_target, image, target, {});
}

int saveTIFF(VipsImage *image, VipsTarget *target, Quality)
{
    return saveWith(vips_tiffsave_target, image, target, {});
}

// Through memory, for encoders that do not stop when writing fails: one tries again for minutes, one for ever.
template <class Save, class... Arguments>
int saveAtOnce(Save save, VipsImage *image, VipsTarget *target, Arguments... arguments)
{
    void *bytes = nullptr;
    size_t size = 0;
    if (save(image, &bytes, &size, "strip", TRUE, arguments..., nullptr) != 0) {
        return -1;
    }
    const std::unique_ptr<void, decltype(&g_free)> owned(bytes, g_free);
    return vips_target_write(target, bytes, size) == 0 ? vips_target_end(target) : -1;
}

int saveGIF(VipsImage *image, VipsTarget *target, Quality)
{
    return saveAtOnce(vips_gifsave_buffer, image, target);
}

int saveJPEG2000(VipsImage *image, VipsTarget *target, Quality quality)
{
    return quality ? saveAtOnce(vips_jp2ksave_buffer, image, target, "Q", qBound(1, *quality, 100))
                   : saveAtOnce(vips_jp2ksave_buffer, image, target);
}

int saveWebP(VipsImage *image, VipsTarget *target, Quality quality)
{
    return saveWith(vips_webpsave_target, image, target, quality);
}

int saveAVIF(VipsImage *image, VipsTarget *target, Quality quality)
{
    return saveWith(vips_heifsave_target, image, target, quality, "compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1);
}

constexpr quint32 headerBytesOfBMP = 14 + 40;

QByteArray headerOfBMP(VipsImage *image, quint32 rowBytes)
{
    const quint32 pixelBytes = rowBytes * quint32(image->Ysize);
    QByteArray header(headerBytesOfBMP, '\0');
    char *const bytes = header.data();
    std::memcpy(bytes, "BM", 2);
    qToLittleEndian<quint32>(headerBytesOfBMP + pixelBytes, bytes + 2);
    qToLittleEndian<quint32>(headerBytesOfBMP, bytes + 10);
    qToLittleEndian<quint32>(40, bytes + 14); // the rest of the header
    qToLittleEndian<qint32>(image->Xsize, bytes + 18);
    qToLittleEndian<qint32>(image->Ysize, bytes + 22);
    qToLittleEndian<quint16>(1, bytes + 26);  // planes
    qToLittleEndian<quint16>(24, bytes + 28); // bits a pixel
    qToLittleEndian<quint32>(pixelBytes, bytes + 34);
    constexpr quint32 dotsPerMetre = 2835;
    qToLittleEndian<quint32>(dotsPerMetre, bytes + 38);
    qToLittleEndian<quint32>(dotsPerMetre, bytes + 42);
    return header;
}

// Its rows begin with the lowest one, so all have to be there first.
int saveBMP(VipsImage *image, VipsTarget *target, Quality)
{
    const ZQVipsImage memory(vips_image_copy_memory(image));
    if (!memory) {
        return -1;
    }
    const quint32 rowBytes = (quint32(memory->Xsize) * 3 + 3) / 4 * 4;
    const QByteArray header = headerOfBMP(memory.get(), rowBytes);
    int failed = vips_target_write(target, header.constData(), size_t(header.size()));
    QByteArray row(rowBytes, '\0');
    for (int y = memory->Ysize - 1; y >= 0 && failed == 0; --y) {
        const VipsPel *in = VIPS_IMAGE_ADDR(memory.get(), 0, y);
        char *out = row.data();
        for (const VipsPel *end = in + qsizetype(memory->Xsize) * 3; in < end; in += 3) {
            *out++ = char(in[2]);
            *out++ = char(in[1]);
            *out++ = char(in[0]);
        }
        failed = vips_target_write(target, row.constData(), size_t(row.size()));
    }
    return failed == 0 ? vips_target_end(target) : failed;
}

struct FileType
{
    int code;
    const char *name;
    const char *extension;
    bool namesItself;
    bool hasQuality;
    int longestSide;
    bool hasAlpha;
    bool keepsDepth;
    int (*save)(VipsImage *image, VipsTarget *target, Quality quality);
};

constexpr int anySide = VIPS_MAX_COORD;

constexpr std::array fileTypes{
    FileType{PNG, "PNG", "png", true, false, anySide, true, true, savePNG},
    FileType{JPEG, "JPEG", "jpg", true, false, 65535, false, false, saveJPEG},
    FileType{WebP, "WebP", "webp", true, true, 16383, true, false, saveWebP},
    FileType{AVIF, "AVIF", "avif", true, true, 16384, true, false, saveAVIF},
    FileType{TIFFWithExtension, "TIFF", "tif", true, false, anySide, true, true, saveTIFF},
    FileType{TIFF, "TIFF", "tif", false, false, anySide, true, true, saveTIFF},
    FileType{BMP, "BMP", "bmp", false, false, anySide, false, false, saveBMP},
    FileType{GIF, "GIF", "gif", false, false, 65535, true, false, saveGIF},
    FileType{JPEG2000, "JPEG 2000", "jp2", false, false, anySide, true, false, saveJPEG2000},
};

const FileType *fileTypeOf(int code)
{
    for (const FileType &type : fileTypes) {
        if (type.code == code) {
            return &type;
        }
    }
    return nullptr;
}

bool fail(ZQError *error, ZQImagingErrorCode code, const QString &reason)
{
    zqSetError(error, zqExportError(code, {}, reason));
    return false;
}

bool putOnWhite(ZQVipsImage &image)
{
    VipsArrayDouble *const white = vips_array_double_newv(3, 255.0, 255.0, 255.0);
    const bool done = zqVipsStep(image, vips_flatten, "background", white);
    vips_area_unref(VIPS_AREA(white));
    return done;
}

// The pixels, which `keeper` holds.
ZQVipsImage imageOf(const ZQBitmap &bitmap, QImage &keeper)
{
    const qsizetype rowBytes = qsizetype(bitmap.width()) * 4;
    keeper = bitmap.image();
    if (keeper.bytesPerLine() != rowBytes) {
        keeper = keeper.copy(); // without gaps between rows
    }
    ZQVipsImage image(vips_image_new_from_memory(keeper.constBits(), size_t(rowBytes) * size_t(bitmap.height()),
                                                 bitmap.width(), bitmap.height(), 4, VIPS_FORMAT_UCHAR));
    const bool made = image && zqVipsStep(image, vips_copy, "interpretation", VIPS_INTERPRETATION_sRGB) &&
                      (bitmap.hasAlpha() || zqVipsStep(image, vips_extract_band, 0, "n", 3));
    return made ? std::move(image) : nullptr;
}

} // namespace

QList<int> zqFileTypes()
{
    QList<int> codes;
    for (const FileType &type : fileTypes) {
        codes.append(type.code);
    }
    return codes;
}

bool zqCanEncode(int fileType)
{
    return fileTypeOf(fileType) != nullptr;
}

QString zqNameOfFileType(int fileType)
{
    const FileType *const type = fileTypeOf(fileType);
    return type ? QString::fromLatin1(type->name) : QString();
}

QString zqExtensionOfFileType(int fileType)
{
    const FileType *const type = fileTypeOf(fileType);
    return type ? QString::fromLatin1(type->extension) : QString();
}

bool zqFileTypeNamesItself(int fileType)
{
    const FileType *const type = fileTypeOf(fileType);
    return type && type->namesItself;
}

bool zqFileTypeKeepsDepth(int fileType)
{
    const FileType *const type = fileTypeOf(fileType);
    return type && type->keepsDepth;
}

bool zqFileTypeHasQuality(int fileType)
{
    const FileType *const type = fileTypeOf(fileType);
    return type && type->hasQuality;
}

// Colours count by how much of them is seen, or what is transparent would shine through at edges.
bool zqScaleVips(ZQVipsImage &image, QSize size)
{
    const double across = double(size.width()) / image->Xsize;
    const double down = double(size.height()) / image->Ysize;
    const VipsBandFormat format = image->BandFmt;
    const bool hasAlpha = vips_image_hasalpha(image.get());
    return (!hasAlpha || zqVipsStep(image, vips_premultiply)) &&
           zqVipsStep(image, vips_resize, across, "vscale", down) &&
           (!hasAlpha || zqVipsStep(image, vips_unpremultiply)) && zqVipsStep(image, vips_cast, format);
}

bool zqCheckEncoding(const ZQExportEncoding &encoding, QSize size, ZQError *error)
{
    constexpr qint64 mostPixels = qint64(1) << 29; // 2 GiB in memory
    const FileType *const type = fileTypeOf(encoding.fileType);
    if (!type) {
        return fail(error, ZQImagingErrorCode::UnknownFormat,
                    zqFormat(zqLocalized("There is no format with the number %d."), {encoding.fileType}));
    }
    if (qMax(size.width(), size.height()) > type->longestSide) {
        return fail(error, ZQImagingErrorCode::TooBig,
                    zqFormat(zqLocalized("It would have %d x %d pixels, and this format has at most %d a side. Choose "
                                         "a smaller size or another format."),
                             {size.width(), size.height(), type->longestSide}));
    }
    if (qint64(size.width()) * size.height() > mostPixels) {
        return fail(error, ZQImagingErrorCode::TooBig,
                    zqFormat(zqLocalized("It would have %d x %d pixels, which is too big. Choose a smaller size."),
                             {size.width(), size.height()}));
    }
    return true;
}

bool zqEncodeImage(VipsImage *image, const ZQExportEncoding &encoding, int output, ZQError *error)
{
    zqEnterVips();
    const FileType *const type = fileTypeOf(encoding.fileType);
    if (!type || !zqCheckEncoding(encoding, {image->Xsize, image->Ysize}, error)) {
        return false;
    }
    g_object_ref(image);
    ZQVipsImage ready(image);
    ZQFileTarget target(output);
    const bool encoded = target.systemError() == 0 &&
                         (type->hasAlpha || !vips_image_hasalpha(image) || putOnWhite(ready)) &&
                         type->save(ready.get(), target.get(), encoding.quality) == 0;
    if (!encoded) {
        zqLogVipsError({});
    }
    if (target.systemError() != 0) {
        zqSetError(error, ZQError::posix(target.systemError(), {}));
        return false;
    }
    if (!encoded) {
        return zqTakeVipsMemoryShortage()
                   ? fail(error, ZQImagingErrorCode::TooMuchMemory,
                          zqLocalized("There is not enough memory to convert it."))
                   : fail(error, ZQImagingErrorCode::Damaged, zqLocalized("It can't be encoded."));
    }
    return true;
}

std::optional<ZQExportedImage> zqEncodeBitmap(const ZQBitmap &bitmap, const ZQExportEncoding &encoding, int output,
                                              ZQError *error)
{
    zqEnterVips();
    const std::optional<QSize> wanted = zqExportPixelSize(bitmap.size(), encoding.size);
    const QSize size = wanted.value_or(bitmap.size());
    if (!zqCheckEncoding(encoding, size, error)) {
        return std::nullopt;
    }
    QImage keeper;
    ZQVipsImage image = imageOf(bitmap, keeper);
    if (!image || (size != bitmap.size() && !zqScaleVips(image, size))) {
        zqLogVipsError({});
        fail(error, ZQImagingErrorCode::TooMuchMemory, zqLocalized("There is not enough memory to convert it."));
        return std::nullopt;
    }
    if (!zqEncodeImage(image.get(), encoding, output, error)) {
        return std::nullopt;
    }
    return ZQExportedImage{.pixelSize = size, .isIncomplete = bitmap.isIncomplete()};
}
