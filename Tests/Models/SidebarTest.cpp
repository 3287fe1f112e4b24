#include "Models/DataModel/ZQLibraryImage.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarLibrary.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarSeed.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Tests/Support/ScratchLibrary.h"

#include <gtest/gtest.h>

#include <array>

namespace {

class Sidebar : public testing::Test
{
protected:
    ScratchLibrary library;
    ZQManagedObjectContext &context = library.context();

    ZQRef<ZQSidebarProject> project(int members)
    {
        auto made = context.insertNewObject<ZQSidebarProject>();
        for (int i = 0; i < members; ++i) {
            made->addItem(library.addImage(QStringLiteral("member%1").arg(i)).get());
        }
        return made;
    }
    // "title:order" in the order of the members, inactive ones too.
    static QStringList places(const ZQRef<ZQSidebarProject> &project)
    {
        QStringList places;
        for (const auto &membership : project->pItemsWithActiveItemsOnly(false)) {
            places.append(QStringLiteral("%1:%2").arg(membership->item()->title()).arg(membership->order()));
        }
        return places;
    }
};

TEST_F(Sidebar, SeedsTheFixedTree)
{
    zqSeedFixedSidebar(context);
    struct Row
    {
        int kind;
        const char *entity;
        const char *title;
        int parent; // -1: none
        int order;
        bool label, special, tag;
    };
    const Row rows[] = {
        {0, "ZQSidebarBaseItem", "LIBRARY", -1, 0, true, false, false},
        {1, "ZQSidebarLibrary", "Library", 0, 0, false, true, false},
        {2, "ZQSidebarRecent", "Recent", 0, 1, false, true, false},
        {3, "ZQSidebarScreenshot", "Screenshots", 0, 2, false, true, false},
        {101, "ZQSidebarFolder", "PROJECTS", -1, 2, true, false, false},
        {102, "ZQSidebarFolder", "LIVE FOLDERS", -1, 3, true, false, false},
        {201, "ZQSidebarTag", "TAGS", -1, 0, true, false, true},
        {202, "ZQSidebarTag", "SIZES", -1, 1, true, false, true},
        {203, "ZQSidebarTag", "COLORS", -1, 2, true, false, true},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.title);
        const auto item = ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(row.kind), context);
        ASSERT_TRUE(item);
        EXPECT_EQ(item->entity()->name, QLatin1String(row.entity));
        EXPECT_EQ(item->title(), QLatin1String(row.title));
        EXPECT_EQ(item->father() ? item->father()->kind() : -1, row.parent);
        EXPECT_EQ(item->order(), row.order);
        EXPECT_EQ(item->isLabel(), row.label);
        EXPECT_EQ(item->isSpecial(), row.special);
        EXPECT_EQ(item->isTag(), row.tag);
        EXPECT_TRUE(item->creation_date().isValid());
    }
    EXPECT_FLOAT_EQ(ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context)->zoom(), 0.445F);
    EXPECT_EQ(ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context)->sortKeys(), 1);
    EXPECT_FALSE(ZQSidebarBaseItem::recentProjectInManagedObjectContext(context)->sortDirection());
    EXPECT_FALSE(ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(context)->sortDirection());
    EXPECT_EQ(ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context)->orderedChildren().value(0)->title(),
              QStringLiteral("Sample project"));
    EXPECT_EQ(ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context)->orderedChildren().value(0)->title(),
              QStringLiteral("Sample tag"));
}

TEST_F(Sidebar, SeedsTheGeneratedTagsInCodeOrderAndOnlyOnce)
{
    zqSeedFixedSidebar(context);
    library.reopenContext();
    zqSeedFixedSidebar(library.context());
    const auto colors = ZQSidebarBaseItem::colorsLabelInManagedObjectContext(library.context())->orderedChildren();
    ASSERT_EQ(colors.size(), 10);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(colors.at(i)->kind(), 1000 + i);
        EXPECT_EQ(colors.at(i)->order(), i);
        EXPECT_EQ(ZQSidebarTag::colorValueForName(colors.at(i)->title()), 1000 + i);
    }
    const auto sizes = ZQSidebarBaseItem::sizeLabelInManagedObjectContext(library.context())->orderedChildren();
    ASSERT_EQ(sizes.size(), 5);
    EXPECT_EQ(sizes.at(4)->title(), QStringLiteral("vector"));
    EXPECT_EQ(ZQSidebarBaseItem::projectsLabelInManagedObjectContext(library.context())->numberofChilds(), 1);
    // Nine fixed entries, fifteen generated tags, two samples.
    EXPECT_EQ(zqCount(library.context(), {.entityName = ZQSidebarBaseItem::entityName()}), 26);
}

