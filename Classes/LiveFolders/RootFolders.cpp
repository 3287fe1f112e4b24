#include "Classes/LiveFolders/RootFolders.h"

#include "Classes/LiveFolders/FolderPlace.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTrash.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace {

bool isInTrash(const QString &path)
{
    return path.contains(QStringLiteral(".Trash")) || ZQTrash::contains(path);
}

QString reasonForPlace(FolderPlace place, const FolderListing &listing)
{
    if (listing.status == FolderListing::Status::Gone) {
        return zqLocalized("Its folder cannot be found. Connect the drive it is on, or put the folder back.");
    }
    if (listing.status == FolderListing::Status::Unreadable) {
        return zqFormat(zqLocalized("Its folder cannot be read: %@. Allow reading it, or connect its drive again."),
                        {QString::fromLocal8Bit(std::strerror(listing.error))});
    }
    return place == FolderPlace::Emptied
               ? zqLocalized("Its folder is empty, though it was not before. Connect the drive it is on, or put the "
                             "files back.")
               : RootFolders::reasonForAnother();
}

} // namespace

QString RootFolders::reasonForAnother()
{
    return zqLocalized("Another folder is in its place. Connect the drive it is on, or, if this is the folder to show, "
                       "choose Use This Folder.");
}

qint64 RootFolders::stampOf(const ZQSidebarWatchedFolder &root)
{
    return root.lastSyncDate().isValid() ? root.lastSyncDate().toMSecsSinceEpoch() : 0;
}

ZQRef<ZQSidebarWatchedFolder> RootFolders::rootOf(const ZQRef<ZQSidebarWatchedFolder> &folder)
{
    ZQRef<ZQSidebarWatchedFolder> root = folder;
    QSet<qint64> seen;
    while (root && !root->is_root() && !seen.contains(root->objectID().key)) {
        seen.insert(root->objectID().key);
        root = zqCast<ZQSidebarWatchedFolder>(root->father());
    }
    return root && root->is_root() && root->active() ? root : nullptr;
}

QList<ZQRef<ZQSidebarWatchedFolder>> RootFolders::all()
{
    if (!m_all) {
        m_all = m_run.found(ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(*m_run.moc));
    }
    return *m_all;
}

LiveFolderRecord *RootFolders::open(const ZQRef<ZQSidebarWatchedFolder> &root)
{
    const qint64 key = root->objectID().key;
    if (const auto known = m_opened.constFind(key); known != m_opened.constEnd()) {
        return *known;
    }
    m_opened.insert(key, nullptr);
    if (!root->isFollowed()) {
        return nullptr;
    }
    LiveFolderRecord &record = recordFor(root);
    if (!isAtItsPlace(*root, record)) {
        return nullptr;
    }
    if (root->isOutOfReach()) {
        bringBack(*root);
    }
    m_opened.insert(key, &record);
    return &record;
}

void RootFolders::bringBack(ZQSidebarWatchedFolder &folder)
{
    folder.setIs_missing(false);
    folder.setIs_trashed(false);
    folder.reActivateFolder();
    for (const ZQRef<ZQSidebarWatchedFolder> &below : folder.orderedChildrenAndSubChildren()) {
        if (below->is_missing()) { // mounted in it, and still out of reach
            below->deactivateFolder();
        }
    }
    m_run.reasons.insert(folder.objectID().key, QString());
}

void RootFolders::putAside(ZQSidebarWatchedFolder &folder, const QString &reason)
{
    m_run.reasons.insert(folder.objectID().key, reason);
    if (!folder.is_missing() || folder.is_enabled()) {
        qCInfo(zqLogFiles).noquote() << "The live folder" << folder.folderPath() << "is put aside:" << reason;
        folder.setIs_missing(true);
        folder.setIs_trashed(false);
        folder.deactivateFolder();
        m_run.records.forgetKept(folder.objectID().key); // only what is there comes back
    }
}

