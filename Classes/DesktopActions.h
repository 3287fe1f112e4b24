#pragma once

#include <QString>

class tamberin_AppDelegate;

// What the desktop's menu offers for the application beside its window: the actions of the application's desktop file.
namespace DesktopActions {

// "import", "snap-area" or "another-library": done once the window is there and no question is open in it, which an
// action does not answer. Any other name brings the window to the front; an empty one does nothing. Main thread.
void perform(const QString &action, tamberin_AppDelegate &delegate);

} // namespace DesktopActions
