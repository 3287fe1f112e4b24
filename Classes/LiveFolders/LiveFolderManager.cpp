#include "Classes/LiveFolders/LiveFolderManager.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/LiveFolders/LateItemsOperation.h"
#include "Classes/LiveFolders/LiveFolderPlaces.h"
#include "Classes/LiveFolders/RootFolders.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace {
constexpr std::chrono::milliseconds statusInterval{250};
constexpr std::chrono::seconds untilEditsAreSaved{3};
} // namespace

LiveFolderManager::LiveFolderManager() : m_syncOperationQueue(QStringLiteral("Live folders"), 1)
{
    m_removalQuestions.setGone([this](const ZQObjectID &root) { return m_filesKept.value(root.key); });
    connect(&m_removalQuestions, &RemovalQuestions::removalWasAllowed, this,
            [this](const ZQObjectID &root) { syncWatchedFolder(root, true); });
    m_statusTimer.setInterval(statusInterval);
    connect(&m_statusTimer, &QTimer::timeout, this, [this] {
        for (const ZQObjectID &folder : m_running ? m_running->watchedFoldersIDs() : QList<ZQObjectID>()) {
            postStatus(folder);
        }
    });
}

LiveFolderManager::~LiveFolderManager()
{
    m_wanted.clear();
    m_syncOperationQueue.cancelAllOperations();
    m_syncOperationQueue.waitUntilAllOperationsAreFinished();
}

ZQManagedObjectContext *LiveFolderManager::context() const
{
    auto *const delegate = tamberin_AppDelegate::sharedDelegate();
    return delegate ? delegate->managedObjectContext() : nullptr;
}

QList<ZQRef<ZQSidebarWatchedFolder>> LiveFolderManager::roots() const
{
    ZQManagedObjectContext *const store = context();
    return store ? ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(*store).value_or(
                       QList<ZQRef<ZQSidebarWatchedFolder>>())
                 : QList<ZQRef<ZQSidebarWatchedFolder>>();
}

// This desktop asks nobody for permission; but files are looked for in live folders too when they are not where they
// were.
void LiveFolderManager::getLiveFolderPermissionFromSandbox()
{
    QStringList paths;
    for (const ZQRef<ZQSidebarWatchedFolder> &root : roots()) {
        if (!root->isOutOfReach()) {
            paths.append(root->folderPath());
        }
    }
    zqSetPersistentURLRoots(paths);
}

void LiveFolderManager::startObservingWatchedFolders()
{
    if (m_watching) {
        return;
    }
    m_watching = std::make_unique<LiveFolderWatching>();
    connect(m_watching.get(), &LiveFolderWatching::folderDidChange, this, &LiveFolderManager::updateWatchedFolder);
    connect(m_watching.get(), &LiveFolderWatching::entryDidMove, this, &LiveFolderManager::entryDidMove);
    observeExternalDisk();
    connect(m_watching.get(), &LiveFolderWatching::reasonDidChange, this, [this] {
        for (const ZQRef<ZQSidebarWatchedFolder> &root : roots()) {
            postStatus(root->objectID());
        }
    });
    watchRoots();
    // An earlier process may have been cut off in the middle of a removal; the first screen does not wait for that.
    QTimer::singleShot(untilEditsAreSaved, this, &LiveFolderManager::putAwayWhatCameTooLate);
}

void LiveFolderManager::observeExternalDisk()
{
    connect(m_watching.get(), &LiveFolderWatching::diskDidMount, this, &LiveFolderManager::externalDiskDidMount);
    connect(m_watching.get(), &LiveFolderWatching::diskDidUnmount, this, &LiveFolderManager::externalDiskDidUnmount);
}

// All of them: one that is out of reach may have come back elsewhere, and paths may lead to a disk by way of links.
void LiveFolderManager::externalDiskDidMount(const QString & /*path*/)
{
    syncRootWatchedFolders();
}

void LiveFolderManager::externalDiskDidUnmount(const QString &path)
{
    syncRootWatchedFolders();
    if (!AImportManager::sharedAImportManager().libraryOnPath(path)) {
        return;
    }
    constexpr int libraryWentAway = 2;
    tamberin_AppDelegate::sharedDelegate()->userInteraction().presentError(ZQError::with(
        QStringLiteral("zelto.livefolders"), libraryWentAway, zqLocalized("The drive with the library is gone."),
        zqLocalized("Connect it again before you go on. What you change until then cannot be kept.")));
}

