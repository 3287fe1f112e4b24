// Where libraries go and are found again, and the scratch area.

#include "Classes/Application/LibraryLocation.h"
#include "Classes/Application/LibraryLock.h"
#include "Classes/Application/LibraryMove.h"
#include "Classes/Application/TemporaryArea.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Tests/Classes/Application/LibraryPlacesFixture.h"
#include "Tests/Support/Skip.h"

#include <QDirIterator>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

TEST_F(LibraryPlacesTest, AMovedLibraryIsWholeAtItsNewPlaceAndFoundThere)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    qsizetype moves = 0; // each adds an item
    for (const QString &destination :
         {inWorld(QStringLiteral("moved/Mine.ztlibrary")), volume.folder.filePath(QStringLiteral("Far.ztlibrary"))}) {
        SCOPED_TRACE(qPrintable(destination));
        QDir().mkpath(QFileInfo(destination).path());
        const QString before = openedNext();
        moveTo(destination);
        EXPECT_TRUE(user.errors.isEmpty());
        EXPECT_TRUE(holdsTheItem(destination));
        EXPECT_FALSE(QFileInfo::exists(before));
        EXPECT_EQ(openedNext(), destination);
        EXPECT_TRUE(QDir(QFileInfo(destination).path())
                        .entryList({QStringLiteral("*.moving-*")}, QDir::AllEntries | QDir::Hidden)
                        .isEmpty());
        for (const QString &folder : {QFileInfo(before).path(), QFileInfo(destination).path()}) {
            EXPECT_TRUE(
                QDir(folder).entryList({QStringLiteral(".zelto-*")}, QDir::AllEntries | QDir::Hidden).isEmpty());
        }
        EXPECT_EQ(user.progresses.last()->text, QStringLiteral("Moving the library…"));
        EXPECT_EQ(user.progresses.last()->maximum, 1);
        EXPECT_NEAR(user.progresses.last()->done,
                    volume.isOther(QFileInfo(before).path()) == volume.isOther(QFileInfo(destination).path()) ? 0 : 1,
                    0.001);
        const auto delegate = application();
        ASSERT_TRUE(delegate->managedObjectContext());
        EXPECT_EQ(delegate->managedObjectContext()->fetch<ZQLibraryImage>({ZQLibraryImage::entityName()})->size(),
                  ++moves);
    }
}

TEST_F(LibraryPlacesTest, AMoveOntoIntoOrAroundItselfIsRefusedAndChangesNothing)
{
    const QString real = inWorld(QStringLiteral("real"));
    QDir().mkpath(real);
    const QString around = inWorld(QStringLiteral("Around.ztlibrary"));
    QDir().mkpath(around);
    ASSERT_TRUE(QFile::link(real, inWorld(QStringLiteral("link"))));
    const QString source = madeLibrary(real + QStringLiteral("/Mine.ztlibrary"), 3);
    const QString nested = madeLibrary(around + QStringLiteral("/Mine.ztlibrary"), 3);
    ASSERT_TRUE(QFile::link(source, inWorld(QStringLiteral("Alias.ztlibrary"))));
    QDir().mkpath(inWorld(QStringLiteral("xdg_data_home/Trash/files")));
    ASSERT_TRUE(QFile::link(real, source + QStringLiteral("/Library/Out.ztlibrary")));
    ASSERT_TRUE(QFile::link(source + QStringLiteral("/Library"), inWorld(QStringLiteral("In.ztlibrary"))));
    ASSERT_TRUE(QFile::link(around, inWorld(QStringLiteral("Holder.ztlibrary"))));

    struct Case
    {
        QString source, destination;
        LibraryMove::ErrorCode code;
    };
    const Case cases[] = {
        {source, source, LibraryMove::SamePlace},
        {source, inWorld(QStringLiteral("link/Mine.ztlibrary")), LibraryMove::SamePlace},
        {source, inWorld(QStringLiteral("Alias.ztlibrary")), LibraryMove::SamePlace},
        {source, inWorld(QStringLiteral("link/../link/./Mine.ztlibrary")), LibraryMove::SamePlace},
        {source, source + QStringLiteral("/Library/New.ztlibrary"), LibraryMove::InsideLibrary},
        {source, inWorld(QStringLiteral("Alias.ztlibrary/Library/New.ztlibrary")), LibraryMove::InsideLibrary},
        {source, source + QStringLiteral("/Library/Out.ztlibrary"), LibraryMove::InsideLibrary},
        {source, inWorld(QStringLiteral("In.ztlibrary")), LibraryMove::InsideLibrary},
        {nested, around, LibraryMove::AroundLibrary},
        {nested, inWorld(QStringLiteral("Holder.ztlibrary")), LibraryMove::AroundLibrary},
        {source, inWorld(QStringLiteral("nowhere/New.ztlibrary")), LibraryMove::NoFolder},
        {source, inWorld(QStringLiteral("xdg_data_home/Trash/files/New.ztlibrary")), LibraryMove::InTrash},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(qPrintable(each.destination));
        ZQError error;
        EXPECT_FALSE(LibraryMove::move(each.source, each.destination, {}, &error));
        EXPECT_EQ(error.code, each.code);
        EXPECT_TRUE(isWhole(source, 3) && isWhole(nested, 3));
        EXPECT_TRUE(tamberin_AppDelegate::loadLibraryURL().isEmpty());
    }
}

