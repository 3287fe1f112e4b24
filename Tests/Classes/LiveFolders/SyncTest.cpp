#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/TagFileWriter.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Saves of the application's context between two moments.
qsizetype changesOf(const ZQContextDidSave &saved)
{
    return saved.inserted.size() + saved.updated.size() + saved.deleted.size();
}

// While it lives, this thread and those it starts read only what its user is let, root as anybody.
class AsAnybody
{
public:
    AsAnybody()
    {
        const bool isRead = ::syscall(SYS_capget, &m_header, m_before) == 0;
        __user_cap_data_struct without[_LINUX_CAPABILITY_U32S_3] = {m_before[0], m_before[1]};
        without[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
        m_isHeld = isRead && ::syscall(SYS_capset, &m_header, without) == 0;
    }
    ~AsAnybody()
    {
        if (m_isHeld) {
            EXPECT_EQ(::syscall(SYS_capset, &m_header, m_before), 0);
        }
    }
    AsAnybody(const AsAnybody &) = delete;
    AsAnybody &operator=(const AsAnybody &) = delete;
    bool isHeld() const { return m_isHeld; }

private:
    __user_cap_header_struct m_header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[_LINUX_CAPABILITY_U32S_3] = {};
    bool m_isHeld = false;
};

} // namespace

TEST_F(LiveFolderTest, MirrorsATreeAndLeavesItAlone)
{
    writePicture(QStringLiteral("in/a.png"));
    writePicture(QStringLiteral("in/b/b.png"));
    writePicture(QStringLiteral("in/b/c/d.png"));
    writePicture(QStringLiteral("in/.hidden/x.png"));
    writePicture(QStringLiteral("in/half.png.part"));
    makeFolder(path(QStringLiteral("in/empty")));
    ASSERT_EQ(::symlink("a.png", path(QStringLiteral("in/link.png")).toUtf8().constData()), 0);
    const QByteArray before = bytesOf(path(QStringLiteral("in/b/c/d.png")));

    QStringList notifications;
    const auto observe = [&](const QString &name) {
        return ZQNotificationCenter::defaultCenter().addObserver(
            name, static_cast<LiveFolderManaging *>(manager.get()),
            [&notifications](const ZQNotification &notification) { notifications.append(notification.name); });
    };
    const auto started = observe(LiveFolderManaging::didStartSync);
    const auto ended = observe(LiveFolderManaging::didEndSync);
    const ZQObjectID root = add(path(QStringLiteral("in")));
    EXPECT_EQ(notifications, (QStringList{LiveFolderManaging::didStartSync, LiveFolderManaging::didEndSync}));

    expectInStep(path(QStringLiteral("in")));
    EXPECT_EQ(itemPaths(path(QStringLiteral("in"))),
              (QStringList{QStringLiteral("a.png"), QStringLiteral("b/b.png"), QStringLiteral("b/c/d.png")}));
    EXPECT_TRUE(folder(root)->is_root());
    EXPECT_FALSE(itemAt(path(QStringLiteral("in/a.png")))->managed());
    EXPECT_EQ(bytesOf(path(QStringLiteral("in/b/c/d.png"))), before);

    for (const bool isAfterRestart : {false, true}) {
        if (isAfterRestart) {
            reopen();
        }
        qsizetype changes = 0;
        const auto token =
            context().observeDidSave([&changes](const ZQContextDidSave &saved) { changes += changesOf(saved); });
        const auto stamp = folderAt(path(QStringLiteral("in")))->lastSyncDate();
        sync();
        EXPECT_EQ(changes, 0) << "what is as it was costs no change of the store";
        EXPECT_EQ(folderAt(path(QStringLiteral("in")))->lastSyncDate(), stamp);
    }
}

