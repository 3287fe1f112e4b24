#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>

#include <optional>

// What the library that unpacks archives does not check: whether an archive is there to its end, and, for rar archives,
// whether what came out is what went in.
struct ZQArchiveHeaders
{
    bool isCutOff = false;
    // CRC-32 of each entry's contents, folders included, in the order of the archive; nothing where it is not known.
    QList<std::optional<quint32>> checksums;

    // Reads headers only. What is no archive, or has its headers encrypted, gives the defaults. Any thread.
    static ZQArchiveHeaders headersOfFile(QFile &file);
};

// CRC-32 of `data` after what gave `crc`; 0 to begin with.
quint32 zqCRC32(quint32 crc, const char *data, qsizetype size);
