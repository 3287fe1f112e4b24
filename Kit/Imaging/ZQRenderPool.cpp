#include "Kit/Imaging/ZQRenderPool.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

using Outcome = ZQRenderProcess::Outcome;

// A worker is replaced now and then, so that what libraries leak does not add up.
constexpr int mostRequests = 5000;
// How often a request looks for another worker when the one it was given has died in its sleep.
constexpr int mostTries = 8;
// How often one that waits looks whether it still has to.
constexpr std::chrono::milliseconds cancellationStep{100};
// Some encoders (AVIF) take many times as long as the decoder of the same picture.
constexpr int encodingTimeFactor = 4;

struct OutcomeText
{
    Outcome outcome;
    ZQImagingErrorCode code;
    const char *text;
};

constexpr std::array outcomeTexts{
    OutcomeText{Outcome::Stopped, ZQImagingErrorCode::RendererStopped,
                zqKey("The picture \"%@\" could not be drawn: the renderer stopped.")},
    OutcomeText{Outcome::TalkedNonsense, ZQImagingErrorCode::RendererStopped,
                zqKey("The picture \"%@\" could not be drawn: the renderer stopped.")},
    OutcomeText{Outcome::TookTooLong, ZQImagingErrorCode::TookTooLong,
                zqKey("The picture \"%@\" could not be drawn: it took too long.")},
    OutcomeText{Outcome::Cancelled, ZQImagingErrorCode::Cancelled,
                zqKey("The picture \"%@\" was not drawn: that was cancelled.")},
    OutcomeText{Outcome::TooMuchMemory, ZQImagingErrorCode::TooMuchMemory,
                zqKey("The picture \"%@\" could not be drawn: it needs too much memory.")},
};

ZQError errorOfOutcome(Outcome outcome, const QString &path)
{
    for (const OutcomeText &row : outcomeTexts) {
        if (row.outcome == outcome) {
            const QString text = zqFormat(zqLocalized(row.text), {QFileInfo(path).fileName()});
            return ZQError::with(QStringLiteral("zelto.imaging"), int(row.code), text);
        }
    }
    return {};
}

// Opened here, so that the worker needs no access to any folder.
ZQFileDescriptor openFile(const QString &path, ZQError *error)
{
    ZQFileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status
    {
    };
    const bool opened = file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (!opened) {
        zqSetError(error,
                   zqImagingError(ZQImagingErrorCode::CannotRead, path,
                                  zqLocalized("It does not exist or you don't have the permission to read it.")));
        return ZQFileDescriptor();
    }
    if (status.st_size == 0) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::Empty, path, zqLocalized("The file is empty.")));
        return ZQFileDescriptor();
    }
    return file;
}

// Fills `error` when the reply is none, or says that there can be none.
bool isAnswered(const ZQRenderProcess::Reply &reply, const QString &path, ZQError *error)
{
    const bool isError = reply.outcome == Outcome::Answered && reply.answer.kind == ZQRenderAnswer::Kind::Error;
    Outcome outcome = reply.outcome;
    if (isError && reply.answer.code == ZQImagingErrorCode::TooMuchMemory) {
        outcome = Outcome::TooMuchMemory; // noticed in time
    } else if (isError && reply.answer.code == ZQImagingErrorCode::TookTooLong) {
        outcome = Outcome::TookTooLong;
    }
    if (outcome == Outcome::Answered) {
        return true;
    }
    const ZQError told = errorOfOutcome(outcome, path);
    if (outcome != Outcome::Cancelled) {
        qCWarning(zqLogImaging, "%s", qUtf8Printable(told.localizedDescription()));
    }
    zqSetError(error, told);
    return false;
}

// Folders of workers whose application was killed.
void removeLeftFolders()
{
    const QDir temporary(QDir::tempPath());
    for (const QFileInfo &info : temporary.entryInfoList({QStringLiteral("zelto-render.*")}, QDir::Dirs)) {
        const QString process = info.fileName().section(u'.', 1, 1);
        if (info.ownerId() == ::geteuid() && !QFileInfo::exists(QStringLiteral("/proc/") + process)) {
            zqRemoveTree(QFile::encodeName(info.filePath()));
        }
    }
}

} // namespace

ZQRenderPool::ZQRenderPool(ZQRenderLimits limits) : m_limits(limits), m_keeper([this] { keep(); }) {}

ZQRenderPool::~ZQRenderPool()
{
    close();
}

ZQRenderPool &ZQRenderPool::shared()
{
    // Never destroyed: threads may still ask while the program ends.
    static ZQRenderPool *const pool = [] {
        auto *const made = new ZQRenderPool;
        std::atexit([] { shared().close(); });
        return made;
    }();
    return *pool;
}

void ZQRenderPool::close()
{
    {
        const ZQLockGuard lock(m_mutex);
        if (m_closed) {
            return;
        }
        m_closed = true;
        for (const ZQRenderProcess *process : m_busy) {
            process->interrupt();
        }
        m_keeperCalled.notifyAll();
        m_changed.notifyAll();
    }
    m_keeper.join();
    std::vector<Idle> idle; // ended without the lock
    const ZQLockGuard lock(m_mutex);
    idle.swap(m_idle);
}

