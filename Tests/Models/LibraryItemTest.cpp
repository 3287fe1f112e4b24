#include "Kit/Files/ZQFileCopy.h"
#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQLibrarySketch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Support/ScratchLibrary.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

class LibraryItem : public testing::Test
{
protected:
    ScratchLibrary library;
    ZQManagedObjectContext &context = library.context();

    ZQRef<ZQSidebarWatchedFolder> liveFolder(const QString &name)
    {
        QDir().mkpath(library.path(name));
        auto folder = ZQSidebarWatchedFolder::newSidebarWatchedFolderForPath(library.path(name), context);
        folder->setIs_root(true);
        return folder;
    }
    ZQRef<ZQLibraryImage> liveItem(const ZQRef<ZQSidebarWatchedFolder> &folder, const QString &name)
    {
        auto item =
            library.addReferencedImage(library.writeFile(folder->title() + QLatin1Char('/') + name, name.toUtf8()));
        item->setWatchingFolder(folder.get());
        return item;
    }
};

TEST_F(LibraryItem, AManagedItemLiesInItsDirectoryByTitleAndExtension)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    EXPECT_EQ(item->itemURL(), library.libraryDirectory() + QLatin1Char('/') + item->bundleID() +
                                   QStringLiteral(".ztlibraryitem/logo.png"));
    EXPECT_EQ(item->detailItemURL(), item->itemURL());
    EXPECT_TRUE(item->thumbURL().isEmpty());
    item->setOriginalExtension({});
    EXPECT_TRUE(item->itemURL().isEmpty());
}

TEST_F(LibraryItem, RenamingMovesFileAndThumbnail)
{
    for (const char *newTitle : {"Logo", "other", "dots.in.it", "ünïcode"}) {
        SCOPED_TRACE(newTitle);
        const QString title = QString::fromUtf8(newTitle);
        const auto item = library.addImage(QStringLiteral("logo"), QStringLiteral("png"), newTitle);
        library.writeFile(
            QDir(library.path({})).relativeFilePath(item->bundleURL() + QStringLiteral("/logo_thumb.png")), "thumb");
        item->setThumbName(QStringLiteral("logo_thumb.png"));
        int announced = 0;
        const auto token = ZQNotificationCenter::defaultCenter().addObserver(
            ZQLibraryBaseItem::dataDidUpdateNotification, static_cast<ZQManagedObject *>(item.get()),
            [&](const ZQNotification &) { ++announced; });
        EXPECT_TRUE(item->setNewTitle(title));
        EXPECT_EQ(item->title(), title);
        EXPECT_EQ(ScratchLibrary::readFile(item->itemURL()), QByteArray(newTitle));
        EXPECT_EQ(item->thumbName(), title + QStringLiteral("_thumb.png"));
        EXPECT_EQ(ScratchLibrary::readFile(item->thumbURL()), QByteArray("thumb"));
        EXPECT_EQ(zqURLFromPersistentData(item->itemURLData()), item->itemURL());
        EXPECT_EQ(item->thumbVersion(), 1);
        EXPECT_EQ(announced, 1);
        EXPECT_EQ(QDir(item->bundleURL()).entryList(QDir::Files).size(), 2);
    }
}

TEST_F(LibraryItem, RefusesTitlesThatNoFileCanHave)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    const QString titles[] = {{},
                              QStringLiteral("a/b"),
                              QStringLiteral("../up"),
                              QStringLiteral(".hidden"),
                              QStringLiteral("a") + QChar(),
                              QString(250, QLatin1Char('x')),
                              QString(100, QChar(0x6F22))};
    for (const QString &title : titles) {
        SCOPED_TRACE(qPrintable(title));
        library.errors.clear();
        EXPECT_FALSE(item->setNewTitle(title));
        ASSERT_EQ(library.errors.size(), 1);
        EXPECT_FALSE(library.errors.first().localizedDescription().isEmpty());
        EXPECT_EQ(item->title(), QStringLiteral("logo"));
        EXPECT_TRUE(QFileInfo::exists(item->itemURL()));
    }
    EXPECT_TRUE(item->setNewTitle(QStringLiteral("logo"))); // its own
}

