#include "Kit/Imaging/ZQPictureFrame.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace {

constexpr int noise = 12;    // of a channel, what compression does to one colour
constexpr int edgeStep = 24; // a fade has smaller steps between two lines
constexpr int mixed = 4;     // lines between a frame and its picture
constexpr int straight = 25; // percent of a line that differs from the frame at once
constexpr int thickest = 20; // percent of a side that a bar takes

struct Bar
{
    int thickness = 0; // 0 for none
    const uchar *color = nullptr;
};

// How far two pixels are apart in the channel in which they differ most, as far as they are seen.
int difference(const uchar *left, const uchar *right)
{
    int most = std::abs(int(left[3]) - int(right[3]));
    for (int i = 0; i < 3; ++i) {
        most = std::max(most, std::abs(int(left[i]) * left[3] - int(right[i]) * right[3]) / 255);
    }
    return most;
}

// The lines of one side, from outside to inside.
class Side
{
public:
    Side(const ZQBitmap &bitmap, const QRect &area, Qt::Edge edge)
        : m_bitmap(bitmap), m_area(area), m_isAcross(edge == Qt::TopEdge || edge == Qt::BottomEdge),
          m_isForward(edge == Qt::TopEdge || edge == Qt::LeftEdge), m_color(pixel(0, length() / 2))
    {
    }

    Bar bar() const
    {
        const int most = lines() * thickest / 100;
        int thickness = 0;
        while (thickness <= most && others(thickness, noise, 1) == 0) {
            ++thickness;
        }
        if (thickness == 0 || thickness > most) {
            return {};
        }
        // Before the picture begins, scaling and compression put some lines of a mixture; they go with the frame.
        const int enough = length() * straight / 100;
        for (int line = thickness; line <= std::min(thickness + mixed, lines() - 2); ++line) {
            if (others(line, edgeStep, enough) >= enough) {
                return {line + 1, m_color};
            }
        }
        return {};
    }

private:
    int lines() const { return m_isAcross ? m_area.height() : m_area.width(); }
    int length() const { return m_isAcross ? m_area.width() : m_area.height(); }

    const uchar *pixel(int line, int place) const
    {
        const int depth = m_isForward ? line : lines() - 1 - line;
        const int x = m_area.left() + (m_isAcross ? place : depth);
        const int y = m_area.top() + (m_isAcross ? depth : place);
        return m_bitmap.constScanLine(y) + size_t(x) * 4;
    }

    // How many pixels of a line are another colour; no more than `enough` are counted.
    int others(int line, int tolerance, int enough) const
    {
        int count = 0;
        for (int place = 0; place < length() && count < enough; ++place) {
            count += difference(pixel(line, place), m_color) > tolerance ? 1 : 0;
        }
        return count;
    }

    const ZQBitmap &m_bitmap;
    QRect m_area;
    bool m_isAcross;
    bool m_isForward;
    const uchar *m_color;
};

// Of two sides with so many lines from one to the other. With the mixed lines, both may reach what lies between them.
bool belongTogether(const Bar &one, const Bar &other, int lines)
{
    return one.thickness > 0 && other.thickness > 0 && difference(one.color, other.color) <= noise &&
           std::abs(one.thickness - other.thickness) <= 1 + one.thickness / 8 &&
           one.thickness + other.thickness < lines;
}

} // namespace

QRect zqWithoutFrame(const ZQBitmap &bitmap)
{
    QRect area(QPoint(0, 0), bitmap.size());
    if (area.isEmpty()) {
        return area;
    }
    const Bar top = Side(bitmap, area, Qt::TopEdge).bar();
    const Bar bottom = Side(bitmap, area, Qt::BottomEdge).bar();
    if (belongTogether(top, bottom, area.height())) {
        area.adjust(0, top.thickness, 0, -bottom.thickness);
    }
    const Bar left = Side(bitmap, area, Qt::LeftEdge).bar();
    const Bar right = Side(bitmap, area, Qt::RightEdge).bar();
    if (belongTogether(left, right, area.width())) {
        area.adjust(left.thickness, 0, -right.thickness, 0);
    }
    return area;
}
