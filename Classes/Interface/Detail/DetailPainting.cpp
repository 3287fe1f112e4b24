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

void paintPicture(QPainter &painter, const QImage &image, const ZQArtworkTone &tone, QRectF target, const QRect &canvas,
                  double scale)
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
    if (target.width() * ratio < image.width() / 2.0) {
        const QSize pixels = (target.size() * ratio).toSize().expandedTo(QSize(1, 1));
        painter.drawImage(target, image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    } else {
        painter.drawImage(target, image);
    }
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
