#include "Kit/Imaging/Decoders/ZQFrameWalk.h"
#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/Decoders/ZQWholePNG.h"
#include "Kit/Imaging/ZQImageEncoding.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

#include "Kit/Foundation/ZQLog.h"

#include <QFile>

namespace {

constexpr int unlimitedSide = 10'000'000;

// The loader's options as text: the thumbnail call of some library versions passes on nothing else.
QByteArray loadOptions(int frame, VipsFailOn failOn)
{
    return "[fail_on=" + QByteArray(failOn == VIPS_FAIL_ON_NONE ? "none" : "truncated") +
           (frame > 0 ? ",page=" + QByteArray::number(frame) : QByteArray()) + ']';
}

ZQVipsImage openHeader(VipsSource *source, int frame = 0, VipsFailOn failOn = VIPS_FAIL_ON_NONE)
{
    return ZQVipsImage(vips_image_new_from_source(source, loadOptions(frame, failOn).constData(), "access",
                                                  VIPS_ACCESS_SEQUENTIAL, nullptr));
}

int integerField(VipsImage *image, const char *name, int otherwise)
{
    int value = otherwise;
    return vips_image_get_typeof(image, name) != 0 && vips_image_get_int(image, name, &value) == 0 ? value : otherwise;
}

QByteArray loaderOf(VipsImage *image)
{
    const char *loader = nullptr;
    const bool known = vips_image_get_typeof(image, VIPS_META_LOADER) != 0 &&
                       vips_image_get_string(image, VIPS_META_LOADER, &loader) == 0;
    return known ? QByteArray(loader) : QByteArray();
}

// Codecs that build the whole picture before the first row comes out.
bool needsWholePicture(VipsImage *image)
{
    const QByteArray name = loaderOf(image);
    if (name.startsWith("jpegload")) {
        return integerField(image, "jpeg-multiscan", 0) != 0;
    }
    if (name.startsWith("pngload")) {
        return vips_image_get_typeof(image, "interlaced") != 0;
    }
    return !name.startsWith("tiffload");
}

bool checkSize(const ZQDecodeRequest &request, VipsImage *image, ZQError *error)
{
    const bool inMemory = request.isFullSize() || needsWholePicture(image);
    const qint64 limit = inMemory ? zqMaximumPixelsInMemory : ZQImageSource::maximumPixels;
    return zqCheckSize(request.file.name(), image->Xsize, image->Ysize, limit, error);
}

enum class Profile { Apply, Ignore };

bool isJPEG2000(VipsImage *image)
{
    return loaderOf(image).startsWith("jp2kload");
}

// JPEG 2000 keeps smaller sizes of itself as "pages": the smallest one that is large enough.
int levelFor(VipsImage *image, const ZQDecodeRequest &request)
{
    const int levels = vips_image_get_n_pages(image);
    const QSize fitted = zqFittedSize({image->Xsize, image->Ysize}, request);
    int level = 0;
    while (level + 1 < levels && image->Xsize >> (level + 1) >= fitted.width() &&
           image->Ysize >> (level + 1) >= fitted.height()) {
        ++level;
    }
    return level;
}

// How the pixels are to come out.
struct Pass
{
    VipsFailOn failOn;
    Profile profile;
    VipsSize scaling = VIPS_SIZE_DOWN;
};

ZQVipsImage thumbnailOfImage(VipsImage *image, const ZQDecodeRequest &request, const Pass &pass)
{
    const int width = request.isFullSize() ? unlimitedSide : request.box.width();
    const int height = request.isFullSize() ? unlimitedSide : request.box.height();
    const char *profile = pass.profile == Profile::Apply ? "srgb" : nullptr;
    VipsImage *out = nullptr;
    const int failed = vips_thumbnail_image(image, &out, width, "height", height, "size", pass.scaling,
                                            profile ? "export_profile" : nullptr, profile, nullptr);
    ZQVipsImage owned(out);
    return failed ? nullptr : std::move(owned);
}

ZQVipsImage thumbnailOfJPEG2000(VipsSource *source, int level, const ZQDecodeRequest &request, const Pass &pass)
{
    const ZQVipsImage image = openHeader(source, level, pass.failOn);
    return image ? thumbnailOfImage(image.get(), request, pass) : nullptr;
}

ZQVipsImage thumbnail(VipsSource *source, const ZQDecodeRequest &request, const Pass &pass)
{
    const int width = request.isFullSize() ? unlimitedSide : request.box.width();
    const int height = request.isFullSize() ? unlimitedSide : request.box.height();
    const QByteArray options = loadOptions(request.frame, pass.failOn);
    const char *profile = pass.profile == Profile::Apply ? "srgb" : nullptr;
    VipsImage *out = nullptr;
    const int failed =
        vips_thumbnail_source(source, &out, width, "height", height, "size", pass.scaling, "option_string",
                              options.constData(), profile ? "export_profile" : nullptr, profile, nullptr);
    ZQVipsImage owned(out);
    return failed ? nullptr : std::move(owned);
}

// A progressive JPEG holds the whole picture, coarsely, in its first scan: whether a part of that is there.
bool hasPartOfScan(const ZQSourceFile &source, VipsImage *header)
{
    constexpr qint64 mostHeader = 1 << 20;
    constexpr qint64 leastBytes = 16;
    QFile file;
    const QByteArray bytes = source.openIn(file) ? file.read(mostHeader) : QByteArray();
    const qsizetype scan = bytes.indexOf("\xff\xda");
    const qint64 blocks = qint64(header->Xsize / 8 + 1) * (header->Ysize / 8 + 1);
    // A block takes a bit at least.
    return scan >= 0 && zqIsPartOfPicture((file.size() - scan - leastBytes) * 8, blocks);
}

// Whether the first rows come out before the file ends or its data makes no sense.
bool areFirstRowsReadable(const ZQDecodeRequest &request)
{
    const ZQVipsSource source = zqVipsSource(request.file);
    const ZQVipsImage image = source ? openHeader(source.get(), request.frame, VIPS_FAIL_ON_TRUNCATED) : nullptr;
    VipsImage *rows = nullptr;
    if (!image || vips_extract_area(image.get(), &rows, 0, 0, image->Xsize, image->Ysize / 100 + 1, nullptr)) {
        return false;
    }
    const ZQVipsImage owned(rows);
    double average = 0;
    return vips_avg(rows, &average, nullptr) == 0;
}

bool isPartReadable(const ZQDecodeRequest &request, VipsImage *header)
{
    const bool isProgressive = integerField(header, "jpeg-multiscan", 0) != 0;
    const bool readable = isProgressive ? hasPartOfScan(request.file, header) : areFirstRowsReadable(request);
    zqLogVipsError(request.file.name());
    return readable;
}

// A truncated PNG with zeros after its end: the codec reads in blocks and gives up one that is not whole, which is all
// there is of a small file.
ZQSourceFile withRoomAfterEnd(const ZQSourceFile &file, VipsImage *header)
{
    constexpr qsizetype blockBytes = 64 * 1024;
    QFile device;
    if (!loaderOf(header).startsWith("pngload") || !file.openIn(device)) {
        return file;
    }
    return ZQSourceFile::ofBytes(device.readAll() + QByteArray(blockBytes, '\0'), file.name());
}

// All pixels, which it takes less time to decode at once, with the header's profile. Null for a file that goes the long
// way.
ZQVipsImage wholePNG(VipsImage *header, const ZQSourceFile &file)
{
    auto png = loaderOf(header).startsWith("pngload") ? ZQWholePNG::inflated(file, true) : std::nullopt;
    if (!png) {
        return nullptr;
    }
    const QSize size = png->size();
    for (int y = 0; y < size.height(); ++y) {
        png->nextRow();
    }
    const size_t bytes = size_t(size.width()) * size_t(size.height()) * size_t(png->channels());
    const ZQVipsImage raw(vips_image_new_from_memory(png->pixels().get(), bytes, size.width(), size.height(),
                                                     png->channels(), VIPS_FORMAT_UCHAR));
    VipsImage *out = nullptr;
    const auto interpretation = png->channels() < 3 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB;
    if (!raw || vips_copy(raw.get(), &out, "interpretation", interpretation, nullptr)) {
        return nullptr;
    }
    using Pixels = std::shared_ptr<uchar>;
    g_object_set_data_full(G_OBJECT(raw.get()), "pixels", new Pixels(png->pixels()),
                           [](void *pixels) { delete static_cast<Pixels *>(pixels); });
    const void *profile = nullptr;
    size_t profileSize = 0;
    if (zqHasProfile(header) && vips_image_get_blob(header, VIPS_META_ICC_NAME, &profile, &profileSize) == 0) {
        vips_image_set_blob_copy(out, VIPS_META_ICC_NAME, profile, profileSize);
    }
    return ZQVipsImage(out);
}

// Rows are computed when they are asked for.
ZQVipsImage startPass(VipsImage *header, const ZQDecodeRequest &request, const Pass &pass)
{
    const ZQVipsSource source = zqVipsSource(request.file);
    if (!source) {
        return nullptr;
    }
    return isJPEG2000(header) ? thumbnailOfJPEG2000(source.get(), levelFor(header, request), request, pass)
                              : thumbnail(source.get(), request, pass);
}

ZQBitmap decodePass(VipsImage *header, const ZQDecodeRequest &request, const Pass &pass)
{
    const bool isWholeWanted = request.isFullSize() && request.frame == 0;
    const ZQVipsImage whole = isWholeWanted ? wholePNG(header, request.file) : nullptr;
    const ZQVipsImage image = whole ? thumbnailOfImage(whole.get(), request, pass) : startPass(header, request, pass);
    return image ? zqBitmapOfVips(image.get()) : ZQBitmap();
}

int frameCount(VipsImage *header)
{
    return isJPEG2000(header) ? 1 : qMax(1, vips_image_get_n_pages(header));
}

ZQBitmap decodePart(VipsImage *header, const ZQDecodeRequest &request)
{
    if (isJPEG2000(header)) {
        return zqPartOfJPEG2000(request);
    }
    ZQDecodeRequest part = request;
    part.file = withRoomAfterEnd(request.file, header);
    if (!isPartReadable(part, header)) {
        return {};
    }
    ZQBitmap bitmap = decodePass(header, part, {VIPS_FAIL_ON_NONE, Profile::Ignore});
    bitmap.setIncomplete(true);
    return bitmap;
}

ZQBitmap decodeWithSource(const ZQDecodeRequest &request, ZQError *error)
{
    const ZQVipsSource source = zqVipsSource(request.file);
    const ZQVipsImage header = source ? openHeader(source.get()) : nullptr;
    if (!header) {
        const ZQBitmap part = zqPartOfWebP(request);
        if (part.isNull()) {
            zqSetError(error, zqDamagedError(request.file.name()));
        }
        return part;
    }
    if (request.frame >= frameCount(header.get())) {
        zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
        return {};
    }
    if (!checkSize(request, header.get(), error)) {
        return {};
    }
    const bool hasProfile = zqHasProfile(header.get());
    const Profile profile = hasProfile ? Profile::Apply : Profile::Ignore;
    ZQBitmap bitmap = decodePass(header.get(), request, {VIPS_FAIL_ON_TRUNCATED, profile});
    if (bitmap.isNull() && hasProfile) {
        bitmap = decodePass(header.get(), request, {VIPS_FAIL_ON_TRUNCATED, Profile::Ignore});
    }
    if (bitmap.isNull()) {
        bitmap = decodePart(header.get(), request);
    }
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
    } else if (zqEndsBeforeLastFrame(request.file, zqImageFormatOfFile(request.file))) {
        bitmap.setIncomplete(true);
    }
    return bitmap;
}

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    zqEnterVips();
    ZQBitmap bitmap = decodeWithSource(request, error);
    zqLogVipsError(request.file.name());
    return bitmap;
}

