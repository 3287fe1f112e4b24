#include "Kit/Widgets/ZQGridView.h"

#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QLocale>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace {
constexpr int pictureRadius = 3;
constexpr int cornerSize = 64; // smaller pictures keep their corners
constexpr int cellRadius = 6;

// The painter's own filter would leave gaps in what is shrunk by more than half.
QImage sharpFor(const QImage &image, const QSizeF &pixels)
{
    return pixels.width() >= image.width() / 2.0
               ? image
               : image.scaled(pixels.toSize().expandedTo(QSize(1, 1)), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QString withDot(const QString &extension)
{
    return extension.isEmpty() ? QString() : u'.' + extension;
}
} // namespace

void ZQGridView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(viewport());
    // At a fraction of a scale the last pixels belong to it in part, and nobody else paints them.
    painter.fillRect(viewport()->rect().adjusted(-1, -1, 1, 1), zqColor(ZQColorRole::Ground));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setLayoutDirection(layoutDirection());
    if (!m_source || m_layout.count() == 0) {
        painter.setPen(zqColor(ZQColorRole::TextMuted));
        painter.setFont(ZQTheme::current().font());
        painter.drawText(viewport()->rect().adjusted(24, 24, -24, -24), int(Qt::AlignCenter) | Qt::TextWordWrap,
                         m_source ? m_source->emptyText() : QString());
        paintOverlays(painter);
        return;
    }
    m_loader->beginVisible();
    for (const ZQIndexSet::Range &range : visibleIndexes().ranges()) {
        m_source->willShow(range.first, range.last);
        for (qint64 index = range.last; index >= range.first; --index) { // the last asked is read first
            paintCell(painter, index, visualRect(index));
        }
    }
    m_loader->endVisible();
    if (m_layout.hasHeads()) {
        const qint64 offset = scrollOffset();
        const int sticky = stickyGroup();
        for (int group = std::max(0, sticky);
             group < m_layout.groupCount() && m_layout.groupTop(group) < offset + viewport()->height(); ++group) {
            if (group != sticky) {
                paintHead(painter, group, int(m_layout.groupTop(group) - offset));
            }
        }
        if (sticky >= 0) { // pushed out by the next head
            const qint64 room = m_layout.groupBottom(sticky) - offset - ZQMeasure::groupHeadHeight;
            paintHead(painter, sticky, int(std::min<qint64>(0, room)));
        }
    }
    paintOverlays(painter);
}

void ZQGridView::paintCell(QPainter &painter, qint64 index, const QRect &rect)
{
    if (m_showsList) {
        paintRow(painter, index, rect);
        return;
    }
    const ZQGridItem item = m_source->item(index);
    const bool selected = m_selection.contains(index);
    const QRect box(rect.left(), rect.top(), rect.width(), m_layout.pictureHeight());
    const bool isFocused = hasFocus() && index == m_current;
    if (selected) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 2));
        painter.setBrush(zqColor(ZQColorRole::Select));
        painter.drawRoundedRect(QRectF(box).adjusted(1, 1, -1, -1), cellRadius, cellRadius);
        if (isFocused && m_isReachedByKey) {
            painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1));
            painter.drawRoundedRect(QRectF(box).adjusted(3.5, 3.5, -3.5, -3.5), cellRadius - 2, cellRadius - 2);
        }
    } else if (isFocused) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), cellRadius, cellRadius);
    }
    paintPicture(painter, item, box);
    if (m_showsTitles) {
        paintTitle(
            painter, item,
            QRect(rect.left(), box.bottom() + 1 + ZQGridLayout::titleGap, rect.width(), ZQGridLayout::titleHeight),
            selected);
    }
}

