// What is selected once what was selected is gone.

#include "Classes/Interface/Browser/BrowserViewController.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQGridView.h"
#include "Tests/Classes/Interface/WindowFixture.h"

#include <QSignalSpy>
#include <QtTest/QTest>

namespace {

class GridSelection : public WindowFixture
{
protected:
    GridSelection() : project(addProject(QStringLiteral("Project")))
    {
        for (const char *name : {"a", "b", "c", "d", "e"}) {
            images.append(library.addImage(QLatin1StringView(name)));
            project->addItem(images.last().get());
        }
        library.context().save();
        browser.resize(800, 600);
        show({project->objectID()});
    }
    void show(const QList<ZQObjectID> &items)
    {
        browser.showSidebarItems(items);
        settle();
    }
    void settle()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return fetcher.isIdle(); }, 10000));
    }
    void refetched()
    {
        QSignalSpy changed(&browser.content(), &BrowserContent::changed);
        browser.refetch();
        ASSERT_TRUE(changed.wait(10000));
        settle();
    }
    QString selected() const
    {
        QString titles;
        for (const ZQObjectID &id : browser.selectedItems()) {
            titles += window.libraryItem(id)->title();
        }
        return titles;
    }

    Item project;
    QList<ZQRef<ZQLibraryImage>> images;
    BrowserViewController browser{window};
};

class SidebarSelection : public WindowFixture
{
protected:
    SidebarSelection()
        : before(addProject(QStringLiteral("Before"))), folder(addFolder(QStringLiteral("Folder"))),
          inside(addProject(QStringLiteral("Inside"), folder)), after(addProject(QStringLiteral("After")))
    {
        folder->setExpanded(true);
        library.context().save();
        user.answerQuestion = [](const UserQuestion &) { return 0; };
        sidebar.reload();
        sidebar.resize(240, 600);
    }
    QString selected()
    {
        QStringList titles;
        for (const ZQObjectID &id : sidebar.selectedItems()) {
            titles.append(window.sidebarItem(id)->title());
        }
        return titles.join(u' ');
    }

    Item before;
    Item folder;
    Item inside;
    Item after;
    ProjectsSidebarViewController sidebar{window};
};

} // namespace

TEST_F(GridSelection, TheNextTakesThePlaceOfWhatIsDeletedAndTheLastOfTheLast)
{
    struct Case
    {
        const char *what;
        QList<int> gone;
        const char *next;
        void (BrowserViewController::*remove)();
    };
    for (const Case &each : {Case{"deleted in the midst", {1}, "c", &BrowserViewController::deleteFromLibrary},
                             {"several deleted", {1, 2}, "d", &BrowserViewController::deleteFromLibrary},
                             {"the last deleted", {4}, "d", &BrowserViewController::deleteFromLibrary},
                             {"all deleted", {0, 1, 2, 3, 4}, "", &BrowserViewController::deleteFromLibrary},
                             {"removed in the midst", {1}, "c", &BrowserViewController::removeFromProject},
                             {"the last removed", {3, 4}, "c", &BrowserViewController::removeFromProject}}) {
        SCOPED_TRACE(each.what);
        ZQIndexSet selection;
        for (const int index : each.gone) {
            selection.insert(index);
        }
        browser.grid().setSelection(selection);
        (browser.*each.remove)();
        ASSERT_NO_FATAL_FAILURE(refetched());
        EXPECT_EQ(selected(), QLatin1StringView(each.next));
        undoStack.undo();
        browser.grid().setSelection({});
        ASSERT_NO_FATAL_FAILURE(refetched());
        EXPECT_EQ(browser.content().count(), 5);
        EXPECT_EQ(selected(), QString()) << "the place was for that one time";
    }
}

TEST_F(GridSelection, StaysOnItsItemsWhenOthersComeAndGo)
{
    browser.grid().setSelection(ZQIndexSet(1, 2));
    project->addItem(library.addImage(QStringLiteral("first")).get(), 0);
    library.context().save();
    ASSERT_NO_FATAL_FAILURE(refetched());
    EXPECT_EQ(selected(), QStringLiteral("bc"));

    browser.grid().setSelection(ZQIndexSet(0, 5)); // all
    project->addItem(library.addImage(QStringLiteral("z")).get());
    library.context().save();
    ASSERT_NO_FATAL_FAILURE(refetched());
    EXPECT_EQ(selected(), QStringLiteral("firstabcde")) << "what arrives was not chosen";

    const auto awaited = library.addImage(QStringLiteral("y"));
    project->addItem(awaited.get());
    library.context().save();
    browser.selectLibraryItem(awaited->objectID()); // it is not shown yet
    ASSERT_NO_FATAL_FAILURE(refetched());
    EXPECT_EQ(selected(), QStringLiteral("y"));
}

