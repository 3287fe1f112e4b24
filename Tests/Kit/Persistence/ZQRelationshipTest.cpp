#include "Kit/Persistence/ZQContextPrivate.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <gtest/gtest.h>

namespace {

class ZQRelationship : public testing::Test
{
protected:
    ZQRef<TestDocument> document(const char *title)
    {
        auto object = context.insertNewObject<TestDocument>();
        object->setTitle(QLatin1String(title));
        return object;
    }
    ZQRef<TestTag> tag(const char *name)
    {
        auto object = context.insertNewObject<TestTag>();
        object->setName(QLatin1String(name));
        return object;
    }
    static qsizetype rows(TestStore &store, const char *entity)
    {
        ZQManagedObjectContext other(store.coordinator());
        return *other.countForFetchRequest({QString::fromLatin1(entity)});
    }

    void rename(const QString &from, const QString &to) { rename(store, from, to); }
    static void rename(TestStore &store, const QString &from, const QString &to)
    {
        const auto connection = store.coordinator()->newConnection();
        ASSERT_TRUE(connection->execute(
            QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE \"%1\" RENAME TO \"%2\"").arg(from, to)));
    }
    QString joinTable() const
    {
        for (const auto &relationship : store.model->entity(QStringLiteral("TestDocument"))->relationships) {
            if (relationship.isManyToMany()) {
                return relationship.joinTable;
            }
        }
        return {};
    }

    TestStore store;
    ZQManagedObjectContext context{store.coordinator()};
};

// Two families that lead to each other one to one.
struct TestCoverRow
{
    qint64 book = 0;
};

class TestCover : public ZQManagedObject
{
public:
    static QString entityName() { return QStringLiteral("TestCover"); }
    static std::span<const ZQField> fields()
    {
        static constexpr ZQField table[] = {{"other", ZQAttributeType::Integer64, true, offsetof(TestCoverRow, book)}};
        return table;
    }
    ZQRef<ZQManagedObject> other() const { return relatedObject(QStringLiteral("other")); }
    void setOther(ZQManagedObject *value) { setRelatedObject(QStringLiteral("other"), value); }

protected:
    void *row() override { return &m_row; }
    TestCoverRow m_row;
};

class TestBook : public TestCover
{
public:
    static QString entityName() { return QStringLiteral("TestBook"); }
};

// `rule`: what becomes of the cover of a book that is deleted.
QByteArray booksAndCovers(const char *rule)
{
    ZQEntityRegistry::registerClass({"TestCover", TestCover::fields(), makeTestObject<TestCover>});
    ZQEntityRegistry::registerClass({"TestBook", TestCover::fields(), makeTestObject<TestBook>});
    return QByteArray(R"JSON({ "versionIdentifiers": ["Version1"], "entities": [
      { "name": "TestBook", "relationships": [
        { "name": "other", "destination": "TestCover", "inverse": "other", "deleteRule": "RULE" } ] },
      { "name": "TestCover", "relationships": [
        { "name": "other", "destination": "TestBook", "inverse": "other" } ] } ] })JSON")
        .replace("RULE", rule);
}

} // namespace

TEST_F(ZQRelationship, BothSidesOfAOneToOneFollowEachOther)
{
    TestStore books(booksAndCovers("nullify"));
    ZQManagedObjectContext writer(books.coordinator());
    const auto first = writer.insertNewObject<TestBook>();
    const auto second = writer.insertNewObject<TestBook>();
    const auto red = writer.insertNewObject<TestCover>();
    const auto blue = writer.insertNewObject<TestCover>();
    for (const bool isSaved : {false, true}) {
        SCOPED_TRACE(isSaved);
        first->setOther(red.get());
        EXPECT_EQ(red->other(), first);
        second->setOther(blue.get());
        second->setOther(red.get()); // taken from the first, and blue is free
        EXPECT_EQ(red->other(), second);
        EXPECT_FALSE(first->other() || blue->other());
        blue->setOther(second.get());
        EXPECT_EQ(second->other(), blue);
        EXPECT_FALSE(red->other());
        blue->setOther(nullptr);
        EXPECT_FALSE(second->other());
        first->setOther(blue.get());
        ASSERT_TRUE(writer.save(&books.error)) << qPrintable(books.error.localizedDescription());
        ZQManagedObjectContext reader(books.coordinator());
        const auto stored = zqCast<TestCover>(reader.existingObjectWithID(blue->objectID()));
        EXPECT_EQ(stored->other()->objectID(), first->objectID());
        EXPECT_FALSE(zqCast<TestCover>(reader.existingObjectWithID(red->objectID()))->other());
    }
}

