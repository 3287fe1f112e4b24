#include "Classes/Application/LibraryPlaces.h"
#include "Classes/Application/LibraryRemovals.h"
#include "Classes/Application/LibraryStore.h"
#include "Classes/Application/RunningParts.h"
#include "Classes/Application/TemporaryArea.h"
#include "Classes/Tags/FileTags.h"
#include "Tests/Classes/Application/ApplicationFixture.h"
#include "Tests/Support/DamagedStore.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>
#include <memory>

namespace {
QString made(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) ? path : QString();
}

// Changes items until it is cancelled, and finishes the batch it is at.
class EndlessEdit : public ZQOperation
{
public:
    explicit EndlessEdit(std::function<void()> lastBatch) : m_lastBatch(std::move(lastBatch)) {}
    void main() override
    {
        m_hasBegun = true;
        while (!isCancelled()) {
            QThread::msleep(1);
        }
        zqOnMainThreadAndWait(m_lastBatch);
    }
    bool hasBegun() const { return m_hasBegun; }

private:
    std::function<void()> m_lastBatch;
    std::atomic<bool> m_hasBegun = false;
};

// A capture that ends when a test says so.
class SlowCapture : public ScreenCaptureControlling
{
public:
    struct State
    {
        bool hasPlace = true;
        bool isStoring = false;
    };
    explicit SlowCapture(const State &state) : m_state(state) {}
    void loadView() override {}
    void snapArea() override {}
    void snapWindow() override {}
    void snapFullScreen() override {}
    void snapWebsite(const QString & /*pageURL*/, const QRect & /*frame*/) override {}
    bool finishStoring() override { return m_state.hasPlace; }
    bool isStoring() const override { return m_state.isStoring; }

private:
    const State &m_state;
};
} // namespace

TEST_F(ApplicationTest, QuittingWaitsForWhatWasTakenAndIsCalledOffWhileItHasNoPlace)
{
    SlowCapture::State state{.hasPlace = false};
    ApplicationParts parts = partsOfAll();
    parts.makeZeltoKunViewController = [&state] { return std::make_unique<SlowCapture>(state); };
    tamberin_AppDelegate delegate(parts);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminateReply::Cancel);
    EXPECT_TRUE(user.questions.isEmpty());

    state = {.isStoring = true};
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminateReply::Cancel); // the answer that changes least
    EXPECT_EQ(user.questions.size(), 1);
    user.answerQuestion = [&state](const UserQuestion & /*question*/) {
        state.isStoring = false;
        return 0;
    };
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminateReply::Now);
}

TEST_F(ApplicationTest, AFolderBecomesAProjectAndAFileGoesToTheLibrary)
{
    const auto delegate = launched();
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    const QString folder = world.filePath(QStringLiteral("Brand"));
    const QString file = made(world.filePath(QStringLiteral("logo.png")));
    QDir().mkpath(folder);

    delegate->openFiles({folder, file, world.filePath(QStringLiteral("missing.png"))});
    ASSERT_EQ(imports.imports.size(), 2);
    EXPECT_EQ(imports.imports.at(0).paths, QStringList{folder});
    EXPECT_EQ(imports.imports.at(0).target,
              ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context)->objectID());
    EXPECT_EQ(imports.imports.at(1).paths, QStringList{file});
    EXPECT_EQ(imports.imports.at(1).target,
              ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context)->objectID());
    EXPECT_TRUE(window.selected.isEmpty());

    delegate->openFiles({file});
    EXPECT_EQ(window.selected,
              QList<ZQObjectID>{ZQSidebarBaseItem::recentProjectInManagedObjectContext(context)->objectID()});
}

TEST_F(ApplicationTest, FilesHandedOverBeforeTheWindowAreImportedOnceItIsThere)
{
    const auto delegate = application();
    const QString file = made(world.filePath(QStringLiteral("early.png")));
    delegate->openFiles({file});
    EXPECT_TRUE(imports.imports.isEmpty());
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    zqRunMainLoopUntil([&] { return !imports.imports.isEmpty(); });
    EXPECT_EQ(imports.imports.size(), 1);
}

TEST_F(ApplicationTest, ATemplateHandedOverBeforeTheWindowIsOfferedHoweverLongTheLaunchTakes)
{
    const auto delegate = application();
    delegate->openFiles({made(world.filePath(QStringLiteral("Early.zttemplate")))});
    zqRunMainLoopFor(std::chrono::milliseconds(500)); // as while a question is open
    delegate->applicationWillFinishLaunching();
    delegate->applicationDidFinishLaunching();
    EXPECT_TRUE(comesTrue([this] { return window.templates > 0; }));
    EXPECT_EQ(window.templates, 1);
}

