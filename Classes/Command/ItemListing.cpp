#include "Classes/Command/ItemListing.h"

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <utility>

namespace {

QJsonValue pathOrNull(const QString &path)
{
    return path.isEmpty() ? QJsonValue() : QJsonValue(path);
}

QJsonObject itemObject(ZQLibraryBaseItem &item)
{
    QJsonObject object = zqJSONObject(item);
    QJsonArray tags;
    for (const ZQRef<ZQSidebarTag> &tag : item.itemTags()) {
        tags.append(tag->title());
    }
    QJsonArray projects;
    for (const ZQRef<ZQSidebarBaseItem> &project : item.projects()) {
        projects.append(project->title());
    }
    object.insert(QStringLiteral("entity"), item.entity()->name);
    object.insert(QStringLiteral("itemPath"), pathOrNull(item.itemURL()));
    object.insert(QStringLiteral("thumbPath"), pathOrNull(item.thumbURL()));
    object.insert(QStringLiteral("tags"), tags);
    object.insert(QStringLiteral("projects"), projects);
    return object;
}

using Distances = QHash<ZQObjectID, int>;

QByteArray textOf(const QList<ZQRef<ZQLibraryBaseItem>> &items, const Distances &distances)
{
    QByteArray text;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        text += (item->bundleID() + u'\t' + zqListedName(*item)).toUtf8();
        if (const auto distance = distances.constFind(item->objectID()); distance != distances.cend()) {
            text += '\t' + QByteArray::number(*distance);
        }
        text += '\n';
    }
    return text;
}

QByteArray jsonOf(const QList<ZQRef<ZQLibraryBaseItem>> &items, const Distances &distances)
{
    const auto tags = zqPrefetch(items, QStringLiteral("tags"));
    const auto projects = zqPrefetch(items, QStringLiteral("projectsItems.project"));
    ZQLibraryBaseItem::lookForFiles(items);
    QJsonArray array;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        QJsonObject object = itemObject(*item);
        if (const auto distance = distances.constFind(item->objectID()); distance != distances.cend()) {
            object.insert(QStringLiteral("distance"), *distance);
        }
        array.append(object);
    }
    return zqJSONElements(array);
}

} // namespace

QString zqListedName(const ZQLibraryBaseItem &item)
{
    return item.extension().isEmpty() ? item.title() : item.title() + u'.' + item.extension();
}

QByteArray zqJSONElements(const QJsonArray &array)
{
    const QByteArray text = array.isEmpty() ? QByteArray() : QJsonDocument(array).toJson();
    return text.isEmpty() ? text : text.sliced(2, text.size() - 5); // without "[\n" and "\n]\n"
}

bool zqPrintItems(const QList<ZQObjectID> &items, CommandContext &context)
{
    return zqPrintItems(items, {}, context);
}

bool zqPrintItems(const QList<ZQObjectID> &items, const QHash<ZQObjectID, int> &distances, CommandContext &context)
{
    constexpr qsizetype atATime = 200; // takes a few milliseconds
    return zqPrintInParts(items.size(), atATime, context, [&](qsizetype start) {
        const auto batch = ZQLibraryBaseItem::itemsWithIDs(items.mid(start, atATime), context.store());
        return batch.isEmpty() ? QByteArray() : context.json ? jsonOf(batch, distances) : textOf(batch, distances);
    });
}

bool zqPrintInParts(qsizetype count, qsizetype atATime, CommandContext &context,
                    const std::function<QByteArray(qsizetype first)> &partAt)
{
    const bool isServed = bool(context.isAbandoned);
    const std::weak_ptr<ZQPersistentStoreCoordinator> library = context.store().persistentStoreCoordinator();
    const auto isOpen = [&] { // the person may open another one, or quit, while the loop runs
        const ZQManagedObjectContext *store = context.delegate->managedObjectContext();
        return store && store->persistentStoreCoordinator() == library.lock();
    };
    bool hasElements = false;
    for (qsizetype start = 0; start < count; start += atATime) {
        if (!isOpen() || !context.isWanted()) {
            context.output.clear();
            context.fail(zqLocalized("the list was given up"));
            return false;
        }
        const QByteArray text = partAt(start);
        if (context.json && !text.isEmpty()) {
            context.output += std::exchange(hasElements, true) ? ",\n" : "[\n";
        }
        context.output += text;
        if (isServed) {
            zqRunMainLoopFor(std::chrono::milliseconds(0));
        }
    }
    if (context.json) {
        context.output += hasElements ? "\n]\n" : "[\n]\n";
    }
    return true;
}
