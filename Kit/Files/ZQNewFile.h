#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <optional>

// A file being written that takes its name only when it is whole, and never over a file that is there. It lies beside
// its place under another name until `place`, and is removed when that was not reached. Nothing is flushed to disk:
// whoever needs that flushes `descriptor` before, or calls `zqSyncFileSystem` once for all files. One thread at a time.
class ZQNewFile
{
public:
    // Open for reading and writing. Nothing, with an error that names `path`, when it cannot be made.
    static std::optional<ZQNewFile> make(const QString &path, ZQError *error, mode_t mode = 0666);
    ZQNewFile(ZQNewFile &&other) noexcept;
    ZQNewFile &operator=(ZQNewFile &&) = delete;
    ~ZQNewFile();

    int descriptor() const { return m_file.get(); }
    // Ends the writing. The error has the code EEXIST when the name was taken meanwhile.
    bool place(ZQError *error);

private:
    ZQNewFile() = default;

    QString m_path;
    QByteArray m_temporary; // empty: there is nothing to remove
    ZQFileDescriptor m_file;
};

// One with this content, of which nothing is left when that fails. Not flushed to disk.
bool zqWriteNewFile(const QString &path, const QByteArray &content, ZQError *error);
