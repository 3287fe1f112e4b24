// The main window as a person meets it: commands, tabs, and what is there again the next time.

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQTabStrip.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSlider>
#include <QSplitter>
#include <QToolButton>

namespace {

class MainWindowTest : public MainWindowFixture
{
protected:
    ZQTabStrip &strip() { return *window().findChild<ZQTabStrip *>(); }
    QString tabs()
    {
        return strip().accessibleDescription() + u' ' + QString::number(strip().currentIndex()) + u'/' +
               QString::number(strip().count());
    }
    QLineEdit &search() { return *window().findChild<QLineEdit *>(QStringLiteral("Search")); }
    QMenu &menuOf(const char *title) { return *window().findChild<QMenu *>(QString::fromLatin1(title)); }
    static QString commandsOf(const QMenu &menu)
    {
        QStringList lines;
        for (const QAction *action : menu.actions()) {
            QStringList parts = {action->isSeparator() ? QStringLiteral("-") : action->text()};
            for (const QKeySequence &keys : action->shortcuts()) {
                parts.append(keys.toString());
            }
            lines.append(parts.join(u' ') + (action->isCheckable() ? QStringLiteral(" ✓") : QString()));
        }
        return lines.join(u'\n');
    }
};

} // namespace

TEST_F(MainWindowTest, TheMenuHoldsTheCommandsWithTheirKeys)
{
    EXPECT_EQ(commandsOf(menuOf("File")),
              QStringLiteral("New Project Ctrl+N\nNew Folder Ctrl+Shift+N\nNew Tag\n-\nImport… Ctrl+I\n-\n"
                             "New Tab Ctrl+T\nClose Tab Ctrl+W\nReopen Closed Tab Ctrl+Shift+T\n-\nNew Library…\n"
                             "Open Library…\nMove Library…\nShow Library in Files\n-\nQuit Ctrl+Q"));
    EXPECT_EQ(commandsOf(menuOf("Edit")),
              QStringLiteral("Undo Ctrl+Z\nRedo Ctrl+Shift+Z\n-\nCopy Ctrl+C\nPaste Ctrl+V\nSelect All Ctrl+A\n-\n"
                             "Rename F2\nDuplicate Ctrl+D\nRemove Del\nDelete from Library Ctrl+Del\n-\nRating\n-\n"
                             "Find Ctrl+F"));
    EXPECT_EQ(commandsOf(menuOf("View")),
              QStringLiteral("Sidebar Ctrl+B ✓\nInfo Panel Ctrl+Shift+I ✓\n-\nLarger Thumbnails Ctrl++ Ctrl+=\n"
                             "Smaller Thumbnails Ctrl+-\n-\nQuick Look\nOpen\nFull Screen F11\n-\nDark Theme ✓"));
    EXPECT_EQ(commandsOf(menuOf("Help")), QStringLiteral("Keyboard F1"));
    EXPECT_EQ(commandsOf(menuOf("Rating")),
              QStringLiteral("None 0\n1 Star 1\n2 Stars 2\n3 Stars 3\n4 Stars 4\n5 Stars 5"));
    whenMenuOpens();
    press(Qt::Key_F10);
    EXPECT_EQ(menu, QStringLiteral("File|Edit|View|Help"));

    QStringList lines;
    whenAsked([&](Sheet &sheet) {
        EXPECT_EQ(sheet.accessibleName(), QStringLiteral("Keyboard"));
        lines = sheet.findChild<QLabel *>(QStringLiteral("Muted"))->text().split(u'\n');
        press(Qt::Key_Return);
    });
    press(Qt::Key_F1);
    EXPECT_EQ(lines.value(0), QStringLiteral("Ctrl+N   New Project"));
    EXPECT_EQ(lines.size(), 32);
    EXPECT_EQ(lines.mid(29), (QStringList{QStringLiteral("Space   Quick look"), QStringLiteral("Enter   Open"),
                                          QStringLiteral("Esc   Back")}));
}

