#include "Kit/Widgets/ZQAccessible.h"

#include "Kit/Widgets/ZQGridView.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Kit/Widgets/ZQTabStrip.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

// Counts what it is asked for.
class Many : public ZQGridDataSource
{
public:
    explicit Many(qint64 count) : m_count(count) {}
    qint64 count() const override { return m_count; }
    ZQGridItem item(qint64 index) const override
    {
        ++asked;
        ZQGridItem item;
        item.title = QStringLiteral("item %1").arg(index);
        item.extension = QStringLiteral("png");
        return item;
    }
    mutable int asked = 0;

private:
    qint64 m_count;
};

class Spoken : public testing::Test
{
protected:
    static QAccessibleInterface &of(QWidget &widget) { return *QAccessible::queryAccessibleInterface(&widget); }
    static QString name(const QAccessibleInterface *thing) { return thing->text(QAccessible::Name); }
};

} // namespace

TEST_F(Spoken, AGridOfManyIsAskedForNothingButWhatIsWanted)
{
    Many many(100000);
    ZQGridView view;
    view.resize(600, 400);
    view.setDataSource(&many);
    QAccessibleInterface &grid = of(view);
    QAccessibleTableInterface *table = grid.tableInterface();
    ASSERT_TRUE(table);
    EXPECT_EQ(grid.childCount(), 100000);
    EXPECT_EQ(table->rowCount(), 100000);
    EXPECT_EQ(table->columnCount(), 1);
    EXPECT_TRUE(grid.state().multiSelectable);
    EXPECT_EQ(many.asked, 0);
    EXPECT_EQ(name(table->cellAt(99999, 0)), QStringLiteral("item 99999.png"));
    EXPECT_EQ(many.asked, 1);
    EXPECT_EQ(table->cellAt(100000, 0), nullptr);
    EXPECT_EQ(table->cellAt(0, 1), nullptr);
    EXPECT_EQ(grid.child(-1), nullptr);
    view.selectAll();
    EXPECT_EQ(table->selectedRowCount(), 100000);
    EXPECT_LT(table->selectedRows().size(), 20000) << "nobody listens to all of them";
    EXPECT_EQ(many.asked, 1);
}

TEST_F(Spoken, TheSelectionOfAGridIsTheOneThatIsSeen)
{
    Many many(50);
    ZQGridView view;
    view.resize(600, 400);
    view.setDataSource(&many);
    QAccessibleTableInterface *table = of(view).tableInterface();
    QAccessibleInterface *third = of(view).child(3);
    QSignalSpy changed(&view, &ZQGridView::selectionChanged);
    EXPECT_TRUE(table->selectRow(3));
    EXPECT_TRUE(table->selectRow(7));
    EXPECT_TRUE(table->selectRow(7)) << "it is";
    EXPECT_EQ(table->selectedRows(), (QList<int>{3, 7}));
    EXPECT_TRUE(third->state().selected);
    EXPECT_EQ(third->tableCellInterface()->rowIndex(), 3);
    EXPECT_TRUE(third->tableCellInterface()->isSelected());
    EXPECT_EQ(third->tableCellInterface()->table(), &of(view));
    EXPECT_TRUE(table->unselectRow(3));
    EXPECT_EQ(view.selection(), ZQIndexSet(7, 7));
    EXPECT_EQ(changed.size(), 3);
    for (const int row : {-1, 50}) {
        EXPECT_FALSE(table->selectRow(row)) << row;
        EXPECT_FALSE(table->unselectRow(row)) << row;
    }
    third->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_EQ(table->selectedRows(), (QList<int>{3, 7}));
    EXPECT_EQ(view.currentIndex(), 3);
    QSignalSpy menu(&view, &ZQGridView::contextMenuRequested);
    third->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(menu.isEmpty()) << "who asked goes on";
    EXPECT_TRUE(QTest::qWaitFor([&menu] { return menu.size() == 1; }));
    view.setDataSource(nullptr);
    EXPECT_EQ(of(view).childCount(), 0);
    EXPECT_EQ(table->selectedRows(), QList<int>());
}

TEST_F(Spoken, TabsAndSegmentsArePagesThatCanBeTurnedTo)
{
    ZQTabStrip strip;
    strip.resize(600, strip.height());
    strip.setTabs({QStringLiteral("Library"), QStringLiteral("Brand")}, 0);
    QAccessibleInterface &tabs = of(strip);
    EXPECT_EQ(tabs.role(), QAccessible::PageTabList);
    ASSERT_EQ(tabs.childCount(), 2 + 2) << "and two buttons";
    QAccessibleInterface *second = tabs.child(1);
    EXPECT_EQ(second->role(), QAccessible::PageTab);
    EXPECT_EQ(name(second), QStringLiteral("Brand"));
    EXPECT_FALSE(second->state().selected);
    EXPECT_EQ(tabs.indexOfChild(second), 1);
    EXPECT_EQ(tabs.childAt(second->rect().center().x(), second->rect().center().y()), second);
    EXPECT_EQ(tabs.child(2)->role(), QAccessible::Button);
    EXPECT_EQ(tabs.indexOfChild(tabs.child(2)), 2);
    EXPECT_EQ(tabs.child(4), nullptr);
    QSignalSpy turned(&strip, &ZQTabStrip::currentChanged);
    second->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(turned.size(), 1);
    EXPECT_EQ(turned.first().first().toInt(), 1);
    strip.setTabs({QStringLiteral("Library")}, 0);
    EXPECT_FALSE(second->isValid()) << "it was closed";
    EXPECT_TRUE(second->state().invalid);
    EXPECT_EQ(name(second), QString());
    second->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(turned.size(), 1);

    ZQSwitch segments({QStringLiteral("Projects"), QStringLiteral("Tags")});
    of(segments).child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(segments.currentIndex(), 1);
    EXPECT_TRUE(of(segments).child(1)->state().selected);
    EXPECT_FALSE(of(segments).child(0)->state().selected);
}

TEST_F(Spoken, ProgressIsANumberAndNewsIsANotification)
{
    ZQProgressLine line(false);
    line.setText(QStringLiteral("Importing"));
    line.setFraction(0.25);
    QAccessibleInterface *bar = nullptr;
    for (QWidget *each : line.findChildren<QWidget *>()) {
        QAccessibleInterface &one = of(*each);
        bar = one.role() == QAccessible::ProgressBar ? &one : bar;
    }
    ASSERT_TRUE(bar);
    EXPECT_EQ(name(bar), QStringLiteral("Importing"));
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 25);
    EXPECT_EQ(bar->valueInterface()->maximumValue().toDouble(), 100);
    line.setFraction(-1);
    EXPECT_EQ(bar->valueInterface()->currentValue().toDouble(), 0) << "nobody knows";

    QWidget window;
    ZQNotificationBubble bubble(&window);
    bubble.showText(QStringLiteral("Copied"), &window, false, std::chrono::seconds(1));
    EXPECT_EQ(of(bubble).role(), QAccessible::Notification);
    EXPECT_EQ(name(&of(bubble)), QStringLiteral("Copied"));
}