TEST_F(LibraryPlacesTest, WhatStandsAtTheDestinationGoesToTheTrashAndOnlyWhenThePersonAgrees)
{
    const QString destination = inWorld(QStringLiteral("Old.ztlibrary"));
    madeLibrary(destination, 2);
    moveTo(destination); // nobody answers
    EXPECT_TRUE(isWhole(destination, 2));
    EXPECT_TRUE(holdsTheItem(defaultBundle()));

    user.answerQuestion = [](const UserQuestion &) { return 0; };
    moveTo(destination);
    EXPECT_TRUE(holdsTheItem(destination));
    bool isInTrash = false;
    for (QDirIterator it(inWorld(QStringLiteral("xdg_data_home/Trash/files")), QDir::Dirs); it.hasNext();) {
        isInTrash = isWhole(it.next(), 2) || isInTrash;
    }
    EXPECT_TRUE(isInTrash);
}

TEST_F(LibraryPlacesTest, AKillWhileTheLibraryIsCopiedLeavesItWhereItWas)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 20);
    ASSERT_TRUE(tamberin_AppDelegate::saveNewLibraryURL(source));
    const QString destination = volume.folder.filePath(QStringLiteral("Far.ztlibrary"));
    for (const int lastCopied : {1, 10, 20}) {
        SCOPED_TRACE(lastCopied);
        const pid_t child = ::fork();
        if (child == 0) {
            int copied = 0;
            LibraryMove::Progress progress;
            progress.didCopy = [&](double, double) {
                if (++copied == lastCopied) {
                    ::raise(SIGKILL);
                }
            };
            LibraryMove::move(source, destination, progress, nullptr);
            ::_exit(0);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it was to be interrupted";
        ZQUserDefaults::standardUserDefaults().synchronize();

        EXPECT_TRUE(isWhole(source, 20));
        const auto delegate = application();
        EXPECT_EQ(delegate->libraryBundleDirectory(), source);
        const QStringList half = QDir(volume.folder.path()).entryList({QStringLiteral("*.moving-*")}, QDir::Dirs);
        EXPECT_EQ(half.size(), 1);
        ZQError error;
        ASSERT_TRUE(delegate->lockLibrary(&error));
        EXPECT_TRUE(QDir(volume.folder.path()).isEmpty()); // the half of a copy is gone
        EXPECT_TRUE(isWhole(source, 20));
    }
}

TEST_F(LibraryPlacesTest, AKillRightAfterTheRenamingLeavesALibraryThatIsFound)
{
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 3);
    const QString destination = inWorld(QStringLiteral("far/away/Mine.ztlibrary"));
    ASSERT_TRUE(tamberin_AppDelegate::saveNewLibraryURL(source));
    const QVariantMap intent{{QStringLiteral("from"), source}, {QStringLiteral("to"), destination}};
    ZQUserDefaults::standardUserDefaults().setObjectForKey(intent, QStringLiteral("ZeltoLibraryMove"));
    EXPECT_EQ(openedNext(), source); // before it

    QDir().mkpath(QFileInfo(destination).path());
    ASSERT_TRUE(QDir().rename(source, destination));
    EXPECT_EQ(openedNext(), destination);
    ZQError error;
    ASSERT_TRUE(application()->lockLibrary(&error));
    EXPECT_FALSE(ZQUserDefaults::standardUserDefaults().objectForKey(QStringLiteral("ZeltoLibraryMove")).isValid());
    EXPECT_EQ(openedNext(), destination);
}

