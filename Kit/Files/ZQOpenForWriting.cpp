#include "Kit/Files/ZQOpenForWriting.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <iterator>

namespace {

// A server grants leases to whom it trusts with the file at that moment, so that a refusal says nothing of writers.
bool isOfServer(int file)
{
    constexpr unsigned int servers[] = {NFS_SUPER_MAGIC, 0xFF534D42 /* CIFS */, 0xFE534D42 /* SMB2 */};
    struct statfs system = {};
    return ::fstatfs(file, &system) == 0 && std::find(std::begin(servers), std::end(servers),
                                                      static_cast<unsigned int>(system.f_type)) != std::end(servers);
}

} // namespace

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
        return errno == EAGAIN && !isOfServer(file.get());
    }
    ::fcntl(file.get(), F_SETLEASE, F_UNLCK);
    return false;
}
