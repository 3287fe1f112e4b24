#include "Classes/Tags/OpenMetaBackup.h"

#include "Classes/Tags/DesktopMirror.h"
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
constexpr int niceness = 10; // what the person waits for comes first

bool isOfOurs(const QString &name)
{
    using M = OpenMeta;
    return name.startsWith(M::openmetaKey({})) || name.startsWith(M::openmetaTimeKey({})) ||
           name == M::spotlightKey(M::userTagsKey) || name == M::spotlightKey(M::olderUserTagsKey) ||
           name == M::spotlightKey(M::userTagTimeKey) || name == M::spotlightKey(M::starRatingKey) ||
           name == M::spotlightKey(M::finderCommentKey) || name == DesktopMirror::tagsName ||
           name == DesktopMirror::commentName || name == DesktopMirror::ratingName || name == DesktopMirror::recordName;
}

bool hasAnyOfOurs(const QStringList &names)
{
    return std::any_of(names.begin(), names.end(), isOfOurs);
}

// Nothing: the file says nothing of its tags, so what is kept of it stays. An empty backup: it says that it has none.
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
    backup.comment = OpenMeta::getString(OpenMeta::finderCommentKey, path);
    backup.rating = OpenMeta::getXAttrMetaData(OpenMeta::starRatingKey, path).toDouble();
    backup.identity = identity.text;
    backup.inode = identity.inode;
    backup.isFolder = identity.isFolder;
    backup.saved = QDateTime::currentMSecsSinceEpoch();
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

    void add(const QString &path)
    {
        const std::lock_guard lock(m_mutex);
        if (m_pending.isEmpty()) {
            m_store = storeOfFolder();
        }
        if (m_pending.contains(path)) {
            return;
        }
        m_pending.insert(path);
        m_lastRequest = Clock::now();
        if (!m_thread.joinable()) {
            m_thread = std::thread([this] { run(); });
        } else if (m_pending.size() == 1) {
            m_changed.notify_all();
        }
    }

    void flush()
    {
        std::unique_lock lock(m_mutex);
        m_flushes = true;
        m_changed.notify_all();
        m_done.wait(lock, [this] { return m_pending.isEmpty() && !m_isBusy; });
        m_flushes = false;
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
        }
        return m_current;
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
            const std::shared_ptr<TagBackupStore> store = m_store;
            m_isBusy = true;
            lock.unlock();
            copy(paths, *store);
            lock.lock();
            m_isBusy = false;
            m_done.notify_all();
        }
    }

    static void copy(const QSet<QString> &paths, TagBackupStore &store)
    {
        QHash<QString, std::optional<TagBackup>> backups;
        for (const QString &path : paths) {
            if (const auto backup = backupOf(path)) {
                backups.insert(path, backup->isEmpty() ? std::nullopt : backup);
            }
        }
        store.store(backups);
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::condition_variable m_done;
    QSet<QString> m_pending;
    std::shared_ptr<TagBackupStore> m_store; // for what is pending
    std::shared_ptr<TagBackupStore> m_current;
    QString m_currentFolder;
    Clock::time_point m_lastRequest;
    bool m_flushes = false;
    bool m_isBusy = false;
    bool m_stops = false;
    std::thread m_thread;
};

// Whether the file with this inode lies in the folder of `path` under a name that no editor makes of that of `path`.
bool wasRenamed(const QString &path, const TagBackup &backup)
{
    const QFileInfo info(path);
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(opendir(QFile::encodeName(info.path()).constData()), closedir);
    while (const dirent *const entry = directory ? readdir(directory.get()) : nullptr) {
        if (entry->d_ino != backup.inode) {
            continue;
        }
        const QString name = QFile::decodeName(entry->d_name);
        if (TagFileIdentity::ofFile(info.path() + u'/' + name).text == backup.identity) {
            return !name.contains(info.fileName());
        }
    }
    return false;
}

bool belongsTo(const QString &path, const TagBackup &backup, TagBackupStore &store)
{
    const TagFileIdentity identity = TagFileIdentity::ofFile(path);
    if (identity.text.isEmpty() || identity.text == backup.identity || identity.isFolder != backup.isFolder) {
        return false;
    }
    const QString elsewhere = store.pathOfIdentity(backup.identity);
    const bool wasSeenElsewhere =
        !elsewhere.isEmpty() && elsewhere != path && TagFileIdentity::ofFile(elsewhere).text == backup.identity;
    return !wasSeenElsewhere && !wasRenamed(path, backup);
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
    const std::optional<TagBackup> backup = store->find(path);
    if (!backup || !belongsTo(path, *backup, *store)) {
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

void OpenMetaBackup::copyTagsFromOldKeyTokMDItemOMIfNeeded(const QString &path)
{
    constexpr qint64 clearlyLaterMilliseconds = 2000;
    const QVariant olderTime = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::olderUserTagsKey), path);
    if (olderTime.typeId() != QMetaType::QDateTime) {
        return;
    }
    const QVariant time = OpenMeta::getXAttr(OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path);
    if (time.typeId() == QMetaType::QDateTime &&
        time.toDateTime().msecsTo(olderTime.toDateTime()) < clearlyLaterMilliseconds) {
        return;
    }
    const QVariant olderTags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::olderUserTagsKey), path);
    const QVariant tags = OpenMeta::getXAttr(OpenMeta::openmetaKey(OpenMeta::userTagsKey), path);
    if (!olderTags.isValid() || olderTags == tags) {
        return;
    }
    OpenMeta::setXAttr(olderTags, OpenMeta::openmetaKey(OpenMeta::userTagsKey), path);
    OpenMeta::setXAttr(olderTags, OpenMeta::spotlightKey(OpenMeta::userTagsKey), path);
    OpenMeta::setXAttr(olderTime, OpenMeta::openmetaTimeKey(OpenMeta::userTagsKey), path);
}
