#include "Classes/Tags/OpenMetaBackup.h"

#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/FileTags.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/PathLock.h"
#include "Classes/Tags/TagBackupStore.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPaths.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <dirent.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds quiet{500}; // without a request, before the copies are made
constexpr std::chrono::seconds longestGathering{10};
constexpr int mostFailures = 3; // while somebody waits
constexpr int niceness = 10;    // what the person waits for comes first

bool isOfOurs(const QString &name)
{
    using M = OpenMeta;
    return name.startsWith(M::openmetaKey({})) || name.startsWith(M::openmetaTimeKey({})) ||
           name == M::spotlightKey(M::userTagsKey) || name == M::spotlightKey(M::olderUserTagsKey) ||
           name == M::spotlightKey(M::userTagTimeKey) || name == M::spotlightKey(M::starRatingKey) ||
           name == M::spotlightKey(M::finderCommentKey) || name == DesktopMirror::tagsName ||
           name == DesktopMirror::commentName || name == DesktopMirror::ratingName ||
           name == DesktopMirror::recordName || name == SeenFileTags::attributeName;
}

bool hasAnyOfOurs(const QStringList &names)
{
    return std::any_of(names.begin(), names.end(), isOfOurs);
}

// A value that the system could not read; one that is no property list is none.
bool isOfSystem(const ZQError &error)
{
    return !error.isNull() && error.domain == ZQError::posixDomain;
}

// Nothing: the file says nothing of its tags, or not everything could be read, so what is kept of it stays. An empty
// backup: it says that it has none.
std::optional<TagBackup> backupOf(const QString &path)
{
    ZQError error;
    const QStringList names = ZQExtendedAttributes::list(path, &error);
    if (!error.isNull() || !hasAnyOfOurs(names)) {
        return std::nullopt;
    }
    const TagFileIdentity identity = TagFileIdentity::ofFile(path);
    TagBackup backup;
    backup.tags = OpenMeta::getUserTagsNoRestore(path, &error).value_or(QStringList());
    ZQError otherError;
    backup.comment = OpenMeta::getString(OpenMeta::finderCommentKey, path, &otherError);
    if (isOfSystem(otherError)) {
        return std::nullopt;
    }
    backup.rating = OpenMeta::getXAttrMetaData(OpenMeta::starRatingKey, path, &otherError).toDouble();
    if (isOfSystem(otherError)) {
        return std::nullopt;
    }
    backup.identity = identity.text;
    backup.inode = identity.inode;
    backup.isFolder = identity.isFolder;
    backup.saved = QDateTime::currentMSecsSinceEpoch();
    backup.contents = identity.isFolder ? TagFileContents() : TagFileContents::ofFile(path);
    backup.seen = ZQExtendedAttributes::get(path, SeenFileTags::attributeName, &error).value_or(QByteArray());
    return error.isNull() && !identity.text.isEmpty() ? std::optional(backup) : std::nullopt;
}

// The thread that makes the copies. Never takes a lock on a path while it holds its own.
class Worker
{
public:
    static Worker &shared()
    {
        static Worker worker;
        return worker;
    }

    ~Worker()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stops = true;
        }
        m_changed.notify_all();
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    void add(const QString &path, const QByteArray &seen = {})
    {
        const std::lock_guard lock(m_mutex);
        if (m_pending.isEmpty()) {
            m_store = storeOfFolder();
        }
        if (!seen.isEmpty()) {
            m_seen.insert(path, seen);
        }
        if (m_pending.contains(path)) {
            return;
        }
        m_store->note(path);
        enqueue(path);
    }

    void flush()
    {
        std::unique_lock lock(m_mutex);
        m_flushes = true;
        m_failures = 0;
        m_changed.notify_all();
        m_done.wait(lock, [this] { return (m_pending.isEmpty() && !m_isBusy) || m_failures >= mostFailures; });
        m_flushes = false;
    }

    // Whether the copy is known to be older than what the file had.
    bool isOutdated(const QString &path)
    {
        const std::lock_guard lock(m_mutex);
        return m_takenOver.contains(path);
    }

    std::shared_ptr<TagBackupStore> store()
    {
        const std::lock_guard lock(m_mutex);
        return storeOfFolder();
    }

