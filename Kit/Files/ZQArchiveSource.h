#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

// One entry of an archive as it says of itself; nothing of it is to be trusted.
struct ZQArchiveEntry
{
    enum class Kind { File, Folder, Link, Other };

    Kind kind = Kind::File;
    QByteArray name; // as in the archive, or UTF-8; null when it cannot be read
    bool isEncrypted = false;
    bool isListed = false;      // the archive has a list of its entries, which was not unpacked for this
    std::optional<qint64> size; // bytes, at least 0
    std::optional<qint64> time; // of the last change, in seconds since 1970
    int timeNanoseconds = 0;    // to add, less than a second
};

// Why there is nothing more to be had.
struct ZQArchiveEnd
{
    enum class Kind {
        Whole, // all entries came
        Encrypted,
        CutOff,
        Changed, // what came out is not what went in
        Damaged,
        Stopped, // who reads it ended, and so for the next three
        TookTooLong,
        TooMuchMemory,
        Cancelled,
        Unavailable, // nobody can read archives; `text` is a sentence for a person
    };

    Kind kind = Kind::Whole;
    QString text; // of whoever read it, for what was found damaged; may be empty
};

// Reads archives, one after another, from the first entry to the last, forwards only. One thread.
class ZQArchiveSource
{
public:
    virtual ~ZQArchiveSource() = default;

    // Turns to the beginning of the archive at `path`.
    virtual bool open(const QString &path, ZQArchiveEnd *end) = 0;
    virtual std::optional<ZQArchiveEntry> nextEntry(ZQArchiveEnd *end) = 0;

    struct Block
    {
        QByteArrayView bytes; // valid until the next call
        bool isLast = false;
    };
    // What the entry at hand holds, piece by piece.
    virtual std::optional<Block> nextBlock(ZQArchiveEnd *end) = 0;
};