void LiveFolderManager::stopObservingWatchedFolders()
{
    m_watching.reset();
}

void LiveFolderManager::watchRoots()
{
    ZQManagedObjectContext *const store = context();
    const auto all =
        m_watching && store ? ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(*store) : std::nullopt;
    if (!all) { // what cannot be read stays as it is watched
        return;
    }
    QStringList paths;
    for (const ZQRef<ZQSidebarWatchedFolder> &root : *all) {
        if (root->isFollowed()) {
            paths.append(root->folderPath());
        }
    }
    m_watching->setRoots(paths);
}

void LiveFolderManager::updateWatchedFolder(const QString &path, bool everythingBelow)
{
    scheduleFolderAtPath(path, everythingBelow);
    start();
}

// In one run, which must not take what it finds at one end only for removed.
void LiveFolderManager::entryDidMove(const QString &from, const QString &to)
{
    const auto source = scheduleFolderAtPath(QFileInfo(from).path(), false);
    const auto target = scheduleFolderAtPath(QFileInfo(to).path(), false);
    if (source && target) {
        m_wanted.join(rootOf(*source), rootOf(*target));
    }
    start();
}

std::optional<ZQObjectID> LiveFolderManager::scheduleFolderAtPath(const QString &path, bool everythingBelow)
{
    ZQManagedObjectContext *const store = context();
    if (!store) {
        return std::nullopt;
    }
    QString known = path;
    ZQRef<ZQSidebarWatchedFolder> folder = ZQSidebarWatchedFolder::watchedFolderWithPath(known, *store);
    while (!folder && known.contains(u'/') && known.size() > 1) {
        known = QFileInfo(known).path();
        folder = ZQSidebarWatchedFolder::watchedFolderWithPath(known, *store);
    }
    if (!folder || !folder->isFollowed()) {
        return std::nullopt;
    }
    scheduleDbItemToUpdate(folder->objectID(), everythingBelow);
    return folder->objectID();
}

// What was written in the folder may lie in live folders below it.
void LiveFolderManager::syncFolderAtPath(const QString &path)
{
    if (!zqIsMainThread()) {
        zqOnMainThread([manager = QPointer(this), path] {
            if (manager) {
                manager->syncFolderAtPath(path);
            }
        });
        return;
    }
    ZQManagedObjectContext *const store = context();
    if (!store) {
        return;
    }
    const QString place = QDir::cleanPath(path);
    const QString canonical = QFileInfo(place).canonicalFilePath();
    for (const QString &each : QSet<QString>{place, canonical.isEmpty() ? place : canonical}) {
        scheduleFolderAtPath(each, false);
        const auto below = ZQSidebarWatchedFolder::watchedFoldersWithPathPrefix(each + u'/', *store);
        for (const auto &folder : below.value_or(QList<ZQRef<ZQSidebarWatchedFolder>>())) {
            if (folder->is_root() && folder->isFollowed()) {
                scheduleDbItemToUpdate(folder->objectID(), true);
            }
        }
    }
    start();
}

// Those that a person disabled are left alone; those that are out of reach are looked for.
void LiveFolderManager::syncRootWatchedFoldersForceSync(bool force)
{
    QList<ZQObjectID> folders;
    for (const ZQRef<ZQSidebarWatchedFolder> &root : roots()) {
        if (root->isFollowed()) {
            folders.append(root->objectID());
        }
    }
    syncWatchedFolders(folders, true, force);
}

void LiveFolderManager::syncWatchedFolder(const ZQObjectID &folder, bool force)
{
    m_wanted.note(folder, {rootOf(folder), true, force, true});
    start();
}

void LiveFolderManager::syncAndRemoveMissing(const ZQObjectID &folder)
{
    m_wanted.note(folder, {rootOf(folder), true, true, true, true});
    start();
}

void LiveFolderManager::syncWatchedFolders(const QList<ZQObjectID> &folders, bool shouldTraversSubFolders,
                                           bool forceSync)
{
    for (const ZQObjectID &folder : folders) {
        scheduleDbItemToUpdate(folder, shouldTraversSubFolders, forceSync);
    }
    start();
}

