#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

ZQFetchRequest requestFor(const char *entity, const QString &sortKey = {})
{
    ZQFetchRequest request{QString::fromLatin1(entity)};
    if (!sortKey.isEmpty()) {
        request.sortDescriptors = {{sortKey}};
    }
    return request;
}

} // namespace

TEST(ZQStoreRoundTrip, EveryTypeComesBackAndNullStaysNull)
{
    TestStore store;
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(-1'234'567'891'011, Qt::UTC);
    ZQObjectID fullID;
    ZQObjectID emptyID;
    {
        ZQManagedObjectContext context(store.coordinator());
        const auto full = context.insertNewObject<TestDocument>();
        full->setTitle(QStringLiteral("Grüße \U0001F600 \"quoted\" 'x'"));
        full->setFlag(false);
        full->setSmall(-32768);
        full->setMedium(std::numeric_limits<qint32>::min());
        full->setLarge(std::numeric_limits<qint64>::max());
        full->setRatio(0.1F);
        full->setExact(1.0 / 3.0);
        full->setDate(date);
        full->setBlob(QByteArray("\0\1\xFFz", 4));
        const auto empty = context.insertNewObject<TestDocument>();
        empty->setTitle(QLatin1String(""));
        empty->setBlob(QByteArray(""));
        empty->setValueForKey({}, QStringLiteral("medium"));
        ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
        fullID = full->objectID();
        emptyID = empty->objectID();
        EXPECT_FALSE(fullID.isTemporary());
    }
    ZQManagedObjectContext context(store.coordinator());
    const auto full = zqCast<TestDocument>(context.objectWithID(fullID));
    ASSERT_TRUE(full);
    EXPECT_TRUE(full->isFault());
    EXPECT_EQ(full->title(), QStringLiteral("Grüße \U0001F600 \"quoted\" 'x'"));
    EXPECT_FALSE(full->isFault());
    EXPECT_FALSE(full->flag());
    EXPECT_EQ(full->small(), -32768);
    EXPECT_EQ(full->medium(), std::numeric_limits<qint32>::min());
    EXPECT_EQ(full->large(), std::numeric_limits<qint64>::max());
    EXPECT_EQ(full->ratio(), 0.1F);
    EXPECT_EQ(full->exact(), 1.0 / 3.0);
    EXPECT_EQ(full->date(), date);
    EXPECT_EQ(full->date().timeSpec(), Qt::UTC);
    EXPECT_EQ(full->blob(), QByteArray("\0\1\xFFz", 4));
    const auto empty = zqCast<TestDocument>(context.objectWithID(emptyID));
    EXPECT_FALSE(empty->title().isNull());
    EXPECT_TRUE(empty->title().isEmpty());
    EXPECT_FALSE(empty->blob().isNull());
    EXPECT_TRUE(empty->author().isNull());
    EXPECT_FALSE(empty->date().isValid());
    EXPECT_TRUE(empty->mediumIsNull());
    EXPECT_FALSE(empty->valueForKey(QStringLiteral("small")).isValid());
    EXPECT_TRUE(empty->flag()) << "the model's default";
}

TEST(ZQStoreRoundTrip, WhatAClassHasNoPlaceForStaysInTheStore)
{
    TestStore store(QByteArray(testModelJSON)
                        .replace("{ \"name\": \"weight\",",
                                 "{ \"name\": \"mood\", \"type\": \"string\" }, { \"name\": \"weight\","));
    ZQManagedObjectContext context(store.coordinator());
    const auto tag = context.insertNewObject<TestTag>();
    tag->setName(QStringLiteral("tag"));
    ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
    ZQSQLiteConnection &connection = *ZQObjectAccess::connection(context);
    EXPECT_EQ(connection.value(QStringLiteral("SELECT mood IS NULL FROM TestTag")).toInt(), 1);
    ASSERT_TRUE(connection.execute(QStringLiteral("UPDATE TestTag SET mood = 'good'")));
    tag->setName(QStringLiteral("other"));
    ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(connection.value(QStringLiteral("SELECT mood || name FROM TestTag")).toString(),
              QStringLiteral("goodother"));
}