TEST_F(MainWindowTest, EveryControlIsReachedByKeyAndHasItsSize)
{
    struct Control
    {
        const char *name;
        QSize size;
    };
    for (const Control &each : {Control{"Sidebar (Ctrl+B)", {30, 28}},
                                {"Menu (F10)", {30, 28}},
                                {"New Project (Ctrl+N)", {30, 28}},
                                {"Import… (Ctrl+I)", {30, 28}},
                                {"Info Panel (Ctrl+Shift+I)", {30, 28}},
                                {"Search titles", {320, 30}},
                                {"Ascending", {26, 26}},
                                {"Thumbnail size", {130, 0}}}) {
        QWidget *widget = nullptr;
        for (QWidget *candidate : window().findChildren<QWidget *>()) {
            widget = candidate->accessibleName() == QString::fromUtf8(each.name) ? candidate : widget;
        }
        ASSERT_TRUE(widget) << each.name;
        EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << each.name;
        EXPECT_EQ(widget->width(), each.size.width()) << each.name;
        if (each.size.height() > 0) {
            EXPECT_EQ(widget->height(), each.size.height()) << each.name;
        }
    }
    const auto *bar = window().findChild<QWidget *>(QStringLiteral("Toolbar"));
    EXPECT_EQ(bar->geometry(), QRect(0, 0, 1280, ZQMeasure::toolbarHeight));
    EXPECT_TRUE(bar->testAttribute(Qt::WA_StyledBackground));
    EXPECT_EQ(window().minimumSize(), QSize(720, 480));
    const auto *splitter = window().findChild<QSplitter *>();
    EXPECT_FALSE(splitter->childrenCollapsible());
    EXPECT_EQ(splitter->handleWidth(), 1);
    EXPECT_EQ(splitter->geometry().top(), ZQMeasure::toolbarHeight + 1);
    EXPECT_EQ(splitter->sizes().value(0), ZQMeasure::sidebarWidth);
    EXPECT_EQ(splitter->sizes().value(2), ZQMeasure::infoPanelWidth);
    EXPECT_EQ(splitter->widget(1), &browser());
    window().resize(1400, 800);
    QApplication::processEvents();
    EXPECT_EQ(splitter->sizes().value(0), ZQMeasure::sidebarWidth) << "what is new is the grid's";
    window().resize(720, 480);
    QApplication::processEvents();
    EXPECT_GE(splitter->sizes().value(0), 160);
    EXPECT_GE(splitter->sizes().value(1), 320);
    EXPECT_GE(splitter->sizes().value(2), 220);
    EXPECT_EQ(splitter->widget(2)->maximumWidth(), 520);
}

TEST_F(MainWindowTest, CommandsAreEnabledByTheSelectionTheFocusAndTheTabs)
{
    const auto disabled = [this] {
        QStringList names;
        for (const char *name : {"Undo", "Redo", "Copy", "Duplicate", "Remove", "Delete from Library", "Quick Look",
                                 "Open", "Close Tab", "Reopen Closed Tab"}) {
            if (!isEnabled(name)) {
                names.append(QLatin1StringView(name));
            }
        }
        if (!menuOf("Rating").menuAction()->isEnabled()) {
            names.append(QStringLiteral("Rating"));
        }
        return names.join(u',');
    };
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Copy,Duplicate,Delete from Library,Quick Look,Open,Close Tab,"
                                         "Reopen Closed Tab,Rating"));
    select({QStringLiteral("red")});
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Close Tab,Reopen Closed Tab"));
    search().setFocus();
    EXPECT_EQ(disabled(), QStringLiteral("Remove,Delete from Library,Close Tab,Reopen Closed Tab"));
    grid().setFocus();
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Close Tab,Reopen Closed Tab"));

    const auto text = [this](const char *name) { return controller->commandNamed(QLatin1StringView(name))->text(); };
    press(Qt::Key_3);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 3);
    EXPECT_EQ(disabled(), QStringLiteral("Redo,Close Tab,Reopen Closed Tab"));
    EXPECT_EQ(text("Undo"), QStringLiteral("Undo rate"));
    EXPECT_EQ(text("Redo"), QStringLiteral("Redo"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 0);
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Close Tab,Reopen Closed Tab"));
    EXPECT_EQ(text("Undo"), QStringLiteral("Undo"));
    EXPECT_EQ(text("Redo"), QStringLiteral("Redo rate"));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 3);
    run("New Tab");
    settle();
    EXPECT_EQ(disabled(), QStringLiteral("Redo,Copy,Duplicate,Delete from Library,Quick Look,Open,Reopen Closed "
                                         "Tab,Rating"));
    run("Close Tab");
    EXPECT_TRUE(isEnabled("Reopen Closed Tab"));
    EXPECT_FALSE(isEnabled("Close Tab"));

    whenAsked([&](Sheet &) {
        EXPECT_FALSE(isEnabled("New Tab")) << "commands rest while something is asked";
        search().setFocus();
        EXPECT_FALSE(isEnabled("Copy"));
        QTest::keyClick(&window(), Qt::Key_T, Qt::ControlModifier);
        for (Sheet *sheet : window().findChildren<Sheet *>()) {
            QTest::keyClick(sheet, Qt::Key_Return);
        }
    });
    run("Keyboard");
    EXPECT_TRUE(isEnabled("New Tab"));
    EXPECT_EQ(strip().count(), 1);
}

