#include "Classes/LiveFolders/WatchFoldersImportOperation.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Import/ImportOwner.h"
#include "Classes/LiveFolders/FolderRemovals.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

WatchFoldersImportOperation::WatchFoldersImportOperation(const QList<ZQObjectID> &watchedFoldersIDs,
                                                         bool shouldTraversSubFolders, const Uses &uses)
    : m_watchedFoldersIDs(watchedFoldersIDs), m_shouldTraversSubFolders(shouldTraversSubFolders), m_uses(uses)
{
}

void WatchFoldersImportOperation::post(const QString &name, const ZQObjectID &folder) const
{
    const QUuid store = m_uses.coordinator ? m_uses.coordinator->storeUUID() : QUuid();
    ZQNotificationCenter::defaultCenter().postNotification(
        name, m_uses.sender, {{QStringLiteral("folder"), folder.URIRepresentation(store)}});
}

void WatchFoldersImportOperation::setupManagedObjectContext(SyncRun &run)
{
    run.moc = std::make_unique<ZQManagedObjectContext>(m_uses.coordinator, ZQMergePolicy::PropertyObjectTrump);
    m_saveObserver = run.moc->observeDidSave([this](const ZQContextDidSave &notification) {
        zqOnMainThreadAndWait([this, &notification] { m_uses.owner.mergeChanges(notification); });
    });
}

void WatchFoldersImportOperation::main()
{
    const QList<ZQObjectID> all = m_watchedFoldersIDs + m_alone;
    if (m_uses.coordinator && m_uses.records && !isCancelled()) {
        SyncRun run{.operation = *this,
                    .settings = ImportSettings::current(),
                    .coordinator = m_uses.coordinator,
                    .records = *m_uses.records,
                    .progress = m_progress,
                    .turn = m_turn,
                    .isForced = m_isForced,
                    .readsUnreadAgain = m_readsUnreadAgain,
                    .removesMissing = m_removesMissing};
        m_turn.begin();
        setupManagedObjectContext(run);
        for (const ZQObjectID &folder : all) {
            if (!m_begun.contains(folder)) {
                post(LiveFolderManaging::didStartSync, folder);
            }
        }
        if (m_isForced) {
            run.records.forgetKept();
        }
        syncFolders(run);
        m_reasons = run.reasons;
        m_questions = run.questions;
        for (const qint64 key : std::as_const(run.toLookAtAgain)) {
            m_toLookAtAgain.append(run.folderID(key));
        }
        m_saveObserver.reset();
        run.moc.reset();
    }
    for (const ZQObjectID &folder : all) {
        if (!m_toGoOn.contains(folder)) {
            post(LiveFolderManaging::didEndSync, folder);
        }
    }
}

void WatchFoldersImportOperation::syncFolders(SyncRun &run)
{
    RootFolders roots(run);
    FolderTreeSync tree(run, roots);
    const auto add = [&](const QList<ZQObjectID> &ids, bool everythingBelow) {
        for (const ZQObjectID &id : ids) {
            const auto folder = zqCast<ZQSidebarWatchedFolder>(run.moc->existingObjectWithID(id));
            if (folder && folder->active() && folder->folderNeedSyncing() && run.isWanted()) {
                tree.add(folder, everythingBelow);
            }
        }
    };
    add(m_watchedFoldersIDs, m_shouldTraversSubFolders);
    add(m_alone, false);
    if (run.save() && tree.run()) {
        FolderFilesSync files(run);
        files.run(tree);
        if (files.isComplete() && files.isCutShort()) {
            endTurn(run, tree, files);
        } else if (files.isComplete()) {
            FolderRemovals(run).run(tree, files);
            checkOrphans(run, roots);
            finish(run, tree, files);
        }
    } else {
        run.save();
    }
    if (m_cutShort.isEmpty()) {
        tellRefusal(run, tree);
    }
    QSet<qint64> keys;
    for (const ZQRef<ZQSidebarWatchedFolder> &root : roots.all()) {
        keys.insert(root->objectID().key);
    }
    // What the records say in memory is behind what they say of the tree.
    for (const qint64 root : std::as_const(run.changedRoots)) {
        if (!run.isWanted()) {
            run.records.forget(root);
        }
    }
    if (run.isWanted()) {
        run.records.removeAllBut(keys);
    }
}

