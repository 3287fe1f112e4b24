#pragma once

#include "Kit/Imaging/ZQBitmap.h"
#include "Models/DataModel/ZQExportRepresentation.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/_ZQLibraryBaseItem.h"

#include <QSet>

class ZQSidebarBaseItem;
class ZQSidebarWatchedFolder;
class ZQManagedObjectContext;
struct ZQFileTags;

// One asset of the library: a file copied into its item directory ("managed"), or referenced where it lies (a live
// folder's). Deleting clears `active`; the purge at quit removes what stayed inactive.
//
// Lists from class operations are nothing after a fetch error, which was logged. Paths are empty when there is no such
// file.
class ZQLibraryBaseItem : public _ZQLibraryBaseItem
{
public:
    static inline const QString didDeleteNotification = QStringLiteral("LibraryItemDidDelete");
    static inline const QString dataDidUpdateNotification = QStringLiteral("LibraryItemDataDidUpdate");
    static inline const QString itemDirectoryExtension = QStringLiteral(".ztlibraryitem");
    static inline const QString representationBitmapName = QStringLiteral("___itemBitmap.png");

    static ZQFetched<ZQLibraryBaseItem> libraryItemsWithSHA1(const QString &SHA1,
                                                             ZQManagedObjectContext &inManagedObjectContext);
    static ZQFetched<ZQLibraryBaseItem> libraryItemsForSHA1s(const QStringList &SHA1s,
                                                             ZQManagedObjectContext &inManagedObjectContext);
    // Those that are there, in this order, with their values: a query for every 500.
    static QList<ZQRef<ZQLibraryBaseItem>> itemsWithIDs(const QList<ZQObjectID> &ids, ZQManagedObjectContext &context);
    // The last match.
    static ZQRef<ZQLibraryBaseItem> libraryItemsForBundleID(const QString &bundleID,
                                                            ZQManagedObjectContext &inManagedObjectContext);
    // Active items imported or modified since `fromDate`. The end date bounds nothing: "yesterday" reaches to now.
    static ZQFetched<ZQLibraryBaseItem> libraryItemsFromDate(const QDateTime &fromDate, const QDateTime &toDate,
                                                             ZQManagedObjectContext &inManagedObjectContext);
    static ZQFetched<ZQLibraryBaseItem> libraryItemsForTodayInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQFetched<ZQLibraryBaseItem> libraryItemsForYesterdayInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQFetched<ZQLibraryBaseItem> libraryItemsForLastHourInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQFetched<ZQLibraryBaseItem> libraryItemsForLastWeekInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQPredicate predicateFromDate(const QDateTime &fromDate, const QDateTime &toDate);
    // Removes every inactive item but those of a live folder that is missing, trashed, disabled or still to be looked
    // at, and those whose file cannot be moved to the trash now. Answers the names of their item directories, which the
    // caller removes after saving.
    static std::optional<QStringList>
    permanentlyDeleteInactiveObjectinManagedObjectContext(ZQManagedObjectContext &context);

    QString bundleURL() const;
    QString managedItemURL() const;
    QString itemURL() const; // of an unmanaged item whose file is missing: empty until it was found beside the caller
    QString findItemURL() const; // waits for that: for whatever renames, hides, removes or copies the file
    // Has the files of many that will be waited for looked for in one go.
    static void lookForFiles(const QList<ZQRef<ZQLibraryBaseItem>> &items);
    QString managedThumbURL() const;
    QString thumbURL() const { return managedThumbURL(); }
    virtual QString detailItemURL() const; // the file the detail view shows

    ZQRef<ZQLibraryBaseItem> item() { return ZQRef<ZQLibraryBaseItem>(this); }
    QList<ZQRef<ZQSidebarBaseItem>> projects() const;
    ZQRef<ZQProjectItem> projectItemForSidebarItem(const ZQSidebarBaseItem *sidebarItem) const;
    QList<ZQRef<ZQSidebarTag>> itemTags() const; // active ones
    QSet<ZQRef<ZQSidebarTag>> itemTagsSet() const;
    QStringList userTagTitles() const;                    // of active tags that a person made, sorted
    QList<ZQRef<ZQSidebarBaseItem>> sidebarItems() const; // projects, then tags, then the live folder

