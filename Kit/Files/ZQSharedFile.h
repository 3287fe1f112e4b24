#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

// Files that several folders share as hard links, such as backups of one thing, and that may be written in place in one
// of them: what is written into one name of a file would be in all of them. Any thread.
namespace ZQSharedFile {

// Whoever makes such folders puts a file of this name into each. What lies in TOP/GROUP/FOLDER/FILE, with the mark in
// TOP, is shared; links anywhere else are meant, and stay.
inline const QString markName = QStringLiteral("backup.json");

// To be called before something is written in place: where the file is shared, a copy with all its attributes takes
// its name. False, with an error and the file as it was, when that can't be made.
bool makeOwn(const QString &path, ZQError *error);
// The same for FILE itself, which may be a folder, and all it holds: before another program gets it. After a failure
// some of it may be shared still.
bool makeAllOwn(const QString &path, ZQError *error);

} // namespace ZQSharedFile
