#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

class ZQSaving : public testing::Test
{
protected:
    // A tag "t" of weight 1 that is in the store.
    ZQObjectID storedTag()
    {
        ZQManagedObjectContext writer(store.coordinator());
        const auto tag = writer.insertNewObject<TestTag>();
        tag->setName(QStringLiteral("t"));
        tag->setWeight(1);
        EXPECT_TRUE(writer.save(&store.error)) << qPrintable(store.error.localizedDescription());
        return tag->objectID();
    }
    static ZQRef<TestTag> tagIn(ZQManagedObjectContext &context, const ZQObjectID &id)
    {
        return zqCast<TestTag>(context.objectWithID(id));
    }
    int storedWeight(const ZQObjectID &id)
    {
        ZQManagedObjectContext reader(store.coordinator());
        const auto tag = zqCast<TestTag>(reader.existingObjectWithID(id));
        return tag ? tag->weight() : -1;
    }

    TestStore store;
};

} // namespace

TEST_F(ZQSaving, ErrorPolicyFailsOnAConflictAndKeepsEverythingPending)
{
    const ZQObjectID id = storedTag();
    ZQManagedObjectContext context(store.coordinator());
    const auto tag = tagIn(context, id);
    tag->setWeight(2);
    const auto added = context.insertNewObject<TestTag>();
    added->setName(QStringLiteral("added"));
    const ZQContextDidSave theirs =
        store.elsewhere([&](auto &other) { tagIn(other, id)->setName(QStringLiteral("theirs")); });
    ZQError error;
    EXPECT_FALSE(context.save(&error));
    EXPECT_EQ(error.domain, ZQStoreErrorDomain);
    EXPECT_EQ(error.code, int(ZQStoreError::Conflict));
    const QVariantList conflicts = error.userInfo.value(QStringLiteral("conflicts")).toList();
    ASSERT_EQ(conflicts.size(), 1);
    EXPECT_EQ(conflicts.first().value<ZQObjectID>(), id);
    EXPECT_TRUE(added->objectID().isTemporary());
    EXPECT_TRUE(added->isInserted());
    EXPECT_TRUE(tag->isUpdated());
    EXPECT_EQ(storedWeight(id), 1);
    // Once the other change is known here, the same save goes through.
    context.mergeChangesFromContextDidSaveNotification(theirs);
    EXPECT_EQ(tag->weight(), 2);
    EXPECT_EQ(tag->name(), QStringLiteral("theirs"));
    EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(storedWeight(id), 2);
    EXPECT_FALSE(added->objectID().isTemporary());
}

TEST_F(ZQSaving, TrumpPolicyMergesAttributeByAttribute)
{
    const ZQObjectID id = storedTag();
    ZQManagedObjectContext context(store.coordinator(), ZQMergePolicy::PropertyObjectTrump);
    const auto tag = tagIn(context, id);
    tag->setWeight(2);
    store.elsewhere([&](auto &other) {
        tagIn(other, id)->setName(QStringLiteral("theirs"));
        tagIn(other, id)->setWeight(99);
    });
    ZQError error;
    ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(tag->weight(), 2);
    EXPECT_EQ(tag->name(), QStringLiteral("theirs"));
    EXPECT_EQ(storedWeight(id), 2);
    tag->setWeight(3);
    EXPECT_TRUE(context.save()) << "the version read after the merge is the store's";
}

TEST_F(ZQSaving, ARowDeletedElsewhere)
{
    for (const bool isTrump : {true, false}) {
        SCOPED_TRACE(isTrump);
        const ZQObjectID id = storedTag();
        ZQManagedObjectContext context(store.coordinator(),
                                       isTrump ? ZQMergePolicy::PropertyObjectTrump : ZQMergePolicy::Error);
        const auto tag = tagIn(context, id);
        tag->setWeight(2);
        const auto theirs = store.elsewhere([&](auto &other) { other.deleteObject(tagIn(other, id).get()); });
        ZQError error;
        EXPECT_EQ(context.save(&error), isTrump);
        if (!isTrump) {
            EXPECT_EQ(error.code, int(ZQStoreError::Conflict));
            context.mergeChangesFromContextDidSaveNotification(theirs);
            EXPECT_TRUE(context.save());
        }
        EXPECT_EQ(storedWeight(id), -1);
        EXPECT_EQ(tag->managedObjectContext(), nullptr);
        EXPECT_EQ(tag->weight(), 2);
    }
}

