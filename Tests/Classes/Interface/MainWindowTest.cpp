// Commands, tabs, and what is there again the next time.

#include "Tests/Classes/Interface/MainWindowTest.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QClipboard>
#include <QFile>
#include <QLabel>
#include <QSlider>
#include <QSplitter>
#include <QToolButton>

TEST_F(MainWindowTest, TheMenuHoldsTheCommandsWithTheirKeys)
{
    EXPECT_EQ(commandsOf(menuOf("File")),
              QStringLiteral(
                  "New Project Ctrl+N\nNew Folder Ctrl+Shift+N\nNew Tag\nNew from Template… Ctrl+Alt+N\nAdd "
                  "Live Folder…\nLive "
                  "Folder\n-\nImport… Ctrl+I\nLast Import Ctrl+Alt+I\nTake Screenshot\nQuick Export Ctrl+E ✓\nExport\n"
                  "Export as Layered PSD…\nShare Ctrl+Shift+C\nLatest Uploads…\n-\n"
                  "New Tab Ctrl+T\nClose Tab Ctrl+W\nReopen Closed Tab Ctrl+Shift+T\n-\nNew Library…\n"
                  "Open Library…\nMove Library…\nShow Library in Files\n"
                  "Back Up Library…\nVerify Library…\nLibrary Statistics…\n-\nQuit Ctrl+Q"));
    EXPECT_EQ(
        commandsOf(menuOf("Edit")),
        QStringLiteral(
            "Undo Ctrl+Z\nRedo Ctrl+Shift+Z\n-\nCopy Ctrl+C\nPaste Ctrl+V\nSelect All Ctrl+A\n-\n"
            "Rename F2\nDuplicate Ctrl+D\nRemove Del\nDelete from Library Ctrl+Del\n-\nRating\n-\n"
            "Find Ctrl+F\nFind Similar Ctrl+Shift+F\nFind Near-Duplicates…\nFind Color…\nSave Search… Ctrl+S\nEdit "
            "Search…\nUpdate Search "
            "Ctrl+Shift+S\n-\nPreferences… "
            "Ctrl+,"));
    EXPECT_EQ(
        commandsOf(menuOf("View")),
        QStringLiteral("Sidebar Ctrl+B ✓\nInfo Panel Ctrl+Shift+I ✓\nRefine Bar Ctrl+Alt+F ✓\n-\nAs Grid Ctrl+Alt+1 ✓\n"
                       "As List Ctrl+Alt+2 ✓\n-\nGroup\nSort\n-\nLarger Thumbnails Ctrl++ Ctrl+=\n"
                       "Smaller Thumbnails Ctrl+-\n-\nQuick Look\tSpace\nOpen\tEnter\nCompare Ctrl+K ✓\nFit "
                       "Ctrl+0\nActual Size Z\n"
                       "Zoom In + =\nZoom Out -\n-\nNext Tab Ctrl+Tab\nPrevious Tab Ctrl+Shift+Tab\nGo to Tab\n-\n"
                       "Full Screen F11\nDark Theme ✓"));
    EXPECT_TRUE(commandsOf(menuOf("Go to Tab")).startsWith(QStringLiteral("Tab 1 Ctrl+1\nTab 2 Ctrl+2\n")));
    EXPECT_EQ(commandsOf(menuOf("Help")), QStringLiteral("Keyboard F1\n-\nCheck for Updates..."));
    EXPECT_EQ(commandsOf(menuOf("Rating")),
              QStringLiteral("No rating 0\n1 Star 1\n2 Stars 2\n3 Stars 3\n4 Stars 4\n5 Stars 5"));
    whenMenuOpens();
    press(Qt::Key_F10);
    EXPECT_EQ(menu, QStringLiteral("File|Edit|View|Help"));
}

