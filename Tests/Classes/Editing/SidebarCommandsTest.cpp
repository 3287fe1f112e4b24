#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Operations/ZQNotificationCenter.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Editing/EditFixture.h"

class SidebarCommandsTest : public EditFixture
{
protected:
    SidebarCommands commands{editing};
};

TEST_F(SidebarCommandsTest, NewItemsGoAfterAProjectIntoAFolderElseToTheEnd)
{
    const Item first = addProject(QStringLiteral("First"));
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item inside = addProject(QStringLiteral("Inside"), folder);
    const Item live = add<ZQSidebarWatchedFolder>(
        QStringLiteral("Live"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context()));

    commands.addNewListItem(SidebarCommands::NewItem::Project, first);
    EXPECT_EQ(titles(projects), (QStringList{"First", "New Project", "Folder"}));
    const Item folderMade = commands.addNewListItem(SidebarCommands::NewItem::Folder, folder);
    EXPECT_EQ(titles(folder), (QStringList{"Inside", "New Folder"}));
    EXPECT_TRUE(folder->expanded());
    EXPECT_EQ(folderMade->sortKeys(), 5);
    commands.addNewListItem(SidebarCommands::NewItem::Project, live);
    commands.addNewListItem(SidebarCommands::NewItem::Project,
                            ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context()));
    EXPECT_EQ(titles(projects), (QStringList{"First", "New Project", "Folder", "New Project", "New Project"}));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("New Project"));

    undoStack.undo();
    undoStack.undo();
    undoStack.undo();
    EXPECT_FALSE(folderMade->active());
    EXPECT_EQ(titles(folder), QStringList{"Inside"});
    undoStack.redo();
    EXPECT_EQ(titles(folder), (QStringList{"Inside", "New Folder"}));
}

TEST_F(SidebarCommandsTest, ASearchIsSavedWhereAProjectWouldGoAndItsTextChangesWithUndo)
{
    const Item first = addProject(QStringLiteral("First"));
    const Item folder = addFolder(QStringLiteral("Folder"));
    const auto textOf = [](const Item &item) { return zqCast<ZQSidebarSmartFolder>(item)->searchText(); };
    const Item beside = commands.addSmartFolder(QStringLiteral("  #r>3\n logo "), {}, first);
    ASSERT_TRUE(beside && beside->isSmartFolder());
    EXPECT_EQ(beside->title(), QStringLiteral("#r>3 logo")) << "named after its text";
    EXPECT_EQ(textOf(beside), QStringLiteral("  #r>3\n logo ")) << "which stays as it is";
    EXPECT_EQ(beside->kind(), 0);
    EXPECT_FALSE(beside->isFixed());
    const Item after = commands.addSmartFolder(QStringLiteral("x"), QStringLiteral("After"), beside);
    commands.addSmartFolder(QStringLiteral("y"), QStringLiteral("Inside"), folder);
    commands.addNewListItem(SidebarCommands::NewItem::Project, after);
    EXPECT_EQ(titles(projects), (QStringList{"First", "#r>3 logo", "After", "New Project", "Folder"}));
    EXPECT_EQ(titles(folder), QStringList{"Inside"});
    undoStack.undo();
    undoStack.undo();
    EXPECT_EQ(titles(folder), QStringList());
    undoStack.redo();
    EXPECT_EQ(titles(folder), QStringList{"Inside"});

    commands.setSearchText(after, QStringLiteral("z"));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("change search of 'After'"));
    EXPECT_FALSE(library.context().hasChanges());
    const int steps = undoStack.count();
    commands.setSearchText(after, QStringLiteral("z"));
    commands.setSearchText(first, QStringLiteral("z"));
    EXPECT_EQ(undoStack.count(), steps) << "nothing to change";
    const QString most(ZQSidebarSmartFolder::longestSearchText, u'x');
    commands.setSearchText(after, most + u'x');
    EXPECT_FALSE(commands.addSmartFolder(most + u'x', {}, after));
    EXPECT_EQ(undoStack.count(), steps) << "a text that is too long to be kept";
    EXPECT_EQ(titles(projects), (QStringList{"First", "#r>3 logo", "After", "Folder"}));
    undoStack.undo();
    EXPECT_EQ(textOf(after), QStringLiteral("x"));
    undoStack.redo();
    EXPECT_EQ(textOf(after), QStringLiteral("z"));
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Best"), after));
    EXPECT_EQ(after->title(), QStringLiteral("Best"));
    commands.setSearchText(after, most);
    EXPECT_EQ(textOf(after), most);
    EXPECT_TRUE(commands.addSmartFolder(most, {}, after));
}

