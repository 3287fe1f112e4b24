#include "Tests/Kit/Files/Scratch.h"
#include "Tests/Kit/Files/Watching.h"

#include <QDirIterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <random>

using Moves = QList<std::pair<QString, QString>>;

class FileWatcher : public Scratch
{
public:
    const QString root = folder(QStringLiteral("root"));
    const QString marker = folder(QStringLiteral("root/marker"));

    // Waits until all that was done before this was told.
    void waitForTheRest(Watching &watching, const QString &markerFolder) const
    {
        static int count = 0;
        watching.changed.remove(markerFolder);
        write(markerFolder + QStringLiteral("/%1").arg(++count), "x");
        ASSERT_TRUE(watching.waitForChangeOf(markerFolder));
        watching.changed.remove(markerFolder);
    }
};

TEST_F(FileWatcher, TellsOfEveryKindOfChangeByTheFolder)
{
    const QString inner = folder(QStringLiteral("root/inner"));
    const QByteArray name = QFile::encodeName(file(QStringLiteral("root/inner/file"), "1"));
    const auto at = [&](const char *other) { return QFile::encodeName(inner) + '/' + other; };
    Watching watching;
    ASSERT_TRUE(watching.watcher.addPath(root + u'/'));
    ASSERT_TRUE(watching.waitFor([&] { return watching.started == QStringList(root); }));
    EXPECT_EQ(watching.watcher.paths(), QStringList(root));
    EXPECT_FALSE(watching.watcher.isSwept(root));
    const struct
    {
        const char *what;
        std::function<int()> change;
    } rows[] = {
        {"content", [&] { return ::truncate(name.constData(), 0) + (write(QFile::decodeName(name), "22"), 0); }},
        {"mode", [&] { return ::chmod(name.constData(), 0600); }},
        {"times",
         [&] {
             const timespec times[2] = {{1, 0}, {1, 0}};
             return ::utimensat(AT_FDCWD, name.constData(), times, 0);
         }},
        {"the folder's mode", [&] { return ::chmod(QFile::encodeName(inner).constData(), 0750); }},
        {"replaced",
         [&] {
             write(path(QStringLiteral("new")), "3");
             return ::rename(QFile::encodeName(path(QStringLiteral("new"))).constData(), name.constData());
         }},
        {"linked", [&] { return ::link(name.constData(), at("hard").constData()); }},
        {"a link", [&] { return ::symlink("file", at("soft").constData()); }},
        {"a pipe", [&] { return ::mkfifo(at("pipe").constData(), 0600); }},
        {"a name of 255 bytes", [&] { return ::link(name.constData(), at(QByteArray(255, 'n')).constData()); }},
        {"a name of two lines", [&] { return ::link(name.constData(), at("a\nb").constData()); }},
        {"a name that is no text", [&] { return ::link(name.constData(), at("\xff\xfe").constData()); }},
        {"taken away", [&] { return ::unlink(name.constData()); }},
    };
    for (const auto &row : rows) {
        watching.forget();
        ASSERT_EQ(row.change(), 0) << row.what << ": " << std::strerror(errno);
        EXPECT_TRUE(watching.waitForChangeOf(inner)) << row.what;
        EXPECT_TRUE(watching.below.isEmpty()) << row.what;
    }
}

