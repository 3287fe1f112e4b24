#include "Classes/Editing/SidebarTargetRules.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <algorithm>
#include <array>

namespace {

enum class Target {
    None,
    Library,
    Recents,
    Screenshots,
    Project,
    SmartFolder,
    Folder, // and PROJECTS
    LiveFolder,
    LiveFoldersLabel,
    Tag,
    OtherLabel,
};

using Holding = SidebarTargetRules::Holding;

// What makes files worth bringing.
enum FilesNeed : unsigned { NoFiles = 0, Supported = 1, Folders = 2, Archives = 4 };

enum class Takes { Never, InItsPane, Always };

struct Rule
{
    Target target;
    unsigned files; // one of these kinds has to be there
    Takes content;
    bool takesItems;
    bool givesItems; // they can be removed again
    Holding holding; // also for what comes in by other ways than a person's hand: captures, resumed imports
    const char *refusal;
};

constexpr std::array<Rule, 11> rules = {{
    {Target::None, NoFiles, Takes::Never, false, false, Holding::Nothing, zqKey("Choose where it is to go.")},
    {Target::Library, Supported, Takes::InItsPane, false, false, Holding::Items,
     zqKey("Everything is in the library already. Choose a project or a tag.")},
    {Target::Recents, NoFiles, Takes::Never, false, false, Holding::Nothing,
     zqKey("Recent shows what is new by itself. Choose the library, a project or a tag.")},
    {Target::Screenshots, NoFiles, Takes::Never, true, true, Holding::Items,
     zqKey("Screenshots is for captures. Choose the library, a project or a tag.")},
    {Target::Project, Supported, Takes::Always, true, true, Holding::Items,
     zqKey("None of this can be imported into a project.")},
    {Target::SmartFolder, NoFiles, Takes::Never, false, false, Holding::Nothing,
     zqKey("A smart folder finds its items by itself. Choose the library, a project or a tag.")},
    {Target::Folder, Folders | Archives, Takes::Never, false, false, Holding::Tree,
     zqKey("A folder takes folders and archives. Choose a project in it.")},
    {Target::LiveFolder, Supported | Folders, Takes::Always, true, false, Holding::Nothing,
     zqKey("None of this can be imported into a live folder.")},
    {Target::LiveFoldersLabel, NoFiles, Takes::Never, false, false, Holding::Nothing,
     zqKey("Choose a live folder, the library, a project or a tag.")},
    {Target::Tag, Supported, Takes::Always, true, true, Holding::Items, zqKey("None of this can be imported.")},
    {Target::OtherLabel, NoFiles, Takes::Never, false, false, Holding::Nothing,
     zqKey("Choose the library, a project or a tag.")},
}};

Target targetOf(const ZQSidebarBaseItem *item)
{
    if (!item) {
        return Target::None;
    }
    if (item->isRecent()) {
        return Target::Recents;
    }
    if (ZQSidebarKind(item->kind()) == ZQSidebarKind::WatchedFoldersLabel) {
        return Target::LiveFoldersLabel;
    }
    if (item->isWatchedFolder()) {
        return Target::LiveFolder;
    }
    if (item->isLibrary()) {
        return Target::Library;
    }
    if (item->isScreenshot()) {
        return Target::Screenshots;
    }
    if (item->isProject()) {
        return Target::Project;
    }
    if (item->isSmartFolder()) {
        return Target::SmartFolder;
    }
    if (!item->isTag() && (item->isFolder() || item->isDroppableLabel())) {
        return Target::Folder;
    }
    return item->isTag() && !item->isLabel() ? Target::Tag : Target::OtherLabel;
}

const Rule &ruleFor(const ZQSidebarBaseItem *item)
{
    return *std::find_if(rules.begin(), rules.end(),
                         [target = targetOf(item)](const Rule &rule) { return rule.target == target; });
}

SidebarTargetRules::Answer answer(bool isAccepted, const Rule &rule)
{
    return isAccepted ? SidebarTargetRules::Answer() : SidebarTargetRules::Answer{zqLocalized(rule.refusal)};
}

unsigned kindsOf(const SidebarTargetRules::Files &files)
{
    return (files.hasSupported ? Supported : 0U) | (files.hasFolder ? Folders : 0U) |
           (files.hasArchive ? Archives : 0U);
}

} // namespace

SidebarTargetRules::Answer SidebarTargetRules::files(const Files &files, const ZQSidebarBaseItem *target)
{
    const Rule &rule = ruleFor(target);
    return answer((rule.files & kindsOf(files)) != 0, rule);
}

SidebarTargetRules::Answer SidebarTargetRules::content(const ZQSidebarBaseItem *target, Place place)
{
    const Rule &rule = ruleFor(target);
    return answer(rule.content == Takes::Always || (rule.content == Takes::InItsPane && place == Place::Pane), rule);
}

SidebarTargetRules::Answer SidebarTargetRules::items(const ZQSidebarBaseItem *target)
{
    const Rule &rule = ruleFor(target);
    return answer(rule.takesItems, rule);
}

bool SidebarTargetRules::canRemoveItems(const ZQSidebarBaseItem *from)
{
    return ruleFor(from).givesItems;
}

bool SidebarTargetRules::filesMakeProject(const Files &files, const ZQSidebarBaseItem *target, int index)
{
    return (files.hasSupported || files.hasFolder) && (!target || (index >= 0 && targetOf(target) == Target::Folder));
}

bool SidebarTargetRules::foldersMakeLiveFolders(const Files &files, const ZQSidebarBaseItem *target)
{
    return files.hasFolder && targetOf(target) == Target::LiveFoldersLabel;
}

bool SidebarTargetRules::rows(const Rows &dragged, const ZQRef<ZQSidebarBaseItem> &target, int index)
{
    const auto any = [&dragged](const auto &test) { return std::any_of(dragged.begin(), dragged.end(), test); };
    if (!target || dragged.contains(target) || target->isSpecial() ||
        (target->isLabel() && !target->isDroppableLabel()) || (!target->isFolder() && index == -1) ||
        any([&target](const auto &item) { return target->isDescendantOfItem(item.get()); }) ||
        target->isWatchedFolder()) {
        return false;
    }
    // The other tree comes under the pointer when a drag turns the switch.
    if (any([&target](const auto &item) { return item->isTag() != target->isTag(); })) {
        return false;
    }
    if (ZQSidebarKind(target->kind()) != ZQSidebarKind::WatchedFoldersLabel) {
        return !any([](const auto &item) { return item->isWatchedFolder(); });
    }
    return !any([](const auto &item) { return item->isProject() || item->isFolder() || item->isSmartFolder(); });
}

SidebarTargetRules::Holding SidebarTargetRules::holding(const ZQSidebarBaseItem &target)
{
    return ruleFor(&target).holding;
}
