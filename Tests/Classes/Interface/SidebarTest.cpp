// The sidebar as a person meets it: rows, keys, pointer, menus and drags.

#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Interface/MainWindowFixture.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMimeData>

namespace {

class SidebarTest : public MainWindowFixture
{
protected:
    QModelIndex index(const Item &item) { return tree()->tree()->indexOf(item->objectID()); }
    QRect row(const Item &item) { return tree()->visualRect(index(item)); }
    // Rows that can be seen, from the top.
    QString rows()
    {
        QStringList titles;
        for (QModelIndex at = tree()->model()->index(0, 0); at.isValid(); at = tree()->indexBelow(at)) {
            titles.append(at.data().toString());
        }
        return titles.join(u' ');
    }
    QString chosen()
    {
        QStringList titles;
        for (const ZQObjectID &id : sidebar().selectedItems()) {
            titles.append(zqCast<ZQSidebarBaseItem>(context().objectWithID(id))->title());
        }
        return titles.join(u' ');
    }
    QColor pixel(const QPoint &point) { return tree()->viewport()->grab().toImage().pixelColor(point); }
    void click(const QPoint &point, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, modifiers, point);
    }
    QLineEdit *editor() { return tree()->findChild<QLineEdit *>(QStringLiteral("InlineEditor")); }
    std::unique_ptr<QMimeData> dragOf(const QList<Item> &items)
    {
        QModelIndexList indexes;
        for (const Item &item : items) {
            indexes.append(index(item));
        }
        return std::unique_ptr<QMimeData>(tree()->makeDrag(indexes));
    }
    // What a drag over the point is answered; dropped there when asked to.
    Qt::DropAction drag(const QMimeData &mime, const QPoint &point, bool drops)
    {
        const auto both = Qt::MoveAction | Qt::CopyAction;
        QDragEnterEvent enter(point, both, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &enter);
        Qt::DropAction answer = enter.isAccepted() ? enter.dropAction() : Qt::IgnoreAction;
        if (drops) {
            QDropEvent drop(point, both, &mime, Qt::LeftButton, {});
            drop.setDropAction(Qt::IgnoreAction);
            drop.ignore();
            QApplication::sendEvent(tree()->viewport(), &drop);
            answer = drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
        } else {
            QDragLeaveEvent leave;
            QApplication::sendEvent(tree()->viewport(), &leave);
        }
        return answer;
    }
    QString menuAt(const QPoint &point, const QString &choose = {})
    {
        menu.clear();
        whenMenuOpens(choose);
        Q_EMIT tree()->customContextMenuRequested(point);
        return menu;
    }
};

} // namespace

