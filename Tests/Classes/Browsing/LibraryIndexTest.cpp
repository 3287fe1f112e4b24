#include "Classes/Browsing/Index/LibraryIndex.h"

#include "Classes/Browsing/Index/ListOrder.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Classes/Browsing/LibraryIndexFixture.h"

#include <QSignalSpy>

void LibraryIndexTest::expectTheStoresAnswers(LibraryIndex &of)
{
    const QList<ZQFetchRequest> requests = contents();
    QList<ZQRelatedIDs> expected;
    ZQManagedObjectContext context(library.coordinator());
    for (const ZQFetchRequest &request : requests) {
        expected.append(stored(context, request));
    }
    const auto reading = current(of);
    for (qsizetype i = 0; i < requests.size(); ++i) {
        const auto rows = reading.rows(requests[i]);
        ASSERT_TRUE(rows) << requests[i].predicate.predicateFormat().toStdString();
        EXPECT_EQ(reading.ids(*rows), expected[i]) << requests[i].predicate.predicateFormat().toStdString();
    }
}

TEST_F(LibraryIndexTest, AnswersWaitForWhatTheyNeedOfANewIndex)
{
    fill(3000);
    ZQFetchRequest request = contents().first();
    request.sortDescriptors =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Title, true, ZQListRows::LibraryItems);
    const ZQRelatedIDs expected = stored(library.context(), request);
    for (int round = 0; round < 10; ++round) {
        LibraryIndex fresh(library.coordinator());
        const auto answer = fresh.answer(request);
        ASSERT_TRUE(answer.has_value()) << "by title, though that comes last";
        EXPECT_EQ(answer->ids, expected.ids);
    }
    LibraryIndex fresh(library.coordinator());
    const auto cancellation = std::make_shared<ZQCancellation>();
    cancellation->cancel();
    const ZQCancellation::Scope scope(cancellation);
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SELF == nil AND sourceURL == nil"));
    EXPECT_FALSE(fresh.answer(request).has_value()) << "given up";
}

TEST_F(LibraryIndexTest, AnswersWhatTheStoreAnswersForEverySidebarItemSearchAndOrder)
{
    fill(300);
    expectTheStoresAnswers(index);
    ZQManagedObjectContext context(library.coordinator());
    for (const QString &format : searches()) {
        const ZQPredicate search = ZQPredicate::predicateWithFormat(format);
        ZQFetchRequest request = homes.first()->contentRequest();
        request.predicate = ZQPredicate::andPredicate({request.predicate, search});
        const ZQRelatedIDs expected = stored(context, request);
        const ZQFetchRequest all{.entityName = ZQLibraryBaseItem::entityName(),
                                 .predicate =
                                     ZQPredicate::predicateWithFormat(QString(format).remove(QStringLiteral("item.")))};
        const ZQRelatedIDs expectedItems = stored(context, all);
        const auto reading = current(index);
        const auto both = reading.rows({homes.first()->contentRequest(), {.entityName = all.entityName}}, search);
        ASSERT_TRUE(both) << format.toStdString();
        EXPECT_EQ(reading.ids(both->at(0)), expected) << format.toStdString();
        EXPECT_EQ(reading.ids(both->at(1)), expectedItems) << format.toStdString();
        EXPECT_EQ(reading.ids(*reading.rows(all)), expectedItems) << format.toStdString();
        EXPECT_FALSE(expectedItems.ids.isEmpty() || expectedItems.ids.size() == 300)
            << "says little: " << format.toStdString();
    }
    for (int value = 0; value <= 8; ++value) {
        for (const bool isAscending : {true, false}) {
            SCOPED_TRACE(testing::Message() << "sort value " << value << (isAscending ? " up" : " down"));
            for (ZQFetchRequest request :
                 {homes.first()->contentRequest(), contents().first(), tags.first()->contentRequest()}) {
                const ZQListRows kind = zqListRowsOfEntity(request.entityName);
                const auto descriptors =
                    ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue(value), isAscending, kind);
                if (kind == ZQListRows::LibraryItems && value == 0) {
                    continue;
                }
                request.sortDescriptors = descriptors;
                const ZQRelatedIDs expected = stored(context, request);
                const auto reading = current(index);
                EXPECT_EQ(reading.ids(*reading.rows(request)), expected);
                ZQFetchRequest byExtension = request;
                byExtension.sortDescriptors.prepend({zqItemKeyPath(kind, QStringLiteral("extension"))});
                EXPECT_EQ(reading.ids(*reading.rows(byExtension)), stored(context, byExtension));
                request.fetchOffset = 3;
                request.fetchLimit = 5;
                EXPECT_EQ(reading.ids(*reading.rows(request)).ids, expected.ids.mid(3, 5));
                request.fetchOffset = request.fetchLimit = 0;
            }
        }
    }
}

