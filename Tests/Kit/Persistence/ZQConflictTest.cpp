// What two contexts change at once, beyond attributes: deletions, relationships, and the lists that each holds.

#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

namespace {

class ZQConflict : public testing::Test
{
protected:
    void SetUp() override
    {
        ZQManagedObjectContext writer(store.coordinator());
        const auto folder = writer.insertNewObject<TestFolder>();
        const auto document = writer.insertNewObject<TestDocument>();
        document->setTitle(QStringLiteral("document"));
        document->setParent(folder.get());
        QList<ZQRef<TestTag>> made;
        for (const char *name : {"a", "b", "c"}) {
            made.append(writer.insertNewObject<TestTag>());
            made.last()->setName(QString::fromLatin1(name));
        }
        document->addTag(made.first().get());
        ASSERT_TRUE(writer.save(&store.error)) << qPrintable(store.error.localizedDescription());
        folderID = folder->objectID();
        documentID = document->objectID();
        for (const auto &tag : made) {
            tagIDs.append(tag->objectID());
        }
    }
    ZQRef<TestDocument> document(ZQManagedObjectContext &context) const
    {
        return zqCast<TestDocument>(context.objectWithID(documentID));
    }
    ZQRef<TestFolder> folder(ZQManagedObjectContext &context) const
    {
        return zqCast<TestFolder>(context.objectWithID(folderID));
    }
    ZQRef<TestTag> tag(ZQManagedObjectContext &context, int index) const
    {
        return zqCast<TestTag>(context.objectWithID(tagIDs.at(index)));
    }
    static QStringList names(const QList<ZQRef<ZQManagedObject>> &tags)
    {
        QStringList names;
        for (const auto &object : tags) {
            names.append(zqCast<TestTag>(object)->name());
        }
        names.sort();
        return names;
    }
    // As a context that knows nothing of the others reads them.
    QStringList storedNames()
    {
        ZQManagedObjectContext reader(store.coordinator());
        const auto object = zqCast<TestDocument>(reader.existingObjectWithID(documentID));
        return object ? names(object->tags()) : QStringList{QStringLiteral("(gone)")};
    }

