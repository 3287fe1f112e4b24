// How leftovers are looked for: beside the window, in flat memory, and harmless wherever it ends.

#include "Classes/Application/LeftoverSearch.h"
#include "Classes/Application/LibraryBundleManager.h"
#include "Kit/Files/ZQFileCopy.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/DamagedStore.h"

#include <QProcess>
#include <QTimer>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace {

const QString ending = QStringLiteral(".ztlibraryitem");

class LeftoverCheckTest : public ApplicationTest
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
    QString store() const { return defaultBundle() + QStringLiteral("/storedata"); }
    static void execute(const QString &path, const QString &sql)
    {
        const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        ASSERT_TRUE(connection && connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ") + sql))
            << qPrintable(sql);
    }
    void hideItems(bool isHidden) const
    {
        execute(store(), isHidden ? QStringLiteral("ALTER TABLE ZQLibraryBaseItem RENAME TO away")
                                  : QStringLiteral("ALTER TABLE away RENAME TO ZQLibraryBaseItem"));
    }
    // Whoever looks at this item's name gets an error, and nobody who looks at another one's alone.
    void makeNameUnreadable(const QString &bundleID) const
    {
        const QString others = storeValue(store(), QStringLiteral("SELECT group_concat('\"' || name || '\"') FROM "
                                                                  "pragma_table_info('ZQLibraryBaseItem') "
                                                                  "WHERE name <> 'bundleID'"))
                                   .toString();
        hideItems(true);
        execute(store(), QStringLiteral("CREATE VIEW ZQLibraryBaseItem AS SELECT %1, CASE WHEN bundleID = '%2' THEN "
                                        "abs(-9223372036854775807 - 1) ELSE bundleID END AS bundleID FROM away")
                             .arg(others, bundleID));
    }
    void makeNameReadable() const
    {
        execute(store(), QStringLiteral("DROP VIEW ZQLibraryBaseItem"));
        hideItems(false);
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

TEST_F(LeftoverCheckTest, LeavesTheMainThreadFreeAndWhatIsSavedMeanwhileKeepsItsDirectory)
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

TEST_F(LeftoverCheckTest, HoldsABatchOfNamesHoweverLargeTheLibrary)
{
    makeLibrary(3);
    constexpr int many = 2100;
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
    EXPECT_GE(batches, 7);
    EXPECT_LE(most, 1100);
}

TEST_F(LeftoverCheckTest, SparesWhatThisProcessMakesWhateverTheClockSays)
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

TEST_F(LeftoverCheckTest, AStopOrADirectoryThatCannotBeReadAnswersNothing)
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

TEST_F(LeftoverCheckTest, QuittingEndsItAndTheNextLaunchLooksAgain)
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

TEST_F(LeftoverCheckTest, OffersToResumeImportsOnlyOnceItKnowsWhatTheyLeft)
{
    makeLibrary(25);
    imports.cutOff = QDateTime::currentDateTimeUtc().addSecs(-60); // accounts for all of them
    LogReporter reporter;
    ApplicationParts parts = partsOfAll();
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

TEST_F(LeftoverCheckTest, AStoreThatCannotBeReadAnswersNothingWhereverThatIsMet)
{
    makeLibrary(2);
    {
        const auto delegate = launched();
        addItem(*delegate, QStringLiteral("B"));
        delegate->saveAction();
    }
    const auto delegate = launched();
    const QDateTime later = QDateTime::currentDateTimeUtc().addSecs(1);
    ASSERT_EQ(searchOf(*delegate, later).run({}).value_or(LibraryLeftovers()).leftovers.size(), 2);
    hideItems(true);
    EXPECT_FALSE(searchOf(*delegate, later).run({}));
    hideItems(false);

    const QString note = defaultBundle() + QStringLiteral("/pending-removals");
    const QByteArray noted = "0.ztlibraryitem\ngone.ztlibraryitem\n";
    QFile file(note);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(noted) == noted.size());
    file.close();
    makeNameUnreadable(QStringLiteral("B"));
    EXPECT_FALSE(searchOf(*delegate, later).run({})) << "with what is left";
    EXPECT_FALSE(LeftoverSearch({library, note, later, {}, delegate->persistentStoreCoordinator()}).run({}));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), noted) << "what is to go is still noted";
    for (int i = 10; i < 510; ++i) {
        QDir().mkpath(library + u'/' + QString::number(i) + ending);
    }
    EXPECT_FALSE(searchOf(*delegate, later).run({})) << "in a batch in the midst";
    makeNameReadable();

    int calls = 0;
    LeftoverSearch::setObserver([&](qsizetype) {
        if (++calls == 2) {
            hideItems(true); // after the directory was read
        }
    });
    EXPECT_FALSE(searchOf(*delegate, later).run({})) << "in the look for other letters";
    hideItems(false);
    std::stop_source stop;
    calls = 0;
    LeftoverSearch::setObserver([&](qsizetype) {
        if (++calls == 3) {
            stop.request_stop();
        }
    });
    EXPECT_FALSE(searchOf(*delegate, later).run(stop.get_token())) << "before the last of it";
    EXPECT_EQ(calls, 3);
}

