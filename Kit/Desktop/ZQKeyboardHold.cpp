#include "Kit/Desktop/ZQKeyboardHold.h"

#include "Kit/Desktop/ZQXConnection.h"

#include <algorithm>

using std::chrono::steady_clock;

namespace {
constexpr std::chrono::milliseconds retryPause(2);
} // namespace

ZQKeyboardHold::ZQKeyboardHold(std::chrono::milliseconds limit)
    : m_thread([this, end = steady_clock::now() + limit] { hold(end); })
{
}

ZQKeyboardHold::~ZQKeyboardHold()
{
    {
        const ZQLockGuard guard(m_mutex);
        m_isStopped = true;
    }
    m_changed.notifyAll();
    m_thread.join();
}

// May come back before that time.
bool ZQKeyboardHold::isStoppedBefore(steady_clock::time_point time)
{
    const ZQLockGuard guard(m_mutex);
    if (!m_isStopped) {
        m_changed.waitUntil(m_mutex, time);
    }
    return m_isStopped;
}

void ZQKeyboardHold::hold(steady_clock::time_point end)
{
    const auto connection = ZQXConnection::open();
    bool isHeld = false;
    while (connection && !isHeld && steady_clock::now() < end &&
           !isStoppedBefore(std::min(end, steady_clock::now() + retryPause))) {
        const auto cookie = xcb_grab_keyboard(connection->get(), 0, connection->root(), XCB_CURRENT_TIME,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const ZQXReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection->get(), cookie, nullptr));
        isHeld = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    while (isHeld && steady_clock::now() < end && !isStoppedBefore(end)) {
    }
    if (isHeld) {
        // Done before anybody else asks for it.
        connection->wasDone(xcb_ungrab_keyboard_checked(connection->get(), XCB_CURRENT_TIME));
    }
}