TEST_F(MainWindowTest, TypingIsTakenBackInItsFieldBeforeTheStepsOfTheWindow)
{
    select({QStringLiteral("red")});
    press(Qt::Key_4);
    press(Qt::Key_F, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), &search());
    type(QStringLiteral("3"));
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 4) << "a digit is a digit there";
    run("Undo");
    EXPECT_EQ(search().text(), QString());
    run("Redo");
    EXPECT_EQ(search().text(), QStringLiteral("3"));
    run("Undo");
    run("Undo");
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 0);
    search().setText({}); // and nothing to do again there
    run("Redo");
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 4);
    search().setText(QStringLiteral("word"));
    run("Select All");
    EXPECT_EQ(search().selectedText(), QStringLiteral("word"));
    run("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("word"));
    search().clear();
    run("Paste");
    EXPECT_EQ(search().text(), QStringLiteral("word"));
}

TEST_F(MainWindowTest, TheSearchFieldFiltersAndGivesTheFocusBack)
{
    search().setText(QStringLiteral("red"));
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(search().selectedText(), QStringLiteral("red"));
    type(QStringLiteral(" E "));
    settle();
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("red"), QStringLiteral("clear"), QStringLiteral("pages")}));
    press(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_EQ(search().text(), QStringLiteral(" E "));
    search().setFocus();
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_EQ(search().text(), QString());
    settle();
    EXPECT_EQ(shown().size(), 4);
}

TEST_F(MainWindowTest, TabsKeepWhatTheyShow)
{
    EXPECT_EQ(tabs(), QStringLiteral("A 0/1"));
    EXPECT_EQ(window().windowTitle(), QStringLiteral("A — Zelto"));
    press(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(tabs(), QStringLiteral("A 1/2"));
    show(b);
    EXPECT_EQ(tabs(), QStringLiteral("B 1/2"));
    EXPECT_EQ(window().windowTitle(), QStringLiteral("B — Zelto"));
    search().setText(QStringLiteral("x"));
    struct Step
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char *tabs;
    };
    for (const Step &each : {Step{Qt::Key_Tab, Qt::ControlModifier, "A 0/2"},
                             {Qt::Key_Tab, Qt::ControlModifier, "B 1/2"},
                             {Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier, "A 0/2"},
                             {Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier, "B 1/2"},
                             {Qt::Key_1, Qt::ControlModifier, "A 0/2"},
                             {Qt::Key_1, Qt::ControlModifier, "A 0/2"},
                             {Qt::Key_3, Qt::ControlModifier, "A 0/2"},
                             {Qt::Key_2, Qt::ControlModifier, "B 1/2"}}) {
        press(each.key, each.modifiers);
        EXPECT_EQ(tabs(), QLatin1StringView(each.tabs)) << int(each.key);
        const bool isFirst = strip().currentIndex() == 0;
        EXPECT_EQ(search().text(), isFirst ? QString() : QStringLiteral("x"));
        EXPECT_EQ(browser().content().filter(), search().text());
        EXPECT_EQ(sidebar().selectedItems(), QList<ZQObjectID>{(isFirst ? a : b)->objectID()});
        EXPECT_EQ(browser().sidebarItems(), sidebar().selectedItems());
    }
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(tabs(), QStringLiteral("A 0/1"));
    Q_EMIT strip().closeRequested(0);
    EXPECT_EQ(strip().count(), 1) << "the last one stays";
    press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs(), QStringLiteral("B 1/2"));
    EXPECT_EQ(search().text(), QStringLiteral("x"));
    sidebar().selectItems({a->objectID(), b->objectID()});
    EXPECT_EQ(tabs(), QStringLiteral("2 items selected 1/2"));
    EXPECT_EQ(browser().title(), QStringLiteral("2 items selected"));
    a->setTitle(QStringLiteral("Renamed"));
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] {
        strip().setFocus();
        press(Qt::Key_Left);
        return tabs() == QStringLiteral("Renamed 0/2");
    }));
    press(Qt::Key_F5);
    press(Qt::Key_Right);
    EXPECT_EQ(strip().currentIndex(), 1);
}

TEST_F(MainWindowTest, ATabThatGoesLeavesItsNeighbourInItsPlace)
{
    const QList<Item> items = {a, b, inner};
    struct Case
    {
        int current;
        int closed;
        const char *after;
    };
    for (const Case &each : {Case{1, 0, "B 0/2"},
                             {1, 1, "Inner 1/2"},
                             {1, 2, "B 1/2"},
                             {2, 2, "B 1/2"},
                             {2, 0, "Inner 1/2"},
                             {0, 0, "B 0/2"},
                             {0, 1, "A 0/2"},
                             {1, -1, "B 1/3"},
                             {1, 3, "B 1/3"}}) {
        while (strip().count() > 1) {
            run("Close Tab");
        }
        sidebar().selectItems({a->objectID()});
        for (const Item &item : {b, inner}) {
            run("New Tab");
            sidebar().selectItems({item->objectID()});
        }
        Q_EMIT strip().currentChanged(each.current);
        Q_EMIT strip().closeRequested(each.closed);
        EXPECT_EQ(tabs(), QLatin1StringView(each.after)) << each.current << " without " << each.closed;
        EXPECT_EQ(browser().title(), strip().accessibleDescription());
    }
    Q_EMIT strip().currentChanged(3);
    Q_EMIT strip().currentChanged(-1);
    EXPECT_EQ(tabs(), QStringLiteral("B 1/3"));
    Q_EMIT strip().moved(1, 2);
    EXPECT_EQ(tabs(), QStringLiteral("B 2/3"));
    Q_EMIT strip().currentChanged(1);
    EXPECT_EQ(tabs(), QStringLiteral("Inner 1/3"));
    Q_EMIT strip().newRequested();
    EXPECT_EQ(tabs(), QStringLiteral("Inner 2/4"));
}

