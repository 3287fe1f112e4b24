#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLList.h"

using Private = ZQManagedObjectContext::Private;

// Reading for many objects at once what each of them would ask for by a query of its own.

QList<ZQRef<ZQManagedObject>> Private::objectsForKeys(const ZQEntityDescription *entity, const QSet<qint64> &keys)
{
    Root &root = rootOf(entity);
    QList<Object> objects;
    QList<qint64> missing;
    for (const qint64 key : keys) {
        ZQManagedObject *object = root.objects.value(key);
        if (object) {
            objects.append(Object(object));
        }
        if (key > 0 && (!object || object->m_isFault)) {
            missing.append(key);
        }
    }
    std::sort(missing.begin(), missing.end()); // neighbours are on one page
    selectRows(root, missing, [&](ZQSQLiteStatement &row) {
        if (Object object = objectFromRow(row, root)) {
            objects.append(std::move(object));
        }
    });
    return objects;
}

bool Private::storedKeysOf(const ZQRelationshipDescription &forward, const QList<qint64> &owners,
                           QHash<qint64, QList<qint64>> &stored)
{
    const bool isJoined = forward.isManyToMany();
    const QString own = zqQuoted(isJoined ? forward.joinOwnColumn : forward.inverse->columnName);
    const QString other = isJoined ? zqQuoted(forward.joinOtherColumn) : QStringLiteral("\"id\"");
    ZQSQLiteStatement select =
        prepare(QStringLiteral("SELECT %1, %2 FROM %3 WHERE %1 IN (SELECT value FROM json_each(?)) ORDER BY %1, %2")
                    .arg(own, other, zqQuoted(isJoined ? forward.joinTable : forward.destination->tableName)));
    const QString keys = zqKeysAsJSON(owners);
    select.bind(0, keys);
    while (select.next()) {
        stored[select.int64(0)].append(select.int64(1));
    }
    failedReads += select.failed() ? 1 : 0;
    return !select.failed();
}

void Private::loadLists(const QList<Object> &objects, int index)
{
    QHash<qint64, const ZQManagedObject *> waiting;
    for (const Object &object : objects) {
        if (!list(object.get(), index).isLoaded && object->m_key > 0) {
            waiting.insert(object->m_key, object.get());
        }
    }
    QHash<qint64, QList<qint64>> stored;
    // Where that fails, each is read when it is asked for.
    if (!waiting.isEmpty() && storedKeysOf(relationship(objects.first().get(), index), waiting.keys(), stored)) {
        for (auto entry = waiting.cbegin(); entry != waiting.cend(); ++entry) {
            takeStoredKeys(entry.value(), index, stored.value(entry.key()));
        }
    }
}

QList<ZQRef<ZQManagedObject>> Private::prefetch(const QList<Object> &objects, const QStringList &keys,
                                                bool includesLast)
{
    assertThread();
    QList<Object> kept;
    QList<Object> here = objects;
    for (qsizetype i = 0; i < keys.size() && !here.isEmpty(); ++i) {
        QHash<const ZQEntityPlan *, QList<Object>> byEntity;
        QHash<Root *, QList<qint64>> faults;
        for (const Object &object : std::as_const(here)) {
            byEntity[object->m_plan].append(object);
            if (object->m_isFault) {
                faults[&rootOf(object.get())].append(object->m_key);
            }
        }
        for (auto entry = faults.cbegin(); entry != faults.cend(); ++entry) {
            fillObjects(*entry.key(), entry.value());
        }
        const bool isWanted = includesLast || i + 1 < keys.size();
        QHash<const ZQEntityDescription *, QSet<qint64>> targets;
        for (auto entry = byEntity.cbegin(); entry != byEntity.cend(); ++entry) {
            const ZQPlanProperty property = entry.key()->properties.value(keys.at(i));
            if (!property.isRelationship) {
                continue;
            }
            const ZQRelationshipDescription &forward = entry.key()->entity->relationships[size_t(property.index)];
            if (forward.toMany) {
                loadLists(entry.value(), property.index);
            }
            QSet<qint64> &wanted = targets[forward.destination];
            for (const Object &object : isWanted ? entry.value() : QList<Object>()) {
                if (forward.toMany) {
                    for (const qint64 key : loadedKeys(object.get(), property.index)) {
                        wanted.insert(key);
                    }
                } else if (const qint64 key = toOneKey(object.get(), property.index)) {
                    wanted.insert(key);
                }
            }
        }
        here.clear();
        for (auto entry = targets.cbegin(); entry != targets.cend(); ++entry) {
            here += objectsForKeys(entry.key(), entry.value());
        }
        kept += here;
    }
    return kept;
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::prefetchObjects(const QList<ZQRef<ZQManagedObject>> &objects,
                                                                      const QString &keyPath)
{
    return d->prefetch(objects, keyPath.split(u'.'), true);
}
