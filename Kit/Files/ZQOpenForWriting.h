#pragma once

#include <QString>

// Whether a process, this one included, has the regular file at `path` open for writing. False where that cannot be
// told: for a file of another user, on a server or a file system without leases, and for what is no regular file. Any
// thread; waits for nobody.
bool zqIsOpenForWriting(const QString &path);
