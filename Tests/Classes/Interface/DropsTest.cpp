// What is dropped on the sidebar and on the grid, by the kind of the target.

#include "Classes/Application/ApplicationParts.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Editing/LiveFolderEdits.h"
#include "Classes/Import/AImportManager.h"
#include "Classes/Import/ImportDoor.h"
#include "Classes/Import/PromisedImports.h"
#include "Classes/Interface/Browser/BrowserContent.h"
#include "Classes/Interface/Sidebar/ProjectsSidebarViewController.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarTag.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Support/PromisingProgram.h"
#include "Tests/Support/ScriptedUser.h"
#include "Tests/Support/UserWorld.h"

#include <QDir>
#include <QImage>
#include <QMimeData>
#include <QUndoStack>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

// A whole application without a window, and a sidebar on its library.
class Drops : public testing::Test
{
protected:
    using Item = ZQRef<ZQSidebarBaseItem>;

    void SetUp() override
    {
        ApplicationParts parts;
        parts.userInteraction = &user;
        parts.importManager = &AImportManager::sharedAImportManager();
        delegate = std::make_unique<tamberin_AppDelegate>(parts);
        delegate->setLibraryBundleDirectory(world.filePath(QStringLiteral("Test.ztlibrary")));
        ZQError error;
        ASSERT_TRUE(delegate->openLibraryForCommand(&error)) << qPrintable(error.localizedDescription());
        fetcher = std::make_unique<ContentFetcher>(delegate->persistentStoreCoordinator());
        window.reset(new WindowContext{{*delegate->managedObjectContext(), user, delegate->editQueue(),
                                        [this] {
                                            delegate->saveAction();
                                            return true;
                                        },
                                        &undoStack},
                                       *fetcher});
        projects = ZQSidebarBaseItem::projectsLabelInManagedObjectContext(context());
        for (const Item &sample : projects->childsItems()) {
            sample->deletePermanently();
        }
        a = add<ZQSidebarProject>(QStringLiteral("A"), projects);
        b = add<ZQSidebarProject>(QStringLiteral("B"), projects);
        folder = add<ZQSidebarFolder>(QStringLiteral("Folder"), projects);
        tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("tag"), context());
        live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel));
        delegate->saveAction();
        sidebar = std::make_unique<ProjectsSidebarViewController>(*window);
        sidebar->resize(240, 600);
    }
    void TearDown() override
    {
        sidebar.reset();
        window.reset();
        fetcher.reset();
        for (Item *item : {&projects, &a, &b, &folder, &tag, &live}) {
            *item = {};
        }
        delegate.reset();
        ZQUserDefaults::standardUserDefaults().synchronize();
    }

    ZQManagedObjectContext &context() { return *delegate->managedObjectContext(); }
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, context()); }
    template <class T>
    Item add(const QString &title, const Item &father)
    {
        const auto item = context().insertNewObject<T>();
        item->setTitle(title);
        item->setActive(true);
        father->appendChild(item.get());
        return item;
    }
    QString picture(const QString &relative)
    {
        const QString path = world.filePath(QStringLiteral("in/") + relative);
        QDir().mkpath(QFileInfo(path).path());
        QImage image(4, 4 + int(qHash(relative) % 900), QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(path, "PNG"));
        return path;
    }
    QString text(const QString &relative)
    {
        QFile file(world.filePath(QStringLiteral("in/") + relative));
        QDir().mkpath(QFileInfo(file.fileName()).path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("words") == 5);
        return file.fileName();
    }
    static std::unique_ptr<QMimeData> mimeOf(const QStringList &paths)
    {
        auto mime = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const QString &path : paths) {
            urls.append(QUrl::fromLocalFile(path));
        }
        mime->setUrls(urls);
        return mime;
    }
    std::unique_ptr<QMimeData> mimeOf(const QList<Item> &items)
    {
        QStringList uris;
        for (const Item &item : items) {
            uris.append(item->UUID());
        }
        auto mime = std::make_unique<QMimeData>();
        mime->setData(SidebarTreeView::elementMimeType, uris.join(u'\n').toUtf8());
        return mime;
    }
    // The tree of the side that is shown.
    SidebarTreeView *tree()
    {
        for (auto *view : sidebar->findChildren<SidebarTreeView *>()) {
            if (view->isVisibleTo(sidebar.get())) {
                return view;
            }
        }
        return nullptr;
    }
    bool takes(const QMimeData &mime, const SidebarDropPlace &place)
    {
        return tree()->validateDrop(&mime, place) != Qt::IgnoreAction;
    }
    void drop(const QMimeData &mime, const SidebarDropPlace &place)
    {
        ASSERT_TRUE(takes(mime, place));
        EXPECT_TRUE(tree()->acceptDrop(&mime, place));
        finishImports();
    }
    void finishImports()
    {
        zqRunMainLoopUntil([this] { return delegate->backgroundOperationQueue().operationCount() == 0; });
    }
    // "A[one two] Folder{B[]}"
    static QString treeBelow(const Item &father)
    {
        QStringList parts;
        for (const Item &child : father->orderedChildren()) {
            QStringList titles;
            for (const auto &item : child->items()) {
                titles.append(item->title());
            }
            parts.append(child->title() +
                         (child->isFolder() ? u'{' + treeBelow(child) + u'}' : u'[' + titles.join(u' ') + u']'));
        }
        return parts.join(u' ');
    }

    UserWorld world{"drops"};
    ScriptedUser user;
    std::unique_ptr<tamberin_AppDelegate> delegate;
    QUndoStack undoStack;
    std::unique_ptr<ContentFetcher> fetcher;
    std::unique_ptr<WindowContext> window;
    std::unique_ptr<ProjectsSidebarViewController> sidebar;
    Item projects;
    Item a;
    Item b;
    Item folder;
    Item tag;
    Item live;
};

} // namespace

