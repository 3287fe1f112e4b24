#include "Kit/Persistence/ZQGroupedCount.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQFetchQuery.h"
#include "Kit/Persistence/ZQSQLList.h"

namespace {

// Where it is kept what the rows lead to, as "g".
struct Place
{
    QString table;
    QString row;     // the column that says whose it is
    QString related; // the column with what it leads to
};

std::optional<Place> placeOf(const ZQEntityDescription &entity, const QString &keyPath)
{
    const QStringList keys = keyPath.split(u'.');
    const ZQRelationshipDescription *first = entity.relationship(keys.first());
    if (!first || keys.size() > 2 || entity.root != &entity) {
        return std::nullopt;
    }
    if (keys.size() == 1 && !first->toMany) {
        return Place{entity.tableName, QStringLiteral("id"), first->columnName};
    }
    if (keys.size() == 1 && first->isManyToMany()) {
        return Place{first->joinTable, first->joinOwnColumn, first->joinOtherColumn};
    }
    const ZQRelationshipDescription *second =
        keys.size() == 2 && first->toMany && !first->isManyToMany() && first->destination->root == first->destination
            ? first->destination->relationship(keys.last())
            : nullptr;
    return second && !second->toMany
               ? std::optional(Place{first->destination->tableName, first->inverse->columnName, second->columnName})
               : std::nullopt;
}

// How many (n) lead to each (o).
QString part(const Place &place, const char *count, const QString &from, const QString &condition)
{
    return QStringLiteral("SELECT g.%1 AS o, %2 AS n FROM %3 %4 g WHERE %5 GROUP BY g.%1")
        .arg(zqQuoted(place.related), QLatin1StringView(count), from, zqQuoted(place.table), condition);
}

struct Statement
{
    QString sql;
    QVariantList bindings;
};

Statement statementFor(const Place &place, const ZQFetchQuery &excluded, const QList<qint64> &keys)
{
    QString sql = part(place, "count(*)", {},
                       QStringLiteral("g.%1 IN (SELECT value FROM json_each(?)) AND g.%2 IS NOT NULL")
                           .arg(zqQuoted(place.related), zqQuoted(place.row)));
    QVariantList bindings{zqKeysAsJSON(keys)};
    if (!excluded.where.isEmpty()) {
        // These rows first, whatever the statistics say, and all that they lead to: there are few of them, and each
        // object that is asked for would be looked up for each of them.
        sql += QStringLiteral(" UNION ALL ") +
               part(place, "-count(*)", zqQuoted(excluded.entity->tableName) + QStringLiteral(" t CROSS JOIN"),
                    QStringLiteral("g.%1 = t.\"id\" AND ").arg(zqQuoted(place.row)) +
                        excluded.where.mid(QStringLiteral(" WHERE ").size()));
        bindings += excluded.bindings;
    }
    return {QStringLiteral("SELECT o, sum(n) FROM (") + sql + QStringLiteral(") GROUP BY o"), bindings};
}

} // namespace

std::optional<QHash<ZQObjectID, qint64>> zqCountByRelated(ZQManagedObjectContext &context, const ZQGroupedCount &wanted,
                                                          ZQError *error)
{
    ZQManagedObjectContext::Private &parts = ZQObjectAccess::parts(context);
    parts.store.assertThread();
    ZQFetchQuery excluded;
    if (!excluded.prepare({.entityName = wanted.entityName, .predicate = wanted.excluded}, parts.rows, error)) {
        return std::nullopt;
    }
    const auto place = placeOf(*excluded.entity, wanted.keyPath);
    if (!place) {
        zqSetError(error,
                   ZQError::with(
                       ZQStoreErrorDomain, int(ZQStoreError::Other), zqLocalized("The request cannot be carried out."),
                       QStringLiteral("%1 cannot be counted by \"%2\".").arg(wanted.entityName, wanted.keyPath)));
        return std::nullopt;
    }
    QList<qint64> keys;
    QHash<qint64, ZQObjectID> related;
    QHash<ZQObjectID, qint64> counts;
    for (const ZQObjectID &id : wanted.related) {
        keys.append(id.key);
        related.insert(id.key, id);
        counts.insert(id, 0);
    }
    const Statement statement = statementFor(*place, excluded, keys);
    ZQSQLiteStatement select = parts.store.prepare(statement.sql);
    select.bindVariants(0, statement.bindings);
    while (select.next()) {
        if (const auto asked = related.constFind(select.int64(0)); asked != related.constEnd()) {
            counts.insert(*asked, select.int64(1));
        }
    }
    if (select.failed()) {
        zqSetError(error, parts.store.error());
        return std::nullopt;
    }
    return counts;
}
