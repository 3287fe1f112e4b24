#pragma once

#include "Classes/Command/CommandContext.h"

#include <QTimer>

#include <functional>

// Calls `cancel` again and again once nobody waits for the answer of a command any more, as after its Ctrl+C. Also
// while another command runs in a main loop inside this one's, which would keep the outer loop from looking. Main
// thread.
class AbandonWatch
{
public:
    AbandonWatch(const CommandContext &command, std::function<void()> cancel)
    {
        if (!command.isAbandoned) {
            return;
        }
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer,
                         [isAbandoned = command.isAbandoned, cancel = std::move(cancel)] {
                             if (isAbandoned()) {
                                 cancel();
                             }
                         });
        m_timer.start(interval);
    }

private:
    static constexpr std::chrono::milliseconds interval{20};
    QTimer m_timer;
};
