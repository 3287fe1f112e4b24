#pragma once

#include <QString>

// Makes the paths of item directories. Any thread.
class LibraryBundleManager
{
public:
    // A fresh "Library"/UUID.ztlibraryitem, created; empty on failure, which is logged.
    static QString newLibraryItemBundlePath();
    // A new item directory joined with the last component of `filePath`: where the imported copy is to be written.
    // Empty on failure.
    static QString libraryPathForFilePath(const QString &filePath);
    // While `remembers`, from the launch until leftovers were looked for, the names of what is made are kept: dates
    // alone tell a directory of this process only as long as no clock is set back. Ending it, or beginning anew,
    // forgets them.
    static void rememberMadeDirectories(bool remembers);
    static bool didMake(const QString &directoryName);
    // The sibling "BASE_thumb.EXT" of a file.
    static QString libraryPathForThumbOfURL(const QString &path);
};