TEST_F(Drops, FilesAreTakenByTheKindOfThePlaceInTheSidebar)
{
    const auto image = mimeOf({picture(QStringLiteral("a.png"))});
    const auto directory = mimeOf({QFileInfo(picture(QStringLiteral("Brand/b.png"))).path()});
    const auto words = mimeOf({text(QStringLiteral("words.txt"))});
    struct Case
    {
        const char *what;
        Item target;
        int index;
        bool image, directory, words;
    };
    const auto check = [&](const Case &each) {
        EXPECT_EQ(takes(*image, {each.target, each.index}), each.image) << each.what;
        EXPECT_EQ(takes(*directory, {each.target, each.index}), each.directory) << each.what;
        EXPECT_EQ(takes(*words, {each.target, each.index}), each.words) << each.what;
    };
    for (const Case &each :
         {Case{"the empty area", {}, -1, true, true, false},
          {"a project", a, -1, true, false, false},
          {"between projects", projects, 1, true, true, false},
          {"PROJECTS", projects, -1, false, true, false},
          {"a folder", folder, -1, false, true, false},
          {"between what a folder holds", folder, 0, true, true, false},
          {"between what a project could hold", a, 0, false, false, false},
          {"Library", special(ZQSidebarKind::Library), -1, true, false, false},
          {"Recent", special(ZQSidebarKind::Recent), -1, false, false, false},
          {"a live folder", live, -1, true, true, false},
          {"LIVE FOLDERS", special(ZQSidebarKind::WatchedFoldersLabel), -1, false, false, false},
          {"between live folders", special(ZQSidebarKind::WatchedFoldersLabel), 0, false, false, false}}) {
        check(each);
    }
    sidebar->selectItems({tag->objectID()}); // turns to the tags
    for (const Case &each : {Case{"the empty area of the tags", {}, -1, false, false, false},
                             {"a tag", tag, -1, true, false, false},
                             {"TAGS", special(ZQSidebarKind::TagsLabel), -1, false, false, false},
                             {"between tags", special(ZQSidebarKind::TagsLabel), 0, false, false, false}}) {
        check(each);
    }
}

