// What items do to their files: places, renames, copies, deletion, purge.

#include "Kit/Files/ZQPersistentURL.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQLibrarySVG.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Models/LibraryItemFixture.h"

#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

using LibraryItemFiles = LibraryItemFixture;

TEST_F(LibraryItemFiles, AManagedItemLiesInItsDirectoryByTitleAndExtension)
{
    const auto item = library.addImage(QStringLiteral("logo"));
    EXPECT_EQ(item->itemURL(), library.libraryDirectory() + QLatin1Char('/') + item->bundleID() +
                                   QStringLiteral(".ztlibraryitem/logo.png"));
    EXPECT_EQ(item->detailItemURL(), item->itemURL());
    EXPECT_TRUE(item->thumbURL().isEmpty());
    item->setOriginalExtension({});
    EXPECT_TRUE(item->itemURL().isEmpty());
}

TEST_F(LibraryItemFiles, RenamingMovesFileAndThumbnail)
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

TEST_F(LibraryItemFiles, RefusesTitlesThatNoFileCanHave)
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

TEST_F(LibraryItemFiles, TheLongestTitleIsTheOneWhoseThumbnailStillHasANameWhileItMoves)
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

TEST_F(LibraryItemFiles, AFileWithTheLongestNameCanBeRenamed)
{
    const auto item = liveItem(liveFolder(QStringLiteral("live")), QString(251, u'x') + QStringLiteral(".jpg"));
    EXPECT_TRUE(item->setNewTitle(QStringLiteral("short")));
    EXPECT_EQ(QDir(library.path(QStringLiteral("live"))).entryList(QDir::Files), QStringList{"short.jpg"});
}

TEST_F(LibraryItemFiles, ARenameOntoAnotherFileLeavesBothAsTheyWere)
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

TEST_F(LibraryItemFiles, ADuplicateHasItsOwnFilesAndTagsButNoProject)
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

TEST_F(LibraryItemFiles, CopiesEndWhereTheyAreNotWantedAnyMore)
{
    const QList<ZQRef<ZQLibraryBaseItem>> items = {library.addImage(QStringLiteral("a")),
                                                   library.addImage(QStringLiteral("b"))};
    int asked = 0;
    EXPECT_EQ(ZQLibraryBaseItem::duplicatesOf(items, [&asked] { return asked++ == 0; }).size(), 1);
}

TEST_F(LibraryItemFiles, DeletingALiveItemHidesItsFileAndRestoringShowsIt)
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

TEST_F(LibraryItemFiles, WhatItDoesToItsFileReachesOneThatWasMovedFarAway)
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

    const auto [purged, ofPurged] = moved(QStringLiteral(".0B5F3F3C-1D7E-4A6B-9C55-6B2E8F0D1A47.jpg"));
    EXPECT_TRUE(purged->deletePermanently());
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

TEST_F(LibraryItemFiles, NewsOfItsMovedFileComeAgainUntilTheyAreUsed)
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

TEST_F(LibraryItemFiles, DeletionIsAnnouncedWhenIdle)
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

TEST_F(LibraryItemFiles, PurgeRemovesInactiveItemsButKeepsThoseOfAFolderOutOfReach)
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

TEST_F(LibraryItemFiles, PurgeLeavesFilesAloneThatWereNeverHidden)
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

TEST_F(LibraryItemFiles, PurgeKeepsWhatItMayNotOrCannotRemove)
{
    const auto off = liveFolder(QStringLiteral("off"));
    const auto ofOff = liveItem(off, QStringLiteral("off.jpg"));
    const auto deletedInOff = liveItem(off, QStringLiteral("deleted.jpg"));
    const auto hidden = liveItem(liveFolder(QStringLiteral("live")), QStringLiteral("mine.jpg"));
    const auto stuck = liveItem(liveFolder(QStringLiteral("stuck")), QStringLiteral("stuck.jpg"));
    const auto gone = liveFolder(QStringLiteral("gone"));
    const auto below = liveFolder(QStringLiteral("below"));
    gone->appendChild(below.get());
    const auto belowGone = liveItem(below, QStringLiteral("below.jpg"));
    ASSERT_TRUE(context.save());
    gone->setIs_missing(true);
    gone->deactivateFolder();
    deletedInOff->deleteSelf();
    off->deactivateFolder();
    const QString byHand = library.path(QStringLiteral("live/.mine.jpg"));
    ASSERT_TRUE(QFile::rename(library.path(QStringLiteral("live/mine.jpg")), byHand));
    hidden->setActive(false); // as synchronising does
    const auto purge = [&] {
        EXPECT_TRUE(ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(context));
        EXPECT_TRUE(context.save());
        return zqCount(context, {.entityName = ZQLibraryBaseItem::entityName()});
    };
    const auto behind = liveFolder(QStringLiteral("behind"));
    liveItem(behind, QStringLiteral("back.jpg"))->setActive(false);
    liveItem(behind, QStringLiteral("deleted.jpg"))->deleteSelf();
    behind->setLastSyncDate({});
    EXPECT_EQ(purge(), 4) << "what a person deleted is gone, and what is not there for the library";
    behind->setLastSyncDate(QDateTime::currentDateTimeUtc());
    EXPECT_EQ(ScratchLibrary::readFile(byHand), QByteArray("mine.jpg")) << "a person hid it";
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("off/off.jpg"))));
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("XDG_DATA_HOME/Trash/files/deleted.jpg"))));

    const QString trash = library.path(QStringLiteral("XDG_DATA_HOME/Trash"));
    QDir(trash).removeRecursively();
    library.writeFile(QStringLiteral("XDG_DATA_HOME/Trash"), "no folder");
    stuck->deleteSelf();
    EXPECT_EQ(purge(), 3) << "its file is still there";
    EXPECT_TRUE(QFileInfo(stuck->findItemURL()).fileName().startsWith(u'.')) << "and still deleted";
    ASSERT_TRUE(QFile::remove(trash));
    EXPECT_EQ(purge(), 2);
    EXPECT_TRUE(QFileInfo::exists(trash + QStringLiteral("/files/stuck.jpg")));

    off->setActive(false); // removed from the sidebar
    EXPECT_EQ(purge(), 1);
    EXPECT_EQ(belowGone->watchingFolder(), below) << "it returns with the place";
    EXPECT_TRUE(QFileInfo::exists(library.path(QStringLiteral("off/off.jpg"))));
}

} // namespace