TEST_F(LeftoverCheckTest, WhatIsBeingRemovedWhenItEndsIsGoneAndNotNotedAnyMore)
{
    makeLibrary(1);
    const QString name = QStringLiteral("0") + ending;
    for (int i = 0; i < 2000; ++i) { // so that the removal has not ended before it is held
        QFile file(library + u'/' + name + u'/' + QString::number(i));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    auto delegate = launched();
    ASSERT_TRUE(delegate->managedObjectContext());
    QFile note(defaultBundle() + QStringLiteral("/pending-removals"));
    ASSERT_TRUE(note.open(QIODevice::WriteOnly) && note.write(name.toUtf8() + '\n') > 0);
    note.close();
    delegate->deleteFilesAtPaths({name}, library);
    ASSERT_TRUE(delegate->deleteTask()->waitForStarted());
    const auto process = pid_t(delegate->deleteTask()->processId());
    ::kill(process, SIGSTOP);
    std::thread later([process] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300)); // until who does not wait for it is past it
        ::kill(process, SIGCONT);
    });
    delegate.reset();
    later.join();
    EXPECT_FALSE(QFileInfo::exists(library + u'/' + name));
    EXPECT_FALSE(note.exists());
}

TEST_F(LeftoverCheckTest, DatesDecideToTheMillisecond)
{
    makeLibrary(1);
    const auto delegate = launched();
    const QString path = library + QStringLiteral("/0") + ending;
    const auto coordinator = delegate->persistentStoreCoordinator();
    const auto birth = [&path] { return QDateTime::fromMSecsSinceEpoch(zqFileDates(path)->birth, Qt::UTC); };
    const auto found = [&](const QDateTime &launch, const std::optional<QDateTime> &cutOff) {
        const auto traces = [&cutOff](const QSet<QString> &) { return CutOffImports{cutOff, {}}; };
        return LeftoverSearch({library, {}, launch, traces, coordinator}).run({}).value_or(LibraryLeftovers());
    };
    EXPECT_EQ(found(birth(), {}).leftovers.size(), 1);
    EXPECT_EQ(found(birth().addMSecs(-1), {}).leftovers.size(), 0) << "of this process";
    EXPECT_EQ(found(birth(), {}).unexplained, 1);
    EXPECT_EQ(found(birth(), birth().addMSecs(1000)).unexplained, 0);
    EXPECT_EQ(found(birth(), birth().addMSecs(1001)).unexplained, 1);
    EXPECT_FALSE(found(birth(), {}).storeIsEmpty);
    EXPECT_EQ(found(birth(), {}).directories, 2);

    const qint64 made = coordinator->creationDate().toMSecsSinceEpoch();
    for (const qint64 after : {0, 1}) {
        const qint64 time = made + after;
        const timespec times[] = {{0, UTIME_OMIT}, {time_t(time / 1000), long(time % 1000) * 1000000}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
        EXPECT_EQ(found(birth(), {}).lost.size(), after ? 0 : 1) << "as old as the store";
        EXPECT_EQ(found(birth(), {}).leftovers.size(), after ? 1 : 0);
    }
}

TEST_F(LeftoverCheckTest, RemovesByTheThousandAndTellsItsEnd)
{
    constexpr int many = 1001;
    makeLibrary(many);
    imports.cutOff = QDateTime::currentDateTimeUtc().addSecs(-3600); // which explains them
    const auto delegate = launched();
    int ends = 0;
    delegate->checkAndDeleteLibraryLeftovers([&ends] { ++ends; });
    delegate->checkAndDeleteLibraryLeftovers([&ends] { ends += 10; }); // one is under way
    EXPECT_EQ(ends, 10);
    EXPECT_TRUE(comesTrue([&] { return !delegate->isCheckingLeftovers(); }));
    EXPECT_EQ(ends, 11);
    QList<qsizetype> batches;
    for (QProcess *removal : delegate->findChildren<QProcess *>()) {
        batches.append(removal->arguments().size() - 1);
    }
    delegate->waitForRemovals();
    EXPECT_EQ(batches, (QList<qsizetype>{1000, 1}));
    EXPECT_EQ(directories(), 1);
    EXPECT_TRUE(user.questions.isEmpty());
}

TEST_F(LeftoverCheckTest, ATenthOfALargeLibraryIsNotAskedAbout)
{
    makeLibrary(21);
    for (const bool isATenth : {false, true}) {
        {
            const auto delegate = launched();
            for (int i = isATenth ? 187 : 0; i < (isATenth ? 188 : 187); ++i) {
                addItem(*delegate, QStringLiteral("item %1").arg(i));
            }
            delegate->saveAction();
        }
        const auto delegate = launched();
        user.questions.clear();
        checkLeftovers(*delegate); // the answer that changes least
        delegate->waitForRemovals();
        EXPECT_EQ(user.questions.size(), isATenth ? 0 : 1);
        if (!isATenth) {
            EXPECT_EQ(user.questions.first().message, QStringLiteral("21 folders of the library belong to no item"));
            EXPECT_EQ(user.questions.first().buttons.size(), 3);
            EXPECT_TRUE(user.questions.first().isDestructive);
        }
        EXPECT_EQ(directories(), isATenth ? 189 : 209);
    }
}

TEST_F(LeftoverCheckTest, WhatCannotBeLookedUpOrTakenBackStaysAndTheCheckEnds)
{
    makeLibrary(25);
    const auto delegate = launched();
    bool isOver = false;
    hideItems(true);
    delegate->checkAndDeleteLibraryLeftovers([&isOver] { isOver = true; });
    EXPECT_TRUE(comesTrue([&] { return isOver; }));
    hideItems(false);
    user.answerQuestion = [this](const UserQuestion &) {
        hideItems(true); // between the look and the removal
        return 1;
    };
    checkLeftovers(*delegate);
    delegate->waitForRemovals();
    hideItems(false);
    EXPECT_EQ(directories(), 26);
    EXPECT_TRUE(imports.takenBack.isEmpty());

    user.answerQuestion = [](const UserQuestion &) { return 0; };
    user.questions.clear();
    imports.takesBack = 0;
    checkLeftovers(*delegate);
    EXPECT_EQ(user.questions.size(), 1) << "and none of what came back";
    imports.takesBack = 2;
    checkLeftovers(*delegate);
    EXPECT_EQ(user.questions.last().message,
              QStringLiteral("2 files of the library had lost their entries and were taken back."));
    EXPECT_EQ(imports.takenBack.size(), 50);
    EXPECT_EQ(directories(), 26);
}
