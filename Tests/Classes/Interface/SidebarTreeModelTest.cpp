#include "Classes/Interface/Sidebar/SidebarTreeModel.h"
#include "Classes/Interface/Sidebar/SidebarTreeView.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Tests/Classes/Interface/WindowFixture.h"

class SidebarTreeModelTest : public WindowFixture
{
protected:
    void rename(const char *from, const char *to)
    {
        ASSERT_TRUE(library.coordinator()->newConnection()->execute(
            QStringLiteral("PRAGMA legacy_alter_table=ON; ALTER TABLE %1 RENAME TO %2")
                .arg(QLatin1String(from), QLatin1String(to))));
    }
    QModelIndex index(const Item &item) { return model.indexOf(item->objectID()); }
    // Everything below, as a walk through the model finds it.
    QStringList whole(const QModelIndex &above)
    {
        QStringList result;
        for (int row = 0; row < model.rowCount(above); ++row) {
            const QModelIndex at = model.index(row, 0, above);
            EXPECT_EQ(at.parent(), above);
            result.append(at.data().toString());
            EXPECT_EQ(model.hasChildren(at), model.rowCount(at) > 0) << qPrintable(result.last());
            const QStringList below = whole(at);
            if (!below.isEmpty()) {
                result.append(u'{' + below.join(u' ') + u'}');
            }
        }
        return result;
    }
    // As another process or an import does it.
    template <class Change>
    ZQContextDidSave elsewhere(Change change)
    {
        ZQManagedObjectContext other(library.coordinator());
        ZQContextDidSave saved;
        const auto token = other.observeDidSave([&](const ZQContextDidSave &what) { saved = what; });
        change(other);
        EXPECT_TRUE(other.save());
        return saved;
    }
    auto addElsewhere(const char *title, const Item &father)
    {
        return elsewhere([&](ZQManagedObjectContext &other) {
            const auto project = other.insertNewObject<ZQSidebarProject>();
            project->setTitle(QLatin1String(title));
            project->setActive(true);
            zqCast<ZQSidebarBaseItem>(other.objectWithID(father->objectID()))->appendChild(project.get());
        });
    }
    SidebarTreeModel model{window, SidebarTreeModel::Side::Projects};
    Item folder = addFolder(QStringLiteral("folder"));
    Item deep = addFolder(QStringLiteral("deep"), folder);
    Item deepest = addProject(QStringLiteral("deepest"), deep);
    Item loose = addProject(QStringLiteral("loose"));
};

TEST_F(SidebarTreeModelTest, ATreeThatCannotBeReadIsAnErrorAndNotAnEmptyTree)
{
    SidebarTreeView view;
    view.setTree(&model);
    view.resize(200, 300);
    const QImage empty = view.grab().toImage();
    rename("ZQSidebarBaseItem", "away");
    int failures = 0;
    QObject::connect(&model, &SidebarTreeModel::failed, &model, [&] { ++failures; });
    model.reload();
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_TRUE(model.emptyText().startsWith(QStringLiteral("The library could not be read\n\n")));
    EXPECT_NE(view.grab().toImage(), empty) << "the view says so";

    rename("away", "ZQSidebarBaseItem");
    model.reload();
    const int rows = model.rowCount();
    EXPECT_GT(rows, 0);
    EXPECT_TRUE(model.emptyText().isEmpty());

    rename("ZQSidebarBaseItem", "away");
    model.reload();
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(model.rowCount(), rows) << "what was read before stays";
    EXPECT_TRUE(model.emptyText().isEmpty());
    rename("away", "ZQSidebarBaseItem");
}

TEST_F(SidebarTreeModelTest, WhatCouldBeReadInPartOnlyLeavesTheTreeAsItWas)
{
    ASSERT_TRUE(library.context().save());
    model.reload();
    ASSERT_TRUE(index(deepest).isValid()) << "all above it is open";
    const QString before = whole(index(projects)).join(u' ');
    // A title far below that cannot be read, and nothing else.
    const auto connection = library.coordinator()->newConnection();
    const QString columns =
        connection
            ->value(
                QStringLiteral("SELECT group_concat(CASE name WHEN 'title' THEN 'CASE WHEN title = ''deepest'' THEN "
                               "abs(-9223372036854775807 - 1) ELSE title END AS title' ELSE '\"' || name || '\"' END) "
                               "FROM pragma_table_info('ZQSidebarBaseItem')"))
            .toString();
    rename("ZQSidebarBaseItem", "away");
    ASSERT_TRUE(
        connection->execute(QStringLiteral("CREATE VIEW ZQSidebarBaseItem AS SELECT %1 FROM away").arg(columns)));
    SidebarTreeModel atTheTop{window, SidebarTreeModel::Side::Projects};
    atTheTop.reload();
    EXPECT_TRUE(atTheTop.indexOf(projects->objectID()).isValid()) << "what is at the top can be read";
    int failures = 0;
    QObject::connect(&model, &SidebarTreeModel::failed, &model, [&] { ++failures; });
    model.reload();
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(whole(index(projects)).join(u' '), before);
    ASSERT_TRUE(connection->execute(QStringLiteral("DROP VIEW ZQSidebarBaseItem")));
    rename("away", "ZQSidebarBaseItem");
    model.reload();
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(whole(index(projects)).join(u' '), before);
}

