// Whatever a person does in whatever order: undo and redo go through the same trees, memberships and attributes.

#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Tests/Classes/Editing/EditFixture.h"

#include <random>

namespace {

class CommandSequencesTest : public EditFixture, public testing::WithParamInterface<unsigned>
{
protected:
    CommandSequencesTest() : m_random(GetParam())
    {
        user.answerQuestion = [](const UserQuestion &) { return 0; };
        const Item first = addProject(QStringLiteral("First"));
        const Item folder = addFolder(QStringLiteral("Folder"));
        addProject(QStringLiteral("Inside"), folder);
        for (int i = 0; i < 8; ++i) {
            const auto image = library.addImage(QStringLiteral("image%1").arg(i));
            if (i < 5) {
                first->addItem(image.get());
            }
        }
        ZQSidebarTag::addNewTagWithName(QStringLiteral("tag"), library.context());
        library.context().save();
    }

    int upTo(int count) { return count < 1 ? 0 : int(m_random() % unsigned(count)); }
    template <class T>
    T anyOf(const QList<T> &list)
    {
        return list.isEmpty() ? T() : list[upTo(int(list.size()))];
    }
    static void collect(const Item &above, QList<Item> &into)
    {
        for (const Item &child : above->orderedChildren()) {
            into.append(child);
            collect(child, into);
        }
    }
    // Folders and projects, or those only.
    QList<Item> rows(bool (ZQSidebarBaseItem::*kind)() const = nullptr) const
    {
        QList<Item> result;
        collect(projects, result);
        result.removeIf([kind](const Item &row) { return kind && !(row.get()->*kind)(); });
        return result;
    }
    QList<Item> tags() const
    {
        QList<Item> result = ZQSidebarBaseItem::tagsLabelInManagedObjectContext(m_editing.context)->orderedChildren();
        result.removeIf([](const Item &tag) { return tag->kind() != 0; });
        return result;
    }
    QList<ZQObjectID> images() const
    {
        return m_editing.context
            .fetchObjectIDs({.entityName = ZQLibraryBaseItem::entityName(),
                             .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("active == YES")),
                             .sortDescriptors = {{QStringLiteral("SHA1")}, {QStringLiteral("title")}}})
            .value_or(QList<ZQObjectID>());
    }
    QList<ZQObjectID> someImages()
    {
        QList<ZQObjectID> chosen = images();
        chosen.removeIf([this](const ZQObjectID &) { return upTo(3) > 0; });
        return chosen;
    }

    void act();
    QString state(ZQManagedObjectContext &context) const;
    QString state() const { return state(m_editing.context); }
    void finish()
    {
        zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
    }
    void go(int steps); // of undo, or of redo, and each state is the one that was
    void expectKnownState(const QString &what);

    std::mt19937 m_random;
    EditContext &m_editing = editing;
    LibraryCommands m_items{editing};
    SidebarCommands m_rows{editing};
    QStringList m_states; // by the index of the undo stack
    int m_number = 0;
};

QString titlesOf(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QStringList titles;
    for (const auto &item : items) {
        titles.append(item->title());
    }
    return titles.join(u' ');
}

// One of the commands, on whatever there is.
void CommandSequencesTest::act()
{
    const QString name = QStringLiteral("n%1").arg(++m_number);
    const Item project = anyOf(rows(&ZQSidebarBaseItem::isProject));
    const Item row = anyOf(rows());
    const Item tag = anyOf(tags());
    switch (upTo(16)) {
    case 0:
        m_rows.addNewListItem(SidebarCommands::NewItem::Project, row);
        return;
    case 1:
        m_rows.addNewListItem(SidebarCommands::NewItem::Folder, row);
        return;
    case 2:
        m_rows.addNewTag();
        return;
    case 3:
        if (row) {
            m_rows.renameListItem(row, name);
        }
        return;
    case 4:
        if (tag) {
            m_rows.validateNewTitle(name, tag); // which renames
        }
        return;
    case 5: {
        Item into = anyOf(rows(&ZQSidebarBaseItem::isFolder));
        into = into ? into : projects;
        if (row && row != into && !into->isDescendantOfItem(row.get())) {
            m_rows.moveListItems({row}, {into}, {quint32(upTo(int(into->numberofChilds()) + 1))});
        }
        return;
    }
    case 6:
    case 7:
        if (project) {
            m_items.addItems(someImages(), project->objectID(), upTo(2) ? ZQSidebarBaseItem::appendIndex : 0);
        }
        return;
    case 8:
        if (project) {
            m_items.removeItems(someImages(), project->objectID());
        }
        return;
    case 9:
        if (project) {
            m_items.moveItems(someImages(), project->objectID(), quint32(upTo(6)));
        }
        return;
    case 10:
        if (rows().size() > 3 && row) {
            m_rows.deleteSidebarItem({row});
        }
        return;
    case 11:
        if (const QList<ZQObjectID> some = someImages(); images().size() - some.size() > 4) {
            m_items.deleteItems(some);
        }
        return;
    case 12:
        if (images().size() < 14) {
            m_items.duplicateItems({anyOf(images())}, project ? project->objectID() : ZQObjectID());
        }
        return;
    case 13:
        ItemEdits(m_editing).setRating(someImages(), upTo(6));
        return;
    case 14:
        if (tag) {
            ItemEdits(m_editing).changeTags(someImages(), {tag->objectID()}, {});
        }
        return;
    default:
        m_items.renameItem(anyOf(images()), name);
        return;
    }
}

