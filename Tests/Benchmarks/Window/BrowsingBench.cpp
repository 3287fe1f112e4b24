#include "Tests/Benchmarks/Window/BrowsingBench.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/InfoPanel/TagField.h"
#include "Classes/Interface/Window/MainToolbar.h"
#include "Classes/Interface/Window/MainWindowController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Benchmarks/Window/EditsBench.h"
#include "Tests/Support/SyntheticLibrary.h"

#include <QAction>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>
#include <time.h>
#include <unistd.h>

namespace {

constexpr int runs = 3;
constexpr int scrollSteps = 600;
constexpr qint64 manyItems = 10000;

void print(const char *name, double value)
{
    std::printf("%s %.3f\n", name, value);
    std::fflush(stdout);
}

double heldBytes() // of this process
{
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly)
               ? double(file.readAll().split(' ').value(1).toLongLong()) * double(sysconf(_SC_PAGESIZE))
               : 0;
}

double millisecondsOfProcess() // since it was started
{
    QFile file(QStringLiteral("/proc/self/stat"));
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double started = double(fields.value(19).toLongLong()) / double(sysconf(_SC_CLK_TCK));
    return (double(now.tv_sec) + double(now.tv_nsec) / 1e9 - started) * 1000;
}

// The longest time in which the main thread answered nothing.
class Stalls
{
public:
    Stalls()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] { look(); });
        m_timer.start(1);
        m_clock.start();
    }
    double longest()
    {
        look();
        return double(m_longest) / 1e6;
    }

private:
    void look()
    {
        m_longest = std::max(m_longest, m_clock.nsecsElapsed());
        m_clock.restart();
    }
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
};

class Person
{
public:
    explicit Person(MainWindowController &controller)
        : m_controller(controller), m_browser(controller.browser()), m_grid(m_browser.grid()),
          m_field(controller.window()->findChild<MainToolbar *>()->search())
    {
    }

    // From `action` until what it asks for is on the screen.
    double painted(const std::function<void()> &action)
    {
        settleWindow(m_controller);
        bool hasChanged = false;
        const auto connection = QObject::connect(&m_browser.content(), &BrowserContent::changed, &m_browser,
                                                 [&hasChanged] { hasChanged = true; });
        QElapsedTimer clock;
        clock.start();
        action();
        while (m_browser.content().isLoading() || !(hasChanged || m_controller.fetcher().isIdle())) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        m_controller.window()->repaint();
        QObject::disconnect(connection);
        return double(clock.nsecsElapsed()) / 1e6;
    }
    void show(const QString &title)
    {
        const auto item = zqFetchFirst<ZQSidebarBaseItem>(
            *tamberin_AppDelegate::sharedDelegate()->managedObjectContext(), QStringLiteral("title == %@"), {title});
        m_controller.selectSidebarItem(item->objectID());
    }

    void typeWords();
    void useTokens();
    void order();
    void openLists();
    void scroll();
    void editMany();
    void importFiles(const QString &folder);

private:
    double slowest(const char *what, const QStringList &texts);
    double slowestCommand(const char *what, const QList<CommandID> &commands,
                          const std::function<void(int)> &beginRound);
    void measureStall(const char *name, const std::function<void()> &work);

    MainWindowController &m_controller;
    BrowserViewController &m_browser;
    ZQGridView &m_grid;
    QLineEdit &m_field;
};

double Person::slowest(const char *what, const QStringList &texts)
{
    double result = 0;
    for (const QString &text : texts) {
        std::vector<double> times;
        for (int run = 0; run < runs; ++run) {
            painted([this] { m_field.clear(); });
            times.push_back(painted([&] { m_field.setText(text); }));
        }
        std::sort(times.begin(), times.end());
        std::fprintf(stderr, "    %-8s %-44s %9lld rows %9.2f ms\n", what, qPrintable(text),
                     static_cast<long long>(m_browser.content().count()), times[runs / 2]);
        result = std::max(result, times[runs / 2]);
    }
    painted([this] { m_field.clear(); });
    return result;
}

void Person::typeWords()
{
    print("key-ms", slowest("word", {QStringLiteral("e"), QStringLiteral("lo"), QStringLiteral("logo"),
                                     QStringLiteral("screenshot 12"), QStringLiteral("harbour"), QStringLiteral("zzz"),
                                     QStringLiteral("portrait 77")}));
}

void Person::useTokens()
{
    print("token-ms",
          slowest("token", {QStringLiteral("#notes final"), QStringLiteral("#ext png"), QStringLiteral("#tag photo"),
                            QStringLiteral("#project logo"), QStringLiteral("#width > 1000"),
                            QStringLiteral("#rating > 3"), QStringLiteral("#color blue"), QStringLiteral("#size large"),
                            QStringLiteral("#kind image"), QStringLiteral("#folder down"), QStringLiteral("#untagged"),
                            QStringLiteral("#date > 2024"), QStringLiteral("#duplicates")}));
    print("several-ms", slowest("several", {QStringLiteral("logo OR city -draft #width > 1000 OR NOT #tag photo")}));
}