// The index against the items themselves, in each order of a list's columns.
void LibraryIndexTest::compareColumnOrders(const std::vector<ZQSortValue> &orders)
{
    ZQManagedObjectContext context(library.coordinator());
    const auto fetch = [&](const ZQFetchRequest &request) { return std::optional(stored(context, request)); };
    for (const ZQSortValue order : orders) {
        for (const bool isAscending : {true, false}) {
            for (ZQFetchRequest request : {homes.first()->contentRequest(), contents().first()}) {
                SCOPED_TRACE(testing::Message() << int(order) << isAscending << request.entityName.toStdString());
                const ZQListRows kind = zqListRowsOfEntity(request.entityName);
                request.sortDescriptors = ListOrder::descriptors(order, isAscending, kind);
                for (const bool isGrouped : {false, true}) {
                    if (isGrouped) {
                        request.sortDescriptors.prepend({zqItemKeyPath(kind, QStringLiteral("mainColor"))});
                    }
                    const auto expected = ListOrder::needsItems(request.sortDescriptors)
                                              ? ListOrder::rows(request, context, fetch)
                                              : fetch(request);
                    const auto reading = current(index);
                    const auto rows = reading.rows(request);
                    ASSERT_TRUE(rows && expected);
                    EXPECT_GT(expected->ids.size(), 50);
                    EXPECT_EQ(reading.ids(*rows), *expected);
                }
            }
        }
    }
}

TEST_F(LibraryIndexTest, OrdersByColumnsOfAListAsTheItemsThemselvesSay)
{
    const Item label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
    for (const char *name : {"Final", "draft 10", "DRAFT 2", "", "ärmel", "b", "B", "z"}) { // some only differ in case
        tags.append(add<ZQSidebarTag>(QString::fromUtf8(name), label));
        tags.last()->setIs_Tag(true);
    }
    tags.last()->setActive(false);
    fill(250);
    compareColumnOrders({ListOrder::byKind, ListOrder::byRating, ListOrder::byTags, ListOrder::byHue});
}

TEST_F(LibraryIndexTest, OrdersByTagsAlsoWhereTheyAreMoreThanANumberHasRoomForFourOf)
{
    tags.clear();
    for (int i = 0; i < 66'000; ++i) {
        const auto tag = library.context().insertNewObject<ZQSidebarTag>();
        tag->setTitle(QStringLiteral("tag %1").arg(i, 6, 10, QLatin1Char('0')));
        tag->setIs_Tag(true);
        tag->setActive(true);
        if (i % 6'000 == 0 || i > 65'995) {
            tags.append(tag);
        }
    }
    fill(250);
    compareColumnOrders({ListOrder::byTags});
}

