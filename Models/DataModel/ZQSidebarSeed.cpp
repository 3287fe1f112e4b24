#include "Models/DataModel/ZQSidebarSeed.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQSidebarFolder.h"
#include "Models/DataModel/ZQSidebarLibrary.h"
#include "Models/DataModel/ZQSidebarProject.h"
#include "Models/DataModel/ZQSidebarRecent.h"
#include "Models/DataModel/ZQSidebarScreenshot.h"
#include "Models/DataModel/ZQSidebarTag.h"

namespace {

enum Flags { Label = 1, Special = 2, Tag = 4 };

constexpr int noParent = -1;

struct FixedEntry
{
    ZQSidebarKind kind;
    QString (*entityName)();
    const char *title;
    int parent;
    qint32 order; // among its siblings; tags are a tree of their own
    int flags;
};

const FixedEntry fixedEntries[] = {
    {ZQSidebarKind::LibraryLabel, ZQSidebarBaseItem::entityName, zqKey("LIBRARY"), noParent, 0, Label},
    {ZQSidebarKind::Library, ZQSidebarLibrary::entityName, zqKey("Library"), int(ZQSidebarKind::LibraryLabel), 0,
     Special},
    {ZQSidebarKind::Recent, ZQSidebarRecent::entityName, zqKey("Recent"), int(ZQSidebarKind::LibraryLabel), 1, Special},
    {ZQSidebarKind::Screenshots, ZQSidebarScreenshot::entityName, zqKey("Screenshots"),
     int(ZQSidebarKind::LibraryLabel), 2, Special},
    {ZQSidebarKind::ProjectsLabel, ZQSidebarFolder::entityName, zqKey("PROJECTS"), noParent, 2, Label},
    {ZQSidebarKind::WatchedFoldersLabel, ZQSidebarFolder::entityName, zqKey("LIVE FOLDERS"), noParent, 3, Label},
    {ZQSidebarKind::TagsLabel, ZQSidebarTag::entityName, zqKey("TAGS"), noParent, 0, Label | Tag},
    {ZQSidebarKind::SizesLabel, ZQSidebarTag::entityName, zqKey("SIZES"), noParent, 1, Label | Tag},
    {ZQSidebarKind::ColorsLabel, ZQSidebarTag::entityName, zqKey("COLORS"), noParent, 2, Label | Tag},
};

const char *const sizeTitles[] = {zqKey("icon"), zqKey("small"), zqKey("medium"), zqKey("large"), zqKey("vector")};
const char *const colorTitles[] = {zqKey("white"),  zqKey("black"), zqKey("gray"), zqKey("red"),    zqKey("orange"),
                                   zqKey("yellow"), zqKey("green"), zqKey("blue"), zqKey("purple"), zqKey("pink")};

constexpr float libraryZoom = 0.445F;
constexpr auto sortByImportDate = qint16(ZQSortValue::ImportDate);

// Null when the entry was there already.
ZQRef<ZQSidebarBaseItem> addFixedEntry(const FixedEntry &entry, ZQManagedObjectContext &context)
{
    if (ZQSidebarBaseItem::specialItemOfKind(entry.kind, context)) {
        return {};
    }
    auto item = zqCast<ZQSidebarBaseItem>(context.insertNewObjectForEntityForName(entry.entityName()));
    item->setKind(qint16(entry.kind));
    item->setTitle(zqLocalized(entry.title));
    item->setOrder(entry.order);
    item->setIs_Label(entry.flags & Label);
    item->setIs_Special(entry.flags & Special);
    item->setIs_Tag(entry.flags & Tag);
    item->setEnabled(!(entry.flags & Label));
    item->setExpanded(entry.flags & Label);
    if (entry.parent != noParent) {
        item->setFather(ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(entry.parent), context).get());
    }
    if (entry.flags & Special) {
        item->setSortKeys(sortByImportDate);
    }
    if (entry.kind == ZQSidebarKind::Library) {
        item->setZoom(libraryZoom);
    } else if (entry.flags & Special) {
        item->setSortDirection(false);
    }
    return item;
}

bool canTellWhatIsMissing(ZQManagedObjectContext &context, ZQError *error)
{
    QList<int> kinds;
    for (const FixedEntry &entry : fixedEntries) {
        kinds.append(int(entry.kind));
    }
    for (int size = int(ZQSidebarKind::FirstSize); size <= int(ZQSidebarKind::LastSize); ++size) {
        kinds.append(size);
    }
    for (int color = int(ZQSidebarKind::FirstColor); color <= int(ZQSidebarKind::LastColor); ++color) {
        kinds.append(color);
    }
    for (const int kind : std::as_const(kinds)) {
        ZQError failure;
        ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(kind), context, &failure);
        if (!failure.isNull()) {
            zqSetError(error, failure);
            return false;
        }
    }
    return true;
}

void addSampleProject(ZQSidebarBaseItem &label, ZQManagedObjectContext &context)
{
    const auto project = context.insertNewObject<ZQSidebarProject>();
    project->setTitle(zqLocalized("Sample project"));
    label.addChild(project.get(), 0);
}

void addSampleTag(ZQSidebarBaseItem &label, ZQManagedObjectContext &context)
{
    const auto tag = context.insertNewObject<ZQSidebarTag>();
    tag->setTitle(zqLocalized("Sample tag"));
    tag->setIs_Tag(true);
    label.addChild(tag.get(), 0);
}

void updateTitle(int kind, const char *title, ZQManagedObjectContext &context)
{
    const auto item = ZQSidebarBaseItem::specialItemOfKind(ZQSidebarKind(kind), context);
    const QString localizedTitle = zqLocalized(title);
    if (item && item->title() != localizedTitle) {
        item->setTitle(localizedTitle);
    }
}

} // namespace

bool zqSeedFixedSidebar(ZQManagedObjectContext &context, ZQError *error)
{
    // Before the first is added: one that only cannot be read must not be there twice.
    if (!canTellWhatIsMissing(context, error)) {
        return false;
    }
    for (const FixedEntry &entry : fixedEntries) {
        const auto added = addFixedEntry(entry, context);
        if (added && entry.kind == ZQSidebarKind::ProjectsLabel) {
            addSampleProject(*added, context);
        } else if (added && entry.kind == ZQSidebarKind::TagsLabel) {
            addSampleTag(*added, context);
        }
    }
    for (int size = int(ZQSidebarKind::FirstSize); size <= int(ZQSidebarKind::LastSize); ++size) {
        ZQSidebarTag::tagForSize(size, context);
    }
    for (int color = int(ZQSidebarKind::FirstColor); color <= int(ZQSidebarKind::LastColor); ++color) {
        ZQSidebarTag::tagForColor(color, context);
    }
    return true;
}

void zqUpdateFixedTitles(ZQManagedObjectContext &context)
{
    for (const FixedEntry &entry : fixedEntries) {
        updateTitle(int(entry.kind), entry.title, context);
    }
    int kind = int(ZQSidebarKind::FirstSize);
    for (const char *title : sizeTitles) {
        updateTitle(kind++, title, context);
    }
    kind = int(ZQSidebarKind::FirstColor);
    for (const char *title : colorTitles) {
        updateTitle(kind++, title, context);
    }
}