TEST_F(ZQSaving, AReferenceToARowDeletedElsewhere)
{
    for (const bool isTrump : {true, false}) {
        SCOPED_TRACE(isTrump);
        ZQManagedObjectContext context(store.coordinator(),
                                       isTrump ? ZQMergePolicy::PropertyObjectTrump : ZQMergePolicy::Error);
        const auto folder = context.insertNewObject<TestFolder>();
        const auto tag = context.insertNewObject<TestTag>();
        tag->setName(QStringLiteral("t"));
        ASSERT_TRUE(context.save());
        store.elsewhere([&](auto &other) {
            other.deleteObject(other.objectWithID(folder->objectID()).get());
            other.deleteObject(other.objectWithID(tag->objectID()).get());
        });
        const auto child = context.insertNewObject<TestDocument>();
        child->setParent(folder.get());
        child->addTag(tag.get());
        ZQError error;
        EXPECT_EQ(context.save(&error), isTrump) << qPrintable(error.localizedDescription());
        if (isTrump) {
            EXPECT_FALSE(child->parent());
            EXPECT_TRUE(child->tags().isEmpty());
        } else {
            EXPECT_EQ(error.code, int(ZQStoreError::Conflict));
        }
        EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
    }
}

TEST_F(ZQSaving, RequiredAttributesAreNamed)
{
    ZQManagedObjectContext context(store.coordinator());
    const auto tag = context.insertNewObject<TestTag>();
    ZQError error;
    EXPECT_FALSE(context.save(&error));
    EXPECT_EQ(error.code, int(ZQStoreError::Validation));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("TestTag.name")));
    tag->setName(QStringLiteral("now"));
    EXPECT_TRUE(context.save());
    tag->setName({});
    EXPECT_FALSE(context.save(&error));
}

TEST_F(ZQSaving, AFailedSaveLosesNothing)
{
    const ZQObjectID id = storedTag();
    struct
    {
        const char *breaks;
        const char *mends;
        ZQStoreError code;
    } const cases[] = {
        {"PRAGMA query_only=ON", "PRAGMA query_only=OFF", ZQStoreError::ReadOnly},
        {"PRAGMA max_page_count=1", "PRAGMA max_page_count=1000000", ZQStoreError::DiskFull},
    };
    ZQManagedObjectContext context(store.coordinator());
    ZQSQLiteConnection *connection = ZQObjectAccess::connection(context);
    for (const auto &testCase : cases) {
        SCOPED_TRACE(testCase.breaks);
        const auto tag = tagIn(context, id);
        tag->setWeight(tag->weight() + 10);
        const int weight = tag->weight();
        const auto folder = context.insertNewObject<TestFolder>();
        folder->setBlob(QByteArray(1'000'000, 'x'));
        const auto child = context.insertNewObject<TestDocument>();
        child->setParent(folder.get());
        connection->value(QLatin1String(testCase.breaks));
        ZQError error;
        EXPECT_FALSE(context.save(&error));
        EXPECT_EQ(error.code, int(testCase.code)) << qPrintable(error.localizedDescription());
        EXPECT_TRUE(folder->objectID().isTemporary());
        EXPECT_EQ(context.insertedObjects().size(), 2);
        EXPECT_EQ(context.updatedObjects().size(), 1);
        EXPECT_NE(storedWeight(id), weight);
        connection->value(QLatin1String(testCase.mends));
        EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
        EXPECT_EQ(storedWeight(id), weight);
        EXPECT_EQ(child->parent(), folder);
        EXPECT_EQ(folder->children().value(0), child);
    }
}

TEST_F(ZQSaving, AnotherWritersLockIsReportedAndPasses)
{
    ZQManagedObjectContext context(store.coordinator());
    const auto tag = context.insertNewObject<TestTag>();
    tag->setName(QStringLiteral("t"));
    const auto blocker = store.coordinator()->newConnection();
    ZQObjectAccess::connection(context)->value(QStringLiteral("PRAGMA busy_timeout=1"));
    ZQError error;
    {
        ZQSQLiteTransaction transaction(*blocker);
        EXPECT_FALSE(context.save(&error));
        EXPECT_EQ(error.code, int(ZQStoreError::Locked));
    }
    EXPECT_TRUE(context.save(&error)) << "a transaction that was not committed takes itself back";
}

TEST_F(ZQSaving, MergingBringsOthersChangesAndKeepsOwnOnes)
{
    const ZQObjectID id = storedTag();
    const ZQObjectID doomed = storedTag();
    ZQManagedObjectContext context(store.coordinator());
    const auto tag = tagIn(context, id);
    const auto doomedTag = tagIn(context, doomed);
    EXPECT_EQ(tag->weight() + doomedTag->weight(), 2);
    EXPECT_TRUE(tag->documents().isEmpty());
    const auto unsaved = context.insertNewObject<TestDocument>();
    unsaved->addTag(tag.get());
    unsaved->addTag(doomedTag.get());
    ZQContextDidSave announced;
    const auto token = context.observeObjectsDidChange([&](const ZQContextDidSave &change) { announced = change; });
    const auto theirs = store.elsewhere([&](auto &other) {
        tagIn(other, id)->setWeight(5);
        const auto document = other.template insertNewObject<TestDocument>();
        document->addTag(tagIn(other, id).get());
        other.deleteObject(tagIn(other, doomed).get());
    });
    EXPECT_EQ(tag->weight(), 1) << "nothing moves before the merge";
    context.mergeChangesFromContextDidSaveNotification(theirs);
    EXPECT_EQ(tag->weight(), 5);
    EXPECT_EQ(tag->documents().size(), 2) << "theirs and the unsaved one";
    EXPECT_EQ(tag->documents().last(), unsaved);
    EXPECT_EQ(doomedTag->managedObjectContext(), nullptr);
    EXPECT_EQ(unsaved->tags().size(), 1);
    EXPECT_EQ(announced.updated, theirs.updated);
    EXPECT_EQ(announced.inserted, theirs.inserted);
    EXPECT_EQ(announced.deleted, QList<ZQObjectID>{doomed});
    ZQError error;
    EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
}