// Where a picture goes in its box, in whole device pixels.
ZQGridView::PicturePlace ZQGridView::placeOfPicture(const ZQGridItem &item, const QImage &image,
                                                    const QRectF &room) const
{
    const qreal ratio = devicePixelRatioF();
    QSizeF natural = !item.pixelSize.isEmpty() ? QSizeF(item.pixelSize)
                     : !image.isNull()         ? QSizeF(image.size())
                                               : QSizeF(1, 1);
    // The picture itself knows its shape better than what was noted of it: a mirrored and turned one is not swapped
    // there.
    if (!image.isNull() && (natural.width() > natural.height()) != (image.width() > image.height())) {
        natural.transpose();
    }
    PicturePlace result;
    QSizeF pixels = natural.scaled(room.size() * ratio, Qt::KeepAspectRatio);
    if (!item.isScalable && !item.pixelSize.isEmpty() && pixels.width() > natural.width()) {
        const double factor = m_fillsCells ? std::max(1.0, std::floor(pixels.width() / natural.width())) : 1;
        pixels = natural * factor;
        result.isPixelForPixel = image.size() == natural.toSize();
        result.isEnlarged = factor > 1;
    }
    pixels = QSizeF(pixels.toSize().expandedTo(QSize(1, 1)));
    const QPointF corner = (room.center() * ratio - QPointF(pixels.width() / 2, pixels.height() / 2));
    result.target = QRectF(QPointF(std::round(corner.x()), std::round(corner.y())) / ratio, pixels / ratio);
    return result;
}

void ZQGridView::paintPicture(QPainter &painter, const ZQGridItem &item, const QRect &box, int padding)
{
    const qreal ratio = devicePixelRatioF();
    const QRectF room = QRectF(box).adjusted(padding, padding, -padding, -padding);
    const ZQThumbnail thumbnail =
        m_loader->thumbnail(item.thumbnail, int(std::ceil(std::max(room.width(), room.height()) * ratio)));
    const QImage &image = thumbnail.image;
    const PicturePlace place = placeOfPicture(item, image, room);
    painter.setPen(Qt::NoPen);
    if (image.isNull()) {
        painter.setBrush(zqColor(ZQColorRole::Cell));
        painter.drawRoundedRect(place.target, pictureRadius, pictureRadius);
        if (m_loader->hasFailed(item.thumbnail)) {
            ZQIcon::paint(painter, QRectF(place.target.center() - QPointF(8, 8), QSizeF(16, 16)),
                          QStringLiteral("project"), zqColor(ZQColorRole::TextFaint));
        }
        return;
    }
    const bool isTransparent = image.hasAlphaChannel();
    const bool hasCorners = isTransparent || place.isEnlarged || std::min(image.width(), image.height()) < cornerSize;
    if (isTransparent) {
        zqPaintArtworkGround(painter, place.target, zqArtworkGround(thumbnail.tone, ZQTheme::current().isDark()));
    } else {
        painter.setBrush(zqColor(ZQColorRole::Shadow));
        painter.drawRoundedRect(place.target.translated(0, 1), hasCorners ? 0 : pictureRadius,
                                hasCorners ? 0 : pictureRadius);
    }
    if (hasCorners) {
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform, !place.isPixelForPixel);
        painter.setRenderHint(QPainter::Antialiasing, !place.isPixelForPixel);
        painter.drawImage(place.target, sharpFor(image, place.target.size() * ratio));
        painter.restore();
        return;
    }
    const QImage shown = sharpFor(image, place.target.size() * ratio);
    QBrush brush(shown);
    QTransform transform;
    transform.translate(place.target.x(), place.target.y());
    transform.scale(place.target.width() / shown.width(), place.target.height() / shown.height());
    brush.setTransform(transform);
    painter.setBrush(brush);
    painter.drawRoundedRect(place.target, pictureRadius, pictureRadius);
}

void ZQGridView::paintTitle(QPainter &painter, const ZQGridItem &item, const QRect &box, bool selected)
{
    painter.setFont(ZQTheme::fontForName(ZQTheme::current().font(ZQMeasure::smallTextSize), item.title));
    const QFontMetrics metrics = painter.fontMetrics();
    const QString extension = m_showsExtensions ? withDot(item.extension) : QString();
    const int extensionWidth = metrics.horizontalAdvance(extension);
    const QString title =
        metrics.elidedText(item.title, Qt::ElideMiddle, std::max(0, box.width() - 12 - extensionWidth));
    const int titleWidth = metrics.horizontalAdvance(title);
    const int left = box.left() + (box.width() - titleWidth - extensionWidth) / 2;
    if (selected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(ZQColorRole::AccentFill));
        painter.drawRoundedRect(QRect(left - 6, box.top(), titleWidth + extensionWidth + 12, box.height()), 4, 4);
    }
    painter.setPen(zqColor(selected ? ZQColorRole::AccentText : ZQColorRole::Text));
    painter.drawText(QRect(left, box.top(), titleWidth + 2, box.height()), Qt::AlignVCenter, title);
    painter.setPen(zqColor(selected ? ZQColorRole::AccentText : ZQColorRole::TextFaint));
    painter.drawText(QRect(left + titleWidth, box.top(), extensionWidth + 2, box.height()), Qt::AlignVCenter,
                     extension);
}

