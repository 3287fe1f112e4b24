#include "Classes/Editing/LibraryCommands.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Tests/Classes/Editing/EditFixture.h"

#include <QFile>

class LibraryCommandsTest : public EditFixture
{
protected:
    LibraryCommandsTest() : project(addProject(QStringLiteral("Project")))
    {
        for (const char *name : {"a", "b", "c", "d"}) {
            const auto image = library.addImage(QLatin1StringView(name));
            images.append(image);
            project->addItem(image.get());
        }
        library.context().save();
    }
    QStringList order() const
    {
        QStringList result;
        for (const auto &item : project->items()) {
            result.append(item->title());
        }
        return result;
    }
    QList<ZQObjectID> ids(const QList<int> &which) const
    {
        QList<ZQObjectID> result;
        for (const int i : which) {
            result.append(images[i]->objectID());
        }
        return result;
    }
    static QSet<ZQObjectID> asSet(const QList<ZQObjectID> &list) { return {list.begin(), list.end()}; }
    QList<ZQObjectID> addMany(int count)
    {
        QList<ZQRef<ZQLibraryImage>> made;
        for (int i = 0; i < count; ++i) {
            made.append(library.context().insertNewObject<ZQLibraryImage>());
            made.last()->setTitle(QStringLiteral("many%1").arg(i));
        }
        library.context().save();
        QList<ZQObjectID> result;
        for (const auto &image : made) {
            result.append(image->objectID());
        }
        return result;
    }
    QList<std::pair<QString, qint32>> places() const
    {
        QList<std::pair<QString, qint32>> result;
        for (const auto &membership : project->pItems()) {
            result.append({membership->item()->title(), membership->order()});
        }
        return result;
    }
    // What went to the edit queue.
    bool finish()
    {
        const bool isQueued = editQueue.operationCount() > 0;
        zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
        return isQueued;
    }

    Item project;
    QList<ZQRef<ZQLibraryImage>> images;
    LibraryCommands commands{editing};
};

TEST_F(LibraryCommandsTest, DeletedItemsAreRestoredByUndo)
{
    commands.deleteItems(ids({1, 2}));
    EXPECT_FALSE(images[1]->active());
    EXPECT_EQ(order(), (QStringList{"a", "d"}));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("delete items"));
    undoStack.undo();
    EXPECT_TRUE(images[1]->active());
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
    EXPECT_FALSE(library.context().hasChanges()) << "each step is saved";
}

TEST_F(LibraryCommandsTest, UndoRevivesNothingThatWasDeletedBefore)
{
    images[1]->deleteSelf(); // by somebody else, while it was still shown
    library.context().save();
    commands.deleteItems(ids({1, 2}));
    undoStack.undo();
    EXPECT_FALSE(images[1]->active());
    EXPECT_TRUE(images[2]->active());
    images[1]->restoreSelf();
    undoStack.redo();
    EXPECT_FALSE(images[1]->active());
    undoStack.undo();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
}

TEST_F(LibraryCommandsTest, CopiesGoWithUndoAndTheSameOnesComeBack)
{
    const auto active = [this] {
        return library.context()
            .countForFetchRequest(
                {ZQLibraryBaseItem::entityName(), ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))})
            .value_or(-1);
    };
    commands.duplicateItems(ids({0, 1}));
    EXPECT_TRUE(finish()) << "files are copied beside the window";
    EXPECT_EQ(active(), 6);
    undoStack.undo();
    finish();
    EXPECT_EQ(active(), 4);
    undoStack.redo();
    finish();
    EXPECT_EQ(active(), 6);
    EXPECT_EQ(library.context().countForFetchRequest({ZQLibraryBaseItem::entityName()}).value_or(-1), 6);
    EXPECT_FALSE(library.context().hasChanges());
}

TEST_F(LibraryCommandsTest, CopiesThatFindNoPlaceBesideTheirOriginalsAreToldOf)
{
    library.renameTable("ZQProjectItem", "away");
    commands.duplicateItems(ids({0, 1}), project->objectID());
    finish();
    zqRunMainLoopFor(std::chrono::milliseconds(0)); // what it said at its end
    library.renameTable("away", "ZQProjectItem");
    ASSERT_EQ(user.errors.size(), 1);
    EXPECT_FALSE(user.errors.first().isNull());
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
    EXPECT_EQ(library.context().countForFetchRequest({ZQLibraryBaseItem::entityName()}).value_or(-1), 6);
}

TEST_F(LibraryCommandsTest, ARenamingIsAStepOnlyWhenItHappened)
{
    commands.renameItem(images[0]->objectID(), QStringLiteral("../up"));
    commands.renameItem(images[0]->objectID(), QString());
    commands.renameItem(images[0]->objectID(), QStringLiteral("a"));
    EXPECT_EQ(undoStack.count(), 0);
    EXPECT_EQ(library.errors.size(), 1);
    commands.renameItem(images[0]->objectID(), QStringLiteral("new"));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("rename 'a' in 'new'"));
    undoStack.undo();
    EXPECT_EQ(images[0]->title(), QStringLiteral("a"));
    EXPECT_TRUE(QFile::exists(images[0]->itemURL()));
    undoStack.redo();
    EXPECT_EQ(images[0]->title(), QStringLiteral("new"));
}

