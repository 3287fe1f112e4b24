#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <stop_token>

class ZQPersistentStoreCoordinator;

struct BackupOptions
{
    QString directory; // the backups of the library lie in a folder of its name there
    int keep = 0;      // how many of this library stay, this one included; 0: all
    bool verifiesAll = false;
};

// What became of a backup.
struct BackupResult
{
    QString path;       // of the bundle; empty: there is none, see `error`
    ZQError error = {}; // of a cancelled one, too
    bool isCancelled = false;
    qint64 items = 0;
    qint64 files = 0;
    qint64 bytes = 0;
    qint64 newBytes = 0;       // of files that it shares with no older backup
    QStringList problems = {}; // what of the library is not in it, or not as it should be: a sentence each
    QStringList notes = {};    // worth knowing, and nothing is wrong
    QStringList removed = {};  // older backups

    QStringList lines() const; // for a person
};

// A backup of the open library: a library bundle by itself, in DIR/NAME, that is restored by opening a copy of it.
//
// The store is copied as it is at one moment, by the database's own means, and says which items have to be there;
// what is imported later is not in it. The files of an item that is purged meanwhile may be missing, which is told;
// those of one that is renamed get the names that the copied store knows. Everything is made in a folder whose name
// says that it is not whole, brought to the disk, read again and compared, and then given its name. A process that is
// killed leaves the older backups as they were and its own folder, which the next one removes.
//
// Files are shared with the backup before as hard links, where the disk has them. Opened as a library, a backup is one
// from then on, which nothing here removes or shares files with; its tags are written into copies of its own of the
// files that it shares already (`ZQSharedFile`). What is not in a backup: imports that have
// not ended, pictures of the screen on their way into the library, and what can be made again.
//
// Any thread, but one backup at a time for each of these.
class LibraryBackup
{
public:
    LibraryBackup(std::shared_ptr<ZQPersistentStoreCoordinator> store, const QString &bundle);

    // Why no backup of `bundle` can go into `directory`; null when it can.
    static ZQError refusal(const QString &bundle, const QString &directory);

    enum class Stage { Measuring, Copying, Verifying };
    using Progress = std::function<void(Stage stage, qint64 done, qint64 total)>; // items; on the thread of the backup
    BackupResult run(const BackupOptions &options, const std::stop_token &stop = {}, const Progress &progress = {});

    static QString libraryName(const QString &bundle);
    static inline const QString errorDomain = QStringLiteral("zelto.backup");
    enum ErrorCode { NoFolder = 1, InsideLibrary, AroundLibrary, NoSpace, StoreDamaged, NotVerified, LibraryGone };

private:
    std::shared_ptr<ZQPersistentStoreCoordinator> m_store;
    QString m_bundle;
};