std::vector<pid_t> ZQRenderPool::processIDs() const
{
    const ZQLockGuard lock(m_mutex);
    std::vector<pid_t> out;
    for (const Idle &idle : m_idle) {
        out.push_back(idle.process->processID());
    }
    for (const ZQRenderProcess *process : m_busy) {
        out.push_back(process->processID());
    }
    return out;
}

void ZQRenderPool::keep()
{
    removeLeftFolders();
    const ZQLockGuard lock(m_mutex);
    while (!m_closed) {
        if (m_wanted > 0) {
            startOne();
            continue;
        }
        if (m_count == 0) {
            m_keeperCalled.wait(m_mutex);
        } else {
            m_keeperCalled.waitFor(m_mutex, m_limits.idle);
        }
        std::vector<Process> expired = takeExpired();
        const ZQUnlockGuard open(m_mutex);
        expired.clear();
    }
    // The workers end with the thread that started them, which would look as if memory had run out.
    const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (!m_busy.empty() && m_changed.waitUntil(m_mutex, latest)) {
    }
}

void ZQRenderPool::startOne()
{
    constexpr std::chrono::milliseconds longestStart{5000};
    QString failure;
    Process process;
    {
        const ZQUnlockGuard open(m_mutex);
        process = ZQRenderProcess::start(m_limits, -1, &failure);
    }
    if (process) {
        // One after another: two that load their libraries at once are both late, and the first may be enough.
        m_busy.push_back(process.get()); // closing the pool interrupts it
        const ZQUnlockGuard open(m_mutex);
        process->waitUntilReady(longestStart);
    }
    std::erase(m_busy, process.get());
    --m_wanted;
    if (process) {
        m_idle.push_back({std::move(process), std::chrono::steady_clock::now(), 0});
    } else {
        qCWarning(zqLogImaging, "%s", qUtf8Printable(failure));
        --m_count;
        ++m_failures;
        m_failure = failure;
    }
    m_changed.notifyAll();
}

std::vector<ZQRenderPool::Process> ZQRenderPool::takeExpired()
{
    const auto limit = std::chrono::steady_clock::now() - m_limits.idle;
    std::vector<Process> expired;
    std::erase_if(m_idle, [&](Idle &idle) {
        if (idle.since > limit) {
            return false;
        }
        expired.push_back(std::move(idle.process));
        return true;
    });
    m_count -= int(expired.size());
    return expired;
}

void ZQRenderPool::prepare()
{
    const ZQLockGuard lock(m_mutex);
    if (m_count == 0 && !m_closed) {
        ++m_count;
        ++m_wanted;
        m_keeperCalled.notifyOne();
    }
}

ZQRenderPool::Taken ZQRenderPool::take(Idle &out, QString *failure)
{
    const ZQLockGuard lock(m_mutex);
    const quint64 failures = m_failures;
    while (m_idle.empty() && !m_closed && m_failures == failures) {
        if (m_count < m_limits.processesOrDefault() && m_wanted == 0) {
            ++m_count;
            ++m_wanted;
            m_keeperCalled.notifyOne();
        }
        if (ZQCancellation::isCurrentCancelled()) {
            return Taken::Cancelled;
        }
        m_changed.waitFor(m_mutex, cancellationStep);
    }
    if (m_closed) {
        *failure = zqLocalized("Zelto is about to quit.");
        return Taken::Nothing;
    }
    if (m_idle.empty()) {
        *failure = m_failure;
        return Taken::Nothing;
    }
    out = std::move(m_idle.back());
    m_idle.pop_back();
    m_busy.push_back(out.process.get());
    return Taken::Worker;
}

void ZQRenderPool::giveBack(Idle idle)
{
    ++idle.requests;
    if (idle.requests >= mostRequests) {
        drop(std::move(idle));
        return;
    }
    {
        const ZQLockGuard lock(m_mutex);
        std::erase(m_busy, idle.process.get());
        idle.since = std::chrono::steady_clock::now();
        m_idle.push_back(std::move(idle));
    }
    m_changed.notifyAll();
}

void ZQRenderPool::drop(Idle idle)
{
    {
        const ZQLockGuard lock(m_mutex);
        std::erase(m_busy, idle.process.get());
    }
    idle.process.reset(); // before another takes its place
    {
        const ZQLockGuard lock(m_mutex);
        --m_count;
    }
    m_changed.notifyAll();
}

ZQRenderProcess::Reply ZQRenderPool::ask(const ZQRenderRequest &request, int file, int output, QString *failure)
{
    const auto time = output >= 0 ? m_limits.time * encodingTimeFactor : m_limits.time;
    for (int i = 0; i < mostTries; ++i) {
        Idle idle;
        if (const Taken taken = take(idle, failure); taken != Taken::Worker) {
            return {taken == Taken::Cancelled ? Outcome::Cancelled : Outcome::Stopped, {}, {}, {}, {}};
        }
        if (!idle.process->send(request, file, output)) {
            drop(std::move(idle));
            continue;
        }
        ZQRenderProcess::Reply reply = idle.process->receive(request, time);
        if (reply.outcome == Outcome::Answered) {
            giveBack(std::move(idle));
        } else {
            drop(std::move(idle));
        }
        return reply;
    }
    *failure = zqLocalized("The program \"zelto-render\" that draws pictures ends as soon as it is started.");
    return {};
}