TEST_F(ApplicationTest, AnotherLibraryIsRememberedOnlyWhenThePersonAgrees)
{
    const QString other = world.filePath(QStringLiteral("Other.ZTLIBRARY"));
    QDir().mkpath(other);
    const auto delegate = launched();
    user.answerQuestion = [](const UserQuestion &) { return 1; };
    delegate->openFiles({other});
    ASSERT_EQ(user.questions.size(), 1);
    EXPECT_EQ(user.questions.first().message, QStringLiteral("Opening a new library requires Zelto to relaunch"));
    EXPECT_TRUE(tamberin_AppDelegate::loadLibraryURL().isEmpty());
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    delegate->openFiles({other});
    EXPECT_EQ(tamberin_AppDelegate::loadLibraryURL(), other);
    EXPECT_EQ(window.savedState, 1); // it quits
}

TEST_F(ApplicationTest, ATemplateMovesToItsFolderAndOpensWhenNothingElseCame)
{
    const auto delegate = launched();
    delegate->openFiles({made(world.filePath(QStringLiteral("Poster.zttemplate")))});
    EXPECT_EQ(window.templates, 1);
    EXPECT_TRUE(QFileInfo::exists(delegate->templateDirectory() + QStringLiteral("/Poster.zttemplate")));
    delegate->openFiles({made(world.filePath(QStringLiteral("again/Poster.zttemplate")))});
    EXPECT_EQ(user.errors.size(), 1); // one of that name is there already, and stays
    EXPECT_EQ(window.templates, 1);
}

TEST_F(ApplicationTest, QuittingWithoutChangesRemovesNothing)
{
    const auto delegate = launched();
    const QString scratch = made(TemporaryArea::folder() + QStringLiteral("/t.abc/file"));
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_EQ(delegate->deleteTask(), nullptr);
    EXPECT_TRUE(QFileInfo::exists(scratch));
    EXPECT_EQ(window.savedState, 1);
    EXPECT_EQ(imports.calls.last(), QStringLiteral("stop"));
}

TEST_F(ApplicationTest, QuittingRemovesWhatWasDeletedForGood)
{
    const auto delegate = launched();
    constexpr int count = 2500;
    for (int i = 0; i < count; ++i) {
        addItem(*delegate, QStringLiteral("item-%1").arg(i))->setActive(false);
    }
    addItem(*delegate, QStringLiteral("kept"));
    delegate->saveAction();
    made(TemporaryArea::folder() + QStringLiteral("/t.abc/file"));

    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    QList<QProcess *> removals = delegate->findChildren<QProcess *>();
    QList<qsizetype> batches;
    for (QProcess *removal : removals) {
        removal->waitForFinished();
        batches.append(removal->arguments().size() - 1);
        EXPECT_EQ(removal->program(), QStringLiteral("/bin/rm"));
    }
    EXPECT_EQ(batches, (QList<qsizetype>{1000, 1000, 500, 1}));
    EXPECT_EQ(QDir(delegate->libraryDirectory()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("kept.ztlibraryitem")});
    EXPECT_TRUE(QDir(QFile::decodeName(qgetenv("TMPDIR"))).isEmpty()); // the scratch folder is gone
}

TEST_F(ApplicationTest, ARemovalThatTakesLongGoesOnByItself)
{
    const QTemporaryDir folder;
    constexpr int files = 3000;
    for (int i = 0; i < files; ++i) {
        made(folder.filePath(QStringLiteral("gone/%1/file").arg(i)));
    }
    RunningParts running(partsOfAll());
    LibraryPlaces places;
    LibraryStore store(places, running);
    auto removals = std::make_unique<LibraryRemovals>(places, store, nullptr);
    removals->deleteFilesAtPaths({QStringLiteral("gone")}, folder.path());
    QProcess *const task = removals->deleteTask();
    ASSERT_TRUE(task->waitForStarted());
    removals->leaveRemovals(std::chrono::milliseconds(0));
    removals.reset();
    const QString gone = folder.filePath(QStringLiteral("gone"));
    zqRunMainLoopUntil([&gone] { return !QFileInfo::exists(gone); });
    EXPECT_FALSE(QFileInfo::exists(gone));
}

TEST_F(ApplicationTest, QuittingLeavesTheTemporaryFolderToAnImportThatWasCutOff)
{
    const auto delegate = launched();
    addItem(*delegate, QStringLiteral("deleted"))->setActive(false);
    delegate->saveAction();
    const QString picture = TemporaryArea::folder() + QStringLiteral("/t.abc/picture.png");
    made(picture);
    imports.cutOff = QDateTime::currentDateTimeUtc();
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    delegate->waitForRemovals();
    EXPECT_TRUE(QFileInfo::exists(picture));
}

