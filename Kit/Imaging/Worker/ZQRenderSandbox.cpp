#include "Kit/Imaging/Worker/ZQRenderSandbox.h"

#include "Kit/Files/ZQSystemFile.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QStandardPaths>

#include <linux/landlock.h>
#include <seccomp.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

// Known to newer kernels than the headers may be.
constexpr quint64 accessTruncate = quint64(1) << 14;
constexpr quint64 accessDevice = quint64(1) << 15;
constexpr quint64 networkBind = quint64(1) << 0;
constexpr quint64 networkConnect = quint64(1) << 1;
constexpr quint64 scopeSockets = quint64(1) << 0;
constexpr quint64 scopeSignals = quint64(1) << 1;

constexpr quint64 readFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr quint64 readFolder = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr quint64 readAndRun = readFolder | LANDLOCK_ACCESS_FS_EXECUTE;
constexpr quint64 fileRights = LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE |
                               LANDLOCK_ACCESS_FS_READ_FILE | accessTruncate | accessDevice;
constexpr quint64 ownFolder = readFolder | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                              LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_DIR |
                              LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SYM | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                              accessTruncate;
// What is said to be restricted by each version of the interface, which the first versions do not know.
constexpr quint64 everyAccessOfFirst = (quint64(LANDLOCK_ACCESS_FS_MAKE_SYM) << 1) - 1;

struct Place
{
    const char *path;
    quint64 access;
};

// Programs, libraries and their data; nothing of any person's.
constexpr std::array systemPlaces{
    Place{"/usr", readAndRun},
    Place{"/lib", readAndRun},
    Place{"/lib32", readAndRun},
    Place{"/lib64", readAndRun},
    Place{"/bin", readAndRun},
    Place{"/sbin", readAndRun},
    Place{"/opt", readAndRun},
    Place{"/nix/store", readAndRun},
    Place{"/gnu/store", readAndRun},
    Place{"/etc/fonts", readFolder},
    Place{"/etc/ghostscript", readFolder},
    Place{"/etc/ImageMagick-6", readFolder},
    Place{"/etc/ImageMagick-7", readFolder},
    Place{"/etc/ld.so.cache", readFile},
    Place{"/etc/ld.so.conf", readFile},
    Place{"/etc/ld.so.conf.d", readFolder},
    Place{"/etc/ld.so.preload", readFile},
    Place{"/etc/localtime", readFile},
    Place{"/etc/locale.alias", readFile},
    Place{"/etc/mime.types", readFile},
    Place{"/etc/paperspecs", readFile},
    Place{"/etc/papersize", readFile},
    Place{"/var/lib/ghostscript", readFolder},
    Place{"/var/cache/fontconfig", readFolder},
    Place{"/sys/devices/system/cpu", readFolder},
    Place{"/proc/cpuinfo", readFile},
    Place{"/proc/meminfo", readFile},
    Place{"/proc/stat", readFile},
    Place{"/proc/filesystems", readFile},
    Place{"/dev/null", readFile | LANDLOCK_ACCESS_FS_WRITE_FILE | accessDevice | accessTruncate},
    Place{"/dev/zero", readFile},
    Place{"/dev/random", readFile},
    Place{"/dev/urandom", readFile},
};

