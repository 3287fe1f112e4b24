#include "Kit/Persistence/ZQFetcher.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQFetchQuery.h"
#include "Kit/Persistence/ZQPendingChanges.h"
#include "Kit/Persistence/ZQPrefetcher.h"
#include "Kit/Persistence/ZQSQLList.h"

#include <algorithm>

namespace {

// A window of `count` rows as a request asks for it.
template <class T>
QList<T> window(const QList<T> &all, const ZQFetchRequest &request)
{
    const qsizetype offset = std::max(0, request.fetchOffset);
    return request.fetchLimit > 0 ? all.mid(offset, request.fetchLimit) : all.mid(offset);
}

qint64 limitOf(const ZQFetchRequest &request)
{
    return request.fetchLimit > 0 ? request.fetchLimit : -1;
}

// How much of the store's answer is needed when `added` more rows go in between.
std::pair<qint64, qint64> limitAndOffset(const ZQFetchRequest &request, qsizetype added)
{
    const qint64 offset = std::max(0, request.fetchOffset);
    if (added == 0) {
        return {limitOf(request), offset};
    }
    return {request.fetchLimit > 0 ? request.fetchLimit + offset : -1, 0};
}

// `all` with `added` put in; `places` says how many of `all` come before each.
template <class T>
QList<T> merged(const QList<T> &all, const QList<T> &added, const QList<qsizetype> &places)
{
    QList<T> result;
    result.reserve(all.size() + added.size());
    qsizetype taken = 0;
    for (qsizetype i = 0; i < added.size(); ++i) {
        for (; taken < places.at(i); ++taken) {
            result.append(all.at(taken));
        }
        result.append(added.at(i));
    }
    result += all.mid(taken);
    return result;
}

QList<ZQObjectID> idsOf(const QList<ZQRef<ZQManagedObject>> &objects)
{
    QList<ZQObjectID> ids;
    ids.reserve(objects.size());
    for (const ZQRef<ZQManagedObject> &object : objects) {
        ids.append(object->objectID());
    }
    return ids;
}

} // namespace

ZQFetcher::ZQFetcher(ZQManagedObjectContext::Private &context) : m_context(context)
{
    m_context.store.assertThread();
}

bool ZQFetcher::correct(const ZQFetchRequest &request, bool isOrdered, ZQFetchQuery &query, QList<Object> &matching,
                        ZQError *error)
{
    if (!request.includesPendingChanges || m_context.changes.isUntouched()) {
        return true;
    }
    const quint64 failedBefore = m_context.store.failedReads();
    ZQPendingCorrection correction;
    if (!ZQPendingChanges(m_context, request, query, isOrdered).findCorrection(correction, error) ||
        m_context.store.hasReadFailed(failedBefore, error)) {
        return false;
    }
    if (!correction.excluded.isEmpty()) {
        query.addCondition(QStringLiteral("t.\"id\" NOT IN (SELECT value FROM json_each(?))"),
                           {zqKeysAsJSON(correction.excluded)});
    }
    matching = std::move(correction.matching);
    return true;
}

QList<ZQRef<ZQManagedObject>> ZQFetcher::readMiddles(const QList<ZQObjectID> &ids, const QList<qsizetype> &low,
                                                     const QList<qsizetype> &high,
                                                     const QList<ZQSortDescriptor> &descriptors)
{
    if (descriptors.isEmpty()) {
        return {};
    }
    QHash<const ZQEntityDescription *, QSet<qint64>> wanted;
    for (qsizetype i = 0; i < low.size(); ++i) {
        if (low[i] < high[i]) {
            const ZQObjectID &id = ids.at((low[i] + high[i]) / 2);
            wanted[id.entity].insert(id.key);
        }
    }
    QList<Object> kept;
    for (auto entry = wanted.cbegin(); entry != wanted.cend(); ++entry) {
        kept += m_context.rows.objectsForKeys(entry.key(), entry.value());
    }
    for (const ZQSortDescriptor &descriptor : descriptors) {
        kept += ZQPrefetcher(m_context).prefetch(kept, descriptor.keyPath.split(u'.'), false);
    }
    return kept;
}

