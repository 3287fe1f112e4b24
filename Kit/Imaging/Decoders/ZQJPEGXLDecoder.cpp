#include "Kit/Imaging/Decoders/ZQImageDecoding.h"
#include "Kit/Imaging/Decoders/ZQVipsPixels.h"
#include "Kit/Imaging/ZQImagingLibraries.h"

#include <jxl/decode.h>
#include <jxl/decode_cxx.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

// libvips shows the last frame of an animation, and says nothing of a file that ends too early; the codec itself does
// both. It turns a picture upright by itself.

namespace {

// Newer versions of the library ask for one argument less.
template <class Function, class... Rest>
JxlDecoderStatus askForProfile(Function function, const JxlDecoder *decoder, Rest... rest)
{
    if constexpr (std::is_invocable_v<Function, const JxlDecoder *, std::nullptr_t, Rest...>) {
        return function(decoder, nullptr, rest...);
    } else {
        return function(decoder, rest...);
    }
}

// A decoder at the beginning of a file, which outlives it.
class Codec
{
public:
    // That no more input follows is not said: a file that ends too early would be nothing but an error then.
    Codec(const ZQSourceFile::Bytes &bytes, int events) : m_decoder(JxlDecoderMake(nullptr))
    {
        m_isReady = bytes.data() && m_decoder && JxlDecoderSubscribeEvents(get(), events) == JXL_DEC_SUCCESS &&
                    JxlDecoderSetUnpremultiplyAlpha(get(), JXL_TRUE) == JXL_DEC_SUCCESS &&
                    JxlDecoderSetInput(get(), bytes.data(), bytes.size()) == JXL_DEC_SUCCESS;
    }

    JxlDecoder *get() const { return m_decoder.get(); }
    JxlDecoderStatus next() const { return m_isReady ? JxlDecoderProcessInput(get()) : JXL_DEC_ERROR; }

    QByteArray profile() const
    {
        size_t size = 0;
        constexpr size_t largest = size_t(16) << 20;
        if (askForProfile(JxlDecoderGetICCProfileSize, get(), JXL_COLOR_PROFILE_TARGET_DATA, &size) !=
                JXL_DEC_SUCCESS ||
            size == 0 || size > largest) {
            return {};
        }
        QByteArray bytes(qsizetype(size), Qt::Uninitialized);
        const bool got = askForProfile(JxlDecoderGetColorAsICCProfile, get(), JXL_COLOR_PROFILE_TARGET_DATA,
                                       reinterpret_cast<uint8_t *>(bytes.data()), size) == JXL_DEC_SUCCESS;
        return got ? bytes : QByteArray();
    }

private:
    JxlDecoderPtr m_decoder;
    bool m_isReady = false;
};

// A frame that says nothing of its time, or next to nothing, is shown as long as other programs show it.
int milliseconds(const JxlFrameHeader &frame, const JxlAnimationHeader &animation)
{
    constexpr int shortest = 20;
    constexpr int usual = 100;
    constexpr double longest = 3'600'000;
    const double ticks = double(animation.tps_numerator) / qMax(1U, animation.tps_denominator);
    const double duration = ticks > 0 ? frame.duration * 1000.0 / ticks : 0;
    return duration < shortest ? usual : qRound(qMin(duration, longest));
}

std::optional<ZQImageProperties> properties(const ZQSourceFile &file, ZQError *error)
{
    constexpr qsizetype mostFrames = 100'000;
    const ZQSourceFile::Bytes bytes(file);
    const Codec codec(bytes, JXL_DEC_BASIC_INFO | JXL_DEC_FRAME);
    JxlBasicInfo info{};
    bool isKnown = false;
    QList<int> durations;
    for (JxlDecoderStatus status = codec.next(); durations.size() < mostFrames; status = codec.next()) {
        JxlFrameHeader frame{};
        if (status == JXL_DEC_BASIC_INFO && JxlDecoderGetBasicInfo(codec.get(), &info) == JXL_DEC_SUCCESS) {
            isKnown = true;
        } else if (status == JXL_DEC_FRAME && JxlDecoderGetFrameHeader(codec.get(), &frame) == JXL_DEC_SUCCESS) {
            durations.append(milliseconds(frame, info.animation));
        } else {
            break;
        }
        if (isKnown && !info.have_animation) {
            break; // there is one frame, and its header need not be there
        }
    }
    if (!isKnown || info.xsize > uint32_t(INT_MAX) || info.ysize > uint32_t(INT_MAX)) {
        zqSetError(error, zqDamagedError(file.name()));
        return std::nullopt;
    }
    ZQImageProperties out;
    out.pixelWidth = int(info.xsize);
    out.pixelHeight = int(info.ysize);
    out.bitsPerSample = int(info.bits_per_sample);
    out.frameCount = qMax(1, int(durations.size()));
    out.frameDurations = durations.size() > 1 ? durations : QList<int>();
    out.hasAlpha = info.alpha_bits > 0;
    out.colorModel = info.num_color_channels == 1 ? QStringLiteral("Gray") : QStringLiteral("RGB");
    return out;
}

// The frame that a request asks for, as it is stored.
class Frame
{
public:
    // False when there is nothing to show; `error` is filled then.
    bool read(const ZQDecodeRequest &request, ZQError *error)
    {
        const ZQSourceFile::Bytes bytes(request.file);
        const Codec codec(bytes, JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE);
        for (;;) {
            const JxlDecoderStatus status = codec.next();
            if (status == JXL_DEC_FULL_IMAGE) {
                return true;
            }
            if (status == JXL_DEC_SUCCESS) {
                zqSetError(error, zqNoSuchFrameError(request.file.name(), request.frame));
                return false;
            }
            if (status == JXL_DEC_NEED_MORE_INPUT && m_pixels) {
                m_isIncomplete = JxlDecoderFlushImage(codec.get()) == JXL_DEC_SUCCESS;
            }
            ZQError failure = zqDamagedError(request.file.name());
            if (!follow(status, codec, request, &failure)) {
                if (!m_isIncomplete) {
                    zqSetError(error, failure);
                }
                return m_isIncomplete;
            }
        }
    }

