#pragma once

#include "Classes/Application/BackupDigests.h"
#include "Classes/Application/BackupFiles.h"
#include "Classes/Application/BackupFolder.h"
#include "Classes/Application/LibraryBackup.h"

class ZQCancellation;
class ZQManagedObjectContext;

// One backup on its way: its steps, each of which answers false with the reason in `result`. On the thread of the
// backup.
class BackupRun
{
public:
    BackupRun(std::shared_ptr<ZQPersistentStoreCoordinator> store, QString bundle, const BackupOptions &options,
              std::stop_token stop, LibraryBackup::Progress progress);
    ~BackupRun(); // what is not whole goes

    void run();
    BackupResult result;

private:
    struct Item
    {
        qint64 key = 0;
        QString bundleID;
        QString asset; // the file's name; empty for an item whose file lies elsewhere
    };
    bool begin();
    bool copyStore();
    bool hasRoom();
    bool hasRoomFor(qint64 bytes);
    bool copyItems();
    bool verify();
    bool finish();
    bool openCopy();
    bool forEachItem(const std::function<bool(const Item &item)> &visit);
    bool copyItem(const Item &item);
    bool isInLibrary(const Item &item) const;
    bool bringAsset(const Item &item, QList<BackupFiles::File> &files);
    void keepFiles(qint64 key, const QList<BackupFiles::File> &files);
    bool fail(int code, const QString &what, const QString &advice);
    bool fail(const ZQError &error);
    bool isStopped() const { return m_stop.stop_requested(); }
    void tell(LibraryBackup::Stage stage, qint64 done) const;

    const std::shared_ptr<ZQPersistentStoreCoordinator> m_live;
    const QString m_bundle;
    const BackupOptions m_options;
    const std::stop_token m_stop;
    const LibraryBackup::Progress m_progress;
    const std::shared_ptr<ZQCancellation> m_cancellation;
    BackupRecord m_record;
    std::unique_ptr<BackupFolder> m_folder;
    QString m_unfinished;
    QString m_last; // bundle of the backup before; empty: none
    std::shared_ptr<ZQPersistentStoreCoordinator> m_copy;
    std::unique_ptr<BackupFiles> m_files;
    std::unique_ptr<BackupDigests::Reader> m_known;
    BackupDigests::Writer m_digests;
    qint64 m_total = 0;
};