TEST_F(ZQSaving, ChangesAreAnnouncedOnceAndSavesTellPermanentIdentifiers)
{
    ZQManagedObjectContext context(store.coordinator());
    QList<ZQContextDidSave> changes;
    QList<ZQContextDidSave> saves;
    auto changeToken = context.observeObjectsDidChange([&](const ZQContextDidSave &change) { changes.append(change); });
    const auto saveToken = context.observeDidSave([&](const ZQContextDidSave &save) { saves.append(save); });
    const auto tag = context.insertNewObject<TestTag>();
    tag->setName(QStringLiteral("t"));
    const ZQObjectID temporary = tag->objectID();
    context.processPendingChanges();
    context.processPendingChanges();
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0].inserted, QList<ZQObjectID>{temporary});
    EXPECT_TRUE(changes[0].updated.isEmpty());
    tag->setWeight(3);
    context.processPendingChanges();
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes[1].updated, QList<ZQObjectID>{temporary});
    ASSERT_TRUE(context.save());
    ASSERT_TRUE(context.save()) << "nothing to save";
    ASSERT_EQ(saves.size(), 1);
    EXPECT_EQ(saves[0].inserted, QList<ZQObjectID>{tag->objectID()});
    EXPECT_EQ(saves[0].source, &context);
    ASSERT_EQ(changes.size(), 3);
    EXPECT_EQ(changes[2].deleted, QList<ZQObjectID>{temporary});
    // What was announced and is forgotten is announced as gone; what nobody heard of is not.
    for (const bool isRolledBack : {false, true}) {
        changes.clear();
        const auto heard = context.insertNewObject<TestFolder>();
        const ZQObjectID heardID = heard->objectID();
        context.processPendingChanges();
        const auto unheard = context.insertNewObject<TestFolder>();
        if (isRolledBack) {
            context.rollback();
        } else {
            context.deleteObject(heard.get());
            context.deleteObject(unheard.get());
            context.processPendingChanges();
        }
        ASSERT_EQ(changes.size(), 2);
        EXPECT_EQ(changes[1].deleted, QList<ZQObjectID>{heardID});
        EXPECT_TRUE(changes[1].inserted.isEmpty());
    }
    const auto saved = context.insertNewObject<TestFolder>();
    ASSERT_TRUE(context.save());
    const ZQObjectID savedID = saved->objectID();
    context.mergeChangesFromContextDidSaveNotification(saves.last()); // its own
    changes.clear();
    saves.clear();
    context.deleteObject(saved.get());
    EXPECT_EQ(context.deletedObjects(), QList<ZQRef<ZQManagedObject>>{saved});
    ASSERT_TRUE(context.save());
    ASSERT_EQ(saves.size(), 1);
    EXPECT_EQ(saves[0].deleted, QList<ZQObjectID>{savedID});
    EXPECT_TRUE(saves[0].inserted.isEmpty() && saves[0].updated.isEmpty() && context.deletedObjects().isEmpty());
    ASSERT_EQ(changes.size(), 1);
    EXPECT_EQ(changes[0].deleted, QList<ZQObjectID>{savedID});
    changes = {{}, {}, {}};
    changeToken.reset();
    tag->setWeight(4);
    context.processPendingChanges();
    EXPECT_EQ(changes.size(), 3);
}

TEST_F(ZQSaving, ManyThreadsSaveAtOnce)
{
    constexpr int threads = 4;
    constexpr int savesOfAThread = 20;
    const auto coordinator = store.coordinator();
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back([&] {
            ZQManagedObjectContext context(coordinator);
            for (int save = 0; save < savesOfAThread; ++save) {
                const auto tag = context.insertNewObject<TestTag>();
                tag->setName(QStringLiteral("t"));
                ZQError error;
                EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
            }
        });
    }
    for (std::thread &thread : running) {
        thread.join();
    }
    ZQManagedObjectContext context(coordinator);
    EXPECT_EQ(context.countForFetchRequest({QStringLiteral("TestTag")}), threads * savesOfAThread);
}
