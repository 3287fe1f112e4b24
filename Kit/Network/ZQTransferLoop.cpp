#include "Kit/Network/ZQTransferLoop.h"

#include <mutex>

namespace {

ZQTransferLoop::Mover *moverOf(CURL *handle)
{
    ZQTransferLoop::Mover *mover = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &mover);
    return mover;
}

CURLM *makeMulti()
{
    static std::once_flag isReady;
    std::call_once(isReady, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    return curl_multi_init();
}

} // namespace

ZQTransferLoop::ZQTransferLoop() : m_multi(makeMulti())
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { move(CURL_SOCKET_TIMEOUT); });
    if (m_multi) {
        curl_multi_setopt(m_multi, CURLMOPT_SOCKETFUNCTION, watchSocket);
        curl_multi_setopt(m_multi, CURLMOPT_SOCKETDATA, this);
        curl_multi_setopt(m_multi, CURLMOPT_TIMERFUNCTION, setTimer);
        curl_multi_setopt(m_multi, CURLMOPT_TIMERDATA, this);
    }
}

ZQTransferLoop::~ZQTransferLoop()
{
    if (m_multi) {
        curl_multi_cleanup(m_multi);
    }
}

bool ZQTransferLoop::add(CURL *handle)
{
    return m_multi && curl_multi_add_handle(m_multi, handle) == CURLM_OK;
}

void ZQTransferLoop::remove(CURL *handle)
{
    curl_multi_remove_handle(m_multi, handle);
}

int ZQTransferLoop::watchSocket(CURL *handle, curl_socket_t socket, int what, void *self, void *)
{
    auto *const loop = static_cast<ZQTransferLoop *>(self);
    Mover *const mover = moverOf(handle);
    if (what == CURL_POLL_REMOVE) {
        if (mover) {
            mover->willLeaveSocket(socket);
        }
        const auto found = loop->m_watches.find(socket);
        if (found != loop->m_watches.end()) {
            loop->watch(found->second.reading, socket, QSocketNotifier::Read, false);
            loop->watch(found->second.writing, socket, QSocketNotifier::Write, false);
            loop->m_watches.erase(found);
        }
        return 0;
    }
    if (mover) {
        mover->usesSocket(socket);
    }
    Watch &watch = loop->m_watches[socket];
    loop->watch(watch.reading, socket, QSocketNotifier::Read, what & CURL_POLL_IN);
    loop->watch(watch.writing, socket, QSocketNotifier::Write, what & CURL_POLL_OUT);
    return 0;
}

void ZQTransferLoop::watch(std::unique_ptr<QSocketNotifier> &notifier, curl_socket_t socket, QSocketNotifier::Type type,
                           bool isOn)
{
    if (isOn && !notifier) {
        notifier = std::make_unique<QSocketNotifier>(socket, type);
        connect(notifier.get(), &QSocketNotifier::activated, this, [this, socket] { move(socket); });
    } else if (!isOn && notifier) {
        notifier->setEnabled(false);
        notifier.release()->deleteLater(); // it may be the one that is telling
    }
}

int ZQTransferLoop::setTimer(CURLM *, long milliseconds, void *self)
{
    QTimer &timer = static_cast<ZQTransferLoop *>(self)->m_timer;
    if (milliseconds < 0) {
        timer.stop();
    } else {
        timer.start(std::chrono::milliseconds(milliseconds));
    }
    return 0;
}

// Whether it can be read from or written to, the library looks itself: what a server says is read before more is sent.
void ZQTransferLoop::move(curl_socket_t socket)
{
    int running = 0;
    curl_multi_socket_action(m_multi, socket, 0, &running);
    int left = 0;
    while (const CURLMsg *const message = curl_multi_info_read(m_multi, &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        const CURLcode code = message->data.result;
        if (Mover *const mover = moverOf(message->easy_handle)) {
            mover->ended(code);
        }
    }
}