QString CommandSequencesTest::state(ZQManagedObjectContext &context) const
{
    QStringList lines;
    const auto describe = [&lines](const auto &self, const Item &row, int depth) -> void {
        for (const Item &child : row->orderedChildren()) {
            QString line = QString(depth, u' ') + child->title() + u':';
            if (child->isProject()) {
                line += u' ' + titlesOf(child->items());
            }
            lines.append(line);
            self(self, child, depth + 1);
        }
    };
    describe(describe, ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context), 0);
    for (const Item &tag : ZQSidebarBaseItem::tagsLabelInManagedObjectContext(context)->orderedChildren()) {
        lines.append(u'#' + tag->title());
    }
    const auto all = zqFetch<ZQLibraryBaseItem>(context, QStringLiteral("active == YES"), {});
    QStringList items;
    for (const auto &item : all.value_or(QList<ZQRef<ZQLibraryBaseItem>>())) {
        QStringList titles;
        for (const auto &tag : item->itemTags()) {
            titles.append(tag->title());
        }
        titles.sort();
        items.append(QStringLiteral("%1 %2 %3 %4")
                         .arg(item->objectID().key)
                         .arg(item->title())
                         .arg(item->rating())
                         .arg(titles.join(u',')));
    }
    items.sort();
    return (lines + items).join(u'\n');
}

void CommandSequencesTest::expectKnownState(const QString &what)
{
    ASSERT_EQ(state().toStdString(), m_states.value(undoStack.index()).toStdString())
        << what.toStdString() << ", between \"" << undoStack.undoText().toStdString() << "\" and \""
        << undoStack.redoText().toStdString() << "\" at " << undoStack.index();
}

void CommandSequencesTest::go(int steps)
{
    for (int i = 0; i < std::abs(steps); ++i) {
        if (!(steps < 0 ? undoStack.canUndo() : undoStack.canRedo())) {
            return;
        }
        steps < 0 ? undoStack.undo() : undoStack.redo();
        finish();
        ASSERT_NO_FATAL_FAILURE(expectKnownState(steps < 0 ? QStringLiteral("undo") : QStringLiteral("redo")));
    }
}

} // namespace

TEST_P(CommandSequencesTest, UndoAndRedoGoThroughTheSameStates)
{
    constexpr int steps = 200;
    m_states = {state()};
    for (int i = 0; i < steps; ++i) {
        const int before = undoStack.index();
        act();
        finish();
        if (undoStack.index() > before) {
            ASSERT_EQ(undoStack.index(), before + 1) << "one command, one step";
            m_states.resize(undoStack.index());
            m_states.append(state());
        } else {
            ASSERT_NO_FATAL_FAILURE(expectKnownState(QStringLiteral("a command without a step")));
        }
        if (upTo(12) == 0) {
            ASSERT_NO_FATAL_FAILURE(go(-upTo(10)));
            ASSERT_NO_FATAL_FAILURE(go(upTo(10)));
        }
    }
    EXPECT_GT(undoStack.count(), 50);
    EXPECT_TRUE(user.errors.isEmpty());
    EXPECT_TRUE(library.errors.isEmpty());
    go(undoStack.count());
    const int last = undoStack.index();
    ASSERT_NO_FATAL_FAILURE(go(-last));
    EXPECT_EQ(undoStack.index(), 0);
    ASSERT_NO_FATAL_FAILURE(go(last));
    EXPECT_EQ(undoStack.index(), last);
    ZQManagedObjectContext other(library.coordinator());
    EXPECT_EQ(state(other).toStdString(), state().toStdString()) << "each step is in the store";
}

INSTANTIATE_TEST_SUITE_P(Seeds, CommandSequencesTest, testing::Values(1U, 2U, 20261126U));