TEST_F(ZQRelationship, DeletingOneOfTwoFollowsTheRule)
{
    for (const char *rule : {"nullify", "cascade", "deny"}) {
        SCOPED_TRACE(rule);
        TestStore books(booksAndCovers(rule));
        ZQManagedObjectContext writer(books.coordinator());
        const auto book = writer.insertNewObject<TestBook>();
        const auto cover = writer.insertNewObject<TestCover>();
        book->setOther(cover.get());
        ASSERT_TRUE(writer.save());
        ZQManagedObjectContext deleter(books.coordinator()); // which has read neither
        deleter.deleteObject(deleter.objectWithID(book->objectID()).get());
        ZQError error;
        const bool isDenied = rule == QByteArray("deny");
        EXPECT_EQ(deleter.save(&error), !isDenied);
        EXPECT_EQ(error.localizedDescription().toStdString(),
                  isDenied ? "The changes cannot be saved. An object that is still used by others through "
                             "TestBook.other cannot be deleted."
                           : ZQError().localizedDescription().toStdString());
        EXPECT_EQ(rows(books, "TestBook"), isDenied ? 1 : 0);
        EXPECT_EQ(rows(books, "TestCover"), rule == QByteArray("cascade") ? 0 : 1);
        if (isDenied) {
            deleter.deleteObject(deleter.objectWithID(cover->objectID()).get());
            EXPECT_TRUE(deleter.save(&error)) << "nobody is left who could use it";
        }
    }
}

TEST_F(ZQRelationship, BothSidesOfAOneToManyFollowEachOther)
{
    const auto a = context.insertNewObject<TestFolder>();
    const auto b = context.insertNewObject<TestFolder>();
    const auto child = document("c");
    for (const bool isSaved : {false, true}) {
        SCOPED_TRACE(isSaved);
        child->setParent(a.get());
        EXPECT_EQ(a->children().value(0), child);
        EXPECT_TRUE(b->children().isEmpty());
        b->addChild(child.get());
        EXPECT_EQ(child->parent(), b);
        EXPECT_TRUE(a->children().isEmpty());
        EXPECT_EQ(b->children().size(), 1);
        b->removeRelatedObject(QStringLiteral("children"), child.get());
        EXPECT_FALSE(child->parent());
        EXPECT_TRUE(b->children().isEmpty());
        child->setParent(b.get());
        ASSERT_TRUE(context.save());
    }
    EXPECT_EQ(b->relatedObjectIDs(QStringLiteral("children")), QList<ZQObjectID>{child->objectID()});
}

TEST_F(ZQRelationship, AListReadAfterUnsavedChangesHoldsThem)
{
    auto folder = context.insertNewObject<TestFolder>();
    auto stays = document("stays");
    auto leaves = document("leaves");
    stays->setParent(folder.get());
    leaves->setParent(folder.get());
    ASSERT_TRUE(context.save());
    const ZQObjectID folderID = folder->objectID();
    context.reset();
    folder = nullptr;
    const auto held = zqCast<TestDocument>(context.objectWithID(leaves->objectID()));
    held->setParent(nullptr);
    const auto added = document("new");
    zqCast<TestFolder>(context.objectWithID(folderID))->addChild(added.get());
    QStringList titles;
    for (const auto &child : zqCast<TestFolder>(context.objectWithID(folderID))->children()) {
        titles.append(zqCast<TestDocument>(child)->title());
    }
    EXPECT_EQ(titles, (QStringList{QStringLiteral("stays"), QStringLiteral("new")}));
}

