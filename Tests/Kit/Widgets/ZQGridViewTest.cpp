#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

class Numbers : public ZQGridDataSource
{
public:
    explicit Numbers(qint64 count, QList<ZQGridGroup> groups = {}) : m_count(count), m_groups(std::move(groups)) {}
    qint64 count() const override { return m_count; }
    QList<ZQGridGroup> groups() const override { return m_groups; }
    ZQGridItem item(qint64 index) const override
    {
        ++asked;
        return {QStringLiteral("item %1").arg(index), QStringLiteral("png"), QSize(400, 300), false, {}};
    }
    Qt::DropAction dropAction(const QMimeData *data, qint64) const override
    {
        return data->hasUrls() ? Qt::CopyAction : Qt::IgnoreAction;
    }

    mutable int asked = 0;

private:
    qint64 m_count;
    QList<ZQGridGroup> m_groups;
};

class ZQGridViewTest : public testing::Test
{
protected:
    void show(Numbers &numbers)
    {
        view.resize(932, 700);
        view.setDataSource(&numbers);
        view.show();
        view.setFocus();
    }
    void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, Qt::Key(code), modifiers);
    }
    int columns() const { return view.gridLayout().columns(); }
    ZQGridView view;
};

} // namespace

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
}
