#pragma once

#include <QString>

#include <optional>

// Which folder it is that lies at a path, beyond its name: a drive that was taken away leaves a folder of the same
// path.
struct ZQFolderIdentity
{
    bool operator==(const ZQFolderIdentity &) const = default;

    quint64 device = 0;     // another one whenever the drive is plugged in, on some file systems
    quint64 fileSystem = 0; // what the file system says of itself; 0: nothing
    quint64 type = 0;       // of the file system
    quint64 inode = 0;
    qint64 born = 0; // nanoseconds; 0: not known
    QString volume;  // the identifier of the drive or the server's name of the place; empty: not known

    // Nothing, and errno, when there is no folder that can be looked at. Links are followed. Waits for the disk.
    static std::optional<ZQFolderIdentity> read(const QString &path);

    // Whether a file system of this type numbers its files anew each time it is mounted.
    static bool hasPassingInodes(quint64 type);
    // Whether both can be one folder, seen before and after the computer was started or the drive was plugged in anew.
    bool isSamePlace(const ZQFolderIdentity &other) const;

    QString toString() const; // to be kept; one line
    static std::optional<ZQFolderIdentity> fromString(const QString &text);
};
