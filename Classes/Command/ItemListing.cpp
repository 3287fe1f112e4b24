#include "Classes/Command/ItemListing.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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

// The elements alone, as they stand in the text of a whole array.
QByteArray asElements(const QJsonArray &array)
{
    const QByteArray text = QJsonDocument(array).toJson();
    return text.sliced(2, text.size() - 5); // without "[\n" and "\n]\n"
}

QByteArray textOf(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    QByteArray text;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        const QString extension = item->extension().isEmpty() ? QString() : u'.' + item->extension();
        text += (item->bundleID() + u'\t' + item->title() + extension).toUtf8() + '\n';
    }
    return text;
}

QByteArray jsonOf(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    const auto tags = zqPrefetch(items, QStringLiteral("tags"));
    const auto projects = zqPrefetch(items, QStringLiteral("projectsItems.project"));
    ZQLibraryBaseItem::lookForFiles(items);
    QJsonArray array;
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        array.append(itemObject(*item));
    }
    return asElements(array);
}

} // namespace

bool zqPrintItems(const QList<ZQObjectID> &items, CommandContext &context)
{
    constexpr qsizetype atATime = 200; // takes a few milliseconds
    const bool isServed = bool(context.isAbandoned);
    bool hasElements = false;
    for (qsizetype start = 0; start < items.size(); start += atATime) {
        if (!context.isWanted()) {
            context.output.clear();
            context.fail(zqLocalized("the list was given up"));
            return false;
        }
        const auto batch = ZQLibraryBaseItem::itemsWithIDs(items.mid(start, atATime), context.store());
        if (!context.json) {
            context.output += textOf(batch);
        } else if (!batch.isEmpty()) {
            context.output += (std::exchange(hasElements, true) ? ",\n" : "[\n") + jsonOf(batch);
        }
        if (isServed) {
            zqRunMainLoopFor(std::chrono::milliseconds(0));
        }
    }
    if (context.json) {
        context.output += hasElements ? "\n]\n" : "[\n]\n";
    }
    return true;
}
