#pragma once

#include "Classes/LiveFolders/LiveFolderRecord.h"
#include "Classes/LiveFolders/RecentRemovals.h"

#include <QSet>
#include <QString>

#include <unordered_map>

// The records of all roots of the open library, in its bundle, and what the person decided while it is open. One
// operation at a time uses it.
class LiveFolderRecords
{
public:
    LiveFolderRecords(const QString &bundle, const QByteArray &store);

    const QString &bundle() const { return m_bundle; }
    // As it was kept when the store had `stamp` for the root; null when there is none of that moment.
    LiveFolderRecord *recordOfRoot(qint64 rootKey, qint64 stamp);
    LiveFolderRecord &newRecordOfRoot(qint64 rootKey);
    LiveFolderRecord *recordOfRootInMemory(qint64 rootKey);
    void write(qint64 rootKey);  // a failure is logged: the next run compares with the store
    void forget(qint64 rootKey); // what is in memory is not what the store holds
    void removeAllBut(const QSet<qint64> &rootKeys);

    // Items whose files are gone and that the person wants to keep are not asked about again while this lives, unless
    // others join them.
    struct Kept
    {
        size_t what = 0;      // which ones
        qsizetype count = 0;  // how many
        QSet<qint64> folders; // that held them
        QString reason;       // that the root shows as long; localized
    };
    void allowRemoval(qint64 rootKey, size_t what) { m_allowed.insert(rootKey, what); } // these may go
    void forgetAllowed() { m_allowed.clear(); } // it was for one run: they may have come back, and go again
    bool takeAllowed(qint64 rootKey, size_t what) { return m_allowed.remove(rootKey, what) > 0; }
    bool isKept(qint64 rootKey, size_t what) const { return m_kept.value(rootKey).what == what; }
    void keep(qint64 rootKey, const Kept &kept);
    void askAgain(qint64 rootKey); // about what is kept, when it is found gone the next time
    qsizetype filesKept(qint64 rootKey) const { return m_kept.value(rootKey).count; }
    QString keptReason(qint64 rootKey) const { return m_kept.value(rootKey).reason; } // empty for none
    // The folder misses nothing any more; whether that was the last one of its root.
    bool endKept(qint64 rootKey, qint64 folderKey);
    void forgetKept(qint64 rootKey) { m_kept.remove(rootKey); }
    void forgetKept() { m_kept.clear(); }

    RecentRemovals &recentRemovals(qint64 rootKey) { return m_recent[rootKey]; }
    void forgetRecentRemovals(qint64 rootKey) { m_recent.remove(rootKey); } // the person knows of them

    // Folders that could not be listed the last time.
    bool isUnreadable(qint64 folderKey) const { return m_unreadable.contains(folderKey); }
    void setUnreadable(qint64 folderKey, bool isUnreadable)
    {
        if (isUnreadable) {
            m_unreadable.insert(folderKey);
        } else {
            m_unreadable.remove(folderKey);
        }
    }

    // A folder of the root could not be brought in step.
    void keepRefused(qint64 folderKey, qint64 rootKey) { m_refused.insert(folderKey, rootKey); }
    // All that is in the folder is there now; whether that was the last one of its root.
    bool endRefusal(qint64 folderKey);

private:
    QString fileOf(qint64 rootKey) const;

    const QString m_bundle;
    const QString m_folder;
    const QByteArray m_store;
    std::unordered_map<qint64, LiveFolderRecord> m_records;
    QHash<qint64, Kept> m_kept; // by root
    QHash<qint64, RecentRemovals> m_recent;
    QMultiHash<qint64, size_t> m_allowed;
    QHash<qint64, qint64> m_refused;
    QSet<qint64> m_unreadable;
};