TEST(ZQStoreRoundTrip, KeyValueAccessConvertsAndRefusesWhatDoesNotFit)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const auto document = context.insertNewObject<TestDocument>();
    struct
    {
        const char *key;
        QVariant given;
        QVariant expected;
    } const cases[] = {
        {"title", QStringLiteral("a"), QStringLiteral("a")},
        {"title", 5, QStringLiteral("5")},
        {"small", 7, 7},
        {"small", 70000, 7}, // too large: unchanged
        {"medium", QStringLiteral("12"), 12},
        {"medium", QStringLiteral("x"), 12},
        {"flag", 0, false},
        {"exact", 3, 3.0},
        {"small", QVariant(), QVariant()},
        {"nothing", 1, QVariant()},
    };
    for (const auto &testCase : cases) {
        document->setValueForKey(testCase.given, QLatin1String(testCase.key));
        EXPECT_EQ(document->valueForKey(QLatin1String(testCase.key)), testCase.expected) << testCase.key;
    }
}

TEST(ZQStoreRoundTrip, AnIdentifierLeadsToOneObjectInAContext)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    auto folder = context.insertNewObject<TestFolder>();
    const ZQObjectID temporary = folder->objectID();
    EXPECT_TRUE(temporary.isTemporary());
    EXPECT_EQ(context.objectWithID(temporary), folder);
    EXPECT_EQ(context.objectWithURIRepresentation(temporary.URIRepresentation(store.coordinator()->storeUUID())),
              folder);
    ASSERT_TRUE(context.save());
    const ZQObjectID id = folder->objectID();
    EXPECT_EQ(context.objectWithID(id), folder);
    EXPECT_EQ(context.objectWithID({store.model->entity(QStringLiteral("TestNode")), id.key}), folder);
    EXPECT_EQ(context.executeFetchRequest(requestFor("TestNode"))->value(0), folder);
    const QString uri = id.URIRepresentation(store.coordinator()->storeUUID());
    EXPECT_EQ(context.objectWithURIRepresentation(uri), folder);
    EXPECT_FALSE(
        context.objectWithURIRepresentation(QString(uri).replace(QStringLiteral("/p"), QStringLiteral("/p9"))));
    EXPECT_FALSE(context.objectWithURIRepresentation(id.URIRepresentation(QUuid::createUuid())));
    EXPECT_FALSE(context.objectWithURIRepresentation(QStringLiteral("nonsense")));
    EXPECT_FALSE(context.existingObjectWithID({id.entity, id.key + 5}));
}

TEST(ZQStoreRoundTrip, UnheldUnchangedObjectsAreDroppedAndChangedOnesKept)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    auto kept = context.insertNewObject<TestTag>();
    kept->setName(QStringLiteral("n"));
    ASSERT_TRUE(context.save());
    const ZQObjectID id = kept->objectID();
    kept = nullptr;
    EXPECT_EQ(ZQObjectAccess::heldObjects(context), 0);
    zqCast<TestTag>(context.objectWithID(id))->setWeight(3);
    EXPECT_EQ(ZQObjectAccess::heldObjects(context), 1);
    EXPECT_EQ(zqCast<TestTag>(context.objectWithID(id))->weight(), 3);
    ASSERT_TRUE(context.save());
    EXPECT_EQ(ZQObjectAccess::heldObjects(context), 0);
}

TEST(ZQStoreRoundTrip, ObjectsOutliveTheirContextWithTheirValues)
{
    ZQRef<TestDocument> document;
    {
        TestStore store;
        ZQManagedObjectContext context(store.coordinator());
        document = context.insertNewObject<TestDocument>();
        document->setTitle(QStringLiteral("last"));
        ASSERT_TRUE(context.save());
    }
    EXPECT_EQ(document->managedObjectContext(), nullptr);
    EXPECT_EQ(document->title(), QStringLiteral("last"));
    EXPECT_EQ(document->entity()->name, QStringLiteral("TestDocument"));
    EXPECT_EQ(document->valueForKey(QStringLiteral("title")), QStringLiteral("last"));
    EXPECT_TRUE(document->tags().isEmpty());
    EXPECT_FALSE(document->parent());
    document->setTitle(QStringLiteral("alone"));
    EXPECT_FALSE(document->hasChanges());
    EXPECT_TRUE(document->description().contains(QStringLiteral("alone")));
}