TEST_F(MainWindowTest, TheKeysAreListedBelowEachOther)
{
    QMap<int, QMap<int, QString>> columns; // by their left edge, from the top
    QStringList titles;
    whenAsked([&](Sheet &sheet) {
        EXPECT_EQ(sheet.accessibleName(), QStringLiteral("Keyboard"));
        for (const QLabel *label : sheet.findChildren<QLabel *>()) {
            if (label->objectName() == QStringLiteral("Keys")) {
                columns[label->x()].insert(label->y(), label->text());
                const auto *what = qobject_cast<QLabel *>(label->buddy());
                EXPECT_EQ(what->y() + what->height() / 2, label->y() + label->height() / 2);
                titles.append(what->text());
            }
        }
        EXPECT_LE(sheet.height(), window().height());
        press(Qt::Key_Return);
    });
    press(Qt::Key_F1);
    ASSERT_EQ(columns.size(), 3);
    EXPECT_EQ(columns.first().first(), QStringLiteral("Ctrl+N"));
    EXPECT_EQ(titles.first(), QStringLiteral("New Project"));
    for (const char *title :
         {"Quick Look", "Open", "Preferences…", "Tab 9", "3 Stars", "No rating", "Back, or clear the search"}) {
        EXPECT_TRUE(titles.contains(QString::fromUtf8(title))) << title;
    }
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
                                {"Quick Export (Ctrl+E)", {30, 28}},
                                {"Share (Ctrl+Shift+C)", {30, 28}},
                                {"Info Panel (Ctrl+Shift+I)", {30, 28}},
                                {"Search", {320, 30}},
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
        using enum CommandID;
        for (const auto &[id, name] : {std::pair{Undo, "Undo"},
                                       {Redo, "Redo"},
                                       {Copy, "Copy"},
                                       {Duplicate, "Duplicate"},
                                       {CommandID::Remove, "Remove"},
                                       {DeleteFromLibrary, "Delete from Library"},
                                       {QuickLook, "Quick Look"},
                                       {Open, "Open"},
                                       {CloseTab, "Close Tab"},
                                       {ReopenClosedTab, "Reopen Closed Tab"}}) {
            if (!isEnabled(id)) {
                names.append(QLatin1StringView(name));
            }
        }
        if (!menuOf("Rating").menuAction()->isEnabled()) {
            names.append(QStringLiteral("Rating"));
        }
        return names.join(u',');
    };
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Copy,Duplicate,Remove,Delete from Library,Quick Look,Open,Close "
                                         "Tab,Reopen Closed Tab,Rating"));
    select({QStringLiteral("red")});
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Close Tab,Reopen Closed Tab"));
    search().setFocus();
    EXPECT_EQ(disabled(), QStringLiteral("Duplicate,Remove,Delete from Library,Close Tab,Reopen Closed Tab"));
    grid().setFocus();
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Redo,Close Tab,Reopen Closed Tab"));

    const auto text = [this](CommandID id) { return controller->command(id)->text(); };
    press(Qt::Key_3);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 3);
    EXPECT_EQ(disabled(), QStringLiteral("Redo,Close Tab,Reopen Closed Tab"));
    EXPECT_EQ(text(CommandID::Undo), QStringLiteral("Undo rate"));
    EXPECT_EQ(text(CommandID::Redo), QStringLiteral("Redo"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 0);
    EXPECT_EQ(disabled(), QStringLiteral("Undo,Close Tab,Reopen Closed Tab"));
    EXPECT_EQ(text(CommandID::Undo), QStringLiteral("Undo"));
    EXPECT_EQ(text(CommandID::Redo), QStringLiteral("Redo rate"));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 3);
    run(CommandID::NewTab);
    settle();
    EXPECT_EQ(disabled(), QStringLiteral("Redo,Copy,Duplicate,Remove,Delete from Library,Quick Look,Open,Reopen "
                                         "Closed Tab,Rating"));
    show(special(ZQSidebarKind::Library));
    select({QStringLiteral("red")});
    EXPECT_EQ(disabled(), QStringLiteral("Redo,Remove,Reopen Closed Tab")) << "the library does not give items away";
    run(CommandID::CloseTab);
    EXPECT_TRUE(isEnabled(CommandID::ReopenClosedTab));
    EXPECT_FALSE(isEnabled(CommandID::CloseTab));

    whenAsked([&](Sheet &) {
        EXPECT_FALSE(isEnabled(CommandID::NewTab)) << "commands rest while something is asked";
        search().setFocus();
        EXPECT_FALSE(isEnabled(CommandID::Copy));
        QTest::keyClick(&window(), Qt::Key_T, Qt::ControlModifier);
        for (Sheet *sheet : window().findChildren<Sheet *>()) {
            QTest::keyClick(sheet, Qt::Key_Return);
        }
    });
    run(CommandID::Keyboard);
    EXPECT_TRUE(isEnabled(CommandID::NewTab));
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
    run(CommandID::Undo);
    EXPECT_EQ(search().text(), QString());
    run(CommandID::Redo);
    EXPECT_EQ(search().text(), QStringLiteral("3"));
    run(CommandID::Undo);
    run(CommandID::Undo);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 0);
    search().setText({}); // and nothing to do again there
    run(CommandID::Redo);
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 4);
    search().setText(QStringLiteral("word"));
    run(CommandID::SelectAll);
    EXPECT_EQ(search().selectedText(), QStringLiteral("word"));
    run(CommandID::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("word"));
    search().clear();
    run(CommandID::Paste);
    EXPECT_EQ(search().text(), QStringLiteral("word"));
}

