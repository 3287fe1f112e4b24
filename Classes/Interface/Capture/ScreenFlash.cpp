#include "Classes/Interface/Capture/ScreenFlash.h"

#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QVariantAnimation>

namespace {
constexpr double strongest = 0.7; // opacity; without a compositor it is opaque for the same time
} // namespace

ScreenFlash::ScreenFlash(const QRect &frame)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint |
                           Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setGeometry(frame);
    setWindowOpacity(strongest);
}

void ScreenFlash::show(const QRect &frame, int milliseconds)
{
    auto *flash = new ScreenFlash(frame);
    auto *animation = new QVariantAnimation(flash);
    animation->setDuration(milliseconds);
    animation->setStartValue(strongest);
    animation->setEndValue(0.0);
    connect(animation, &QVariantAnimation::valueChanged, flash,
            [flash](const QVariant &value) { flash->setWindowOpacity(value.toDouble()); });
    connect(animation, &QVariantAnimation::finished, flash, &QWidget::close);
    static_cast<QWidget *>(flash)->show();
    animation->start();
}

bool ScreenFlash::endAll()
{
    bool isAny = false;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<ScreenFlash *>(widget) && widget->isVisible()) {
            widget->close();
            isAny = true;
        }
    }
    return isAny;
}

void ScreenFlash::paintEvent(QPaintEvent *event)
{
    QPainter(this).fillRect(event->rect(), zqColor(ZQColorRole::MaskLine));
}
