#include "Kit/Widgets/ZQSwitch.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

ZQSwitch::ZQSwitch(const QStringList &segments, QWidget *parent) : QWidget(parent), m_segments(segments)
{
    setFocusPolicy(Qt::TabFocus);
    setFixedHeight(28);
    setAccessibleName(segments.value(0));
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
    QAccessibleEvent event(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&event);
    update();
    Q_EMIT currentIndexChanged(index);
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

void ZQSwitch::mousePressEvent(QMouseEvent *event)
{
    for (int i = 0; i < m_segments.size(); ++i) {
        if (segmentRect(i).contains(event->pos())) {
            setCurrentIndex(i);
        }
    }
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
