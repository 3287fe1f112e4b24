#include "Kit/Imaging/Worker/ZQRenderCalls.h"

#include <seccomp.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr std::array everyWorker{
    // memory
    "brk", "mmap", "munmap", "mprotect", "mremap", "madvise", "mincore", "msync", "membarrier", "memfd_create",
    // what is open already, and reading
    "read", "readv", "pread64", "preadv", "preadv2", "write", "writev", "pwrite64", "pwritev", "pwritev2", "lseek",
    "close", "close_range", "dup", "dup2", "dup3", "pipe", "pipe2", "fsync", "fdatasync", "ftruncate", "fallocate",
    "fadvise64", "readahead", "sendfile", "copy_file_range", "sendmsg", "recvmsg", "getpeername",
    // names, sizes and folders
    "stat", "lstat", "fstat", "newfstatat", "statx", "statfs", "fstatfs", "access", "faccessat", "faccessat2",
    "readlink", "readlinkat", "getdents", "getdents64", "getcwd", "chdir", "fchdir", "umask",
    // waiting
    "poll", "ppoll", "select", "pselect6", "epoll_create", "epoll_create1", "epoll_ctl", "epoll_wait", "epoll_pwait",
    "epoll_pwait2", "eventfd", "eventfd2", "futex", "pause", "nanosleep", "clock_nanosleep", "restart_syscall",
    // time and chance
    "time", "times", "gettimeofday", "clock_gettime", "clock_getres", "getrandom", "alarm", "getitimer", "setitimer",
    // this process and its threads
    "exit", "exit_group", "getpid", "gettid", "getppid", "getpgrp", "getuid", "geteuid", "getgid", "getegid",
    "getresuid", "getresgid", "getgroups", "getcpu", "getrusage", "getrlimit", "setrlimit", "sysinfo", "uname",
    "rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "rt_sigpending", "rt_sigsuspend", "rt_sigtimedwait",
    "sigaltstack", "set_tid_address", "set_robust_list", "rseq", "arch_prctl", "sched_yield", "sched_getaffinity",
    "sched_getparam", "sched_getscheduler", "sched_get_priority_max", "sched_get_priority_min", "wait4", "waitid"};

// What rules for files keep to the worker's own folder and the system's programs.
constexpr std::array withFileRules{"open",      "openat",   "creat",    "rename",  "renameat", "renameat2",
                                   "unlink",    "unlinkat", "mkdir",    "mkdirat", "rmdir",    "symlink",
                                   "symlinkat", "execve",   "execveat", "fork",    "vfork"};

constexpr std::array fileControls{
    F_DUPFD,  F_DUPFD_CLOEXEC, F_GETFD,     F_SETFD,      F_GETFL, F_SETFL, F_GETLK,      F_SETLK,
    F_SETLKW, F_ADD_SEALS,     F_GET_SEALS, 36 /* OFD */, 37,      38,      F_GETPIPE_SZ, F_SETPIPE_SZ};
// Questions only: nothing is typed into the terminal that the log goes to.
constexpr std::array deviceControls{0x5401 /* TCGETS */, TIOCGWINSZ, TIOCGPGRP, FIONREAD, FIOCLEX, FIONCLEX};
constexpr std::array processControls{PR_SET_NAME, PR_GET_NAME, PR_SET_NO_NEW_PRIVS,
                                     0x53564d41 /* PR_SET_VMA, names of memory */};

constexpr scmp_datum_t word = 0xffffffffU; // as much of an argument as the system looks at
constexpr scmp_datum_t openForWriting = O_WRONLY | O_RDWR | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);
// Namespaces, and a child that would be its starter's sibling.
constexpr scmp_datum_t strangeChildren = CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC |
                                         CLONE_NEWUTS | CLONE_NEWCGROUP | CLONE_PARENT;

class CallList
{
public:
    CallList() : m_filter(seccomp_init(SCMP_ACT_ERRNO(ENOSYS)), seccomp_release)
    {
        m_isWhole = m_filter && seccomp_attr_set(m_filter.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(ENOSYS)) == 0;
    }

    // One that this kind of computer does not have needs no rule.
    void allow(const char *name, std::initializer_list<scmp_arg_cmp> arguments = {})
    {
        const int call = seccomp_syscall_resolve_name(name);
        if (m_isWhole && call >= 0) {
            m_isWhole = seccomp_rule_add_array(m_filter.get(), SCMP_ACT_ALLOW, call, unsigned(arguments.size()),
                                               arguments.begin()) == 0;
        }
    }

    template <class Values>
    void allowEach(const char *name, unsigned argument, const Values &values)
    {
        for (const auto value : values) {
            allow(name, {SCMP_CMP(argument, SCMP_CMP_MASKED_EQ, word, scmp_datum_t(value))});
        }
    }

    bool enter() const { return m_isWhole && seccomp_load(m_filter.get()) == 0; }

private:
    std::unique_ptr<void, decltype(&seccomp_release)> m_filter;
    bool m_isWhole = false;
};

} // namespace

bool zqRestrictCalls(bool mayWrite)
{
    CallList calls;
    for (const char *name : everyWorker) {
        calls.allow(name);
    }
    calls.allowEach("fcntl", 1, fileControls);
    calls.allowEach("ioctl", 1, deviceControls);
    calls.allowEach("prctl", 0, processControls);
    // To end with the application, not to outlive it.
    calls.allow("prctl", {SCMP_A0(SCMP_CMP_MASKED_EQ, word, PR_SET_PDEATHSIG), SCMP_A1(SCMP_CMP_EQ, SIGKILL)});
    const std::array<pid_t, 2> itself{0, ::getpid()};
    calls.allowEach("prlimit64", 0, itself);
    calls.allowEach("kill", 0, itself);
    calls.allowEach("tgkill", 0, std::array{::getpid()});
    // The newer call for children hides its flags; without it, libraries take this one.
    if (mayWrite) {
        calls.allow("clone", {SCMP_A0(SCMP_CMP_MASKED_EQ, strangeChildren, 0)});
        for (const char *name : withFileRules) {
            calls.allow(name);
        }
    } else {
        calls.allow("clone", {SCMP_A0(SCMP_CMP_MASKED_EQ, strangeChildren | CLONE_THREAD, CLONE_THREAD)});
        calls.allow("open", {SCMP_A1(SCMP_CMP_MASKED_EQ, openForWriting, 0)});
        calls.allow("openat", {SCMP_A2(SCMP_CMP_MASKED_EQ, openForWriting, 0)});
    }
    return calls.enter();
}
