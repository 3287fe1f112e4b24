#include "Classes/LiveFolders/FolderFilesSync.h"

#include "Classes/Import/ImportQueries.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQOpenForWriting.h"
#include "Kit/Files/ZQOwnChanges.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Files/ZQTypeIdentifier.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <thread>

namespace {

constexpr std::chrono::milliseconds writingStep(100);
constexpr int mostWritingSteps = 31;
constexpr qint64 nanosecondsOfMillisecond = 1000000;

QString pathOf(const RecordedFolder &folder, std::string_view name)
{
    return QFile::decodeName(folder.path + '/' + QByteArray(name.data(), qsizetype(name.size())));
}

QDateTime dateOf(qint64 nanoseconds)
{
    return QDateTime::fromMSecsSinceEpoch(nanoseconds / nanosecondsOfMillisecond, Qt::UTC);
}

QString digestOf(const QString &path)
{
    const bool isPackage = QFileInfo(path).isDir();
    return QString::fromLatin1(zqSHA1OfFile(isPackage ? path + QStringLiteral("/Data") : path));
}

} // namespace

void FolderFilesSync::run(FolderTreeSync &tree)
{
    m_changed = &tree.changed();
    for (const FolderTreeSync::Changed &folder : tree.changed()) {
        if (!m_run.isWanted()) {
            return;
        }
        if (folder.record->folder(folder.key)) {
            compare(folder);
            m_import.saveIfDue();
        }
    }
    noteItemsOfGoneFolders(tree);
    settle();
    if (isCutShort()) {
        m_import.giveUpWaiting();
    }
    m_import.finish();
    for (const qint64 folder : m_import.foldersGivenUp()) {
        leave(folder);
    }
}

// Files may have moved out of a folder before it was removed.
void FolderFilesSync::noteItemsOfGoneFolders(const FolderTreeSync &tree)
{
    QSet<quint64> wanted;
    for (const NewFile &file : m_new) {
        wanted.insert(file.entry.inode);
    }
    const auto mayHold = [&wanted](const RecordedFolder &folder) {
        const std::vector<FolderEntry> &entries = folder.entries.all();
        return !folder.isKnown || std::any_of(entries.begin(), entries.end(), [&wanted](const FolderEntry &entry) {
            return wanted.contains(entry.inode);
        });
    };
    for (const FolderTreeSync::Gone &gone : tree.gone()) {
        for (const qint64 key : QList<qint64>{gone.key} + gone.record->below(gone.key)) {
            const RecordedFolder *const folder = gone.record->folder(key);
            if (wanted.isEmpty() || !folder || !mayHold(*folder) || !m_run.isWanted()) {
                continue;
            }
            const auto items = m_run.found(
                zqFetch<ZQLibraryBaseItem>(*m_run.moc, QStringLiteral("watchingFolder == %@ AND active == YES"),
                                           {QVariant::fromValue(m_run.folderID(key))}));
            for (const Item &item : items) {
                if (const auto file = zqFileOfPersistentURL(item->itemURLData())) {
                    m_goneByInode.insert({file->inode, {gone.record, key, item, Lost::noPlace}});
                }
            }
        }
    }
}

// The name by which the item's file is, or was, in the folder; empty when it is of another one.
QByteArray FolderFilesSync::nameIn(const RecordedFolder &folder, const Item &item) const
{
    const auto file = zqFileOfPersistentURL(item->itemURLData());
    const QByteArray path = file ? QFile::encodeName(file->path) : QByteArray();
    const auto within = [&path](const QByteArray &place) {
        if (!path.startsWith(place + '/')) {
            return QByteArray();
        }
        const QByteArray rest = path.mid(place.size() + 1);
        const qsizetype slash = rest.indexOf('/'); // what is in a package is the package's
        return slash < 0 ? rest : rest.left(slash);
    };
    QByteArray name = within(folder.path);
    for (const QByteArray &earlier : m_run.earlierPaths.value(folder.key)) {
        if (name.isEmpty()) {
            name = within(earlier);
        }
    }
    return name;
}

QHash<QByteArray, FolderFilesSync::Item> FolderFilesSync::itemsByName(const FolderTreeSync::Changed &changed,
                                                                      QList<Item> &lost)
{
    QHash<QByteArray, Item> items;
    const auto all = changed.isNew
                         ? QList<Item>()
                         : m_run.found(zqFetch<ZQLibraryBaseItem>(*m_run.moc, QStringLiteral("watchingFolder == %@"),
                                                                  {QVariant::fromValue(m_run.folderID(changed.key))}));
    const RecordedFolder &folder = *changed.record->folder(changed.key);
    for (const Item &item : all) {
        const QByteArray name = nameIn(folder, item);
        if (name.isEmpty()) {
            if (item->active()) {
                lost.append(item);
            }
            continue;
        }
        Item &present = items[name];
        if (present && present->active() && item->active()) {
            const auto one = zqFileOfPersistentURL(present->itemURLData());
            const auto other = zqFileOfPersistentURL(item->itemURLData());
            if (!one || !other || one->inode != other->inode) {
                lost.append(item);
                continue;
            }
            // An edit and a run brought the same file.
            const bool isBetter = present->projects().isEmpty() && !item->projects().isEmpty();
            (isBetter ? present : item)->setActive(false);
        }
        if (!present || (item->active() && !present->active())) {
            present = item;
        }
    }
    return items;
}

