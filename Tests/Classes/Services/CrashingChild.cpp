#include "Tests/Classes/Services/CrashingChild.h"

#include "Classes/Services/CrashHandler.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Foundation/ZQSignalStack.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

// Each call needs what the one below it gives, so that none of them can take another's place.
int runOver(int depth)
{
    volatile char room[4096] = {};
    room[depth % 4096] = char(depth);
    return depth < 0 ? 0 : runOver(depth + 1) + room[0];
}

} // namespace

int CrashingChild::crash(const char *folder, const char *how)
{
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    if (!CrashHandler::install(QString::fromLocal8Bit(folder), QStringLiteral("7.8.9"))) {
        return 3;
    }
    qCWarning(zqLogImport).noquote() << "could not read /home/anna/" + planted + ".png, tagged" << planted;
    const std::string way = how;
    if (way == "segv") {
        ::raise(SIGSEGV);
    } else if (way == "thread") {
        std::thread([] { ::raise(SIGBUS); }).join();
    } else if (way == "overflow") {
        std::thread([] {
            const ZQSignalStack stack;
            runOver(0);
        }).join();
    } else if (way == "terminate") {
        throw std::runtime_error(planted.toStdString());
    } else if (way == "fatal") {
        qFatal("%s", qPrintable(planted));
    } else if (way == "forked") {
        const pid_t child = ::fork();
        if (child == 0) {
            std::abort();
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT ? 0 : 4;
    }
    return 5;
}
