#include "Classes/Command/Commands.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Widgets/ZQSwitch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Tests/Classes/Interface/SameEditFixture.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QRegularExpression>

#include <string>
#include <vector>

namespace {

// One of three equal corners of the library: a folder with the projects From and To, of which From holds "one", "two"
// and "three".
struct Corner
{
    ZQRef<ZQSidebarBaseItem> folder;
    ZQRef<ZQSidebarBaseItem> from;
    ZQRef<ZQSidebarBaseItem> to;
    ZQRef<ZQSidebarBaseItem> tag;     // on nothing yet
    QHash<QString, ZQObjectID> items; // by the title they had at first
    QList<ZQObjectID> fresh;          // those that appeared since
};

// An edit of rows by each of its faces.
struct RowEdit
{
    const char *name;
    std::function<void(Corner &)> inWindow;
    std::function<void(Corner &, EditContext &)> byCall;
    std::function<int(Corner &, CommandContext &)> onCommandLine = {}; // null: no command makes it
    std::function<int(Corner &, CommandContext &)> takenBack = {};     // by a command
};

class SameRowEditTest : public SameEditFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        for (const QString &key : suppressions) {
            ZQUserDefaults::standardUserDefaults().setObjectForKey(true, key);
        }
        for (Corner *corner : {&inWindow, &onCommandLine, &byCall}) {
            corner->folder = add<ZQSidebarFolder>(QStringLiteral("Set"), projects);
            corner->folder->setExpanded(true);
            corner->from = add<ZQSidebarProject>(QStringLiteral("From"), corner->folder);
            corner->to = add<ZQSidebarProject>(QStringLiteral("To"), corner->folder);
            corner->tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("Tag%1").arg(++tags), context());
            fill(*corner);
        }
        sidebar().reload();
        settleEdits();
    }
    void TearDown() override
    {
        for (const QString &key : suppressions) {
            ZQUserDefaults::standardUserDefaults().removeObjectForKey(key);
        }
        MainWindowFixture::TearDown();
    }
    void fill(Corner &corner)
    {
        EditContext editing = editContext(nullptr);
        LibraryCommands commands(editing);
        for (const char *title : {"one", "two", "three"}) {
            const auto known = allItems();
            commands.duplicateItems({image(QStringLiteral("red"))->objectID()});
            settleEdits();
            const QList<ZQObjectID> made = since(known);
            ASSERT_EQ(made.size(), 1);
            commands.renameItem(made.first(), QLatin1StringView(title));
            corner.items.insert(QLatin1StringView(title), made.first());
            commands.addItems(made, corner.from->objectID(), ZQSidebarBaseItem::appendIndex);
        }
    }
    QList<ZQObjectID> allItems()
    {
        return context().fetchObjectIDs({.entityName = ZQLibraryBaseItem::entityName()}).value_or(QList<ZQObjectID>());
    }
    QList<ZQObjectID> since(const QList<ZQObjectID> &known)
    {
        QList<ZQObjectID> all = allItems();
        all.removeIf([&known](const ZQObjectID &id) { return known.contains(id); });
        return all;
    }
    std::string stateOf(const Corner &corner)
    {
        QStringList lines{corner.folder->title()};
        for (const Item &row : corner.folder->orderedChildren()) {
            context().refreshObject(row.get(), false);
            lines.append(QStringLiteral("%1 %2 %3 %4")
                             .arg(row->title())
                             .arg(row->kind())
                             .arg(row->sortKeys())
                             .arg(row->active()));
            const auto members = zqFetch<ZQProjectItem>(
                context(), {.entityName = ZQProjectItem::entityName(),
                            .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("project == %@"),
                                                                          {QVariant::fromValue(row->objectID())}),
                            .sortDescriptors = {{QStringLiteral("order")}}});
            for (const auto &member : members.value_or(QList<ZQRef<ZQProjectItem>>())) {
                lines.append(QString::number(member->order()) + u' ' + stateOf(member->item()));
            }
        }
        context().refreshObject(corner.tag.get(), false);
        lines.append(QStringLiteral("tag %1 %2").arg(corner.tag->title().mid(4)).arg(corner.tag->active()));
        for (const ZQObjectID &id : corner.fresh) {
            lines.append(QStringLiteral("new ") + stateOf(zqCast<ZQLibraryBaseItem>(context().objectWithID(id))));
        }
        return lines.join(u'\n').toStdString();
    }
    QString stateOf(const ZQRef<ZQLibraryBaseItem> &item)
    {
        context().refreshObject(item.get(), false);
        const QString path = item->findItemURL();
        QStringList inFile = OpenMeta::getUserTagsNoRestore(path, nullptr).value_or(QStringList());
        inFile.replaceInStrings(QRegularExpression(QStringLiteral("^Tag\\d")), QStringLiteral("Tag"));
        return QStringLiteral("%1 %2 %3 [%4]")
            .arg(item->title(), QFileInfo(path).fileName())
            .arg(item->active())
            .arg(inFile.join(u','));
    }
    static ZQObjectID member(const Corner &corner, const char *title)
    {
        return corner.items.value(QLatin1StringView(title));
    }
    QStringList bundleIDOf(const ZQObjectID &item)
    {
        return {zqCast<ZQLibraryBaseItem>(context().objectWithID(item))->bundleID()};
    }
    // Drags what is selected, or a row of the sidebar, onto a row: its middle, or its upper border.
    enum class Where { Middle, UpperBorder };
    void dropOn(const Item &target, const QMimeData &mime, Qt::DropAction action, Where where)
    {
        const QRect row = tree()->visualRect(tree()->tree()->indexOf(target->objectID()));
        const QPoint point(100, where == Where::Middle ? row.center().y() : row.top());
        QDragEnterEvent enter(point, action, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &enter);
        QDropEvent drop(point, action, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(tree()->viewport(), &drop);
        EXPECT_TRUE(drop.isAccepted());
    }
    std::unique_ptr<QMimeData> selection()
    {
        return std::unique_ptr<QMimeData>(browser().content().mimeData(grid().selection()));
    }
    void choose(const Item &project, const QStringList &titles)
    {
        show(project);
        select(titles);
        grid().setFocus();
    }
    void nameRow(const QString &title)
    {
        auto *editor = tree()->findChild<QLineEdit *>(QStringLiteral("InlineEditor"));
        ASSERT_TRUE(editor);
        editor->selectAll();
        type(title);
        press(Qt::Key_Return);
    }

    std::vector<RowEdit> editsOfItems();
    std::vector<RowEdit> editsOfRows();
    void editAt(const RowEdit &edit);

    const QStringList suppressions{QStringLiteral("removeFromSidebarAlertSuppress"),
                                   QStringLiteral("removeFromSidebarAndContentAlertSuppress")};
    int tags = 0;
    Corner inWindow;
    Corner onCommandLine;
    Corner byCall;
};

