#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQPredicateNode.h"

#include <algorithm>

using Private = ZQManagedObjectContext::Private;

// A request as SQL, in the parts its uses put together.
struct ZQFetchQuery
{
    const ZQEntityDescription *entity = nullptr;
    Private::Root *root = nullptr;
    QString where; // with the keyword, or empty
    QString joins;
    QString order; // with the keyword
    QVariantList bindings;

    QString from() const { return QStringLiteral(" FROM %1 t ").arg(zqQuoted(entity->tableName)); }
    QString select(const QString &columns, qint64 limit, qint64 offset) const
    {
        return QStringLiteral("SELECT ") + columns + from() + joins + where + order +
               QStringLiteral(" LIMIT %1 OFFSET %2").arg(limit).arg(offset);
    }
};

namespace {

void collectPaths(const ZQExpression &expression, QList<QStringList> &paths)
{
    if (expression.keys.size() > 1) {
        paths.append(expression.keys);
    }
    for (const ZQExpression &element : expression.elements) {
        collectPaths(element, paths);
    }
}

void collectPaths(const ZQPredicateNode &node, QList<QStringList> &paths)
{
    collectPaths(node.comparison.left, paths);
    collectPaths(node.comparison.right, paths);
    for (const auto &child : node.children) {
        collectPaths(*child, paths);
    }
}

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

} // namespace

bool Private::prepareQuery(const ZQFetchRequest &request, ZQFetchQuery &query, ZQError *error)
{
    assertThread();
    query.entity = plan->model().entity(request.entityName);
    if (!query.entity) {
        zqSetError(error, ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::Other),
                                        zqLocalized("The request cannot be carried out."),
                                        QStringLiteral("There is no entity \"%1\".").arg(request.entityName)));
        return false;
    }
    query.root = &rootOf(query.entity);
    QStringList conditions;
    const QList<int> codes =
        request.includesSubentities ? query.entity->codesIncludingSubentities() : QList<int>{query.entity->code};
    if (codes.size() < qsizetype(query.root->plan->entities.size())) {
        QStringList texts;
        for (const int code : codes) {
            texts.append(QString::number(code));
        }
        conditions.append(QStringLiteral("t.\"entity\" IN (%1)").arg(texts.join(u',')));
    }
    if (!request.predicate.isNull()) {
        const auto fragment = zqSQLForPredicate(request.predicate, query.entity, QStringLiteral("t"), error);
        if (!fragment) {
            return false;
        }
        conditions.append(u'(' + fragment->text + u')');
        query.bindings = fragment->bindings;
    }
    const auto order = zqSQLForSortDescriptors(request.sortDescriptors, query.entity, QStringLiteral("t"), error);
    if (!order) {
        return false;
    }
    query.joins = order->joins;
    query.order = QStringLiteral(" ORDER BY ") + order->orderBy;
    if (!conditions.isEmpty()) {
        query.where = QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    }
    return true;
}

// Unsaved changes of the rows themselves are put right one by one. Where the condition or the order looks at other
// objects and one of those is changed, any row may be affected, and all are looked at in memory.
bool Private::mustEvaluateAll(const ZQFetchRequest &request, const ZQEntityDescription *entity) const
{
    QList<QStringList> paths;
    if (!request.predicate.isNull()) {
        collectPaths(*request.predicate.root(), paths);
    }
    for (const ZQSortDescriptor &descriptor : request.sortDescriptors) {
        if (descriptor.keyPath.contains(u'.')) {
            paths.append(descriptor.keyPath.split(u'.'));
        }
    }
    QSet<const ZQEntityDescription *> passed; // roots of objects whose own relationships are followed
    QSet<const ZQEntityDescription *> ends;   // roots of objects of which only attributes are looked at
    for (const QStringList &path : std::as_const(paths)) {
        const ZQEntityDescription *here = entity;
        for (qsizetype i = 0; i < path.size(); ++i) {
            const ZQRelationshipDescription *next = here->relationship(path.at(i));
            if (!next) {
                break;
            }
            here = next->destination;
            (i + 2 < path.size() ? passed : ends).insert(here->root);
        }
    }
    if (passed.isEmpty() && ends.isEmpty()) {
        return false;
    }
    const QList<Object> dirty = dirtyObjects();
    return std::any_of(dirty.begin(), dirty.end(), [&](const Object &object) {
        const ZQEntityDescription *root = object->m_entity->root;
        return passed.contains(root) || (ends.contains(root) && (object->m_changed || object->m_isDeleted));
    });
}

