#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/Commands.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/UserInteraction.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {

using Folder = ZQRef<ZQSidebarWatchedFolder>;

QString stateOf(const ZQSidebarWatchedFolder &folder)
{
    using enum ZQSidebarWatchedFolder::Standing;
    switch (folder.standing()) {
    case Missing:
        return QStringLiteral("missing");
    case Trashed:
        return QStringLiteral("trashed");
    case Off:
        return QStringLiteral("disabled");
    case Followed:
        break;
    }
    return QStringLiteral("live");
}

QList<Folder> rootsOf(CommandContext &context)
{
    QList<Folder> roots;
    const auto label = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(context.store());
    for (const auto &child : label ? label->orderedChildren() : QList<ZQRef<ZQSidebarBaseItem>>()) {
        if (const Folder folder = zqCast<ZQSidebarWatchedFolder>(child)) {
            roots.append(folder);
        }
    }
    return roots;
}

// Null, with a message, when there is none.
Folder folderForReference(const QString &reference, CommandContext &context)
{
    const QString path = QDir::cleanPath(context.absolutePath(reference));
    if (const Folder folder = ZQSidebarWatchedFolder::watchedFolderWithPath(path, context.store())) {
        return folder;
    }
    const auto item = zqSidebarItemForReference(reference, context);
    const Folder folder = zqCast<ZQSidebarWatchedFolder>(item);
    if (item && !folder) {
        context.fail(zqFormat(zqLocalized("“%@” is no live folder; `zelto livefolders` lists them"), {reference}));
    }
    return folder;
}

qint64 itemsIn(const QList<Folder> &folders)
{
    qint64 count = 0;
    for (const Folder &folder : folders) {
        count += folder->numberOfItems();
    }
    return count;
}

void print(const QList<Folder> &roots, CommandContext &context)
{
    const LiveFolderManaging *const manager = context.delegate->liveFolderManager();
    QJsonArray objects;
    for (const Folder &root : roots) {
        const QList<Folder> below = root->orderedChildrenAndSubChildren();
        const qint64 items = itemsIn(QList<Folder>{root} + below);
        const QString state = stateOf(*root);
        const QString reason = manager ? manager->statusOfWatchedFolder(root->objectID()).reason : QString();
        objects.append(QJsonObject{{QStringLiteral("UUID"), root->UUID()},
                                   {QStringLiteral("title"), root->title()},
                                   {QStringLiteral("folderPath"), root->folderPath()},
                                   {QStringLiteral("items"), items},
                                   {QStringLiteral("folders"), below.size()},
                                   {QStringLiteral("state"), state},
                                   {QStringLiteral("reason"), reason}});
        if (!context.json) {
            const QString what = items == 1 ? zqLocalized("1 item") : zqFormat(zqLocalized("%d items"), {items});
            const QString where =
                below.isEmpty() ? zqLocalized("1 folder") : zqFormat(zqLocalized("%d folders"), {below.size() + 1});
            context.print(zqFormat(zqLocalized("%@: %@, %@ in %@"), {root->folderPath(), state, what, where}));
            if (!reason.isEmpty()) {
                context.print(u' ' + reason);
            }
        }
    }
    if (context.json) {
        context.printJSON(objects);
    }
}

} // namespace

bool zqWaitForLiveFolders(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context)
{
    bool isCancelled = false;
    const auto cancel = [&] {
        isCancelled = true;
        context.delegate->userInteraction().dismissQuestions();
        manager.stopSyncingWatchedFolders(folders);
    };
    const AbandonWatch watch(context, cancel);
    const auto progress =
        context.delegate->userInteraction().beginProgress(zqLocalized("Reading live folders…"), 0, cancel);
    qsizetype shown = 0;
    qsizetype total = 0;
    const auto isDone = [&] {
        bool isSyncing = false;
        for (const ZQObjectID &folder : folders) {
            const LiveFolderStatus status = manager.statusOfWatchedFolder(folder);
            isSyncing = isSyncing || status.isSyncing;
            if (status.filesTotal > 0 && status.filesTotal != total) {
                total = status.filesTotal;
                progress->setMaximum(double(total));
            }
            if (status.filesDone > shown) {
                progress->advanceBy(double(status.filesDone - shown));
                shown = status.filesDone;
            }
        }
        return !isSyncing;
    };
    zqRunMainLoopUntil(isDone);
    return !isCancelled;
}

