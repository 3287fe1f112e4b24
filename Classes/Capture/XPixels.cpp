#include "Classes/Capture/XPixels.h"

#include <QSysInfo>

#include <algorithm>
#include <bit>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

namespace {

constexpr qsizetype mostBytes = qsizetype(1) << 30;
constexpr int wholePixel = 32;

// A part of memory that the server sees too; gone with its last user, however that one ends.
class SharedMemory
{
public:
    explicit SharedMemory(qsizetype bytes)
    {
        m_id = ::shmget(IPC_PRIVATE, size_t(bytes), IPC_CREAT | 0600);
        void *const address = m_id < 0 ? nullptr : ::shmat(m_id, nullptr, 0);
        m_address = address == reinterpret_cast<void *>(-1) ? nullptr : address;
    }
    ~SharedMemory()
    {
        if (m_address) {
            ::shmdt(m_address);
        }
        markForRemoval();
    }
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    bool isThere() const { return m_address != nullptr; }
    quint32 id() const { return quint32(m_id); }
    const uchar *bytes() const { return static_cast<const uchar *>(m_address); }
    void markForRemoval()
    {
        if (m_id >= 0) {
            ::shmctl(m_id, IPC_RMID, nullptr);
            m_id = -1;
        }
    }

private:
    int m_id = -1;
    void *m_address = nullptr;
};

quint32 pixelAt(const uchar *bytes, int count, bool isLittleEndian)
{
    quint32 value = 0;
    for (int i = 0; i < count; ++i) {
        value |= quint32(bytes[isLittleEndian ? i : count - 1 - i]) << (8 * i);
    }
    return value;
}

int channel(quint32 pixel, quint32 mask)
{
    const quint32 largest = mask >> std::countr_zero(mask);
    return int((quint64((pixel & mask) >> std::countr_zero(mask)) * 255 + largest / 2) / largest);
}

QRgb valid(QRgb pixel)
{
    const int alpha = qAlpha(pixel); // a program may have drawn more colour than that lets through
    return qRgba(std::min(qRed(pixel), alpha), std::min(qGreen(pixel), alpha), std::min(qBlue(pixel), alpha), alpha);
}

} // namespace

XPixels::XPixels(ZQXConnection &connection) : m_connection(connection)
{
    const xcb_query_extension_reply_t *const shm = xcb_get_extension_data(m_connection.get(), &xcb_shm_id);
    m_canShare = shm && shm->present != 0;
}

qsizetype XPixels::Format::bytesPerRow(int width) const
{
    const qsizetype bits = qsizetype(width) * bitsPerPixel;
    return (bits + rowPadding - 1) / rowPadding * rowPadding / 8;
}

std::optional<XPixels::Format> XPixels::formatOf(int depth, xcb_visualid_t visual) const
{
    constexpr int depthWithAlpha = 32;
    const xcb_setup_t *const setup = xcb_get_setup(m_connection.get());
    Format format;
    format.isLittleEndian = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    format.hasAlpha = depth == depthWithAlpha;
    for (auto each = xcb_setup_pixmap_formats_iterator(setup); each.rem > 0; xcb_format_next(&each)) {
        if (each.data->depth == depth) {
            format.bitsPerPixel = each.data->bits_per_pixel;
            format.rowPadding = each.data->scanline_pad;
        }
    }
    for (auto each = xcb_screen_allowed_depths_iterator(&m_connection.screen()); each.rem > 0; xcb_depth_next(&each)) {
        for (auto type = xcb_depth_visuals_iterator(each.data); type.rem > 0; xcb_visualtype_next(&type)) {
            const bool isTrueColour = type.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
            if (type.data->visual_id == visual && isTrueColour) {
                format.red = type.data->red_mask;
                format.green = type.data->green_mask;
                format.blue = type.data->blue_mask;
            }
        }
    }
    const bool isKnown = format.bitsPerPixel >= 16 && format.bitsPerPixel <= wholePixel &&
                         format.bitsPerPixel % 8 == 0 && format.rowPadding > 0 && format.red != 0 &&
                         format.green != 0 && format.blue != 0;
    return isKnown ? std::optional(format) : std::nullopt;
}