TEST_F(LibraryItem, TheLongestTitleIsTheOneWhoseThumbnailStillHasANameWhileItMoves)
{
    constexpr qsizetype added = sizeof("_thumb.png.tmp") - 1;
    const auto item = library.addImage(QStringLiteral("logo"));
    EXPECT_FALSE(item->setNewTitle(QString(255 - added + 1, u'x')));
    EXPECT_TRUE(item->setNewTitle(QString(255 - added, u'x')));
    EXPECT_TRUE(QFileInfo::exists(item->itemURL()));

    item->setThumbName(QStringLiteral("lost_thumb.png")); // it cannot be moved
    EXPECT_TRUE(item->setNewTitle(QStringLiteral("mark")));
    EXPECT_EQ(item->thumbName(), QStringLiteral("lost_thumb.png"));
}

TEST_F(LibraryItem, ARenameOntoAnotherFileLeavesBothAsTheyWere)
{
    const auto item = library.addImage(QStringLiteral("logo"), QStringLiteral("png"), "mine");
    const QString other = item->bundleURL() + QStringLiteral("/taken.png");
    library.writeFile(QDir(library.path({})).relativeFilePath(other), "other");
    EXPECT_FALSE(item->setNewTitle(QStringLiteral("taken")));
    EXPECT_EQ(library.errors.size(), 1);
    EXPECT_EQ(item->title(), QStringLiteral("logo"));
    EXPECT_EQ(ScratchLibrary::readFile(item->itemURL()), QByteArray("mine"));
    EXPECT_EQ(ScratchLibrary::readFile(other), QByteArray("other"));
    QFile::remove(item->itemURL());
    EXPECT_FALSE(item->setNewTitle(QStringLiteral("free")));
    EXPECT_EQ(library.errors.size(), 2);
}

TEST_F(LibraryItem, ADuplicateHasItsOwnFilesAndTagsButNoProject)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    library.writeFile(QDir(library.path({})).relativeFilePath(item->bundleURL() + QStringLiteral("/logo_thumb.png")),
                      "thumb");
    item->setThumbName(QStringLiteral("logo_thumb.png"));
    item->setNotes(QStringLiteral("remember"));
    item->setPixelWidth(12);
    const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("red"), context);
    item->addTagsObject(tag.get());
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->addItem(item.get());

    const auto copy = item->duplicate();
    ASSERT_TRUE(copy);
    EXPECT_NE(copy->bundleID(), item->bundleID());
    EXPECT_EQ(copy->entity(), item->entity());
    EXPECT_EQ(copy->notes(), item->notes());
    EXPECT_EQ(copy->pixelWidth(), 12);
    EXPECT_TRUE(copy->import_date().isValid());
    EXPECT_EQ(copy->itemTags().size(), 1);
    EXPECT_TRUE(copy->projects().isEmpty());
    EXPECT_EQ(ScratchLibrary::readFile(copy->itemURL()), QByteArray("picture"));
    EXPECT_EQ(ScratchLibrary::readFile(copy->thumbURL()), QByteArray("thumb"));

    const auto folder = liveFolder(QStringLiteral("live"));
    const auto fromLive = liveItem(folder, QStringLiteral("seen.jpg"))->duplicate();
    ASSERT_TRUE(fromLive);
    EXPECT_TRUE(fromLive->managed());
    EXPECT_FALSE(fromLive->watchingFolder());
    EXPECT_EQ(ScratchLibrary::readFile(fromLive->itemURL()), QByteArray("seen.jpg"));

    QFile::remove(item->itemURL());
    EXPECT_FALSE(item->duplicate());

    const auto drawing = context.insertNewObject<ZQLibrarySVG>();
    drawing->setBundleID(QStringLiteral("D"));
    drawing->setTitle(QStringLiteral("drawing"));
    drawing->setOriginalExtension(QStringLiteral("svg"));
    drawing->setManaged(true);
    drawing->setActive(false);
    drawing->setImport_date(zqNow().addYears(-1));
    const QString base = QStringLiteral("Zelto.ztlibrary/Library/D.ztlibraryitem/");
    library.writeFile(base + QStringLiteral("drawing.svg"), "<svg/>");
    library.writeFile(base + ZQLibraryBaseItem::representationBitmapName, "drawn");
    const auto second = drawing->duplicate();
    ASSERT_TRUE(second);
    EXPECT_EQ(ScratchLibrary::readFile(second->detailItemURL()), QByteArray("drawn"));
    EXPECT_TRUE(second->active());
    EXPECT_GT(second->import_date(), zqNow().addDays(-1));
}

