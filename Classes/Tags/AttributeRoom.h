#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// File systems give a file little room for its attributes (ext4: about 4 KB for all together). When an attribute that
// matters does not fit, what only repeats it gives way. Any thread.
namespace AttributeRoom {

// Whether the file system said that the value does not fit.
bool isWanting(const ZQError &error);

// Answers the error of `write`, after giving way in steps while it does not fit: the mirrors for other programs, the
// older key names, the times and the record of what was seen, the second name of the same value. What gave way is put
// back when even that was not enough.
ZQError write(const QString &path, const std::function<ZQError()> &write);

} // namespace AttributeRoom