TEST(ZQStoreRoundTrip, FaultsFillInBatchesAndFetchesBringTheirRows)
{
    TestStore store;
    {
        ZQManagedObjectContext context(store.coordinator());
        for (int i = 0; i < 300; ++i) {
            context.insertNewObject<TestTag>()->setName(QString::number(i));
        }
        ASSERT_TRUE(context.save());
    }
    ZQManagedObjectContext context(store.coordinator());
    ZQSQLiteConnection *connection = ZQObjectAccess::connection(context);
    const auto ids = context.fetchObjectIDs(requestFor("TestTag"));
    ASSERT_EQ(ids->size(), 300);
    QList<ZQRef<TestTag>> tags;
    for (const ZQObjectID &id : *ids) {
        tags.append(zqCast<TestTag>(context.objectWithID(id)));
    }
    int before = connection->preparedUses();
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(tags.at(i)->name(), QString::number(i));
    }
    EXPECT_LE(connection->preparedUses() - before, 2);
    tags.clear();
    before = connection->preparedUses();
    {
        const auto fetched = context.fetch<TestTag>(requestFor("TestTag"));
        for (const auto &tag : *fetched) {
            EXPECT_FALSE(tag->isFault());
        }
        EXPECT_EQ(connection->preparedUses() - before, 1);
    }
    for (const ZQObjectID &id : *ids) {
        tags.append(zqCast<TestTag>(context.objectWithID(id)));
    }
    before = connection->preparedUses();
    context.fillFaults(*ids);
    EXPECT_EQ(connection->preparedUses() - before, 1);
    EXPECT_FALSE(tags.last()->isFault());
}

TEST(ZQStoreRoundTrip, RequestsSelectSortAndCount)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    for (int i = 0; i < 10; ++i) {
        const auto folder = context.insertNewObject<TestFolder>();
        folder->setTitle(QStringLiteral("f%1").arg(9 - i));
        const auto document = context.insertNewObject<TestDocument>();
        document->setTitle(QStringLiteral("d%1").arg(i));
        document->setParent(folder.get());
    }
    ASSERT_TRUE(context.save());
    EXPECT_EQ(context.countForFetchRequest(requestFor("TestNode")), 20);
    EXPECT_EQ(context.countForFetchRequest(requestFor("TestFolder")), 10);
    ZQFetchRequest request = requestFor("TestNode");
    request.includesSubentities = false;
    EXPECT_EQ(context.countForFetchRequest(request), 0);
    request = requestFor("TestFolder", QStringLiteral("title"));
    request.fetchOffset = 2;
    request.fetchLimit = 3;
    const auto folders = context.fetch<TestFolder>(request);
    ASSERT_EQ(folders->size(), 3);
    EXPECT_EQ(folders->at(0)->title(), QStringLiteral("f2"));
    EXPECT_EQ(context.countForFetchRequest(request), 3);
    request = requestFor("TestDocument", QStringLiteral("parent.title"));
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("parent.title < 'f3'"));
    const auto maps =
        context.fetchDictionaries(request, {QStringLiteral("title"), QStringLiteral("flag"), QStringLiteral("author")});
    ASSERT_EQ(maps->size(), 3);
    EXPECT_EQ(maps->at(0).value(QStringLiteral("title")), QStringLiteral("d9"));
    EXPECT_EQ(maps->at(0).value(QStringLiteral("flag")), true);
    EXPECT_FALSE(maps->at(0).value(QStringLiteral("author")).isValid());
    ZQError error;
    EXPECT_FALSE(context.fetchDictionaries(request, {QStringLiteral("wrong")}, &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("wrong")));
    EXPECT_FALSE(context.executeFetchRequest(requestFor("Nothing"), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("Nothing")));
}

