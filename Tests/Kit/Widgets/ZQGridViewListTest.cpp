// A grid view as a list.

#include "Kit/Widgets/ZQListHead.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Tests/Kit/Widgets/ZQGridViewTest.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QTimer>

namespace {

class Rows : public Numbers
{
public:
    using Numbers::Numbers;
    QList<ZQListValue> listValues(qint64 index, const QStringList &columns) const override
    {
        ++valuesAsked;
        QList<ZQListValue> result;
        for (const QString &column : columns) {
            result.append(column == QStringLiteral("stars")  ? ZQListValue{{}, int(index % 6), {}}
                          : column == QStringLiteral("tags") ? ZQListValue{{}, -1, chips}
                                                             : ZQListValue{QString::number(index), -1, {}});
        }
        return result;
    }
    mutable int valuesAsked = 0;
    QStringList chips = {QStringLiteral("one"), QStringLiteral("two")};
};

class ZQGridViewListTest : public ZQGridViewTest
{
protected:
    void showList(Numbers &rows)
    {
        ZQTheme::current().setDark(true);
        head().setColumns(ZQViewColumns({{QStringLiteral("title"), QStringLiteral("Title"), 0, 0, true},
                                         {QStringLiteral("number"), QStringLiteral("Number"), 100, 40, true},
                                         {QStringLiteral("stars"), QStringLiteral("Stars"), 84, 40, false},
                                         {QStringLiteral("tags"), QStringLiteral("Tags"), 150, 40, false}}));
        view.setShowsList(true);
        show(rows);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    ZQListHead &head() { return view.listHead(); }
    QAbstractButton *title(const char *text)
    {
        for (auto *button : head().findChildren<QAbstractButton *>()) {
            if (button->text() == QLatin1StringView(text)) {
                return button;
            }
        }
        return nullptr;
    }
    std::string columns() { return view.listColumns().join(u' ').toStdString(); }
    // Whether anything of that colour is drawn there.
    bool shows(const QRect &rect, const QColor &color)
    {
        const QImage drawn = view.viewport()->grab(rect).toImage();
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x) {
                if (drawn.pixelColor(x, y) == color) {
                    return true;
                }
            }
        }
        return false;
    }
    void dragLine(int from, int to)
    {
        QTest::mousePress(&head(), Qt::LeftButton, {}, {from, 10});
        QMouseEvent move(QEvent::MouseMove, QPointF(to, 10), head().mapToGlobal(QPointF(to, 10)), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(&head(), &move);
        QTest::mouseRelease(&head(), Qt::LeftButton, {}, {to, 10});
    }
    QRect boxOf(qint64 index, const char *column)
    {
        const QRect row = view.visualRect(index);
        const QAbstractButton *above = title(column);
        return {above->x(), row.top(), above->width(), row.height()};
    }
};

} // namespace

TEST_F(ZQGridViewListTest, AMillionRowsCostOnlyWhatIsOnScreen)
{
    Rows rows(1000000);
    showList(rows);
    view.setScrollOffset(view.gridLayout().contentHeight() / 2);
    rows.asked = rows.valuesAsked = 0;
    view.viewport()->grab();
    EXPECT_EQ(rows.asked, view.visibleIndexes().count());
    EXPECT_EQ(rows.valuesAsked, view.visibleIndexes().count());
    EXPECT_LE(view.visibleIndexes().count(), 700 / 44 + 2);
    key(Qt::Key_End);
    EXPECT_EQ(view.currentIndex(), 999999);
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(999999)));
    key(Qt::Key_Up);
    EXPECT_EQ(view.currentIndex(), 999998);
    key(Qt::Key_Left);
    EXPECT_EQ(view.currentIndex(), 999997) << "without groups";
    QTest::keyClicks(&view, QStringLiteral("item 12"));
    EXPECT_EQ(view.currentIndex(), 12);
    view.setZoom(0);
    EXPECT_EQ(view.gridLayout().rowHeight(), 28);
    view.setZoom(1);
    EXPECT_EQ(view.gridLayout().rowHeight(), 60);
}

