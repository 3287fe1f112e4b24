#include "Tests/Benchmarks/Window/EditsBench.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQMainThread.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <future>

namespace {

double heldMemory() // of this process, in MB
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS")) {
                return line.simplified().split(' ').value(1).toDouble() / 1024;
            }
        }
    }
    return 0;
}

// Prints under `name` what an edit of many items takes and leaves behind.
void measure(const char *name, MainWindowController &controller, const std::function<void()> &edit)
{
    double highest = heldMemory();
    const double before = highest;
    QTimer watch;
    watch.callOnTimeout([&highest] { highest = std::max(highest, heldMemory()); });
    watch.start(100);
    QElapsedTimer clock;
    clock.start();
    edit();
    zqRunMainLoopUntil([&] { return !controller.isEditing(); });
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    const auto writing =
        std::async(std::launch::async, [] { TagFileWriter::sharedTagFileWriter().waitUntilAllWritten(); });
    zqRunMainLoopUntil([&] { return writing.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    settleWindow(controller);
    std::printf("%s-s %.3f\n%s-added-mb %.2f\n%s-left-mb %.2f\n", name, seconds, name, highest - before, name,
                heldMemory() - before);
    std::fflush(stdout);
}

} // namespace

void settleWindow(const MainWindowController &controller)
{
    for (int quiet = 0; quiet < 5;) {
        zqRunMainLoopFor(std::chrono::milliseconds(20));
        quiet = controller.isSettled() ? quiet + 1 : 0;
    }
}

void measureEdits(MainWindowController &controller)
{
    ZQGridView &grid = controller.browser().grid();
    // Else the first edit would be charged with what the index takes while it is built.
    const auto index = ContentFetcher::Ticket(controller.fetcher(), ContentFetcher::Priority::Counts).index();
    zqRunMainLoopUntil([&index] { return index->isReady(); });
    index->waitUntilOrdered();
    const auto selectAll = [&] {
        grid.selectAll();
        settleWindow(controller);
    };
    selectAll();
    std::printf("items %lld\nheld-mb %.2f\n", static_cast<long long>(grid.selection().count()), heldMemory());
    measure("removing", controller, [&] { controller.browser().removeFromProject(); });
    measure("returning", controller, [&] { controller.undoStack().undo(); });
    selectAll();
    measure("rating", controller, [&controller] { controller.browser().rate(1); });
    measure("rating-undone", controller, [&] { controller.undoStack().undo(); });
}
