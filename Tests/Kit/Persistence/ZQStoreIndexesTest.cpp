#include "Kit/Persistence/ZQStoreIndexes.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreInterruption.h"
#include "Tests/Kit/Persistence/TestModel.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <chrono>
#include <sqlite3.h>
#include <thread>

namespace {

// The test's model with `indexes` in the entity of the tree's nodes.
QByteArray modelWith(const QByteArray &indexes)
{
    return QByteArray(testModelJSON)
        .replace("\"TestNode\", \"abstract\": true,",
                 "\"TestNode\", \"abstract\": true, \"indexes\": " + indexes + ',');
}

const QByteArray wanted = R"([ {"properties": ["-date", "title"], "covering": true},
                               {"properties": ["small", "flag"], "where": {"flag": false, "small": {"not": null}}},
                               {"properties": ["parent", "medium"]} ])";

QHash<QString, QString> indexesOf(const QString &path)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadOnly, nullptr);
    QHash<QString, QString> found;
    ZQSQLiteStatement select = connection->prepare(
        QStringLiteral("SELECT name, sql FROM sqlite_master WHERE type = 'index' AND name NOT LIKE 'sqlite_%'"));
    while (select.next()) {
        found.insert(select.text(0), select.text(1));
    }
    return found;
}

QHash<QString, QString> indexesOf(const ZQManagedObjectModel &model)
{
    QHash<QString, QString> expected;
    for (const ZQStoreIndex &index : zqIndexesOfModel(model)) {
        expected.insert(index.name, index.sql);
    }
    return expected;
}

void execute(const QString &path, const QString &sql)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(connection->execute(sql)) << qPrintable(connection->error().localizedDescription());
}

QString value(const QString &path, const QString &sql)
{
    const auto connection = ZQSQLiteConnection::open(path, ZQSQLiteConnection::Mode::ReadOnly, nullptr);
    return connection->value(sql).toString();
}

void addNodes(const QString &path, int from, int count)
{
    execute(path,
            QStringLiteral("WITH RECURSIVE n(i) AS (SELECT %1 UNION ALL SELECT i + 1 FROM n WHERE i < %2) INSERT INTO "
                           "TestNode (id, entity, title, flag) SELECT i, 2, 'node ' || i, i % 50 != 0 FROM n; "
                           "INSERT OR REPLACE INTO zq_sequence SELECT 'TestNode', max(id) FROM TestNode")
                .arg(from)
                .arg(from + count - 1));
}

// How many thousand nodes the planner believes there are, to the nearest, by each index that has them all.
QString thousandsByStatistics(const QString &path)
{
    return value(path,
                 QStringLiteral("SELECT group_concat(DISTINCT CAST(round(CAST(stat AS INTEGER) / 1000.0) AS INTEGER)) "
                                "FROM sqlite_stat1 WHERE tbl = 'TestNode' AND idx NOT LIKE '%where%'"));
}

} // namespace

TEST(ZQStoreIndexes, AModelDeclaresCompoundPartialAndCoveringOnes)
{
    const auto plain = ZQManagedObjectModel::modelFromJSON(testModelJSON);
    const auto model = ZQManagedObjectModel::modelFromJSON(modelWith(wanted));
    ASSERT_TRUE(model);
    EXPECT_EQ(model->entityVersionHashes(), plain->entityVersionHashes()) << "indexes are no other form of a row";
    const QStringList made = indexesOf(*model).values();
    for (
        const char *sql :
        {R"(CREATE INDEX "zq_index_TestNode_date_descending_title_covering" ON "TestNode"("date" DESC, "title", "id", "entity"))",
         R"(CREATE INDEX "zq_index_TestNode_small_flag_where_flag_0_with_small" ON "TestNode"("small", "flag") WHERE "flag" IS 0 AND "small" IS NOT NULL)",
         R"(CREATE INDEX "zq_index_TestNode_parent_medium" ON "TestNode"("parent", "medium"))",
         R"(CREATE INDEX "zq_index_TestNode_title" ON "TestNode"("title"))"}) {
        EXPECT_TRUE(made.contains(QLatin1String(sql))) << sql;
    }
    EXPECT_EQ(made.size(), indexesOf(*plain).size() + 2) << "the one of the parent's column alone is not needed";
}

