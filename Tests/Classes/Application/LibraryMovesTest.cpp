// The window's commands for the library: moving it, opening another one, making a new one.

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Tests/Classes/Application/LibraryPlacesFixture.h"
#include "Tests/Support/Skip.h"

#include <QThread>

#include <climits>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>

namespace {

class LibraryMoves : public LibraryPlacesTest
{
protected:
    QStringList messages() const
    {
        QStringList all;
        for (const UserQuestion &question : user.questions) {
            all.append(question.message);
        }
        return all;
    }
    // A launched application with one saved item, "kept".
    std::unique_ptr<tamberin_AppDelegate> launchedWithAnItem()
    {
        auto delegate = launched();
        addItem(*delegate, QStringLiteral("kept"));
        written(delegate->libraryDirectory() + QStringLiteral("/kept.ztlibraryitem/picture.png"), "picture");
        delegate->saveAction();
        return delegate;
    }

    const QString goodbye = QStringLiteral("Zelto will now quit");
};

} // namespace

TEST_F(LibraryMoves, AChosenLibraryIsRememberedAndTheApplicationQuits)
{
    const QString other = madeLibrary(inWorld(QStringLiteral("Other.ztlibrary")), 1);
    const auto delegate = launched();
    delegate->openZeltoLibrary(); // the dialog is cancelled
    delegate->newZeltoLibrary();
    delegate->moveZeltoLibrary();
    ASSERT_EQ(user.fileChoices.size(), 3);
    EXPECT_TRUE(user.fileChoices[0].directory);
    EXPECT_FALSE(user.fileChoices[1].directory || user.fileChoices[2].directory);
    EXPECT_EQ(user.fileChoices[2].suggestedName, QStringLiteral("Zelto"));
    EXPECT_EQ(window.calls.last(), QStringLiteral("activated")) << "it goes on";
    EXPECT_TRUE(user.questions.isEmpty() && user.errors.isEmpty());
    EXPECT_TRUE(tamberin_AppDelegate::loadLibraryURL().isEmpty());

    user.filesToOpen = {other};
    user.answerQuestion = [this](const UserQuestion &) {
        EXPECT_EQ(window.savedState, 0) << "it is said before it quits";
        return 0;
    };
    delegate->openZeltoLibrary();
    user.answerQuestion = {};
    EXPECT_EQ(tamberin_AppDelegate::loadLibraryURL(), other);
    EXPECT_EQ(messages(), QStringList{goodbye});
    EXPECT_EQ(user.questions.first().buttons, QStringList{QStringLiteral("Quit")});
    EXPECT_EQ(window.savedState, 1) << "it quit";

    user.fileToSave = inWorld(QStringLiteral("New.ztlibrary"));
    delegate->newZeltoLibrary();
    EXPECT_EQ(tamberin_AppDelegate::loadLibraryURL(), inWorld(QStringLiteral("New.ztlibrary")));
    EXPECT_EQ(window.savedState, 2);
    user.fileToSave = inWorld(QStringLiteral("nowhere/New"));
    delegate->newZeltoLibrary();
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_EQ(window.savedState, 2) << "it goes on";
    EXPECT_EQ(tamberin_AppDelegate::loadLibraryURL(), inWorld(QStringLiteral("New.ztlibrary")));
}

TEST_F(LibraryMoves, NothingMovesWhileSomethingStandsInTheWay)
{
    const QString destination = inWorld(QStringLiteral("Moved.ztlibrary"));
    std::atomic<bool> stop = false;
    struct Case
    {
        const char *what;
        QString destination;
        std::function<void(tamberin_AppDelegate &)> obstruct;
        bool isSaid; // as an error
    };
    const Case cases[] = {
        {"inside itself", defaultBundle() + QStringLiteral("/Library/Moved.ztlibrary"), {}, true},
        {"an import that goes on", destination,
         [&](tamberin_AppDelegate &delegate) {
             delegate.backgroundOperationQueue().addOperationWithBlock([&stop] {
                 while (!stop) {
                     QThread::msleep(1);
                 }
             });
         },
         false},
        {"a text that cannot be taken", destination, [this](tamberin_AppDelegate &) { window.takesTyping = false; },
         false},
        {"a save that fails", destination,
         [](tamberin_AppDelegate &delegate) {
             const auto item =
                 ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("kept"), *delegate.managedObjectContext());
             ZQManagedObjectContext other(delegate.persistentStoreCoordinator());
             other.existingObjectWithID(item->objectID())
                 ->setValueForKey(QStringLiteral("changed elsewhere"), QStringLiteral("title"));
             EXPECT_TRUE(other.save());
             item->setTitle(QStringLiteral("changed here"));
         },
         true},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        QDir(defaultBundle()).removeRecursively();
        user.errors.clear();
        window = {};
        stop = false;
        const auto delegate = launchedWithAnItem();
        if (each.obstruct) {
            each.obstruct(*delegate);
        }
        user.fileToSave = each.destination;
        user.questions.clear();
        delegate->moveZeltoLibrary();
        EXPECT_EQ(user.errors.size(), each.isSaid ? 1 : 0);
        EXPECT_FALSE(messages().contains(goodbye));
        EXPECT_EQ(window.savedState, 0);
        EXPECT_NE(delegate->mainWindowController(), nullptr);
        EXPECT_TRUE(holdsTheItem(defaultBundle()));
        EXPECT_FALSE(QFileInfo::exists(destination));
        EXPECT_NE(delegate->managedObjectContext(), nullptr);
        stop = true;
    }
}

