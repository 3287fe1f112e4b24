#include "Classes/LiveFolders/FolderTreeSync.h"

#include "Classes/LiveFolders/FolderPlace.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <climits>
#include <cstring>
#include <sys/stat.h>

namespace {

constexpr std::size_t mostComparisons = 20000; // of new directories with gone ones, by what they hold

QByteArray pathOf(const QByteArray &folder, std::string_view name)
{
    return folder + '/' + QByteArray(name.data(), qsizetype(name.size()));
}

QByteArray nameOf(const QByteArray &path)
{
    return path.mid(path.lastIndexOf('/') + 1);
}

bool isStillAt(const QByteArray &path, quint64 inode)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && status.st_ino == inode;
}

} // namespace

void FolderTreeSync::add(const ZQRef<ZQSidebarWatchedFolder> &folder, bool everythingBelow)
{
    const ZQRef<ZQSidebarWatchedFolder> root = RootFolders::rootOf(folder);
    LiveFolderRecord *const record = root ? m_roots.open(root) : nullptr;
    const qint64 key = folder->objectID().key;
    if (record && record->folder(key)) {
        m_looks.push_back({record, key, everythingBelow});
    }
}

bool FolderTreeSync::run()
{
    while (m_run.isWanted() && (!m_looks.empty() || !m_newFolders.empty() || followGoneOnes())) {
        while (!m_looks.empty() && m_run.isWanted()) {
            const Look next = m_looks.front();
            m_looks.pop_front();
            look(next);
        }
        if (!m_run.isWanted() || !settleFolders()) {
            return false;
        }
    }
    keepWhatHoldsMissing();
    return m_run.isWanted();
}

void FolderTreeSync::look(const Look &look)
{
    const RecordedFolder *const known = look.record->folder(look.key);
    if (!known || m_seen.contains(look.key)) {
        return;
    }
    const bool isRoot = look.key == look.record->rootKey();
    FolderListing listing = FolderListing::ofFolder(known->path, isRoot ? FolderListing::Links::Followed
                                                                        : FolderListing::Links::NotFollowed);
    listing.keepUnread(known->entries);
    if (listing.status == FolderListing::Status::Gone && !isRoot) {
        markGone(*look.record, look.key);
        return;
    }
    m_seen.insert(look.key);
    if (listing.status != FolderListing::Status::Whole) {
        const QString reason =
            zqFormat(zqLocalized("It cannot be read: %@. What the library has of it stays as it is."),
                     {QString::fromLocal8Bit(std::strerror(listing.error))});
        qCInfo(zqLogFiles).noquote() << QFile::decodeName(known->path) + u':' << reason;
        m_run.reasons.insert(look.key, reason);
        look.record->folder(look.key)->isKnown = false; // so that it is looked at anew when it can be
        m_run.records.setUnreadable(look.key, true);
        return;
    }
    m_run.records.setUnreadable(look.key, false);
    if (listing.unheldNames > 0) {
        qCInfo(zqLogFiles).noquote() << listing.unheldNames << "names in" << QFile::decodeName(known->path)
                                     << "are no text and are left out";
    }
    if (!isRoot && !isStillItself(look, *look.record->folder(look.key), listing)) {
        return;
    }
    const bool isChanged = m_run.isForced || !known->isKnown || m_run.earlierPaths.contains(look.key) ||
                           known->inode != listing.inode || known->device != listing.device ||
                           (m_run.readsUnreadAgain && known->entries.hasUnread()) ||
                           !known->entries.isAs(listing.entries);
    compareFolders(look, listing, isChanged);
    if (isChanged) {
        m_changed.push_back({look.record, look.key, listing, look.isNew});
        lookWhereNewOnesWere(m_changed.back());
    }
}

bool FolderTreeSync::wasMounted(const LiveFolderRecord &record, const RecordedFolder &folder) const
{
    const auto father = record.folders().constFind(folder.father);
    return folder.inode != 0 && father != record.folders().constEnd() && father->inode != 0 &&
           father->device != folder.device;
}