void FolderFilesSync::compare(const FolderTreeSync::Changed &changed)
{
    const RecordedFolder &folder = *changed.record->folder(changed.key);
    QList<Item> lost;
    QHash<QByteArray, Item> items = itemsByName(changed, lost);
    qsizetype known = lost.size();
    for (const Item &item : std::as_const(items)) {
        known += item->active() ? 1 : 0;
    }
    for (const FolderEntry &entry : changed.listing.entries.all()) {
        if (entry.isFile() && m_run.isWanted()) {
            const std::string_view name = changed.listing.entries.name(entry);
            compareFile(changed, folder, entry, items.take(QByteArray(name.data(), qsizetype(name.size()))), lost);
        }
    }
    if (!m_run.isWanted()) {
        return;
    }
    for (auto item = items.constBegin(); item != items.constEnd(); ++item) {
        const std::string_view name(item.key().constData(), std::size_t(item.key().size()));
        if (item.value()->active() && !changed.listing.isUnread(name)) {
            lost.append(item.value());
        }
    }
    if (lost.isEmpty()) {
        return;
    }
    for (const Item &item : std::as_const(lost)) {
        if (const auto file = zqFileOfPersistentURL(item->itemURLData())) {
            m_goneByInode.insert({file->inode, {changed.record, changed.key, item, m_gone.size()}});
        }
    }
    m_gone.push_back({changed.record, changed.key, lost, known});
}

void FolderFilesSync::compareFile(const FolderTreeSync::Changed &changed, const RecordedFolder &folder,
                                  const FolderEntry &entry, const Item &item, QList<Item> &lost)
{
    const std::string_view name = changed.listing.entries.name(entry);
    const NewFile file{changed.record, changed.key, pathOf(folder, name), entry, changed.listing.hasPassingInodes};
    const FolderEntry *const was = folder.isKnown ? folder.entries.find(name) : nullptr;
    // Where a mount numbers all files anew, name, size and time tell which one it is.
    const bool isAsRecorded = file.hasPassingInode && was && was->hasContentOf(entry);
    if (item && item->active() && !isAsRecorded && isElsewhereNow(item, file, was)) {
        lost.append(item); // and found again there
        m_new.push_back(file);
        return;
    }
    if (item && item->active()) {
        const bool didMove = m_run.earlierPaths.contains(folder.key);
        if (!was || !was->isAs(entry) || didMove || m_run.isForced) {
            updateDbItem(item, file.path, entry, was);
        }
        return;
    }
    const bool isAsBefore = item && (isAsRecorded || zqPersistentURLIsAt(item->itemURLData(), file.path));
    if (isAsBefore) { // its folder was out of reach, or it was away for a while
        adopt(item, file);
        return;
    }
    const bool isAsUnread = !item && was && was->isAs(entry) && !m_run.isForced && !m_run.readsUnreadAgain;
    if (!isAsUnread) {
        m_new.push_back(file);
    } else if (was->gaveNothing != 0) {
        m_unreadFiles.append(file.path);
    }
}

// A file that has another one's old name: whose item it becomes depends on where that one is. Where mounts number files
// anew, that one's content has to be as it was recorded.
bool FolderFilesSync::isElsewhereNow(const Item &item, const NewFile &now, const FolderEntry *recorded)
{
    const auto file = zqFileOfPersistentURL(item->itemURLData());
    if (!file || file->inode == now.entry.inode || now.entry.kind != EntryKind::File ||
        (now.hasPassingInode && !recorded)) {
        return false;
    }
    if (!m_arrivals) {
        m_arrivals.emplace();
        for (const FolderTreeSync::Changed &changed : *m_changed) {
            const RecordedFolder *const folder = changed.record->folder(changed.key);
            for (const FolderEntry &each : changed.listing.entries.all()) {
                const FolderEntry *const was =
                    folder && folder->isKnown ? folder->entries.find(changed.listing.entries.name(each)) : nullptr;
                if (folder && each.kind == EntryKind::File && (!was || was->inode != each.inode)) {
                    m_arrivals->insert({each.inode, {&changed, &each}});
                }
            }
        }
    }
    const auto arrival = m_arrivals->find(file->inode);
    if (arrival == m_arrivals->end()) {
        return false;
    }
    const auto [changed, arrived] = arrival->second;
    const RecordedFolder *const folder = changed->record->folder(changed->key);
    const bool mayBeIt = folder && (!now.hasPassingInode || arrived->hasContentOf(*recorded));
    return mayBeIt &&
           zqPersistentURLIsAt(item->itemURLData(), pathOf(*folder, changed->listing.entries.name(*arrived)));
}

