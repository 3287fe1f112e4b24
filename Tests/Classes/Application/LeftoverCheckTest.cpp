// How leftovers are looked for: beside the window, in flat memory, and harmless wherever it ends.

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Tests/Classes/Application/ApplicationFixture.h"

#include <QTimer>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

const QString ending = QStringLiteral(".ztlibraryitem");

class LeftoverCheck : public ApplicationTest
{
protected:
    void TearDown() override { LeftoverSearch::setObserver({}); }

    // A library of earlier launches with item "A", and `count` directories that nobody names.
    void makeLibrary(int count)
    {
        const auto delegate = launched();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
        for (int i = 0; i < count; ++i) {
            QDir().mkpath(library + u'/' + QString::number(i) + ending);
        }
    }
    qsizetype directories() const { return QDir(library).entryList({u'*' + ending}, QDir::Dirs).size(); }
    LeftoverSearch searchOf(tamberin_AppDelegate &delegate, const QDateTime &launch) const
    {
        return LeftoverSearch({library, {}, launch, {}, delegate.persistentStoreCoordinator()});
    }

    QString library;
};

// Calls back at the request for a log, as the real one.
class LogReporter : public CrashReporting
{
public:
    void start(Callbacks callbacks, bool) override
    {
        QTimer::singleShot(0, [callbacks] { callbacks.applicationLog(); });
    }
};

} // namespace

TEST_F(LeftoverCheck, LeavesTheMainThreadFreeAndWhatIsSavedMeanwhileKeepsItsDirectory)
{
    makeLibrary(2);
    const auto delegate = launched();
    std::atomic<bool> didRun = false;
    int calls = 0;
    LeftoverSearch::setObserver([&](qsizetype) {
        EXPECT_FALSE(zqIsMainThread());
        if (++calls < 2) {
            return; // the store is looked through once more
        }
        didRun = zqOnMainThreadAndWait([&] { // the directory was judged already
            addItem(*delegate, QStringLiteral("1"));
            delegate->saveAction();
        });
    });
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    EXPECT_TRUE(didRun);
    EXPECT_EQ(QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              (QStringList{QStringLiteral("1") + ending, QStringLiteral("A") + ending}));
}

TEST_F(LeftoverCheck, HoldsABatchOfNamesHoweverLargeTheLibrary)
{
    makeLibrary(3);
    constexpr int many = 4000;
    {
        const auto delegate = launched();
        for (int i = 0; i < many; ++i) {
            addItem(*delegate, QStringLiteral("item %1").arg(i));
        }
        addItem(*delegate, QStringLiteral("xY"));
        delegate->saveAction();
    }
    ASSERT_TRUE(QDir().rename(library + QStringLiteral("/xY") + ending, library + QStringLiteral("/Xy") + ending));
    const auto delegate = launched();
    qsizetype most = 0;
    int batches = 0;
    LeftoverSearch::setObserver([&](qsizetype held) {
        most = std::max(most, held);
        ++batches;
    });
    const auto found = searchOf(*delegate, QDateTime::currentDateTimeUtc().addSecs(1)).run({});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->directories, many + 5);
    EXPECT_EQ(found->leftovers.size(), 3);
    EXPECT_TRUE(found->lost.isEmpty());
    EXPECT_GE(batches, 8);
    EXPECT_LE(most, 1100);
}

TEST_F(LeftoverCheck, SparesWhatThisProcessMakesWhateverTheClockSays)
{
    makeLibrary(1);
    const auto delegate = application(); // remembers from here on
    delegate->setLibraryBundleDirectory(defaultBundle());
    delegate->libraryDirectory();
    const QString made = QFileInfo(LibraryBundleManager::newLibraryItemBundlePath()).fileName();
    const QDateTime clockWasAhead = QDateTime::currentDateTimeUtc().addSecs(3600);
    LeftoverSearch search = searchOf(*delegate, clockWasAhead);
    EXPECT_EQ(search.run({}).value_or(LibraryLeftovers()).leftovers, QStringList{QStringLiteral("0") + ending});
    LibraryBundleManager::rememberMadeDirectories(false);
    EXPECT_FALSE(LibraryBundleManager::didMake(made));
    EXPECT_EQ(search.run({}).value_or(LibraryLeftovers()).leftovers.size(), 2);
}

