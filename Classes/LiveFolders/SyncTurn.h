#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>

// How long a run works before it makes way for others. What it looked at it looks at again when its turn comes back, so
// that a turn is several times as long as that takes. Made where the run begins; `endSoon` on any thread, all else on
// the run's.
class SyncTurn
{
public:
    using Clock = std::chrono::steady_clock;

    struct Length
    {
        Clock::duration shortest = std::chrono::seconds(1);
        int timesItsLooks = 3;
    };
    void setLength(Length length) { m_length = length; } // before the run
    void endSoon() { m_isEndWanted = true; }             // somebody else waits

    void begin() { m_start = Clock::now(); }
    // All is looked at; what follows is kept.
    void beginReading()
    {
        const auto now = Clock::now();
        m_earliestEnd = now + std::max(m_length.shortest, m_length.timesItsLooks * (now - m_start));
    }
    bool isOver() const { return m_isEndWanted && Clock::now() >= m_earliestEnd; }

private:
    Length m_length;
    Clock::time_point m_start;
    Clock::time_point m_earliestEnd = Clock::time_point::max();
    std::atomic<bool> m_isEndWanted = false;
};
