#include "Classes/Editing/KeepOne.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Tests/Classes/Editing/EditFixture.h"

#include <QFile>

namespace {

class KeepOneTest : public EditFixture
{
protected:
    KeepOneTest() : first(addProject(QStringLiteral("First"))), second(addProject(QStringLiteral("Second")))
    {
        for (const char *name : {"best", "worse", "worst"}) {
            images.append(library.addImage(QLatin1StringView(name)));
        }
        first->addItem(library.addImage(QStringLiteral("other")).get());
        first->addItem(images[1].get());
        first->addItem(images[2].get());
        second->addItem(images[0].get());
        second->addItem(images[2].get());
        library.context().save();
        tagOn(0, "own");
        tagOn(1, "own");
        tagOn(1, "from the worse");
        tagOn(2, "from the worst");
        const auto measured = ZQSidebarTag::tagForColor(1003, library.context());
        images[1]->addTagsObject(measured.get());
        library.context().save();
        library.written.clear();
    }
    void tagOn(int which, const char *title)
    {
        const auto tag = ZQSidebarTag::getOrCreateTagWithName(QLatin1StringView(title), library.context());
        images[which]->addTagsObject(tag.get());
    }
    ZQObjectID id(int which) const { return images[which]->objectID(); }
    static QStringList members(const Item &project)
    {
        QStringList result;
        for (const auto &item : project->items()) {
            result.append(item->title());
        }
        return result;
    }
    // Of all that a choice changes.
    QStringList state()
    {
        QStringList result = {members(first).join(u','), members(second).join(u',')};
        for (const auto &image : images) {
            QStringList tags;
            for (const auto &tag : image->itemTags()) {
                tags.append(tag->title());
            }
            tags.sort();
            result.append(image->title() + (image->active() ? u'+' : u'-') + tags.join(u','));
        }
        return result;
    }
    void finish()
    {
        zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
    }

    Item first;
    Item second;
    QList<ZQRef<ZQLibraryImage>> images;
    KeepOne edit{editing};
};

} // namespace

TEST_F(KeepOneTest, TheOneTakesThePlacesAndTagsOfTheOthersAndGivesThemBack)
{
    const QStringList before = state();
    edit.keep({{id(0), {id(1), id(2)}}});
    EXPECT_EQ(members(first), (QStringList{"other", "best"})) << "where the others were";
    EXPECT_EQ(members(second), QStringList{"best"}) << "once";
    EXPECT_TRUE(images[0]->active());
    EXPECT_FALSE(images[1]->active() || images[2]->active());
    EXPECT_EQ(images[0]->userTagTitles(), (QStringList{"from the worse", "from the worst", "own"}));
    EXPECT_EQ(images[0]->itemTags().size(), 3) << "what is measured of a picture is not true of another";
    ASSERT_EQ(library.written.size(), 1);
    EXPECT_EQ(library.written.first().tags.size(), 3);
    EXPECT_FALSE(library.context().hasChanges());
    ASSERT_EQ(undoStack.count(), 1) << "all of it is one step";
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("keep best"));
    const QStringList after = state();
    undoStack.undo();
    EXPECT_EQ(state(), before);
    EXPECT_EQ(library.written.last().tags, QStringList{"own"}) << "the file follows";
    undoStack.redo();
    EXPECT_EQ(state(), after);
    undoStack.undo();
    EXPECT_EQ(state(), before);
}

TEST_F(KeepOneTest, RatingAndNotesAreTakenOverWhereTheOneHasNone)
{
    images[1]->setRating(3);
    images[2]->setRating(4);
    images[2]->setNotes(QStringLiteral("from the worst"));
    library.context().save();
    edit.keep({{id(0), {id(1), id(2)}}});
    EXPECT_EQ(images[0]->rating(), 4);
    EXPECT_EQ(images[0]->notes(), QStringLiteral("from the worst"));
    undoStack.undo();
    EXPECT_EQ(images[0]->rating(), 0);
    EXPECT_EQ(images[0]->notes(), QString());
    images[0]->setRating(2);
    images[0]->setNotes(QStringLiteral("own"));
    library.context().save();
    edit.keep({{id(0), {id(1), id(2)}}});
    EXPECT_EQ(images[0]->rating(), 2);
    undoStack.undo();
    EXPECT_EQ(images[0]->rating(), 2);
    EXPECT_EQ(images[0]->notes(), QStringLiteral("own"));
}