TEST_F(Sidebar, GivesFixedEntriesTheirTitlesBackAndLeavesOthersAlone)
{
    zqSeedFixedSidebar(context);
    const std::pair<int, const char *> titles[] = {{0, "LIBRARY"},   {2, "Recent"},   {2001, "icon"},   {2004, "large"},
                                                   {2005, "vector"}, {1000, "white"}, {1004, "orange"}, {1009, "pink"}};
    for (const auto &[kind, title] : titles) {
        ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(kind), context)->setTitle(QStringLiteral("x"));
    }
    zqUpdateFixedTitles(context);
    for (const auto &[kind, title] : titles) {
        EXPECT_EQ(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(kind), context)->title(),
                  QLatin1StringView(title));
    }
    EXPECT_TRUE(ZQSidebarTag::tagWithTagName(QStringLiteral("Sample tag"), context));
}

TEST_F(Sidebar, InsertingAMemberMovesTheLaterOnesUp)
{
    const auto p = project(3);
    EXPECT_TRUE(p->addItem(library.addImage(QStringLiteral("new")).get(), 1));
    EXPECT_EQ(places(p), (QStringList{QStringLiteral("member0:0"), QStringLiteral("new:1"), QStringLiteral("member1:2"),
                                      QStringLiteral("member2:3")}));
}

TEST_F(Sidebar, AMemberIsAddedOnceAndAnIndexBeyondTheEndIsTheEnd)
{
    const auto p = project(2);
    const auto before = places(p);
    EXPECT_FALSE(p->addItem(p->items().first().get(), 1));
    EXPECT_FALSE(p->addItem(p->items().first().get()));
    EXPECT_EQ(places(p), before);
    EXPECT_TRUE(p->addItem(library.addImage(QStringLiteral("far")).get(), 99));
    EXPECT_EQ(places(p).last(), QStringLiteral("far:2"));
}

TEST_F(Sidebar, AppendingComesLastAlsoAfterRemovals)
{
    const auto p = project(3);
    p->removeItem(p->items().first().get());
    p->addItem(library.addImage(QStringLiteral("last")).get());
    EXPECT_EQ(places(p),
              (QStringList{QStringLiteral("member1:1"), QStringLiteral("member2:2"), QStringLiteral("last:3")}));
    // With a gap in front, the index still says the place.
    p->addItem(library.addImage(QStringLiteral("second")).get(), 1);
    const auto damaged = project(3);
    for (const auto &membership : damaged->pItems()) {
        membership->setOrder(0);
    }
    damaged->addItem(library.addImage(QStringLiteral("z")).get());
    EXPECT_EQ(places(damaged).value(3), QStringLiteral("z:3"));
    EXPECT_TRUE(places(p).value(1).startsWith(QStringLiteral("second:")));
    EXPECT_TRUE(places(p).last().startsWith(QStringLiteral("last:")));
}

TEST_F(Sidebar, AddingManyIsAddingOneAfterAnother)
{
    struct Case
    {
        const char *name;
        QList<quint32> indexes;
    };
    const Case cases[] = {{"consecutive", {1, 2, 3}},
                          {"scattered", {3, 0, 2}},
                          {"same place", {1, 1, 1}},
                          {"at the end", {}},
                          {"beyond", {50, 51, 9}}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        const auto together = project(3);
        const auto single = project(3);
        QList<ZQRef<ZQLibraryBaseItem>> fresh;
        for (int i = 0; i < 3; ++i) {
            fresh.append(library.addImage(QStringLiteral("new%1").arg(i)));
        }
        together->addItems(fresh, each.indexes);
        for (int i = 0; i < 3; ++i) {
            single->addItem(fresh.at(i).get(), each.indexes.value(i, ZQSidebarBaseItem::appendIndex));
        }
        EXPECT_EQ(places(together), places(single));
        EXPECT_EQ(together->numberOfItems(), 6);
    }
}

