#pragma once

#include "Classes/Tags/TagBackupStore.h"
#include "Kit/Foundation/ZQThreadSafety.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>
#include <thread>

// Makes the copies of files' tags, on a thread of its own, once for all requests of about half a second.
//
// No request is lost: it is noted in a file before `add` returns, what another process or a full disk holds up is tried
// again, and what a killed process leaves is copied by the next one. Any thread; costs its callers a lock and, for a
// path that does not wait already, a line of the note. Never takes a lock on a path while it holds its own.
class TagBackupQueue
{
public:
    static TagBackupQueue &shared();
    // The process ends: what is not copied in a moment stays noted for the next one.
    ~TagBackupQueue();

    using Clock = std::chrono::steady_clock;
    void add(const QString &path, const QByteArray &seen = {}); // `seen`: a record that found no room in the file
    // Returns also when the copies cannot be made, or not by then; they stay noted, and are made all the same.
    void flush(std::optional<Clock::time_point> latest = {});
    // Whether the copy is known to be older than what the file had.
    bool isOutdated(const QString &path);
    std::shared_ptr<TagBackupStore> store();

    static QString folder(); // where the copies are
    // What a copy of this file would hold. Nothing: the file says nothing of its tags, or not everything could be read,
    // so what is kept of it stays. An empty backup: it says that it has none.
    static std::optional<TagBackup> backupOf(const QString &path);
    static bool hasAnyOfOurs(const QStringList &names); // of a file's attributes

private:
    std::shared_ptr<TagBackupStore> storeOfFolder() ZQ_REQUIRES(m_mutex);
    void enqueue(const QString &path) ZQ_REQUIRES(m_mutex);
    void gather() ZQ_REQUIRES(m_mutex); // more requests, for a moment
    void run();
    void finishRound(bool isStored, const QSet<QString> &paths, const QHash<QString, QByteArray> &seen,
                     TagBackupStore &store) ZQ_REQUIRES(m_mutex);
    bool isOver(); // the process ends, and its moment is past
    bool copy(const QSet<QString> &paths, const QHash<QString, QByteArray> &seen, TagBackupStore &store);

    ZQMutex m_mutex;
    ZQCondition m_changed;
    ZQCondition m_done;
    QSet<QString> m_pending ZQ_GUARDED_BY(m_mutex);
    QSet<QString> m_takenOver ZQ_GUARDED_BY(m_mutex);               // of them, those that a killed process left
    QHash<QString, QByteArray> m_seen ZQ_GUARDED_BY(m_mutex);       // records that found no room in the files
    int m_failures ZQ_GUARDED_BY(m_mutex) = 0;                      // rounds since the last that succeeded
    std::shared_ptr<TagBackupStore> m_store ZQ_GUARDED_BY(m_mutex); // for what is pending
    std::shared_ptr<TagBackupStore> m_current ZQ_GUARDED_BY(m_mutex);
    QString m_currentFolder ZQ_GUARDED_BY(m_mutex);
    Clock::time_point m_lastRequest ZQ_GUARDED_BY(m_mutex);
    bool m_flushes ZQ_GUARDED_BY(m_mutex) = false;
    bool m_isBusy ZQ_GUARDED_BY(m_mutex) = false;
    bool m_stops ZQ_GUARDED_BY(m_mutex) = false;
    Clock::time_point m_latest ZQ_GUARDED_BY(m_mutex) = Clock::time_point::max(); // of what the end waits for
    std::thread m_thread;
};