    TestStore store;
    ZQObjectID folderID;
    ZQObjectID documentID;
    QList<ZQObjectID> tagIDs;
    const QStringList a{QStringLiteral("a")};
    const QStringList ab{QStringLiteral("a"), QStringLiteral("b")};
    const QStringList abc{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
};

} // namespace

TEST_F(ZQConflict, AContextHasTheErrorPolicyUnlessItAsksForAnother)
{
    ZQManagedObjectContext context(store.coordinator());
    EXPECT_EQ(context.mergePolicy(), ZQMergePolicy::Error);
    ZQManagedObjectContext trump(store.coordinator(), ZQMergePolicy::PropertyObjectTrump);
    EXPECT_EQ(trump.mergePolicy(), ZQMergePolicy::PropertyObjectTrump);
}

TEST_F(ZQConflict, ADeletionOfWhatChangedElsewhereFollowsThePolicy)
{
    for (const bool isTrump : {false, true}) {
        SCOPED_TRACE(isTrump);
        ZQManagedObjectContext context(store.coordinator(),
                                       isTrump ? ZQMergePolicy::PropertyObjectTrump : ZQMergePolicy::Error);
        const auto doomed = document(context);
        EXPECT_EQ(doomed->title(), isTrump ? QStringLiteral("theirs 0") : QStringLiteral("document"));
        const auto other = tag(context, 1);
        other->setWeight(isTrump ? 20 : 10);
        context.deleteObject(doomed.get());
        const ZQContextDidSave theirs = store.elsewhere(
            [&](auto &there) { document(there)->setTitle(QStringLiteral("theirs %1").arg(isTrump ? 1 : 0)); });
        ZQError error;
        EXPECT_EQ(context.save(&error), isTrump);
        if (isTrump) {
            EXPECT_EQ(storedNames(), QStringList{QStringLiteral("(gone)")});
            continue;
        }
        EXPECT_EQ(error.code, int(ZQStoreError::Conflict));
        const QVariantList conflicts = error.userInfo.value(QStringLiteral("conflicts")).toList();
        ASSERT_EQ(conflicts.size(), 1);
        EXPECT_EQ(conflicts.first().value<ZQObjectID>(), documentID);
        EXPECT_TRUE(doomed->isDeleted()) << "it is still pending";
        EXPECT_TRUE(other->isUpdated());
        EXPECT_EQ(storedNames(), a) << "nothing of the save was written";
        context.rollback();
        EXPECT_FALSE(doomed->isDeleted());
        EXPECT_EQ(doomed->title(), QStringLiteral("theirs 0"));
        EXPECT_EQ(names(doomed->tags()), a);
    }
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
}

TEST_F(ZQConflict, ADeletionOfWhatIsGoneAlreadyIsNone)
{
    ZQManagedObjectContext context(store.coordinator());
    const auto doomed = document(context);
    EXPECT_EQ(doomed->title(), QStringLiteral("document"));
    context.deleteObject(doomed.get());
    store.elsewhere([&](auto &there) { there.deleteObject(document(there).get()); });
    ZQError error;
    EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(storedNames(), QStringList{QStringLiteral("(gone)")});
}

TEST_F(ZQConflict, PairsThatTwoContextsMakeAndUndoAddUp)
{
    for (const auto policy : {ZQMergePolicy::Error, ZQMergePolicy::PropertyObjectTrump}) {
        SCOPED_TRACE(int(policy));
        ZQManagedObjectContext context(store.coordinator(), policy);
        const auto mine = document(context);
        EXPECT_EQ(names(mine->tags()), a);
        mine->addTag(tag(context, 1).get());
        const auto added = store.elsewhere([&](auto &there) {
            document(there)->addTag(tag(there, 1).get()); // the same pair
            document(there)->addTag(tag(there, 2).get());
        });
        ZQError error;
        ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
        EXPECT_EQ(storedNames(), abc);
        context.mergeChangesFromContextDidSaveNotification(added);
        EXPECT_EQ(names(mine->tags()), abc);

        mine->removeTag(tag(context, 1).get());
        const auto removed = store.elsewhere([&](auto &there) {
            document(there)->removeTag(tag(there, 1).get());
            document(there)->removeTag(tag(there, 2).get());
        });
        ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
        context.mergeChangesFromContextDidSaveNotification(removed);
        EXPECT_EQ(names(mine->tags()), a);
        EXPECT_EQ(storedNames(), a);
    }
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
}

TEST_F(ZQConflict, APairWithATagThatIsGoneFollowsThePolicyAndLosesNoOtherPair)
{
    for (const bool isTrump : {false, true}) {
        SCOPED_TRACE(isTrump);
        ZQManagedObjectContext context(store.coordinator(),
                                       isTrump ? ZQMergePolicy::PropertyObjectTrump : ZQMergePolicy::Error);
        const auto mine = document(context);
        const auto doomed = context.insertNewObject<TestTag>();
        doomed->setName(QStringLiteral("doomed"));
        ASSERT_TRUE(context.save());
        mine->addTag(tag(context, 1).get());
        mine->addTag(doomed.get());
        const auto theirs =
            store.elsewhere([&](auto &there) { there.deleteObject(there.objectWithID(doomed->objectID()).get()); });
        ZQError error;
        EXPECT_EQ(context.save(&error), isTrump);
        if (!isTrump) {
            EXPECT_EQ(error.code, int(ZQStoreError::Conflict));
            EXPECT_EQ(storedNames(), a);
            context.mergeChangesFromContextDidSaveNotification(theirs);
            EXPECT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
        }
        EXPECT_EQ(names(mine->tags()), ab);
        EXPECT_EQ(storedNames(), ab);
    }
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
}

TEST_F(ZQConflict, AnUnsavedMoveOfWhatWasDeletedElsewhereIsOff)
{
    for (const bool isRead : {false, true}) {
        SCOPED_TRACE(isRead);
        ZQManagedObjectContext context(store.coordinator());
        const auto target = context.insertNewObject<TestFolder>();
        const auto doomed = context.insertNewObject<TestDocument>();
        doomed->setParent(folder(context).get());
        ASSERT_TRUE(context.save());
        if (isRead) {
            EXPECT_TRUE(target->children().isEmpty());
        }
        doomed->setParent(target.get());
        const auto theirs =
            store.elsewhere([&](auto &there) { there.deleteObject(there.objectWithID(doomed->objectID()).get()); });
        context.mergeChangesFromContextDidSaveNotification(theirs);
        EXPECT_EQ(target->relatedObjectIDs(QStringLiteral("children")), QList<ZQObjectID>());
    }
}

TEST_F(ZQConflict, ListsThatWereReadGoBackToWhatTheStoreHas)
{
    enum class Way { Rollback, Refresh, RefreshOfOtherSide };
    for (const Way way : {Way::Rollback, Way::Refresh, Way::RefreshOfOtherSide}) {
        SCOPED_TRACE(int(way));
        ZQManagedObjectContext context(store.coordinator());
        const auto mine = document(context);
        const auto parent = folder(context);
        const auto first = tag(context, 0);
        const auto second = tag(context, 1);
        EXPECT_EQ(names(mine->tags()), a); // the lists of both sides are read before the change
        EXPECT_EQ(first->documents().size(), 1);
        EXPECT_TRUE(second->documents().isEmpty());
        EXPECT_EQ(parent->children().size(), 1);
        mine->removeTag(first.get());
        mine->addTag(second.get());
        mine->setParent(nullptr);
        EXPECT_TRUE(parent->children().isEmpty());
        if (way == Way::Rollback) {
            context.rollback();
        } else {
            context.refreshObject(way == Way::Refresh ? static_cast<ZQManagedObject *>(mine.get()) : first.get(),
                                  false);
        }
        if (way == Way::RefreshOfOtherSide) { // its own pairs alone
            EXPECT_EQ(names(mine->tags()), ab);
            EXPECT_EQ(first->documents().size(), 1);
            continue;
        }
        EXPECT_EQ(names(mine->tags()), a);
        EXPECT_EQ(first->documents().size(), 1);
        EXPECT_TRUE(second->documents().isEmpty());
        EXPECT_EQ(parent->children().size(), 1);
        EXPECT_EQ(parent->children().value(0).get(), mine.get());
        EXPECT_FALSE(context.hasChanges());
        ASSERT_TRUE(context.save());
        EXPECT_EQ(storedNames(), a);
    }
}

TEST_F(ZQConflict, ListsThatWereReadFollowAMergeAndKeepUnsavedPairs)
{
    ZQManagedObjectContext context(store.coordinator());
    const auto mine = document(context);
    const auto parent = folder(context);
    EXPECT_EQ(names(mine->tags()), a);
    EXPECT_EQ(parent->children().size(), 1);
    mine->addTag(tag(context, 1).get());
    mine->removeTag(tag(context, 0).get());
    const auto unsaved = context.insertNewObject<TestFolder>();
    unsaved->setParent(parent.get());
    const auto theirs = store.elsewhere([&](auto &there) {
        document(there)->addTag(tag(there, 2).get());
        const auto child = there.template insertNewObject<TestFolder>();
        child->setParent(folder(there).get());
    });
    context.mergeChangesFromContextDidSaveNotification(theirs);
    const QStringList bc{QStringLiteral("b"), QStringLiteral("c")};
    EXPECT_EQ(names(mine->tags()), bc);
    EXPECT_EQ(parent->children().size(), 3) << "the stored one, theirs and the unsaved one";
    EXPECT_TRUE(parent->children().contains(ZQRef<ZQManagedObject>(unsaved.get())));
    context.refreshObject(mine.get(), true);
    EXPECT_EQ(names(mine->tags()), bc);
    ZQError error;
    ASSERT_TRUE(context.save(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(storedNames(), bc);
}
