#include "Classes/Editing/LibraryCommands.h"
#include "Classes/Editing/SidebarCommands.h"
#include "Tests/Classes/Editing/EditQueueGate.h"
#include "Tests/Classes/Editing/LiveEditFixture.h"

// The rows of live folders: what commands do to them, and what that does to the disk, which is nothing.
class LiveFolderRowsTest : public LiveEditFixture
{
protected:
    LiveFolderRowsTest()
    {
        sub = liveFolder(QStringLiteral("sub"), one);
        deep = liveFolder(QStringLiteral("deep"), sub);
        for (const Folder &folder : {one, sub, deep}) {
            items.append(liveItem(folder, folder->title() + QStringLiteral(".jpg")));
        }
        label = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
        files = filesOnDisk();
    }
    QStringList filesOnDisk() const
    {
        QStringList all;
        for (const QString &line : state()) {
            if (line.contains(u'=')) {
                all.append(line);
            }
        }
        return all;
    }
    // Of the tree from "one" down: A(ctive), E(nabled), and the item's I.
    QString activity() const
    {
        QString text;
        for (qsizetype i = 0; const Folder &folder : {one, sub, deep}) {
            text += QLatin1StringView(folder->active() ? "A" : "a") +
                    QLatin1StringView(folder->is_enabled() ? "E" : "e") +
                    QLatin1StringView(items[i++]->active() ? "I " : "i ");
        }
        return text.trimmed();
    }

    Folder sub, deep;
    Item label;
    QList<ZQRef<ZQLibraryImage>> items;
    QStringList files;
    SidebarCommands commands{editing};
};

TEST_F(LiveFolderRowsTest, AddingIsAStepOfThoseThatWereAdded)
{
    QDir().mkpath(library.path(QStringLiteral("three")));
    const QStringList paths{library.path(QStringLiteral("three")), library.path(QStringLiteral("nothing"))};
    const AddedLiveFolders result = commands.addWatchedFolders(paths, 1);
    EXPECT_EQ(result.refused.size(), 1);
    EXPECT_EQ(titles(label), (QStringList{"one", "three", "two"}));
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("three"));
    const Item three = editing.sidebarItem(result.added.first());
    const auto below = liveFolder(QStringLiteral("below"), zqCast<ZQSidebarWatchedFolder>(three)); // made by a sync
    const auto item = liveItem(below, QStringLiteral("x.jpg"));
    undo();
    EXPECT_EQ(titles(label), (QStringList{"one", "two"}));
    EXPECT_FALSE(three->active() || below->active() || item->active());
    EXPECT_TRUE(QFile::exists(item->findItemURL()));
    EXPECT_EQ(manager.changed, QList<ZQObjectID>{three->objectID()});
    manager.changed.clear();
    redo();
    EXPECT_EQ(titles(label), (QStringList{"one", "three", "two"}));
    EXPECT_TRUE(three->active() && below->active() && item->active());
    EXPECT_EQ(manager.changed, QList<ZQObjectID>{three->objectID()});
    undoStack.clear();
    commands.addWatchedFolders(paths.mid(1), 0);
    EXPECT_EQ(undoStack.count(), 0) << "nothing came";
}