// Of items and where they are: what can take long.
std::vector<RowEdit> SameRowEditTest::editsOfItems()
{
    const QString one = QStringLiteral("one");
    const QString two = QStringLiteral("two");
    const QString three = QStringLiteral("three");
    return {
        {"rename an item",
         [=, this](Corner &corner) {
             choose(corner.from, {one});
             holdEdits();
             run(CommandID::Rename);
             type(QStringLiteral("first"));
             press(Qt::Key_Return);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).renameItem(member(corner, "one"), QStringLiteral("first"));
         }},
        {"add to a project",
         [=, this](Corner &corner) {
             choose(corner.from, {two, three});
             holdEdits();
             dropOn(corner.to, *selection(), Qt::CopyAction, Where::Middle);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).addItems({member(corner, "two"), member(corner, "three")}, corner.to->objectID(),
                                               ZQSidebarBaseItem::appendIndex);
         }},
        {"move in a project",
         [=, this](Corner &corner) {
             choose(corner.from, {three});
             holdEdits();
             browser().content().drop(selection().get(), 0, Qt::MoveAction);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).moveItems({member(corner, "three")}, corner.from->objectID(), 0);
         }},
        {"remove from a project",
         [=, this](Corner &corner) {
             choose(corner.to, {two});
             holdEdits();
             run(CommandID::Remove);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).removeItems({member(corner, "two")}, corner.to->objectID());
         }},
        {"duplicate",
         [=, this](Corner &corner) {
             choose(corner.from, {two});
             holdEdits();
             run(CommandID::Duplicate);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).duplicateItems({member(corner, "two")}, corner.from->objectID());
         }},
        {"tag by a drop",
         [=, this](Corner &corner) {
             choose(corner.from, {two, three});
             const auto mime = selection();
             sidebar().findChild<ZQSwitch *>()->setCurrentIndex(1);
             settle();
             holdEdits();
             dropOn(corner.tag, *mime, Qt::CopyAction, Where::Middle);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).addItems({member(corner, "two"), member(corner, "three")}, corner.tag->objectID(),
                                               ZQSidebarBaseItem::appendIndex);
         }},
        {"take from a tag",
         [=, this](Corner &corner) {
             choose(corner.tag, {two});
             holdEdits();
             run(CommandID::Remove);
         },
         [](Corner &corner, EditContext &context) {
             LibraryCommands(context).removeItems({member(corner, "two")}, corner.tag->objectID());
         }},
        {"delete",
         [=, this](Corner &corner) {
             choose(corner.from, {two});
             holdEdits();
             run(CommandID::DeleteFromLibrary);
         },
         [](Corner &corner, EditContext &context) { LibraryCommands(context).deleteItems({member(corner, "two")}); },
         [this](Corner &corner, CommandContext &command) {
             return zqRunDelete(bundleIDOf(member(corner, "two")), command);
         },
         [this](Corner &corner, CommandContext &command) {
             return zqRunRestore(bundleIDOf(member(corner, "two")), command);
         }},
    };
}