int bitsPerSample(VipsImage *image)
{
    const int stored = integerField(image, "bits-per-sample", integerField(image, "palette-bit-depth", 0));
    return stored > 0 ? stored : int(vips_format_sizeof(image->BandFmt)) * 8;
}

QString colorModel(VipsInterpretation interpretation)
{
    switch (interpretation) {
    case VIPS_INTERPRETATION_CMYK:
        return QStringLiteral("CMYK");
    case VIPS_INTERPRETATION_LAB:
    case VIPS_INTERPRETATION_LABS:
    case VIPS_INTERPRETATION_LABQ:
        return QStringLiteral("Lab");
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
        return QStringLiteral("Gray");
    default:
        return QStringLiteral("RGB");
    }
}

// A frame that says nothing of its time, or next to nothing, is shown as long as other programs show it.
QList<int> frameDurations(VipsImage *header, int frameCount)
{
    constexpr int shortest = 20;
    constexpr int usual = 100;
    int *delays = nullptr;
    int count = 0;
    if (frameCount < 2 || vips_image_get_typeof(header, "delay") == 0 ||
        vips_image_get_array_int(header, "delay", &delays, &count) != 0) {
        return {};
    }
    QList<int> durations;
    for (int i = 0; i < frameCount; ++i) {
        const int delay = i < count ? delays[i] : usual;
        durations.append(delay < shortest ? usual : delay);
    }
    return durations;
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &file, ZQError *error)
{
    zqEnterVips();
    const ZQVipsSource source = zqVipsSource(file);
    const ZQVipsImage image = source ? openHeader(source.get()) : nullptr;
    zqLogVipsError(file.name());
    if (!image) {
        const std::optional<ZQImageProperties> part = zqPropertiesOfPartOfWebP(file);
        if (!part) {
            zqSetError(error, zqDamagedError(file.name()));
        }
        return part;
    }
    ZQImageProperties out;
    out.pixelWidth = image->Xsize;
    out.pixelHeight = image->Ysize;
    out.orientation = vips_image_get_orientation(image.get());
    out.bitsPerSample = bitsPerSample(image.get());
    const bool saysResolution = qAbs(image->Xres - 1.0) > 1e-6; // one pixel a millimetre stands for "not said"
    out.dpi = saysResolution && image->Xres < 1e6 ? qRound(image->Xres * 25.4) : 0;
    out.frameCount = frameCount(image.get());
    out.frameDurations = frameDurations(image.get(), out.frameCount);
    out.hasAlpha = vips_image_hasalpha(image.get());
    out.colorModel = colorModel(image->Type);
    return out;
}

} // namespace

