#include "Tests/Kit/Widgets/ZQGridViewTest.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QDropEvent>
#include <QSignalSpy>

TEST_F(ZQGridViewTest, AMillionItemsCostOnlyWhatIsOnScreen)
{
    Numbers numbers(1000000);
    show(numbers);
    view.setScrollOffset(view.gridLayout().contentHeight() / 2);
    numbers.asked = 0;
    view.viewport()->grab();
    EXPECT_GT(numbers.asked, 0);
    EXPECT_LE(numbers.asked, view.visibleIndexes().count());
    EXPECT_LT(numbers.asked, 60);
    view.selectAll();
    EXPECT_EQ(view.selection().count(), 1000000);
    key(Qt::Key_End);
    EXPECT_EQ(view.currentIndex(), 999999);
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(999999)));
}

TEST_F(ZQGridViewTest, KeysMoveAndExtendTheSelection)
{
    Numbers numbers(100);
    show(numbers);
    key(Qt::Key_Right);
    EXPECT_EQ(view.selection(), ZQIndexSet(0, 0)) << "the first key takes the first item";
    key(Qt::Key_Right);
    key(Qt::Key_Down);
    EXPECT_EQ(view.currentIndex(), 1 + columns());
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(view.selection(), ZQIndexSet(1 + columns(), 2 + 2 * columns()));
    key(Qt::Key_Up, Qt::ShiftModifier);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 1 + columns())) << "shift keeps where it began";
    key(Qt::Key_Home);
    key(Qt::Key_Right, Qt::ControlModifier);
    key(Qt::Key_Right, Qt::ControlModifier);
    key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(view.selection().indexes(), (QList<qint64>{0, 2}));
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view.selection(), ZQIndexSet(0, 99));
    key(Qt::Key_Home);
    key(Qt::Key_Right, Qt::ShiftModifier);
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(view.selection(), ZQIndexSet(0, 2)) << "from the first item as from any other";
}

TEST_F(ZQGridViewTest, SpaceAndEnterOpenTheCurrentItem)
{
    Numbers numbers(10);
    show(numbers);
    QSignalSpy activated(&view, &ZQGridView::activated);
    QSignalSpy looked(&view, &ZQGridView::quickLookRequested);
    view.setCurrentIndex(3);
    key(Qt::Key_Space);
    key(Qt::Key_Return);
    ASSERT_EQ(looked.size(), 1);
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toLongLong(), 3);
}

TEST_F(ZQGridViewTest, TypingJumpsToTheTitle)
{
    Numbers numbers(200);
    show(numbers);
    QTest::keyClicks(&view, QStringLiteral("item 17"));
    EXPECT_EQ(view.currentIndex(), 17);
}

TEST_F(ZQGridViewTest, ZoomKeepsTheItemUnderThePointer)
{
    Numbers numbers(1000000);
    show(numbers);
    view.setScrollOffset(view.gridLayout().contentHeight() / 3);
    for (const double zoom : {0.9, 0.1, 0.5, 1.0, 0.0}) {
        const QPoint anchor(300, 350);
        qint64 index = view.indexAt(anchor);
        if (index < 0) { // between cells
            view.setScrollOffset(view.scrollOffset() + 40);
            index = view.indexAt(anchor + QPoint(20, 0));
        }
        ASSERT_GE(index, 0);
        const double before = double(anchor.y() - view.visualRect(index).top()) / view.visualRect(index).height();
        view.setZoom(zoom, anchor);
        const double after = double(anchor.y() - view.visualRect(view.indexAt(anchor) < 0 ? index : index).top()) /
                             view.visualRect(index).height();
        EXPECT_NEAR(after, before, 0.05) << zoom;
    }
    view.setZoom(0.2);
    view.setScrollOffset(0);
    const QRect first = view.visualRect(0);
    view.setZoom(0.9, first.center());
    EXPECT_NEAR(double(first.center().y() - view.visualRect(0).top()) / view.visualRect(0).height(), 0.5, 0.05)
        << "the first item is one like any other";
}