TEST(ZQStoreIndexes, AConditionMayBeThatThereIsNothing)
{
    const auto model = ZQManagedObjectModel::modelFromJSON(modelWith(
        R"([{"properties": ["large"], "where": {"parent": null}}, {"properties": ["title"], "where": {"title": {"not": null}}},
            {"properties": ["parent"], "where": {"title": {"not": null}}}])"));
    ASSERT_TRUE(model);
    QStringList names;
    for (const ZQStoreIndex &index : zqIndexesOfModel(*model)) {
        names.append(index.name);
        EXPECT_EQ(index.sql.contains(QStringLiteral(" WHERE \"parent\" IS NULL")),
                  index.name == QStringLiteral("zq_index_TestNode_large_without_parent"));
    }
    EXPECT_TRUE(names.contains(QStringLiteral("zq_index_TestNode_large_without_parent")));
    EXPECT_TRUE(names.contains(QStringLiteral("zq_index_TestNode_title_with_title")));
    EXPECT_FALSE(names.contains(QStringLiteral("zq_index_TestNode_title"))) << "the other finds every title";
    EXPECT_TRUE(names.contains(QStringLiteral("zq_index_TestNode_parent")))
        << "the other finds only those with a title";
}

TEST(ZQStoreIndexes, FaultsAreNamedByEntityAndProperty)
{
    struct
    {
        const char *indexes;
        const char *named;
    } const cases[] = {
        {R"([{"properties": ["title", "colour"]}])", "TestNode.colour"},
        {R"([{"properties": ["children"]}])", "TestNode.children"},
        {R"([{"properties": ["author"]}])", "TestNode.author"}, // of a sub-entity
        {R"([{"properties": ["title", "-title"]}])", "TestNode.title"},
        {R"([{"properties": []}])", "properties"},
        {R"({"properties": ["title"]})", "indexes"},
        {R"([{"properties": ["title"], "unique": true}])", "unique"},
        {R"([{"properties": ["title"], "covering": "yes"}])", "covering"},
        {R"([{"properties": ["title"], "where": {"colour": null}}])", "TestNode.colour"},
        {R"([{"properties": ["title"], "where": {"flag": 2}}])", "TestNode.flag"},
        {R"([{"properties": ["title"], "where": {"small": 40000}}])", "TestNode.small"},
        {R"([{"properties": ["title"], "where": {"title": "x"}}])", "TestNode.title"},
        {R"([{"properties": ["title"], "where": {"flag": {"is": null}}}])", "TestNode.flag"},
    };
    for (const auto &each : cases) {
        ZQError error;
        EXPECT_FALSE(ZQManagedObjectModel::modelFromJSON(modelWith(each.indexes), &error)) << each.indexes;
        EXPECT_TRUE(error.localizedDescription().contains(QLatin1String(each.named)))
            << qPrintable(error.localizedDescription());
    }
}

TEST(ZQStoreIndexes, AStoreOfTheSameVersionIsGivenThoseOfItsModelWhenItOpens)
{
    TestStore store;
    ASSERT_TRUE(store.coordinator());
    store.close();
    addNodes(store.path, 1, 3000);
    const QString uuid = value(store.path, QStringLiteral("SELECT value FROM zq_metadata WHERE key = 'uuid'"));
    const QString mine = QStringLiteral("CREATE INDEX mine ON TestNode(large)");
    execute(store.path, mine);

    store.model = ZQManagedObjectModel::modelFromJSON(modelWith(wanted));
    QHash<QString, QString> expected = indexesOf(*store.model);
    expected.insert(QStringLiteral("mine"), mine);
    const QString half = QStringLiteral("DROP INDEX zq_index_TestNode_parent_medium; "
                                        "CREATE INDEX zq_index_TestNode_flag ON TestNode(flag)");
    const QString foreign = QStringLiteral("DROP INDEX zq_index_TestNode_title; "
                                           "CREATE INDEX zq_index_TestNode_title ON TestNode(title, large)");
    for (const QString &before : {QString(), half, foreign}) {
        SCOPED_TRACE(qPrintable(before));
        if (!before.isEmpty()) {
            execute(store.path, before);
        }
        ASSERT_NE(indexesOf(store.path), expected);
        ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
        EXPECT_EQ(indexesOf(store.path), expected);
        EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
        EXPECT_TRUE(store.coordinator()->pendingVersions()->isEmpty()) << "it is no migration";
        store.close();
    }
    EXPECT_EQ(value(store.path, QStringLiteral("SELECT count(*) FROM TestNode")), QStringLiteral("3000"));
    EXPECT_EQ(value(store.path, QStringLiteral("SELECT value FROM zq_metadata WHERE key = 'uuid'")), uuid);
}

