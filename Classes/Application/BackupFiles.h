#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

// Brings the files of a library's item directories into a backup. A file that is in the last backup as it is in the
// library becomes a link to that one; all others are copied. The library's own files are never linked to: tags are
// written into them in place, and other programs may do so with the rest, which would change the backups with them.
//
// A file is as it was when size, time, and attributes are the same and nothing about it changed since the last backup
// began, or else, when its contents are the same. On the thread of the backup.
class BackupFiles
{
public:
    // Folders "Library". `last` empty: there is no older backup.
    struct Places
    {
        QString library;
        QString backup;
        QString last;
        QDateTime lastBegan; // of a backup of this library; invalid: what changed since cannot be told by dates
    };
    using IsStopped = std::function<bool()>;

    BackupFiles(Places places, IsStopped isStopped);

    enum class Outcome { Complete, Vanished, Failed };
    struct File
    {
        QString path; // in "Library"
        QByteArray SHA1;
        qint64 bytes = 0;
        bool isNew = false;
    };
    struct Result
    {
        Outcome outcome = Outcome::Complete; // Vanished: of what was listed something was not there any more
        QList<File> files = {};
        QString vanished = {};     // the last of those; in "Library"
        QStringList problems = {}; // of files of the library that can't be read
        ZQError error = {};        // why it failed: nothing more can be written, or it was stopped
    };
    // The directory of that name, with all in it. `known`: digests of the last backup. What is there already stays.
    Result copyItem(const QString &name, const QHash<QString, QByteArray> &known);
    // How many bytes that will copy, without what only its contents can tell.
    qint64 bytesToCopy(const QString &name) const;

    bool canLink() const { return m_canLink; }

private:
    void copyFolder(const QString &path, Result &result);
    void copyEntry(const QString &path, Result &result);
    void noteUnread(const QString &path, int code, Result &result) const;
    bool copyFile(const QString &path, Result &result);
    bool copyLink(const QString &path, Result &result) const;
    bool linkToLast(const QString &path, Result &result);
    void copyNew(const QString &path, Result &result);
    bool isInLast(const QString &path) const; // by what the file system says
    bool isSureFromDates(const QString &path) const;

    const Places m_places;
    const IsStopped m_isStopped;
    const QDateTime m_began;
    const QHash<QString, QByteArray> *m_known = nullptr;
    bool m_canLink = true;
};
