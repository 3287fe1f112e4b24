// Searches that a person saves, edits and uses in the window.

#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QToolButton>

namespace {

class SavedSearchTest : public MainWindowTest
{
protected:
    void searchFor(const char *text)
    {
        run(CommandID::Find);
        type(QString::fromUtf8(text));
        settle();
    }
    QLineEdit *editor() { return tree()->findChild<QLineEdit *>(QStringLiteral("InlineEditor")); }
    ZQRef<ZQSidebarSmartFolder> chosen()
    {
        const auto ids = sidebar().selectedItems();
        return ids.size() == 1 ? zqCast<ZQSidebarSmartFolder>(context().objectWithID(ids.first()))
                               : ZQRef<ZQSidebarSmartFolder>();
    }
    // Of the row in the sidebar.
    QString badge(const Item &item)
    {
        return tree()->tree()->indexOf(item->objectID()).data(SidebarTreeModel::CountRole).toString();
    }
    ZQRef<ZQSidebarSmartFolder> saved(const char *text, const char *name)
    {
        searchFor(text);
        press(Qt::Key_S, Qt::ControlModifier);
        type(QLatin1StringView(name));
        press(Qt::Key_Return);
        settle();
        return chosen();
    }
    QStringList sorted()
    {
        QStringList titles = shown();
        titles.sort();
        return titles;
    }
    QString told()
    {
        for (const auto *bubble : window().findChildren<ZQNotificationBubble *>()) {
            if (bubble->isVisible()) {
                return bubble->text();
            }
        }
        return {};
    }
    QToolButton *saveButton() { return named<QToolButton>("Save Search"); }
    QToolButton *updateButton() { return named<QToolButton>("Update Search"); }
};

} // namespace

TEST_F(SavedSearchTest, ASearchIsSavedBesideWhatIsSelectedAndNamedAtOnce)
{
    EXPECT_FALSE(saveButton());
    EXPECT_FALSE(isEnabled(CommandID::SaveSearch));
    searchFor("#d=31/02");
    EXPECT_FALSE(saveButton()) << "nothing in it can be searched for";
    searchFor("#tt e");
    ASSERT_TRUE(saveButton());
    EXPECT_FALSE(updateButton());
    EXPECT_TRUE(isEnabled(CommandID::SaveSearch));
    QTest::mouseClick(saveButton(), Qt::LeftButton);
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->text(), QStringLiteral("#tt e"));
    EXPECT_EQ(editor()->selectedText(), QStringLiteral("#tt e"));
    EXPECT_TRUE(search().text().isEmpty());
    type(QStringLiteral("With an e"));
    press(Qt::Key_Return);
    settle();
    const auto smart = chosen();
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->title(), QStringLiteral("With an e"));
    EXPECT_EQ(children(projects), (QStringList{QStringLiteral("A"), QStringLiteral("With an e"), QStringLiteral("B"),
                                               QStringLiteral("Folder")}));
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("clear"), QStringLiteral("pages"), QStringLiteral("red")}));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("With an e"));
    EXPECT_FALSE(saveButton());
    EXPECT_EQ(badge(smart), QStringLiteral("3"));

    image(QStringLiteral("red"))->setTitle(QStringLiteral("rot"));
    delegate->saveAction();
    settle();
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("clear"), QStringLiteral("pages")}));
    EXPECT_EQ(badge(smart), QStringLiteral("2")) << "the number follows";

    closeWindow();
    openWindow();
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("clear"), QStringLiteral("pages")}));
    sidebar().selectItems({smart->objectID()});
    whenAsked([this](Sheet &sheet) {
        EXPECT_EQ(sheet.accessibleName(), QStringLiteral("Are you sure you want to delete this smart folder?"));
        press(Qt::Key_Return);
    });
    tree()->setFocus();
    press(Qt::Key_Delete);
    EXPECT_FALSE(smart->active());
    EXPECT_EQ(sidebar().selectedItems(), QList{b->objectID()});
    controller->undoStack().undo();
    settle();
    EXPECT_TRUE(smart->active());
    EXPECT_EQ(children(projects).value(1), QStringLiteral("With an e"));
}

TEST_F(SavedSearchTest, AnUndoneOneLeavesItsNeighbourOpen)
{
    run(CommandID::Sidebar);
    ASSERT_FALSE(sidebar().isVisible());
    const auto smart = saved("#tt e", "Mine");
    EXPECT_TRUE(sidebar().isVisible()) << "its name is typed there";
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->title(), QStringLiteral("Mine"));
    controller->undoStack().undo(); // the name
    controller->undoStack().undo();
    settle();
    EXPECT_FALSE(smart->active());
    EXPECT_EQ(sidebar().selectedItems(), QList{b->objectID()});
    EXPECT_EQ(browser().sidebarItems(), QList{b->objectID()}) << "what is dropped goes there";
}

