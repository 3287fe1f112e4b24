#include "Classes/Import/AImportManager.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"
#include "Tests/Classes/LiveFolders/ServedMount.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>
#include <unistd.h>

TEST_F(LiveFolderTest, FollowsFilesOutOfAFolderThatGoes)
{
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/a/one.png"));
    writePicture(QStringLiteral("in/a/deep/two.png"));
    writePicture(QStringLiteral("in/b/other.png"));
    add(root);
    adorn(context(), itemAt(root + QStringLiteral("/a/one.png")), QStringLiteral("1"));
    adorn(context(), itemAt(root + QStringLiteral("/a/deep/two.png")), QStringLiteral("2"));
    const QString script = QStringLiteral("cd '%1' && mv a/*.png a/deep/*.png b && rmdir a/deep a").arg(root);
    ASSERT_EQ(std::system(qPrintable(script)), 0);
    sync();
    expectInStep(root);
    expectAdorned(itemAt(root + QStringLiteral("/b/one.png")), QStringLiteral("1"));
    expectAdorned(itemAt(root + QStringLiteral("/b/two.png")), QStringLiteral("2"));
}

TEST_F(LiveFolderTest, AnItemThatIsBackStandsForOneOfTheNamesOfItsFile)
{
    writePicture(QStringLiteral("in/stays.png"));
    const QString a = writePicture(QStringLiteral("in/a.png"));
    const QByteArray outside = QFile::encodeName(path(QStringLiteral("outside.png")));
    const QString root = path(QStringLiteral("in"));
    add(root);
    move(a, path(QStringLiteral("outside.png")));
    sync();
    ASSERT_EQ(itemPaths(root), QStringList{QStringLiteral("stays.png")});
    for (const char *name : {"in/b.png", "in/c.png"}) {
        ASSERT_EQ(::link(outside.constData(), QFile::encodeName(path(QLatin1StringView(name))).constData()), 0);
    }
    sync();
    EXPECT_EQ(itemPaths(root),
              (QStringList{QStringLiteral("b.png"), QStringLiteral("c.png"), QStringLiteral("stays.png")}));
}

TEST_F(LiveFolderTest, PutsAwayItemsThatNoFolderHoldsAnyMore)
{
    writePicture(QStringLiteral("in/a.png"));
    add(path(QStringLiteral("in")));
    const QString file = writePicture(QStringLiteral("elsewhere/orphan.png"));
    const auto orphan = context().insertNewObject<ZQLibraryImage>();
    orphan->setBundleID(QStringLiteral("Orphan"));
    orphan->setTitle(QStringLiteral("orphan"));
    orphan->setManaged(false);
    orphan->setActive(true);
    orphan->setItemURLData(zqDataForPersistentURL(file));
    ASSERT_TRUE(context().save());
    writePicture(QStringLiteral("in/b.png"));
    sync();
    EXPECT_FALSE(orphan->active());
    EXPECT_EQ(items().size(), 2);
    EXPECT_TRUE(QFile::exists(file));
}

TEST_F(LiveFolderTest, KeepsItemsOfADirectoryThatIsWrittenAnew)
{
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/d/a.png"));
    writePicture(QStringLiteral("in/d/deep/b.png"));
    add(root);
    adorn(context(), itemAt(root + QStringLiteral("/d/a.png")), QStringLiteral("1"));
    adorn(context(), itemAt(root + QStringLiteral("/d/deep/b.png")), QStringLiteral("2"));
    for (const bool isAlone : {false, true}) {
        SCOPED_TRACE(isAlone);
        move(root + QStringLiteral("/d"), path(QStringLiteral("old"))); // so that none of its numbers is given again
        writePicture(QStringLiteral("in/d/a.png"));
        writePicture(QStringLiteral("in/d/deep/b.png"));
        writePicture(QStringLiteral("in/d/new.png"));
        ASSERT_TRUE(QDir(path(QStringLiteral("old"))).removeRecursively());
        if (isAlone) {
            manager->syncFolderAtPath(root);
            wait();
        } else {
            sync();
        }
        expectInStep(root);
        expectAdorned(itemAt(root + QStringLiteral("/d/a.png")), QStringLiteral("1"));
        expectAdorned(itemAt(root + QStringLiteral("/d/deep/b.png")), QStringLiteral("2"));
    }
}

