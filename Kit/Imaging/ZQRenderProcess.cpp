#include "Kit/Imaging/ZQRenderProcess.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Imaging/ZQPackBits.h"
#include "Kit/Imaging/ZQRenderNotice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

using namespace std::chrono_literals;

// Together less than half a second.
constexpr std::chrono::milliseconds cancellationStep = 100ms;
constexpr std::chrono::milliseconds answerTimeAfterCancel = 150ms;

// Everything up to here is the worker's own after it starts; see ZQRenderDescriptor.
constexpr int firstFreeDescriptor = 10;

// A copy that stands in the way of none of the worker's numbers.
ZQFileDescriptor highCopy(int descriptor)
{
    return ZQFileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, firstFreeDescriptor));
}

QString programOfBuildTree(QDir folder)
{
    do {
        if (folder.exists(QStringLiteral("CMakeCache.txt"))) {
            return folder.filePath(QStringLiteral("bin/zelto-render"));
        }
    } while (folder.cdUp());
    return {};
}

// The environment with the worker's own temporary folder.
std::vector<QByteArray> environmentWithin(const QByteArray &folder)
{
    std::vector<QByteArray> out;
    for (char **entry = environ; *entry; ++entry) {
        const QByteArray text(*entry);
        const bool replaced = text.startsWith("TMPDIR=") || text.startsWith("TEMP=") || text.startsWith("TMP=");
        if (!replaced) {
            out.push_back(text);
        }
    }
    for (const char *name : {"TMPDIR=", "TEMP=", "TMP="}) {
        out.push_back(name + folder);
    }
    return out;
}

