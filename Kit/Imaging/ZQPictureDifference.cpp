#include "Kit/Imaging/ZQPictureDifference.h"

#include "Kit/Foundation/ZQCancellation.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

int distanceOf(QRgb first, QRgb second)
{
    return std::max({std::abs(qRed(first) - qRed(second)), std::abs(qGreen(first) - qGreen(second)),
                     std::abs(qBlue(first) - qBlue(second)), std::abs(qAlpha(first) - qAlpha(second))});
}

// Small differences are the ones looked for: the greatest becomes white.
void stretch(QImage &image, int greatest)
{
    for (int y = 0; y < image.height(); ++y) {
        uchar *const line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            line[x] = uchar(line[x] * 255 / greatest);
        }
    }
}

} // namespace

ZQPictureDifference ZQPictureDifference::of(const QImage &first, const QImage &second)
{
    if (first.isNull() || first.size() != second.size()) {
        return {};
    }
    ZQPictureDifference result;
    QImage image(first.size(), QImage::Format_Grayscale8);
    if (image.isNull()) {
        return {};
    }
    qint64 differing = 0;
    for (int y = 0; y < image.height(); ++y) {
        if (ZQCancellation::isCurrentCancelled()) {
            return {};
        }
        // A row at a time: a whole copy of either would be as large again.
        constexpr auto format = QImage::Format_ARGB32_Premultiplied;
        const QRect row(0, y, image.width(), 1);
        const QImage a = first.copy(row).convertToFormat(format);
        const QImage b = second.copy(row).convertToFormat(format);
        const auto *const left = reinterpret_cast<const QRgb *>(a.constScanLine(0));
        const auto *const right = reinterpret_cast<const QRgb *>(b.constScanLine(0));
        uchar *const line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const int distance = distanceOf(left[x], right[x]);
            line[x] = uchar(distance);
            differing += distance > 0 ? 1 : 0;
            result.greatest = std::max(result.greatest, distance);
        }
    }
    if (result.greatest > 0) {
        stretch(image, result.greatest);
    }
    result.share = double(differing) / (double(image.width()) * image.height());
    result.image = std::move(image);
    return result;
}
