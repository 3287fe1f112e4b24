#include "Classes/SignalWatcher.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {
// Written by the handler, which may do nothing but write.
int handlerEnd = -1;
volatile std::sig_atomic_t signalHasCome = 0;

void noteSignal(int)
{
    signalHasCome = 1;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(handlerEnd, &byte, 1);
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}
} // namespace

SignalWatcher::SignalWatcher(std::function<void()> react)
{
    if (::pipe2(m_ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    handlerEnd = m_ends[1];
    m_notifier = std::make_unique<QSocketNotifier>(m_ends[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this, react = std::move(react)] {
        char bytes[16];
        while (::read(m_ends[0], bytes, sizeof bytes) > 0) {
        }
        react();
    });
    setHandler(noteSignal);
}

bool SignalWatcher::hasCome()
{
    return signalHasCome != 0;
}

SignalWatcher::~SignalWatcher()
{
    if (m_notifier) {
        setHandler(SIG_DFL);
        m_notifier.reset();
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
}
