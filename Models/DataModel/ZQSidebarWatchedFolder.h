#pragma once

#include "Models/DataModel/_ZQSidebarWatchedFolder.h"

#include <QHash>

// A live folder: a folder on disk, its sub-folders as children and its files as items that stay where they are.
class ZQSidebarWatchedFolder : public _ZQSidebarWatchedFolder
{
public:
    static ZQFetched<ZQSidebarWatchedFolder> watchedFoldersInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQFetched<ZQSidebarWatchedFolder> rootWatchedFoldersInManagedObjectContext(ZQManagedObjectContext &context);
    static ZQFetched<ZQSidebarWatchedFolder> watchedFoldersWithTitle(const QString &title,
                                                                     ZQManagedObjectContext &inManagedObjectContext);
    static ZQRef<ZQSidebarWatchedFolder> watchedFolderWithPath(const QString &path,
                                                               ZQManagedObjectContext &inManagedObjectContext);
    static ZQFetched<ZQSidebarWatchedFolder>
    watchedFoldersWithPathPrefix(const QString &prefix, ZQManagedObjectContext &inManagedObjectContext);
    // A live folder for a folder on disk, with no father yet.
    static ZQRef<ZQSidebarWatchedFolder> newSidebarWatchedFolderForPath(const QString &path,
                                                                        ZQManagedObjectContext &inManagedObjectContext);
    // The items of the folders in `andSubFolders` and everything below them, one folder after another.
    struct SubfolderItems
    {
        QList<ZQRef<ZQLibraryBaseItem>> sortedResults;
        QList<ZQRef<ZQSidebarBaseItem>> subprojects;
        QList<qint64> projectsCounts;
    };
    static std::optional<SubfolderItems>
    subfolderChildsItemsWithSortDescriptors(const QList<ZQSortDescriptor> &sortDescriptors,
                                            const QList<ZQRef<ZQSidebarBaseItem>> &andSubFolders,
                                            ZQManagedObjectContext &inManagedObjectContext);

    // Where several hold, as for one that is off, on a drive that went, it is the greatest.
    enum class Standing {
        Followed,
        Off, // by a person
        Trashed,
        Missing,
    };
    Standing standing() const; // what holds for it, through those above it too
    bool isOutOfReach() const { return standing() >= Standing::Trashed; }
    // Looked at, or looked for.
    bool isFollowed() const { return standing() != Standing::Off; }
    // Where the folder is now; empty when it is not found.
    QString folderURL() const;
    // Renews the stored reference, the path and the title.
    void updateWatchedFolderBookmark(const QString &path);
    // A folder out of reach: it and all below are disabled and their items inactive, files untouched; and back again.
    // Items the user deleted (their file is hidden) stay deleted.
    void deactivateFolder();
    void reActivateFolder();
    // Items of live folders that come back, or go. Looks for the files of those that come.
    static void setItemsActive(const QList<ZQRef<ZQLibraryBaseItem>> &items, bool activeItems);
    // What of an item's folder says that the item went with it, though it is active still: something was cut off
    // between the two, or came late. Of `Removed` ones nothing comes back.
    enum class Left { Removed, RemovedOrDisabled };
    static ZQPredicate predicateOfItemsLeftBehind(Left left);
    // Before rows of removed folders go for good, after which nobody would find those. False: they could not be looked
    // for. Saves nothing.
    static bool putAwayItemsLeftBehind(ZQManagedObjectContext &context);
    // Path to child folder, and path to item; active ones.
    QHash<QString, ZQRef<ZQManagedObject>> pathAndItemDictionary() const;
    QList<ZQRef<ZQSidebarWatchedFolder>> orderedChildrenAndSubChildren() const; // a folder before what it holds
    // Always: this desktop's dates cannot vouch for an unchanged folder.
    bool folderNeedSyncing() const { return true; }
    void updateFolderOpenMetaSyncDate();
    void folderContentMetadataDidChanged() { updateFolderOpenMetaSyncDate(); }

    bool isWatchedFolder() const override { return true; }
    QString typeString() const override;
    QString icon() const override
    {
        return is_missing() || is_trashed() ? QStringLiteral("warning") : QStringLiteral("live");
    }
    ZQFetchRequest contentRequest() const override;
    // Takes the items along; their files stay as they are.
    void deleteSelf() override;
    void restoreSelf() override;
    using ZQSidebarBaseItem::addItem;
    using ZQSidebarBaseItem::containsItem;
    bool addItem(ZQLibraryBaseItem *item, quint32 atIndex, bool rearrangeOtherItems, bool checkForDuplicate) override;
    bool addItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, const QList<quint32> &atIndexes = {},
                  ZQError *error = nullptr) override;
    void removeItems(const QList<ZQRef<ZQLibraryBaseItem>> &items) override;
    bool containsItem(const ZQLibraryBaseItem *item) const override;

private:
    void setItemsActive(bool activeItems);
};

// A folder below a live folder, which is there because the disk has it.
bool zqIsSubFolder(const ZQSidebarBaseItem &item);
