#pragma once

#include <QByteArray>

#include <optional>

// What a persistent file reference holds, and how a file is known by it. Of this folder only; any thread. Paths are the
// bytes the system sees.

// What tells one file from every other on its file system. An inode number is given to a new file once its old one is
// deleted; the birth time tells these apart where the file system keeps it.
struct ZQFileIdentity
{
    quint64 inode = 0;
    qint64 birth = 0; // nanoseconds since 1970; 0 when unknown
    quint64 fileSystem = 0;

    bool isSameAs(const ZQFileIdentity &other) const;
};

// What a file holds, as far as it takes to know it again after a program saved it by putting a new file in its place:
// its size with a digest of its two ends. One end alone would not do: unrelated pictures end with the same colour
// profile.
struct ZQFileContents
{
    qint64 size = 0;
    QByteArray ends; // empty: not known, nothing in it, or too plain at its ends to be one file's alone

    static ZQFileContents ofFile(const QByteArray &path);
    bool isSavedAs(const ZQFileContents &other) const;
};

struct ZQFileReference
{
    ZQFileIdentity file;
    ZQFileIdentity folder; // the nearest one above it
    bool isFolder = false;
    QByteArray path;
    ZQFileContents contents; // of a folder, and in references of the first format, none
    quint32 names = 1;       // of a file: under how many it was there, the hard links included

    static std::optional<ZQFileReference> decoded(const QByteArray &data);
    QByteArray encoded() const;

    // Whether the file is at `path`. One in the trash is deleted, whatever its name there; of a folder is asked where
    // it is even then.
    bool isAt(const QByteArray &path) const;
    // Whether the file moved to `place`, or got that name before it lost its own. One with fewer names than when it was
    // referenced lost one by deleting; the others were there before and are nobody's new ones.
    bool hasMovedTo(const QByteArray &place) const;
    // Whether the file at `path`, another one than the referenced, is that one saved by replacing it.
    bool isSuccessor(const QByteArray &path) const;
    // Whether a file of this name in the same folder is one that an editor put aside when it saved a new one.
    bool isPutAside(const QByteArray &name) const;
};

struct ZQFoundFile
{
    ZQFileIdentity identity; // without its file system
    bool isFolder = false;
    quint64 device = 0;
    quint32 names = 1;       // hard links
    qint64 modification = 0; // nanoseconds since 1970
    qint64 change = 0;       // the same, of its attributes
};
// Whether a file was put aside and its newcomer made in one go, as editors save; days later it is another file.
bool zqAreOfOneSaving(const ZQFoundFile &putAside, const ZQFoundFile &newcomer);
std::optional<ZQFoundFile> zqLookAtFile(const QByteArray &path); // links are not followed, nothing is mounted
quint64 zqFileSystemOf(const QByteArray &path);
bool zqIsFile(const QByteArray &path, const ZQFileIdentity &identity);
QByteArray zqFolderOf(const QByteArray &path);
// Whether using `path` would make the system mount something: its mount point waits for an automounter.
bool zqWouldMount(const QByteArray &path);
