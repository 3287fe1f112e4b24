#pragma once

#include <QString>

// Removing what an import moved into the library, once its item is safe. Any thread. A source that is not what was
// imported stays where it is, and so does one that cannot be removed; the log says so.

// `modification`: when it had last been written as it was read, in milliseconds. Later it holds something the library
// does not have.
void removeMovedSource(const QString &path, qint64 modification);
// Whether a record, which may have come with a library from elsewhere, is believed about `path`: only when it is a
// regular file of the temporary area and `itemFile` in the library is a true copy of it, so that nothing is lost
// whatever the record names. Reads both files.
bool mayRemoveRecordedSource(const QString &path, const QString &itemFile);