QList<ZQRef<ZQManagedObject>> Private::dirtyObjectsOf(const ZQFetchRequest &request,
                                                      const ZQEntityDescription *entity) const
{
    if (!request.includesPendingChanges) {
        return {};
    }
    QList<Object> dirty = dirtyObjects();
    dirty.removeIf([&](const Object &object) {
        const bool isMeant =
            request.includesSubentities ? object->m_entity->isKindOf(entity) : object->m_entity == entity;
        return !isMeant || !isDirty(object.get());
    });
    return dirty;
}

std::optional<QList<ZQRef<ZQManagedObject>>> Private::fetchAllInMemory(const ZQFetchRequest &request,
                                                                       ZQFetchQuery &query, ZQError *error)
{
    ZQFetchRequest all{request.entityName};
    all.includesSubentities = request.includesSubentities;
    all.includesPendingChanges = false;
    auto objects = q->executeFetchRequest(all, error);
    if (!objects) {
        return std::nullopt;
    }
    for (const Object &object : dirtyObjectsOf(request, query.entity)) {
        if (object->m_isInserted) {
            objects->append(object);
        }
    }
    objects->removeIf([&](const Object &object) {
        return object->m_isDeleted ||
               (!request.predicate.isNull() && !request.predicate.evaluateWithObject(object.get()));
    });
    std::sort(objects->begin(), objects->end(), [&](const Object &a, const Object &b) {
        return zqCompareObjects(a.get(), b.get(), request.sortDescriptors) < 0;
    });
    return window(*objects, request);
}

std::optional<QList<ZQRef<ZQManagedObject>>> ZQManagedObjectContext::executeFetchRequest(const ZQFetchRequest &request,
                                                                                         ZQError *error)
{
    ZQFetchQuery query;
    if (!d->prepareQuery(request, query, error)) {
        return std::nullopt;
    }
    if (request.includesPendingChanges && d->mustEvaluateAll(request, query.entity)) {
        return d->fetchAllInMemory(request, query, error);
    }
    const QList<ZQRef<ZQManagedObject>> dirty = d->dirtyObjectsOf(request, query.entity);
    const bool isWindowed = dirty.isEmpty();
    const qint64 needed = request.fetchLimit > 0 ? qint64(request.fetchLimit) + request.fetchOffset + dirty.size() : -1;
    ZQSQLiteStatement select =
        d->prepare(query.select(query.root->plan->selection, isWindowed ? limitOf(request) : needed,
                                isWindowed ? std::max(0, request.fetchOffset) : 0));
    select.bindVariants(0, query.bindings);
    QList<ZQRef<ZQManagedObject>> objects;
    while (select.next()) {
        ZQRef<ZQManagedObject> object = d->objectFromRow(select, *query.root);
        if (object && (isWindowed || !Private::isDirty(object.get()))) {
            objects.append(std::move(object));
        }
    }
    if (select.failed()) {
        zqSetError(error, d->storeError());
        return std::nullopt;
    }
    select = {};
    if (isWindowed) {
        return objects;
    }
    for (const ZQRef<ZQManagedObject> &object : dirty) {
        if (!object->m_isDeleted &&
            (request.predicate.isNull() || request.predicate.evaluateWithObject(object.get()))) {
            const auto place =
                std::upper_bound(objects.begin(), objects.end(), object, [&](const auto &a, const auto &b) {
                    return zqCompareObjects(a.get(), b.get(), request.sortDescriptors) < 0;
                });
            objects.insert(place, object);
        }
    }
    return window(objects, request);
}

std::optional<QList<ZQObjectID>> ZQManagedObjectContext::fetchObjectIDs(const ZQFetchRequest &request, ZQError *error)
{
    ZQFetchQuery query;
    if (!d->prepareQuery(request, query, error)) {
        return std::nullopt;
    }
    if (request.includesPendingChanges && d->mustEvaluateAll(request, query.entity)) {
        const auto objects = d->fetchAllInMemory(request, query, error);
        if (!objects) {
            return std::nullopt;
        }
        QList<ZQObjectID> ids;
        for (const ZQRef<ZQManagedObject> &object : *objects) {
            ids.append(object->objectID());
        }
        return ids;
    }
    const QList<ZQRef<ZQManagedObject>> dirty = d->dirtyObjectsOf(request, query.entity);
    QSet<qint64> dirtyKeys;
    for (const ZQRef<ZQManagedObject> &object : dirty) {
        dirtyKeys.insert(object->m_key);
    }
    const bool isWindowed = dirty.isEmpty();
    const qint64 needed = request.fetchLimit > 0 ? qint64(request.fetchLimit) + request.fetchOffset + dirty.size() : -1;
    ZQSQLiteStatement select =
        d->prepare(query.select(QStringLiteral("t.\"id\", t.\"entity\""), isWindowed ? limitOf(request) : needed,
                                isWindowed ? std::max(0, request.fetchOffset) : 0));
    select.bindVariants(0, query.bindings);
    QList<ZQObjectID> ids;
    while (select.next()) {
        const ZQEntityPlan *entityPlan = d->plan->planForCode(int(select.int64(1)));
        if (entityPlan && (isWindowed || !dirtyKeys.contains(select.int64(0)))) {
            ids.append({entityPlan->entity, select.int64(0)});
        }
    }
    if (select.failed()) {
        zqSetError(error, d->storeError());
        return std::nullopt;
    }
    select = {};
    if (isWindowed) {
        return ids;
    }
    // Few changed objects find their places among many identifiers by comparing with a few of those.
    for (const ZQRef<ZQManagedObject> &object : dirty) {
        if (object->m_isDeleted ||
            (!request.predicate.isNull() && !request.predicate.evaluateWithObject(object.get()))) {
            continue;
        }
        const auto place = std::upper_bound(
            ids.begin(), ids.end(), object, [&](const ZQRef<ZQManagedObject> &changed, const ZQObjectID &id) {
                const ZQRef<ZQManagedObject> other = objectWithID(id);
                return !other || zqCompareObjects(changed.get(), other.get(), request.sortDescriptors) < 0;
            });
        ids.insert(place, object->objectID());
    }
    return window(ids, request);
}

