#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QDrag>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace {

// How many are dragged, in the corner of the picture that stands for all.
void paintNumber(QPainter &painter, qint64 count)
{
    constexpr int inset = 4;
    const QString text = QLocale().toString(count);
    const QFontMetrics metrics = painter.fontMetrics();
    const int height = metrics.height() + inset;
    const QRect badge(inset, inset, std::max(height, metrics.horizontalAdvance(text) + 3 * inset), height);
    painter.setOpacity(1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::AccentFill));
    painter.drawRoundedRect(badge, height / 2.0, height / 2.0);
    painter.setPen(zqColor(ZQColorRole::AccentText));
    painter.drawText(badge, Qt::AlignCenter, text);
}

} // namespace

void ZQGridView::mousePressEvent(QMouseEvent *event)
{
    m_press = Press::None;
    m_isReachedByKey = false;
    m_selectOnRelease = false;
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_pressPoint = m_lastPoint = event->pos();
    m_pressOffset = scrollOffset();
    if (const int head = headAt(event->pos()); head >= 0) {
        setGroupCollapsed(head, !m_layout.isCollapsed(head));
        return;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const qint64 index = indexAt(event->pos());
    if (index < 0) {
        m_press = Press::Band;
        m_bandToggles = modifiers & Qt::ControlModifier;
        m_bandBase = modifiers & (Qt::ControlModifier | Qt::ShiftModifier) ? m_selection : ZQIndexSet();
        setSelectionQuietly(m_bandBase);
        return;
    }
    m_press = Press::Item;
    const bool startsBand = isBesideContent(event->pos()) && !m_selection.contains(index);
    if (startsBand) { // of one row until the pointer moves
        m_press = Press::Band;
        m_bandToggles = modifiers & Qt::ControlModifier;
        m_bandBase = modifiers & (Qt::ControlModifier | Qt::ShiftModifier) ? m_selection : ZQIndexSet();
    }
    if (modifiers & Qt::ControlModifier) {
        ZQIndexSet selection = m_selection;
        selection.toggle(index);
        m_anchor = index;
        m_current = index;
        setSelectionQuietly(selection);
    } else if (m_selection.contains(index) && !(modifiers & Qt::ShiftModifier)) {
        m_current = index;
        m_selectOnRelease = true; // a press on one of several may begin a drag of them all
        viewport()->update();
    } else {
        moveCurrent(index, modifiers);
    }
}

void ZQGridView::mouseMoveEvent(QMouseEvent *event)
{
    m_lastPoint = event->pos();
    if (!(event->buttons() & Qt::LeftButton)) {
        return;
    }
    if (m_press == Press::Band) {
        const bool isOutside = event->pos().y() < 0 || event->pos().y() > viewport()->height();
        if (isOutside && !m_autoScroll.isActive()) {
            m_autoScroll.start();
        } else if (!isOutside) {
            m_autoScroll.stop();
        }
        updateRubberBand(event->pos());
    } else if (m_press == Press::Item &&
               (event->pos() - m_pressPoint).manhattanLength() >= QApplication::startDragDistance()) {
        m_press = Press::None;
        m_selectOnRelease = false;
        startDrag();
    }
}

void ZQGridView::mouseReleaseEvent(QMouseEvent *event)
{
    m_autoScroll.stop();
    if (m_selectOnRelease && event->button() == Qt::LeftButton) {
        moveCurrent(m_current, Qt::NoModifier);
    }
    m_selectOnRelease = false;
    m_press = Press::None;
    viewport()->update();
}

void ZQGridView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const qint64 index = indexAt(event->pos());
    if (event->button() == Qt::LeftButton && index >= 0) {
        Q_EMIT activated(index);
    } else {
        mousePressEvent(event);
    }
}

void ZQGridView::updateRubberBand(const QPoint &point)
{
    const qint64 startY = m_pressOffset + m_pressPoint.y();
    const qint64 endY = scrollOffset() + point.y();
    const auto [left, right] = std::minmax({layoutX(m_pressPoint.x()), layoutX(point.x())});
    const ZQIndexSet inside = m_layout.indexesIn(left, std::min(startY, endY), right, std::max(startY, endY));
    ZQIndexSet selection = m_bandBase;
    if (m_bandToggles) {
        selection.toggle(inside);
    } else {
        selection.unite(inside);
    }
    if (!inside.isEmpty()) {
        m_current = m_anchor = inside.first();
    }
    setSelectionQuietly(selection);
    viewport()->update();
}

void ZQGridView::startDrag()
{
    QMimeData *mime = m_source ? m_source->mimeData(m_selection) : nullptr;
    if (!mime) {
        return;
    }
    auto *drag = new QDrag(this);
    drag->setMimeData(mime);
    if (m_current >= 0 && m_current < m_source->count()) {
        // Small and beside the pointer, so that it covers no target.
        constexpr QSize size(72, 64);
        constexpr int distance = 14;
        QPixmap picture(size * devicePixelRatioF());
        picture.setDevicePixelRatio(devicePixelRatioF());
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setOpacity(0.85);
        paintPicture(painter, m_source->item(m_current), QRect({}, size));
        painter.setOpacity(1);
        if (m_selection.count() > 1) {
            paintNumber(painter, m_selection.count());
        }
        painter.end();
        drag->setPixmap(picture);
        drag->setHotSpot({-distance, -distance});
    }
    drag->exec(Qt::CopyAction); // where others could move, the files would be gone from here
}

void ZQGridView::dragEnterEvent(QDragEnterEvent *event)
{
    showDropPlace(event);
    event->accept(); // what enters where it is refused may go on to where it is not
}

void ZQGridView::showDropPlace(QDragMoveEvent *event)
{
    const QPoint point = event->position().toPoint();
    const qint64 index = m_layout.insertionIndexAt(layoutX(point.x()), scrollOffset() + point.y());
    const Qt::DropAction action = m_source ? m_source->dropAction(event->mimeData(), index) : Qt::IgnoreAction;
    m_isDropTarget = action != Qt::IgnoreAction;
    m_dropIndex = m_isDropTarget && m_source->dropsAtIndex(event->mimeData()) ? index : -1;
    if (m_isDropTarget) {
        event->setDropAction(action);
        event->accept();
    } else {
        event->ignore();
    }
    viewport()->update();
}

void ZQGridView::dragMoveEvent(QDragMoveEvent *event)
{
    showDropPlace(event);
    const QPoint point = event->position().toPoint();
    constexpr int edge = 28;
    if (point.y() < edge) {
        setScrollOffset(scrollOffset() - edge);
    } else if (point.y() > viewport()->height() - edge) {
        setScrollOffset(scrollOffset() + edge);
    }
}

void ZQGridView::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    m_isDropTarget = false;
    m_dropIndex = -1;
    viewport()->update();
}

void ZQGridView::dropEvent(QDropEvent *event)
{
    const QPoint point = event->position().toPoint();
    const qint64 index = m_layout.insertionIndexAt(layoutX(point.x()), scrollOffset() + point.y());
    m_isDropTarget = false;
    m_dropIndex = -1;
    const Qt::DropAction action = m_source ? m_source->dropAction(event->mimeData(), index) : Qt::IgnoreAction;
    if (action != Qt::IgnoreAction && m_source->drop(event->mimeData(), index, action)) {
        event->setDropAction(action);
        event->accept();
    } else {
        event->ignore();
    }
    viewport()->update();
}