TEST_F(LeftoverCheck, AStopOrADirectoryThatCannotBeReadAnswersNothing)
{
    makeLibrary(1200);
    const auto delegate = launched();
    std::stop_source stop;
    int batches = 0;
    LeftoverSearch::setObserver([&](qsizetype) {
        ++batches;
        stop.request_stop();
    });
    LeftoverSearch search = searchOf(*delegate, QDateTime::currentDateTimeUtc().addSecs(1));
    EXPECT_FALSE(search.run(stop.get_token()));
    EXPECT_EQ(batches, 1);
    EXPECT_EQ(search.run({}).value_or(LibraryLeftovers()).leftovers.size(), 1200);
    library += QStringLiteral("/missing");
    EXPECT_FALSE(searchOf(*delegate, QDateTime::currentDateTimeUtc()).run({}));
}

TEST_F(LeftoverCheck, QuittingEndsItAndTheNextLaunchLooksAgain)
{
    constexpr int many = 25; // enough to ask about
    makeLibrary(many);
    {
        const auto delegate = launched();
        std::atomic<bool> isLooking = false;
        std::atomic<bool> isQuitting = false;
        LeftoverSearch::setObserver([&](qsizetype) {
            isLooking = true;
            while (!isQuitting) {
                std::this_thread::yield();
            }
        });
        bool didEnd = false;
        delegate->checkAndDeleteLibraryLeftovers([&didEnd] { didEnd = true; });
        zqRunMainLoopUntil([&] { return isLooking.load(); });
        isQuitting = true;
        EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
        zqRunMainLoopFor(std::chrono::milliseconds(50));
        EXPECT_FALSE(delegate->isCheckingLeftovers());
        EXPECT_FALSE(didEnd);
        EXPECT_TRUE(user.questions.isEmpty());
    }
    LeftoverSearch::setObserver({});
    {
        const auto delegate = launched();
        user.answerQuestion = [&](const UserQuestion &) {
            EXPECT_TRUE(zqIsMainThread());
            EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
            return 1; // "Remove", as it may look when the question goes away
        };
        delegate->checkAndDeleteLibraryLeftovers();
        zqRunMainLoopUntil([&] { return !delegate->isCheckingLeftovers(); });
        delegate->waitForRemovals();
        EXPECT_EQ(user.questions.size(), 1);
    }
    EXPECT_EQ(directories(), many + 1);
    user.answerQuestion = [](const UserQuestion &) { return 1; };
    const auto delegate = launched();
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    EXPECT_EQ(directories(), 1);
}

TEST_F(LeftoverCheck, OffersToResumeImportsOnlyOnceItKnowsWhatTheyLeft)
{
    makeLibrary(25);
    imports.cutOff = QDateTime::currentDateTimeUtc().addSecs(-60); // accounts for all of them
    LogReporter reporter;
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.importManager = &imports;
    parts.crashReporter = &reporter;
    tamberin_AppDelegate delegate(parts);
    bool wasOfferedBefore = false;
    LeftoverSearch::setObserver([&](qsizetype) {
        zqOnMainThreadAndWait([&] {
            wasOfferedBefore = imports.calls.contains(QStringLiteral("resume"));
            imports.cutOff.reset(); // as when it was forgotten
        });
    });
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    const QString made = QFileInfo(LibraryBundleManager::newLibraryItemBundlePath()).fileName();
    EXPECT_TRUE(LibraryBundleManager::didMake(made)); // until the check, which is still to come, has seen it
    zqRunMainLoopUntil([&] { return imports.calls.contains(QStringLiteral("resume")); });
    EXPECT_FALSE(LibraryBundleManager::didMake(made));
    zqRunMainLoopUntil([&] { return !delegate.isCheckingLeftovers(); });
    delegate.waitForRemovals();
    EXPECT_FALSE(wasOfferedBefore);
    EXPECT_EQ(imports.calls.count(QStringLiteral("resume")), 1);
    EXPECT_TRUE(user.questions.isEmpty());
    EXPECT_EQ(directories(), 2); // of the item, and what this process made
}
