#pragma once

#include "Classes/Import/ImportBatch.h"
#include "Classes/Import/ImportedFile.h"
#include "Classes/Import/ItemInserter.h"
#include "Classes/LiveFolders/SyncRun.h"
#include "Classes/LiveFolders/WrittenTags.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <chrono>
#include <deque>
#include <memory>
#include <vector>

class BaseImportOperation;

// Makes items of the new files of live folders, which stay where they are: each is read by an operation of its kind,
// four at a time, and becomes an item in the order of the files. What is there is saved and appears on screen while the
// rest is being read.
//
// What cannot be read gives no item, and nobody is told: it is looked at again when it changes.
class LiveFileImport : private ImportBatch
{
public:
    explicit LiveFileImport(SyncRun &run);
    ~LiveFileImport() override;

    struct File
    {
        QString path;
        qint64 folder = 0; // key
        qint64 root = 0;   // key
        QString SHA1;      // where it is known
    };
    void add(const File &file); // waits while many are being read
    // What is not being read yet is left; `finish` follows.
    void giveUpWaiting();
    void finish();
    const QStringList &unreadFiles() const { return m_unreadFiles; }         // paths; they made no item
    const QList<qint64> &foldersGivenUp() const { return m_foldersGivenUp; } // one for each file
    const WrittenTags &writtenTags() const { return m_writtenTags; }         // after `finish`
    void saveIfDue();                                                        // also what others changed in the context
    bool saveNow();
    bool wasRefused() const { return !refusal().isEmpty(); } // as for a full disk
    void didChangeItem() { ++m_changes; }

private:
    using Clock = std::chrono::steady_clock;
    struct Reading
    {
        File asked;
        std::shared_ptr<BaseImportOperation> operation;
        ImportedFile file;
    };
    struct Written
    {
        QString bundleID;
        QString path;
        QStringList tags;
        QString notes;
        int rating = 0;
    };
    struct Arrival
    {
        ZQMutex mutex;
        ZQCondition arrived;
    };

    void takeFirst(bool waits);
    bool isFirstThere();
    void insert(const Reading &reading);
    void writeTags();
    void giveUp(const ImportedFile &file);

    void fileDidDrop(const DroppedFile &file) override;
    void fileDidFinish() override {}
    QString refusal() const override;
    void setRefusal(const QString &reason) override;
    void archiveDidUnfold(const UnfoldedArchive &) override {}

    SyncRun &m_run;
    ItemInserter m_inserter;
    ZQOperationQueue m_importOperationQueue;
    std::shared_ptr<Arrival> m_arrival;
    std::deque<Reading> m_reading; // in the order of the files
    QHash<qint64, ZQRef<ZQSidebarWatchedFolder>> m_folders;
    std::vector<Written> m_written; // of the items since the last save
    WrittenTags m_writtenTags;
    QStringList m_unreadFiles;
    QList<qint64> m_foldersGivenUp;
    QDateTime m_importDate;
    qint64 m_count = 0;
    QString m_note;          // that item directories are being made
    qsizetype m_changes = 0; // since the last save
    Clock::duration m_interval;
    Clock::time_point m_nextSave;
    mutable ZQMutex m_mutex;
    QString m_refusal ZQ_GUARDED_BY(m_mutex);
};