    ZQBitmap fitted(const ZQDecodeRequest &request)
    {
        const VipsBandFormat format = m_format.data_type == JXL_TYPE_UINT8 ? VIPS_FORMAT_UCHAR : VIPS_FORMAT_USHORT;
        const ZQVipsImage raw(vips_image_new_from_memory(m_pixels.get(), m_bytes, int(m_info.xsize), int(m_info.ysize),
                                                         int(m_format.num_channels), format));
        VipsImage *tagged = nullptr;
        if (!raw || vips_copy(raw.get(), &tagged, "interpretation", interpretation(), nullptr)) {
            return {};
        }
        const ZQVipsImage image(tagged);
        ZQBitmap bitmap;
        if (!m_profile.isEmpty()) {
            vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, m_profile.constData(), size_t(m_profile.size()));
            bitmap = zqFittedVips(image.get(), request, true);
        }
        if (bitmap.isNull()) {
            bitmap = zqFittedVips(image.get(), request, false);
        }
        if (!bitmap.isNull()) {
            bitmap.setIncomplete(m_isIncomplete);
        }
        return bitmap;
    }

private:
    // What the decoder wants before it goes on; false when it cannot.
    bool follow(JxlDecoderStatus status, const Codec &codec, const ZQDecodeRequest &request, ZQError *failure)
    {
        switch (status) {
        case JXL_DEC_BASIC_INFO:
            return begin(codec, request, failure);
        case JXL_DEC_COLOR_ENCODING:
            m_profile = codec.profile();
            return true;
        case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
            return makeRoom(codec);
        default:
            return false;
        }
    }

    bool begin(const Codec &codec, const ZQDecodeRequest &request, ZQError *failure)
    {
        if (JxlDecoderGetBasicInfo(codec.get(), &m_info) != JXL_DEC_SUCCESS ||
            !zqCheckSize(request.file.name(), m_info.xsize, m_info.ysize, zqMaximumPixelsInMemory, failure)) {
            return false;
        }
        if (request.frame > 0 && !m_info.have_animation) {
            *failure = zqNoSuchFrameError(request.file.name(), request.frame);
            return false;
        }
        if (request.frame > 0) {
            JxlDecoderSkipFrames(codec.get(), size_t(request.frame));
        }
        const bool isDeep = m_info.bits_per_sample > 8 || m_info.exponent_bits_per_sample > 0;
        const uint32_t colors = m_info.num_color_channels == 1 ? 1 : 3;
        m_format = {colors + (m_info.alpha_bits > 0 ? 1U : 0U), isDeep ? JXL_TYPE_UINT16 : JXL_TYPE_UINT8,
                    JXL_NATIVE_ENDIAN, 0};
        return true;
    }

    bool makeRoom(const Codec &codec)
    {
        size_t size = 0;
        if (JxlDecoderImageOutBufferSize(codec.get(), &m_format, &size) != JXL_DEC_SUCCESS) {
            return false;
        }
        m_pixels.reset(std::calloc(size, 1)); // empty without being touched: a header promises much
        if (!m_pixels) {
            throw std::bad_alloc();
        }
        m_bytes = size;
        return JxlDecoderSetImageOutBuffer(codec.get(), &m_format, m_pixels.get(), size) == JXL_DEC_SUCCESS;
    }

    VipsInterpretation interpretation() const
    {
        const bool isDeep = m_format.data_type == JXL_TYPE_UINT16;
        if (m_format.num_channels < 3) {
            return isDeep ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
        }
        return isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    }

    JxlBasicInfo m_info{};
    JxlPixelFormat m_format{};
    QByteArray m_profile;
    std::unique_ptr<void, decltype(&std::free)> m_pixels{nullptr, &std::free};
    size_t m_bytes = 0;
    bool m_isIncomplete = false;
};

ZQBitmap decode(const ZQDecodeRequest &request, ZQError *error)
{
    zqEnterVips();
    Frame frame;
    if (!frame.read(request, error)) {
        return {};
    }
    const ZQBitmap bitmap = frame.fitted(request);
    zqLogVipsError(request.file.name());
    if (bitmap.isNull()) {
        zqSetError(error, zqDamagedError(request.file.name()));
    }
    return bitmap;
}

} // namespace

const ZQDecoder zqJPEGXLDecoder{properties, decode};
