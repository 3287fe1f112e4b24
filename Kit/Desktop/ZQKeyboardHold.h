#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <chrono>
#include <thread>

// Keeps keys from other programs until a view is there that takes them: from the moment a hot key was pressed a person
// types for this one. Takes the keyboard of an X display as soon as nobody else holds it (the hot key's own grab does
// while it is down), on a thread of its own, so that work in the main thread leaves no gap. Lets go after `limit`
// whatever happens, and with its end; the server does so when the process ends. On other displays it does nothing.
class ZQKeyboardHold
{
public:
    static constexpr std::chrono::milliseconds usualLimit{3000};
    explicit ZQKeyboardHold(std::chrono::milliseconds limit = usualLimit);
    ~ZQKeyboardHold(); // once it returns others can have the keyboard
    ZQKeyboardHold(const ZQKeyboardHold &) = delete;
    ZQKeyboardHold &operator=(const ZQKeyboardHold &) = delete;

private:
    void hold(std::chrono::steady_clock::time_point end);
    bool isStoppedBefore(std::chrono::steady_clock::time_point time);

    ZQMutex m_mutex;
    ZQCondition m_changed;
    bool m_isStopped ZQ_GUARDED_BY(m_mutex) = false;
    std::thread m_thread;
};
