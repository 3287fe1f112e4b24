// What arrives while a person looks at something, and what is said of it.

#include "Classes/Import/ImportDoor.h"
#include "Classes/Interface/Browser/EmptyState.h"
#include "Classes/Interface/RatingField.h"
#include "Classes/Interface/Sheets/NearDuplicatesSheet.h"
#include "Classes/Interface/Sheets/RefusedFilesSheet.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQNotificationBubble.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Interface/DesktopListener.h"
#include "Tests/Classes/Interface/MainWindowTest.h"
#include "Tools/samples/SampleArchives.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>

#include <cmath>

namespace {

class ArrivalsTest : public MainWindowTest
{
protected:
    QString write(const QString &name, const QByteArray &contents = {})
    {
        QDir().mkpath(world.filePath(QStringLiteral("more")));
        const QString path = world.filePath(QStringLiteral("more/") + name);
        if (contents.isEmpty()) {
            QImage picture(4, 4 + ++m_number, QImage::Format_RGB32);
            picture.fill(Qt::blue);
            EXPECT_TRUE(picture.save(path));
        } else {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        }
        return path;
    }
    // Waves, in another direction for each `kind`.
    QString writeWaves(const QString &name, int kind, QSize size)
    {
        QImage picture(600, 400, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const double phase = kind == 0 ? x / 40.0 : y / 25.0;
                const int value = int(127 + 120 * std::sin(phase + x * y * (kind + 1) / 30000.0));
                picture.setPixel(x, y, qRgb(value, value / 2, 255 - value));
            }
        }
        const QString path = write(name);
        EXPECT_TRUE(picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).save(path));
        return path;
    }
    void import(const QStringList &paths, const Item &into)
    {
        ImportDoor::importFiles(paths, into.get(), ZQSidebarBaseItem::appendIndex);
        settle();
    }
    QPushButton *button(const char *text)
    {
        for (auto *each : window().findChildren<QPushButton *>()) {
            if (each->isVisible() && each->text() == QString::fromUtf8(text)) {
                return each;
            }
        }
        return nullptr;
    }
    QStringList titlesIn(const Item &project)
    {
        QStringList titles;
        for (const auto &item : project->items()) {
            titles.append(item->title());
        }
        return titles;
    }
    void undo()
    {
        press(Qt::Key_Z, Qt::ControlModifier);
        settle();
        settle();
    }
    ZQNotificationBubble *bubble()
    {
        for (auto *each : window().findChildren<ZQNotificationBubble *>()) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }

private:
    int m_number = 0;
};

} // namespace

TEST_F(ArrivalsTest, WhatIsInViewIsNotAnnounced)
{
    import({write(QStringLiteral("seen.png"))}, a);
    EXPECT_TRUE(shown().contains(QStringLiteral("seen")));
    zqRunMainLoopFor(std::chrono::milliseconds(600)); // longer than it is looked for
    EXPECT_FALSE(bubble());
}

TEST_F(ArrivalsTest, ShowGoesToTheItemsWhateverTheTabShows)
{
    struct Case
    {
        const char *what;
        Item into;
        const char *search; // in the tab, which shows A
        const char *title;  // of what is shown then
    };
    for (const Case &each : {Case{"another project", b, "", "B"},
                             {"what a search hides", a, "nothing like it", "A"},
                             {"a tag", tag, "", "mine"},
                             {"the library", special(ZQSidebarKind::Library), "", "Library"}}) {
        SCOPED_TRACE(each.what);
        show(a);
        search().setText(QLatin1StringView(each.search));
        settle();
        const QString one = QString::fromLatin1(each.what).left(5).simplified().remove(u' ');
        import({write(one + QStringLiteral("1.png")), write(one + QStringLiteral("2.png"))}, each.into);
        ASSERT_TRUE(waitFor([this] { return button("Show") != nullptr; }));
        EXPECT_EQ(bubble()->text(), QStringLiteral("2 imported"));
        QTest::mouseClick(button("Show"), Qt::LeftButton);
        settle();
        QStringList chosen = selected();
        chosen.sort();
        EXPECT_EQ(chosen, (QStringList{one + u'1', one + u'2'}));
        EXPECT_EQ(browser().content().singleItem()->title(), QLatin1StringView(each.title));
        EXPECT_TRUE(search().text().isEmpty());
        const ZQIndexSet visible = grid().visibleIndexes();
        EXPECT_TRUE(visible.contains(grid().selection().first()));
        EXPECT_TRUE(waitFor([this] { return !bubble(); }));
    }
}

