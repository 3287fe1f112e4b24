#pragma once

#include <sys/types.h>

// An X display that nobody sees, with a server of its own which ends with this object, or with the process. To be made
// before there are threads; the environment names it from then on.
class VirtualDisplay
{
public:
    VirtualDisplay();
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay &) = delete;
    VirtualDisplay &operator=(const VirtualDisplay &) = delete;

private:
    pid_t m_server = -1;
};
