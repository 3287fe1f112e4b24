#pragma once

#include <QRect>
#include <QSize>
#include <QtGlobal>

#include <array>
#include <memory>
#include <optional>
#include <span>

// A part of a picture in planes: red, green, blue and alpha (straight, 8 bits, sRGB), each row of each packed by
// PackBits. Red, green and blue are 255 where alpha is 0. A value that shares its bytes; may cross threads.
class ZQPackedPicture
{
public:
    static constexpr int channelCount = 4;
    static constexpr int widest = 60000; // of the part: a row has to say in two bytes how long it is

    // Nothing where the bytes are not the rows of that part of a picture of that size: four planes one behind the
    // other, of each first the number of bytes of each row, two bytes with the higher first, then the rows.
    static std::optional<ZQPackedPicture> of(std::shared_ptr<const char> bytes, qsizetype count, QSize size,
                                             QRect part);
    // What of a picture of that size is within the window.
    static QRect partOf(QSize size, const QRect &window) { return QRect(QPoint(), size).intersected(window); }

    QSize size() const { return m_size; }                // of the whole picture, upright
    QRect part() const { return m_part; }                // of it; empty: there are no rows
    bool isIncomplete() const { return m_isIncomplete; } // only a part of the picture was in its file
    void setIncomplete(bool isIncomplete) { m_isIncomplete = isIncomplete; }

    std::span<const char> counts(int channel) const { return m_counts[std::size_t(channel)]; }
    std::span<const char> rows(int channel) const { return m_rows[std::size_t(channel)]; }

private:
    using Planes = std::array<std::span<const char>, channelCount>;

    std::shared_ptr<const char> m_bytes;
    QSize m_size;
    QRect m_part;
    bool m_isIncomplete = false;
    Planes m_counts;
    Planes m_rows;
};
