#include "Classes/Interface/Capture/ZQScreenshotSingleWindowView.h"

#include "Classes/Interface/Capture/PickableWindows.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr double lineWidth = 2;
constexpr double tint = 0.18; // of the accent, over what is highlighted
constexpr double hintHeight = 40;
constexpr qsizetype longestName = 80;

} // namespace

ZQScreenshotSingleWindowView::ZQScreenshotSingleWindowView(const FrozenScreen &screen, PickableWindows &windows,
                                                           ZQScreenshotSingleWindowViewDelegate &delegate,
                                                           QWidget *parent)
    : ScreenshotView(screen, parent), m_windows(windows), m_delegate(delegate)
{
    setObjectName(QStringLiteral("ScreenshotWindow"));
    setAccessibleName(zqLocalized("Window to capture"));
    setAccessibleDescription(zqLocalized("Tab goes to the next window"));
    connect(&m_windows, &PickableWindows::changed, this, &ZQScreenshotSingleWindowView::windowsDidChange);
}

void ZQScreenshotSingleWindowView::windowsDidChange()
{
    setCursor(m_windows.highlighted() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    update();
    if (m_windows.highlighted() && QWidget::keyboardGrabber() == this) {
        announce(m_windows.highlightedName());
    }
}

void ZQScreenshotSingleWindowView::confirm()
{
    if (const auto number = m_windows.highlighted()) {
        m_delegate.screenshotSingleWindowView(*this, *number);
    }
}

QString ZQScreenshotSingleWindowView::hint() const
{
    return m_windows.isEmpty() ? zqLocalized("There is no window to take · Esc leaves")
                               : zqLocalized("Click or Return takes the window · Tab goes on · Esc leaves");
}

bool ZQScreenshotSingleWindowView::focusNextPrevChild(bool /*next*/)
{
    return false; // Tab is a key of this view
}

void ZQScreenshotSingleWindowView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Right:
    case Qt::Key_Down:
        m_windows.highlightNext(1);
        break;
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Up:
        m_windows.highlightNext(-1);
        break;
    default:
        ScreenshotView::keyPressEvent(event);
    }
}

void ZQScreenshotSingleWindowView::highlightAt(const QPointF &position)
{
    m_windows.highlightAt(screen().info.pixelFrame.topLeft() + pixelAt(position));
}

void ZQScreenshotSingleWindowView::mouseMoveEvent(QMouseEvent *event)
{
    highlightAt(event->position());
}

void ZQScreenshotSingleWindowView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        highlightAt(event->position()); // what is clicked, whatever Tab had gone to
        confirm();
    }
}

void ZQScreenshotSingleWindowView::enterEvent(QEnterEvent *event)
{
    ScreenshotView::enterEvent(event);
    highlightAt(event->position());
}

void ZQScreenshotSingleWindowView::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const QPoint origin = screen().info.pixelFrame.topLeft();
    const QRect here = m_windows.highlightedBounds().translated(-origin).intersected({{}, screen().image.size()});
    paintPicture(painter, here);
    if (!here.isEmpty()) {
        const QRectF rect = viewRect(here);
        QColor shade = zqColor(ZQColorRole::Accent);
        shade.setAlphaF(float(tint));
        painter.fillRect(rect, shade);
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), lineWidth));
        painter.drawRect(rect.adjusted(lineWidth / 2, lineWidth / 2, -lineWidth / 2, -lineWidth / 2));
        const QString name = zqShortened(m_windows.highlightedName(), longestName);
        const QSizeF size = tagSize(name);
        if (!name.isEmpty() && m_windows.screenOfHighlighted() == screen().info.pixelFrame) { // once, where it is most
            paintTag(painter, rect.center() - QPointF(size.width() / 2, size.height() / 2), name);
        }
    }
    paintHint(painter, {(width() - tagSize(hint()).width()) / 2, height() - hintHeight});
}
