#include "Kit/Files/ZQVerifiedCopy.h"

#include "Kit/Files/ZQFileAdvice.h"
#include "Kit/Files/ZQFreeName.h"
#include "Kit/Files/ZQOwnMove.h"
#include "Kit/Files/ZQPaths.h"
#include "Kit/Files/ZQTrash.h"
#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <QDirIterator>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <utility>

namespace {

using VerifiedCopy = Scratch;

QStringList namesBelow(const QString &folder)
{
    QStringList names;
    QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        names.append(QDir(folder).relativeFilePath(all.next()));
    }
    names.sort();
    return names;
}

// What another program does at that moment.
std::function<void()> duringFlush;
std::function<void()> afterUnlink;

// As file systems that know neither the flag nor links: FAT over FUSE, some servers.
bool isPoorFileSystem = false;

} // namespace

extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    errno = EINVAL;
    return isPoorFileSystem ? -1 : int(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

extern "C" int syncfs(int file) noexcept
{
    if (duringFlush) {
        duringFlush();
    }
    return int(::syscall(SYS_syncfs, file));
}

extern "C" int unlink(const char *path) noexcept
{
    const int result = int(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
    if (const auto happens = std::exchange(afterUnlink, {})) {
        happens();
    }
    return result;
}

extern "C" int link(const char *from, const char *to) noexcept
{
    errno = EPERM;
    return isPoorFileSystem ? -1 : int(::syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

TEST_F(VerifiedCopy, OnPoorFileSystemsNothingIsReplacedEither)
{
    isPoorFileSystem = true;
    const QString a = file(QStringLiteral("a"), "a");
    const QString taken = file(QStringLiteral("taken"), "taken");
    const QString deep = folder(QStringLiteral("deep"));
    file(QStringLiteral("deep/in"), "in");
    ZQError error;
    EXPECT_FALSE(zqMoveNoted(a, taken, &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_FALSE(zqMoveNoted(deep, taken));
    EXPECT_FALSE(zqMoveNoted(a, deep));
    EXPECT_FALSE(zqMoveNoted(path(QStringLiteral("missing")), path(QStringLiteral("b")), &error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_FALSE(zqMoveNoted(deep, deep + QStringLiteral("/inside")));
    EXPECT_EQ(namesBelow(path({}).chopped(1)), (QStringList{"TMPDIR", "a", "deep", "deep/in", "taken"}))
        << "and no name is left taken";
    EXPECT_TRUE(zqMoveNoted(a, path(QStringLiteral("b"))));
    EXPECT_TRUE(zqMoveNoted(deep, path(QStringLiteral("there"))));
    isPoorFileSystem = false;
    EXPECT_EQ(read(path(QStringLiteral("b"))), QByteArray("a"));
    EXPECT_EQ(read(path(QStringLiteral("there/in"))), QByteArray("in"));
    EXPECT_EQ(read(taken), QByteArray("taken"));
}

TEST_F(VerifiedCopy, TakesThePlaceOfWhatItCopied)
{
    folder(QStringLiteral("from/deep"));
    file(QStringLiteral("from/a"), "a");
    file(QStringLiteral("from/deep/b"), "b");
    ASSERT_EQ(::symlink("a", QFile::encodeName(path(QStringLiteral("from/link"))).constData()), 0);
    const QStringList before = namesBelow(path(QStringLiteral("from")));
    ZQError error;
    const auto copy = ZQVerifiedCopy::make(path(QStringLiteral("from")), path(QStringLiteral("to")), &error);
    ASSERT_TRUE(copy) << qPrintable(error.localizedDescription());
    EXPECT_EQ(namesBelow(path(QStringLiteral("from"))), before) << "until it is asked to go";
    file(QStringLiteral("from/newcomer"), "n");
    EXPECT_FALSE(copy->removeSource(&error));
    EXPECT_EQ(error.code, EBUSY);
    EXPECT_EQ(zqAdviceForFileError(error), error.localizedDescription()) << "not that a program uses it";
    EXPECT_EQ(namesBelow(path(QStringLiteral("from"))).size(), before.size() + 1) << "nothing went";
    QFile::remove(path(QStringLiteral("from/newcomer")));
    EXPECT_TRUE(copy->removeSource());
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("from"))));
    EXPECT_EQ(namesBelow(path(QStringLiteral("to"))), before);
    EXPECT_EQ(read(path(QStringLiteral("to/deep/b"))), QByteArray("b"));
}

TEST_F(VerifiedCopy, KeepsWhatAnotherProgramSavesUntilItsFileGoes)
{
    const auto save = [this] { file(QStringLiteral("from/a"), "saved meanwhile"); };
    for (std::function<void()> *const moment : {&duringFlush, &afterUnlink}) {
        folder(QStringLiteral("from"));
        file(QStringLiteral("from/a"), "a");
        file(QStringLiteral("from/b"), "b");
        const auto copy = ZQVerifiedCopy::make(path(QStringLiteral("from")), path(QStringLiteral("to")));
        ASSERT_TRUE(copy);
        *moment = save;
        ZQError error;
        EXPECT_FALSE(copy->removeSource(&error));
        *moment = {};
        EXPECT_EQ(error.code, EBUSY);
        EXPECT_EQ(read(path(QStringLiteral("from/a"))), QByteArray("saved meanwhile"));
        EXPECT_EQ(QFileInfo::exists(path(QStringLiteral("from/b"))), moment == &duringFlush);
        EXPECT_EQ(read(path(QStringLiteral("to/b"))), QByteArray("b"));
        QDir(path(QStringLiteral("to"))).removeRecursively();
    }
}

TEST_F(VerifiedCopy, SaysThatWhatItWasToRemoveWentMeanwhile)
{
    folder(QStringLiteral("from"));
    file(QStringLiteral("from/a"), "a");
    file(QStringLiteral("from/b"), "b");
    const auto copy = ZQVerifiedCopy::make(path(QStringLiteral("from")), path(QStringLiteral("to")));
    ASSERT_TRUE(copy);
    afterUnlink = [this] { QFile::remove(path(QStringLiteral("from/a"))); };
    ZQError error;
    EXPECT_FALSE(copy->removeSource(&error));
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_TRUE(QFileInfo::exists(path(QStringLiteral("from")))) << "who removed it may still be at work there";
}

TEST_F(VerifiedCopy, AFolderThatCannotBeListedIsNoEmptyOne)
{
    const QString from = folder(QStringLiteral("from"));
    file(QStringLiteral("from/a"), "a");
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    ZQError error;
    const auto state = ZQTreeState::of(from, &error);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(state);
    EXPECT_EQ(error.code, EMFILE);
    EXPECT_EQ(ZQTreeState::of(from)->entries.size(), 2) << "the folder and its file";
}

TEST_F(VerifiedCopy, TheTrashOfADiskIsAtItsTopBelowALinkToo)
{
    const ScratchMount mount(path(QStringLiteral("disk")));
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    folder(QStringLiteral("disk/deep/sub"));
    ASSERT_TRUE(QFile::link(path(QStringLiteral("disk/deep")), path(QStringLiteral("way"))));
    file(QStringLiteral("disk/deep/sub/a.png"), "a");
    const QString top = path(QStringLiteral("disk/.Trash-%1").arg(::getuid()));
    QString trashed;
    ASSERT_TRUE(ZQTrash::recycle(path(QStringLiteral("way/sub/a.png")), &trashed));
    EXPECT_EQ(trashed, top + QStringLiteral("/files/a.png"));
    EXPECT_TRUE(read(top + QStringLiteral("/info/a.png.trashinfo")).contains("\nPath=deep/sub/a.png\n"));
    ASSERT_TRUE(ZQTrash::recycle(path(QStringLiteral("way")), &trashed));
    EXPECT_EQ(trashed, ZQPaths::dataHome() + QStringLiteral("/Trash/files/way")) << "the link lies at home";
    EXPECT_TRUE(QFileInfo::exists(path(QStringLiteral("disk/deep"))));
}

TEST_F(VerifiedCopy, RefusesWhatIsNoFileAndLeavesNothing)
{
    const QString source = file(QStringLiteral("a"), "a");
    ASSERT_EQ(::symlink("a", QFile::encodeName(path(QStringLiteral("link"))).constData()), 0);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("fifo"))).constData(), 0600), 0);
    folder(QStringLiteral("holder"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(QStringLiteral("holder/fifo"))).constData(), 0600), 0);
    const QString to = path(QStringLiteral("to"));
    for (const char *name : {"link", "fifo", "holder", "missing"}) {
        ZQError error;
        EXPECT_FALSE(ZQVerifiedCopy::make(path(QLatin1StringView(name)), to, &error)) << name;
        EXPECT_FALSE(error.isNull()) << name;
        EXPECT_FALSE(QFileInfo::exists(to)) << name;
    }
    EXPECT_FALSE(ZQVerifiedCopy::make(source, to, nullptr, [] { return true; })) << "cancelled";
    EXPECT_FALSE(QFileInfo::exists(to));
    file(QStringLiteral("to"), "taken");
    ZQError error;
    EXPECT_FALSE(ZQVerifiedCopy::make(source, to, &error));
    EXPECT_EQ(error.code, EEXIST);
    EXPECT_EQ(read(to), QByteArray("taken"));
}

