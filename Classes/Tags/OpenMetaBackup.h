#pragma once

#include <QString>

// Where a copy of files' tags would be kept, and the care for tags written by older programs. Any thread.
class OpenMetaBackup
{
public:
    // Asked after each write of a tag attribute, and before tags or a rating are read. No copies are kept, so there is
    // nothing to record and nothing to bring back.
    static void backupMetadata(const QString &path) { Q_UNUSED(path) }
    static void restoreMetadata(const QString &path) { Q_UNUSED(path) }

    // Programs that know the older tag key only write that one: when its tags are at least two seconds newer, they
    // replace those of the present key.
    static void copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path);
};
