#include "Kit/Persistence/ZQContextPrivate.h"
#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Kit/Persistence/FailingCalls.h"
#include "Tests/Support/ScratchLibrary.h"

#include <gtest/gtest.h>

#include <random>

// Members of projects and tags by the thousand: what is done to all is asked in batches, and who is not concerned is
// neither read nor written.

namespace {

using Items = QList<ZQRef<ZQLibraryBaseItem>>;

class Memberships : public testing::Test
{
protected:
    ScratchLibrary library;

    ZQManagedObjectContext &context() { return library.context(); }
    const ZQSQLiteConnection &connection() { return *ZQObjectAccess::connection(context()); }

    Items makeItems(int count)
    {
        Items items;
        for (int i = 0; i < count; ++i) {
            items.append(context().insertNewObject<ZQLibraryImage>());
            items.last()->setTitle(QStringLiteral("item%1").arg(i));
        }
        return items;
    }
    // The one project, saved, in a context that has read nothing else.
    ZQRef<ZQSidebarProject> projectOf(int count)
    {
        const auto made = context().insertNewObject<ZQSidebarProject>();
        made->setTitle(QStringLiteral("Project"));
        made->addItems(makeItems(count));
        return reopened();
    }
    ZQRef<ZQSidebarProject> reopened()
    {
        library.reopenContext();
        return zqFetchFirst<ZQSidebarProject>(context(), QStringLiteral("title == 'Project'"));
    }
    QList<ZQObjectID> itemIDs()
    {
        return context().fetchObjectIDs({.entityName = ZQLibraryBaseItem::entityName()}).value();
    }
    static QList<std::pair<QString, qint32>> places(const ZQSidebarBaseItem &project)
    {
        QList<std::pair<QString, qint32>> places;
        const auto memberships = project.pItemsWithActiveItemsOnly(false);
        const auto kept = zqPrefetch(memberships, QStringLiteral("item"));
        for (const auto &membership : memberships) {
            places.append({membership->item()->title(), membership->order()});
        }
        return places;
    }
    qsizetype changedMemberships()
    {
        qsizetype count = 0;
        for (const auto &object : context().updatedObjects()) {
            count += object->entity()->name == ZQProjectItem::entityName() ? 1 : 0;
        }
        return count;
    }
};

} // namespace

TEST_F(Memberships, AreReadInBatches)
{
    constexpr int count = 1200;
    constexpr int batches = 3; // of 500
    auto project = projectOf(count);
    const auto tag = context().insertNewObject<ZQSidebarTag>();
    tag->setTitle(QStringLiteral("Tag"));
    ASSERT_TRUE(context().save());
    struct Case
    {
        const char *name;
        std::function<void(const Items &items)> use;
        int statements;
    };
    const QList<ZQSortDescriptor> byTitle = {{QStringLiteral("title")}};
    const Case cases[] = {
        {"listed in an order",
         [&](const Items &) { EXPECT_EQ(project->itemsWithSortDescriptors(byTitle).size(), count); }, 1 + batches},
        {"removed from the project", [&](const Items &items) { project->removeItems(items); }, batches},
        {"added to it again", [&](const Items &items) { project->addItems(items); }, batches + 2},
        {"tagged", [&](const Items &items) { tag->addItems(items); }, 2},
        {"tagged again", [&](const Items &items) { tag->addItems(items); }, 2},
        {"tag taken away", [&](const Items &items) { tag->removeItems(items); }, 2},
        {"projects named",
         [&](const Items &items) {
             const auto kept = zqPrefetch(items, QStringLiteral("projectsItems.project"));
             for (const auto &item : items) {
                 EXPECT_EQ(item->projects().size(), 1);
             }
         },
         2 * batches + 2},
    };
    for (const Case &test : cases) {
        SCOPED_TRACE(test.name);
        const Items items = ZQLibraryBaseItem::itemsWithIDs(itemIDs(), context());
        ASSERT_EQ(items.size(), count);
        for (const auto &item : items) {
            item->title(); // fills what an earlier case left as faults
        }
        const int before = connection().preparedUses();
        test.use(items);
        EXPECT_LE(connection().preparedUses() - before, test.statements);
        ASSERT_TRUE(context().save());
    }
    EXPECT_EQ(project->numberOfItems(), count);
}