// False when something else lies there, or nothing for now.
bool FolderTreeSync::isStillItself(const Look &look, RecordedFolder &folder, const FolderListing &listing)
{
    const bool isKnownByStoreAlone = folder.inode == 0;
    if (look.isSettled && !folder.isMissing) {
        return true;
    }
    if (isKnownByStoreAlone && !folder.isMissing && (look.isNew || !listing.entries.isEmpty())) {
        return true;
    }
    const auto placeNow =
        folder.place ? ZQFolderIdentity::read(QFile::decodeName(folder.path)) : std::optional<ZQFolderIdentity>();
    const FolderPlace place = placeOf(folder, listing, placeNow);
    const bool isOtherFileSystem =
        folder.device != listing.device ||
        (placeNow && (placeNow->fileSystem != folder.place->fileSystem || placeNow->volume != folder.place->volume));
    const bool isEmptied = place == FolderPlace::Emptied && (isOtherFileSystem || wasMounted(*look.record, folder));
    const ZQRef<ZQSidebarWatchedFolder> row =
        folder.isMissing || isEmptied || isKnownByStoreAlone ? m_run.folder(look.key) : nullptr;
    const bool isEmptiedByLibrary =
        isEmptied && !isOtherFileSystem && row && RootFolders::isWhatStoreKnows(*row, listing);
    const bool isAway = (isEmptied && !isEmptiedByLibrary) || (place == FolderPlace::Another && isOtherFileSystem);
    const bool isUnlikeReference = isKnownByStoreAlone && listing.entries.isEmpty() && row &&
                                   !zqPersistentURLIsAt(row->folderURLSecureData(), QFile::decodeName(folder.path));
    if (isAway || isUnlikeReference) {
        putAside(*look.record, look.key);
        return false;
    }
    if (folder.isMissing) {
        folder.isMissing = false;
        if (row) {
            m_roots.bringBack(*row);
            m_run.changedRoots.insert(look.record->rootKey());
        }
    }
    if (place == FolderPlace::Another) {
        const auto father = folder.father;
        const QByteArray path = folder.path;
        markGone(*look.record, look.key);
        m_newFolders.push_back({look.record, father, path, listing.inode, listing.hasPassingInodes});
        return false;
    }
    return true;
}

void FolderTreeSync::compareFolders(const Look &look, const FolderListing &listing, bool isChanged)
{
    const RecordedFolder &folder = *look.record->folder(look.key);
    for (const FolderEntry &entry : listing.entries.all()) {
        if (entry.kind != EntryKind::Folder) {
            continue;
        }
        const QByteArray path = pathOf(folder.path, listing.entries.name(entry));
        if (const RecordedFolder *const child = look.record->folderAtPath(path)) {
            const bool isAnother = child->inode != 0 && child->inode != entry.inode;
            // What holds one that could not be read tells when it can be.
            const bool wasUnreadable = m_run.records.isUnreadable(child->key);
            if (look.everythingBelow || isAnother || child->isMissing || wasUnreadable) {
                m_looks.push_back({look.record, child->key, look.everythingBelow});
            }
        } else if (path.size() < PATH_MAX) {
            m_newFolders.push_back({look.record, look.key, path, entry.inode, listing.hasPassingInodes});
        }
    }
    if (!isChanged) {
        return;
    }
    const QList<qint64> children = look.record->children(look.key);
    for (const qint64 key : children) {
        const QByteArray name = nameOf(look.record->folder(key)->path);
        const std::string_view text(name.constData(), std::size_t(name.size()));
        const FolderEntry *const entry = listing.entries.find(text);
        if ((!entry || entry->kind != EntryKind::Folder) && !listing.isUnread(text)) {
            markGone(*look.record, key);
        }
    }
}

