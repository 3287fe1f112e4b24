#pragma once

#include "Kit/Desktop/ZQXConnection.h"

#include <QImage>
#include <QRect>

#include <optional>

// Reads pixels of an X server: through memory shared with it, or over the connection where it runs on another machine.
// True colour of any depth. Main thread.
class XPixels
{
public:
    explicit XPixels(ZQXConnection &connection);

    // `rect` in its own coordinates, within it. ARGB32_Premultiplied where its depth has room for transparency, else
    // RGB32. Null when the server does not give it: it is gone, too large, or of a kind that no picture is made of.
    QImage image(xcb_drawable_t drawable, const QRect &rect, xcb_visualid_t visual);

private:
    struct Format
    {
        int bitsPerPixel = 0;
        int rowPadding = 0; // bits
        bool isLittleEndian = true;
        bool hasAlpha = false;
        quint32 red = 0; // masks
        quint32 green = 0;
        quint32 blue = 0;
        qsizetype bytesPerRow(int width) const;
    };
    std::optional<Format> formatOf(int depth, xcb_visualid_t visual) const;
    bool readShared(xcb_drawable_t drawable, const QRect &rect, const Format &format, QImage &image);
    bool readPlainly(xcb_drawable_t drawable, const QRect &rect, const Format &format, QImage &image);
    static void convert(const uchar *rows, const Format &format, QImage &image, int firstRow, int count);

    ZQXConnection &m_connection;
    bool m_canShare = false;
};
