#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// The desktop's trash (freedesktop trash layout; a folder named ".Trash" is one too). Any thread.
namespace ZQTrash {

// Never over anything, and numbered where the name is taken. The trash of the file's own disk, else the one at home, to
// which it is copied; what was copied is removed once the copy was read back and is on the disk.
bool recycle(const QString &path, QString *trashedPath = nullptr, ZQError *error = nullptr);
// What lay there was moved out of the trash again: the note of it goes. Nothing where something is there still.
void didTakeOut(const QString &trashedPath);
// Whether the path lies in any trash: "…/.Trash…", "…/.local/share/Trash/…", "$XDG_DATA_HOME/Trash/…".
bool contains(const QString &path);

} // namespace ZQTrash
