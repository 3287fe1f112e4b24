#include "Kit/Widgets/ZQTabStrip.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QToolButton>
#include <QToolTip>

#include <algorithm>

namespace {
constexpr int tabHeight = 36;
constexpr int widestTab = 200;
constexpr int narrowestTab = 48;
constexpr int narrowestOfMany = 72; // below that tabs are left out
constexpr int laidOut = 101;        // a strip that is narrower waits for its place in the window
constexpr int gap = 2;
constexpr int newRoom = 40;
constexpr int allRoom = 30;
constexpr int buttonSize = 26;
} // namespace

ZQTabStrip::ZQTabStrip(QWidget *parent) : QWidget(parent), m_new(new QToolButton(this)), m_all(new QToolButton(this))
{
    setFixedHeight(tabHeight);
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(zqLocalized("Tabs"));
    m_new->setIcon(ZQIcon::icon(QStringLiteral("plus")));
    m_new->setIconSize({16, 16});
    m_new->setAccessibleName(zqLocalized("New Tab"));
    m_new->setToolTip(m_new->accessibleName());
    m_new->setFocusPolicy(Qt::TabFocus);
    connect(m_new, &QToolButton::clicked, this, &ZQTabStrip::newRequested);
    m_all->setIcon(ZQIcon::icon(QStringLiteral("chevron-down")));
    m_all->setIconSize({14, 14});
    m_all->setAccessibleName(zqLocalized("All Tabs"));
    m_all->setToolTip(m_all->accessibleName());
    m_all->setFocusPolicy(Qt::TabFocus);
    m_all->setPopupMode(QToolButton::InstantPopup);
    m_all->setMenu(new QMenu(m_all));
    m_all->hide();
    connect(m_all->menu(), &QMenu::aboutToShow, this, &ZQTabStrip::fillMenu);
}

void ZQTabStrip::setTabs(const QStringList &titles, int current)
{
    const bool areOthers = titles != m_titles;
    const bool isOther = current != m_current;
    m_titles = titles;
    m_current = current;
    setAccessibleDescription(titles.value(current));
    if (areOthers) {
        accessiblePartsDidChange(this);
    }
    if (areOthers || isOther) {
        accessiblePartIsCurrent(this, current);
    }
    showCurrent();
    updateGeometry();
    update();
}

ZQAccessiblePart ZQTabStrip::accessiblePart(int index) const
{
    const bool isCurrent = index == m_current;
    return {.name = m_titles[index],
            .description = zqFormat(zqLocalized("Tab %d of %d"), {index + 1, count()}),
            .place = tabRect(index),
            .isChosen = isCurrent,
            .isCurrent = isCurrent};
}

QList<QWidget *> ZQTabStrip::focusStops()
{
    return {this, m_new, m_all};
}

QSize ZQTabStrip::sizeHint() const
{
    return {newStart() + buttonSize, tabHeight};
}

int ZQTabStrip::naturalWidth(int index) const
{
    const int natural = 12 + QFontMetrics(ZQTheme::current().font()).horizontalAdvance(m_titles[index]) +
                        (count() > 1 ? 8 + 16 + 8 : 14);
    return std::clamp(natural, narrowestTab, widestTab);
}

int ZQTabStrip::room() const
{
    return width() - newRoom - (visibleCount() < count() ? allRoom : 0);
}

int ZQTabStrip::visibleCount() const
{
    if (width() < laidOut || count() == 0 || (width() - newRoom) / count() - gap >= narrowestOfMany) {
        return count();
    }
    int all = 0;
    int widest = 0;
    for (int i = 0; i < count(); ++i) {
        all += naturalWidth(i) + gap;
        widest = std::max(widest, naturalWidth(i));
    }
    const int each = std::min(widest, narrowestOfMany) + gap;
    return all <= width() - newRoom ? count() : std::clamp((width() - newRoom - allRoom) / each, 1, count());
}

int ZQTabStrip::tabWidth(int index) const
{
    const int share = width() < laidOut ? widestTab : room() / visibleCount() - gap;
    return std::max(narrowestTab, std::min(naturalWidth(index), std::max(share, narrowestTab)));
}

QRect ZQTabStrip::mirrored(const QRect &rect) const
{
    return QStyle::visualRect(layoutDirection(), this->rect(), rect);
}

int ZQTabStrip::tabStart(int index) const
{
    int start = 0;
    for (int i = m_first; i < index; ++i) {
        start += tabWidth(i) + gap;
    }
    return start;
}

QRect ZQTabStrip::tabRect(int index) const
{
    if (index < m_first || index >= m_first + visibleCount()) {
        return {};
    }
    return mirrored({tabStart(index), 0, tabWidth(index), tabHeight});
}

void ZQTabStrip::showCurrent()
{
    const int visible = visibleCount();
    m_first = std::clamp(m_first, std::max(0, m_current - visible + 1), std::max(0, m_current));
    m_first = std::clamp(m_first, 0, std::max(0, count() - visible));
    constexpr int top = (tabHeight - buttonSize) / 2;
    m_new->setGeometry(mirrored({newStart(), top, buttonSize, buttonSize}));
    m_all->setGeometry(mirrored({width() - buttonSize - 1, top, buttonSize, buttonSize}));
    m_all->setVisible(visible < count());
}

void ZQTabStrip::fillMenu()
{
    QMenu *menu = m_all->menu();
    menu->clear();
    for (int i = 0; i < count(); ++i) {
        QAction *action = menu->addAction(QString(m_titles[i]).replace(u'&', QStringLiteral("&&")), this,
                                          [this, i] { Q_EMIT currentChanged(i); });
        action->setCheckable(true);
        action->setChecked(i == m_current);
    }
}

void ZQTabStrip::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    showCurrent();
}

QRect ZQTabStrip::closeRect(int index) const
{
    const QRect tab = tabRect(index);
    return QStyle::visualRect(layoutDirection(), tab, {tab.right() - 22, (tabHeight - 16) / 2, 16, 16});
}

int ZQTabStrip::newStart() const
{
    return 4 + (m_titles.isEmpty() ? 0 : tabStart(m_first + visibleCount()));
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
    painter.setLayoutDirection(layoutDirection());
    for (int i = m_first; i < m_first + visibleCount(); ++i) {
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
        painter.setFont(ZQTheme::fontForName(ZQTheme::current().font(), m_titles[i]));
        const QRect text = QStyle::visualRect(layoutDirection(), tab, tab.adjusted(12, 0, count() > 1 ? -28 : -10, 0));
        painter.drawText(text, Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(m_titles[i], Qt::ElideRight, text.width() + 2));
        if (m_titles.size() > 1) {
            ZQIcon::paint(painter, QRectF(closeRect(i)).adjusted(3, 3, -3, -3), QStringLiteral("close"),
                          zqColor(ZQColorRole::TextFaint));
        }
    }
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
    const int forward = isRightToLeft() ? -1 : 1;
    const int step = event->key() == Qt::Key_Left ? -forward : event->key() == Qt::Key_Right ? forward : 0;
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
        QToolTip::showText(help->globalPos(), index >= 0 ? m_titles[index] : QString(), this);
        return true;
    }
    return QWidget::event(event);
}

void ZQTabStrip::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LayoutDirectionChange) {
        showCurrent();
    }
    QWidget::changeEvent(event);
}