TEST_F(SidebarCommandsTest, WhatASmartFolderFindsIsNotDeletedWithIt)
{
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item project = addProject(QStringLiteral("Project"), folder);
    const auto inside = library.addImage(QStringLiteral("inside"));
    const auto found = library.addImage(QStringLiteral("found"));
    project->addItem(inside.get());
    const Item smart = commands.addSmartFolder(QStringLiteral("found"), {}, folder);
    EXPECT_FALSE(smart->addItem(found.get()));
    EXPECT_FALSE(smart->containsItem(found.get()));
    library.context().save();
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    EXPECT_TRUE(commands.deleteSidebarItemAndRemoveContentFromLibrary({folder}));
    EXPECT_FALSE(inside->active());
    EXPECT_TRUE(found->active());
    EXPECT_FALSE(smart->active());
    undoStack.undo();
    EXPECT_TRUE(inside->active() && smart->active());
    EXPECT_EQ(titles(folder), (QStringList{"Project", "found"}));
}

TEST_F(SidebarCommandsTest, MovedItemsLandWhereTheyWereDroppedAndComeBack)
{
    SidebarCommands::Items items;
    for (const char *name : {"A", "B", "C", "D"}) {
        items.append(addProject(QLatin1StringView(name)));
    }
    const Item folder = addFolder(QStringLiteral("Folder"));
    struct Case
    {
        SidebarCommands::Items dragged;
        int index;
        QStringList after;
    };
    const Case cases[] = {
        {{items[0]}, 3, {"B", "C", "A", "D", "Folder"}},
        {{items[0], items[1]}, 4, {"C", "D", "A", "B", "Folder"}},
        {{items[3]}, 0, {"D", "A", "B", "C", "Folder"}},
        {{items[1], items[3]}, 1, {"A", "B", "D", "C", "Folder"}},
    };
    const QStringList before = titles(projects);
    for (const Case &c : cases) {
        const quint32 first = SidebarCommands::destinationIndex(c.dragged, projects, c.index);
        QList<quint32> indexes;
        for (qsizetype i = 0; i < c.dragged.size(); ++i) {
            indexes.append(first + quint32(i));
        }
        commands.moveListItems(c.dragged, SidebarCommands::Items(c.dragged.size(), projects), indexes);
        EXPECT_EQ(titles(projects), c.after);
        EXPECT_EQ(undoStack.undoText(), QStringLiteral("move sidebar items"));
        undoStack.undo();
        EXPECT_EQ(titles(projects), before);
    }
    commands.moveListItems({items[1], items[2]}, {folder, folder}, {0, 1});
    EXPECT_EQ(titles(folder), (QStringList{"B", "C"}));
    undoStack.undo();
    EXPECT_EQ(titles(projects), before);
    EXPECT_TRUE(titles(folder).isEmpty());
}

TEST_F(SidebarCommandsTest, DeletingAFolderTakesItsProjectsAndUndoPutsThemBack)
{
    addProject(QStringLiteral("Before"));
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item child = addProject(QStringLiteral("Child"), folder);
    addProject(QStringLiteral("After"));
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("removeFromSidebarAlertSuppress"));
    EXPECT_TRUE(commands.deleteSidebarItem({folder, child}));
    EXPECT_TRUE(user.questions.isEmpty());
    EXPECT_FALSE(folder->active());
    EXPECT_FALSE(child->active());
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("delete Folder"));
    EXPECT_EQ(titles(projects), (QStringList{"Before", "After"}));
    undoStack.undo();
    EXPECT_EQ(titles(projects), (QStringList{"Before", "Folder", "After"}));
    EXPECT_EQ(titles(folder), QStringList{"Child"});
    undoStack.redo();
    EXPECT_EQ(titles(projects), (QStringList{"Before", "After"}));
}

