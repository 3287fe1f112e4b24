#pragma once

#include <functional>
#include <utility>

// The way to take back a question that lost its reason while a person looked at it. Whoever asks keeps one end of it,
// the question carries the other; a withdrawn question is answered as if it had been cancelled. Main thread.
class QuestionWithdrawal
{
public:
    // How the question that is shown now ends; null: it is not shown any more.
    void setEnd(std::function<void()> end) { m_end = std::move(end); }
    void withdraw()
    {
        m_isWithdrawn = true;
        if (const auto end = std::exchange(m_end, nullptr)) {
            end();
        }
    }
    bool isWithdrawn() const { return m_isWithdrawn; }

private:
    std::function<void()> m_end;
    bool m_isWithdrawn = false;
};
