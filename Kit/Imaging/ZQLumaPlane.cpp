#include "Kit/Imaging/ZQLumaPlane.h"

#include <algorithm>
#include <cmath>

namespace {

// A part of an axis: pixels first to last, the outer two perhaps in part.
struct Span
{
    int first;
    int last;
    float firstWeight;
    float lastWeight;
};

std::vector<Span> spansOf(int begin, int length, int parts)
{
    std::vector<Span> spans;
    spans.reserve(size_t(parts));
    for (int i = 0; i < parts; ++i) {
        const double from = double(i) * length / parts;
        const double to = double(i + 1) * length / parts;
        const int first = std::min(int(from), length - 1);
        const int last = std::clamp(int(std::ceil(to)) - 1, first, length - 1);
        const double firstWeight = first == last ? to - from : first + 1 - from;
        const double lastWeight = first == last ? 0 : to - last;
        const double whole = to - from;
        spans.push_back({begin + first, begin + last, float(firstWeight / whole), float(lastWeight / whole)});
    }
    return spans;
}

} // namespace

ZQLumaPlane::ZQLumaPlane(const ZQBitmap &bitmap, quint8 ground)
    : m_width(bitmap.width()), m_height(bitmap.height()), m_pixels(size_t(m_width) * size_t(m_height))
{
    const unsigned base = ground;
    for (int y = 0; y < m_height; ++y) {
        const uchar *source = bitmap.constScanLine(y);
        quint8 *target = m_pixels.data() + size_t(y) * size_t(m_width);
        for (int x = 0; x < m_width; ++x) {
            const unsigned luma = 77U * source[x * 4] + 150U * source[x * 4 + 1] + 29U * source[x * 4 + 2];
            const unsigned alpha = source[x * 4 + 3];
            target[x] = quint8((luma * alpha + (base << 8) * (255 - alpha) + 32640) / 65280);
        }
    }
}

std::vector<float> ZQLumaPlane::averaged(const QRect &area, int size) const
{
    const std::vector<Span> rows = spansOf(area.top(), area.height(), size);
    const std::vector<Span> columns = spansOf(area.left(), area.width(), size);
    std::vector<float> out(size_t(size) * size_t(size));
    std::vector<float> sums(size_t(m_width), 0.F);
    float *target = out.data();
    for (const Span &row : rows) {
        std::fill(sums.begin(), sums.end(), 0.F);
        const float whole = float(size) / float(area.height());
        for (int y = row.first; y <= row.last; ++y) {
            const float weight = y == row.first ? row.firstWeight : (y == row.last ? row.lastWeight : whole);
            const quint8 *pixels = m_pixels.data() + size_t(y) * size_t(m_width);
            for (size_t x = 0; x < sums.size(); ++x) {
                sums[x] += weight * float(pixels[x]);
            }
        }
        const float wholeColumn = float(size) / float(area.width());
        for (const Span &column : columns) {
            float sum = sums[size_t(column.first)] * column.firstWeight;
            for (int x = column.first + 1; x < column.last; ++x) {
                sum += sums[size_t(x)] * wholeColumn;
            }
            *target++ = column.last > column.first ? sum + sums[size_t(column.last)] * column.lastWeight : sum;
        }
    }
    return out;
}