void FolderFilesSync::renewReference(const Item &item, const QString &path)
{
    const QByteArray moved = zqMovedPersistentURL(item->itemURLData(), path);
    if (moved.isEmpty()) {
        item->updateFileURLsForURL(path);
        return;
    }
    item->setItemURLData(moved);
    item->setTitle(zqBaseName(path));
}

void FolderFilesSync::updateDbItem(const Item &item, const QString &path, const FolderEntry &entry,
                                   const FolderEntry *was)
{
    const auto file = zqFileOfPersistentURL(item->itemURLData());
    // What was taken out of a package is not the package.
    const bool isInside = file && file->path.startsWith(path + u'/');
    // Inode numbers are used again, and the reference may have been renewed since the file was replaced.
    const bool isAnother = !isInside && file &&
                           (file->inode != entry.inode || (was && was->inode != entry.inode) ||
                            !zqPersistentURLIsAt(item->itemURLData(), path));
    const bool isElsewhere = !isInside && (!file || file->path != path || file->inode != entry.inode);
    if (was && was->hasContentOf(entry)) {
        if (isElsewhere) {
            renewReference(item, path);
        }
    } else {
        // A file that is older than the one it replaced is another one all the same.
        const QDateTime date = dateOf(entry.modification);
        const QDateTime seen = item->modification_date();
        const bool isKnownToDiffer = was && seen >= date;
        const bool mayDiffer = !was && (seen > date || (seen == date && isElsewhere)); // tags move the date, too
        if (isKnownToDiffer || (mayDiffer && digestOf(path) != item->SHA1())) {
            item->setModification_date(date.addMSecs(-1));
        }
        item->updateItemData(path);
        if (isElsewhere && file && zqFileOfPersistentURL(item->itemURLData())->inode != entry.inode) {
            item->updateFileURLsForURL(path);
        }
    }
    refreshTags(item, path, entry, isAnother && !(was && was->hasContentOf(entry)));
    m_touched.append(path);
    m_import.didChangeItem();
    m_import.saveIfDue();
}

void FolderFilesSync::refreshTags(const Item &item, const QString &path, const FolderEntry &entry, bool isReplaced)
{
    const QDateTime change = dateOf(entry.change);
    const QDateTime tagged = OpenMeta::getXAttrMetaData(QStringLiteral("kMDItemOMUserTagTime"), path).toDateTime();
    const QDateTime latest = tagged.isValid() ? std::max(tagged, change) : change;
    const QDateTime seen = item->attributes_modification_date();
    if (!seen.isValid() || seen < latest) {
        if (isReplaced && !tagged.isValid()) { // most programs lose the tags when they save, and nobody meant that
            item->writeOpenMetaToDisk();
        } else {
            item->readOpenMetaFromDisk();
        }
        if (item->attributes_modification_date() < latest || !item->attributes_modification_date().isValid()) {
            item->setAttributes_modification_date(latest);
        }
    }
}

void FolderFilesSync::adopt(const Item &item, const NewFile &file)
{
    const auto folder = zqCast<ZQSidebarWatchedFolder>(m_run.moc->objectWithID(m_run.folderID(file.folder)));
    item->setWatchingFolder(folder.get());
    item->setActive(true);
    const bool isSameFile = zqPersistentURLIsAt(item->itemURLData(), file.path);
    renewReference(item, file.path);
    if (!isSameFile || item->modification_date() < dateOf(file.entry.modification)) {
        item->updateItemData(file.path);
    }
    refreshTags(item, file.path, file.entry, false);
    m_run.changedRoots.insert(file.record->rootKey());
    m_touched.append(file.path);
    m_import.didChangeItem();
    m_import.saveIfDue();
}

FolderFilesSync::Item FolderFilesSync::movedHere(const NewFile &file)
{
    const auto [first, last] = m_goneByInode.equal_range(file.entry.inode);
    for (auto place = first; place != last; ++place) {
        const Lost lost = place->second;
        const auto referenced = zqFileOfPersistentURL(lost.item->itemURLData());
        const bool isOfPackage = referenced && file.entry.kind == EntryKind::Package;
        const bool mayBeIt = !file.hasPassingInode || hasContentOf(lost, file.entry);
        if (mayBeIt && (isOfPackage || zqPersistentURLIsAt(lost.item->itemURLData(), file.path))) {
            if (lost.place != Lost::noPlace) {
                m_gone[lost.place].items.removeOne(lost.item);
            }
            m_goneByInode.erase(place);
            return lost.item;
        }
    }
    return {};
}

