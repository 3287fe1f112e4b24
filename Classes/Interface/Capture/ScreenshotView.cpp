#include "Classes/Interface/Capture/ScreenshotView.h"

#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace {

constexpr double tagMargin = 8;
constexpr double tagHeight = 23;
constexpr double tagRadius = 6;
constexpr double hintOpacity = 0.85;

QFont tagFont()
{
    return ZQTheme::current().font(ZQMeasure::smallTextSize);
}

} // namespace

ScreenshotView::ScreenshotView(const FrozenScreen &screen, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint),
      m_screen(screen)
{
    zqSetAccessibleRole(this, QAccessible::Notification); // it covers all, and what is chosen in it is read out
    // The window that has the focus keeps it: the keys are grabbed.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    m_screen.image.setDevicePixelRatio(m_screen.info.scale);
    m_bright = QPixmap::fromImage(m_screen.image);
    QImage dimmed = m_screen.image.convertToFormat(QImage::Format_RGB32);
    {
        QPainter painter(&dimmed);
        painter.fillRect(QRectF(QPointF(), QSizeF(dimmed.size())), zqColor(ZQColorRole::Mask));
    }
    m_dimmed = QPixmap::fromImage(dimmed);
}

void ScreenshotView::coverScreen()
{
    setGeometry(m_screen.info.frame);
    show();
    raise();
    windowHandle()->installEventFilter(this);
}

void ScreenshotView::uncoverScreen()
{
    m_isOver = true;
    hide();
}

// Whom they would be told to may be gone.
bool ScreenshotView::event(QEvent *event)
{
    const bool isInput = dynamic_cast<QInputEvent *>(event) || event->type() == QEvent::Enter ||
                         event->type() == QEvent::Leave || event->type() == QEvent::Paint;
    return m_isOver && isInput ? true : QWidget::event(event);
}

bool ScreenshotView::eventFilter(QObject *object, QEvent *event)
{
    if (auto *pointer = dynamic_cast<QMouseEvent *>(event); pointer && object == windowHandle()) {
        m_exactPosition = pointer->position();
    }
    return QWidget::eventFilter(object, event);
}

QPointF ScreenshotView::exactPosition(const QMouseEvent &event) const
{
    const QPointF rounding = m_exactPosition - event.position();
    const bool isSame = std::abs(rounding.x()) <= 0.5 && std::abs(rounding.y()) <= 0.5;
    return isSame ? m_exactPosition : event.position();
}

QPoint ScreenshotView::pixelAt(const QPointF &position) const
{
    constexpr double rounding = 0.001; // a pixel was divided by the scale to become a position
    const QPointF pixel = position * m_screen.info.scale + QPointF(rounding, rounding);
    const QSize size = m_screen.image.size();
    return {std::clamp(int(std::floor(pixel.x())), 0, std::max(size.width() - 1, 0)),
            std::clamp(int(std::floor(pixel.y())), 0, std::max(size.height() - 1, 0))};
}

QRect ScreenshotView::pixelRect(const QRectF &viewRect) const
{
    const double scale = m_screen.info.scale;
    const QPoint first(int(std::lround(viewRect.left() * scale)), int(std::lround(viewRect.top() * scale)));
    const QPoint end(int(std::lround(viewRect.right() * scale)), int(std::lround(viewRect.bottom() * scale)));
    return QRect(first, end - QPoint(1, 1)).intersected({{}, m_screen.image.size()});
}

QRectF ScreenshotView::viewRect(const QRect &pixelRect) const
{
    const double scale = m_screen.info.scale;
    return {pixelRect.x() / scale, pixelRect.y() / scale, pixelRect.width() / scale, pixelRect.height() / scale};
}

void ScreenshotView::paintPicture(QPainter &painter, const QRect &bright) const
{
    painter.drawPixmap(QPointF(), m_dimmed);
    if (!bright.isEmpty()) {
        painter.drawPixmap(viewRect(bright), m_bright, QRectF(bright));
    }
}

QSizeF ScreenshotView::tagSize(const QString &text) const
{
    return {std::ceil(QFontMetricsF(tagFont()).horizontalAdvance(text)) + 2 * tagMargin, tagHeight};
}

QRectF ScreenshotView::paintTag(QPainter &painter, const QPointF &place, const QString &text, double opacity) const
{
    QRectF tag(place, tagSize(text));
    tag.moveLeft(std::clamp(tag.left(), 0.0, std::max(width() - tag.width(), 0.0)));
    tag.moveTop(std::clamp(tag.top(), 0.0, std::max(height() - tag.height(), 0.0)));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(opacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::MaskTag));
    painter.drawRoundedRect(tag, tagRadius, tagRadius);
    painter.setOpacity(1);
    painter.setPen(zqColor(ZQColorRole::MaskLine));
    painter.setFont(tagFont());
    painter.drawText(tag.adjusted(tagMargin, 0, -tagMargin, 0), int(Qt::AlignVCenter) | int(Qt::TextSingleLine), text);
    painter.restore();
    return tag;
}

void ScreenshotView::paintHint(QPainter &painter, const QPointF &place) const
{
    paintTag(painter, place, hint(), hintOpacity);
}

void ScreenshotView::announce(const QString &text)
{
    setAccessibleName(text);
    zqAnnounce(this, text);
}

void ScreenshotView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        left();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        confirm();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

// The way out where another program holds the keyboard.
void ScreenshotView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton) {
        left();
    }
}

void ScreenshotView::enterEvent(QEnterEvent * /*event*/)
{
    entered();
}
