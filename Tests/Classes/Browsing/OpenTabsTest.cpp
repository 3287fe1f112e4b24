#include "Classes/Browsing/Tabs/OpenTabs.h"

#include "Tests/Classes/Browsing/BrowsingFixture.h"

#include <QFileInfo>
#include <QtTest/QTest>

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
    const QString path = library.path(QStringLiteral("tabs/opened_tabs.plist"));
    OpenTabs tabs{editing, path};
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

TEST_F(OpenTabsTest, AClosedOneGivesWayToTheOneItWasOpenedFrom)
{
    tabs.restore();
    show(tabs, a);
    for (const Item &item : {b, c}) {
        tabs.newTab();
        show(tabs, item);
    }
    const auto open = [this] {
        tabs.newTab();
        show(tabs, c);
    };
    tabs.select(0);
    open();
    EXPECT_EQ(shown(tabs), "A C B C | C");
    tabs.closeTab(1);
    EXPECT_EQ(shown(tabs), "A B C | A") << "and not B, which is next";
    open();
    open();
    tabs.closeTab(2);
    tabs.closeTab(1);
    EXPECT_EQ(shown(tabs), "A B C | A") << "one after the other";
    open();
    tabs.select(0);
    tabs.select(1);
    tabs.moveTab(1, 2);
    tabs.closeTab(2);
    EXPECT_EQ(shown(tabs), "A B C | A") << "a look back is no other way";
    open();
    tabs.select(3);
    tabs.select(1);
    tabs.closeTab(1);
    EXPECT_EQ(shown(tabs), "A B C | B") << "a person went on";
    open();
    tabs.closeTab(1); // what it was opened from
    tabs.closeTab(1);
    EXPECT_EQ(shown(tabs), "A C | C");
    tabs.reopenTab();
    tabs.closeTab(tabs.currentIndex());
    EXPECT_EQ(shown(tabs), "A C | C") << "the same for one that was opened again";
}

TEST_F(OpenTabsTest, TheOneInFrontIsLeftOnlyForAnother)
{
    int lefts = 0;
    QObject::connect(&tabs, &OpenTabs::aboutToLeave, [&lefts] { ++lefts; });
    tabs.restore();
    show(tabs, a);
    tabs.newTab();
    const auto second = tabs.current();
    show(tabs, b);
    second->setSort(ZQSortValue::Title, false);
    changes = lefts = 0;
    tabs.select(1);
    EXPECT_EQ(changes, 0) << "it is in front";
    tabs.select(0);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(lefts, 1);
    EXPECT_EQ(b->sortKeys(), qint16(ZQSortValue::Title)) << "what is left keeps its order";
    tabs.selectTabForState(*second);
    EXPECT_EQ(shown(tabs), "A B | B");
    second->setSort(ZQSortValue::Size, false);
    tabs.closeTab(1);
    EXPECT_EQ(b->sortKeys(), qint16(ZQSortValue::Size)) << "what is closed, too";
    tabs.selectTabForState(*second);
    EXPECT_EQ(shown(tabs), "A | A") << "it is closed";
    for (int i = 0; i < 60; ++i) {
        tabs.newTab();
        tabs.closeTab(1);
    }
    int reopened = 0;
    for (; tabs.canReopen(); ++reopened) {
        tabs.reopenTab();
    }
    EXPECT_EQ(reopened, 50);
    tabs.moveTab(0, 99);
    tabs.moveTab(-1, 0);
    EXPECT_EQ(tabs.count(), 51);
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

    OpenTabs again(editing, path);
    again.restore();
    EXPECT_EQ(shown(again), "A B nothing selected | B");
    again.select(0);
    EXPECT_EQ(again.current()->searchString(), QStringLiteral(" words "));
    EXPECT_EQ(again.current()->filter(), QStringLiteral("words"));
}

TEST_F(OpenTabsTest, WhatAnOlderVersionKeptIsTakenOverOnce)
{
    auto &defaults = ZQUserDefaults::standardUserDefaults();
    const QUuid store = library.coordinator()->storeUUID();
    const auto tab = [&store](const QList<Item> &items, const QString &search) {
        QStringList uris;
        for (const Item &item : items) {
            uris.append(item->objectID().URIRepresentation(store));
        }
        return QVariantMap{{QStringLiteral("items"), uris}, {QStringLiteral("search"), search}};
    };
    c->deleteSelf();
    library.context().save();
    defaults.setObjectForKey(QVariantList{tab({a, c}, QStringLiteral("words")), tab({c}, {}), tab({b}, {})},
                             QStringLiteral("OpenTabs"));
    defaults.setObjectForKey(1, QStringLiteral("SelectedTab"));
    tabs.restore();
    EXPECT_EQ(shown(tabs), "A B | B");
    EXPECT_TRUE(defaults.isSet(QStringLiteral("OpenTabs"))) << "until the file is written";
    EXPECT_EQ(tabs.current()->browserDisplayStyleValue(), BrowserDisplayStyle::BySidebarItem)
        << "in the order it was left in";
    tabs.save();
    EXPECT_FALSE(defaults.isSet(QStringLiteral("OpenTabs")));
    EXPECT_FALSE(defaults.isSet(QStringLiteral("SelectedTab")));
    OpenTabs again(editing, path);
    again.restore();
    EXPECT_EQ(shown(again), "A B | B");
    again.select(0);
    EXPECT_EQ(again.current()->searchString(), QStringLiteral("words"));

    // Where no file can be written, it stays.
    defaults.setObjectForKey(QVariantList{tab({a}, {})}, QStringLiteral("OpenTabs"));
    library.writeFile(QStringLiteral("blocked"), "a file");
    OpenTabs blocked(editing, library.path(QStringLiteral("blocked/opened_tabs.plist")));
    blocked.restore();
    EXPECT_EQ(shown(blocked), "A | A");
    blocked.save();
    EXPECT_TRUE(defaults.isSet(QStringLiteral("OpenTabs")));
    defaults.removeObjectForKey(QStringLiteral("OpenTabs"));
}

TEST_F(OpenTabsTest, ChangesAreWrittenByThemselves)
{
    tabs.restore();
    show(tabs, a);
    tabs.newTab();
    EXPECT_TRUE(QTest::qWaitFor([this] { return QFileInfo::exists(path); }, 20000));
    OpenTabs again(editing, path);
    again.restore();
    EXPECT_EQ(shown(again), "A A | A");
}
