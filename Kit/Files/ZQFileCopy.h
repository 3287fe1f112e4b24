#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

// Copying into the library, and digests. Any thread.

// What one pass over a file gave.
struct ZQCopyResult
{
    QByteArray SHA1; // 40 lower-case hexadecimal digits; empty for a folder
    qint64 bytes = 0;
};

// Copies a regular file or a folder (a package) to `destination`, which must not exist: by reflink where the file
// system can, else in one pass that reads, digests and writes together. Modes, times and extended attributes are kept
// as far as the destination allows; links inside a package are copied as links, a source that is a link itself is
// followed. Nothing is flushed to disk here: whoever commits to a batch of copies calls `zqSyncFileSystem` once before
// it does. A source that changes while it is read is read again, at last refused. Nothing is left at `destination`
// after a failure. `isCancelled` is asked between blocks.
std::optional<ZQCopyResult> zqCopyFile(const QString &source, const QString &destination, ZQError *error = nullptr,
                                       const std::function<bool()> &isCancelled = {});

// Puts `source` at `destination` without removing it: a hard link when both are on one file system, else a copy. The
// caller removes the source once the result is safe.
std::optional<ZQCopyResult> zqLinkOrCopyFile(const QString &source, const QString &destination,
                                             ZQError *error = nullptr, const std::function<bool()> &isCancelled = {});

// Times and extended attributes of a folder, and its mode as far as its owner can go on writing there, for a copy that
// was made entry by entry; last, since each entry changes the times.
void zqKeepFolderMetadata(const QString &source, const QString &copy);

// 40 lower-case hexadecimal digits; empty with an error when the file cannot be read to its end.
QByteArray zqSHA1OfFile(const QString &path, ZQError *error = nullptr);

// Renames within one file system, never over an existing file.
bool zqMoveNoReplace(const QString &source, const QString &destination, ZQError *error = nullptr);

// Writes `data` to a temporary name beside `path`, flushes it and renames it over `path`.
bool zqWriteFileAtomically(const QString &path, const QByteArray &data, ZQError *error = nullptr);

// Writes everything of the file system that holds `path` to its disk.
bool zqSyncFileSystem(const QString &path, ZQError *error = nullptr);

// Makes `path` and what is missing on the way to it, each folder flushed into the one it lies in: a file that is
// flushed there is found after a power cut. True when it is there already.
bool zqMakeFolder(const QString &path);
// The names in it survive a power cut from here on.
void zqSyncFolder(const QString &folder);

struct ZQFileDates
{
    qint64 birth = 0; // milliseconds since 1970 UTC; the modification time where the file system keeps no birth time
    qint64 modification = 0;
    qint64 attributeModification = 0;
};
std::optional<ZQFileDates> zqFileDates(const QString &path);