TEST_F(LibraryIndexTest, KnowsWhatPicturesLookLikeAsTheirItemsSay)
{
    fill(200);
    const auto reading = current(index);
    int pictures = 0;
    for (const auto &item : items) {
        const auto hash = ZQPictureHash::fromBytes(item->pictureHash());
        EXPECT_EQ(reading.pictureHash(item->objectID()), hash);
        pictures += hash && item->active() ? 1 : 0;
    }
    EXPECT_EQ(reading.pictures(reading.active()).items.size(), size_t(pictures));
    EXPECT_FALSE(reading.pictureHash({}).has_value());
    const auto similar = reading.similar(picture(0), 10, 2 * apart);
    ASSERT_EQ(similar.size(), 10U);
    for (size_t i = 0; i < similar.size(); ++i) {
        const ZQObjectID id = similar[i].first;
        const int distance = similar[i].second;
        const auto item = std::find_if(items.begin(), items.end(),
                                       [&id](const auto &candidate) { return candidate->objectID() == id; });
        ASSERT_TRUE(item != items.end() && (*item)->active());
        EXPECT_EQ(ZQPictureHash::fromBytes((*item)->pictureHash())->distance(picture(0)), distance);
        EXPECT_TRUE(i == 0 || similar[i - 1].second <= distance);
    }
    // As far as a store can tell without an index.
    ZQError error;
    ZQManagedObjectContext context(library.coordinator());
    const auto stored = PictureSet::ofStore(context, &error);
    ASSERT_TRUE(stored.has_value()) << qPrintable(error.localizedDescription());
    EXPECT_EQ(stored->nearest(picture(0).words, 10, 2 * apart), similar);
}

TEST_F(LibraryIndexTest, LeavesToTheStoreWhatItHasNoColumnFor)
{
    fill(20);
    const auto reading = current(index);
    const auto request = [](const char *format, QString entity = ZQLibraryBaseItem::entityName()) {
        return ZQFetchRequest{.entityName = std::move(entity),
                              .predicate = ZQPredicate::predicateWithFormat(QString::fromLatin1(format))};
    };
    EXPECT_FALSE(reading.rows(request("webURL == 'x'")));
    EXPECT_FALSE(reading.rows(request("notes == 'x'"))) << "notes are folded";
    EXPECT_TRUE(reading.rows(request("title == 'x'")));
    EXPECT_FALSE(reading.rows(request("order == 1", ZQProjectItem::entityName())));
    EXPECT_FALSE(reading.rows(request("title != 'x'", ZQSidebarBaseItem::entityName())));
    ZQFetchRequest members = homes.first()->contentRequest();
    members.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"),
                                                         {QVariant::fromValue(homes.first()->objectID())});
    EXPECT_FALSE(reading.rows(members)) << "memberships of no item are the store's";
    ZQFetchRequest sorted = request("active == YES");
    sorted.sortDescriptors = {{QStringLiteral("webURL")}};
    EXPECT_FALSE(reading.rows(sorted));
}