int landlockVersion()
{
    return int(::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

quint64 accessesOfVersion(int version)
{
    return everyAccessOfFirst | (version >= 2 ? quint64(LANDLOCK_ACCESS_FS_REFER) : 0) |
           (version >= 3 ? accessTruncate : 0) | (version >= 5 ? accessDevice : 0);
}

// A set of rules: what no rule allows is forbidden from `enter` on.
class FileRules
{
public:
    explicit FileRules(int version) : m_handled(accessesOfVersion(version))
    {
        struct Attributes
        {
            quint64 files;
            quint64 network;
            quint64 scope;
        };
        const Attributes attributes{m_handled, version >= 4 ? networkBind | networkConnect : 0,
                                    version >= 6 ? scopeSockets | scopeSignals : 0};
        const size_t size = version >= 6 ? sizeof(Attributes) : version >= 4 ? sizeof(quint64) * 2 : sizeof(quint64);
        m_rules = ZQFileDescriptor(int(::syscall(SYS_landlock_create_ruleset, &attributes, size, 0)));
    }

    void allow(const QByteArray &path, quint64 access)
    {
        const ZQFileDescriptor place(::open(path.constData(), O_PATH | O_CLOEXEC));
        if (place.isOpen()) {
            allow(place.get(), access);
        }
    }

    void allow(int descriptor, quint64 access)
    {
        struct stat status
        {
        };
        if (::fstat(descriptor, &status) != 0) {
            return;
        }
        const quint64 possible = S_ISDIR(status.st_mode) ? m_handled : m_handled & fileRights;
        const landlock_path_beneath_attr rule{access & possible, descriptor};
        ::syscall(SYS_landlock_add_rule, m_rules.get(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    }

    bool enter() const { return m_rules.isOpen() && ::syscall(SYS_landlock_restrict_self, m_rules.get(), 0) == 0; }

private:
    quint64 m_handled;
    ZQFileDescriptor m_rules;
};

// What drawing takes from a person's folders: fonts, and which programs draw what.
QStringList personalPlaces()
{
    QStringList out;
    for (const QString &data : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation)) {
        for (const char *name : {"/thumbnailers", "/mime", "/fonts"}) {
            out.append(data + QLatin1String(name));
        }
    }
    out.append(QDir::homePath() + QStringLiteral("/.fonts"));
    out.append(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/fontconfig"));
    out.append(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/fontconfig"));
    return out;
}

bool restrictFiles(const char *folder, int thumbnailed)
{
    const int version = landlockVersion();
    if (version < 1) {
        return false;
    }
    FileRules rules(version);
    for (const Place &place : systemPlaces) {
        rules.allow(place.path, place.access);
    }
    for (const QString &path : personalPlaces()) {
        rules.allow(QFile::encodeName(path), readFolder);
    }
    for (const auto place : {QLibraryInfo::PluginsPath, QLibraryInfo::LibrariesPath}) {
        rules.allow(QFile::encodeName(QLibraryInfo::path(place)), readAndRun);
    }
    rules.allow(folder, ownFolder);
    if (thumbnailed >= 0) {
        rules.allow(thumbnailed, readFile);
    }
    return rules.enter();
}

// What no decoder, and no program that draws, has any use for: the network, other processes, the system itself, and
// what would get around the rules for files.
constexpr std::array forbiddenCalls{
    "socket",
    "connect",
    "bind",
    "listen",
    "accept",
    "accept4",
    "ptrace",
    "process_vm_readv",
    "process_vm_writev",
    "process_madvise",
    "pidfd_getfd",
    "kcmp",
    "mount",
    "umount",
    "umount2",
    "pivot_root",
    "chroot",
    "unshare",
    "setns",
    "open_tree",
    "move_mount",
    "fsopen",
    "fsconfig",
    "fsmount",
    "fspick",
    "mount_setattr",
    "kexec_load",
    "kexec_file_load",
    "init_module",
    "finit_module",
    "delete_module",
    "bpf",
    "perf_event_open",
    "keyctl",
    "add_key",
    "request_key",
    "userfaultfd",
    "io_uring_setup",
    "io_uring_enter",
    "io_uring_register",
    "reboot",
    "swapon",
    "swapoff",
    "sethostname",
    "setdomainname",
    "settimeofday",
    "clock_settime",
    "adjtimex",
    "clock_adjtime",
    "acct",
    "quotactl",
    "syslog",
    "open_by_handle_at",
    "name_to_handle_at",
    "truncate",
    "chmod",
    "fchmod",
    "fchmodat",
    "chown",
    "lchown",
    "fchown",
    "fchownat",
    "setxattr",
    "lsetxattr",
    "fsetxattr",
    "removexattr",
    "lremovexattr",
    "fremovexattr",
    "utime",
    "utimes",
    "futimesat",
    "utimensat",
    "mknod",
    "mknodat",
    "personality",
    "shmget",
    "msgget",
    "semget",
    "mq_open",
    "fanotify_init",
    "lookup_dcookie",
    "vhangup",
    "ioperm",
    "iopl",
    "nfsservctl",
};

bool restrictCalls()
{
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ALLOW), seccomp_release);
    if (!filter) {
        return false;
    }
    for (const char *name : forbiddenCalls) {
        const int call = seccomp_syscall_resolve_name(name);
        if (call != __NR_SCMP_ERROR) { // one this system never had
            seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), call, 0);
        }
    }
    // New threads and processes, but no new namespaces. The newer call hides its flags; the library then takes the
    // older.
    constexpr std::array<scmp_datum_t, 7> namespaces{CLONE_NEWUSER, CLONE_NEWNS,  CLONE_NEWPID,   CLONE_NEWNET,
                                                     CLONE_NEWIPC,  CLONE_NEWUTS, CLONE_NEWCGROUP};
    for (const scmp_datum_t flag : namespaces) {
        seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
                         SCMP_A0(SCMP_CMP_MASKED_EQ, flag, flag));
    }
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
    // Typing into the terminal that the log goes to.
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(ioctl), 1,
                     SCMP_A1(SCMP_CMP_MASKED_EQ, 0xffffffffU, TIOCSTI));
    return seccomp_load(filter.get()) == 0;
}

void limit(__rlimit_resource resource, rlim_t value)
{
    rlimit now{};
    if (::getrlimit(resource, &now) == 0) {
        const rlim_t most = qMin(value, now.rlim_max);
        const rlimit wanted{most, most};
        ::setrlimit(resource, &wanted);
    }
}

} // namespace

ZQRenderRestrictions zqEnterRenderSandbox(const char *folder, qint64 memory, int thumbnailed)
{
    constexpr rlim_t largestFile = rlim_t(1) << 31; // the largest picture
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, largestFile);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    limit(RLIMIT_AS, rlim_t(memory)); // a sanitizer maps more than any computer has
#else
    static_cast<void>(memory);
#endif
    // Where memory runs out for the whole computer, this process goes first.
    QFile score(QStringLiteral("/proc/self/oom_score_adj"));
    if (score.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        score.write("600");
    }
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        return {};
    }
    ZQRenderRestrictions out;
    out.files = restrictFiles(folder, thumbnailed);
    out.calls = restrictCalls();
    return out;
}
