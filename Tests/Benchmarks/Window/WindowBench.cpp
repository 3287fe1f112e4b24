// Tags every item of a library in its window while the grid is scrolled, and prints figures by name.
//
// zelto_window_bench LIBRARY SIDEBAR-TITLE TAG
// zelto_window_bench LIBRARY SIDEBAR-TITLE       edits of everything in a project instead
// zelto_window_bench --first LIBRARY             the first screen alone
// zelto_window_bench --browse LIBRARY [PICTURES] what a person waits for who browses; with edits where there are
// pictures
//
// The grid is scrolled and painted for each sixtieth of a second. A frame whose picture is there only after its time is
// late; the times between two pictures are printed as well.

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/TagField.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Classes/Interface/Window/WindowUserInteraction.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Imaging/ZQImageSource.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Benchmarks/Window/BrowsingBench.h"
#include "Tests/Benchmarks/Window/EditsBench.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <future>

namespace {

constexpr double frame = 1000.0 / 60; // milliseconds
constexpr int scrollStep = 24;

// Scrolls and paints at the times a screen of 60 pictures a second would ask for.
class Scroller
{
public:
    explicit Scroller(ZQGridView &grid) : m_grid(grid)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] { paint(); });
    }
    void start()
    {
        m_clock.start();
        m_painted = 0;
        m_longest = 0;
        m_last = 0;
        m_due = frame;
        schedule();
    }
    // Prints under `name` what was seen since the start.
    void stop(const char *name)
    {
        m_timer.stop();
        const double seconds = now() / 1000;
        std::printf("%s-fps %.2f\n%s-longest-ms %.2f\n", name, m_painted / seconds, name, m_longest);
    }

private:
    double now() const { return double(m_clock.nsecsElapsed()) / 1e6; }
    void schedule() { m_timer.start(std::max(0, int(m_due - now()))); }
    void paint()
    {
        const qint64 offset = m_grid.scrollOffset() + m_direction * scrollStep;
        m_grid.setScrollOffset(offset);
        if (m_grid.scrollOffset() != offset) {
            m_direction = -m_direction;
        }
        m_grid.viewport()->repaint();
        const double painted = now();
        m_longest = std::max(m_longest, painted - m_last);
        m_last = painted;
        ++m_painted;
        // Pictures whose time is over are not made up for.
        do {
            m_due += frame;
        } while (m_due < painted);
        schedule();
    }

    ZQGridView &m_grid;
    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_due = 0;
    double m_last = 0;
    double m_longest = 0;
    double m_painted = 0;
    int m_direction = 1;
};

int fail(const char *text)
{
    std::fprintf(stderr, "zelto_window_bench: %s\n", text);
    return 2;
}

// As the window opens with the whole library.
void browse(WindowUserInteraction &user, bool everything, const QString &pictures)
{
    MainWindowController::applyTheme();
    MainWindowController controller(user);
    controller.showWindow();
    measureFirstScreen(controller);
    if (everything) {
        measureBrowsing(controller, pictures);
    }
    zqStopMainThreadCalls();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    const bool opens = arguments.removeAll(QStringLiteral("--first")) > 0;
    const bool browses = arguments.removeAll(QStringLiteral("--browse")) > 0;
    if (!browses && !opens && arguments.size() != 3 && arguments.size() != 4) {
        return fail("zelto_window_bench LIBRARY SIDEBAR-TITLE [TAG]");
    }
    ZQImageSource::initialize(argv[0]);
    WindowUserInteraction user;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &AImportManager::sharedAImportManager();
    tamberin_AppDelegate delegate(parts);
    delegate.setLibraryBundleDirectory(arguments.at(1));
    ZQError error;
    if (!delegate.openLibraryForCommand(&error)) {
        return fail(qPrintable(error.localizedDescription()));
    }
    if (browses || opens) {
        browse(user, browses, arguments.value(2));
        return 0;
    }
    const auto shown = zqFetchFirst<ZQSidebarBaseItem>(*delegate.managedObjectContext(), QStringLiteral("title == %@"),
                                                       {arguments.at(2)});
    const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*delegate.managedObjectContext());
    if (shown && shown->isProject() && !shown->father()) { // a store that was filled by SQL
        projects->appendChild(shown.get());
        delegate.saveAction();
    }
    MainWindowController::applyTheme();
    MainWindowController controller(user);
    controller.showWindow();
    auto *field = controller.window()->findChild<TagField *>();
    if (!shown || !field) {
        return fail("there is nothing of that title in the sidebar");
    }
    controller.selectSidebarItem(shown->objectID());
    settleWindow(controller);
    if (arguments.size() == 3) {
        measureEdits(controller);
        zqStopMainThreadCalls();
        return 0;
    }
    ZQGridView &grid = controller.browser().grid();
    grid.selectAll();
    settleWindow(controller);
    std::printf("items %lld\n", static_cast<long long>(grid.selection().count()));

    Scroller scroller(grid);
    scroller.start();
    zqRunMainLoopFor(std::chrono::milliseconds(3000));
    scroller.stop("idle");

    QElapsedTimer clock;
    scroller.start();
    clock.start();
    Q_EMIT field->edited({arguments.at(3)});
    const qint64 begun = clock.nsecsElapsed();
    const auto tagged = [&] {
        const auto tag = ZQSidebarTag::tagWithTagName(arguments.at(3), *delegate.managedObjectContext());
        return tag ? tag->relatedObjectIDs(QStringLiteral("taggedItems")).size() : 0;
    };
    zqRunMainLoopUntil([&] { return !controller.isEditing(); });
    const qint64 stored = clock.nsecsElapsed();
    const auto writing =
        std::async(std::launch::async, [] { TagFileWriter::sharedTagFileWriter().waitUntilAllWritten(); });
    zqRunMainLoopUntil([&] { return writing.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
    const qint64 written = clock.nsecsElapsed();
    settleWindow(controller);
    scroller.stop("tagging");
    std::printf("command-ms %.2f\nstore-s %.3f\nfiles-s %.3f\ntagged %lld\n", double(begun) / 1e6, double(stored) / 1e9,
                double(written) / 1e9, static_cast<long long>(tagged()));
    std::fflush(stdout);
    zqStopMainThreadCalls();
    return 0;
}
