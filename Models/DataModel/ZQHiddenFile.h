#pragma once

#include <QString>

// The name under which a deleted file of a live folder stays in its place until the library is purged.

// "." + a fresh UUID + "." + the extension of `path`, beside it.
QString zqHiddenPathFor(const QString &path);
// Whether the file has such a name. One that a person hid has another, and is none of the library's to remove.
bool zqIsHiddenByLibrary(const QString &path);