TEST_F(SidebarTest, SectionsHoldTheirRowsAndOpenAndClose)
{
    EXPECT_TRUE(rows().contains(QStringLiteral("A B Folder Inner")));
    EXPECT_FALSE(rows().contains(QStringLiteral("LIVE"))) << "an empty section that takes nothing";
    EXPECT_EQ(row(a).height(), ZQMeasure::rowHeight);
    EXPECT_EQ(row(projects).height(), 32);
    const QRect twisty(10, row(folder).top() + (ZQMeasure::rowHeight - 10) / 2, 10, 10);
    EXPECT_EQ(SidebarDelegate::twistyRect(row(folder), index(folder)), twisty);
    EXPECT_EQ(SidebarDelegate::twistyRect(row(inner), index(inner)).left(), 26);
    EXPECT_EQ(SidebarDelegate::titleLeft(row(a), index(a)), 8 + 14 + ZQMeasure::iconSize + 8);
    EXPECT_EQ(SidebarDelegate::titleLeft(row(inner), index(inner)), 8 + 14 + 16 + ZQMeasure::iconSize + 8);

    click(twisty.center());
    EXPECT_FALSE(rows().contains(QStringLiteral("Inner")));
    EXPECT_FALSE(folder->expanded()) << "it is kept";
    EXPECT_FALSE(context().hasChanges());
    EXPECT_EQ(chosen(), QStringLiteral("A")) << "opening is not choosing";
    for (const QPoint &point : {QPoint(6, twisty.top() - 9), QPoint(22, twisty.bottom() + 9)}) {
        click(point);
        EXPECT_EQ(rows().contains(QStringLiteral("Inner")), folder->expanded());
        EXPECT_EQ(chosen(), QStringLiteral("A"));
    }
    EXPECT_FALSE(folder->expanded());
    const QPoint title(100, row(folder).center().y());
    QMouseEvent twice(QEvent::MouseButtonDblClick, title, tree()->viewport()->mapToGlobal(title), Qt::LeftButton,
                      Qt::LeftButton, {});
    QApplication::sendEvent(tree()->viewport(), &twice);
    EXPECT_TRUE(folder->expanded());
    click(row(projects).center());
    EXPECT_FALSE(rows().contains(QStringLiteral("Folder")));
    EXPECT_FALSE(projects->expanded());
    click(row(projects).center());
    EXPECT_TRUE(rows().contains(QStringLiteral("A B Folder Inner")));
    click({100, tree()->viewport()->height() - 3});
    EXPECT_EQ(chosen(), QStringLiteral("A")) << "the void chooses nothing";
    click(row(b).center());
    EXPECT_EQ(chosen(), QStringLiteral("B"));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("B"));
    click(row(a).center(), Qt::ControlModifier);
    EXPECT_EQ(chosen(), QStringLiteral("A B")) << "from the top";

    folder->setExpanded(false);
    delegate->saveAction();
    closeWindow();
    openWindow();
    EXPECT_FALSE(rows().contains(QStringLiteral("Inner")));
    add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel));
    delegate->saveAction();
    EXPECT_TRUE(waitFor([this] { return rows().contains(QStringLiteral("Live")); }));
    sidebar().selectItems({inner->objectID()});
    EXPECT_EQ(chosen(), QStringLiteral("Inner"));
    sidebar().selectItems({tag->objectID()});
    EXPECT_EQ(sidebar().findChild<ZQSwitch *>()->currentIndex(), 1);
    EXPECT_EQ(chosen(), QStringLiteral("mine"));
    sidebar().selectItems({});
    EXPECT_EQ(chosen(), QStringLiteral("mine"));
    sidebar().findChild<ZQSwitch *>()->setCurrentIndex(0);
    EXPECT_EQ(chosen(), QStringLiteral("mine"));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("mine")) << "looking at the others chooses none";
    click(row(a).center());
    EXPECT_EQ(chosen(), QStringLiteral("A"));
    EXPECT_EQ(browser().content().tab().tabName(), QStringLiteral("A"));
}

TEST_F(SidebarTest, NewOnesAreNamedAtOnce)
{
    struct Case
    {
        CommandID command;
        const char *name; // until it gets another
        Item on;
        const char *made;
        const char *rows; // titles around it
    };
    for (const Case &each : {Case{CommandID::NewProject, "New Project", a, "P", "A P B"},
                             {CommandID::NewFolder, "New Folder", inner, "F", "Inner F"},
                             {CommandID::NewProject, "New Project", folder, "Q", "F Q"}}) {
        show(each.on);
        run(each.command);
        ASSERT_TRUE(editor()) << each.made;
        EXPECT_EQ(editor()->text(), QLatin1StringView(each.name));
        EXPECT_EQ(editor()->selectedText(), editor()->text());
        EXPECT_EQ(chosen(), QLatin1StringView(each.name));
        type(QLatin1StringView(each.made));
        sidebar().reload();
        EXPECT_EQ(editor()->text(), QLatin1StringView(each.made)) << "what is typed stays while rows change";
        press(Qt::Key_Return);
        EXPECT_TRUE(waitFor([&] { return rows().contains(QLatin1StringView(each.rows)); })) << rows().toStdString();
    }
    named<QWidget>("New Project (Ctrl+N)")->setFocus();
    run(CommandID::NewTag);
    ASSERT_TRUE(editor());
    type(QStringLiteral("mine"));
    press(Qt::Key_Return);
    settle();
    EXPECT_TRUE(named("Tag already exist!"));
    EXPECT_FALSE(sidebar().isEditing()) << "a tag keeps its name";
    EXPECT_EQ(chosen(), QStringLiteral("New Tag"));
    run(CommandID::NewProject);
    EXPECT_EQ(sidebar().findChild<ZQSwitch *>()->currentIndex(), 0);
    editor()->clear();
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] {
        return sidebar().isEditing() && editor() && editor()->text() == QStringLiteral("New Project");
    })) << "a name is needed";
    press(Qt::Key_Escape);
    EXPECT_TRUE(waitFor([this] { return !sidebar().isEditing(); }));
    EXPECT_EQ(chosen(), QStringLiteral("New Project"));
}