TEST_F(ZQGridViewListTest, RowsShowWhatTheirColumnsSay)
{
    Rows rows(40);
    showList(rows);
    EXPECT_EQ(columns(), "number stars tags");
    const QColor accent = zqColor(ZQColorRole::Accent);
    EXPECT_FALSE(shows(boxOf(0, "Stars"), accent)) << "no stars";
    EXPECT_TRUE(shows(boxOf(3, "Stars"), accent));
    EXPECT_TRUE(shows(boxOf(1, "Tags"), zqColor(ZQColorRole::Select))) << "a chip";
    rows.chips.clear();
    EXPECT_FALSE(shows(boxOf(1, "Tags"), zqColor(ZQColorRole::Select)));
    rows.chips = QStringList(30, QStringLiteral("longer"));
    const QRect box = boxOf(1, "Tags");
    EXPECT_EQ(pixel({box.right() + 5, box.center().y()}), zqColor(ZQColorRole::Ground)) << "chips stay in their column";
    EXPECT_FALSE(shows(QRect(box.left() - 8, box.top(), 6, box.height()), zqColor(ZQColorRole::Select)));

    view.setCurrentIndex(2);
    EXPECT_TRUE(shows(QRect(400, view.visualRect(2).top() + 4, 4, 4), zqColor(ZQColorRole::Select)));
    QAccessibleInterface *grid = QAccessible::queryAccessibleInterface(&view);
    rows.chips = {QStringLiteral("one"), QStringLiteral("two")};
    EXPECT_EQ(grid->child(3)->text(QAccessible::Name), QStringLiteral("item 3.png"));
    EXPECT_EQ(grid->child(3)->text(QAccessible::Description), QStringLiteral("Number 3; Stars 3; Tags one, two"));
    EXPECT_EQ(grid->child(0)->text(QAccessible::Description), QStringLiteral("Number 0; Tags one, two"));
    view.resize(300, 700);
    EXPECT_EQ(columns(), "number") << "what has no room gives way";
    EXPECT_FALSE(title("Tags"));
    EXPECT_EQ(grid->child(3)->text(QAccessible::Description), QStringLiteral("Number 3"));
}

TEST_F(ZQGridViewListTest, TitlesSortAndTheirLinesAreDragged)
{
    Rows rows(40);
    showList(rows);
    QSignalSpy sorts(&head(), &ZQListHead::sortRequested);
    QTest::mouseClick(title("Number"), Qt::LeftButton);
    QTest::mouseClick(title("Stars"), Qt::LeftButton);
    ASSERT_EQ(sorts.size(), 1) << "by stars nothing can be ordered";
    EXPECT_EQ(sorts[0][0].toString(), QStringLiteral("number"));
    EXPECT_EQ(title("Number")->accessibleName(), QStringLiteral("Number"));
    const QImage unsorted = title("Number")->grab().toImage();
    head().setSort(QStringLiteral("number"), false);
    EXPECT_EQ(title("Number")->accessibleName(), QStringLiteral("Number, descending"));
    const QImage descending = title("Number")->grab().toImage();
    head().setSort(QStringLiteral("number"), true);
    EXPECT_EQ(title("Number")->accessibleName(), QStringLiteral("Number, ascending"));
    const QImage ascending = title("Number")->grab().toImage();
    EXPECT_NE(unsorted, descending);
    EXPECT_NE(ascending, descending);

    QSignalSpy changes(&head(), &ZQListHead::columnsChanged);
    const int left = title("Number")->x();
    dragLine(left - 4, left - 34);
    EXPECT_EQ(title("Number")->x(), left - 30);
    EXPECT_EQ(title("Number")->width(), 130);
    EXPECT_EQ(changes.size(), 1);
    dragLine(left - 30, left + 20);
    EXPECT_EQ(changes.size(), 1) << "that is the title and no line";

    title("Title")->setFocus();
    QTest::keyClick(title("Title"), Qt::Key_Right);
    EXPECT_TRUE(title("Number")->hasFocus());
    EXPECT_EQ(title("Title")->focusPolicy(), Qt::NoFocus) << "one stop for Tab";
    QTest::keyClick(title("Number"), Qt::Key_Return);
    EXPECT_EQ(sorts.size(), 2);
    QTest::keyClick(title("Number"), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(title("Number")->width(), 138);
    QTest::keyClick(title("Number"), Qt::Key_Left);
    EXPECT_TRUE(title("Title")->hasFocus());
}

TEST_F(ZQGridViewListTest, FromRightToLeftItIsTheOtherWayRound)
{
    Rows rows(40);
    showList(rows);
    QList<QRect> usual;
    constexpr const char *titles[] = {"Title", "Number", "Stars", "Tags"};
    for (const char *each : titles) {
        usual.append(title(each)->geometry());
    }
    view.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(head().geometry().left(), view.viewport()->geometry().left());
    const int width = view.viewport()->width();
    for (const char *each : titles) {
        const QRect before = usual.takeFirst();
        EXPECT_EQ(title(each)->geometry().left(), width - before.left() - before.width()) << each;
        EXPECT_EQ(title(each)->width(), before.width()) << each;
    }
    EXPECT_TRUE(shows(boxOf(3, "Stars"), zqColor(ZQColorRole::Accent))) << "below its title";
    const QRect chips = boxOf(1, "Tags");
    EXPECT_EQ(pixel({chips.right() - 5, chips.center().y()}), zqColor(ZQColorRole::Select)) << "they begin there";
    EXPECT_EQ(pixel({width - ZQGridLayout::sideMargin - 4, chips.center().y()}), zqColor(ZQColorRole::Cell));

    drag(boxOf(2, "Title").center(), boxOf(5, "Title").center());
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 2)) << "what a row shows is dragged";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, boxOf(5, "Title").center());
    drag(boxOf(3, "Number").center(), boxOf(5, "Number").center());
    EXPECT_EQ(view.selection(), ZQIndexSet(3, 5)) << "and a band drawn beside it";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, boxOf(5, "Number").center());

    const int right = title("Number")->geometry().right();
    dragLine(right + 4, right + 34);
    EXPECT_EQ(title("Number")->geometry().right(), right + 30);
    EXPECT_EQ(title("Number")->width(), 130);
    title("Title")->setFocus();
    QTest::keyClick(title("Title"), Qt::Key_Left);
    EXPECT_TRUE(title("Number")->hasFocus());
    QTest::keyClick(title("Number"), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(title("Number")->width(), 138);

    Rows groups(30, {{QStringLiteral("One"), 12}, {QStringLiteral("Two"), 18}});
    view.setDataSource(&groups);
    const QRect half(0, 0, width / 2, ZQMeasure::groupHeadHeight);
    EXPECT_FALSE(shows(half, zqColor(ZQColorRole::Raised2)));
    EXPECT_TRUE(shows(half.translated(width / 2, 0), zqColor(ZQColorRole::Raised2))) << "the count, after the title";
}