TEST_F(LibraryItem, DeletingALiveItemHidesItsFileAndRestoringShowsIt)
{
    const auto folder = liveFolder(QStringLiteral("live"));
    const auto item = liveItem(folder, QStringLiteral("seen.jpg"));
    const QString visible = item->itemURL();
    item->deleteSelf();
    EXPECT_FALSE(item->active());
    EXPECT_FALSE(QFileInfo::exists(visible));
    const QString hidden = item->itemURL();
    EXPECT_TRUE(QFileInfo(hidden).fileName().startsWith(QLatin1Char('.')));
    EXPECT_TRUE(hidden.endsWith(QStringLiteral(".jpg")));
    item->hideFileFromFileSystem(); // it is
    EXPECT_EQ(item->itemURL(), hidden);
    item->restoreSelf();
    EXPECT_TRUE(item->active());
    EXPECT_EQ(item->itemURL(), visible);
    EXPECT_EQ(ScratchLibrary::readFile(visible), QByteArray("seen.jpg"));
}

TEST_F(LibraryItem, WhatItDoesToItsFileReachesOneThatWasMovedFarAway)
{
    const auto folder = liveFolder(QStringLiteral("live"));
    const auto moved = [&](const QString &name) {
        const QString first = library.writeFile(QStringLiteral("one/two/three/") + name, "picture");
        const auto item = library.addReferencedImage(first);
        item->setTitle(QStringLiteral("seen"));
        item->setWatchingFolder(folder.get());
        const QString far = library.path(QStringLiteral("one/") + item->bundleID() + u'/' + name);
        QDir().mkpath(QFileInfo(far).path());
        EXPECT_TRUE(QFile::rename(first, far));
        return std::pair(item, QDir(QFileInfo(far).path()));
    };
    const auto names = [](const QDir &place) {
        return QDir(place.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    };
    const QString visible = QStringLiteral("seen.jpg");
    const QString hidden = QStringLiteral(".hidden.jpg");

    const auto [deleted, ofDeleted] = moved(visible);
    deleted->deleteSelf();
    ASSERT_EQ(names(ofDeleted).size(), 1);
    EXPECT_TRUE(names(ofDeleted).first().startsWith(u'.'));

    const auto [restored, ofRestored] = moved(hidden);
    restored->restoreSelf();
    EXPECT_EQ(names(ofRestored), QStringList{visible});

    const auto [stillDeleted, ofStillDeleted] = moved(hidden);
    stillDeleted->setActive(false);
    folder->reActivateFolder();
    EXPECT_FALSE(stillDeleted->active()) << "a person deleted it";

    const auto [purged, ofPurged] = moved(hidden);
    purged->deletePermanently();
    EXPECT_EQ(names(ofPurged), QStringList());
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("XDG_DATA_HOME/Trash/files/seen.jpg"))));

    const auto [renamed, ofRenamed] = moved(visible);
    EXPECT_TRUE(renamed->setNewTitle(QStringLiteral("new")));
    EXPECT_EQ(names(ofRenamed), QStringList{QStringLiteral("new.jpg")});

    const auto [copied, ofCopied] = moved(visible);
    EXPECT_TRUE(copied->duplicate());

    const auto [listed, ofListed] = moved(visible);
    EXPECT_TRUE(folder->pathAndItemDictionary().contains(ofListed.filePath(visible)));

    const auto [tagged, ofTagged] = moved(visible);
    tagged->writeOpenMetaToDisk();
    ASSERT_EQ(library.written.size(), 1);
    EXPECT_EQ(library.written.first().path, ofTagged.filePath(visible));
}

