#include "Classes/Browsing/Index/ListOrder.h"

#include "Classes/Browsing/Index/PictureColors.h"
#include "Kit/Foundation/ZQCancellation.h"
#include "Models/DataModel/ZQLibraryBaseItem.h"
#include "Models/DataModel/ZQModelFetch.h"
#include "Models/DataModel/ZQSidebarBaseItem.h"
#include "Models/DataModel/ZQSidebarTag.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr qsizetype batchSize = 500;
constexpr auto standard = ZQSortDescriptor::Comparison::Standard;
constexpr auto localized = ZQSortDescriptor::Comparison::LocalizedStandard;

bool isOfItems(const ZQSortDescriptor &descriptor)
{
    const QString key = zqItemKey(descriptor.keyPath);
    return key == ListOrder::kindKey || key == ListOrder::tagsKey || key == ListOrder::hueKey;
}

struct Value
{
    QVariantList leading; // of the descriptors before
    QString kind;
    QStringList tags;
    int hue = 0;
};

int compare(const Value &a, const Value &b)
{
    if (a.tags.isEmpty() != b.tags.isEmpty()) {
        return a.tags.isEmpty() ? 1 : -1;
    }
    for (qsizetype i = 0; i < ListOrder::tagsCompared; ++i) {
        const bool ends = i >= a.tags.size() || i >= b.tags.size();
        const int order = ends ? int(i < a.tags.size()) - int(i < b.tags.size())
                               : QString::compare(a.tags[i], b.tags[i], Qt::CaseInsensitive);
        if (order != 0 || ends) {
            return order;
        }
    }
    return 0;
}

int compare(const Value &a, const Value &b, const QList<ZQSortDescriptor> &leading, const ZQSortDescriptor &own)
{
    for (qsizetype i = 0; i < leading.size(); ++i) {
        const int order = zqCompareValues(a.leading[i], b.leading[i], leading[i].comparison);
        if (order != 0) {
            return leading[i].ascending ? order : -order;
        }
    }
    const int byTags = compare(a, b);
    const int byHue = a.hue - b.hue;
    const int order = byTags != 0 ? byTags : byHue != 0 ? byHue : QString::compare(a.kind, b.kind);
    return own.ascending ? order : -order;
}

// Only what the one key asks for, so that the rest is equal in all of them.
Value valueOf(const ZQLibraryBaseItem &item, const QList<ZQSortDescriptor> &leading, const QString &key)
{
    Value value;
    for (const ZQSortDescriptor &descriptor : leading) {
        value.leading.append(item.valueForKey(zqItemKey(descriptor.keyPath)));
    }
    if (key == ListOrder::kindKey) {
        value.kind = item.extension().toLower();
    } else if (key == ListOrder::hueKey) {
        const QByteArray palette = item.palette();
        value.hue = PictureColors::of({palette.constData(), size_t(palette.size())}).huePlace();
    } else {
        value.tags = item.userTagTitles();
    }
    return value;
}

// By place; nothing when it was cancelled.
std::optional<std::vector<Value>> valuesOf(const QList<ZQObjectID> &items, ZQManagedObjectContext &context,
                                           const QList<ZQSortDescriptor> &leading, const QString &key)
{
    std::vector<Value> values(size_t(items.size()));
    for (qsizetype first = 0; first < items.size(); first += batchSize) {
        if (ZQCancellation::isCurrentCancelled()) {
            return std::nullopt;
        }
        const QList<ZQObjectID> ids = items.mid(first, batchSize);
        const auto objects = ZQLibraryBaseItem::itemsWithIDs(ids, context);
        const auto kept =
            key == ListOrder::tagsKey ? zqPrefetch(objects, QStringLiteral("tags")) : QList<ZQRef<ZQManagedObject>>();
        qsizetype place = 0; // those that are gone are left out of the objects
        for (const auto &object : objects) {
            while (ids[place] != object->objectID()) {
                ++place;
            }
            values[size_t(first + place++)] = valueOf(*object, leading, key);
        }
    }
    return values;
}

} // namespace

bool ListOrder::isKnown(int value)
{
    return (value >= int(ZQSortValue::Manual) && value <= int(ZQSortValue::CreationDate)) ||
           (value >= int(byKind) && value <= int(byHue));
}

QList<ZQSortDescriptor> ListOrder::descriptors(ZQSortValue value, bool isAscending, ZQListRows rows)
{
    const auto path = [rows](const QString &key) { return zqItemKeyPath(rows, key); };
    const ZQSortDescriptor byTitle{path(QStringLiteral("title")), isAscending, localized};
    switch (int(value)) {
    case int(byKind):
        return {{path(kindKey), isAscending, standard}, byTitle};
    case int(byRating):
        return {{path(QStringLiteral("rating")), isAscending, standard},
                {path(QStringLiteral("import_date")), isAscending, standard}};
    case int(byTags):
        return {{path(tagsKey), isAscending, standard}, byTitle};
    case int(byHue):
        return {{path(hueKey), isAscending, standard}, byTitle};
    default:
        return ZQSidebarBaseItem::sortDescriptorsForSortValue(value, isAscending, rows);
    }
}

bool ListOrder::needsItems(const QList<ZQSortDescriptor> &descriptors)
{
    return std::any_of(descriptors.begin(), descriptors.end(), isOfItems);
}

std::optional<ZQRelatedIDs> ListOrder::rows(const ZQFetchRequest &request, ZQManagedObjectContext &context,
                                            const Fetch &fetch)
{
    const auto &all = request.sortDescriptors;
    const qsizetype own = std::find_if(all.begin(), all.end(), isOfItems) - all.begin();
    ZQFetchRequest plain = request;
    plain.sortDescriptors = all.mid(own + 1); // equal ones stay in this order
    plain.fetchOffset = plain.fetchLimit = 0;
    const auto found = fetch(plain);
    const auto values = found ? valuesOf(found->related, context, all.first(own), zqItemKey(all[own].keyPath))
                              : std::optional<std::vector<Value>>();
    if (!values) {
        return std::nullopt;
    }
    std::vector<qsizetype> places(values->size());
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [&](qsizetype a, qsizetype b) {
        return compare((*values)[size_t(a)], (*values)[size_t(b)], all.first(own), all[own]) < 0;
    });
    ZQRelatedIDs result;
    const auto end = request.fetchLimit > 0 ? request.fetchOffset + request.fetchLimit : found->ids.size();
    for (qsizetype i = request.fetchOffset; i < std::min<qsizetype>(end, found->ids.size()); ++i) {
        result.ids.append(found->ids[places[size_t(i)]]);
        result.related.append(found->related[places[size_t(i)]]);
    }
    return result;
}
