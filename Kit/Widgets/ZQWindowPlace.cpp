#include "Kit/Widgets/ZQWindowPlace.h"

#include <QByteArray>
#include <QScreen>
#include <QStyle>
#include <QWidget>

#include <algorithm>

QRect zqRectWithin(const QRect &window, const QRect &room)
{
    const QSize size = window.size().boundedTo(room.size());
    return {QPoint(std::clamp(window.x(), room.x(), room.x() + room.width() - size.width()),
                   std::clamp(window.y(), room.y(), room.y() + room.height() - size.height())),
            size};
}

bool zqRestoreGeometry(QWidget &window, const QByteArray &kept)
{
    if (!window.restoreGeometry(kept)) {
        return false;
    }
    const QScreen *const screen = window.screen();
    if (screen && !window.isMaximized() && !window.isFullScreen()) {
        // Its frame is not there yet.
        const QRect room = screen->availableGeometry().adjusted(
            0, window.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &window), 0, 0);
        const QRect place = zqRectWithin(window.geometry(), room);
        if (place != window.geometry()) {
            window.setGeometry(place);
        }
    }
    return true;
}

void zqMoveBelow(QWidget &popUp, const QWidget &anchor)
{
    constexpr int gap = 2;
    const QRect above(anchor.mapToGlobal(QPoint(0, 0)), anchor.size());
    const int left = popUp.isRightToLeft() ? above.right() + 1 - popUp.width() : above.left();
    const QRect place(QPoint(left, above.bottom() + 1 + gap), popUp.size());
    const QScreen *const screen = anchor.screen();
    popUp.move((screen ? zqRectWithin(place, screen->availableGeometry()) : place).topLeft());
}
