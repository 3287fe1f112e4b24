#include "Classes/LiveFolders/FolderRemovals.h"

#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QFile>

#include <algorithm>
#include <sys/stat.h>

namespace {

constexpr qsizetype removedWithoutAsking = 50;

// It came back, or was never away.
bool isInFolder(const ZQLibraryBaseItem &item, const QByteArray &folder)
{
    const auto file = zqFileOfPersistentURL(item.itemURLData());
    const QByteArray path = file ? QFile::encodeName(file->path) : QByteArray();
    struct stat status = {};
    return file && path.startsWith(folder + '/') && ::lstat(path.constData(), &status) == 0 &&
           status.st_ino == file->inode;
}

} // namespace

bool FolderRemovals::isMuch(qsizetype gone, qsizetype known)
{
    return gone > removedWithoutAsking && 2 * gone > known;
}

FolderRemovals::OfRoot &FolderRemovals::ofRoot(LiveFolderRecord *record)
{
    for (OfRoot &root : m_roots) {
        if (root.record == record) {
            return root;
        }
    }
    OfRoot &root = m_roots.emplace_back();
    root.record = record;
    return root;
}

QList<qint64> FolderRemovals::withAllBelow(const LiveFolderRecord &record, qint64 key) const
{
    return QList<qint64>{key} + record.below(key);
}

qsizetype FolderRemovals::countIn(qint64 folder, const std::optional<QDateTime> &importedBefore)
{
    QString format = QStringLiteral("watchingFolder == %@ AND active == YES");
    QVariantList arguments = {QVariant::fromValue(m_run.folderID(folder))};
    if (importedBefore) {
        format += QStringLiteral(" AND import_date < %@");
        arguments.append(*importedBefore);
    }
    return qsizetype(m_run.found(m_run.moc->countForFetchRequest(
        {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(format, arguments)})));
}

RecentRemovals::Sum FolderRemovals::olderOf(const FolderFilesSync::Gone &gone, const std::optional<QDateTime> &since)
{
    const auto older = std::count_if(gone.items.begin(), gone.items.end(),
                                     [&since](const auto &item) { return !since || item->import_date() < *since; });
    return {qsizetype(older), gone.known};
}

void FolderRemovals::noteRemoval(const OfRoot &gone, qsizetype known)
{
    RecentRemovals &recent = m_run.records.recentRemovals(gone.record->rootKey());
    recent.add(0, {gone.countOfOlder, known}, m_now);
    for (const FolderFilesSync::Gone &files : gone.files) {
        recent.add(files.folder, olderOf(files, recent.since(files.folder, m_now)), m_now);
    }
}

void FolderRemovals::gather(const FolderTreeSync &tree, const FolderFilesSync &files)
{
    for (const FolderTreeSync::Gone &gone : tree.gone()) {
        OfRoot &root = ofRoot(gone.record);
        const auto since = m_run.records.recentRemovals(gone.record->rootKey()).since(0, m_now);
        qsizetype count = 0;
        for (const qint64 key : withAllBelow(*gone.record, gone.key)) {
            const qsizetype all = countIn(key, {});
            count += all;
            root.countOfOlder += since && all > 0 ? countIn(key, since) : all;
        }
        root.folders.append(gone);
        root.count += count;
        root.what ^= qHash(gone.key, size_t(count));
        root.isMuch = root.isMuch || isMuch(count, count);
    }
    for (const FolderFilesSync::Gone &gone : files.gone()) {
        OfRoot &root = ofRoot(gone.record);
        root.files.append(gone);
        root.count += gone.items.size();
        RecentRemovals &recent = m_run.records.recentRemovals(gone.record->rootKey());
        root.countOfOlder += olderOf(gone, recent.since(0, m_now)).gone;
        const RecentRemovals::Sum sum =
            recent.with(gone.folder, olderOf(gone, recent.since(gone.folder, m_now)), m_now);
        root.isMuch = root.isMuch || isMuch(gone.items.size(), gone.known) || isMuch(sum.gone, sum.known);
        for (const ZQRef<ZQLibraryBaseItem> &item : gone.items) {
            root.what ^= qHash(item->objectID().key, size_t(1));
        }
    }
}