TEST_F(Sidebar, AddingManySkipsMembersAndRepeats)
{
    const auto p = project(2);
    ASSERT_TRUE(context.save()); // members found in the store
    const auto pending = library.addImage(QStringLiteral("pending"));
    p->addItem(pending.get()); // and one not saved yet
    const auto fresh = library.addImage(QStringLiteral("new"));
    p->addItems({p->items().first(), pending, fresh, fresh});
    EXPECT_EQ(p->numberOfItems(), 4);
}

TEST_F(Sidebar, CountsAndListsOnlyActiveItems)
{
    const auto p = project(3);
    const auto second = p->items().at(1);
    second->setActive(false);
    EXPECT_EQ(p->numberOfItems(), 2);
    EXPECT_EQ(p->pItems().size(), 2);
    EXPECT_EQ(p->pItemsWithActiveItemsOnly(false).size(), 3);
    EXPECT_EQ(p->orderOfItem(second.get()), 1);
    EXPECT_EQ(p->numberOfItemsWithPredicate(
                  ZQPredicate::predicateWithFormat(QStringLiteral("item.title == %@"), {QStringLiteral("member2")})),
              1);
    // Adding an inactive item restores it, although it is a member already.
    EXPECT_FALSE(p->addItem(second.get()));
    EXPECT_TRUE(second->active());
}

TEST_F(Sidebar, SortsMembersByKeysWithAndWithoutPrefix)
{
    const auto p = project(0);
    for (const char *title : {"b10", "a", "b9"}) {
        p->addItem(library.addImage(QString::fromLatin1(title)).get());
    }
    const auto titles = [&](ZQListRows rows) {
        QStringList list;
        for (const auto &item : p->itemsWithSortDescriptors(
                 ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Title, true, rows))) {
            list.append(item->title());
        }
        return list;
    };
    EXPECT_EQ(titles(ZQListRows::Memberships),
              (QStringList{QStringLiteral("a"), QStringLiteral("b9"), QStringLiteral("b10")}));
    EXPECT_EQ(titles(ZQListRows::LibraryItems), titles(ZQListRows::Memberships));
}

TEST_F(Sidebar, SortValuesNameTheirKeys)
{
    struct Case
    {
        int value;
        QStringList keys;
    };
    const auto list = [](std::initializer_list<const char *> keys) {
        QStringList strings;
        for (const char *key : keys) {
            strings.append(QLatin1String(key));
        }
        return strings;
    };
    const Case cases[] = {{1, list({"import_date", "title"})},
                          {2, list({"title", "import_date"})},
                          {3, list({"pixelTotal", "import_date"})},
                          {4, list({"mainColor", "SHA1", "title"})},
                          {5, {}},
                          {6, list({"modification_date", "title"})},
                          {7, list({"creation_date", "title"})},
                          {8, {}},
                          {-1, {}}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.value);
        const auto plain =
            ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue(each.value), false, ZQListRows::LibraryItems);
        const auto prefixed =
            ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue(each.value), false, ZQListRows::Memberships);
        ASSERT_EQ(plain.size(), each.keys.size());
        ASSERT_EQ(prefixed.size(), each.keys.size());
        for (qsizetype i = 0; i < plain.size(); ++i) {
            EXPECT_EQ(plain.at(i).keyPath, each.keys.at(i));
            EXPECT_EQ(prefixed.at(i).keyPath, QStringLiteral("item.") + each.keys.at(i));
            EXPECT_FALSE(plain.at(i).ascending);
        }
    }
    const auto manual =
        ZQSidebarBaseItem::sortDescriptorsForSortValue(ZQSortValue::Manual, false, ZQListRows::Memberships);
    ASSERT_EQ(manual.size(), 1);
    EXPECT_EQ(manual.first().keyPath, QStringLiteral("order"));
    EXPECT_TRUE(manual.first().ascending);
}