TEST_F(KeepOneTest, NothingIsDeletedForWhatIsNotThereOrIsTheSame)
{
    const auto absent = library.addImage(QStringLiteral("absent"));
    const auto deleted = library.addImage(QStringLiteral("deleted"));
    deleted->setActive(false);
    library.context().save();
    ASSERT_TRUE(QFile::remove(absent->itemURL()));
    const QStringList before = state();
    const struct
    {
        const char *what;
        QList<KeepOne::Choice> choices;
        int told;
    } cases[] = {{"no file", {{absent->objectID(), {id(0), id(1)}}}, 1},
                 {"deleted", {{deleted->objectID(), {id(0)}}}, 0},
                 {"itself", {{id(0), {id(0), id(0)}}}, 0},
                 {"each for the other", {{id(0), {id(1)}}, {id(1), {id(0)}}}, 0},
                 {"no others", {{id(0), {}}}, 0},
                 {"others that are gone", {{id(0), {deleted->objectID()}}}, 0}};
    for (const auto &each : cases) {
        user.errors.clear();
        edit.keep(each.choices);
        EXPECT_EQ(state(), before) << each.what;
        EXPECT_EQ(user.errors.size(), each.told) << each.what;
        EXPECT_EQ(undoStack.count(), 0) << each.what;
    }
}

TEST_F(KeepOneTest, WhatIsGoneForGoodLeavesItsPlacesToTheKeptOne)
{
    edit.keep({{id(0), {id(1), id(2)}}});
    library.context().deleteObject(images[1].get());
    ASSERT_TRUE(library.context().save());
    undoStack.undo();
    EXPECT_TRUE(images[2]->active());
    EXPECT_TRUE(members(first).contains(QStringLiteral("best")));
    EXPECT_TRUE(images[0]->userTagTitles().contains(QStringLiteral("from the worse"))) << "nothing else has it now";
}

// Two items may stand for one file in a live folder.
TEST_F(KeepOneTest, TheFileThatIsKeptIsNotPutAwayForAnother)
{
    const QString path = library.writeFile(QStringLiteral("shared.png"), "picture");
    const auto one = library.addReferencedImage(path);
    const auto twin = library.addReferencedImage(path);
    library.context().save();
    edit.keep({{one->objectID(), {twin->objectID(), id(1)}}});
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_TRUE(twin->active());
    EXPECT_FALSE(images[1]->active()) << "the others go all the same";
    EXPECT_EQ(user.errors.size(), 1);
}

TEST_F(KeepOneTest, WhatCannotBeSavedIsNotDone)
{
    editing.save = [this] {
        library.context().rollback();
        return false;
    };
    const QStringList before = state();
    edit.keep({{id(0), {id(1), id(2)}}});
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(library.written.isEmpty()) << "no file says what the library does not";
    EXPECT_EQ(undoStack.count(), 0);
}

TEST_F(KeepOneTest, WhereTheOthersBelongIsKnownBeforeTheyGo)
{
    const QStringList before = state();
    library.renameTable("ZQProjectItem", "away");
    edit.keep({{id(0), {id(1), id(2)}}});
    library.renameTable("away", "ZQProjectItem");
    EXPECT_EQ(user.errors.size(), 1);
    EXPECT_EQ(state(), before);
    EXPECT_EQ(undoStack.count(), 0);
}

TEST_F(KeepOneTest, ManyGroupsAreOneStepOfTheQueue)
{
    QList<KeepOne::Choice> choices;
    QList<ZQRef<ZQLibraryImage>> made;
    for (int i = 0; i < 2 * int(KeepOne::mostAtOnce) + 2; ++i) {
        made.append(library.addImage(QStringLiteral("many%1").arg(i)));
        first->addItem(made.last().get());
    }
    library.context().save();
    for (qsizetype i = 0; i < made.size(); i += 2) {
        choices.append({made[i]->objectID(), {made[i + 1]->objectID()}});
    }
    edit.keep(choices);
    EXPECT_GT(editQueue.operationCount(), 0);
    finish();
    const auto active = [&] {
        return std::count_if(made.begin(), made.end(), [](const auto &image) { return image->active(); });
    };
    EXPECT_EQ(active(), made.size() / 2);
    EXPECT_EQ(undoStack.count(), 1);
    undoStack.undo();
    finish();
    EXPECT_EQ(active(), made.size());
}
