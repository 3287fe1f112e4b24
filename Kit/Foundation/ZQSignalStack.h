#pragma once

#include <memory>

// A stack for the handlers of signals in the thread that makes one, for as long as it lives: a thread whose own stack
// ran over has no room to report that, and stacks for handlers are no matter of the process but of each thread. One
// that the thread has already stays.
class ZQSignalStack
{
public:
    ZQSignalStack();
    ~ZQSignalStack(); // in the same thread
    ZQSignalStack(const ZQSignalStack &) = delete;
    ZQSignalStack &operator=(const ZQSignalStack &) = delete;

private:
    std::unique_ptr<char[]> m_memory; // null: not ours
};
