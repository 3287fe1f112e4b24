#include "Kit/Persistence/ZQObjectURIs.h"

#include "Kit/Persistence/ZQSQLList.h"

ZQObjectID ZQObjectURIs::possibleID(const QString &uri) const
{
    const QUuid store = m_context.store.coordinator()->storeUUID();
    const QStringList parts = uri.split(u'/');
    const ZQEntityDescription *entity = parts.size() == 5 ? m_context.rows.plan().model().entity(parts.at(3)) : nullptr;
    if (!entity || parts.at(0) != QStringLiteral("x-zelto:") || !parts.at(1).isEmpty()) {
        return {};
    }
    if (parts.at(2).isEmpty()) {
        for (const auto &object : m_context.changes.inserted().objects()) {
            if (object->objectID().URIRepresentation(store) == uri) {
                return object->objectID();
            }
        }
        return {};
    }
    bool isNumber = false;
    const qint64 key = parts.at(4).mid(1).toLongLong(&isNumber);
    const bool isOfStore =
        QUuid::fromString(parts.at(2)) == store && parts.at(4).startsWith(u'p') && isNumber && key > 0;
    return isOfStore ? ZQObjectID{entity, key} : ZQObjectID();
}

std::optional<QList<ZQObjectID>> ZQObjectURIs::existingIDs(const QStringList &uris, ZQError *error)
{
    QList<ZQObjectID> named;
    QHash<ZQRowCache::Root *, QList<qint64>> keys;
    for (const QString &uri : uris) {
        if (const ZQObjectID id = possibleID(uri); !id.isNull()) {
            named.append(id);
            if (!id.isTemporary()) {
                keys[&m_context.rows.rootOf(id.entity)].append(id.key);
            }
        }
    }
    QHash<ZQRowCache::Root *, QHash<qint64, const ZQEntityDescription *>> entities;
    for (auto entry = keys.cbegin(); entry != keys.cend(); ++entry) {
        ZQSQLiteStatement select = m_context.store.prepare(
            QStringLiteral("SELECT \"id\", \"entity\" FROM %1 WHERE \"id\" IN (SELECT value FROM json_each(?))")
                .arg(zqQuoted(entry.key()->plan->entity->tableName)));
        const QString list = zqKeysAsJSON(entry.value());
        select.bind(0, list);
        while (select.next()) {
            const ZQEntityPlan *entityPlan = m_context.rows.plan().planForCode(int(select.int64(1)));
            entities[entry.key()].insert(select.int64(0), entityPlan ? entityPlan->entity : nullptr);
        }
        if (select.failed()) {
            zqSetError(error, m_context.store.error());
            return std::nullopt;
        }
    }
    QList<ZQObjectID> ids;
    for (const ZQObjectID &id : std::as_const(named)) {
        const ZQEntityDescription *entity =
            id.isTemporary() ? id.entity : entities[&m_context.rows.rootOf(id.entity)].value(id.key);
        if (entity && entity->isKindOf(id.entity)) {
            ids.append({entity, id.key});
        }
    }
    return ids;
}
