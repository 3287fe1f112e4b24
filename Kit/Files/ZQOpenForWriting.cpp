#include "Kit/Files/ZQOpenForWriting.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>

bool zqIsOpenForWriting(const QString &path)
{
    const ZQFileDescriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    // Who opens the file for writing in the moment the lease is held has the kernel send a signal; the usual one ends
    // the process, this one nobody notices.
    if (!file.isOpen() || ::fcntl(file.get(), F_SETSIG, SIGURG) != 0) {
        return false;
    }
    if (::fcntl(file.get(), F_SETLEASE, F_RDLCK) != 0) {
        return errno == EAGAIN;
    }
    ::fcntl(file.get(), F_SETLEASE, F_UNLCK);
    return false;
}
