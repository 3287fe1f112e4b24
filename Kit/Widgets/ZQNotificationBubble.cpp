#include "Kit/Widgets/ZQNotificationBubble.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QEvent>
#include <QGraphicsOpacityEffect>
#include <QPainter>
#include <QPropertyAnimation>

namespace {
constexpr int shadowRoom = 10;
constexpr int widest = 420;
} // namespace

ZQNotificationBubble::ZQNotificationBubble(QWidget *window) : QWidget(window)
{
    auto *effect = new QGraphicsOpacityEffect(this);
    effect->setOpacity(0);
    setGraphicsEffect(effect);
    m_fading = new QPropertyAnimation(effect, "opacity", this);
    connect(m_fading, &QPropertyAnimation::finished, this, [this, effect] { setVisible(effect->opacity() > 0); });
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { fade(0); });
    window->installEventFilter(this);
    hide();
}

void ZQNotificationBubble::showText(const QString &text, QWidget *place, bool inMiddle, std::chrono::milliseconds time)
{
    m_text = text;
    m_place = place;
    m_inMiddle = inMiddle;
    setAccessibleName(text);
    reposition();
    raise();
    show();
    update();
    fade(1);
    m_timer.start(std::max<std::chrono::milliseconds>(std::chrono::milliseconds(500), time));
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void ZQNotificationBubble::fade(double to)
{
    m_fading->stop();
    m_fading->setDuration(ZQTheme::current().animationMilliseconds());
    m_fading->setEndValue(to);
    m_fading->start();
}

void ZQNotificationBubble::reposition()
{
    if (!m_place) {
        return;
    }
    const QFontMetrics metrics(ZQTheme::current().font());
    const int room = std::max(80, std::min(widest, m_place->width() - 24) - 32);
    const QRect text = metrics.boundingRect(QRect(0, 0, room, 1000), int(Qt::AlignCenter) | Qt::TextWordWrap, m_text);
    const QSize size(text.width() + 34 + 2 * shadowRoom, text.height() + 20 + 2 * shadowRoom);
    const QPoint origin = m_place->mapTo(parentWidget(), QPoint(0, 0));
    const int x = origin.x() + (m_place->width() - size.width()) / 2;
    const int y = m_inMiddle ? origin.y() + (m_place->height() - size.height()) / 2
                             : origin.y() + m_place->height() - size.height() - 56;
    setGeometry(QRect(QPoint(x, std::max(0, y)), size));
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
    painter.drawText(box.adjusted(16, 4, -16, -4), int(Qt::AlignCenter) | Qt::TextWordWrap, m_text);
}

void ZQNotificationBubble::mousePressEvent(QMouseEvent * /*event*/)
{
    fade(0);
}

bool ZQNotificationBubble::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Resize && isVisible()) {
        QMetaObject::invokeMethod(
            this, [this] { reposition(); }, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(object, event);
}
