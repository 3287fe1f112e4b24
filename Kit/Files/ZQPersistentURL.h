#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// References to files that survive renaming and moving on their volume: opaque bytes with a format number that hold the
// file system's identity, inode, birth time, last path and the identity of the nearest ancestor folder. Any thread.
// Resolving touches the disk; it never mounts anything and never asks anyone.

// The reference to `path`; empty when the file cannot be read.
QByteArray zqDataForPersistentURL(const QString &path);

// Where the file is now, or nothing (an empty text): the last path when it still has that inode and birth time; the
// same folder, then the folders around it (bounded); the watched roots; last, the old path when another file took its
// place there.
QString zqURLFromPersistentData(const QByteArray &data);

// Folders also searched when a file is found nowhere near its last path.
void zqSetPersistentURLRoots(const QStringList &roots);
