// The sidebar of a window that has just come: what is shown, and what is done to rows that nobody opened yet.

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QDropEvent>
#include <QMimeData>

namespace {

class SidebarLaunchTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        shelf = add<ZQSidebarFolder>(QStringLiteral("Shelf"), folder);
        shelf->setExpanded(true);
        box = add<ZQSidebarProject>(QStringLiteral("Box"), shelf);
        folder->setExpanded(false);
        delegate->saveAction();
        show(a);
        reopen();
    }
    void TearDown() override
    {
        shelf = box = {};
        MainWindowFixture::TearDown();
    }
    void reopen()
    {
        closeWindow();
        openWindow();
    }
    QModelIndex index(const Item &item) { return tree()->tree()->indexOf(item->objectID()); }
    // Rows that can be seen from that one on.
    QString rowsFrom(const QModelIndex &first)
    {
        QStringList titles;
        for (QModelIndex at = first; at.isValid(); at = tree()->indexBelow(at)) {
            titles.append(at.data().toString());
        }
        return titles.join(u' ');
    }
    QString badge(const Item &item) { return index(item).data(SidebarTreeModel::CountRole).toString(); }
    void drop(const Item &dragged, const Item &target)
    {
        const std::unique_ptr<QMimeData> mime(tree()->makeDrag({index(dragged)}));
        const QPoint point = tree()->visualRect(index(target)).center();
        QDragEnterEvent enter(point, Qt::MoveAction, mime.get(), Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &enter);
        QDropEvent event(point, Qt::MoveAction, mime.get(), Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &event);
        settle();
    }

    Item shelf; // kept open in the folder, which is closed
    Item box;
};

} // namespace

TEST_F(SidebarLaunchTest, RowsAreOpenAsTheyWereKeptAndTheRestOpensAsItWasKept)
{
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS A B Folder"));
    tree()->setFocus();
    tree()->setCurrentIndex(index(folder));
    press(Qt::Key_Right);
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS A B Folder Inner Shelf Box"));
    settle();
    EXPECT_TRUE(folder->expanded());
    EXPECT_FALSE(context().hasChanges());
    press(Qt::Key_Left);
    settle();
    EXPECT_FALSE(folder->expanded());
    EXPECT_TRUE(shelf->expanded());
}

TEST_F(SidebarLaunchTest, TheOtherSideIsOpenOnceItIsTurnedTo)
{
    sidebar().findChild<ZQSwitch *>()->setCurrentIndex(1);
    const QString rows = rowsFrom(tree()->model()->index(0, 0));
    EXPECT_TRUE(rows.startsWith(QStringLiteral("TAGS Sample tag mine SIZES icon "))) << qPrintable(rows);
    EXPECT_TRUE(rows.contains(QStringLiteral("COLORS white"))) << qPrintable(rows);
    tree()->collapse(tree()->tree()->indexOfKind(ZQSidebarKind::TagsLabel));
    settle();
    reopen();
    sidebar().findChild<ZQSwitch *>()->setCurrentIndex(1);
    EXPECT_FALSE(rowsFrom(tree()->model()->index(0, 0)).contains(QStringLiteral("mine")));
}

TEST_F(SidebarLaunchTest, ATabComesBackWithItsRowWhereverThatLies)
{
    for (const Item &kept : {box, tag, inner}) {
        show(kept);
        for (Item above = kept->father(); above && !above->isLabel(); above = above->father()) {
            above->setExpanded(false);
        }
        delegate->saveAction();
        reopen();
        EXPECT_EQ(sidebar().selectedItems(), QList{kept->objectID()}) << qPrintable(kept->title());
        EXPECT_EQ(browser().content().tab().tabName(), kept->title());
        ASSERT_TRUE(index(kept).isValid());
        EXPECT_TRUE(tree()->viewport()->rect().intersects(tree()->visualRect(index(kept)))) << "it is seen";
    }
}

