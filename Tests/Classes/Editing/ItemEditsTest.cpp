#include "Classes/Editing/ItemEdits.h"
#include "Classes/Editing/EditRun.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Tests/Classes/Editing/EditFixture.h"
#include "Tests/Classes/Editing/EditQueueGate.h"

namespace {

class ItemEditsTest : public EditFixture
{
protected:
    ItemEditsTest()
        : red(ZQSidebarTag::addNewTagWithName(QStringLiteral("Red"), library.context())),
          old(ZQSidebarTag::addNewTagWithName(QStringLiteral("Old"), library.context()))
    {
        library.context().save();
    }
    QList<ZQObjectID> addItems(int count)
    {
        QList<ZQRef<ZQLibraryBaseItem>> made;
        for (int i = 0; i < count; ++i) {
            made.append(library.context().insertNewObject<ZQLibraryImage>());
            made.last()->setTitle(QStringLiteral("Item %1").arg(i));
        }
        library.context().save();
        QList<ZQObjectID> ids;
        for (const auto &item : made) {
            ids.append(item->objectID());
        }
        return ids;
    }
    void finish()
    {
        zqRunMainLoopUntil([this] { return editQueue.operationCount() == 0; });
    }
    void cancelAfterABatch()
    {
        user.onBeginProgress = [this](const std::function<void()> &given) { cancel = given; };
        merged = library.context().observeObjectsDidChange([this](const ZQContextDidSave &) {
            if (cancel) {
                cancel();
            }
        });
    }
    void cancelNothing()
    {
        user.onBeginProgress = {};
        merged.reset();
    }
    QStringList tagsOf(const ZQObjectID &item)
    {
        QStringList titles;
        for (const auto &tag : editing.libraryItem(item)->itemTags()) {
            titles.append(tag->title());
        }
        titles.sort();
        return titles;
    }
    int ratingOf(const ZQObjectID &item) { return editing.libraryItem(item)->rating(); }
    qsizetype tagged(const ZQRef<ZQSidebarTag> &tag)
    {
        return tag->relatedObjectIDs(QStringLiteral("taggedItems")).size();
    }

    ZQRef<ZQSidebarTag> red;
    ZQRef<ZQSidebarTag> old;
    std::function<void()> cancel; // the last edit
    ZQManagedObjectContext::Token merged;
    ItemEdits edits{editing};
};

const QStringList onlyRed = {QStringLiteral("Red")};
const QStringList onlyOld = {QStringLiteral("Old")};

} // namespace

TEST_F(ItemEditsTest, UndoGivesEachItemBackTheTagsItHad)
{
    const QList<ZQObjectID> items = addItems(3);
    edits.changeTags({items[0]}, {red->objectID()}, {});
    edits.changeTags({items[1]}, {old->objectID()}, {});

    edits.changeTags(items, {red->objectID()}, {old->objectID()});
    for (const ZQObjectID &item : items) {
        EXPECT_EQ(tagsOf(item), onlyRed);
    }
    undoStack.undo();
    EXPECT_EQ(tagsOf(items[0]), onlyRed);
    EXPECT_EQ(tagsOf(items[1]), onlyOld);
    EXPECT_EQ(tagsOf(items[2]), QStringList());
    undoStack.redo();
    EXPECT_EQ(tagged(red), 3);
    EXPECT_EQ(tagged(old), 0);

    const int steps = undoStack.count();
    edits.changeTags(items, {red->objectID()}, {});
    EXPECT_EQ(undoStack.count(), steps) << "what changes nothing is no step";
}

TEST_F(ItemEditsTest, UndoLeavesAloneWhatSomebodyElseWroteSince)
{
    const QList<ZQObjectID> items = addItems(2);
    edits.setNotes(items, QStringLiteral("mine"));
    edits.setRating(items, 3);
    const auto theirs = editing.libraryItem(items[1]); // as a command or another program's file does
    theirs->setNotes(QStringLiteral("theirs"));
    theirs->setRating(5);
    library.context().save();
    undoStack.undo();
    undoStack.undo();
    EXPECT_EQ(editing.libraryItem(items[0])->notes(), QString());
    EXPECT_EQ(ratingOf(items[0]), 0);
    EXPECT_EQ(theirs->notes(), QStringLiteral("theirs"));
    EXPECT_EQ(theirs->rating(), 5);
}