TEST_F(ZQGridViewListTest, AMenuChoosesTheColumns)
{
    Rows rows(40);
    showList(rows);
    QAction extra(QStringLiteral("More"));
    head().addAction(&extra);
    QSignalSpy changes(&head(), &ZQListHead::columnsChanged);
    QStringList texts;
    const auto choose = [&](const char *text) {
        texts.clear();
        QTimer::singleShot(20, &view, [&texts, text] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            QAction *chosen = nullptr;
            for (QAction *action : menu->actions()) {
                texts.append(action->isSeparator()
                                 ? QStringLiteral("-")
                                 : action->text() + (action->isChecked() ? QStringLiteral(" ✓") : QString()));
                chosen = action->text() == QLatin1StringView(text) ? action : chosen;
            }
            menu->close();
            if (chosen) {
                chosen->trigger();
            }
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, {10, 10}, head().mapToGlobal(QPoint(10, 10)));
        QApplication::sendEvent(title("Title"), &event);
        return texts.join(u'|').toStdString();
    };
    EXPECT_EQ(choose("Stars"), "Number ✓|Stars ✓|Tags ✓|-|More");
    EXPECT_EQ(columns(), "number tags");
    EXPECT_EQ(choose("Stars"), "Number ✓|Stars|Tags ✓|-|More");
    EXPECT_EQ(columns(), "number stars tags");
    choose("");
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(ZQGridViewListTest, ThePointerDragsWhatARowShowsAndDrawsABandBesideIt)
{
    Rows rows(40);
    showList(rows);
    const auto beside = [this](qint64 index) { return boxOf(index, "Number").center(); };
    drag(beside(2), beside(5));
    EXPECT_EQ(view.selection(), ZQIndexSet(2, 5));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, beside(5));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, beside(7));
    EXPECT_EQ(view.selection(), ZQIndexSet(7, 7)) << "a click takes its row";
    drag(beside(9), beside(8), Qt::ControlModifier);
    EXPECT_EQ(view.selection(), ZQIndexSet(7, 9));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, beside(8));
    QSignalSpy activated(&view, &ZQGridView::activated);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, beside(3));
    EXPECT_EQ(activated.size(), 1);
    QSignalSpy looked(&view, &ZQGridView::quickLookRequested);
    view.setCurrentIndex(4);
    key(Qt::Key_Space);
    EXPECT_EQ(looked.size(), 1);

    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("file:///x"))});
    const auto dropAt = [&](qint64 index, int dy) {
        const QPoint point(300, view.visualRect(index).top() + dy);
        QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &enter);
        const QColor mark = pixel({300, view.visualRect(index).top()});
        QDropEvent drop(point, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &drop);
        return mark;
    };
    EXPECT_EQ(dropAt(6, 5), zqColor(ZQColorRole::Accent)) << "a line between the rows";
    EXPECT_NE(dropAt(6, 40), zqColor(ZQColorRole::Accent));
    EXPECT_EQ(rows.dropped, (QList<qint64>{6, 7}));
}