TEST_F(SidebarTreeModelTest, TheNeighboursOfTheSelectionAreFiftyRowsOnEachSide)
{
    QList<ZQObjectID> rows;
    for (int i = 0; i < 120; ++i) {
        rows.append(addProject(QString::number(i))->objectID());
    }
    SidebarTreeView view;
    view.setTree(&model);
    model.reload();
    view.expand(index(projects));
    EXPECT_TRUE(view.neighboursOfSelection().isEmpty());
    view.selectionModel()->select(model.indexOf(rows[59]), QItemSelectionModel::ClearAndSelect);
    QList<ZQObjectID> nearest = rows.mid(60, 50);
    for (int i = 58; i >= 9; --i) {
        nearest.append(rows[i]);
    }
    EXPECT_EQ(view.neighboursOfSelection(), nearest) << "those below first";
}

TEST_F(SidebarTreeModelTest, WhatIsBelowARowIsReadWhenItIsAskedForAndIsWhole)
{
    model.reload();
    const QModelIndex top = index(projects);
    ASSERT_EQ(model.rowCount(top), 2);
    ASSERT_TRUE(model.hasChildren(index(folder)));
    EXPECT_FALSE(model.hasChildren(index(loose)));
    addElsewhere("second", folder);
    addElsewhere("third", projects);
    // A rank that was taken twice keeps the older row first.
    addElsewhere("between", deep);
    elsewhere([&](ZQManagedObjectContext &other) {
        for (const Item &child : zqCast<ZQSidebarBaseItem>(other.objectWithID(deep->objectID()))->childsItems()) {
            child->setOrder(0);
        }
    });
    EXPECT_EQ(whole(top).join(u' '), QStringLiteral("folder {deep {deepest between} second} loose"))
        << "what was not read yet is as the store has it by now";
    EXPECT_EQ(model.rowCount(top), 2) << "and what was read changes with the next look only";
    model.reload();
    EXPECT_EQ(whole(index(projects)).join(u' '), QStringLiteral("folder {deep {deepest between} second} loose third"));
}

TEST_F(SidebarTreeModelTest, WhatIsNotSavedYetIsReadToo)
{
    model.reload();
    const auto made = library.context().insertNewObject<ZQSidebarProject>();
    made->setTitle(QStringLiteral("made"));
    made->setActive(true);
    deep->appendChild(made.get());
    deepest->setActive(false);
    EXPECT_EQ(whole(index(deep)).join(u' '), QStringLiteral("made"));
    loose->addChild(deep.get(), 0);
    model.reload();
    EXPECT_EQ(whole(index(projects)).join(u' '), QStringLiteral("folder loose {deep {made}}"));
}

TEST_F(SidebarTreeModelTest, ARowDeepInAClosedFolderIsFoundByItself)
{
    SidebarTreeView view;
    view.setTree(&model);
    EXPECT_FALSE(index(deepest).isValid()) << "nothing was read";
    model.reload();
    const QModelIndex found = index(deepest);
    ASSERT_TRUE(found.isValid());
    EXPECT_EQ(found.data(), QStringLiteral("deepest"));
    EXPECT_EQ(found.parent(), index(deep));
    EXPECT_EQ(found.parent().parent().parent(), index(projects));
    EXPECT_FALSE(view.isExpanded(index(folder)));

    const Item other = addFolder(QStringLiteral("other"));
    const Item below = addProject(QStringLiteral("below"), other);
    const Item gone = addProject(QStringLiteral("gone"), folder);
    gone->deleteSelf();
    model.reload();
    EXPECT_TRUE(index(other).isValid());
    EXPECT_TRUE(index(below).isValid());
    EXPECT_FALSE(index(gone).isValid());
    other->deleteSelf();
    model.reload();
    EXPECT_FALSE(index(below).isValid()) << "what holds it is gone";
    const auto tags = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
    EXPECT_FALSE(index(tags).isValid());
    EXPECT_FALSE(index(add<ZQSidebarTag>(QStringLiteral("tag"), tags)).isValid()) << "it is on the other side";
    EXPECT_FALSE(model.indexOf({}).isValid());
    other->setFather(below.get());
    below->setFather(other.get());
    EXPECT_FALSE(index(below).isValid()) << "a damaged tree has an end";
}

TEST_F(SidebarTreeModelTest, AFolderThatCouldNotBeReadIsNotEmpty)
{
    model.reload();
    const QModelIndex closed = index(folder);
    rename("ZQSidebarBaseItem", "away");
    EXPECT_EQ(model.rowCount(closed), 0);
    EXPECT_TRUE(model.hasChildren(closed)) << "it has rows, whatever could be read of them";
    rename("away", "ZQSidebarBaseItem");
    EXPECT_EQ(whole(closed).join(u' '), QStringLiteral("deep {deepest}"));
}