TEST_F(MainWindowTest, TheNextWindowIsAsThisOneWasLeft)
{
    EXPECT_EQ(window().size(), QSize(1280, 800)) << "nothing was kept yet";
    run("New Tab");
    sidebar().selectItems({b->objectID(), inner->objectID()});
    search().setText(QStringLiteral("e"));
    run("New Tab");
    sidebar().selectItems({inner->objectID()});
    press(Qt::Key_1, Qt::ControlModifier);
    browser().changeZoom(0.25);
    press(Qt::Key_2, Qt::ControlModifier);
    window().resize(1000, 700);
    auto *splitter = window().findChild<QSplitter *>();
    splitter->setSizes({200, 500, 300});
    const QList<int> sizes = splitter->sizes();
    run("Sidebar");
    run("Info Panel");
    EXPECT_FALSE(sidebar().isVisible());
    inner->deleteSelf();
    delegate->saveAction();
    closeWindow();
    openWindow();
    EXPECT_EQ(window().size(), QSize(1000, 700));
    EXPECT_FALSE(sidebar().isVisible());
    EXPECT_FALSE(controller->commandNamed(QStringLiteral("Sidebar"))->isChecked());
    EXPECT_FALSE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    EXPECT_FALSE(named<QToolButton>("Info Panel (Ctrl+Shift+I)")->isChecked());
    EXPECT_EQ(window().findChild<QSplitter *>()->handleWidth(), 1);
    EXPECT_EQ(tabs(), QStringLiteral("B 1/2")) << "what is gone is left out";
    EXPECT_EQ(search().text(), QStringLiteral("e"));
    EXPECT_EQ(browser().content().filter(), QStringLiteral("e"));
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    run("Sidebar");
    run("Info Panel");
    EXPECT_TRUE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    EXPECT_TRUE(named<QToolButton>("Info Panel (Ctrl+Shift+I)")->isChecked());
    QApplication::processEvents();
    EXPECT_EQ(window().findChild<QSplitter *>()->sizes(), sizes);
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_NEAR(grid().zoom(), 0.695, 1e-6);
    EXPECT_EQ(named<QSlider>("Thumbnail size")->value(), 694);
    closeWindow();

    ZQUserDefaults::standardUserDefaults().setObjectForKey(99, QStringLiteral("SelectedTab"));
    openWindow();
    EXPECT_EQ(tabs(), QStringLiteral("B 1/2"));
    EXPECT_TRUE(sidebar().isVisible());
    closeWindow();
    ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("OpenTabs"));
    openWindow();
    EXPECT_EQ(tabs(), QStringLiteral("Library 0/1"));
}