namespace {

int finish(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context)
{
    if (!zqWaitForLiveFolders(manager, folders, context)) {
        return context.fail(zqLocalized("it was cancelled; what was read before that stays in the library, and the "
                                        "next `zelto sync` goes on"));
    }
    QList<Folder> rows;
    for (const ZQObjectID &id : folders) {
        if (const auto row = zqCast<ZQSidebarWatchedFolder>(context.store().existingObjectWithID(id))) {
            rows.append(row);
        }
    }
    print(rows, context);
    bool isAway = false;
    for (const Folder &row : std::as_const(rows)) {
        const QString state = stateOf(*row);
        if (state == u"missing" || state == u"trashed") {
            isAway = true;
            const QString reason = manager.statusOfWatchedFolder(row->objectID()).reason;
            context.fail(
                zqFormat(zqLocalized("“%@” is out of reach; its items are kept. %@"), {row->folderPath(), reason}));
        }
    }
    return isAway ? 2 : 0;
}

LiveFolderManaging *managerOf(CommandContext &context)
{
    LiveFolderManaging *const manager = context.delegate->liveFolderManager();
    if (!manager) {
        context.fail(zqLocalized("live folders are not kept in step here"));
    }
    return manager;
}

} // namespace

int zqRunLiveFolders(CommandContext &context)
{
    print(rootsOf(context), context);
    return 0;
}

int zqRunAddLiveFolders(const QStringList &paths, CommandContext &context)
{
    LiveFolderManaging *const manager = managerOf(context);
    if (!manager) {
        return 2;
    }
    QStringList absolute;
    for (const QString &path : paths) {
        absolute.append(QDir::cleanPath(context.absolutePath(path)));
    }
    CommandEdits edits(context);
    const AddedLiveFolders result =
        SidebarCommands(edits.context()).addWatchedFolders(absolute, ZQSidebarBaseItem::appendIndex);
    for (const ZQObjectID &folder : result.alreadyThere) {
        manager->syncWatchedFolder(folder, false);
    }
    const int status = finish(*manager, result.added + result.alreadyThere, context);
    for (const AddedLiveFolders::Refused &refused : result.refused) {
        context.fail(zqFormat(zqLocalized("“%@” was not added. %@"), {refused.path, refused.reason}));
    }
    return result.refused.isEmpty() ? status : 2;
}

int zqRunRemoveLiveFolder(const QString &reference, CommandContext &context)
{
    const Folder folder = folderForReference(reference, context);
    if (!folder) {
        return 2;
    }
    if (!folder->is_root()) {
        return context.fail(zqFormat(zqLocalized("“%@” is a part of another live folder; remove that one, or move the "
                                                 "folder elsewhere on the disk"),
                                     {folder->folderPath()}));
    }
    const ZQObjectID id = folder->objectID();
    if (LiveFolderManaging *const manager = context.delegate->liveFolderManager()) {
        manager->stopSyncingWatchedFolders({id});
        zqWaitForLiveFolders(*manager, {id}, context);
    }
    CommandEdits edits(context);
    SidebarCommands(edits.context()).deleteListItems({edits.context().sidebarItem(id)});
    return edits.finish(1, "1 live folder removed; its folder stays on the disk", "%d live folders removed");
}

int zqRunUseLiveFolder(const QString &reference, bool yes, CommandContext &context)
{
    LiveFolderManaging *const manager = managerOf(context);
    const Folder folder = manager ? folderForReference(reference, context) : Folder();
    if (!folder) {
        return 2;
    }
    const ZQObjectID id = folder->objectID();
    const QString path = folder->folderPath();
    CommandEdits edits(context);
    QString reason;
    switch (SidebarCommands(edits.context()).useWatchedFolder(edits.context().sidebarItem(id), !yes, &reason)) {
    case SidebarCommands::FolderUse::Refused:
        return context.fail(zqFormat(zqLocalized("“%@” stays as it is. %@"), {path, reason}));
    case SidebarCommands::FolderUse::Declined:
        return context.fail(zqFormat(zqLocalized("“%@” stays as it is: items whose files are not in it would leave the "
                                                 "library. With --yes they do"),
                                     {path}));
    case SidebarCommands::FolderUse::Done:
        break;
    }
    return finish(*manager, {id}, context);
}

int zqRunSyncLiveFolders(const QString &reference, CommandContext &context)
{
    LiveFolderManaging *const manager = managerOf(context);
    if (!manager) {
        return 2;
    }
    QList<ZQObjectID> folders;
    if (reference.isEmpty()) {
        for (const Folder &root : rootsOf(context)) {
            if (stateOf(*root) != u"disabled") {
                folders.append(root->objectID());
                manager->syncWatchedFolder(root->objectID(), false);
            }
        }
    } else {
        const Folder folder = folderForReference(reference, context);
        if (!folder) {
            return 2;
        }
        if (stateOf(*folder) == u"disabled") {
            return context.fail(zqFormat(zqLocalized("“%@” is disabled; enable it in the window first"), {reference}));
        }
        folders.append(folder->objectID());
        manager->syncWatchedFolder(folder->objectID(), true);
    }
    return finish(*manager, folders, context);
}
