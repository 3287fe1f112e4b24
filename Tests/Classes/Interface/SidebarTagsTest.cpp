// The tags in the sidebar: making, ordering and reaching them.

#include "Kit/Widgets/ZQSwitch.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QDragMoveEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QToolButton>

namespace {

class SidebarTagsTest : public MainWindowTest
{
protected:
    ZQSwitch &sides() { return *sidebar().findChild<ZQSwitch *>(); }
    QStringList rows() // of TAGS
    {
        QStringList titles;
        const QModelIndex label = tree()->tree()->indexOfKind(ZQSidebarKind::TagsLabel);
        for (int row = 0; row < tree()->model()->rowCount(label); ++row) {
            titles.append(tree()->model()->index(row, 0, label).data().toString());
        }
        return titles;
    }
    QRect rowOf(const Item &item) { return tree()->visualRect(tree()->tree()->indexOf(item->objectID())); }
    Qt::DropAction dragOver(QWidget &widget, const QMimeData &mime, const QPoint &point)
    {
        const auto both = Qt::MoveAction | Qt::CopyAction;
        QDragEnterEvent enter(point, both, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(&widget, &enter);
        EXPECT_TRUE(enter.isAccepted()) << "else it could not go on";
        QDragMoveEvent move(point, both, &mime, Qt::LeftButton, {});
        move.ignore();
        QApplication::sendEvent(&widget, &move);
        return move.isAccepted() ? move.dropAction() : Qt::IgnoreAction;
    }
};

} // namespace

TEST_F(SidebarTagsTest, ThePlusMakesWhatTheSideHolds)
{
    auto *plus = named<QToolButton>("New Project (Ctrl+N)");
    ASSERT_TRUE(plus);
    show(tag);
    show(a);
    sides().setCurrentIndex(1);
    sidebar().renameSidebarItem();
    EXPECT_FALSE(sidebar().isEditing()) << "no tag is selected";
    EXPECT_EQ(plus->accessibleName(), QStringLiteral("New Tag"));
    QTest::mouseClick(plus, Qt::LeftButton);
    type(QStringLiteral("fresh"));
    press(Qt::Key_Return);
    settle();
    EXPECT_TRUE(ZQSidebarTag::tagWithTagName(QStringLiteral("fresh"), context()));
    EXPECT_EQ(rows().last(), QStringLiteral("fresh"));
    controller->undoStack().undo();
    controller->undoStack().undo();
    settle();
    EXPECT_FALSE(ZQSidebarTag::tagWithTagName(QStringLiteral("fresh"), context()));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("icon")) << "the row that stands there now";
    sides().setCurrentIndex(0);
    EXPECT_EQ(plus->accessibleName(), QStringLiteral("New Project (Ctrl+N)"));
    QTest::mouseClick(plus, Qt::LeftButton);
    press(Qt::Key_Escape);
    settle();
    EXPECT_TRUE(children(projects).contains(QStringLiteral("New Project")));
}

TEST_F(SidebarTagsTest, TagsAreOrderedByHandOrByTitleAndItIsKept)
{
    for (const char *name : {"zebra", "Apple", "tag 10", "tag 9"}) {
        ZQSidebarTag::addNewTagWithName(QLatin1StringView(name), context());
    }
    delegate->saveAction();
    sides().setCurrentIndex(1);
    settle();
    const QStringList byHand = rows();
    QStringList byTitle = byHand;
    std::sort(byTitle.begin(), byTitle.end(), [](const QString &left, const QString &right) {
        return zqCompareValues(left, right, ZQSortDescriptor::Comparison::LocalizedStandard) < 0;
    });
    ASSERT_NE(byHand, byTitle);
    const Item label = special(ZQSidebarKind::TagsLabel);
    const QPoint head = SidebarDelegate::labelButtonRect(rowOf(label)).center();
    whenMenuOpens(QStringLiteral("Sort by Title"));
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, head);
    EXPECT_TRUE(waitFor([&] { return rows() == byTitle; })) << rows().join(u' ').toStdString();
    EXPECT_EQ(menu, QStringLiteral("Sort by Hand|Sort by Title"));
    EXPECT_FALSE(rows().isEmpty()) << "the head did not close";
    EXPECT_LT(byTitle.indexOf(QStringLiteral("tag 9")), byTitle.indexOf(QStringLiteral("tag 10")));

    const auto dragged = [this] {
        return std::unique_ptr<QMimeData>(tree()->makeDrag({tree()->tree()->indexOf(tag->objectID())}));
    };
    const SidebarDropPlace first{label, 0};
    EXPECT_EQ(tree()->validateDrop(dragged().get(), first), Qt::IgnoreAction) << "it would not stay there";
    closeWindow();
    openWindow();
    sides().setCurrentIndex(1);
    EXPECT_EQ(rows(), byTitle);
    tag->setTitle(QStringLiteral("aaa"));
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] { return rows().first() == QStringLiteral("aaa"); })) << "a new name has a new place";
    tag->setTitle(QStringLiteral("mine"));
    sidebar().sortTagsByTitle(false);
    EXPECT_EQ(rows(), byHand) << "as it was by hand";
    EXPECT_EQ(tree()->validateDrop(dragged().get(), first), Qt::MoveAction);
    ASSERT_TRUE(tree()->acceptDrop(dragged().get(), first));
    EXPECT_EQ(rows().first(), QStringLiteral("mine"));
    const auto row = dragged();
    sides().setCurrentIndex(0);
    EXPECT_EQ(tree()->validateDrop(row.get(), {projects, 0}), Qt::IgnoreAction) << "no tag among projects";
}