// In a worker of its own, the only one that may open the file by its path, which such programs need.
ZQBitmap ZQRenderPool::askThumbnailer(const QString &path, QSize box, int file)
{
    QString failure;
    const Process process = ZQRenderProcess::start(m_limits, file, &failure);
    const ZQRenderRequest request{ZQRenderRequest::Kind::Thumbnailer, box, 0, QFileInfo(path).absoluteFilePath(),
                                  false};
    if (!process || !process->send(request, file)) {
        qCWarning(zqLogImaging, "no thumbnailer can be started: %s", qUtf8Printable(failure));
        return {};
    }
    return process->receive(request, m_limits.time).bitmap;
}

ZQRenderPool::Result ZQRenderPool::perform(ZQRenderRequest::Kind kind, const QString &path, QSize box, int frame,
                                           ZQError *error, bool withProperties)
{
    const ZQFileDescriptor file = openFile(path, error);
    if (!file.isOpen()) {
        return {};
    }
    QString failure;
    const ZQRenderProcess::Reply reply =
        ask({kind, box, frame, QFileInfo(path).fileName(), withProperties}, file.get(), -1, &failure);
    if (!failure.isEmpty()) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::NoRenderer, path, failure));
        return {};
    }
    const bool isError = reply.answer.kind == ZQRenderAnswer::Kind::Error;
    if (!isAnswered(reply, path, error)) {
        return {};
    }
    const bool hasProperties =
        reply.answer.kind == ZQRenderAnswer::Kind::Properties || (withProperties && reply.answer.hasProperties);
    const auto properties = hasProperties ? std::optional(reply.answer.properties) : std::nullopt;
    if (!isError) {
        return {properties, reply.bitmap, reply.bytes};
    }
    if (kind == ZQRenderRequest::Kind::Preview && reply.answer.hasThumbnailer) {
        const ZQBitmap drawn = askThumbnailer(path, box, file.get());
        if (!drawn.isNull()) {
            return {properties, drawn, {}};
        }
    }
    zqSetError(error, zqImagingError(reply.answer.code, path, reply.answer.reason));
    return {properties, {}, {}};
}

std::optional<ZQExportedImage> ZQRenderPool::exportFile(const QString &path, const ZQExportEncoding &encoding,
                                                        int output, ZQError *error)
{
    const ZQFileDescriptor file = openFile(path, error);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    ZQRenderRequest request;
    request.kind = ZQRenderRequest::Kind::Export;
    request.name = QFileInfo(path).fileName();
    request.encoding = encoding;
    QString failure;
    const ZQRenderProcess::Reply reply = ask(request, file.get(), output, &failure);
    if (!failure.isEmpty()) {
        zqSetError(error, zqExportError(ZQImagingErrorCode::NoRenderer, path, failure));
        return std::nullopt;
    }
    if (!isAnswered(reply, path, error)) {
        return std::nullopt;
    }
    if (reply.answer.kind == ZQRenderAnswer::Kind::CannotWrite) {
        zqSetError(error, ZQError::posix(reply.answer.systemError, path));
        return std::nullopt;
    }
    if (reply.answer.kind == ZQRenderAnswer::Kind::Error) {
        zqSetError(error, zqExportError(reply.answer.code, path, reply.answer.reason));
        return std::nullopt;
    }
    struct stat written = {};
    if (::fstat(output, &written) != 0 || written.st_size == 0) { // whatever the worker says
        zqSetError(error, errorOfOutcome(Outcome::TalkedNonsense, path));
        return std::nullopt;
    }
    return ZQExportedImage{reply.answer.size, reply.answer.isIncomplete, reply.answer.isFirstOfSeveral,
                           reply.answer.isReduced};
}

std::optional<ZQPackedPicture> ZQRenderPool::planesOfFile(const QString &path, const QRect &window, ZQError *error)
{
    const ZQFileDescriptor file = openFile(path, error);
    if (!file.isOpen()) {
        return std::nullopt;
    }
    ZQRenderRequest request;
    request.kind = ZQRenderRequest::Kind::Planes;
    request.name = QFileInfo(path).fileName();
    request.window = window;
    QString failure;
    const ZQRenderProcess::Reply reply = ask(request, file.get(), -1, &failure);
    if (!failure.isEmpty()) {
        zqSetError(error, zqImagingError(ZQImagingErrorCode::NoRenderer, path, failure));
        return std::nullopt;
    }
    if (!isAnswered(reply, path, error)) {
        return std::nullopt;
    }
    if (!reply.planes) {
        zqSetError(error, zqImagingError(reply.answer.code, path, reply.answer.reason));
    }
    return reply.planes;
}