TEST_F(SidebarTest, AClickOnTheOnlyChosenTitleRenamesIt)
{
    const auto isEdited = [this] {
        bool isOver = false;
        QTimer::singleShot(QApplication::doubleClickInterval() + 50, &window(), [&] { isOver = true; });
        waitFor([&] { return isOver || sidebar().isEditing(); });
        return sidebar().isEditing();
    };
    QApplication::setDoubleClickInterval(30);
    tree()->setFocus();
    const QPoint title(SidebarDelegate::titleLeft(row(a), index(a)), row(a).center().y());
    click(title - QPoint(1, 0));
    EXPECT_FALSE(isEdited()) << "the icon is not the title";
    click(title, Qt::ShiftModifier);
    EXPECT_FALSE(isEdited());
    click(row(b).center());
    EXPECT_FALSE(isEdited()) << "choosing it first";
    click(row(b).center());
    EXPECT_TRUE(isEdited());
    const QRect edited = editor()->geometry();
    EXPECT_EQ(edited,
              QRect(title.x() - 5, row(b).top() + 2, row(b).right() - 10 - title.x() + 5, ZQMeasure::rowHeight - 4));
    press(Qt::Key_Escape);
    click(row(b).center());
    click(row(a).center());
    EXPECT_FALSE(isEdited()) << "another was chosen meanwhile";
    const Item everything = special(ZQSidebarKind::Library);
    click(row(everything).center());
    click(row(everything).center());
    EXPECT_FALSE(isEdited()) << "Library keeps its name";
    click(row(a).center());
    click(row(b).center(), Qt::ControlModifier);
    click(row(b).center());
    EXPECT_FALSE(isEdited()) << "several were chosen";
    QApplication::setDoubleClickInterval(400);
}

