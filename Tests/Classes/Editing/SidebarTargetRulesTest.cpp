#include "Classes/Editing/SidebarTargetRules.h"

#include "Models/DataModel/ZQSidebarSmartFolder.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"
#include "Tests/Classes/Editing/EditFixture.h"

class SidebarTargetRulesTest : public EditFixture
{
protected:
    Item special(ZQSidebarKind kind) { return ZQSidebarBaseItem::specialItemOfKind(kind, library.context()); }
};

TEST_F(SidebarTargetRulesTest, EachTargetTakesWhatItCanHold)
{
    using Place = SidebarTargetRules::Place;
    using Holding = SidebarTargetRules::Holding;
    const Item live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), special(ZQSidebarKind::WatchedFoldersLabel));
    const Item tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("tag"), library.context());
    const Item label = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context())->father();
    struct Case
    {
        const char *what;
        Item target;
        const char *files; // of s(upported files), f(olders), a(rchives): those that are worth bringing
        bool contentOntoRow, contentIntoPane, items, removal;
        Holding holding;
    };
    for (const Case &each : {
             Case{"Library", special(ZQSidebarKind::Library), "s", false, true, false, false, Holding::Items},
             Case{"Recents", special(ZQSidebarKind::Recent), "", false, false, false, false, Holding::Nothing},
             Case{"Screenshots", special(ZQSidebarKind::Screenshots), "", false, false, true, true, Holding::Items},
             Case{"a project", addProject(QStringLiteral("P")), "s", true, true, true, true, Holding::Items},
             Case{"a smart folder", add<ZQSidebarSmartFolder>(QStringLiteral("S"), projects), "", false, false, false,
                  false, Holding::Nothing},
             Case{"a folder", addFolder(QStringLiteral("F")), "fa", false, false, false, false, Holding::Tree},
             Case{"PROJECTS", projects, "fa", false, false, false, false, Holding::Tree},
             Case{"a live folder", live, "sf", true, true, true, false, Holding::Nothing},
             Case{"LIVE FOLDERS", special(ZQSidebarKind::WatchedFoldersLabel), "", false, false, false, false,
                  Holding::Nothing},
             Case{"a tag", tag, "s", true, true, true, true, Holding::Items},
             Case{"a measured color", special(ZQSidebarKind::FirstColor), "s", true, true, true, true, Holding::Items},
             Case{"TAGS", special(ZQSidebarKind::TagsLabel), "", false, false, false, false, Holding::Nothing},
             Case{"COLORS", special(ZQSidebarKind::ColorsLabel), "", false, false, false, false, Holding::Nothing},
             Case{"LIBRARY", label, "", false, false, false, false, Holding::Nothing},
         }) {
        SCOPED_TRACE(each.what);
        ASSERT_TRUE(each.target);
        const ZQSidebarBaseItem *target = each.target.get();
        QByteArray files;
        files += SidebarTargetRules::files({.hasSupported = true}, target) ? "s" : "";
        files += SidebarTargetRules::files({.hasFolder = true}, target) ? "f" : "";
        files += SidebarTargetRules::files({.hasArchive = true}, target) ? "a" : "";
        EXPECT_EQ(files, each.files);
        EXPECT_EQ(bool(SidebarTargetRules::content(target, Place::Row)), each.contentOntoRow);
        EXPECT_EQ(bool(SidebarTargetRules::content(target, Place::Pane)), each.contentIntoPane);
        EXPECT_EQ(bool(SidebarTargetRules::items(target)), each.items);
        EXPECT_EQ(SidebarTargetRules::canRemoveItems(target), each.removal);
        EXPECT_EQ(SidebarTargetRules::holding(*target), each.holding);
    }
    const SidebarTargetRules::Answer nowhere = SidebarTargetRules::items(nullptr);
    EXPECT_FALSE(nowhere);
    EXPECT_FALSE(nowhere.refusal.isEmpty());
}

