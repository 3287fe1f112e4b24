#include "Classes/Services/HotKeys.h"

#include "Classes/Services/HotKey.h"
#include "Classes/Services/PortalHotKeys.h"
#include "Classes/Services/XHotKeys.h"
#include "Kit/Desktop/ZQDisplay.h"
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
    switch (ZQDisplay::kindOf(QGuiApplication::platformName())) {
    case ZQDisplay::Kind::Wayland:
        return std::make_unique<PortalHotKeys>();
    case ZQDisplay::Kind::X:
        if (auto connection = ZQXConnection::open()) {
            return std::make_unique<XHotKeys>(std::move(connection));
        }
        break;
    case ZQDisplay::Kind::None:
        break;
    }
    return std::make_unique<NoHotKeys>();
}