LiveFolderRecord &RootFolders::recordFor(const ZQRef<ZQSidebarWatchedFolder> &root)
{
    const qint64 key = root->objectID().key;
    if (LiveFolderRecord *const kept = m_run.records.recordOfRoot(key, stampOf(*root))) {
        dropRowsThatWent(*kept);
        if (const QByteArray path = QFile::encodeName(root->folderPath()); kept->root()->path != path) {
            noteEarlierPaths(*kept, key);
            kept->move(key, path, 0);
        }
        return *kept;
    }
    LiveFolderRecord &record = m_run.records.newRecordOfRoot(key);
    RecordedFolder top;
    top.key = key;
    top.path = QFile::encodeName(root->folderPath());
    record.put(top);
    for (const ZQRef<ZQSidebarWatchedFolder> &row : root->orderedChildrenAndSubChildren()) {
        RecordedFolder folder;
        folder.key = row->objectID().key;
        folder.father = row->father()->objectID().key;
        folder.path = QFile::encodeName(row->folderPath());
        folder.isMissing = row->is_missing();
        record.put(folder);
    }
    return record;
}

void RootFolders::noteEarlierPaths(LiveFolderRecord &record, qint64 key)
{
    for (const qint64 each : QList<qint64>{key} + record.below(key)) {
        m_run.earlierPaths[each].append(record.folder(each)->path);
    }
}

// Rows go by other ways than a run, too.
void RootFolders::dropRowsThatWent(LiveFolderRecord &record)
{
    if (!m_rows) {
        const auto ids = m_run.moc->fetchObjectIDs(
            {ZQSidebarWatchedFolder::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))});
        m_rows.emplace();
        for (const ZQObjectID &id : m_run.found(ids)) {
            m_rows->insert(id.key);
        }
    }
    if (!m_run.isWanted()) {
        return;
    }
    QList<qint64> gone;
    for (const RecordedFolder &folder : record.folders()) {
        if (!m_rows->contains(folder.key)) {
            gone.append(folder.key);
        }
    }
    for (const qint64 key : std::as_const(gone)) {
        if (const RecordedFolder *const folder = record.folder(key); folder && key != record.rootKey()) {
            if (RecordedFolder *const father = record.folder(folder->father)) {
                father->isKnown = false;
            }
            record.remove(key);
        }
    }
}

bool RootFolders::isAtItsPlace(ZQSidebarWatchedFolder &root, LiveFolderRecord &record)
{
    QByteArray path = QFile::encodeName(root.folderPath());
    FolderListing listing = FolderListing::ofFolder(path, FolderListing::Links::Followed);
    listing.keepUnread(record.root()->entries);
    const bool isWhole = listing.status == FolderListing::Status::Whole;
    const RecordedFolder &was = *record.root();
    const auto placeNow = isWhole && was.place ? ZQFolderIdentity::read(root.folderPath()) : std::nullopt;
    const bool isAsRecorded =
        placeNow ? was.place->isSamePlace(*placeNow) : was.inode == listing.inode && was.device == listing.device;
    const bool isIdentified =
        was.inode != 0 ? isAsRecorded : zqPersistentURLIsAt(root.folderURLSecureData(), root.folderPath());
    if (!isWhole || !isIdentified) {
        const QString found = root.folderURL(); // also where it went to
        if (!found.isEmpty() && found != root.folderPath()) {
            return follow(root, record, found);
        }
    }
    if (isInTrash(root.folderPath())) {
        return follow(root, record, root.folderPath());
    }
    FolderPlace place = FolderPlace::Here;
    if (isWhole) {
        place = placeOf(was, listing, placeNow);
        if (was.inode == 0 && (listing.entries.isEmpty() || !isIdentified) && !isWhatStoreKnows(root, listing)) {
            place = listing.entries.isEmpty() ? FolderPlace::Emptied : FolderPlace::Another;
        }
        // What left it by way of the library was no drive that went.
        if (place == FolderPlace::Emptied && isIdentified && isWhatStoreKnows(root, listing)) {
            place = FolderPlace::Here;
        }
    }
    if (isWhole && (place == FolderPlace::Here || place == FolderPlace::HereAnew)) {
        return true;
    }
    putAside(root, reasonForPlace(place, listing));
    return false;
}