TEST_F(ZQRelationship, ManyToManyIsSymmetricAndStoredOnce)
{
    const auto d = document("d");
    const auto t = tag("t");
    const auto u = tag("u");
    d->addTag(t.get());
    t->addRelatedObject(QStringLiteral("documents"), d.get());
    u->addRelatedObject(QStringLiteral("documents"), d.get());
    EXPECT_EQ(d->tags().size(), 2);
    EXPECT_EQ(t->documents().size(), 1);
    ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
    EXPECT_FALSE(context.hasChanges());
    {
        ZQManagedObjectContext other(store.coordinator());
        const auto read = zqCast<TestDocument>(other.objectWithID(d->objectID()));
        EXPECT_EQ(read->tags().size(), 2);
        read->addTag(zqCast<TestTag>(other.objectWithID(t->objectID())).get());
        EXPECT_FALSE(other.hasChanges()) << "it is there already";
        read->removeTag(zqCast<TestTag>(other.objectWithID(t->objectID())).get());
        EXPECT_EQ(read->tags().size(), 1);
        ASSERT_TRUE(other.save());
    }
    context.refreshObject(d.get(), false);
    context.refreshObject(t.get(), false);
    EXPECT_EQ(d->relatedObjectIDs(QStringLiteral("tags")), QList<ZQObjectID>{u->objectID()});
    EXPECT_TRUE(t->documents().isEmpty());
}

TEST_F(ZQRelationship, RelationsChangeNoRowVersionsButAreAnnounced)
{
    const auto d = document("d");
    const auto t = tag("t");
    ASSERT_TRUE(context.save());
    ZQManagedObjectContext other(store.coordinator());
    const auto theirs = zqCast<TestDocument>(other.objectWithID(d->objectID()));
    theirs->setTitle(QStringLiteral("theirs"));
    ZQContextDidSave seen;
    const auto token = context.observeDidSave([&](const ZQContextDidSave &notification) { seen = notification; });
    d->addTag(t.get());
    ASSERT_TRUE(context.save());
    EXPECT_EQ(QSet<ZQObjectID>(seen.updated.begin(), seen.updated.end()),
              (QSet<ZQObjectID>{d->objectID(), t->objectID()}));
    EXPECT_TRUE(other.save()) << "the row itself was not changed by the context that added the tag";
}

TEST_F(ZQRelationship, DeletingCascadesAndNullifies)
{
    const auto top = context.insertNewObject<TestFolder>();
    const auto inner = context.insertNewObject<TestFolder>();
    const auto leaf = document("leaf");
    const auto outside = document("outside");
    const auto t = tag("t");
    const auto note = context.insertNewObject<TestNote>();
    inner->setParent(top.get());
    leaf->setParent(inner.get());
    note->setNode(leaf.get());
    leaf->addTag(t.get());
    outside->addTag(t.get());
    ASSERT_TRUE(context.save());
    EXPECT_EQ(t->documents().size(), 2);
    ZQContextDidSave seen;
    const auto token = context.observeDidSave([&](const ZQContextDidSave &notification) { seen = notification; });
    context.deleteObject(top.get());
    EXPECT_TRUE(leaf->isDeleted());
    EXPECT_TRUE(note->isDeleted());
    EXPECT_FALSE(outside->isDeleted());
    EXPECT_EQ(t->relatedObjectIDs(QStringLiteral("documents")), QList<ZQObjectID>{outside->objectID()});
    ASSERT_TRUE(context.save(&store.error)) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(seen.deleted.size(), 4);
    EXPECT_EQ(seen.updated, QList<ZQObjectID>{t->objectID()});
    EXPECT_EQ(leaf->managedObjectContext(), nullptr);
    EXPECT_EQ(leaf->title(), QStringLiteral("leaf"));
    EXPECT_EQ(rows(store, "TestNode"), 1);
    EXPECT_EQ(rows(store, "TestNote"), 0);
    context.deleteObject(t.get());
    ASSERT_TRUE(context.save());
    EXPECT_TRUE(outside->tags().isEmpty());
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
}