private:
    std::shared_ptr<TagBackupStore> storeOfFolder()
    {
        const QString folder = OpenMetaBackup::folder();
        if (!m_current || m_currentFolder != folder) {
            m_current = std::make_shared<TagBackupStore>(folder);
            m_currentFolder = folder;
            const QStringList left = m_current->takeOverNotes();
            if (!left.isEmpty() && m_pending.isEmpty()) {
                m_store = m_current;
                for (const QString &path : left) {
                    m_takenOver.insert(path);
                    enqueue(path);
                }
            }
        }
        return m_current;
    }

    void enqueue(const QString &path)
    {
        m_pending.insert(path);
        m_lastRequest = Clock::now();
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { run(); });
        } else if (m_pending.size() == 1) {
            m_changed.notify_all();
        }
    }

    void gather(std::unique_lock<std::mutex> &lock)
    {
        const auto isHurried = [this] { return m_stops || m_flushes; };
        const Clock::time_point latest = Clock::now() + longestGathering;
        Clock::time_point due = std::min(m_lastRequest + quiet, latest);
        while (!m_changed.wait_until(lock, due, isHurried) && due < latest && m_lastRequest + quiet > due) {
            due = std::min(m_lastRequest + quiet, latest);
        }
    }

    void run()
    {
        setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness);
        std::unique_lock lock(m_mutex);
        while (true) {
            m_changed.wait(lock, [this] { return m_stops || !m_pending.isEmpty(); });
            if (m_pending.isEmpty()) {
                return;
            }
            gather(lock);
            const QSet<QString> paths = std::exchange(m_pending, {});
            const QHash<QString, QByteArray> seen = std::exchange(m_seen, {});
            const std::shared_ptr<TagBackupStore> store = m_store;
            m_isBusy = true;
            lock.unlock();
            const bool isStored = copy(paths, seen, *store);
            lock.lock();
            m_isBusy = false;
            finishRound(isStored, paths, seen, *store);
            m_done.notify_all();
            if (!isStored) {
                if (m_stops && m_failures >= mostFailures) {
                    return; // the notes stay
                }
                m_changed.wait_for(lock, quiet, [this] { return m_stops; });
            }
        }
    }

    void finishRound(bool isStored, const QSet<QString> &paths, const QHash<QString, QByteArray> &seen,
                     TagBackupStore &store)
    {
        if (!isStored) {
            ++m_failures;
            m_pending.unite(paths);
            for (auto it = seen.cbegin(); it != seen.cend(); ++it) {
                if (!m_seen.contains(it.key())) {
                    m_seen.insert(it.key(), it.value());
                }
            }
            return;
        }
        m_failures = 0;
        m_takenOver.subtract(paths);
        store.setNotes(m_store.get() == &store ? m_pending : QSet<QString>());
    }

    static bool copy(const QSet<QString> &paths, const QHash<QString, QByteArray> &seen, TagBackupStore &store)
    {
        QHash<QString, std::optional<TagBackup>> backups;
        for (const QString &path : paths) {
            if (auto backup = backupOf(path)) {
                if (backup->seen->isEmpty()) {
                    backup->seen = seen.value(path);
                }
                backups.insert(path, backup->isEmpty() ? std::nullopt : backup);
            }
        }
        return store.store(backups);
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_done;
    QSet<QString> m_pending;
    QSet<QString> m_takenOver;               // of them, those that a killed process left
    QHash<QString, QByteArray> m_seen;       // records that found no room in the files
    int m_failures = 0;                      // rounds since the last that succeeded
    std::shared_ptr<TagBackupStore> m_store; // for what is pending
    std::shared_ptr<TagBackupStore> m_current;
    QString m_currentFolder;
    Clock::time_point m_lastRequest;
    bool m_flushes = false;
    bool m_isBusy = false;
    bool m_stops = false;
    std::thread m_thread;
};

// Where the file with this inode lies in the folder of `path`; empty: nowhere there.
QString placeOf(const TagBackup &backup, const QString &path)
{
    const QString folder = QFileInfo(path).path();
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(QFile::encodeName(folder).constData()), closedir);
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        const QString found = folder + u'/' + QFile::decodeName(entry->d_name);
        if (entry->d_ino == backup.inode && TagFileIdentity::ofFile(found).text == backup.identity) {
            return found;
        }
    }
    return {};
}

