#pragma once

#include <sys/types.h>

// A session bus that nobody else is on; the environment names it, and it ends with this object or with the process. To
// be made before there are threads.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

private:
    pid_t m_daemon = -1;
};
