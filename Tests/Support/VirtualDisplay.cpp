#include "Tests/Support/VirtualDisplay.h"

#include <QByteArray>

#include <csignal>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

VirtualDisplay::VirtualDisplay()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) {
        return;
    }
    m_server = ::fork();
    if (m_server == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::close(ends[0]);
        const std::string descriptor = std::to_string(ends[1]);
        ::execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "1400x900x24", "-nolisten", "tcp",
                 "-noreset", static_cast<char *>(nullptr));
        ::_exit(127);
    }
    ::close(ends[1]);
    QByteArray number;
    for (char digit = 0; ::read(ends[0], &digit, 1) == 1 && digit != '\n';) {
        number += digit;
    }
    ::close(ends[0]);
    if (!number.isEmpty()) {
        qputenv("DISPLAY", ':' + number);
    }
    qputenv("QT_QPA_PLATFORM", number.isEmpty() ? "offscreen" : "xcb");
}

VirtualDisplay::~VirtualDisplay()
{
    if (m_server > 0) {
        ::kill(m_server, SIGTERM);
        ::waitpid(m_server, nullptr, 0);
    }
}
