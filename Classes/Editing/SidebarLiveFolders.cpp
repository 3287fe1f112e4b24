// The commands of the sidebar on live folders.

#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <algorithm>

namespace {

using Items = SidebarCommands::Items;

Items foldersOf(const EditContext &edits, const QList<ZQObjectID> &ids)
{
    Items items;
    for (const ZQObjectID &id : ids) {
        if (const auto item = edits.sidebarItem(id)) {
            items.append(item);
        }
    }
    return items;
}

QString nameOf(const QString &format, const Items &items)
{
    return zqFormat(format, {items.size() == 1 ? items.first()->title()
                                               : zqFormat(zqLocalized("%d live folders"), {int(items.size())})});
}

} // namespace

AddedLiveFolders SidebarCommands::addWatchedFolders(const QStringList &paths, quint32 atIndex,
                                                    LiveFolderManaging &manager)
{
    const AddedLiveFolders result = manager.addNewWatchFolderFromPaths(paths, atIndex);
    const Items added = foldersOf(m_edits, result.added);
    const Item father = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(m_edits.context);
    if (added.isEmpty() || !father) {
        return result;
    }
    const auto first = quint32(std::max<qsizetype>(0, father->orderedChildren().indexOf(added.first())));
    EditContext &edits = m_edits;
    zqPushBlocks(
        m_edits, nameOf(zqLocalized("add %@"), added),
        [&edits, &manager, ids = result.added, label = father->objectID(), first, isFirst = true]() mutable {
            const Item above = edits.sidebarItem(label);
            if (std::exchange(isFirst, false) || !above) {
                return;
            }
            quint32 index = first;
            for (const Item &folder : foldersOf(edits, ids)) {
                folder->restoreSelf();
                above->addChild(folder.get(), index++);
            }
            edits.save();
            manager.watchedFoldersDidChange(ids);
            zqTellOfRows(edits, ids);
        },
        [&edits, &manager, ids = result.added] {
            for (const Item &folder : foldersOf(edits, ids)) {
                folder->removeFromFather();
                folder->deleteSelf();
            }
            edits.save();
            manager.watchedFoldersDidChange(ids);
        });
    return result;
}

void SidebarCommands::setWatchedFoldersEnabled(const Items &folders, bool enabled, LiveFolderManaging &manager)
{
    Items chosen = folders;
    chosen.removeIf([enabled](const Item &item) {
        const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
        return !folder || folder->is_enabled() == enabled || folder->is_missing() || folder->is_trashed();
    });
    if (chosen.isEmpty()) {
        return;
    }
    QList<ZQObjectID> ids;
    for (const Item &item : std::as_const(chosen)) {
        ids.append(item->objectID());
    }
    EditContext &edits = m_edits;
    const auto change = [&edits, &manager, ids](bool to) {
        for (const Item &item : foldersOf(edits, ids)) {
            const auto folder = zqCast<ZQSidebarWatchedFolder>(item);
            to ? folder->reActivateFolder() : folder->deactivateFolder();
        }
        edits.save();
        manager.watchedFoldersDidChange(ids);
    };
    zqPushBlocks(
        m_edits, nameOf(enabled ? zqLocalized("enable %@") : zqLocalized("disable %@"), chosen),
        [change, enabled] { change(enabled); }, [change, enabled] { change(!enabled); });
}