void LiveFolderManager::scheduleDbItemToUpdate(const ZQObjectID &folder, bool everythingBelow, bool isForced)
{
    m_wanted.note(folder, {rootOf(folder), everythingBelow, isForced});
}

qint64 LiveFolderManager::rootOf(const ZQObjectID &folder) const
{
    ZQManagedObjectContext *const store = context();
    const auto root =
        store ? RootFolders::rootOf(zqCast<ZQSidebarWatchedFolder>(store->existingObjectWithID(folder))) : nullptr;
    return root ? root->objectID().key : 0;
}

std::shared_ptr<LiveFolderRecords> LiveFolderManager::records()
{
    auto &delegate = *tamberin_AppDelegate::sharedDelegate();
    const QString bundle = delegate.libraryBundleDirectory();
    const QByteArray store = delegate.persistentStoreCoordinator()->storeUUID().toByteArray();
    if (!m_records || m_recordsBundle != bundle || m_recordsStore != store) {
        m_recordsBundle = bundle;
        m_recordsStore = store;
        m_records = std::make_shared<LiveFolderRecords>(bundle, store);
    }
    return m_records;
}

void LiveFolderManager::start()
{
    if (m_wanted.isEmpty() || !context() || tamberin_AppDelegate::sharedDelegate()->isTerminating()) {
        return;
    }
    if (m_running) {
        if (m_mayMakeWay && m_wanted.isAnyToGoFirst(m_runningRoots)) {
            m_running->turn().endSoon();
        }
        return;
    }
    const SyncRequests::Next next = m_wanted.unfoldItemsToUpdateSet();
    for (const qint64 root : std::exchange(m_left, {})) {
        records()->forgetKept(root);
    }
    m_mayMakeWay = !m_removalQuestions.tell(*records(), next.roots); // what the person allowed is for this run
    // So that the run sees what the window does; not what is being typed, since a title renames a file.
    if (ZQError error; !context()->save(&error)) {
        qCWarning(zqLogStore).noquote() << error.localizedDescription();
    }
    m_running = operationFor(next);
    m_runningRoots = next.roots;
    m_wasStopped = false;
    m_running->setCompletionBlock([manager = QPointer(this), operation = std::weak_ptr(m_running)] {
        zqOnMainThread([manager, operation] {
            const auto ended = operation.lock();
            if (manager && ended) {
                manager->didEnd(ended);
            }
        });
    });
    m_syncOperationQueue.addOperation(m_running);
    m_statusTimer.start();
}

std::shared_ptr<WatchFoldersImportOperation> LiveFolderManager::operationFor(const SyncRequests::Next &next)
{
    QList<ZQObjectID> whole;
    QList<ZQObjectID> alone;
    bool isForced = false;
    bool isAskedFor = false;
    QSet<qint64> removing;
    for (auto wanted = next.folders.constBegin(); wanted != next.folders.constEnd(); ++wanted) {
        (wanted->everythingBelow ? whole : alone).append(wanted.key());
        isForced = isForced || wanted->isForced;
        isAskedFor = isAskedFor || wanted->isAskedFor;
        if (wanted->removesMissing) {
            removing.insert(wanted->root);
        }
    }
    auto &delegate = *tamberin_AppDelegate::sharedDelegate();
    auto operation = std::make_shared<WatchFoldersImportOperation>(
        whole, true,
        WatchFoldersImportOperation::Uses{.coordinator = delegate.persistentStoreCoordinator(),
                                          .records = records(),
                                          .owner = AImportManager::sharedAImportManager(),
                                          .syncQueue = &m_syncOperationQueue,
                                          .sender = static_cast<LiveFolderManaging *>(this)});
    operation->setAlsoLookedAt(alone);
    operation->setForced(isForced);
    operation->setReadsUnreadAgain(isAskedFor);
    operation->setRemovesMissing(removing);
    m_mayMakeWay = m_mayMakeWay && removing.isEmpty();
    operation->setBegun(next.begun);
    operation->turn().setLength(m_lengthOfTurns);
    return operation;
}

