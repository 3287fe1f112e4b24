#include "Classes/Application/HotKeyCommand.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <algorithm>

const QList<HotKeyCommand> &HotKeyCommand::all()
{
    static const QList<HotKeyCommand> commands{
        {area, 18, zqKey("&Area"), zqKey("Take a picture of an area of the screen"),
         &ScreenCaptureControlling::snapArea},
        {window, 19, zqKey("&Window"), zqKey("Take a picture of a window"), &ScreenCaptureControlling::snapWindow},
        {fullScreen, 20, zqKey("Whole scr&een"), zqKey("Take a picture of the whole screen"),
         &ScreenCaptureControlling::snapFullScreen},
        {showZelto, 21, zqKey("Show &Zelto"), zqKey("Show Zelto"), &ScreenCaptureControlling::openZelto},
    };
    return commands;
}

const HotKeyCommand *HotKeyCommand::find(const QString &preference)
{
    const auto found = std::find_if(all().begin(), all().end(), [&preference](const HotKeyCommand &command) {
        return command.preference == preference;
    });
    return found == all().end() ? nullptr : &*found;
}

QVariantMap HotKeyCommand::defaultSetting() const
{
    constexpr quint32 commandAndOption = 1572864;
    return {{QStringLiteral("code"), defaultCode}, {QStringLiteral("flags"), commandAndOption}};
}