std::vector<RowEdit> SameRowEditTest::editsOfRows()
{
    using NewItem = SidebarCommands::NewItem;
    return {
        {"rename a tag",
         [this](Corner &corner) {
             show(corner.tag);
             tree()->setFocus();
             run(CommandID::Rename);
             nameRow(corner.tag->title() + QStringLiteral(" new"));
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands(context).validateNewTitle(corner.tag->title() + QStringLiteral(" new"), corner.tag);
         }},
        {"delete a tag",
         [this](Corner &corner) {
             show(corner.tag);
             tree()->setFocus();
             whenAsked([](Sheet &sheet) { QTest::keyClick(&sheet, Qt::Key_Return); });
             run(CommandID::Remove);
         },
         [](Corner &corner, EditContext &context) { SidebarCommands(context).deleteListItems({corner.tag}); }},
        {"new project",
         [this](Corner &corner) {
             show(corner.to);
             run(CommandID::NewProject);
             nameRow(QStringLiteral("Fresh"));
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands commands(context);
             commands.validateNewTitle(QStringLiteral("Fresh"), commands.addNewListItem(NewItem::Project, corner.to));
         }},
        {"new folder",
         [this](Corner &corner) {
             show(corner.folder);
             run(CommandID::NewFolder);
             nameRow(QStringLiteral("Deep"));
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands commands(context);
             commands.validateNewTitle(QStringLiteral("Deep"), commands.addNewListItem(NewItem::Folder, corner.folder));
         }},
        {"rename a row",
         [this](Corner &corner) {
             show(corner.from);
             tree()->setFocus();
             run(CommandID::Rename);
             nameRow(QStringLiteral("Source"));
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands(context).validateNewTitle(QStringLiteral("Source"), corner.from);
         }},
        {"move a row",
         [this](Corner &corner) {
             const std::unique_ptr<QMimeData> mime(tree()->makeDrag({tree()->tree()->indexOf(corner.to->objectID())}));
             dropOn(corner.from, *mime, Qt::MoveAction, Where::UpperBorder);
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands(context).moveListItems({corner.to}, {corner.folder}, {0});
         }},
        {"delete a row and what it holds",
         [this](Corner &corner) {
             show(corner.to);
             whenMenuOpens(QStringLiteral("Delete To and Content"));
             const QRect row = tree()->visualRect(tree()->tree()->indexOf(corner.to->objectID()));
             Q_EMIT tree()->customContextMenuRequested(row.center());
         },
         [](Corner &corner, EditContext &context) {
             SidebarCommands(context).deleteSidebarItemAndRemoveContentFromLibrary({corner.to});
         }},
        {"delete a row",
         [this](Corner &corner) {
             show(corner.from);
             tree()->setFocus();
             run(CommandID::Remove);
         },
         [](Corner &corner, EditContext &context) { SidebarCommands(context).deleteSidebarItem({corner.from}); }},
    };
}