// What was looked at is recorded, so that going on compares no more than what is left.
void LiveFolderManager::goOnLater(const WatchFoldersImportOperation &operation)
{
    for (const WatchFoldersImportOperation::CutShort &cut : operation.cutShort()) {
        if (isFollowed(cut.root)) {
            m_wanted.cutShort(cut.root.key, cut.filesLeft);
            scheduleDbItemToUpdate(cut.root, true);
        }
    }
    QList<ZQObjectID> ended;
    for (const ZQObjectID &folder : operation.toGoOn()) {
        if (!isFollowed(folder)) {
            ended.append(folder);
            continue;
        }
        scheduleDbItemToUpdate(folder, operation.watchedFoldersIDs().contains(folder));
        m_wanted.setBegun(folder);
    }
    postEnd(ended);
}

void LiveFolderManager::postEnd(const QList<ZQObjectID> &folders) const
{
    ZQManagedObjectContext *const store = context();
    for (const ZQObjectID &folder : store ? folders : QList<ZQObjectID>()) {
        ZQNotificationCenter::defaultCenter().postNotification(
            didEndSync, static_cast<const LiveFolderManaging *>(this),
            {{QStringLiteral("folder"), folder.URIRepresentation(store->persistentStoreCoordinator()->storeUUID())}});
    }
}

void LiveFolderManager::didEnd(const std::shared_ptr<WatchFoldersImportOperation> &operation)
{
    if (operation != m_running) {
        return;
    }
    for (auto reason = operation->reasons().constBegin(); reason != operation->reasons().constEnd(); ++reason) {
        m_reasons.insert(reason.key(), reason.value());
    }
    const QList<ZQObjectID> folders = operation->watchedFoldersIDs() + operation->alsoLookedAt();
    for (const qint64 root : context() ? m_runningRoots : QSet<qint64>()) { // it may end after all else
        m_filesKept.insert(root, records()->filesKept(root));
    }
    m_removalQuestions.lookAgain();
    noteTurn(*operation);
    m_running.reset(); // its progress counts as an earlier turn's from here on
    goOnLater(*operation);
    if (operation->isCancelled() && !m_wasStopped) {
        postEnd(m_wanted.clear()); // whoever ended all of it wants no more
    }
    if (operation->isCancelled()) { // because its folder was removed or disabled; it may have saved a batch after that
        putAwayWhatCameTooLate();
    }
    if (!operation->toLookAtAgain().isEmpty()) {
        QTimer::singleShot(untilEditsAreSaved, this, [this, again = operation->toLookAtAgain()] {
            QList<ZQObjectID> followed = again; // still, after that time
            followed.removeIf([this](const ZQObjectID &folder) { return !isFollowed(folder); });
            syncWatchedFolders(followed, false, false);
        });
    }
    m_statusTimer.stop();
    getLiveFolderPermissionFromSandbox();
    watchRoots();
    start();
    for (const ZQObjectID &folder : folders) {
        postStatus(folder);
    }
    m_removalQuestions.ask(operation->questions());
}

void LiveFolderManager::putAwayWhatCameTooLate()
{
    if (context() && !tamberin_AppDelegate::sharedDelegate()->isTerminating()) { // which sees to it itself
        auto &delegate = *tamberin_AppDelegate::sharedDelegate();
        delegate.editQueue().addOperation(std::make_shared<LateItemsOperation>(delegate.persistentStoreCoordinator(),
                                                                               AImportManager::sharedAImportManager()));
    }
}

bool LiveFolderManager::isBelow(const ZQRef<ZQSidebarWatchedFolder> &folder, const QList<ZQObjectID> &folders)
{
    QSet<qint64> seen;
    for (auto each = folder; each && !seen.contains(each->objectID().key);
         each = zqCast<ZQSidebarWatchedFolder>(each->father())) {
        if (folders.contains(each->objectID())) {
            return true;
        }
        seen.insert(each->objectID().key);
    }
    return false;
}

