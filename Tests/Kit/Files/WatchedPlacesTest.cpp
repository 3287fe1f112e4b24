#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Kit/Files/Watching.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <optional>

using namespace std::chrono_literals;

// Where roots come and go, and where the system tells little or nothing.
using WatchedPlaces = Scratch;

TEST_F(WatchedPlaces, ARootThatIsMovedDeletedOrReplacedVanishesAndComesBack)
{
    const QString around = folder(QStringLiteral("far/around"));
    const QString root = folder(QStringLiteral("far/around/root"));
    const QString inner = folder(QStringLiteral("far/around/root/inner"));
    const QString away = path(QStringLiteral("away"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.start(inner)) << "it goes with the other";
    const struct
    {
        const char *what;
        std::function<bool()> go;
        std::function<bool()> come;
    } rows[] = {
        {"moved", [&] { return renamed(root, away); }, [&] { return renamed(away, root); }},
        {"deleted", [&] { return QDir(root).removeRecursively(); }, [&] { return QDir().mkpath(inner); }},
        {"a folder around it moved", [&] { return renamed(around, away); }, [&] { return renamed(away, around); }},
        {"one further away", [&] { return renamed(path(QStringLiteral("far")), away); },
         [&] { return renamed(away, path(QStringLiteral("far"))); }},
        {"another in its place", [&] { return renamed(root, away) && QDir().mkpath(inner); }, [] { return true; }},
    };
    for (const auto &row : rows) {
        watching.started.clear();
        watching.vanished.clear();
        ASSERT_TRUE(row.go()) << row.what;
        ASSERT_TRUE(watching.waitFor([&] { return watching.vanished.size() == 2; })) << row.what;
        EXPECT_EQ(QSet<QString>(watching.vanished.cbegin(), watching.vanished.cend()), (QSet<QString>{root, inner}));
        ASSERT_TRUE(row.come()) << row.what;
        ASSERT_TRUE(watching.waitFor([&] { return watching.started.size() == 2; })) << row.what;
        watching.forget();
        write(inner + QStringLiteral("/file"), row.what);
        EXPECT_TRUE(watching.waitForChangeOf(inner)) << row.what;
        EXPECT_EQ(watching.vanished.size(), 2) << row.what << ": told once";
    }
}

TEST_F(WatchedPlaces, ARootThatIsNotThereIsStartedWhenItIs)
{
    const QString later = path(QStringLiteral("later"));
    const QString noFolder = file(QStringLiteral("file"), "x");
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(later));
    ASSERT_TRUE(watching.watcher.addPath(noFolder));
    ASSERT_TRUE(watching.waitFor([&] { return watching.vanished.size() == 2; }));
    folder(QStringLiteral("later"));
    ASSERT_TRUE(watching.waitFor([&] { return !watching.started.isEmpty(); }));
    EXPECT_EQ(watching.started, QStringList(later));
    EXPECT_EQ(watching.vanished, (QStringList{later, noFolder}));
}