TEST_F(LiveFolderTest, FollowsWhatHappensToFiles)
{
    const QString a = writePicture(QStringLiteral("in/a.png"));
    const QString b = writePicture(QStringLiteral("in/b.png"));
    const QString c = writePicture(QStringLiteral("in/sub/c.png"));
    const QString root = path(QStringLiteral("in"));
    const ZQObjectID id = add(root);
    adorn(context(), itemAt(a), QStringLiteral("A"));
    adorn(context(), itemAt(b), QStringLiteral("B"));
    adorn(context(), itemAt(c), QStringLiteral("C"));

    struct Step
    {
        const char *what;
        std::function<void()> act;
        QString a, b, c; // where these are then; empty: gone
    };
    const QString inSub = path(QStringLiteral("in/sub/a2.png"));
    const QString renamed = path(QStringLiteral("in/renamed.png"));
    const Step steps[] = {
        {"renamed", [&] { move(a, renamed); }, renamed, b, c},
        {"moved into another folder", [&] { move(renamed, inSub); }, inSub, b, c},
        {"its old name taken by another",
         [&] {
             move(b, renamed);
             writePicture(QStringLiteral("in/b.png"));
         },
         inSub, renamed, c},
        {"two exchanged",
         [&] {
             move(renamed, path(QStringLiteral("in/t")));
             move(inSub, renamed);
             move(path(QStringLiteral("in/t")), inSub);
         },
         renamed, inSub, c},
        {"saved by replacing it",
         [&] {
             writePicture(QStringLiteral("in/.new"));
             move(path(QStringLiteral("in/.new")), renamed);
         },
         renamed, inSub, c},
        {"written over with something older",
         [&] {
             writePicture(QStringLiteral("in/sub/c.png"));
             const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
             ASSERT_EQ(::utimensat(AT_FDCWD, c.toUtf8().constData(), times, 0), 0);
         },
         renamed, inSub, c},
        {"gone", [&] { move(c, path(QStringLiteral("outside.png"))); }, renamed, inSub, {}},
        {"back", [&] { move(path(QStringLiteral("outside.png")), c); }, renamed, inSub, c},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.what);
        step.act();
        sync();
        expectInStep(root);
        const std::pair<QString, QString> expected[] = {
            {step.a, QStringLiteral("A")}, {step.b, QStringLiteral("B")}, {step.c, QStringLiteral("C")}};
        for (const auto &[place, title] : expected) {
            if (!place.isEmpty()) {
                expectAdorned(itemAt(place), title);
            }
        }
    }
    EXPECT_TRUE(folder(id)->active());
    EXPECT_TRUE(user.questions.isEmpty());
}

TEST_F(LiveFolderTest, FollowsFoldersWithAllTheyHold)
{
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/one/a.png"));
    writePicture(QStringLiteral("in/one/deep/b.png"));
    writePicture(QStringLiteral("in/one/deep/c.png"));
    makeFolder(path(QStringLiteral("in/two")));
    add(root);
    adorn(context(), itemAt(path(QStringLiteral("in/one/deep/b.png"))), QStringLiteral("P"));
    const ZQObjectID deep = folderAt(path(QStringLiteral("in/one/deep")))->objectID();

    move(path(QStringLiteral("in/one")), path(QStringLiteral("in/two/uno")));
    sync();
    expectInStep(root);
    EXPECT_EQ(folderAt(path(QStringLiteral("in/two/uno/deep")))->objectID(), deep);
    expectAdorned(itemAt(path(QStringLiteral("in/two/uno/deep/b.png"))), QStringLiteral("P"));

    // Only the place it came to is looked at.
    move(path(QStringLiteral("in/two/uno/deep")), path(QStringLiteral("in/deep")));
    manager->syncFolderAtPath(root);
    wait();
    expectInStep(root);
    EXPECT_EQ(folderAt(path(QStringLiteral("in/deep")))->objectID(), deep);

    // As over a network or between disks: other inodes, the same names, sizes and times.
    ASSERT_EQ(std::system(qPrintable(QStringLiteral("cp -a '%1/deep' '%1/copied' && rm -r '%1/deep'").arg(root))), 0);
    sync();
    expectInStep(root);
    EXPECT_EQ(folderAt(path(QStringLiteral("in/copied")))->objectID(), deep);
    expectAdorned(itemAt(path(QStringLiteral("in/copied/b.png"))), QStringLiteral("P"));

    ASSERT_TRUE(QDir(path(QStringLiteral("in/copied"))).removeRecursively());
    sync();
    expectInStep(root);
    EXPECT_FALSE(folder(deep)->active());
}

TEST_F(LiveFolderTest, FollowsRootsThatAreRenamedTrashedAndRestored)
{
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/a.png"));
    writePicture(QStringLiteral("in/sub/b.png"));
    const ZQObjectID id = add(root);
    adorn(context(), itemAt(path(QStringLiteral("in/sub/b.png"))), QStringLiteral("P"));

    move(root, path(QStringLiteral("pictures")));
    sync();
    expectInStep(path(QStringLiteral("pictures")));
    EXPECT_EQ(folder(id)->folderPath(), path(QStringLiteral("pictures")));

    makeFolder(path(QStringLiteral(".Trash-1000/files")));
    move(path(QStringLiteral("pictures")), path(QStringLiteral(".Trash-1000/files/pictures")));
    sync();
    EXPECT_TRUE(folder(id)->is_trashed());
    EXPECT_TRUE(folder(id)->active());
    EXPECT_TRUE(items().isEmpty());
    EXPECT_FALSE(manager->statusOfWatchedFolder(id).reason.isEmpty());

    move(path(QStringLiteral(".Trash-1000/files/pictures")), path(QStringLiteral("pictures")));
    sync();
    EXPECT_FALSE(folder(id)->is_trashed());
    expectInStep(path(QStringLiteral("pictures")));
    expectAdorned(itemAt(path(QStringLiteral("pictures/sub/b.png"))), QStringLiteral("P"));
    EXPECT_EQ(manager->statusOfWatchedFolder(id).reason, QString());
}