TEST(ZQStoreRoundTrip, ManyRowsKeepTheirOrderAndKeysAreNotUsedTwice)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    constexpr int count = 100'000;
    for (int i = 0; i < count; ++i) {
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(QStringLiteral("t"));
        tag->setWeight((i * 7919) % count);
    }
    ASSERT_TRUE(context.save());
    const auto ids = context.fetchObjectIDs(requestFor("TestTag", QStringLiteral("weight")));
    ASSERT_EQ(ids->size(), count);
    const auto maps =
        context.fetchDictionaries(requestFor("TestTag", QStringLiteral("weight")), {QStringLiteral("weight")});
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(maps->at(i).value(QStringLiteral("weight")).toInt(), i);
    }
    const auto last = zqCast<TestTag>(context.objectWithID({store.model->entity(QStringLiteral("TestTag")), count}));
    context.deleteObject(last.get());
    ASSERT_TRUE(context.save());
    const auto next = context.insertNewObject<TestTag>();
    next->setName(QStringLiteral("n"));
    ASSERT_TRUE(context.save());
    EXPECT_EQ(next->objectID().key, count + 1);
}

TEST(ZQStoreRoundTrip, UnsavedChangesCountInFetches)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    QList<ZQRef<TestTag>> tags;
    for (int i = 0; i < 6; ++i) {
        tags.append(context.insertNewObject<TestTag>());
        tags.last()->setName(QString(QChar(u'a' + i)));
        tags.last()->setWeight(i);
    }
    ASSERT_TRUE(context.save());
    tags.at(0)->setWeight(50); // leaves
    tags.at(5)->setWeight(2);  // comes in
    context.deleteObject(tags.at(1).get());
    const auto inserted = context.insertNewObject<TestTag>();
    inserted->setName(QStringLiteral("bb"));
    ZQFetchRequest request = requestFor("TestTag", QStringLiteral("name"));
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("weight < 4 OR weight == nil"));
    const auto names = [&] {
        QStringList list;
        const auto tagsFound = context.fetch<TestTag>(request);
        for (const auto &tag : *tagsFound) {
            list.append(tag->name());
        }
        QStringList byID;
        const auto ids = context.fetchObjectIDs(request);
        for (const ZQObjectID &id : *ids) {
            byID.append(zqCast<TestTag>(context.objectWithID(id))->name());
        }
        EXPECT_EQ(list, byID);
        EXPECT_EQ(context.countForFetchRequest(request), list.size());
        return list.join(u' ');
    };
    EXPECT_EQ(names(), QStringLiteral("bb c d f"));
    request.fetchOffset = 1;
    request.fetchLimit = 2;
    EXPECT_EQ(names(), QStringLiteral("c d"));
    request.includesPendingChanges = false;
    EXPECT_EQ(context.countForFetchRequest(request), 2);
    request.fetchOffset = 0;
    request.fetchLimit = 0;
    EXPECT_EQ(context.fetchObjectIDs(request)->size(), 4);
    request.includesPendingChanges = true;
    ASSERT_TRUE(context.save());
    EXPECT_EQ(names(), QStringLiteral("bb c d f"));
}

TEST(ZQStoreRoundTrip, UnsavedChangesOfRelatedObjectsCountInFetches)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const auto document = context.insertNewObject<TestDocument>();
    const auto other = context.insertNewObject<TestDocument>();
    const auto tag = context.insertNewObject<TestTag>();
    tag->setName(QStringLiteral("old"));
    document->addTag(tag.get());
    ASSERT_TRUE(context.save());
    ZQFetchRequest request = requestFor("TestDocument");
    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("ANY tags.name == 'new'"));
    EXPECT_EQ(context.countForFetchRequest(request), 0);
    tag->setName(QStringLiteral("new"));
    EXPECT_EQ(context.fetch<TestDocument>(request)->value(0), document);
    EXPECT_EQ(context.countForFetchRequest(request), 1);
    other->addTag(tag.get());
    EXPECT_EQ(context.countForFetchRequest(request), 2);
    request.predicate =
        ZQPredicate::predicateWithFormat(QStringLiteral("ANY tags == %@"), {QVariant::fromValue(tag->objectID())});
    ASSERT_TRUE(context.save());
    document->removeTag(tag.get());
    EXPECT_EQ(context.fetch<TestDocument>(request)->value(0), other);
}