TEST_F(ArrivalsTest, ShowGoesToWhatIsLeftAndWaitsForNothing)
{
    import({write(QStringLiteral("one.png")), write(QStringLiteral("two.png"))}, b);
    ASSERT_TRUE(waitFor([this] { return button("Show") != nullptr; }));
    image(QStringLiteral("one"))->setActive(false);
    delegate->saveAction();
    QTest::mouseClick(button("Show"), Qt::LeftButton);
    settle();
    EXPECT_EQ(selected(), QStringList{"two"});
    image(QStringLiteral("one"))->setActive(true);
    delegate->saveAction();
    settle();
    EXPECT_EQ(shown().size(), 2);
    EXPECT_EQ(selected(), QStringList{"two"});

    show(a);
    import({write(QStringLiteral("three.png"))}, b);
    ASSERT_TRUE(waitFor([this] { return button("Show") != nullptr; }));
    image(QStringLiteral("three"))->setActive(false);
    delegate->saveAction();
    QTest::mouseClick(button("Show"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([this] { return named("What was imported was deleted since."); }));
    settle();
    EXPECT_EQ(browser().content().singleItem(), a);
}

TEST_F(ArrivalsTest, ACopyThatASearchHidesIsNotSelectedLater)
{
    search().setFocus();
    type(QStringLiteral("#tag mine"));
    tag->addItems({image(QStringLiteral("red")), image(QStringLiteral("pages"))});
    delegate->saveAction();
    settle();
    ASSERT_EQ(shown().size(), 2);
    select({QStringLiteral("red")});
    grid().setFocus();
    press(Qt::Key_D, Qt::ControlModifier);
    settle();
    settle();
    search().setText(QStringLiteral("pages"));
    settle();
    ASSERT_EQ(shown(), QStringList{"pages"});
    select({QStringLiteral("pages")});
    search().clear();
    settle();
    EXPECT_EQ(shown().size(), 5);
    EXPECT_EQ(selected(), QStringList{"pages"});
}

TEST_F(ArrivalsTest, TheReasonsOfAllThatWasNotImportedCanBeListed)
{
    const QString broken = write(QStringLiteral("broken.pdf"), "not a document");
    const QString text = write(QStringLiteral("text.txt"), "words");
    import({write(QStringLiteral("good.png")), broken, text}, a);
    ASSERT_TRUE(waitFor([this] { return named("1 imported, 2 not") != nullptr; }));
    DesktopListener desktop;
    QStringList rows;
    QString toolTip;
    whenAsked([&](Sheet &sheet) {
        auto *list = sheet.findChild<QListWidget *>();
        for (int row = 0; list && row < list->count(); ++row) {
            rows.append(list->item(row)->text());
        }
        toolTip = list->item(0)->toolTip();
        QTest::mouseClick(button("Show in Folder"), Qt::LeftButton);
        press(Qt::Key_Escape);
    });
    QTest::mouseClick(button("Reasons…"), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return rows.size() == 2 && !window().findChild<RefusedFilesSheet *>(); }));
    EXPECT_TRUE(rows[0].startsWith(QStringLiteral("text.txt\n")) || rows[1].startsWith(QStringLiteral("text.txt\n")));
    EXPECT_TRUE(rows[0].startsWith(QStringLiteral("broken.pdf\n")) ||
                rows[1].startsWith(QStringLiteral("broken.pdf\n")));
    EXPECT_TRUE(QFile::exists(toolTip));
    EXPECT_EQ(desktop.opened, QList<QUrl>{QUrl::fromLocalFile(world.filePath(QStringLiteral("more")))});
    EXPECT_EQ(RefusedFilesSheet::folderToShow(world.filePath(QStringLiteral("more/set.zip/in/it.png"))),
              world.filePath(QStringLiteral("more")));

    import({broken}, a);
    ASSERT_TRUE(waitFor([this] { return named("Nothing to import!") != nullptr; }));
    EXPECT_TRUE(waitFor([this] { return bubble() && bubble()->text().startsWith(QStringLiteral("“broken.pdf”")); }))
        << "the reason follows, and is not replaced";
}

