#pragma once

#include "Classes/Browsing/Content/DetailDocument.h"
#include "Kit/Widgets/ZQArtworkGround.h"

#include <QImage>
#include <QList>

class QPainter;

// How what is looked at closely is drawn. Main thread.
namespace DetailPainting {

constexpr double largestScale = 16; // device pixels for a pixel of the picture
constexpr double keyZoom = 1.25;    // of + and −
double wheelZoom(int angleDelta);

// A picture at half its size, at a quarter and so on, each made when it is first drawn as small as that: one that is
// zoomed and panned is not made small anew each time.
class Reductions
{
public:
    // The smallest that is at least `width` pixels wide, or the picture.
    const QImage &reduced(const QImage &image, double width);

private:
    qint64 m_key = 0; // of the picture that they were made of
    QList<QImage> m_images;
};

// The picture over `target`, which may be larger than the `canvas` in which it is seen: on a checkerboard where it is
// transparent, and with sharp edges where its pixels are what is looked at.
void paintPicture(QPainter &painter, const QImage &image, const ZQArtworkTone &tone, QRectF target, const QRect &canvas,
                  double scale, Reductions &reductions);
// Why there is no picture, or not yet; empty when there is one.
QString messageOf(const DetailDocument &document);
// Over the canvas, or at its foot where a picture stands in for the one to come.
void paintMessage(QPainter &painter, const QString &text, const QRect &canvas, bool isOverPicture);

} // namespace DetailPainting