TEST_F(ItemEditsTest, ASourceIsTakenBackAndGivenAgain)
{
    const QList<ZQObjectID> items = addItems(2);
    editing.libraryItem(items[1])->setWebPageURL(QStringLiteral("https://before.example"));
    library.context().save();
    const auto sources = [&] {
        return QStringList{editing.libraryItem(items[0])->webPageURL(), editing.libraryItem(items[1])->webPageURL()};
    };
    const QString given = QStringLiteral("https://given.example");
    edits.setSource(items, given);
    EXPECT_EQ(sources(), (QStringList{given, given}));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("edit source"));
    undoStack.undo();
    EXPECT_EQ(sources(), (QStringList{QString(), QStringLiteral("https://before.example")}));
    undoStack.redo();
    EXPECT_EQ(sources(), (QStringList{given, given}));
}

TEST_F(ItemEditsTest, ManyItemsAreChangedBesideTheWindowInOrder)
{
    const int count = int(ItemEdits::mostAtOnce) + 1500;
    const QList<ZQObjectID> items = addItems(count);
    edits.changeTags({items[7]}, {red->objectID()}, {});

    edits.changeTags(items, {red->objectID()}, {});
    edits.changeTags(items, {old->objectID()}, {red->objectID()});
    finish();
    EXPECT_EQ(tagged(red), 0);
    EXPECT_EQ(tagged(old), count);
    undoStack.undo(); // both are asked for before the first has ended
    undoStack.undo();
    finish();
    EXPECT_EQ(tagged(old), 0);
    EXPECT_EQ(tagged(red), 1);
    EXPECT_EQ(tagsOf(items[7]), onlyRed);
}

TEST_F(ItemEditsTest, ATagThatIsNotThereIsMadeWithTheFirstEditThatNamesIt)
{
    const QList<ZQObjectID> items = addItems(int(ItemEdits::mostAtOnce) + 1);
    const auto made = [this] { return ZQSidebarTag::tagWithTagName(QStringLiteral("New"), library.context()); };
    edits.changeTags(items, {}, {}, {QStringLiteral("New")});
    finish();
    const auto first = made();
    ASSERT_TRUE(first);
    EXPECT_EQ(tagged(first), items.size());
    undoStack.undo();
    finish();
    EXPECT_EQ(tagged(first), 0);
    EXPECT_FALSE(made()) << "nobody asked for the tag but the step";
    undoStack.redo();
    finish();
    EXPECT_EQ(made(), first) << "later steps know it";
    EXPECT_EQ(tagged(first), items.size());
    edits.changeTags({addItems(1).first()}, {first->objectID()}, {});
    editing.libraryItem(items[0])->setRating(1); // nothing that concerns tags
    library.context().save();
    undoStack.undo();
    undoStack.undo();
    finish();
    EXPECT_FALSE(made());
    first->deletePermanently();
    library.context().save();
    undoStack.redo();
    finish();
    ASSERT_TRUE(made());
    EXPECT_EQ(tagged(made()), items.size());
    const auto other = editing.libraryItem(addItems(1).first());
    other->addTagsObject(made().get());
    library.context().save();
    undoStack.undo();
    finish();
    ASSERT_TRUE(made()) << "somebody else uses it";
    EXPECT_EQ(tagged(made()), 1);

    edits.changeTags({items[0]}, {}, {}, {QStringLiteral("Few"), QStringLiteral("New")});
    EXPECT_EQ(tagsOf(items[0]), (QStringList{QStringLiteral("Few"), QStringLiteral("New")}));
}