// All of them look for their places at once, so that what a step compares with is read in a few queries.
std::optional<QList<qsizetype>> ZQFetcher::placesAmong(const QList<ZQObjectID> &ids, const QList<Object> &sorted,
                                                       const QList<ZQSortDescriptor> &descriptors, ZQError *error)
{
    const quint64 failedBefore = m_context.store.failedReads();
    QList<qsizetype> low(sorted.size(), 0);
    QList<qsizetype> high(sorted.size(), ids.size());
    for (bool isDone = ids.isEmpty(); !isDone;) {
        const QList<Object> kept = readMiddles(ids, low, high, descriptors);
        isDone = true;
        for (qsizetype i = 0; i < sorted.size(); ++i) {
            if (low[i] >= high[i]) {
                continue;
            }
            const qsizetype middle = (low[i] + high[i]) / 2;
            const ZQObjectID &id = ids.at(middle);
            const ZQManagedObject *other = descriptors.isEmpty() ? nullptr : m_context.rows.held(id.entity, id.key);
            const int order = other ? zqCompareObjects(sorted.at(i).get(), other, descriptors)
                                    : zqCompareObjectIDs(sorted.at(i)->objectID(), id);
            (order < 0 ? high[i] : low[i]) = order < 0 ? middle : middle + 1;
            isDone = isDone && low[i] >= high[i];
        }
    }
    return m_context.store.hasReadFailed(failedBefore, error) ? std::nullopt : std::optional(low);
}

std::optional<QList<ZQRef<ZQManagedObject>>> ZQFetcher::objects(const ZQFetchRequest &request, ZQError *error)
{
    ZQFetchQuery query;
    QList<ZQRef<ZQManagedObject>> changed;
    if (!query.prepare(request, m_context.rows, error) || !correct(request, true, query, changed, error)) {
        return std::nullopt;
    }
    const auto [limit, offset] = limitAndOffset(request, changed.size());
    ZQSQLiteStatement select = m_context.store.prepare(query.select(query.root->plan->selection, limit, offset));
    select.bindVariants(0, query.bindings);
    QList<ZQRef<ZQManagedObject>> objects;
    while (select.next()) {
        if (ZQRef<ZQManagedObject> object = m_context.rows.objectFromRow(select, *query.root)) {
            objects.append(std::move(object));
        }
    }
    if (select.failed()) {
        zqSetError(error, m_context.store.error());
        return std::nullopt;
    }
    select = {};
    if (changed.isEmpty()) {
        return objects;
    }
    const auto places = placesAmong(idsOf(objects), changed, request.sortDescriptors, error);
    return places ? std::optional(window(merged(objects, changed, *places), request)) : std::nullopt;
}

std::optional<QList<ZQObjectID>> ZQFetcher::objectIDs(const ZQFetchRequest &request, ZQError *error)
{
    ZQFetchQuery query;
    QList<ZQRef<ZQManagedObject>> changed;
    if (!query.prepare(request, m_context.rows, error) || !correct(request, true, query, changed, error)) {
        return std::nullopt;
    }
    const auto [limit, offset] = limitAndOffset(request, changed.size());
    ZQSQLiteStatement select =
        m_context.store.prepare(query.select(QStringLiteral("t.\"id\", t.\"entity\""), limit, offset));
    select.bindVariants(0, query.bindings);
    QList<ZQObjectID> ids;
    while (select.next()) {
        if (const ZQEntityPlan *entityPlan = m_context.rows.plan().planForCode(int(select.int64(1)))) {
            ids.append({entityPlan->entity, select.int64(0)});
        }
    }
    if (select.failed()) {
        zqSetError(error, m_context.store.error());
        return std::nullopt;
    }
    select = {};
    if (changed.isEmpty()) {
        return ids;
    }
    const auto places = placesAmong(ids, changed, request.sortDescriptors, error);
    return places ? std::optional(window(merged(ids, idsOf(changed), *places), request)) : std::nullopt;
}

