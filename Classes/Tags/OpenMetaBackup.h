#pragma once

#include <QString>
#include <QStringList>

// Copies of files' tags, ratings and comments below the application's data folder, for files whose attributes get
// lost: an editor that saves by putting a new file in place of the old one, a copy that went through a file system
// without attributes. Also the care for tags written by older programs. Any thread.
//
// A file gets its tags back when it has no attribute of ours at all, lies where the tagged file lay, is another file
// than that one (the same file without attributes was stripped by somebody, and stays so), and the tagged file did not
// merely move away: it is not in the same folder under an unrelated name, and was not seen anywhere else. Names that an
// editor gives to the copy it puts aside ("a.png~", "a.png.bak") do not count as moving away. Tags that were removed
// leave an empty list on the file, so they never come back.
class OpenMetaBackup
{
public:
    // Asked after each write of a tag attribute: notes the path and returns. The copies are made on a thread of their
    // own, once for all requests of about half a second.
    static void backupMetadata(const QString &path);
    // Asked before tags or a rating are read. Costs a tagged or never tagged file a list of its attributes.
    static void restoreMetadata(const QString &path);
    static void restoreMetadata(const QString &path, const QStringList &names); // those of its attributes
    // Before the process ends.
    static void waitUntilAllWritten();

    static QString folder(); // where the copies are

    // Programs that know the older tag key only write that one: when its tags are at least two seconds newer, they
    // replace those of the present key.
    static void copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path);
};
