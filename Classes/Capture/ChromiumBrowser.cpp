#include "Classes/Capture/ChromiumBrowser.h"

#include "Classes/Application/TemporaryArea.h"
#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// Where a browser that is told to speak over pipes looks for them.
constexpr int commandsDescriptor = 3;
constexpr int answersDescriptor = 4;
constexpr int firstFreeDescriptor = 10;
constexpr int exitCannotRun = 127;

constexpr std::array programNames{"chromium", "chromium-browser", "google-chrome", "google-chrome-stable"};

constexpr std::array switches{
    "--headless=new",
    "--remote-debugging-pipe",
    "--no-first-run",
    "--no-default-browser-check",
    "--disable-extensions",
    "--disable-component-extensions-with-background-pages",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--disable-default-apps",
    "--disable-breakpad",
    "--disable-client-side-phishing-detection",
    "--disable-features=Translate,MediaRouter,OptimizationHints,AutofillServerCommunication",
    "--deny-permission-prompts",
    "--block-new-web-contents",
    "--disable-notifications",
    "--mute-audio",
    "--hide-scrollbars",
    "--password-store=basic",
    "--use-mock-keychain",
    "--force-color-profile=srgb",
};

// What a page is to look like on this desktop, how its files are found, and how the network is reached: nothing else of
// the environment is the browser's business, the display and the session bus least.
constexpr std::array keptVariables{"PATH",         "HOME",       "LANG",        "LANGUAGE",        "TZ",
                                   "http_proxy",   "HTTP_PROXY", "https_proxy", "HTTPS_PROXY",     "no_proxy",
                                   "NO_PROXY",     "all_proxy",  "ALL_PROXY",   "FONTCONFIG_PATH", "FONTCONFIG_FILE",
                                   "XDG_DATA_DIRS"};

bool isKept(const QByteArray &entry)
{
    const QByteArray name = entry.left(entry.indexOf('='));
    for (const char *kept : keptVariables) {
        if (name == kept) {
            return true;
        }
    }
    return name.startsWith("LC_");
}

std::vector<QByteArray> environmentWithin(const QByteArray &folder, const QByteArray &temporary)
{
    std::vector<QByteArray> out;
    for (char **entry = environ; *entry; ++entry) {
        if (const QByteArray text(*entry); isKept(text)) {
            out.push_back(text);
        }
    }
    out.push_back("TMPDIR=" + temporary);
    out.push_back("XDG_CONFIG_HOME=" + folder + "/config");
    out.push_back("DBUS_SESSION_BUS_ADDRESS=disabled:");
    return out;
}

std::vector<QByteArray> argumentsFor(const QString &program, const QByteArray &folder)
{
    std::vector<QByteArray> out{QFile::encodeName(program)};
    out.insert(out.end(), switches.begin(), switches.end());
    out.push_back("--user-data-dir=" + folder + "/profile");
    if (::geteuid() == 0) {
        out.push_back("--no-sandbox"); // as root it refuses to run with it
    }
    out.push_back("about:blank");
    return out;
}

struct Pipe
{
    ZQFileDescriptor readEnd;
    ZQFileDescriptor writeEnd;
};

// Its ends stand in the way of none of the browser's numbers.
std::optional<Pipe> pipeOf(const std::array<int, 2> &ends)
{
    const ZQFileDescriptor low[] = {ZQFileDescriptor(ends[0]), ZQFileDescriptor(ends[1])};
    Pipe pipe{ZQFileDescriptor(::fcntl(ends[0], F_DUPFD_CLOEXEC, firstFreeDescriptor)),
              ZQFileDescriptor(::fcntl(ends[1], F_DUPFD_CLOEXEC, firstFreeDescriptor))};
    return pipe.readEnd.isOpen() && pipe.writeEnd.isOpen() ? std::optional(std::move(pipe)) : std::nullopt;
}

std::optional<Pipe> makeCommandPipe()
{
    std::array<int, 2> ends{-1, -1};
    const bool isMade = ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0;
    return isMade ? pipeOf(ends) : std::nullopt;
}

std::optional<Pipe> makeAnswerPipe()
{
    std::array<int, 2> ends{-1, -1};
    return ::pipe2(ends.data(), O_CLOEXEC) == 0 ? pipeOf(ends) : std::nullopt;
}