TEST_F(VerifiedCopy, OfADiskWithoutTrashGoesToTheOneAtHome)
{
    const ScratchMount mount(path(QStringLiteral("disk")));
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    // What another user made at its top is not used: as on a disk that gives no place for a trash.
    const QString mine = QStringLiteral("disk/.Trash-%1").arg(::getuid());
    const auto takeTrashAway = [&] {
        folder(mine);
        return ::chown(QFile::encodeName(path(mine)).constData(), 65534, 65534) == 0;
    };
    const QString first = file(QStringLiteral("disk/a.png"), "a");
    QString trashed;
    ASSERT_TRUE(ZQTrash::recycle(first, &trashed));
    EXPECT_EQ(trashed, path(mine) + QStringLiteral("/files/a.png")) << "its own disk's, while there is one";
    QDir(path(mine)).removeRecursively();
    if (!takeTrashAway()) {
        return skipWithout("the right to give a folder away");
    }
    const QString home = ZQPaths::dataHome() + QStringLiteral("/Trash");
    folder(QStringLiteral("disk/package/in"));
    file(QStringLiteral("disk/package/in/b"), "b");
    ZQError error;
    ASSERT_TRUE(ZQTrash::recycle(file(QStringLiteral("disk/a.png"), "again"), &trashed, &error))
        << qPrintable(error.localizedDescription());
    EXPECT_EQ(trashed, home + QStringLiteral("/files/a.png"));
    EXPECT_EQ(read(trashed), QByteArray("again"));
    ASSERT_TRUE(ZQTrash::recycle(path(QStringLiteral("disk/package")), &trashed));
    EXPECT_EQ(read(trashed + QStringLiteral("/in/b")), QByteArray("b"));
    EXPECT_EQ(namesBelow(path(QStringLiteral("disk"))), QStringList{mine.mid(5)});

    const QString locked = file(QStringLiteral("disk/l.png"), "l");
    ASSERT_TRUE(mount.setReadOnly(true));
    EXPECT_FALSE(ZQTrash::recycle(locked, nullptr, &error));
    EXPECT_EQ(error.code, EROFS);
    EXPECT_EQ(read(locked), QByteArray("l"));
    EXPECT_FALSE(QFileInfo::exists(home + QStringLiteral("/files/l.png"))) << "not in both places";
    EXPECT_FALSE(QFileInfo::exists(home + QStringLiteral("/info/l.png.trashinfo")));
}

