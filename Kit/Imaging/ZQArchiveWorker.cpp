#include "Kit/Imaging/ZQArchiveWorker.h"

#include "Kit/Foundation/ZQLog.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

using Outcome = ZQRenderProcess::Outcome;

struct OutcomeEnd
{
    Outcome outcome;
    ZQArchiveEnd::Kind end;
};

constexpr std::array outcomeEnds{
    OutcomeEnd{Outcome::Stopped, ZQArchiveEnd::Kind::Stopped},
    OutcomeEnd{Outcome::TalkedNonsense, ZQArchiveEnd::Kind::Stopped},
    OutcomeEnd{Outcome::TookTooLong, ZQArchiveEnd::Kind::TookTooLong},
    OutcomeEnd{Outcome::TooMuchMemory, ZQArchiveEnd::Kind::TooMuchMemory},
    OutcomeEnd{Outcome::Cancelled, ZQArchiveEnd::Kind::Cancelled},
};

ZQArchiveEnd endOfOutcome(Outcome outcome)
{
    for (const OutcomeEnd &row : outcomeEnds) {
        if (row.outcome == outcome) {
            return {row.end, {}};
        }
    }
    return {ZQArchiveEnd::Kind::Stopped, {}};
}

ZQFileDescriptor openRegularFile(const QString &path)
{
    ZQFileDescriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status
    {
    };
    const bool isRegular = file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? std::move(file) : ZQFileDescriptor();
}

} // namespace

bool ZQArchiveWorker::start(ZQArchiveEnd *end)
{
    QString failure;
    m_process = ZQRenderProcess::start(m_limits, -1, &failure, ZQRenderProcess::Purpose::Archives);
    if (!m_process) {
        qCWarning(zqLogImaging, "%s", qUtf8Printable(failure));
        *end = {ZQArchiveEnd::Kind::Unavailable, failure};
    }
    return m_process != nullptr;
}

bool ZQArchiveWorker::ask(ZQArchiveQuestion::Kind kind, int file, ZQArchiveAnswer *answer, ZQArchiveEnd *end)
{
    if (!m_process) {
        *end = {ZQArchiveEnd::Kind::Stopped, {}};
        return false;
    }
    const ZQRenderProcess::Exchanged got = m_process->exchange(zqEncode(ZQArchiveQuestion{kind}), file, m_limits.time);
    const auto decoded = got.outcome == Outcome::Answered ? zqDecodeArchiveAnswer(got.bytes) : std::nullopt;
    if (!decoded) {
        *end = endOfOutcome(got.outcome == Outcome::Answered ? Outcome::TalkedNonsense : got.outcome);
        m_process.reset();
        return false;
    }
    using Answer = ZQArchiveAnswer::Kind;
    constexpr std::array wanted{Answer::Opened, Answer::Entry, Answer::Block};
    *answer = *decoded;
    if (answer->kind == Answer::End) {
        *end = answer->end;
        return false;
    }
    if (answer->kind != wanted.at(size_t(kind))) {
        *end = {ZQArchiveEnd::Kind::Stopped, {}};
        m_process.reset();
        return false;
    }
    return true;
}

bool ZQArchiveWorker::open(const QString &path, ZQArchiveEnd *end)
{
    const ZQFileDescriptor file = openRegularFile(path);
    if (!file.isOpen()) {
        *end = {ZQArchiveEnd::Kind::Damaged, QString::fromLocal8Bit(std::strerror(errno))};
        return false;
    }
    ZQArchiveAnswer answer;
    return (m_process || start(end)) && ask(ZQArchiveQuestion::Kind::Open, file.get(), &answer, end);
}

std::optional<ZQArchiveEntry> ZQArchiveWorker::nextEntry(ZQArchiveEnd *end)
{
    ZQArchiveAnswer answer;
    return ask(ZQArchiveQuestion::Kind::Entry, -1, &answer, end) ? std::optional(answer.entry) : std::nullopt;
}

std::optional<ZQArchiveSource::Block> ZQArchiveWorker::nextBlock(ZQArchiveEnd *end)
{
    ZQArchiveAnswer answer;
    if (!ask(ZQArchiveQuestion::Kind::Block, -1, &answer, end)) {
        return std::nullopt;
    }
    return Block{m_process->area().first(answer.size), answer.isLast};
}