TEST(ZQStoreRoundTrip, ARequestThatCannotBeCarriedOutSaysWhy)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const QString start = QStringLiteral("The request cannot be carried out. ");
    const auto why = [&](const ZQFetchRequest &request) {
        QStringList reasons;
        ZQError error;
        EXPECT_FALSE(context.executeFetchRequest(request, &error));
        reasons.append(error.localizedDescription());
        EXPECT_FALSE(context.fetchObjectIDs(request, &error));
        reasons.append(error.localizedDescription());
        EXPECT_FALSE(context.countForFetchRequest(request, &error) && request.sortDescriptors.isEmpty());
        EXPECT_FALSE(context.fetchObjectIDsWithRelated(request, QStringLiteral("parent"), &error));
        reasons.append(error.localizedDescription());
        EXPECT_FALSE(context.fetchDictionaries(request, {}, &error));
        reasons.append(error.localizedDescription());
        reasons.removeDuplicates();
        return reasons.join(u'|');
    };
    EXPECT_EQ(why({QStringLiteral("Nothing")}), start + QStringLiteral("There is no entity \"Nothing\"."));
    EXPECT_TRUE(why({QStringLiteral("TestTag"), ZQPredicate::predicateWithFormat(QStringLiteral("colour == 1"))})
                    .contains(QStringLiteral("colour")));
    EXPECT_TRUE(why({QStringLiteral("TestTag"), {}, {{QStringLiteral("colour")}}}).contains(QStringLiteral("colour")));
    ZQError error;
    for (const char *name : {"children", "title", "nothing"}) {
        EXPECT_FALSE(context.fetchObjectIDsWithRelated({QStringLiteral("TestNode")}, QLatin1String(name), &error));
        EXPECT_EQ(error.localizedDescription(),
                  start + QStringLiteral("TestNode leads to no one \"%1\".").arg(QLatin1String(name)));
    }
    for (const char *name : {"children", "nothing"}) {
        EXPECT_FALSE(context.fetchDictionaries({QStringLiteral("TestNode")}, {QLatin1String(name)}, &error));
        EXPECT_EQ(error.localizedDescription(),
                  start + QStringLiteral("TestNode has no attribute \"%1\".").arg(QLatin1String(name)));
    }
    EXPECT_FALSE(context.insertNewObjectForEntityForName(QStringLiteral("Nothing")));
    EXPECT_FALSE(context.insertNewObjectForEntityForName(QStringLiteral("TestNode"))) << "it is abstract";
    EXPECT_FALSE(context.hasChanges());
    EXPECT_FALSE(context.objectWithID({}) || context.existingObjectWithID({}));
}

TEST(ZQStoreRoundTrip, RowsComeWithWhatTheyLeadTo)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const auto document = context.insertNewObject<TestDocument>();
    for (const char *text : {"c", "a", "b"}) {
        const auto note = context.insertNewObject<TestNote>();
        note->setText(QString::fromLatin1(text));
        note->setNode(*text == 'b' ? nullptr : document.get());
    }
    ASSERT_TRUE(context.save());
    ZQFetchRequest request = requestFor("TestNote", QStringLiteral("text"));
    const auto all = context.fetchObjectIDsWithRelated(request, QStringLiteral("node"));
    ASSERT_TRUE(all);
    EXPECT_EQ(all->ids, context.fetchObjectIDs(request));
    const QList<ZQObjectID> nodes = {document->objectID(), {}, document->objectID()};
    EXPECT_EQ(all->related, nodes);
    EXPECT_EQ(all->related.first().entity, document->objectID().entity) << "the entity of the row, not of the family";

    request.predicate = ZQPredicate::predicateWithFormat(QStringLiteral("node != nil"));
    request.fetchOffset = 1;
    EXPECT_EQ(context.fetchObjectIDsWithRelated(request, QStringLiteral("node"))->ids.size(), 1);
    ZQError error;
    EXPECT_FALSE(context.fetchObjectIDsWithRelated(requestFor("TestTag"), QStringLiteral("documents"), &error));
    EXPECT_FALSE(error.isNull());
}