TEST_F(LibraryMoves, AMoveKeepsTheWindowsStateAndTheStoreIsNotOpenedAgain)
{
    const auto delegate = launchedWithAnItem();
    user.fileToSave = inWorld(QStringLiteral("Moved"));
    delegate->moveZeltoLibrary();
    EXPECT_EQ(window.savedState, 1);
    EXPECT_EQ(messages(), QStringList{goodbye});
    EXPECT_TRUE(holdsTheItem(inWorld(QStringLiteral("Moved.ztlibrary"))));
    EXPECT_EQ(delegate->managedObjectContext(), nullptr);
    EXPECT_FALSE(QFileInfo::exists(defaultBundle() + QStringLiteral("/storedata")));
    EXPECT_TRUE(LibraryLocation::notedMove().isNull());
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LibraryMoves, ALinkAtTheDestinationIsAskedAbout)
{
    const QString destination = inWorld(QStringLiteral("Moved.ztlibrary"));
    ASSERT_TRUE(QFile::link(inWorld(QStringLiteral("leads nowhere")), destination));
    const auto delegate = launchedWithAnItem();
    user.fileToSave = destination;
    delegate->moveZeltoLibrary();
    EXPECT_EQ(messages(), QStringList{QStringLiteral("“Moved.ztlibrary” exists already")});
    EXPECT_TRUE(holdsTheItem(defaultBundle()));
}

TEST_F(LibraryMoves, ACancelledMoveIsToldAndLeavesTheLibraryLockedUntilThen)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    const auto delegate = launchedWithAnItem();
    bool wasLocked = false;
    user.onBeginProgress = [&](const std::function<void()> &cancel) {
        wasLocked = LibraryLock::isInUse(defaultBundle());
        cancel();
    };
    user.fileToSave = volume.folder.filePath(QStringLiteral("Far"));
    delegate->moveZeltoLibrary();
    EXPECT_TRUE(wasLocked) << "nobody else may open it half way";
    ASSERT_EQ(user.errors.size(), 1);
    EXPECT_EQ(messages(), QStringList{goodbye});
    EXPECT_TRUE(holdsTheItem(defaultBundle()));
    EXPECT_TRUE(QDir(volume.folder.path()).isEmpty());
    EXPECT_EQ(openedNext(), defaultBundle());
    EXPECT_TRUE(LibraryLocation::notedMove().isNull());
}

TEST_F(LibraryMoves, ACancelComesThroughBetweenTwoEntries)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 0);
    for (int i = 0; i < 5; ++i) { // nothing that takes time by itself
        QDir().mkpath(source + QStringLiteral("/Library"));
        ASSERT_TRUE(QFile::link(QStringLiteral("gone"), source + QStringLiteral("/Library/%1").arg(i)));
    }
    int copied = 0;
    LibraryMove::Progress progress;
    progress.didCopy = [&](double, double) { ++copied; };
    progress.isCancelled = [&] { return copied >= 2; };
    ZQError error;
    EXPECT_FALSE(LibraryMove::move(source, volume.folder.filePath(QStringLiteral("Far.ztlibrary")), progress, &error));
    EXPECT_EQ(error.code, LibraryMove::Cancelled);
    EXPECT_EQ(copied, 2);
}

