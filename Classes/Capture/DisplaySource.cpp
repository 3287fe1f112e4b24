#include "Classes/Capture/DisplaySource.h"

#include "Classes/Capture/PortalScreenSource.h"
#include "Classes/Capture/XScreenSource.h"

#include <QGuiApplication>

std::unique_ptr<ScreenSource> DisplaySource::make()
{
    const QString platform = QGuiApplication::platformName();
    // A toolkit that talks X to a Wayland desktop sees only windows that do so as well.
    const bool isWayland = platform.startsWith(QStringLiteral("wayland")) ||
                           (platform == QStringLiteral("xcb") && qEnvironmentVariableIsSet("WAYLAND_DISPLAY"));
    if (isWayland) {
        return std::make_unique<PortalScreenSource>();
    }
    if (platform == QStringLiteral("xcb")) {
        if (auto connection = ZQXConnection::open()) {
            return std::make_unique<XScreenSource>(std::move(connection));
        }
    }
    return nullptr;
}
