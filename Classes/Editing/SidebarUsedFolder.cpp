// What lies at the place of a live folder that is missing, taken for it.

#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QDir>
#include <QFileInfo>

#include <optional>

namespace {

using Folder = ZQRef<ZQSidebarWatchedFolder>;

QString refusalFor(const Folder &folder)
{
    if (!folder || !folder->active() || zqIsSubFolder(*folder)) {
        return zqLocalized("It is no live folder of its own. Choose one that stands below LIVE FOLDERS.");
    }
    if (folder->standing() != ZQSidebarWatchedFolder::Standing::Missing) {
        return zqLocalized("It is not missing, so nothing has to be taken for it.");
    }
    const QString path = folder->folderPath();
    const QFileInfo info(path);
    if (!info.isDir()) {
        return zqFormat(zqLocalized("There is no folder at “%@”. Connect its drive, or put the folder back."), {path});
    }
    if (!info.isReadable() || !info.isExecutable()) {
        return zqFormat(zqLocalized("“%@” cannot be read. Allow reading it first."), {path});
    }
    // What an unmounted drive leaves.
    if (QDir(path).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        return zqFormat(zqLocalized("“%@” is empty. Connect its drive, put files into it first, or remove the live "
                                    "folder."),
                        {path});
    }
    return {};
}

// Whether items could leave the library, since no file has their place. Of many, and in doubt, it is said that some do.
bool couldLoseItems(const Folder &root, ZQManagedObjectContext &context)
{
    constexpr qsizetype mostLookedAt = 500;
    qsizetype looked = 0;
    for (const Folder &folder : QList<Folder>{root} + root->orderedChildrenAndSubChildren()) {
        const ZQFetchRequest request{.entityName = ZQLibraryBaseItem::entityName(),
                                     .predicate =
                                         ZQPredicate::predicateWithFormat(QStringLiteral("watchingFolder == %@"),
                                                                          {QVariant::fromValue(folder->objectID())})};
        looked += qsizetype(context.countForFetchRequest(request).value_or(mostLookedAt + 1));
        const auto items = looked > mostLookedAt ? std::nullopt : zqFetch<ZQLibraryBaseItem>(context, request);
        if (!items) {
            return true;
        }
        for (const auto &item : *items) {
            const auto file = zqFileOfPersistentURL(item->itemURLData());
            if (!file || !QFileInfo::exists(file->path)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

SidebarCommands::FolderUse SidebarCommands::useWatchedFolder(const Item &item, bool asks, QString *reason)
{
    const Folder folder = zqCast<ZQSidebarWatchedFolder>(item);
    *reason = m_edits.liveFolderManager ? refusalFor(folder) : zqLocalized("Live folders are not kept in step here.");
    if (!reason->isEmpty()) {
        return FolderUse::Refused;
    }
    const QString path = folder->folderPath();
    const ZQObjectID id = folder->objectID();
    if (asks && couldLoseItems(folder, m_edits.context)) {
        const int answer = m_edits.user.ask(
            {.message = zqFormat(zqLocalized("Show the folder that is now in the place of “%@”?"), {folder->title()}),
             .informativeText = zqFormat(
                 zqLocalized("“%@” is another folder than before. Items whose files are not in it leave the library "
                             "and their projects. If only its drive is not connected, connect that instead."),
                 {path}),
             .buttons = {zqLocalized("Use This Folder"), zqLocalized("Cancel")},
             .suppressionKey = {},
             .isDestructive = true});
        if (answer != 0) {
            return FolderUse::Declined;
        }
        if (*reason = refusalFor(zqCast<ZQSidebarWatchedFolder>(m_edits.sidebarItem(id))); !reason->isEmpty()) {
            return FolderUse::Refused; // it came back meanwhile, or went
        }
    }
    const QByteArray reference = zqDataForPersistentURL(path);
    if (reference.isEmpty()) {
        *reason = zqFormat(zqLocalized("“%@” cannot be read. Allow reading it first."), {path});
        return FolderUse::Refused;
    }
    folder->setFolderURLSecureData(reference);
    folder->setLastSyncDate({}); // what was recorded of the other folder counts no more
    if (!m_edits.save()) {
        return FolderUse::Declined; // which was told
    }
    m_edits.liveFolderManager->watchedFoldersDidChange({id});
    return FolderUse::Done;
}
