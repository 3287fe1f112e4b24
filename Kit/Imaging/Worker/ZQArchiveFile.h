#pragma once

#include "Kit/Files/ZQArchiveSource.h"
#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Imaging/Worker/ZQArchiveHeaders.h"

#include <memory>

struct archive;
struct archive_entry;

// A zip or rar archive (RAR 5 too), read from its first entry to its last. Where the library that unpacks does not look
// whether the archive is whole and its contents are what went in, this does. One thread, in a worker only.
class ZQArchiveFile
{
public:
    explicit ZQArchiveFile(ZQFileDescriptor file);
    ~ZQArchiveFile();
    ZQArchiveFile(const ZQArchiveFile &) = delete;
    ZQArchiveFile &operator=(const ZQArchiveFile &) = delete;

    // Nothing, with `end` filled, after the last one and after a failure.
    std::optional<ZQArchiveEntry> nextEntry(ZQArchiveEnd *end);
    // Fills `data` with what comes next of the entry at hand, less only when that is all; -1 with `end` filled.
    qint64 read(char *data, qint64 size, bool *isLast, ZQArchiveEnd *end);

private:
    ZQArchiveEnd failure() const;

    ZQFileDescriptor m_file;
    ZQArchiveHeaders m_headers;
    std::unique_ptr<archive, int (*)(archive *)> m_reader;
    qsizetype m_index = -1;
    quint32 m_checksum = 0; // of what was read of the entry at hand
};
