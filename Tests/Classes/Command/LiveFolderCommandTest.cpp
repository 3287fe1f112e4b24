#include "Classes/Command/PendingCommands.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Command/CommandFixture.h"

#include <QDir>
#include <QFile>

TEST_F(CommandTest, MirrorsFoldersOfTheDisk)
{
    const QString a = picture(QStringLiteral("in/a.png"), qRgb(200, 0, 0));
    picture(QStringLiteral("in/sub/b.png"), qRgb(0, 200, 0));
    EXPECT_EQ(run("livefolders"), 0);
    EXPECT_EQ(context.output, QByteArray());
    EXPECT_EQ(run("livefolders add in"), 0) << context.errors.constData();

    ASSERT_EQ(run("livefolders --json"), 0);
    ASSERT_EQ(array().size(), 1);
    const QJsonObject folder = array().first().toObject();
    EXPECT_EQ(folder.value(QStringLiteral("folderPath")).toString(), world.filePath(QStringLiteral("in")));
    EXPECT_EQ(folder.value(QStringLiteral("items")).toInt(), 2);
    EXPECT_EQ(folder.value(QStringLiteral("folders")).toInt(), 1);
    EXPECT_EQ(folder.value(QStringLiteral("state")).toString(), QStringLiteral("live"));

    picture(QStringLiteral("in/sub/c.png"), qRgb(0, 0, 200));
    for (const char *sync : {"sync", "livefolders sync", "sync in", "livefolders sync in/sub"}) {
        EXPECT_EQ(run(sync), 0) << sync << context.errors.constData();
    }
    EXPECT_EQ(run("sync nowhere"), 2);
    ASSERT_EQ(run({QStringLiteral("items"), QStringLiteral("--json")}), 0);
    EXPECT_EQ(array().size(), 3);
    EXPECT_EQ(run({QStringLiteral("sync"), QStringLiteral("LIVE FOLDERS/in"), QStringLiteral("--json")}), 0);
    EXPECT_EQ(array().size(), 1);

    EXPECT_EQ(run("livefolders remove in/sub"), 2) << "a part of one";
    EXPECT_EQ(run("livefolders remove PROJECTS"), 2) << "no live folder";
    EXPECT_EQ(run("livefolders remove in"), 0) << context.errors.constData();
    EXPECT_TRUE(QFile::exists(a));
    ASSERT_EQ(run({QStringLiteral("items"), QStringLiteral("--json")}), 0);
    EXPECT_EQ(array().size(), 0);
    ASSERT_EQ(run("livefolders --json"), 0);
    EXPECT_EQ(array().size(), 0);
}

TEST_F(CommandTest, SaysWhichFoldersItDoesNotMirrorAndWhichAreAway)
{
    const QString a = picture(QStringLiteral("in/a.png"), qRgb(200, 0, 0));
    EXPECT_EQ(run({QStringLiteral("livefolders"), QStringLiteral("add"), QStringLiteral("in"), QStringLiteral("none"),
                   a, QStringLiteral("/")}),
              2);
    EXPECT_EQ(context.errors.count('\n'), 3) << context.errors.constData();
    EXPECT_TRUE(context.output.contains("in: live, 1 item in 1 folder")) << context.output.constData();

    ASSERT_TRUE(QDir(world.path()).rename(QStringLiteral("in"), QStringLiteral(".in")));
    ASSERT_TRUE(QDir(world.path()).mkdir(QStringLiteral("in")));
    ASSERT_TRUE(QDir(world.filePath(QStringLiteral(".in"))).removeRecursively());
    EXPECT_EQ(run("sync"), 2);
    EXPECT_TRUE(context.errors.contains("is out of reach; its items are kept")) << context.errors.constData();
}

// As a window serves them.
TEST_F(CommandTest, CommandsThatWaitForLiveFoldersKeepNobodyWaiting)
{
    picture(QStringLiteral("one/a.png"), qRgb(200, 0, 0));
    picture(QStringLiteral("other/b.png"), qRgb(0, 200, 0));
    PendingCommands pending;
    QStringList ended;
    bool isGone = false;
    const auto serve = [&](const QStringList &arguments) {
        CommandContext served;
        served.delegate = delegate.get();
        served.workingDirectory = world.path();
        served.mayBeFinishedLater = true;
        served.isAbandoned = [&isGone, name = arguments.last()] { return isGone && name == u"gone"; };
        CommandLine commandLine;
        int status = 0;
        ASSERT_TRUE(commandLine.parse(arguments, served, &status)) << served.errors.constData();
        commandLine.run(served);
        ASSERT_TRUE(served.pending);
        pending.add(std::move(served), [&ended, arguments](int result, const CommandContext &finished) {
            ended.append(arguments.last() + u' ' + QString::number(result) + u' ' +
                         QString::fromUtf8(finished.output).section(u'/', -1).trimmed());
        });
    };
    const auto run = [&serve](const char *words) { serve(QString::fromLatin1(words).split(u' ')); };
    run("livefolders add one");
    run("livefolders add other");
    EXPECT_TRUE(ended.isEmpty());
    zqRunMainLoopUntil([&ended] { return ended.size() == 2; });
    ended.sort();
    EXPECT_EQ(ended, (QStringList{QStringLiteral("one 0 one: live, 1 item in 1 folder"),
                                  QStringLiteral("other 0 other: live, 1 item in 1 folder")}));

    // One whose asker goes is cancelled, says what was done, and the rest goes on.
    ended.clear();
    picture(QStringLiteral("gone/c.png"), qRgb(0, 0, 200));
    QFile written(world.filePath(QStringLiteral("gone/c.png"))); // so that its run has to wait
    ASSERT_TRUE(written.open(QIODevice::ReadWrite));
    run("livefolders add gone");
    isGone = true;
    run("livefolders sync one");
    zqRunMainLoopUntil([&ended] { return ended.size() == 2; });
    ended.sort();
    // How many files were to come is told where it is known by then.
    EXPECT_TRUE(ended.first().startsWith(
        QStringLiteral("gone 2 gone: live, 0 items in 1 folder\n Syncing did not come to its end")))
        << ended.first().toStdString();
    EXPECT_EQ(ended.last(), QStringLiteral("one 0 one: live, 1 item in 1 folder"));

    ended.clear();
    run("livefolders remove other");
    zqRunMainLoopUntil([&ended] { return !ended.isEmpty(); });
    EXPECT_TRUE(ended.first().startsWith(QStringLiteral("other 0"))) << ended.first().toStdString();
}

