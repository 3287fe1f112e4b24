#include "Classes/Command/ItemListing.h"

#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <QJsonArray>
#include <QJsonObject>

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

QJsonArray itemObjects(const QList<ZQRef<ZQLibraryBaseItem>> &items)
{
    constexpr qsizetype atATime = 1000;
    QJsonArray array;
    for (qsizetype start = 0; start < items.size(); start += atATime) {
        const QList<ZQRef<ZQLibraryBaseItem>> batch = items.mid(start, atATime);
        const auto tags = zqPrefetch(batch, QStringLiteral("tags"));
        const auto projects = zqPrefetch(batch, QStringLiteral("projectsItems.project"));
        ZQLibraryBaseItem::lookForFiles(batch);
        for (const ZQRef<ZQLibraryBaseItem> &item : batch) {
            array.append(itemObject(*item));
        }
    }
    return array;
}

} // namespace

void zqPrintItems(const QList<ZQRef<ZQLibraryBaseItem>> &items, CommandContext &context)
{
    if (context.json) {
        context.printJSON(itemObjects(items));
        return;
    }
    for (const ZQRef<ZQLibraryBaseItem> &item : items) {
        context.print(item->bundleID() + u'\t' + item->title() +
                      (item->extension().isEmpty() ? QString() : u'.' + item->extension()));
    }
}
