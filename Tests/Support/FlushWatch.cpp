#include "Tests/Support/FlushWatch.h"

#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>
#include <utility>

namespace {

std::mutex mutex;
FlushWatch::Seen watcher;

void tell(int file)
{
    const std::lock_guard lock(mutex);
    if (watcher) {
        watcher(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
    }
}

} // namespace

FlushWatch::FlushWatch(Seen seen)
{
    const std::lock_guard lock(mutex);
    watcher = std::move(seen);
}

FlushWatch::~FlushWatch()
{
    const std::lock_guard lock(mutex);
    watcher = {};
}

// The linker takes a program's own functions before the C library's.
extern "C" {

int fdatasync(int file)
{
    tell(file);
    return int(syscall(SYS_fdatasync, file));
}

int fsync(int file)
{
    tell(file);
    return int(syscall(SYS_fsync, file));
}
}
