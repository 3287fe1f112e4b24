#include "Kit/Desktop/ZQDisplay.h"

ZQDisplay::Kind ZQDisplay::kindOf(const QString &platformName)
{
    if (platformName.startsWith(QStringLiteral("wayland"))) {
        return Kind::Wayland;
    }
    if (platformName != QStringLiteral("xcb")) {
        return Kind::None;
    }
    // Over X such a desktop shows only windows that talk X as well, and keys work only while one of them has the focus.
    return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? Kind::X : Kind::Wayland;
}
