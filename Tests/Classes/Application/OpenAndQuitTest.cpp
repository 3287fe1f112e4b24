#include "Classes/Application/TemporaryArea.h"
#include "Tests/Classes/Application/ApplicationFixture.h"

#include "Kit/Operations/ZQMainThread.h"

#include <QFile>
#include <QThread>

namespace {
QString made(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) ? path : QString();
}
} // namespace

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
    EXPECT_EQ(imports.keptCancelled, (QList<bool>{true, false})); // it is offered at the next launch
    EXPECT_TRUE(user.notificationTexts().contains(QStringLiteral("Cleaning up library")));
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