TEST_F(LibraryMoves, EverythingInALibraryComesAlongAsItIs)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 1);
    const QString outside = written(inWorld(QStringLiteral("outside")), "not of the library");
    written(source + QStringLiteral("/Library/.hidden"), "hidden");
    ASSERT_TRUE(QFile::link(outside, source + QStringLiteral("/Library/link")));
    ASSERT_TRUE(QFile::link(QStringLiteral("gone"), source + QStringLiteral("/broken")));
    QByteArray longest(PATH_MAX - 1, 'l'); // fewer where the file system takes no such link
    while (::symlink(longest.constData(), QFile::encodeName(source + QStringLiteral("/long")).constData()) != 0) {
        longest.chop(longest.size() / 2);
        ASSERT_FALSE(longest.isEmpty());
    }
    ASSERT_EQ(::chmod(QFile::encodeName(source + QStringLiteral("/Library")).constData(), 0710), 0);
    const QString destination = volume.folder.filePath(QStringLiteral("Far.ztlibrary"));
    ZQError error;
    ASSERT_TRUE(LibraryMove::move(source, destination, {}, &error)) << qPrintable(error.localizedDescription());
    EXPECT_TRUE(isWhole(destination, 1));
    EXPECT_EQ(contentOf(destination + QStringLiteral("/Library/.hidden")), QByteArray("hidden"));
    EXPECT_EQ(QFileInfo(destination + QStringLiteral("/Library/link")).symLinkTarget(), outside);
    EXPECT_TRUE(QFileInfo(destination + QStringLiteral("/broken")).isSymLink());
    QByteArray copied(PATH_MAX, '\0');
    const ssize_t length = ::readlink(QFile::encodeName(destination + QStringLiteral("/long")).constData(),
                                      copied.data(), std::size_t(copied.size()));
    EXPECT_EQ(copied.left(length), longest) << "to its last letter";
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(destination + QStringLiteral("/Library")).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & ALLPERMS, mode_t(0710));
    EXPECT_FALSE(QFileInfo::exists(source));
    EXPECT_EQ(contentOf(outside), QByteArray("not of the library"));
}

TEST_F(LibraryMoves, AMoveThatFailsLeavesTheLibraryWhereItWasAndNoNote)
{
    const OtherVolume volume;
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 2);
    QStringList destinations{
        inWorld(QString(300, u'n') + QStringLiteral(".ztlibrary")), // longer than a name may be
        inWorld(QStringLiteral("no name of a library")),            // could not be remembered
        QStringLiteral("/proc/Mine.ztlibrary"),                     // takes no folders
    };
    if (volume.isOther(world.path())) {
        destinations.append(volume.folder.filePath(QStringLiteral("no name of a library")));
    }
    for (const QString &destination : destinations) {
        SCOPED_TRACE(qPrintable(destination));
        ZQError error;
        EXPECT_FALSE(LibraryMove::move(source, destination, {}, &error));
        EXPECT_FALSE(error.isNull());
        EXPECT_TRUE(isWhole(source, 2));
        EXPECT_FALSE(QFileInfo::exists(destination));
        EXPECT_TRUE(LibraryLocation::notedMove().isNull());
        EXPECT_TRUE(LibraryLocation::remembered().isEmpty());
        EXPECT_TRUE(QDir(volume.folder.path()).isEmpty());
    }
}

TEST_F(LibraryMoves, ALibraryThatIsOpenElsewhereIsNotReplaced)
{
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 1);
    const QString other = madeLibrary(inWorld(QStringLiteral("Other.ztlibrary")), 1);
    ZQError error;
    const auto lock = LibraryLock::lockBundle(other, &error);
    ASSERT_TRUE(lock);
    EXPECT_EQ(LibraryMove::refusal(source, other).code, LibraryMove::DestinationInUse);
    EXPECT_FALSE(LibraryMove::move(source, other, {}, &error));
    EXPECT_TRUE(isWhole(source, 1) && isWhole(other, 1));
}