TEST_F(MainWindowTest, TheSearchFieldFiltersAndGivesTheFocusBack)
{
    search().setText(QStringLiteral("red"));
    press(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(search().selectedText(), QStringLiteral("red"));
    type(QStringLiteral(" #tt E "));
    settle();
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("red"), QStringLiteral("clear"), QStringLiteral("pages")}));
    press(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_EQ(search().text(), QStringLiteral(" #tt E "));
    search().setFocus();
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    EXPECT_EQ(search().text(), QString());
    settle();
    EXPECT_EQ(shown().size(), 4);
}

TEST_F(MainWindowTest, ADigitChoosesNothingWhereNothingIsChosen)
{
    image(QStringLiteral("pages"))->setTitle(QStringLiteral("4 pages"));
    delegate->saveAction();
    show(b);
    show(a);
    grid().setSelection({});
    grid().setFocus();
    press(Qt::Key_4);
    settle();
    EXPECT_EQ(selected(), QStringList());
}

TEST_F(MainWindowTest, APastedFolderGoesWhereADroppedOneWould)
{
    QDir().mkpath(world.filePath(QStringLiteral("in/Set")));
    QImage picture(9, 9, QImage::Format_RGB32);
    picture.fill(Qt::cyan);
    ASSERT_TRUE(picture.save(world.filePath(QStringLiteral("in/Set/one.png"))));
    auto *copied = new QMimeData;
    copied->setUrls({QUrl::fromLocalFile(world.filePath(QStringLiteral("in/Set")))});
    QApplication::clipboard()->setMimeData(copied);
    show(folder);
    grid().setFocus();
    run(CommandID::Paste);
    settle();
    EXPECT_EQ(children(folder), (QStringList{QStringLiteral("Inner"), QStringLiteral("Set")}));
}

TEST_F(MainWindowTest, WhatRecentTakesNotIsSaidToGoToTheLibrary)
{
    const auto importInto = [this](ZQSidebarKind shown, const QColor &color) {
        const QString path = world.filePath(QStringLiteral("in/") + color.name().mid(1) + QStringLiteral(".png"));
        QImage picture(12, 12, QImage::Format_RGB32);
        picture.fill(color);
        EXPECT_TRUE(picture.save(path));
        person.files = {path};
        show(special(shown));
        run(CommandID::Import);
        settle();
        return named("“Recent” does not take this: it goes to the library") != nullptr;
    };
    EXPECT_FALSE(importInto(ZQSidebarKind::Library, Qt::blue));
    EXPECT_TRUE(importInto(ZQSidebarKind::Recent, Qt::yellow));
}