TEST_F(Memberships, ReturnToTheirOrdersWithoutMovingOthers)
{
    auto project = projectOf(600);
    const auto before = places(*project);
    Items some;
    QList<qint32> orders;
    for (int i = 7; i < 600; i += 20) {
        some.append(project->pItems().at(i)->item());
        orders.append(i);
    }
    project->removeItems(some);
    ASSERT_TRUE(context().save());
    ASSERT_EQ(project->numberOfItems(), 600 - some.size());

    const qint64 rows = connection().rowsRead();
    project->restoreItems(some, orders);
    EXPECT_EQ(changedMemberships(), 0);
    EXPECT_LE(connection().rowsRead() - rows, 3 * some.size());
    ASSERT_TRUE(context().save());
    EXPECT_EQ(places(*project), before);
    project->restoreItems(some, orders);
    EXPECT_EQ(places(*project), before) << "members already";
}

TEST_F(Memberships, MakeRoomForThoseThatReturnWherePlacesWereTaken)
{
    auto project = projectOf(6);
    const Items all = project->items();
    project->removeItems({all[1], all[2], all[5]}); // 0 3 4 left
    const Items newcomers = makeItems(2);
    newcomers[0]->setTitle(QStringLiteral("taker"));
    newcomers[1]->setTitle(QStringLiteral("last"));
    project->addItem(newcomers[0].get(), 1, false);
    project->addItem(newcomers[1].get()); // where the last one was
    ASSERT_TRUE(context().save());
    project->restoreItems({all[1], all[2], all[5]}, {1, 2, 5});
    const QList<std::pair<QString, qint32>> expected = {{"item0", 0}, {"item1", 1}, {"taker", 2}, {"item2", 3},
                                                        {"item3", 4}, {"item4", 5}, {"item5", 6}, {"last", 7}};
    EXPECT_EQ(places(*project), expected);
}

// Who is a member can be read in the first case, who is where in none: an order that is guessed is somebody else's.
TEST_F(Memberships, AreNotGuessedWhereTheStoreCannotBeRead)
{
    auto project = projectOf(3);
    const auto returning = project->items().at(1);
    project->removeItem(returning.get());
    const auto newcomer = makeItems(1).first();
    ASSERT_TRUE(context().save());
    const auto before = places(*project);
    const char *const faults[] = {
        "ALTER TABLE ZQProjectItem RENAME TO away; CREATE VIEW ZQProjectItem AS SELECT id, entity, version, item, "
        "project, abs(id - id - 9223372036854775807 - 1) AS \"order\" FROM away",
        "ALTER TABLE ZQProjectItem RENAME TO away"};
    for (const char *fault : faults) {
        SCOPED_TRACE(fault);
        const auto other = library.coordinator()->newConnection();
        const QString legacy = QStringLiteral("PRAGMA legacy_alter_table=ON; ");
        ASSERT_TRUE(other->execute(legacy + QLatin1StringView(fault)));
        ZQError error;
        EXPECT_FALSE(project->addItem(newcomer.get()));
        EXPECT_FALSE(project->addItem(newcomer.get(), 1));
        EXPECT_FALSE(project->addItems({newcomer}));
        EXPECT_FALSE(project->addItems({newcomer}, {1}, &error));
        EXPECT_FALSE(error.isNull());
        error = {};
        EXPECT_FALSE(project->restoreItems({newcomer, returning}, {0, 1}, &error));
        EXPECT_FALSE(error.isNull());
        EXPECT_TRUE(context().insertedObjects().isEmpty());
        EXPECT_EQ(changedMemberships(), 0);
        ASSERT_TRUE(other->execute(
            legacy + QStringLiteral("DROP VIEW IF EXISTS ZQProjectItem; ALTER TABLE away RENAME TO ZQProjectItem")));
    }
    EXPECT_EQ(places(*project), before);
    EXPECT_TRUE(project->restoreItems({newcomer, returning}, {0, 1}));
    EXPECT_EQ(project->orderOfItem(returning.get()), 2) << "one place taken, and what followed moved up";
}

