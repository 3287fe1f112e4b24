// Each tab keeps how it was looked at, and what it groups and sorts by.

#include "Classes/Interface/Detail/DetailView.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QToolButton>

namespace {

class TabsTest : public MainWindowTest
{
protected:
    // More than fit on the screen.
    void fill(const Item &project, int count)
    {
        QList<ZQRef<ZQLibraryBaseItem>> items;
        for (int i = 0; i < count; ++i) {
            const auto item = context().insertNewObject<ZQLibraryImage>();
            item->setTitle(QStringLiteral("item %1").arg(i));
            item->setExtension(i % 3 == 0 ? QStringLiteral("svg") : QStringLiteral("png"));
            item->setActive(true);
            items.append(item);
        }
        project->addItems(items);
        delegate->saveAction();
        settle();
    }
    void clickItem(qint64 index)
    {
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, grid().visualRect(index).center());
    }
    DetailView &detail() { return *browser().findChild<DetailView *>(); }
    QString heads()
    {
        QStringList texts;
        for (const ZQGridGroup &group : browser().content().groups()) {
            texts.append(QStringLiteral("%1 %2").arg(group.title).arg(group.count));
        }
        return texts.join(u'|');
    }
    QString path() { return delegate->documentDirectory() + QStringLiteral("/opened_tabs.plist"); }
};

} // namespace

TEST_F(TabsTest, SelectionScrollAndDetailViewComeBackWithTheTabAndTheNextLaunch)
{
    fill(b, 300);
    grid().setFocus();
    press(Qt::Key_T, Qt::ControlModifier);
    show(b);
    grid().setFocus();
    for (int i = 0; i < 3; ++i) {
        press(Qt::Key_PageDown);
    }
    clickItem(grid().visibleIndexes().first() + 9);
    const QStringList chosen = selected();
    const qint64 offset = grid().scrollOffset();
    ASSERT_EQ(chosen.size(), 1);
    ASSERT_GT(offset, 0);

    press(Qt::Key_1, Qt::ControlModifier);
    settle();
    EXPECT_EQ(selected(), QStringList());
    EXPECT_EQ(grid().scrollOffset(), 0);
    select({QStringLiteral("red")});
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("red")}) << "it is in front already";
    press(Qt::Key_Return);
    press(Qt::Key_Plus);
    const double scale = detail().scale();
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(browser().isDetailOpen());

    const auto looks = [&] {
        return QStringLiteral("%1 at %2%3")
            .arg(selected().join(u' '))
            .arg(grid().scrollOffset())
            .arg(browser().isDetailOpen() ? QStringLiteral(" open at %1").arg(detail().scale(), 0, 'f', 4) : QString())
            .toStdString();
    };
    const std::string first = QStringLiteral("red at 0 open at %1").arg(scale, 0, 'f', 4).toStdString();
    const std::string second = QStringLiteral("%1 at %2").arg(chosen.first()).arg(offset).toStdString();
    for (int round = 0; round < 2; ++round) {
        press(Qt::Key_2, Qt::ControlModifier);
        settle();
        EXPECT_EQ(looks(), second) << round;
        press(Qt::Key_1, Qt::ControlModifier);
        settle();
        EXPECT_EQ(looks(), first) << round;
        // Now what the tabs know of their rows is not true any more.
        special(ZQSidebarKind::Library)->setZoom(0.4F);
        b->setExpanded(!b->expanded());
        delegate->saveAction();
    }
    closeWindow();
    openWindow();
    EXPECT_EQ(looks(), first);
    press(Qt::Key_2, Qt::ControlModifier);
    settle();
    EXPECT_EQ(looks(), second);

    // Rows that are no longer there are not selected, and what is there is.
    grid().selectAll();
    closeWindow();
    for (const auto &member : b->items().mid(100)) {
        member->setActive(false);
    }
    delegate->saveAction();
    openWindow();
    EXPECT_EQ(selected().size(), 100);
}

TEST_F(TabsTest, GroupsAreChosenInTheHeadAndInTheMenu)
{
    QToolButton *button = named<QToolButton>("Group: Sidebar item");
    ASSERT_TRUE(button) << "a project in manual order";
    EXPECT_TRUE(button->focusPolicy() & Qt::TabFocus);
    EXPECT_EQ(heads(), QString());
    whenMenuOpens(QStringLiteral("Extension"));
    button->click();
    EXPECT_EQ(menu, QStringLiteral("None|Sidebar item|Extension|Color|Size"));
    settle();
    EXPECT_EQ(heads(), QStringLiteral("gif 1|pdf 1|png 2"));
    EXPECT_TRUE(named("Group: Extension"));
    EXPECT_TRUE(named("Sort: Modification date")) << "groups have no order by hand";
    const auto isChecked = [this](CommandID first, int offset) {
        return controller->command(CommandID(int(first) + offset))->isChecked();
    };
    EXPECT_TRUE(isChecked(CommandID::GroupPlain, 2));
    EXPECT_FALSE(isChecked(CommandID::GroupPlain, 1));
    EXPECT_TRUE(isChecked(CommandID::SortManually, 6));
    EXPECT_TRUE(controller->command(CommandID::SortAscending)->isChecked());
    EXPECT_EQ(commandsOf(menuOf("Group")),
              QStringLiteral("None ✓\nSidebar item ✓\nExtension ✓\nColor ✓\nSize ✓\n-\nCollapse Group Alt+Left\n"
                             "Expand Group Alt+Right\nCollapse All Groups Alt+Shift+Left\n"
                             "Expand All Groups Alt+Shift+Right"));

    run(CommandID::SortDescending);
    settle();
    EXPECT_FALSE(browser().content().tab().sortDirectionValue());
    run(CommandID::GroupBySize);
    settle();
    EXPECT_EQ(heads(), QStringLiteral("None 1|Icon 1|Small 2"));
    show(special(ZQSidebarKind::Library));
    EXPECT_EQ(heads(), QStringLiteral("None 1|Icon 1|Small 2")) << "also of everything";
    sidebar().selectItems({a->objectID(), tag->objectID()});
    run(CommandID::GroupPlain);
    settle();
    EXPECT_EQ(heads(), QString());
    show(a);
    EXPECT_FALSE(browser().content().tab().sortDirectionValue()) << "kept when it was left";
    run(CommandID::SortManually);
    settle();
    EXPECT_EQ(shown().join(u' '), QStringLiteral("red clear pages moving"));
    EXPECT_FALSE(isEnabled(CommandID::SortAscending));
    show(special(ZQSidebarKind::Library));
    EXPECT_FALSE(isEnabled(CommandID::SortManually));
}