TEST_F(LibraryCommandsTest, RemovedItemsStayInTheLibraryAndReturnToTheirPlaces)
{
    commands.removeItems(ids({2, 0}), project->objectID());
    EXPECT_EQ(order(), (QStringList{"b", "d"}));
    EXPECT_TRUE(images[0]->active());
    undoStack.undo();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
}

TEST_F(LibraryCommandsTest, ItemsAreAddedOnceAndInOrder)
{
    const Item other = addProject(QStringLiteral("Other"));
    other->addItem(images[3].get());
    library.context().save();
    commands.addItems(ids({0, 3, 1}), other->objectID(), 0);
    QStringList titlesOfOther;
    for (const auto &item : other->items()) {
        titlesOfOther.append(item->title());
    }
    EXPECT_EQ(titlesOfOther, (QStringList{"a", "b", "d"}));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("copy items"));
    undoStack.undo();
    EXPECT_EQ(other->numberOfItems(), 1) << "what was there before stays";
}

TEST_F(LibraryCommandsTest, ManualOrderFollowsTheDrag)
{
    struct Case
    {
        QList<int> moved;
        quint32 to;
        QStringList after;
    };
    const Case cases[] = {{{0}, 2, {"b", "a", "c", "d"}},
                          {{3}, 0, {"d", "a", "b", "c"}},
                          {{0, 2}, 4, {"b", "d", "a", "c"}},
                          {{1}, 1, {"a", "b", "c", "d"}}};
    for (const Case &c : cases) {
        commands.moveItems(ids(c.moved), project->objectID(), c.to);
        EXPECT_EQ(order(), c.after);
        undoStack.undo();
        EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
    }
}

TEST_F(LibraryCommandsTest, AMoveIsTakenBackAlsoWhenMembersWereAwayMeanwhile)
{
    commands.moveItems(ids({3}), project->objectID(), 0);
    commands.removeItems(ids({0, 3}), project->objectID());
    undoStack.undo();
    EXPECT_EQ(order(), (QStringList{"d", "a", "b", "c"}));
    undoStack.undo();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
}

TEST_F(LibraryCommandsTest, ManyRowsChangeBesideTheWindowAndComeBackAsTheyWere)
{
    const auto before = places();
    const QList<ZQObjectID> many = addMany(int(LibraryCommands::mostAtOnce) + 200);
    commands.addItems(many, project->objectID(), 1);
    EXPECT_TRUE(finish()) << "the window does not wait";
    const auto all = places();
    ASSERT_EQ(all.size(), 4 + many.size());
    EXPECT_EQ(all.at(1), std::pair(QStringLiteral("many0"), 1));
    EXPECT_EQ(all.last(), std::pair(QStringLiteral("d"), qint32(3 + many.size())));
    EXPECT_FALSE(library.context().hasChanges());

    const std::function<void()> steps[] = {
        [&] { commands.moveItems(ids({3}), project->objectID(), 0); },
        [&] { commands.removeItems(many, project->objectID()); },
        [&] { commands.deleteItems(many); },
        // Few items, but many make room; and few after many wait for them.
        [&] { commands.addItems(addMany(1), project->objectID(), 0); },
        [&] {
            commands.deleteItems(many);
            commands.deleteItems(ids({0}));
        },
    };
    for (const auto &step : steps) {
        const int count = undoStack.index();
        step();
        EXPECT_TRUE(finish());
        EXPECT_NE(places(), all);
        while (undoStack.index() > count) {
            undoStack.undo();
        }
        EXPECT_TRUE(finish());
        EXPECT_EQ(order().size(), all.size());
        QStringList titlesOfAll;
        for (const auto &[title, position] : all) {
            titlesOfAll.append(title);
        }
        EXPECT_EQ(order(), titlesOfAll);
        EXPECT_TRUE(images[0]->active());
        EXPECT_TRUE(user.errors.isEmpty());
    }
    while (undoStack.canUndo()) {
        undoStack.undo();
    }
    finish();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
}