TEST_F(Sidebar, PlacesChildrenByIndexAndNeverBelowThemselves)
{
    const auto folder = context.insertNewObject<ZQSidebarFolder>();
    QList<ZQRef<ZQSidebarProject>> children;
    for (const char *title : {"a", "b", "c"}) {
        children.append(context.insertNewObject<ZQSidebarProject>());
        children.last()->setTitle(QString::fromLatin1(title));
        folder->appendChild(children.last().get());
    }
    const auto order = [&] {
        QString titles;
        for (const auto &child : folder->orderedChildren()) {
            titles += child->title() + QString::number(child->order());
        }
        return titles;
    };
    EXPECT_EQ(order(), QStringLiteral("a0b1c2"));
    folder->addChild(children.at(0).get(), 1);
    EXPECT_EQ(order(), QStringLiteral("b0a1c2"));
    folder->addChild(children.at(2).get(), 0);
    EXPECT_EQ(order(), QStringLiteral("c0b1a2"));

    const auto fresh = context.insertNewObject<ZQSidebarProject>();
    fresh->setTitle(QStringLiteral("n"));
    struct
    {
        std::array<int, 3> orders;
        quint32 index;
        const char *expected;
    } const places[] = {{{0, 1, 2}, 0, "n0c1b2a3"}, {{0, 1, 2}, 3, "c0b1a2n3"}, {{0, 1, 2}, 9, "c0b1a2n3"},
                        {{0, 1, 5}, 2, "c0b1n2a6"}, {{0, 5, 6}, 2, "c0b1n2a3"}, {{0, 0, 1}, 1, "b0n1c2a3"},
                        {{0, 1, 1}, 2, "c0a1n2b3"}, {{2, 3, 4}, 1, "c0n1b2a3"}, {{-1, 0, 1}, 2, "c0b1n2a3"},
                        {{0, 1, 2}, 2, "c0b1n2a3"}, {{5, 6, 7}, 0, "n0c6b7a8"}};
    for (const auto &place : places) {
        fresh->removeFromFather();
        for (size_t i = 0; i < 3; ++i) {
            children.at(std::array{2, 1, 0}[i])->setOrder(place.orders[i]);
        }
        folder->addChild(fresh.get(), place.index);
        EXPECT_EQ(order().toStdString(), place.expected) << place.index;
    }
    fresh->removeFromFather();
    folder->reorderChildren();
    EXPECT_EQ(order(), QStringLiteral("c0b1a2"));
    folder->addChild(nullptr, 0);
    folder->addChild(folder.get(), 0);
    EXPECT_EQ(order(), QStringLiteral("c0b1a2"));

    const auto inner = context.insertNewObject<ZQSidebarFolder>();
    folder->appendChild(inner.get());
    inner->addChild(folder.get(), 0);
    EXPECT_FALSE(folder->father());
    EXPECT_TRUE(inner->isDescendantOfItem(folder.get()));
    EXPECT_FALSE(folder->isDescendantOfItem(inner.get()));
    inner->removeFromFather();
    EXPECT_EQ(folder->numberofChilds(), 3);
}

TEST_F(Sidebar, ATreeIsLookedUpAThousandLevelsHighAndADamagedOneComesToAnEnd)
{
    constexpr int levels = 1000;
    QList<ZQRef<ZQSidebarFolder>> chain;
    for (int i = 0; i <= levels + 1; ++i) {
        chain.append(context.insertNewObject<ZQSidebarFolder>());
        if (i > 0) {
            chain.last()->setFather(chain.at(i - 1).get());
        }
    }
    EXPECT_TRUE(chain.at(levels)->isDescendantOfItem(chain.first().get()));
    EXPECT_FALSE(chain.at(levels + 1)->isDescendantOfItem(chain.first().get()));
    chain.first()->setFather(chain.at(1).get());
    EXPECT_FALSE(chain.at(1)->isDescendantOfItem(chain.last().get()));
}

TEST_F(Sidebar, OrdersChildrenByTitleAndNumbersThemAfresh)
{
    const auto folder = context.insertNewObject<ZQSidebarFolder>();
    for (const char *title : {"b10", "Z", "b9", "\xc3\xa4"}) {
        const auto child = context.insertNewObject<ZQSidebarProject>();
        child->setTitle(QString::fromUtf8(title));
        child->setFather(folder.get());
        child->setOrder(folder->numberofChilds() * 7);
    }
    QStringList titles;
    for (const auto &child : folder->alphabeticOrderedChildren()) {
        titles.append(child->title());
    }
    EXPECT_EQ(titles,
              (QStringList{QStringLiteral("ä"), QStringLiteral("b9"), QStringLiteral("b10"), QStringLiteral("Z")}));
    folder->reorderChildren();
    qint32 position = 0;
    for (const auto &child : folder->orderedChildren()) {
        EXPECT_EQ(child->order(), position++);
    }
    EXPECT_EQ(folder->orderedChildren().first()->title(), QStringLiteral("b10"));
}

