#pragma once

#include <QImage>
#include <QSize>

// An 8-bit sRGB picture with straight (not premultiplied) alpha: RGBA, 4 bytes a pixel, rows without padding
// requirement. A value with shared pixels; may cross threads.
class ZQBitmap
{
public:
    ZQBitmap() = default;
    explicit ZQBitmap(QImage image); // converted to RGBA8888 when it is not

    bool isNull() const { return m_image.isNull(); }
    int width() const { return m_image.width(); }
    int height() const { return m_image.height(); }
    QSize size() const { return m_image.size(); }
    // Only a part of the picture was in its file; what is missing is empty. Kept by the scaling functions.
    bool isIncomplete() const { return m_isIncomplete; }
    void setIncomplete(bool isIncomplete) { m_isIncomplete = isIncomplete; }
    bool hasAlpha() const; // whether any pixel is not opaque; linear
    const uchar *constScanLine(int y) const { return m_image.constScanLine(y); }
    QImage image() const { return m_image; }

    enum class Quality { Low, High }; // nearest neighbour / area averaging
    ZQBitmap scaled(QSize size, Quality quality) const;
    // Scaled down so that it fits `box`, ratio kept, at least 1 pixel a side; unchanged when it already fits.
    ZQBitmap scaledToFit(QSize box, Quality quality = Quality::High) const;

private:
    QImage m_image;
    bool m_isIncomplete = false;
};
