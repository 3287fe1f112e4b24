#pragma once

#include <QString>
#include <QtGlobal>

// The room on the file system that a backup goes to. A part of it is left to everybody else: where the library lies
// there too, its next save must not fail for want of the backup's room. Any thread.
struct BackupRoom
{
    qint64 available = 0; // bytes
    qint64 total = 0;     // bytes; 0: the file system does not say how much it holds, and nothing is known

    static BackupRoom at(const QString &folder);
    qint64 kept() const; // bytes that stay free
    bool holds(qint64 bytes) const;

    // Whether copies of files of `library` made in `folder` share their blocks: tried there with two files that are
    // gone again.
    static bool isShared(const QString &library, const QString &folder);
};