std::optional<ZQRelatedIDs> ZQFetcher::objectIDsWithRelated(const ZQFetchRequest &request, const QString &relationship,
                                                            ZQError *error)
{
    ZQFetchQuery query;
    if (!query.prepare(request, m_context.rows, error)) {
        return std::nullopt;
    }
    const ZQRelationshipDescription *toOne = query.entity->relationship(relationship);
    if (!toOne || toOne->toMany) {
        zqSetError(error,
                   ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                                 zqLocalized("The request cannot be carried out."),
                                 QStringLiteral("%1 leads to no one \"%2\".").arg(request.entityName, relationship)));
        return std::nullopt;
    }
    query.joins += QStringLiteral(" LEFT JOIN %1 zq_related ON zq_related.\"id\" = t.%2 ")
                       .arg(zqQuoted(toOne->destination->root->tableName), zqQuoted(toOne->columnName));
    ZQSQLiteStatement select = m_context.store.prepare(
        query.select(QStringLiteral("t.\"id\", t.\"entity\", zq_related.\"id\", zq_related.\"entity\""),
                     limitOf(request), std::max(0, request.fetchOffset)));
    select.bindVariants(0, query.bindings);
    ZQRelatedIDs result;
    while (select.next()) {
        if (const ZQEntityPlan *plan = m_context.rows.plan().planForCode(int(select.int64(1)))) {
            const ZQEntityPlan *related = m_context.rows.plan().planForCode(int(select.int64(3)));
            result.ids.append({plan->entity, select.int64(0)});
            result.related.append(related ? ZQObjectID{related->entity, select.int64(2)} : ZQObjectID());
        }
    }
    if (select.failed()) {
        zqSetError(error, m_context.store.error());
        return std::nullopt;
    }
    return result;
}

std::optional<qint64> ZQFetcher::count(const ZQFetchRequest &request, ZQError *error)
{
    ZQFetchQuery query;
    QList<ZQRef<ZQManagedObject>> changed;
    if (!query.prepare(request, m_context.rows, error) || !correct(request, false, query, changed, error)) {
        return std::nullopt;
    }
    ZQSQLiteStatement select = m_context.store.prepare(QStringLiteral("SELECT count(*)") + query.from() + query.where);
    select.bindVariants(0, query.bindings);
    if (!select.next()) {
        zqSetError(error, m_context.store.error());
        return std::nullopt;
    }
    const qint64 count = std::max<qint64>(0, changed.size() + select.int64(0) - std::max(0, request.fetchOffset));
    return request.fetchLimit > 0 ? std::min<qint64>(count, request.fetchLimit) : count;
}

std::optional<QList<QVariantMap>> ZQFetcher::dictionaries(const ZQFetchRequest &request, const QStringList &attributes,
                                                          ZQError *error)
{
    ZQFetchQuery query;
    if (!query.prepare(request, m_context.rows, error)) {
        return std::nullopt;
    }
    QStringList columns;
    QList<ZQAttributeType> types;
    QList<const ZQEntityDescription *> destinations;
    for (const QString &name : attributes) {
        const ZQAttributeDescription *attribute = query.entity->attribute(name);
        const ZQRelationshipDescription *relationship = query.entity->relationship(name);
        if (!attribute && (!relationship || relationship->toMany)) {
            zqSetError(error,
                       ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                                     zqLocalized("The request cannot be carried out."),
                                     QStringLiteral("%1 has no attribute \"%2\".").arg(request.entityName, name)));
            return std::nullopt;
        }
        columns.append(QStringLiteral("t.") + zqQuoted(attribute ? attribute->columnName : relationship->columnName));
        types.append(attribute ? attribute->type : ZQAttributeType::Integer64);
        destinations.append(attribute ? nullptr : relationship->destination);
    }
    const QString selection = columns.isEmpty() ? QStringLiteral("1") : columns.join(QStringLiteral(", "));
    ZQSQLiteStatement select =
        m_context.store.prepare(query.select(selection, limitOf(request), std::max(0, request.fetchOffset)));
    select.bindVariants(0, query.bindings);
    QList<QVariantMap> maps;
    while (select.next()) {
        QVariantMap map;
        for (int i = 0; i < attributes.size(); ++i) {
            const QVariant value = zqColumnValue(select, i, types.at(i));
            map.insert(attributes.at(i), destinations.at(i) && value.isValid()
                                             ? QVariant::fromValue(ZQObjectID{destinations.at(i), value.toLongLong()})
                                             : value);
        }
        maps.append(map);
    }
    if (select.failed()) {
        zqSetError(error, m_context.store.error());
        return std::nullopt;
    }
    return maps;
}
