#include "Kit/Imaging/Worker/ZQRenderSandbox.h"

#include "Kit/Files/ZQSystemFile.h"
#include "Kit/Imaging/Worker/ZQRenderCalls.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QStandardPaths>

#include <linux/landlock.h>

#include <array>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

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
    if (folder) {
        rules.allow(folder, ownFolder);
    }
    if (thumbnailed >= 0) {
        rules.allow(thumbnailed, readFile);
    }
    return rules.enter();
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

ZQRenderRestrictions zqEnterRenderSandbox(const ZQRenderNeeds &needs)
{
    constexpr rlim_t largestFile = rlim_t(1) << 31; // the largest picture
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, largestFile);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    limit(RLIMIT_AS, rlim_t(needs.memory)); // a sanitizer maps more than any computer has
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
    out.files = needs.useFileRules && restrictFiles(needs.folder, needs.thumbnailed);
    out.calls = zqRestrictCalls(out.files && needs.folder);
    return out;
}