TEST_F(LibraryPlacesTest, ALibraryIsNotMovedWhileItsNewPlaceCannotBeNoted)
{
    const OtherVolume volume;
    if (!volume.isOther(world.path())) {
        return skipWithout("a second file system at /dev/shm");
    }
    const QString source = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 3);
    ASSERT_TRUE(LibraryLocation::remember(source));
    for (const QString &destination :
         {inWorld(QStringLiteral("Moved.ztlibrary")), volume.folder.filePath(QStringLiteral("Far.ztlibrary"))}) {
        ZQError error;
        {
            const FullDisk full;
            EXPECT_FALSE(LibraryMove::move(source, destination, {}, &error));
        }
        EXPECT_EQ(error.code, LibraryLocation::NotNoted);
        EXPECT_TRUE(isWhole(source, 3));
        EXPECT_FALSE(QFileInfo::exists(destination));
        EXPECT_EQ(LibraryLocation::remembered(), source);
        EXPECT_TRUE(LibraryLocation::notedMove().isNull());
    }
    const auto delegate = launched();
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    {
        const FullDisk full;
        delegate->openFiles({madeLibrary(inWorld(QStringLiteral("Other.ztlibrary")), 0)});
    }
    ASSERT_FALSE(user.errors.isEmpty());
    EXPECT_EQ(user.errors.last().code, LibraryLocation::NotNoted);
    EXPECT_EQ(LibraryLocation::remembered(), source);
    EXPECT_EQ(window.savedState, 0) << "it goes on";
}

TEST_F(LibraryPlacesTest, OnlyALibraryThatIsThereIsRemembered)
{
    const QString library = madeLibrary(inWorld(QStringLiteral("Mine.ztlibrary")), 1);
    ASSERT_TRUE(tamberin_AppDelegate::saveNewLibraryURL(library));
    written(inWorld(QStringLiteral("File.ztlibrary")), "no folder");
    const QString trashed = madeLibrary(inWorld(QStringLiteral("xdg_data_home/Trash/files/Gone.ztlibrary")), 1);
    const auto delegate = application();
    const QStringList refused{inWorld(QStringLiteral("Missing.ztlibrary")), inWorld(QStringLiteral("File.ztlibrary")),
                              trashed, inWorld(QStringLiteral("ToTrash.ztlibrary"))};
    ASSERT_TRUE(QFile::link(trashed, refused.last()));
    for (const QString &path : refused) {
        SCOPED_TRACE(qPrintable(path));
        user.errors.clear();
        delegate->openFiles({path});
        user.filesToOpen = {path};
        delegate->openZeltoLibrary();
        EXPECT_EQ(user.errors.size(), 2);
        EXPECT_EQ(tamberin_AppDelegate::loadLibraryURL(), library);
    }
    EXPECT_TRUE(user.questions.isEmpty());

    // One that was put into this desktop's trash after it was remembered.
    ZQUserDefaults::standardUserDefaults().setObjectForKey(zqDataForPersistentURL(trashed),
                                                           QStringLiteral("ZeltoLibraryLocation"));
    EXPECT_TRUE(tamberin_AppDelegate::loadLibraryURL().isEmpty());
}

TEST_F(LibraryPlacesTest, ANewLibraryIsMadeAndRemembered)
{
    const auto delegate = launched();
    user.fileToSave = inWorld(QStringLiteral("Fresh"));
    delegate->newZeltoLibrary();
    EXPECT_EQ(openedNext(), inWorld(QStringLiteral("Fresh.ztlibrary")));
    delegate->newZeltoLibrary(); // its place is taken
    EXPECT_EQ(user.errors.size(), 1);
}