TEST_F(SidebarTest, MenusOfferWhatTheRowsAllow)
{
    const Item live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel));
    delegate->saveAction();
    settle();
    struct Case
    {
        QList<Item> chosen;
        const char *menu;
    };
    for (const Case &each : {Case{{a}, "New Project|New Folder|-|Rename|Delete A|Delete A and Content"},
                             {{folder}, "New Project|New Folder|-|Rename|Delete Folder|Delete Folder and Content"},
                             {{a, b}, "New Project|New Folder|-|Delete 2 Items|Delete 2 Items and Content"},
                             {{live}, "New Project|New Folder|-|Delete Live"},
                             {{special(ZQSidebarKind::Library)}, "New Project|New Folder|-|Find Near-Duplicates…"}}) {
        QList<ZQObjectID> ids;
        for (const Item &item : each.chosen) {
            ids.append(item->objectID());
        }
        sidebar().selectItems(ids);
        EXPECT_EQ(menuAt(row(each.chosen.first()).center()).toStdString(), each.menu);
    }
    const Item smart = add<ZQSidebarSmartFolder>(QStringLiteral("Smart"), projects);
    delegate->saveAction();
    sidebar().reload();
    for (const Case &each :
         {Case{{a, smart}, "New Project|New Folder|-|Delete 2 Items|Delete A and Content"},
          {{a, b, smart}, "New Project|New Folder|-|Delete 3 Items|Delete 2 Items and Content"},
          {{smart, live}, "New Project|New Folder|-|Delete 2 Items"},
          {{special(ZQSidebarKind::Library), a}, "New Project|New Folder|-|Delete A|Delete A and Content"}}) {
        QList<ZQObjectID> ids;
        for (const Item &item : each.chosen) {
            ids.append(item->objectID());
        }
        sidebar().selectItems(ids);
        EXPECT_EQ(menuAt(row(each.chosen.first()).center()).toStdString(), each.menu) << "what each would delete";
    }
    EXPECT_EQ(menuAt(row(b).center()).toStdString(), "New Project|New Folder|-|Rename|Delete B|Delete B and Content")
        << "the row under the pointer is chosen";
    EXPECT_EQ(chosen(), QStringLiteral("B"));
    menuAt(row(projects).center());
    EXPECT_EQ(chosen(), QStringLiteral("B")) << "a head cannot be chosen";
    menuAt(row(b).center(), QStringLiteral("Rename"));
    ASSERT_TRUE(editor());
    type(QStringLiteral("Bee"));
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return b->title() == QStringLiteral("Bee"); }));
    menuAt(row(a).center(), QStringLiteral("New Folder"));
    ASSERT_TRUE(editor());
    press(Qt::Key_Escape);
    whenAsked([&](Sheet &) { press(Qt::Key_Return); });
    menuAt(row(b).center(), QStringLiteral("Delete Bee"));
    EXPECT_FALSE(b->active());
    whenAsked([&](Sheet &) { press(Qt::Key_Return); });
    menuAt(row(a).center(), QStringLiteral("Delete A and Content"));
    EXPECT_FALSE(a->active());
    EXPECT_FALSE(image(QStringLiteral("red"))->active());
    sidebar().selectItems({tag->objectID()});
    EXPECT_EQ(menuAt(row(tag).center()).toStdString(), "New Tag|-|Sort by Hand|Sort by Title|-|Rename|Delete mine");
    menuAt(row(tag).center(), QStringLiteral("New Tag"));
    EXPECT_EQ(chosen(), QStringLiteral("New Tag"));
}

TEST_F(SidebarTest, DragsGoWhereThePointerIs)
{
    const auto one = dragOf({a});
    EXPECT_EQ(one->data(SidebarTreeView::elementMimeType), a->UUID().toUtf8());
    EXPECT_EQ(dragOf({a, b})->data(SidebarTreeView::elementMimeType), (a->UUID() + u'\n' + b->UUID()).toUtf8());
    const QRect target = row(folder);
    const auto at = [&](int y) { return QPoint(100, target.top() + y); };
    const int height = target.height();
    struct Case
    {
        const char *what;
        int y;
        QStringList projects;
        QStringList inside;
    };
    const QStringList all = children(projects);
    ASSERT_EQ(all, (QStringList{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("Folder")}));
    for (const Case &each : {Case{"its upper border",
                                  0,
                                  {QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("Folder")},
                                  {QStringLiteral("Inner")}},
                             {"just above its upper quarter",
                              height / 4 - 1,
                              {QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("Folder")},
                              {QStringLiteral("Inner")}},
                             {"its upper quarter",
                              height / 4,
                              {QStringLiteral("B"), QStringLiteral("Folder")},
                              {QStringLiteral("A"), QStringLiteral("Inner")}},
                             {"its middle",
                              height / 2,
                              {QStringLiteral("B"), QStringLiteral("Folder")},
                              {QStringLiteral("A"), QStringLiteral("Inner")}},
                             {"its lower quarter",
                              height * 3 / 4,
                              {QStringLiteral("B"), QStringLiteral("Folder")},
                              {QStringLiteral("A"), QStringLiteral("Inner")}},
                             {"below it, where it is open",
                              height * 3 / 4 + 1,
                              {QStringLiteral("B"), QStringLiteral("Folder")},
                              {QStringLiteral("A"), QStringLiteral("Inner")}}}) {
        EXPECT_EQ(drag(*dragOf({a}), at(each.y), true), Qt::MoveAction) << each.what;
        EXPECT_EQ(children(projects), each.projects) << each.what;
        EXPECT_EQ(children(folder), each.inside) << each.what;
        controller->undoStack().undo();
        settle();
        ASSERT_EQ(children(projects), all);
    }
    // Onto a project nothing goes; the half of it says on which side.
    EXPECT_EQ(drag(*dragOf({folder}), {100, row(a).top() + row(a).height() / 2 - 1}, true), Qt::MoveAction);
    EXPECT_EQ(children(projects).first(), QStringLiteral("Folder"));
    controller->undoStack().undo();
    settle();
    EXPECT_EQ(drag(*dragOf({folder}), {100, row(a).top() + row(a).height() / 2}, true), Qt::MoveAction);
    EXPECT_EQ(children(projects).value(1), QStringLiteral("Folder"));
    controller->undoStack().undo();
    settle();
    EXPECT_EQ(drag(*dragOf({folder}), row(inner).center(), true), Qt::IgnoreAction);
    EXPECT_EQ(drag(*dragOf({a}), {100, tree()->viewport()->height() - 3}, true), Qt::IgnoreAction);
    EXPECT_EQ(children(projects), all);

    // Dragged by the pointer: what cannot be moved stays.
    sidebar().selectItems({special(ZQSidebarKind::Library)->objectID()});
    int drags = 0;
    tree()->makeDrag = [&](const QModelIndexList &indexes) {
        drags += int(indexes.size());
        return nullptr;
    };
    const auto pull = [this](const QPoint &from) {
        QTest::mousePress(tree()->viewport(), Qt::LeftButton, {}, from);
        for (const int distance : {30, 60}) {
            const QPoint to = from + QPoint(0, distance);
            QMouseEvent move(QEvent::MouseMove, to, tree()->viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                             {});
            QApplication::sendEvent(tree()->viewport(), &move);
        }
        QTest::mouseRelease(tree()->viewport(), Qt::LeftButton, {}, from);
    };
    pull(row(special(ZQSidebarKind::Library)).center());
    EXPECT_EQ(drags, 0);
    click(row(a).center());
    pull(row(a).center());
    EXPECT_GT(drags, 0);
}