void SameRowEditTest::editAt(const RowEdit &one)
{
    const auto made = [this](const std::function<void()> &change, Corner &corner) {
        const auto known = allItems();
        change();
        expectEdited();
        corner.fresh += since(known);
    };
    const std::string before = stateOf(inWindow);
    const int windowSteps = controller->undoStack().count();
    made([&] { one.inWindow(inWindow); }, inWindow);
    const int taken = controller->undoStack().count() - windowSteps;
    EXPECT_GT(taken, 0);
    CommandContext command;
    command.delegate = delegate.get();
    EditContext commandless = editContext(nullptr);
    made(
        [&] {
            holdEdits();
            if (one.onCommandLine) {
                EXPECT_EQ(one.onCommandLine(onCommandLine, command), 0) << command.errors.toStdString();
            } else {
                one.byCall(onCommandLine, commandless);
            }
        },
        onCommandLine);
    EXPECT_EQ(controller->undoStack().count(), windowSteps + taken) << "a command leaves no step in the window";
    const int steps = undoStack.count();
    EditContext editing = editContext(&undoStack);
    made(
        [&] {
            holdEdits();
            one.byCall(byCall, editing);
        },
        byCall);
    EXPECT_EQ(undoStack.count(), steps + taken);
    EXPECT_EQ(journal(), QByteArray());
    EXPECT_FALSE(context().hasChanges());
    const std::string now = stateOf(inWindow);
    EXPECT_NE(now, before) << "it does something";
    EXPECT_EQ(stateOf(onCommandLine), now);
    EXPECT_EQ(stateOf(byCall), now);
    for (int i = 0; i < taken; ++i) {
        edit([this] {
            controller->undoStack().undo();
            undoStack.undo();
        });
    }
    EXPECT_EQ(stateOf(byCall), stateOf(inWindow));
    if (inWindow.fresh.isEmpty()) {
        EXPECT_EQ(stateOf(inWindow), before);
    } else { // a copy stays, deleted
        EXPECT_NE(stateOf(inWindow), now);
    }
    if (one.takenBack) {
        edit([&] { EXPECT_EQ(one.takenBack(onCommandLine, command), 0) << command.errors.toStdString(); });
        EXPECT_EQ(stateOf(onCommandLine), stateOf(inWindow));
        edit([&] { EXPECT_EQ(one.onCommandLine(onCommandLine, command), 0) << command.errors.toStdString(); });
    }
    for (int i = 0; i < taken; ++i) {
        edit([this] {
            controller->undoStack().redo();
            undoStack.redo();
        });
    }
    EXPECT_EQ(stateOf(inWindow), now);
    EXPECT_EQ(stateOf(onCommandLine), now);
    EXPECT_EQ(stateOf(byCall), now);
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Ways, SameRowEditTest, testing::Values(EditWay::AtOnce, EditWay::Queued), nameOfWay);

TEST_P(SameRowEditTest, WindowCommandAndCallLeaveTheSameRowsFilesJournalAndUndo)
{
    ASSERT_EQ(stateOf(onCommandLine), stateOf(inWindow));
    ASSERT_EQ(stateOf(byCall), stateOf(inWindow));
    std::vector<RowEdit> edits = editsOfItems();
    if (!isQueued()) {
        const std::vector<RowEdit> ofRows = editsOfRows(); // wait for nothing
        edits.insert(edits.end(), ofRows.begin(), ofRows.end());
    }
    for (const RowEdit &edit : edits) {
        SCOPED_TRACE(edit.name);
        editAt(edit);
    }
}