TEST_F(SidebarTagsTest, ADragThatRestsOnTheSwitchTurnsItAndGoesOnToATag)
{
    select({QStringLiteral("red")});
    std::unique_ptr<QMimeData> items(browser().content().mimeData(grid().selection()));
    const QPoint tags(sides().width() - 20, sides().height() / 2);
    EXPECT_EQ(dragOver(sides(), *items, tags), Qt::IgnoreAction) << "nothing is dropped on it";
    EXPECT_EQ(sides().currentIndex(), 0) << "it may be on its way past";
    QDragLeaveEvent leave;
    QApplication::sendEvent(&sides(), &leave);
    settle();
    EXPECT_FALSE(QTest::qWaitFor([this] { return sides().currentIndex() == 1; }, 800));
    dragOver(sides(), *items, tags);
    ASSERT_TRUE(waitFor([this] { return sides().currentIndex() == 1; }));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("A")) << "what is shown stays";
    EXPECT_EQ(selected(), QStringList{QStringLiteral("red")});
    const SidebarDropPlace onto{tag, -1};
    EXPECT_EQ(tree()->validateDrop(items.get(), onto), Qt::CopyAction);
    ASSERT_TRUE(tree()->acceptDrop(items.get(), onto));
    settle();
    EXPECT_TRUE(tag->containsItem(image(QStringLiteral("red")).get()));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("A"));
}

TEST_F(SidebarTagsTest, AProjectThatIsTakenBackWhileTheTagsAreShownIsNotLeftOpen)
{
    // Made beside a project; in a folder, that was closed since; and seen in a tab of its own.
    for (const auto &[from, closes, isTab] : {std::tuple{b, false, false}, {folder, true, false}, {b, false, true}}) {
        show(from);
        if (isTab) {
            run(CommandID::NewTab);
        }
        press(Qt::Key_N, Qt::ControlModifier);
        press(Qt::Key_Return);
        settle();
        ASSERT_EQ(browser().content().tab().tabName(), QStringLiteral("New Project"));
        if (closes) {
            tree()->collapse(tree()->tree()->indexOf(folder->objectID()));
            settle();
        }
        sides().setCurrentIndex(1);
        settle();
        run(CommandID::Undo);
        settle();
        ASSERT_TRUE(browser().content().singleItem()) << closes << isTab;
        EXPECT_TRUE(browser().content().singleItem()->active()) << closes << isTab;
        EXPECT_EQ(sidebar().selectedItems(), browser().sidebarItems());
        EXPECT_EQ(sides().currentIndex(), 1) << "the side that is looked at stays";
    }
}

TEST_F(SidebarTagsTest, FilesThatWouldMakeAProjectAreToldSoWhileTheyAreDragged)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(image(QStringLiteral("red"))->itemURL())});
    const auto hint = [&](const QMimeData &mime, const SidebarDropPlace &place) {
        return tree()->dropHint(&mime, place);
    };
    EXPECT_EQ(hint(files, {}), QStringLiteral("Drop to create a project"));
    EXPECT_EQ(hint(files, {projects, 1}), QStringLiteral("Drop to create a project"));
    EXPECT_EQ(hint(files, {a, -1}), QString());
    std::unique_ptr<QMimeData> items(browser().content().mimeData(ZQIndexSet(0, 0)));
    EXPECT_EQ(hint(*items, {}), QString()) << "items make none";

    const QPoint below(100, tree()->viewport()->height() - 60);
    const QImage before = tree()->viewport()->grab().toImage();
    dragOver(*tree()->viewport(), files, below);
    const QRect bubble(20, before.height() - 40, before.width() - 40, 30);
    EXPECT_NE(tree()->viewport()->grab().toImage().copy(bubble), before.copy(bubble));
    QDragLeaveEvent leave;
    QApplication::sendEvent(tree()->viewport(), &leave);
    EXPECT_EQ(tree()->viewport()->grab().toImage(), before);
}

TEST_F(SidebarTagsTest, WhatGoesLeavesItsNeighbourSelected)
{
    struct Case
    {
        Item shown;
        QList<Item> gone;
        Item after;
    };
    for (const Case &each : {Case{a, {a}, b}, {b, {b, folder, inner}, a}, {inner, {inner}, folder}}) {
        show(each.shown);
        for (const Item &item : each.gone) {
            item->setActive(false);
        }
        delegate->saveAction();
        settle();
        EXPECT_EQ(sidebar().selectedItems(), QList{each.after->objectID()}) << each.shown->title().toStdString();
        EXPECT_EQ(browser().sidebarItems(), QList{each.after->objectID()});
        for (const Item &item : each.gone) {
            item->setActive(true);
        }
        delegate->saveAction();
        settle();
    }
}

TEST_F(SidebarTagsTest, ADragAtTheEdgeScrollsOn)
{
    for (int i = 0; i < 60; ++i) {
        add<ZQSidebarProject>(QString::number(i), projects);
    }
    delegate->saveAction();
    settle();
    QScrollBar *bar = tree()->verticalScrollBar();
    bar->setValue(0);
    ASSERT_GT(bar->maximum(), 100);
    const std::unique_ptr<QMimeData> rows(tree()->makeDrag({tree()->tree()->indexOf(a->objectID())}));
    dragOver(*tree()->viewport(), *rows, {100, tree()->viewport()->height() / 2});
    EXPECT_EQ(bar->value(), 0);
    dragOver(*tree()->viewport(), *rows, {100, tree()->viewport()->height() - 4});
    const int further = bar->value();
    EXPECT_GT(further, 0);
    dragOver(*tree()->viewport(), *rows, {100, 4});
    EXPECT_LT(bar->value(), further);
}