TEST_F(TabsTest, WhatIsChosenIsReadableInANarrowWindowToo)
{
    a->setTitle(QStringLiteral("A project with a title that is longer than there is room for"));
    delegate->saveAction();
    run(CommandID::GroupBySize);
    window().resize(window().minimumSize());
    settle();
    for (const char *name : {"Group: Size", "Sort: Modification date", "Ascending"}) {
        const auto *button = named<QToolButton>(name);
        ASSERT_TRUE(button) << name;
        EXPECT_GE(button->width(), button->minimumSizeHint().width()) << name;
        EXPECT_LE(button->geometry().right(), button->parentWidget()->width()) << name;
    }
    window().resize(1280, 800);
    settle();
    const auto labels = browser().findChildren<QLabel *>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
        return label->isVisible() && label->text() == QStringLiteral("Group");
    }));
}

TEST_F(TabsTest, TheInfoPanelIsOpenWhereItWasLeftOpen)
{
    const auto isOpen = [this] { return controller->command(CommandID::InfoPanel)->isChecked(); };
    ASSERT_TRUE(isOpen());
    run(CommandID::NewTab);
    EXPECT_TRUE(isOpen()) << "as the window has it";
    run(CommandID::InfoPanel);
    EXPECT_FALSE(isOpen());
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_FALSE(isOpen()) << "nothing was said for this one";
    run(CommandID::InfoPanel);
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_FALSE(isOpen());
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(isOpen());
    closeWindow();
    openWindow();
    EXPECT_TRUE(isOpen());
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_FALSE(isOpen());
}

TEST_F(TabsTest, ManyTabsAreInAMenu)
{
    window().resize(900, 600);
    QToolButton *all = nullptr; // not to be seen yet
    for (auto *button : strip().findChildren<QToolButton *>()) {
        all = button->accessibleName() == QStringLiteral("All Tabs") ? button : all;
    }
    ASSERT_TRUE(all);
    EXPECT_FALSE(all->isVisible());
    for (int i = 0; i < 13; ++i) {
        press(Qt::Key_T, Qt::ControlModifier);
        sidebar().selectItems({(i % 2 == 0 ? b : inner)->objectID()});
    }
    settle();
    ASSERT_TRUE(all->isVisible());
    EXPECT_EQ(strip().count(), 14);
    EXPECT_LT(strip().visibleCount(), 14);
    all->setFocus();
    whenMenuOpens();
    press(Qt::Key_Space);
    EXPECT_EQ(menu.count(u'|'), 13);
    EXPECT_TRUE(menu.startsWith(QStringLiteral("A|B|Inner|B|")));
    all->menu()->actions().first()->trigger();
    EXPECT_EQ(tabs(), QStringLiteral("A 0/14"));
}

TEST_F(TabsTest, ADamagedFileOpensOneTabAndIsSetAside)
{
    run(CommandID::NewTab);
    closeWindow();
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_GT(file.size(), 100);
    file.resize(file.size() / 2);
    file.close();
    openWindow();
    EXPECT_EQ(tabs(), QStringLiteral("Library 0/1"));
    EXPECT_EQ(QDir(delegate->documentDirectory()).entryList({QStringLiteral("opened_tabs*")}),
              QStringList{QStringLiteral("opened_tabs (damaged 1).plist")});
    closeWindow();
    EXPECT_TRUE(QFile::exists(path()));
}

TEST_F(TabsTest, UndoOfARemovalFindsItsTab)
{
    select({QStringLiteral("clear")});
    grid().setFocus();
    press(Qt::Key_Delete);
    settle();
    EXPECT_EQ(shown().join(u' '), QStringLiteral("red pages moving"));
    EXPECT_EQ(selected(), QStringList{QStringLiteral("pages")});
    press(Qt::Key_T, Qt::ControlModifier);
    show(b);
    EXPECT_EQ(controller->command(CommandID::Undo)->text(), QStringLiteral("Undo remove items"));
    press(Qt::Key_Z, Qt::ControlModifier);
    settle();
    EXPECT_EQ(tabs(), QStringLiteral("A 0/2"));
    EXPECT_EQ(shown().join(u' '), QStringLiteral("red clear pages moving"));
}
