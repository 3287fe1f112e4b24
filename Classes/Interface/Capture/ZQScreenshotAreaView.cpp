#include "Classes/Interface/Capture/ZQScreenshotAreaView.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyleHints>

#include <algorithm>
#include <cmath>

namespace {

constexpr double handleRadius = 4.5;
constexpr double handleReach = 9; // of the pointer
constexpr double lineWidth = 1.5;
constexpr double tagDistance = 10;
constexpr double lensRadius = 60;
constexpr double lensDistance = 24; // of its edge from the pointer
constexpr int lensPixels = 15;      // across; odd, so that one is in the middle

QRect between(const QPoint &a, const QPoint &b)
{
    return {QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
            QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y()))};
}

} // namespace

ZQScreenshotAreaView::ZQScreenshotAreaView(const FrozenScreen &screen, ZQScreenshotAreaViewDelegate &delegate,
                                           QWidget *parent)
    : ScreenshotView(screen, parent), m_delegate(delegate)
{
    setObjectName(QStringLiteral("ScreenshotArea"));
    setAccessibleName(zqLocalized("Area to capture"));
    setAccessibleDescription(zqLocalized("An arrow key selects the middle of the screen"));
    setCursor(Qt::CrossCursor);
}

void ZQScreenshotAreaView::clearSelection()
{
    m_selection = {};
    m_isDragging = false;
    m_isElsewhere = true;
    update();
}

void ZQScreenshotAreaView::confirm()
{
    if (!m_selection.isEmpty()) {
        m_delegate.screenshotAreaView(*this, viewRect(m_selection));
    }
}

QString ZQScreenshotAreaView::hint() const
{
    if (!m_selection.isEmpty()) {
        return zqLocalized("Return takes it · Esc leaves · arrows move, Shift by 10, Ctrl resizes");
    }
    return QGuiApplication::screens().size() > 1
               ? zqLocalized("Drag over an area of one screen, or press an arrow key · Esc leaves")
               : zqLocalized("Drag over an area, or press an arrow key · Esc leaves");
}

QString ZQScreenshotAreaView::sizeText() const
{
    return zqFormat(zqLocalized("%d × %d"), {m_selection.width(), m_selection.height()});
}

void ZQScreenshotAreaView::announceSelection()
{
    if (!m_selection.isEmpty()) {
        announce(zqFormat(zqLocalized("%d × %d pixels, from %d, %d"),
                          {m_selection.width(), m_selection.height(), m_selection.x(), m_selection.y()}));
    }
}

void ZQScreenshotAreaView::select(const QRect &selection)
{
    const bool begins = m_selection.isEmpty();
    m_selection = selection;
    m_isElsewhere = false;
    update();
    if (begins && !m_selection.isEmpty()) {
        m_delegate.screenshotAreaViewDidBegin(*this);
    }
}

// The pointer.

QPointF ZQScreenshotAreaView::handlePlace(const Grip &handle) const
{
    const QRectF rect = viewRect(m_selection);
    return {rect.center().x() + handle.x * rect.width() / 2, rect.center().y() + handle.y * rect.height() / 2};
}

ZQScreenshotAreaView::Grip ZQScreenshotAreaView::gripAt(const QPointF &position) const
{
    if (m_selection.isEmpty()) {
        return {};
    }
    Grip nearest;
    double least = handleReach;
    for (const int x : {-1, 0, 1}) {
        for (const int y : {-1, 0, 1}) {
            const QPointF way = position - handlePlace({x, y});
            if (const double distance = std::hypot(way.x(), way.y()); (x != 0 || y != 0) && distance <= least) {
                nearest = {x, y};
                least = distance;
            }
        }
    }
    nearest.isMove = !nearest.isHandle() && viewRect(m_selection).contains(position);
    return nearest;
}

void ZQScreenshotAreaView::showCursor(const Grip &grip)
{
    const bool isSlant = grip.x != 0 && grip.y != 0;
    setCursor(isSlant       ? (grip.x == grip.y ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor)
              : grip.x != 0 ? Qt::SizeHorCursor
              : grip.y != 0 ? Qt::SizeVerCursor
              : grip.isMove ? Qt::SizeAllCursor
                            : Qt::CrossCursor);
}

void ZQScreenshotAreaView::beginDrag(const QPointF &position)
{
    const QPoint pixel = pixelAt(position);
    m_grip = gripAt(position);
    m_before = m_selection;
    m_pressed = position;
    m_isDragging = true;
    m_anchor = pixel;
    m_offset = {};
    if (m_grip.isHandle()) {
        const QPoint held(m_grip.x < 0 ? m_before.left() : m_before.right(),
                          m_grip.y < 0 ? m_before.top() : m_before.bottom());
        m_anchor = {m_grip.x < 0 ? m_before.right() : m_before.left(),
                    m_grip.y < 0 ? m_before.bottom() : m_before.top()};
        m_offset = held - pixel;
    }
}