TEST_F(SavedSearchTest, WhatIsTypedInASmartFolderNarrowsItUntilItBecomesItsText)
{
    const auto smart = saved("#tt e OR #tt moving", "Mine");
    ASSERT_TRUE(smart);
    EXPECT_EQ(shown().size(), 4);
    searchFor("#tt ed OR #tt ing");
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("moving"), QStringLiteral("red")}));
    EXPECT_TRUE(saveButton());
    ASSERT_TRUE(updateButton());
    QTest::mouseClick(updateButton(), Qt::LeftButton);
    settle();
    EXPECT_EQ(smart->searchText(), QStringLiteral("(#tt e OR #tt moving) #project A (#tt ed OR #tt ing)"))
        << "it finds what was shown";
    EXPECT_TRUE(search().text().isEmpty());
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("moving"), QStringLiteral("red")}));
    EXPECT_FALSE(updateButton());
    controller->undoStack().undo();
    settle();
    EXPECT_EQ(shown().size(), 4);
    EXPECT_EQ(badge(smart), QStringLiteral("4"));
    // Saved from within it is another, which finds the same.
    searchFor("#tt ed");
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_Escape);
    settle();
    ASSERT_TRUE(chosen());
    EXPECT_NE(chosen(), smart);
    EXPECT_EQ(chosen()->searchText(), QStringLiteral("(#tt e OR #tt moving) #project A #tt ed"));
    EXPECT_EQ(smart->searchText(), QStringLiteral("(#tt e OR #tt moving) #project A"));
}

TEST_F(SavedSearchTest, ItsTextIsEditedInTheFieldAndShowsWhatItWouldFind)
{
    const auto smart = saved("#tt moving", "Mine");
    ASSERT_TRUE(smart);
    show(a);
    EXPECT_FALSE(isEnabled(CommandID::EditSearch));
    show(smart);
    EXPECT_TRUE(isEnabled(CommandID::EditSearch));
    whenMenuOpens(QStringLiteral("Edit Search…"));
    const QPoint row = tree()->visualRect(tree()->tree()->indexOf(smart->objectID())).center();
    Q_EMIT tree()->customContextMenuRequested(row);
    EXPECT_EQ(menu, QStringLiteral("New Project|New Folder|-|Edit Search…|Duplicate|Rename|Delete Mine"));
    settle();
    EXPECT_EQ(search().text(), QStringLiteral("#tt moving #project A"));
    EXPECT_TRUE(search().hasFocus());
    EXPECT_FALSE(updateButton()) << "nothing was changed";
    search().selectAll();
    type(QStringLiteral("#tt red"));
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("red")}) << "not what also matches the old text";
    EXPECT_EQ(smart->searchText(), QStringLiteral("#tt moving #project A"));
    press(Qt::Key_Escape);
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("moving")}) << "given up";
    EXPECT_TRUE(search().text().isEmpty());

    run(CommandID::EditSearch);
    search().selectAll();
    type(QStringLiteral("#tt red"));
    show(a);
    EXPECT_TRUE(search().text().isEmpty()) << "it belongs to the smart folder";
    EXPECT_EQ(shown().size(), 4);
    show(smart);
    EXPECT_EQ(search().text(), QStringLiteral("#tt red")) << "what was typed is not lost";
    EXPECT_EQ(shown(), QStringList{QStringLiteral("red")});
    ASSERT_TRUE(updateButton());
    search().setFocus();
    press(Qt::Key_Escape);
    settle();
    show(a);
    show(smart);
    EXPECT_EQ(shown(), QStringList{QStringLiteral("moving")}) << "given up is given up";
    EXPECT_TRUE(search().text().isEmpty());

    run(CommandID::EditSearch);
    search().selectAll();
    type(QStringLiteral("#tt red"));
    press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    EXPECT_EQ(smart->searchText(), QStringLiteral("#tt red"));
    EXPECT_EQ(shown(), QStringList{QStringLiteral("red")});
    EXPECT_TRUE(search().text().isEmpty());
}

TEST_F(SavedSearchTest, ACopyStandsBesideItAndCanBeTakenBack)
{
    const auto smart = saved("#tt moving", "Mine");
    ASSERT_TRUE(smart);
    const QStringList before = children(projects);
    const qsizetype items = sorted().size();
    browser().grid().setFocus();
    browser().grid().selectAll();
    tree()->setFocus();
    settle();
    press(Qt::Key_D, Qt::ControlModifier);
    settle();
    const auto copy = chosen();
    ASSERT_TRUE(copy && copy != smart);
    EXPECT_EQ(copy->title(), QStringLiteral("Mine copy"));
    EXPECT_EQ(copy->searchText(), QStringLiteral("#tt moving #project A"));
    EXPECT_EQ(copy->sortKeys(), smart->sortKeys());
    EXPECT_EQ(sorted().size(), items) << "its items are not what was meant";
    QStringList expected = before;
    expected.insert(before.indexOf(QStringLiteral("Mine")) + 1, QStringLiteral("Mine copy"));
    EXPECT_EQ(children(projects), expected);
    controller->undoStack().undo();
    settle();
    EXPECT_EQ(children(projects), before);
    show(a);
    tree()->setFocus();
    settle();
    EXPECT_FALSE(isEnabled(CommandID::Duplicate)) << "no smart folder, and no item";
}