TEST_F(LibraryItem, NewsOfItsMovedFileComeAgainUntilTheyAreUsed)
{
    const QString first = library.writeFile(QStringLiteral("own/a.jpg"), "a");
    const auto item = library.addReferencedImage(first);
    const QString renamed = library.path(QStringLiteral("own/b.jpg"));
    ASSERT_TRUE(QFile::rename(first, renamed));
    zqWaitForPersistentURLSearches();
    zqRunMainLoopFor(std::chrono::milliseconds(1)); // news of other tests' files
    library.renewedReferences.clear();
    const auto askTimes = [&](int times) {
        for (int i = 0; i < times; ++i) {
            EXPECT_EQ(item->itemURL(), renamed);
            zqWaitForPersistentURLSearches();
            zqRunMainLoopFor(std::chrono::milliseconds(1));
        }
        return library.renewedReferences;
    };
    const QByteArray renewed = zqDataForPersistentURL(renamed);
    EXPECT_EQ(askTimes(2), (QList<QByteArray>{renewed, renewed}));
    library.referencesAreRenewed = true;
    EXPECT_EQ(askTimes(3), (QList<QByteArray>{renewed, renewed, renewed}));
}

TEST_F(LibraryItem, DeletionIsAnnouncedWhenIdle)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    int announced = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        ZQLibraryBaseItem::didDeleteNotification, nullptr, [&](const ZQNotification &) { ++announced; });
    item->deleteSelf();
    EXPECT_TRUE(QFileInfo::exists(item->managedItemURL())) << "it lies in the library";
    EXPECT_EQ(announced, 0);
    zqRunMainLoopUntil([&] { return announced > 0; });
    EXPECT_EQ(announced, 1);
}

TEST_F(LibraryItem, PurgeRemovesInactiveItemsButKeepsThoseOfAFolderOutOfReach)
{
    const auto managed = library.addImage(QStringLiteral("gone"));
    const QString directory = QFileInfo(managed->bundleURL()).fileName();
    const auto kept = library.addImage(QStringLiteral("kept"));
    const auto present = liveItem(liveFolder(QStringLiteral("present")), QStringLiteral("a.jpg"));
    const QString presentVisible = present->itemURL();
    const auto missingFolder = liveFolder(QStringLiteral("missing"));
    const auto ofMissing = liveItem(missingFolder, QStringLiteral("b.jpg"));
    missingFolder->setIs_missing(true);
    const auto trashedFolder = liveFolder(QStringLiteral("trashed"));
    const auto ofTrashed = liveItem(trashedFolder, QStringLiteral("c.jpg"));
    trashedFolder->setIs_trashed(true);
    ASSERT_TRUE(context.save());
    managed->deleteSelf();
    present->deleteSelf();
    ofMissing->setActive(false);
    ofTrashed->setActive(false);

    const auto names = ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(context);
    ASSERT_TRUE(names);
    EXPECT_TRUE(names->contains(directory));
    EXPECT_EQ(names->size(), 2);
    ASSERT_TRUE(context.save());
    EXPECT_EQ(zqCount(context, {.entityName = ZQLibraryBaseItem::entityName()}), 3);
    // The deleted file of the live folder went to the trash, under its own name.
    EXPECT_TRUE(QDir(QFileInfo(presentVisible).path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("XDG_DATA_HOME/Trash/files/a.jpg"))));
    EXPECT_TRUE(QFileInfo::exists(ofMissing->itemURL()));
}

