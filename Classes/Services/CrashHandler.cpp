#include "Classes/Services/CrashHandler.h"

#include "Classes/Services/CrashLog.h"
#include "Classes/Services/CrashStack.h"
#include "Classes/Services/CrashText.h"

#include <QByteArray>
#include <QFile>
#include <QtGlobal>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cxxabi.h>
#include <elf.h>
#include <exception>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <typeinfo>
#include <unistd.h>

namespace {

constexpr int caught[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// What the handler uses is all made before.
char folder[3800];
char head[1200];
char stackOfHandler[64 << 10];
struct sigaction actionsBefore[std::size(caught)];
std::terminate_handler terminateBefore = nullptr;
pid_t process = 0;
std::time_t begin = 0;
std::atomic<const char *> exceptionType = nullptr; // the mangled name of what ended the process
std::atomic<pid_t> reportingThread = 0;

const char *nameOf(int signal)
{
    switch (signal) {
    case SIGSEGV:
        return "SIGSEGV";
    case SIGBUS:
        return "SIGBUS";
    case SIGFPE:
        return "SIGFPE";
    case SIGILL:
        return "SIGILL";
    default:
        return "SIGABRT";
    }
}

char *appended(char *at, const char *text, const char *end)
{
    while (*text != '\0' && at + 1 < end) {
        *at++ = *text++;
    }
    *at = '\0';
    return at;
}

char *appended(char *at, std::uint64_t number, const char *end)
{
    char digits[24] = {};
    char *first = digits + sizeof digits - 1;
    do {
        *--first = char('0' + number % 10);
        number /= 10;
    } while (number != 0);
    return appended(at, first, end);
}

int openReport(std::time_t now)
{
    static char path[sizeof folder + 100];
    const char *const end = path + sizeof path;
    char *at = appended(path, folder, end);
    at = appended(at, "/crash-", end);
    at = appended(at, std::uint64_t(now), end);
    at = appended(at, "-", end);
    at = appended(at, std::uint64_t(process), end);
    appended(at, CrashHandler::newSuffix, end);
    return ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
}

void writeReport(int signal, const siginfo_t *info)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const int report = openReport(now.tv_sec);
    if (report < 0) {
        return;
    }
    {
        CrashText text(report);
        text.text(head).text("Time: ").number(std::uint64_t(now.tv_sec)).text(" seconds since 1970, UTC\nRan for: ");
        text.number(std::uint64_t(now.tv_sec > begin ? now.tv_sec - begin : 0)).text(" seconds\nSignal: ");
        text.text(nameOf(signal)).text(", code ").hexadecimal(std::uint32_t(info ? info->si_code : 0)).text("\n");
        if (const char *const type = exceptionType) {
            text.text("Exception: ").text(type).text("\n");
        }
        text.text("\nStack:\n");
        text.flush(); // what comes may fault itself
        CrashStack::write(text);
        text.text("\nLast messages, of which only the kind is kept:\n");
        CrashLog::write(text);
    }
    ::close(report);
}

// Unwinding takes locks of the loader, which the faulty thread may hold: a process that has failed must not hang.
void endSoon()
{
    constexpr unsigned patience = 10; // seconds
    struct sigaction usual = {};
    usual.sa_handler = SIG_DFL;
    ::sigaction(SIGALRM, &usual, nullptr);
    sigset_t alarms;
    ::sigemptyset(&alarms);
    ::sigaddset(&alarms, SIGALRM);
    ::pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
    ::alarm(patience);
}

void handle(int signal, siginfo_t *info, void * /*context*/)
{
    const int errorBefore = errno;
    const pid_t thread = ::gettid();
    pid_t reporter = 0;
    if (::getpid() == process) {
        if (reportingThread.compare_exchange_strong(reporter, thread)) {
            endSoon();
            writeReport(signal, info);
        } else if (reporter != thread) {
            for (;;) {
                ::pause(); // the process ends with the report of the other
            }
        }
    }
    for (std::size_t i = 0; i < std::size(caught); ++i) {
        ::sigaction(caught[i], &actionsBefore[i], nullptr);
    }
    ::alarm(0);
    errno = errorBefore;
    ::raise(signal); // once this returns, for who handled it before, or the system
}

// What an exception says may quote anything; its type does not.
[[noreturn]] void handleTerminate()
{
    if (const std::type_info *const type = abi::__cxa_current_exception_type()) {
        exceptionType = type->name();
    }
    if (terminateBefore) {
        terminateBefore();
    }
    std::abort();
}

// The identifier that the linker gave the program, in hexadecimal.
QByteArray buildIdentifier()
{
    QByteArray found;
    ::dl_iterate_phdr(
        [](dl_phdr_info *info, std::size_t, void *result) {
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const auto &header = info->dlpi_phdr[i];
                if (header.p_type != PT_NOTE) {
                    continue;
                }
                const auto *at = reinterpret_cast<const char *>(info->dlpi_addr + header.p_vaddr);
                const char *const end = at + header.p_memsz;
                while (end - at >= qsizetype(sizeof(ElfW(Nhdr)))) {
                    ElfW(Nhdr) note;
                    std::memcpy(&note, at, sizeof note);
                    const char *const name = at + sizeof note;
                    const char *const data = name + ((note.n_namesz + 3U) & ~3U);
                    if (note.n_type == NT_GNU_BUILD_ID && data + note.n_descsz <= end) {
                        *static_cast<QByteArray *>(result) = QByteArray(data, qsizetype(note.n_descsz)).toHex();
                        return 1;
                    }
                    at = data + ((note.n_descsz + 3U) & ~3U);
                }
            }
            return 1; // the first is the program itself
        },
        &found);
    return found;
}

void makeHead(const QString &version)
{
    utsname system = {};
    ::uname(&system);
    std::snprintf(head, sizeof head, "Zelto crash report\nVersion: %s\nBuild: %s\nQt: %s\nSystem: %s %s %s\n",
                  version.toUtf8().left(80).constData(), buildIdentifier().left(80).constData(), qVersion(),
                  system.sysname, system.release, system.machine);
}

} // namespace

bool CrashHandler::install(const QString &where, const QString &version)
{
    const QByteArray path = QFile::encodeName(where);
    if (process != 0 || path.size() >= qsizetype(sizeof folder) || ::access(path.constData(), W_OK | X_OK) != 0) {
        return false;
    }
    std::memcpy(folder, path.constData(), std::size_t(path.size()) + 1);
    makeHead(version);
    process = ::getpid();
    begin = std::time(nullptr);
    CrashStack::prepare();
    CrashLog::follow();
    terminateBefore = std::set_terminate(handleTerminate);
    stack_t stack = {};
    stack.ss_sp = stackOfHandler;
    stack.ss_size = sizeof stackOfHandler;
    ::sigaltstack(&stack, nullptr); // a stack that ran over leaves no room; other threads have a `ZQSignalStack`
    struct sigaction action = {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (std::size_t i = 0; i < std::size(caught); ++i) {
        ::sigaction(caught[i], &action, &actionsBefore[i]);
    }
    return true;
}