TEST_F(ZQRelationship, NullifyReachesObjectsNotYetRead)
{
    TestStore nullify(QByteArray(testModelJSON).replace("\"deleteRule\": \"cascade\"", "\"deleteRule\": \"nullify\""));
    ZQObjectID parentID;
    ZQObjectID childID;
    {
        ZQManagedObjectContext writer(nullify.coordinator());
        const auto parent = writer.insertNewObject<TestFolder>();
        const auto child = writer.insertNewObject<TestFolder>();
        child->setParent(parent.get());
        ASSERT_TRUE(writer.save());
        parentID = parent->objectID();
        childID = child->objectID();
    }
    ZQManagedObjectContext reader(nullify.coordinator());
    reader.deleteObject(reader.objectWithID(parentID).get());
    EXPECT_FALSE(zqCast<TestFolder>(reader.objectWithID(childID))->parent());
    ASSERT_TRUE(reader.save());
    ZQManagedObjectContext fresh(nullify.coordinator());
    EXPECT_FALSE(zqCast<TestFolder>(fresh.objectWithID(childID))->parent());
    EXPECT_FALSE(fresh.existingObjectWithID(parentID));
}

TEST_F(ZQRelationship, DenyFailsTheSaveUntilTheOthersAreGone)
{
    TestStore deny(QByteArray(testModelJSON).replace("\"deleteRule\": \"cascade\"", "\"deleteRule\": \"deny\""));
    ZQManagedObjectContext writer(deny.coordinator());
    const auto parent = writer.insertNewObject<TestFolder>();
    const auto child = writer.insertNewObject<TestFolder>();
    child->setParent(parent.get());
    ASSERT_TRUE(writer.save());
    writer.deleteObject(parent.get());
    ZQError error;
    EXPECT_FALSE(writer.save(&error));
    EXPECT_EQ(error.code, int(ZQStoreError::Validation));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("TestFolder.children")));
    writer.deleteObject(child.get());
    EXPECT_TRUE(writer.save(&error)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(rows(deny, "TestNode"), 0);

    const auto noted = writer.insertNewObject<TestFolder>();
    writer.insertNewObject<TestNote>()->setNode(noted.get());
    ASSERT_TRUE(writer.save());
    ZQManagedObjectContext other(deny.coordinator());
    const QString away = QStringLiteral("away");
    rename(deny, QStringLiteral("TestNote"), away);
    other.deleteObject(other.existingObjectWithID(noted->objectID()).get());
    EXPECT_FALSE(other.save()) << "whether it is still used could not be read";
    rename(deny, away, QStringLiteral("TestNote"));
    EXPECT_EQ(rows(deny, "TestNode"), 1);
}

TEST_F(ZQRelationship, DeletingAnUnsavedObjectForgetsItEverywhere)
{
    const auto folder = context.insertNewObject<TestFolder>();
    const auto child = document("c");
    const auto t = tag("t");
    child->setParent(folder.get());
    child->addTag(t.get());
    context.deleteObject(child.get());
    EXPECT_TRUE(folder->children().isEmpty());
    EXPECT_TRUE(t->documents().isEmpty());
    EXPECT_EQ(child->managedObjectContext(), nullptr);
    const ZQObjectID never = t->objectID();
    context.deleteObject(t.get());
    EXPECT_FALSE(context.objectWithID(never)) << "it stands for nothing that could be read later";
    ASSERT_TRUE(context.save());
    EXPECT_EQ(rows(store, "TestNode"), 1);
    EXPECT_EQ(rows(store, "TestTag"), 0);
}

