#include "Classes/Browsing/OpenTabs.h"

#include "Tests/Classes/Browsing/BrowsingFixture.h"

namespace {

class OpenTabsTest : public BrowsingFixture
{
protected:
    OpenTabsTest()
    {
        for (const char *key : {"OpenTabs", "SelectedTab"}) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(QLatin1StringView(key));
        }
        QObject::connect(&tabs, &OpenTabs::currentChanged, [this] { ++changes; });
    }
    void show(OpenTabs &in, const Item &item) { in.current()->setSidebarSelectedItems({item->objectID()}); }
    std::string shown(const OpenTabs &of) const
    {
        return (of.titles().join(u' ') + QStringLiteral(" | ") + of.titles()[of.currentIndex()]).toStdString();
    }

    const Item a = addProject(QStringLiteral("A"));
    const Item b = addProject(QStringLiteral("B"));
    const Item c = addProject(QStringLiteral("C"));
    OpenTabs tabs{editing};
    int changes = 0;
};

} // namespace

TEST_F(OpenTabsTest, OneIsAlwaysInFrontWhateverIsClosed)
{
    tabs.restore();
    EXPECT_EQ(shown(tabs), "Library | Library") << "there is nothing to restore";
    tabs.closeTab(0);
    EXPECT_EQ(tabs.count(), 1) << "the last one stays";
    show(tabs, a);
    for (const Item &item : {b, c}) {
        tabs.newTab();
        show(tabs, item);
    }
    EXPECT_EQ(shown(tabs), "A B C | C");
    tabs.select(1);
    tabs.select(3); // there is none
    EXPECT_EQ(shown(tabs), "A B C | B");
    tabs.selectNext(-2);
    EXPECT_EQ(shown(tabs), "A B C | C");
    tabs.selectNext(1);
    EXPECT_EQ(shown(tabs), "A B C | A");

    tabs.moveTab(0, 2);
    EXPECT_EQ(shown(tabs), "B C A | A");
    tabs.closeTab(0); // before the one in front
    EXPECT_EQ(shown(tabs), "C A | A");
    tabs.closeTab(1); // the one in front, the last
    EXPECT_EQ(shown(tabs), "C | C");
    tabs.reopenTab();
    EXPECT_EQ(shown(tabs), "C A | A") << "the last that was closed first, beside the one in front";
    tabs.select(0);
    tabs.reopenTab();
    EXPECT_EQ(shown(tabs), "C B A | B");
    EXPECT_FALSE(tabs.canReopen());
    tabs.closeTab(2); // behind the one in front
    EXPECT_EQ(shown(tabs), "C B | B");
    EXPECT_GT(changes, 0);
}

TEST_F(OpenTabsTest, WhatIsOpenComesBackWithoutWhatIsGone)
{
    show(tabs, a);
    tabs.current()->setSearchString(QStringLiteral(" words "));
    tabs.newTab();
    EXPECT_EQ(tabs.current()->searchString(), QString()) << "a new tab searches for nothing";
    tabs.current()->setSidebarSelectedItems({b->objectID(), c->objectID()});
    tabs.newTab();
    show(tabs, c);
    tabs.select(1);
    tabs.save();
    c->deleteSelf();
    library.context().save();

    OpenTabs again(editing);
    again.restore();
    EXPECT_EQ(shown(again), "A B | B");
    again.select(0);
    EXPECT_EQ(again.current()->searchString(), QStringLiteral(" words "));
    EXPECT_EQ(again.current()->contentQuery().filter, QStringLiteral("words"));
}

TEST_F(OpenTabsTest, ATabFollowsItsSingleItemAndSeveralHaveNoOrder)
{
    TabState tab(editing);
    EXPECT_EQ(tab.tabName(), QStringLiteral("nothing selected"));
    EXPECT_EQ(tab.sortKeysValue(), ZQSortValue::Manual);
    EXPECT_EQ(tab.zoomValue(), 0.5);
    tab.setSort(ZQSortValue::Title, true); // of nothing
    tab.setSidebarSelectedItems({a->objectID(), b->objectID()});
    EXPECT_EQ(tab.tabName(), QStringLiteral("2 items selected"));
    EXPECT_EQ(tab.sortKeysValue(), ZQSortValue::None);
    EXPECT_FALSE(tab.browserCanManuallySort());
    tab.setSidebarSelectedItems({a->objectID()});
    EXPECT_TRUE(tab.browserCanManuallySort());
    tab.setSort(ZQSortValue::Size, true);
    tab.keepZoom(0.75);
    EXPECT_FALSE(library.context().hasChanges()) << "both are saved";
    EXPECT_EQ(a->sortKeys(), qint16(ZQSortValue::Size));
    EXPECT_TRUE(TabState(editing, {a->objectID()}).sortDirectionValue());
    EXPECT_EQ(TabState(editing, {a->objectID()}).zoomValue(), 0.75);
    const Item everything = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    EXPECT_FALSE(TabState(editing, {everything->objectID()}).browserCanManuallySort());
}