TEST_F(LiveFolderTest, KeepsWhatIsAroundAPlaceThatIsOutOfReach)
{
    const QString root = path(QStringLiteral("in"));
    const QString around = root + QStringLiteral("/around");
    const QString place = around + QStringLiteral("/place");
    writePicture(QStringLiteral("in/own.png"));
    auto mount = std::make_unique<ScratchMount>(place);
    if (!mount->isMounted()) {
        return skipWithout("mounts of a test's own");
    }
    writePicture(QStringLiteral("kept/a.png"));
    const auto fill = [&] {
        ASSERT_EQ(std::system(qPrintable(QStringLiteral("cp -a '%1'/. '%2'").arg(path(QStringLiteral("kept")), place))),
                  0);
    };
    fill();
    add(root);
    adorn(context(), itemAt(place + QStringLiteral("/a.png")), QStringLiteral("P"));
    const ZQObjectID id = folderAt(around)->objectID();

    mount.reset();
    for (const bool isToldFirst : {true, false}) {
        if (isToldFirst) {
            sync();
        }
        ASSERT_TRUE(QDir(around).removeRecursively());
        for (int i = 0; i < 2; ++i) {
            sync();
            ASSERT_TRUE(folder(id)->active());
            EXPECT_TRUE(folder(id)->is_missing());
            EXPECT_EQ(items().keys(), QStringList{root + QStringLiteral("/own.png")});
            reopen();
        }
        mount = std::make_unique<ScratchMount>(place);
        fill();
        sync();
        expectInStep(root);
        EXPECT_EQ(folderAt(around)->objectID(), id);
        expectAdorned(itemAt(place + QStringLiteral("/a.png")), QStringLiteral("P"));
        mount.reset();
    }
    EXPECT_TRUE(user.questions.isEmpty());
    close();
}

TEST_F(LiveFolderTest, GoesOnBesideAPlaceThatDoesNotAnswer)
{
    const QString root = path(QStringLiteral("in"));
    const QString place = root + QStringLiteral("/place");
    const QString b = writePicture(QStringLiteral("in/place/b.png"));
    writePicture(QStringLiteral("in/a.png"));
    const ZQObjectID id = add(root);
    adorn(context(), itemAt(b), QStringLiteral("P"));
    const ZQObjectID sub = folderAt(place)->objectID();

    auto mount = std::make_unique<ServedMount>(place, path(QStringLiteral("in")), QStringList());
    if (!mount->isMounted()) {
        return skipWithout("mounts of a test's own");
    }
    mount->die();
    for (const bool isRecorded : {true, false}) {
        SCOPED_TRACE(isRecorded);
        if (!isRecorded) {
            close();
            ASSERT_TRUE(QDir(path(QStringLiteral("Test.ztlibrary/live-folders"))).removeRecursively());
            open();
        }
        const QString c = writePicture(isRecorded ? QStringLiteral("in/c.png") : QStringLiteral("in/d.png"));
        sync();
        EXPECT_FALSE(folder(id)->is_missing());
        EXPECT_TRUE(folder(sub)->active());
        EXPECT_TRUE(itemAt(c));
        EXPECT_EQ(items().size(), isRecorded ? 3 : 4);
    }
    mount.reset();
    sync();
    expectInStep(root);
    expectAdorned(itemAt(b), QStringLiteral("P"));
}

TEST_F(LiveFolderTest, KnowsFilesAgainThatAMountNumbersAnew)
{
    const QString root = path(QStringLiteral("served"));
    makeFolder(root);
    const QStringList names{QStringLiteral("a.png"), QStringLiteral("b.png")};
    for (const QString &name : names) {
        writePicture(QStringLiteral("real/") + name);
    }
    auto mount = std::make_unique<ServedMount>(root, path(QStringLiteral("real")), names);
    if (!mount->isMounted()) {
        return skipWithout("mounts of a test's own");
    }
    const ZQObjectID id = add(root);
    adorn(context(), itemAt(root + QStringLiteral("/a.png")), QStringLiteral("A"));
    adorn(context(), itemAt(root + QStringLiteral("/b.png")), QStringLiteral("B"));
    for (const bool isSeenAway : {false, true}) {
        SCOPED_TRACE(isSeenAway);
        mount.reset();
        if (isSeenAway) {
            sync();
            EXPECT_TRUE(folder(id)->is_missing());
        }
        const QStringList order = isSeenAway ? names : QStringList{names[1], names[0]};
        mount = std::make_unique<ServedMount>(root, path(QStringLiteral("real")), order);
        sync();
        expectInStep(root);
        expectAdorned(itemAt(root + QStringLiteral("/a.png")), QStringLiteral("A"));
        expectAdorned(itemAt(root + QStringLiteral("/b.png")), QStringLiteral("B"));
    }
    close();
}

TEST_F(LiveFolderTest, TakesInTagsThatOthersGiveMeanwhile)
{
    const QString a = writePicture(QStringLiteral("in/a.png"));
    add(path(QStringLiteral("in")));
    if (!OpenMeta::addUserTags(QStringList{QStringLiteral("before")}, a).isNull()) {
        return skipWithout("extended attributes");
    }
    writePicture(QStringLiteral("in/b.png"));
    int count = 0;
    {
        const auto saved = ZQNotificationCenter::defaultCenter().addObserver(
            AImportManager::didFinishImportOperation, &AImportManager::sharedAImportManager(),
            [&](const ZQNotification &) {
                OpenMeta::addUserTags(QStringList{QStringLiteral("meanwhile %1").arg(++count)}, a);
            });
        sync();
    }
    ASSERT_GT(count, 1);
    sync();
    for (int i = 1; i <= count; ++i) {
        EXPECT_TRUE(itemAt(a)->userTagTitles().contains(QStringLiteral("meanwhile %1").arg(i))) << i;
    }
}