TEST_F(LiveFolderRowsTest, ManyItemsGoAndComeBesideTheWindow)
{
    constexpr int many = 1100;
    for (int i = 0; i < many; ++i) {
        const auto item = library.addReferencedImage(put(sub->folderPath() + QStringLiteral("/%1.jpg").arg(i), "x"));
        item->setWatchingFolder(sub.get());
    }
    const auto gone = library.addReferencedImage(sub->folderPath() + QStringLiteral("/gone.jpg"));
    gone->setWatchingFolder(sub.get());
    library.context().save();
    const auto shown = [&] {
        return zqFetch<ZQLibraryBaseItem>(library.context(), QStringLiteral("managed == NO AND active == YES"))
            .value()
            .size();
    };
    ASSERT_EQ(shown(), many + 4);
    commands.deleteListItems({one});
    EXPECT_FALSE(one->active());
    EXPECT_EQ(shown(), many + 4) << "not by the thread of the window";
    for (const auto &edit : editQueue.operations()) {
        edit->endSoon(); // as quitting does
    }
    finish();
    EXPECT_EQ(shown(), 0);
    undo();
    EXPECT_TRUE(one->active());
    EXPECT_EQ(shown(), many + 3) << "but what has no file any more";
    EXPECT_TRUE(user.errors.isEmpty());
    redo();
    EXPECT_EQ(shown(), 0);
    undo();

    commands.setWatchedFoldersEnabled({one}, false);
    EXPECT_FALSE(sub->is_enabled());
    EXPECT_EQ(shown(), many + 3) << "nor are they disabled by it";
    finish();
    EXPECT_EQ(shown(), 0);
    one->setLastSyncDate(QDateTime::currentDateTimeUtc());
    undoStack.undo();
    EXPECT_TRUE(sub->is_enabled());
    EXPECT_EQ(shown(), 0);
    EXPECT_FALSE(one->lastSyncDate().isValid()) << "what is cut off now is brought by the next run";
    finish();
    EXPECT_EQ(shown(), many + 3);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LiveFolderRowsTest, DisablingAndEnablingAreTakenBackToWhatWasBefore)
{
    commands.setWatchedFoldersEnabled({deep}, false);
    EXPECT_EQ(activity(), QStringLiteral("AEI AEI Aei"));
    LibraryCommands(editing).deleteItems({items[1]->objectID()}); // by a person: no folder brings it back
    commands.setWatchedFoldersEnabled({one, deep, projects}, false);
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("disable one"));
    EXPECT_EQ(activity(), QStringLiteral("Aei Aei Aei"));
    undo();
    EXPECT_EQ(activity(), QStringLiteral("AEI AEi Aei")) << "deep was off before";
    redo();
    commands.setWatchedFoldersEnabled({one}, true);
    EXPECT_EQ(undoStack.undoText(), QStringLiteral("enable one"));
    EXPECT_EQ(activity(), QStringLiteral("AEI AEi AEI"));
    undo();
    EXPECT_EQ(activity(), QStringLiteral("Aei Aei Aei"));
    EXPECT_EQ(manager.changed, (QList<ZQObjectID>{deep->objectID(), one->objectID(), one->objectID(), one->objectID(),
                                                  one->objectID(), one->objectID()}));
    undo();
    undo();
    undo();
    EXPECT_EQ(activity(), QStringLiteral("AEI AEI AEI"));
    EXPECT_EQ(filesOnDisk(), files);
    one->setIs_missing(true);
    commands.setWatchedFoldersEnabled({one}, false);
    EXPECT_EQ(undoStack.index(), 0) << "it comes back by itself";
}

TEST_F(LiveFolderRowsTest, RemovingAsksInItsWordsAndLeavesTheDiskAlone)
{
    user.answerQuestion = [](const UserQuestion &question) {
        EXPECT_EQ(question.message, QStringLiteral("Are you sure you want to remove this Live Folder?"));
        EXPECT_EQ(question.informativeText, QStringLiteral("The original folders will still remain on your disk."));
        EXPECT_EQ(question.buttons, (QStringList{"Remove", "Cancel"}));
        return 0;
    };
    commands.setWatchedFoldersEnabled({deep}, false);
    manager.changed.clear();
    ASSERT_TRUE(commands.deleteSidebarItem({one}));
    EXPECT_EQ(activity(), QStringLiteral("aEi aEi aei"));
    EXPECT_EQ(titles(label), QStringList{QStringLiteral("two")});
    EXPECT_EQ(manager.changed, QList<ZQObjectID>{one->objectID()});
    EXPECT_EQ(filesOnDisk(), files);
    manager.changed.clear();
    undo();
    EXPECT_EQ(activity(), QStringLiteral("AEI AEI Aei")) << "what was off stays off";
    EXPECT_EQ(titles(label), (QStringList{"one", "two"}));
    EXPECT_EQ(manager.changed, QList<ZQObjectID>{one->objectID()});
    EXPECT_EQ(filesOnDisk(), files);
}

TEST_F(LiveFolderRowsTest, RemovingAndItsUndoAgreeWhateverTheQueueHasDone)
{
    user.answerQuestion = [](const UserQuestion &) { return 0; };
    const QString all = activity();
    {
        const EditQueueGate gate(editQueue);
        ASSERT_TRUE(commands.deleteSidebarItem({one}));
        undoStack.undo(); // before any item went
        gate.open();
        finish();
    }
    EXPECT_EQ(activity(), all);
    {
        const EditQueueGate gate(editQueue);
        undoStack.redo();
        undoStack.undo();
        undoStack.redo();
        gate.open();
        finish();
    }
    EXPECT_EQ(activity(), QStringLiteral("aEi aEi aEi"));
    EXPECT_EQ(filesOnDisk(), files);
}

TEST_F(LiveFolderRowsTest, RowsMoveAmongThemselvesAndFoldersBelowStayWhereTheyAreOnTheDisk)
{
    commands.moveListItems({two}, {label}, {0});
    EXPECT_EQ(titles(label), (QStringList{"two", "one"}));
    undo();
    EXPECT_EQ(titles(label), (QStringList{"one", "two"}));
    undoStack.clear();
    commands.moveListItems({sub}, {label}, {0});
    EXPECT_EQ(sub->father(), Item(one.get()));
    EXPECT_EQ(undoStack.count(), 0);
    EXPECT_EQ(user.notifications.size(), 1);
    commands.renameListItem(one, QStringLiteral("My pictures"));
    EXPECT_EQ(one->title(), QStringLiteral("My pictures"));
    EXPECT_TRUE(QDir(library.path(QStringLiteral("one"))).exists()) << "the row's name is not the folder's";
}
