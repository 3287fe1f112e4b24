#include "Classes/Editing/LiveFolderEdits.h"

#include "Classes/Editing/LibraryCommands.h"
#include "Kit/Files/ZQOwnChanges.h"
#include "Tests/Classes/Editing/LiveEditFixture.h"
#include "Tests/Support/ScratchMount.h"
#include "Tests/Support/Skip.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>

namespace {

std::function<bool()> duringFlush; // answers whether the disk does it

} // namespace

extern "C" int syncfs(int file) noexcept
{
    if (duringFlush && !duringFlush()) {
        errno = EIO;
        return -1;
    }
    return int(::syscall(SYS_syncfs, file));
}

class LiveFolderEditsTest : public LiveEditFixture
{
protected:
    LiveFolderEditsTest()
    {
        a = liveItem(one, QStringLiteral("a.jpg"));
        b = liveItem(one, QStringLiteral("b.jpg"));
        taken = liveItem(two, QStringLiteral("b.jpg"));
        taken->setTitle(QStringLiteral("b"));
        managed = library.addImage(QStringLiteral("m"), QStringLiteral("jpg"), "managed");
        managed->addTagsObject(ZQSidebarTag::addNewTagWithName(QStringLiteral("red"), library.context()).get());
        library.context().save();
    }
    QString outside(const QString &name, const QByteArray &content)
    {
        return library.writeFile(QStringLiteral("outside/") + name, content);
    }
    static QList<ZQObjectID> ids(const QList<ZQRef<ZQLibraryImage>> &items)
    {
        QList<ZQObjectID> result;
        for (const auto &item : items) {
            result.append(item->objectID());
        }
        return result;
    }
    QString onlyError() const
    {
        EXPECT_EQ(user.errors.size(), 1);
        return user.errors.isEmpty() ? QString() : user.errors.first().localizedDescription();
    }

    ZQRef<ZQLibraryImage> a, b, taken, managed;
    LibraryCommands commands{editing};
    LiveFolderEdits edits{editing};
};

TEST_F(LiveFolderEditsTest, EachEditIsOnTheDiskAndTakenBackAndMadeAgain)
{
    const QStringList before = state();
    const auto with = [&before](const QStringList &gone, const QStringList &come) {
        QStringList lines = before;
        for (const QString &line : gone) {
            EXPECT_TRUE(lines.removeOne(line)) << qPrintable(line);
        }
        lines += come;
        lines.sort();
        return lines;
    };
    const QString loose = outside(QStringLiteral("new.jpg"), "new");
    const QString namesake = outside(QStringLiteral("b.jpg"), "other");
    outside(QStringLiteral("tree/deep/x.jpg"), "x");
    struct Case
    {
        const char *what;
        const char *name;
        std::function<void()> edit;
        QStringList after;
        QStringList undone; // when that is not as before
    };
    const Case cases[] = {
        {"delete",
         "delete items",
         [&] {
             commands.deleteItems(ids({a, b}));
         },
         with({"one/a.jpg=a.jpg", "one/b.jpg=b.jpg", "one:a", "one:b"}, {"one/.hidden=a.jpg", "one/.hidden=b.jpg"}),
         {}},
        {"rename",
         "rename 'a' in 'new name'",
         [&] { commands.renameItem(a->objectID(), QStringLiteral("new name")); },
         with({"one/a.jpg=a.jpg", "one:a"}, {"one/new name.jpg=a.jpg", "one:new name"}),
         {}},
        {"move, one of them to where its name is taken",
         "copy items",
         [&] {
             commands.addItems(ids({a, b}), two->objectID(), 0);
         },
         with({"one/a.jpg=a.jpg", "one/b.jpg=b.jpg", "one:a", "one:b"},
              {"two/a.jpg=a.jpg", "two/b 1.jpg=b.jpg", "two:a", "two:b 1"}),
         {}},
        {"bring an item of the library", "copy items", [&] { commands.addItems(ids({managed}), two->objectID(), 0); },
         with({}, {"two/m.jpg=managed", "two:m"}), with({}, {"two/.hidden=managed"})},
        {"copy files and a folder",
         "copy files",
         [&] {
             edits.copyFiles({loose, namesake, library.path(QStringLiteral("outside/tree"))}, two->objectID());
         },
         with({}, {"two/new.jpg=new", "two/b 1.jpg=other", "two/tree/deep/x.jpg=x"}),
         {}},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.what);
        each.edit();
        finish();
        EXPECT_EQ(state(), each.after);
        EXPECT_EQ(undoStack.undoText(), QLatin1StringView(each.name));
        undo();
        EXPECT_EQ(state(), each.undone.isEmpty() ? before : each.undone);
        redo();
        EXPECT_EQ(state(), each.after);
        undo();
        EXPECT_TRUE(user.errors.isEmpty());
        undoStack.clear();
        if (!each.undone.isEmpty()) { // the deleted copy goes as a purge has it
            ZQLibraryBaseItem::permanentlyDeleteInactiveObjectinManagedObjectContext(library.context());
            library.context().save();
        }
        EXPECT_EQ(state(), before);
    }
    EXPECT_EQ(manager.synced.size(), 4) << "each time files were copied, or taken away again";
    EXPECT_EQ(ScratchLibrary::readFile(loose), QByteArray("new")) << "copied, not moved";
}

