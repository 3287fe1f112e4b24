#pragma once

#include "Classes/Editing/SidebarTargetRules.h"

#include <QStringList>

class ZQSidebarBaseItem;

// What can be told of files before they are imported, for importers and whoever offers an import. None of it opens a
// file: names, kinds, permissions and places are looked at, contents are not. Any thread; nothing here fails, a path
// that leads nowhere is answered like one that cannot be imported.
class ImportQueries
{
public:
    // Which files can be imported. By name and by whether the path is a folder.
    static bool fileAtPathIsSupported(const QString &path);
    static bool fileAtPathIsArchive(const QString &path);
    static bool filesAtPathsContainsValidItems(const QStringList &paths);
    static bool filesAtPathsContainsDirectory(const QStringList &paths);
    static bool filesAtPathsContainsArchive(const QStringList &paths);
    static SidebarTargetRules::Files kindsOfFilesAtPaths(const QStringList &paths);
    // The item's own context's thread.
    static bool areFilesAtPaths(const QStringList &paths, const ZQSidebarBaseItem *validForSidebarItem);
    static QStringList supportedTypeForOpenPanel(); // extensions

    // Textual: "/a/bc" counts as inside "/a/b". The order is kept.
    static QStringList removeSubFoldersFromPaths(const QStringList &paths);
    static QString getActualPath(const QString &path); // where the file is now
    // `reason`: why not, and what to do about it.
    static bool isFileReadableAtPath(const QString &path, QString *reason = nullptr);
    static QStringList unreadableFilesForFilePaths(const QStringList &paths); // folders with all they hold
    static QStringList unreadableFilesForDirectory(const QString &directory);
    // Textual. What lies in one is moved into the library instead of copied.
    static bool fileIsInsideTemporaryDirectory(const QString &path);
    // Whether views can show the file itself: no thumbnail of it is kept.
    static bool canSkipThumbForPath(const QString &path);
};