TEST_F(SidebarTest, TheMarkStandsWhereADropWouldGo)
{
    const QColor accent = zqColor(ZQColorRole::Accent);
    const auto marks = [&](const QMimeData &mime, const QPoint &point) { // the rows of pixels with a long mark
        const auto both = Qt::MoveAction | Qt::CopyAction;
        QDragMoveEvent event(point, both, &mime, Qt::LeftButton, {});
        QDragEnterEvent enter(point, both, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &enter);
        QApplication::sendEvent(tree()->viewport(), &event);
        const QImage image = tree()->viewport()->grab().toImage();
        QList<QRect> found;
        for (int y = 0; y < image.height(); ++y) {
            int first = -1;
            int count = 0;
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == accent) {
                    first = first < 0 ? x : first;
                    ++count;
                }
            }
            if (count > 60) {
                found.append({first, y, count, 1});
            }
        }
        return found;
    };
    const int width = tree()->viewport()->width();
    const auto mime = dragOf({a});
    const QRect target = row(folder);
    const auto line = [&](int y, int left) {
        return QList<QRect>{{left, y, width - left - 8, 1}, {left, y + 1, width - left - 8, 1}};
    };
    EXPECT_EQ(marks(*mime, {100, target.top()}), line(target.top() - 1, 22));
    EXPECT_EQ(marks(*mime, {100, target.bottom()}), line(row(inner).top() - 1, 38)) << "into the open one";
    const QList<QRect> box = marks(*mime, target.center());
    ASSERT_GE(box.size(), 2);
    EXPECT_NEAR(box.first().top(), target.top(), 2);
    EXPECT_NEAR(box.last().top(), target.bottom(), 2);
    EXPECT_EQ(marks(*mime, {100, row(inner).bottom()}), line(row(inner).bottom(), 38)) << "behind the last";
    EXPECT_TRUE(marks(*mime, row(special(ZQSidebarKind::Library)).center()).isEmpty());
    marks(*mime, target.center());
    QDragLeaveEvent leave;
    QApplication::sendEvent(tree()->viewport(), &leave);
    EXPECT_NE(pixel({100, target.top() + 1}), accent);
    inner->deletePermanently();
    folder->setExpanded(true);
    delegate->saveAction();
    settle();
    EXPECT_EQ(marks(*dragOf({a}), {100, row(folder).bottom()}), line(row(folder).bottom(), 22))
        << "behind the folder: there is nothing to open";
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(image(QStringLiteral("red"))->itemURL())});
    const QList<QRect> everything = marks(files, {100, tree()->viewport()->height() - 3});
    ASSERT_GE(everything.size(), 2);
    EXPECT_NEAR(everything.first().top(), 1, 2);
    EXPECT_NEAR(everything.last().top(), tree()->viewport()->height() - 2, 2);
    files.setUrls({});
    EXPECT_TRUE(marks(files, {100, tree()->viewport()->height() - 3}).isEmpty());
}