TEST_F(SidebarTargetRulesTest, FilesMakeAProjectBetweenRowsAndBelowThem)
{
    const SidebarTargetRules::Files file{.hasSupported = true};
    const Item folder = addFolder(QStringLiteral("F"));
    EXPECT_TRUE(SidebarTargetRules::filesMakeProject(file, nullptr, -1));
    EXPECT_TRUE(SidebarTargetRules::filesMakeProject({.hasFolder = true}, projects.get(), 0));
    EXPECT_TRUE(SidebarTargetRules::filesMakeProject(file, folder.get(), 1));
    EXPECT_FALSE(SidebarTargetRules::filesMakeProject(file, folder.get(), -1)) << "onto it, not between its rows";
    EXPECT_FALSE(SidebarTargetRules::filesMakeProject(file, special(ZQSidebarKind::TagsLabel).get(), 0));
    EXPECT_FALSE(SidebarTargetRules::filesMakeProject({}, nullptr, -1)) << "nothing of use";
}

TEST_F(SidebarTargetRulesTest, FoldersMakeLiveFoldersAmongThem)
{
    const auto makes = [](const SidebarTargetRules::Files &files, const Item &target) {
        return SidebarTargetRules::foldersMakeLiveFolders(files, target.get());
    };
    const Item label = special(ZQSidebarKind::WatchedFoldersLabel);
    EXPECT_TRUE(makes({.hasFolder = true}, label));
    EXPECT_TRUE(makes({.hasSupported = true, .hasFolder = true}, label)) << "the files are left out";
    EXPECT_FALSE(makes({.hasSupported = true}, label));
    EXPECT_FALSE(makes({.hasFolder = true}, add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), label)));
    EXPECT_FALSE(makes({.hasFolder = true}, projects));
    EXPECT_FALSE(makes({.hasFolder = true}, {}));
}

TEST_F(SidebarTargetRulesTest, RowsAreMovedByNineRules)
{
    const Item a = addProject(QStringLiteral("A"));
    const Item b = addProject(QStringLiteral("B"));
    const Item folder = addFolder(QStringLiteral("Folder"));
    const Item inner = addFolder(QStringLiteral("Inner"), folder);
    const Item liveLabel = ZQSidebarBaseItem::watchedFolderLabelInManagedObjectContext(library.context());
    const Item live = add<ZQSidebarWatchedFolder>(QStringLiteral("Live"), liveLabel);
    const Item special = ZQSidebarBaseItem::libraryProjectInManagedObjectContext(library.context());
    const Item libraryLabel = special->father();
    const Item smart = add<ZQSidebarSmartFolder>(QStringLiteral("Smart"), projects);
    const Item tag = ZQSidebarTag::addNewTagWithName(QStringLiteral("tag"), library.context());
    const Item tags = tag->father();
    struct Case
    {
        const char *what;
        SidebarTargetRules::Rows dragged;
        Item target;
        int index;
        bool accepted;
    };
    const Case cases[] = {
        {"no target", {a}, {}, 0, false},
        {"onto itself", {folder}, folder, 0, false},
        {"onto Library", {a}, special, -1, false},
        {"into the LIBRARY label", {a}, libraryLabel, 0, false},
        {"onto a project", {a}, b, -1, false},
        {"a folder into its own inside", {folder}, inner, 0, false},
        {"onto a live folder", {a}, live, 0, false},
        {"a live folder among projects", {live}, projects, 0, false},
        {"a live folder and a project among projects", {a, live}, projects, 0, false},
        {"a project among live folders", {a}, liveLabel, 0, false},
        {"a folder among live folders", {folder}, liveLabel, 0, false},
        {"between projects", {a}, projects, 2, true},
        {"onto PROJECTS", {a}, projects, -1, true},
        {"onto a folder", {a, b}, folder, -1, true},
        {"into a folder in a folder", {a}, inner, 0, true},
        {"live folders among themselves", {live}, liveLabel, 0, true},
        {"a smart folder among projects", {smart}, projects, 1, true},
        {"a smart folder onto a folder", {smart, a}, folder, -1, true},
        {"onto a smart folder", {a}, smart, -1, false},
        {"a smart folder among live folders", {smart}, liveLabel, 0, false},
        {"tags among themselves", {tag}, tags, 0, true},
        {"a tag among projects", {tag}, projects, 0, false},
        {"a project among tags", {a}, tags, 0, false},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(SidebarTargetRules::rows(c.dragged, c.target, c.index), c.accepted) << c.what;
    }
}