bool RootFolders::isWhatStoreKnows(const ZQSidebarWatchedFolder &folder, const FolderListing &listing)
{
    qsizetype known = 0;
    qsizetype present = 0;
    const auto count = [&](const QString &path) {
        const QByteArray name = QFile::encodeName(QFileInfo(path).fileName());
        ++known;
        present += listing.entries.find({name.constData(), std::size_t(name.size())}) ? 1 : 0;
    };
    for (const ZQRef<ZQSidebarBaseItem> &child : folder.childsItems()) {
        if (const auto below = zqCast<ZQSidebarWatchedFolder>(child)) {
            count(below->folderPath());
        }
    }
    for (const ZQRef<ZQLibraryBaseItem> &item : folder.watchedItems()) {
        const auto file = zqFileOfPersistentURL(item->itemURLData());
        if (file && (item->active() || folder.isOutOfReach())) {
            count(file->path);
        }
    }
    return 2 * present >= known;
}

bool RootFolders::follow(ZQSidebarWatchedFolder &root, LiveFolderRecord &record, const QString &path)
{
    if (isInTrash(path)) {
        m_run.reasons.insert(root.objectID().key,
                             zqLocalized("Its folder is in the trash. Restore it there, or remove the live folder."));
        if (!root.is_trashed() || root.is_missing()) {
            root.setIs_trashed(true);
            root.setIs_missing(false);
            root.deactivateFolder();
            m_run.records.forgetKept(root.objectID().key);
        }
        return false;
    }
    if (findNewFather(root, record, path)) {
        return false; // it is looked at as a part of the other one
    }
    noteEarlierPaths(record, root.objectID().key);
    record.move(root.objectID().key, QFile::encodeName(path), 0);
    renewRows(root.objectID().key, record);
    m_run.changedRoots.insert(root.objectID().key);
    return true;
}

// A root that was moved into another live folder becomes a part of it.
bool RootFolders::findNewFather(ZQSidebarWatchedFolder &root, LiveFolderRecord &record, const QString &path)
{
    const QString parent = QFileInfo(path).path();
    QList<ZQRef<ZQSidebarWatchedFolder>> roots = all();
    std::sort(roots.begin(), roots.end(),
              [](const auto &a, const auto &b) { return a->folderPath().size() > b->folderPath().size(); });
    for (const ZQRef<ZQSidebarWatchedFolder> &other : std::as_const(roots)) {
        const bool mayHoldIt =
            other.get() != &root && other->is_enabled() && (parent + u'/').startsWith(other->folderPath() + u'/');
        LiveFolderRecord *const its = mayHoldIt ? open(other) : nullptr;
        if (const RecordedFolder *const father = its ? its->folderAtPath(QFile::encodeName(parent)) : nullptr) {
            const qint64 fatherKey = father->key;
            its->folder(fatherKey)->isKnown = false;
            move(record, root.objectID().key, *its, fatherKey, QFile::encodeName(path));
            return true;
        }
    }
    return false;
}

void RootFolders::move(LiveFolderRecord &from, qint64 key, LiveFolderRecord &to, qint64 father, const QByteArray &path)
{
    const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(key);
    const ZQRef<ZQSidebarWatchedFolder> newFather = m_run.folder(father);
    const RecordedFolder *const folder = from.folder(key);
    if (!row || !newFather || !folder || row == newFather || newFather->isDescendantOfItem(row.get())) {
        return;
    }
    noteEarlierPaths(from, key);
    QList<RecordedFolder> taken;
    for (const qint64 each : QList<qint64>{key} + from.below(key)) {
        taken.append(*from.folder(each));
    }
    if (&from != &to) {
        from.remove(key);
        for (const RecordedFolder &each : std::as_const(taken)) {
            to.put(each);
        }
    }
    to.move(key, path, father);
    const bool wasAway = row->isOutOfReach();
    newFather->appendChild(row.get());
    row->setIs_root(false);
    renewRows(key, to);
    if (wasAway) {
        bringBack(*row);
    }
    m_run.changedRoots += QSet<qint64>{from.rootKey(), to.rootKey()};
}

void RootFolders::renewRows(qint64 key, const LiveFolderRecord &record)
{
    QList<qint64> all = {key};
    all += record.below(key);
    for (const qint64 each : std::as_const(all)) {
        const auto folder = record.folders().constFind(each);
        const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(each);
        if (row && folder != record.folders().constEnd()) {
            row->updateWatchedFolderBookmark(QFile::decodeName(folder->path));
        }
    }
}