    // Renames the file, its thumbnail and the item. False, with the error shown and nothing changed, for a title no
    // file can have or when the file cannot be moved.
    bool setNewTitle(const QString &newTitle);
    // A managed copy with its own item directory and tags, in no project. Null when there is no file or no directory
    // can be made. Its files need not be on the disk yet; `duplicatesOf` is for copies that are saved.
    ZQRef<ZQLibraryBaseItem> duplicate();
    // Those of all that have one, with their files on the disk: a row of the store never names a file that a power cut
    // can take. Waits for the disk once. `which`: the index of each copy's original.
    static QList<ZQRef<ZQLibraryBaseItem>> duplicatesOf(const QList<ZQRef<ZQLibraryBaseItem>> &items,
                                                        const std::function<bool()> &isWanted,
                                                        QList<qsizetype> *which = nullptr);

    // An unmanaged copy with an item directory, pictures and tags of its own for a live folder, where `path` is its
    // file: a copy of this item's. Null when no directory can be made.
    ZQRef<ZQLibraryBaseItem> duplicateForWatchedFolder(ZQSidebarWatchedFolder *folder, const QString &path);

    void deleteSelf();
    void restoreSelf();
    // Moves the file of a live folder's item to the trash if a person deleted it, that is if it was hidden by
    // `hideFileFromFileSystem`. False, with the item still deleted and its file hidden, when that is not possible now.
    bool deletePermanently();
    void updateFileURLsForURL(const QString &path);
    // False, with an error and nothing changed, when the file cannot be renamed. One that is not there needs no hiding.
    bool hideFileFromFileSystem(ZQError *error = nullptr);
    // Under a numbered name, which the title follows, where another file has its own by now. False, with an error, when
    // the file cannot be renamed or is not there.
    bool unHideFileFromFileSystem(ZQError *error = nullptr);
    bool deleteItemBundleAndTrashFile(bool trashFile); // false when the file is still there

    // Brings the item in step with its file, when that changed or was renamed.
    void updateItemData();
    void updateItemData(const QString &path);

    // Tags, notes and rating, kept in step with the file. Reading answers whether any changed.
    ZQFileTags fileTags() const; // as the store has them
    bool readOpenMetaFromDisk();
    void writeOpenMetaToDisk();
    void writeRatingToDisk(); // the same after the rating was given: it replaces the file's
    void copyOpenMetaToPath(const QString &path);
    ZQFileTags tagsOfCopy() const; // what that writes
    // Gives the item these tags, of which those that are missing are made, and takes the others away. Answers whether
    // it has other tags now.
    bool changeTags(const QStringList &add, const QStringList &remove);
    // After values came from the file.
    void metadataDidComeFromFile();

    // Kinds whose file the image decoder cannot show keep a rendered bitmap in the item directory.
    virtual bool hasRepresentationBitmap() const { return false; }
    virtual ZQBitmap renderRepresentationBitmap(const QString &path, ZQError *error = nullptr) const;
    virtual QString invalidImageMessage() const; // with one %@, the path

    ZQBitmap exportImageRep(ZQError *error = nullptr) const; // at full resolution
    // What that is drawn from; without a path when neither the file nor a picture of it is there.
    virtual ZQExportRepresentation exportRepresentation() const;
    virtual QString pixelSizeString() const;
    virtual qint64 byteSize() const;

    QString description() const override;

private:
    ZQRef<ZQLibraryBaseItem> insertCopy(const QString &inDirectory);
    void copyPicturesTo(const QString &directory, const QString &ownFile) const;
    bool updateRepresentationBitmap(const QString &path, bool fileDidChange);
    void readPixelSize(const QString &path);
    void renameThumb(const QString &newTitle);
    void writeOwnFile(bool ratingIsMeant);
    void metadataOfFileDidChange();
    bool replaceTags(const QStringList &titles);
};
