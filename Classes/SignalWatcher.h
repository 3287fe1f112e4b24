#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

// Turns SIGINT and SIGTERM into a call on the main thread's event loop, so that ending politely is one code path. One
// at a time.
class SignalWatcher
{
public:
    explicit SignalWatcher(std::function<void()> react);
    ~SignalWatcher();
    // Whether a signal came to any of them yet. Any thread.
    static bool hasCome();
    SignalWatcher(const SignalWatcher &) = delete;
    SignalWatcher &operator=(const SignalWatcher &) = delete;

private:
    int m_ends[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> m_notifier;
};