TEST_F(MainWindowTest, ButtonsAndCommandsOfTheViewAgree)
{
    const auto isDark = [] { return ZQTheme::current().isDark(); };
    const bool wasDark = isDark();
    run("Dark Theme");
    EXPECT_NE(isDark(), wasDark);
    EXPECT_EQ(controller->commandNamed(QStringLiteral("Dark Theme"))->isChecked(), isDark());
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("UseDarkUI")), isDark());
    ZQTheme::current().setDark(wasDark);
    MainWindowController::applyTheme();
    EXPECT_NE(isDark(), wasDark) << "as was chosen";
    run("Dark Theme");
    EXPECT_EQ(isDark(), wasDark);

    named<QToolButton>("Sidebar (Ctrl+B)")->click();
    EXPECT_FALSE(sidebar().isVisible());
    EXPECT_FALSE(controller->commandNamed(QStringLiteral("Sidebar"))->isChecked());
    press(Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(sidebar().isVisible());
    EXPECT_TRUE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    named<QToolButton>("Info Panel (Ctrl+Shift+I)")->click();
    EXPECT_FALSE(controller->commandNamed(QStringLiteral("Info Panel"))->isChecked());
    select({QStringLiteral("red")});
    press(Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    EXPECT_EQ(named<QLineEdit>("Title")->text(), QStringLiteral("red"));

    auto *slider = named<QSlider>("Thumbnail size");
    EXPECT_EQ(slider->maximum(), 1000);
    EXPECT_EQ(slider->singleStep(), 40);
    EXPECT_EQ(slider->pageStep(), 100);
    slider->setValue(500);
    EXPECT_NEAR(grid().zoom(), 0.5, 1e-6);
    struct Step
    {
        Qt::Key key;
        double zoom;
        int value;
    };
    for (const Step &each : {Step{Qt::Key_Plus, 0.58, 580}, {Qt::Key_Equal, 0.66, 660}, {Qt::Key_Minus, 0.58, 580}}) {
        press(each.key, Qt::ControlModifier);
        EXPECT_NEAR(grid().zoom(), each.zoom, 1e-6);
        EXPECT_NEAR(slider->value(), each.value, 1);
    }
    show(b);
    EXPECT_NEAR(grid().zoom(), 0.445, 1e-6);
    EXPECT_EQ(slider->value(), 444);
    show(a);
    EXPECT_NEAR(grid().zoom(), 0.58, 1e-6) << "each keeps its own";
    press(Qt::Key_F11);
    EXPECT_TRUE(window().isFullScreen());
    press(Qt::Key_F11);
    EXPECT_FALSE(window().isFullScreen());
}

TEST_F(MainWindowTest, ImportsGoWhereTheShownTakesThem)
{
    QDir().mkpath(world.filePath(QStringLiteral("more")));
    int number = 0;
    const auto red = ZQSidebarTag::tagForColor(1003, context());
    delegate->saveAction();
    const Item libraryItem = special(ZQSidebarKind::Library);
    struct Case
    {
        const char *what;
        QList<Item> shown;
        Item target;
    };
    for (const Case &each : {Case{"a project", {b}, b},
                             {"a tag", {tag}, tag},
                             {"a measured tag", {red}, {}},
                             {"Recent", {special(ZQSidebarKind::Recent)}, {}},
                             {"a folder", {folder}, {}},
                             {"two projects", {a, b}, {}},
                             {"Library", {libraryItem}, {}}}) {
        QList<ZQObjectID> ids;
        for (const Item &item : each.shown) {
            ids.append(item->objectID());
        }
        sidebar().selectItems(ids);
        const QString name = QStringLiteral("n%1").arg(++number);
        const QString path = world.filePath(QStringLiteral("more/%1.png").arg(name));
        QImage picture(4, 4 + number, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        ASSERT_TRUE(picture.save(path));
        person.files = {path};
        press(Qt::Key_I, Qt::ControlModifier);
        settle();
        const auto made = image(name);
        ASSERT_TRUE(made) << each.what;
        EXPECT_EQ(bool(each.target), b->containsItem(made.get()) || tag->containsItem(made.get())) << each.what;
        EXPECT_TRUE(!each.target || each.target->containsItem(made.get())) << each.what;
        EXPECT_FALSE(a->containsItem(made.get())) << each.what;
    }
    EXPECT_EQ(person.choices.last().title, QStringLiteral("Import"));
    EXPECT_EQ(person.choices.last().prompt, QStringLiteral("Import"));
    EXPECT_TRUE(person.choices.last().several);
    EXPECT_TRUE(person.choices.last().extensions.contains(QStringLiteral("png")));
    person.files.clear();
    named<QToolButton>("Import… (Ctrl+I)")->click();
    EXPECT_EQ(delegate->backgroundOperationQueue().operationCount(), 0) << "cancelled";
    EXPECT_EQ(person.choices.size(), 8);
}

TEST_F(MainWindowTest, TheClipboardCarriesItemsFilesAndPictures)
{
    select({QStringLiteral("clear")});
    browser().grid().viewport()->grab();
    ASSERT_TRUE(waitFor([this] { return grid().thumbnailLoader().pendingCount() == 0; }));
    grid().thumbnailLoader().image(BrowserContent::thumbnailOf(*image(QStringLiteral("clear"))), 1024);
    ASSERT_TRUE(waitFor([this] { return grid().thumbnailLoader().pendingCount() == 0; }));
    press(Qt::Key_C, Qt::ControlModifier);
    const QMimeData *one = QApplication::clipboard()->mimeData();
    ASSERT_EQ(one->urls().size(), 1);
    EXPECT_EQ(one->urls().first().toLocalFile(), image(QStringLiteral("clear"))->itemURL());
    EXPECT_FALSE(one->imageData().value<QImage>().isNull());
    EXPECT_FALSE(one->data(BrowserContent::itemsMimeType).isEmpty());
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selected().size(), 4);
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->mimeData()->urls().size(), 4);
    EXPECT_FALSE(QApplication::clipboard()->mimeData()->hasImage());

    show(b);
    browser().copyToClipboard();
    EXPECT_EQ(QApplication::clipboard()->mimeData()->urls().size(), 4) << "nothing was selected";
    QApplication::clipboard()->setText(QStringLiteral("words"));
    press(Qt::Key_V, Qt::ControlModifier);
    settle();
    EXPECT_EQ(b->numberOfItems(), 0);
    EXPECT_TRUE(named("There is no picture or file on the clipboard"));
    QImage drawn(7, 9, QImage::Format_RGB32);
    drawn.fill(Qt::darkCyan);
    QByteArray png;
    QBuffer buffer(&png);
    ASSERT_TRUE(drawn.save(&buffer, "PNG"));
    auto *copied = new QMimeData;
    copied->setData(QStringLiteral("image/png"), png);
    QApplication::clipboard()->setMimeData(copied);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([this] {
        settle();
        return b->numberOfItems() == 1 && shown().size() == 1;
    }));
}