TEST_F(GridSelection, WhatIsWantedIsForgottenWhenItsMomentIsOver)
{
    const Item other = addProject(QStringLiteral("Other"));
    struct Case
    {
        const char *what;
        std::function<void()> pass;
        const char *selected;
    };
    const Case cases[] = {
        {"a fetch did not bring it",
         [this] {
             QSignalSpy answered(&browser.content(), &BrowserContent::answered);
             browser.refetch();
             ASSERT_TRUE(answered.wait(10000));
         },
         "a"},
        {"a person selected", [this] { browser.grid().setCurrentIndex(1); }, "b"},
        {"a person selected nothing", [this] { browser.grid().setSelection({}); }, ""},
        {"another place was shown",
         [&] {
             show({other->objectID()});
             show({project->objectID()});
             browser.grid().setCurrentIndex(2);
         },
         "c"},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        browser.grid().setCurrentIndex(0);
        const auto late = library.addImage(QStringLiteral("late"));
        library.context().save();
        browser.selectLibraryItem(late->objectID());
        ASSERT_NO_FATAL_FAILURE(each.pass());
        project->addItem(late.get());
        library.context().save();
        ASSERT_NO_FATAL_FAILURE(refetched());
        EXPECT_EQ(selected(), QLatin1StringView(each.selected));
    }
}

TEST_F(GridSelection, WhatIsWantedInOnePlaceIsNotSelectedInAnother)
{
    const auto late = library.addImage(QStringLiteral("late"));
    const Item other = addProject(QStringLiteral("Other"));
    other->addItem(images[4].get());
    other->addItem(late.get());
    library.context().save();
    browser.selectLibraryItem(late->objectID());
    show({other->objectID()});
    EXPECT_EQ(selected(), QString());

    show({project->objectID()});
    browser.grid().setCurrentIndex(0);
    browser.duplicate();
    browser.grid().setCurrentIndex(3); // before the copy is there, or after
    ASSERT_TRUE(QTest::qWaitFor([this] { return project->numberOfItems() == 6; }, 10000));
    ASSERT_NO_FATAL_FAILURE(refetched());
    EXPECT_EQ(browser.content().count(), 6);
    EXPECT_EQ(selected().left(1), QStringLiteral("d"));
}

TEST_F(GridSelection, ATabIsShownAsItWasLeftThoughSomethingIsWaitedFor)
{
    const auto tab = std::make_shared<TabState>(window);
    tab->goToSidebarItems({project->objectID()});
    tab->view.selectionIndexes = ZQIndexSet(3, 3);
    tab->view.detailItem = images[3]->objectID();
    const auto late = library.addImage(QStringLiteral("late"));
    library.context().save();
    browser.showTab(tab);
    browser.selectLibraryItem(late->objectID());
    settle();
    EXPECT_EQ(selected(), QStringLiteral("d"));
    EXPECT_TRUE(browser.isDetailOpen());
}

TEST_F(GridSelection, NothingIsRemovedFromWhatHoldsNothingByItself)
{
    const auto tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("mine"), library.context());
    const auto red = ZQSidebarTag::tagForColor(1003, library.context());
    for (const auto &each : {tag, red}) {
        images[0]->addTagsObject(each.get());
    }
    library.context().save();
    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    for (const Item &shown : {everything, projects}) {
        show({shown->objectID()});
        browser.grid().setSelection(ZQIndexSet(0, browser.content().count() - 1));
        browser.removeFromProject();
        EXPECT_EQ(undoStack.count(), 0) << qPrintable(shown->title());
    }
    for (const auto &each : {tag, red}) { // what takes items gives them back
        show({each->objectID()});
        browser.grid().setSelection(ZQIndexSet(0, 0));
        browser.removeFromProject();
    }
    EXPECT_TRUE(images[0]->itemTags().isEmpty());
    EXPECT_TRUE(images[0]->active());
}

TEST_F(GridSelection, WhatIsDeletedIsNoLongerShownAlone)
{
    browser.grid().setCurrentIndex(1);
    browser.openDetail(false);
    ASSERT_TRUE(browser.isDetailOpen());
    browser.deleteFromLibrary();
    EXPECT_FALSE(browser.isDetailOpen());
}

TEST_F(SidebarSelection, ASafeNeighbourTakesThePlaceOfWhatIsDeleted)
{
    struct Case
    {
        const char *what;
        QList<Item> gone;
        const char *next;
    };
    for (const Case &each : {Case{"one with a row below", {before}, "Folder"},
                             {"a folder with what it holds", {folder}, "After"},
                             {"a folder and the one after it", {folder, after}, "Before"},
                             {"the last above a label", {after}, "Inside"},
                             {"all", {before, folder, after}, "Screenshots"}}) {
        for (const bool withContent : {false, true}) {
            SCOPED_TRACE(std::string(each.what) + (withContent ? " with content" : ""));
            QList<ZQObjectID> ids;
            for (const Item &item : each.gone) {
                ids.append(item->objectID());
            }
            sidebar.selectItems(ids);
            withContent ? sidebar.deleteItemAndContent() : sidebar.deleteItem();
            EXPECT_FALSE(each.gone.first()->active());
            EXPECT_EQ(selected(), QLatin1StringView(each.next));
            undoStack.undo();
            sidebar.reload();
            EXPECT_EQ(titles(projects),
                      (QStringList{QStringLiteral("Before"), QStringLiteral("Folder"), QStringLiteral("After")}));
        }
    }
}

TEST_F(SidebarSelection, WhatIsFixedIsNeverDeleted)
{
    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    sidebar.selectItems({everything->objectID()});
    sidebar.deleteItem();
    sidebar.deleteItemAndContent();
    EXPECT_TRUE(everything->active());
    EXPECT_TRUE(user.questions.isEmpty());
    EXPECT_EQ(undoStack.count(), 0);
}
