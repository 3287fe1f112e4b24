#include "Classes/Command/CommandContext.h"

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Application/tamberin_AppDelegate.h"
#include "Classes/Browsing/Index/LibraryIndex.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

ZQManagedObjectContext &CommandContext::store() const
{
    return *delegate->managedObjectContext();
}

QString CommandContext::pathToOpen(const QString &given) const
{
    if (ProtocolHandling::isProtocolURL(given)) {
        return given;
    }
    const QUrl url(given);
    return url.isLocalFile() ? url.toLocalFile() : absolutePath(given);
}

LibraryIndex *CommandContext::readyIndex() const
{
    return index && index->isReady() && !store().hasChanges() ? index.get() : nullptr;
}

void CommandContext::printJSON(const QJsonValue &value)
{
    output += value.isArray() ? QJsonDocument(value.toArray()).toJson() : QJsonDocument(value.toObject()).toJson();
}

int CommandContext::fail(const QString &message)
{
    constexpr qsizetype longest = 4000; // several paths in full, and no whole file
    errors += "zelto: " + zqShortened(message, longest).toUtf8() + '\n';
    return 2;
}

namespace {
using SidebarItem = ZQRef<ZQSidebarBaseItem>;

QList<SidebarItem> topLevelItems(ZQManagedObjectContext &store)
{
    ZQFetchRequest request{ZQSidebarBaseItem::entityName(),
                           ZQPredicate::predicateWithFormat(QStringLiteral("father == nil && active == YES"))};
    request.sortDescriptors = {{QStringLiteral("is_Tag")}, {QStringLiteral("order")}};
    return store.fetch<ZQSidebarBaseItem>(request).value_or(QList<SidebarItem>());
}

// The node reached by `path` from `siblings`; every way to cut the path at a slash is tried, the longest title first.
SidebarItem descend(const QList<SidebarItem> &siblings, const QString &path)
{
    for (const SidebarItem &item : siblings) {
        if (item->title() == path) {
            return item;
        }
    }
    for (const SidebarItem &item : siblings) {
        if (path.startsWith(item->title() + u'/')) {
            if (SidebarItem found = descend(item->orderedChildren(), path.mid(item->title().size() + 1))) {
                return found;
            }
        }
    }
    return nullptr;
}

ZQFetched<ZQLibraryBaseItem> fetchItems(const char *key, const QString &value, ZQManagedObjectContext &store)
{
    return store.fetch<ZQLibraryBaseItem>(
        {ZQLibraryBaseItem::entityName(),
         ZQPredicate::predicateWithFormat(QStringLiteral("%K == %@"), {QLatin1String(key), value})});
}
} // namespace

ZQRef<ZQSidebarBaseItem> zqSidebarItemForReference(const QString &reference, CommandContext &context)
{
    SidebarItem found;
    if (reference.startsWith(QStringLiteral("x-zelto://"))) {
        found = zqCast<ZQSidebarBaseItem>(context.store().objectWithURIRepresentation(reference));
        if (found && !found->active()) {
            found = nullptr;
        }
    } else {
        found = descend(topLevelItems(context.store()), reference);
    }
    if (!found) {
        context.fail(zqFormat(zqLocalized("there is no sidebar entry “%@”; `zelto sidebar` lists them"), {reference}));
    }
    return found;
}

std::optional<QList<ZQRef<ZQLibraryBaseItem>>> zqItemsForReferences(const QStringList &references,
                                                                    CommandContext &context)
{
    static const QRegularExpression digest(QStringLiteral("^[0-9a-f]{40}$"));
    static const QRegularExpression inDirectory(QStringLiteral("([^/]+)\\.ztlibraryitem(/|$)"));
    QList<ZQRef<ZQLibraryBaseItem>> items;
    for (const QString &reference : references) {
        const QRegularExpressionMatch path = inDirectory.match(reference);
        const auto found =
            digest.match(reference).hasMatch()
                ? fetchItems("SHA1", reference, context.store())
                : fetchItems("bundleID", path.hasMatch() ? path.captured(1) : reference, context.store());
        if (!found || found->isEmpty()) {
            context.fail(zqFormat(
                zqLocalized("there is no item “%@”; name it by its bundleID, its SHA1 or a path inside the library"),
                {reference}));
            return std::nullopt;
        }
        for (const ZQRef<ZQLibraryBaseItem> &item : *found) {
            if (!items.contains(item)) {
                items.append(item);
            }
        }
    }
    return items;
}
