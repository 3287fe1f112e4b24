// The calls by which a program changes a disk, those of the toolkit and of the database included: the linker takes a
// program's own function before the C library's. Each lets the disk that a test simulates know, and does what the
// library's does, except that nothing is flushed for real: hundreds of worlds are laid out and opened, and none has to
// outlive this process.
#include "Tests/Power/SimulatedDisk.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

void tell(const char *call)
{
    if (SimulatedDisk *const disk = SimulatedDisk::current()) {
        disk->willChange(call);
    }
}

// Where a name really is; of the file itself nothing is asked, which need not be there.
QByteArray placeOf(const char *path)
{
    const QByteArray name(path);
    const qsizetype slash = name.lastIndexOf('/');
    char *const folder = realpath(slash < 0 ? "." : name.first(slash + 1).constData(), nullptr);
    const QByteArray place = QByteArray(folder) + '/' + name.mid(slash + 1);
    free(folder);
    return place;
}

int renameAt(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags)
{
    tell("rename");
    struct stat status = {};
    if (SimulatedDisk *const disk = SimulatedDisk::current();
        disk && fstatat(fromFolder, from, &status, AT_SYMLINK_NOFOLLOW) == 0) {
        disk->willRename(status.st_ino);
    }
    return int(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

int renameNames(const char *from, const char *to, unsigned flags)
{
    SimulatedDisk *const disk = SimulatedDisk::current();
    if (disk && disk->isBetweenFileSystems(placeOf(from), placeOf(to))) {
        errno = EXDEV;
        return -1;
    }
    return renameAt(AT_FDCWD, from, AT_FDCWD, to, flags);
}

int resultOfFlushing(int file)
{
    return fcntl(file, F_GETFD) < 0 ? -1 : 0;
}

} // namespace

extern "C" {

int fsync(int file)
{
    if (SimulatedDisk *const disk = SimulatedDisk::current()) {
        disk->flush(file, true);
    }
    return resultOfFlushing(file);
}

int fdatasync(int file)
{
    if (SimulatedDisk *const disk = SimulatedDisk::current()) {
        disk->flush(file, false);
    }
    return resultOfFlushing(file);
}

int syncfs(int file) noexcept
{
    if (SimulatedDisk *const disk = SimulatedDisk::current()) {
        disk->flushAll(file);
    }
    return resultOfFlushing(file);
}

int rename(const char *from, const char *to) noexcept
{
    return renameNames(from, to, 0);
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    if (fromFolder == AT_FDCWD && toFolder == AT_FDCWD) {
        return renameNames(from, to, flags);
    }
    return renameAt(fromFolder, from, toFolder, to, flags);
}

int link(const char *from, const char *to) noexcept
{
    const SimulatedDisk *const disk = SimulatedDisk::current();
    if (disk && !disk->hasLinks()) {
        errno = EPERM;
        return -1;
    }
    tell("link");
    return int(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    tell("linkat");
    return int(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

int unlink(const char *path) noexcept
{
    tell("unlink");
    return int(syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

int unlinkat(int folder, const char *path, int flags) noexcept
{
    tell("unlinkat");
    return int(syscall(SYS_unlinkat, folder, path, flags));
}

int rmdir(const char *path) noexcept
{
    tell("rmdir");
    return int(syscall(SYS_unlinkat, AT_FDCWD, path, AT_REMOVEDIR));
}

int mkdir(const char *path, mode_t mode) noexcept
{
    tell("mkdir");
    return int(syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

int ftruncate(int file, off_t size) noexcept
{
    tell("ftruncate");
    return int(syscall(SYS_ftruncate, file, size));
}

int ftruncate64(int file, off64_t size) noexcept
{
    tell("ftruncate");
    return int(syscall(SYS_ftruncate, file, size));
}

ssize_t pwrite64(int file, const void *data, size_t size, off64_t at)
{
    tell("pwrite");
    return syscall(SYS_pwrite64, file, data, size, at);
}

ssize_t pwrite(int file, const void *data, size_t size, off_t at)
{
    tell("pwrite");
    return syscall(SYS_pwrite64, file, data, size, at);
}

int lsetxattr(const char *path, const char *name, const void *value, size_t size, int flags) noexcept
{
    tell("lsetxattr");
    return int(syscall(SYS_lsetxattr, path, name, value, size, flags));
}

int lremovexattr(const char *path, const char *name) noexcept
{
    tell("lremovexattr");
    return int(syscall(SYS_lremovexattr, path, name));
}

int fsetxattr(int file, const char *name, const void *value, size_t size, int flags) noexcept
{
    tell("fsetxattr");
    return int(syscall(SYS_fsetxattr, file, name, value, size, flags));
}

} // extern "C"
