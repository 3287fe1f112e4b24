#include "Classes/Services/HotKeys.h"

#include "Classes/Services/HotKey.h"
#include "Classes/Services/PortalHotKeys.h"
#include "Classes/Services/XHotKeys.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QGuiApplication>

namespace {

class NoHotKeys : public HotKeyRegistering
{
public:
    QString registerHotKey(const QString & /*command*/, const QVariantMap &setting,
                           std::function<void()> /*run*/) override
    {
        return setting.isEmpty() ? QString() : problemOfHotKey({});
    }
    QString problemOfHotKey(const QString & /*command*/) const override
    {
        return zqFormat(zqLocalized("This display lets no program take keys. %@"), {HotKey::instead()});
    }
};

} // namespace

std::unique_ptr<HotKeyRegistering> HotKeys::make()
{
    const QString platform = QGuiApplication::platformName();
    const bool isX = platform == QStringLiteral("xcb");
    // There a grab works only while a program has the focus that talks X as well.
    const bool isWayland =
        platform.startsWith(QStringLiteral("wayland")) || (isX && qEnvironmentVariableIsSet("WAYLAND_DISPLAY"));
    if (isWayland) {
        return std::make_unique<PortalHotKeys>();
    }
    if (isX) {
        if (auto connection = ZQXConnection::open()) {
            return std::make_unique<XHotKeys>(std::move(connection));
        }
    }
    return std::make_unique<NoHotKeys>();
}