void ZQScreenshotAreaView::dragTo(const QPoint &pixel)
{
    const QRect all({}, screen().image.size());
    if (m_grip.isMove) {
        moveBy(m_before.topLeft() + pixel - m_anchor - m_selection.topLeft(), false);
        return;
    }
    const QPoint held = pixel + m_offset;
    const QPoint corner(std::clamp(held.x(), all.left(), all.right()), std::clamp(held.y(), all.top(), all.bottom()));
    QRect drawn = between(m_anchor, corner);
    if (m_grip.isHandle() && m_grip.x == 0) {
        drawn.setLeft(m_before.left());
        drawn.setRight(m_before.right());
    }
    if (m_grip.isHandle() && m_grip.y == 0) {
        drawn.setTop(m_before.top());
        drawn.setBottom(m_before.bottom());
    }
    select(drawn);
}

void ZQScreenshotAreaView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        beginDrag(exactPosition(*event));
    } else {
        ScreenshotView::mousePressEvent(event);
    }
}

void ZQScreenshotAreaView::mouseMoveEvent(QMouseEvent *event)
{
    m_pointer = exactPosition(*event);
    m_isPointerHere = true;
    const bool isDrawing = m_isDragging && !m_grip.isMove && !m_grip.isHandle();
    const double way = (m_pointer - m_pressed).manhattanLength();
    if (m_isDragging && (!isDrawing || m_selection != m_before ||
                         way >= std::min(QGuiApplication::styleHints()->startDragDistance(), 3))) {
        dragTo(pixelAt(m_pointer));
    } else if (!m_isDragging) {
        showCursor(gripAt(m_pointer));
    }
    update();
}

void ZQScreenshotAreaView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_isDragging) {
        m_isDragging = false;
        showCursor(gripAt(event->position()));
        announceSelection();
        update();
    }
}

void ZQScreenshotAreaView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && viewRect(m_selection).contains(event->position())) {
        confirm();
    }
}

void ZQScreenshotAreaView::leaveEvent(QEvent * /*event*/)
{
    m_isPointerHere = false;
    update();
}

// The keyboard.

QRect ZQScreenshotAreaView::startingSelection() const
{
    const QSize size = screen().image.size();
    return {size.width() / 4, size.height() / 4, std::max(size.width() / 2, 1), std::max(size.height() / 2, 1)};
}

void ZQScreenshotAreaView::moveBy(const QPoint &step, bool resizes)
{
    const QSize size = screen().image.size();
    QRect moved = m_selection;
    if (resizes) {
        moved.setWidth(std::clamp(moved.width() + step.x(), 1, size.width() - moved.x()));
        moved.setHeight(std::clamp(moved.height() + step.y(), 1, size.height() - moved.y()));
    } else {
        moved.moveTo(std::clamp(moved.x() + step.x(), 0, size.width() - moved.width()),
                     std::clamp(moved.y() + step.y(), 0, size.height() - moved.height()));
    }
    select(moved);
}

void ZQScreenshotAreaView::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    const QPoint direction(int(key == Qt::Key_Right) - int(key == Qt::Key_Left),
                           int(key == Qt::Key_Down) - int(key == Qt::Key_Up));
    if (direction.isNull() || m_isDragging) {
        ScreenshotView::keyPressEvent(event);
        return;
    }
    if (m_selection.isEmpty()) {
        select(startingSelection());
    } else {
        const int points = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
        const int pixels = std::max(1, int(std::lround(points * screen().info.scale)));
        moveBy(direction * pixels, event->modifiers().testFlag(Qt::ControlModifier));
    }
    announceSelection();
}

// Drawing.

void ZQScreenshotAreaView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    paintPicture(painter, m_selection);
    if (!m_selection.isEmpty()) {
        paintSelection(painter);
    }
    if (showsMagnifier()) {
        paintMagnifier(painter);
    }
    // What is read lies above what is looked at.
    if (!m_selection.isEmpty()) {
        paintTags(painter);
    } else if (!m_isElsewhere) {
        paintHint(painter, placeOfFirstHint());
    }
}