TEST_F(LibraryCommandsTest, WhatIsCancelledIsTakenBackAsFarAsItCame)
{
    const QList<ZQObjectID> many = addMany(2500);
    commands.addItems(many, project->objectID(), ZQSidebarBaseItem::appendIndex);
    finish();
    const QList<ZQObjectID> others = addMany(2500);
    const auto before = order();
    const std::function<void()> steps[] = {
        [&] { commands.deleteItems(many); },
        [&] { commands.removeItems(many, project->objectID()); },
        [&] { commands.addItems(others, project->objectID(), ZQSidebarBaseItem::appendIndex); },
        [&] { commands.addItems(others, project->objectID(), 2); },
    };
    std::function<void()> cancel;
    user.onBeginProgress = [&cancel](const std::function<void()> &given) { cancel = given; };
    for (const auto &step : steps) {
        SCOPED_TRACE(&step - steps);
        auto merged = library.context().observeObjectsDidChange([&cancel](const ZQContextDidSave &) { cancel(); });
        step();
        finish();
        const auto partly = order();
        EXPECT_EQ(std::abs(partly.size() - before.size()), 1000) << "a batch";
        undoStack.undo();
        finish();
        EXPECT_EQ(order(), before);

        merged.reset();
        undoStack.redo();
        finish();
        EXPECT_EQ(std::abs(order().size() - before.size()), 2500);
        merged = library.context().observeObjectsDidChange([&cancel](const ZQContextDidSave &) { cancel(); });
        undoStack.undo();
        finish();
        EXPECT_EQ(std::abs(order().size() - before.size()), 1500) << "so is its undo";
        merged.reset();
        undoStack.redo();
        undoStack.undo();
        finish();
        EXPECT_EQ(order(), before) << "what was left is not forgotten";
    }
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LibraryCommandsTest, ManyTakenBackReturnInOrderWhereTheirPlacesWereTaken)
{
    const QList<ZQObjectID> many = addMany(2500);
    commands.addItems(many, project->objectID(), ZQSidebarBaseItem::appendIndex);
    finish();
    QStringList expected = order();
    commands.removeItems(many, project->objectID());
    finish();
    for (const quint32 place : {700U, 1900U}) { // by somebody else
        const auto taker = library.addImage(QStringLiteral("taker%1").arg(place));
        project->addItem(taker.get(), place, false);
    }
    library.context().save();
    undoStack.undo();
    finish();
    expected.insert(1901, QStringLiteral("taker1900"));
    expected.insert(701, QStringLiteral("taker700"));
    EXPECT_EQ(order(), expected);
}

TEST_F(LibraryCommandsTest, WhatIsThereIsLookedAtWhenItsTurnComes)
{
    const QList<ZQObjectID> many = addMany(1200);
    commands.addItems(many, project->objectID(), ZQSidebarBaseItem::appendIndex);
    commands.moveItems({many.last()}, project->objectID(), 0);
    finish();
    EXPECT_EQ(order().first(), QStringLiteral("many1199"));

    commands.removeItems(many, project->objectID());
    commands.addItems({many[5]}, project->objectID(), ZQSidebarBaseItem::appendIndex);
    finish();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d", "many5"}));
    for (int i = 0; i < 4; ++i) {
        undoStack.undo();
    }
    finish();
    EXPECT_EQ(order(), (QStringList{"a", "b", "c", "d"}));
}

TEST_F(LibraryCommandsTest, WhatCannotBeReadIsToldAndLeavesNoStep)
{
    const auto before = places();
    const Item other = addProject(QStringLiteral("Other"));
    const std::function<void()> steps[] = {
        [&] { commands.removeItems(ids({1}), project->objectID()); },
        [&] { commands.addItems(ids({1}), other->objectID(), ZQSidebarBaseItem::appendIndex); },
        [&] { commands.moveItems(ids({1}), project->objectID(), 0); },
    };
    for (const auto &step : steps) {
        SCOPED_TRACE(&step - steps);
        user.errors.clear();
        library.renameTable("ZQProjectItem", "away");
        step();
        EXPECT_EQ(user.errors.size(), 1);
        EXPECT_EQ(undoStack.count(), 0);
        library.renameTable("away", "ZQProjectItem");
        EXPECT_EQ(places(), before);
        EXPECT_EQ(other->numberOfItems(), 0);
    }
    commands.removeItems(ids({1, 2}), project->objectID());
    user.errors.clear();
    library.renameTable("ZQProjectItem", "away");
    undoStack.undo();
    EXPECT_EQ(user.errors.size(), 1);
    library.renameTable("away", "ZQProjectItem");
    undoStack.redo();
    undoStack.undo();
    EXPECT_EQ(places(), before) << "taken back once it can be";
}

TEST_F(LibraryCommandsTest, ARenameThatIsNotSavedLeavesTheFilesAsTheyWere)
{
    const QString path = images[0]->findItemURL();
    EditContext failing = editing;
    failing.save = [this] {
        library.context().rollback();
        return false;
    };
    LibraryCommands(failing).renameItem(images[0]->objectID(), QStringLiteral("new"));
    EXPECT_EQ(undoStack.count(), 0);
    EXPECT_EQ(images[0]->title(), QStringLiteral("a"));
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(images[0]->findItemURL(), path);
}

TEST_F(LibraryCommandsTest, CopyingMuchCanBeCancelledHoweverFewTheFiles)
{
    int shown = 0;
    user.onBeginProgress = [&](const std::function<void()> &cancel) {
        ++shown;
        cancel();
    };
    commands.duplicateItems(ids({0, 1}));
    finish();
    EXPECT_EQ(shown, 0) << "over before anybody could read it";
    const qint64 before =
        library.context().countForFetchRequest({.entityName = ZQLibraryImage::entityName()}).value_or(0);
    QFile large(images[0]->findItemURL());
    ASSERT_TRUE(large.resize(qint64(200) << 20)); // a hole
    commands.duplicateItems(ids({0, 1}));
    finish();
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(library.context().countForFetchRequest({.entityName = ZQLibraryImage::entityName()}), before);
}