const ZQDecoder zqVipsDecoder{properties, decode};

bool zqHasProfile(VipsImage *image)
{
    return vips_image_get_typeof(image, VIPS_META_ICC_NAME) != 0;
}

ZQBitmap zqFittedVips(VipsImage *image, const ZQDecodeRequest &request, bool useProfile)
{
    const int width = request.isFullSize() ? unlimitedSide : request.box.width();
    const int height = request.isFullSize() ? unlimitedSide : request.box.height();
    VipsImage *out = nullptr;
    const int failed = vips_thumbnail_image(image, &out, width, "height", height, "size", VIPS_SIZE_DOWN,
                                            useProfile ? "export_profile" : nullptr, "srgb", nullptr);
    const ZQVipsImage owned(out);
    return failed ? ZQBitmap() : zqBitmapOfVips(out);
}

ZQVipsSource zqVipsSource(const ZQSourceFile &file)
{
    return ZQVipsSource(file.makeVipsSource());
}

namespace {

// Each step replaces the image by the converted one.
bool replace(ZQVipsImage &image, VipsImage *next, int failed)
{
    image.reset(next);
    return failed == 0 && next;
}

bool convertToSRGB(ZQVipsImage &image)
{
    VipsImage *next = nullptr;
    if (image->Type != VIPS_INTERPRETATION_sRGB) {
        const int failed = vips_colourspace(image.get(), &next, VIPS_INTERPRETATION_sRGB, nullptr);
        if (!replace(image, next, failed)) {
            return false;
        }
    }
    if (image->BandFmt != VIPS_FORMAT_UCHAR) {
        const int failed = vips_cast(image.get(), &next, VIPS_FORMAT_UCHAR, nullptr);
        if (!replace(image, next, failed)) {
            return false;
        }
    }
    if (image->Bands > 4) {
        const int failed = vips_extract_band(image.get(), &next, 0, "n", 4, nullptr);
        if (!replace(image, next, failed)) {
            return false;
        }
    }
    return (image->Bands == 3 || image->Bands == 4) && image->BandFmt == VIPS_FORMAT_UCHAR;
}

bool convertToRGBA(ZQVipsImage &image)
{
    if (!convertToSRGB(image)) {
        return false;
    }
    VipsImage *next = nullptr;
    return image->Bands == 4 || replace(image, next, vips_addalpha(image.get(), &next, nullptr));
}

void releaseImage(void *image)
{
    g_object_unref(image);
}

} // namespace

