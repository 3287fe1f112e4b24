#include "Kit/Widgets/ZQSwitch.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QDragMoveEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds restBeforeTurning(450); // of a drag that may only be on its way past

} // namespace

ZQSwitch::ZQSwitch(const QStringList &segments, QWidget *parent) : QWidget(parent), m_segments(segments)
{
    setFocusPolicy(Qt::TabFocus);
    setFixedHeight(28);
    setAccessibleName(segments.value(0));
    setAcceptDrops(true);
    m_turn.setSingleShot(true);
    m_turn.setInterval(restBeforeTurning);
    connect(&m_turn, &QTimer::timeout, this, [this] { setCurrentIndex(m_dragged); });
}

QSize ZQSwitch::sizeHint() const
{
    return {int(m_segments.size()) * 90, 28};
}

void ZQSwitch::setCurrentIndex(int index)
{
    if (index < 0 || index >= m_segments.size() || index == m_current) {
        return;
    }
    m_current = index;
    setAccessibleName(m_segments[index]);
    accessiblePartIsCurrent(this, index);
    update();
    Q_EMIT currentIndexChanged(index);
}

ZQAccessiblePart ZQSwitch::accessiblePart(int index) const
{
    const bool isOn = index == m_current;
    return {.name = m_segments[index], .place = segmentRect(index), .isChosen = isOn, .isCurrent = isOn};
}

QRect ZQSwitch::segmentRect(int index) const
{
    const int inner = width() - 4;
    const int left = 2 + inner * index / int(m_segments.size());
    const int right = 2 + inner * (index + 1) / int(m_segments.size());
    return {left, 2, right - left, height() - 4};
}

void ZQSwitch::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(zqColor(ZQColorRole::Raised));
    painter.drawRoundedRect(rect(), 7, 7);
    painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
    for (int i = 0; i < m_segments.size(); ++i) {
        const QRect segment = segmentRect(i);
        if (i == m_current) {
            painter.setPen(hasFocus() ? QPen(zqColor(ZQColorRole::Accent), 1) : QPen(Qt::NoPen));
            painter.setBrush(zqColor(ZQColorRole::Raised2));
            painter.drawRoundedRect(QRectF(segment).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
        }
        painter.setPen(zqColor(i == m_current ? ZQColorRole::Text : ZQColorRole::TextMuted));
        painter.drawText(segment, Qt::AlignCenter, m_segments[i]);
    }
}

int ZQSwitch::segmentAt(const QPoint &point) const
{
    for (int segment = 0; segment < m_segments.size(); ++segment) {
        if (segmentRect(segment).contains(point)) {
            return segment;
        }
    }
    return -1;
}

void ZQSwitch::mousePressEvent(QMouseEvent *event)
{
    setCurrentIndex(segmentAt(event->pos()));
}

void ZQSwitch::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
    event->accept(); // otherwise no move follows
}

// Nothing can be dropped here.
void ZQSwitch::dragMoveEvent(QDragMoveEvent *event)
{
    if (const int segment = segmentAt(event->position().toPoint()); segment != m_dragged) {
        m_dragged = segment;
        m_turn.start();
    }
    event->ignore();
}

void ZQSwitch::dragLeaveEvent(QDragLeaveEvent * /*event*/)
{
    m_dragged = -1;
    m_turn.stop();
}

void ZQSwitch::keyPressEvent(QKeyEvent *event)
{
    const int forward = isRightToLeft() ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
        setCurrentIndex(m_current - forward);
        break;
    case Qt::Key_Right:
        setCurrentIndex(m_current + forward);
        break;
    case Qt::Key_Space:
        setCurrentIndex((m_current + 1) % int(m_segments.size()));
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
