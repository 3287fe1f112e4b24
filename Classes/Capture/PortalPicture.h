#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QImage>
#include <QString>

// The picture that the desktop's screenshot portal leaves as a file. Any thread; a large one takes a while.
namespace PortalPicture {

// Only PNG, which is what portals write, and only as large as desktops are. Null with `error`. The file goes then if it
// was left for us: a regular file of this user, known under no other name, directly in the system's temporary
// directory. Everything else may be a person's own, and stays.
QImage take(const QString &path, ZQError *error);

ZQError unreadable(const QString &reason = {});

} // namespace PortalPicture
