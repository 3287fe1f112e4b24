#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class ZQLibraryBaseItem;
struct ZQObjectID;
template <class T>
class ZQRef;

// What goes between an item and its file.
struct ZQFileTags
{
    QStringList tags;
    QString comment;            // null: the file's stays
    std::optional<int> rating;  // 0 to 5 stars; nothing: the file's stays
    bool ratingIsMeant = false; // given just now: it replaces the file's, whatever that is
    bool isFirst = false;       // the item is new: whatever a record in the file says, it is of another one
    bool isSaved = false;       // the store has them on the disk
    QStringList measured = {};  // those of `tags` that nobody gave: a file without them took none away
};

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
    // What an item that has `present` has after its file was read; nothing when the file cannot be read.
    virtual std::optional<ZQFileTags> tagsAfterReadingFile(const QString &path, const ZQFileTags &present);
    // After the item took that in: from now on the file's values are what was last seen of it.
    virtual void didTakeInTagsOfFile(const QString &, const QString &, const ZQFileTags &) {}
    // Reads the items' files beside the caller. What other programs changed there comes into the store a little later,
    // with `dataDidUpdateNotification` for each item concerned. Main thread.
    virtual void takeInTagsOfFiles(const QList<ZQRef<ZQLibraryBaseItem>> &) {}

    // The file of an unmanaged item was found elsewhere than `reference` says, which `renewed` replaces, with
    // `dataDidUpdateNotification`, unless the item has another one by now; the file gets the item's tags. False when
    // that is not possible now. Main thread.
    virtual bool fileOfItemDidMove(const ZQObjectID &, const QByteArray &, const QByteArray &) { return false; }

    // Before a save of changes whose files are written after it: until what it answers is gone, the next launch writes
    // the items' files again when the process or the power fails. Waits for the disk.
    virtual std::shared_ptr<void> willWriteTagsOfItems(const QStringList &) { return nullptr; }
    // Queues writing to a file; returns at once.
    virtual void writeTagsToFile(const QString &path, const ZQFileTags &tags) = 0;
    // The same for a library item's own file: what other programs changed there stays, and what is interrupted is done
    // again at the next launch. `bundleID` is the item's.
    virtual void writeTagsToFileOfItem(const QString &bundleID, const QString &path, const ZQFileTags &tags);
    // The same for one that is not where `reference` says: it is looked for first.
    virtual void writeTagsToMovedFileOfItem(const QString &bundleID, const QByteArray &reference,
                                            const ZQFileTags &tags);
    // Whether tags are kept in step with files (the default "ImportOpenMetaTags").
    virtual bool writesTagsToFiles() = 0;

    // Never null: before the application installs one, an environment that has no library and does nothing.
    static ZQLibraryEnvironment &current();
    static void setCurrent(ZQLibraryEnvironment *environment);
};
