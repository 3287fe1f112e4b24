// What the window takes, gives and shows.

#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/ItemPictures.h"
#include "Classes/Interface/Window/WindowSnapshot.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Interface/MainWindowTest.h"

#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QToolButton>

#include <algorithm>

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
    grid().thumbnailLoader().image(ItemPictures::thumbnailOf(*image(QStringLiteral("clear"))), 1024);
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
    EXPECT_EQ(menuAt(),
              QStringLiteral(
                  "Open|Find Similar|Open with Default Program|Show in Files|-|Copy|Duplicate|Rename|Rating|Export|"
                  "Export as Layered PSD…|Share|-|Remove from A|Delete from Library"));
    select({QStringLiteral("red"), QStringLiteral("clear")});
    EXPECT_TRUE(menuAt().startsWith(QStringLiteral("Open|Compare|Find Near-Duplicates…|"))) << menu.toStdString();
    select({QStringLiteral("red")});
    menuAt(QStringLiteral("Remove from A"));
    settle();
    EXPECT_EQ(shown().size(), 3);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("clear")});
    run(CommandID::Undo);
    settle();
    show(special(ZQSidebarKind::Library));
    select({QStringLiteral("red")});
    EXPECT_FALSE(menuAt().contains(QStringLiteral("Remove from")));
    menuAt(QStringLiteral("Delete from Library"));
    settle();
    EXPECT_EQ(shown().size(), 3);
    EXPECT_EQ(image(QStringLiteral("red"))->active(), false);
    run(CommandID::Undo);
    settle();
    select({QStringLiteral("red")});
    menuAt(QStringLiteral("Duplicate"));
    settle();
    EXPECT_EQ(shown().size(), 5);
    run(CommandID::Undo);
    settle();
}

TEST_F(MainWindowTest, RenameAndRemoveMeanWhatHasTheFocus)
{
    run(CommandID::InfoPanel);
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
    run(CommandID::DeleteFromLibrary);
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
    a->addItem(ZQLibraryBaseItem::duplicatesOf({image(QStringLiteral("red"))}, [] { return true; }).first().get());
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
    settle();
    int answers = 0;
    const QObject onlooker;
    QObject::connect(&browser().content(), &BrowserContent::answered, &onlooker, [&answers] { ++answers; });
    controller->refreshContent();
    EXPECT_TRUE(waitFor([&] { return answers > 0; })) << "the application asks to look again";
    b->setTitle(QStringLiteral("Bee"));
    controller->updateLocalization();
    run(CommandID::NewTab);
    sidebar().selectItems({b->objectID()});
    EXPECT_EQ(tabs(), QStringLiteral("Bee 1/2"));
}