TEST_F(LiveFolderTest, KeepsEverythingOfAPlaceThatVanishes)
{
    const QString root = path(QStringLiteral("in"));
    const QString aside = path(QStringLiteral("aside"));
    writePicture(QStringLiteral("in/a.png"));
    writePicture(QStringLiteral("in/sub/b.png"));
    const ZQObjectID id = add(root);
    adorn(context(), itemAt(path(QStringLiteral("in/a.png"))), QStringLiteral("P"));
    const auto putContentAside = [&] {
        makeFolder(aside);
        move(path(QStringLiteral("in/a.png")), aside + QStringLiteral("/a.png"));
        move(path(QStringLiteral("in/sub")), aside + QStringLiteral("/sub"));
    };
    for (const bool isRecorded : {true, false}) { // the record is only a help
        SCOPED_TRACE(isRecorded);
        putContentAside();
        if (!isRecorded) {
            close();
            ASSERT_TRUE(QDir(path(QStringLiteral("Test.ztlibrary/live-folders"))).removeRecursively());
            open();
        }
        sync();
        EXPECT_TRUE(folder(id)->is_missing());
        EXPECT_TRUE(folder(id)->active());
        EXPECT_TRUE(items().isEmpty());
        EXPECT_FALSE(manager->statusOfWatchedFolder(id).reason.isEmpty());
        EXPECT_TRUE(user.questions.isEmpty());
        reopen();
        sync();
        EXPECT_TRUE(folder(id)->is_missing());

        move(aside + QStringLiteral("/a.png"), path(QStringLiteral("in/a.png")));
        move(aside + QStringLiteral("/sub"), path(QStringLiteral("in/sub")));
        sync();
        EXPECT_FALSE(folder(id)->is_missing());
        expectInStep(root);
        expectAdorned(itemAt(path(QStringLiteral("in/a.png"))), QStringLiteral("P"));
    }
}

TEST_F(LiveFolderTest, StaysWhenItsLastFileLeavesByTheLibrary)
{
    const QString root = path(QStringLiteral("in"));
    makeFolder(path(QStringLiteral("other")));
    const QString first = writePicture(QStringLiteral("in/a.png"));
    const ZQObjectID id = add(root);
    const ZQObjectID other = add(path(QStringLiteral("other")));
    const QString second = path(QStringLiteral("in/b.png"));
    struct Case
    {
        const char *what;
        QString file;
        std::function<void(ZQLibraryBaseItem &)> leave;
    };
    const Case cases[] = {
        {"deleted", first,
         [](ZQLibraryBaseItem &item) {
             ASSERT_TRUE(item.hideFileFromFileSystem());
             item.deleteSelf();
         }},
        {"moved out", second,
         [&](ZQLibraryBaseItem &item) {
             const QString to = path(QStringLiteral("other/b.png"));
             move(second, to);
             item.setWatchingFolder(folder(other).get());
             item.updateFileURLsForURL(to);
         }},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        ASSERT_TRUE(itemAt(each.file));
        each.leave(*itemAt(each.file));
        ASSERT_TRUE(context().save());
        sync();
        EXPECT_FALSE(folder(id)->is_missing());
        EXPECT_TRUE(folder(id)->is_enabled());
        EXPECT_EQ(manager->statusOfWatchedFolder(id).reason, QString());
        expectInStep(root);
        writePicture(QStringLiteral("in/b.png"));
        sync();
        expectInStep(root);
    }
    move(second, path(QStringLiteral("b.png")));
    sync();
    EXPECT_TRUE(folder(id)->is_missing()) << "what it held went by itself, as with a drive";
}