TEST_F(SidebarCommandsTest, DeletingAsksWithTheTextsOfTheSelection)
{
    const Item project = addProject(QStringLiteral("Project"));
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item live = add<ZQSidebarWatchedFolder>(
        QStringLiteral("Live"), ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context()));
    user.answerQuestion = [](const UserQuestion &) { return 1; };
    struct Case
    {
        SidebarCommands::Items items;
        bool withContent;
        const char *message;
        const char *informativeText;
        const char *button;
    };
    const char *const children =
        "All the child projects will be also deleted, projects items will still remain inside your library.";
    const char *const childrenAndItems = "All the child projects and their items will be also deleted.";
    const Case cases[] = {
        {{project},
         false,
         "Are you sure you want to delete this project?",
         "The project items will still remain inside your library.",
         "Delete"},
        {{live},
         false,
         "Are you sure you want to remove this Live Folder?",
         "The original folders will still remain on your disk.",
         "Remove"},
        {{folder}, false, "Are you sure you want to delete this folder?", children, "Delete"},
        {{add<ZQSidebarSmartFolder>(QStringLiteral("Smart"), projects)},
         false,
         "Are you sure you want to delete this smart folder?",
         "The items it finds will still remain inside your library.",
         "Delete"},
        {{project, folder}, false, "Are you sure you want to delete these items?", children, "Delete"},
        {{project},
         true,
         "Are you sure you want to delete this project and its content?",
         "All the project items will be deleted from your library.",
         "Delete"},
        {{folder}, true, "Are you sure you want to delete this folder and its content?", childrenAndItems, "Delete"},
        {{project, folder},
         true,
         "Are you sure you want to delete these items and their content?",
         childrenAndItems,
         "Delete"},
    };
    for (const Case &c : cases) {
        EXPECT_FALSE(c.withContent ? commands.deleteSidebarItemAndRemoveContentFromLibrary(c.items)
                                   : commands.deleteSidebarItem(c.items));
        const UserQuestion question = user.questions.takeLast();
        EXPECT_EQ(question.message, QLatin1StringView(c.message));
        EXPECT_EQ(question.informativeText, QLatin1StringView(c.informativeText));
        EXPECT_TRUE(question.isDestructive);
        EXPECT_EQ(question.buttons, (QStringList{QLatin1StringView(c.button), QStringLiteral("Cancel")}));
        EXPECT_EQ(question.suppressionKey, c.withContent ? QStringLiteral("removeFromSidebarAndContentAlertSuppress")
                                                         : QStringLiteral("removeFromSidebarAlertSuppress"));
    }
    EXPECT_TRUE(project->active());
    EXPECT_EQ(undoStack.count(), 0);
}

TEST_F(SidebarCommandsTest, DeletingWithContentIsOneStepForItemsAndProject)
{
    const Item project = addProject(QStringLiteral("Project"));
    const auto inside = library.addImage(QStringLiteral("inside"));
    const auto outside = library.addImage(QStringLiteral("outside"));
    project->addItem(inside.get());
    library.context().save();
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    EXPECT_TRUE(commands.deleteSidebarItemAndRemoveContentFromLibrary({project}));
    EXPECT_FALSE(inside->active());
    EXPECT_TRUE(outside->active());
    EXPECT_FALSE(project->active());
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("delete items and content"));
    undoStack.undo();
    EXPECT_TRUE(inside->active());
    EXPECT_EQ(titles(projects), QStringList{"Project"});
    EXPECT_FALSE(undoStack.canUndo());
    EXPECT_FALSE(library.context().hasChanges()) << "each step is saved";
}

TEST_F(SidebarCommandsTest, RenamingRefusesAnEmptyTitleAndCanBeUndone)
{
    const Item project = addProject(QStringLiteral("Old"));
    EXPECT_FALSE(commands.validateNewTitle(QString(), project));
    EXPECT_FALSE(commands.validateNewTitle(QStringLiteral(" \t"), project)) << "nobody could see it";
    EXPECT_EQ(user.notificationTexts(), (QStringList{"Please pick a name!", "Please pick a name!"}));
    EXPECT_EQ(user.notifications.first().position, NotificationPlace::Sidebar);
    EXPECT_EQ(project->title(), QStringLiteral("Old"));
    int told = 0;
    const auto token = ZQNotificationCenter::defaultCenter().addObserver(
        QStringLiteral("SidebarItemTitleDidChange"), nullptr, [&](const ZQNotification &) { ++told; });
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("New"), project));
    EXPECT_EQ(told, 1);
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("rename 'Old' in 'New'"));
    undoStack.undo();
    EXPECT_EQ(project->title(), QStringLiteral("Old"));
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Old"), project));
    EXPECT_EQ(undoStack.count(), 1) << "an unchanged title is no step";
}