TEST_F(SavedSearchTest, OneThatFindsNothingSaysWhy)
{
    const auto smart = saved("nowhere", "Mine");
    ASSERT_TRUE(smart);
    const auto emptyText = [&](const char *text) {
        smart->setSearchText(QString::fromUtf8(text));
        delegate->saveAction();
        settle();
        EXPECT_EQ(shown(), QStringList()) << text;
        return browser().content().emptyText();
    };
    EXPECT_EQ(emptyText("nowhere"), QStringLiteral("Nothing in the library matches \"nowhere\"."));
    EXPECT_TRUE(emptyText("").startsWith(QStringLiteral("This smart folder has nothing to search for.\n")));
    const QString wrong = emptyText("#d=31/02");
    EXPECT_TRUE(wrong.startsWith(QStringLiteral("The search of this smart folder cannot be understood.\n#d=31/02: ")))
        << wrong.toStdString();
    const auto *chips = browser().findChild<QWidget *>(QStringLiteral("SearchChips"));
    EXPECT_TRUE(chips->isVisible()) << "the wrong part is named as in the field";
    EXPECT_TRUE(chips->accessibleName().contains(QStringLiteral("#d=31/02: ")));
    searchFor("red");
    EXPECT_TRUE(browser().content().emptyText().contains(QStringLiteral("red")));
}

TEST_F(SavedSearchTest, ItKeepsTheOrderThatWasShown)
{
    run(CommandID(int(CommandID::SortManually) + int(ZQSortValue::Title)));
    run(CommandID::SortDescending);
    const auto smart = saved("#tt e", "Mine");
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->sortKeys(), int(ZQSortValue::Title));
    EXPECT_FALSE(smart->sortDirection());
}

TEST_F(SavedSearchTest, ATextThatTheFieldWouldCutIsNotTakenFromIt)
{
    const auto smart = saved("#tt e", "Mine");
    ASSERT_TRUE(smart);
    zqCast<ZQSidebarSmartFolder>(smart)->setSearchText(QStringLiteral("e ").repeated(40000));
    delegate->saveAction();
    settle();
    run(CommandID::EditSearch);
    settle();
    EXPECT_FALSE(isEnabled(CommandID::UpdateSearch));
}

TEST_F(SavedSearchTest, WhatWasSearchedInAProjectIsSavedWithIt)
{
    const auto inB = QList{image(QStringLiteral("red")), image(QStringLiteral("moving"))};
    b->addItems(inB);
    delegate->saveAction();
    show(b);
    searchFor("#tt e OR #tt i");
    const QStringList before = sorted();
    EXPECT_EQ(before, (QStringList{QStringLiteral("moving"), QStringLiteral("red")}));
    const auto smart = saved("#tt e OR #tt i", "in B");
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->searchText(), QStringLiteral("(#tt e OR #tt i) #project B"));
    EXPECT_EQ(sorted(), before);
    EXPECT_EQ(told(), QString()) << "there is nothing to say";
}

TEST_F(SavedSearchTest, WhatASavedTextFindsBesidesIsToldWithBothNumbers)
{
    a->setTitle(QStringLiteral("Rar"));
    b->setTitle(QStringLiteral("Rar 5"));
    a->removeItems({image(QStringLiteral("clear"))});
    b->addItem(image(QStringLiteral("clear")).get());
    delegate->saveAction();
    show(b);
    show(a);
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("moving"), QStringLiteral("pages"), QStringLiteral("red")}));
    const int steps = controller->undoStack().index();
    searchFor("#tt e");
    press(Qt::Key_S, Qt::ControlModifier);
    press(Qt::Key_Escape);
    settle();
    EXPECT_TRUE(waitFor([this] { return !told().isEmpty(); }));
    EXPECT_EQ(told(), QStringLiteral("The smart folder looks in the whole library: it finds 3 items; 2 are shown "
                                     "here."));
    EXPECT_EQ(controller->undoStack().index(), steps + 1);
    controller->undoStack().undo();
    settle();
    EXPECT_EQ(children(projects).size(), 3);
}

TEST_F(SavedSearchTest, ASearchInAFolderOrInSeveralRowsIsSavedWithAllOfThem)
{
    inner->addItem(image(QStringLiteral("pages")).get());
    b->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    show(folder);
    auto smart = saved("#tt e", "in the folder");
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->searchText(), QStringLiteral("#tt e #project Inner"));
    EXPECT_EQ(shown(), QStringList{QStringLiteral("pages")});
    sidebar().selectItems({b->objectID(), inner->objectID()});
    settle();
    smart = saved("#tt e", "in both");
    ASSERT_TRUE(smart);
    EXPECT_EQ(smart->searchText(), QStringLiteral("#tt e (#project B OR #project Inner)"));
    EXPECT_EQ(sorted(), (QStringList{QStringLiteral("pages"), QStringLiteral("red")}));
    EXPECT_EQ(told(), QString());
}

TEST_F(SavedSearchTest, WhatWasTypedElsewhereIsNotBroughtBackByUndo)
{
    searchFor("red");
    press(Qt::Key_Escape);
    show(b);
    run(CommandID::Find);
    press(Qt::Key_Z, Qt::ControlModifier);
    settle();
    EXPECT_EQ(search().text(), QString());
}
