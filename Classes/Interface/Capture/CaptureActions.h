#pragma once

#include "Classes/Interface/WindowCommand.h"

class ScreenCaptureControlling;
class tamberin_AppDelegate;

// The captures as menus have them: what they are called, the user default with their keys, and what they do. Main
// thread.
namespace CaptureActions {

struct Action
{
    CommandID id;
    const char *title;
    QString hotKey; // the user default; empty: none
    void (*run)(ScreenCaptureControlling &capture);
};

const QList<Action> &all();
QString titleWithHotKey(const QString &title, const QString &hotKey); // as it is now
// From a menu, which is no part of what is captured: once it has gone from the screen.
void run(const Action &action, tamberin_AppDelegate &delegate);
bool isPossible(const tamberin_AppDelegate &delegate);
QList<WindowCommand> commands(tamberin_AppDelegate &delegate);

} // namespace CaptureActions
