#include "Classes/LiveFolders/FolderEntries.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"
#include "Tests/Support/Skip.h"

#include <string>
#include <thread>
#include <unistd.h>

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

TEST_F(LiveFolderTest, WritesTheSyncDateWhereARootThatIsALinkPoints)
{
    const QString date = QStringLiteral("com.apple.metadata:kMDItemOMUserTagTime");
    writePicture(QStringLiteral("real/sub/a.png"));
    ASSERT_EQ(::symlink("real", path(QStringLiteral("link")).toUtf8().constData()), 0);
    add(path(QStringLiteral("link")));
    if (!ZQExtendedAttributes::get(path(QStringLiteral("real/sub")), date)) {
        return skipWithout("extended attributes");
    }
    EXPECT_TRUE(ZQExtendedAttributes::get(path(QStringLiteral("real")), date));
}

TEST(FolderEntries, KeepWhichFilesGaveNothing)
{
    FolderEntries entries;
    for (const char *name : {"a.png", "b.png"}) {
        FolderEntry entry;
        entry.kind = EntryKind::File;
        entries.add(name, entry);
    }
    entries.sort();
    EXPECT_FALSE(entries.hasUnread());
    const FolderEntries before = entries;
    entries.find("b.png")->gaveNothing = 1;
    EXPECT_TRUE(entries.isAs(before)) << "the file is the same";
    std::string bytes;
    entries.appendTo(bytes);
    std::string_view rest(bytes);
    const auto read = FolderEntries::takenFrom(rest);
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->hasUnread());
    EXPECT_EQ(read->find("a.png")->gaveNothing, 0);
}