// What the file at `path` gets back: it is another one than the tagged file, and was put into its place.
std::optional<TagBackup> replacedBy(const QString &path, const TagBackup &backup, TagBackupStore &store)
{
    const TagFileIdentity identity = TagFileIdentity::ofFile(path);
    if (identity.text.isEmpty() || identity.text == backup.identity || identity.isFolder != backup.isFolder) {
        return std::nullopt;
    }
    const QString elsewhere = store.pathOfIdentity(backup.identity);
    const bool wasSeenElsewhere =
        !elsewhere.isEmpty() && elsewhere != path && TagFileIdentity::ofFile(elsewhere).text == backup.identity;
    if (wasSeenElsewhere) {
        return std::nullopt;
    }
    const QString aside = placeOf(backup, path);
    if (!aside.isEmpty()) {
        const bool isAnEditorsName = QFileInfo(aside).fileName().contains(QFileInfo(path).fileName());
        const auto present = isAnEditorsName ? backupOf(aside) : std::nullopt; // it may have been tagged since
        return isAnEditorsName ? std::optional(present.value_or(backup)) : std::nullopt;
    }
    return backup.contents.isSameAs(TagFileContents::ofFile(path)) ? std::optional(backup) : std::nullopt;
}

} // namespace

QString OpenMetaBackup::folder()
{
    return ZQPaths::dataHome() + QStringLiteral("/Zelto/TagBackups");
}

void OpenMetaBackup::backupMetadata(const QString &path)
{
    Worker::shared().add(path);
}

void OpenMetaBackup::backupMetadata(const QString &path, const QByteArray &seen)
{
    Worker::shared().add(path, seen);
}

bool OpenMetaBackup::hasAttributes(const QString &path)
{
    return hasAnyOfOurs(ZQExtendedAttributes::list(path));
}

void OpenMetaBackup::waitUntilAllWritten()
{
    Worker::shared().flush();
}

void OpenMetaBackup::restoreMetadata(const QString &path)
{
    if (!OpenMeta::canNameAFile(path)) {
        return;
    }
    ZQError error;
    const QStringList names = ZQExtendedAttributes::list(path, &error);
    if (error.isNull()) {
        restoreMetadata(path, names);
    }
}

void OpenMetaBackup::restoreMetadata(const QString &path, const QStringList &names)
{
    const std::shared_ptr<TagBackupStore> store = Worker::shared().store();
    if (hasAnyOfOurs(names)) {
        if (!store->contains(path)) {
            Worker::shared().add(path); // tagged by another program, or moved here
        }
        return;
    }
    const std::optional<TagBackup> found = Worker::shared().isOutdated(path) ? std::nullopt : store->find(path);
    const std::optional<TagBackup> backup = found ? replacedBy(path, *found, *store) : std::nullopt;
    if (!backup) {
        return;
    }
    const PathLock lock(path);
    if (!backup->comment.isEmpty()) {
        OpenMeta::setFinderComment(backup->comment, path);
    }
    if (backup->rating > 0) {
        OpenMeta::setRating(backup->rating, path);
    }
    OpenMeta::setUserTags(backup->tags, path); // which also notes the new file
}

std::optional<TagBackup> OpenMetaBackup::lastKnown(const QString &path)
{
    const std::shared_ptr<TagBackupStore> store = Worker::shared().store();
    std::optional<TagBackup> backup = store->find(path);
    if (!backup) {
        return std::nullopt;
    }
    const bool isSame = TagFileIdentity::ofFile(path).text == backup->identity;
    if (Worker::shared().isOutdated(path) || (!isSame && !replacedBy(path, *backup, *store))) {
        return std::nullopt;
    }
    const QVariant tagged = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path);
    const bool isOutdated =
        tagged.typeId() == QMetaType::QDateTime && tagged.toDateTime().toMSecsSinceEpoch() > backup->saved;
    return isOutdated ? std::nullopt : backup;
}

void OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path)
{
    constexpr qint64 clearlyLaterMilliseconds = 2000;
    const QVariant olderTime = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::olderUserTagsKey), path);
    if (olderTime.typeId() != QMetaType::QDateTime) {
        return;
    }
    ZQError error; // a time or a list that cannot be read is not an old or an empty one
    const QVariant time = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path, &error);
    if (time.typeId() == QMetaType::QDateTime &&
        time.toDateTime().msecsTo(olderTime.toDateTime()) < clearlyLaterMilliseconds) {
        return;
    }
    const QVariant olderTags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::olderUserTagsKey), path);
    const QVariant tags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::userTagsKey), path, &error);
    if (isOfSystem(error) || !olderTags.isValid() || olderTags == tags) {
        return;
    }
    for (const QString &name :
         {OpenMeta::openmetaKey(OpenMeta::userTagsKey), OpenMeta::spotlightKey(OpenMeta::userTagsKey)}) {
        OpenMeta::setXAttr(olderTags, name, path);
    }
    OpenMeta::setXAttr(olderTime, OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path); // it is done
}