TEST_F(LiveFolderTest, OutlivesUnmountingAndMounting)
{
    const QString root = path(QStringLiteral("disk"));
    const QString below = path(QStringLiteral("in/mounted"));
    makeFolder(below);
    writePicture(QStringLiteral("in/own.png"));
    const QString kept = path(QStringLiteral("kept"));
    auto first = std::make_unique<ScratchMount>(root);
    auto second = std::make_unique<ScratchMount>(below);
    if (!first->isMounted() || !second->isMounted()) {
        return skipWithout("mounts of a test's own");
    }
    const auto fill = [&](const QString &place) {
        ASSERT_EQ(std::system(qPrintable(QStringLiteral("cp -a '%1'/. '%2'").arg(kept, place))), 0);
    };
    writePicture(QStringLiteral("kept/a.png"));
    writePicture(QStringLiteral("kept/b/b.png"));
    fill(root);
    fill(below);
    const ZQObjectID id = add(root);
    add(path(QStringLiteral("in")));
    adorn(context(), itemAt(root + QStringLiteral("/b/b.png")), QStringLiteral("R"));
    adorn(context(), itemAt(below + QStringLiteral("/a.png")), QStringLiteral("S"));
    const auto sub = folderAt(below)->objectID();

    first.reset();
    second.reset();
    for (int i = 0; i < 2; ++i) {
        sync();
        EXPECT_TRUE(folder(id)->is_missing());
        EXPECT_TRUE(folder(sub)->is_missing());
        EXPECT_TRUE(folder(sub)->active());
        EXPECT_EQ(items().keys(), QStringList{path(QStringLiteral("in/own.png"))});
        reopen();
    }

    first = std::make_unique<ScratchMount>(root);
    writePicture(QStringLiteral("disk/of another disk.png"));
    sync();
    EXPECT_TRUE(folder(id)->is_missing()) << "another disk in its place";
    first.reset();

    first = std::make_unique<ScratchMount>(root);
    second = std::make_unique<ScratchMount>(below);
    fill(root);
    fill(below);
    sync();
    EXPECT_FALSE(folder(id)->is_missing());
    EXPECT_FALSE(folder(sub)->is_missing());
    expectInStep(root);
    expectInStep(path(QStringLiteral("in")));
    expectAdorned(itemAt(root + QStringLiteral("/b/b.png")), QStringLiteral("R"));
    expectAdorned(itemAt(below + QStringLiteral("/a.png")), QStringLiteral("S"));
    EXPECT_TRUE(user.questions.isEmpty());
    close();
}

TEST_F(LiveFolderTest, LetsOneRootHoldAnother)
{
    writePicture(QStringLiteral("in/a.png"));
    const QString b = writePicture(QStringLiteral("in/inner/b.png"));
    const ZQObjectID inner = add(path(QStringLiteral("in/inner")));
    adorn(context(), itemAt(b), QStringLiteral("P"));
    const ZQObjectID outer = add(path(QStringLiteral("in")));
    expectInStep(path(QStringLiteral("in")));
    expectAdorned(itemAt(b), QStringLiteral("P"));
    EXPECT_EQ(folder(inner)->father()->objectID(), outer);
    EXPECT_FALSE(folder(inner)->is_root());
    sync();
    expectInStep(path(QStringLiteral("in")));

    const AddedLiveFolders again = manager->addNewWatchFolderFromPaths(
        {path(QStringLiteral("in/inner")), path(QStringLiteral("in")), path(QStringLiteral("none"))},
        ZQSidebarBaseItem::appendIndex);
    EXPECT_EQ(again.alreadyThere, (QList<ZQObjectID>{inner, outer}));
    ASSERT_EQ(again.refused.size(), 1);
    EXPECT_TRUE(again.added.isEmpty());
}

TEST_F(LiveFolderTest, TakesARootThatIsALink)
{
    writePicture(QStringLiteral("real/a.png"));
    writePicture(QStringLiteral("real/sub/b.png"));
    const QString link = path(QStringLiteral("link"));
    ASSERT_EQ(::symlink("real", link.toUtf8().constData()), 0);
    add(link);
    EXPECT_EQ(itemPaths(link), (QStringList{QStringLiteral("a.png"), QStringLiteral("sub/b.png")}));
    writePicture(QStringLiteral("real/sub/c.png"));
    QFile::remove(path(QStringLiteral("real/a.png")));
    sync();
    expectInStep(link);
    EXPECT_EQ(manager->addNewWatchFolderFromPaths({path(QStringLiteral("real"))}, 0).alreadyThere.size(), 1);
}