TEST_F(LibraryIndexTest, FollowsEditsAndIsAsIfBuiltAnew)
{
    fill(60);
    ZQManagedObjectContext &context = library.context();
    for (int round = 0; round < 40; ++round) {
        for (int step = 0; step < 5 && !items.isEmpty(); ++step) {
            const auto item = items[qsizetype(random() % size_t(items.size()))];
            switch (random() % 6) {
            case 0:
                addItem();
                break;
            case 1:
                items.removeOne(item);
                context.deleteObject(item.get());
                break;
            case 2:
                homes[qsizetype(random() % size_t(homes.size()))]->addItem(item.get(), quint32(random() % 3));
                break;
            case 3:
                homes[qsizetype(random() % size_t(homes.size()))]->removeItem(item.get());
                break;
            default:
                change(*item);
            }
        }
        if (round % 8 == 3) {
            context.rollback();
            items.removeIf([&](const auto &each) { return !each->managedObjectContext(); });
        } else if (round % 8 == 5) {
            const Item tag = tags.takeFirst();
            context.deleteObject(tag.get());
            tags.append(add<ZQSidebarTag>(QStringLiteral("tag %1").arg(round),
                                          ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context)));
        } else if (round % 8 == 7) {
            const Item home = homes.takeFirst();
            context.deleteObject(home.get());
            homes.append(addProject(QStringLiteral("Project %1").arg(round)));
        }
        ASSERT_TRUE(context.save());
        expectTheStoresAnswers(index);
    }
    // Of what only announcements keep, nothing may differ from a fresh look.
    LibraryIndex anew(library.coordinator());
    const auto fresh = current(anew);
    const auto followed = current(index);
    const ZQRowSet all = followed.items();
    EXPECT_EQ(all.count(), fresh.items().count());
    for (const QString &format : searches()) {
        const ZQFetchRequest request{.entityName = ZQLibraryBaseItem::entityName()};
        const ZQPredicate search = ZQPredicate::predicateWithFormat(format);
        EXPECT_EQ(followed.ids(followed.rows({request}, search)->front()),
                  fresh.ids(fresh.rows({request}, search)->front()));
    }
    for (const IndexFacet facet : {IndexFacet::Tag, IndexFacet::Project, IndexFacet::LiveFolder, IndexFacet::Rating}) {
        const auto values = [](const std::vector<IndexCount> &counts) {
            QList<std::pair<QVariant, qint64>> result;
            for (const IndexCount &count : counts) {
                result.append({count.value, count.count});
            }
            std::sort(result.begin(), result.end(),
                      [](const auto &a, const auto &b) { return a.first.toString() < b.first.toString(); });
            return result;
        };
        EXPECT_EQ(values(followed.counts(facet, followed.active(), {})),
                  values(fresh.counts(facet, fresh.active(), {})));
    }
}

TEST_F(LibraryIndexTest, TakesInWhatOtherContextsSavedAndTellsOfIt)
{
    fill(10);
    EXPECT_EQ(current(index).items().count(), 10U);
    QSignalSpy changed(&index, &LibraryIndex::changed);
    QCoreApplication::processEvents();
    changed.clear();
    ZQManagedObjectContext other(library.coordinator());
    const auto telling = other.observeDidSave([this](const ZQContextDidSave &saved) { index.take(saved); });
    const auto added = other.insertNewObject<ZQLibraryImage>();
    added->setTitle(QStringLiteral("elsewhere"));
    const auto tag = other.insertNewObject<ZQSidebarTag>();
    tag->setTitle(QStringLiteral("new tag"));
    added->addTagsObject(tag.get());
    ASSERT_TRUE(other.save());
    const auto reading = current(index);
    const ZQFetchRequest request{.entityName = ZQLibraryBaseItem::entityName(),
                                 .predicate =
                                     ZQPredicate::predicateWithFormat(QStringLiteral("ANY tags.title == 'new tag'"))};
    EXPECT_EQ(reading.ids(*reading.rows(request)).ids, QList<ZQObjectID>{added->objectID()});
    QCoreApplication::processEvents();
    EXPECT_GE(changed.count(), 1);
}