TEST_F(LibraryItem, PurgeLeavesFilesAloneThatWereNeverHidden)
{
    const auto item = liveItem(liveFolder(QStringLiteral("live")), QStringLiteral("seen.jpg"));
    const auto elsewhere = library.addReferencedImage(library.writeFile(QStringLiteral("own/b.jpg"), "b"));
    ASSERT_TRUE(context.save());
    for (const ZQRef<ZQLibraryImage> &each : {item, elsewhere}) {
        each->setActive(false); // as where hiding failed
        each->setBundleID({});
    }
    const auto names = ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(context);
    ASSERT_TRUE(names);
    EXPECT_EQ(*names, QStringList()) << "without a directory there is none to remove";
    ASSERT_TRUE(context.save());
    EXPECT_EQ(zqCount(context, {.entityName = ZQLibraryBaseItem::entityName()}), 0);
    EXPECT_EQ(ScratchLibrary::readFile(library.path(QStringLiteral("live/seen.jpg"))), QByteArray("seen.jpg"));
    EXPECT_EQ(ScratchLibrary::readFile(library.path(QStringLiteral("own/b.jpg"))), QByteArray("b"));
}

TEST_F(LibraryItem, SpansBeginAtTheirVeryMoment)
{
    using Items = ZQFetched<ZQLibraryBaseItem>;
    const QDateTime now = zqNow();
    const auto midnight = [](int daysAgo) { return QDate::currentDate().addDays(-daysAgo).startOfDay().toUTC(); };
    struct Case
    {
        const char *what;
        QDateTime start;
        Items (*items)(ZQManagedObjectContext &);
    };
    for (const Case &each :
         {Case{"hour", now.addSecs(-3600), &ZQLibraryBaseItem::libraryItemsForLastHourInManagedObjectContext},
          {"today", midnight(0), &ZQLibraryBaseItem::libraryItemsForTodayInManagedObjectContext},
          {"yesterday", midnight(1), &ZQLibraryBaseItem::libraryItemsForYesterdayInManagedObjectContext},
          {"week", now.addDays(-7), &ZQLibraryBaseItem::libraryItemsForLastWeekInManagedObjectContext}}) {
        SCOPED_TRACE(each.what);
        const auto inside = library.addImage(QStringLiteral("inside"));
        inside->setImport_date(each.start.addSecs(60));
        const auto outside = library.addImage(QStringLiteral("outside"));
        outside->setImport_date(each.start.addSecs(-60));
        const auto found = each.items(context);
        ASSERT_TRUE(found);
        EXPECT_TRUE(found->contains(inside));
        EXPECT_FALSE(found->contains(outside));
        inside->deletePermanently();
        outside->deletePermanently();
    }
}

TEST_F(LibraryItem, IsFoundByDigestAmongMoreThanOneStatementTakes)
{
    constexpr int count = 1001;
    QStringList digests;
    for (int i = 0; i < count; ++i) {
        const auto item = context.insertNewObject<ZQLibraryImage>();
        digests.append(QString::number(i));
        item->setSHA1(digests.last());
        item->setBundleID(QStringLiteral("same"));
    }
    ASSERT_TRUE(context.save());
    const auto found = ZQLibraryBaseItem::libraryItemsForSHA1s(digests, context);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), count);
    const auto last = ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("same"), context);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->SHA1(), digests.last());
}