void FolderTreeSync::markGone(LiveFolderRecord &record, qint64 key)
{
    const RecordedFolder *const folder = record.folder(key);
    if (!folder || folder->isMissing) {
        return;
    }
    if (wasMounted(record, *folder)) { // some file managers take the directory away with the drive
        putAside(record, key);
        return;
    }
    const bool isTold = std::any_of(m_gone.begin(), m_gone.end(), [key](const Gone &gone) { return gone.key == key; });
    if (!isTold) {
        m_gone.push_back({&record, key});
    }
}

void FolderTreeSync::putAside(LiveFolderRecord &record, qint64 key)
{
    if (const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(key)) {
        m_roots.putAside(*row, zqLocalized("What is mounted there is out of reach. Connect its drive again."));
    }
    record.folder(key)->isMissing = true;
    m_run.changedRoots.insert(record.rootKey());
}

// The directories around a place that is out of reach may have been taken away with it.
void FolderTreeSync::keepWhatHoldsMissing()
{
    std::erase_if(m_gone, [this](const Gone &gone) {
        const QList<qint64> below = gone.record->below(gone.key);
        const bool holdsMissing = std::any_of(below.begin(), below.end(), [&](qint64 key) {
            const RecordedFolder *const folder = gone.record->folder(key);
            return folder && (folder->isMissing || wasMounted(*gone.record, *folder));
        });
        if (holdsMissing) {
            putAside(*gone.record, gone.key);
        }
        return holdsMissing;
    });
}

void FolderTreeSync::lookWhereNewOnesWere(const Changed &changed)
{
    if (changed.isNew && m_roots.all().size() == 1 && !m_places) {
        const auto &folders = changed.record->folders();
        const bool hasOthers = std::any_of(folders.begin(), folders.end(), [](const RecordedFolder &folder) {
            return folder.isKnown && !folder.entries.isEmpty();
        });
        if (!hasOthers) { // a first run has nowhere else to look
            return;
        }
    }
    places(); // first: this may bring other roots to where they are now
    const RecordedFolder *const folder = changed.record->folder(changed.key);
    for (const FolderEntry &entry : changed.listing.entries.all()) {
        const FolderEntry *const was =
            folder && folder->isKnown ? folder->entries.find(changed.listing.entries.name(entry)) : nullptr;
        if (!was || was->inode != entry.inode) {
            lookWhereItWas(entry, changed.listing, changed.key);
        }
    }
}

void FolderTreeSync::lookWhereItWas(const FolderEntry &entry, const FolderListing &listing, qint64 folder)
{
    const auto [first, last] = places().equal_range(entry.inode);
    for (auto place = first; place != last; ++place) {
        const Place &was = place->second;
        const RecordedFolder *const holder = was.record->folder(was.folder);
        const bool isLookedAt = was.folder == folder || m_seen.contains(was.folder);
        if (!holder || isLookedAt || holder->device != listing.device ||
            was.entry >= qsizetype(holder->entries.all().size())) {
            continue;
        }
        const FolderEntry &earlier = holder->entries.all()[std::size_t(was.entry)];
        if (!isStillAt(pathOf(holder->path, holder->entries.name(earlier)), entry.inode)) {
            m_looks.push_back({was.record, was.folder, false});
        }
    }
}

const std::unordered_multimap<quint64, FolderTreeSync::Place> &FolderTreeSync::places()
{
    if (m_places) {
        return *m_places;
    }
    m_places.emplace();
    for (const ZQRef<ZQSidebarWatchedFolder> &root : m_roots.all()) {
        LiveFolderRecord *const record = m_roots.open(root);
        if (!record) {
            continue;
        }
        for (const RecordedFolder &folder : record->folders()) {
            for (std::size_t i = 0; i < folder.entries.all().size(); ++i) {
                m_places->insert({folder.entries.all()[i].inode, {record, folder.key, qsizetype(i)}});
            }
        }
    }
    return *m_places;
}