TEST_F(ZQRelationship, RollbackAndRefreshGoBackToTheStore)
{
    const auto folder = context.insertNewObject<TestFolder>();
    const auto child = document("before");
    const auto t = tag("t");
    child->setParent(folder.get());
    ASSERT_TRUE(context.save());
    for (const bool isRollback : {true, false}) {
        SCOPED_TRACE(isRollback);
        child->setTitle(QStringLiteral("after"));
        child->setParent(nullptr);
        child->addTag(t.get());
        EXPECT_TRUE(folder->children().isEmpty());
        if (isRollback) {
            context.deleteObject(t.get());
            context.insertNewObject<TestFolder>();
            context.rollback();
        } else {
            context.refreshObject(child.get(), false);
        }
        EXPECT_FALSE(child->hasChanges());
        EXPECT_EQ(child->title(), QStringLiteral("before"));
        EXPECT_EQ(child->parent(), folder);
        EXPECT_EQ(folder->children().value(0), child);
        EXPECT_TRUE(child->tags().isEmpty());
        EXPECT_TRUE(t->documents().isEmpty());
        EXPECT_FALSE(t->isDeleted());
        EXPECT_FALSE(context.hasChanges());
    }
}

TEST_F(ZQRelationship, AListThatCouldNotBeReadIsReadWhenItIsNextAskedFor)
{
    const auto d = document("d");
    d->addTag(tag("t").get());
    ASSERT_TRUE(context.save());
    ZQManagedObjectContext reader(store.coordinator());
    const auto read = zqCast<TestDocument>(reader.existingObjectWithID(d->objectID()));
    const QString away = QStringLiteral("away");
    rename(joinTable(), away);
    EXPECT_TRUE(read->tags().isEmpty());
    const auto more = reader.insertNewObject<TestTag>();
    more->setName(QStringLiteral("more"));
    read->addTag(more.get());
    EXPECT_EQ(read->tags().size(), 1) << "what was added here is known";
    rename(away, joinTable());
    EXPECT_EQ(read->tags().size(), 2);
}

TEST_F(ZQRelationship, WhatCannotBeReadFailsTheSaveThatHasToAnnounceIt)
{
    const auto d = document("d");
    const auto t = tag("t");
    d->addTag(t.get());
    ASSERT_TRUE(context.save());
    ZQContextDidSave seen;
    const auto token = context.observeDidSave([&](const ZQContextDidSave &notification) { seen = notification; });
    const QString away = QStringLiteral("away");
    rename(joinTable(), away);
    context.deleteObject(d.get());
    ZQError error;
    EXPECT_FALSE(context.save(&error));
    EXPECT_FALSE(error.isNull());
    rename(away, joinTable());
    EXPECT_EQ(rows(store, "TestDocument"), 1);
    ASSERT_TRUE(context.save(&error)) << "nothing is lost of what was to be saved";
    EXPECT_TRUE(seen.updated.contains(t->objectID()));
}

TEST_F(ZQRelationship, NamesThatCannotBeLookedUpAreAnError)
{
    const auto d = document("d");
    ASSERT_TRUE(context.save());
    const QString name = d->objectID().URIRepresentation(store.coordinator()->storeUUID());
    const QString away = QStringLiteral("away");
    rename(QStringLiteral("TestNode"), away);
    ZQError error;
    EXPECT_FALSE(context.objectIDsWithURIRepresentations({name}, &error));
    EXPECT_FALSE(error.isNull());
    rename(away, QStringLiteral("TestNode"));
    EXPECT_EQ(context.objectIDsWithURIRepresentations({name}), QList<ZQObjectID>{d->objectID()});
}
