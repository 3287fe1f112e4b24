#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <QString>

#include <memory>

// Keeps a library to one process: an advisory lock on a file of the bundle that the system releases when the process
// ends, however it ends.
class LibraryLock
{
public:
    // Null with an error (domain "zelto.library") when another process holds the bundle, or the bundle cannot be
    // written.
    static std::unique_ptr<LibraryLock> lockBundle(const QString &bundleDirectory, ZQError *error);
    LibraryLock(const LibraryLock &) = delete;
    LibraryLock &operator=(const LibraryLock &) = delete;

    // Whether another process holds this bundle. Changes nothing; a bundle that does not exist is not in use.
    static bool isInUse(const QString &bundleDirectory);

    // Where the process that holds this bundle listens for others: a socket name in the runtime directory, made from
    // the bundle's canonical path.
    static QString socketNameForBundle(const QString &bundleDirectory);

    static inline const QString errorDomain = QStringLiteral("zelto.library");
    enum ErrorCode { InUse = 1, NotWritable };

private:
    explicit LibraryLock(ZQFileDescriptor file) : m_file(std::move(file)) {}
    ZQFileDescriptor m_file;
};
