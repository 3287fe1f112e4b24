#include "Tests/Classes/Application/ApplicationFixture.h"

#include "Classes/Application/LibraryBundleManager.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Tags/FileTags.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Support/Skip.h"

#include <QFile>

#include <algorithm>

namespace {
const QString storeDomain = QStringLiteral("YOUR_ERROR_DOMAIN");

QStringList titlesBelow(const ZQRef<ZQSidebarBaseItem> &item)
{
    QStringList titles;
    for (const auto &child : item->orderedChildren()) {
        titles.append(child->title());
    }
    return titles;
}
} // namespace

TEST_F(ApplicationTest, TheFirstLaunchMakesTheLibraryAndASecondOnlyNamesItsEntriesAnew)
{
    {
        const auto delegate = launched();
        EXPECT_TRUE(QFileInfo::exists(defaultBundle() + QStringLiteral("/storedata")));
        EXPECT_TRUE(QFileInfo(defaultBundle() + QStringLiteral("/Library")).isDir());
        EXPECT_TRUE(delegate->applicationLauched());
        const auto projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(*delegate->managedObjectContext());
        ASSERT_TRUE(projects);
        EXPECT_EQ(titlesBelow(projects), QStringList{QStringLiteral("Sample project")});
        projects->orderedChildren().first()->setTitle(QStringLiteral("Mine"));
        ZQSidebarBaseItem::libraryProjectInManagedObjectContext(*delegate->managedObjectContext())
            ->setTitle(QStringLiteral("changed"));
        delegate->saveAction();
    }
    const auto delegate = launched();
    ZQManagedObjectContext &context = *delegate->managedObjectContext();
    EXPECT_EQ(titlesBelow(ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context)),
              QStringList{QStringLiteral("Mine")});
    EXPECT_EQ(ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context)->title(), QStringLiteral("Library"));
    EXPECT_EQ(imports.calls,
              (QStringList{QStringLiteral("permission"), QStringLiteral("observe"), QStringLiteral("sync"),
                           QStringLiteral("permission"), QStringLiteral("observe"), QStringLiteral("sync")}));
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(ApplicationTest, ARememberedLocationIsUsedUnlessItIsGoneOrInTheTrash)
{
    const QString elsewhere = world.filePath(QStringLiteral("Elsewhere.ztlibrary"));
    const QString trashed = world.filePath(QStringLiteral(".Trash-0/Old.ztlibrary"));
    QDir().mkpath(elsewhere);
    QDir().mkpath(trashed);

    tamberin_AppDelegate::saveNewLibraryURL(elsewhere);
    EXPECT_EQ(application()->libraryBundleDirectory(), elsewhere);
    ZQUserDefaults::standardUserDefaults().setObjectForKey(zqDataForPersistentURL(trashed),
                                                           QStringLiteral("ZeltoLibraryLocation"));
    EXPECT_EQ(application()->libraryBundleDirectory(), defaultBundle());
    for (const char *other : {"name.Trashed/Old.ztlibrary", "a file.ztlibrary"}) {
        const QString path = world.filePath(QLatin1String(other));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(path.contains(QStringLiteral("Trash")) ? QDir().mkpath(path) : file.open(QIODevice::WriteOnly));
        ZQUserDefaults::standardUserDefaults().setObjectForKey(zqDataForPersistentURL(path),
                                                               QStringLiteral("ZeltoLibraryLocation"));
        EXPECT_EQ(application()->libraryBundleDirectory(), defaultBundle()) << other;
    }
    tamberin_AppDelegate::saveNewLibraryURL(elsewhere);
    QDir(elsewhere).removeRecursively();
    EXPECT_EQ(application()->libraryBundleDirectory(), defaultBundle());
}

TEST_F(ApplicationTest, ALibraryThatCannotBeMadeIsReportedAndTriedAgain)
{
    const auto delegate = application();
    delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("missing/New.ztlibrary")));
    EXPECT_TRUE(delegate->libraryBundleDirectory().isEmpty());
    EXPECT_EQ(delegate->managedObjectContext(), nullptr);
    ASSERT_FALSE(user.errors.isEmpty());
    EXPECT_EQ(user.errors.last().domain, storeDomain);
    EXPECT_EQ(user.errors.last().code, 9999);
    QDir().mkpath(world.filePath(QStringLiteral("missing")));
    EXPECT_FALSE(delegate->libraryBundleDirectory().isEmpty());
}

TEST_F(ApplicationTest, NoWindowComesWhenTheStoreDoesNotOpenOrThePersonQuitMeanwhile)
{
    for (const bool quits : {true, false}) {
        const auto delegate = application();
        QDir().mkpath(delegate->libraryBundleDirectory() + QStringLiteral("/storedata"));
        user.onError = [&] {
            if (quits) {
                delegate->terminate();
            }
        };
        delegate->applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
        EXPECT_FALSE(user.errors.isEmpty());
        EXPECT_EQ(window.made, 0);
        EXPECT_FALSE(delegate->applicationLauched());
        user.onError = [] {};
    }
    QDir(defaultBundle()).removeRecursively();
    EXPECT_TRUE(launched()->applicationLauched());
    EXPECT_EQ(window.made, 1);
}

