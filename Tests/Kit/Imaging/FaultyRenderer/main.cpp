#include "Kit/Imaging/Worker/ZQRenderLoop.h"
#include "Tests/Kit/Imaging/FaultyRenderer/CallWalk.h"

#include <QHash>

#include <glib.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <netinet/in.h>
#include <new>
#include <signal.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

// Answers as the real one does, but for files whose names (without extension) are in the table. What such a file holds
// is a path to try.

namespace {

QByteArray contentOf(const ZQSourceFile &file)
{
    QFile device;
    return file.openIn(device) ? device.readAll() : QByteArray();
}

void send(const ZQRenderAnswer &answer, int descriptor = -1)
{
    zqSendMessage(ZQRenderDescriptor::socket, zqEncode(answer), descriptor);
}

// Says how a system call went: "allowed", or the system's reason.
void report(bool allowed)
{
    ZQRenderAnswer answer;
    answer.reason = allowed ? QStringLiteral("allowed") : QString::fromLocal8Bit(std::strerror(errno));
    send(answer);
}

bool opens(const ZQSourceFile &file, int flags)
{
    return ::open(contentOf(file).constData(), flags, 0600) >= 0;
}

bool opensInOwnFolder()
{
    return ::open((qgetenv("TMPDIR") + "/own").constData(), O_WRONLY | O_CREAT, 0600) >= 0;
}

bool startsProgram()
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    return child > 0;
}

// At a place of this computer where nobody listens.
bool usesNetwork(int (*call)(int, const sockaddr *, socklen_t))
{
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    place.sin_port = htons(9);
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    return socket >= 0 && call(socket, reinterpret_cast<const sockaddr *>(&place), sizeof place) == 0;
}

