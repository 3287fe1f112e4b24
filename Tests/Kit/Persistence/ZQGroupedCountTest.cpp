#include "Kit/Persistence/ZQGroupedCount.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <tuple>

namespace {

using Counts = QHash<ZQObjectID, qint64>;

std::optional<Counts> counted(ZQManagedObjectContext &context, const char *entity, const char *by,
                              const QList<ZQObjectID> &related, const char *excluded = nullptr,
                              ZQError *error = nullptr)
{
    return zqCountByRelated(
        context,
        {.entityName = QLatin1StringView(entity),
         .keyPath = QLatin1StringView(by),
         .related = related,
         .excluded = excluded ? ZQPredicate::predicateWithFormat(QLatin1StringView(excluded)) : ZQPredicate()},
        error);
}

} // namespace

TEST(ZQGroupedCount, SaysHowManyRowsLeadToEachObjectInOneStatement)
{
    TestStore store;
    ZQManagedObjectContext context(store.coordinator());
    const auto folder = [&](TestNode *parent) {
        const auto made = context.insertNewObject<TestFolder>();
        made->setParent(parent);
        return made;
    };
    const auto top = folder(nullptr);
    const auto full = folder(top.get());
    const auto empty = folder(top.get());
    const auto tag = context.insertNewObject<TestTag>();
    const auto rare = context.insertNewObject<TestTag>();
    tag->setName(QStringLiteral("tag"));
    rare->setName(QStringLiteral("rare"));
    for (int i = 0; i < 5; ++i) {
        const auto document = context.insertNewObject<TestDocument>();
        document->setSmall(qint16(i));
        document->setParent(full.get());
        document->addTag(tag.get());
        if (i == 3) {
            document->addTag(rare.get());
        }
        for (int notes = 0; notes < i; ++notes) {
            context.insertNewObject<TestNote>()->setNode(document.get());
        }
    }
    context.insertNewObject<TestNote>(); // of nothing
    ASSERT_TRUE(context.save());
    const ZQObjectID inTop = top->objectID();
    const ZQObjectID inFull = full->objectID();
    const ZQObjectID inEmpty = empty->objectID();
    const int before = ZQObjectAccess::connection(context)->preparedUses();
    EXPECT_EQ(counted(context, "TestNode", "parent", {inTop, inFull, inEmpty}),
              (Counts{{inTop, 2}, {inFull, 5}, {inEmpty, 0}}));
    EXPECT_EQ(counted(context, "TestNode", "parent", {inFull, inEmpty}, "small < 2 OR title == \"%1\""),
              (Counts{{inFull, 3}, {inEmpty, 0}}));
    EXPECT_EQ(counted(context, "TestTag", "documents", {}), Counts());
    EXPECT_EQ(counted(context, "TestNote", "node", {inFull}), (Counts{{inFull, 0}}));
    EXPECT_EQ(ZQObjectAccess::connection(context)->preparedUses() - before, 4);

    QList<ZQObjectID> documents;
    for (const auto &each :
         context
             .fetchObjectIDs({.entityName = TestDocument::entityName(), .sortDescriptors = {{QStringLiteral("small")}}})
             .value_or(QList<ZQObjectID>())) {
        documents.append(each);
    }
    ASSERT_EQ(documents.size(), 5);
    EXPECT_EQ(counted(context, "TestTag", "documents", {documents[2], documents[3]}),
              (Counts{{documents[2], 1}, {documents[3], 2}}));
    rare->setWeight(9);
    ASSERT_TRUE(context.save());
    EXPECT_EQ(counted(context, "TestTag", "documents", {documents[2], documents[3]}, "weight == 9"),
              (Counts{{documents[2], 1}, {documents[3], 1}}));
    EXPECT_EQ(counted(context, "TestNode", "notes.node", {documents[0], documents[4]}),
              (Counts{{documents[0], 0}, {documents[4], 4}}));
    EXPECT_EQ(counted(context, "TestNode", "notes.node", {documents[3], documents[4]}, "small == 4"),
              (Counts{{documents[3], 3}, {documents[4], 0}}));
    EXPECT_EQ(counted(context, "TestNode", "children.parent", {inTop, inFull}, "title != nil"),
              (Counts{{inTop, 2}, {inFull, 5}}));

    context.insertNewObject<TestDocument>()->setParent(empty.get());
    EXPECT_EQ(counted(context, "TestNode", "parent", {inEmpty}), (Counts{{inEmpty, 0}})) << "as it was saved";

    for (const auto &[entity, by, excluded] : {std::tuple{"TestNode", "title", ""},
                                               {"TestNode", "children", ""},
                                               {"TestNode", "no", ""},
                                               {"TestNode", "parent.parent", ""},
                                               {"TestNode", "notes.text", ""},
                                               {"TestNode", "notes.node.parent", ""},
                                               {"TestDocument", "tags", ""},
                                               {"Nothing", "tags", ""},
                                               {"TestNode", "parent", "missing == 1"}}) {
        ZQError error;
        EXPECT_FALSE(counted(context, entity, by, {inTop}, *excluded ? excluded : nullptr, &error)) << entity << by;
        EXPECT_FALSE(error.isNull()) << entity << by;
    }
    ASSERT_TRUE(store.coordinator()->newConnection()->execute(
        QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE TestNode RENAME TO away")));
    ZQError error;
    EXPECT_FALSE(counted(context, "TestNode", "parent", {inTop}, nullptr, &error));
    EXPECT_FALSE(error.isNull());
}