TEST_F(LibraryItem, FindsItemsByDigestBundleAndDate)
{
    const QDateTime now = zqNow();
    const auto item = [&](const char *title, qint64 importedHoursAgo, qint64 modifiedHoursAgo) {
        auto made = library.addImage(QString::fromLatin1(title));
        made->setSHA1(QString::fromLatin1(title));
        made->setImport_date(now.addSecs(-3600 * importedHoursAgo));
        made->setModification_date(now.addSecs(-3600 * modifiedHoursAgo));
        return made;
    };
    const auto fresh = item("fresh", 0, 0);
    item("old", 2000, 2000);
    item("edited", 2000, 0);
    item("deleted", 0, 0)->setActive(false);
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsWithSHA1(QStringLiteral("old"), context)->size(), 1);
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsForSHA1s(
                  {QStringLiteral("old"), QStringLiteral("fresh"), QStringLiteral("none")}, context)
                  ->size(),
              2);
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsForBundleID(fresh->bundleID(), context).get(), fresh.get());
    EXPECT_FALSE(ZQLibraryBaseItem::libraryItemsForBundleID(QStringLiteral("none"), context));
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsForLastHourInManagedObjectContext(context)->size(), 2);
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsForYesterdayInManagedObjectContext(context)->size(), 2); // today's too
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsForLastWeekInManagedObjectContext(context)->size(), 2);
    // The end date bounds nothing.
    EXPECT_EQ(ZQLibraryBaseItem::libraryItemsFromDate(now.addYears(-1), now.addYears(-1), context)->size(), 3);
}

TEST_F(LibraryItem, UpdatesFromAChangedFileAndLeavesAnUnchangedOneAlone)
{
    const auto item = library.addImage(QStringLiteral("logo"), QStringLiteral("png"), "new bytes");
    item->updateItemData();
    EXPECT_EQ(item->SHA1(), QString::fromLatin1(zqSHA1OfFile(item->itemURL())));
    EXPECT_EQ(item->sort_date(), item->modification_date());
    EXPECT_TRUE(item->modification_date().isValid());
    EXPECT_EQ(item->thumbVersion(), 1);
    EXPECT_EQ(library.thumbRequests.size(), 1);
    item->updateItemData();
    EXPECT_EQ(item->thumbVersion(), 1);

    const auto live = liveItem(liveFolder(QStringLiteral("live")), QStringLiteral("before.jpg"));
    live->updateItemData();
    ASSERT_TRUE(QFile::rename(live->itemURL(), library.path(QStringLiteral("live/after.jpg"))));
    live->updateItemData();
    EXPECT_EQ(live->title(), QStringLiteral("after"));
    EXPECT_EQ(live->thumbVersion(), 1);
}

TEST_F(LibraryItem, AnOlderFileChangesNothingAndADeletedItemFollowsNone)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    const QDateTime later = zqNow().addDays(1);
    item->setModification_date(later);
    item->updateItemData();
    EXPECT_EQ(item->modification_date(), later);
    EXPECT_TRUE(item->SHA1().isEmpty());
    item->setActive(false);
    item->updateFileURLsForURL(library.writeFile(QStringLiteral("other.png"), "other"));
    EXPECT_EQ(item->title(), QStringLiteral("logo"));
}

TEST_F(LibraryItem, ASketchDocumentIsAsLargeAsItsPackage)
{
    auto item = context.insertNewObject<ZQLibrarySketch>();
    item->setBundleID(QStringLiteral("B"));
    item->setTitle(QStringLiteral("doc"));
    item->setOriginalExtension(QStringLiteral("sketch"));
    const QString base = QStringLiteral("Zelto.ztlibrary/Library/B.ztlibraryitem/doc.sketch/");
    library.writeFile(base + QStringLiteral("data"), QByteArray(10, 'x'));
    library.writeFile(base + QStringLiteral("QuickLook/Preview.png"), QByteArray(5, 'x'));
    EXPECT_EQ(item->byteSize(), 15);
    EXPECT_EQ(item->detailItemURL(), library.path(base + QStringLiteral("QuickLook/Preview.png")));
}

