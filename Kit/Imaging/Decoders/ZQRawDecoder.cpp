#include "Kit/Foundation/ZQLog.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"

#include <libraw/libraw.h>

#include <algorithm>

// Camera raw. A preview the camera put into the file is used when it is large enough; else the sensor's data is
// developed.

namespace {

struct FlipOrientation
{
    int flip; // LibRaw's: 0, 3 half turn, 5 quarter turn left, 6 quarter turn right
    int orientation;
};

int orientationOfFlip(int flip)
{
    for (const FlipOrientation row : {FlipOrientation{3, 3}, FlipOrientation{5, 8}, FlipOrientation{6, 6}}) {
        if (row.flip == flip) {
            return row.orientation;
        }
    }
    return 1;
}

struct MemoryImageDelete
{
    void operator()(libraw_processed_image_t *image) const { LibRaw::dcraw_clear_mem(image); }
};
using MemoryImage = std::unique_ptr<libraw_processed_image_t, MemoryImageDelete>;

// The library reads from the mapped file, or from `padded`, as long as it lives.
struct RawFile
{
    explicit RawFile(const ZQSourceFile &source) : bytes(source), library(LIBRAW_OPIONS_NO_DATAERR_CALLBACK)
    {
        library.set_dataerror_handler([](void *flag, const char *, const auto) { *static_cast<bool *>(flag) = true; },
                                      &hasDataError);
    }

    class Library : public LibRaw
    {
    public:
        using LibRaw::LibRaw;
        qint64 dataOffset() const { return qint64(libraw_internal_data.unpacker_data.data_offset); }
    };

    ZQSourceFile::Bytes bytes;
    QByteArray padded;
    bool hasDataError = false; // while unpacking: samples are missing
    Library library;
};

std::unique_ptr<RawFile> openRaw(const ZQSourceFile &source, ZQError *error)
{
    auto raw = std::make_unique<RawFile>(source);
    const int result =
        raw->bytes.data() ? raw->library.open_buffer(raw->bytes.data(), raw->bytes.size()) : int(LIBRAW_IO_ERROR);
    if (result != LIBRAW_SUCCESS) {
        qCDebug(zqLogImaging, "%s: %s", qUtf8Printable(source.name()), libraw_strerror(result));
        zqSetError(error, zqDamagedError(source.name()));
        return nullptr;
    }
    return raw;
}

// The same with zeros where the sensor's data is missing, since the library unpacks nothing of a file that ends too
// early. Null when too little of it is there.
std::unique_ptr<RawFile> openPadded(const ZQSourceFile &source, qint64 dataOffset, qint64 samples)
{
    constexpr qint64 mostBytes = qint64(1) << 30;
    constexpr qint64 sampleBytes = 2;
    const qint64 wanted = samples * sampleBytes;
    const qint64 total = dataOffset + wanted;
    if (!zqIsPartOfPicture(source.size() - dataOffset, wanted) || total <= source.size() || total > mostBytes) {
        return nullptr;
    }
    auto raw = std::make_unique<RawFile>(source);
    raw->padded = QByteArray(total, '\0');
    std::copy_n(raw->bytes.data(), raw->bytes.size(), raw->padded.data());
    raw->hasDataError = true;
    const int result = raw->library.open_buffer(raw->padded.data(), size_t(raw->padded.size()));
    return result == LIBRAW_SUCCESS ? std::move(raw) : nullptr;
}

std::optional<ZQImageProperties> rawProperties(const ZQSourceFile &source, ZQError *error)
{
    ZQError failure;
    const std::unique_ptr<RawFile> raw = openRaw(source, &failure);
    if (!raw) {
        // Some of these extensions also name plain TIFF files.
        const auto plain = zqVipsDecoder.properties(source, nullptr);
        if (!plain) {
            zqSetError(error, failure);
        }
        return plain;
    }
    ZQImageProperties out;
    out.pixelWidth = raw->library.imgdata.sizes.width;
    out.pixelHeight = raw->library.imgdata.sizes.height;
    out.orientation = orientationOfFlip(raw->library.imgdata.sizes.flip);
    out.bitsPerSample = 16;
    out.colorModel = QStringLiteral("RGB");
    return out;
}

ZQBitmap embeddedPreview(LibRaw &raw, QSize box)
{
    const int longest = qMax(raw.imgdata.thumbnail.twidth, raw.imgdata.thumbnail.theight);
    if (longest < qMax(box.width(), box.height()) || raw.unpack_thumb() != LIBRAW_SUCCESS ||
        raw.imgdata.thumbnail.tformat != LIBRAW_THUMBNAIL_JPEG) {
        return {};
    }
    const QByteArray bytes =
        QByteArray::fromRawData(raw.imgdata.thumbnail.thumb, qsizetype(raw.imgdata.thumbnail.tlength));
    return zqDecodeBytes(bytes, box, orientationOfFlip(raw.imgdata.sizes.flip));
}

ZQBitmap developed(LibRaw &raw, bool halfSize)
{
    raw.imgdata.params.half_size = halfSize;
    raw.imgdata.params.use_camera_wb = 1;
    raw.imgdata.params.output_bps = 8;
    raw.imgdata.params.output_color = 1; // sRGB, with its own curve
    raw.imgdata.params.gamm[0] = 1 / 2.4;
    raw.imgdata.params.gamm[1] = 12.92;
    if (raw.unpack() != LIBRAW_SUCCESS || raw.dcraw_process() != LIBRAW_SUCCESS) {
        return {};
    }
    int result = 0;
    const MemoryImage image(raw.dcraw_make_mem_image(&result));
    if (!image || image->type != LIBRAW_IMAGE_BITMAP || image->bits != 8 ||
        (image->colors != 3 && image->colors != 1)) {
        return {};
    }
    const auto format = image->colors == 3 ? QImage::Format_RGB888 : QImage::Format_Grayscale8;
    const QImage pixels(image->data, image->width, image->height, qsizetype(image->width) * image->colors, format);
    return ZQBitmap(pixels.convertToFormat(QImage::Format_RGBA8888));
}

ZQBitmap decodeRaw(const ZQDecodeRequest &request, ZQError *error)
{
    if (request.frame > 0) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    ZQError failure;
    const std::unique_ptr<RawFile> raw = openRaw(request.file, &failure);
    if (!raw) {
        return zqVipsDecoder.decode(request, error);
    }
    const qint64 width = raw->library.imgdata.sizes.raw_width;
    const qint64 height = raw->library.imgdata.sizes.raw_height;
    const qint64 dataOffset = raw->library.dataOffset();
    if (!zqCheckSize(request.file.name(), width, height, zqMaximumPixelsInMemory, error)) {
        return {};
    }
    ZQBitmap bitmap = request.isFullSize() ? ZQBitmap() : embeddedPreview(raw->library, request.box);
    if (bitmap.isNull()) {
        const bool halfIsEnough =
            !request.isFullSize() && qMax(width, height) >= 2 * qMax(request.box.width(), request.box.height());
        bitmap = developed(raw->library, halfIsEnough);
        bitmap.setIncomplete(raw->hasDataError);
        if (const auto padded = bitmap.isNull() ? openPadded(request.file, dataOffset, width * height) : nullptr) {
            bitmap = developed(padded->library, halfIsEnough);
            bitmap.setIncomplete(true);
        }
    }
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
    }
    return request.isFullSize() ? bitmap : bitmap.scaledToFit(request.box);
}

} // namespace

const ZQDecoder zqRawDecoder{rawProperties, decodeRaw};