TEST_F(ZQGridViewTest, AGroupHeadSticksUntilTheNextOnePushesIt)
{
    Numbers numbers(1000, {{QStringLiteral("Svg"), 12}, {QStringLiteral("Png"), 988}});
    show(numbers);
    EXPECT_EQ(view.stickyGroup(), 0);
    view.setScrollOffset(view.gridLayout().groupTop(1) - 10);
    EXPECT_EQ(view.stickyGroup(), 0);
    view.setScrollOffset(view.gridLayout().groupTop(1) + 400);
    EXPECT_EQ(view.stickyGroup(), 1);
    EXPECT_EQ(view.indexAt(QPoint(60, 10)), -1) << "the head covers the items under it";

    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 10));
    EXPECT_TRUE(view.gridLayout().isCollapsed(1));
    EXPECT_EQ(view.visibleIndexes(), ZQIndexSet(0, 11));
    view.setGroupCollapsed(1, false);
    EXPECT_GT(view.visibleIndexes().count(), 12);
}

TEST_F(ZQGridViewTest, ARubberBandSelectsAndAClickInTheVoidDoesNot)
{
    Numbers numbers(40);
    show(numbers);
    const QRect first = view.visualRect(0);
    const QRect second = view.visualRect(columns() + 1);
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(first.left() - 6, first.top() + 4));
    QTest::mouseMove(view.viewport(), second.center() - QPoint(1, 0));
    QMouseEvent move(QEvent::MouseMove, second.center(), view.viewport()->mapToGlobal(second.center()), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &move);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::NoModifier, second.center());
    EXPECT_EQ(view.selection().indexes(), (QList<qint64>{0, 1, columns(), columns() + 1}));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_TRUE(view.selection().isEmpty());
}

TEST_F(ZQGridViewTest, FewerItemsLeaveNoSelectionBehind)
{
    Numbers many(40);
    show(many);
    view.setSelection(ZQIndexSet(30, 39));
    Numbers few(35);
    view.setDataSource(&few);
    EXPECT_TRUE(view.selection().isEmpty()) << "another content";
    view.setSelection(ZQIndexSet(30, 50));
    EXPECT_EQ(view.selection(), ZQIndexSet(30, 34));

    struct Shrinking : Numbers
    {
        using Numbers::Numbers;
        qint64 count() const override { return left; }
        qint64 left = 40;
    };
    Shrinking shrinking(40);
    view.setDataSource(&shrinking);
    view.setSelection(ZQIndexSet(30, 39));
    shrinking.left = 35;
    QList<ZQIndexSet> seen;
    const QObject onlooker;
    QObject::connect(&view, &ZQGridView::visibleChanged, &onlooker, [&] { seen.append(view.selection()); });
    view.reloadData();
    ASSERT_FALSE(seen.isEmpty());
    for (const ZQIndexSet &selected : seen) {
        EXPECT_EQ(selected, ZQIndexSet(30, 34)) << "who looks while the view is laid out meets nothing that is gone";
    }
    view.setDataSource(nullptr);
}