TEST_F(ApplicationTest, RunningImportsAreAskedAboutAndCancelledOnlyWhenThePersonSaysSo)
{
    const auto delegate = launched();
    std::atomic<bool> stop = false;
    auto operation = zqBlockOperation([&] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    auto waiting = zqBlockOperation([] {});
    QList<bool> keptThen; // when it was cancelled
    const auto token = waiting->observe([&](ZQOperation::Key key) {
        if (key == ZQOperation::Key::IsCancelled) {
            keptThen = imports.keptCancelled;
        }
    });
    delegate->backgroundOperationQueue().addOperation(operation);
    delegate->backgroundOperationQueue().addOperation(waiting);
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Cancel); // the answer that changes least
    EXPECT_FALSE(operation->isCancelled());
    EXPECT_EQ(window.savedState, 0);

    user.answerQuestion = [&](const UserQuestion &) {
        stop = true;
        return 0;
    };
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_TRUE(waiting->isCancelled());
    EXPECT_EQ(keptThen, QList<bool>{true});
    EXPECT_EQ(user.notifications.first().position, NotificationPlace::Window);
    EXPECT_EQ(user.notifications.first().time, usualNotificationTime);
    EXPECT_EQ(imports.keptCancelled, (QList<bool>{true, false})); // it is offered at the next launch
    EXPECT_TRUE(user.notificationTexts().contains(QStringLiteral("Cleaning up library")));
}

TEST_F(ApplicationTest, ARunningSyncIsAskedAboutAndEndsTooAndQuestionsOfImportsAreDismissed)
{
    const auto delegate = launched();
    std::atomic<bool> hasBegun = false;
    std::atomic<bool> hasEnded = false;
    std::atomic<int> kept = -1; // while it drained
    auto sync = zqBlockOperation([&] {
        hasBegun = true;
        while (user.dismissals == 0) {
            QThread::msleep(1);
        }
        kept = int(imports.keptCancelled.size());
        hasEnded = true;
    });
    auto waiting = zqBlockOperation([] {});
    liveFolders.syncOperationQueue().setMaxConcurrentOperationCount(1);
    liveFolders.syncOperationQueue().addOperation(sync);
    liveFolders.syncOperationQueue().addOperation(waiting);
    ASSERT_TRUE(comesTrue([&] { return hasBegun.load(); }));
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_EQ(user.questions.size(), 1);
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(kept, 1);
    EXPECT_TRUE(waiting->isCancelled());
}

TEST_F(ApplicationTest, QuittingPurgesDeletedSidebarEntriesAndNotesWhichDirectoriesAreToGo)
{
    const auto delegate = launched();
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    const auto project = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context)->orderedChildren().first();
    const ZQObjectID id = project->objectID();
    project->deleteSelf();
    addItem(*delegate, QStringLiteral("deleted"))->setActive(false);
    delegate->saveAction();
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    EXPECT_FALSE(context.existingObjectWithID(id));
    QFile note(delegate->libraryBundleDirectory() + QStringLiteral("/pending-removals"));
    ASSERT_TRUE(note.open(QIODevice::ReadOnly));
    EXPECT_EQ(note.readAll(), "deleted.ztlibraryitem") << "a kill from here on is explained by it";
}

TEST_F(ApplicationTest, WhatTwoQuitsHavePurgedIsNotedOnce)
{
    const auto delegate = launched();
    addItem(*delegate, QStringLiteral("deleted"))->setActive(false);
    delegate->saveAction();
    {
        const RefusingStore refusing(delegate->persistentStoreCoordinator()->path(),
                                     {QStringLiteral("ZQLibraryBaseItem")});
        EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Cancel);
    }
    addItem(*delegate, QStringLiteral("later"))->setActive(false);
    delegate->saveAction(); // without what was purged, whose directory is still there
    EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
    QFile note(delegate->libraryBundleDirectory() + QStringLiteral("/pending-removals"));
    ASSERT_TRUE(note.open(QIODevice::ReadOnly));
    EXPECT_EQ(note.readAll(), "deleted.ztlibraryitem\nlater.ztlibraryitem");
}

TEST_F(ApplicationTest, WhatAFailedQuitHadPurgedIsNoLossToTheNextLaunch)
{
    for (const bool isKilled : {false, true}) {
        SCOPED_TRACE(isKilled);
        QDir(defaultBundle()).removeRecursively();
        QString directory;
        {
            const auto delegate = launched();
            addItem(*delegate, QStringLiteral("kept"));
            const auto item = addItem(*delegate, QStringLiteral("deleted"));
            item->setActive(false);
            directory = item->bundleURL();
            const QString file = made(directory + QStringLiteral("/picture.png"));
            SeenFileTags::write(SeenFileTags::of({}), file, SeenFileTags::Empty::IsWritten); // it was saved once
            delegate->saveAction();
            {
                const RefusingStore refusing(delegate->persistentStoreCoordinator()->path(),
                                             {QStringLiteral("ZQLibraryBaseItem")});
                EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Cancel);
            }
            EXPECT_TRUE(QFileInfo::exists(directory));
            if (isKilled) {
                delegate->saveAction();
            } else {
                addItem(*delegate, QStringLiteral("deleted later"))->setActive(false);
                EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now);
            }
        }
        const auto delegate = launched();
        delegate->checkAndDeleteLibraryLeftovers();
        EXPECT_TRUE(comesTrue([&] { return !QFileInfo::exists(directory); }));
        EXPECT_TRUE(imports.takenBack.isEmpty());
        EXPECT_TRUE(QFileInfo::exists(delegate->libraryDirectory() + QStringLiteral("/kept.ztlibraryitem")));
    }
}