TEST_F(ArrivalsTest, TheLastImportCanBeAskedForUntilTheNextOne)
{
    const auto menuText = [this] {
        for (const QAction *action : menuOf("File").actions()) {
            if (action->text().startsWith(QStringLiteral("Last Import"))) {
                return action->isEnabled() ? action->text() : QString();
            }
        }
        return QStringLiteral("missing");
    };
    EXPECT_EQ(menuText(), QString());
    const QString text = write(QStringLiteral("text.txt"), "words");
    import({write(QStringLiteral("good.png")), text}, b);
    ASSERT_TRUE(waitFor([this] { return named("1 imported, 1 not") || bubble(); }));
    EXPECT_EQ(menuText(), QStringLiteral("Last Import: 1 imported, 1 not"));
    QTest::mouseClick(bubble(), Qt::LeftButton, {}, QPoint(12, 12));
    ASSERT_TRUE(waitFor([this] { return !bubble(); })) << "gone, as after its time";
    QStringList rows;
    const int tabsBefore = strip().count();
    whenAsked([&](Sheet &sheet) {
        auto *list = sheet.findChild<QListWidget *>();
        for (int row = 0; list && row < list->count(); ++row) {
            rows.append(list->item(row)->text());
        }
        press(Qt::Key_T, Qt::ControlModifier); // the window's keys rest
        press(Qt::Key_Delete);
        press(Qt::Key_3);
        for (int i = 0; i < 6 && QApplication::focusWidget() != button("Show Imported"); ++i) {
            press(Qt::Key_Tab);
        }
        press(Qt::Key_Space);
    });
    grid().setFocus();
    press(Qt::Key_I, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_TRUE(waitFor([&] { return !rows.isEmpty() && !window().findChild<RefusedFilesSheet *>(); }));
    EXPECT_TRUE(rows.value(0).startsWith(QStringLiteral("text.txt\n")));
    settle();
    EXPECT_EQ(strip().count(), tabsBefore);
    EXPECT_EQ(selected(), QStringList{"good"});
    EXPECT_EQ(image(QStringLiteral("good"))->rating(), 0);

    show(a);
    import({write(QStringLiteral("next.png"))}, b);
    ASSERT_TRUE(waitFor([&] { return menuText() == QStringLiteral("Last Import: 1 imported"); }));
    press(Qt::Key_I, Qt::ControlModifier | Qt::AltModifier);
    settle();
    EXPECT_EQ(selected(), QStringList{"next"}) << "there is nothing to list";
}

TEST_F(ArrivalsTest, PartsOfOneImportAreToldAsOne)
{
    const auto contents = [this](const QString &name) {
        QFile file(write(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray set = SampleArchives::zipFile({{"x.png", contents(QStringLiteral("x.png"))},
                                                    {"y.png", contents(QStringLiteral("y.png"))},
                                                    {"worse.pdf", "no document either"}});
    const QByteArray words = SampleArchives::zipFile({{"words.txt", "words"}});
    const QStringList paths{write(QStringLiteral("good.png")), write(QStringLiteral("broken.pdf"), "not a document"),
                            write(QStringLiteral("text.txt"), "words"), write(QStringLiteral("set.zip"), set),
                            write(QStringLiteral("words.zip"), words)};
    import(paths, b);
    EXPECT_TRUE(waitFor([this] { return named("3 imported, 4 not") != nullptr; }))
        << (bubble() ? bubble()->text().toStdString() : std::string());
    settle();
    EXPECT_TRUE(named("3 imported, 4 not")) << "no part says less later";
    QStringList rows;
    whenAsked([&](Sheet &sheet) {
        auto *list = sheet.findChild<QListWidget *>();
        for (int row = 0; list && row < list->count(); ++row) {
            rows.append(list->item(row)->text().section(u'\n', 0, 0));
        }
        QTest::mouseClick(button("Show Imported"), Qt::LeftButton);
    });
    press(Qt::Key_I, Qt::ControlModifier | Qt::AltModifier);
    ASSERT_TRUE(waitFor([&] { return !rows.isEmpty() && !window().findChild<RefusedFilesSheet *>(); }));
    rows.sort();
    EXPECT_EQ(rows, (QStringList{"broken.pdf", "text.txt", "words.zip", "worse.pdf"}));
    settle();
    QStringList chosen = selected();
    chosen.sort();
    EXPECT_EQ(chosen, (QStringList{"good", "x", "y"}));
}

TEST_F(ArrivalsTest, WhatLooksLikeAPictureThatIsThereIsSaidAndShownBesideIt)
{
    import({writeWaves(QStringLiteral("there.png"), 0, {600, 400})}, b);
    ASSERT_TRUE(waitFor([this] { return button("Show") != nullptr; }));
    EXPECT_EQ(bubble()->text(), QStringLiteral("1 imported")) << "it is like nothing";
    QTest::mouseClick(button("Show"), Qt::LeftButton);
    settle();
    show(a);
    import({writeWaves(QStringLiteral("smaller.jpg"), 0, {300, 200}),
            writeWaves(QStringLiteral("other.png"), 1, {600, 400})},
           b);
    ASSERT_TRUE(waitFor([this] { return bubble() && bubble()->text().contains(QStringLiteral("looks like")); }));
    EXPECT_TRUE(bubble()->text().endsWith(QStringLiteral("1 looks like a picture you have")));
    auto *way = button("Show Similar");
    QTest::mouseClick(way ? way : button("Show"), Qt::LeftButton); // said later, it is the only one
    const auto *sheet = window().findChild<NearDuplicatesSheet *>();
    ASSERT_TRUE(sheet);
    QStringList titles;
    EXPECT_TRUE(waitFor([&] {
        titles.clear();
        for (const QListWidget *list : sheet->findChildren<QListWidget *>()) {
            for (int row = 0; list->accessibleName() == u"The one to keep" && row < list->count(); ++row) {
                titles.append(list->item(row)->text().section(u'\n', 0, 0));
            }
        }
        return !titles.isEmpty();
    }));
    titles.sort();
    EXPECT_EQ(titles, (QStringList{"smaller", "there"})) << "the new one beside the one that was there";
    press(Qt::Key_Escape);
    settle();
}

TEST_F(ArrivalsTest, WhatThisLibraryHasIsLinkedAndNotImportedAgain)
{
    select({QStringLiteral("red"), QStringLiteral("clear")});
    press(Qt::Key_C, Qt::ControlModifier);
    show(b);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(delegate->backgroundOperationQueue().operationCount(), 0);
    settle();
    EXPECT_EQ(titlesIn(b), (QStringList{"red", "clear"}));
    EXPECT_EQ(selected(), (QStringList{"red", "clear"}));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([this] { return named("“B” has them already") != nullptr; }));
    undo();
    EXPECT_EQ(titlesIn(b), QStringList());
    EXPECT_EQ(titlesIn(a).size(), 4);

    show(tag);
    press(Qt::Key_V, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(tag->containsItem(image(QStringLiteral("red")).get()));
    undo();

    const auto number = [this] {
        return context().countForFetchRequest({ZQLibraryBaseItem::entityName()}).value_or(0);
    };
    const auto before = number();
    show(special(ZQSidebarKind::Library));
    press(Qt::Key_V, Qt::ControlModifier);
    settle();
    EXPECT_EQ(number(), before);

    // Of a copy of this library, or of what was deleted since, the files are all there is.
    select({QStringLiteral("red")});
    press(Qt::Key_C, Qt::ControlModifier);
    auto *other = new QMimeData;
    other->setUrls(QApplication::clipboard()->mimeData()->urls());
    other->setData(BrowserContent::itemsMimeType,
                   QApplication::clipboard()->mimeData()->data(BrowserContent::itemsMimeType));
    other->setData(BrowserContent::libraryMimeType, "/somewhere/Else.ztlibrary/Library");
    QApplication::clipboard()->setMimeData(other);
    show(b);
    whenAsked([this](Sheet &) {
        press(Qt::Key_3); // both
        press(Qt::Key_Return);
    });
    press(Qt::Key_V, Qt::ControlModifier);
    settle();
    EXPECT_EQ(number(), before + 1);
    EXPECT_EQ(titlesIn(b), QStringList{"red"});
}

TEST_F(ArrivalsTest, ACopyStandsBesideItsOriginalSelectedAndIsOneStep)
{
    const QStringList before = titlesIn(a);
    select({before[0], before[2]});
    press(Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] {
        settle();
        return shown().size() == 6;
    }));
    EXPECT_EQ(shown(), (QStringList{before[0], before[0], before[1], before[2], before[2], before[3]}));
    EXPECT_TRUE(waitFor([this] {
        settle();
        return grid().selection().count() == 2 && grid().selection().contains(1) && grid().selection().contains(4);
    })) << grid().selection().count()
        << " from " << grid().selection().first() << " to " << grid().selection().last();
    undo();
    EXPECT_TRUE(waitFor([&] {
        settle();
        return shown() == before;
    }));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(waitFor([&] {
        settle();
        return shown().size() == 6;
    }));
    show(special(ZQSidebarKind::Library));
    EXPECT_EQ(shown().size(), 6) << "and once only";
}

TEST_F(ArrivalsTest, WhatGoesByUndoLeavesItsNeighbourShown)
{
    show(b);
    press(Qt::Key_N, Qt::ControlModifier);
    type(QStringLiteral("Passing"));
    press(Qt::Key_Return);
    settle();
    EXPECT_EQ(browser().content().singleItem()->title(), QStringLiteral("Passing"));
    QStringList heads;
    for (const auto *head : browser().findChildren<QLabel *>(QStringLiteral("Title"))) {
        heads.append(head->isVisible() ? head->text() : QString());
    }
    EXPECT_TRUE(heads.contains(QStringLiteral("Passing"))) << "the head follows a renaming";
    grid().setFocus();
    undo(); // the name
    undo(); // the project
    EXPECT_FALSE(children(projects).contains(QStringLiteral("Passing")));
    ASSERT_TRUE(browser().content().singleItem());
    EXPECT_TRUE(browser().content().singleItem()->active());
    EXPECT_EQ(sidebar().selectedItems(), browser().sidebarItems());
    EXPECT_EQ(children(projects).contains(browser().content().singleItem()->title()), true);
}

TEST_F(ArrivalsTest, ThePanelFollowsARatingThatIsTakenBack)
{
    select({QStringLiteral("red")});
    grid().setFocus();
    press(Qt::Key_4);
    settle();
    const auto *rating = window().findChild<RatingField *>();
    ASSERT_TRUE(rating);
    const QString rated = rating->accessibleName();
    EXPECT_TRUE(rated.contains(u'4')) << rated.toStdString();
    undo();
    EXPECT_EQ(image(QStringLiteral("red"))->rating(), 0);
    EXPECT_FALSE(rating->accessibleName().contains(u'4')) << rating->accessibleName().toStdString();
}

TEST_F(ArrivalsTest, WhereNothingIsTheWayOnIsAButton)
{
    show(b);
    ASSERT_TRUE(button("Import…"));
    EXPECT_FALSE(button("Show All"));
    person.files = {write(QStringLiteral("first.png"))};
    button("Import…")->click();
    settle();
    EXPECT_EQ(shown(), QStringList{"first"});
    EXPECT_FALSE(button("Import…"));
    search().setText(QStringLiteral("nothing like it"));
    settle();
    EXPECT_FALSE(button("Import…"));
    ASSERT_TRUE(button("Show All"));
    button("Show All")->click();
    settle();
    EXPECT_EQ(search().text(), QString());
    EXPECT_EQ(shown(), QStringList{"first"});
    EXPECT_FALSE(button("Show All"));
    show(special(ZQSidebarKind::Recent));
    EXPECT_FALSE(button("Import…")) << "it takes none";
    const auto live = zqCast<ZQSidebarWatchedFolder>(
        add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel)));
    live->setFolderPath(world.filePath(QStringLiteral("not there")));
    live->setIs_missing(true);
    delegate->saveAction();
    settle();
    show(live);
    EXPECT_TRUE(browser().content().emptyText().contains(live->folderPath()));
    EXPECT_FALSE(browser().emptyState().isVisible());
    sidebar().selectItems({a->objectID(), b->objectID()});
    settle();
    EXPECT_FALSE(button("Import…"));
}