TEST_F(MainWindowTest, WhatOtherProgramsWroteIsReadForWhatIsSelectedAndWhenTheWindowComesToTheFront)
{
    const auto writeBeside = [this](const QString &title) {
        const ZQError error = OpenMeta::setUserTags(QStringList{QStringLiteral("theirs")}, image(title)->findItemURL());
        EXPECT_TRUE(error.isNull()) << error.localizedDescription().toStdString();
    };
    const auto hasTheirs = [this](const QString &title) {
        const auto tags = image(title)->itemTags();
        return std::any_of(tags.begin(), tags.end(),
                           [](const auto &each) { return each->title() == QStringLiteral("theirs"); });
    };
    writeBeside(QStringLiteral("red"));
    writeBeside(QStringLiteral("clear"));
    select({QStringLiteral("clear")});
    EXPECT_TRUE(waitFor([&] { return hasTheirs(QStringLiteral("clear")); }));
    EXPECT_FALSE(hasTheirs(QStringLiteral("red")));
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&window(), &activate);
    EXPECT_TRUE(waitFor([&] { return hasTheirs(QStringLiteral("red")); }));
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
    controller->selectSidebarItem(b->objectID());
    EXPECT_EQ(tabs(), QStringLiteral("B 0/1"));
    show(a);
    select({QStringLiteral("red")});
    run(CommandID::Rename);
    type(QStringLiteral("scarlet"));
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
        EXPECT_TRUE(zqRenderWindowSnapshot(options, &drawn, &error)) << qPrintable(error.localizedDescription());
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
        EXPECT_FALSE(zqRenderWindowSnapshot(asked, &drawn, &error));
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
    zqPrepareSnapshotScale(1.5);
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
    EXPECT_EQ(says(), "A|4 items|Group|Sort|4 items");
    select({QStringLiteral("red"), QStringLiteral("pages")});
    EXPECT_EQ(says(), "A|4 items|Group|Sort|2 of 4 selected");
    EXPECT_FALSE(named("Ascending") || named("Descending")) << "by hand there is one order";

    whenMenuOpens(QStringLiteral("Title"));
    named<QToolButton>("Sort: Manual order")->click();
    EXPECT_EQ(menu.toStdString(),
              "Manual order|Import date|Title|Size|Color|Modification date|Creation date|Kind|Rating|Tags|Hue");
    settle();
    ASSERT_TRUE(named<QToolButton>("Sort: Title"));
    EXPECT_EQ(named<QToolButton>("Sort: Title")->text(), QStringLiteral("Title"));
    EXPECT_EQ(selected().size(), 2) << "what was selected stays so";
    EXPECT_FALSE(context().hasChanges());
    const bool isAscending = browser().content().tab().sortDirectionValue();
    const char *const up = "clear moving pages red";
    const char *const down = "red pages moving clear";
    EXPECT_EQ(order(), isAscending ? up : down);
    named<QToolButton>(isAscending ? "Ascending" : "Descending")->click();
    settle();
    EXPECT_EQ(order(), isAscending ? down : up);
    EXPECT_TRUE(named<QToolButton>(isAscending ? "Descending" : "Ascending"));

    grid().setFocus();
    type(QStringLiteral("mov"));
    EXPECT_TRUE(waitFor([this] { return selected() == QStringList{QStringLiteral("moving")}; }));

    show(b);
    EXPECT_EQ(a->sortKeys(), 2) << "kept when it is left";
    EXPECT_NE(a->sortDirection(), isAscending);
    EXPECT_EQ(says(), "B|0 items|Group|Sort|0 items");
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("Drop images here, or press Ctrl+I"));
    b->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    settle();
    EXPECT_EQ(says(), "B|1 item|Group|Sort|1 item");
    show(folder);
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("The projects of this folder are empty."));
    inner->addItem(image(QStringLiteral("red")).get());
    delegate->saveAction();
    settle();
    ASSERT_EQ(browser().content().groups().size(), 1);
    EXPECT_EQ(browser().content().groups().first().title, QStringLiteral("Inner"));
    sidebar().selectItems({a->objectID(), b->objectID()});
    settle();
    EXPECT_EQ(says(), "2 items selected|5 items|Group|Sort|5 items");
    EXPECT_EQ(browser().content().groups().size(), 2);
    EXPECT_FALSE(browser().content().tab().sortDirectionValue());
    show(special(ZQSidebarKind::Recent));
    qint64 count = 0;
    for (const ZQGridGroup &group : browser().content().groups()) {
        count += group.count;
    }
    EXPECT_EQ(count, 4) << "each in one group only";
    search().setText(QStringLiteral("nothing has this"));
    settle();
    EXPECT_TRUE(browser().content().emptyText().startsWith(QStringLiteral("Nothing matches \"nothing has this\".")));
    search().clear();
    show(special(ZQSidebarKind::Library));
    whenMenuOpens(QStringLiteral("Size"));
    named<QToolButton>("Sort: Import date")->click();
    EXPECT_EQ(
        menu.toStdString(),
        "Import date|Title|Size|Color|Modification date|Creation date|Kind|Rating|Tags|Hue|-|Ascending|Descending");
    settle();
    EXPECT_TRUE(named("Sort: Size"));
    browser().content().setSidebarItems({});
    EXPECT_EQ(browser().content().emptyText(), QString()) << "not before it is known";
    EXPECT_TRUE(waitFor([this] { return !browser().content().isLoading(); }));
    EXPECT_EQ(browser().content().emptyText(), QStringLiteral("Select something in the sidebar."));
}

TEST_F(MainWindowTest, AFolderIsInTheOrderOfTheSidebarAndCanBeAgain)
{
    folder->setSortKeys(qint16(ZQSortValue::None));
    delegate->saveAction();
    show(folder);
    ASSERT_TRUE(named<QToolButton>("Sort: Sidebar order"));
    whenMenuOpens(QStringLiteral("Title"));
    named<QToolButton>("Sort: Sidebar order")->click();
    EXPECT_TRUE(menu.contains(QStringLiteral("|Sidebar order"))) << menu.toStdString();
    EXPECT_FALSE(menu.contains(QStringLiteral("None")));
    settle();
    ASSERT_TRUE(named<QToolButton>("Sort: Title"));
    whenMenuOpens(QStringLiteral("Sidebar order"));
    named<QToolButton>("Sort: Title")->click();
    settle();
    EXPECT_TRUE(named<QToolButton>("Sort: Sidebar order"));
    show(a);
    whenMenuOpens();
    named<QToolButton>("Sort: Manual order")->click();
    EXPECT_FALSE(menu.contains(QStringLiteral("Sidebar order"))) << "a project has an order of its own";
}