TEST_F(FileWatcher, SeesFoldersComeAndGoAndWhatIsInThem)
{
    const QString outside = folder(QStringLiteral("outside/inner"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(renamed(path(QStringLiteral("outside")), root + QStringLiteral("/came")));
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/came")));
    EXPECT_TRUE(watching.below.contains(root + QStringLiteral("/came")));
    EXPECT_TRUE(watching.changed.contains(root));
    watching.forget();
    write(root + QStringLiteral("/came/inner/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/came/inner")));
    watching.forget();
    ASSERT_TRUE(renamed(root + QStringLiteral("/came"), path(QStringLiteral("went"))));
    write(path(QStringLiteral("went/inner/file")), "y");
    ASSERT_TRUE(watching.waitForChangeOf(root));
    waitForTheRest(watching, marker);
    EXPECT_EQ(watching.changed, QSet<QString>{root});
    EXPECT_TRUE(watching.moves.isEmpty()) << "only one end of it is watched";
    // The same name again, and taken away with what is in it.
    const QString again = folder(QStringLiteral("root/came/inner"));
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/came")));
    watching.forget();
    write(again + QStringLiteral("/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(again));
    zqRemoveTree(QFile::encodeName(root + QStringLiteral("/came")));
    watching.forget();
    waitForTheRest(watching, marker);
    EXPECT_TRUE(watching.vanished.isEmpty());
}

TEST_F(FileWatcher, TellsMovesAsMovesAndFollowsThem)
{
    const QString a = folder(QStringLiteral("root/a"));
    const QString b = folder(QStringLiteral("root/b"));
    folder(QStringLiteral("root/a/tree/deep"));
    file(QStringLiteral("root/a/file"), "1");
    file(QStringLiteral("root/b/old"), "2");
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.start(b)) << "a root in a root";
    ASSERT_TRUE(renamed(a + QStringLiteral("/file"), a + QStringLiteral("/file2")));
    ASSERT_TRUE(renamed(a + QStringLiteral("/file2"), b + QStringLiteral("/old")));
    // Changed below before it is moved: told by where it is then.
    write(a + QStringLiteral("/tree/deep/early"), "x");
    ASSERT_TRUE(renamed(a + QStringLiteral("/tree"), b + QStringLiteral("/tree")));
    ASSERT_TRUE(watching.waitForChangeOf(b + QStringLiteral("/tree/deep")));
    EXPECT_EQ(watching.moves, (Moves{{a + QStringLiteral("/file"), a + QStringLiteral("/file2")},
                                     {a + QStringLiteral("/file2"), b + QStringLiteral("/old")},
                                     {a + QStringLiteral("/tree"), b + QStringLiteral("/tree")}}));
    EXPECT_TRUE(watching.changed.contains(a));
    EXPECT_TRUE(watching.changed.contains(b));
    EXPECT_FALSE(watching.changed.contains(a + QStringLiteral("/tree/deep")));
    watching.forget();
    write(b + QStringLiteral("/tree/deep/late"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(b + QStringLiteral("/tree/deep")));
    EXPECT_EQ(watching.changed, QSet<QString>{b + QStringLiteral("/tree/deep")});
    // Made in a folder right before that is moved.
    folder(QStringLiteral("root/b/tree/new"));
    ASSERT_TRUE(renamed(b + QStringLiteral("/tree"), a + QStringLiteral("/tree")));
    ASSERT_TRUE(watching.waitFor([&] { return watching.moves.size() == 1; }));
    watching.forget();
    write(a + QStringLiteral("/tree/new/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(a + QStringLiteral("/tree/new")));
}

TEST_F(FileWatcher, FollowsFoldersThatExchangeTheirNames)
{
    const QString a = folder(QStringLiteral("root/a/inner of a"));
    const QString b = folder(QStringLiteral("root/b/inner of b"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_EQ(::renameat2(AT_FDCWD, QFile::encodeName(root + QStringLiteral("/a")).constData(), AT_FDCWD,
                          QFile::encodeName(root + QStringLiteral("/b")).constData(), RENAME_EXCHANGE),
              0);
    ASSERT_TRUE(watching.waitForChangeOf(root));
    for (const char *const name : {"a/inner of b", "b/inner of a"}) {
        const QString inner = root + u'/' + QString::fromLatin1(name);
        watching.forget();
        write(inner + QStringLiteral("/file"), "x");
        EXPECT_TRUE(watching.waitForChangeOf(inner)) << name;
    }
}

TEST_F(FileWatcher, FollowsEveryFolderWhateverBecameOfIt)
{
    const auto foldersIn = [](const QString &folder) {
        QStringList folders = {folder};
        QDirIterator all(folder, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            folders.append(all.next());
        }
        return folders;
    };
    const QString outside = folder(QStringLiteral("outside"));
    ZQWatchOptions options = Watching::patient();
    options.quiet = std::chrono::milliseconds(10);
    options.longestWait = std::chrono::milliseconds(30);
    Watching watching(options);
    ASSERT_TRUE(watching.start(root));
    std::mt19937 chance(7);
    const auto oneOf = [&](const QStringList &list) { return list[static_cast<qsizetype>(chance() % list.size())]; };
    for (int round = 0; round < 6; ++round) {
        for (int step = 0; step < 60; ++step) {
            const QString from = oneOf(foldersIn(chance() % 4 == 0 ? outside : root));
            const QString to = oneOf(foldersIn(chance() % 4 == 0 ? outside : root));
            const bool isFixed = from == root || from == outside;
            if (chance() % 3 == 0) {
                QDir(to).mkpath(QStringLiteral("%1/%2").arg(chance() % 5).arg(chance() % 5));
            } else if (!isFixed && chance() % 6 == 0) {
                EXPECT_TRUE(QDir(from).removeRecursively());
            } else if (!isFixed && !to.startsWith(from)) {
                renamed(from, to + u'/' + QString::number(chance() % 5)); // fails where one is in the way
            }
        }
        for (const QString &folder : foldersIn(root)) {
            EXPECT_TRUE(watching.follows(folder)) << qPrintable(folder) << " in round " << round;
        }
    }
}

TEST_F(FileWatcher, WaitsForAFileThatIsBeingWrittenAndMeanwhileTellsTheRest)
{
    const QString slow = folder(QStringLiteral("root/slow"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    QFile writer(slow + QStringLiteral("/file"));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    ASSERT_EQ(writer.write("half"), 4);
    ASSERT_TRUE(writer.flush());
    waitForTheRest(watching, marker);
    waitForTheRest(watching, marker);
    EXPECT_FALSE(watching.changed.contains(slow));
    writer.close();
    ASSERT_TRUE(watching.waitForChangeOf(slow));

    ZQWatchOptions options = Watching::patient();
    options.longestWrite = std::chrono::milliseconds(300);
    ASSERT_TRUE(writer.remove());
    Watching hasty(options);
    ASSERT_TRUE(hasty.start(root));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    EXPECT_TRUE(hasty.waitForChangeOf(slow)) << "while it is still open";
}

TEST_F(FileWatcher, KeepsQuietAboutOwnChanges)
{
    const QString quiet = folder(QStringLiteral("root/quiet"));
    const QString moved = folder(QStringLiteral("root/moved"));
    const QString mixed = folder(QStringLiteral("root/mixed"));
    file(QStringLiteral("root/quiet/old"), "1");
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ZQOwnChanges &changes = *Watching::patient().ownChanges;
    for (const char *const name :
         {"quiet/new", "quiet/old", "quiet/other", "quiet", "moved", "moved here", "made", "filled", "mixed/ours"}) {
        changes.note(root + u'/' + QString::fromLatin1(name));
    }
    write(quiet + QStringLiteral("/new"), "x");
    ASSERT_TRUE(renamed(quiet + QStringLiteral("/old"), quiet + QStringLiteral("/other")));
    ASSERT_TRUE(QFile::remove(quiet + QStringLiteral("/new")));
    ASSERT_EQ(::chmod(QFile::encodeName(quiet).constData(), 0700), 0);
    ASSERT_TRUE(renamed(moved, root + QStringLiteral("/moved here")));
    folder(QStringLiteral("root/made"));
    waitForTheRest(watching, marker);
    EXPECT_EQ(watching.changed, QSet<QString>());
    EXPECT_TRUE(watching.moves.isEmpty());
    // What others do beside it, and in folders that we made or moved, is told.
    write(mixed + QStringLiteral("/ours"), "x");
    write(mixed + QStringLiteral("/theirs"), "x");
    write(root + QStringLiteral("/moved here/file"), "x");
    write(root + QStringLiteral("/made/file"), "x");
    const QString filled = folder(QStringLiteral("outside/filled"));
    write(filled + QStringLiteral("/file"), "x");
    ASSERT_TRUE(renamed(filled, root + QStringLiteral("/filled")));
    for (const char *const name : {"mixed", "moved here", "made", "filled"}) {
        EXPECT_TRUE(watching.waitForChangeOf(root + u'/' + QString::fromLatin1(name))) << name;
    }
    EXPECT_FALSE(watching.changed.contains(root));
}

TEST_F(FileWatcher, LeavesOutWhatIsHiddenAndWhereLinksLead)
{
    const QString hidden = folder(QStringLiteral("root/.hidden/inner"));
    const QString outside = folder(QStringLiteral("outside"));
    ASSERT_TRUE(QFile::link(outside, root + QStringLiteral("/link")));
    const QString hiddenRoot = folder(QStringLiteral("root/.hidden/root"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.start(hiddenRoot));
    write(hidden + QStringLiteral("/file"), "x");
    write(root + QStringLiteral("/.file"), "x");
    ASSERT_TRUE(renamed(root + QStringLiteral("/.file"), root + QStringLiteral("/.other")));
    write(outside + QStringLiteral("/file"), "x");
    folder(QStringLiteral("root/.new"));
    waitForTheRest(watching, marker);
    EXPECT_EQ(watching.changed, QSet<QString>());
    write(hiddenRoot + QStringLiteral("/file"), "x");
    ASSERT_TRUE(watching.waitForChangeOf(hiddenRoot));
    // What is hidden and shown again goes and comes.
    watching.forget();
    ASSERT_TRUE(renamed(root + QStringLiteral("/.new"), root + QStringLiteral("/shown")));
    ASSERT_TRUE(watching.waitForChangeOf(root + QStringLiteral("/shown")));
    watching.forget();
    ASSERT_TRUE(renamed(root + QStringLiteral("/shown"), root + QStringLiteral("/.new")));
    ASSERT_TRUE(watching.waitForChangeOf(root));
    EXPECT_TRUE(watching.moves.isEmpty());
}

TEST_F(FileWatcher, TellsOfFoldersWhoseNameIsNoTextByTheOneAround)
{
    const QByteArray odd = QFile::encodeName(root) + "/odd\xff";
    ASSERT_EQ(::mkdir(odd.constData(), 0700), 0);
    const QString lines = folder(QStringLiteral("root/two\nlines"));
    const QString longest = folder(QStringLiteral("root/") + QString(255, u'n'));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_GE(::close(::open((odd + "/file").constData(), O_WRONLY | O_CREAT, 0600)), 0);
    ASSERT_TRUE(watching.waitForChangeOf(root));
    EXPECT_TRUE(watching.below.contains(root));
    watching.forget();
    ASSERT_EQ(::rename(odd.constData(), (odd + "\xfe").constData()), 0);
    ASSERT_TRUE(watching.waitForChangeOf(root));
    EXPECT_TRUE(watching.moves.isEmpty()) << "which could not be named";
    for (const QString &folder : {lines, longest}) {
        write(folder + QStringLiteral("/file"), "x");
        EXPECT_TRUE(watching.waitForChangeOf(folder));
    }
}

TEST_F(FileWatcher, EndsInFewAnnouncementsAfterABurst)
{
    Watching watching;
    qsizetype announcements = 0;
    QObject::connect(&watching.watcher, &ZQFileWatcher::folderDidChange, [&] { ++announcements; });
    ASSERT_TRUE(watching.start(root));
    for (int i = 0; i < 100; ++i) {
        const QString inner = folder(QStringLiteral("root/burst/%1/inner").arg(i));
        for (int j = 0; j < 100; ++j) {
            const QByteArray name = QFile::encodeName(inner + QStringLiteral("/%1").arg(j));
            ASSERT_GE(::close(::open(name.constData(), O_WRONLY | O_CREAT, 0600)), 0);
        }
    }
    EXPECT_TRUE(watching.follows(marker));
    EXPECT_LT(announcements, 2000) << "of 10 200 changes";
    for (int i = 0; i < 100; i += 33) {
        EXPECT_TRUE(watching.follows(root + QStringLiteral("/burst/%1/inner").arg(i)));
    }
}

TEST_F(FileWatcher, KeepsRootsInsideOfOneAnotherApart)
{
    const QString inner = folder(QStringLiteral("root/inner"));
    Watching watching;
    ASSERT_TRUE(watching.start(root));
    ASSERT_TRUE(watching.start(inner));
    EXPECT_TRUE(watching.watcher.addPath(inner)) << "it is watched";
    EXPECT_EQ(watching.watcher.paths(), (QStringList{root, inner}));
    watching.watcher.removePath(path(QStringLiteral("not watched")));
    write(marker + QStringLiteral("/file"), "x");
    watching.watcher.removePath(root + u'/');
    EXPECT_EQ(watching.watcher.paths(), QStringList(inner));
    waitForTheRest(watching, inner);
    EXPECT_EQ(watching.changed, QSet<QString>()) << "of a root that is removed nothing is told";
    ASSERT_TRUE(watching.start(root));
    watching.watcher.removePath(inner);
    write(inner + QStringLiteral("/file"), "x");
    EXPECT_TRUE(watching.waitForChangeOf(inner)) << "it is a part of the other";
    EXPECT_FALSE(watching.watcher.addPath(QString()));
}

TEST_F(FileWatcher, CanBeLetGoWhileItIsBusyOrTelling)
{
    for (int i = 0; i < 300; ++i) {
        folder(QStringLiteral("root/%1/inner").arg(i));
    }
    {
        ZQFileWatcher watcher;
        ASSERT_TRUE(watcher.addPath(root));
    }
    auto *const watcher = new ZQFileWatcher;
    bool isTold = false;
    QObject::connect(watcher, &ZQFileWatcher::watchingDidStart, [&] {
        isTold = true;
        delete watcher;
    });
    ASSERT_TRUE(watcher->addPath(root));
    EXPECT_TRUE(Watching::waitFor([&] { return isTold; }));
}
