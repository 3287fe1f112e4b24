// The commands on the rows of live folders.

#include "Classes/Editing/EditStep.h"
#include "Classes/Editing/LiveFolderItems.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Classes/Editing/SidebarRemoval.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QSet>

#include <memory>
#include <utility>

namespace {

using Folder = ZQRef<ZQSidebarWatchedFolder>;
using IDs = QList<ZQObjectID>;

Folder liveFolder(const EditContext &edits, const ZQObjectID &id)
{
    auto folder = zqCast<ZQSidebarWatchedFolder>(edits.sidebarItem(id));
    return folder && folder->active() ? folder : Folder();
}

// Folders that one step enables or disables, with those below them that were the other way: these are so again when it
// is taken back. Their items follow, many beside the window.
class Enabling
{
public:
    Enabling(EditContext &edits, IDs folders, bool enabled)
        : m_edits(edits), m_folders(std::move(folders)), m_isEnabled(enabled)
    {
    }
    bool isAnythingToDo() const { return !m_folders.isEmpty(); }

    void apply()
    {
        m_asNow.clear();
        for (const ZQObjectID &id : std::as_const(m_folders)) {
            const Folder folder = liveFolder(m_edits, id);
            for (const Folder &below : folder ? folder->orderedChildrenAndSubChildren() : QList<Folder>()) {
                if (below->is_enabled() == m_isEnabled) {
                    m_asNow.append(below->objectID());
                }
            }
            set(id, m_isEnabled);
        }
        save();
    }
    void takeBack()
    {
        for (const ZQObjectID &id : std::as_const(m_folders)) {
            set(id, !m_isEnabled);
        }
        for (const ZQObjectID &id : std::as_const(m_asNow)) { // a folder before those below it
            set(id, m_isEnabled);
        }
        save();
    }

private:
    void set(const ZQObjectID &id, bool enabled)
    {
        const Folder folder = liveFolder(m_edits, id);
        if (!folder || folder->isOutOfReach()) {
            return;
        }
        for (const Folder &row : QList<Folder>{folder} + folder->orderedChildrenAndSubChildren()) {
            row->setIs_enabled(enabled);
            m_changed.insert(row->objectID());
        }
    }
    void save()
    {
        LiveFolderItems items(m_edits, zqLocalized("Hiding items…"));
        for (const ZQObjectID &id : std::exchange(m_changed, {})) {
            if (const Folder folder = liveFolder(m_edits, id)) {
                folder->is_enabled() ? items.addComing(*folder) : items.addGoing(id);
            }
        }
        items.change();
        m_edits.save();
        if (m_edits.liveFolderManager) {
            m_edits.liveFolderManager->watchedFoldersDidChange(m_folders);
        }
    }

    EditContext &m_edits;
    IDs m_folders;
    IDs m_asNow;
    QSet<ZQObjectID> m_changed; // since the last save
    bool m_isEnabled;
};

} // namespace

AddedLiveFolders SidebarCommands::addWatchedFolders(const QStringList &paths, quint32 atIndex)
{
    AddedLiveFolders result;
    if (!m_edits.liveFolderManager) {
        for (const QString &path : paths) {
            result.refused.append({path, zqLocalized("Live folders are not kept in step here.")});
        }
        return result;
    }
    result = m_edits.liveFolderManager->addNewWatchFolderFromPaths(paths, atIndex);
    if (result.added.isEmpty()) {
        return result;
    }
    const Item first = m_edits.sidebarItem(result.added.first());
    const QString text = result.added.size() == 1 && first ? first->title() : zqLocalized("add live folders");
    const auto rows = std::make_shared<SidebarRemoval>(m_edits, result.added);
    const auto isFirst = std::make_shared<bool>(true);
    zqPushBlocks(
        m_edits, text,
        [rows, isFirst] {
            if (!std::exchange(*isFirst, false)) {
                rows->putBack();
            }
        },
        [rows] { rows->remove(); });
    return result;
}

void SidebarCommands::setWatchedFoldersEnabled(const Items &folders, bool enabled)
{
    IDs ids;
    QString title;
    for (const Item &item : folders) {
        const Folder folder = zqCast<ZQSidebarWatchedFolder>(item);
        if (folder && folder->active() && !folder->isOutOfReach() && folder->is_enabled() != enabled) {
            ids.append(folder->objectID());
            title = folder->title();
        }
    }
    const auto enabling = std::make_shared<Enabling>(m_edits, ids, enabled);
    if (!enabling->isAnythingToDo()) {
        return;
    }
    const QString one = enabled ? zqLocalized("enable %@") : zqLocalized("disable %@");
    const QString several = enabled ? zqLocalized("enable live folders") : zqLocalized("disable live folders");
    zqPushBlocks(
        m_edits, ids.size() == 1 ? zqFormat(one, {title}) : several, [enabling] { enabling->apply(); },
        [enabling] { enabling->takeBack(); });
}