TEST_F(ArrivalsTest, ADragShowsWhereItGoesAndGoesThere)
{
    const QStringList before = titlesIn(a);
    const auto mime = std::unique_ptr<QMimeData>(browser().content().mimeData(ZQIndexSet(0, 0)));
    QWidget &viewport = *grid().viewport();
    const auto dragTo = [&](qint64 index, bool drops) {
        const QPoint point = grid().visualRect(index).center() - QPoint(grid().visualRect(index).width() / 3, 0);
        constexpr Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(point, actions, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&viewport, &enter);
        QDragMoveEvent move(point, actions, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&viewport, &move);
        if (drops) {
            QDropEvent drop(point, actions, mime.get(), Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&viewport, &drop);
            settle();
        }
        return move.isAccepted();
    };
    const QImage plain = viewport.grab().toImage();
    EXPECT_TRUE(dragTo(2, false));
    const QImage marked = viewport.grab().toImage();
    const QRect cell = grid().visualRect(2);
    bool isMarked = false;
    for (int x = cell.left() - 12; x < cell.left() + 4; ++x) {
        isMarked = isMarked || plain.pixel(x, cell.center().y()) != marked.pixel(x, cell.center().y());
    }
    EXPECT_TRUE(isMarked);
    dragTo(2, true);
    EXPECT_EQ(titlesIn(a), (QStringList{before[1], before[0], before[2], before[3]}));
    undo();
    EXPECT_EQ(titlesIn(a), before);

    import({write(QStringLiteral("there.png"))}, b);
    show(b); // turned to while the drag went on
    dragTo(0, true);
    EXPECT_EQ(titlesIn(b), (QStringList{before[0], "there"})) << "what comes from elsewhere is linked at the place";

    show(a);
    run(CommandID(int(CommandID::GroupPlain) + int(BrowserDisplayStyle::ByExtension)));
    settle();
    EXPECT_FALSE(browser().content().dropsAtIndex(mime.get())) << "the rows are in another order";
}