std::optional<ZQRelatedIDs> ZQManagedObjectContext::fetchObjectIDsWithRelated(const ZQFetchRequest &request,
                                                                              const QString &relationship,
                                                                              ZQError *error)
{
    ZQFetchQuery query;
    if (!d->prepareQuery(request, query, error)) {
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
    ZQSQLiteStatement select =
        d->prepare(query.select(QStringLiteral("t.\"id\", t.\"entity\", zq_related.\"id\", zq_related.\"entity\""),
                                limitOf(request), std::max(0, request.fetchOffset)));
    select.bindVariants(0, query.bindings);
    ZQRelatedIDs result;
    while (select.next()) {
        if (const ZQEntityPlan *plan = d->plan->planForCode(int(select.int64(1)))) {
            const ZQEntityPlan *related = d->plan->planForCode(int(select.int64(3)));
            result.ids.append({plan->entity, select.int64(0)});
            result.related.append(related ? ZQObjectID{related->entity, select.int64(2)} : ZQObjectID());
        }
    }
    if (select.failed()) {
        zqSetError(error, d->storeError());
        return std::nullopt;
    }
    return result;
}

std::optional<qint64> ZQManagedObjectContext::countForFetchRequest(const ZQFetchRequest &request, ZQError *error)
{
    ZQFetchQuery query;
    if (!d->prepareQuery(request, query, error)) {
        return std::nullopt;
    }
    constexpr qsizetype dirtyInAQuery = 500;
    const QList<ZQRef<ZQManagedObject>> dirty = d->dirtyObjectsOf(request, query.entity);
    if (dirty.size() > dirtyInAQuery || (request.includesPendingChanges && d->mustEvaluateAll(request, query.entity))) {
        const auto ids = fetchObjectIDs(request, error);
        return ids ? std::optional<qint64>(ids->size()) : std::nullopt;
    }
    QString where = query.where;
    QVariantList bindings = query.bindings;
    qint64 count = 0;
    QStringList places;
    for (const ZQRef<ZQManagedObject> &object : dirty) {
        if (!object->m_isDeleted &&
            (request.predicate.isNull() || request.predicate.evaluateWithObject(object.get()))) {
            ++count;
        }
        places.append(QString::number(object->m_key));
    }
    if (!places.isEmpty()) {
        where += (where.isEmpty() ? QStringLiteral(" WHERE ") : QStringLiteral(" AND ")) +
                 QStringLiteral("t.\"id\" NOT IN (%1)").arg(places.join(u','));
    }
    ZQSQLiteStatement select = d->prepare(QStringLiteral("SELECT count(*)") + query.from() + where);
    select.bindVariants(0, bindings);
    if (!select.next()) {
        zqSetError(error, d->storeError());
        return std::nullopt;
    }
    count = std::max<qint64>(0, count + select.int64(0) - std::max(0, request.fetchOffset));
    return request.fetchLimit > 0 ? std::min<qint64>(count, request.fetchLimit) : count;
}

std::optional<QList<QVariantMap>>
ZQManagedObjectContext::fetchDictionaries(const ZQFetchRequest &request, const QStringList &attributes, ZQError *error)
{
    ZQFetchQuery query;
    if (!d->prepareQuery(request, query, error)) {
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
    ZQSQLiteStatement select = d->prepare(query.select(selection, limitOf(request), std::max(0, request.fetchOffset)));
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
        zqSetError(error, d->storeError());
        return std::nullopt;
    }
    return maps;
}