TEST_F(LiveFolderTest, ReadsTagsThatOthersGive)
{
    const QString a = writePicture(QStringLiteral("in/a.png"));
    add(path(QStringLiteral("in")));
    sync();
    if (!OpenMeta::setUserTags(QStringList{QStringLiteral("theirs")}, a).isNull()) {
        return skipWithout("extended attributes");
    }
    sync();
    EXPECT_TRUE(itemAt(a)->userTagTitles().contains(QStringLiteral("theirs")));
    // What this system writes there does not make the folder look changed.
    TagFileWriter::sharedTagFileWriter().waitUntilAllWritten();
    sync();
    const auto stamp = folderAt(path(QStringLiteral("in")))->lastSyncDate();
    sync();
    EXPECT_EQ(folderAt(path(QStringLiteral("in")))->lastSyncDate(), stamp);
}

TEST_F(LiveFolderTest, TakesDeepTreesAndLongNames)
{
    QString deep = QStringLiteral("in");
    for (int i = 0; i < 200; ++i) {
        deep += QStringLiteral("/d%1").arg(i % 10);
    }
    writePicture(deep + QStringLiteral("/a.png"));
    writePicture(QStringLiteral("in/") + QString(250, u'x') + QStringLiteral("/") + QString(251, u'y') +
                 QStringLiteral(".png"));
    writePicture(QStringLiteral("in/line\nbreak/é\n.png"));
    const QString root = path(QStringLiteral("in"));
    add(root);
    expectInStep(root);
    EXPECT_EQ(items().size(), 3);
}

TEST_F(LiveFolderTest, KeepsWhatCannotBeListed)
{
    const AsAnybody anybody; // before there is a thread that synchronises
    if (!anybody.isHeld()) {
        return skipWithout("a user who may not read everything");
    }
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/locked/a.png"));
    add(root);
    const ZQObjectID inner = folderAt(path(QStringLiteral("in/locked")))->objectID();
    const QByteArray locked = QFile::encodeName(path(QStringLiteral("in/locked")));
    ASSERT_EQ(::chmod(locked.constData(), 0), 0);
    sync();
    EXPECT_FALSE(manager->statusOfWatchedFolder(inner).reason.isEmpty());
    EXPECT_EQ(items().size(), 1);
    ASSERT_EQ(::chmod(locked.constData(), 0700), 0);
    manager->syncFolderAtPath(root); // all that the disk tells of
    wait();
    expectInStep(root);
    EXPECT_EQ(manager->statusOfWatchedFolder(inner).reason, QString());

    const QByteArray closed = QFile::encodeName(writePicture(QStringLiteral("in/b.png")));
    ASSERT_EQ(::chmod(closed.constData(), 0), 0);
    sync();
    EXPECT_EQ(items().size(), 1);
    ASSERT_EQ(::chmod(closed.constData(), 0600), 0);
    sync();
    expectInStep(root);
}

TEST_F(LiveFolderTest, LeavesADisabledOneAlone)
{
    writePicture(QStringLiteral("in/a.png"));
    const ZQObjectID id = add(path(QStringLiteral("in")));
    folder(id)->deactivateFolder();
    ASSERT_TRUE(context().save());
    manager->watchedFoldersDidChange({id});
    writePicture(QStringLiteral("in/b.png"));
    for (const bool isForced : {false, true}) {
        sync(isForced);
        sync(id); // as who asked before it was disabled
        EXPECT_FALSE(folder(id)->is_enabled());
        EXPECT_TRUE(items().isEmpty());
    }
    folder(id)->reActivateFolder();
    ASSERT_TRUE(context().save());
    manager->watchedFoldersDidChange({id});
    wait();
    expectInStep(path(QStringLiteral("in")));
    EXPECT_EQ(items().size(), 2);
}

TEST_F(LiveFolderTest, FollowsTheDiskByItself)
{
    const QString a = writePicture(QStringLiteral("in/a.png"));
    const QString root = path(QStringLiteral("in"));
    add(root);
    manager->startObservingWatchedFolders();
    wait();
    // The file alone is found by its reference, whoever follows the disk.
    const auto isThere = [this](const QString &path, bool expected) {
        zqRunMainLoopUntil([&] {
            const auto item = itemAt(path);
            const auto folder = item ? item->watchingFolder() : nullptr;
            return (folder && folder->folderPath() == QFileInfo(path).path()) == expected;
        });
    };
    const QString b = writePicture(QStringLiteral("in/new/deeper/b.png"));
    isThere(b, true);
    move(a, path(QStringLiteral("in/new/c.png")));
    isThere(path(QStringLiteral("in/new/c.png")), true);
    QFile::remove(b);
    isThere(b, false);
    wait();
    expectInStep(root);
    manager->stopObservingWatchedFolders();
}