TEST_F(LibraryItem, TakesTagsAndCommentFromItsFileAndGivesThemBack)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    item->addTagsObject(ZQSidebarTag::addNewTagWithName(QStringLiteral("old"), context).get());
    EXPECT_FALSE(item->readOpenMetaFromDisk()); // unreadable: nothing changes
    library.fileTags.insert(item->itemURL(),
                            {{QStringLiteral("new"), QStringLiteral("old")}, QStringLiteral("note"), 4});
    EXPECT_TRUE(item->readOpenMetaFromDisk());
    EXPECT_EQ(item->itemTags().size(), 2);
    EXPECT_EQ(item->notes(), QStringLiteral("note"));
    EXPECT_EQ(item->rating(), 4);
    EXPECT_FALSE(item->readOpenMetaFromDisk());

    item->writeOpenMetaToDisk();
    ASSERT_EQ(library.written.size(), 1);
    EXPECT_EQ(library.written.first().path, item->itemURL());
    EXPECT_EQ(library.written.first().tags.size(), 2);
    EXPECT_EQ(library.written.first().comment, QStringLiteral("note"));
    EXPECT_EQ(library.written.first().rating, 4);
    EXPECT_EQ(item->duplicate()->rating(), 4);
    const QString copy = library.path(QStringLiteral("copy.png"));
    item->copyOpenMetaToPath(copy);
    EXPECT_EQ(library.written.last().path, copy);
    EXPECT_EQ(library.written.last().rating, 4);
    item->setRating(0);
    item->copyOpenMetaToPath(copy);
    EXPECT_EQ(library.written.last().rating, std::nullopt) << "what the copy brought stays";
    const qsizetype writes = library.written.size();
    library.tagsAreWritten = false;
    item->writeOpenMetaToDisk();
    EXPECT_EQ(library.written.size(), writes);
}

TEST_F(LibraryItem, ALiveFolderOutOfReachTakesItsItemsAlongButNotTheDeletedOnesBack)
{
    const auto folder = liveFolder(QStringLiteral("live"));
    const auto shown = liveItem(folder, QStringLiteral("a.jpg"));
    const auto deleted = liveItem(folder, QStringLiteral("b.jpg"));
    deleted->deleteSelf();
    folder->deactivateFolder();
    EXPECT_FALSE(folder->is_enabled());
    EXPECT_FALSE(shown->active());
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("live/a.jpg"))));
    folder->reActivateFolder();
    EXPECT_TRUE(shown->active());
    EXPECT_FALSE(deleted->active());
    EXPECT_EQ(ZQSidebarWatchedFolder::rootWatchedFoldersInManagedObjectContext(context)->size(), 1);
    EXPECT_EQ(folder->pathAndItemDictionary().value(library.path(QStringLiteral("live/a.jpg"))).get(), shown.get());
    EXPECT_EQ(folder->numberOfItems(), 1);
}

TEST_F(LibraryItem, BecomesJSONByAttributeName)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    item->setImport_date(QDateTime::fromMSecsSinceEpoch(1234567890123, Qt::UTC));
    item->setItemURLData("\x01\x02");
    item->setPixelTotal(qint64(1) << 40);
    const QJsonObject json = zqJSONObject(*item);
    EXPECT_EQ(json[QStringLiteral("title")].toString(), QStringLiteral("logo"));
    EXPECT_EQ(json[QStringLiteral("import_date")].toString(), QStringLiteral("2009-02-13T23:31:30.123Z"));
    EXPECT_EQ(json[QStringLiteral("itemURLData")].toString(), QStringLiteral("AQI="));
    EXPECT_EQ(json[QStringLiteral("pixelTotal")].toDouble(), 1099511627776.0);
    EXPECT_TRUE(json[QStringLiteral("active")].isBool());
    EXPECT_TRUE(json.contains(QStringLiteral("notes")) && json[QStringLiteral("notes")].isNull());
    EXPECT_TRUE(json[QStringLiteral("watchingFolder")].isNull());
    EXPECT_EQ(json[QStringLiteral("entity")].toString(), QStringLiteral("ZQLibraryImage"));
}

