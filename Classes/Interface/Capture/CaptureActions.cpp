#include "Classes/Interface/Capture/CaptureActions.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/HotKeyCommand.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Services/HotKey.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QTimer>

#include <chrono>

namespace {
constexpr std::chrono::milliseconds menuTime(250); // until a menu has faded, and what lay below it is drawn again
} // namespace

const QList<CaptureActions::Action> &CaptureActions::all()
{
    static const QList<Action> actions = {
        {CommandID::SnapArea, zqKey("Area"), HotKeyCommand::area,
         [](ScreenCaptureControlling &capture) { capture.snapArea(); }},
        {CommandID::SnapWindow, zqKey("Window"), HotKeyCommand::window,
         [](ScreenCaptureControlling &capture) { capture.snapWindow(); }},
        {CommandID::SnapFullScreen, zqKey("Whole Screen"), HotKeyCommand::fullScreen,
         [](ScreenCaptureControlling &capture) { capture.snapFullScreen(); }},
        {CommandID::SnapWebsite,
         zqKey("Web Page…"),
         {},
         [](ScreenCaptureControlling &capture) { capture.snapWebsite({}, {}); }},
    };
    return actions;
}

QString CaptureActions::titleWithHotKey(const QString &title, const QString &hotKey)
{
    const std::optional<HotKey> keys =
        HotKey::fromSetting(ZQUserDefaults::standardUserDefaults().objectForKey(hotKey).toMap());
    return keys ? title + u'\t' + keys->text() : title;
}

void CaptureActions::run(const Action &action, tamberin_AppDelegate &delegate)
{
    QTimer::singleShot(menuTime, &delegate, [run = action.run, &delegate] {
        if (ScreenCaptureControlling *const capture = delegate.zeltoKunViewController()) {
            run(*capture);
        }
    });
}

bool CaptureActions::isPossible(const tamberin_AppDelegate &delegate)
{
    return delegate.zeltoKunViewController() != nullptr;
}

QList<WindowCommand> CaptureActions::commands(tamberin_AppDelegate &delegate)
{
    QList<WindowCommand> commands;
    for (const Action &action : all()) {
        const QString title = zqLocalized(action.title);
        commands.append({.id = action.id,
                         .title = title,
                         .keys = {},
                         .run = [&action, &delegate] { run(action, delegate); },
                         .isEnabled = [&delegate] { return isPossible(delegate); },
                         .shown = [title, hotKey = action.hotKey] { return titleWithHotKey(title, hotKey); }});
    }
    return commands;
}
