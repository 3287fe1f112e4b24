#include "Classes/LiveFolders/SyncRequests.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQModel.h"
#include "Tests/Classes/LiveFolders/LiveFolderFixture.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace {

ZQObjectID folderOf(qint64 key)
{
    return {zqCurrentModel()->entity(ZQSidebarWatchedFolder::entityName()), key};
}

QList<qint64> keysOf(const SyncRequests::Next &next)
{
    QList<qint64> keys;
    for (auto folder = next.folders.keyBegin(); folder != next.folders.keyEnd(); ++folder) {
        keys.append(folder->key);
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

} // namespace

TEST(SyncRequests, ThoseThatWereCutShortGoLastAndTheSmallestOfThemFirst)
{
    SyncRequests requests;
    requests.note(folderOf(1), {1, true});
    requests.cutShort(1, 500);
    requests.setBegun(folderOf(1));
    requests.note(folderOf(2), {2, true});
    requests.cutShort(2, 20);
    requests.note(folderOf(31), {3, false});
    requests.note(folderOf(4), {4, true, true});
    EXPECT_TRUE(requests.isAnyToGoFirst({1, 2, 3})); // for 4
    EXPECT_FALSE(requests.isAnyToGoFirst({3, 4}));

    SyncRequests::Next next = requests.unfoldItemsToUpdateSet();
    EXPECT_EQ(keysOf(next), (QList<qint64>{4, 31}));
    EXPECT_EQ(next.roots, (QSet<qint64>{3, 4}));
    EXPECT_TRUE(next.folders.value(folderOf(4)).isForced);
    EXPECT_FALSE(requests.isAnyToGoFirst({3})); // they do not keep each other from work
    EXPECT_EQ(keysOf(requests.unfoldItemsToUpdateSet()), QList<qint64>{2});
    next = requests.unfoldItemsToUpdateSet();
    EXPECT_EQ(keysOf(next), QList<qint64>{1});
    EXPECT_EQ(next.begun, QSet<ZQObjectID>{folderOf(1)});
    EXPECT_TRUE(requests.isEmpty());

    requests.note(folderOf(1), {1, true});
    EXPECT_TRUE(requests.isAnyToGoFirst({3})) << "it had its turn, and is asked for anew";
}

TEST(SyncRequests, WhatSomethingMovedBetweenIsLookedAtTogether)
{
    SyncRequests requests;
    requests.note(folderOf(1), {1, true});
    requests.cutShort(1, 500);
    requests.note(folderOf(2), {2, false});
    requests.note(folderOf(3), {3, false});
    requests.join(1, 2);
    requests.join(2, 1);
    EXPECT_FALSE(requests.isAnyToGoFirst({3}));
    EXPECT_EQ(keysOf(requests.unfoldItemsToUpdateSet()), QList<qint64>{3});
    EXPECT_EQ(keysOf(requests.unfoldItemsToUpdateSet()), (QList<qint64>{1, 2}));

    requests.note(folderOf(1), {1, true});
    requests.cutShort(1, 500);
    requests.note(folderOf(2), {2, false});
    EXPECT_EQ(keysOf(requests.unfoldItemsToUpdateSet()), QList<qint64>{2}) << "that move was looked at";
}

TEST(SyncRequests, WhatIsGivenUpIsToldWhenItWasBegun)
{
    SyncRequests requests;
    for (const qint64 key : {1, 2, 3}) {
        requests.note(folderOf(key), {key, true});
        requests.cutShort(key, key);
    }
    requests.setBegun(folderOf(1));
    requests.setBegun(folderOf(2));
    EXPECT_EQ(requests.removeIf([](const ZQObjectID &folder) { return folder.key != 2; }), QList{folderOf(1)});
    EXPECT_EQ(requests.clear(), QList{folderOf(2)});
    EXPECT_TRUE(requests.clear().isEmpty());
}

TEST(SyncRequests, AYesToARemovalGoesWithWhatItWasSaidFor)
{
    SyncRequests requests;
    const SyncRequests::Wanted yes{1, true, true, true, true};
    requests.note(folderOf(1), yes);
    requests.note(folderOf(1), {1, false});
    EXPECT_TRUE(requests.all().value(folderOf(1)).removesMissing);
    requests.removeIf([](const ZQObjectID &) { return true; });
    requests.note(folderOf(1), {1, true});
    EXPECT_FALSE(requests.all().value(folderOf(1)).removesMissing) << "it was given up";
}

// Files that are being written keep the long run where it is until the other root was asked for.
TEST_F(LiveFolderTest, ARunThatReadsForLongMakesWayAndGoesOn)
{
    manager->setLengthOfTurns({std::chrono::seconds(0), 0});
    const QString large = path(QStringLiteral("large"));
    const QString small = path(QStringLiteral("small"));
    writePicture(QStringLiteral("large/first/a.png"));
    writePicture(QStringLiteral("large/second/b.png"));
    writePicture(QStringLiteral("large/second/c.png"));
    writePicture(QStringLiteral("large/third/d.png"));
    writePicture(QStringLiteral("small/e.png"));
    std::array<QFile, 3> written;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const QStringList names{QStringLiteral("second/b.png"), QStringLiteral("second/c.png"),
                                QStringLiteral("third/d.png")};
        written.at(i).setFileName(large + u'/' + names.at(qsizetype(i)));
        ASSERT_TRUE(written.at(i).open(QIODevice::ReadWrite));
    }
    QStringList told;
    const auto tell = [&](const QString &what) {
        return ZQNotificationCenter::defaultCenter().addObserver(
            what, static_cast<LiveFolderManaging *>(manager.get()), [&told, what](const ZQNotification &notification) {
                told.append(what + u' ' +
                            notification.userInfo.value(QStringLiteral("folder")).toString().section(u'/', -1));
            });
    };
    const auto starts = tell(LiveFolderManaging::didStartSync);
    const auto ends = tell(LiveFolderManaging::didEndSync);
    const auto addNow = [this](const QString &folder) {
        return manager->addNewWatchFolderFromPaths({folder}, ZQSidebarBaseItem::appendIndex).added.value(0);
    };
    const ZQObjectID first = addNow(large);
    QList<qsizetype> done;
    const auto progress = ZQNotificationCenter::defaultCenter().addObserver(
        LiveFolderManaging::statusDidChange, static_cast<LiveFolderManaging *>(manager.get()),
        [&](const ZQNotification &) {
            const LiveFolderStatus status = manager->statusOfWatchedFolder(first);
            if (status.isSyncing) {
                done.append(status.filesDone);
                EXPECT_TRUE(status.filesTotal == 4 || status.filesTotal == 0) << status.filesTotal;
            }
        });
    zqRunMainLoopUntil([&] { return manager->statusOfWatchedFolder(first).filesDone > 0; });
    const ZQObjectID second = addNow(small);
    for (QFile &file : written) {
        file.close();
    }
    wait();
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end())) << "another one's turn is none of its";
    expectInStep(large);
    expectInStep(small);
    const auto of = [](const QString &what, const ZQObjectID &id) { return what + QStringLiteral(" p%1").arg(id.key); };
    EXPECT_EQ(told,
              (QStringList{of(LiveFolderManaging::didStartSync, first), of(LiveFolderManaging::didStartSync, second),
                           of(LiveFolderManaging::didEndSync, second), of(LiveFolderManaging::didEndSync, first)}));

    // What went meanwhile is found, and the record is whole: nothing is read again.
    ASSERT_TRUE(QFile::remove(large + QStringLiteral("/first/a.png")));
    reopen();
    sync();
    expectInStep(large);
}
