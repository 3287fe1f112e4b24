#pragma once

#include "Kit/Files/ZQArchiveHeaders.h"
#include "Kit/Files/ZQExtractionFolder.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <functional>

struct archive;
struct archive_entry;

// How much may come out of an archive, everything that lies packed within it included.
struct ZQArchiveLimits
{
    qint64 totalSize = qint64(16) << 30; // bytes
    qint64 entryCount = 100000;
    qint64 ratio = 250;      // of what came out to the archive's own size; counts from `ratioFreeSize` on
    qint64 nestingDepth = 8; // archives in archives

    qint64 ratioFreeSize = qint64(256) << 20; // bytes; small files of one colour shrink very far
};

// Unpacks zip and rar archives (RAR 5 too) that come from anywhere. One reader unpacks an archive and then, by further
// calls, the archives that were in it: the limits hold for all together. One thread.
//
// Files, folders and their times come out. Links and devices are left out, as are names that lead elsewhere; what a
// desktop keeps beside files (`__MACOSX`, `.DS_Store`) is dropped without a word.
class ZQArchiveReader
{
public:
    static inline const QString errorDomain = QStringLiteral("ZQArchive");
    enum ErrorCode {
        Unreadable = 1, // no archive, a damaged or an incomplete one
        Encrypted,
        TooMuch, // a limit was reached
        DiskFull,
        NotWritable,
        Cancelled,
    };

    // `isCancelled` is asked between blocks.
    explicit ZQArchiveReader(const ZQArchiveLimits &limits, std::function<bool()> isCancelled = {});

    // Unpacks `path` into `folder`, which is made and must not exist. `depth` is 0 for the archive itself, 1 for one
    // found in it, and so on. After a failure there is no such folder, and the error's text says what to do.
    bool extractArchive(const QString &path, const QString &folder, int depth = 0, ZQError *error = nullptr);

    // Entries of all archives so far that were left out on their own, with a sentence about the first one.
    qint64 skippedCount() const { return m_skippedCount; }
    QString firstSkipped() const { return m_firstSkipped; }
    qint64 extractedSize() const { return m_totalSize; } // bytes

private:
    bool survey(const QString &path, ZQError *error);
    bool extractEntries(const QString &path, ZQExtractionFolder &folder, ZQError *error);
    bool extractEntry(archive *reader, archive_entry *entry, ZQExtractionFolder &folder, ZQError *error);
    bool copyData(archive *reader, int descriptor, ZQError *error);
    bool mayGoOn(ZQError *error) const;
    bool countEntry(ZQError *error);
    bool isOpen(archive_entry *entry, ZQError *error) const; // not encrypted
    void skip(const QString &name, const QString &reason);
    QString nameOfEntry(archive_entry *entry) const; // null when it cannot be read
    ZQError failure(archive *reader) const;
    ZQError damage(const QString &what) const;
    static ZQError writeError(int code);

    const ZQArchiveLimits m_limits;
    const std::function<bool()> m_isCancelled;
    QString m_name;        // of the archive at hand
    QByteArray m_encoding; // of its names
    ZQArchiveHeaders m_headers;
    std::optional<quint32> m_checksum; // of the entry at hand
    qint64 m_outermostSize = 0;
    qint64 m_totalSize = 0;
    qint64 m_entryCount = 0;
    qint64 m_skippedCount = 0;
    QString m_firstSkipped;
    QByteArray m_block;
};
