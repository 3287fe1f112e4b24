#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"

#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarTargetRules.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/Sidebar/LiveFolderActions.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QFileInfo>
#include <QMimeData>

#include <algorithm>

namespace {

quint32 indexOf(const SidebarDropPlace &place)
{
    return place.index < 0 ? ZQSidebarBaseItem::appendIndex : quint32(place.index);
}

} // namespace

SidebarCommands::Items ProjectsSidebarViewController::draggedItems(const QMimeData *mime) const
{
    SidebarCommands::Items items;
    for (const QString &uri :
         QString::fromUtf8(mime->data(SidebarTreeView::elementMimeType)).split(u'\n', Qt::SkipEmptyParts)) {
        if (const auto item = zqCast<ZQSidebarBaseItem>(m_window.context.objectWithURIRepresentation(uri))) {
            items.append(item);
        }
    }
    return items;
}

Qt::DropAction ProjectsSidebarViewController::validate(const QMimeData *mime, const SidebarDropPlace &place) const
{
    if (mime->hasFormat(SidebarTreeView::elementMimeType)) {
        const bool isPlaceLost = place.index >= 0 && place.target && SidebarTreeModel::isSortedByTitle(*place.target);
        return !isPlaceLost && SidebarTargetRules::rows(draggedItems(mime), place.target, place.index)
                   ? Qt::MoveAction
                   : Qt::IgnoreAction;
    }
    const bool isOnto = place.index < 0;
    if (mime->hasFormat(BrowserContent::itemsMimeType)) {
        return isOnto && SidebarTargetRules::items(place.target.get()) ? Qt::CopyAction : Qt::IgnoreAction;
    }
    if (const QStringList paths = ImportDoor::localPaths(mime); !paths.isEmpty()) {
        return validateFileDrop(paths, place);
    }
    const bool isTarget = bool(SidebarTargetRules::content(place.target.get(), SidebarTargetRules::Place::Row));
    return isOnto && isTarget && ImportDoor::dragCarriesContent(mime) ? Qt::CopyAction : Qt::IgnoreAction;
}

Qt::DropAction ProjectsSidebarViewController::validateFileDrop(const QStringList &paths,
                                                               const SidebarDropPlace &place) const
{
    if (filesDropCanCreateProjectInSidebar(paths, place) || folderDropCanCreateWatchedFolderInSidebar(paths, place)) {
        return Qt::CopyAction;
    }
    return place.index < 0 && SidebarTargetRules::files(ImportDoor::filesAtPaths(paths), place.target.get())
               ? Qt::CopyAction
               : Qt::IgnoreAction;
}

bool ProjectsSidebarViewController::filesDropCanCreateProjectInSidebar(const QStringList &paths,
                                                                       const SidebarDropPlace &place) const
{
    return tree()->tree()->side() == SidebarTreeModel::Side::Projects &&
           SidebarTargetRules::filesMakeProject(ImportDoor::filesAtPaths(paths), place.target.get(), place.index);
}

bool ProjectsSidebarViewController::folderDropCanCreateWatchedFolderInSidebar(const QStringList &paths,
                                                                              const SidebarDropPlace &place) const
{
    return m_window.liveFolders && tree()->tree()->side() == SidebarTreeModel::Side::Projects &&
           SidebarTargetRules::foldersMakeLiveFolders(ImportDoor::filesAtPaths(paths), place.target.get());
}

// What a drop does where that is not seen by the place alone.
QString ProjectsSidebarViewController::dropHint(const QMimeData *mime, const SidebarDropPlace &place) const
{
    const QStringList paths =
        mime->hasFormat(BrowserContent::itemsMimeType) ? QStringList() : ImportDoor::localPaths(mime);
    if (!paths.isEmpty() && folderDropCanCreateWatchedFolderInSidebar(paths, place)) {
        return zqLocalized("Drop to create a live folder");
    }
    return !paths.isEmpty() && filesDropCanCreateProjectInSidebar(paths, place)
               ? zqLocalized("Drop to create a project")
               : QString();
}

bool ProjectsSidebarViewController::accept(const QMimeData *mime, const SidebarDropPlace &place)
{
    if (mime->hasFormat(SidebarTreeView::elementMimeType)) {
        const auto dragged = draggedItems(mime);
        const bool follows = !dragged.isEmpty() && selectedItems().contains(dragged.first()->objectID());
        const quint32 first = SidebarCommands::destinationIndex(dragged, place.target, place.index);
        QList<quint32> indexes;
        QList<ZQObjectID> ids;
        for (qsizetype i = 0; i < dragged.size(); ++i) {
            indexes.append(first + quint32(i));
            ids.append(dragged[i]->objectID());
        }
        m_commands.moveListItems(dragged, SidebarCommands::Items(dragged.size(), place.target), indexes);
        place.target->setExpanded(true);
        reload();
        if (follows) {
            selectItems(ids);
        }
        return true;
    }
    if (mime->hasFormat(BrowserContent::itemsMimeType)) {
        LibraryCommands(m_window).addItems(BrowserContent::itemsOfMimeData(mime, m_window), place.target->objectID(),
                                           indexOf(place));
        return true;
    }
    if (const QStringList paths = ImportDoor::localPaths(mime); !paths.isEmpty()) {
        return acceptFiles(paths, place);
    }
    ImportDoor::importDrop(mime, place.target.get(), indexOf(place));
    return true;
}

bool ProjectsSidebarViewController::acceptFiles(const QStringList &paths, const SidebarDropPlace &place)
{
    if (folderDropCanCreateWatchedFolderInSidebar(paths, place)) {
        const quint32 end = quint32(place.target->numberofChilds());
        m_liveFolders->newWatchedFolderItemFromDropFiles(paths, place.index < 0 ? end : quint32(place.index));
    } else if (filesDropCanCreateProjectInSidebar(paths, place)) {
        newSidebarItemFromDropFiles(paths, place);
    } else {
        ImportDoor::importFiles(paths, place.target.get(), indexOf(place));
    }
    return true;
}

// Folders become projects of their own; files share a new one.
void ProjectsSidebarViewController::newSidebarItemFromDropFiles(const QStringList &paths, const SidebarDropPlace &place)
{
    const auto father =
        place.target ? place.target : ZQSidebarBaseItem::projectsLabelInManagedObjectContext(m_window.context);
    if (!father) {
        return;
    }
    QStringList folders;
    QStringList files;
    for (const QString &path : paths) {
        (QFileInfo(path).isDir() && !ImportDoor::filesAtPaths({path}).hasSupported ? folders : files).append(path);
    }
    if (!folders.isEmpty()) {
        ImportDoor::importFiles(folders, father.get(), indexOf(place));
    }
    if (!files.isEmpty()) {
        const auto project = m_commands.addNewListItem(SidebarCommands::NewItem::Project, father, indexOf(place));
        if (project) {
            ImportDoor::importFiles(files, project.get(), ZQSidebarBaseItem::appendIndex);
            editTitle(project);
        }
    }
    m_window.user.showNotificationWithText(zqLocalized("New project created"), NotificationPlace::Sidebar,
                                           usualNotificationTime);
}