// Until a later run gets to the end, the roots say why they are behind.
void WatchFoldersImportOperation::tellRefusal(SyncRun &run, FolderTreeSync &tree)
{
    QHash<qint64, qint64> roots; // by folder
    for (const qint64 root : std::as_const(run.changedRoots)) {
        roots.insert(root, root);
    }
    for (const FolderTreeSync::Changed &changed : tree.changed()) {
        roots.insert(changed.key, changed.record->rootKey());
    }
    for (auto root = roots.constBegin(); root != roots.constEnd(); ++root) {
        if (!run.refusal.isEmpty()) {
            run.records.keepRefused(root.key(), root.value());
            run.reasons.insert(root.value(), run.refusal);
        } else if (run.isWanted() && run.records.endRefusal(root.key()) && !run.reasons.contains(root.value())) {
            run.reasons.insert(root.value(), run.records.keptReason(root.value()));
        }
    }
}

// Only what is in step with nothing to be done about it is recorded; all else is found as it is by the next run.
void WatchFoldersImportOperation::endTurn(SyncRun &run, FolderTreeSync &tree, const FolderFilesSync &files)
{
    QSet<qint64> unsettled = files.foldersLeft();
    for (const FolderFilesSync::Gone &gone : files.gone()) {
        if (!gone.items.isEmpty()) {
            unsettled.insert(gone.folder);
        }
    }
    QSet<qint64> roots;
    for (const FolderTreeSync::Gone &gone : tree.gone()) {
        const RecordedFolder *const folder = gone.record->folder(gone.key);
        unsettled.insert(folder ? folder->father : gone.record->rootKey()); // tells that it is gone
        roots.insert(gone.record->rootKey());
    }
    std::erase_if(tree.changed(), [&](const FolderTreeSync::Changed &changed) {
        const bool isUnsettled = unsettled.contains(changed.key);
        if (RecordedFolder *const folder = isUnsettled ? changed.record->folder(changed.key) : nullptr) {
            folder->isKnown = false;
            roots.insert(changed.record->rootKey());
        }
        return isUnsettled;
    });
    finish(run, tree, files);
    if (!run.isWanted()) {
        return;
    }
    for (const qint64 root : std::as_const(roots)) {
        m_cutShort.append({run.folderID(root), files.filesLeft()});
    }
    for (const ZQObjectID &id : m_watchedFoldersIDs + m_alone) {
        const auto root = RootFolders::rootOf(zqCast<ZQSidebarWatchedFolder>(run.moc->existingObjectWithID(id)));
        if (root && roots.contains(root->objectID().key)) {
            m_toGoOn.insert(id);
        }
    }
}

void WatchFoldersImportOperation::finish(SyncRun &run, FolderTreeSync &tree, const FolderFilesSync &files)
{
    const QDateTime now = zqNow();
    for (const FolderTreeSync::Changed &changed : tree.changed()) {
        if (run.didFail) {
            return;
        }
        if (const auto row = changed.record->folder(changed.key) ? run.folder(changed.key) : nullptr) {
            row->updateFolderOpenMetaSyncDate();
            row->setLastSyncDate(now);
            if (!zqPersistentURLIsAt(row->folderURLSecureData(),
                                     row->folderPath())) { // it is there under another identity
                row->setFolderURLSecureData(zqDataForPersistentURL(row->folderPath()));
            }
            run.changedRoots.insert(changed.record->rootKey());
            if (!run.reasons.contains(changed.key)) {
                run.reasons.insert(changed.key, run.records.keptReason(changed.key));
            }
        }
    }
    for (const qint64 key : std::as_const(run.changedRoots)) {
        if (const auto root = run.folder(key)) {
            root->setLastSyncDate(now);
        }
    }
    if (run.save() && run.isWanted()) {
        for (const qint64 key : std::as_const(run.changedRoots)) {
            if (LiveFolderRecord *const record = run.records.recordOfRootInMemory(key)) {
                record->setStamp(now.toMSecsSinceEpoch());
            }
        }
        writeRecords(run, tree.changed(), files);
    }
}

WatchFoldersImportOperation::NamesByFolder WatchFoldersImportOperation::byFolder(const QStringList &paths)
{
    NamesByFolder names;
    for (const QString &path : paths) {
        const QFileInfo file(path);
        names[QFile::encodeName(file.path())].append(QFile::encodeName(file.fileName()));
    }
    return names;
}