TEST_F(ApplicationTest, ACancelledQuitReopensNothing)
{
    const auto delegate = launched();
    std::atomic<bool> stop = false;
    delegate->backgroundOperationQueue().addOperationWithBlock([&] {
        while (!stop) {
            QThread::msleep(1);
        }
    });
    int asked = 0;
    bool recovers = true;
    user.answerQuestion = [&](const UserQuestion &question) {
        ++asked;
        if (std::exchange(recovers, false)) {
            return 0; // yes to the recovery, which quits
        }
        delegate->terminate(); // as a second click does while the question is there
        return int(question.buttons.size()) - 1;
    };
    delegate->reportDamage({QStringLiteral("broken")});
    EXPECT_EQ(asked, 2) << "one question at a time";
    EXPECT_FALSE(delegate->reopensAfterQuit());
    stop = true;
}

TEST_F(ApplicationTest, RelativePathsAreRemovedOnlyBelowABase)
{
    const auto delegate = launched();
    delegate->deleteFilesAtPaths({QStringLiteral("Documents"), QString(), QStringLiteral("/")}, {});
    EXPECT_EQ(delegate->deleteTask(), nullptr);

    // Names of a library that came from elsewhere.
    const QString base = world.filePath(QStringLiteral("base"));
    const QString outside = made(world.filePath(QStringLiteral("outside/file")));
    const QString strange = made(base + QStringLiteral("/-x"));
    const QString inside = made(base + QStringLiteral("/inside"));
    QStringList names{QStringLiteral("../outside"), QStringLiteral("."), QStringLiteral("a/../../outside"),
                      QFileInfo(outside).path()};
    delegate->deleteFilesAtPaths(names, base);
    EXPECT_EQ(delegate->deleteTask(), nullptr);
    names.append({QStringLiteral("-x"), QStringLiteral("inside")});
    delegate->deleteFilesAtPaths(names, base);
    delegate->waitForRemovals();
    EXPECT_TRUE(QFileInfo::exists(outside));
    EXPECT_FALSE(QFileInfo::exists(strange) || QFileInfo::exists(inside));
}

TEST_F(ApplicationTest, EditsEndWithTheBatchTheyAreAtBeforeTheWindowAndTheStoreDo)
{
    const QString ended = QStringLiteral("edits ended");
    const QString saved = QStringLiteral("saved");
    const QString gone = QStringLiteral("gone");
    struct Case
    {
        const char *what;
        std::function<void(std::unique_ptr<tamberin_AppDelegate> &)> end;
        QStringList calls;
    };
    const Case cases[] = {
        {"quitting",
         [](auto &delegate) { EXPECT_EQ(delegate->applicationShouldTerminate(), TerminateReply::Now); },
         {ended, saved, gone}},
        {"the end of the process", [](auto &delegate) { delegate.reset(); }, {ended, gone}},
        {"closing the library", [](auto &delegate) { delegate->removeManagedObjectContext(); }, {ended, gone}},
        {"moving the library",
         [this](auto &delegate) {
             user.fileToSave = world.filePath(QStringLiteral("Moved.ztlibrary"));
             delegate->moveZeltoLibrary();
         },
         {saved, ended, gone}},
    };
    for (const Case &c : cases) {
        auto delegate = launched();
        ZQOperationQueue &queue = delegate->editQueue();
        EXPECT_EQ(&queue, &delegate->editQueue());
        EXPECT_EQ(queue.maxConcurrentOperationCount(), 1);
        window.calls.clear();
        const LibraryStore &store = delegate->libraryStore();
        const auto edit = std::make_shared<EndlessEdit>([&] {
            EXPECT_TRUE(store.contextIfOpen()) << c.what;
            window.calls.append(ended);
        });
        queue.addOperation(edit);
        queue.addOperation(std::make_shared<EndlessEdit>([] { ADD_FAILURE() << "it had not begun"; }));
        ASSERT_TRUE(comesTrue([&edit] { return edit->hasBegun(); }));
        c.end(delegate);
        delegate.reset();
        EXPECT_EQ(window.calls, c.calls) << c.what;
    }
}
