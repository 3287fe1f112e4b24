#include "Classes/Interface/Detail/DetailPainting.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QPaintDevice>
#include <QPainter>

#include <cmath>

namespace {
constexpr double sharpScale = 4; // from here on pixels are what is looked at
constexpr double wholeFactor = 0.001;
constexpr int textMargin = 24;
constexpr int footHeight = 60;
} // namespace

namespace DetailPainting {

double wheelZoom(int angleDelta)
{
    return std::pow(1.2, angleDelta / 120.0);
}

const QImage &Reductions::reduced(const QImage &image, double width)
{
    if (m_key != image.cacheKey()) {
        m_key = image.cacheKey();
        m_images.clear();
    }
    const QImage *found = &image;
    for (qsizetype i = 0; found->width() >= 2 * width && found->width() > 1 && found->height() > 1; ++i) {
        if (i == m_images.size()) {
            m_images.append(found->scaled(found->size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        }
        found = &m_images.at(i);
    }
    return *found;
}

void paintPicture(QPainter &painter, const QImage &image, const ZQArtworkTone &tone, QRectF target, const QRect &canvas,
                  double scale, Reductions &reductions)
{
    const qreal ratio = painter.device()->devicePixelRatioF();
    // Where a pixel of it is a whole number of those of the screen, its edges are sharp.
    const double factor = target.width() * ratio / image.width();
    const bool isWhole = factor > 1 - wholeFactor && std::abs(factor - std::round(factor)) < wholeFactor;
    if (isWhole) {
        target.moveTo(std::round(target.x() * ratio) / ratio, std::round(target.y() * ratio) / ratio);
    }
    if (image.hasAlphaChannel()) {
        zqPaintCheckerboard(painter, target, canvas, zqArtworkGround(tone, ZQTheme::current().isDark()));
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < sharpScale && !isWhole);
    painter.drawImage(target, reductions.reduced(image, target.width() * ratio));
}

QString messageOf(const DetailDocument &document)
{
    using State = DetailDocument::State;
    switch (document.state()) {
    case State::Missing:
        return zqLocalized("The file is missing. Put it back where it was, or import it again.");
    case State::Failed:
        return zqLocalized("This file cannot be shown.") + u'\n' + document.reason();
    case State::Loading:
        return document.image().isNull() ? zqLocalized("Loading…") : QString();
    case State::Shown:
        break;
    }
    return {};
}

void paintMessage(QPainter &painter, const QString &text, const QRect &canvas, bool isOverPicture)
{
    const QRect place = isOverPicture ? canvas.adjusted(0, canvas.height() - footHeight, 0, 0) : canvas;
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    painter.drawText(place.adjusted(textMargin, 0, -textMargin, 0), Qt::AlignCenter | Qt::TextWordWrap, text);
}

} // namespace DetailPainting
