#include "Classes/Capture/DevToolsPipe.h"

#include "Kit/Foundation/ZQCancellation.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds cancellationStep = 50ms;
constexpr qsizetype pieceSize = qsizetype(1) << 18;

void setNonBlocking(int descriptor)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

bool isToBeTriedAgain(ssize_t result)
{
    return result < 0 && (errno == EAGAIN || errno == EINTR);
}

} // namespace

DevToolsPipe::DevToolsPipe(ZQFileDescriptor toBrowser, ZQFileDescriptor fromBrowser)
    : m_toBrowser(std::move(toBrowser)), m_fromBrowser(std::move(fromBrowser))
{
    setNonBlocking(m_toBrowser.get());
    setNonBlocking(m_fromBrowser.get());
}

DevToolsPipe::Outcome DevToolsPipe::wait(int descriptor, short events, Time end) const
{
    using namespace std::chrono;
    pollfd waited{descriptor, events, 0};
    for (;;) {
        if (ZQCancellation::isCurrentCancelled()) {
            return Outcome::Cancelled;
        }
        const auto left = ceil<milliseconds>(end - steady_clock::now());
        const int ready = ::poll(&waited, 1, int(std::clamp(left, 0ms, cancellationStep).count()));
        if (ready > 0) {
            return Outcome::Done;
        }
        if (ready < 0 && errno != EINTR) {
            return Outcome::Closed;
        }
        if (left <= 0ms) {
            return Outcome::TimeIsUp;
        }
    }
}

DevToolsPipe::Outcome DevToolsPipe::send(const QByteArray &message, Time end)
{
    const QByteArray whole = message + '\0';
    for (qsizetype sent = 0; sent < whole.size();) {
        const ssize_t size =
            ::send(m_toBrowser.get(), whole.constData() + sent, size_t(whole.size() - sent), MSG_NOSIGNAL);
        if (size > 0) {
            sent += size;
            continue;
        }
        if (!isToBeTriedAgain(size)) {
            return Outcome::Closed;
        }
        if (const Outcome outcome = wait(m_toBrowser.get(), POLLOUT, end); outcome != Outcome::Done) {
            return outcome;
        }
    }
    return Outcome::Done;
}

DevToolsPipe::Outcome DevToolsPipe::receive(QByteArray &message, Time end)
{
    for (;;) {
        if (const qsizetype at = m_received.indexOf('\0', m_searched); at >= 0) {
            message = m_received.left(at);
            m_received.remove(0, at + 1);
            m_searched = 0;
            return Outcome::Done;
        }
        m_searched = m_received.size();
        if (m_searched > longestMessage) {
            return Outcome::TooLong;
        }
        if (const Outcome outcome = wait(m_fromBrowser.get(), POLLIN, end); outcome != Outcome::Done) {
            return outcome;
        }
        m_received.resize(m_searched + pieceSize);
        const ssize_t size = ::read(m_fromBrowser.get(), m_received.data() + m_searched, size_t(pieceSize));
        const bool isAgain = isToBeTriedAgain(size);
        m_received.resize(m_searched + std::max<ssize_t>(size, 0));
        if (size <= 0 && !isAgain) {
            return Outcome::Closed;
        }
    }
}
