#include "Kit/Widgets/ZQTabStrip.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

namespace {
constexpr int tabHeight = 36;
constexpr int widestTab = 200;
constexpr int gap = 2;
} // namespace

ZQTabStrip::ZQTabStrip(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(tabHeight);
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(zqLocalized("Tabs"));
}

void ZQTabStrip::setTabs(const QStringList &titles, int current)
{
    m_titles = titles;
    m_current = current;
    setAccessibleDescription(titles.value(current));
    updateGeometry();
    update();
}

QSize ZQTabStrip::sizeHint() const
{
    return {newRect().right() + 1, tabHeight};
}

int ZQTabStrip::tabWidth(int index) const
{
    const int natural = 12 + QFontMetrics(ZQTheme::current().font()).horizontalAdvance(m_titles[index]) +
                        (count() > 1 ? 8 + 16 + 8 : 14);
    const int room = m_titles.isEmpty() || width() < 200 ? widestTab : (width() - 40) / int(m_titles.size()) - gap;
    return std::max(48, std::min({natural, widestTab, room}));
}

QRect ZQTabStrip::tabRect(int index) const
{
    int x = 0;
    for (int i = 0; i < index; ++i) {
        x += tabWidth(i) + gap;
    }
    return {x, 0, tabWidth(index), tabHeight};
}

QRect ZQTabStrip::closeRect(int index) const
{
    const QRect tab = tabRect(index);
    return {tab.right() - 22, (tabHeight - 16) / 2, 16, 16};
}

QRect ZQTabStrip::newRect() const
{
    const int x = m_titles.isEmpty() ? 0 : tabRect(int(m_titles.size()) - 1).right() + 1 + gap;
    return {x + 4, (tabHeight - 26) / 2, 26, 26};
}

int ZQTabStrip::tabAt(const QPoint &point) const
{
    for (int i = 0; i < m_titles.size(); ++i) {
        if (tabRect(i).contains(point)) {
            return i;
        }
    }
    return -1;
}

void ZQTabStrip::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(ZQTheme::current().font());
    for (int i = 0; i < m_titles.size(); ++i) {
        const QRect tab = tabRect(i);
        const bool isCurrent = i == m_current;
        if (isCurrent) {
            QPainterPath path;
            path.moveTo(tab.left() + 0.5, tab.bottom() + 1);
            path.lineTo(tab.left() + 0.5, tab.top() + 8.5);
            path.quadTo(tab.left() + 0.5, tab.top() + 0.5, tab.left() + 8.5, tab.top() + 0.5);
            path.lineTo(tab.right() - 7.5, tab.top() + 0.5);
            path.quadTo(tab.right() + 0.5, tab.top() + 0.5, tab.right() + 0.5, tab.top() + 8.5);
            path.lineTo(tab.right() + 0.5, tab.bottom() + 1);
            painter.fillPath(path, zqColor(ZQColorRole::Ground));
            painter.setPen(QPen(zqColor(hasFocus() ? ZQColorRole::Accent : ZQColorRole::Border), 1));
            painter.setBrush(Qt::NoBrush);
            painter.drawPath(path);
        } else if (i == m_hovered) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(zqColor(ZQColorRole::Hover));
            painter.drawRoundedRect(tab.adjusted(0, 3, 0, -3), 6, 6);
        }
        painter.setPen(zqColor(isCurrent ? ZQColorRole::Text : ZQColorRole::TextMuted));
        const QRect text = tab.adjusted(12, 0, count() > 1 ? -28 : -10, 0);
        painter.drawText(text, Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(m_titles[i], Qt::ElideRight, text.width() + 2));
        if (m_titles.size() > 1) {
            ZQIcon::paint(painter, QRectF(closeRect(i)).adjusted(3, 3, -3, -3), QStringLiteral("close"),
                          zqColor(ZQColorRole::TextFaint));
        }
    }
    ZQIcon::paint(painter, QRectF(newRect()).adjusted(5, 5, -5, -5), QStringLiteral("plus"),
                  zqColor(ZQColorRole::TextMuted));
}

void ZQTabStrip::mousePressEvent(QMouseEvent *event)
{
    const int index = tabAt(event->pos());
    if (event->button() == Qt::MiddleButton && index >= 0 && m_titles.size() > 1) {
        Q_EMIT closeRequested(index);
        return;
    }
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (index < 0) {
        if (newRect().contains(event->pos())) {
            Q_EMIT newRequested();
        }
        return;
    }
    if (m_titles.size() > 1 && closeRect(index).contains(event->pos())) {
        Q_EMIT closeRequested(index);
        return;
    }
    m_dragged = index;
    m_pressPoint = event->pos();
    if (index != m_current) {
        Q_EMIT currentChanged(index);
    }
}

void ZQTabStrip::mouseMoveEvent(QMouseEvent *event)
{
    const int index = tabAt(event->pos());
    if (index != m_hovered) {
        m_hovered = index;
        update();
    }
    if (m_dragged >= 0 && index >= 0 && index != m_dragged && (event->pos() - m_pressPoint).manhattanLength() > 12) {
        const int from = std::exchange(m_dragged, index);
        m_pressPoint = event->pos();
        Q_EMIT moved(from, index);
    }
}

void ZQTabStrip::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    m_dragged = -1;
}

void ZQTabStrip::leaveEvent(QEvent * /*event*/)
{
    m_hovered = -1;
    update();
}

void ZQTabStrip::keyPressEvent(QKeyEvent *event)
{
    const int step = event->key() == Qt::Key_Left ? -1 : event->key() == Qt::Key_Right ? 1 : 0;
    if (step != 0 && m_current + step >= 0 && m_current + step < m_titles.size()) {
        Q_EMIT currentChanged(m_current + step);
    } else if (event->key() == Qt::Key_Delete && m_titles.size() > 1) {
        Q_EMIT closeRequested(m_current);
    } else {
        QWidget::keyPressEvent(event);
    }
}

bool ZQTabStrip::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int index = tabAt(help->pos());
        QToolTip::showText(help->globalPos(),
                           index >= 0                        ? m_titles[index]
                           : newRect().contains(help->pos()) ? zqLocalized("New Tab")
                                                             : QString(),
                           this);
        return true;
    }
    return QWidget::event(event);
}
