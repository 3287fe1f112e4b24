#pragma once

#include "Kit/Files/ZQSharedFile.h"
#include "Kit/Foundation/ZQError.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

// What a backup says of itself, in a file of its bundle. A folder without one is nobody's business here: it is neither
// linked to nor ever removed.
struct BackupRecord
{
    static inline const QString fileName = ZQSharedFile::markName;

    QUuid store;
    QString library; // the name of the library
    QDateTime began;
    QDateTime ended; // invalid while it is not whole
    qint64 items = 0;
    qint64 files = 0;
    qint64 bytes = 0;    // of all its files
    qint64 newBytes = 0; // of those that it shares with no older backup
    qint64 problems = 0;

    bool isWhole() const { return ended.isValid(); }

    // Of the bundle at this path; nothing when it has none that can be read, or the folder or the file is a link.
    static std::optional<BackupRecord> of(const QString &bundle);
    bool write(const QString &bundle, ZQError *error) const;
};