TEST_F(ApplicationTest, OneLibraryIsOpenInOneProcessAtATime)
{
    const auto delegate = launched();
    ZQError error;
    EXPECT_EQ(LibraryLock::lockBundle(delegate->libraryBundleDirectory(), &error), nullptr);
    EXPECT_EQ(error.code, LibraryLock::InUse);
}

TEST_F(ApplicationTest, ItemDirectoriesOfNoItemGoButNeverWhenTheStoreListsNone)
{
    QString library;
    {
        const auto delegate = launched();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    QDir().mkpath(library + QStringLiteral("/B.ztlibraryitem"));
    QFile notes(library + QStringLiteral("/notes.txt"));
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    {
        const auto delegate = launched();
        QDir().mkpath(library + QStringLiteral("/JustMade.ztlibraryitem")); // an import is about to save it
        checkLeftovers(*delegate);
        ASSERT_NE(delegate->deleteTask(), nullptr);
        delegate->deleteTask()->waitForFinished();
        EXPECT_EQ(QDir(library).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                  (QStringList{QStringLiteral("A.ztlibraryitem"), QStringLiteral("JustMade.ztlibraryitem"),
                               QStringLiteral("notes.txt")}));
        ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("A"), *delegate->managedObjectContext())
            ->deletePermanently();
        delegate->saveAction();
    }
    const auto delegate = launched();
    checkLeftovers(*delegate);
    EXPECT_EQ(delegate->deleteTask(), nullptr);
    EXPECT_TRUE(QFileInfo::exists(library + QStringLiteral("/A.ztlibraryitem")));
}

TEST_F(ApplicationTest, WhatIsOlderThanTheStoreIsTakenBackAndNeverRemoved)
{
    const QString library = defaultBundle() + QStringLiteral("/Library");
    for (const char *name : {"/Old.ztlibraryitem", "/KNOWN.ztlibraryitem", "/Deleted.ztlibraryitem"}) {
        QDir().mkpath(library + QLatin1String(name));
    }
    {
        const auto delegate = launched();
        addItem(*delegate, QStringLiteral("known")); // its directory's letters were changed
        addItem(*delegate, QStringLiteral("Deleted"))->setActive(false);
        delegate->saveAction();
    }
    QDir().mkpath(library + QStringLiteral("/Young.ztlibraryitem"));
    const auto delegate = launched();
    checkLeftovers(*delegate);
    EXPECT_EQ(imports.takenBack, QStringList{QStringLiteral("Old.ztlibraryitem")});
    delegate->waitForRemovals();
    for (const char *kept : {"/Old.ztlibraryitem", "/KNOWN.ztlibraryitem", "/Deleted.ztlibraryitem"}) {
        EXPECT_TRUE(QFileInfo::exists(library + QLatin1String(kept))) << kept;
    }
    EXPECT_FALSE(QFileInfo::exists(library + QStringLiteral("/Young.ztlibraryitem")));
    ASSERT_EQ(user.questions.size(), 1); // says how many
    EXPECT_EQ(user.questions.first().message,
              QStringLiteral("1 file of the library had lost its entry and was taken back."));
    EXPECT_EQ(user.questions.first().buttons.size(), 1);
}