TEST_F(MainWindowTest, TheMenuOfTheGridIsThatOfWhatIsSelected)
{
    const auto menuAt = [this](const QString &choose = {}) {
        menu.clear();
        whenMenuOpens(choose);
        Q_EMIT grid().contextMenuRequested(window().mapToGlobal(QPoint(400, 300)));
        return menu;
    };
    EXPECT_EQ(menuAt(), QStringLiteral("Import…|Paste|Select All"));
    select({QStringLiteral("red")});
    EXPECT_EQ(menuAt(), QStringLiteral("Open|Open with Default Program|Show in Files|-|Copy|Duplicate|Rename|Rating|-|"
                                       "Remove from A|Delete from Library"));
    menuAt(QStringLiteral("Remove from A"));
    settle();
    EXPECT_EQ(shown().size(), 3);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("clear")});
    run("Undo");
    settle();
    show(special(ZQSidebarKind::Library));
    select({QStringLiteral("red")});
    EXPECT_FALSE(menuAt().contains(QStringLiteral("Remove from")));
    menuAt(QStringLiteral("Delete from Library"));
    settle();
    EXPECT_EQ(shown().size(), 3);
    EXPECT_EQ(image(QStringLiteral("red"))->active(), false);
    run("Undo");
    settle();
    select({QStringLiteral("red")});
    menuAt(QStringLiteral("Duplicate"));
    settle();
    EXPECT_EQ(shown().size(), 5);
    run("Undo");
    settle();
}

TEST_F(MainWindowTest, RenameAndRemoveMeanWhatHasTheFocus)
{
    run("Info Panel");
    select({QStringLiteral("red")});
    press(Qt::Key_F2);
    auto *title = named<QLineEdit>("Title");
    ASSERT_TRUE(title) << "the panel is shown for it";
    EXPECT_EQ(QApplication::focusWidget(), title);
    EXPECT_EQ(title->selectedText(), QStringLiteral("red"));
    type(QStringLiteral("crimson"));
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_TRUE(image(QStringLiteral("crimson")));
    EXPECT_EQ(a->numberOfItems(), 4) << "in a field Delete deletes text";
    select({QStringLiteral("crimson"), QStringLiteral("clear")});
    grid().setFocus();
    press(Qt::Key_F2);
    EXPECT_EQ(QApplication::focusWidget(), &grid()) << "one title at a time";

    press(Qt::Key_Delete);
    settle();
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("pages"), QStringLiteral("moving")}));
    EXPECT_EQ(selected(), QStringList{QStringLiteral("pages")});
    run("Delete from Library");
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("moving")});
    EXPECT_FALSE(image(QStringLiteral("pages"))->active());

    tree()->setFocus();
    press(Qt::Key_F2);
    ASSERT_TRUE(sidebar().isEditing());
    type(QStringLiteral("New name"));
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return tabs() == QStringLiteral("New name 0/1"); }));
    for (const Qt::Key answer : {Qt::Key_Escape, Qt::Key_Return}) {
        tree()->setFocus();
        whenAsked([&](Sheet &) { press(answer); });
        press(Qt::Key_Delete);
        settle();
        EXPECT_EQ(a->active(), answer == Qt::Key_Escape);
    }
    EXPECT_EQ(tabs(), QStringLiteral("B 0/1"));
}

