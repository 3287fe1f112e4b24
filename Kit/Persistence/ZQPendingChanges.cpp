#include "Kit/Persistence/ZQPendingChanges.h"

#include "Kit/Persistence/ZQFetchQuery.h"
#include "Kit/Persistence/ZQPrefetcher.h"
#include "Kit/Persistence/ZQSQLList.h"

#include <algorithm>

namespace {

void collectPaths(const ZQExpression &expression, QList<QStringList> &paths)
{
    if (!expression.keys.isEmpty()) {
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

// The rows at the start of `way` that lead to one of the objects in the list `targets`, as SQL for after IN.
QString rowsLeadingTo(const QString &targets, const std::vector<const ZQRelationshipDescription *> &way)
{
    QString text = targets;
    for (auto hop = way.rbegin(); hop != way.rend(); ++hop) {
        const ZQRelationshipDescription &forward = **hop;
        const QString sql = QStringLiteral("(SELECT %1 FROM %2 WHERE %3 IN %4)");
        if (forward.isManyToMany()) {
            text = sql.arg(zqQuoted(forward.joinOwnColumn), zqQuoted(forward.joinTable),
                           zqQuoted(forward.joinOtherColumn), text);
        } else if (forward.toMany) {
            text = sql.arg(zqQuoted(forward.inverse->columnName), zqQuoted(forward.destination->tableName),
                           QStringLiteral("\"id\""), text);
        } else {
            text = sql.arg(QStringLiteral("\"id\""), zqQuoted(forward.inverse->destination->tableName),
                           zqQuoted(forward.columnName), text);
        }
    }
    return text;
}

} // namespace

ZQPendingChanges::ZQPendingChanges(Private &context, const ZQFetchRequest &request, const ZQFetchQuery &query,
                                   bool isOrdered)
    : m_context(context), m_request(request), m_query(query), m_isOrdered(isOrdered)
{
    m_stops[QString()].entity = query.entity;
    if (!request.predicate.isNull()) {
        // The predicate lives as long as the request; its nodes are shared, not copied.
        const ZQPredicateNode &root = *request.predicate.root();
        if (root.kind == ZQPredicateNode::Kind::And) {
            for (const ZQPredicateNodePtr &child : root.children) {
                addPart(child);
            }
        } else {
            m_parts.push_back({request.predicate, {}});
            collectPaths(root, m_parts.back().paths);
        }
    }
    for (const Part &part : m_parts) {
        for (const QStringList &path : part.paths) {
            addPath(path);
        }
    }
    for (const ZQSortDescriptor &descriptor : isOrdered ? request.sortDescriptors : QList<ZQSortDescriptor>()) {
        addPath(descriptor.keyPath.split(u'.'));
    }
}

void ZQPendingChanges::addPart(const ZQPredicateNodePtr &node)
{
    m_parts.push_back({ZQPredicate(node), {}});
    collectPaths(*node, m_parts.back().paths);
}

void ZQPendingChanges::addPath(const QStringList &keys)
{
    QString place;
    const ZQEntityDescription *here = m_query.entity;
    for (const QString &key : keys) {
        const ZQPlanProperty property = m_context.rows.plan().planFor(here)->properties.value(key);
        Stop &stop = m_stops[place];
        if (property.field >= 0) {
            stop.fields |= quint64(1) << property.field;
        }
        if (!property.isRelationship) {
            return;
        }
        const ZQRelationshipDescription &relationship = here->relationships[size_t(property.index)];
        if (relationship.toMany) {
            stop.lists.insert(property.index);
        }
        place += u'.' + key;
        here = relationship.destination;
        Stop &next = m_stops[place];
        if (!next.entity) {
            next.way = stop.way;
            next.way.push_back(&relationship);
            next.entity = here;
        }
    }
}

bool ZQPendingChanges::isMeant(const ZQManagedObject &object) const
{
    const ZQEntityDescription *entity = object.entity();
    return m_request.includesSubentities ? entity->isKindOf(m_query.entity) : entity == m_query.entity;
}

void ZQPendingChanges::lookAtChanges()
{
    m_context.changes.visit([this](const Object &object) {
        const qint64 key = object->objectID().key;
        for (auto &[place, stop] : m_stops) {
            if (!object->entity()->isKindOf(stop.entity)) {
                continue; // of the same family perhaps, and never in this place
            }
            const bool isNew = object->isInserted();
            if (!isNew && !ZQChangeTracker::isTouched(*object, stop.fields, stop.lists)) {
                continue;
            }
            if (!stop.way.empty()) {
                if (!isNew) {
                    stop.changed.append(key); // no stored path leads to a new one
                }
            } else if (isMeant(*object)) {
                if (!isNew) {
                    m_excluded.append(key);
                }
                if (!object->isDeleted()) {
                    m_candidates.append(object);
                }
            }
        }
    });
}

bool ZQPendingChanges::readsChanges(const Part &part) const
{
    return std::any_of(part.paths.begin(), part.paths.end(), [this](const QStringList &path) {
        QString place;
        return std::any_of(path.begin(), path.end(), [&](const QString &key) {
            place += u'.' + key;
            const auto stop = m_stops.find(place);
            return stop != m_stops.end() && !stop->second.changed.isEmpty();
        });
    });
}

// Of the rows that lead to a changed object only those matter that meet what the changes cannot alter.
bool ZQPendingChanges::findAffectedRows(QList<Object> &affected, ZQError *error)
{
    QStringList ways;
    QVariantList bindings;
    for (const auto &[place, stop] : m_stops) {
        if (!stop.changed.isEmpty()) {
            ways.append(QStringLiteral("t.\"id\" IN ") +
                        rowsLeadingTo(QStringLiteral("(SELECT value FROM json_each(?))"), stop.way));
            bindings.append(zqKeysAsJSON(stop.changed));
        }
    }
    if (ways.isEmpty()) {
        return true;
    }
    ZQFetchRequest request{m_request.entityName};
    request.includesSubentities = m_request.includesSubentities;
    QList<ZQPredicate> unaltered;
    for (const Part &part : m_parts) {
        if (!readsChanges(part)) {
            unaltered.append(part.predicate);
        }
    }
    request.predicate = ZQPredicate::andPredicate(unaltered);
    ZQFetchQuery query;
    if (!query.prepare(request, m_context.rows, error)) {
        return false;
    }
    query.addCondition(u'(' + ways.join(QStringLiteral(" OR ")) + u')', bindings);
    ZQSQLiteStatement select = m_context.store.prepare(query.select(query.root->plan->selection, -1, 0));
    select.bindVariants(0, query.bindings);
    while (select.next()) {
        if (Object object = m_context.rows.objectFromRow(select, *query.root)) {
            affected.append(std::move(object));
        }
    }
    if (select.failed()) {
        zqSetError(error, m_context.store.error());
        return false;
    }
    return true;
}

// Cheap parts first: what they sort out needs no other objects read.
void ZQPendingChanges::keepMatching(QList<Object> &candidates)
{
    std::vector<const Part *> order;
    for (const Part &part : m_parts) {
        order.push_back(&part);
    }
    const auto reaches = [this](const Part &part) {
        return std::any_of(part.paths.begin(), part.paths.end(), [this](const QStringList &path) {
            const ZQRelationshipDescription *first = m_query.entity->relationship(path.first());
            return path.size() > 1 || (first && first->toMany);
        });
    };
    std::stable_partition(order.begin(), order.end(), [&](const Part *part) { return !reaches(*part); });
    for (const Part *part : order) {
        QList<Object> kept;
        for (const QStringList &path : reaches(*part) ? part->paths : QList<QStringList>()) {
            kept += ZQPrefetcher(m_context).prefetch(candidates, path, false);
        }
        candidates.removeIf([&](const Object &object) { return !part->predicate.evaluateWithObject(object.get()); });
    }
}

bool ZQPendingChanges::findCorrection(ZQPendingCorrection &correction, ZQError *error)
{
    lookAtChanges();
    QList<Object> affected;
    if (!findAffectedRows(affected, error)) {
        return false;
    }
    if (!affected.isEmpty()) {
        const QSet<qint64> known(m_excluded.cbegin(), m_excluded.cend());
        for (const Object &object : std::as_const(affected)) {
            if (!known.contains(object->objectID().key)) {
                m_excluded.append(object->objectID().key);
                m_candidates.append(object);
            }
        }
    }
    keepMatching(m_candidates);
    if (m_isOrdered && m_candidates.size() > 1) {
        QList<Object> kept;
        for (const ZQSortDescriptor &descriptor : m_request.sortDescriptors) {
            kept += ZQPrefetcher(m_context).prefetch(m_candidates, descriptor.keyPath.split(u'.'), false);
        }
        std::sort(m_candidates.begin(), m_candidates.end(), [this](const Object &a, const Object &b) {
            return zqCompareObjects(a.get(), b.get(), m_request.sortDescriptors) < 0;
        });
    }
    correction.matching = std::move(m_candidates);
    correction.excluded = std::move(m_excluded);
    return true;
}