bool FolderTreeSync::settleFolders()
{
    std::vector<NewFolder> rest;
    const std::vector<NewFolder> folders = m_newFolders;
    for (const NewFolder &folder : folders) {
        const RecordedFolder *const present = folder.record->folderAtPath(folder.path);
        const bool isGone = present && std::any_of(m_gone.begin(), m_gone.end(),
                                                   [present](const Gone &gone) { return gone.key == present->key; });
        const bool isThere = !folder.record->folder(folder.father) || (present && !isGone);
        if (!isThere && !follow(folder) && !takeOver(folder)) {
            rest.push_back(folder);
        }
    }
    m_newFolders.clear();
    // What was followed is looked at first: it may hold what others of these are.
    if (!m_looks.empty()) {
        m_newFolders = rest;
        return m_run.save();
    }
    make(std::move(rest));
    return m_run.save() && m_run.isWanted();
}

bool FolderTreeSync::follow(const NewFolder &folder)
{
    const Gone *const found = findGone(folder);
    if (!found) {
        return false;
    }
    const Gone gone = *found;
    m_roots.move(*gone.record, gone.key, *folder.record, folder.father, folder.path);
    std::erase_if(m_gone, [&gone](const Gone &each) { return each.key == gone.key; });
    if (folder.record->folderAtPath(folder.path)) {
        for (const qint64 key : QList<qint64>{gone.key} + folder.record->below(gone.key)) {
            m_seen.remove(key);
        }
        m_looks.push_back({folder.record, gone.key, true, false, true});
        return true;
    }
    return false;
}

const FolderTreeSync::Gone *FolderTreeSync::findGone(const NewFolder &folder)
{
    if (m_gone.empty()) {
        return nullptr;
    }
    const bool areMany = m_gone.size() * std::max<std::size_t>(m_newFolders.size(), 1) > mostComparisons;
    for (const Gone &gone : m_gone) {
        const RecordedFolder *const was = gone.record->folder(gone.key);
        const bool mayBeIt =
            was && !folder.hasPassingInode && (was->inode == folder.inode || (was->inode == 0 && !areMany));
        const ZQRef<ZQSidebarWatchedFolder> row = mayBeIt ? m_run.folder(gone.key) : nullptr;
        if (row && zqPersistentURLIsAt(row->folderURLSecureData(), QFile::decodeName(folder.path))) {
            return &gone;
        }
    }
    if (areMany) {
        return nullptr;
    }
    const FolderListing listing = FolderListing::ofFolder(folder.path);
    const auto best = std::max_element(m_gone.begin(), m_gone.end(), [&](const Gone &a, const Gone &b) {
        const auto count = [&](const Gone &gone) {
            const RecordedFolder *const was = gone.record->folder(gone.key);
            return was && holdsHalfOf(was->entries, listing.entries) ? listing.entries.countOfSame(was->entries) : 0;
        };
        return count(a) < count(b);
    });
    const RecordedFolder *const was = best->record->folder(best->key);
    return was && holdsHalfOf(was->entries, listing.entries) ? &*best : nullptr;
}

// A root that lies in another one becomes a part of it.
bool FolderTreeSync::takeOver(const NewFolder &folder)
{
    const QString path = QFile::decodeName(folder.path);
    for (const ZQRef<ZQSidebarWatchedFolder> &root : m_roots.all()) {
        if (root->folderPath() != path || !root->active() || !root->is_root() ||
            root->objectID().key == folder.record->rootKey()) {
            continue;
        }
        if (LiveFolderRecord *const inner = m_roots.open(root)) {
            const qint64 key = root->objectID().key;
            m_roots.move(*inner, key, *folder.record, folder.father, folder.path);
            m_looks.push_back({folder.record, key, true, false, true});
        }
        return true; // one that is disabled stays what it is
    }
    return false;
}

