#include "Tests/Support/FlushWatch.h"

#include <QFile>

#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>
#include <utility>

namespace {

std::mutex mutex;
FlushWatch::Seen watcher;

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

// The linker takes a program's own function before the C library's.
extern "C" int fdatasync(int file)
{
    {
        const std::lock_guard lock(mutex);
        if (watcher) {
            watcher(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(file)));
        }
    }
    return int(syscall(SYS_fdatasync, file));
}