TEST_F(LibraryItem, SaysWhereItIsAndHowLargeItIs)
{
    const auto item = library.addImage(QStringLiteral("logo"), QStringLiteral("png"), "12345");
    const auto folder = liveFolder(QStringLiteral("live"));
    const auto project = context.insertNewObject<ZQSidebarProject>();
    const auto tag = context.insertNewObject<ZQSidebarTag>();
    const auto deletedTag = context.insertNewObject<ZQSidebarTag>();
    deletedTag->setActive(false);
    EXPECT_TRUE(item->sidebarItems().isEmpty());
    project->addItem(item.get());
    item->addTagsObject(tag.get());
    item->addTagsObject(deletedTag.get());
    EXPECT_EQ(item->sidebarItems(), (QList<ZQRef<ZQSidebarBaseItem>>{project, tag, deletedTag}));
    item->setWatchingFolder(folder.get());
    EXPECT_EQ(item->sidebarItems(), (QList<ZQRef<ZQSidebarBaseItem>>{project, tag, deletedTag, folder}));
    EXPECT_EQ(item->itemTagsSet(), QSet<ZQRef<ZQSidebarTag>>{tag});
    EXPECT_EQ(item->byteSize(), 5);
    const std::tuple<int, int, QString> sizes[] = {
        {3, 2, QString::fromUtf8("3 × 2")}, {1, 1, QString::fromUtf8("1 × 1")}, {0, 2, {}}, {3, 0, {}}, {-1, 2, {}}};
    for (const auto &[width, height, text] : sizes) {
        item->setPixelWidth(width);
        item->setPixelHeight(height);
        EXPECT_EQ(item->pixelSizeString(), text);
    }
    ASSERT_TRUE(QFile::remove(item->itemURL()));
    EXPECT_EQ(item->byteSize(), 0);
    item->setTitle({});
    EXPECT_EQ(item->byteSize(), 0) << "it has no place";
    ZQError error;
    EXPECT_TRUE(item->exportImageRep(&error).isNull());
    EXPECT_FALSE(error.isNull());
}

TEST_F(LibraryItem, AFileWithoutOneOfTagsCommentAndRatingLeavesThatAsItWas)
{
    // Reads what each case has; nothing is there for the others.
    struct Reading : ScratchLibrary
    {
        std::optional<QStringList> userTagsOfFile(const QString &) override { return readTags; }
        std::optional<QString> commentOfFile(const QString &) override { return readComment; }
        std::optional<int> ratingOfFile(const QString &) override { return readRating; }
        std::optional<QStringList> readTags;
        std::optional<QString> readComment;
        std::optional<int> readRating;
    } reading;
    const ZQFileTags present{{QStringLiteral("old")}, QStringLiteral("old"), 3};
    for (int bits = 0; bits < 8; ++bits) {
        SCOPED_TRACE(bits);
        reading.readTags = bits & 1 ? std::optional(QStringList{QStringLiteral("new")}) : std::nullopt;
        reading.readComment = bits & 2 ? std::optional(QStringLiteral("new")) : std::nullopt;
        reading.readRating = bits & 4 ? std::optional(1) : std::nullopt;
        const auto tags = reading.tagsAfterReadingFile(QStringLiteral("/x"), present);
        EXPECT_EQ(tags.has_value(), bits != 0);
        if (tags) {
            EXPECT_EQ(tags->tags, bits & 1 ? *reading.readTags : present.tags);
            EXPECT_EQ(tags->comment, bits & 2 ? QStringLiteral("new") : present.comment);
            EXPECT_EQ(tags->rating, bits & 4 ? 1 : 3);
        }
    }
    ZQLibraryEnvironment::setCurrent(nullptr);
    ZQLibraryEnvironment &none = ZQLibraryEnvironment::current();
    EXPECT_TRUE(none.libraryDirectory().isEmpty() && none.libraryPathForFilePath(QStringLiteral("/x")).isEmpty());
    EXPECT_FALSE(none.writesTagsToFiles() || none.tagsAfterReadingFile(QStringLiteral("/x"), present));
    ZQLibraryEnvironment::setCurrent(&library);
}

TEST_F(LibraryItem, DescribesItsPlaces)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->setTitle(QStringLiteral("Work"));
    project->addItem(item.get());
    EXPECT_TRUE(item->description().endsWith(QStringLiteral("\n\nWork: 0")));
}

} // namespace
