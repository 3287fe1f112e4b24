#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <fcntl.h>

// Opening files of our own, in whose place a person, or whoever made a library, may have put something else: a pipe
// would hold up who reads it, and a device has no end. Any thread.

// The domain of an error that says that something else than a file stands there, or one too large to be ours.
inline const QString zqNoRegularFileDomain = QStringLiteral("zelto.files.regular");

// With the `flags` and `mode` of the system's call; never waits. Closed, with an error, when there is nothing, it
// cannot be opened, or it is no regular file. A link is followed unless O_NOFOLLOW forbids it.
ZQFileDescriptor zqOpenRegularFile(const QString &path, int flags, ZQError *error = nullptr, mode_t mode = 0666);

// All that it holds; nothing, with an error, for more than `most` bytes too. `flags`: O_NOFOLLOW or none.
std::optional<QByteArray> zqReadRegularFile(const QString &path, qint64 most, ZQError *error = nullptr, int flags = 0);
