#pragma once

#include "Classes/Application/ControllerInterfaces.h"

#include <memory>

// What takes keys from other programs on the display that this process has: grabs of an X display, the desktop's portal
// elsewhere. Where neither is, every key has a problem that says what to do instead. Main thread.
namespace HotKeys {

std::unique_ptr<HotKeyRegistering> make();

} // namespace HotKeys