void ZQGridView::paintHead(QPainter &painter, int group, int y)
{
    const int left = ZQGridLayout::sideMargin;
    const int right = viewport()->width() - ZQGridLayout::sideMargin;
    const QRect head(0, y, viewport()->width(), ZQMeasure::groupHeadHeight);
    const auto mirrored = [&](const QRect &rect) { return QStyle::visualRect(layoutDirection(), head, rect); };
    painter.fillRect(head, zqColor(ZQColorRole::Ground));
    if (hasFocus() && isOnHead() && m_layout.groupOfIndex(m_current) == group) {
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(head).adjusted(left - 7.5, 4.5, 7.5 - left, -4.5), cellRadius, cellRadius);
    }
    painter.fillRect(QRect(left, head.bottom(), right - left, 1), zqColor(ZQColorRole::Border));
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize, QFont::DemiBold));
    painter.setPen(zqColor(ZQColorRole::Text));
    const QString title =
        painter.fontMetrics().elidedText(m_groups[group].title, Qt::ElideMiddle, std::max(40, right - left - 110));
    painter.drawText(QRect(left, y, right - left, head.height()), Qt::AlignVCenter, title);
    int x = left + painter.fontMetrics().horizontalAdvance(title) + 8;
    painter.setFont(ZQTheme::current().font(ZQMeasure::tinyTextSize, QFont::Medium));
    const QString count = QLocale().toString(m_groups[group].count);
    const QRect badge =
        mirrored({x, y + (head.height() - 16) / 2, painter.fontMetrics().horizontalAdvance(count) + 14, 16});
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::Raised2));
    painter.drawRoundedRect(badge, 8, 8);
    painter.setPen(zqColor(ZQColorRole::TextMuted));
    painter.drawText(badge, Qt::AlignCenter, count);
    const bool isCollapsed = m_layout.isCollapsed(group);
    const QRectF twisty = mirrored({right - 14, y + (head.height() - 12) / 2, 12, 12});
    painter.save();
    if (isCollapsed && isRightToLeft()) { // the other way round
        painter.translate(2 * twisty.center().x(), 0);
        painter.scale(-1, 1);
    }
    ZQIcon::paint(painter, twisty, isCollapsed ? QStringLiteral("chevron-right") : QStringLiteral("chevron-down"),
                  zqColor(ZQColorRole::TextFaint));
    painter.restore();
}

void ZQGridView::paintOverlays(QPainter &painter)
{
    const QColor accent = zqColor(ZQColorRole::Accent);
    if (m_press == Press::Band && m_lastPoint != m_pressPoint) {
        const int y =
            int(std::clamp<qint64>(m_pressOffset + m_pressPoint.y() - scrollOffset(), -4, viewport()->height() + 4));
        QColor fill = accent;
        fill.setAlphaF(0.16F);
        painter.setPen(QPen(accent, 1));
        painter.setBrush(fill);
        painter.drawRect(
            QRectF(QRect(QPoint(m_pressPoint.x(), y), m_lastPoint).normalized()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    if (hasFocus() && m_isReachedByKey && !visibleIndexes().contains(m_current)) { // no item shows it
        painter.setPen(QPen(accent, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(viewport()->rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    if (m_isDropTarget) {
        painter.setPen(QPen(accent, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(2, 2, -2, -2), cellRadius, cellRadius);
    }
    if (m_dropIndex >= 0 && m_layout.count() > 0) {
        const bool isAfter = m_dropIndex >= m_layout.count();
        if (m_showsList) {
            const QRect row = visualRect(isAfter ? m_layout.count() - 1 : m_dropIndex);
            painter.fillRect(QRect(row.left(), (isAfter ? row.bottom() + 1 : row.top()) - 1, row.width(), 2), accent);
            return;
        }
        const QRect cell = visualRect(isAfter ? m_layout.count() - 1 : m_dropIndex);
        const int x = isAfter != isRightToLeft() ? cell.right() + ZQGridLayout::columnGap / 2
                                                 : cell.left() - ZQGridLayout::columnGap / 2;
        painter.fillRect(QRect(x - 1, cell.top(), 2, m_layout.pictureHeight()), accent);
    }
}
