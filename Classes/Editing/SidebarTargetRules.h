#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QList>
#include <QString>

class ZQSidebarBaseItem;

// Who may go where in the sidebar: what is brought × the sidebar item it is brought to × the position, with the reason
// of a refusal. Drops, dialogues, paste, the command line and imports ask here. On the thread of the item's context.
class SidebarTargetRules
{
public:
    struct Answer
    {
        QString refusal; // what to do instead; empty: accepted
        explicit operator bool() const { return refusal.isEmpty(); }
    };

    // What files are brought: one of a kind is enough, the others are left out with a reason by the import.
    struct Files
    {
        bool hasSupported = false;
        bool hasFolder = false;
        bool hasArchive = false;
    };

    // On a row of the sidebar, or in the pane that shows the item: its grid, a dialogue, paste.
    enum class Place { Row, Pane };

    static Answer files(const Files &files, const ZQSidebarBaseItem *target);
    static Answer content(const ZQSidebarBaseItem *target, Place place); // pictures and addresses of other programs
    static Answer items(const ZQSidebarBaseItem *target);                // of the library
    static bool canRemoveItems(const ZQSidebarBaseItem *from);

    // Files that are dropped between rows make a project there. A null target: below all rows.
    static bool filesMakeProject(const Files &files, const ZQSidebarBaseItem *target, int index);

    // Folders that are dropped on LIVE FOLDERS or between its rows become live folders.
    static bool foldersMakeLiveFolders(const Files &files, const ZQSidebarBaseItem *target);

    // Rows of the sidebar before the child `index` of the target, or onto it (-1).
    using Rows = QList<ZQRef<ZQSidebarBaseItem>>;
    static bool rows(const Rows &dragged, const ZQRef<ZQSidebarBaseItem> &target, int index);

    // How an import puts files into the target: one after the other, or their folders as folders and projects.
    enum class Holding { Nothing, Items, Tree };
    static Holding holding(const ZQSidebarBaseItem &target);
};