TEST_F(ItemEditsTest, AnEditThatWaitsIsShownAtOnceAndCanBeCancelled)
{
    const QList<ZQObjectID> items = addItems(int(EditSize().perBatch) + 1);
    QList<std::function<void()>> cancels;
    user.onBeginProgress = [&cancels](const std::function<void()> &given) { cancels.append(given); };
    const EditQueueGate gate(editQueue);
    edits.setRating(items, 4);
    EXPECT_EQ(cancels.size(), 1) << "before its turn has come";
    edits.setNotes({items[0]}, QStringLiteral("Noted"));
    edits.setLicense(items, QStringLiteral("None"));
    ASSERT_EQ(cancels.size(), 3) << "a single item waits, too";
    cancels[2]();
    gate.open();
    finish();
    EXPECT_EQ(cancels.size(), 3) << "the same bar while it runs";
    const auto last = editing.libraryItem(items.last());
    EXPECT_EQ(last->rating(), 4);
    EXPECT_EQ(editing.libraryItem(items[0])->notes(), QStringLiteral("Noted"));
    EXPECT_TRUE(last->license().isEmpty());
    undoStack.undo(); // there is nothing to take back of what never ran
    undoStack.undo();
    undoStack.undo();
    finish();
    EXPECT_EQ(editing.libraryItem(items.last())->rating(), 0);
}

TEST_F(ItemEditsTest, ACancelledEditIsUndoneAsFarAsItCame)
{
    const QList<ZQObjectID> items = addItems(3500);
    cancelAfterABatch();
    edits.changeTags(items, {red->objectID()}, {});
    finish();
    EXPECT_EQ(tagged(red), EditSize().perBatch);
    cancelNothing();
    undoStack.undo();
    finish();
    EXPECT_EQ(tagged(red), 0);
}

TEST_F(ItemEditsTest, ACancelledUndoLeavesWhatItDidNotComeToForTheNextOne)
{
    const int count = 3500;
    const QList<ZQObjectID> items = addItems(count);
    edits.changeTags({items[7], items[count - 7]}, {red->objectID()}, {}); // before, so nobody's to take back
    edits.changeTags(items, {red->objectID()}, {});
    finish();
    cancelAfterABatch();
    undoStack.undo();
    finish();
    EXPECT_EQ(tagged(red), count - EditSize().perBatch);
    cancelNothing();
    undoStack.redo();
    finish();
    EXPECT_EQ(tagged(red), count);
    undoStack.undo();
    finish();
    EXPECT_EQ(tagged(red), 2);
    EXPECT_EQ(tagsOf(items[7]), onlyRed);
    EXPECT_EQ(tagsOf(items[count - 7]), onlyRed);
}

TEST_F(ItemEditsTest, AFewThatAreAskedForWhileManyAreChangedComeAfterThem)
{
    const QList<ZQObjectID> items = addItems(int(ItemEdits::mostAtOnce) + 1);
    edits.setRating(items, 3);
    finish();
    edits.setRating(items, 4);
    edits.setRating({items[5]}, 5); // before the many were begun
    finish();
    EXPECT_EQ(ratingOf(items[5]), 5);
    EXPECT_EQ(ratingOf(items[6]), 4);
    undoStack.undo();
    finish();
    EXPECT_EQ(ratingOf(items[5]), 4);
    undoStack.undo();
    finish();
    EXPECT_EQ(ratingOf(items[5]), 3);
    EXPECT_EQ(ratingOf(items[6]), 3);
}

