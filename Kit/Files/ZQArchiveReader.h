#pragma once

#include "Kit/Files/ZQArchiveSource.h"
#include "Kit/Files/ZQExtractionFolder.h"
#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <functional>

// How much may come out of an archive, everything that lies packed within it included.
struct ZQArchiveLimits
{
    qint64 totalSize = qint64(16) << 30; // bytes
    qint64 entryCount = 100000;
    qint64 ratio = 250;      // of what came out to the archive's own size; counts from `ratioFreeSize` on
    qint64 nestingDepth = 8; // archives in archives

    qint64 ratioFreeSize = qint64(256) << 20; // bytes; small files of one colour shrink very far
};

// Unpacks archives that come from anywhere: a source, which reads them elsewhere, says what is in them, and this
// decides what of it is written. One reader unpacks an archive and then, by further calls, the archives that were in
// it: the limits hold for all together. One thread.
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
        Unavailable, // there is nobody who could read it
    };

    // `source` outlives the reader. `isCancelled` is asked between blocks.
    ZQArchiveReader(ZQArchiveSource &source, const ZQArchiveLimits &limits, std::function<bool()> isCancelled = {});

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
    bool extractEntry(const ZQArchiveEntry &entry, ZQExtractionFolder &folder, ZQError *error);
    bool extractFile(const ZQArchiveEntry &entry, const QString &name, const QStringList &components,
                     ZQExtractionFolder &folder, ZQError *error);
    bool copyData(int descriptor, ZQError *error);
    bool checkTotalSize(ZQError *error) const;
    bool mayGoOn(ZQError *error) const;
    bool countEntry(ZQError *error);
    bool isOpen(const ZQArchiveEntry &entry, ZQError *error) const; // not encrypted
    void skip(const QString &name, const QString &reason);
    QString nameOfEntry(const ZQArchiveEntry &entry) const; // null when it cannot be read
    ZQError failure(const ZQArchiveEnd &end) const;
    ZQError damage(const QString &what) const;
    static ZQError cancellation();
    static ZQError writeError(int code);

    ZQArchiveSource &m_source;
    const ZQArchiveLimits m_limits;
    const std::function<bool()> m_isCancelled;
    QString m_name;        // of the archive at hand
    QByteArray m_encoding; // of its names
    qint64 m_outermostSize = 0;
    qint64 m_totalSize = 0;
    qint64 m_entryCount = 0;
    qint64 m_skippedCount = 0;
    QString m_firstSkipped;
};
