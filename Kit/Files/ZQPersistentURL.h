#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>

// References to files that survive renaming and moving on their volume: opaque bytes with a format number that hold the
// file system's identity, inode, birth time, last path, the identity of the nearest ancestor folder, and as much of a
// file's contents as it takes to know it again. Any thread. Resolving touches the disk; it never mounts anything and
// never asks anyone.

enum class ZQReferenceContents { Noted, NotNoted };
// The reference to `path`; empty when the file cannot be read. Without contents a file that another program saves by
// replacing it is not known again, and how many names it had is not noted.
QByteArray zqDataForPersistentURL(const QString &path, ZQReferenceContents contents = ZQReferenceContents::Noted);

// Where the file is now, or nothing (an empty text): the last path when it still has that inode and birth time; the
// same folder; the last path again, when what took its place there is that file saved by replacing it, which its
// contents say, or the old one beside it under a name such as "a.png~" that it got within five seconds of the
// newcomer's birth. Any other newcomer is not the file. A file in the trash is deleted and found again when it was put
// back; a folder is found there, too.
//
// Another name of the same inode is the file once the old name is gone: it was renamed by hand. Not so where the file
// had several names (hard links, as backups make them) when it was referenced, and has fewer now: then a name was
// deleted and none is new, so it is missing, though the other names are still there. Of a file of several names that
// was moved, which of its names is the new one cannot be told; they are one file.
//
// What is in none of these places is looked for around that folder and in the watched roots, once and beside the
// caller, who gets nothing meanwhile. `moved` is called once, on the thread that looks for files, when the file is
// found elsewhere than the reference says, so that it can be renewed; it must not wait for a search. A miss is
// remembered for a minute, as long as the last folder does not change, and no folder is looked into then.
QString zqURLFromPersistentData(const QByteArray &data, const std::function<void(const QString &path)> &moved = {});

// The same for those who need the answer at once and can wait for it: the whole folders it begins with, the one it
// was in and two above, and some ten thousand entries below and in the watched roots.
QString zqFindPersistentURL(const QByteArray &data);
// Looks for many before the functions above are called for each: what is not where it was is looked for in one go, each
// folder once, beside the caller or not as these would. At most `zqMostPersistentURLs`, or the first are forgotten.
struct ZQPersistentURL
{
    QByteArray data;
    std::function<void(const QString &path)> moved;
};
void zqLookForPersistentURLs(const QList<ZQPersistentURL> &all);
// Has `moved` called anew the next time, when the reference could not be renewed.
void zqTellPersistentURLAgain(const QByteArray &data);
// What a reference says of its file, without a look at the disk; nothing for what is no reference.
struct ZQReferencedFile
{
    QString path; // the last known
    quint64 inode = 0;
};
std::optional<ZQReferencedFile> zqFileOfPersistentURL(const QByteArray &data);
// Whether the file at `path` is the one that was referenced, whatever it holds by now.
bool zqPersistentURLIsAt(const QByteArray &data, const QString &path);
// The same file's reference after it came to `path`: its contents are not read again. Empty when it is not there.
QByteArray zqMovedPersistentURL(const QByteArray &data, const QString &path);
// For a process whose caller can always wait, as a command has no window: both functions are the same then.
void zqSetPersistentURLsWait(bool wait);

// Folders also searched when a file is found nowhere near its last path.
void zqSetPersistentURLRoots(const QStringList &roots);

// For tests and measurements.
struct ZQPersistentURLCounts
{
    qint64 entriesInCallers = 0; // of folders, looked at since the program began
    qint64 entriesBeside = 0;
};
ZQPersistentURLCounts zqPersistentURLCounts();
void zqSetPersistentURLTime(std::optional<std::chrono::nanoseconds> since1970); // instead of the real one
void zqForgetPersistentURLs();             // what was remembered, as after that minute
void zqWaitForPersistentURLSearches();     // those beside the callers
constexpr int zqMostPersistentURLs = 8192; // remembered at a time