TEST_F(MainWindowTest, WhatTheStoreBringsIsShown)
{
    const auto badge = [this](const Item &item) {
        return tree()->tree()->indexOf(item->objectID()).data(SidebarTreeModel::CountRole).toString();
    };
    EXPECT_TRUE(waitFor([&] { return badge(a) == QStringLiteral("4"); }));
    a->addItem(ZQLibraryBaseItem::duplicatesOf({image(QStringLiteral("red"))}).first().get());
    delegate->saveAction();
    EXPECT_TRUE(waitFor([&] { return badge(a) == QStringLiteral("5") && shown().size() == 5; }));
    const Item added = add<ZQSidebarProject>(QStringLiteral("Added"), projects);
    delegate->saveAction();
    EXPECT_TRUE(waitFor([&] { return tree()->tree()->indexOf(added->objectID()).isValid(); }));
    added->deletePermanently();
    delegate->saveAction();
    EXPECT_TRUE(waitFor([&] { return tree()->tree()->rowCount(tree()->tree()->indexOf(projects->objectID())) == 3; }));
    select({QStringLiteral("clear")});
    image(QStringLiteral("clear"))->setNotes(QStringLiteral("said"));
    delegate->saveAction();
    EXPECT_TRUE(
        waitFor([&] { return window().findChild<QPlainTextEdit *>()->toPlainText() == QStringLiteral("said"); }));
    b->setTitle(QStringLiteral("Bee"));
    controller->updateLocalization();
    run("New Tab");
    sidebar().selectItems({b->objectID()});
    EXPECT_EQ(tabs(), QStringLiteral("Bee 1/2"));
}

TEST_F(MainWindowTest, TheApplicationFindsAndAsksTheWindow)
{
    EXPECT_TRUE(controller->isVisible());
    window().showMinimized();
    EXPECT_TRUE(controller->isMiniaturized());
    controller->deminiaturize();
    EXPECT_FALSE(controller->isMiniaturized());
    window().hide();
    EXPECT_FALSE(controller->isVisible());
    controller->makeKeyAndOrderFront();
    EXPECT_TRUE(controller->isVisible());
    controller->activateIgnoringOtherApps();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    controller->newFileFromTemplate();
    EXPECT_TRUE(named("The template was added"));
    controller->selectSidebarItem(b->objectID());
    EXPECT_EQ(tabs(), QStringLiteral("B 0/1"));
    show(a);
    select({QStringLiteral("red")});
    named<QLineEdit>("Title")->setText(QStringLiteral("scarlet"));
    EXPECT_TRUE(controller->commitEditing());
    EXPECT_TRUE(image(QStringLiteral("scarlet")));

    for (const bool byKey : {false, true}) {
        ZQUserDefaults::standardUserDefaults().removeObjectForKey(QStringLiteral("RecentTags"));
        QTimer::singleShot(0, &window(),
                           [&] { byKey ? press(Qt::Key_Q, Qt::ControlModifier) : void(window().close()); });
        EXPECT_EQ(QApplication::exec(), 0) << "closing it quits";
        EXPECT_TRUE(controller->isVisible()) << "and leaves it to the application when it goes";
    }
    window().findChild<QWidget *>(QStringLiteral("Search"))->setFocus();
    controller.reset();
    EXPECT_EQ(person.chooseFilesToOpen({}), QStringList());
}

TEST_F(MainWindowTest, ASnapshotShowsWhatItIsAskedFor)
{
    closeWindow();
    const auto draw = [](SnapshotOptions options) {
        QImage drawn;
        ZQError error;
        EXPECT_TRUE(MainWindowController::renderSnapshot(options, &drawn, &error))
            << qPrintable(error.localizedDescription());
        return drawn;
    };
    const bool wasDark = ZQTheme::current().isDark();
    SnapshotOptions options;
    options.size = {1000, 700};
    options.select = QStringLiteral("A");
    options.selectItem = QStringLiteral("red");
    options.dark = false;
    const QImage light = draw(options);
    EXPECT_EQ(light.size(), QSize(1000, 700));
    EXPECT_EQ(light.devicePixelRatio(), 1);
    EXPECT_EQ(ZQTheme::current().isDark(), wasDark);
    EXPECT_GT(light.pixelColor(600, 650).lightness(), 200);
    options.dark = true;
    EXPECT_LT(draw(options).pixelColor(600, 650).lightness(), 60);
    options.dark = false;
    options.infoPanel = false;
    EXPECT_NE(draw(options), light);
    options.infoPanel = true;
    options.selectItem.clear();
    EXPECT_NE(draw(options), light) << "nothing selected";
    options.select = a->UUID();
    options.selectItem = QStringLiteral("red");
    EXPECT_EQ(draw(options), light) << "by its identifier";
    options.scale = 2;
    const QImage twice = draw(options);
    EXPECT_EQ(twice.size(), QSize(2000, 1400));
    EXPECT_GT(twice.pixelColor(1200, 1300).lightness(), 200);
    EXPECT_EQ(twice.devicePixelRatio(), 1);

    const auto reasonFor = [](const SnapshotOptions &asked) {
        QImage drawn;
        ZQError error;
        EXPECT_FALSE(MainWindowController::renderSnapshot(asked, &drawn, &error));
        EXPECT_TRUE(drawn.isNull());
        return error.code;
    };
    options.select = QStringLiteral("No such");
    EXPECT_EQ(reasonFor(options), 2);
    options.select.clear();
    options.selectItem = QStringLiteral("No such");
    EXPECT_EQ(reasonFor(options), 2);
    for (Item *item : {&projects, &a, &b, &folder, &inner, &tag}) {
        *item = {};
    }
    delegate.reset();
    EXPECT_EQ(reasonFor(options), 1);
    MainWindowController::prepareSnapshotScale(1.5);
    EXPECT_EQ(qgetenv("QT_SCALE_FACTOR"), "1.5");
    EXPECT_EQ(qgetenv("QT_SCALE_FACTOR_ROUNDING_POLICY"), "PassThrough");
    qunsetenv("QT_SCALE_FACTOR");
    qunsetenv("QT_SCALE_FACTOR_ROUNDING_POLICY");
}

