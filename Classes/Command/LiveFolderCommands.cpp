#include "Classes/Command/AbandonWatch.h"
#include "Classes/Command/CommandEdits.h"
#include "Classes/Command/Commands.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/LiveFolderTally.h"
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
#include <memory>
#include <utility>

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

// What is said of folders below a root, as of one that cannot be read.
QList<std::pair<QString, QString>> reasonsBelow(const QList<Folder> &below, const LiveFolderManaging *manager)
{
    QList<std::pair<QString, QString>> reasons;
    for (const Folder &folder : manager ? below : QList<Folder>()) {
        const QString reason = manager->statusOfWatchedFolder(folder->objectID()).reason;
        if (!reason.isEmpty()) {
            reasons.append({folder->folderPath(), reason});
        }
    }
    return reasons;
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
        const auto reasons = reasonsBelow(below, manager);
        QJsonObject objectOfReasons;
        for (const auto &[path, why] : reasons) {
            objectOfReasons.insert(path, why);
        }
        objects.append(QJsonObject{{QStringLiteral("UUID"), root->UUID()},
                                   {QStringLiteral("title"), root->title()},
                                   {QStringLiteral("folderPath"), root->folderPath()},
                                   {QStringLiteral("items"), items},
                                   {QStringLiteral("folders"), below.size()},
                                   {QStringLiteral("state"), state},
                                   {QStringLiteral("reason"), reason},
                                   {QStringLiteral("reasonsBelow"), objectOfReasons}});
        if (!context.json) {
            const QString what = zqCounted({"1 item", "%d items"}, items);
            const QString where = zqCounted({"1 folder", "%d folders"}, below.size() + 1);
            context.print(zqFormat(zqLocalized("%@: %@, %@ in %@"), {root->folderPath(), state, what, where}));
            if (!reason.isEmpty()) {
                context.print(u' ' + reason);
            }
            for (const auto &[path, why] : reasons) {
                context.print(zqFormat(zqLocalized(" %@: %@"), {path, why}));
            }
        }
    }
    if (context.json) {
        context.printJSON(objects);
    }
}

} // namespace

namespace {

// Shows how far the manager is with some folders, and ends that with the person who asked for it.
class LiveFolderWait
{
public:
    LiveFolderWait(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, const CommandContext &context)
        : m_manager(manager), m_folders(folders), m_delegate(*context.delegate),
          m_library(context.delegate->libraryBundleDirectory()), m_watch(context, [this] { cancel(); })
    {
    }

    static std::shared_ptr<LiveFolderWait> begin(LiveFolderManaging &manager, const QList<ZQObjectID> &folders,
                                                 const CommandContext &context)
    {
        auto wait = std::make_shared<LiveFolderWait>(manager, folders, context);
        const auto cancel = [weak = std::weak_ptr(wait)] { // a click may come after the end
            if (const auto alive = weak.lock()) {
                alive->cancel();
            }
        };
        wait->m_progress =
            context.delegate->userInteraction().beginProgress(zqLocalized("Reading live folders…"), 0, cancel);
        return wait;
    }

    bool wasCancelled() const { return m_wasCancelled; }
    // A window may open another one meanwhile, or be quit.
    bool isSameLibrary() const
    {
        return m_delegate.managedObjectContext() && !m_delegate.isTerminating() &&
               m_delegate.libraryBundleDirectory() == m_library;
    }
    bool isDone()
    {
        if (!isSameLibrary()) {
            return true;
        }
        bool isSyncing = false;
        for (const ZQObjectID &folder : m_folders) {
            const LiveFolderStatus status = m_manager.statusOfWatchedFolder(folder);
            isSyncing = isSyncing || status.isSyncing;
            m_tally.note(folder, status);
        }
        show();
        return !isSyncing;
    }

private:
    void cancel()
    {
        m_wasCancelled = true;
        if (isSameLibrary()) {
            m_delegate.userInteraction().dismissQuestions();
            m_manager.stopSyncingWatchedFolders(m_folders);
        }
    }
    void show()
    {
        if (const qsizetype total = m_tally.total(); total > m_total) {
            m_total = total;
            m_progress->setMaximum(double(total));
        }
        if (const qsizetype done = m_tally.done(); done > m_shown) {
            m_progress->advanceBy(double(done - m_shown));
            m_shown = done;
        }
    }

    LiveFolderManaging &m_manager;
    const QList<ZQObjectID> m_folders;
    tamberin_AppDelegate &m_delegate;
    const QString m_library;
    bool m_wasCancelled = false;
    LiveFolderTally m_tally;
    qsizetype m_shown = 0;
    qsizetype m_total = 0;
    const AbandonWatch m_watch;
    std::shared_ptr<UserProgress> m_progress;
};

} // namespace

