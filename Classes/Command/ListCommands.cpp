#include "Classes/Command/Commands.h"

#include "Classes/Browsing/Content/SidebarContents.h"
#include "Classes/Command/ItemListing.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQProjectItem.h"
#include "Models/DataModel/ZQSidebarSmartFolder.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {
const QString searchTextKey = QStringLiteral("searchText");

// What a project, tag or live folder holds, or what a smart folder finds at the moment.
ZQFetched<ZQLibraryBaseItem> shownItems(const ZQSidebarBaseItem &sidebarItem, CommandContext &context)
{
    if (!sidebarItem.isSmartFolder()) {
        return sidebarItem.items();
    }
    ZQError error;
    auto items =
        context.store().fetch<ZQLibraryBaseItem>(SidebarContents(context.store()).request(sidebarItem), &error);
    if (!items) {
        context.fail(error.localizedDescription());
    }
    return items;
}

// The items asked for; nothing after an error, which is in `context`.
ZQFetched<ZQLibraryBaseItem> itemsFor(const ItemsRequest &request, CommandContext &context)
{
    if (request.in.isEmpty()) {
        ZQFetchRequest fetch{ZQLibraryBaseItem::entityName(),
                             ZQPredicate::predicateWithFormat(QStringLiteral("active == %@"), {!request.deleted})};
        fetch.sortDescriptors = {{QStringLiteral("import_date")}};
        ZQError error;
        auto items = context.store().fetch<ZQLibraryBaseItem>(fetch, &error);
        if (!items) {
            context.fail(error.localizedDescription());
        }
        return items;
    }
    const ZQRef<ZQSidebarBaseItem> sidebarItem = zqSidebarItemForReference(request.in, context);
    if (!sidebarItem) {
        return std::nullopt;
    }
    if (!request.deleted) {
        return shownItems(*sidebarItem, context);
    }
    QList<ZQRef<ZQLibraryBaseItem>> deleted;
    const auto memberships = sidebarItem->pItemsWithActiveItemsOnly(false);
    const auto kept = zqPrefetch(memberships, QStringLiteral("item"));
    for (const ZQRef<ZQProjectItem> &membership : memberships) {
        const ZQRef<ZQLibraryBaseItem> item = membership->item();
        if (item && !item->active()) {
            deleted.append(item);
        }
    }
    return deleted;
}

qint64 countOf(const ZQSidebarBaseItem &item, CommandContext &context)
{
    return item.isSmartFolder() ? zqCount(context.store(), SidebarContents(context.store()).request(item))
                                : item.numberOfItems();
}

QJsonObject sidebarObject(const ZQSidebarBaseItem &item, CommandContext &context)
{
    QJsonArray children;
    for (const ZQRef<ZQSidebarBaseItem> &child : item.orderedChildren()) {
        children.append(sidebarObject(*child, context));
    }
    QJsonObject object{{QStringLiteral("title"), item.title()},
                       {QStringLiteral("kind"), item.kind()},
                       {QStringLiteral("order"), item.order()},
                       {QStringLiteral("entity"), item.entity()->name},
                       {QStringLiteral("is_Label"), item.is_Label()},
                       {QStringLiteral("is_Special"), item.is_Special()},
                       {QStringLiteral("is_Tag"), item.is_Tag()},
                       {QStringLiteral("active"), item.active()},
                       {QStringLiteral("numberOfItems"), countOf(item, context)},
                       {QStringLiteral("UUID"), item.UUID()},
                       {QStringLiteral("children"), children}};
    if (const auto *smart = dynamic_cast<const ZQSidebarSmartFolder *>(&item)) {
        object.insert(searchTextKey, smart->searchText());
    }
    return object;
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

int zqRunItems(const ItemsRequest &request, CommandContext &context)
{
    const auto items = itemsFor(request, context);
    if (!items) {
        return 2;
    }
    zqPrintItems(*items, context);
    return 0;
}

int zqRunSidebar(CommandContext &context)
{
    ZQFetchRequest request{ZQSidebarBaseItem::entityName(),
                           ZQPredicate::predicateWithFormat(QStringLiteral("father == nil &&  active == YES"))};
    request.sortDescriptors = {{QStringLiteral("is_Tag")}, {QStringLiteral("order")}};
    ZQError error;
    const auto nodes = context.store().fetch<ZQSidebarBaseItem>(request, &error);
    if (!nodes) {
        return context.fail(error.localizedDescription());
    }
    QJsonArray array;
    for (const ZQRef<ZQSidebarBaseItem> &node : *nodes) {
        array.append(sidebarObject(*node, context));
    }
    if (context.json) {
        context.printJSON(array);
        return 0;
    }
    for (const QJsonValue node : array) {
        printTree(node.toObject(), 0, context);
    }
    return 0;
}