TEST_F(ItemEditsTest, RatingsAreKeptInTheStoreAndFollowInTheFilesAlsoWhenTakenBack)
{
    const auto image = library.addImage(QStringLiteral("mark"));
    library.context().save();
    QList<ZQObjectID> items = addItems(1);
    items.append(image->objectID());
    edits.setRating({items[0]}, 2);
    edits.setRating(items, 4);
    EXPECT_EQ(ratingOf(items[0]), 4);
    EXPECT_EQ(ratingOf(items[1]), 4);
    EXPECT_EQ(library.written.last().rating, 4);
    undoStack.undo();
    EXPECT_EQ(editing.libraryItem(items[0])->rating(), 2);
    EXPECT_EQ(ratingOf(items[1]), 0);
    EXPECT_EQ(library.written.last().rating, 0);
    const int steps = undoStack.count();
    edits.setRating({items[0]}, 2);
    EXPECT_EQ(undoStack.count(), steps) << "what changes nothing is no step";
    EXPECT_TRUE(undoStack.canRedo()) << "nor does it take away what could be made again";

    const QList<ZQObjectID> many = addItems(int(ItemEdits::mostAtOnce) + 1);
    edits.setRating(many, 5);
    finish();
    EXPECT_EQ(ratingOf(many.first()), 5);
    EXPECT_EQ(ratingOf(many.last()), 5);
}

TEST_F(ItemEditsTest, FilesAreAnnouncedFromBeforeTheSaveUntilTheyAreAskedFor)
{
    const auto image = library.addImage(QStringLiteral("mark"));
    library.context().save();
    QStringList steps;
    library.didAnnounce = [&](const QStringList &bundleIDs) {
        ZQManagedObjectContext beside(library.coordinator());
        const auto stored = zqFetch<ZQLibraryBaseItem>(beside, QStringLiteral("rating > 0")).value();
        steps.append(QStringLiteral("%1 announced, %2 saved").arg(bundleIDs.size()).arg(stored.size()));
    };
    library.didEndAnnouncement = [&] { steps.append(QStringLiteral("%1 written").arg(library.written.size())); };
    edits.setRating({image->objectID()}, 3);
    EXPECT_EQ(steps, (QStringList{QStringLiteral("1 announced, 0 saved"), QStringLiteral("1 written")}));

    steps.clear();
    const qsizetype many = ItemEdits::mostAtOnce + 1;
    QList<ZQObjectID> items = addItems(int(many));
    for (const ZQObjectID &item : items) {
        editing.libraryItem(item)->setBundleID(QUuid::createUuid().toString(QUuid::WithoutBraces));
    }
    library.context().save();
    edits.setRating(items, 4);
    finish();
    EXPECT_EQ(steps.first(), QStringLiteral("%1 announced, 1 saved").arg(many));
    EXPECT_EQ(steps.size(), 2);
    edits.setLicense({image->objectID()}, QStringLiteral("CC BY 4.0"));
    EXPECT_EQ(steps.size(), 2) << "a license is not in the file";
}

TEST_F(ItemEditsTest, ItemsThatSomebodyDeletesBetweenTwoBatchesAreLeftOut)
{
    const QList<ZQObjectID> items = addItems(int(EditSize().perBatch) + 2);
    const ZQObjectID gone = items[items.size() - 2];
    QList<qsizetype> announced;
    library.didAnnounce = [&](const QStringList &bundleIDs) {
        announced.append(bundleIDs.size());
        if (announced.size() == 1) {
            ZQManagedObjectContext beside(library.coordinator());
            beside.deleteObject(beside.objectWithID(gone).get());
            ZQError error;
            EXPECT_TRUE(beside.save(&error)) << error.localizedDescription().toStdString();
        }
    };
    edits.setRating(items, 4);
    finish();
    EXPECT_EQ(announced, (QList<qsizetype>{EditSize().perBatch, 1}));
    EXPECT_EQ(ratingOf(items.first()), 4);
    EXPECT_EQ(ratingOf(items.last()), 4);
    undoStack.undo();
    finish();
    EXPECT_EQ(ratingOf(items.last()), 0);
    EXPECT_TRUE(user.errors.isEmpty());
    const auto stored = zqFetch<ZQLibraryBaseItem>(library.context(), QStringLiteral("TRUEPREDICATE"));
    EXPECT_EQ(stored ? stored->size() : 0, items.size() - 1);
}
