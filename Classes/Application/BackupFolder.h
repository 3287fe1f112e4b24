#pragma once

#include "Classes/Application/BackupRecord.h"
#include "Kit/Files/ZQSystemFile.h"

#include <QStringList>

#include <memory>

// Where the backups of one library lie: DIR/NAME, each a bundle named by its time in UTC, as
// 2026-11-27T023012Z.ztlibrary. One that is not whole has the ending ".unfinished" behind that, from before its first
// file is there, and so has one that is being removed.
//
// One process at a time works on such a folder, by a lock in it. Nothing is removed but direct children of it, by
// name, that are folders and no links, and whose own record says that they belong to this store and were never opened
// as a library; the record goes last.
class BackupFolder
{
public:
    struct Backup
    {
        QString path;
        BackupRecord record;
    };

    // Makes DIR/NAME when it is missing; DIR has to exist. Null with an error, also while another process is at it.
    static std::unique_ptr<BackupFolder> open(const QString &directory, const QString &library, const QUuid &store,
                                              ZQError *error);
    // The whole ones of this store, the oldest first. Needs no lock.
    static QList<Backup> backupsIn(const QString &directory, const QString &library, const QUuid &store);

    QString path() const { return m_path; }
    QList<Backup> backups() const { return backupsAt(m_path, m_store); }
    void removeUnfinished() const; // of this store, left by a process that was killed

    // A new folder with its record, not whole yet. Empty with an error.
    QString begin(const BackupRecord &record, ZQError *error) const;
    // Gives it its name; everything in it has to be on the disk. Its path; empty with an error.
    QString finish(const QString &unfinished, ZQError *error) const;
    void discard(const QString &unfinished) const;
    // What was a backup of this store until somebody opened it as a library: it stays, whatever is kept.
    QStringList libraries() const;
    // The oldest ones of the same bundle, until `count` are left with `newest`, which stays in any case. Answers what
    // was removed.
    QStringList keepNewest(int count, const QString &newest) const;

private:
    BackupFolder() = default;
    static QList<Backup> backupsAt(const QString &path, const QUuid &store);
    bool isOurs(const QString &unfinished) const;
    void removeOurs(const QString &unfinished) const;

    QString m_path;
    QUuid m_store;
    ZQFileDescriptor m_lock;
};
