// What undo and redo bring back is selected and in view.

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

namespace {

class ReturnsTest : public MainWindowTest
{
protected:
    void undo() { step(Qt::ControlModifier); }
    void redo() { step(Qt::ControlModifier | Qt::ShiftModifier); }
    void step(Qt::KeyboardModifiers modifiers)
    {
        grid().setFocus();
        press(Qt::Key_Z, modifiers);
        settleEdits();
    }
    void settleEdits()
    {
        settle();
        zqRunMainLoopUntil([this] { return delegate->editQueue().operationCount() == 0; });
        settle();
    }
    void pressAndSettle(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        grid().setFocus();
        press(key, modifiers);
        settleEdits();
    }
    // More than the window shows at once, before those that are there.
    void fill(const Item &project)
    {
        for (int i = 0; i < 60; ++i) {
            const auto more = context().insertNewObject<ZQLibraryImage>();
            more->setTitle(QStringLiteral("more %1").arg(i));
            more->setActive(true);
            project->addItem(more.get(), 0);
        }
        for (const char *title : {"red", "moving"}) {
            tag->addItem(image(QLatin1StringView(title)).get());
        }
        b->addItem(image(QStringLiteral("red")).get());
        delegate->saveAction();
        settle();
    }
    bool isInView(const QString &title) { return grid().visibleIndexes().contains(shown().lastIndexOf(title)); }
};

} // namespace

TEST_F(ReturnsTest, ItemsThatComeBackAreSelectedAndInView)
{
    fill(a);
    struct Case
    {
        const char *what;
        Item place;
        std::function<void()> change;
        bool isAgain = false; // undone first, and then made again
        const char *search = "";
    };
    const Case cases[] = {
        {"deleted", a, [this] { pressAndSettle(Qt::Key_Delete, Qt::ControlModifier); }},
        {"removed from a project", a, [this] { pressAndSettle(Qt::Key_Delete); }},
        {"removed from a tag", tag, [this] { pressAndSettle(Qt::Key_Delete); }},
        {"not found any more", a, [this] { pressAndSettle(Qt::Key_4); }, false, "#r=0"},
        {"pasted", b,
         [this] {
             pressAndSettle(Qt::Key_C, Qt::ControlModifier);
             show(b);
             pressAndSettle(Qt::Key_V, Qt::ControlModifier);
         },
         true},
        {"duplicated", a, [this] { pressAndSettle(Qt::Key_D, Qt::ControlModifier); }, true},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        show(each.place == b ? a : each.place);
        search().setText(QLatin1StringView(each.search));
        settle();
        select({QStringLiteral("moving")});
        ASSERT_EQ(selected(), QStringList{QStringLiteral("moving")});
        each.change();
        if (each.isAgain) {
            undo();
        }
        const auto without = shown().count(QStringLiteral("moving"));
        select({QStringLiteral("red")});
        grid().setScrollOffset(0);
        EXPECT_TRUE(without == 0 || !isInView(QStringLiteral("moving")));
        each.isAgain ? redo() : undo();
        EXPECT_EQ(shown().count(QStringLiteral("moving")), without + 1);
        EXPECT_EQ(selected(), QStringList{QStringLiteral("moving")});
        EXPECT_TRUE(isInView(QStringLiteral("moving")));
        search().clear();
    }
}

TEST_F(ReturnsTest, TheSelectionStaysWhereNothingComesBackAndWhereAPersonWentOn)
{
    b->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    show(b);
    select({QStringLiteral("red")});
    pressAndSettle(Qt::Key_Delete);
    ASSERT_EQ(shown(), QStringList());
    show(a);
    select({QStringLiteral("clear")});
    undo();
    EXPECT_EQ(b->numberOfItems(), 1);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("clear")}) << "it was here all along";

    for (const bool goesOn : {false, true}) {
        select({QStringLiteral("red")});
        pressAndSettle(Qt::Key_Delete, Qt::ControlModifier);
        const EditQueueGate gate(delegate->editQueue());
        grid().setFocus();
        press(Qt::Key_Z, Qt::ControlModifier);
        if (goesOn) {
            QTest::keyClick(&grid(), Qt::Key_End);
            ASSERT_EQ(selected(), QStringList{QStringLiteral("moving")});
        }
        gate.open();
        settleEdits();
        EXPECT_EQ(shown().size(), 4);
        EXPECT_EQ(selected(), QStringList{goesOn ? QStringLiteral("moving") : QStringLiteral("red")});
    }
}

TEST_F(ReturnsTest, TheTabOfAStepComesToTheFrontAndShowsWhatCameBack)
{
    select({QStringLiteral("red")});
    pressAndSettle(Qt::Key_C, Qt::ControlModifier);
    const auto inAnotherTab = [this](const std::function<void()> &step) {
        run(CommandID::NewTab);
        show(a);
        select({QStringLiteral("clear")});
        ASSERT_EQ(strip().currentIndex(), 1);
        step();
        EXPECT_EQ(strip().currentIndex(), 0);
        EXPECT_EQ(browser().sidebarItems(), QList{b->objectID()});
        press(Qt::Key_2, Qt::ControlModifier);
        run(CommandID::CloseTab);
        settle();
    };
    show(b);
    pressAndSettle(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(controller->undoStack().undoText(), QStringLiteral("copy items"));
    inAnotherTab([this] { undo(); });
    EXPECT_EQ(shown(), QStringList());
    inAnotherTab([this] {
        redo();
        EXPECT_EQ(selected(), QStringList{QStringLiteral("red")});
    });
    select({QStringLiteral("red")});
    pressAndSettle(Qt::Key_Delete);
    inAnotherTab([this] {
        undo();
        EXPECT_EQ(selected(), QStringList{QStringLiteral("red")});
    });
}

TEST_F(ReturnsTest, RowsOfTheSidebarThatComeBackAreSelectedWhereTheyAre)
{
    const auto isShown = [this](const Item &row) {
        return sidebar().selectedItems() == QList{row->objectID()} &&
               browser().sidebarItems() == QList{row->objectID()} &&
               tree()->visualRect(tree()->tree()->indexOf(row->objectID())).isValid();
    };
    ZQUserDefaults::standardUserDefaults().setObjectForKey(true, QStringLiteral("removeFromSidebarAlertSuppress"));
    show(inner);
    tree()->setFocus();
    run(CommandID::Remove);
    tree()->collapse(tree()->tree()->indexOf(folder->objectID()));
    show(a);
    undo();
    EXPECT_TRUE(inner->active());
    EXPECT_TRUE(isShown(inner)) << "in a folder that was closed meanwhile";
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("removeFromSidebarAlertSuppress"));

    show(tag);
    tree()->setFocus();
    whenAsked([](Sheet &sheet) { QTest::keyClick(&sheet, Qt::Key_Return); });
    run(CommandID::Remove);
    show(a);
    ASSERT_FALSE(tag->active());
    undo();
    EXPECT_TRUE(isShown(tag)) << "on its side";

    show(b);
    run(CommandID::NewProject);
    type(QStringLiteral("Passing"));
    press(Qt::Key_Return);
    settle();
    undo(); // the name
    undo();
    show(a);
    redo();
    const auto again = projects->orderedChildren().value(children(projects).indexOf(QStringLiteral("New Project")));
    ASSERT_TRUE(again);
    EXPECT_TRUE(isShown(again));
}