TEST_F(Drops, FilesGoIntoWhatTheyWereDroppedOn)
{
    drop(*mimeOf({picture(QStringLiteral("one.png")), text(QStringLiteral("words.txt"))}), {b, -1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[] B[one] Folder{}"));
    drop(*mimeOf({QFileInfo(picture(QStringLiteral("Brand/two.png"))).path()}), {folder, -1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[] B[one] Folder{Brand[two]}"));
    sidebar->selectItems({tag->objectID()});
    drop(*mimeOf({picture(QStringLiteral("three.png"))}), {tag, -1});
    const auto tagged = tag->items();
    ASSERT_EQ(tagged.size(), 1);
    EXPECT_EQ(tagged.first()->title(), QStringLiteral("three"));
    EXPECT_TRUE(user.notifications.isEmpty());
}

TEST_F(Drops, FilesBetweenProjectsAndOnTheEmptyAreaMakeProjects)
{
    const QString brand = QFileInfo(picture(QStringLiteral("Brand/two.png"))).path();
    drop(*mimeOf({picture(QStringLiteral("one.png"))}), {projects, 1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[] New Project[one] B[] Folder{}"));
    EXPECT_TRUE(user.notificationTexts().contains(QStringLiteral("New project created")));
    drop(*mimeOf({brand}), {projects, 3});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[] New Project[one] B[] Brand[two] Folder{}"));
    drop(*mimeOf({picture(QStringLiteral("three.png")), QFileInfo(picture(QStringLiteral("Inner/four.png"))).path()}),
         {folder, 0});
    EXPECT_TRUE(treeBelow(folder).contains(QStringLiteral("New Project[three]")));
    EXPECT_TRUE(treeBelow(folder).contains(QStringLiteral("Inner[four]")));
    drop(*mimeOf({picture(QStringLiteral("five.png"))}), {{}, -1});
    EXPECT_EQ(projects->orderedChildren().last()->title(), QStringLiteral("New Project"));
    EXPECT_TRUE(treeBelow(projects).endsWith(QStringLiteral("New Project[five]")));
    EXPECT_EQ(folder->numberofChilds(), 2) << "not into the folder that came last";
}

TEST_F(Drops, AProjectOfDroppedFilesStandsWhereTheDropWasShown)
{
    drop(*mimeOf({picture(QStringLiteral("one.png"))}), {projects, 0});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("New Project[one] A[] B[] Folder{}"));
    const Item last = add<ZQSidebarProject>(QStringLiteral("Last"), projects);
    delegate->saveAction();
    drop(*mimeOf({picture(QStringLiteral("two.png"))}), {projects, 4});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("New Project[one] A[] B[] Folder{} New Project[two] Last[]"));
    undoStack.undo();
    undoStack.undo();
    EXPECT_FALSE(treeBelow(projects).contains(QStringLiteral("Folder{} New Project")));
    EXPECT_TRUE(treeBelow(projects).endsWith(QStringLiteral("Last[]")));
}

TEST_F(Drops, DraggedEntriesMoveAndTheSelectionFollowsOnlyWhenTheyWereSelected)
{
    sidebar->selectItems({b->objectID()});
    drop(*mimeOf(QList<Item>{b}), {folder, -1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[] Folder{B[]}"));
    EXPECT_TRUE(folder->expanded());
    EXPECT_EQ(sidebar->selectedItems(), QList<ZQObjectID>{b->objectID()});
    drop(*mimeOf(QList<Item>{a}), {folder, 1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("Folder{B[] A[]}"));
    EXPECT_EQ(sidebar->selectedItems(), QList<ZQObjectID>{b->objectID()});
    EXPECT_FALSE(takes(*mimeOf(QList<Item>{folder}), {special(ZQSidebarKind::Library), -1}));
}

TEST_F(Drops, LibraryItemsAreAddedToWhatHoldsItems)
{
    drop(*mimeOf({picture(QStringLiteral("one.png")), picture(QStringLiteral("two.png"))}), {a, -1});
    QStringList uris;
    for (const auto &item : a->items()) {
        uris.append(item->objectID().URIRepresentation(delegate->persistentStoreCoordinator()->storeUUID()));
    }
    QMimeData items;
    items.setData(BrowserContent::itemsMimeType, uris.join(u'\n').toUtf8());
    struct Case
    {
        const char *what;
        Item target;
        int index;
        bool isTaken;
    };
    for (const Case &each : {Case{"a project", b, -1, true},
                             {"beside a project", b, 0, false},
                             {"Screenshots", special(ZQSidebarKind::Screenshots), -1, true},
                             {"Library", special(ZQSidebarKind::Library), -1, false},
                             {"a folder", folder, -1, false},
                             {"PROJECTS", projects, -1, false},
                             {"TAGS", special(ZQSidebarKind::TagsLabel), -1, false},
                             {"a tag", tag, -1, true},
                             {"nothing", {}, -1, false}}) {
        EXPECT_EQ(takes(items, {each.target, each.index}), each.isTaken) << each.what;
    }
    drop(items, {b, -1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[one two] B[one two] Folder{}"));
    undoStack.undo();
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[one two] B[] Folder{}"));
}

TEST_F(Drops, PicturesOfOtherProgramsGoOntoProjectsTagsAndLiveFolders)
{
    QMimeData pasted;
    QFile file(picture(QStringLiteral("one.png")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    pasted.setData(QStringLiteral("image/png"), file.readAll());
    struct Case
    {
        const char *what;
        Item target;
        int index;
        bool isTaken;
    };
    for (const Case &each : {Case{"a project", a, -1, true},
                             {"between", projects, 1, false},
                             {"a tag", tag, -1, true},
                             {"a live folder", live, -1, true},
                             {"Library", special(ZQSidebarKind::Library), -1, false},
                             {"PROJECTS", projects, -1, false},
                             {"nothing", {}, -1, false}}) {
        EXPECT_EQ(takes(pasted, {each.target, each.index}), each.isTaken) << each.what;
    }
    QMimeData words;
    words.setText(QStringLiteral("words"));
    EXPECT_FALSE(takes(words, {a, -1}));
    drop(pasted, {a, -1});
    EXPECT_EQ(a->numberOfItems(), 1);
}

TEST_F(Drops, WhatGoesOntoALiveFolderIsCopiedToItsPlaceOnTheDisk)
{
    const QString place = world.filePath(QStringLiteral("live"));
    QDir().mkpath(place);
    zqCast<ZQSidebarWatchedFolder>(live)->updateWatchedFolderBookmark(place);
    delegate->saveAction();
    ImportDoor::setWatchedFolderCopy([this](const QStringList &paths, const ZQObjectID &into, const WhereFroms &from) {
        LiveFolderEdits(*window).copyFiles(paths, into, from);
    });
    const auto count = [&] {
        zqRunMainLoopUntil([this] { return delegate->editQueue().operationCount() == 0; });
        return QDir(place).entryList(QDir::Files).size();
    };
    const QString one = picture(QStringLiteral("one.png"));
    drop(*mimeOf({one}), {live, -1});
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(QFile::exists(one));
    QMimeData pasted;
    QFile file(one);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    pasted.setData(QStringLiteral("image/png"), file.readAll());
    pasted.setUrls({QUrl(QStringLiteral("https://example.org/two.png"))});
    drop(pasted, {live, -1});
    EXPECT_EQ(count(), 2);
    EXPECT_EQ(WhereFroms::urlsOfFile(place + QStringLiteral("/two.png")).webURL,
              QStringLiteral("https://example.org/two.png"));
    EXPECT_TRUE(user.errors.isEmpty());
    const QString words = world.filePath(QStringLiteral("words.xyz"));
    EXPECT_TRUE(QFile(words).open(QIODevice::WriteOnly));
    drop(*mimeOf({words, one}), {live, -1});
    EXPECT_EQ(count(), 3) << "what it would not show stays away";
    zqRunMainLoopUntil([this] { return !user.errors.isEmpty(); });
    const QString told = user.errors.takeFirst().localizedDescription();
    EXPECT_TRUE(told.startsWith(QStringLiteral("1 file was not copied into the live folder."))) << told.toStdString();
    EXPECT_TRUE(told.contains(QStringLiteral("words.xyz"))) << told.toStdString();
    undoStack.undo();
    EXPECT_EQ(count(), 2);
    undoStack.undo();
    EXPECT_EQ(count(), 1);
    undoStack.undo();
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(user.errors.isEmpty());
    ImportDoor::setWatchedFolderCopy({});
}

TEST_F(Drops, TheGridTakesByTheKindOfWhatItShows)
{
    const auto image = mimeOf({picture(QStringLiteral("one.png"))});
    const auto directory = mimeOf({QFileInfo(picture(QStringLiteral("Brand/two.png"))).path()});
    QMimeData pasted;
    pasted.setData(QStringLiteral("image/png"), "picture");
    QMimeData items;
    items.setData(BrowserContent::itemsMimeType, QByteArray());
    BrowserContent content(*window);
    struct Case
    {
        const char *what;
        Item shown;
        Qt::DropAction image, directory, pasted, items;
    };
    constexpr auto no = Qt::IgnoreAction;
    constexpr auto copy = Qt::CopyAction;
    for (const Case &each : {Case{"a project", a, copy, no, copy, Qt::MoveAction},
                             {"Library", special(ZQSidebarKind::Library), copy, no, copy, no},
                             {"Recent", special(ZQSidebarKind::Recent), no, no, no, no},
                             {"a folder", folder, no, copy, no, no},
                             {"a tag", tag, copy, no, copy, no}}) {
        SCOPED_TRACE(each.what);
        content.setSidebarItems({each.shown->objectID()});
        EXPECT_EQ(content.dropAction(image.get(), 0), each.image);
        EXPECT_EQ(content.dropAction(directory.get(), 0), each.directory);
        EXPECT_EQ(content.dropAction(&pasted, 0), each.pasted);
        EXPECT_EQ(content.dropAction(&items, 0), each.items);
    }
    content.setSidebarItems({a->objectID(), b->objectID()});
    EXPECT_EQ(content.dropAction(image.get(), 0), no) << "which of the two?";

    content.setSidebarItems({a->objectID()});
    content.drop(image.get(), 0, copy);
    finishImports();
    content.drop(mimeOf({picture(QStringLiteral("three.png"))}).get(), 0, copy);
    finishImports();
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[three one] B[] Folder{}"));
    for (const bool isFiltered : {false, true}) { // the places shown are not those of the project then
        a->setSortKeys(isFiltered ? 0 : 2);
        content.setFilter(isFiltered ? QStringLiteral("o") : QString());
        EXPECT_EQ(content.dropAction(&items, 0), no);
        content.drop(mimeOf({picture(QStringLiteral("%1.png").arg(isFiltered))}).get(), 0, copy);
        finishImports();
        QStringList shown;
        for (const auto &item : a->items()) {
            shown.append(item->title());
        }
        EXPECT_EQ(shown.value(shown.size() - 1), QString::number(isFiltered)) << "so it goes to the end";
    }
}

TEST_F(Drops, PromisedFilesGoWhereTheyWereDroppedAndNothingIsAskedForBefore)
{
    QString promisedPicture = picture(QStringLiteral("one.png"));
    PromisingProgram program;
    program.onSave = [&](const QString &saved) { EXPECT_TRUE(QFile::copy(promisedPicture, saved)); };
    AImportManager &manager = AImportManager::sharedAImportManager();
    PromisedImports promised(manager, program.maker());
    const auto data = PromisingProgram::drag();
    EXPECT_FALSE(takes(*data, {a, -1})) << "on a display where promises are not known";
    manager.setPromisedImports(&promised);
    const auto finish = [&] {
        zqRunMainLoopUntil([&promised] { return promised.count() == 0; });
        finishImports();
    };
    const std::tuple<Item, int, bool> places[] = {{a, -1, true},
                                                  {projects, 1, false},
                                                  {tag, -1, true},
                                                  {special(ZQSidebarKind::Library), -1, false},
                                                  {{}, -1, false}};
    for (const auto &[target, index, isTaken] : places) {
        EXPECT_EQ(takes(*data, {target, index}), isTaken) << (target ? qPrintable(target->title()) : "nothing");
    }
    BrowserContent content(*window);
    content.setSidebarItems({special(ZQSidebarKind::Recent)->objectID()});
    EXPECT_EQ(content.dropAction(data.get(), 0), Qt::IgnoreAction);
    content.setSidebarItems({a->objectID()});
    EXPECT_EQ(content.dropAction(data.get(), 0), Qt::CopyAction);
    EXPECT_TRUE(program.askedFor.isEmpty());

    EXPECT_TRUE(tree()->acceptDrop(data.get(), {a, -1}));
    finish();
    program.name = "two.png";
    promisedPicture = picture(QStringLiteral("two.png"));
    EXPECT_TRUE(content.drop(data.get(), 0, Qt::CopyAction));
    finish();
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[two one] B[] Folder{}"));

    program.askedFor.clear();
    const auto files = mimeOf({picture(QStringLiteral("three.png"))});
    files->setData(QLatin1String(PromisingProgram::format), QByteArray());
    drop(*files, {b, -1});
    EXPECT_EQ(treeBelow(projects), QStringLiteral("A[two one] B[three] Folder{}"));
    EXPECT_TRUE(program.askedFor.isEmpty()) << "files that are there come first";
    manager.setPromisedImports(nullptr);
}