// After a fork in a process with other threads: nothing but what is safe in a signal handler.
[[noreturn]] void becomeBrowser(int commands, int answers, pid_t parent, char **arguments, char **environment)
{
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) {
        ::_exit(exitCannotRun);
    }
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = ::open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(nothing, standard);
    }
    ::dup2(commands, commandsDescriptor);
    ::dup2(answers, answersDescriptor);
    ::syscall(SYS_close_range, answersDescriptor + 1, ~0U, 0);
    ::execve(arguments[0], arguments, environment);
    ::_exit(exitCannotRun);
}

// It makes a socket in its temporary folder, and the addresses of sockets are short.
QByteArray shortFolderFor(const QByteArray &folder)
{
    constexpr qsizetype longest = 60;
    if (folder.size() <= longest) {
        return folder;
    }
    QByteArray name = "/tmp/zelto-web.XXXXXX";
    return ::mkdtemp(name.data()) ? name : folder;
}

// A process of the browser's that is just ending may still make a file.
void removeFolder(const QByteArray &path)
{
    constexpr int tries = 20;
    for (int i = 0; i < tries && !QDir(QFile::decodeName(path)).removeRecursively(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

ZQError noProgram(const QString &named)
{
    return named.isEmpty()
               ? WebCaptureErrors::with(WebCaptureErrors::NoBrowser,
                                        zqLocalized("Capturing web pages needs a browser that is not there: install "
                                                    "chromium."))
               : WebCaptureErrors::with(
                     WebCaptureErrors::NoBrowser,
                     zqFormat(zqLocalized("The browser “%@” that the setting WebCaptureBrowser names can't be run: "
                                          "install chromium, or change the setting."),
                              {named}));
}

} // namespace

QString ChromiumBrowser::program(ZQError *error)
{
    const QString named = ZQUserDefaults::standardUserDefaults().stringForKey(programKey);
    if (!named.isEmpty()) {
        const QString found = QStandardPaths::findExecutable(named);
        if (found.isEmpty()) {
            zqSetError(error, noProgram(named));
        }
        return found;
    }
    for (const char *name : programNames) {
        if (const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name)); !found.isEmpty()) {
            return found;
        }
    }
    zqSetError(error, noProgram({}));
    return {};
}

std::unique_ptr<ChromiumBrowser> ChromiumBrowser::start(ZQError *error)
{
    const QString program = ChromiumBrowser::program(error);
    const QString folder = program.isEmpty() ? QString() : TemporaryArea::newFolder(error);
    if (folder.isEmpty()) {
        return nullptr;
    }
    std::unique_ptr<ChromiumBrowser> browser(new ChromiumBrowser);
    browser->m_folder = QFile::encodeName(folder);
    browser->m_shortFolder = shortFolderFor(browser->m_folder);
    if (!browser->spawn(program)) {
        zqSetError(error, ZQError::posix(errno, program));
        return nullptr;
    }
    return browser;
}

bool ChromiumBrowser::spawn(const QString &program)
{
    auto commands = makeCommandPipe();
    auto answers = makeAnswerPipe();
    if (!commands || !answers) {
        return false;
    }
    std::vector<QByteArray> arguments = argumentsFor(program, m_folder);
    std::vector<QByteArray> environment = environmentWithin(m_folder, m_shortFolder);
    std::vector<char *> argumentPointers = zqPointersTo(arguments);
    std::vector<char *> environmentPointers = zqPointersTo(environment);
    const pid_t parent = ::getpid();
    m_process = ::fork();
    if (m_process == 0) {
        becomeBrowser(commands->readEnd.get(), answers->writeEnd.get(), parent, argumentPointers.data(),
                      environmentPointers.data());
    }
    if (m_process < 0) {
        return false;
    }
    ::setpgid(m_process, m_process); // whichever of the two comes first
    m_pipe.emplace(std::move(commands->writeEnd), std::move(answers->readEnd));
    return true;
}

ChromiumBrowser::~ChromiumBrowser()
{
    if (m_process > 0) {
        // The group first: as long as its leader is not waited for, nobody else can have its number.
        ::kill(-m_process, SIGKILL);
        ::kill(m_process, SIGKILL);
        while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    m_pipe.reset();
    if (!m_folder.isEmpty()) {
        removeFolder(m_folder);
    }
    if (!m_shortFolder.isEmpty() && m_shortFolder != m_folder) {
        removeFolder(m_shortFolder);
    }
}
