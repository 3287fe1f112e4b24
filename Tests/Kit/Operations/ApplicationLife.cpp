#include "Tests/Kit/Operations/ApplicationLife.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QCoreApplication>

#include <cstdio>
#include <future>
#include <optional>
#include <thread>

namespace {

using namespace std::chrono_literals;

void say(const char *what)
{
    std::puts(what);
}

// Another thread's call, with a moment for it to begin waiting.
std::future<bool> callFromElsewhere(const char *what)
{
    auto called = std::async(std::launch::async, [what] { return zqOnMainThreadAndWait([what] { say(what); }); });
    std::this_thread::sleep_for(50ms);
    return called;
}

void sayWhether(bool ran)
{
    say(ran ? "ran" : "refused");
}

} // namespace

int liveAnApplicationsLife(int argc, char **argv)
{
    zqOnMainThread([] { say("first"); });
    zqOnMainThread([] { say("second"); });
    sayWhether(callFromElsewhere("too early").get());
    int steps = 0;
    zqRunMainLoopUntil([&] { return ++steps == 3; }, 1ms);
    std::optional<QCoreApplication> application(std::in_place, argc, argv);
    say("application");
    zqRunMainLoopFor(1ms);
    auto waiting = callFromElsewhere("while it ends");
    application.reset();
    sayWhether(waiting.get());
    sayWhether(callFromElsewhere("too late").get());
    zqOnMainThread([] { say("never"); });
    zqRunMainLoopFor(1ms);
    return 0;
}