ZQBitmap zqBitmapOfVips(VipsImage *image)
{
    g_object_ref(image);
    ZQVipsImage converted(image);
    if (!convertToRGBA(converted)) {
        return {};
    }
    ZQVipsImage memory(vips_image_new_memory());
    if (vips_image_write(converted.get(), memory.get())) {
        return {};
    }
    VipsImage *const pixels = memory.release();
    return ZQBitmap(QImage(VIPS_IMAGE_ADDR(pixels, 0, 0), pixels->Xsize, pixels->Ysize,
                           qsizetype(VIPS_IMAGE_SIZEOF_LINE(pixels)), QImage::Format_RGBA8888, releaseImage, pixels));
}

namespace {

bool isDeep(VipsImage *image)
{
    constexpr qint64 mostPixels = qint64(1) << 27; // all are held
    return image->BandFmt == VIPS_FORMAT_USHORT && qint64(image->Xsize) * image->Ysize <= mostPixels &&
           (image->Type == VIPS_INTERPRETATION_RGB16 || image->Type == VIPS_INTERPRETATION_GREY16);
}

// With all its bits, upright, in sRGB; `stored`: the size it is to have before it is turned.
ZQVipsImage deepPicture(const ZQSourceFile &file, QSize stored)
{
    const ZQVipsSource source = zqVipsSource(file);
    const ZQVipsImage rows = source ? openHeader(source.get(), 0, VIPS_FAIL_ON_TRUNCATED) : nullptr;
    ZQVipsImage image(rows ? vips_image_copy_memory(rows.get()) : nullptr);
    const bool isRight =
        image &&
        (!zqHasProfile(image.get()) || zqVipsStep(image, vips_icc_transform, "srgb", "embedded", TRUE, "depth", 16)) &&
        (QSize(image->Xsize, image->Ysize) == stored || zqScaleVips(image, stored)) && zqVipsStep(image, vips_autorot);
    return isRight ? std::move(image) : nullptr;
}

} // namespace