TEST_F(LiveFolderEditsTest, AnItemOfTheLibraryComesAsACopyWithItsTags)
{
    managed->setNotes(QStringLiteral("remember"));
    library.context().save();
    commands.addItems(ids({managed}), two->objectID(), 0);
    finish();
    const auto items = two->items();
    const auto copy = *std::find_if(items.begin(), items.end(), [](const auto &item) { return item->title() == u"m"; });
    EXPECT_FALSE(copy->managed());
    EXPECT_NE(copy->bundleID(), managed->bundleID());
    EXPECT_EQ(copy->userTagTitles(), QStringList{QStringLiteral("red")});
    EXPECT_EQ(copy->notes(), QStringLiteral("remember"));
    EXPECT_EQ(copy->itemURL(), two->folderPath() + QStringLiteral("/m.jpg"));
    EXPECT_TRUE(managed->managed() && !managed->watchingFolder());
    const ZQObjectID id = copy->objectID();
    undo();
    redo();
    EXPECT_TRUE(editing.libraryItem(id)->active()) << "the same one comes back";
}

TEST_F(LiveFolderEditsTest, WhatIsThereAlreadyStays)
{
    const QStringList before = state();
    commands.addItems(ids({a}), one->objectID(), 0);
    edits.copyFiles({one->folderPath() + QStringLiteral("/a.jpg")}, one->objectID());
    commands.removeItems(ids({a}), one->objectID());
    finish();
    undoStack.clear();
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LiveFolderEditsTest, ARestoredFileTakesNobodysName)
{
    const QString path = one->folderPath() + QStringLiteral("/a.jpg");
    commands.deleteItems(ids({a}));
    put(path, "somebody else's");
    undo();
    EXPECT_EQ(ScratchLibrary::readFile(path), QByteArray("somebody else's"));
    EXPECT_EQ(a->title(), QStringLiteral("a 1"));
    EXPECT_EQ(ScratchLibrary::readFile(a->itemURL()), QByteArray("a.jpg"));
    EXPECT_EQ(a->itemURL(), one->folderPath() + QStringLiteral("/a 1.jpg"));
}