TEST_F(LiveFolderTest, ForgetsNothingWhenTheStoreCannotBeRead)
{
    writePicture(QStringLiteral("in/a.png"));
    const ZQObjectID id = add(path(QStringLiteral("in")));
    const QString records = path(QStringLiteral("Test.ztlibrary/live-folders"));
    ASSERT_FALSE(QDir(records).isEmpty());
    const auto change = [this](const char *statement) {
        sqlite3 *database = nullptr;
        const QByteArray file = QFile::encodeName(delegate->persistentStoreCoordinator()->path());
        EXPECT_EQ(sqlite3_open(file.constData(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, statement, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
        sqlite3_close(database);
    };
    change("ALTER TABLE ZQSidebarBaseItem RENAME TO away");
    sync(id);
    change("ALTER TABLE away RENAME TO ZQSidebarBaseItem");
    EXPECT_FALSE(QDir(records).isEmpty());
    sync(id);
    expectInStep(path(QStringLiteral("in")));
}

TEST_F(LiveFolderTest, LooksAtBothEndsOfAMoveTogether)
{
    const QString a = writePicture(QStringLiteral("in/one/a.png"));
    writePicture(QStringLiteral("in/one/other.png"));
    writePicture(QStringLiteral("in/two/b.png"));
    add(path(QStringLiteral("in")));
    QStringList notifications;
    const auto observe = [&](const QString &name) {
        return ZQNotificationCenter::defaultCenter().addObserver(
            name, static_cast<LiveFolderManaging *>(manager.get()),
            [&notifications](const ZQNotification &notification) { notifications.append(notification.name); });
    };
    const auto started = observe(LiveFolderManaging::didStartSync);
    const auto ended = observe(LiveFolderManaging::didEndSync);
    manager->startObservingWatchedFolders(); // which looks at all
    zqRunMainLoopUntil([&] { return notifications.contains(LiveFolderManaging::didEndSync); });
    wait();
    notifications.clear();
    const QString moved = path(QStringLiteral("in/two/moved.png"));
    move(a, moved);
    zqRunMainLoopUntil([&] { return notifications.contains(LiveFolderManaging::didEndSync); });
    wait();
    EXPECT_EQ(notifications.mid(0, 2),
              (QStringList{LiveFolderManaging::didStartSync, LiveFolderManaging::didStartSync}));
    manager->stopObservingWatchedFolders();
}

TEST_F(LiveFolderTest, SaysWhyFilesAreMissingUntilTheyAreThere)
{
    const QString library = path(QStringLiteral("Test.ztlibrary"));
    close();
    ASSERT_TRUE(QDir(library).removeRecursively());
    const ScratchMount disk(library, 8 << 20);
    if (!disk.isMounted()) {
        return skipWithout("mounts of a test's own");
    }
    open();
    const QString root = path(QStringLiteral("in"));
    writePicture(QStringLiteral("in/sub/a.png"));
    const ZQObjectID id = add(root);
    const QString filler = library + QStringLiteral("/filler");
    ASSERT_NE(std::system(qPrintable(QStringLiteral("dd if=/dev/zero of='%1' bs=4k 2>/dev/null").arg(filler))), 0);
    writePicture(QStringLiteral("in/sub/b.png"));
    sync();
    EXPECT_FALSE(manager->statusOfWatchedFolder(id).reason.isEmpty());
    ASSERT_TRUE(QFile::remove(filler));
    sync();
    expectInStep(root);
    EXPECT_EQ(manager->statusOfWatchedFolder(id).reason, QString());
    close();
}

TEST_F(LiveFolderTest, GoesOnAfterACancel)
{
    for (int i = 0; i < 40; ++i) {
        writePicture(QStringLiteral("in/%1/%2.png").arg(i % 4).arg(i));
    }
    const QString root = path(QStringLiteral("in"));
    QFile written(root + QStringLiteral("/3/39.png")); // which keeps the run from its end
    ASSERT_TRUE(written.open(QIODevice::ReadWrite));
    const auto added = manager->addNewWatchFolderFromPaths({root}, 0).added;
    ASSERT_EQ(added.size(), 1);
    const auto status = [&] { return manager->statusOfWatchedFolder(added.first()); };
    zqRunMainLoopUntil([&] { return status().filesDone > 3 || !status().isSyncing; }, std::chrono::milliseconds(1));
    ASSERT_TRUE(status().isSyncing);
    EXPECT_EQ(status().reason, QString());
    manager->stopSyncingWatchedFolders(added);
    wait();
    written.close();
    EXPECT_TRUE(status().reason.contains(QStringLiteral("of 40 files were taken"))) << qPrintable(status().reason);
    manager->syncWatchedFolders({folderAt(root)->objectID()}, false, false); // not all of it
    wait();
    EXPECT_FALSE(status().reason.isEmpty());
    reopen();
    manager->syncWatchedFolder(added.first(), false);
    manager->stopSyncingWatchedFolders(added); // before it began
    wait();
    EXPECT_FALSE(status().reason.isEmpty());
    sync();
    expectInStep(root);
    EXPECT_EQ(items().size(), 40);
    EXPECT_EQ(status().reason, QString());
}
