#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QUrl>
#include <QWheelEvent>
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
    bool dropsAtIndex(const QMimeData *) const override { return takesPlaces; }
    bool drop(const QMimeData *, qint64 index, Qt::DropAction) override
    {
        dropped.append(index);
        return takesDrops;
    }
    QString emptyText() const override { return QStringLiteral("Nothing here"); }

    mutable int asked = 0;
    bool takesPlaces = true;
    bool takesDrops = true;
    QList<qint64> dropped;

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
    QPoint middle(qint64 index) const { return view.visualRect(index).center(); }
    void click(qint64 index, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, middle(index));
    }
    void drag(const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers, from);
        QMouseEvent move(QEvent::MouseMove, to, view.viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &move);
    }
    QColor pixel(const QPoint &point) { return view.viewport()->grab().toImage().pixelColor(point); }
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
    EXPECT_EQ(action->actionNames(),
              (QStringList{QAccessibleActionInterface::pressAction(), QAccessibleActionInterface::setFocusAction()}));
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
    QMimeData files;
    files.setUrls({QUrl(QStringLiteral("file:///a"))});
    const QMimeData words;
    const QColor accent = zqColor(ZQColorRole::Accent);
    const auto over = [this](const QMimeData &mime, const QPoint &point) {
        QDragEnterEvent event(point, Qt::CopyAction | Qt::MoveAction, &mime, Qt::LeftButton, {});
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

TEST_F(ZQGridViewTest, CellsShowWhetherTheyAreChosenCurrentAndNamed)
{
    ZQTheme::current().setDark(true);
    Numbers numbers(8);
    show(numbers);
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    const auto corner = [this](qint64 index) { return pixel(view.visualRect(index).topLeft() + QPoint(30, 3)); };
    const auto title = [this](qint64 index) {
        const QRect rect = view.visualRect(index);
        const QImage image = view.viewport()->grab().toImage();
        QSet<QRgb> colors;
        for (int x = rect.left(); x < rect.right(); ++x) {
            colors.insert(image.pixel(x, rect.bottom() - 8));
        }
        return colors;
    };
    view.setCurrentIndex(0);
    EXPECT_EQ(corner(0), zqColor(ZQColorRole::Select));
    EXPECT_EQ(corner(1), zqColor(ZQColorRole::Ground));
    EXPECT_TRUE(title(0).contains(zqColor(ZQColorRole::AccentFill).rgb()));
    EXPECT_FALSE(title(1).contains(zqColor(ZQColorRole::AccentFill).rgb()));
    EXPECT_EQ(pixel(view.visualRect(1).topLeft() + QPoint(view.visualRect(1).width() / 2, 60)),
              zqColor(ZQColorRole::Cell));
    const QImage withTitles = view.viewport()->grab().toImage();
    key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(view.currentIndex(), 1);
    const QImage focused = view.viewport()->grab().toImage();
    EXPECT_NE(focused, withTitles) << "the current one is marked";
    view.clearFocus();
    EXPECT_NE(view.viewport()->grab().toImage(), focused);
    const int rowHeight = view.gridLayout().rowHeight();
    const QSet<QRgb> full = title(1);
    view.setShowsTitles(true, false);
    EXPECT_EQ(view.gridLayout().rowHeight(), rowHeight);
    EXPECT_NE(title(1), full) << "without the extension";
    view.setShowsTitles(false, true);
    EXPECT_EQ(title(1), full) << "an extension alone says nothing";
    view.setShowsTitles(false, false);
    EXPECT_LT(view.gridLayout().rowHeight(), rowHeight);
    Numbers none(0);
    view.setDataSource(&none);
    const QImage said = view.viewport()->grab().toImage();
    view.setDataSource(nullptr);
    EXPECT_NE(view.viewport()->grab().toImage(), said) << "what an empty one says";
    EXPECT_EQ(view.selection(), ZQIndexSet());
    key(Qt::Key_Right);
    key(Qt::Key_A);
    EXPECT_EQ(view.currentIndex(), -1);
}

TEST_F(ZQGridViewTest, PicturesAreDrawnInTheirShapeWithinTheCell)
{
    class Picture : public Numbers
    {
    public:
        using Numbers::Numbers;
        ZQGridItem item(qint64) const override { return shown; }
        ZQGridItem shown;
    };
    ZQTheme::current().setDark(true);
    Picture picture(1);
    show(picture);
    const auto draw = [&](QSize noted, bool isScalable, QSize real, const QColor &color) {
        view.thumbnailLoader().setDecoder([real, color](const ZQThumbnailRequest &, int) {
            QImage image(real, QImage::Format_ARGB32);
            image.fill(color);
            return image;
        });
        static int version = 0;
        picture.shown = {QStringLiteral("p"), {}, noted, isScalable, {QStringLiteral("/p"), ++version, false}};
        view.viewport()->grab();
        EXPECT_TRUE(QTest::qWaitFor([&] { return view.thumbnailLoader().pendingCount() == 0; }, 20000));
        const QImage drawn = view.viewport()->grab().toImage();
        QRect box;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 220; ++x) {
                const QColor at = drawn.pixelColor(x, y);
                if (at.red() > 90 && at.green() < 60) {
                    box |= QRect(x, y, 1, 1);
                }
            }
        }
        EXPECT_LE(std::abs(box.center().x() - view.visualRect(0).center().x()), 1);
        return box.size();
    };
    const int width = view.visualRect(0).width() - 12;
    const int height = view.gridLayout().pictureHeight() - 12;
    EXPECT_EQ(draw({400, 300}, false, {128, 96}, Qt::red), QSize(height * 4 / 3 + 1, height));
    EXPECT_EQ(draw({40, 30}, false, {40, 30}, Qt::red), QSize(41, 31)) << "small ones are not enlarged";
    EXPECT_GT(draw({40, 30}, true, {40, 30}, Qt::red).width(), 100) << "but drawings are";
    EXPECT_EQ(draw({}, false, {30, 10}, Qt::red).width(), width) << "of unknown size";
    EXPECT_EQ(draw({60, 30}, false, {30, 60}, Qt::red), QSize(31, 61)) << "as it is, not as it was noted";
    EXPECT_EQ(draw({40, 30}, false, {40, 30}, QColor(255, 0, 0, 200)), QSize(41, 31));
    EXPECT_EQ(draw({40, 30}, false, {800, 600}, Qt::red), QSize(41, 31)) << "shrunk to a twentieth";
    EXPECT_EQ(draw({1, 2000}, false, {1, 2000}, Qt::red).height(), height);
}