TEST_F(SidebarTreeModelTest, HoweverManyFoldersAreOpenTheyAreReadAgainTogether)
{
    constexpr int folders = 260; // with a folder in each: more than are asked for at once
    QList<Item> tops;
    for (int i = 0; i < folders; ++i) {
        const Item top = addFolder(QStringLiteral("top %1").arg(i));
        const Item in = addFolder(QStringLiteral("in"), top);
        addProject(QStringLiteral("second"), in);
        in->addChild(addProject(QStringLiteral("first"), in).get(), 0);
        addProject(QStringLiteral("last"), top);
        tops.append(top);
    }
    ASSERT_TRUE(library.context().save());
    const ZQSQLiteConnection *connection = ZQObjectAccess::connection(library.context());
    int before = connection->preparedUses();
    const auto uses = [&] { return connection->preparedUses() - std::exchange(before, connection->preparedUses()); };
    model.reload();
    EXPECT_LE(uses(), 2) << "nothing was opened";
    const QStringList shown = whole({});
    EXPECT_TRUE(shown.join(u' ').contains(QStringLiteral("top 7 {in {first second} last} top 8")));
    int resets = 0;
    QObject::connect(&model, &QAbstractItemModel::modelReset, &model, [&] { ++resets; });
    uses();
    model.reload();
    EXPECT_LE(uses(), 2 + 2 * 2) << "two batches";
    EXPECT_EQ(resets, 0);
    EXPECT_EQ(whole({}), shown);
    EXPECT_EQ(uses(), 0) << "all of it was there";

    tops[0]->appendChild(tops[1].get());
    tops[2]->setActive(false);
    ASSERT_TRUE(library.context().save());
    uses();
    model.reload();
    EXPECT_LE(uses(), 2 + 2 * 2);
    EXPECT_EQ(resets, 1);
    const QString moved = whole({}).join(u' ');
    EXPECT_EQ(uses(), 0) << "what was open is open at its new place";
    EXPECT_TRUE(moved.contains(QStringLiteral("top 0 {in {first second} last top 1 {in {first second} last}} top 3")))
        << qPrintable(moved.left(400));
}

TEST_F(SidebarTreeModelTest, TagsByTitleStandSoWhenTheyAreReadAgain)
{
    SidebarTreeModel tags{window, SidebarTreeModel::Side::Tags};
    const auto label = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(library.context());
    for (const char *title : {"b", "a10", "a9"}) {
        add<ZQSidebarTag>(QLatin1StringView(title), label);
    }
    label->setSortKeys(qint16(ZQSortValue::Title));
    ASSERT_TRUE(library.context().save());
    const auto shown = [&] {
        QStringList titles;
        const QModelIndex above = tags.indexOf(label->objectID());
        for (int row = 0; row < tags.rowCount(above); ++row) {
            titles.append(tags.index(row, 0, above).data().toString());
        }
        return titles.join(u' ');
    };
    tags.reload();
    EXPECT_EQ(shown(), QStringLiteral("a9 a10 b Sample tag"));
    add<ZQSidebarTag>(QStringLiteral("a1"), label);
    tags.reload();
    EXPECT_EQ(shown(), QStringLiteral("a1 a9 a10 b Sample tag"));
    label->setSortKeys(0);
    tags.reload();
    EXPECT_EQ(shown(), QStringLiteral("Sample tag b a10 a9 a1"));
}

TEST_F(SidebarTreeModelTest, TheTreeIsReadAgainAsFarAsItWas)
{
    model.reload();
    int resets = 0;
    int changes = 0;
    QObject::connect(&model, &QAbstractItemModel::modelReset, &model, [&] { ++resets; });
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &model, [&] { ++changes; });
    const auto reloadAfter = [&](const ZQContextDidSave &saved) {
        resets = changes = 0;
        library.context().mergeChangesFromContextDidSaveNotification(saved);
        model.reload();
    };
    ASSERT_TRUE(index(folder).isValid());
    reloadAfter(addElsewhere("second", deep));
    EXPECT_EQ(resets, 0) << "rows that nobody asked for move none that are shown";
    ASSERT_EQ(model.rowCount(index(deep)), 2);
    reloadAfter(addElsewhere("third", deep));
    EXPECT_EQ(resets, 1);
    EXPECT_EQ(model.rowCount(index(deep)), 3);
    reloadAfter(elsewhere([&](ZQManagedObjectContext &other) {
        zqCast<ZQSidebarBaseItem>(other.objectWithID(deepest->objectID()))->setTitle(QStringLiteral("renamed"));
    }));
    EXPECT_EQ(resets, 0);
    EXPECT_GT(changes, 0);
    EXPECT_EQ(index(deepest).data(), QStringLiteral("renamed"));
    reloadAfter(addElsewhere("first", loose));
    EXPECT_EQ(resets, 1) << "it can be opened now";
    EXPECT_TRUE(model.hasChildren(index(loose)));
}
