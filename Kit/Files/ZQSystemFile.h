#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

// Small tools of the Files kit around system calls. Paths here are the bytes the system sees.

// Owns a file descriptor.
class ZQFileDescriptor
{
public:
    explicit ZQFileDescriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ZQFileDescriptor(ZQFileDescriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    ZQFileDescriptor &operator=(ZQFileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~ZQFileDescriptor() { close(); }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    int release() { return std::exchange(m_descriptor, -1); } // to who closes it
    bool close();                                             // false when the system reports a late write error

private:
    int m_descriptor;
};

// The bytes of `path`; nothing, with an error, for an empty one and for one with a null character, which the system
// would cut short there.
std::optional<QByteArray> zqSystemPath(const QString &path, ZQError *error);

// For `execve`, with the null pointer at the end; good while the texts are.
std::vector<char *> zqPointersTo(std::vector<QByteArray> &texts);

bool zqWriteAll(int descriptor, const char *data, qint64 size); // errno tells why not

// Fills `error` from errno and answers false.
bool zqFailWithErrno(ZQError *error, const QByteArray &path);

// Copies `user.` attributes between open files, as far as the destination takes them.
void zqCopyUserAttributes(int source, int destination);

// Removes a file, a link or a folder with all it holds. Links are not followed.
void zqRemoveTree(const QByteArray &path);

// The name of a temporary file beside `path`.
QByteArray zqTemporaryNameBeside(const QByteArray &path);