TEST_F(ZQGridViewTest, HeadsSayTheirGroupAndAreFoldedByPointerAndKey)
{
    Numbers numbers(30, {{QStringLiteral("One"), 12}, {QStringLiteral("Two"), 18}});
    show(numbers);
    const auto top = [this](int group) { return int(view.gridLayout().groupTop(group) - view.scrollOffset()); };
    const auto click = [this](const QPoint &point) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, point);
        return QString::number(view.gridLayout().isCollapsed(0)) + QString::number(view.gridLayout().isCollapsed(1));
    };
    constexpr int head = ZQMeasure::groupHeadHeight;
    EXPECT_EQ(click({60, top(1) - 1}), QStringLiteral("00"));
    EXPECT_EQ(click({60, top(1)}), QStringLiteral("01"));
    EXPECT_EQ(click({60, top(1) + head - 1}), QStringLiteral("00"));
    EXPECT_EQ(click({60, top(1) + head}), QStringLiteral("00"));
    EXPECT_EQ(click({60, head - 1}), QStringLiteral("10"));
    EXPECT_EQ(click({60, 0}), QStringLiteral("00"));
    EXPECT_EQ(click({60, head}), QStringLiteral("00"));
    view.setCurrentIndex(13);
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(view.gridLayout().isCollapsed(1));
    key(Qt::Key_Right, Qt::AltModifier);
    EXPECT_FALSE(view.gridLayout().isCollapsed(1));
    view.setSelection({});
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(view.gridLayout().isCollapsed(view.stickyGroup())) << "the one on top, when none is current";
    key(Qt::Key_Right, Qt::AltModifier);
    view.setGroupCollapsed(2, true);
    view.setGroupCollapsed(-1, true);
    EXPECT_EQ(click({60, head}), QStringLiteral("00"));
    // As heads are drawn: a name at the left, the sticky one pushed out by the next.
    view.resize(932, 300);
    view.setScrollOffset(view.gridLayout().groupTop(1) - 10);
    const QColor line = zqColor(ZQColorRole::Border);
    EXPECT_EQ(pixel({500, 9}), line) << "the end of the first";
    EXPECT_EQ(pixel({500, 10 + head - 1}), line);
    view.setScrollOffset(view.gridLayout().groupTop(1) - head);
    EXPECT_EQ(pixel({500, head - 1}), line);
    EXPECT_EQ(pixel({500, 2 * head - 1}), line);
    view.setScrollOffset(100);
    view.setGroupCollapsed(0, true);
    EXPECT_EQ(view.scrollOffset(), 0) << "its head stays where it stuck";
}

