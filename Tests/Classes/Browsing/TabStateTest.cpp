#include "Classes/Browsing/Tabs/TabState.h"

#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QtTest/QTest>

namespace {

class TabStateTest : public BrowsingFixture
{
protected:
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, library.context()); }
    std::shared_ptr<TabState> tabOf(const QList<Item> &items)
    {
        QList<ZQObjectID> ids;
        for (const Item &item : items) {
            ids.append(item->objectID());
        }
        return std::make_shared<TabState>(editing, ids);
    }
    void build(TabState &tab)
    {
        bool isDone = false;
        tab.buildCache(ticket, [&isDone](const Content &) { isDone = true; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }, 20000));
    }
    QString titlesOf(const QList<ZQObjectID> &items)
    {
        QStringList titles;
        for (const ZQObjectID &id : items) {
            titles.append(editing.libraryItem(id)->title());
        }
        return titles.join(u' ');
    }

    ContentFetcher::Ticket ticket{fetcher, ContentFetcher::Priority::Content};
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item a = addProject(QStringLiteral("A"), folder);
    const Item b = addProject(QStringLiteral("B"));
    const Item live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel));
    const Item tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("mine"), library.context());
    const Item everything = special(ZQSidebarKind::Library);
};

} // namespace

TEST_F(TabStateTest, ValuesInEffectAreTheTabsElseTheSingleElementsElseTheUsual)
{
    a->setSortKeys(3);
    a->setSortDirection(false);
    a->setZoom(0.25F);
    everything->setSortKeys(1);
    everything->setSortDirection(true);
    library.context().save();
    const auto own = [](TabState &tab) {
        tab.setSortKeys(ZQSortValue::CreationDate);
        tab.setSortDirection(true);
        tab.setZoom(0.75);
        tab.setBrowserDisplayStyle(BrowserDisplayStyle::ByColor);
    };
    struct Case
    {
        const char *what;
        QList<Item> items;
        bool hasOwn;
        int sort;
        bool direction;
        double zoom;
        int style;
        const char *title;
    };
    const Case cases[] = {{"nothing", {}, false, 0, false, 0.5, 1, "nothing selected"},
                          {"a project", {a}, false, 3, false, 0.25, 0, "A"},
                          {"a folder", {folder}, false, 0, true, 0.445, 1, "Folder"},
                          {"a live folder", {live}, false, 0, true, 0.445, 1, "Live"},
                          {"a tag", {tag}, false, 2, true, 0.445, 0, "mine"},
                          {"the library", {everything}, false, 1, true, 0.445, 0, "Library"},
                          {"two", {a, b}, false, 5, false, 0.5, 1, "2 items selected"},
                          {"a project with values of the tab", {a}, true, 7, true, 0.75, 3, "A"},
                          {"two with values of the tab", {a, b}, true, 7, true, 0.75, 3, "2 items selected"}};
    for (const Case &each : cases) {
        const auto tab = tabOf(each.items);
        if (each.hasOwn) {
            own(*tab);
        }
        EXPECT_EQ(int(tab->sortKeysValue()), each.sort) << each.what;
        EXPECT_EQ(tab->sortDirectionValue(), each.direction) << each.what;
        EXPECT_NEAR(tab->zoomValue(), each.zoom, 1e-6) << each.what;
        EXPECT_EQ(int(tab->browserDisplayStyleValue()), each.style) << each.what;
        EXPECT_EQ(tab->tabName().toStdString(), each.title) << each.what;
        EXPECT_EQ(bool(tab->singleSidebarElement()), each.items.size() == 1) << each.what;
    }
    b->setTitle({});
    EXPECT_EQ(tabOf({b})->tabName(), QString());
}

TEST_F(TabStateTest, WhatCanBeDoneFollowsTheSelection)
{
    zqCast<ZQSidebarWatchedFolder>(live)->setIs_enabled(true);
    const Item off = add<ZQSidebarWatchedFolder>(QStringLiteral("Off"), special(ZQSidebarKind::WatchedFoldersLabel));
    zqCast<ZQSidebarWatchedFolder>(off)->setIs_enabled(false);
    struct Case
    {
        const char *what;
        QList<Item> items;
        const char
            *can; // m: sort by hand, l: list, i: import, o: move away; t: tags, w: live folders, d: disabled ones
    };
    const Case cases[] = {{"nothing", {}, ""},
                          {"a project", {a}, "mlio"},
                          {"screenshots", {special(ZQSidebarKind::Screenshots)}, "mlo"},
                          {"the library", {everything}, "li"},
                          {"a folder", {folder}, "l"},
                          {"a label", {projects}, ""},
                          {"a tag", {tag}, "liot"},
                          {"a live folder", {live}, "liw"},
                          {"one that is off", {live, off}, "lwd"},
                          {"two projects", {a, b}, "l"},
                          {"a project and a tag", {a, tag}, "lt"}};
    for (const Case &each : cases) {
        const auto tab = tabOf(each.items);
        std::string can;
        for (const auto &[letter, holds] : {std::pair('m', tab->browserCanManuallySort()),
                                            {'l', tab->browserCanShowListStyle()},
                                            {'i', tab->canImportItems()},
                                            {'o', tab->canMoveItemToOtherProject()},
                                            {'t', tab->hasTags()},
                                            {'w', tab->hasWatchedFolders()},
                                            {'d', tab->hasDisabledWatchedFolders()}}) {
            can += holds ? std::string(1, letter) : std::string();
        }
        EXPECT_EQ(can, each.can) << each.what;
    }
}