void FolderRemovals::run(FolderTreeSync &tree, const FolderFilesSync &files)
{
    gather(tree, files);
    for (const OfRoot &root : m_roots) {
        if (root.count + root.folders.size() > 0 && m_run.isWanted() && mayRemove(root)) {
            remove(root);
        }
    }
    endWhatIsKept(tree);
}

void FolderRemovals::remove(const OfRoot &gone)
{
    for (const FolderFilesSync::Gone &files : gone.files) {
        const RecordedFolder *const folder = gone.record->folder(files.folder);
        for (const ZQRef<ZQLibraryBaseItem> &item : files.items) {
            if (!folder || !isInFolder(*item, folder->path)) {
                item->setActive(false);
            }
        }
    }
    for (const FolderTreeSync::Gone &folder : gone.folders) {
        for (const qint64 key : withAllBelow(*gone.record, folder.key)) {
            endKept(gone.record->rootKey(), key);
        }
        removeFolder(*gone.record, folder.key);
    }
    m_run.changedRoots.insert(gone.record->rootKey());
}

// Files that came back, or whose items went otherwise.
void FolderRemovals::endWhatIsKept(FolderTreeSync &tree)
{
    for (const FolderTreeSync::Changed &changed : tree.changed()) {
        if (m_run.isWanted() && !m_lacking.contains(changed.key)) {
            endKept(changed.record->rootKey(), changed.key);
        }
    }
}

void FolderRemovals::endKept(qint64 rootKey, qint64 folderKey)
{
    if (m_run.records.endKept(rootKey, folderKey) && !m_run.reasons.contains(rootKey)) {
        m_run.reasons.insert(rootKey, QString());
    }
}

bool FolderRemovals::mayRemove(const OfRoot &gone)
{
    qsizetype known = 0;
    for (const RecordedFolder &folder : gone.record->folders()) {
        for (const FolderEntry &entry : folder.entries.all()) {
            known += entry.isFile() ? 1 : 0;
        }
    }
    const qint64 key = gone.record->rootKey();
    const RecentRemovals::Sum sum = m_run.records.recentRemovals(key).with(0, {gone.countOfOlder, known}, m_now);
    if (!gone.isMuch && !isMuch(gone.count, known) && !isMuch(sum.gone, sum.known)) {
        noteRemoval(gone, known);
        return true;
    }
    if (m_run.removesMissing.contains(key) || m_run.records.takeAllowed(key, gone.what)) {
        m_run.records.forgetRecentRemovals(key);
        return true;
    }
    if (!m_run.records.isKept(key, gone.what)) {
        const ZQRef<ZQSidebarWatchedFolder> root = m_run.folder(key);
        m_run.questions.append({m_run.folderID(key), gone.what, gone.count, root ? root->title() : QString()});
    }
    if (m_run.isWanted()) {
        QSet<qint64> lacking;
        for (const FolderFilesSync::Gone &files : gone.files) {
            if (!files.items.isEmpty()) {
                lacking.insert(files.folder);
            }
        }
        for (const FolderTreeSync::Gone &each : gone.folders) {
            const RecordedFolder *const folder = gone.record->folder(each.key);
            lacking.insert(folder ? folder->father : key);
        }
        m_lacking += lacking;
        const QString reason = zqFormat(zqLocalized("%d files are gone from its folder and stay in the library. Put "
                                                    "them back, or synchronise it now to remove them."),
                                        {gone.count});
        m_run.records.keep(key, {gone.what, gone.count, lacking, reason});
        m_run.reasons.insert(key, reason);
    }
    return false;
}

void FolderRemovals::removeFolder(LiveFolderRecord &record, qint64 key)
{
    const RecordedFolder *const folder = record.folder(key);
    struct stat status = {};
    const bool isThere = folder && ::lstat(folder->path.constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
                         status.st_ino == folder->inode;
    if (!folder || isThere) {
        return;
    }
    const qint64 father = folder->father;
    QList<qint64> keys = withAllBelow(record, key);
    std::reverse(keys.begin(), keys.end());
    for (const qint64 each : std::as_const(keys)) {
        if (const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(each)) {
            row->deleteSelf();
        }
    }
    record.remove(key);
    if (const ZQRef<ZQSidebarWatchedFolder> row = m_run.folder(father)) {
        row->reorderChildren();
    }
}
