#include "Classes/Interface/InfoPanel/ColorSwatch.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQSwatch.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QKeyEvent>
#include <QPainter>

namespace {
constexpr int edge = 22;
} // namespace

ColorSwatch::ColorSwatch(int code, const QString &name, QWidget *parent) : QAbstractButton(parent), m_code(code)
{
    setFixedSize(edge, edge);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(name);
    setAccessibleDescription(zqFormat(zqLocalized("Search for %@"), {name}));
    setToolTip(accessibleDescription());
}

QSize ColorSwatch::sizeHint() const
{
    return {edge, edge};
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
    painter.setPen(QPen(zqSwatchRing(m_code, zqColor(ZQColorRole::Sunken)), 1));
    painter.setBrush(ZQTheme::swatch(m_code));
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 5, 5);
}

void ColorSwatch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}