TEST_F(ZQGridViewListTest, GroupsAreFoldedByTheArrowKeysAndAllAtOnce)
{
    Rows rows(30, {{QStringLiteral("One"), 12}, {QStringLiteral("Two"), 8}, {QStringLiteral("Three"), 10}});
    showList(rows);
    const auto folded = [this] {
        std::string text;
        for (int group = 0; group < view.gridLayout().groupCount(); ++group) {
            text += view.gridLayout().isCollapsed(group) ? '1' : '0';
        }
        return text;
    };
    QSignalSpy changes(&view, &ZQGridView::collapsedGroupsChanged);
    view.setCurrentIndex(13);
    key(Qt::Key_Left);
    EXPECT_EQ(folded(), "010");
    EXPECT_EQ(view.collapsedGroups(), QSet<QString>{QStringLiteral("Two")});
    key(Qt::Key_Right);
    EXPECT_EQ(folded(), "000");
    EXPECT_EQ(changes.size(), 2);
    key(Qt::Key_Left);
    key(Qt::Key_Down);
    EXPECT_EQ(view.currentIndex(), 20) << "from a head to the next row there is";
    view.setGroupCollapsed(2, true);
    key(Qt::Key_Up);
    EXPECT_EQ(view.currentIndex(), 11);
    view.setAllGroupsCollapsed(true);
    EXPECT_EQ(folded(), "111");
    key(Qt::Key_Down);
    EXPECT_EQ(view.currentIndex(), 11) << "nothing else can be seen";
    const QImage focused = view.viewport()->grab().toImage();
    view.clearFocus();
    EXPECT_NE(view.viewport()->grab().toImage(), focused) << "the head that hides the current row shows the focus";
    view.setFocus();
    view.setCurrentIndex(25);
    EXPECT_EQ(folded(), "110") << "what is gone to is seen";
    EXPECT_TRUE(view.viewport()->rect().contains(view.visualRect(25)));
    view.setAllGroupsCollapsed(false);
    EXPECT_EQ(folded(), "000");
    view.setShowsList(false);
    view.setCurrentIndex(13);
    key(Qt::Key_Left);
    EXPECT_EQ(folded(), "000") << "in a grid that is the way to the one before";
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(folded(), "010");
    key(Qt::Key_Right);
    EXPECT_EQ(folded(), "000") << "from the head into the group";
    EXPECT_EQ(view.currentIndex(), 12);
}

TEST_F(ZQGridViewListTest, TheStyleChangesWithoutLosingThePlace)
{
    Rows rows(4000);
    showList(rows);
    EXPECT_TRUE(head().isVisible());
    EXPECT_EQ(view.viewport()->y(), ZQListHead::height);
    view.setCurrentIndex(2000);
    for (const bool isList : {false, true}) {
        view.setShowsList(isList);
        EXPECT_EQ(head().isVisible(), isList);
        EXPECT_TRUE(view.visibleIndexes().contains(2000)) << isList;
        EXPECT_EQ(view.selection(), ZQIndexSet(2000, 2000));
        EXPECT_EQ(view.gridLayout().columns() == 1, isList);
    }
    view.setScrollOffset(0);
    view.setShowsList(false);
    EXPECT_EQ(view.scrollOffset(), 0) << "what is at the top stays there";

    Rows groups(4000, {{QStringLiteral("One"), 2000}, {QStringLiteral("Two"), 2000}});
    view.setDataSource(&groups);
    view.setCurrentIndex(3000);
    for (const bool isList : {true, false}) {
        view.setShowsList(isList);
        const qint64 offset = view.scrollOffset();
        view.scrollToIndex(3000);
        EXPECT_EQ(view.scrollOffset(), offset) << "no head touches it " << isList;
    }
}
