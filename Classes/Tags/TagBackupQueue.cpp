#include "Classes/Tags/TagBackupQueue.h"

#include "Classes/Tags/AttributeStore.h"
#include "Classes/Tags/DesktopMirror.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPaths.h"

#include <QDateTime>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds quiet{500}; // without a request, before the copies are made
constexpr std::chrono::seconds longestGathering{10};
constexpr std::chrono::milliseconds lastMoment{300};
constexpr int mostFailures = 3; // while somebody waits
constexpr int niceness = 10;    // what the person waits for comes first

} // namespace

TagBackupQueue &TagBackupQueue::shared()
{
    static TagBackupQueue queue;
    return queue;
}

QString TagBackupQueue::folder()
{
    return ZQPaths::dataHome() + QStringLiteral("/Zelto/TagBackups");
}

bool TagBackupQueue::hasAnyOfOurs(const QStringList &names)
{
    return DesktopMirror::isAmong(names) || std::any_of(names.begin(), names.end(), AttributeStore::isOurs);
}

std::optional<TagBackup> TagBackupQueue::backupOf(const QString &path)
{
    ZQError error;
    const QStringList names = ZQExtendedAttributes::list(path, &error);
    if (!error.isNull() || !hasAnyOfOurs(names)) {
        return std::nullopt;
    }
    const TagFileIdentity identity = TagFileIdentity::ofFile(path);
    TagBackup backup;
    backup.tags = AttributeStore::getUserTagsNoRestore(path, &error).value_or(QStringList());
    ZQError otherError;
    backup.comment = AttributeStore::getString(AttributeStore::finderCommentKey, path, &otherError);
    if (AttributeStore::isOfSystem(otherError)) {
        return std::nullopt;
    }
    backup.rating = AttributeStore::getXAttrMetaData(AttributeStore::starRatingKey, path, &otherError).toDouble();
    if (AttributeStore::isOfSystem(otherError)) {
        return std::nullopt;
    }
    backup.identity = identity.text;
    backup.inode = identity.inode;
    backup.isFolder = identity.isFolder;
    backup.saved = QDateTime::currentMSecsSinceEpoch();
    backup.contents = identity.isFolder ? TagFileContents() : TagFileContents::ofFile(path);
    backup.seen = ZQExtendedAttributes::get(path, AttributeStore::seenName, &error).value_or(QByteArray());
    return error.isNull() && !identity.text.isEmpty() ? std::optional(backup) : std::nullopt;
}

TagBackupQueue::~TagBackupQueue()
{
    {
        const ZQLockGuard lock(m_mutex);
        m_stops = true;
        m_latest = Clock::now() + lastMoment;
    }
    m_changed.notifyAll();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void TagBackupQueue::add(const QString &path, const QByteArray &seen)
{
    const ZQLockGuard lock(m_mutex);
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

void TagBackupQueue::flush(std::optional<Clock::time_point> latest)
{
    const ZQLockGuard lock(m_mutex);
    m_flushes = true;
    m_failures = 0;
    m_changed.notifyAll();
    bool isInTime = true;
    while ((!m_pending.isEmpty() || m_isBusy) && m_failures < mostFailures && isInTime) {
        if (latest) {
            isInTime = m_done.waitUntil(m_mutex, *latest);
        } else {
            m_done.wait(m_mutex);
        }
    }
    m_flushes = false;
}

bool TagBackupQueue::isOutdated(const QString &path)
{
    const ZQLockGuard lock(m_mutex);
    return m_takenOver.contains(path);
}

std::shared_ptr<TagBackupStore> TagBackupQueue::store()
{
    const ZQLockGuard lock(m_mutex);
    return storeOfFolder();
}

std::shared_ptr<TagBackupStore> TagBackupQueue::storeOfFolder()
{
    const QString present = folder();
    if (!m_current || m_currentFolder != present) {
        m_current = std::make_shared<TagBackupStore>(present);
        m_currentFolder = present;
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

void TagBackupQueue::enqueue(const QString &path)
{
    m_pending.insert(path);
    m_lastRequest = Clock::now();
    if (!m_thread.joinable()) {
        m_thread = std::thread([this] { run(); });
    } else if (m_pending.size() == 1) {
        m_changed.notifyAll();
    }
}

void TagBackupQueue::gather()
{
    const Clock::time_point latest = Clock::now() + longestGathering;
    while (!m_stops && !m_flushes) {
        const Clock::time_point due = std::min(m_lastRequest + quiet, latest);
        if (Clock::now() >= due) {
            return;
        }
        m_changed.waitUntil(m_mutex, due);
    }
}

void TagBackupQueue::run()
{
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), niceness);
    const ZQLockGuard lock(m_mutex);
    while (true) {
        while (!m_stops && m_pending.isEmpty()) {
            m_changed.wait(m_mutex);
        }
        if (m_pending.isEmpty()) {
            return;
        }
        gather();
        const QSet<QString> paths = std::exchange(m_pending, {});
        const QHash<QString, QByteArray> seen = std::exchange(m_seen, {});
        const std::shared_ptr<TagBackupStore> store = m_store;
        m_isBusy = true;
        bool isStored = false;
        {
            const ZQUnlockGuard unlocked(m_mutex);
            isStored = copy(paths, seen, *store);
        }
        m_isBusy = false;
        finishRound(isStored, paths, seen, *store);
        m_done.notifyAll();
        if (!isStored) {
            if (m_stops && (m_failures >= mostFailures || Clock::now() >= m_latest)) {
                return; // the notes stay
            }
            const Clock::time_point again = Clock::now() + quiet;
            while (!m_stops && Clock::now() < again) {
                m_changed.waitUntil(m_mutex, again);
            }
        }
    }
}

void TagBackupQueue::finishRound(bool isStored, const QSet<QString> &paths, const QHash<QString, QByteArray> &seen,
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

bool TagBackupQueue::isOver()
{
    const ZQLockGuard lock(m_mutex);
    return Clock::now() >= m_latest;
}

bool TagBackupQueue::copy(const QSet<QString> &paths, const QHash<QString, QByteArray> &seen, TagBackupStore &store)
{
    QHash<QString, std::optional<TagBackup>> backups;
    for (const QString &path : paths) {
        if (isOver()) {
            return false;
        }
        if (auto backup = backupOf(path)) {
            if (backup->seen->isEmpty()) {
                backup->seen = seen.value(path);
            }
            backups.insert(path, backup->isEmpty() ? std::nullopt : backup);
        }
    }
    return store.store(backups);
}
