#pragma once

#include "Kit/Imaging/ZQBitmap.h"

#include <QString>

// A picture of `path` made by a thumbnailer that the desktop has registered for its kind (the "thumbnailers" folders of
// the data directories), within `box`. Null when no thumbnailer is registered or it fails. Takes a child process. Any
// thread.
ZQBitmap zqThumbnailerPreview(const QString &path, QSize box);