TEST_F(Memberships, ChangeWhollyOrNotAtAllWhicheverReadFails)
{
    struct
    {
        const char *name;
        std::function<bool(ZQSidebarProject &project, const Items &members, const Items &others, ZQError *error)>
            change;
    } const cases[] = {
        {"at the end", [](auto &project, auto &, auto &others, ZQError *) { return project.addItem(others[0].get()); }},
        {"at a place",
         [](auto &project, auto &, auto &others, ZQError *) { return project.addItem(others[0].get(), 2); }},
        {"many at the end",
         [](auto &project, auto &, auto &others, ZQError *error) { return project.addItems(others, {}, error); }},
        {"many at places",
         [](auto &project, auto &, auto &others, ZQError *error) {
             return project.addItems(others, {1, 4}, error);
         }},
        {"returning",
         [](auto &project, auto &, auto &others, ZQError *error) {
             return project.restoreItems(others, {2, 9}, error);
         }},
        {"removed", [](auto &project, auto &members, auto &, ZQError *) { return project.removeItems(members), true; }},
    };
    projectOf(5);
    for (const auto &each : cases) {
        QList<std::pair<QString, qint32>> whole;
        forEachFailingCall([&](int number) {
            SCOPED_TRACE(testing::Message() << each.name << ", call " << number);
            const auto project = reopened();
            const auto before = places(*project);
            const Items members = project->items().mid(1, 2);
            const Items others = makeItems(2);
            ZQError error;
            int count = 0;
            bool isDone = false;
            {
                const FailingCalls failing(FailingCalls::Kind::Database, number);
                isDone = each.change(*project, members, others, &error);
                count = failing.count();
            }
            EXPECT_TRUE(isDone || number > 0);
            const auto now = places(*project);
            whole = number == 0 ? now : whole;
            EXPECT_TRUE(isDone ? now == whole || (number > 0 && now == before && each.name == QByteArray("removed"))
                               : now == before);
            EXPECT_NE(whole, before);
            context().rollback();
            return count;
        });
    }
}

// The members before the place are not even read; what comes out is as if all had been.
TEST_F(Memberships, AreInsertedByTheRuleOfOrders)
{
    auto project = projectOf(800);
    const qint64 rows = connection().rowsRead();
    project->addItem(makeItems(1).first().get(), 795);
    EXPECT_LE(connection().rowsRead() - rows, 20);
    EXPECT_EQ(changedMemberships(), 5);
    EXPECT_EQ(places(*project).at(795), std::pair(QStringLiteral("item0"), 795));
    EXPECT_EQ(places(*project).at(800), std::pair(QStringLiteral("item799"), 800));

    std::mt19937 random(7);
    const auto below = [&random](int bound) { return int(random() % unsigned(bound)); };
    for (int round = 0; round < 40; ++round) {
        const auto made = context().insertNewObject<ZQSidebarProject>();
        QStringList expected;
        qint32 order = -1;
        for (int i = below(8); i > 0; --i) {
            const auto item = makeItems(1).first();
            item->setTitle(QStringLiteral("old%1").arg(i));
            made->addItem(item.get(), quint32(order += 1 + (below(3) == 0 ? below(3) : 0)), false);
            expected.append(item->title());
        }
        if (round % 2 == 0) {
            ASSERT_TRUE(context().save());
        }
        const Items fresh = makeItems(1 + below(4));
        QList<quint32> indexes;
        for (qsizetype i = 0; i < fresh.size(); ++i) {
            indexes.append(below(3) == 0 || indexes.isEmpty() ? quint32(below(10)) : indexes.last() + 1);
            expected.insert(std::min<qsizetype>(indexes.last(), expected.size()), fresh[i]->title());
        }
        made->addItems(fresh, indexes);
        QStringList titles;
        for (const auto &[title, position] : places(*made)) {
            titles.append(title);
        }
        EXPECT_EQ(titles, expected) << "round " << round;
    }
}

TEST_F(Memberships, OfMembersThatAreDeletedForGoodCostNoQueryEach)
{
    constexpr int count = 700;
    auto project = projectOf(count);
    const auto tag = context().insertNewObject<ZQSidebarTag>();
    const Items items = project->items();
    tag->addItems(items);
    for (const auto &item : items) {
        item->setActive(false);
    }
    ASSERT_TRUE(context().save());
    int before = connection().preparedUses();
    ASSERT_TRUE(ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(context()).has_value());
    EXPECT_LE(connection().preparedUses() - before, 20);
    before = connection().preparedUses();
    ASSERT_TRUE(context().save());
    EXPECT_LE(connection().preparedUses() - before, 3 * count + 20) << "a statement for each row that goes";
    EXPECT_EQ(project->numberOfItems(), 0);
    EXPECT_TRUE(tag->taggedItemsIDs().isEmpty());
}