bool FolderFilesSync::hasContentOf(const Lost &lost, const FolderEntry &entry) const
{
    const RecordedFolder *const folder = lost.record->folder(lost.folder);
    const QByteArray name = folder ? nameIn(*folder, lost.item) : QByteArray();
    const FolderEntry *const was =
        folder ? folder->entries.find({name.constData(), std::size_t(name.size())}) : nullptr;
    return was && was->hasContentOf(entry);
}

void FolderFilesSync::readAdoptables()
{
    if (std::exchange(m_hasAdoptables, true)) {
        return;
    }
    const auto items = m_run.found(zqFetch<ZQLibraryBaseItem>(
        *m_run.moc, QStringLiteral("managed == NO AND (active == NO OR watchingFolder == nil)")));
    for (const Item &item : items) {
        if (const auto file = zqFileOfPersistentURL(item->itemURLData())) {
            m_adoptableByPath[file->path].append(item);
            m_adoptableByInode.insert(file->inode, item);
        }
    }
}

// One that the library had before: the same file, wherever it was, or the same bytes at the same place.
FolderFilesSync::Item FolderFilesSync::adoptableAt(const NewFile &file, QString &SHA1)
{
    readAdoptables();
    const auto take = [this](const Item &item) {
        const auto referenced = zqFileOfPersistentURL(item->itemURLData());
        m_adoptableByPath[referenced->path].removeOne(item);
        m_adoptableByInode.remove(referenced->inode, item);
        return item;
    };
    const QList<Item> ofInode = file.hasPassingInode ? QList<Item>() : m_adoptableByInode.values(file.entry.inode);
    for (const Item &item : ofInode) {
        if (zqPersistentURLIsAt(item->itemURLData(), file.path)) {
            return take(item);
        }
    }
    const QList<Item> candidates = m_adoptableByPath.value(file.path);
    if (!candidates.isEmpty()) {
        SHA1 = digestOf(file.path);
    }
    for (const Item &item : candidates) {
        if (!SHA1.isEmpty() && item->SHA1() == SHA1) {
            return take(item);
        }
    }
    return {};
}

// What another program still writes is waited for, and then taken as it is.
void FolderFilesSync::waitUntilWritten(const QString &path, const FolderEntry &entry, const ZQOperation &operation)
{
    constexpr qint64 recent = 10000; // milliseconds
    if (dateOf(entry.modification).msecsTo(QDateTime::currentDateTimeUtc()) > recent) {
        return;
    }
    for (int i = 0; i < mostWritingSteps && !operation.isCancelled() && zqIsOpenForWriting(path); ++i) {
        std::this_thread::sleep_for(writingStep);
    }
}

void FolderFilesSync::settle()
{
    std::vector<std::pair<const NewFile *, QString>> toImport;
    for (const NewFile &file : m_new) {
        if (!m_run.isWanted()) {
            return;
        }
        if (const Item moved = movedHere(file)) {
            adopt(moved, file);
            continue;
        }
        // An edit that puts a file there has the item saved a moment later.
        auto &own = ZQOwnChanges::sharedOwnChanges();
        if (const QByteArray path = QFile::encodeName(file.path); own.isHeld(path) || own.contains(path)) {
            m_run.toLookAtAgain.insert(file.folder);
            continue;
        }
        QString SHA1;
        if (const Item earlier = adoptableAt(file, SHA1)) {
            adopt(earlier, file);
        } else {
            toImport.emplace_back(&file, SHA1);
        }
    }
    QHash<qint64, qsizetype> totals;
    for (const auto &[file, SHA1] : toImport) {
        ++totals[file->record->rootKey()];
    }
    m_run.progress.begin(totals);
    m_run.turn.beginReading();
    for (const auto &[file, SHA1] : toImport) {
        if (!m_run.isWanted()) {
            return;
        }
        if (isCutShort() || m_run.turn.isOver()) {
            leave(file->folder);
        } else {
            import(*file, SHA1);
        }
    }
}

void FolderFilesSync::import(const NewFile &file, const QString &SHA1)
{
    const bool canBeRead =
        ImportQueries::fileAtPathIsSupported(file.path) && ImportQueries::isFileReadableAtPath(file.path);
    if (!canBeRead) {
        m_unreadFiles.append(file.path);
        m_run.progress.advance(file.record->rootKey());
        return;
    }
    waitUntilWritten(file.path, file.entry, m_run.operation);
    m_run.changedRoots.insert(file.record->rootKey());
    m_touched.append(file.path);
    m_import.add({file.path, file.folder, file.record->rootKey(), SHA1});
}

void FolderFilesSync::leave(qint64 folder)
{
    ++m_filesLeft;
    m_foldersLeft.insert(folder);
}
