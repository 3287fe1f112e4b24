#pragma once

#include <atomic>
#include <memory>

// Whether the work that a thread does at this moment is still wanted. Who starts work makes one and sets it for the
// thread by a `Scope` (each ZQOperation does, and cancels it with itself); what takes long, however deep below, asks
// `isCurrentCancelled()`, so that no function in between has to hand it on. Any thread may cancel.
class ZQCancellation
{
public:
    void cancel() { m_isCancelled = true; }
    bool isCancelled() const { return m_isCancelled; }

    // Makes `cancellation` the thread's own until it goes; null is one that never happens.
    class Scope
    {
    public:
        explicit Scope(std::shared_ptr<const ZQCancellation> cancellation);
        ~Scope();
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        std::shared_ptr<const ZQCancellation> m_previous;
    };
    static bool isCurrentCancelled();
    // The thread's own, for another thread that works for it; null for none.
    static std::shared_ptr<const ZQCancellation> current();

private:
    std::atomic_bool m_isCancelled = false;
};