TEST_F(Sidebar, AMembershipIsRemovedOnlyFromItsOwnProject)
{
    const auto p = project(2);
    const auto other = project(1);
    other->removeProjectItem(p->pItems().first().get());
    EXPECT_EQ(p->numberOfItems(), 2);
    p->removeProjectItem(p->pItems().first().get());
    EXPECT_EQ(p->numberOfItems(), 1);
}

TEST_F(Sidebar, MembersAreKnownAmongMoreThanOneStatementTakesAndDeletedOnesComeBack)
{
    constexpr int count = 501;
    const auto p = context.insertNewObject<ZQSidebarProject>();
    QList<ZQRef<ZQLibraryBaseItem>> items;
    for (int i = 0; i < count; ++i) {
        items.append(context.insertNewObject<ZQLibraryImage>());
        items.last()->setActive(i > 0);
    }
    p->addItems(items);
    EXPECT_TRUE(items.first()->active());
    ASSERT_TRUE(context.save());
    p->addItems(items);
    EXPECT_EQ(p->numberOfItems(), count);
    const auto all = context.insertNewObject<ZQSidebarLibrary>();
    items.first()->setActive(false);
    EXPECT_TRUE(all->addItem(items.first().get()));
    EXPECT_TRUE(items.first()->active());
    EXPECT_FALSE(all->addItem(items.first().get()));
}

TEST_F(Sidebar, RecentReachesBackSevenDaysInFourGroups)
{
    const QDateTime now = zqNow();
    const auto recent = context.insertNewObject<ZQSidebarRecent>();
    struct Case
    {
        QDateTime imported;
        bool isRecent;
        const char *group;
    };
    const QDateTime hour = now.addSecs(-3600);
    const QDateTime week = now.addDays(-7);
    const QDateTime yesterday = QDate::currentDate().addDays(-1).startOfDay().toUTC();
    for (const Case &each :
         {Case{hour.addSecs(60), true, "Last Hour"},
          {week.addSecs(60), true, "Last Week"},
          {hour.addSecs(-60), true, hour.addSecs(-60) < yesterday.addDays(1) ? "Yesterday" : "Today"},
          {week.addSecs(-60), false, ""},
          {yesterday.addSecs(-60), true, "Last Week"}}) {
        const auto item = library.addImage(QStringLiteral("item"));
        item->setImport_date(each.imported);
        EXPECT_EQ(recent->containsItem(item.get()), each.isRecent) << each.group;
        EXPECT_EQ(recent->numberOfItems(), each.isRecent ? 1 : 0);
        QString group;
        for (const ZQSidebarRecent::Group &span : ZQSidebarRecent::groups()) {
            group += span.predicate.evaluateWithObject(item.get()) ? span.title : QString();
        }
        EXPECT_EQ(group, QLatin1String(each.group));
        item->deletePermanently();
    }
}

TEST_F(Sidebar, PurgeRemovesInactiveItemsWithAllBelowButNoLibraryItem)
{
    const auto folder = context.insertNewObject<ZQSidebarFolder>();
    const auto p = project(2);
    folder->appendChild(p.get());
    const auto kept = project(1);
    ASSERT_TRUE(context.save());
    folder->deleteSelf();
    ZQSidebarBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(context);
    ASSERT_TRUE(context.save());
    EXPECT_EQ(zqCount(context, {.entityName = ZQSidebarBaseItem::entityName()}), 1);
    EXPECT_EQ(zqCount(context, {.entityName = ZQProjectItem::entityName()}), 1);
    EXPECT_EQ(zqCount(context, {.entityName = ZQLibraryBaseItem::entityName()}), 3);
}

TEST_F(Sidebar, FoldersListTheMembersOfTheirProjectsOneAfterAnother)
{
    const auto folder = context.insertNewObject<ZQSidebarFolder>();
    const auto first = project(2);
    const auto second = project(1);
    folder->appendChild(first.get());
    folder->appendChild(second.get());
    const auto result = ZQSidebarFolder::subprojectsChildsItemsWithSortDescriptors({}, {folder, first}, context);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->projectsCounts, (QList<qint64>{2, 1}));
    EXPECT_EQ(result->sortedResults.size(), 3);
    EXPECT_EQ(result->subprojects.size(), 2);
}