TEST_F(ZQGridViewTest, ScreenReadersSeeTheItems)
{
    Numbers numbers(1000000);
    show(numbers);
    view.setCurrentIndex(2);
    QAccessibleInterface *grid = QAccessible::queryAccessibleInterface(&view);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->role(), QAccessible::List);
    EXPECT_EQ(grid->childCount(), 1000000);
    QAccessibleInterface *item = grid->child(2);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->text(QAccessible::Name), QStringLiteral("item 2.png"));
    EXPECT_TRUE(item->state().selected);
    EXPECT_FALSE(grid->child(3)->state().selected);
    EXPECT_EQ(grid->indexOfChild(item), 2);
    EXPECT_EQ(grid->child(1000000), nullptr);
    EXPECT_EQ(grid->child(-1), nullptr);
    EXPECT_EQ(grid->child(2), item) << "one for each";
    EXPECT_EQ(grid->indexOfChild(grid), -1);
    EXPECT_EQ(grid->focusChild(), item);
    EXPECT_EQ(grid->childAt(item->rect().center().x(), item->rect().center().y()), item);
    EXPECT_EQ(item->rect(),
              QRect(view.viewport()->mapToGlobal(view.visualRect(2).topLeft()), view.visualRect(2).size()));
    EXPECT_EQ(item->role(), QAccessible::ListItem);
    EXPECT_EQ(item->parent(), grid);
    EXPECT_EQ(item->text(QAccessible::Description), QString());
    EXPECT_TRUE(item->state().selectable);
    EXPECT_FALSE(item->state().offscreen);
    EXPECT_TRUE(grid->child(900000)->state().offscreen);
    EXPECT_FALSE(grid->child(3)->state().focused);
    auto *action = item->actionInterface();
    ASSERT_TRUE(action);
    EXPECT_EQ(
        action->actionNames(),
        (QStringList{QAccessibleActionInterface::pressAction(), QAccessibleActionInterface::toggleAction(),
                     QAccessibleActionInterface::showMenuAction(), QAccessibleActionInterface::setFocusAction()}));
    QSignalSpy activated(&view, &ZQGridView::activated);
    grid->child(5)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(view.currentIndex(), 5);
    EXPECT_EQ(activated.size(), 0);
    action->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(view.currentIndex(), 2);
    EXPECT_EQ(activated.size(), 1);
}

TEST_F(ZQGridViewTest, ThePointerChoosesTogglesAndExtends)
{
    Numbers numbers(40);
    show(numbers);
    struct Click
    {
        const char *what;
        qint64 index;
        Qt::KeyboardModifiers modifiers;
        QList<qint64> selected;
    };
    for (const Click &each : {Click{"one", 3, {}, {3}},
                              {"another too", 1, Qt::ControlModifier, {1, 3}},
                              {"up to it, from the last one", 2, Qt::ShiftModifier, {1, 2}},
                              {"toggled off", 2, Qt::ControlModifier, {1}},
                              {"one of several", 1, {}, {1}},
                              {"an empty place", 40, {}, {}}}) {
        const QPoint point = each.index < 40 ? middle(each.index) : QPoint(3, 3);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, each.modifiers, point);
        EXPECT_EQ(view.selection().indexes(), each.selected) << each.what;
        if (each.index < 40) {
            EXPECT_EQ(view.currentIndex(), each.index) << each.what;
        }
    }
    view.setSelection(ZQIndexSet(2, 5));
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, middle(4));
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5)) << "they may be dragged together";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, middle(4));
    EXPECT_EQ(view.selection(), ZQIndexSet(4, 4));
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, middle(7));
    EXPECT_EQ(view.selection(), ZQIndexSet(4, 4)) << "the menu comes with an event of its own";

    QSignalSpy activated(&view, &ZQGridView::activated);
    const auto twice = [this](Qt::MouseButton button, const QPoint &point) {
        QMouseEvent event(QEvent::MouseButtonDblClick, point, view.viewport()->mapToGlobal(point), button, button, {});
        QApplication::sendEvent(view.viewport(), &event);
    };
    twice(Qt::LeftButton, middle(0));
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toLongLong(), 0);
    twice(Qt::RightButton, middle(0));
    twice(Qt::LeftButton, {3, 3});
    EXPECT_EQ(activated.size(), 1);
    EXPECT_TRUE(view.selection().isEmpty()) << "the second press on nothing is one, too";
}