ZQVipsImage zqUprightPicture(const ZQSourceFile &file, const std::function<std::optional<QSize>(QSize upright)> &sizeOf,
                             bool keepsDepth, QSize *size)
{
    zqEnterVips();
    const ZQVipsSource source = zqVipsSource(file);
    const ZQVipsImage header = source ? openHeader(source.get()) : nullptr;
    if (!header) {
        return nullptr;
    }
    const bool isTurned = !isJPEG2000(header.get()) && vips_image_get_orientation_swap(header.get());
    const QSize stored(header->Xsize, header->Ysize);
    const QSize upright = isTurned ? stored.transposed() : stored;
    const std::optional<QSize> wanted = sizeOf(upright);
    const ZQDecodeRequest request{file, wanted.value_or(QSize())};
    if (!checkSize(request, header.get(), nullptr)) {
        return nullptr;
    }
    *size = wanted.value_or(upright);
    if (keepsDepth && isDeep(header.get())) {
        ZQVipsImage deep = deepPicture(file, isTurned ? size->transposed() : *size);
        if (deep && QSize(deep->Xsize, deep->Ysize) == *size) {
            return deep;
        }
        zqLogVipsError(file.name());
    }
    const bool hasProfile = zqHasProfile(header.get());
    const Pass pass{VIPS_FAIL_ON_TRUNCATED, hasProfile ? Profile::Apply : Profile::Ignore,
                    wanted ? VIPS_SIZE_FORCE : VIPS_SIZE_DOWN};
    const ZQVipsImage whole = wholePNG(header.get(), file);
    ZQVipsImage image = whole ? thumbnailOfImage(whole.get(), request, pass) : startPass(header.get(), request, pass);
    const bool isRight = image && convertToSRGB(image) && QSize(image->Xsize, image->Ysize) == *size;
    return isRight ? std::move(image) : nullptr;
}