TEST_F(Sidebar, KindsSayWhatTheyAre)
{
    zqSeedFixedSidebar(context);
    const auto droppable = [&](int kind) {
        return ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(kind), context)->isDroppableLabel();
    };
    EXPECT_TRUE(droppable(101));
    EXPECT_TRUE(droppable(102));
    EXPECT_TRUE(droppable(201));
    EXPECT_FALSE(droppable(0));
    EXPECT_FALSE(droppable(202));
    const auto all = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(context);
    const auto recent = ZQSidebarBaseItem::recentProjectInManagedObjectContext(context);
    const auto screenshots = ZQSidebarBaseItem::screenshotProjectInManagedObjectContext(context);
    EXPECT_TRUE(all->isLibrary() && recent->isRecent() && screenshots->isScreenshot());
    EXPECT_EQ(ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(context)->kind(), 102);
    const auto said = [&](const ZQRef<ZQSidebarBaseItem> &item) {
        return (item->typeString() + u'/' + item->icon()).toStdString();
    };
    const auto tagOfKind = [&](int kind) {
        const auto tag = context.insertNewObject<ZQSidebarTag>();
        tag->setKind(qint16(kind));
        return ZQRef<ZQSidebarBaseItem>(tag);
    };
    EXPECT_EQ(all->typeString(), QStringLiteral("Library"));
    EXPECT_EQ(recent->typeString(), QStringLiteral("Recent"));
    EXPECT_EQ(screenshots->typeString(), QStringLiteral("Screenshots"));
    EXPECT_EQ(ZQRef<ZQSidebarBaseItem>(context.insertNewObject<ZQSidebarProject>())->typeString(),
              QStringLiteral("Project"));
    EXPECT_EQ(ZQRef<ZQSidebarBaseItem>(context.insertNewObject<ZQSidebarFolder>())->typeString(),
              QStringLiteral("Folder"));
    for (const int label : {101, 102, 201, 202, 203}) {
        EXPECT_EQ(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(label), context)->typeString(),
                  QStringLiteral("Label"))
            << label;
    }
    const std::pair<int, const char *> tags[] = {{0, "Tag/tag"},      {999, "Tag/tag"},   {1000, "Tag/color"},
                                                 {1009, "Tag/color"}, {1010, "Tag/tag"},  {2000, "Tag/tag"},
                                                 {2001, "Tag/size"},  {2005, "Tag/size"}, {2006, "Tag/tag"}};
    for (const auto &[kind, expected] : tags) {
        EXPECT_EQ(said(tagOfKind(kind)), expected) << kind;
    }
    EXPECT_NE(all->UUID(), recent->UUID());

    // What is put into a list of all items comes back when it was deleted; nothing else can be meant.
    const auto item = context.insertNewObject<ZQLibraryImage>();
    item->setImport_date(QDateTime::currentDateTimeUtc());
    for (const auto &list : {all, recent}) {
        item->setActive(false);
        EXPECT_FALSE(list->containsItem(item.get()) || list->containsItem(nullptr));
        EXPECT_TRUE(list->addItem(item.get()));
        EXPECT_TRUE(item->active() && list->containsItem(item.get()));
        EXPECT_FALSE(list->addItem(item.get())) << "it is there";
        item->setActive(false);
        EXPECT_TRUE(list->addItems({item}));
        EXPECT_TRUE(item->active());
        item->setActive(false);
        EXPECT_TRUE(list->restoreItems({item}, {3}));
        EXPECT_TRUE(item->active());
    }
    EXPECT_TRUE(screenshots->restoreItems({item}, {})) << "as many orders as items, or nothing";
    EXPECT_FALSE(screenshots->containsItem(item.get()) || screenshots->containsItem(nullptr));
    EXPECT_EQ(screenshots->orderOfItem(item.get()), -1);
    EXPECT_TRUE(screenshots->addItem(item.get()));
    EXPECT_TRUE(screenshots->containsItem(item.get()));
}

} // namespace
