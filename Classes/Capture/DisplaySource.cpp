#include "Classes/Capture/DisplaySource.h"

#include "Classes/Capture/PortalScreenSource.h"
#include "Classes/Capture/XScreenSource.h"
#include "Kit/Desktop/ZQDisplay.h"

#include <QGuiApplication>

std::unique_ptr<ScreenSource> DisplaySource::make()
{
    switch (ZQDisplay::kindOf(QGuiApplication::platformName())) {
    case ZQDisplay::Kind::Wayland:
        return std::make_unique<PortalScreenSource>();
    case ZQDisplay::Kind::X:
        if (auto connection = ZQXConnection::open()) {
            return std::make_unique<XScreenSource>(std::move(connection));
        }
        break;
    case ZQDisplay::Kind::None:
        break;
    }
    return nullptr;
}