TEST(ZQStoreIndexes, AMigratedStoreHasThoseOfItsNewModelAndStatistics)
{
    TestStore store(QByteArray(testModelJSON)
                        .replace("Version2", "Version1")
                        .replace("{ \"name\": \"large\", \"type\": \"integer64\" },", ""));
    ASSERT_TRUE(store.coordinator());
    store.close();
    addNodes(store.path, 1, 3000);
    store.model = ZQManagedObjectModel::modelFromJSON(modelWith(wanted));
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(store.coordinator()->pendingVersions(), QStringList{QStringLiteral("Version2")});
    EXPECT_EQ(indexesOf(store.path), indexesOf(*store.model));
    EXPECT_EQ(thousandsByStatistics(store.path), QStringLiteral("3"));
}

TEST(ZQStoreIndexes, ALargeStoreThatLacksThemOpensSlowly)
{
    TestStore store;
    ASSERT_TRUE(store.coordinator());
    store.close();
    const auto other = ZQManagedObjectModel::modelFromJSON(modelWith(wanted));
    EXPECT_FALSE(ZQPersistentStoreCoordinator::opensSlowly(*other, store.path)) << "it is small";
    execute(store.path, QStringLiteral("INSERT INTO TestNode (id, entity, blob) VALUES (1, 2, zeroblob(40000000))"));
    EXPECT_FALSE(ZQPersistentStoreCoordinator::opensSlowly(*store.model, store.path)) << "it has them";
    EXPECT_TRUE(ZQPersistentStoreCoordinator::opensSlowly(*other, store.path));
    EXPECT_FALSE(ZQPersistentStoreCoordinator::opensSlowly(*other, store.path + u'x'));
}

TEST(ZQStoreIndexes, ThePlannerIsToldHowMuchThereIsAsTheStoreGrows)
{
    TestStore store(modelWith(wanted));
    ASSERT_TRUE(store.coordinator());
    store.close();
    addNodes(store.path, 1, 3000);
    ASSERT_TRUE(store.coordinator()); // after an opening
    EXPECT_EQ(thousandsByStatistics(store.path), QStringLiteral("3")) << "one number for all that hold every row";
    EXPECT_EQ(
        value(store.path, QStringLiteral("SELECT CAST(stat AS INTEGER) FROM sqlite_stat1 WHERE idx LIKE '%where%'")),
        QString())
        << "no node is in the partial one";

    addNodes(store.path, 3001, 3000); // not a multiple
    store.close();
    EXPECT_EQ(thousandsByStatistics(store.path), QStringLiteral("3"));
    ASSERT_TRUE(store.coordinator());
    addNodes(store.path, 6001, 14000);
    store.close(); // at closing
    EXPECT_GE(thousandsByStatistics(store.path).toInt(), 10);

    execute(store.path, QStringLiteral("DELETE FROM sqlite_stat1"));
    {
        ZQManagedObjectContext context(store.coordinator());
        execute(store.path, QStringLiteral("DELETE FROM sqlite_stat1"));
        for (int i = 0; i < 10000; ++i) {
            context.insertNewObject<TestFolder>();
        }
        ASSERT_TRUE(context.save());
        EXPECT_GE(thousandsByStatistics(store.path).toInt(), 10) << "after large saves";
    }
}

TEST(ZQStoreIndexes, AreMadeOnceThoughTheyAreDeclaredTwice)
{
    TestStore store(modelWith(R"([ {"properties": ["small", "flag"]}, {"properties": ["small", "flag"]} ])"));
    ASSERT_TRUE(store.model);
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    store.close();
    EXPECT_EQ(indexesOf(store.path), indexesOf(*store.model));
    EXPECT_EQ(zqIndexesOfModel(*store.model).size(), indexesOf(*store.model).size());
}

