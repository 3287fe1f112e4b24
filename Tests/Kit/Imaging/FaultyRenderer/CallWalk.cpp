#include "Tests/Kit/Imaging/FaultyRenderer/CallWalk.h"

#include "Kit/Imaging/Worker/ZQRenderSandbox.h"

#include <seccomp.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// A sixth argument that no caller but this one has.
constexpr unsigned mark = 0x5a515157;
constexpr int wouldBeCarriedOut = EXFULL;
constexpr long mostCalls = 600;
constexpr long otherKindOfCall = 0x40000000; // of the same processor

// Answers calls with the mark by an error instead of carrying them out. Of two filters that answer with an error, the
// one that was loaded later has its way: what the worker's own refuses still comes back with that one's error.
bool loadProbe()
{
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[5])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, mark, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | wouldBeCarriedOut),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog probe{sizeof program / sizeof program[0], program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &probe) == 0;
}

bool isAllowed(long call, long first = 0, long second = 0, long third = 0)
{
    return ::syscall(call, first, second, third, 0L, 0L, long(mark)) < 0 && errno == wouldBeCarriedOut;
}

// The system's own, which it asks no filter about: who makes one is ended at once.
bool isSystemsOwn(long call)
{
#ifdef __x86_64__
    constexpr long returnProbe = 335;
    constexpr long probe = 336;
    return call == returnProbe || call == probe;
#else
    return call < 0;
#endif
}

struct Row
{
    const char *what;
    long call;
    long first = 0;
    long second = 0;
    long third = 0;
};

const Row rows[] = {
    {"openat:read", SYS_openat, AT_FDCWD, 0, O_RDONLY | O_CLOEXEC},
    {"openat:write", SYS_openat, AT_FDCWD, 0, O_WRONLY},
    {"openat:both", SYS_openat, AT_FDCWD, 0, O_RDWR},
    {"openat:create", SYS_openat, AT_FDCWD, 0, O_RDONLY | O_CREAT},
    {"openat:cut", SYS_openat, AT_FDCWD, 0, O_RDONLY | O_TRUNC},
    {"openat:unnamed", SYS_openat, AT_FDCWD, 0, O_TMPFILE | O_RDWR},
#ifdef SYS_open
    {"open:read", SYS_open, 0, O_RDONLY | O_DIRECTORY},
    {"open:write", SYS_open, 0, O_WRONLY},
    {"open:create", SYS_open, 0, O_RDONLY | O_CREAT},
#endif
    {"clone:thread", SYS_clone, CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND | CLONE_THREAD},
    {"clone:process", SYS_clone, 17},
    {"clone:namespace", SYS_clone, CLONE_NEWUSER | 17},
    {"clone:namespace thread", SYS_clone, CLONE_NEWUSER | CLONE_THREAD},
    {"clone:sibling", SYS_clone, CLONE_PARENT | 17},
    {"prlimit64:itself", SYS_prlimit64, 0, RLIMIT_CPU},
    {"prlimit64:parent", SYS_prlimit64, ::getppid(), RLIMIT_CPU},
    {"kill:itself", SYS_kill, ::getpid(), 9},
    {"kill:parent", SYS_kill, ::getppid(), 9},
    {"kill:all", SYS_kill, -1, 9},
    {"tgkill:itself", SYS_tgkill, ::getpid(), ::getpid(), 6},
    {"tgkill:parent", SYS_tgkill, ::getppid(), ::getppid(), 6},
    {"ioctl:terminal", SYS_ioctl, 0, 0x5401},
    {"ioctl:typing", SYS_ioctl, 0, TIOCSTI},
    {"ioctl:typing, longer", SYS_ioctl, 0, long(TIOCSTI) | (1L << 32)},
    {"fcntl:copy", SYS_fcntl, 0, F_DUPFD_CLOEXEC},
    {"fcntl:signals", SYS_fcntl, 0, F_SETOWN},
    {"prctl:name", SYS_prctl, PR_SET_NAME},
    {"prctl:tracer", SYS_prctl, PR_SET_PTRACER},
};

std::string allowedCalls()
{
    std::string out;
    out.reserve(1 << 16);
    for (long call = 0; call < mostCalls; ++call) {
        if (isSystemsOwn(call)) {
            continue;
        }
        if (isAllowed(call)) {
            char *const name = seccomp_syscall_resolve_num_arch(SCMP_ARCH_NATIVE, int(call));
            out += name ? name : "#" + std::to_string(call);
            out += '\n';
            std::free(name);
        }
        if (isAllowed(call | otherKindOfCall)) {
            out += "other #" + std::to_string(call) + '\n';
        }
    }
    for (const Row &row : rows) {
        if (isAllowed(row.call, row.first, row.second, row.third)) {
            out += std::string(row.what) + '\n';
        }
    }
    return out;
}

} // namespace

int walkCalls(const char *folder, bool useFileRules)
{
    if (!loadProbe()) {
        std::fprintf(stderr, "this system has no seccomp\n");
        return EXIT_FAILURE;
    }
    const ZQRenderRestrictions restrictions =
        zqEnterRenderSandbox({.folder = folder, .memory = 1L << 34, .useFileRules = useFileRules});
    if (!restrictions.calls || restrictions.files != useFileRules) {
        std::fprintf(stderr, "the worker could not be confined\n");
        return EXIT_FAILURE;
    }
    const std::string allowed = allowedCalls();
    // The mark stays in its register where a call takes fewer arguments.
    ::syscall(SYS_write, STDOUT_FILENO, allowed.data(), allowed.size(), 0L, 0L, 0L);
    ::syscall(SYS_exit_group, EXIT_SUCCESS, 0L, 0L, 0L, 0L, 0L);
    return EXIT_SUCCESS;
}