TEST_F(VerifiedCopy, NamesAreNumberedWhereTheyAreTaken)
{
    struct Case
    {
        QString name;
        int number;
        QString expected;
    };
    const QString longName(300, u'x');
    const Case cases[] = {
        {"a.png", 0, "a.png"},
        {"a.png", 2, "a 2.png"},
        {"noextension", 3, "noextension 3"},
        {".dot", 2, ".dot 2"},
        {"a.tar.gz", 2, "a.tar 2.gz"},
        {longName, 0, longName.left(255)},
        {QString(126, u'ü') + "é.png", 12, QString(124, u'ü') + " 12.png"},
    };
    for (const Case &each : cases) {
        EXPECT_EQ(zqNumberedName(each.name, each.number), each.expected) << qPrintable(each.name);
        EXPECT_LE(zqNumberedName(each.name, each.number).toUtf8().size(), zqLongestName);
    }
    const QString from = file(QStringLiteral("from"), "moved");
    file(QStringLiteral("a.png"), "1");
    file(QStringLiteral("a 1.png"), "2");
    ZQError error;
    const auto move = [&](const QString &to, ZQError *failure) { return zqMoveNoted(from, to, failure); };
    EXPECT_EQ(zqUnderFreeName(path({}).chopped(1), QStringLiteral("a.png"), move, &error),
              path(QStringLiteral("a 2.png")));
    EXPECT_EQ(read(path(QStringLiteral("a 2.png"))), QByteArray("moved"));
    EXPECT_TRUE(zqUnderFreeName(path(QStringLiteral("nowhere")), QStringLiteral("a.png"), move, &error).isEmpty());
    EXPECT_EQ(error.code, ENOENT);
}

TEST_F(VerifiedCopy, OwnMovesAreKnownToWatchersAndTakenBackLastFirst)
{
    const QString a = file(QStringLiteral("a"), "1");
    const QString b = path(QStringLiteral("b"));
    const QString c = path(QStringLiteral("c"));
    ZQOwnMoves moves;
    ASSERT_TRUE(zqMoveNoted(a, b) && zqMoveNoted(b, c));
    for (const QString &each : {a, b, c}) {
        EXPECT_TRUE(ZQOwnChanges::sharedOwnChanges().contains(QFile::encodeName(each))) << qPrintable(each);
    }
    moves.add(a, b);
    moves.add(b, c);
    moves.takeBack();
    EXPECT_EQ(read(a), QByteArray("1"));
    EXPECT_FALSE(QFileInfo::exists(c));
}

TEST_F(VerifiedCopy, AdviceSaysWhatToDo)
{
    for (const int code : {EROFS, EACCES, EPERM, ENOSPC, EDQUOT, EFBIG, ENOENT, EEXIST, ENAMETOOLONG, EBUSY, EIO}) {
        const ZQError error = ZQError::posix(code, QStringLiteral("/a/path"));
        EXPECT_NE(zqAdviceForFileError(error), error.localizedDescription()) << code;
    }
    const ZQError other = ZQError::with(QStringLiteral("other"), EROFS, QStringLiteral("said there"));
    EXPECT_EQ(zqAdviceForFileError(other), QStringLiteral("said there"));
    EXPECT_TRUE(zqIsErrorOfPlace(ZQError::posix(ENOSPC, {})));
    EXPECT_FALSE(zqIsErrorOfPlace(ZQError::posix(ENOENT, {})) || zqIsErrorOfPlace(other));
}
