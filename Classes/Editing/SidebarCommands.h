#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Editing/EditContext.h"

#include <optional>

// The commands on the sidebar tree: add, delete, rename, move. Each is one undo step and is saved. Main thread.
class SidebarCommands
{
public:
    explicit SidebarCommands(EditContext &edits) : m_edits(edits) {}

    using Item = ZQRef<ZQSidebarBaseItem>;
    using Items = QList<Item>;

    // Placed by the reference item: after a project or smart folder, into a folder, else at the end of PROJECTS. Null
    // when the tree is not there.
    enum class NewItem { Project, Folder };
    Item addNewListItem(NewItem kind, const Item &onItem);
    Item addNewListItem(NewItem kind, const Item &father, quint32 order);     // exactly there
    Item addNewListItem(const Item &item, const Item &father, quint32 order); // inserts, saves, registers the undo
    Item addNewTag();                                                         // a new last tag
    // A saved search, placed as a project is. Named after its text where that is all there is to name it by.
    struct Order
    {
        ZQSortValue value;
        bool isAscending;
    };
    Item addSmartFolder(const QString &searchText, const QString &title, const Item &onItem,
                        const std::optional<Order> &order = {});
    Item duplicateSmartFolder(const Item &smartFolder); // beside it; null for what is none
    static QString nameOfSearch(const QString &text);   // what a smart folder is called that gets no other name
    void setSearchText(const Item &smartFolder, const QString &searchText);

    // Live folders of these directories, from position `atIndex` of LIVE FOLDERS on. A step of those that were added;
    // all are refused where nobody keeps live folders.
    AddedLiveFolders addWatchedFolders(const QStringList &paths, quint32 atIndex);
    // Whether they are looked at, and their items shown; of what is among `folders` the live folders that stand
    // otherwise.
    void setWatchedFoldersEnabled(const Items &folders, bool enabled);

    // Takes what lies at the place of a missing live folder for it: from then on that is the folder, and what it does
    // not hold leaves the library. With `asks` that is asked about first. No step: the disk decides what it shows.
    // `reason`: localized, why it was refused.
    enum class FolderUse { Done, Declined, Refused };
    FolderUse useWatchedFolder(const Item &item, bool asks, QString *reason);

    // Ask, unless told not to; false when the person declined.
    bool deleteSidebarItem(const Items &items);
    bool deleteSidebarItemAndRemoveContentFromLibrary(const Items &items);
    void deleteListItems(const Items &items);

    // Whether the title can be taken; a notification says why not. A tag needs one that no other active tag has.
    bool validateNewTitle(const QString &title, const Item &forSidebarItem);
    void renameListItem(const Item &item, const QString &title);
    void moveListItems(const Items &items, const Items &onFathers, const QList<quint32> &atIndexes);

    // Where they land: children that leave from above the index no longer count.
    static quint32 destinationIndex(const Items &dragged, const Item &target, int index);

    // Items a folder stands for: those of the projects below it; a project's own otherwise.
    QList<ZQRef<ZQLibraryBaseItem>> contentOfItems(const Items &items) const;

private:
    // Where a new item goes.
    struct Spot
    {
        Item father; // null when the tree is not there
        quint32 index = 0;
    };
    Spot spotFor(const Item &onItem) const;
    bool confirm(const Items &items, bool withContent);
    bool validateNewTagTitle(const QString &text, const Item &forTag);
    void pushDeletion(const QString &text, const Items &items, const QList<ZQRef<ZQLibraryBaseItem>> &content);

    EditContext &m_edits;
};