TEST_F(SidebarCommandsTest, TagsNeedANameOfTheirOwn)
{
    const auto red = ZQSidebarTag::addNewTagWithName(QStringLiteral("Red"), library.context());
    const auto blue = ZQSidebarTag::addNewTagWithName(QStringLiteral("Blue"), library.context());
    library.context().save();
    EXPECT_FALSE(commands.validateNewTitle(QStringLiteral("Red"), blue));
    EXPECT_FALSE(commands.validateNewTitle(QString(), blue));
    EXPECT_EQ(user.notificationTexts(), (QStringList{"Tag already exist!", "Tag needs a name!"}));
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Red"), red)) << "its own name";
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("RED"), blue)) << "another spelling is another tag";
    EXPECT_FALSE(commands.validateNewTitle(QStringLiteral("Re\nd"), blue)) << "a pasted line break is left out";
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Na\nvy\t"), blue));
    EXPECT_EQ(blue->title(), QStringLiteral("Navy"));
    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Cafe\u0301"), blue));
    EXPECT_EQ(blue->title(), QStringLiteral("Caf\u00e9"));
    EXPECT_FALSE(commands.validateNewTitle(QStringLiteral("Cafe\u0301"), red));
}

TEST_F(SidebarCommandsTest, NewTagsAreNumberedAndOnlyGoWhenThePersonAgrees)
{
    const Item first = commands.addNewTag();
    const Item second = commands.addNewTag();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->title(), QStringLiteral("New Tag"));
    EXPECT_EQ(second->title(), QStringLiteral("New Tag 2"));
    EXPECT_FALSE(commands.deleteSidebarItem({first, second})); // nobody answers
    EXPECT_TRUE(first->active() && second->active());
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    EXPECT_TRUE(commands.deleteSidebarItem({first}));
    EXPECT_FALSE(first->active());
    ASSERT_EQ(user.questions.size(), 2);
    EXPECT_EQ(user.questions.first().message, QStringLiteral("Are you sure you want to delete these tags?"));
    EXPECT_EQ(user.questions.last().message, QStringLiteral("Are you sure you want to delete this tag?"));
    EXPECT_TRUE(user.questions.last().suppressionKey.isEmpty());
    EXPECT_EQ(user.questions.last().buttons, (QStringList{QStringLiteral("Delete"), QStringLiteral("Cancel")}));
    EXPECT_TRUE(user.questions.last().isDestructive);
}

TEST_F(SidebarCommandsTest, ARenamedTagIsWrittenToTheFilesOfAllItTags)
{
    const auto red = ZQSidebarTag::addNewTagWithName(QStringLiteral("Red"), library.context());
    const auto image = library.addImage(QStringLiteral("mark"));
    image->addTagsObject(red.get());
    library.context().save();
    const auto lastWritten = [this] { return library.written.isEmpty() ? QStringList() : library.written.last().tags; };

    EXPECT_TRUE(commands.validateNewTitle(QStringLiteral("Crimson"), red));
    EXPECT_EQ(lastWritten(), QStringList{QStringLiteral("Crimson")});
    undoStack.undo();
    EXPECT_EQ(lastWritten(), QStringList{QStringLiteral("Red")});
}

TEST_F(SidebarCommandsTest, ADeletedTagLeavesTheFilesOnceTheStoreWasSaved)
{
    const auto red = ZQSidebarTag::addNewTagWithName(QStringLiteral("Red"), library.context());
    const auto blue = ZQSidebarTag::addNewTagWithName(QStringLiteral("Blue"), library.context());
    const auto image = library.addImage(QStringLiteral("mark"));
    for (const auto &tag : {red, blue}) {
        image->addTagsObject(tag.get());
    }
    library.context().save();
    library.written.clear();
    bool isSavedFirst = true;
    EditContext watched = editing;
    watched.save = [&] {
        isSavedFirst = isSavedFirst && library.written.isEmpty();
        return library.context().save();
    };
    SidebarCommands deleting(watched);
    deleting.deleteListItems({red, blue});
    EXPECT_TRUE(isSavedFirst);
    ASSERT_EQ(library.written.size(), 1) << "once, though it lost both";
    EXPECT_EQ(library.written.last().tags, QStringList());
    undoStack.undo();
    ASSERT_EQ(library.written.size(), 2);
    EXPECT_EQ(library.written.last().tags.size(), 2);
    watched.save = [this] {
        library.context().rollback();
        return false;
    };
    deleting.deleteListItems({red});
    EXPECT_EQ(library.written.size(), 2) << "the store has it still";
}
