#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>

#include <functional>

// Copies a regular file or a folder (a package) to `destination` for somebody who takes it elsewhere: by reflink where
// the file system can, else within the kernel, without a digest. It takes that name only when it is whole, and never
// where a file, folder or link is already: that is an error of the domain "POSIX" with the code EEXIST. Modes, times
// and extended attributes are kept as far as the destination allows. A link is followed when it is the source itself;
// links inside a package stay links. A source that changes while it is read is read again, at last refused. Nothing is
// flushed to the disk. `isCancelled` is asked between blocks. Any thread.
bool zqCopyPlainly(const QString &source, const QString &destination, ZQError *error = nullptr,
                   const std::function<bool()> &isCancelled = {});