void sendPicture(QSize size, qint64 bytes, int seals)
{
    const int file = ::memfd_create("lie", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (::ftruncate(file, bytes) == 0 && ::fcntl(file, F_ADD_SEALS, seals) == 0) {
        ZQRenderAnswer answer;
        answer.kind = ZQRenderAnswer::Kind::PixelsInFile;
        answer.size = size;
        send(answer, file);
    }
    ::close(file);
}

void sendBytes(const QByteArray &bytes, qint64 size, int seals)
{
    const int file = ::memfd_create("lie", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (zqWriteAll(file, bytes.constData(), bytes.size()) && ::ftruncate(file, size) == 0 &&
        ::fcntl(file, F_ADD_SEALS, seals) == 0) {
        ZQRenderAnswer answer;
        answer.kind = ZQRenderAnswer::Kind::BytesInFile;
        send(answer, file);
    }
    ::close(file);
}

constexpr int allSeals = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW;

void startChild()
{
    if (::fork() == 0) {
        ::execl("/bin/sleep", "sleep", "1000", nullptr);
        ::_exit(1);
    }
}

[[noreturn]] void hang()
{
    for (;;) {
        ::pause();
    }
}

void takeAllMemory()
{
    for (;;) {
        std::memset(g_malloc(1 << 26), 1, 1 << 20);
    }
}

// "FIELD VALUE", one a line, on top of what a real picture says.
void lieAboutProperties(const QByteArray &lies)
{
    ZQRenderAnswer answer;
    answer.kind = ZQRenderAnswer::Kind::Properties;
    ZQImageProperties &properties = answer.properties;
    properties.pixelWidth = properties.pixelHeight = 10;
    properties.colorModel = QStringLiteral("RGB");
    const QHash<QByteArray, int *> fields{{"width", &properties.pixelWidth},
                                          {"height", &properties.pixelHeight},
                                          {"orientation", &properties.orientation},
                                          {"bits", &properties.bitsPerSample},
                                          {"dpi", &properties.dpi},
                                          {"frames", &properties.frameCount}};
    for (const QByteArray &line : lies.split('\n')) {
        const int value = line.mid(line.indexOf(' ') + 1).toInt();
        if (int *const field = fields.value(line.left(line.indexOf(' ')))) {
            *field = value;
        } else if (line.startsWith("durations ")) {
            properties.frameDurations = QList<int>(value, std::numeric_limits<int>::max());
        } else if (line.startsWith("model ")) {
            properties.colorModel = QString(value, u'x');
        }
    }
    send(answer);
}

// Somebody who waits for the answer after the greeting would wait for ever.
[[noreturn]] void greetForever()
{
    ZQRenderAnswer hello;
    hello.kind = ZQRenderAnswer::Kind::Hello;
    for (;;) {
        send(hello);
    }
}

void lieAboutArea()
{
    ZQRenderAnswer answer;
    answer.kind = ZQRenderAnswer::Kind::PixelsInArea;
    answer.size = QSize(32767, 32767);
    send(answer);
}

// Of which nothing was written.
void claimExport()
{
    ZQRenderAnswer answer;
    answer.kind = ZQRenderAnswer::Kind::Exported;
    answer.size = QSize(10, 10);
    send(answer);
}

void answerAnotherQuestion()
{
    ZQRenderAnswer answer;
    answer.kind = ZQRenderAnswer::Kind::Properties;
    answer.properties.pixelWidth = 10;
    answer.properties.pixelHeight = 10;
    answer.properties.colorModel = QStringLiteral("RGB");
    send(answer);
}

// Why there is no picture, and beside it what the file is said to say of itself.
void claimBesideError(int width)
{
    ZQRenderAnswer answer;
    answer.kind = ZQRenderAnswer::Kind::Error;
    answer.hasProperties = true;
    answer.properties.pixelWidth = width;
    answer.properties.pixelHeight = 10;
    answer.properties.colorModel = QStringLiteral("RGB");
    send(answer);
}

using Fault = void (*)(const ZQSourceFile &file);

const QHash<QString, Fault> faults{
    {QStringLiteral("crash"), [](const ZQSourceFile &) { std::abort(); }},
    {QStringLiteral("claim"), [](const ZQSourceFile &) { claimBesideError(10); }},
    {QStringLiteral("lie-beside"), [](const ZQSourceFile &) { claimBesideError(-1); }},
    {QStringLiteral("leave"), [](const ZQSourceFile &) { ::_exit(0); }},
    {QStringLiteral("hang"),
     [](const ZQSourceFile &) {
         startChild();
         hang();
     }},
    {QStringLiteral("no-memory"), [](const ZQSourceFile &) { throw std::bad_alloc(); }},
    {QStringLiteral("memory"), [](const ZQSourceFile &) { takeAllMemory(); }},
    {QStringLiteral("garbage"),
     [](const ZQSourceFile &) { zqSendMessage(ZQRenderDescriptor::socket, QByteArray(5000, '\x7f')); }},
    {QStringLiteral("lie-short"),
     [](const ZQSourceFile &) {
         sendPicture({64, 64}, 16, allSeals);
     }},
    {QStringLiteral("lie-unsealed"),
     [](const ZQSourceFile &) {
         sendPicture({64, 64}, 64 * 64 * 4, 0);
     }},
    {QStringLiteral("lie-box"),
     [](const ZQSourceFile &) {
         sendPicture({4096, 64}, 4096 * 64 * 4, allSeals);
     }},
    {QStringLiteral("lie-huge"),
     [](const ZQSourceFile &) {
         sendPicture({0x7fffffff, 0x7fffffff}, 4, allSeals);
     }},
    {QStringLiteral("lie-negative"),
     [](const ZQSourceFile &) {
         sendPicture({-64, -64}, 64 * 64 * 4, allSeals);
     }},
    {QStringLiteral("lie-tall"),
     [](const ZQSourceFile &) {
         sendPicture({64, 4096}, 64 * 4096 * 4, allSeals);
     }},
    {QStringLiteral("lie-long"),
     [](const ZQSourceFile &) {
         sendPicture({64, 64}, 64 * 64 * 4 + 1, allSeals);
     }},
    {QStringLiteral("lie-half-sealed"),
     [](const ZQSourceFile &) {
         sendPicture({64, 64}, 64 * 64 * 4, allSeals & ~F_SEAL_SHRINK);
     }},
    {QStringLiteral("fits"),
     [](const ZQSourceFile &) {
         sendPicture({100, 100}, 100 * 100 * 4, allSeals);
     }},
    {QStringLiteral("bytes"), [](const ZQSourceFile &) { sendBytes("bytes", 5, allSeals); }},
    {QStringLiteral("bytes-none"), [](const ZQSourceFile &) { sendBytes({}, 0, allSeals); }},
    {QStringLiteral("bytes-unsealed"), [](const ZQSourceFile &) { sendBytes("bytes", 5, 0); }},
    {QStringLiteral("bytes-many"), [](const ZQSourceFile &) { sendBytes("b", zqRenderMaximumBytes + 1, allSeals); }},
    {QStringLiteral("lie-properties"), [](const ZQSourceFile &file) { lieAboutProperties(contentOf(file)); }},
    {QStringLiteral("greet"), [](const ZQSourceFile &) { greetForever(); }},
    {QStringLiteral("lie-area"), [](const ZQSourceFile &) { lieAboutArea(); }},
    {QStringLiteral("lie-exported"), [](const ZQSourceFile &) { claimExport(); }},
    {QStringLiteral("lie-kind"), [](const ZQSourceFile &) { answerAnotherQuestion(); }},
    {QStringLiteral("read-other"), [](const ZQSourceFile &file) { report(opens(file, O_RDONLY)); }},
    {QStringLiteral("write-other"), [](const ZQSourceFile &file) { report(opens(file, O_WRONLY | O_CREAT)); }},
    {QStringLiteral("remove-other"),
     [](const ZQSourceFile &file) { report(::unlink(contentOf(file).constData()) == 0); }},
    {QStringLiteral("make-other"),
     [](const ZQSourceFile &file) { report(::mkdir(contentOf(file).constData(), 0700) == 0); }},
    {QStringLiteral("rename-other"),
     [](const ZQSourceFile &file) {
         const QByteArray name = contentOf(file);
         report(::rename(name.constData(), (name + ".renamed").constData()) == 0);
     }},
    {QStringLiteral("write-own"), [](const ZQSourceFile &) { report(opensInOwnFolder()); }},
    {QStringLiteral("start-program"), [](const ZQSourceFile &) { report(startsProgram()); }},
    {QStringLiteral("cut-other"),
     [](const ZQSourceFile &file) { report(::truncate(contentOf(file).constData(), 0) == 0); }},
    {QStringLiteral("call-network"), [](const ZQSourceFile &) { report(::socket(AF_INET, SOCK_STREAM, 0) >= 0); }},
    {QStringLiteral("connect"), [](const ZQSourceFile &) { report(usesNetwork(::connect)); }},
    {QStringLiteral("listen"), [](const ZQSourceFile &) { report(usesNetwork(::bind)); }},
    {QStringLiteral("signal"), [](const ZQSourceFile &) { report(::kill(::getppid(), 0) == 0); }},
    {QStringLiteral("speak"), [](const ZQSourceFile &) { report(::write(STDOUT_FILENO, "noise", 5) == 5); }},
    {QStringLiteral("call-local"), [](const ZQSourceFile &) { report(::socket(AF_UNIX, SOCK_STREAM, 0) >= 0); }},
};

bool misbehave(const ZQRenderRequest &request, const ZQSourceFile &file)
{
    if (request.kind == ZQRenderRequest::Kind::Properties && request.name.startsWith(QStringLiteral("boast"))) {
        lieAboutProperties("frames 2000000000\ndurations 3");
        return true;
    }
    const Fault fault = faults.value(request.name.section(u'.', 0, 0));
    if (fault) {
        fault(file);
    }
    return fault != nullptr;
}

// The entry's name says how.
void lieAboutArchive(const ZQArchiveQuestion &question, ZQArchiveAnswer &answer)
{
    static QByteArray fault;
    const bool isBlock = question.kind == ZQArchiveQuestion::Kind::Block;
    const QByteArray lie = answer.entry.name;
    if (answer.kind == ZQArchiveAnswer::Kind::Entry) {
        fault = lie;
    }
    if (lie == "crash") {
        std::abort();
    } else if (lie == "hang") {
        hang();
    } else if (lie == "write") {
        const int file = ::open((qgetenv("TMPDIR") + "/own").constData(), O_WRONLY | O_CREAT, 0600);
        answer.entry.name = file >= 0 ? "allowed" : "refused";
    } else if (lie == "size") {
        answer.entry.size = -5;
    } else if (lie == "time") {
        answer.entry.time = 1;
        answer.entry.timeNanoseconds = std::numeric_limits<int>::max();
    } else if (lie == "kind") {
        answer.kind = ZQArchiveAnswer::Kind::Block;
    } else if (lie == "opened") {
        answer.kind = ZQArchiveAnswer::Kind::Opened;
    } else if (lie == "unknown") {
        answer.entry.kind = ZQArchiveEntry::Kind(99);
    } else if (lie == "ended") {
        answer.kind = ZQArchiveAnswer::Kind::End;
        answer.end = {ZQArchiveEnd::Kind::Unavailable, QStringLiteral("believe me")};
    } else if (isBlock && fault == "block") {
        answer.size = std::numeric_limits<qint32>::max();
    } else if (isBlock && fault == "nothing") {
        answer.size = 0;
        answer.isLast = false;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const bool useFileRules = !qEnvironmentVariableIsSet("ZELTO_FAULTY_WITHOUT_LANDLOCK");
    if (argc == 3 && std::strcmp(argv[1], "calls") == 0) {
        return walkCalls(argv[2], useFileRules);
    }
    return zqRunRenderLoop(
        argc, argv,
        {misbehave, lieAboutArchive, useFileRules, !qEnvironmentVariableIsSet("ZELTO_FAULTY_WITHOUT_SECCOMP")});
}
