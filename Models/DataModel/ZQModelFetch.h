#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"

#include <QString>

#include <algorithm>

// What a fetch answers: nothing after an error, which was logged.
template <class T>
using ZQFetched = std::optional<QList<ZQRef<T>>>;

// Logs "Error while fetching\n%@".
void zqLogFetchError(const ZQError &error);

template <class T>
ZQFetched<T> zqFetch(ZQManagedObjectContext &context, const ZQFetchRequest &request, ZQError *failure = nullptr)
{
    ZQError error;
    auto objects = context.fetch<T>(request, &error);
    if (!objects) {
        zqLogFetchError(error);
        zqSetError(failure, error);
    }
    return objects;
}

// Objects of `T` and its sub-entities that match `format`.
template <class T>
ZQFetched<T> zqFetch(ZQManagedObjectContext &context, const QString &format, const QVariantList &arguments = {},
                     const QList<ZQSortDescriptor> &sortDescriptors = {})
{
    return zqFetch<T>(context, ZQFetchRequest{.entityName = T::entityName(),
                                              .predicate = ZQPredicate::predicateWithFormat(format, arguments),
                                              .sortDescriptors = sortDescriptors});
}

// The first of them; null for none and after an error, which `failure` tells from none. Who inserts what it does not
// find has to ask.
template <class T>
ZQRef<T> zqFetchFirst(ZQManagedObjectContext &context, const QString &format, const QVariantList &arguments = {},
                      ZQError *failure = nullptr)
{
    const auto objects = zqFetch<T>(context,
                                    ZQFetchRequest{.entityName = T::entityName(),
                                                   .predicate = ZQPredicate::predicateWithFormat(format, arguments),
                                                   .fetchLimit = 1},
                                    failure);
    return objects && !objects->isEmpty() ? objects->first() : ZQRef<T>();
}

// How many rows match; 0 after an error, which was logged.
qint64 zqCount(ZQManagedObjectContext &context, const ZQFetchRequest &request);

// Has what `keyPath` leads to from these objects, of one context, in memory as long as the answer is held.
template <class T>
[[nodiscard]] QList<ZQRef<ZQManagedObject>> zqPrefetch(const QList<ZQRef<T>> &objects, const QString &keyPath)
{
    const auto first = std::find_if(objects.begin(), objects.end(),
                                    [](const ZQRef<T> &object) { return object && object->managedObjectContext(); });
    return first == objects.end() ? QList<ZQRef<ZQManagedObject>>()
                                  : (*first)->managedObjectContext()->prefetchRelatedObjects(objects, keyPath);
}

// The present moment as the store keeps it: UTC, whole milliseconds.
QDateTime zqNow();

class QJsonObject;
// An object's attributes by name, its to-one relationships as identifier texts, "entity", and "UUID": its own
// identifier text. Dates are ISO 8601 in UTC with milliseconds, binary values base64, what is missing null.
QJsonObject zqJSONObject(const ZQManagedObject &object);