TEST_F(WatchedPlaces, ARootThatIsALinkIsCalledByItsNameAndFollowedToAnotherPlace)
{
    const QString one = folder(QStringLiteral("one/inner"));
    const QString two = folder(QStringLiteral("two/inner"));
    const QString link = path(QStringLiteral("link"));
    const QString inner = link + QStringLiteral("/inner");
    ASSERT_TRUE(QFile::link(path(QStringLiteral("one")), link));
    Watching watching;
    ASSERT_TRUE(watching.start(link));
    ASSERT_TRUE(watching.start(path(QStringLiteral("one")))) << "the same folder by another name";
    file(QStringLiteral("one/inner/a"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(inner));
    ASSERT_TRUE(watching.waitForChangeOf(one));
    ASSERT_TRUE(renamed(one + QStringLiteral("/a"), one + QStringLiteral("/b")));
    ASSERT_TRUE(watching.waitFor([&] { return watching.moves.size() == 2; }));
    EXPECT_TRUE(watching.moves.contains({inner + QStringLiteral("/a"), inner + QStringLiteral("/b")}));
    EXPECT_TRUE(watching.moves.contains({one + QStringLiteral("/a"), one + QStringLiteral("/b")}));
    watching.started.clear();
    ASSERT_TRUE(QFile::link(path(QStringLiteral("two")), path(QStringLiteral("new link"))));
    ASSERT_TRUE(renamed(path(QStringLiteral("new link")), link));
    ASSERT_TRUE(watching.waitFor([&] { return !watching.started.isEmpty(); }));
    EXPECT_EQ(watching.vanished, QStringList(link));
    watching.forget();
    write(two + QStringLiteral("/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(inner));
    EXPECT_FALSE(watching.changed.contains(one));
}

TEST_F(WatchedPlaces, EverythingIsLookedAtWhenEventsAreLost)
{
    const QString root = folder(QStringLiteral("root"));
    folder(QStringLiteral("root/moved/inner"));
    folder(QStringLiteral("root/gone"));
    ZQWatchOptions options = Watching::patient();
    options.mostEvents = 10;
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    for (int i = 0; i < 50; ++i) {
        file(QStringLiteral("root/%1").arg(i), "x");
    }
    ASSERT_TRUE(renamed(root + QStringLiteral("/moved"), root + QStringLiteral("/gone/moved")));
    const QString later = folder(QStringLiteral("root/later"));
    ASSERT_TRUE(watching.waitFor([&] { return watching.below.contains(root); }));
    EXPECT_TRUE(watching.follows(later));
    EXPECT_TRUE(watching.follows(root + QStringLiteral("/gone/moved/inner")));
}

TEST_F(WatchedPlaces, FoldersThatNoWatchIsLeftForAreLookedAtInIntervals)
{
    const QString root = folder(QStringLiteral("root"));
    for (int i = 0; i < 5; ++i) {
        folder(QStringLiteral("root/%1/inner").arg(i));
    }
    ZQWatchOptions options = Watching::patient();
    options.mostWatches = 4;
    options.longestWait = 100ms; // looks come more often than it is ever quiet
    options.silentInterval = 50ms;
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.waitFor([&] { return watching.needed != 0; }));
    EXPECT_EQ(watching.needed, 11) << "one for each folder, the root included";
    EXPECT_TRUE(watching.watcher.isSwept(root));
    for (int i = 0; i < 5; ++i) {
        const QString inner = root + QStringLiteral("/%1/inner").arg(i);
        watching.forget();
        write(inner + QStringLiteral("/file"), "x");
        EXPECT_TRUE(watching.waitForChangeOf(inner));
        const QString deeper = folder(QStringLiteral("root/%1/inner/new/deeper").arg(i));
        EXPECT_TRUE(watching.waitForChangeOf(inner + QStringLiteral("/new")));
        watching.forget();
        write(deeper + QStringLiteral("/file"), "x");
        EXPECT_TRUE(watching.waitForChangeOf(deeper));
    }
    EXPECT_GT(watching.needed, 11);
}

TEST_F(WatchedPlaces, AllIsLookedAtNowAndThen)
{
    const QString root = folder(QStringLiteral("root/inner"));
    ZQWatchOptions options = Watching::patient();
    options.sweepInterval = 50ms;
    options.quiet = 10ms;
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.waitForChangeOf(root));
    EXPECT_TRUE(watching.below.contains(root));
    watching.forget();
    EXPECT_TRUE(watching.waitForChangeOf(root)) << "and again";
}

TEST_F(WatchedPlaces, ThoseThatTellNothingAreLookedAtInIntervals)
{
    const QString root = folder(QStringLiteral("root"));
    const QString server = folder(QStringLiteral("root/server"));
    const QString deep = folder(QStringLiteral("root/server/deep"));
    const QByteArray line = "30 22 0:40 / " + QFile::encodeName(server) + " rw - nfs4 server:/export rw\n";
    const QByteArray disk = "22 1 8:2 / / rw,relatime - ext4 /dev/sda2 rw\n";
    ZQWatchOptions options = Watching::patient();
    options.mountTable = QFile::encodeName(file(QStringLiteral("mounts"), disk + line));
    options.mostWatches = 1; // that changes here are known all the same is not what is asked
    options.silentInterval = 50ms;
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.waitFor([&] { return watching.watcher.isSwept(root); })) << "a part of it is";
    write(deep + QStringLiteral("/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(deep));
    EXPECT_EQ(watching.started, QStringList(root)) << "the server's place is no root of anybody's";
    ASSERT_TRUE(watching.start(server));
    watching.watcher.removePath(root);
    EXPECT_FALSE(watching.watcher.isSwept(root + QStringLiteral("/other")));
    EXPECT_TRUE(watching.watcher.isSwept(server));
    watching.forget();
    write(deep + QStringLiteral("/file2"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(deep));
}

TEST_F(WatchedPlaces, PlacesThatTellNothingAreNoticedWhenTheyAreMounted)
{
    const QString root = folder(QStringLiteral("root"));
    const QString server = folder(QStringLiteral("root/server"));
    const QByteArray line = "30 22 0:40 / " + QFile::encodeName(server) + " rw - cifs //server/share rw\n";
    const QByteArray disk = "22 1 8:2 / / rw,relatime - ext4 /dev/sda2 rw\n";
    ZQWatchOptions options = Watching::patient();
    options.mountTable = QFile::encodeName(file(QStringLiteral("mounts"), disk));
    options.sweepInterval = 300ms; // the table is read with it
    options.quiet = 10ms;
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    EXPECT_FALSE(watching.watcher.isSwept(root));
    file(QStringLiteral("mounts.new"), disk + line);
    ASSERT_TRUE(renamed(path(QStringLiteral("mounts.new")), path(QStringLiteral("mounts"))));
    ASSERT_TRUE(watching.waitFor([&] { return watching.placeChanges > 0 && watching.watcher.isSwept(root); }));
    ASSERT_TRUE(watching.waitFor([&] { return watching.below.contains(server); }));
    file(QStringLiteral("mounts.new"), disk);
    ASSERT_TRUE(renamed(path(QStringLiteral("mounts.new")), path(QStringLiteral("mounts"))));
    ASSERT_TRUE(watching.waitFor([&] { return watching.placeChanges > 1 && !watching.watcher.isSwept(root); }));
    EXPECT_TRUE(watching.follows(server));
}

TEST_F(WatchedPlaces, AFileSystemThatIsUnmountedTakesItsRootWithIt)
{
    const QString root = folder(QStringLiteral("root"));
    const QString around = folder(QStringLiteral("around"));
    const QString inside = folder(QStringLiteral("around/inside"));
    std::optional<ScratchMount> disk(root);
    if (!disk->isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    write(root + QStringLiteral("/file"), "x");
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.start(around));
    watching.started.clear();
    disk.reset();
    ASSERT_TRUE(watching.waitFor([&] { return watching.vanished.contains(root) && watching.placeChanges > 0; }));
    ASSERT_TRUE(watching.waitFor([&] { return watching.started.contains(root); })) << "the empty folder below it";
    watching.vanished.clear();
    watching.started.clear();
    ASSERT_TRUE(disk.emplace(root).isMounted());
    ASSERT_TRUE(watching.waitFor([&] { return watching.vanished.contains(root); }));
    ASSERT_TRUE(watching.waitFor([&] { return watching.started.contains(root); }));
    // Within a root, it is a part that came and went.
    std::optional<ScratchMount> part;
    for (const bool isMounted : {true, false}) {
        watching.forget();
        if (isMounted) {
            ASSERT_TRUE(part.emplace(inside).isMounted());
        } else {
            part.reset();
        }
        ASSERT_TRUE(watching.waitFor([&] { return watching.below.contains(inside); }));
        watching.forget();
        write(inside + QStringLiteral("/file"), "x");
        ASSERT_TRUE(watching.waitForChangeOf(inside));
    }
    EXPECT_EQ(watching.vanished, QStringList(root));
}
