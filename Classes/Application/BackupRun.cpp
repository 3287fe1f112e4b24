#include "Classes/Application/BackupRun.h"

#include "Classes/Application/BackupRoom.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQRowStream.h"
#include "Kit/Persistence/ZQStoreCopy.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <fcntl.h>
#include <sys/stat.h>

#include <utility>

namespace {

const QString storeName = QStringLiteral("/storedata");
const QString itemsName = QStringLiteral("/Library");
constexpr qint64 itemsBetweenTelling = 64;

QString assetName(const QString &title, const QString &extension)
{
    return title.isEmpty() || extension.isEmpty() ? QString() : title + u'.' + extension;
}

// So that what is read again comes from the disk.
void forgetCached(const QString &path)
{
    const ZQFileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (file.isOpen()) {
        ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    }
}

QString sizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes);
}

} // namespace

BackupRun::BackupRun(std::shared_ptr<ZQPersistentStoreCoordinator> store, QString bundle, const BackupOptions &options,
                     std::stop_token stop, LibraryBackup::Progress progress)
    : m_live(std::move(store)), m_bundle(std::move(bundle)), m_options(options), m_stop(std::move(stop)),
      m_progress(std::move(progress)), m_cancellation(std::make_shared<ZQCancellation>())
{
}

BackupRun::~BackupRun()
{
    m_copy.reset();
    if (m_folder && !m_unfinished.isEmpty()) {
        m_folder->discard(m_unfinished);
    }
}

void BackupRun::run()
{
    const std::stop_callback cancel(m_stop, [cancellation = m_cancellation] { cancellation->cancel(); });
    const ZQCancellation::Scope scope(m_cancellation);
    if (!(begin() && copyStore() && openCopy() && hasRoom() && copyItems() && verify() && finish())) {
        result.path.clear();
        result.isCancelled = isStopped();
        if (result.isCancelled) {
            result.error = ZQError::with(LibraryBackup::errorDomain, ECANCELED,
                                         zqLocalized("The backup was stopped. Older ones are as they were."));
        }
    }
}

bool BackupRun::fail(const ZQError &error)
{
    result.error = error;
    return false;
}

bool BackupRun::fail(int code, const QString &what, const QString &advice)
{
    return fail(ZQError::with(LibraryBackup::errorDomain, code, what, advice));
}

void BackupRun::tell(LibraryBackup::Stage stage, qint64 done) const
{
    if (m_progress && (done % itemsBetweenTelling == 0 || done == m_total)) {
        m_progress(stage, done, m_total);
    }
}

bool BackupRun::begin()
{
    if (const ZQError refusal = LibraryBackup::refusal(m_bundle, m_options.directory); !refusal.isNull()) {
        return fail(refusal);
    }
    ZQError error;
    const QString name = LibraryBackup::libraryName(m_bundle);
    m_folder = BackupFolder::open(m_options.directory, name, m_live->storeUUID(), &error);
    if (!m_folder) {
        return fail(error);
    }
    m_folder->removeUnfinished();
    const QList<BackupFolder::Backup> before = m_folder->backups();
    m_last = before.isEmpty() ? QString() : before.last().path;
    m_record.store = m_live->storeUUID();
    m_record.library = name;
    m_record.place = BackupRecord::placeOf(m_bundle);
    m_record.number = before.isEmpty() ? 1 : before.last().record.number + 1;
    m_record.began = QDateTime::currentDateTimeUtc();
    m_unfinished = m_folder->begin(m_record, &error);
    if (m_unfinished.isEmpty()) {
        return fail(error);
    }
    const bool isOfThis = !before.isEmpty() && before.last().record.isOf(m_record.place);
    const QDateTime lastBegan = isOfThis ? before.last().record.began : QDateTime();
    m_files =
        std::make_unique<BackupFiles>(BackupFiles::Places{m_bundle + itemsName, m_unfinished + itemsName,
                                                          m_last.isEmpty() ? QString() : m_last + itemsName, lastBegan},
                                      [this] { return isStopped(); });
    m_known = std::make_unique<BackupDigests::Reader>(m_last);
    if (!QDir().mkdir(m_unfinished + itemsName) || !m_digests.open(m_unfinished)) {
        return fail(ZQError::posix(errno, m_unfinished));
    }
    return true;
}

bool BackupRun::copyStore()
{
    ZQError error;
    if (!hasRoomFor(QFileInfo(m_bundle + storeName).size())) {
        return false;
    }
    if (!zqCopyStore(*m_live, m_unfinished + storeName, &error)) {
        return fail(error);
    }
    // What is noted there after the copy was made concerns tags that it has, or older ones.
    const QString pending = QStringLiteral("/pending-tags");
    if (QFileInfo(m_bundle + pending).isFile() && !zqCopyFile(m_bundle + pending, m_unfinished + pending, &error)) {
        return fail(error);
    }
    return true;
}

