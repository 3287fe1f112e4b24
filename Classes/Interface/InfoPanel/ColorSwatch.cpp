#include "Classes/Interface/InfoPanel/ColorSwatch.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QPainter>

ColorSwatch::ColorSwatch(int code, const QString &name, QWidget *parent) : QAbstractButton(parent), m_code(code)
{
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(22, 22);
    setAccessibleName(name);
    setAccessibleDescription(zqLocalized("Search for this color"));
    setToolTip(name);
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
    painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
    painter.setBrush(ZQTheme::swatch(m_code));
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 5, 5);
}