TEST_F(SidebarTest, RowsShowWhatIsChosenFocusedAndAway)
{
    const auto live = zqCast<ZQSidebarWatchedFolder>(
        add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel)));
    live->setIs_missing(true);
    delegate->saveAction();
    settle();
    const auto ground = [&](const Item &item) { return pixel({row(item).right() - 60, row(item).top() + 4}); };
    EXPECT_EQ(ground(a), zqColor(ZQColorRole::Select));
    EXPECT_NE(ground(b), zqColor(ZQColorRole::Select));
    const auto border = [&](const Item &item) { return pixel({row(item).center().x(), row(item).top()}); };
    EXPECT_NE(border(a), zqColor(ZQColorRole::Accent));
    tree()->setFocus();
    EXPECT_EQ(border(a), zqColor(ZQColorRole::Accent));
    EXPECT_NE(border(b), zqColor(ZQColorRole::Accent));
    const auto colors = [&](const Item &item, int left, int right) { // of that part of a row
        QSet<QRgb> found;
        const QImage image = tree()->viewport()->grab().toImage();
        for (int x = left; x < right; ++x) {
            for (int y = row(item).top() + 3; y < row(item).bottom() - 2; ++y) {
                found.insert(image.pixel(x, y));
            }
        }
        return found;
    };
    EXPECT_GT(colors(a, row(a).right() - 30, row(a).right() - 16).size(), 1) << "how many it holds";
    EXPECT_EQ(colors(b, row(b).right() - 60, row(b).right() - 10).size(), 1) << "nothing to count";
    EXPECT_GT(colors(folder, 10, 20).size(), 1) << "it can be opened";
    EXPECT_EQ(colors(a, 10, 20).size(), 1);
    const QModelIndex liveRow = index(live);
    EXPECT_EQ(liveRow.data(SidebarTreeModel::CountRole).toString(), QStringLiteral("missing"));
    EXPECT_EQ(liveRow.data(Qt::ToolTipRole).toString(),
              QStringLiteral("Its folder cannot be found. Connect the drive it is on, or put the folder back."));
    live->setIs_missing(false);
    live->setIs_trashed(true);
    EXPECT_EQ(liveRow.data(Qt::ToolTipRole).toString(),
              QStringLiteral("Its folder is in the trash. Restore it there, or remove the live folder."));
    EXPECT_TRUE(liveRow.data(SidebarTreeModel::StateRole).toBool());
    live->setIs_trashed(false);
    EXPECT_EQ(liveRow.data(Qt::ToolTipRole).toString(), live->folderPath());
    EXPECT_FALSE(liveRow.data(SidebarTreeModel::StateRole).toBool());
    EXPECT_EQ(index(a).data(Qt::AccessibleTextRole).toString(), QStringLiteral("A, 4 items"));
    EXPECT_EQ(index(folder).data(Qt::AccessibleTextRole).toString(), QStringLiteral("Folder"));
    EXPECT_EQ(index(a).data(Qt::ToolTipRole).toString(), QString());
    EXPECT_EQ(index(b).data(SidebarTreeModel::CountRole).toString(), QString());
    EXPECT_FALSE(index(a).data(Qt::UserRole + 77).isValid());
    EXPECT_FALSE(tree()->model()->data({}, Qt::DisplayRole).isValid());

    const auto flags = [&](const Item &item) { return int(index(item).flags()); };
    const int shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    EXPECT_EQ(flags(a), shown | Qt::ItemIsDragEnabled | Qt::ItemIsEditable);
    EXPECT_EQ(flags(live), shown | Qt::ItemIsDragEnabled);
    EXPECT_EQ(flags(special(ZQSidebarKind::Library)), shown);
    EXPECT_EQ(flags(projects), int(Qt::ItemIsEnabled));
    auto *model = tree()->tree();
    EXPECT_EQ(int(model->flags({})), 0);
    EXPECT_EQ(model->indexOfKind(ZQSidebarKind::ProjectsLabel), index(projects));
    EXPECT_EQ(model->indexOfKind(ZQSidebarKind::Library), index(special(ZQSidebarKind::Library)));
    EXPECT_FALSE(model->indexOfKind(ZQSidebarKind::TagsLabel).isValid());
    EXPECT_EQ(model->columnCount({}), 1);
    EXPECT_FALSE(model->index(0, 1).isValid());
    EXPECT_FALSE(model->index(-1, 0).isValid());
    EXPECT_FALSE(model->index(model->rowCount(), 0).isValid());
    EXPECT_FALSE(model->parent({}).isValid());
    EXPECT_EQ(model->parent(index(inner)), index(folder));
    EXPECT_FALSE(model->setData(index(a), QStringLiteral("x"), Qt::DisplayRole));
    EXPECT_FALSE(model->setData({}, QStringLiteral("x"), Qt::EditRole));
    model->setShowsCounts(false);
    EXPECT_EQ(index(a).data(SidebarTreeModel::CountRole).toString(), QString());
    EXPECT_EQ(index(a).data(Qt::AccessibleTextRole).toString(), QStringLiteral("A"));
}

