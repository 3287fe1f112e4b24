#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>

// The items whose tags are on their way into their files, in a file of the library bundle: one line each, added before
// the write is queued. It is emptied when everything noted is both in the files and in the saved store. What a killed
// process leaves in it is what may differ between the two; the next launch writes those files again from the store.
// Any thread.
class TagFileJournal
{
public:
    explicit TagFileJournal(const QString &path);
    ~TagFileJournal();

    // What an earlier process left, each once. Empty for nearly every launch.
    QStringList interrupted() const { return m_interrupted; }

    // `isSaved`: the store has these tags on disk already. Answers what to give to `bringToDisk`.
    qint64 willWrite(const QString &item, bool isSaved = false);
    // Before the file is touched: returns when the line of `willWrite` is on the disk. Those noted meanwhile come
    // along, so that many writes cost few flushes.
    void bringToDisk(qint64 line);
    void bringToDisk(); // all that was noted
    // Once for each `willWrite`, after `path` was written to, on a thread that may wait for the disk.
    void didWrite(const QString &path = {});
    void didSave(); // the store is on disk with everything noted so far; `emptyIfSettled` is due
    // Brings the files to their disks and empties the journal when nothing is outstanding. Waits for the disk.
    void emptyIfSettled();

private:
    bool isSettled() const ZQ_REQUIRES(m_mutex);
    static bool flush(const QStringList &folders);

    // As they were when it was opened.
    int m_file = -1;
    QStringList m_interrupted;

    ZQMutex m_flushMutex; // the first to be taken, where both are
    qint64 m_flushedLines ZQ_GUARDED_BY(m_flushMutex) = 0;

    ZQMutex m_mutex;
    // In the file since it was last emptied, and which line it was.
    QHash<QString, qint64> m_noted ZQ_GUARDED_BY(m_mutex);
    qint64 m_lines ZQ_GUARDED_BY(m_mutex) = 0; // written by this process
    qint64 m_outstanding ZQ_GUARDED_BY(m_mutex) = 0;
    bool m_isAllSaved ZQ_GUARDED_BY(m_mutex) = true;
    bool m_isEmpty ZQ_GUARDED_BY(m_mutex) = true;
    // A folder of each file system written to since it was last emptied.
    QHash<quint64, QString> m_touched ZQ_GUARDED_BY(m_mutex);
};