TEST_F(ZQGridViewTest, ABandStartsFromWhatTheKeysSay)
{
    Numbers numbers(40);
    show(numbers);
    const QPoint before = view.visualRect(0).topLeft() - QPoint(6, 0);
    const QPoint in = middle(1);
    struct Case
    {
        Qt::KeyboardModifiers modifiers;
        QList<qint64> selected;
    };
    for (const Case &each : {Case{{}, {0, 1}}, {Qt::ShiftModifier, {0, 1, 2}}, {Qt::ControlModifier, {0, 2}}}) {
        view.setSelection(ZQIndexSet(1, 2));
        drag(before, in, each.modifiers);
        EXPECT_EQ(view.selection().indexes(), each.selected) << int(each.modifiers);
        EXPECT_EQ(view.currentIndex(), 0);
        const QImage drawn = view.viewport()->grab().toImage();
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, in);
        EXPECT_NE(view.viewport()->grab().toImage(), drawn) << "the band goes with the button";
        EXPECT_EQ(view.selection().indexes(), each.selected);
    }
    Numbers many(4000);
    show(many);
    drag(before, {300, view.viewport()->height()});
    EXPECT_EQ(view.scrollOffset(), 0);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, in);
    drag(before, {300, view.viewport()->height() + 40});
    EXPECT_TRUE(QTest::qWaitFor([this] { return view.scrollOffset() > 60; }, 20000)) << "it goes on below";
    const qint64 selected = view.selection().count();
    EXPECT_GT(selected, 8);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.selection().count() > selected; }, 20000));
    drag(before, {300, 100});
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, in);
    const qint64 offset = view.scrollOffset();
    drag({3, 300}, {300, -40});
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.scrollOffset() < offset; }, 20000)) << "and above";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, in);
}

TEST_F(ZQGridViewTest, DropsSayTheirPlace)
{
    Numbers numbers(400);
    show(numbers);
    EXPECT_TRUE(view.viewport()->acceptDrops());
    QMimeData files;
    files.setUrls({QUrl(QStringLiteral("file:///a"))});
    const QMimeData words;
    const QColor accent = zqColor(ZQColorRole::Accent);
    const auto over = [this](const QMimeData &mime, const QPoint &point) {
        QDragEnterEvent enter(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &enter);
        EXPECT_TRUE(enter.isAccepted()) << "or no move would follow to where it is taken";
        QDragMoveEvent event(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    };
    const auto drop = [this](const QMimeData &mime, const QPoint &point) {
        QDropEvent event(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
        event.ignore();
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
    };
    const QPoint inSecond(view.visualRect(1).left() + 5, view.visualRect(1).top() + 30);
    const QPoint mark(view.visualRect(1).left() - ZQGridLayout::columnGap / 2, view.visualRect(1).top() + 40);
    EXPECT_EQ(over(files, inSecond), Qt::CopyAction);
    EXPECT_EQ(pixel(mark), accent);
    EXPECT_EQ(pixel({2, 300}), accent) << "the whole takes it";
    QDragLeaveEvent leave;
    QApplication::sendEvent(view.viewport(), &leave);
    EXPECT_NE(pixel(mark), accent);
    EXPECT_NE(pixel({2, 300}), accent);
    numbers.takesPlaces = false;
    over(files, inSecond);
    EXPECT_NE(pixel(mark), accent);
    EXPECT_EQ(pixel({2, 300}), accent);
    EXPECT_EQ(over(words, inSecond), Qt::IgnoreAction);
    EXPECT_NE(pixel({2, 300}), accent);
    over(files, inSecond);
    EXPECT_EQ(drop(files, inSecond), Qt::CopyAction);
    EXPECT_EQ(numbers.dropped, QList<qint64>{1});
    EXPECT_NE(pixel({2, 300}), accent);
    EXPECT_EQ(drop(words, inSecond), Qt::IgnoreAction);
    numbers.takesDrops = false;
    over(files, inSecond);
    EXPECT_EQ(drop(files, inSecond), Qt::IgnoreAction);
    EXPECT_EQ(numbers.dropped.size(), 2);

    const int height = view.viewport()->height();
    EXPECT_EQ(view.scrollOffset(), 0);
    over(files, {300, height - 28});
    EXPECT_EQ(view.scrollOffset(), 0);
    over(files, {300, height - 27});
    EXPECT_EQ(view.scrollOffset(), 28) << "near the border it goes on";
    over(files, {300, 28});
    EXPECT_EQ(view.scrollOffset(), 28);
    over(files, {300, 27});
    EXPECT_EQ(view.scrollOffset(), 0);
    numbers.takesPlaces = true;
    view.setScrollOffset(view.gridLayout().contentHeight());
    const QRect last = view.visualRect(399);
    over(files, last.center() + QPoint(last.width() / 2 - 2, 0));
    EXPECT_EQ(pixel({last.right() + ZQGridLayout::columnGap / 2, last.top() + 20}), accent) << "behind the last";
}
