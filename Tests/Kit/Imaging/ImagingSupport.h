#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QColor>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A folder that goes away with the test.
class ImagingTest : public testing::Test
{
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

inline QColor colorAt(const ZQBitmap &bitmap, double x, double y)
{
    return bitmap.image().pixelColor(int(x * bitmap.width()), int(y * bitmap.height()));
}

// How far two pictures of one size are apart: the mean difference of their red, green and blue, 0 to 255.
inline double distance(const QImage &left, const QImage &right)
{
    if (left.size() != right.size() || left.isNull()) {
        return 255;
    }
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb a = left.pixel(x, y);
            const QRgb b = right.pixel(x, y);
            sum += qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b));
        }
    }
    return sum / (3.0 * left.width() * left.height());
}