TEST_F(LibraryPlacesTest, AnotherProcessKeepsItsScratchFolders)
{
    const QString mine = TemporaryArea::newFolder();
    ASSERT_FALSE(mine.isEmpty());
    int ready[2];
    int done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    const pid_t other = ::fork();
    if (other == 0) {
        ::close(done[1]);
        // A descriptor of its own, as a process that was not forked has one.
        const int folder = ::open(QFile::encodeName(QFileInfo(mine).path()).constData(), O_RDONLY | O_DIRECTORY);
        const bool isLocked = ::flock(folder, LOCK_SH) == 0;
        char byte = isLocked ? 'y' : 'n';
        ::write(ready[1], &byte, 1) == 1 && ::read(done[0], &byte, 1);
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ASSERT_EQ(byte, 'y');
    EXPECT_EQ(TemporaryArea::takeForRemoval(), QStringList{mine}); // only what this process made

    const QString later = TemporaryArea::newFolder();
    ::close(done[1]);
    ASSERT_EQ(::waitpid(other, nullptr, 0), other);

    const QString usual = TemporaryArea::folder();
    const QStringList removable = TemporaryArea::takeForRemoval();
    ASSERT_EQ(removable.size(), 1);
    EXPECT_NE(removable.first(), usual);
    EXPECT_TRUE(QFileInfo::exists(removable.first() + u'/' + QFileInfo(later).fileName()));
    EXPECT_FALSE(QFileInfo::exists(usual));
}

TEST_F(LibraryPlacesTest, AScratchFolderThatIsNotThePersonsOwnIsLeftAlone)
{
    const QString usual = QFile::decodeName(qgetenv("TMPDIR")) + QStringLiteral("/ZeltoTemporaryFolder");
    const QString elsewhere = inWorld(QStringLiteral("elsewhere"));
    QDir().mkpath(elsewhere);
    QDir().mkpath(QFileInfo(usual).path());
    const QByteArray name = QFile::encodeName(usual);
    const std::function<void()> traps[] = {
        [&] { ASSERT_TRUE(QFile::link(elsewhere, usual)); },
        [&] { written(usual, "a file"); },
        [&] {
            ASSERT_EQ(::mkdir(name.constData(), 0700), 0);
            ASSERT_EQ(::chmod(name.constData(), 0777), 0); // anybody may have put something in
        },
        [&] {
            ASSERT_EQ(::mkdir(name.constData(), 0700), 0);
            ASSERT_TRUE(::geteuid() != 0 || ::chown(name.constData(), 12345, 12345) == 0);
            ASSERT_TRUE(::geteuid() == 0 || ::chmod(name.constData(), 0777) == 0);
        },
    };
    for (const auto &trap : traps) {
        QFile::remove(usual);
        QDir(usual).removeRecursively();
        trap();
        TemporaryArea::takeForRemoval(); // lets go of the folder of before
        const QString folder = TemporaryArea::newFolder();
        EXPECT_NE(QFileInfo(folder).path(), usual);
        EXPECT_TRUE(folder.contains(QStringLiteral("ZeltoTemporaryFolder"))); // imports know it by this
        struct stat status = {};
        ASSERT_EQ(::stat(QFile::encodeName(QFileInfo(folder).path()).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & ALLPERMS, mode_t(0700));
        EXPECT_EQ(status.st_uid, ::geteuid());
        EXPECT_TRUE(QDir(elsewhere).isEmpty());
    }
}

TEST_F(LibraryPlacesTest, WithoutAPlaceOfItsOwnTheScratchFolderHasAFreshNameOrThereIsNone)
{
    const QString usual = QFile::decodeName(qgetenv("TMPDIR")) + QStringLiteral("/ZeltoTemporaryFolder");
    TemporaryArea::takeForRemoval();
    QDir(usual).removeRecursively();
    const QStringList taken{usual, usual + u'-' + QString::number(::geteuid())};
    for (const QString &file : taken) {
        written(file, "a file");
    }
    const QString folder = TemporaryArea::folder();
    EXPECT_TRUE(folder.startsWith(usual + u'-') && !taken.contains(folder)) << qPrintable(folder);
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(TemporaryArea::folder(), folder) << "and keeps it";

    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(inWorld(QStringLiteral("missing"))));
    ZQError error;
    EXPECT_TRUE(TemporaryArea::newFolder(&error).isEmpty());
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(TemporaryArea::takeForRemoval().isEmpty());
    qputenv("TMPDIR", before);
}

TEST_F(LibraryPlacesTest, ALibraryNamedForOneRunIsOneOrMadeOnlyByWhatFillsIt)
{
    using LibraryLocation::Missing;
    const QString plain = inWorld(QStringLiteral("pictures"));
    QDir().mkpath(plain);
    QDir().mkpath(inWorld(QStringLiteral("New.ztlibrary")));
    madeLibrary(inWorld(QStringLiteral("unusual name")), 1);
    struct Case
    {
        const char *path;
        bool isRefusedToRead, isRefusedToFill;
    };
    const Case cases[] = {
        {"pictures", true, true},       {"New.ztlibrary", false, false},    {"New.ztlibrary/", false, false},
        {"unusual name", false, false}, {"Missing.ztlibrary", true, false}, {"missing", true, true},
    };
    for (const Case &each : cases) {
        const QString path = inWorld(QString::fromLatin1(each.path));
        EXPECT_EQ(!LibraryLocation::refusalOfNamed(path, Missing::IsRefused).isNull(), each.isRefusedToRead)
            << each.path;
        EXPECT_EQ(!LibraryLocation::refusalOfNamed(path, Missing::MayBeMade).isNull(), each.isRefusedToFill)
            << each.path;
    }
    EXPECT_TRUE(QDir(plain).isEmpty());
}