namespace {

ZQBitmap bitmapOfPixels(const QByteArray &pixels, QSize size, int bands, VipsInterpretation interpretation)
{
    zqEnterVips();
    if (pixels.size() < qsizetype(size.width()) * size.height() * bands) {
        return {};
    }
    const ZQVipsImage raw(vips_image_new_from_memory(pixels.constData(), size_t(pixels.size()), size.width(),
                                                     size.height(), bands, VIPS_FORMAT_UCHAR));
    VipsImage *tagged = nullptr;
    if (!raw || vips_copy(raw.get(), &tagged, "interpretation", interpretation, nullptr)) {
        return {};
    }
    const ZQVipsImage image(tagged);
    return zqBitmapOfVips(image.get());
}

} // namespace

ZQBitmap zqBitmapOfCMYK(const QByteArray &pixels, QSize size)
{
    return bitmapOfPixels(pixels, size, 4, VIPS_INTERPRETATION_CMYK);
}

ZQBitmap zqBitmapOfLab(const QByteArray &pixels, QSize size)
{
    zqEnterVips();
    if (pixels.size() < qsizetype(size.width()) * size.height() * 3) {
        return {};
    }
    const ZQVipsImage raw(vips_image_new_from_memory(pixels.constData(), size_t(pixels.size()), size.width(),
                                                     size.height(), 3, VIPS_FORMAT_UCHAR));
    double factors[] = {100.0 / 255, 1, 1};
    double offsets[] = {0, -128, -128};
    VipsImage *scaled = nullptr;
    if (!raw || vips_linear(raw.get(), &scaled, factors, offsets, 3, nullptr)) {
        return {};
    }
    const ZQVipsImage values(scaled);
    VipsImage *tagged = nullptr;
    if (vips_copy(values.get(), &tagged, "interpretation", VIPS_INTERPRETATION_LAB, nullptr)) {
        return {};
    }
    const ZQVipsImage image(tagged);
    return zqBitmapOfVips(image.get());
}

ZQBitmap zqDecodeBytes(const QByteArray &bytes, QSize box, std::optional<int> orientation)
{
    zqEnterVips();
    void *const data = const_cast<char *>(bytes.constData()); // only read
    const ZQVipsImage header(vips_image_new_from_buffer(data, size_t(bytes.size()), "", nullptr));
    if (!header || !zqCheckSize({}, header->Xsize, header->Ysize, zqMaximumPixelsInMemory, nullptr)) {
        zqLogVipsError({});
        return {};
    }
    VipsImage *out = nullptr;
    const int failed =
        vips_thumbnail_buffer(data, size_t(bytes.size()), &out, box.isValid() ? box.width() : unlimitedSide, "height",
                              box.isValid() ? box.height() : unlimitedSide, "size", VIPS_SIZE_DOWN, "no_rotate",
                              gboolean(orientation.has_value()), nullptr);
    const ZQVipsImage image(out);
    const ZQBitmap bitmap = failed ? ZQBitmap() : zqBitmapOfVips(image.get());
    zqLogVipsError({});
    return orientation ? ZQBitmap(zqOrientedImage(bitmap.image(), *orientation)) : bitmap;
}

QImage zqOrientedImage(const QImage &image, int orientation)
{
    const auto turned = [&image](qreal degrees) { return image.transformed(QTransform().rotate(degrees)); };
    switch (orientation) {
    case 2:
        return image.mirrored(true, false);
    case 3:
        return image.mirrored(true, true);
    case 4:
        return image.mirrored(false, true);
    case 5:
        return turned(90).mirrored(true, false);
    case 6:
        return turned(90);
    case 7:
        return turned(90).mirrored(false, true);
    case 8:
        return turned(270);
    default:
        return image;
    }
}