TEST_F(LiveFolderEditsTest, WhatIsRefusedSaysWhatHoldsForTheFoldersAbove)
{
    const Folder sub = liveFolder(QStringLiteral("sub"), one);
    const auto deleted = liveItem(sub, QStringLiteral("d.jpg"));
    commands.deleteItems(ids({deleted}));
    const QString file = outside(QStringLiteral("new.jpg"), "new");
    for (const bool isMissing : {false, true}) {
        SCOPED_TRACE(isMissing);
        one->setIs_missing(isMissing);
        one->deactivateFolder();
        library.context().save();
        user.errors.clear();
        edits.copyFiles({file}, sub->objectID());
        finish();
        EXPECT_EQ(onlyError().contains(QStringLiteral("Enable")), !isMissing) << qPrintable(onlyError());
        EXPECT_TRUE(manager.synced.isEmpty());
    }
    user.errors.clear();
    commands.restoreItems(std::make_shared<QList<ZQObjectID>>(ids({deleted})));
    finish();
    for (const auto &error : std::as_const(user.errors)) {
        EXPECT_FALSE(error.localizedDescription().contains(QStringLiteral("Enable")));
    }
}

TEST_F(LiveFolderEditsTest, ReadOnlyPlacesAreSaidAndNothingIsHalfDone)
{
    const ScratchMount mount(library.path(QStringLiteral("locked")));
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    const Folder locked = liveFolder(QStringLiteral("locked"));
    const auto item = liveItem(locked, QStringLiteral("l.jpg"));
    const auto deleted = liveItem(locked, QStringLiteral("d.jpg"));
    deleted->deleteSelf();
    library.context().save();
    const QString file = outside(QStringLiteral("new.jpg"), "new");
    ASSERT_TRUE(mount.setReadOnly(true));
    const auto names = [&] { return QDir(locked->folderPath()).entryList(QDir::Files | QDir::Hidden); };
    const QStringList before = state();
    const QStringList filesBefore = names();
    const std::pair<const char *, std::function<void()>> cases[] = {
        {"delete", [&] { commands.deleteItems(ids({item})); }},
        {"restore", [&] { commands.restoreItems(std::make_shared<QList<ZQObjectID>>(ids({deleted}))); }},
        {"move away", [&] { commands.addItems(ids({item}), one->objectID(), 0); }},
        {"move there", [&] { commands.addItems(ids({a}), locked->objectID(), 0); }},
        {"bring there", [&] { commands.addItems(ids({managed}), locked->objectID(), 0); }},
        {"copy there", [&] { edits.copyFiles({file}, locked->objectID()); }},
    };
    for (const auto &[what, edit] : cases) {
        SCOPED_TRACE(what);
        user.errors.clear();
        edit();
        finish();
        EXPECT_TRUE(onlyError().contains(QStringLiteral("read-only"))) << qPrintable(onlyError());
        EXPECT_EQ(state(), before);
        EXPECT_EQ(names(), filesBefore);
    }
    commands.renameItem(item->objectID(), QStringLiteral("other"));
    ASSERT_EQ(library.errors.size(), 1);
    EXPECT_TRUE(library.errors.first().localizedDescription().contains(QStringLiteral("read-only")));
    EXPECT_EQ(names(), filesBefore);
}

TEST_F(LiveFolderEditsTest, AFullDiskKeepsWhatWasDoneAndNoPartOfAFile)
{
    const ScratchMount mount(library.path(QStringLiteral("small")), 1 << 20);
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    const Folder small = liveFolder(QStringLiteral("small"));
    QStringList files;
    QList<ZQRef<ZQLibraryImage>> items;
    const QByteArray large(400 << 10, 'x');
    for (const char *name : {"1.jpg", "2.jpg", "3.jpg", "4.jpg"}) {
        files.append(outside(QLatin1StringView(name), large));
        items.append(library.addImage(QLatin1StringView(name).chopped(4), QStringLiteral("jpg"), large));
    }
    library.context().save();
    const auto names = [&] { return QDir(small->folderPath()).entryList(QDir::Files | QDir::Hidden); };
    edits.copyFiles(files, small->objectID());
    finish();
    EXPECT_EQ(names(), (QStringList{"1.jpg", "2.jpg"}));
    EXPECT_TRUE(onlyError().contains(QStringLiteral("“3.jpg”")) && onlyError().contains(QStringLiteral("Make room")));
    for (const QString &name : names()) {
        EXPECT_EQ(QFileInfo(small->folderPath() + u'/' + name).size(), large.size());
        QFile::remove(small->folderPath() + u'/' + name);
    }
    user.errors.clear();
    commands.addItems(ids(items), small->objectID(), 0);
    finish();
    EXPECT_EQ(names(), (QStringList{"1.jpg", "2.jpg"}));
    EXPECT_EQ(small->items().size(), 2);
    EXPECT_TRUE(onlyError().contains(QStringLiteral("Make room")));
}

