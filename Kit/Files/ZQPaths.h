#pragma once

#include <QString>

// The places of the user's world. Every path that is not below a library comes from here, so that a test can redirect
// it with XDG_DATA_HOME, XDG_CONFIG_HOME, XDG_CACHE_HOME, XDG_STATE_HOME, XDG_RUNTIME_DIR and TMPDIR. Nothing is
// created. Any thread.
namespace ZQPaths {

QString dataHome();     // $XDG_DATA_HOME, else ~/.local/share
QString configHome();   // $XDG_CONFIG_HOME, else ~/.config
QString cacheHome();    // $XDG_CACHE_HOME, else ~/.cache
QString stateHome();    // $XDG_STATE_HOME, else ~/.local/state
QString runtimeDir();   // $XDG_RUNTIME_DIR, else the temporary folder
QString temporaryDir(); // $TMPDIR, else /tmp

} // namespace ZQPaths
