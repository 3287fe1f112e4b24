// The list style of the browser, driven as a person does it.

#include "Classes/Interface/Browser/BrowserListStyle.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQListHead.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QFileInfo>
#include <QToolButton>

namespace {

class BrowserListTest : public MainWindowTest
{
protected:
    ZQListHead &head() { return grid().listHead(); }
    QAbstractButton *title(const char *text)
    {
        for (auto *button : head().findChildren<QAbstractButton *>()) {
            if (button->isVisible() && button->text() == QLatin1StringView(text)) {
                return button;
            }
        }
        return nullptr;
    }
    void showList()
    {
        press(Qt::Key_2, Qt::ControlModifier | Qt::AltModifier);
        settle();
    }
    // "TITLE: values" of a row, the columns parted by a bar.
    std::string row(const QString &titleOfRow)
    {
        BrowserContent &content = browser().content();
        const qint64 index = shown().indexOf(titleOfRow);
        QStringList texts;
        for (const ZQListValue &value : content.listValues(index, grid().listColumns())) {
            texts.append(value.stars >= 0         ? QString(value.stars, u'*')
                         : !value.chips.isEmpty() ? value.chips.join(u'+')
                                                  : value.text);
        }
        return texts.join(u'|').toStdString();
    }
    std::string order() { return shown().join(u' ').toStdString(); }
    void clickTitle(const char *text)
    {
        QTest::mouseClick(title(text), Qt::LeftButton);
        settle();
    }
    std::string menuOfTitles(const char *choose)
    {
        whenMenuOpens(QString::fromLatin1(choose));
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, head().mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(title("Title"), &event);
        settle();
        return menu.toStdString();
    }
};

} // namespace

TEST_F(BrowserListTest, RowsSayWhatIsKnownOfTheirItems)
{
    window().resize(1600, 800);
    const auto red = image(QStringLiteral("red"));
    red->setRating(3);
    red->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
    delegate->saveAction();
    settle();
    showList();
    EXPECT_TRUE(grid().showsList());
    EXPECT_TRUE(head().isVisible());
    grid().viewport()->grab();
    const QString bytes = QLocale().formattedDataSize(QFileInfo(red->itemURL()).size(), 1, QLocale::DataSizeSIFormat);
    const std::string wanted = QStringLiteral("png|80 × 60|%1|***|mine|Today, ").arg(bytes).toStdString();
    EXPECT_TRUE(waitFor([&] { return row(QStringLiteral("red")).starts_with(wanted); })) << row(QStringLiteral("red"));

    // What changes is read anew.
    red->setRating(5);
    red->removeTagsObject(zqCast<ZQSidebarTag>(tag).get());
    delegate->saveAction();
    settle();
    grid().viewport()->grab();
    EXPECT_TRUE(waitFor([&] { return row(QStringLiteral("red")).find("*****||") != std::string::npos; }))
        << row(QStringLiteral("red"));
    ASSERT_TRUE(QFile::remove(red->itemURL()));
    browser().redrawVisible();
    grid().viewport()->grab();
    EXPECT_TRUE(waitFor([&] { return row(QStringLiteral("red")).find("|missing|") != std::string::npos; }))
        << row(QStringLiteral("red"));
}

TEST_F(BrowserListTest, TitlesOrderTheRowsAndShowTheOrder)
{
    window().resize(1600, 800);
    showList();
    EXPECT_TRUE(named("Sort: Manual order")) << "no column shows that order";
    clickTitle("Title");
    EXPECT_EQ(order(), "clear moving pages red");
    EXPECT_EQ(title("Title")->accessibleName(), QStringLiteral("Title, ascending"));
    EXPECT_FALSE(named("Sort: Title")) << "the column says it";
    EXPECT_FALSE(named("Ascending"));
    clickTitle("Title");
    EXPECT_EQ(order(), "red pages moving clear");
    EXPECT_EQ(title("Title")->accessibleName(), QStringLiteral("Title, descending"));
    clickTitle("Size");
    EXPECT_EQ(order().substr(0, 4), "red ") << "the largest first";
    EXPECT_EQ(title("Title")->accessibleName(), QStringLiteral("Title"));
    clickTitle("Size");
    EXPECT_EQ(order().substr(order().size() - 4), " red");
    EXPECT_TRUE(controller->command(CommandID(int(CommandID::SortManually) + int(ZQSortValue::Size)))->isChecked());

    EXPECT_EQ(menuOfTitles("Size"), "Kind|Size|Bytes|Rating|Tags|Imported|Modified|Created|Color|-|Manual order");
    EXPECT_TRUE(named("Sort: Size")) << "its column is not there any more";
    menuOfTitles("Manual order");
    EXPECT_EQ(order(), "red clear pages moving");
    show(special(ZQSidebarKind::Library));
    EXPECT_EQ(menuOfTitles("Modified"), "Kind|Size|Bytes|Rating|Tags|Imported|Modified|Created|Color")
        << "everything has no order by hand";
    clickTitle("Modified");
    EXPECT_TRUE(browser().content().tab().sortKeysValue() == ZQSortValue::ModificationDate);

    const QStringList columns = grid().listColumns();
    EXPECT_TRUE(columns.contains(QStringLiteral("modified")) && !columns.contains(QStringLiteral("size")));
    closeWindow();
    openWindow();
    window().resize(1600, 800);
    settle();
    EXPECT_TRUE(grid().showsList());
    EXPECT_EQ(grid().listColumns(), columns) << "kept";
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(BrowserListStyle::columnsPreference);
}

