#pragma once

#include <QString>

// Which kind of display this process is on, as it decides what a program may see and take there. Any thread.
namespace ZQDisplay {

enum class Kind : quint8 {
    X,       // programs see each other's windows, and may grab keys
    Wayland, // they ask the desktop's portals, also where the toolkit talks X to it
    None     // nobody looks at it
};

// `platformName` is the toolkit's: "xcb", "wayland", "offscreen".
Kind kindOf(const QString &platformName);

} // namespace ZQDisplay
