#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>

#include <functional>

// A file or folder that goes into an archive, a folder with everything below it.
struct ZQZipMember
{
    QString path;
    QString name; // in the archive
};

// Writes a zip archive. What its type says is compressed already is stored, the rest deflated; names are UTF-8, dates
// and permissions travel, sources are only read. Links stay links and are not followed. The archive is
// written beside `path` and takes that name only when it is whole, and never over a file that is there (EEXIST).
// Nothing is flushed to disk: whoever needs that calls `zqSyncFileSystem`.
//
// `willAdd` is asked before each member; false ends it, and so does ZQCancellation, both with an error of the code
// ECANCELED. A name that is empty, absolute, leads out of the archive ("..") or occurs twice is refused before anything
// is written. A file that changes while it is read is refused (EBUSY). `unreadable` gets the index of a member that
// could not be read to its end, and stays as it is otherwise. Errors are of the domain "POSIX". Any thread.
bool zqWriteZip(const QList<ZQZipMember> &members, const QString &path,
                const std::function<bool(qsizetype index)> &willAdd, ZQError *error = nullptr,
                qsizetype *unreadable = nullptr);
