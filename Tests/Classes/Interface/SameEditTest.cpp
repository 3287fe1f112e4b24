#include "Classes/Command/Commands.h"
#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Interface/InfoPanel/InfoPanelViewController.h"
#include "Classes/Tags/OpenMeta.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Tests/Classes/Interface/SameEditFixture.h"

#include <QPlainTextEdit>

#include <string>
#include <vector>

namespace {

// An edit by each of its faces, all of which are one function below; null where no command makes it.
struct Edit
{
    const char *name;
    std::function<void(const QString &title)> inWindow;
    std::function<int(const QString &bundleID, CommandContext &)> onCommandLine;
    std::function<void(const QList<ZQObjectID> &, EditContext &)> byCall;
};

class SameEditTest : public SameEditFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        select({QStringLiteral("red")});
        EditContext editing = editContext(&undoStack);
        for (int i = 0; i < 2; ++i) {
            LibraryCommands(editing).duplicateItems({image(QStringLiteral("red"))->objectID()});
        }
        settleEdits();
        const auto all =
            zqFetch<ZQLibraryBaseItem>(context(), QStringLiteral("title BEGINSWITH %@"), {QStringLiteral("red")});
        ASSERT_TRUE(all && all->size() == 3);
        a->addItems(*all);
        delegate->saveAction();
        settleEdits();
        for (const auto &item : *all) {
            titles.append(item->title());
            items.append(item->objectID());
        }
    }
    ZQRef<ZQLibraryBaseItem> item(int index) { return zqCast<ZQLibraryBaseItem>(context().objectWithID(items[index])); }
    // What the store and the file hold, apart from what is each item's own.
    QStringList stored(int index)
    {
        const auto edited = item(index);
        context().refreshObject(edited.get(), false);
        QStringList tags;
        for (const auto &each : edited->itemTags()) {
            tags.append(each->title());
        }
        tags.sort();
        return {QString::number(edited->rating()),
                edited->notes(),
                edited->license(),
                edited->webPageURL(),
                tags.join(u','),
                edited->active() ? QStringLiteral("active") : QStringLiteral("deleted")};
    }
    std::string state(int index)
    {
        QStringList lines = stored(index);
        const QString path = item(index)->findItemURL();
        for (const QString &name : ZQExtendedAttributes::list(path)) {
            if (!name.contains(QStringLiteral("time"), Qt::CaseInsensitive)) {
                lines.append(name + u'=' +
                             QString::fromLatin1(ZQExtendedAttributes::get(path, name).value_or(QByteArray()).toHex()));
            }
        }
        return lines.join(u'\n').toStdString();
    }
    // What that says. An edit that was taken back leaves other bytes than none: an empty comment is a comment.
    std::string meaning(int index)
    {
        const QString path = item(index)->findItemURL();
        QStringList tags = OpenMeta::getUserTagsNoRestore(path, nullptr).value_or(QStringList());
        tags.sort();
        return (stored(index) + tags +
                QStringList{QString::number(OpenMeta::getRating(path)),
                            OpenMeta::getString(OpenMeta::finderCommentKey, path)})
            .join(u'\n')
            .toStdString();
    }
    InfoPanelViewController &panel() { return *window().findChild<InfoPanelViewController *>(); }

    QStringList titles;
    QList<ZQObjectID> items;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Ways, SameEditTest, testing::Values(EditWay::AtOnce, EditWay::Queued), nameOfWay);