TEST_F(ApplicationTest, WhatWasSavedOnceComesBackUnlessItWasPurged)
{
    if (!ZQExtendedAttributes::set(world.path(), QStringLiteral("org.zelto.test"), "x")) {
        return skipWithout("extended attributes");
    }
    QString library;
    {
        const auto delegate = launched();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    const auto made = [&library](const char *name, bool wasSaved) {
        const QString directory = library + u'/' + QLatin1String(name) + QStringLiteral(".ztlibraryitem");
        QDir().mkpath(directory);
        QFile file(directory + QStringLiteral("/a.png"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.close();
        if (wasSaved) {
            SeenFileTags::write(SeenFileTags::of({}), file.fileName(), SeenFileTags::Empty::IsWritten);
        }
    };
    made("NeverSaved", false);
    made("Saved", true);
    made("Purged", true);
    made("A", true);
    QFile note(defaultBundle() + QStringLiteral("/pending-removals"));
    ASSERT_TRUE(note.open(QIODevice::WriteOnly));
    note.write("Purged.ztlibraryitem\nA.ztlibraryitem\n../outside\nLongGone.ztlibraryitem\n");
    note.close();

    const auto delegate = launched();
    checkLeftovers(*delegate);
    EXPECT_EQ(imports.takenBack, QStringList{QStringLiteral("Saved.ztlibraryitem")});
    delegate->waitForRemovals();
    EXPECT_EQ(QDir(library).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              (QStringList{QStringLiteral("A.ztlibraryitem"), QStringLiteral("Saved.ztlibraryitem")}));
    checkLeftovers(*delegate);
    EXPECT_FALSE(note.exists());
}

TEST_F(ApplicationTest, MoreThanAnImportLeavesIsRemovedOnlyWhenThePersonSaysSo)
{
    QString library;
    {
        const auto delegate = launched();
        library = delegate->libraryDirectory();
        addItem(*delegate, QStringLiteral("A"));
        delegate->saveAction();
    }
    constexpr int many = 25;
    for (int i = 0; i < many; ++i) {
        QDir().mkpath(library + QStringLiteral("/%1.ztlibraryitem").arg(i));
    }
    const auto left = [&] {
        return QDir(library).entryList({QStringLiteral("*.ztlibraryitem")}, QDir::Dirs).size() - 1;
    };
    const auto launchAnswering = [&](int button) {
        user.questions.clear();
        user.answerQuestion = [button](const UserQuestion &question) {
            return button < 0 ? int(question.buttons.size()) - 1 : button;
        };
        const auto delegate = launched();
        checkLeftovers(*delegate);
        delegate->waitForRemovals();
        return std::count_if(user.questions.begin(), user.questions.end(),
                             [](const UserQuestion &question) { return question.buttons.size() > 1; });
    };
    EXPECT_EQ(launchAnswering(-1), 1); // nobody there
    EXPECT_EQ(left(), many);
    EXPECT_TRUE(imports.takenBack.isEmpty());
    EXPECT_EQ(launchAnswering(0), 1);
    EXPECT_EQ(imports.takenBack.size(), many);
    EXPECT_EQ(left(), many);
    EXPECT_EQ(launchAnswering(1), 1);
    EXPECT_EQ(left(), 0);
    imports.cutOff = QDateTime::currentDateTimeUtc().addMSecs(-1); // it accounts for them
    for (int i = 0; i < many; ++i) {
        QDir().mkpath(library + QStringLiteral("/%1.ztlibraryitem").arg(i));
    }
    EXPECT_EQ(launchAnswering(-1), 0);
    EXPECT_EQ(left(), 0);
    imports.cutOff.reset();
    for (int i = 0; i < 20; ++i) {
        QDir().mkpath(library + QStringLiteral("/%1.ztlibraryitem").arg(i));
    }
    EXPECT_EQ(launchAnswering(-1), 0);
    EXPECT_EQ(left(), 0);
}

TEST_F(ApplicationTest, AThumbnailLiesBesideItsFile)
{
    EXPECT_EQ(LibraryBundleManager::libraryPathForThumbOfURL(QStringLiteral("/x/abc.jpeg")),
              QStringLiteral("/x/abc_thumb.jpeg"));
}

TEST_F(ApplicationTest, WithoutAWindowThereIsNothingToReopenAndNothingToImportWith)
{
    ApplicationParts parts;
    parts.userInteraction = &user;
    parts.windowFirst = std::chrono::milliseconds(0);
    tamberin_AppDelegate delegate(parts);
    delegate.applicationWillFinishLaunching();
    delegate.applicationDidFinishLaunching();
    EXPECT_FALSE(delegate.applicationShouldHandleReopen(false));
    delegate.reopenMainWindow();
    EXPECT_EQ(window.madeKey, 0);
    EXPECT_TRUE(delegate.persistentStoreCoordinator());
    ZQError error;
    EXPECT_TRUE(delegate.openLibraryForCommand(&error));
    delegate.syncWatchedFolder({});
    delegate.forceSyncWatchedFolder({});
    EXPECT_EQ(delegate.applicationShouldTerminate(), TerminateReply::Now);
}

TEST_F(ApplicationTest, ReopeningShowsTheWindowOnlyWhenThatIsMeant)
{
    const auto delegate = launched();
    struct Case
    {
        bool hasVisibleWindows, visible, miniaturized, justActivated, answer;
        int madeKey;
    };
    const Case cases[] = {
        {false, false, false, false, true, 1}, {true, true, true, false, true, 0},
        {true, true, false, false, false, 0},  {true, false, false, false, true, 1},
        {true, false, false, true, false, 0},
    };
    for (const Case &c : cases) {
        window = {};
        window.visible = c.visible;
        window.miniaturized = c.miniaturized;
        if (c.justActivated) {
            delegate->applicationWillBecomeActive();
        }
        EXPECT_EQ(delegate->applicationShouldHandleReopen(c.hasVisibleWindows), c.answer);
        EXPECT_EQ(window.madeKey, c.madeKey);
        EXPECT_FALSE(window.miniaturized);
    }
    zqRunMainLoopFor(std::chrono::milliseconds(300));
    window = {};
    window.visible = false;
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
}