TEST_F(CommandTest, RemovesMuchThatIsGoneOnlyWhenToldTo)
{
    for (int i = 0; i < 60; ++i) {
        picture(QStringLiteral("in/%1.png").arg(i), qRgb(i, 0, 0));
    }
    picture(QStringLiteral("in/stays.png"), qRgb(0, 200, 0));
    ASSERT_EQ(run("livefolders add in"), 0) << context.errors.constData();
    const auto takeAway = [this] {
        for (int i = 0; i < 60; ++i) {
            ASSERT_TRUE(QFile::remove(world.filePath(QStringLiteral("in/%1.png").arg(i))));
        }
    };
    takeAway();
    EXPECT_EQ(run("sync"), 2);
    EXPECT_TRUE(context.errors.contains("60 files are gone")) << context.errors.constData();
    EXPECT_TRUE(context.errors.contains("--remove-missing")) << context.errors.constData();
    EXPECT_TRUE(context.output.contains("61 items")) << context.output.constData();

    EXPECT_EQ(run("sync --remove-missing"), 0) << context.errors.constData();
    EXPECT_TRUE(context.output.contains("1 item in")) << context.output.constData();

    // It was said for one run.
    for (int i = 0; i < 60; ++i) {
        picture(QStringLiteral("in/%1.png").arg(i), qRgb(i, 0, 0));
    }
    EXPECT_EQ(run("sync in"), 0) << context.errors.constData();
    takeAway();
    EXPECT_EQ(run("sync in"), 2);
    EXPECT_TRUE(context.output.contains("61 items")) << context.output.constData();
}

TEST_F(CommandTest, TakesWhatLiesInThePlaceOfAFolderForIt)
{
    // All at once, so that none gets the number of another one.
    picture(QStringLiteral("in/a.png"), qRgb(200, 0, 0));
    picture(QStringLiteral("in/b.png"), qRgb(200, 200, 0));
    picture(QStringLiteral("second/c.png"), qRgb(0, 200, 0));
    picture(QStringLiteral("other/c.png"), qRgb(0, 0, 200));
    QFile different(picture(QStringLiteral("third/c.png"), qRgb(0, 200, 200)));
    ASSERT_TRUE(different.open(QIODevice::Append) && different.write("of another size") > 0);
    different.close();
    QDir folder(world.path());
    ASSERT_TRUE(folder.mkdir(QStringLiteral("empty")));
    const auto replace = [&folder](const QString &replaced, const QString &by) {
        return QDir(folder.filePath(replaced)).removeRecursively() && folder.rename(by, replaced);
    };
    ASSERT_EQ(run("livefolders add in"), 0) << context.errors.constData();
    EXPECT_EQ(run("livefolders use in"), 2) << "it is there";

    ASSERT_TRUE(QDir(world.filePath(QStringLiteral("in"))).removeRecursively());
    EXPECT_EQ(run("sync"), 2);
    EXPECT_EQ(run("livefolders use in --yes"), 2) << "nothing is there";
    ASSERT_TRUE(replace(QStringLiteral("in"), QStringLiteral("empty")));
    EXPECT_EQ(run("livefolders use in --yes"), 2);
    EXPECT_TRUE(context.errors.contains("is empty")) << context.errors.constData();

    ASSERT_TRUE(replace(QStringLiteral("in"), QStringLiteral("second")));
    EXPECT_EQ(run("sync"), 2);
    EXPECT_TRUE(context.errors.contains("Another folder is in its place")) << context.errors.constData();
    EXPECT_EQ(run("livefolders use in"), 2);
    EXPECT_TRUE(context.errors.contains("--yes")) << context.errors.constData();
    EXPECT_EQ(run("livefolders use in --yes"), 0) << context.errors.constData();
    EXPECT_TRUE(context.output.contains("in: live, 1 item in 1 folder")) << context.output.constData();
    EXPECT_EQ(run("sync"), 0) << context.errors.constData();

    ASSERT_EQ(run("livefolders add other"), 0) << context.errors.constData();
    ASSERT_TRUE(replace(QStringLiteral("other"), QStringLiteral("third")));
    EXPECT_EQ(run("sync"), 2);
    EXPECT_EQ(run("livefolders use other"), 0) << "no item would go: " << context.errors.constData();
}
