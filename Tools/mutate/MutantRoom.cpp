// Linked into each test program of a mutation run. A fault can be one that deletes or kills what it should not: before
// main, the program (and so whatever it starts) gives up writing outside its own folder and ending every process.
// A listener notes for each test which faults' places it reached.

#include "ZQMutant.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#ifndef LANDLOCK_ACCESS_FS_REFER
#define LANDLOCK_ACCESS_FS_REFER (1ULL << 13)
#endif
#ifndef LANDLOCK_ACCESS_FS_TRUNCATE
#define LANDLOCK_ACCESS_FS_TRUNCATE (1ULL << 14)
#endif

namespace {

[[noreturn]] void giveUp(const char *what)
{
    std::perror(what);
    ::_exit(99);
}

bool allowWriting(int rules, __u64 rights, const char *path)
{
    landlock_path_beneath_attr beneath{};
    beneath.allowed_access = rights;
    beneath.parent_fd = ::open(path, O_PATH | O_CLOEXEC);
    const bool isAllowed =
        beneath.parent_fd >= 0 && ::syscall(SYS_landlock_add_rule, rules, LANDLOCK_RULE_PATH_BENEATH, &beneath, 0) == 0;
    ::close(beneath.parent_fd);
    return isAllowed;
}

// Of a list with colons between.
bool allowWritingWithin(int rules, __u64 rights, std::string rooms)
{
    char *rest = rooms.data();
    while (const char *room = ::strsep(&rest, ":")) {
        if (!allowWriting(rules, rights, room)) {
            return false;
        }
    }
    return true;
}

void keepWritingWithin(const std::string &rooms)
{
    // Without the right to refer (version 2) nothing could be moved from one folder to another.
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 2) {
        giveUp("this kernel cannot keep faults from the person's files (Landlock 2)");
    }
    landlock_ruleset_attr attributes{};
    attributes.handled_access_fs =
        LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
        LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
        LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_SYM |
        LANDLOCK_ACCESS_FS_REFER | (version >= 3 ? LANDLOCK_ACCESS_FS_TRUNCATE : 0);
    const int rules = int(::syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0));
    if (rules < 0 || !allowWritingWithin(rules, attributes.handled_access_fs, rooms) ||
        !allowWriting(rules, attributes.handled_access_fs, "/dev") ||
        !allowWriting(rules, attributes.handled_access_fs, "/proc") ||
        ::syscall(SYS_landlock_restrict_self, rules, 0) != 0) {
        giveUp("landlock");
    }
    ::close(rules);
}

bool write(const char *path, const std::string &text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten = file >= 0 && ::write(file, text.data(), text.size()) == ssize_t(text.size());
    ::close(file);
    return isWritten;
}

// Some tests, and what they are written with, use /tmp whatever TMPDIR says. Where the system lets nobody have one of
// their own, those tests fail without a fault, and are left out.
bool takeOwnTemporaryFolder(const char *folder)
{
    const std::string user = std::to_string(::geteuid()) + ' ' + std::to_string(::geteuid()) + " 1";
    const std::string group = std::to_string(::getegid()) + ' ' + std::to_string(::getegid()) + " 1";
    if (::unshare(CLONE_NEWNS) != 0) {
        const bool isAlone = ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && write("/proc/self/setgroups", "deny") &&
                             write("/proc/self/uid_map", user) && write("/proc/self/gid_map", group);
        if (!isAlone) {
            return false;
        }
    }
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount(folder, "/tmp", nullptr, MS_BIND, nullptr) == 0;
}

void refuseEndingEverything()
{
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_kill, 0, 4),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0xffffffffU, 1, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 1, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog filter{sizeof program / sizeof *program, program};
    if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        giveUp("seccomp");
    }
}

class ReachListener : public testing::EmptyTestEventListener
{
public:
    explicit ReachListener(const char *path) : m_log(std::fopen(path, "ae")) {}

    void OnTestStart(const testing::TestInfo &) override { forget(); }

    void OnTestEnd(const testing::TestInfo &test) override
    {
        if (!m_log) {
            return;
        }
        std::fprintf(m_log, "%s.%s\t%s\t%lld\t", test.test_suite_name(), test.name(),
                     test.result()->Failed() ? "failed" : "passed",
                     static_cast<long long>(test.result()->elapsed_time()));
        const volatile unsigned char *reached = zqMutants::theSwitch().reached;
        for (int number = 1; reached && number < zqMutants::mostMutants; ++number) {
            if (reached[number]) {
                std::fprintf(m_log, "%d ", number);
            }
        }
        std::fprintf(m_log, "\n");
        std::fflush(m_log);
    }

private:
    static void forget()
    {
        volatile unsigned char *reached = zqMutants::theSwitch().reached;
        for (int number = 0; reached && number < zqMutants::mostMutants; ++number) {
            reached[number] = 0;
        }
    }

    std::FILE *m_log;
};

__attribute__((constructor)) void enterRoom()
{
    if (const char *rooms = std::getenv("ZELTO_MUTANT_ROOMS")) {
        if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
            giveUp("no new privileges");
        }
        const char *temporary = std::getenv("ZELTO_MUTANT_TMP");
        const bool hasOwn = temporary && takeOwnTemporaryFolder(temporary);
        keepWritingWithin(std::string(rooms) + (hasOwn ? ":/tmp" : ""));
        refuseEndingEverything();
    }
    if (const char *log = std::getenv("ZELTO_MUTANT_LOG")) {
        testing::UnitTest::GetInstance()->listeners().Append(new ReachListener(log)); // the list owns it
    }
}

} // namespace