void XPixels::convert(const uchar *rows, const Format &format, QImage &image, int firstRow, int count)
{
    const bool isAsOurs = format.bitsPerPixel == wholePixel && format.red == 0xff0000 && format.green == 0xff00 &&
                          format.blue == 0xff &&
                          format.isLittleEndian == (QSysInfo::ByteOrder == QSysInfo::LittleEndian);
    const int width = image.width();
    const int bytes = format.bitsPerPixel / 8;
    for (int y = 0; y < count; ++y) {
        const uchar *const from = rows + y * format.bytesPerRow(width);
        auto *const to = reinterpret_cast<QRgb *>(image.scanLine(firstRow + y));
        if (isAsOurs) {
            std::memcpy(to, from, size_t(width) * sizeof(QRgb));
        } else {
            for (int x = 0; x < width; ++x) {
                const quint32 pixel = pixelAt(from + x * bytes, bytes, format.isLittleEndian);
                const quint32 rest = ~(format.red | format.green | format.blue);
                to[x] = qRgba(channel(pixel, format.red), channel(pixel, format.green), channel(pixel, format.blue),
                              format.hasAlpha && rest != 0 ? channel(pixel, rest) : 255);
            }
        }
        if (format.hasAlpha) {
            std::transform(to, to + width, to, valid);
        } else {
            std::transform(to, to + width, to, [](QRgb pixel) { return pixel | 0xff000000; });
        }
    }
}

bool XPixels::readShared(xcb_drawable_t drawable, const QRect &rect, const Format &format, QImage &image)
{
    SharedMemory memory(format.bytesPerRow(rect.width()) * rect.height());
    if (!memory.isThere()) {
        return false;
    }
    const xcb_shm_seg_t segment = xcb_generate_id(m_connection.get());
    if (!m_connection.wasDone(xcb_shm_attach_checked(m_connection.get(), segment, memory.id(), 0))) {
        m_canShare = false; // the server is elsewhere
        return false;
    }
    memory.markForRemoval();
    const auto cookie =
        xcb_shm_get_image(m_connection.get(), drawable, qint16(rect.x()), qint16(rect.y()), quint16(rect.width()),
                          quint16(rect.height()), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, segment, 0);
    const ZQXReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(m_connection.get(), cookie, nullptr));
    xcb_shm_detach(m_connection.get(), segment);
    xcb_flush(m_connection.get());
    if (reply) {
        convert(memory.bytes(), format, image, 0, rect.height());
    }
    return reply != nullptr;
}

bool XPixels::readPlainly(xcb_drawable_t drawable, const QRect &rect, const Format &format, QImage &image)
{
    constexpr qsizetype bytesAtOnce = 8 << 20;
    const qsizetype bytesPerRow = format.bytesPerRow(rect.width());
    const int rowsAtOnce = int(std::max<qsizetype>(1, bytesAtOnce / bytesPerRow));
    for (int first = 0; first < rect.height(); first += rowsAtOnce) {
        const int count = std::min(rowsAtOnce, rect.height() - first);
        const auto cookie = xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, qint16(rect.x()),
                                          qint16(rect.y() + first), quint16(rect.width()), quint16(count), ~0U);
        const ZQXReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(m_connection.get(), cookie, nullptr));
        if (!reply || xcb_get_image_data_length(reply.get()) < bytesPerRow * count) {
            return false;
        }
        convert(xcb_get_image_data(reply.get()), format, image, first, count);
    }
    return true;
}

QImage XPixels::image(xcb_drawable_t drawable, const QRect &rect, xcb_visualid_t visual)
{
    const auto geometry = xcb_get_geometry(m_connection.get(), drawable);
    const ZQXReply<xcb_get_geometry_reply_t> is(xcb_get_geometry_reply(m_connection.get(), geometry, nullptr));
    if (!is || rect.isEmpty() || !QRect(0, 0, is->width, is->height).contains(rect)) {
        return {};
    }
    const auto format = formatOf(is->depth, visual);
    if (!format || format->bytesPerRow(rect.width()) * rect.height() > mostBytes) {
        return {};
    }
    QImage image(rect.size(), format->hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull()) {
        return {};
    }
    const bool isRead =
        (m_canShare && readShared(drawable, rect, *format, image)) || readPlainly(drawable, rect, *format, image);
    return isRead ? image : QImage();
}