TEST(ZQStoreIndexes, AnOpeningThatIsCancelledIsGoneOnWithAtTheNext)
{
    TestStore store;
    ASSERT_TRUE(store.coordinator());
    store.close();
    addNodes(store.path, 1, 30000);
    ASSERT_TRUE(store.coordinator()); // which knows how much there is, and nothing of the indexes to come
    store.close();
    store.model = ZQManagedObjectModel::modelFromJSON(modelWith(wanted));
    const auto before = indexesOf(store.path);
    const auto missing = [&] {
        QHash<QString, QString> result = indexesOf(*store.model);
        const auto there = indexesOf(store.path);
        result.removeIf([&there](const auto &entry) { return there.contains(entry.key()); });
        return result.size();
    };
    ASSERT_GE(missing(), 2);
    {
        const auto cancellation = std::make_shared<ZQCancellation>();
        cancellation->cancel();
        const ZQCancellation::Scope scope(cancellation);
        EXPECT_FALSE(store.coordinator());
        EXPECT_EQ(store.error.code, int(ZQStoreError::Cancelled));
        EXPECT_EQ(indexesOf(store.path), before);
        EXPECT_GT(QFileInfo(store.path + QStringLiteral("-wal")).size(), 0)
            << "the log is not worked in before the end";
    }
    // Behind the first of them that is made, and behind the last, of which nothing but the statistics is missing then.
    for (const qsizetype left : {missing() - 1, qsizetype(0)}) {
        SCOPED_TRACE(left);
        struct Commits
        {
            qsizetype left;
            std::shared_ptr<ZQCancellation> cancellation = std::make_shared<ZQCancellation>();
        } commits{1 + missing() - left}; // the first one forgets the statistics
        const ZQCancellation::Scope scope(commits.cancellation);
        const auto connection = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
        const ZQStoreInterruption interruption(*connection);
        sqlite3_commit_hook(
            connection->handle(),
            [](void *context) {
                auto *self = static_cast<Commits *>(context);
                if (--self->left == 0) {
                    self->cancellation->cancel();
                }
                return self->left < 0 ? 1 : 0; // however quick the next one is
            },
            &commits);
        EXPECT_FALSE(zqUpdateIndexes(*connection, *store.model));
        EXPECT_EQ(missing(), left);
    }
    store.error = {};
    ASSERT_TRUE(store.coordinator()) << qPrintable(store.error.localizedDescription());
    EXPECT_EQ(indexesOf(store.path), indexesOf(*store.model));
    EXPECT_EQ(value(store.path, QStringLiteral("SELECT count(*) > 0 FROM sqlite_stat1 WHERE idx LIKE '%date%'")),
              QStringLiteral("1"))
        << "those of the new ones were taken too";
    EXPECT_EQ(value(store.path, QStringLiteral("SELECT count(*) FROM TestNode")), QStringLiteral("30000"));
    EXPECT_TRUE(store.coordinator()->checkIntegrity().isEmpty());
}

// A commit may bring one along, and it asks nobody whether it is still wanted.
TEST(ZQStoreIndexes, WorkingInTheLogEndsOnceTheOpeningIsCancelled)
{
    TestStore store;
    ASSERT_TRUE(store.coordinator());
    const auto writer = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    const auto opened = ZQSQLiteConnection::open(store.path, ZQSQLiteConnection::Mode::ReadWrite, nullptr);
    ASSERT_TRUE(opened->value(QStringLiteral("SELECT count(*) FROM TestNode")).isValid());
    const auto cancellation = std::make_shared<ZQCancellation>();
    const ZQCancellation::Scope scope(cancellation);
    const ZQStoreInterruption interruption(*opened);
    const auto workIn = [&] {
        EXPECT_TRUE(writer->execute(QStringLiteral("INSERT OR REPLACE INTO zq_metadata VALUES ('test', 1)")));
        return sqlite3_wal_checkpoint_v2(opened->handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    };
    EXPECT_EQ(workIn(), SQLITE_OK);
    cancellation->cancel();
    int result = SQLITE_OK;
    for (int attempt = 0; attempt < 1000 && result == SQLITE_OK; ++attempt) { // who interrupts it looks now and then
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        result = workIn();
    }
    EXPECT_EQ(result, SQLITE_INTERRUPT);
}