void LiveFolderManager::stopSyncingWatchedFolders(const QList<ZQObjectID> &folders)
{
    ZQManagedObjectContext *const store = context();
    const auto isStopped = [&](const ZQObjectID &id) {
        return folders.contains(id) ||
               (store && isBelow(zqCast<ZQSidebarWatchedFolder>(store->existingObjectWithID(id)), folders));
    };
    QSet<qint64> roots;
    const auto noteRoot = [&](const ZQObjectID &id) {
        const qint64 root = isFollowed(id) ? rootOf(id) : 0;
        if (root != 0) {
            roots.insert(root);
        }
    };
    for (auto wanted = m_wanted.all().keyBegin(); wanted != m_wanted.all().keyEnd(); ++wanted) {
        if (isStopped(*wanted)) {
            noteRoot(*wanted);
        }
    }
    postEnd(m_wanted.removeIf(isStopped));
    if (!m_running) {
        noteUnfinished(roots);
        for (const ZQObjectID &folder : folders) {
            postStatus(folder);
        }
        return;
    }
    bool concernsRun = false;
    QList<std::pair<ZQObjectID, bool>> rest;
    const auto sortOut = [&](const QList<ZQObjectID> &ids, bool everythingBelow) {
        for (const ZQObjectID &id : ids) {
            if (isStopped(id)) {
                concernsRun = true;
                noteRoot(id);
            } else {
                rest.append({id, everythingBelow});
            }
        }
    };
    sortOut(m_running->watchedFoldersIDs(), true);
    sortOut(m_running->alsoLookedAt(), false);
    noteUnfinished(roots);
    if (concernsRun) {
        m_wasStopped = true;
        m_running->cancel();
        for (const auto &[id, everythingBelow] : std::as_const(rest)) {
            scheduleDbItemToUpdate(id, everythingBelow, m_running->isForced());
        }
    }
}

AddedLiveFolders LiveFolderManager::addNewWatchFolderFromPaths(const QStringList &paths, quint32 atIndex)
{
    AddedLiveFolders result;
    ZQManagedObjectContext *const store = context();
    const ZQRef<ZQSidebarBaseItem> label =
        store ? ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(*store) : nullptr;
    const QString bundle = store ? tamberin_AppDelegate::sharedDelegate()->libraryBundleDirectory() : QString();
    QList<ZQRef<ZQSidebarWatchedFolder>> added;
    quint32 index = atIndex;
    for (const QString &given : paths) {
        const QString path = QDir::cleanPath(QDir::current().absoluteFilePath(given));
        const QString refusal = label ? LiveFolderPlaces::refusal(path, bundle)
                                      : zqLocalized("The library is not open. Open it and add the folder again.");
        const auto shown = refusal.isEmpty() ? LiveFolderPlaces::folderThatShows(path, *store) : std::nullopt;
        if (!refusal.isEmpty()) {
            result.refused.append({path, refusal});
        } else if (shown) {
            result.alreadyThere.append(*shown);
        } else {
            const auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, *store);
            folder->setIs_root(true);
            label->addChild(folder.get(), index);
            index += index == ZQSidebarBaseItem::appendIndex ? 0 : 1;
            added.append(folder);
        }
    }
    if (added.isEmpty()) {
        return result;
    }
    ZQError error;
    if (!store->save(&error)) {
        for (const ZQRef<ZQSidebarWatchedFolder> &folder : std::as_const(added)) {
            result.refused.append({folder->folderPath(), error.localizedDescription()});
            store->deleteObject(folder.get());
        }
        return result;
    }
    for (const ZQRef<ZQSidebarWatchedFolder> &folder : std::as_const(added)) {
        result.added.append(folder->objectID());
    }
    watchedFoldersDidChange(result.added);
    return result;
}

bool LiveFolderManager::isFollowed(const ZQObjectID &id) const
{
    ZQManagedObjectContext *const store = context();
    const auto folder = store ? zqCast<ZQSidebarWatchedFolder>(store->existingObjectWithID(id)) : nullptr;
    return folder && folder->active() && folder->isFollowed();
}

void LiveFolderManager::watchedFoldersDidChange(const QList<ZQObjectID> &folders)
{
    ZQManagedObjectContext *const store = context();
    if (!store) {
        return;
    }
    QList<ZQObjectID> left;
    for (const ZQObjectID &id : folders) {
        if (!isFollowed(id)) {
            left.append(id);
            m_left.insert(id.key);
            m_filesKept.remove(id.key);
            m_unfinished.remove(id.key);
            m_earlierTurns.remove(id.key);
        }
    }
    m_removalQuestions.lookAgain();
    stopSyncingWatchedFolders(left);
    watchRoots();
    for (const ZQObjectID &id : folders) {
        m_reasons.remove(id.key);
        if (!left.contains(id)) {
            scheduleDbItemToUpdate(id, true);
        }
        postStatus(id);
    }
    start();
}