TEST_F(SidebarTest, LabelsAreNeitherChosenNorSteppedOn)
{
    sidebar().selectItems({projects->objectID()});
    EXPECT_TRUE(sidebar().selectedItems().isEmpty() || !sidebar().selectedItems().contains(projects->objectID()));
    sidebar().selectItems({ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::Screenshots, context())->objectID()});
    tree()->setFocus();
    press(Qt::Key_Down);
    ASSERT_EQ(sidebar().selectedItems().size(), 1);
    EXPECT_NE(sidebar().selectedItems().first(), projects->objectID());
    EXPECT_FALSE(tree()->selectionModel()->selectedIndexes().isEmpty()) << "where it stands is seen";
    press(Qt::Key_Up);
    EXPECT_TRUE(sidebar().selectedItems().contains(
        ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::Screenshots, context())->objectID()));
}

TEST_F(SidebarTest, KeysOpenAndCloseSectionsAndKeepWhatIsShown)
{
    const auto chosen = [this] { return sidebar().selectedItems(); };
    const auto screenshots = ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind::Screenshots, context())->objectID();
    sidebar().selectItems({screenshots});
    tree()->setFocus();
    press(Qt::Key_Down);
    const auto first = chosen();
    ASSERT_NE(first, QList<ZQObjectID>{screenshots});
    const QModelIndex label = tree()->currentIndex().parent();

    press(Qt::Key_PageUp);
    EXPECT_NE(chosen(), first);
    press(Qt::Key_End);
    const auto last = chosen();
    press(Qt::Key_Home);
    press(Qt::Key_PageDown);
    EXPECT_EQ(chosen(), last);

    sidebar().selectItems(first);
    press(Qt::Key_Left); // to the label
    EXPECT_EQ(chosen(), first);
    EXPECT_EQ(tree()->currentIndex(), label);
    press(Qt::Key_Space);
    EXPECT_FALSE(tree()->isExpanded(label));
    press(Qt::Key_Up);
    EXPECT_EQ(chosen(), QList<ZQObjectID>{screenshots});
    press(Qt::Key_Down); // where it is closed the arrows stop
    EXPECT_EQ(chosen(), QList<ZQObjectID>{screenshots});
    press(Qt::Key_Return);
    EXPECT_TRUE(tree()->isExpanded(label));
    press(Qt::Key_Left);
    EXPECT_FALSE(tree()->isExpanded(label));
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    EXPECT_EQ(chosen(), first);
}