TEST_F(MainWindowTest, WhatASearchUnderstoodAndWhatNotIsSaid)
{
    auto *const chips = window().findChild<QWidget *>(QStringLiteral("SearchChips"));
    ASSERT_TRUE(chips);
    EXPECT_FALSE(chips->isVisible());
    search().setFocus();
    type(QStringLiteral("clear"));
    settle();
    EXPECT_FALSE(chips->isVisible()) << "a word needs no explanation";
    type(QStringLiteral(" #foo #w>10"));
    settle();
    EXPECT_EQ(shown(), QStringList{QStringLiteral("clear")}) << "the rest still searches";
    EXPECT_TRUE(chips->isVisible());
    EXPECT_TRUE(chips->accessibleName().contains(QStringLiteral("#foo: ")));
    EXPECT_TRUE(chips->accessibleName().contains(QStringLiteral("#w>10: ")));
    const QImage drawn = chips->grab().toImage();
    bool isMarked = false;
    for (int x = 0; x < drawn.width(); ++x) {
        isMarked = isMarked || drawn.pixelColor(x, drawn.height() / 2) == zqColor(ZQColorRole::Danger);
    }
    EXPECT_TRUE(isMarked) << "the wrong one stands out";
    press(Qt::Key_Escape);
    settle();
    EXPECT_FALSE(chips->isVisible());
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
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("2 items selected"));
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
                             {1, 1, "A 0/2"}, // which it was opened from
                             {1, 2, "B 1/2"},
                             {2, 2, "B 1/2"},
                             {2, 0, "Inner 1/2"},
                             {0, 0, "B 0/2"},
                             {0, 1, "A 0/2"},
                             {1, -1, "B 1/3"},
                             {1, 3, "B 1/3"}}) {
        while (strip().count() > 1) {
            run(CommandID::CloseTab);
        }
        sidebar().selectItems({a->objectID()});
        for (const Item &item : {b, inner}) {
            run(CommandID::NewTab);
            sidebar().selectItems({item->objectID()});
        }
        Q_EMIT strip().currentChanged(each.current);
        Q_EMIT strip().closeRequested(each.closed);
        EXPECT_EQ(tabs(), QLatin1StringView(each.after)) << each.current << " without " << each.closed;
        EXPECT_EQ(browser().content().tab().tabName(), strip().accessibleDescription());
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
    run(CommandID::NewTab);
    sidebar().selectItems({b->objectID(), inner->objectID()});
    search().setText(QStringLiteral("e"));
    run(CommandID::NewTab);
    sidebar().selectItems({inner->objectID()});
    press(Qt::Key_1, Qt::ControlModifier);
    browser().changeZoom(0.25);
    press(Qt::Key_2, Qt::ControlModifier);
    window().resize(1000, 700);
    auto *splitter = window().findChild<QSplitter *>();
    splitter->setSizes({200, 500, 300});
    const QList<int> sizes = splitter->sizes();
    run(CommandID::Sidebar);
    run(CommandID::InfoPanel);
    EXPECT_FALSE(sidebar().isVisible());
    inner->deleteSelf();
    delegate->saveAction();
    closeWindow();
    openWindow();
    EXPECT_EQ(window().size(), QSize(1000, 700));
    EXPECT_FALSE(sidebar().isVisible());
    EXPECT_FALSE(controller->command(CommandID::Sidebar)->isChecked());
    EXPECT_FALSE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    EXPECT_FALSE(named<QToolButton>("Info Panel (Ctrl+Shift+I)")->isChecked());
    EXPECT_EQ(window().findChild<QSplitter *>()->handleWidth(), 1);
    EXPECT_EQ(tabs(), QStringLiteral("B 1/3")) << "what is gone is left out";
    EXPECT_EQ(search().text(), QStringLiteral("e"));
    EXPECT_EQ(browser().content().filter(), QStringLiteral("e"));
    EXPECT_EQ(QApplication::focusWidget(), &grid());
    run(CommandID::Sidebar);
    run(CommandID::InfoPanel);
    EXPECT_TRUE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    EXPECT_TRUE(named<QToolButton>("Info Panel (Ctrl+Shift+I)")->isChecked());
    QApplication::processEvents();
    EXPECT_EQ(window().findChild<QSplitter *>()->sizes(), sizes);
    press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_NEAR(grid().zoom(), 0.695, 1e-6);
    EXPECT_EQ(named<QSlider>("Thumbnail size")->value(), 694);
    closeWindow();
    QFile::remove(delegate->documentDirectory() + QStringLiteral("/opened_tabs.plist"));
    openWindow();
    EXPECT_EQ(tabs(), QStringLiteral("Library 0/1"));
}

TEST_F(MainWindowTest, ButtonsAndCommandsOfTheViewAgree)
{
    const auto isDark = [] { return ZQTheme::current().isDark(); };
    const bool wasDark = isDark();
    run(CommandID::DarkTheme);
    EXPECT_NE(isDark(), wasDark);
    EXPECT_EQ(controller->command(CommandID::DarkTheme)->isChecked(), isDark());
    EXPECT_EQ(ZQUserDefaults::standardUserDefaults().boolForKey(QStringLiteral("UseDarkUI")), isDark());
    ZQTheme::current().setDark(wasDark);
    MainWindowController::applyTheme();
    EXPECT_NE(isDark(), wasDark) << "as was chosen";
    run(CommandID::DarkTheme);
    EXPECT_EQ(isDark(), wasDark);

    named<QToolButton>("Sidebar (Ctrl+B)")->click();
    EXPECT_FALSE(sidebar().isVisible());
    EXPECT_FALSE(controller->command(CommandID::Sidebar)->isChecked());
    press(Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(sidebar().isVisible());
    EXPECT_TRUE(named<QToolButton>("Sidebar (Ctrl+B)")->isChecked());
    named<QToolButton>("Info Panel (Ctrl+Shift+I)")->click();
    EXPECT_FALSE(controller->command(CommandID::InfoPanel)->isChecked());
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
