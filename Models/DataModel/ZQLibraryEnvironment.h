#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>

#include <optional>

class ZQLibraryBaseItem;

// What the entities need from the application they live in. The application installs its own at launch, a test a
// scratch one. Main or background thread, as the caller's context.
class ZQLibraryEnvironment
{
public:
    virtual ~ZQLibraryEnvironment() = default;

    // The "Library" directory of the bundle; empty when it cannot be made.
    virtual QString libraryDirectory() = 0;
    // A new item directory joined with the last component of `path`; empty when the directory cannot be made.
    virtual QString libraryPathForFilePath(const QString &path) = 0;
    // Asks for a new thumbnail of a saved item.
    virtual void thumbForLibraryItem(ZQLibraryBaseItem *item) = 0;
    // Shows an error to the person. Any thread.
    virtual void presentError(const ZQError &error) = 0;

    // The tags and the comment that a file itself carries; nothing when they cannot be read.
    virtual std::optional<QStringList> userTagsOfFile(const QString &path) = 0;
    virtual std::optional<QString> commentOfFile(const QString &path) = 0;
    virtual std::optional<int> ratingOfFile(const QString &path) = 0; // 0 to 5 stars, 0: none
    // Queues writing tags and comment to a file; returns at once.
    virtual void writeTagsToFile(const QString &path, const QStringList &tags, const QString &comment) = 0;
    // The same for a library item's own file: what is interrupted is done again at the next launch. `bundleID` is the
    // item's.
    virtual void writeTagsToFileOfItem(const QString &bundleID, const QString &path, const QStringList &tags,
                                       const QString &comment);
    // Whether tags are kept in step with files (the default "ImportOpenMetaTags").
    virtual bool writesTagsToFiles() = 0;

    // Never null: before the application installs one, an environment that has no library and does nothing.
    static ZQLibraryEnvironment &current();
    static void setCurrent(ZQLibraryEnvironment *environment);
};
