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