// Round by round, so that nothing is asked for that is remembered from the round before.
double Person::slowestCommand(const char *what, const QList<CommandID> &commands,
                              const std::function<void(int)> &beginRound)
{
    std::map<QString, std::vector<double>> times;
    for (int run = 0; run < runs; ++run) {
        beginRound(run);
        for (const CommandID id : commands) {
            QAction *action = m_controller.command(id);
            if (action && action->isEnabled() && !action->isChecked()) {
                times[action->text()].push_back(painted([action] { action->trigger(); }));
            }
        }
    }
    double result = 0;
    for (auto &[name, each] : times) {
        std::sort(each.begin(), each.end());
        const double median = each[each.size() / 2];
        std::fprintf(stderr, "    %-8s %-44s %9.2f ms\n", what, qPrintable(name), median);
        result = std::max(result, median);
    }
    return result;
}

void Person::order()
{
    QList<CommandID> orders;
    for (int each = 1; each < 8; ++each) {
        orders.append(CommandID(int(CommandID::SortManually) + each));
    }
    print("sort-ms", slowestCommand("sort", orders, [](int) {}));
    const QList<CommandID> groupings{CommandID(int(CommandID::GroupPlain) + 2),
                                     CommandID(int(CommandID::GroupPlain) + 3), CommandID::GroupBySize,
                                     CommandID(int(CommandID::GroupPlain) + 1)};
    print("group-ms", slowestCommand("group", groupings, [&](int run) {
              painted([&] { m_controller.command(orders.at(run))->trigger(); });
          }));
}

void Person::openLists()
{
    const auto measure = [this](const char *name, const QString &title) {
        std::vector<double> times;
        for (int run = 0; run < runs; ++run) {
            painted([this] { show(QStringLiteral("Library")); });
            tamberin_AppDelegate::sharedDelegate()->saveAction();
            times.push_back(painted([&] { show(title); }));
        }
        std::sort(times.begin(), times.end());
        print(name, times[runs / 2]);
    };
    measure("project-ms", SyntheticLibrary::largeProject());
    measure("tag-ms", SyntheticLibrary::largeTag());
    measure("folder-ms", SyntheticLibrary::largeFolder());
    painted([this] { show(QStringLiteral("Library")); });
}

void Person::scroll()
{
    settleWindow(m_controller);
    const qint64 step = std::max<qint64>(1, m_grid.gridLayout().contentHeight() / scrollSteps);
    std::vector<double> frames;
    for (int i = 0; i < scrollSteps; ++i) {
        QElapsedTimer clock;
        clock.start();
        m_grid.setScrollOffset(i * step);
        m_grid.viewport()->repaint();
        QCoreApplication::processEvents();
        frames.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    std::sort(frames.begin(), frames.end());
    print("frame-ms", frames.back());
    print("frame-median-ms", frames[frames.size() / 2]);
    m_grid.setScrollOffset(0);
}

void Person::measureStall(const char *name, const std::function<void()> &work)
{
    settleWindow(m_controller);
    QElapsedTimer clock;
    clock.start();
    Stalls stalls;
    work();
    zqRunMainLoopUntil([this] { return !m_controller.isEditing(); });
    settleWindow(m_controller);
    const double stall = stalls.longest();
    std::fprintf(stderr, "    %-52s %9.2f s\n", name, double(clock.nsecsElapsed()) / 1e9);
    print(name, stall);
}

void Person::editMany()
{
    auto *field = m_controller.window()->findChild<TagField *>();
    ZQIndexSet many;
    many.insert(0, std::min(manyItems, m_browser.content().count()) - 1);
    m_grid.setSelection(many);
    measureStall("tagging-stall-ms", [field] { Q_EMIT field->edited({QStringLiteral("benchmark")}); });
    measureStall("tagging-undone-stall-ms", [this] { m_controller.undoStack().undo(); });
}

void Person::importFiles(const QString &folder)
{
    AImportManager &manager = AImportManager::sharedAImportManager();
    measureStall("import-stall-ms", [&] {
        const auto library = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(
            *tamberin_AppDelegate::sharedDelegate()->managedObjectContext());
        const qint64 before = m_browser.content().count();
        manager.importFilesAtPaths({folder}, library->objectID(), 0, {});
        zqRunMainLoopUntil([&] { return m_browser.content().count() >= before + 1000; });
    });
    measureStall("import-undone-stall-ms", [this] { m_controller.undoStack().undo(); });
}

} // namespace

void measureFirstScreen(MainWindowController &controller)
{
    while (controller.browser().content().isLoading() && controller.browser().content().count() == 0) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    controller.window()->repaint();
    print("first-screen-ms", millisecondsOfProcess());
}

void measureBrowsing(MainWindowController &controller, const QString &pictures)
{
    QElapsedTimer clock;
    clock.start();
    const auto index = ContentFetcher::Ticket(controller.fetcher(), ContentFetcher::Priority::Counts).index();
    zqRunMainLoopUntil([&] { return index->isReady(); });
    print("index-ms", double(clock.nsecsElapsed()) / 1e6);
    settleWindow(controller);
    print("held-bytes", heldBytes());
    Person person(controller);
    const qint64 all = controller.browser().content().count();
    print("rows", double(all));
    if (all == 0) {
        return;
    }
    person.typeWords();
    person.useTokens();
    person.order();
    person.openLists();
    person.scroll();
    if (!pictures.isEmpty()) {
        person.editMany();
        person.importFiles(pictures);
    }
    print("held-after-bytes", heldBytes());
}
