#pragma once

#include "Classes/Tags/TagBackupStore.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

// Copies of files' tags, ratings and comments below the application's data folder, for files whose attributes get
// lost: an editor that saves by putting a new file in place of the old one, a copy that went through a file system
// without attributes. Also the care for tags written by older programs. Any thread.
//
// A file gets its tags back when it has no attribute of ours at all, lies where the tagged file lay, and is that file
// saved by putting a new one in its place: it has the same contents, or the old one was put aside in the same folder
// under a name that an editor makes of its own ("a.png~", "a.png.bak"). A newcomer under the name of a file that is
// gone gets nothing; what an editor changed in a file of a library comes back from its store. Nothing comes back either
// where the tagged file itself was stripped by somebody, lies in the folder under an unrelated name, or was seen
// anywhere else. Tags that were removed leave an empty list on the file, so they never come back.
//
// No request is lost: what another process or a full disk holds up is tried again, and what a killed process leaves is
// copied by the next one. Until then an older copy counts for nothing.
class OpenMetaBackup
{
public:
    // Asked after each write of a tag attribute: notes the path and returns. The copies are made on a thread of their
    // own, once for all requests of about half a second.
    static void backupMetadata(const QString &path);
    // The same, with a record that found no room in the file.
    static void backupMetadata(const QString &path, const QByteArray &seen);
    static bool hasAttributes(const QString &path); // any of ours
    // Asked before tags or a rating are read. Costs a tagged or never tagged file a list of its attributes.
    static void restoreMetadata(const QString &path);
    static void restoreMetadata(const QString &path, const QStringList &names); // those of its attributes
    // The copy of this very file, also when it was saved by replacing it and lost its tags; not when the file has tags
    // of a later time than the copy.
    static std::optional<TagBackup> lastKnown(const QString &path);
    // Before the process ends. Returns also when another process keeps the copies from being made, or they take longer
    // than `most`; they stay noted.
    static void waitUntilAllWritten(std::optional<std::chrono::milliseconds> most = {});

    static QString folder(); // where the copies are

    // Programs that know the older tag key only write that one: when its tags are at least two seconds newer, they
    // replace those of the present key.
    static void copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path);
};