TEST_F(BrowserListTest, EveryColumnThatIsShownOrdersTheRowsAndSoItStays)
{
    const auto red = image(QStringLiteral("red"));
    red->setRating(3);
    red->addTagsObject(zqCast<ZQSidebarTag>(tag).get());
    delegate->saveAction();
    for (const int width : {1100, 1440}) {
        window().resize(width, 800);
        settle();
        showList();
        for (const char *column : {"Title", "Kind", "Size", "Bytes", "Rating", "Tags", "Imported"}) {
            ASSERT_TRUE(title(column)) << column << " at " << width;
            EXPECT_GE(title(column)->width(), column == std::string("Title") ? 120 : 36) << column;
        }
    }
    struct Case
    {
        const char *column;
        const char *first; // direction
        const char *second;
    };
    for (const Case &each : {Case{"Kind", "ascending", "descending"},
                             {"Rating", "descending", "ascending"},
                             {"Tags", "ascending", "descending"},
                             {"Imported", "descending", "ascending"}}) {
        const QString name = QString::fromLatin1(each.column);
        clickTitle(each.column);
        EXPECT_EQ(title(each.column)->accessibleName(), name + QStringLiteral(", ") + QLatin1StringView(each.first));
        const std::string before = order();
        clickTitle(each.column);
        EXPECT_EQ(title(each.column)->accessibleName(), name + QStringLiteral(", ") + QLatin1StringView(each.second));
        EXPECT_NE(order(), before) << each.column;
    }
    clickTitle("Tags");
    EXPECT_EQ(order().substr(0, 4), "red ") << "those without a tag come last";
    clickTitle("Rating");
    EXPECT_EQ(order().substr(0, 4), "red ") << "the best first";
    EXPECT_TRUE(controller->command(CommandID(int(CommandID::SortByKind) + 1))->isChecked());
    const std::string kept = order();
    closeWindow();
    openWindow();
    window().resize(1440, 800);
    settle();
    EXPECT_EQ(order(), kept);
    ASSERT_TRUE(title("Rating"));
    EXPECT_EQ(title("Rating")->accessibleName(), QStringLiteral("Rating, descending"));
}

TEST_F(BrowserListTest, EachTabHasItsStyleAndItsFoldedGroups)
{
    EXPECT_TRUE(named<QToolButton>("As Grid")->isChecked());
    ASSERT_TRUE(named<QToolButton>("As List"));
    named<QToolButton>("As List")->click();
    EXPECT_TRUE(grid().showsList());
    EXPECT_TRUE(controller->command(CommandID::ShowAsList)->isChecked());
    EXPECT_FALSE(controller->command(CommandID::ShowAsGrid)->isChecked());
    run(CommandID::GroupBySize);
    settle();
    grid().setFocus();
    grid().setCurrentIndex(0);
    press(Qt::Key_Left);
    EXPECT_EQ(grid().collapsedGroups().size(), 1);
    press(Qt::Key_T, Qt::ControlModifier);
    show(a);
    EXPECT_FALSE(grid().showsList());
    EXPECT_TRUE(grid().collapsedGroups().isEmpty());
    run(CommandID::GroupBySize);
    settle();
    grid().setFocus();
    press(Qt::Key_Left, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(grid().collapsedGroups().size(), 3);
    press(Qt::Key_1, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(grid().showsList());
    EXPECT_TRUE(named<QToolButton>("As List")->isChecked());
    EXPECT_EQ(grid().collapsedGroups().size(), 1);
    press(Qt::Key_2, Qt::ControlModifier);
    settle();
    EXPECT_FALSE(grid().showsList());
    EXPECT_EQ(grid().collapsedGroups().size(), 3);
    press(Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_TRUE(grid().collapsedGroups().isEmpty());
    press(Qt::Key_1, Qt::ControlModifier);
    show(b);
    EXPECT_TRUE(grid().showsList()) << "a person who goes elsewhere keeps the style";
    EXPECT_FALSE(isEnabled(CommandID::CollapseGroup)) << "there are none";
    closeWindow();
    openWindow();
    EXPECT_TRUE(grid().showsList());
    press(Qt::Key_1, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_FALSE(grid().showsList());
    browser().showSidebarItems({});
    settle();
    EXPECT_FALSE(isEnabled(CommandID::ShowAsList)) << "nothing that has rows";
    EXPECT_FALSE(named<QToolButton>("As List")->isEnabled());
}

TEST_F(BrowserListTest, WhatIsPreferredIsDrawnAtOnce)
{
    ZQUserDefaults &defaults = ZQUserDefaults::standardUserDefaults();
    EXPECT_FALSE(grid().fillsCells());
    const int withTitles = grid().gridLayout().rowHeight();
    defaults.setObjectForKey(true, QStringLiteral("BrowserFillsCells"));
    settle();
    EXPECT_TRUE(grid().fillsCells());
    defaults.setObjectForKey(false, QStringLiteral("ShowLibraryItemsTitles"));
    defaults.setObjectForKey(false, QStringLiteral("ShowLibraryItemsExtensions"));
    settle();
    EXPECT_LT(grid().gridLayout().rowHeight(), withTitles);
    for (const char *key : {"BrowserFillsCells", "ShowLibraryItemsTitles", "ShowLibraryItemsExtensions"}) {
        defaults.removeObjectForKey(QString::fromLatin1(key));
    }
    settle();
    EXPECT_FALSE(grid().fillsCells());
    EXPECT_EQ(grid().gridLayout().rowHeight(), withTitles);
}