bool BackupRun::openCopy()
{
    ZQError error;
    m_copy = ZQPersistentStoreCoordinator::open(m_live->managedObjectModel(), m_unfinished + storeName, {}, &error);
    if (!m_copy) {
        return fail(error);
    }
    const ZQStoreCheckResult check = m_copy->check(m_stop);
    if (isStopped()) {
        return false;
    }
    if (!check.isSound()) {
        return fail(LibraryBackup::StoreDamaged,
                    zqFormat(zqLocalized("The library's database is damaged: %@"), {check.problems.value(0)}),
                    zqLocalized("Quit Zelto and run `zelto recover`; older backups are as they were."));
    }
    ZQManagedObjectContext context(m_copy);
    const auto count = context.countForFetchRequest({ZQLibraryBaseItem::entityName()}, &error);
    m_total = count.value_or(0);
    return count ? true : fail(error);
}

bool BackupRun::forEachItem(const std::function<bool(const Item &item)> &visit)
{
    ZQManagedObjectContext context(m_copy);
    ZQRowStream stream(context);
    bool goesOn = true;
    const auto take = [&](const ZQRowStream::Row &row) {
        const auto text = [&row](int property) {
            const std::string_view value = row.text(property);
            return QString::fromUtf8(value.data(), qsizetype(value.size()));
        };
        if (!goesOn || isStopped()) {
            return;
        }
        const bool isManaged = row.number(1) != 0;
        goesOn = visit({row.key, text(0), isManaged ? assetName(text(2), text(3)) : QString()});
    };
    ZQError error;
    const QStringList properties{QStringLiteral("bundleID"), QStringLiteral("managed"), QStringLiteral("title"),
                                 QStringLiteral("originalExtension")};
    if (!stream.rows(ZQLibraryBaseItem::entityName(), properties, {}, take, &error)) {
        return goesOn ? fail(error) : false;
    }
    return goesOn && !isStopped();
}

bool BackupRun::hasRoom()
{
    qint64 needed = 0;
    qint64 done = 0;
    const bool isMeasured = forEachItem([&](const Item &item) {
        needed += m_files->bytesToCopy(item.bundleID + ZQLibraryBaseItem::itemDirectoryExtension);
        tell(LibraryBackup::Stage::Measuring, ++done);
        return true;
    });
    if (!isMeasured) {
        return false;
    }
    // Where files share their blocks with the library's nobody knows what is needed.
    constexpr qint64 forFolders = 16 << 20;
    return hasRoomFor(BackupRoom::isShared(m_bundle, m_unfinished) ? forFolders : needed + forFolders);
}

bool BackupRun::hasRoomFor(qint64 bytes)
{
    const BackupRoom room = BackupRoom::at(m_unfinished);
    return room.holds(bytes) ||
           fail(LibraryBackup::NoSpace,
                zqFormat(zqLocalized("The backup needs %@ in “%@”, where %@ are free."),
                         {sizeText(bytes + room.kept()), m_options.directory, sizeText(room.available)}),
                zqLocalized("Remove something there, as old backups, or choose another disk."));
}

bool BackupRun::copyItems()
{
    qint64 done = 0;
    const bool isCopied = forEachItem([&](const Item &item) {
        constexpr qint64 nothing = 0; // others write there too
        if (!hasRoomFor(nothing) || !copyItem(item)) {
            return false;
        }
        tell(LibraryBackup::Stage::Copying, ++done);
        return true;
    });
    if (!m_digests.close() && isCopied) {
        return fail(ZQError::posix(ENOSPC, m_unfinished));
    }
    if (isCopied && !m_files->canLink() && !m_last.isEmpty()) {
        result.notes.append(zqLocalized("The disk can't share files between backups, so that each takes the room of "
                                        "the whole library."));
    }
    result.items = done;
    return isCopied;
}

bool BackupRun::copyItem(const Item &item)
{
    if (item.bundleID.isEmpty() || item.bundleID.contains(u'/')) {
        result.problems.append(zqFormat(zqLocalized("An item has no folder that can be its own: %@"), {item.asset}));
        return true;
    }
    const QString name = item.bundleID + ZQLibraryBaseItem::itemDirectoryExtension;
    const QHash<QString, QByteArray> known = m_known->ofKey(item.key);
    BackupFiles::Result copied;
    constexpr int attempts = 3; // files get other names, and thumbnails are made anew, at any moment
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const BackupFiles::Result more = m_files->copyItem(name, known);
        copied.files += more.files;
        copied.problems = more.problems;
        copied.outcome = more.outcome;
        copied.vanished = more.vanished;
        if (more.outcome == BackupFiles::Outcome::Failed) {
            return fail(more.error);
        }
        if (more.outcome == BackupFiles::Outcome::Complete) {
            break;
        }
    }
    result.problems += copied.problems;
    if (!QFileInfo(m_bundle + itemsName).isDir()) {
        return fail(LibraryBackup::LibraryGone,
                    zqFormat(zqLocalized("The library “%@” is not there any more."), {m_bundle}),
                    zqLocalized("Connect its disk, then try again."));
    }
    const bool hasAsset = bringAsset(item, copied.files);
    // Of an item without its directory there is nothing to bring but the asset.
    if (copied.outcome == BackupFiles::Outcome::Vanished && copied.vanished != name && hasAsset && isInLibrary(item)) {
        result.problems.append(zqFormat(zqLocalized("%@: the file is missing"), {copied.vanished}));
    }
    keepFiles(item.key, copied.files);
    return true;
}