TEST_F(LiveFolderEditsTest, BetweenDisksAFileIsCopiedAndItsOldOneIsInTheTrash)
{
    const ScratchMount mount(library.path(QStringLiteral("disk")));
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    const Folder disk = liveFolder(QStringLiteral("disk"));
    const QString there = disk->folderPath() + QStringLiteral("/a.jpg");
    const QString here = one->folderPath() + QStringLiteral("/a.jpg");
    commands.addItems(ids({a}), disk->objectID(), 0);
    finish();
    EXPECT_TRUE(user.errors.isEmpty());
    EXPECT_EQ(a->watchingFolder(), disk);
    EXPECT_EQ(a->itemURL(), there);
    EXPECT_EQ(ScratchLibrary::readFile(there), QByteArray("a.jpg"));
    EXPECT_FALSE(QFile::exists(here));
    EXPECT_EQ(trash(), QStringList{QStringLiteral("a.jpg")});
    undo();
    EXPECT_EQ(a->watchingFolder(), one);
    EXPECT_EQ(a->itemURL(), here);
    EXPECT_EQ(ScratchLibrary::readFile(here), QByteArray("a.jpg"));
    EXPECT_FALSE(QFile::exists(there));
    const auto leftOnDisk = [&] {
        QStringList found;
        QDirIterator all(disk->folderPath(), {QStringLiteral("a*.jpg")}, QDir::Files | QDir::Hidden,
                         QDirIterator::Subdirectories);
        while (all.hasNext()) {
            found.append(all.next());
        }
        return found;
    };
    EXPECT_TRUE(trash().isEmpty()) << "it came back from there";
    EXPECT_TRUE(QDir(library.path(QStringLiteral("XDG_DATA_HOME/Trash/info"))).isEmpty());
    ASSERT_EQ(leftOnDisk().size(), 1);
    EXPECT_TRUE(leftOnDisk().first().contains(QStringLiteral("/.Trash"))) << "a copy goes no other way than a file";

    redo();
    put(library.path(QStringLiteral("XDG_DATA_HOME/Trash/files/a.jpg")), "changed since");
    undo();
    EXPECT_EQ(ScratchLibrary::readFile(here), QByteArray("a.jpg"));
    EXPECT_EQ(trash(), QStringList{QStringLiteral("a.jpg")});
    EXPECT_EQ(leftOnDisk().size(), 2);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LiveFolderEditsTest, WhatStaysBehindBetweenDisksIsExplained)
{
    const ScratchMount mount(library.path(QStringLiteral("disk")));
    if (!mount.isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    const Folder disk = liveFolder(QStringLiteral("disk"));
    const QString here = one->folderPath() + QStringLiteral("/a.jpg");
    struct Case
    {
        const char *name;
        std::function<bool()> duringFlush;
        bool stays;
        QStringList told;
    };
    const Case cases[] = {
        {"changed by another program",
         [&] { return !put(here, "changed meanwhile").isEmpty(); },
         true,
         {"“a.jpg” was copied, but its original stays", "was changed while it was moved", "Compare both"}},
        {"deleted by another program", [&] { return QFile::remove(here); }, false, {}},
        {"a disk that does not write",
         [] { return false; },
         true,
         {"“a.jpg” was copied, but may not be safe on the disk", "Check the disk"}},
    };
    for (const Case &each : cases) {
        SCOPED_TRACE(each.name);
        put(here, "a.jpg");
        duringFlush = each.duringFlush;
        commands.addItems(ids({a}), disk->objectID(), 0);
        finish();
        duringFlush = {};
        EXPECT_EQ(a->watchingFolder(), disk);
        EXPECT_EQ(QFile::exists(here), each.stays);
        EXPECT_TRUE(trash().isEmpty());
        ASSERT_EQ(user.errors.size(), each.told.isEmpty() ? 0 : 1);
        for (const QString &text : each.told) {
            EXPECT_TRUE(onlyError().contains(text)) << qPrintable(onlyError());
        }
        user.errors.clear();
        QFile::remove(here);
        undo();
        ASSERT_EQ(a->watchingFolder(), one);
        user.errors.clear();
    }
}

TEST_F(LiveFolderEditsTest, NothingGoesBackToAFolderThatIsAway)
{
    std::optional<ScratchMount> mount(library.path(QStringLiteral("disk")));
    if (!mount->isMounted()) {
        return skipWithout("the right to mount a file system");
    }
    const Folder disk = liveFolder(QStringLiteral("disk"));
    const auto item = liveItem(disk, QStringLiteral("l.jpg"));
    commands.addItems(ids({item}), two->objectID(), 0);
    finish();
    ASSERT_EQ(item->watchingFolder(), two);
    const auto mark = [&](bool isMissing, bool isTrashed, bool isEnabled) {
        disk->setIs_missing(isMissing);
        disk->setIs_trashed(isTrashed);
        disk->setIs_enabled(isEnabled);
        library.context().save();
    };
    const std::pair<const char *, std::function<void()>> cases[] = {
        {"missing", [&] { mark(true, false, false); }},
        {"in the trash", [&] { mark(false, true, false); }},
        {"disabled", [&] { mark(false, false, false); }},
        {"its disk is away",
         [&] {
             mark(false, false, true);
             mount.reset();
         }},
    };
    for (const auto &[what, make] : cases) {
        SCOPED_TRACE(what);
        make();
        user.errors.clear();
        undo();
        EXPECT_TRUE(onlyError().contains(QStringLiteral("“disk”"))) << qPrintable(onlyError());
        EXPECT_EQ(item->watchingFolder(), two);
        EXPECT_EQ(ScratchLibrary::readFile(two->folderPath() + QStringLiteral("/l.jpg")), QByteArray("l.jpg"));
        EXPECT_FALSE(QFile::exists(disk->folderPath() + QStringLiteral("/l.jpg")));
        redo();
    }
    user.errors.clear();
    edits.copyFiles({outside(QStringLiteral("n.jpg"), "n")}, disk->objectID());
    finish();
    EXPECT_TRUE(onlyError().contains(QStringLiteral("“disk” is not there now")));
    EXPECT_TRUE(QDir(disk->folderPath()).isEmpty()) << "where its disk was";
}

TEST_F(LiveFolderEditsTest, SynchronisingLeavesItsFilesAloneUntilTheStoreKnowsThem)
{
    ZQOwnChanges &changes = ZQOwnChanges::sharedOwnChanges();
    const auto place = [this](const char *name) { return QFile::encodeName(two->folderPath()) + '/' + name; };
    bool isCopyHeld = false;
    editing.merge = [&](const ZQContextDidSave &saved) {
        library.context().mergeChangesFromContextDidSaveNotification(saved);
        isCopyHeld = changes.isHeld(place("m.jpg"));
    };
    bool isMovedHeld = false;
    editing.save = [&] {
        isMovedHeld = changes.isHeld(place("a.jpg"));
        library.context().save();
        return true;
    };
    commands.addItems(ids({a}), two->objectID(), 0);
    commands.addItems(ids({managed}), two->objectID(), 0);
    finish();
    EXPECT_TRUE(isCopyHeld && isMovedHeld);
    EXPECT_FALSE(changes.isHeld(place("m.jpg")) || changes.isHeld(place("a.jpg")));

    edits.copyFiles({outside(QStringLiteral("n.jpg"), "n")}, two->objectID());
    finish();
    EXPECT_TRUE(QFile::exists(two->folderPath() + QStringLiteral("/n.jpg")));
    EXPECT_FALSE(changes.contains(place("n.jpg"))) << "its item is made there";
    EXPECT_EQ(manager.synced, QList<ZQObjectID>{two->objectID()});
    EXPECT_FALSE(manager.wasForced) << "nothing else is read again";
}

TEST_F(LiveFolderEditsTest, WhatOthersDoToACopyBeforeTheStoreKnowsItIsNotTakenForOurs)
{
    const QString copy = two->folderPath() + QStringLiteral("/m.jpg");
    const QString theirs = two->folderPath() + QStringLiteral("/theirs");
    duringFlush = [&] {
        put(theirs, "theirs");
        return ::rename(QFile::encodeName(theirs).constData(), QFile::encodeName(copy).constData()) == 0;
    };
    commands.addItems(ids({managed}), two->objectID(), 0);
    finish();
    duringFlush = {};
    EXPECT_EQ(ScratchLibrary::readFile(copy), QByteArray("theirs"));
    EXPECT_FALSE(ZQOwnChanges::sharedOwnChanges().contains(QFile::encodeName(copy)));
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LiveFolderEditsTest, WhatWasNotDoneIsToldBeforeWhatMayNotBeSafe)
{
    QFile::remove(one->folderPath() + QStringLiteral("/a.jpg"));
    duringFlush = [] { return false; };
    commands.addItems(ids({a, managed}), two->objectID(), 0);
    finish();
    duringFlush = {};
    ASSERT_EQ(user.errors.size(), 2);
    EXPECT_TRUE(user.errors[0].localizedDescription().contains(QStringLiteral("cannot be put into the live folder")));
    EXPECT_TRUE(user.errors[1].localizedDescription().contains(QStringLiteral("may not be safe on the disk")));
}

TEST_F(LiveFolderEditsTest, WhatIsGoneIsToldAndTheRestIsDone)
{
    QFile::remove(one->folderPath() + QStringLiteral("/a.jpg"));
    commands.addItems(ids({a, b}), two->objectID(), 0);
    finish();
    EXPECT_EQ(b->watchingFolder(), two);
    EXPECT_EQ(a->watchingFolder(), one);
    EXPECT_TRUE(onlyError().contains(QStringLiteral("“a”")) &&
                onlyError().contains(QStringLiteral("not there any more")));
    user.errors.clear();
    QDir(library.path(QStringLiteral("one"))).removeRecursively();
    undo();
    EXPECT_EQ(b->watchingFolder(), two) << "there is nowhere to go back to";
    EXPECT_EQ(user.errors.size(), 1);
    user.errors.clear();
    for (const auto &make : {std::function<void()>([&] { two->setIs_missing(true); }), std::function<void()>([&] {
                                 two->setIs_missing(false);
                                 two->setIs_enabled(false);
                             })}) {
        make();
        library.context().save();
        user.errors.clear();
        edits.copyFiles({outside(QStringLiteral("n.jpg"), "n")}, two->objectID());
        commands.addItems(ids({managed}), two->objectID(), 0);
        finish();
        EXPECT_EQ(user.errors.size(), 2);
        EXPECT_FALSE(QFile::exists(two->folderPath() + QStringLiteral("/n.jpg")));
    }
}

TEST_F(LiveFolderEditsTest, AStoreThatCannotBeSavedLeavesTheFilesWhereTheyWere)
{
    const QStringList before = state();
    editing.save = [this] {
        library.context().rollback();
        return false;
    };
    commands.deleteItems(ids({a, b}));
    EXPECT_EQ(state(), before);
    commands.addItems(ids({a, b}), two->objectID(), 0);
    EXPECT_EQ(state(), before);
    commands.renameItem(a->objectID(), QStringLiteral("new"));
    EXPECT_EQ(state(), before);
    EXPECT_EQ(a->findItemURL(), one->folderPath() + QStringLiteral("/a.jpg"));
    const auto deleted = liveItem(one, QStringLiteral("d.jpg"));
    library.context().save();
    deleted->deleteSelf();
    library.context().save();
    const QStringList withDeleted = state();
    commands.restoreItems(std::make_shared<QList<ZQObjectID>>(ids({deleted})));
    EXPECT_EQ(state(), withDeleted);
}

TEST_F(LiveFolderEditsTest, WhatWasDoneWhenItIsCancelledStaysAndIsTakenBack)
{
    QList<ZQRef<ZQLibraryImage>> many;
    for (int i = 0; i < 40; ++i) {
        many.append(library.addImage(QStringLiteral("many%1").arg(i), QStringLiteral("jpg")));
    }
    library.context().save();
    const auto filesInTwo = [this] { return QDir(two->folderPath()).entryList({QStringLiteral("many*")}).size(); };
    std::function<void()> cancel;
    user.onBeginProgress = [&cancel](const std::function<void()> &how) { cancel = how; };
    editing.merge = [&](const ZQContextDidSave &saved) { // after the first batch
        library.context().mergeChangesFromContextDidSaveNotification(saved);
        cancel();
    };
    commands.addItems(ids(many), two->objectID(), 0);
    finish();
    EXPECT_GT(filesInTwo(), 0);
    EXPECT_LT(filesInTwo(), 40);
    EXPECT_EQ(two->items().size(), filesInTwo() + 1);
    editing.merge = {};
    undo();
    EXPECT_EQ(filesInTwo(), 0);
    EXPECT_EQ(two->items().size(), 1);
    EXPECT_TRUE(user.errors.isEmpty());
}

TEST_F(LiveFolderEditsTest, TakingCopiedFilesBackKeepsWhatSomebodyMadeOfThem)
{
    const QString place = two->folderPath();
    QStringList originals;
    for (const char *name : {"item.jpg", "edited.jpg", "gone.jpg", "moved.jpg"}) {
        originals.append(outside(QLatin1StringView(name), name));
    }
    edits.copyFiles(originals, two->objectID());
    finish();
    const auto item = library.addReferencedImage(place + QStringLiteral("/item.jpg")); // as synchronising makes it
    item->setWatchingFolder(two.get());
    item->addTagsObject(ZQSidebarTag::addNewTagWithName(QStringLiteral("blue"), library.context()).get());
    library.context().save();
    put(place + QStringLiteral("/edited.jpg"), "edited by hand");
    QFile::remove(place + QStringLiteral("/gone.jpg"));
    put(place + QStringLiteral("/gone.jpg.new"), "somebody else's");
    ASSERT_TRUE(QFile::rename(place + QStringLiteral("/gone.jpg.new"), place + QStringLiteral("/gone.jpg")));
    QDir(place).mkdir(QStringLiteral("sub"));
    ASSERT_TRUE(QFile::rename(place + QStringLiteral("/moved.jpg"), place + QStringLiteral("/sub/moved.jpg")));
    undo();
    EXPECT_FALSE(item->active());
    EXPECT_EQ(ScratchLibrary::readFile(place + QStringLiteral("/edited.jpg")), QByteArray("edited by hand"));
    EXPECT_EQ(ScratchLibrary::readFile(place + QStringLiteral("/gone.jpg")), QByteArray("somebody else's"));
    EXPECT_EQ(trash(), QStringList{QStringLiteral("moved.jpg")});
    EXPECT_TRUE(onlyError().contains(QStringLiteral("“edited.jpg”"))) << qPrintable(onlyError());
    redo();
    EXPECT_TRUE(item->active());
    EXPECT_EQ(item->userTagTitles(), QStringList{QStringLiteral("blue")});
    EXPECT_EQ(ScratchLibrary::readFile(place + QStringLiteral("/item.jpg")), QByteArray("item.jpg"));
    EXPECT_FALSE(QFile::exists(place + QStringLiteral("/item 1.jpg"))) << "it was not copied again";
    EXPECT_EQ(ScratchLibrary::readFile(place + QStringLiteral("/moved.jpg")), QByteArray("moved.jpg"));
}