TEST_P(SameEditTest, WindowCommandAndCallLeaveTheSameStoreFilesJournalAndUndo)
{
    const auto ids = [this](int index) { return QList<ZQObjectID>{items[index]}; };
    const QString fresh = QStringLiteral("fresh");
    const Edit edits[] = {
        {"rating", [this](const QString &) { press(Qt::Key_4); },
         [](const QString &id, CommandContext &command) {
             return zqRunRate({id, QStringLiteral("4")}, command);
         },
         [](const auto &chosen, EditContext &context) { ItemEdits(context).setRating(chosen, 4); }},
        {"no rating", [this](const QString &) { press(Qt::Key_0); },
         [](const QString &id, CommandContext &command) {
             return zqRunRate({id, QStringLiteral("0")}, command);
         },
         [](const auto &chosen, EditContext &context) { ItemEdits(context).setRating(chosen, 0); }},
        {"notes",
         [this](const QString &) {
             named<QPlainTextEdit>("Notes")->setFocus();
             type(QStringLiteral("for print"));
             grid().setFocus();
         },
         [](const QString &id, CommandContext &command) {
             return zqRunNote({id, QStringLiteral("for print")}, command);
         },
         [](const auto &chosen, EditContext &context) {
             ItemEdits(context).setNotes(chosen, QStringLiteral("for print"));
         }},
        {"tags",
         [this, fresh](const QString &) {
             panel().tagItems(browser().selectedItems(), {QStringLiteral("mine"), fresh});
         },
         [fresh](const QString &id, CommandContext &command) {
             return zqRunTag({{id}, {QStringLiteral("mine"), fresh}, {}}, command);
         },
         [fresh](const auto &chosen, EditContext &context) {
             ItemEdits(context).changeTags(chosen, {}, {}, {QStringLiteral("mine"), fresh});
         }},
        {"one tag less", [this, fresh](const QString &) { panel().tagItems(browser().selectedItems(), {fresh}); },
         [](const QString &id, CommandContext &command) {
             return zqRunTag({{id}, {}, {QStringLiteral("mine")}}, command);
         },
         [this](const auto &chosen, EditContext &context) {
             ItemEdits(context).changeTags(chosen, {}, {tag->objectID()});
         }},
        {"license",
         [this](const QString &) {
             named<QLineEdit>("License")->setFocus();
             type(QStringLiteral("CC0"));
             press(Qt::Key_Return);
         },
         {}, // by no command
         [](const auto &chosen, EditContext &context) {
             ItemEdits(context).setLicense(chosen, QStringLiteral("CC0"));
         }},
        {"source",
         [this](const QString &) {
             named<QLineEdit>("Source")->setFocus();
             type(QStringLiteral("https://example.org"));
             press(Qt::Key_Return);
         },
         {},
         [](const auto &chosen, EditContext &context) {
             ItemEdits(context).setSource(chosen, QStringLiteral("https://example.org"));
         }},
        {"deletion", [this](const QString &) { run(CommandID::DeleteFromLibrary); },
         [](const QString &id, CommandContext &command) { return zqRunDelete({id}, command); },
         [](const auto &chosen, EditContext &context) { LibraryCommands(context).deleteItems(chosen); }},
    };
    EditContext editing = editContext(&undoStack);
    EditContext commandless = editContext(nullptr);
    std::vector<std::string> meanings;
    std::string last = state(0);
    for (const Edit &each : edits) {
        SCOPED_TRACE(each.name);
        meanings.push_back(meaning(0));
        show(a);
        select({titles[0]});
        grid().setFocus();
        const int windowSteps = controller->undoStack().count();
        edit([&] { each.inWindow(titles[0]); });
        EXPECT_EQ(controller->undoStack().count(), windowSteps + 1);
        CommandContext command;
        command.delegate = delegate.get();
        edit([&] {
            if (each.onCommandLine) {
                EXPECT_EQ(each.onCommandLine(item(1)->bundleID(), command), 0) << command.errors.toStdString();
            } else {
                each.byCall(ids(1), commandless);
            }
        });
        EXPECT_EQ(controller->undoStack().count(), windowSteps + 1) << "a command leaves no step in the window";
        const int steps = undoStack.count();
        edit([&] { each.byCall(ids(2), editing); });
        EXPECT_EQ(undoStack.count(), steps + 1);
        EXPECT_EQ(journal(), QByteArray());
        EXPECT_FALSE(context().hasChanges());
        const std::string now = state(0);
        EXPECT_NE(now, last) << "it does something";
        EXPECT_EQ(state(1), now);
        EXPECT_EQ(state(2), now);
        last = now;
    }
    for (size_t step = std::size(edits); step-- > 0;) {
        SCOPED_TRACE(edits[step].name);
        edit([&] {
            controller->undoStack().undo();
            undoStack.undo();
        });
        EXPECT_EQ(meaning(0), meanings[step]);
        EXPECT_EQ(meaning(2), meanings[step]);
        EXPECT_EQ(journal(), QByteArray());
    }
}