int zqAfterLiveFolders(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context,
                       AfterLiveFolders then)
{
    const auto wait = LiveFolderWait::begin(manager, folders, context);
    const auto isDone = [wait] { return wait->isDone(); };
    const auto finish = [wait, then = std::move(then)](CommandContext &finished) {
        return wait->isSameLibrary()
                   ? then(finished, wait->wasCancelled())
                   : finished.fail(zqLocalized("Zelto was quit or opened another library meanwhile; what was read "
                                               "before that stays, ask again for the rest"));
    };
    if (context.mayBeFinishedLater) {
        context.pending = PendingCommand{isDone, finish, LiveFolderManaging::statusDidChange};
        return 0;
    }
    zqRunMainLoopUntil(isDone);
    return finish(context);
}

namespace {

int report(const LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context,
           bool wasCancelled)
{
    QList<Folder> rows;
    for (const ZQObjectID &id : folders) {
        if (const auto row = zqCast<ZQSidebarWatchedFolder>(context.store().existingObjectWithID(id))) {
            rows.append(row);
        }
    }
    print(rows, context);
    if (wasCancelled) {
        return context.fail(zqLocalized("it was cancelled; what was read before that stays in the library, and the "
                                        "next `zelto sync` goes on"));
    }
    int status = 0;
    for (const Folder &row : std::as_const(rows)) {
        const QString state = stateOf(*row);
        if (state == u"missing" || state == u"trashed") {
            const QString reason = manager.statusOfWatchedFolder(row->objectID()).reason;
            status = context.fail(
                zqFormat(zqLocalized("“%@” is out of reach; its items are kept. %@"), {row->folderPath(), reason}));
        } else if (const qsizetype kept = manager.statusOfWatchedFolder(row->objectID()).filesKept; kept > 0) {
            status = context.fail(
                zqFormat(zqLocalized("%d files are gone from “%@”, and their items are kept. If a drive is not "
                                     "connected, connect it; to remove them from the library, run `zelto livefolders "
                                     "sync --remove-missing \"%@\"`"),
                         {kept, row->folderPath(), row->folderPath()}));
        }
    }
    return status;
}

int reportLater(LiveFolderManaging &manager, const QList<ZQObjectID> &folders, CommandContext &context)
{
    return zqAfterLiveFolders(manager, folders, context,
                              [&manager, folders](CommandContext &finished, bool wasCancelled) {
                                  return report(manager, folders, finished, wasCancelled);
                              });
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
    for (const AddedLiveFolders::Refused &refused : result.refused) {
        context.fail(zqFormat(zqLocalized("“%@” was not added. %@"), {refused.path, refused.reason}));
    }
    const QList<ZQObjectID> folders = result.added + result.alreadyThere;
    return zqAfterLiveFolders(
        *manager, folders, context,
        [manager, folders, areAll = result.refused.isEmpty()](CommandContext &finished, bool wasCancelled) {
            const int status = report(*manager, folders, finished, wasCancelled);
            return areAll ? status : 2;
        });
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
    const auto remove = [id](CommandContext &finished, bool wasCancelled) {
        if (wasCancelled) {
            return finished.fail(zqLocalized("it was cancelled; the live folder is still there"));
        }
        CommandEdits edits(finished);
        const auto item = edits.context().sidebarItem(id);
        if (!item || !item->active()) {
            return finished.fail(zqLocalized("somebody else removed the live folder meanwhile"));
        }
        SidebarCommands(edits.context()).deleteListItems({item});
        return edits.finish(
            1, ZQCountedKey{"1 live folder removed; its folder stays on the disk", "%d live folders removed"});
    };
    LiveFolderManaging *const manager = context.delegate->liveFolderManager();
    if (!manager) {
        return remove(context, false);
    }
    manager->stopSyncingWatchedFolders({id});
    return zqAfterLiveFolders(*manager, {id}, context, remove);
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
    return reportLater(*manager, {id}, context);
}

int zqRunSyncLiveFolders(const QString &reference, bool removesMissing, CommandContext &context)
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
    }
    for (const ZQObjectID &folder : std::as_const(folders)) {
        if (removesMissing) {
            manager->syncAndRemoveMissing(folder);
        } else {
            manager->syncWatchedFolder(folder, !reference.isEmpty());
        }
    }
    return reportLater(*manager, folders, context);
}
