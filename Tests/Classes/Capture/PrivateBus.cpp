#include "Tests/Classes/Capture/PrivateBus.h"

#include <QByteArray>

#include <csignal>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

PrivateBus::PrivateBus()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return;
    }
    m_daemon = ::fork();
    if (m_daemon == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::close(ends[0]);
        const std::string print = "--print-address=" + std::to_string(ends[1]);
        ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", print.c_str(),
                 static_cast<char *>(nullptr));
        ::_exit(127);
    }
    ::close(ends[1]);
    QByteArray address;
    for (char byte = 0; ::read(ends[0], &byte, 1) == 1 && byte != '\n';) {
        address += byte;
    }
    ::close(ends[0]);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.isEmpty() ? QByteArray("unix:path=/nonexistent") : address);
}

PrivateBus::~PrivateBus()
{
    if (m_daemon > 0) {
        ::kill(m_daemon, SIGTERM);
        ::waitpid(m_daemon, nullptr, 0);
    }
}
