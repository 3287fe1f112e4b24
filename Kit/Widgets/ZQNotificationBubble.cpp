#include "Kit/Widgets/ZQNotificationBubble.h"

#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace {
constexpr int shadowRoom = 10;
constexpr int widest = 420;
constexpr int buttonGap = 8;
constexpr qsizetype longestText = 500;
constexpr std::chrono::milliseconds shortestTime(500);
constexpr std::chrono::milliseconds timeToRead(2500); // where others wait
constexpr std::chrono::milliseconds timeToDecide(5000);
constexpr std::chrono::milliseconds heldTime(500); // until it is looked again whether somebody still reads it
} // namespace

ZQNotificationBubble::ZQNotificationBubble(QWidget *window) : QWidget(window)
{
    zqSetAccessibleRole(this, QAccessible::Notification);
    auto *effect = new QGraphicsOpacityEffect(this);
    effect->setOpacity(0);
    setGraphicsEffect(effect);
    m_fading = new QPropertyAnimation(effect, "opacity", this);
    connect(m_fading, &QPropertyAnimation::finished, this, [this, effect] { setVisible(effect->opacity() > 0); });
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (isHeld()) {
            m_timer.start(heldTime);
        } else {
            end();
        }
    });
    window->installEventFilter(this);
    hide();
}

void ZQNotificationBubble::showText(const QString &given, QWidget *place, bool inMiddle, std::chrono::milliseconds time,
                                    const QList<ZQNotificationAction> &actions)
{
    const QString text = zqForLabel(given, longestText);
    const Message message{text, place, inMiddle, std::max(shortestTime, time), actions};
    const bool isShowing = m_timer.isActive();
    const auto saysSame = [&text](const Message &other) { return other.text == text; };
    if (!isShowing || saysSame(m_shown)) {
        begin(message); // of the same text, the later one knows better where it belongs and what to do
        return;
    }
    if (const auto same = std::find_if(m_waiting.begin(), m_waiting.end(), saysSame); same != m_waiting.end()) {
        *same = message;
        return;
    }
    m_waiting.append(message);
    const auto enough = m_shown.actions.isEmpty() ? timeToRead : timeToDecide;
    if (m_timer.remainingTimeAsDuration() > enough) {
        m_timer.start(enough);
    }
}

void ZQNotificationBubble::begin(const Message &message)
{
    m_shown = message;
    setAccessibleName(m_shown.text); // before it is seen
    makeButtons();
    reposition();
    raise();
    show();
    update();
    fade(1);
    m_timer.start(m_shown.time);
    zqAnnounce(this, m_shown.text);
}

void ZQNotificationBubble::makeButtons()
{
    for (QPushButton *button : std::as_const(m_buttons)) {
        button->hide();
        button->deleteLater(); // it may be the one that was clicked
    }
    m_buttons.clear();
    for (const ZQNotificationAction &action : std::as_const(m_shown.actions)) {
        auto *button = new QPushButton(action.title, this);
        button->setAutoDefault(true);
        button->setProperty("primary", m_buttons.isEmpty());
        connect(button, &QPushButton::clicked, this, [this, run = action.run] {
            end();
            run();
        });
        button->show();
        m_buttons.append(button);
    }
}

void ZQNotificationBubble::end()
{
    m_timer.stop();
    while (!m_waiting.isEmpty()) {
        const Message next = m_waiting.takeFirst();
        if (next.place) {
            begin(next);
            return;
        }
    }
    fade(0);
}

bool ZQNotificationBubble::isHeld() const
{
    return underMouse() || (QApplication::focusWidget() && isAncestorOf(QApplication::focusWidget()));
}

void ZQNotificationBubble::fade(double to)
{
    m_fading->stop();
    m_fading->setDuration(ZQTheme::current().animationMilliseconds());
    m_fading->setEndValue(to);
    m_fading->start();
}

QRect ZQNotificationBubble::textBounds() const
{
    const QFontMetrics metrics(ZQTheme::current().font());
    const int room = std::max(80, std::min(widest, m_shown.place->width() - 24) - 32);
    return metrics.boundingRect(QRect(0, 0, room, 1000), int(Qt::AlignCenter) | Qt::TextWordWrap, m_shown.text);
}

void ZQNotificationBubble::reposition()
{
    if (!m_shown.place) {
        return;
    }
    int buttonsWidth = 0;
    int buttonsHeight = 0;
    for (QPushButton *button : std::as_const(m_buttons)) {
        button->resize(button->sizeHint());
        buttonsWidth += button->width() + (buttonsWidth > 0 ? buttonGap : 0);
        buttonsHeight = button->height() + buttonGap;
    }
    const QRect text = textBounds();
    const QSize size(std::max(text.width(), buttonsWidth) + 34 + 2 * shadowRoom,
                     text.height() + buttonsHeight + 20 + 2 * shadowRoom);
    const QWidget &place = *m_shown.place;
    const QPoint origin = place.mapTo(parentWidget(), QPoint(0, 0));
    const int x = origin.x() + (place.width() - size.width()) / 2;
    const int y = m_shown.inMiddle ? origin.y() + (place.height() - size.height()) / 2
                                   : origin.y() + place.height() - size.height() - 56;
    setGeometry(QRect(QPoint(x, std::max(0, y)), size));
    int left = (size.width() - buttonsWidth) / 2;
    for (QPushButton *button : std::as_const(m_buttons)) {
        const QRect room({left, size.height() - shadowRoom - buttonGap - button->height()}, button->size());
        button->setGeometry(QStyle::visualRect(layoutDirection(), rect(), room));
        left += button->width() + buttonGap;
    }
}

void ZQNotificationBubble::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(shadowRoom, shadowRoom, -shadowRoom, -shadowRoom);
    painter.setPen(Qt::NoPen);
    QColor shadow = zqColor(ZQColorRole::Shadow);
    shadow.setAlphaF(shadow.alphaF() / 12);
    painter.setBrush(shadow);
    for (int grow = 1; grow < shadowRoom; ++grow) {
        painter.drawRoundedRect(box.adjusted(-grow, -grow + 2, grow, std::min(grow + 2, shadowRoom)), 9 + grow,
                                9 + grow);
    }
    painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
    painter.setBrush(zqColor(ZQColorRole::Raised2));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 9, 9);
    painter.setPen(zqColor(ZQColorRole::Text));
    painter.setFont(ZQTheme::current().font());
    painter.setLayoutDirection(layoutDirection());
    const int buttons = m_buttons.isEmpty() ? 0 : m_buttons.first()->height() + buttonGap;
    painter.drawText(box.adjusted(16, 4, -16, -4 - buttons), int(Qt::AlignCenter) | Qt::TextWordWrap, m_shown.text);
}

void ZQNotificationBubble::mousePressEvent(QMouseEvent * /*event*/)
{
    end();
}

void ZQNotificationBubble::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) {
        reposition();
    }
}

bool ZQNotificationBubble::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Resize && isVisible()) {
        QMetaObject::invokeMethod(
            this, [this] { reposition(); }, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(object, event);
}
