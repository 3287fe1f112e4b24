#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include <thread>

// As an export calls it.
TEST_F(LiveFolderTest, LooksWhereThisProcessWroteFromAnyThread)
{
    writePicture(QStringLiteral("out/live/a.png"));
    writePicture(QStringLiteral("out/livelier/b.png"));
    const QString root = path(QStringLiteral("out/live"));
    add(root);
    const auto look = [this](const QString &folder) {
        std::thread([this, &folder] { manager->syncFolderAtPath(folder); }).join();
        zqRunMainLoopFor(std::chrono::milliseconds(1)); // what was handed over is taken
        wait();
    };
    writePicture(QStringLiteral("out/live/c.png"));
    look(path(QStringLiteral("out/livelier"))); // is none
    EXPECT_EQ(itemPaths(root), QStringList{QStringLiteral("a.png")});
    look(root + u'/');
    EXPECT_EQ(itemPaths(root), (QStringList{QStringLiteral("a.png"), QStringLiteral("c.png")}));
    writePicture(QStringLiteral("out/live/sub/d.png"));
    look(path(QStringLiteral("out")));
    expectInStep(root);
    EXPECT_EQ(itemPaths(root).size(), 3);
}