void WatchFoldersImportOperation::writeRecords(SyncRun &run, const std::vector<FolderTreeSync::Changed> &changed,
                                               const FolderFilesSync &files)
{
    const NamesByFolder unread = byFolder(files.unreadFiles());
    for (const FolderTreeSync::Changed &each : changed) {
        RecordedFolder *const folder = each.record->folder(each.key);
        if (!folder) {
            continue;
        }
        const RecordedFolder *const father = each.record->folder(folder->father);
        const bool isOwnPlace = !father || father->device != each.listing.device;
        folder->device = each.listing.device;
        folder->inode = each.listing.inode;
        folder->place = isOwnPlace ? ZQFolderIdentity::read(QFile::decodeName(folder->path)) : std::nullopt;
        folder->entries = each.listing.entries;
        folder->isKnown = !run.toLookAtAgain.contains(each.key);
        for (const QByteArray &name : unread.value(folder->path)) {
            if (FolderEntry *const entry = folder->entries.find({name.constData(), std::size_t(name.size())})) {
                entry->gaveNothing = 1;
            }
        }
    }
    // Tags that were written there by now are no change of anybody else's.
    TagFileWriter::sharedTagFileWriter().waitUntilFewerWait(0, &run.operation);
    if (!run.isWanted()) {
        return; // the next run looks at everything again
    }
    const QHash<QString, qint64> written = files.writtenTags().changes();
    const NamesByFolder names = byFolder(files.touched());
    for (const FolderTreeSync::Changed &each : changed) {
        RecordedFolder *const folder = each.record->folder(each.key);
        const auto place = folder ? names.constFind(folder->path) : names.constEnd();
        if (place == names.constEnd()) {
            continue;
        }
        const FolderListing now = FolderListing::ofFolder(folder->path, FolderListing::Links::Followed);
        QSet<QString> changedSince;
        for (const QByteArray &name : *place) {
            const std::string_view text(name.constData(), std::size_t(name.size()));
            const FolderEntry *const present = now.entries.find(text);
            auto *const entry = folder->entries.find(text);
            if (present && entry && !present->isAs(*entry) && present->inode == entry->inode &&
                present->hasContentOf(*entry)) {
                entry->change = present->change;
                const QString path = QFile::decodeName(folder->path + '/' + name);
                if (written.value(path, -1) != present->change) {
                    changedSince.insert(path);
                }
            }
        }
        readTags(run, each.key, changedSince);
    }
    if (!run.save()) {
        return;
    }
    for (const qint64 key : std::as_const(run.changedRoots)) {
        run.records.write(key);
    }
}

// Others may have written into a file after it was read, and the record is about to say that all of it is known.
void WatchFoldersImportOperation::readTags(SyncRun &run, qint64 folder, const QSet<QString> &paths)
{
    if (paths.isEmpty() || !run.isWanted()) {
        return;
    }
    const auto items =
        run.found(zqFetch<ZQLibraryBaseItem>(*run.moc, QStringLiteral("watchingFolder == %@ AND active == YES"),
                                             {QVariant::fromValue(run.folderID(folder))}));
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const auto file = zqFileOfPersistentURL(item->itemURLData());
        if (file && paths.contains(file->path)) {
            item->readOpenMetaFromDisk();
        }
    }
}

// Items of live folders that went, and whose files nobody follows any more.
void WatchFoldersImportOperation::checkOrphans(SyncRun &run, RootFolders &roots)
{
    const bool isAlone = !m_uses.syncQueue || m_uses.syncQueue->operationCount() <= 1;
    // They come of changes; looking for them is a look at every item.
    const bool mayBeSome = m_isForced || !run.changedRoots.isEmpty();
    if (!isAlone || !mayBeSome || !run.isWanted()) {
        return;
    }
    const auto items = run.found(zqFetch<ZQLibraryBaseItem>(
        *run.moc, QStringLiteral("watchingFolder == nil AND managed == NO AND active == YES")));
    const QList<ZQRef<ZQSidebarWatchedFolder>> all = roots.all();
    if (items.isEmpty() || !run.isWanted()) {
        return;
    }
    ZQLibraryBaseItem::lookForFiles(items);
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QString path = item->findItemURL();
        const bool isInside = std::any_of(
            all.begin(), all.end(), [&path](const auto &root) { return path.startsWith(root->folderPath() + u'/'); });
        if (path.isEmpty() || !isInside || !QFileInfo::exists(path)) {
            item->setActive(false);
        }
    }
}
