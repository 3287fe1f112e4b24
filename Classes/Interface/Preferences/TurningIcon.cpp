#include "Classes/Interface/Preferences/TurningIcon.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QPainter>

TurningIcon::TurningIcon(QWidget *parent) : QWidget(parent)
{
    setFixedSize(ZQMeasure::iconSize, ZQMeasure::iconSize);
    setAccessibleName(zqLocalized("Busy"));
    connect(&m_sign, &ZQTurningSign::turned, this, qOverload<>(&QWidget::update));
}

void TurningIcon::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const QPointF center = QRectF(rect()).center();
    painter.translate(center);
    painter.rotate(m_sign.degrees());
    painter.translate(-center);
    ZQIcon::paint(painter, rect(), QStringLiteral("live"), zqColor(ZQColorRole::Accent));
}

void TurningIcon::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_sign.setInView(true);
}

void TurningIcon::hideEvent(QHideEvent *event)
{
    m_sign.setInView(false);
    QWidget::hideEvent(event);
}