TEST_F(MainWindowTest, TheBrowserSaysWhatItShowsAndInWhichOrder)
{
    const auto says = [this] {
        QStringList texts;
        for (const QLabel *label : browser().findChildren<QLabel *>()) {
            if (label->isVisible() && !label->text().isEmpty()) {
                texts.append(label->text());
            }
        }
        return texts.join(u'|').toStdString();
    };
    const auto order = [this] { return shown().join(u' ').toStdString(); };
    EXPECT_EQ(says(), "A|4 items|Sort|4 items");
    select({QStringLiteral("red"), QStringLiteral("pages")});
    EXPECT_EQ(says(), "A|4 items|Sort|2 of 4 selected");
    EXPECT_FALSE(named("Ascending") || named("Descending")) << "by hand there is one order";

    whenMenuOpens(QStringLiteral("Title"));
    named<QToolButton>("Sort: Manual order")->click();
    EXPECT_EQ(menu.toStdString(), "Manual order|Import date|Title|Size|Color|Modification date|Creation date");
    settle();
    ASSERT_TRUE(named<QToolButton>("Sort: Title"));
    EXPECT_EQ(named<QToolButton>("Sort: Title")->text(), QStringLiteral("Title"));
    EXPECT_EQ(selected().size(), 2) << "what was selected stays so";
    EXPECT_FALSE(context().hasChanges());
    const bool isAscending = a->sortDirection();
    const char *const up = "clear moving pages red";
    const char *const down = "red pages moving clear";
    EXPECT_EQ(order(), isAscending ? up : down);
    named<QToolButton>(isAscending ? "Ascending" : "Descending")->click();
    settle();
    EXPECT_EQ(order(), isAscending ? down : up);
    EXPECT_TRUE(named<QToolButton>(isAscending ? "Descending" : "Ascending"));
    EXPECT_NE(a->sortDirection(), isAscending);

    grid().setFocus();
    type(QStringLiteral("mov"));
    EXPECT_TRUE(waitFor([this] { return selected() == QStringList{QStringLiteral("moving")}; }));

    show(b);
    EXPECT_EQ(says(), "B|0 items|Sort|0 items");
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("Drop images here, or press Ctrl+I"));
    b->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    settle();
    EXPECT_EQ(says(), "B|1 item|Sort|1 item");
    show(folder);
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("The projects of this folder are empty."));
    inner->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    settle();
    ASSERT_EQ(browser().content().groups().size(), 1);
    EXPECT_EQ(browser().content().groups().first().title, QStringLiteral("Inner"));
    sidebar().selectItems({a->objectID(), b->objectID()});
    settle();
    EXPECT_EQ(says(), "2 items selected|5 items|5 items");
    EXPECT_EQ(browser().content().groups().size(), 2);
    EXPECT_FALSE(browser().content().sortAscending());
    show(special(ZQSidebarKind::Recent));
    qint64 count = 0;
    for (const ZQGridGroup &group : browser().content().groups()) {
        count += group.count;
    }
    EXPECT_EQ(count, 4) << "each in one group only";
    search().setText(QStringLiteral("nothing has this"));
    settle();
    EXPECT_TRUE(browser().content().emptyText().startsWith(QStringLiteral("No title contains \"nothing has this\".")));
    search().clear();
    show(special(ZQSidebarKind::Library));
    whenMenuOpens(QStringLiteral("Size"));
    for (QToolButton *button : browser().findChildren<QToolButton *>(QStringLiteral("Pop"))) {
        if (button->isVisible()) {
            button->click();
        }
    }
    EXPECT_EQ(menu.toStdString(), "Import date|Title|Size|Color|Modification date|Creation date");
    settle();
    EXPECT_TRUE(named("Sort: Size"));
    browser().content().setSidebarItems({});
    EXPECT_EQ(browser().content().emptyText(), QString()) << "not before it is known";
    EXPECT_TRUE(waitFor([this] { return !browser().content().isLoading(); }));
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("Select something in the sidebar."));
}