// Below in the middle, or above while the magnifier is there.
QPointF ZQScreenshotAreaView::placeOfFirstHint() const
{
    const QSizeF size = tagSize(hint());
    const QRectF below({(width() - size.width()) / 2, height() - 4 * tagDistance}, size);
    const QRectF taken = lensRect().adjusted(-2, -2, 2, tagDistance + size.height()); // with its line and its own tag
    const bool isFree = !showsMagnifier() || !taken.intersects(below);
    return isFree ? below.topLeft() : QPointF(below.left(), 2 * tagDistance);
}

void ZQScreenshotAreaView::paintSelection(QPainter &painter) const
{
    const QRectF rect = viewRect(m_selection);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(zqColor(ZQColorRole::MaskLine), lineWidth));
    painter.drawRect(rect.adjusted(-lineWidth / 2, -lineWidth / 2, lineWidth / 2, lineWidth / 2)); // beside the pixels
    painter.setPen(QPen(zqColor(ZQColorRole::Mask), 1));
    painter.setBrush(zqColor(ZQColorRole::MaskLine));
    for (const int x : {-1, 0, 1}) {
        for (const int y : {-1, 0, 1}) {
            if (x != 0 || y != 0) {
                painter.drawEllipse(handlePlace({x, y}), handleRadius + 0.5, handleRadius + 0.5);
            }
        }
    }
    painter.restore();
}

void ZQScreenshotAreaView::paintTags(QPainter &painter) const
{
    const QRectF rect = viewRect(m_selection);
    const double below = rect.bottom() + tagDistance;
    const bool hasRoom = below + tagSize(sizeText()).height() <= height();
    const double line = hasRoom ? below : rect.bottom() - tagDistance - tagSize(sizeText()).height();
    const QRectF size = paintTag(painter, {rect.left() + (hasRoom ? 0 : tagDistance), line}, sizeText());
    if (!m_isDragging) {
        const double right = std::max(size.right() + tagDistance, rect.right() - tagSize(hint()).width());
        paintHint(painter, {right, line});
    }
}

bool ZQScreenshotAreaView::showsMagnifier() const
{
    const Grip grip = m_isDragging ? m_grip : gripAt(m_pointer);
    return m_isPointerHere && !grip.isMove;
}

QRectF ZQScreenshotAreaView::lensRect() const
{
    const double reach = lensDistance + 2 * lensRadius;
    const QPointF middle(m_pointer.x() + (m_pointer.x() + reach > width() ? -1 : 1) * (lensDistance + lensRadius),
                         m_pointer.y() + (m_pointer.y() + reach > height() ? -1 : 1) * (lensDistance + lensRadius));
    return {middle - QPointF(lensRadius, lensRadius), QSizeF(2 * lensRadius, 2 * lensRadius)};
}

void ZQScreenshotAreaView::paintMagnifier(QPainter &painter) const
{
    const QRectF lens = lensRect();
    const QPointF middle = lens.center();
    const QPoint pixel = pixelAt(m_pointer);
    const QPoint half(lensPixels / 2, lensPixels / 2);
    // Beside the screen there is nothing to see: `copy` leaves it transparent.
    QImage around = screen().image.copy(QRect(pixel - half, pixel + half));
    around.setDevicePixelRatio(1);
    QPainterPath circle;
    circle.addEllipse(lens);
    painter.save();
    painter.setClipPath(circle);
    painter.fillRect(lens, zqColor(ZQColorRole::MaskTag));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(lens, around);
    const double side = lens.width() / lensPixels;
    const QRectF cell(middle - QPointF(side / 2, side / 2), QSizeF(side, side));
    // On light pixels the wider dark line is seen, on dark ones the other.
    for (const QPen &pen : {QPen(zqColor(ZQColorRole::Mask), 3), QPen(zqColor(ZQColorRole::MaskLine), 1)}) {
        painter.setPen(pen);
        painter.drawLine(QPointF(lens.left(), middle.y()), QPointF(cell.left(), middle.y()));
        painter.drawLine(QPointF(cell.right(), middle.y()), QPointF(lens.right(), middle.y()));
        painter.drawLine(QPointF(middle.x(), lens.top()), QPointF(middle.x(), cell.top()));
        painter.drawLine(QPointF(middle.x(), cell.bottom()), QPointF(middle.x(), lens.bottom()));
        painter.drawRect(cell);
    }
    painter.setClipping(false);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(zqColor(ZQColorRole::MaskLine), 2));
    painter.drawEllipse(lens);
    painter.restore();
    const QString place = zqFormat(zqLocalized("%d, %d"), {pixel.x(), pixel.y()});
    const QSizeF size = tagSize(place);
    paintTag(painter, {middle.x() - size.width() / 2, lens.bottom() + tagDistance / 2}, place);
}
