#pragma once

#include "Kit/Imaging/Decoders/ZQSourceFile.h"
#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

// A picture of `path` made by a thumbnailer that the desktop has registered for its kind (the "thumbnailers" folders of
// the data directories; this program's own is left out), within `box`. Null when no thumbnailer is registered or it
// fails. Takes a child process. Any thread.
ZQBitmap zqThumbnailerPreview(const QString &path, QSize box);

// Whether there is a thumbnailer for a file of that name and content.
bool zqHasThumbnailer(const ZQSourceFile &file);
