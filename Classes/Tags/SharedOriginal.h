#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// Files that backups share. Attributes are the one thing that is written into an asset in place, and an attribute
// belongs to all names of a file: in a backup that was opened as a library, the file is given a copy of its own before.
// Elsewhere nothing is done; a library shares its files with nobody, and what a person shares in a live folder stays
// shared. Any thread.
namespace SharedOriginal {

inline const QString recordName = QStringLiteral("backup.json"); // in the bundle of each backup

// False, with an error and the file as it was, when the copy can't be made.
bool makeOwn(const QString &path, ZQError *error);

} // namespace SharedOriginal
