#include "Classes/Browsing/Content/StoreSearch.h"

#include "Classes/Browsing/Content/ContentFetcher.h"
#include "Classes/Browsing/Search/SearchQueries.h"
#include "Kit/Persistence/ZQIDList.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQSidebarWatchedFolder.h"

#include <QHash>

namespace {

const QString hashKey = QStringLiteral("SHA1");

void addCounts(const ZQFetchRequest &request, ZQManagedObjectContext &context, QMap<QString, qint64> &counts)
{
    for (const QVariantMap &item : context.fetchDictionaries(request, {hashKey}).value_or(QList<QVariantMap>())) {
        ++counts[item.value(hashKey).toString()];
    }
}

// Of those that meet the condition and were looked at.
QList<ZQPictureHash> picturesOf(const ZQPredicate &condition, ZQManagedObjectContext &context)
{
    static const QString picture = QStringLiteral("pictureHash");
    const ZQPredicate known = ZQPredicate::predicateWithFormat(QStringLiteral("pictureHash != nil"));
    const auto items = context.fetchDictionaries({.entityName = ZQLibraryBaseItem::entityName(),
                                                  .predicate = ZQPredicate::andPredicate({condition, known}),
                                                  .fetchLimit = StoreSearch::mostPictures},
                                                 {picture});
    QList<ZQPictureHash> found;
    for (const QVariantMap &item : items.value_or(QList<QVariantMap>())) {
        if (const auto read = ZQPictureHash::fromBytes(item.value(picture).toByteArray())) {
            found.append(*read);
        }
    }
    return found;
}

} // namespace

SearchContext StoreSearch::context(ZQListRows rows, const QList<ZQFetchRequest> &requests,
                                   ZQManagedObjectContext &context)
{
    SearchContext result;
    result.rows = rows;
    result.hashCounts = [requests, &context] { return hashCounts(requests, context); };
    result.liveFolderDepth = [&context] { return liveFolderDepth(context); };
    result.picturesNamed = [&context](const QString &name) { return picturesNamed(name, context); };
    result.titleOfPicture = [&context](const QString &name) { return titleOfPicture(name, context); };
    return result;
}

QMap<QString, qint64> StoreSearch::hashCounts(const QList<ZQFetchRequest> &requests, ZQManagedObjectContext &context)
{
    constexpr qsizetype batchSize = 500;
    QMap<QString, qint64> counts;
    if (requests.size() == 1 && zqListRowsOfEntity(requests.first().entityName) == ZQListRows::LibraryItems) {
        addCounts({.entityName = requests.first().entityName, .predicate = requests.first().predicate}, context,
                  counts);
        return counts;
    }
    ZQIDList items;
    for (const ZQFetchRequest &request : requests) {
        const auto rows =
            ContentFetcher::rows({.entityName = request.entityName, .predicate = request.predicate}, context, nullptr);
        for (const ZQObjectID &item : rows ? rows->related : QList<ZQObjectID>()) {
            items.add(item);
        }
    }
    for (qsizetype first = 0; first < items.list.size(); first += batchSize) {
        QVariantList batch;
        for (const ZQObjectID &item : items.list.mid(first, batchSize)) {
            batch.append(QVariant::fromValue(item));
        }
        addCounts({.entityName = ZQLibraryBaseItem::entityName(),
                   .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("SELF IN %@"), {QVariant(batch)})},
                  context, counts);
    }
    return counts;
}

ZQPredicate StoreSearch::titledPictures(const QString &name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    const QString stem = dot > 0 ? name.first(dot) : QString();
    const ZQPredicate titled = ZQPredicate::predicateWithFormat(QStringLiteral("title ==[cd] %@"), {name});
    const ZQPredicate withExtension = ZQPredicate::predicateWithFormat(
        QStringLiteral("title ==[cd] %@ AND extension ==[cd] %@"), {stem, name.mid(dot + 1)});
    return ZQPredicate::andPredicate({ZQPredicate::predicateWithFormat(QStringLiteral("active == YES")),
                                      stem.isEmpty() ? titled : ZQPredicate::orPredicate({titled, withExtension})});
}

QList<ZQPictureHash> StoreSearch::picturesIdentified(const QString &bundleID, ZQManagedObjectContext &context)
{
    return picturesOf(ZQPredicate::predicateWithFormat(QStringLiteral("active == YES AND bundleID == %@"), {bundleID}),
                      context);
}

QList<ZQPictureHash> StoreSearch::picturesNamed(const QString &name, ZQManagedObjectContext &context)
{
    const QList<ZQPictureHash> identified = picturesIdentified(name, context); // has an index
    return identified.isEmpty() ? picturesOf(titledPictures(name), context) : identified;
}

QString StoreSearch::titleOfPicture(const QString &name, ZQManagedObjectContext &context)
{
    const auto item = ZQLibraryBaseItem::libraryItemsForBundleID(name, context);
    return item ? item->title() : name;
}

int StoreSearch::liveFolderDepth(ZQManagedObjectContext &context)
{
    const auto folders = context.fetchObjectIDsWithRelated(
        {.entityName = ZQSidebarWatchedFolder::entityName(),
         .predicate = ZQPredicate::predicateWithFormat(QStringLiteral("active == YES"))},
        QStringLiteral("father"));
    QHash<ZQObjectID, ZQObjectID> fathers;
    for (qsizetype i = 0; folders && i < folders->ids.size(); ++i) {
        fathers.insert(folders->ids.at(i), folders->related.at(i));
    }
    int deepest = 1;
    for (const ZQObjectID &father : fathers) {
        int depth = 1;
        for (ZQObjectID above = father; fathers.contains(above) && depth < SearchQueries::deepestFolder; ++depth) {
            above = fathers.value(above);
        }
        deepest = std::max(deepest, depth);
    }
    return deepest;
}