TEST_F(ZQGridViewTest, ScrollsZoomsAndKeepsItsPlace)
{
    Numbers numbers(4000);
    show(numbers);
    const int height = view.viewport()->height();
    QScrollBar *bar = view.verticalScrollBar();
    EXPECT_EQ(bar->maximum(), view.gridLayout().contentHeight() - height);
    EXPECT_EQ(bar->pageStep(), height);
    EXPECT_EQ(bar->singleStep(), 48);
    view.scrollToIndex(-1);
    view.scrollToIndex(4000);
    view.setCurrentIndex(4000);
    view.setCurrentIndex(-1);
    EXPECT_EQ(view.scrollOffset(), 0);
    EXPECT_EQ(view.currentIndex(), -1);
    const auto cell = view.gridLayout().cell(2000);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top + cell.height + 8 - height);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top + cell.height + 8 - height) << "it can be seen";
    view.setScrollOffset(cell.top);
    view.scrollToIndex(2000);
    EXPECT_EQ(view.scrollOffset(), cell.top - 8);
    EXPECT_EQ(view.visualRect(2000).top(), 8);
    const qint64 before = view.scrollOffset();
    QWheelEvent pixels({300, 300}, view.mapToGlobal(QPoint(300, 300)), {0, -50}, {}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &pixels);
    EXPECT_EQ(view.scrollOffset(), before + 50);
    QWheelEvent wheel({300, 300}, view.mapToGlobal(QPoint(300, 300)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
    EXPECT_LT(view.scrollOffset(), before + 50);
    QSignalSpy zoomed(&view, &ZQGridView::zoomChanged);
    QWheelEvent zoom({300, 300}, view.mapToGlobal(QPoint(300, 300)), {}, {0, 120}, {}, Qt::ControlModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &zoom);
    EXPECT_DOUBLE_EQ(view.zoom(), 0.54);
    ASSERT_EQ(zoomed.size(), 1);
    view.setZoom(0.54);
    EXPECT_EQ(zoomed.size(), 1);
    view.setZoom(7);
    EXPECT_DOUBLE_EQ(view.zoom(), 1);
    view.setZoom(0.5);
    view.setScrollOffset(view.gridLayout().cell(2000).top);
    view.resize(700, 700);
    EXPECT_EQ(view.visualRect(view.gridLayout().indexAt(21, view.scrollOffset() + 1)).top(), 0);
    EXPECT_LE(view.gridLayout().cell(2000).top - view.scrollOffset(), 2 * view.gridLayout().rowHeight());
    EXPECT_TRUE(view.visibleIndexes().contains(2000));
}

TEST_F(ZQGridViewTest, KeysGoByPagesAndToTheEnds)
{
    Numbers numbers(100);
    show(numbers);
    const int rows = view.viewport()->height() / view.gridLayout().rowHeight();
    struct Press
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        qint64 current;
        qint64 selected;
    };
    QSignalSpy activated(&view, &ZQGridView::activated);
    QSignalSpy looked(&view, &ZQGridView::quickLookRequested);
    key(Qt::Key_Return);
    key(Qt::Key_Space);
    EXPECT_EQ(activated.size() + looked.size(), 0) << "there is no current one";
    const qint64 page = qint64(rows) * columns();
    for (const Press &each : {Press{Qt::Key_End, {}, 99, 1},
                              {Qt::Key_Home, {}, 0, 1},
                              {Qt::Key_PageDown, {}, page, 1},
                              {Qt::Key_PageDown, Qt::ShiftModifier, 2 * page, page + 1},
                              {Qt::Key_PageUp, {}, page, 1},
                              {Qt::Key_Up, {}, page - columns(), 1},
                              {Qt::Key_Left, {}, page - columns() - 1, 1},
                              {Qt::Key_End, Qt::ControlModifier, 99, 1},
                              {Qt::Key_Home, Qt::ControlModifier | Qt::ShiftModifier, 0, 100}}) {
        key(each.key, each.modifiers);
        EXPECT_EQ(view.currentIndex(), each.current) << int(each.key);
        EXPECT_EQ(view.selection().count(), each.selected) << int(each.key);
    }
    key(Qt::Key_Enter);
    EXPECT_EQ(activated.size(), 1);
    view.setLayoutDirection(Qt::RightToLeft);
    key(Qt::Key_Left);
    EXPECT_EQ(view.currentIndex(), 1) << "the way of reading";
    view.setLayoutDirection(Qt::LeftToRight);
    QKeyEvent other(QEvent::KeyPress, Qt::Key_F5, {});
    QApplication::sendEvent(&view, &other);
    EXPECT_FALSE(other.isAccepted());
    QKeyEvent command(QEvent::KeyPress, Qt::Key_I, Qt::ControlModifier, QStringLiteral("i"));
    QApplication::sendEvent(&view, &command);
    EXPECT_EQ(view.currentIndex(), 1);

    const auto takes = [this](const QString &text, Qt::KeyboardModifiers modifiers) { // instead of a command
        QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_3, modifiers, text);
        event.ignore();
        QApplication::sendEvent(&view, &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(takes(QStringLiteral("3"), {})) << "nothing is being typed";
    key(Qt::Key_I);
    EXPECT_EQ(view.currentIndex(), 2) << "the next one that begins so";
    EXPECT_TRUE(takes(QStringLiteral("3"), {}));
    EXPECT_FALSE(takes(QStringLiteral("3"), Qt::ControlModifier));
    EXPECT_FALSE(takes(QString(), {}));
    EXPECT_FALSE(takes(QStringLiteral("\x03"), {}));
    QTest::keyClicks(&view, QStringLiteral("tem 99"));
    EXPECT_EQ(view.currentIndex(), 99);
    QTest::keyClicks(&view, QStringLiteral("x"));
    EXPECT_EQ(view.currentIndex(), 99) << "there is none";
    EXPECT_EQ(looked.size(), 0) << "a space of a title is no look";
}

TEST_F(ZQGridViewTest, TheMenuComesWhereItIsAskedFor)
{
    Numbers numbers(40);
    show(numbers);
    QSignalSpy asked(&view, &ZQGridView::contextMenuRequested);
    const auto ask = [this](QContextMenuEvent::Reason reason, const QPoint &point) {
        QContextMenuEvent event(reason, point, view.viewport()->mapToGlobal(point));
        QApplication::sendEvent(view.viewport(), &event);
    };
    ask(QContextMenuEvent::Mouse, middle(3));
    EXPECT_EQ(view.selection(), ZQIndexSet(3, 3)) << "what it is about is chosen";
    view.setSelection(ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Mouse, middle(3));
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Mouse, {3, 3});
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5));
    ask(QContextMenuEvent::Keyboard, {3, 3});
    view.setSelection({});
    ask(QContextMenuEvent::Keyboard, {3, 3});
    ASSERT_EQ(asked.size(), 5);
    const auto at = [&](int i) { return view.viewport()->mapFromGlobal(asked[i][0].toPoint()); };
    EXPECT_EQ(at(0), middle(3));
    EXPECT_EQ(at(3), middle(2)) << "by key: at the current one";
    EXPECT_EQ(at(4), QPoint(3, 3));
}
