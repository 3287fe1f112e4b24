#include "Kit/Imaging/ZQBitmap.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// The part of a source axis that one target pixel covers: whole pixels first to last, the outer two perhaps in part.
struct Span
{
    int first;
    int last;
    double firstWeight;
    double lastWeight;

    double weight(int index) const { return index == first ? firstWeight : (index == last ? lastWeight : 1.0); }
};

std::vector<Span> spansOfAxis(int source, int target)
{
    std::vector<Span> spans(size_t(target), Span{});
    const double step = double(source) / target;
    for (int i = 0; i < target; ++i) {
        const double begin = i * step;
        const double end = std::min((i + 1) * step, double(source));
        const int first = std::min(int(begin), source - 1);
        const int last = std::clamp(int(std::ceil(end)) - 1, first, source - 1);
        const double firstWeight = first == last ? end - begin : first + 1 - begin;
        spans[size_t(i)] = {first, last, firstWeight, end - last};
    }
    return spans;
}

void addRow(const uchar *source, const std::vector<Span> &columns, double rowWeight, std::vector<double> &sums)
{
    double *sum = sums.data();
    for (const Span &span : columns) {
        for (int x = span.first; x <= span.last; ++x) {
            const uchar *pixel = source + size_t(x) * 4;
            const double weight = rowWeight * span.weight(x);
            const double alpha = weight * pixel[3];
            sum[0] += pixel[0] * alpha;
            sum[1] += pixel[1] * alpha;
            sum[2] += pixel[2] * alpha;
            sum[3] += alpha;
            sum[4] += weight;
        }
        sum += 5;
    }
}

void writeRow(const std::vector<double> &sums, uchar *target)
{
    for (size_t i = 0; i < sums.size(); i += 5, target += 4) {
        const double alpha = sums[i + 3];
        for (size_t channel = 0; channel < 3; ++channel) {
            target[channel] = alpha > 0 ? uchar(std::lround(sums[i + channel] / alpha)) : uchar(0);
        }
        target[3] = uchar(std::lround(alpha / sums[i + 4]));
    }
}

QImage areaAveraged(const QImage &image, QSize size)
{
    QImage out(size, QImage::Format_RGBA8888);
    if (out.isNull()) {
        return {};
    }
    const std::vector<Span> columns = spansOfAxis(image.width(), size.width());
    const std::vector<Span> rows = spansOfAxis(image.height(), size.height());
    std::vector<double> sums(columns.size() * 5);
    for (int y = 0; y < size.height(); ++y) {
        std::fill(sums.begin(), sums.end(), 0.0);
        const Span &span = rows[size_t(y)];
        for (int sourceY = span.first; sourceY <= span.last; ++sourceY) {
            addRow(image.constScanLine(sourceY), columns, span.weight(sourceY), sums);
        }
        writeRow(sums, out.scanLine(y));
    }
    return out;
}

} // namespace

ZQBitmap::ZQBitmap(QImage image)
    : m_image(image.format() == QImage::Format_RGBA8888 || image.isNull()
                  ? std::move(image)
                  : image.convertToFormat(QImage::Format_RGBA8888))
{
}

bool ZQBitmap::hasAlpha() const
{
    for (int y = 0; y < height(); ++y) {
        const uchar *row = constScanLine(y);
        for (int x = 0; x < width(); ++x) {
            if (row[x * 4 + 3] != 255) {
                return true;
            }
        }
    }
    return false;
}

ZQBitmap ZQBitmap::scaled(QSize target, Quality quality) const
{
    if (isNull() || target.isEmpty()) {
        return {};
    }
    if (target == size()) {
        return *this;
    }
    const bool isEnlarged = target.width() > width() || target.height() > height();
    ZQBitmap out(quality == Quality::Low ? m_image.scaled(target, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                 : isEnlarged            ? m_image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                         : areaAveraged(m_image, target));
    out.m_isIncomplete = m_isIncomplete;
    return out;
}

ZQBitmap ZQBitmap::scaledToFit(QSize box, Quality quality) const
{
    if (isNull() || box.isEmpty() || (width() <= box.width() && height() <= box.height())) {
        return *this;
    }
    return scaled(size().scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)), quality);
}