// What a new process begins with: a group of its own, no signal blocked or ignored, and these descriptors only.
class SpawnSettings
{
public:
    SpawnSettings()
    {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawnattr_init(&m_attributes);
        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        ::posix_spawnattr_setsigdefault(&m_attributes, &all);
        ::posix_spawnattr_setpgroup(&m_attributes, 0);
        ::posix_spawnattr_setflags(&m_attributes,
                                   POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        ::posix_spawn_file_actions_addopen(&m_actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    ~SpawnSettings()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    void pass(int descriptor, int as) { ::posix_spawn_file_actions_adddup2(&m_actions, descriptor, as); }
    void closeFrom(int first) { ::posix_spawn_file_actions_addclosefrom_np(&m_actions, first); }
    const posix_spawn_file_actions_t *actions() const { return &m_actions; }
    const posix_spawnattr_t *attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

QByteArray makeFolder()
{
    QByteArray name =
        QFile::encodeName(QDir::tempPath()) + "/zelto-render." + QByteArray::number(::getpid()) + ".XXXXXX";
    return ::mkdtemp(name.data()) ? name : QByteArray();
}

// What the answer has to bring, unless it is an error.
enum class Content { Properties, Pixels, Bytes, Planes, Nothing };

Content contentOf(ZQRenderAnswer::Kind kind)
{
    switch (kind) {
    case ZQRenderAnswer::Kind::PixelsInArea:
    case ZQRenderAnswer::Kind::PixelsInFile:
        return Content::Pixels;
    case ZQRenderAnswer::Kind::BytesInFile:
        return Content::Bytes;
    case ZQRenderAnswer::Kind::PlanesInFile:
        return Content::Planes;
    case ZQRenderAnswer::Kind::Exported:
        return Content::Nothing;
    default:
        return Content::Properties;
    }
}

Content contentFor(ZQRenderRequest::Kind kind)
{
    switch (kind) {
    case ZQRenderRequest::Kind::Properties:
        return Content::Properties;
    case ZQRenderRequest::Kind::EmbeddedPicture:
        return Content::Bytes;
    case ZQRenderRequest::Kind::Planes:
        return Content::Planes;
    case ZQRenderRequest::Kind::Export:
        return Content::Nothing;
    default:
        return Content::Pixels;
    }
}

bool fits(QSize size, const ZQRenderRequest &request)
{
    return !request.box.isValid() || (size.width() <= request.box.width() && size.height() <= request.box.height());
}

struct Mapping
{
    void *data;
    size_t size;
};

void unmap(void *info)
{
    const std::unique_ptr<Mapping> mapping(static_cast<Mapping *>(info));
    ::munmap(mapping->data, mapping->size);
}

// The size of shared memory that nobody can change or shorten any more; -1 for anything else.
qint64 sizeOfSealedFile(int descriptor)
{
    constexpr int needed = F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW;
    struct stat status
    {
    };
    const int seals = ::fcntl(descriptor, F_GET_SEALS);
    return seals >= 0 && (seals & needed) == needed && ::fstat(descriptor, &status) == 0 ? qint64(status.st_size) : -1;
}

QByteArray bytesOfSealedFile(int descriptor)
{
    const qint64 size = sizeOfSealedFile(descriptor);
    QFile file;
    const bool readable = size > 0 && size <= zqRenderMaximumBytes &&
                          file.open(descriptor, QIODevice::ReadOnly, QFileDevice::DontCloseHandle) && file.seek(0);
    const QByteArray bytes = readable ? file.read(size) : QByteArray();
    return bytes.size() == size ? bytes : QByteArray();
}

ZQBitmap bitmapOfSealedFile(int descriptor, QSize size)
{
    const size_t bytes = size_t(size.width()) * size_t(size.height()) * 4;
    if (sizeOfSealedFile(descriptor) != qint64(bytes)) {
        return {};
    }
    void *const data = ::mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (data == MAP_FAILED) {
        return {};
    }
    return ZQBitmap(QImage(static_cast<const uchar *>(data), size.width(), size.height(), qsizetype(size.width()) * 4,
                           QImage::Format_RGBA8888, unmap, new Mapping{data, bytes}));
}

std::optional<ZQPackedPicture> planesOfSealedFile(int descriptor, QSize size, const QRect &window)
{
    const QRect part = ZQPackedPicture::partOf(size, window);
    const qint64 bytes = sizeOfSealedFile(descriptor);
    const qint64 most = (qint64(ZQPackBits::mostPacked(part.width())) + 2) * part.height();
    if (bytes < 0 || bytes > most * ZQPackedPicture::channelCount) {
        return std::nullopt;
    }
    if (bytes == 0) {
        return ZQPackedPicture::of(nullptr, 0, size, part);
    }
    void *const data = ::mmap(nullptr, size_t(bytes), PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (data == MAP_FAILED) {
        return std::nullopt;
    }
    const std::shared_ptr<const char> shared(static_cast<const char *>(data), [bytes](const char *mapped) {
        ::munmap(const_cast<char *>(mapped), size_t(bytes));
    });
    const auto planes = ZQPackedPicture::of(shared, bytes, size, part);
    ::madvise(data, size_t(bytes), MADV_DONTNEED); // looked through; it may be long until somebody takes it
    return planes;
}

} // namespace

qint64 ZQRenderLimits::memoryOrDefault() const
{
    constexpr qint64 least = qint64(3) << 30;
    constexpr qint64 most = qint64(12) << 30;
    const qint64 physical = qint64(::sysconf(_SC_PHYS_PAGES)) * ::sysconf(_SC_PAGESIZE);
    return memory > 0 ? memory : std::clamp(physical / 4 * 3, least, most);
}

int ZQRenderLimits::processesOrDefault() const
{
    // One more than can compute, for the one that waits for its disk.
    return processes > 0 ? processes : std::clamp(int(std::thread::hardware_concurrency()) + 1, 2, 4);
}

QString zqRenderProgram()
{
    const QString named = qEnvironmentVariable("ZELTO_RENDER");
    if (!named.isEmpty()) {
        return QFileInfo(named).isExecutable() ? named : QString();
    }
    const QDir folder = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).dir();
    for (const QString &candidate :
         {folder.filePath(QStringLiteral("zelto-render")),
          folder.filePath(QStringLiteral("../libexec/zelto/zelto-render")), programOfBuildTree(folder)}) {
        if (!candidate.isEmpty() && QFileInfo(candidate).isExecutable()) {
            return candidate;
        }
    }
    return {};
}

std::unique_ptr<ZQRenderProcess> ZQRenderProcess::start(const ZQRenderLimits &limits, int thumbnailed, QString *failure,
                                                        Purpose purpose)
{
    const QString program = zqRenderProgram();
    if (program.isEmpty()) {
        *failure = zqLocalized("The program \"zelto-render\" that draws pictures is missing; install Zelto again.");
        return nullptr;
    }
    std::unique_ptr<ZQRenderProcess> out(new ZQRenderProcess);
    std::array<int, 2> sockets{-1, -1};
    const bool paired = ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) == 0;
    const ZQFileDescriptor workerSocket(sockets[1]);
    out->m_socket = ZQFileDescriptor(sockets[0]);
    out->m_folder = makeFolder();
    if (!paired || out->m_folder.isEmpty() || !out->makeArea() ||
        !out->spawn(program, limits, workerSocket.get(), thumbnailed, purpose)) {
        *failure = zqFormat(zqLocalized("The program \"zelto-render\" that draws pictures can't be started: %@."),
                            {QString::fromLocal8Bit(std::strerror(errno))});
        return nullptr;
    }
    return out;
}

bool ZQRenderProcess::makeArea()
{
    m_areaFile = ZQFileDescriptor(::memfd_create("zelto-render", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!m_areaFile.isOpen() || ::ftruncate(m_areaFile.get(), zqRenderAreaBytes) != 0 ||
        ::fcntl(m_areaFile.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
        return false;
    }
    void *const data = ::mmap(nullptr, size_t(zqRenderAreaBytes), PROT_READ, MAP_SHARED, m_areaFile.get(), 0);
    m_area = data == MAP_FAILED ? nullptr : static_cast<const uchar *>(data);
    return m_area != nullptr;
}

bool ZQRenderProcess::spawn(const QString &program, const ZQRenderLimits &limits, int workerSocket, int thumbnailed,
                            Purpose purpose)
{
    const ZQFileDescriptor socket = highCopy(workerSocket);
    const ZQFileDescriptor area = highCopy(m_areaFile.get());
    const ZQFileDescriptor file = thumbnailed >= 0 ? highCopy(thumbnailed) : ZQFileDescriptor();
    SpawnSettings settings;
    settings.pass(socket.get(), ZQRenderDescriptor::socket);
    settings.pass(area.get(), ZQRenderDescriptor::area);
    if (thumbnailed >= 0) {
        settings.pass(file.get(), ZQRenderDescriptor::thumbnailed);
    }
    settings.closeFrom(thumbnailed >= 0 ? ZQRenderDescriptor::thumbnailed + 1 : ZQRenderDescriptor::area + 1);
    const QByteArray path = QFile::encodeName(program);
    std::vector<QByteArray> arguments{
        path, m_folder, QByteArray::number(::getpid()), QByteArray::number(limits.memoryOrDefault()),
        purpose == Purpose::Archives ? "archives" : (thumbnailed >= 0 ? "thumbnailer" : "files")};
    std::vector<QByteArray> environment = environmentWithin(m_folder);
    pid_t process = -1;
    const int result = ::posix_spawn(&process, path.constData(), settings.actions(), settings.attributes(),
                                     zqPointersTo(arguments).data(), zqPointersTo(environment).data());
    if (result != 0) {
        errno = result;
        return false;
    }
    m_process = process;
    return true;
}

void ZQRenderProcess::interrupt() const
{
    ::shutdown(m_socket.get(), SHUT_RDWR);
}

ZQRenderProcess::~ZQRenderProcess()
{
    int status = 0;
    end(status);
    if (m_area) {
        ::munmap(const_cast<uchar *>(m_area), size_t(zqRenderAreaBytes));
    }
    if (!m_folder.isEmpty()) {
        zqRemoveTree(m_folder);
    }
}

bool ZQRenderProcess::send(const ZQRenderRequest &request, int file, int output)
{
    // The rules allow the folder that was there at the start, not another one of its name.
    return ::access(m_folder.constData(), W_OK) == 0 && zqSendMessage(m_socket.get(), zqEncode(request), file, output);
}

void ZQRenderProcess::waitUntilReady(std::chrono::milliseconds time) const
{
    waitForMessage(std::chrono::steady_clock::now() + time); // its greeting, which the first answer comes after
}

ZQRenderProcess::Wait ZQRenderProcess::waitForMessage(std::chrono::steady_clock::time_point end) const
{
    using namespace std::chrono;
    bool isCancelled = false;
    pollfd wait{m_socket.get(), POLLIN, 0};
    for (;;) {
        if (!isCancelled && ZQCancellation::isCurrentCancelled()) {
            isCancelled = true;
            end = std::min(end, steady_clock::now() + answerTimeAfterCancel);
        }
        const auto left = duration_cast<milliseconds>(end - steady_clock::now());
        const int ready = ::poll(&wait, 1, int(std::clamp(left, 0ms, cancellationStep).count()));
        if (ready > 0) {
            return Wait::Message;
        }
        if ((ready == 0 && left <= 0ms) || (ready < 0 && errno != EINTR)) {
            return isCancelled ? Wait::Cancelled : Wait::TimeIsUp;
        }
    }
}

ZQRenderProcess::Exchanged ZQRenderProcess::nextMessage(std::chrono::milliseconds time, ZQFileDescriptor *descriptor)
{
    const auto end = std::chrono::steady_clock::now() + time;
    for (;;) {
        const Wait wait = waitForMessage(end);
        if (wait != Wait::Message) {
            return {failed(wait == Wait::Cancelled ? Outcome::Cancelled : Outcome::TookTooLong), {}};
        }
        ZQRenderMessage message = zqReceiveMessage(m_socket.get());
        if (message.bytes.isEmpty()) {
            return {failed(Outcome::Stopped), {}};
        }
        const auto greeting = m_isGreeted ? std::nullopt : zqDecodeAnswerMessage(message.bytes);
        if (!greeting || greeting->kind != ZQRenderAnswer::Kind::Hello) {
            *descriptor = std::move(message.descriptor);
            return {Outcome::Answered, message.bytes};
        }
        m_isGreeted = true; // once: greetings without end would be waited through without end
        zqNoteRestrictions(*greeting);
    }
}

ZQRenderProcess::Exchanged ZQRenderProcess::exchange(const QByteArray &question, int file,
                                                     std::chrono::milliseconds time)
{
    ZQFileDescriptor none;
    return zqSendMessage(m_socket.get(), question, file) ? nextMessage(time, &none)
                                                         : Exchanged{failed(Outcome::Stopped), {}};
}

ZQRenderProcess::Reply ZQRenderProcess::receive(const ZQRenderRequest &request, std::chrono::milliseconds time)
{
    ZQFileDescriptor descriptor;
    const Exchanged message = nextMessage(time, &descriptor);
    if (message.outcome != Outcome::Answered) {
        return {message.outcome, {}, {}, {}, {}};
    }
    const std::optional<ZQRenderAnswer> answer = zqDecodeAnswerMessage(message.bytes);
    if (!answer || answer->kind == ZQRenderAnswer::Kind::Hello) {
        return {failed(Outcome::TalkedNonsense), {}, {}, {}, {}};
    }
    Reply reply{Outcome::Answered, *answer, {}, {}, {}};
    return takeContent(request, descriptor, reply) ? reply : Reply{failed(Outcome::TalkedNonsense), {}, {}, {}, {}};
}

bool ZQRenderProcess::takeContent(const ZQRenderRequest &request, const ZQFileDescriptor &descriptor,
                                  Reply &reply) const
{
    if (reply.answer.kind == ZQRenderAnswer::Kind::Error) {
        return true;
    }
    if (reply.answer.kind == ZQRenderAnswer::Kind::CannotWrite) {
        return request.kind == ZQRenderRequest::Kind::Export;
    }
    const Content content = contentOf(reply.answer.kind);
    if (content != contentFor(request.kind)) {
        return false;
    }
    switch (content) {
    case Content::Properties:
    case Content::Nothing: // it is in the file that was handed over
        return true;
    case Content::Bytes:
        reply.bytes = bytesOfSealedFile(descriptor.get());
        return !reply.bytes.isEmpty();
    case Content::Planes:
        reply.planes = planesOfSealedFile(descriptor.get(), reply.answer.size, request.window);
        if (reply.planes) {
            reply.planes->setIncomplete(reply.answer.isIncomplete);
        }
        return reply.planes.has_value();
    case Content::Pixels:
        reply.bitmap = takePixels(request, reply.answer, descriptor);
        reply.bitmap.setIncomplete(reply.answer.isIncomplete);
        return !reply.bitmap.isNull();
    }
    return false;
}

ZQBitmap ZQRenderProcess::takePixels(const ZQRenderRequest &request, const ZQRenderAnswer &answer,
                                     const ZQFileDescriptor &descriptor) const
{
    if (!fits(answer.size, request)) {
        return {};
    }
    if (answer.kind == ZQRenderAnswer::Kind::PixelsInFile) {
        return bitmapOfSealedFile(descriptor.get(), answer.size);
    }
    QImage image(answer.size, QImage::Format_RGBA8888);
    if (!image.isNull()) {
        std::memcpy(image.bits(), m_area, size_t(image.sizeInBytes()));
    }
    return ZQBitmap(image);
}

// Whether the worker ends by itself; its socket closes a moment before it does.
bool ZQRenderProcess::waitForEnd() const
{
    constexpr int tries = 300;
    for (int i = 0; i < tries; ++i) {
        siginfo_t information{};
        if (::waitid(P_PID, id_t(m_process), &information, WEXITED | WNOWAIT | WNOHANG) != 0 ||
            information.si_pid != 0) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

ZQRenderProcess::Outcome ZQRenderProcess::failed(Outcome outcome)
{
    const bool endedItself = outcome == Outcome::Stopped && waitForEnd();
    int status = 0;
    end(status);
    const bool outOfMemory = endedItself && ((WIFEXITED(status) && WEXITSTATUS(status) == zqRenderExitOutOfMemory) ||
                                             (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL));
    const bool tookTooLong = endedItself && WIFEXITED(status) && WEXITSTATUS(status) == zqRenderExitTookTooLong;
    return outOfMemory ? Outcome::TooMuchMemory : (tookTooLong ? Outcome::TookTooLong : outcome);
}

void ZQRenderProcess::end(int &status)
{
    if (m_process <= 0) {
        return;
    }
    // The group first: as long as its leader is not waited for, nobody else can have its number.
    ::kill(-m_process, SIGKILL);
    ::kill(m_process, SIGKILL);
    while (::waitpid(m_process, &status, 0) < 0 && errno == EINTR) {
    }
    m_process = -1;
}