TEST_F(TabStateTest, AListWithoutAnOrderOfItsOwnGivesTheTabOne)
{
    const auto two = tabOf({a, b});
    EXPECT_EQ(two->contentQuery().sortValue, ZQSortValue::None);
    EXPECT_FALSE(two->sortKeys());
    two->setBrowserDisplayStyle(BrowserDisplayStyle::ByExtension);
    EXPECT_EQ(two->contentQuery().sortValue, ZQSortValue::ModificationDate);
    EXPECT_EQ(two->sortKeysValue(), ZQSortValue::ModificationDate);
    EXPECT_TRUE(two->sortDirectionValue());
    const auto plain = tabOf({a});
    plain->contentQuery();
    EXPECT_EQ(plain->sortKeysValue(), ZQSortValue::ModificationDate);
    // Who goes to a project in manual order, or chooses that, sees it.
    const auto gone = tabOf({everything});
    gone->goToSidebarItems({a->objectID()});
    EXPECT_EQ(gone->contentQuery().sortValue, ZQSortValue::Manual);
    EXPECT_EQ(gone->browserDisplayStyle(), BrowserDisplayStyle::BySidebarItem);
    const auto recent = tabOf({a});
    recent->goToSidebarItems({special(ZQSidebarKind::Recent)->objectID()});
    EXPECT_EQ(recent->browserDisplayStyleValue(), BrowserDisplayStyle::BySidebarItem) << "it has groups of its own";
    plain->setSort(ZQSortValue::Manual, true);
    EXPECT_EQ(plain->contentQuery().sortValue, ZQSortValue::Manual);
    gone->setBrowserDisplayStyle(BrowserDisplayStyle::BySize);
    gone->setZoom(0.9);
    gone->goToSidebarItems({everything->objectID()});
    EXPECT_EQ(gone->browserDisplayStyleValue(), BrowserDisplayStyle::BySize) << "groups by what items are stay";
    EXPECT_NEAR(gone->zoomValue(), 0.445, 1e-6);
    EXPECT_NEAR(double(a->zoom()), 0.9, 1e-6) << "what is left keeps its zoom";
}

TEST_F(TabStateTest, LeavingWritesIntoTheSingleElementWhatDiffersAndOnce)
{
    int saves = 0;
    const auto token = library.context().observeDidSave([&saves](const ZQContextDidSave &) { ++saves; });
    const auto tab = tabOf({a});
    tab->savePersistentStateInformations();
    EXPECT_EQ(saves, 0) << "nothing was chosen";
    tab->setZoom(0.75);
    tab->setSort(ZQSortValue::Size, false);
    tab->savePersistentStateInformations();
    EXPECT_EQ(saves, 1);
    EXPECT_EQ(a->sortKeys(), qint16(ZQSortValue::Size));
    EXPECT_FALSE(a->sortDirection());
    EXPECT_EQ(a->zoom(), 0.75F);
    EXPECT_EQ(tabOf({a})->zoomValue(), 0.75);
    tab->savePersistentStateInformations();
    EXPECT_EQ(saves, 1) << "nothing differs";
    const auto two = tabOf({a, b});
    two->setZoom(0.1);
    two->savePersistentStateInformations();
    a->deleteSelf();
    library.context().save();
    tab->setZoom(0.2);
    tab->savePersistentStateInformations();
    EXPECT_EQ(saves, 2) << "of several, and of what is deleted, nothing is kept";
}

