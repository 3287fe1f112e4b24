#include "Kit/Files/ZQFileCopy.h"
#include "Models/DataModel/ZQLibrarySketch.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Models/LibraryItemFixture.h"

#include <QFileInfo>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

using LibraryItem = LibraryItemFixture;

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

TEST_F(LibraryItem, AreReadTogetherAndWithoutThoseThatHaveNoRow)
{
    QList<ZQRef<ZQLibraryImage>> images;
    for (const char *title : {"first", "gone", "last"}) {
        images.append(library.addImage(QLatin1StringView(title)));
    }
    ASSERT_TRUE(context.save());
    QList<ZQObjectID> ids;
    for (const auto &image : images) {
        ids.append(image->objectID());
    }
    ZQManagedObjectContext other(library.coordinator());
    context.deleteObject(images[1].get());
    ASSERT_TRUE(context.save());
    QStringList titles;
    for (const auto &item : ZQLibraryBaseItem::itemsWithIDs(ids, other)) {
        titles.append(item->title());
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("first"), QStringLiteral("last")}));
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

    auto single = context.insertNewObject<ZQLibrarySketch>();
    single->setBundleID(QStringLiteral("C"));
    single->setTitle(QStringLiteral("one"));
    single->setOriginalExtension(QStringLiteral("sketch"));
    const QString file =
        library.writeFile(QStringLiteral("Zelto.ztlibrary/Library/C.ztlibraryitem/one.sketch"), QByteArray(12, 'x'));
    EXPECT_EQ(single->byteSize(), 12);
    EXPECT_EQ(single->detailItemURL(), file);
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
    EXPECT_TRUE(item->modification_date().isValid());
    EXPECT_EQ(item->attributes_modification_date(), item->modification_date()) << "what is known of the file is as new";
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

TEST_F(LibraryItem, SaysWhatItHasOnceItTookInTheTagsOfItsFile)
{
    struct Told : ScratchLibrary
    {
        void didTakeInTagsOfFile(const QString &bundleID, const QString &path, const ZQFileTags &tags) override
        {
            places.append(bundleID + u' ' + path);
            taken.append(tags);
        }
        QStringList places;
        QList<ZQFileTags> taken;
    } told;
    const auto item = told.addImage(QStringLiteral("logo"));
    item->setNotes(QStringLiteral("old"));
    item->addTagsObject(ZQSidebarTag::addNewTagWithName(QStringLiteral("old"), told.context()).get());
    for (const bool isFirst : {true, false}) {
        SCOPED_TRACE(isFirst);
        const QString text = isFirst ? QStringLiteral("first") : QStringLiteral("second");
        told.fileTags.insert(item->itemURL(), {{text}, text, isFirst ? 1 : 2});
        EXPECT_TRUE(item->readOpenMetaFromDisk());
        ASSERT_EQ(told.taken.size(), 1);
        const ZQFileTags taken = told.taken.takeFirst();
        EXPECT_EQ(taken.tags, QStringList{text});
        EXPECT_EQ(taken.comment, text);
        EXPECT_EQ(taken.rating, isFirst ? 1 : 2);
        EXPECT_EQ(taken.isFirst, isFirst);
        EXPECT_EQ(told.places.takeFirst(), item->bundleID() + u' ' + item->itemURL());
        EXPECT_FALSE(item->readOpenMetaFromDisk());
        EXPECT_TRUE(told.taken.isEmpty()) << "as it was before";
        told.context().save();
    }
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