TEST_F(LibraryMoves, OnlyWhatAnInterruptedMoveMadeIsRemoved)
{
    const QString around = inWorld(QStringLiteral("Around.ztlibrary.moving-abcdef"));
    QDir().mkpath(around);
    const QString bundle = madeLibrary(around + QStringLiteral("/Mine.ztlibrary"), 1);
    const QString third = madeLibrary(inWorld(QStringLiteral("Third.ztlibrary")), 1);
    const QString documents = inWorld(QStringLiteral("Documents"));
    const QString arrivedFrom = inWorld(QStringLiteral("Far.ztlibrary.moving-abcdef"));
    for (const QString &folder : {documents, arrivedFrom}) {
        written(folder + QStringLiteral("/a letter"), "dear");
    }
    struct Case
    {
        const char *what;
        LibraryLocation::Move move;
        QString opened;
        bool isNoteKept;
    };
    const Case cases[] = {
        {"a folder of another name", {bundle, third, documents}, bundle, false},
        {"a folder that holds the library", {bundle, third, around}, bundle, false},
        {"after the copy arrived", {third, bundle, arrivedFrom}, bundle, false},
        {"another library is opened", {bundle, documents, arrivedFrom}, third, true},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        ASSERT_TRUE(LibraryLocation::noteMove(each.move));
        LibraryMove::removeInterruptedCopy(each.opened);
        EXPECT_EQ(!LibraryLocation::notedMove().isNull(), each.isNoteKept);
        EXPECT_EQ(contentOf(documents + QStringLiteral("/a letter")), QByteArray("dear"));
        EXPECT_EQ(contentOf(arrivedFrom + QStringLiteral("/a letter")), QByteArray("dear"));
        EXPECT_TRUE(isWhole(bundle, 1) && isWhole(third, 1));
    }
}

TEST_F(LibraryMoves, ARenamingThatDidNotHappenMovesNothing)
{
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 1);
    const QString other = madeLibrary(inWorld(QStringLiteral("Other.ztlibrary")), 1);
    ASSERT_TRUE(tamberin_AppDelegate::saveNewLibraryURL(source));
    ASSERT_TRUE(LibraryLocation::noteMove({source, other, {}}));
    EXPECT_EQ(openedNext(), source) << "it is still there";
    ASSERT_TRUE(LibraryLocation::noteMove({inWorld(QStringLiteral("Gone.ztlibrary")), other, inWorld({})}));
    EXPECT_EQ(openedNext(), source) << "a copy is no renaming";
    ASSERT_TRUE(
        LibraryLocation::noteMove({inWorld(QStringLiteral("Gone.ztlibrary")), inWorld(QStringLiteral("Empty")), {}}));
    EXPECT_EQ(openedNext(), source) << "there is no library at the other end";
}

TEST_F(LibraryMoves, TheLibraryOfASandboxComesAlongThoughItsPreferencesAreAPipe)
{
    const QString container = inWorld(QStringLiteral("home/.var/app/org.zelto.Zelto"));
    madeLibrary(container + QStringLiteral("/data/Zelto.ztlibrary"), 2);
    const QString preferences = container + QStringLiteral("/Library/Preferences/org.zelto.Zelto.plist");
    ASSERT_TRUE(QDir().mkpath(QFileInfo(preferences).path()));
    ASSERT_EQ(::mkfifo(QFile::encodeName(preferences).constData(), 0600), 0);
    application()->applicationWillFinishLaunching();
    EXPECT_TRUE(isWhole(defaultBundle(), 2));
}

TEST_F(LibraryMoves, TheLibraryOfASandboxComesAlongOnceWithItsPreferences)
{
    const QString container = inWorld(QStringLiteral("home/.var/app/org.zelto.Zelto"));
    madeLibrary(container + QStringLiteral("/data/Zelto.ztlibrary"), 2);
    const auto preferences = ZQPropertyList::toBinary(QVariantMap{{QStringLiteral("UseDarkUI"), false}});
    ASSERT_TRUE(preferences);
    written(container + QStringLiteral("/Library/Preferences/org.zelto.Zelto.plist"), *preferences);
    const auto delegate = application();
    delegate->applicationWillFinishLaunching();
    EXPECT_TRUE(isWhole(defaultBundle(), 2));
    EXPECT_FALSE(QFileInfo::exists(container + QStringLiteral("/data/Zelto.ztlibrary")));
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().objectForKey(QStringLiteral("UseDarkUI")), QVariant(false));

    // The folder is there now, and what lies in the container is somebody else's business.
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("UseDarkUI"));
    QDir(defaultBundle()).removeRecursively();
    madeLibrary(container + QStringLiteral("/data/Zelto.ztlibrary"), 2);
    delegate->applicationWillFinishLaunching();
    EXPECT_FALSE(QFileInfo::exists(defaultBundle()));
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().objectForKey(QStringLiteral("UseDarkUI")), QVariant(true));
}
