#include "Kit/Widgets/ZQElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

QSize ZQElidedLabel::minimumSizeHint() const
{
    return {fontMetrics().horizontalAdvance(u'…'), QLabel::minimumSizeHint().height()};
}

bool ZQElidedLabel::isCut() const
{
    return fontMetrics().horizontalAdvance(text()) > contentsRect().width();
}

bool ZQElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && isCut()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

void ZQElidedLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    const auto placed = QStyle::visualAlignment(layoutDirection(), alignment());
    style()->drawItemText(&painter, contentsRect(), int(placed), palette(), isEnabled(), shown, foregroundRole());
}
