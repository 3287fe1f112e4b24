#pragma once

#include "Kit/Files/ZQSharedFile.h"
#include "Kit/Foundation/ZQError.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// What a backup says of itself, in a file of its bundle. A folder without one is nobody's business here: it is neither
// linked to nor ever removed; and neither is one that was opened as a library, since it may hold somebody's work.
struct BackupRecord
{
    static inline const QString fileName = ZQSharedFile::markName;

    QUuid store;
    QString library;   // the name of the library
    QString place;     // which bundle of that store it is of, see `placeOf`: copies of a library have one store
    qint64 number = 0; // of two, that of the later one is higher, whatever the clock said
    QDateTime began;
    QDateTime ended;  // invalid while it is not whole
    QDateTime opened; // as a library, for the first time; invalid: never
    qint64 items = 0;
    qint64 files = 0;
    qint64 bytes = 0;    // of all its files
    qint64 newBytes = 0; // of those that it shares with no older backup
    qint64 problems = 0;

    bool isWhole() const { return ended.isValid(); }
    bool isLibrary() const { return opened.isValid(); }
    bool isOf(const QString &otherPlace) const; // never of an unknown one

    // What tells a bundle from its copies, here and on other computers, for as long as it is not copied to another
    // disk; empty: unknown.
    static QString placeOf(const QString &bundle);

    // Of the bundle at this path; nothing when it has none that can be read, or the folder or the file is a link.
    static std::optional<BackupRecord> of(const QString &bundle);
    bool write(const QString &bundle, ZQError *error) const;
    // For whoever has locked the bundle, before anything else is done to it: from now on it is a library. True also for
    // what is no backup; false with an error when that can't be written.
    static bool noteOpening(const QString &bundle, ZQError *error);
};
