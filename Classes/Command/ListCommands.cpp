#include "Classes/Command/Commands.h"

#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Command/ItemListing.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace {
const QString searchTextKey = QStringLiteral("searchText");

// What a project, tag or live folder holds, or what a smart folder finds at the moment.
std::optional<QList<ZQObjectID>> shownItems(const ZQSidebarBaseItem &sidebarItem, CommandContext &context)
{
    if (!sidebarItem.isSmartFolder()) {
        QList<ZQObjectID> ids;
        for (const auto &item : sidebarItem.items()) {
            ids.append(item->objectID());
        }
        return ids;
    }
    ZQError error;
    auto items = context.store().fetchObjectIDs(
        SidebarContents(context.store(), context.readyIndex()).request(sidebarItem), &error);
    if (!items) {
        context.fail(error.localizedDescription());
    }
    return items;
}

std::optional<QList<ZQObjectID>> deletedItemsOf(const ZQSidebarBaseItem &sidebarItem)
{
    QList<ZQObjectID> deleted;
    const auto memberships = sidebarItem.pItemsWithActiveItemsOnly(false);
    const auto kept = zqPrefetch(memberships, QStringLiteral("item"));
    for (const ZQRef<ZQProjectItem> &membership : memberships) {
        const ZQRef<ZQLibraryBaseItem> item = membership->item();
        if (item && !item->active()) {
            deleted.append(item->objectID());
        }
    }
    return deleted;
}
// The active entries of the sidebar in their order, by what they stand in; those of none are above all.
using Tree = QHash<ZQObjectID, QList<ZQRef<ZQSidebarBaseItem>>>;

std::optional<Tree> sidebarTree(CommandContext &context)
{
    ZQFetchRequest request{ZQSidebarBaseItem::entityName(),
                           ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))};
    request.sortDescriptors = {{QStringLiteral("order")}};
    ZQError error;
    const auto items = context.store().fetch<ZQSidebarBaseItem>(request, &error);
    if (!items) {
        context.fail(error.localizedDescription());
        return std::nullopt;
    }
    Tree tree;
    for (const ZQRef<ZQSidebarBaseItem> &item : *items) {
        const ZQRef<ZQSidebarBaseItem> father = item->father();
        tree[father ? father->objectID() : ZQObjectID()].append(item);
    }
    auto &top = tree[ZQObjectID()];
    std::stable_sort(top.begin(), top.end(),
                     [](const auto &a, const auto &b) { return int(a->is_Tag()) < int(b->is_Tag()); });
    return tree;
}

std::optional<SidebarContents::Counts> countsOf(const Tree &tree, CommandContext &context)
{
    QList<SidebarContents::Entry> entries;
    for (const auto &siblings : tree) {
        for (const ZQRef<ZQSidebarBaseItem> &item : siblings) {
            entries.append(SidebarContents::entryFor(*item));
        }
    }
    return SidebarContents(context.store(), context.readyIndex()).counts(entries, [&context] {
        return context.isWanted();
    });
}

QJsonArray sidebarArray(const ZQObjectID &above, const Tree &tree, const SidebarContents::Counts &counts)
{
    QJsonArray array;
    for (const ZQRef<ZQSidebarBaseItem> &item : tree.value(above)) {
        QJsonObject object{{QStringLiteral("title"), item->title()},
                           {QStringLiteral("kind"), item->kind()},
                           {QStringLiteral("order"), item->order()},
                           {QStringLiteral("entity"), item->entity()->name},
                           {QStringLiteral("is_Label"), item->is_Label()},
                           {QStringLiteral("is_Special"), item->is_Special()},
                           {QStringLiteral("is_Tag"), item->is_Tag()},
                           {QStringLiteral("active"), item->active()},
                           {QStringLiteral("numberOfItems"), counts.value(item->objectID())},
                           {QStringLiteral("UUID"), item->UUID()},
                           {QStringLiteral("children"), sidebarArray(item->objectID(), tree, counts)}};
        if (const auto smart = zqCast<ZQSidebarSmartFolder>(item)) {
            object.insert(searchTextKey, smart->searchText());
        }
        array.append(object);
    }
    return array;
}

void printTree(const QJsonObject &node, int depth, CommandContext &context)
{
    const qint64 count = node.value(QStringLiteral("numberOfItems")).toInteger();
    const QString counted =
        node.value(QStringLiteral("is_Label")).toBool() ? QString() : QStringLiteral("  (%1)").arg(count);
    const QString search =
        node.contains(searchTextKey) ? QStringLiteral("  ") + node.value(searchTextKey).toString() : QString();
    context.print(QString(qsizetype(depth) * 2, u' ') + node.value(QStringLiteral("title")).toString() + counted +
                  search);
    for (const QJsonValue child : node.value(QStringLiteral("children")).toArray()) {
        printTree(child.toObject(), depth + 1, context);
    }
}
} // namespace

std::optional<QList<ZQObjectID>> zqItemsFor(const ItemsRequest &request, CommandContext &context)
{
    if (request.in.isEmpty()) {
        ZQFetchRequest fetch{ZQLibraryBaseItem::entityName(),
                             ZQPredicate::predicateWithFormat(QStringLiteral("active == %@"), {!request.deleted})};
        fetch.sortDescriptors = {{QStringLiteral("import_date")}};
        ZQError error;
        auto items = context.store().fetchObjectIDs(fetch, &error);
        if (!items) {
            context.fail(error.localizedDescription());
        }
        return items;
    }
    const ZQRef<ZQSidebarBaseItem> sidebarItem = zqSidebarItemForReference(request.in, context);
    if (!sidebarItem) {
        return std::nullopt;
    }
    return request.deleted ? deletedItemsOf(*sidebarItem) : shownItems(*sidebarItem, context);
}

int zqRunItems(const ItemsRequest &request, CommandContext &context)
{
    const auto items = zqItemsFor(request, context);
    if (!items) {
        return 2;
    }
    return zqPrintItems(*items, context) ? 0 : 2;
}

int zqRunSidebar(CommandContext &context)
{
    const auto tree = sidebarTree(context);
    if (!tree) {
        return 2;
    }
    const auto counts = countsOf(*tree, context);
    if (!counts) {
        return context.fail(
            zqLocalized("the items can't be counted; `zelto verify` says what is wrong with the library"));
    }
    const QJsonArray array = sidebarArray({}, *tree, *counts);
    if (context.json) {
        context.printJSON(array);
        return 0;
    }
    for (const QJsonValue node : array) {
        printTree(node.toObject(), 0, context);
    }
    return 0;
}