TEST_F(TabStateTest, TheCacheGoesWithAChangeToWhatIsShown)
{
    const auto image = library.addImage(QStringLiteral("image"));
    const auto hidden = library.addImage(QStringLiteral("hidden"));
    const auto other = library.addImage(QStringLiteral("other"));
    a->addItems({image, hidden});
    b->addItems({other});
    hidden->setActive(false);
    library.context().save();
    struct Case
    {
        const char *what;
        Item shown;
        std::function<void()> change;
        bool isTouched;
    };
    const Case cases[] = {
        {"another's item", a, [&] { other->setRating(3); }, false},
        {"another project", a, [&] { b->setTitle(QStringLiteral("Renamed")); }, false},
        {"a new member of another", a, [&] { b->addItem(image.get()); }, true}, // the item's lists are part of it
        {"its own title", a, [&] { a->setTitle(QStringLiteral("Mine")); }, true},
        {"its item", a, [&] { image->setRating(3); }, true},
        {"below the folder", folder, [&] { a->setTitle(QStringLiteral("Below")); }, true},
        {"an item below the folder", folder, [&] { image->setRating(1); }, true},
        {"beside the folder", folder, [&] { b->setTitle(QStringLiteral("Beside")); }, false},
        {"an item that returns", a, [&] { hidden->setActive(true); }, true},
        {"a member that goes", a, [&] { a->removeItem(hidden.get()); }, true},
        {"a new tag for its item", tag, [&] { tag->addItem(other.get()); }, true},
        {"anything, for the library", everything, [&] { b->setTitle(QStringLiteral("Anything")); }, true},
    };
    for (const Case &each : cases) {
        const auto tab = tabOf({each.shown});
        build(*tab);
        const auto token = library.context().observeObjectsDidChange(
            [&tab](const ZQContextDidSave &change) { tab->evaluateCache(change); });
        tab->evaluateCache({});
        EXPECT_TRUE(tab->content()) << each.what;
        each.change();
        library.context().save();
        EXPECT_EQ(tab->content() == nullptr, each.isTouched) << each.what;
    }
}

TEST_F(TabStateTest, SelectionAndFilterAreOfTheRowsThatAreKnown)
{
    for (const char *title : {"one", "two", "three"}) {
        a->addItem(library.addImage(QLatin1StringView(title)).get());
    }
    b->addItem(library.addImage(QStringLiteral("four")).get());
    library.context().save();
    const auto tab = tabOf({a, b});
    tab->view.selectionIndexes = ZQIndexSet(1, 9);
    EXPECT_EQ(tab->selectedBrowserItems(), QList<ZQObjectID>());
    EXPECT_EQ(tab->groups(), QList<ContentGroup>());
    build(*tab);
    EXPECT_EQ(titlesOf(tab->selectedBrowserItems()), QStringLiteral("two three four"));
    ASSERT_EQ(tab->groups().size(), 2);
    EXPECT_EQ(tab->groups().first().sidebarItem, a->objectID());
    EXPECT_EQ(tab->filteredGroups(), tab->groups());
    tab->setFilterPredicate(
        ZQPredicate::predicateWithFormat(QStringLiteral("title CONTAINS \"o\" AND title != \"four\"")));
    ASSERT_EQ(tab->filteredGroups().size(), 1);
    EXPECT_EQ(tab->filteredGroups().first().title, QStringLiteral("A"));
    EXPECT_EQ(tab->filteredGroups().first().count, 2);
    tab->setFilterPredicate(ZQPredicate::predicateWithFormat(QStringLiteral("title == \"nobody\"")));
    EXPECT_EQ(tab->filteredGroups(), QList<ContentGroup>());
    tab->setSearchString(QStringLiteral(" "));
    EXPECT_TRUE(tab->content()) << "the same filter";
    tab->setSearchString(QStringLiteral("x"));
    EXPECT_FALSE(tab->content());
}

TEST_F(TabStateTest, RemovingFromSeveralIsOneStepAndBringsTheTabToTheFront)
{
    const QList<ZQRef<ZQLibraryBaseItem>> images = {library.addImage(QStringLiteral("x")),
                                                    library.addImage(QStringLiteral("y"))};
    a->addItems(images);
    b->addItems({images[1]});
    library.context().save();
    const auto tab = tabOf({a, b});
    int fronts = 0;
    tab->selectTabForState = [&](TabState &state) { fronts += &state == tab.get() ? 1 : 0; };
    const QList<ZQObjectID> ids = {images[0]->objectID(), images[1]->objectID()};
    const auto members = [this] { return QStringLiteral("%1 %2").arg(a->numberOfItems()).arg(b->numberOfItems()); };
    build(*tab);
    tab->removeItems(ids, {a->objectID(), b->objectID()}, true);
    EXPECT_EQ(members(), QStringLiteral("0 0"));
    EXPECT_EQ(undoStack.count(), 1);
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("remove items"));
    EXPECT_FALSE(tab->content());
    undoStack.undo();
    EXPECT_EQ(members(), QStringLiteral("2 1"));
    EXPECT_EQ(a->orderOfItem(images[1].get()), 1) << "at its former place";
    undoStack.redo();
    EXPECT_EQ(members(), QStringLiteral("0 0"));
    tab->removeItems(ids, {a->objectID(), b->objectID()}, false);
    EXPECT_EQ(undoStack.count(), 1) << "there was nothing to remove";
    tab->addItems(ids, {a->objectID(), b->objectID()}, {0, 0}, true);
    EXPECT_EQ(members(), QStringLiteral("2 2"));
    EXPECT_EQ(undoStack.count(), 2);
    tab->addItems(ids, {a->objectID(), b->objectID()}, {}, true);
    EXPECT_EQ(undoStack.count(), 2) << "all were there already";
    EXPECT_GE(fronts, 3);
    fronts = 0;
    undoStack.undo();
    EXPECT_EQ(fronts, 1) << "also when it is taken back";
    EXPECT_EQ(members(), QStringLiteral("0 0"));
}