// Where the highest ones are now, if still below a root: there they are found by that place's own look.
bool FolderTreeSync::followGoneOnes()
{
    std::vector<Gone> highest;
    for (const Gone &gone : m_gone) {
        const RecordedFolder *const folder = gone.record->folder(gone.key);
        const bool isBelowAnother = !folder || std::any_of(m_gone.begin(), m_gone.end(), [&](const Gone &other) {
            const RecordedFolder *const above = other.record->folder(other.key);
            return above && other.key != gone.key && folder->path.startsWith(above->path + '/');
        });
        if (!isBelowAnother) {
            highest.push_back(gone);
        }
    }
    m_gone = std::move(highest);
    QList<ZQPersistentURL> wanted;
    for (const Gone &gone : m_gone) {
        if (const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(gone.key)) {
            wanted.append({row->folderURLSecureData(), {}});
        }
    }
    zqLookForPersistentURLs(wanted);
    for (const Gone &gone : m_gone) {
        const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(gone.key);
        const QString found = row ? row->folderURL() : QString();
        if (found.isEmpty() || found == row->folderPath()) {
            continue;
        }
        const QByteArray parent = QFile::encodeName(QFileInfo(found).path());
        for (const ZQRef<ZQSidebarWatchedFolder> &root : m_roots.all()) {
            LiveFolderRecord *const record = m_roots.open(root);
            const RecordedFolder *const father = record ? record->folderAtPath(parent) : nullptr;
            if (father && !m_seen.contains(father->key)) {
                m_looks.push_back({record, father->key, false});
            }
        }
    }
    return !m_looks.empty();
}

FolderTreeSync::Father &FolderTreeSync::fatherOf(const NewFolder &folder, Fathers &fathers)
{
    const auto [place, isFirst] = fathers.try_emplace(folder.father);
    Father &father = place->second;
    if (!isFirst) {
        return father;
    }
    father.row = m_run.folder(folder.father);
    for (const auto &child : father.row ? father.row->orderedChildren() : QList<ZQRef<ZQSidebarBaseItem>>()) {
        father.nextOrder = std::max(father.nextOrder, child->order() + 1);
        if (const auto row = zqCast<ZQSidebarWatchedFolder>(child)) {
            father.children.insert(row->folderPath(), row);
        }
    }
    return father;
}

void FolderTreeSync::make(std::vector<NewFolder> folders)
{
    struct Made
    {
        NewFolder folder;
        ZQRef<ZQSidebarWatchedFolder> row;
        bool isNew;
    };
    std::sort(folders.begin(), folders.end(), [](const NewFolder &a, const NewFolder &b) {
        return QString::localeAwareCompare(QFile::decodeName(a.path), QFile::decodeName(b.path)) < 0;
    });
    std::vector<Made> made;
    Fathers fathers;
    for (const NewFolder &folder : folders) {
        Father &father = fatherOf(folder, fathers);
        if (!father.row || !father.row->active() || !m_run.isWanted()) {
            continue;
        }
        const QString path = QFile::decodeName(folder.path);
        ZQRef<ZQSidebarWatchedFolder> row = father.children.value(path);
        const bool isNew = !row;
        if (isNew) {
            row = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(path, *m_run.moc);
            row->setFather(father.row.get());
            row->setOrder(father.nextOrder++);
        }
        if (!isNew) { // another directory of the same name has the same row
            const qint64 key = row->objectID().key;
            row->updateWatchedFolderBookmark(path);
            std::erase_if(m_gone, [key](const Gone &gone) { return gone.key == key; });
            m_seen.remove(key);
        }
        made.push_back({folder, row, isNew});
    }
    if (made.empty() || !m_run.save()) {
        return;
    }
    for (const Made &each : made) {
        RecordedFolder folder;
        folder.key = each.row->objectID().key;
        folder.father = each.folder.father;
        folder.path = each.folder.path;
        folder.isMissing = each.row->is_missing();
        each.folder.record->put(folder);
        m_run.changedRoots.insert(each.folder.record->rootKey());
        m_looks.push_back({each.folder.record, folder.key, true, each.isNew, true});
    }
}