void BackupRun::keepFiles(qint64 key, const QList<BackupFiles::File> &files)
{
    for (const BackupFiles::File &file : files) {
        m_digests.add({key, file.SHA1, file.path, file.isNew});
        ++result.files;
        result.bytes += file.bytes;
        result.newBytes += file.isNew ? file.bytes : 0;
    }
}

bool BackupRun::isInLibrary(const Item &item) const
{
    ZQManagedObjectContext context(m_live);
    return bool(ZQLibraryBaseItem::libraryItemsForBundleID(item.bundleID, context));
}

// An item whose file has another name by now than in the copied store, or is gone. False: it lacks it, which is told.
bool BackupRun::bringAsset(const Item &item, QList<BackupFiles::File> &files)
{
    const QString name = item.bundleID + ZQLibraryBaseItem::itemDirectoryExtension + u'/';
    const QString folder = m_unfinished + itemsName + u'/';
    const QString wanted = name + item.asset;
    if (item.asset.isEmpty() || QFileInfo::exists(folder + wanted)) {
        return true;
    }
    ZQManagedObjectContext context(m_live);
    const auto now = ZQLibraryBaseItem::libraryItemsForBundleID(item.bundleID, context);
    if (!now) {
        result.notes.append(
            zqFormat(zqLocalized("%@ was removed from the library while the backup was made"), {item.asset}));
        return false;
    }
    const QString other = name + assetName(now->title(), now->originalExtension());
    if (other == wanted || !zqMoveNoReplace(folder + other, folder + wanted)) {
        result.problems.append(zqFormat(zqLocalized("%@: the file is missing"), {item.asset}));
        return false;
    }
    for (BackupFiles::File &file : files) {
        if (file.path == other || file.path.startsWith(other + u'/')) {
            file.path.replace(0, other.size(), wanted);
        }
    }
    return true;
}

bool BackupRun::verify()
{
    ZQError error;
    if (!zqSyncFileSystem(m_unfinished, &error)) {
        return fail(error);
    }
    BackupDigests::Reader digests(m_unfinished);
    qint64 done = 0;
    qint64 lastKey = 0;
    while (const auto file = digests.next()) {
        if (isStopped()) {
            return false;
        }
        if (file->key != std::exchange(lastKey, file->key)) {
            tell(LibraryBackup::Stage::Verifying, ++done);
        }
        if (!file->isNew && !m_options.verifiesAll) {
            continue;
        }
        const QString path = m_unfinished + itemsName + u'/' + file->path;
        forgetCached(path);
        if (zqSHA1OfFile(path, &error) == file->SHA1) {
            continue;
        }
        if (file->isNew) {
            return fail(LibraryBackup::NotVerified,
                        zqFormat(zqLocalized("“%@” is not the same in the backup as in the library."), {file->path}),
                        zqLocalized("The disk may be failing; use another one. Older backups are as they were."));
        }
        result.problems.append(
            zqFormat(zqLocalized("%@: is not as it was when an older backup was made, which shares it"), {file->path}));
    }
    return true;
}

bool BackupRun::finish()
{
    m_copy.reset(); // closes the store, which takes its log with it
    m_record.ended = QDateTime::currentDateTimeUtc();
    m_record.items = result.items;
    m_record.files = result.files;
    m_record.bytes = result.bytes;
    m_record.newBytes = result.newBytes;
    m_record.problems = result.problems.size();
    ZQError error;
    if (isStopped() || !m_record.write(m_unfinished, &error) || !zqSyncFileSystem(m_unfinished, &error)) {
        return fail(error);
    }
    result.path = m_folder->finish(m_unfinished, &error);
    if (result.path.isEmpty()) {
        return fail(error);
    }
    m_unfinished.clear();
    for (const QString &library : m_folder->libraries()) {
        result.notes.append(zqFormat(
            zqLocalized("“%@” was opened as a library, so that it is no backup any more, and stays."), {library}));
    }
    // One that lacks something is no reason to let go of one that has it.
    if (m_options.keep > 0 && result.problems.isEmpty()) {
        result.removed = m_folder->keepNewest(m_options.keep, result.path);
    }
    return true;
}

// Here, so that neither of the two needs the other in a circle.
BackupResult LibraryBackup::run(const BackupOptions &options, const std::stop_token &stop, const Progress &progress)
{
    BackupRun run(m_store, m_bundle, options, stop, progress);
    run.run();
    return run.result;
}
