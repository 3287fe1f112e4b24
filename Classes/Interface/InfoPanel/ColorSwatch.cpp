#include "Classes/Interface/InfoPanel/ColorSwatch.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwatch.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QPainter>

#include <utility>

namespace {
constexpr int edge = 22;
} // namespace

ColorSwatch::ColorSwatch(const QColor &color, const QString &name, QWidget *parent)
    : QAbstractButton(parent), m_color(color)
{
    setFixedSize(edge, edge);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(name);
    setDescription(zqFormat(zqLocalized("Search for %@"), {name}));
    connect(this, &QAbstractButton::clicked, this, [this] { Q_EMIT chosen(std::exchange(m_adds, false)); });
}

void ColorSwatch::setDescription(const QString &description)
{
    setAccessibleDescription(description);
    setToolTip(description);
}

QSize ColorSwatch::sizeHint() const
{
    return {edge, edge};
}

QMap<QString, QString> ColorSwatch::accessibleActions() const
{
    QMap<QString, QString> actions{{QAccessibleActionInterface::pressAction(), accessibleDescription()}};
    if (isSignalConnected(QMetaMethod::fromSignal(&ColorSwatch::menuRequested))) {
        actions.insert(QAccessibleActionInterface::showMenuAction(), {});
    }
    return actions;
}

// Who asks goes on before a menu is gone.
void ColorSwatch::doAccessibleAction(const QString &name)
{
    if (name == QAccessibleActionInterface::pressAction()) {
        QMetaObject::invokeMethod(this, &ColorSwatch::click, Qt::QueuedConnection);
    } else {
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT menuRequested(mapToGlobal(rect().bottomLeft())); }, Qt::QueuedConnection);
    }
}

void ColorSwatch::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool focused = hasFocus();
    if (focused) { // a ring at a distance: the colour itself may be that of the focus
        painter.setPen(QPen(zqColor(ZQColorRole::Accent), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), 6, 6);
    }
    const double inset = focused ? 3.5 : 0.5;
    painter.setPen(QPen(zqSwatchRing(m_color, zqColor(ZQColorRole::Sunken)), 1));
    painter.setBrush(m_color);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 5, 5);
}

void ColorSwatch::mouseReleaseEvent(QMouseEvent *event)
{
    m_adds = event->modifiers() & Qt::ShiftModifier;
    QAbstractButton::mouseReleaseEvent(event);
    m_adds = false;
}

// Of the keyboard, too.
void ColorSwatch::contextMenuEvent(QContextMenuEvent *event)
{
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    Q_EMIT menuRequested(isByKey ? mapToGlobal(rect().bottomLeft()) : event->globalPos());
}

void ColorSwatch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        m_adds = event->modifiers() & Qt::ShiftModifier;
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}