TEST_F(LibraryIndexTest, CountsAsOneByOne)
{
    fill(250);
    ZQFetchRequest request = contents().first();
    request.sortDescriptors =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Title, true, ZQListRows::LibraryItems);
    ZQManagedObjectContext context(library.coordinator());
    const auto sorted = *context.fetch<ZQLibraryBaseItem>(request);
    const SizeClasses::Limits sizes;
    const QString vectors = QStringLiteral("{'ai', 'sketch', 'svg'}");
    // How many of the list a condition picks.
    const auto picked = [&](const QString &format) {
        QList<ZQObjectID> ids;
        const ZQPredicate predicate = ZQPredicate::predicateWithFormat(format);
        for (const auto &item : sorted) {
            if (predicate.evaluateWithObject(item.get())) {
                ids.append(item->objectID());
            }
        }
        return ids;
    };
    const auto edges = [](const char *format, qint32 upper, qint32 lower) {
        return QString::fromLatin1(format).arg(upper).arg(lower);
    };
    const char *between = "pixelWidth <= %1 AND pixelHeight <= %1 AND (pixelWidth > %2 OR pixelHeight > %2)";
    const std::pair<const char *, QString> classes[] = {
        {"none", QStringLiteral("(pixelWidth <= 0 OR pixelHeight <= 0) && NOT (extension IN %1)").arg(vectors)},
        {"icon", QStringLiteral("pixelWidth <= 32 AND pixelHeight <= 32 AND pixelWidth > 0 AND pixelHeight > 0")},
        {"small", edges(between, 128, 32)},
        {"medium", edges(between, 512, 128)},
        {"large", QStringLiteral("pixelWidth >= 512 OR pixelHeight >= 512")},
        {"vector", QStringLiteral("extension IN %1").arg(vectors)}};

    const auto reading = current(index);
    const ZQRowSet active = reading.active();
    const auto countsOf = [&](IndexFacet facet) { return reading.counts(facet, active, sizes); };
    EXPECT_EQ(countsOf(IndexFacet::SizeClass).size(), std::size(classes));
    EXPECT_GE(countsOf(IndexFacet::MainColor).size(), 11U);
    for (const IndexCount &count : countsOf(IndexFacet::MainColor)) {
        EXPECT_EQ(count.count, picked(count.value.isValid() ? QStringLiteral("mainColor == %1").arg(count.value.toInt())
                                                            : QStringLiteral("mainColor == nil"))
                                   .size());
    }
    for (const IndexCount &count : countsOf(IndexFacet::SizeClass)) {
        const auto named = std::find_if(std::begin(classes), std::end(classes), [&](const auto &each) {
            return count.value.toString() == QLatin1StringView(each.first);
        });
        ASSERT_NE(named, std::end(classes));
        EXPECT_EQ(count.count, picked(named->second).size());
    }
    for (const IndexCount &count : countsOf(IndexFacet::Rating)) {
        EXPECT_EQ(count.count, picked(count.value.isValid() ? QStringLiteral("rating == %1").arg(count.value.toInt())
                                                            : QStringLiteral("rating == nil"))
                                   .size());
    }
    const auto countOf = [&](IndexFacet facet, const Item &item) {
        for (const IndexCount &count : countsOf(facet)) {
            if (count.value.value<ZQObjectID>() == item->objectID()) {
                return count.count;
            }
        }
        return qint64(0);
    };
    for (const Item &tag : tags) {
        EXPECT_EQ(countOf(IndexFacet::Tag, tag), tag->numberOfItems());
    }
    for (const Item &home : homes) {
        EXPECT_EQ(countOf(IndexFacet::Project, home), home->numberOfItems());
    }
    for (const Item &live : watched) {
        EXPECT_EQ(countOf(IndexFacet::LiveFolder, live), live->numberOfItems());
    }
    QStringList repeated = reading.repeatedDigests(active);
    repeated.sort();
    EXPECT_EQ(repeated, (QStringList{digests[4], digests[3], digests[2], digests[5]})) << "all but \"0\"";
}

TEST(LibraryIndexDamage, IsNotReadyWhenTheStoreCannotBeReadAndTriesAgain)
{
    ScratchLibrary library;
    const auto connection = library.coordinator()->newConnection();
    const auto rename = [&](const char *from, const char *to) {
        ASSERT_TRUE(connection->execute(QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                                            .arg(QLatin1StringView(from), QLatin1StringView(to))));
    };
    rename("ZQProjectItem", "away");
    LibraryIndex index(library.coordinator());
    EXPECT_FALSE(index.waitUntilCurrent());
    EXPECT_FALSE(index.waitUntilOrdered());
    EXPECT_FALSE(index.isReady());
    EXPECT_FALSE(index.read());
    rename("away", "ZQProjectItem");
    index.follow(library.context());
    library.context().insertNewObject<ZQLibraryImage>()->setTitle(QStringLiteral("later"));
    ASSERT_TRUE(library.context().save());
    EXPECT_TRUE(index.waitUntilCurrent());
    EXPECT_EQ(index.read()->items().count(), 1U);
}