TEST_F(SidebarLaunchTest, RowsThatOpenAreCountedToo)
{
    EXPECT_TRUE(waitFor([&] { return badge(a) == QStringLiteral("4"); }));
    box->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    reopen();
    EXPECT_TRUE(waitFor([&] { return badge(a) == QStringLiteral("4"); }));
    tree()->expand(index(folder));
    EXPECT_TRUE(waitFor([&] { return badge(box) == QStringLiteral("1"); }));
}

TEST_F(SidebarLaunchTest, ADropIntoAClosedFolderGoesBeforeWhatItHolds)
{
    drop(a, folder);
    EXPECT_EQ(children(folder), (QStringList{QStringLiteral("A"), QStringLiteral("Inner"), QStringLiteral("Shelf")}));
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS B Folder A Inner Shelf Box"));
    run(CommandID::Undo);
    settle();
    EXPECT_EQ(children(folder), (QStringList{QStringLiteral("Inner"), QStringLiteral("Shelf")}));
    EXPECT_EQ(children(projects), (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("Folder")}));
}

TEST_F(SidebarLaunchTest, WhatLiesInAClosedFolderCanBeDraggedOutAndTakenBack)
{
    const QStringList before = children(folder);
    drop(inner, projects);
    EXPECT_EQ(children(folder), QStringList{QStringLiteral("Shelf")});
    EXPECT_EQ(children(projects).first(), QStringLiteral("Inner"));
    run(CommandID::Undo);
    settle();
    EXPECT_EQ(children(folder), before);
    tree()->expand(index(folder));
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS A B Folder Inner Shelf Box"));
}

TEST_F(SidebarLaunchTest, AClosedFolderGoesWithAllItHoldsAndComesBackWithIt)
{
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("removeFromSidebarAlertSuppress"));
    show(folder);
    tree()->setFocus();
    run(CommandID::Remove);
    settle();
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS A B"));
    EXPECT_FALSE(index(box).isValid());
    run(CommandID::Undo);
    settle();
    EXPECT_EQ(rowsFrom(index(projects)), QStringLiteral("PROJECTS A B Folder"));
    tree()->expand(index(folder));
    EXPECT_EQ(rowsFrom(index(folder)), QStringLiteral("Folder Inner Shelf Box"));
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("removeFromSidebarAlertSuppress"));
}

TEST_F(SidebarLaunchTest, ANewRowInAClosedFolderIsNamedAtItsPlace)
{
    show(folder);
    run(CommandID::NewProject);
    EXPECT_EQ(rowsFrom(index(folder)), QStringLiteral("Folder Inner Shelf Box New Project"));
    auto *editor = tree()->findChild<QLineEdit *>(QStringLiteral("InlineEditor"));
    ASSERT_TRUE(editor);
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(children(folder).last(), QStringLiteral("New Project"));
}

TEST_F(SidebarLaunchTest, WhatAnotherContextChangedIsThereWhenTheFolderOpens)
{
    ZQManagedObjectContext other(context().persistentStoreCoordinator());
    ZQContextDidSave saved;
    const auto token = other.observeDidSave([&](const ZQContextDidSave &what) { saved = what; });
    const auto there = zqCast<ZQSidebarBaseItem>(other.objectWithID(folder->objectID()));
    const auto added = other.insertNewObject<ZQSidebarProject>();
    added->setTitle(QStringLiteral("Added"));
    added->setActive(true);
    there->addChild(added.get(), 0);
    zqCast<ZQSidebarBaseItem>(other.objectWithID(box->objectID()))->deleteSelf();
    ASSERT_TRUE(other.save());
    context().mergeChangesFromContextDidSaveNotification(saved);
    tree()->expand(index(folder)); // before the window looks again
    EXPECT_EQ(rowsFrom(index(folder)), QStringLiteral("Folder Added Inner Shelf"));
    settle();
    EXPECT_EQ(rowsFrom(index(folder)), QStringLiteral("Folder Added Inner Shelf"));
}
