#include "Kit/Persistence/ZQRowWriter.h"

#include "Kit/Persistence/ZQSaveWork.h"

#include <map>

bool ZQRowWriter::write()
{
    return allocateKeys() && insertRows() && updateRows() && deleteRows() && writeJoins() &&
           (!m_context.store.connection()->hasDanglingReferences() || clearDanglingReferences());
}

bool ZQRowWriter::allocateKeys()
{
    std::map<QString, QList<ZQManagedObject *>> byTable;
    for (const Object &object : m_work.inserted) {
        byTable[object->m_entity->tableName].append(object.get());
    }
    for (const auto &[table, objects] : byTable) {
        ZQSQLiteStatement allocate = m_context.store.prepare(QStringLiteral(
            "INSERT INTO \"zq_sequence\" VALUES (?, ?) ON CONFLICT DO UPDATE SET \"last\" = \"last\" + ? "
            "RETURNING \"last\""));
        allocate.bind(0, table);
        allocate.bind(1, qint64(objects.size()));
        allocate.bind(2, qint64(objects.size()));
        if (!allocate.next()) {
            return false;
        }
        qint64 key = allocate.int64(0) - objects.size();
        allocate.next();
        for (const ZQManagedObject *object : objects) {
            m_work.keys.insert(object->m_key, ++key);
        }
    }
    return true;
}

bool ZQRowWriter::insertRows()
{
    std::map<const ZQEntityPlan *, QList<ZQManagedObject *>> byEntity;
    for (const Object &object : m_work.inserted) {
        byEntity[object->m_plan].append(object.get());
    }
    for (const auto &[entityPlan, objects] : byEntity) {
        ZQSQLiteStatement insert = m_context.store.prepare(entityPlan->insertStatement);
        for (ZQManagedObject *object : objects) {
            insert.bind(0, m_work.permanent(object->m_key));
            insert.bind(1, entityPlan->entity->code);
            int parameter = 1;
            for (const ZQPlanColumn &column : entityPlan->columns) {
                const ZQField &field = entityPlan->root->fields[size_t(column.field)];
                ++parameter;
                if (column.isToOne) {
                    const qint64 target = m_work.permanent(zqKeySlot(field, object->row()));
                    target == 0 ? insert.bindNull(parameter) : insert.bind(parameter, target);
                } else {
                    zqBindField(insert, parameter, field, object->row(), (object->m_nulls >> column.field) & 1U);
                }
            }
            if (!insert.run()) {
                return false;
            }
        }
    }
    return true;
}

bool ZQRowWriter::updateRows()
{
    for (const Object &object : m_work.updated) {
        if ((object->m_changed & object->m_plan->fieldMask) && !updateRow(object.get())) {
            return false;
        }
    }
    return true;
}

bool ZQRowWriter::updateRow(ZQManagedObject *object)
{
    if (!updateColumns(object, object->m_version)) {
        return false;
    }
    if (changedRows() == 1) {
        m_work.versions.insert(object, object->m_version + 1);
        return true;
    }
    if (m_context.mergePolicy == ZQMergePolicy::Error) {
        m_work.conflicts.append(object->objectID());
        return true;
    }
    if (!updateColumns(object, std::nullopt)) {
        return false;
    }
    (changedRows() == 1 ? m_work.mergedWithStore : m_work.goneFromStore).insert(object);
    return true;
}

bool ZQRowWriter::updateColumns(ZQManagedObject *object, std::optional<qint64> expectedVersion)
{
    const ZQEntityPlan &entityPlan = *object->m_plan;
    QString sql =
        QStringLiteral("UPDATE %1 SET \"version\" = \"version\" + 1").arg(zqQuoted(entityPlan.entity->tableName));
    for (const ZQPlanColumn &column : entityPlan.columns) {
        if ((object->m_changed >> column.field) & 1U) {
            sql += QStringLiteral(", %1 = ?").arg(zqQuoted(column.column));
        }
    }
    sql += QStringLiteral(" WHERE \"id\" = ?");
    if (expectedVersion) {
        sql += QStringLiteral(" AND \"version\" = ?");
    }
    ZQSQLiteStatement update = m_context.store.prepare(sql);
    int parameter = 0;
    for (const ZQPlanColumn &column : entityPlan.columns) {
        if (!((object->m_changed >> column.field) & 1U)) {
            continue;
        }
        const ZQField &field = entityPlan.root->fields[size_t(column.field)];
        if (column.isToOne) {
            const qint64 target = m_work.permanent(zqKeySlot(field, object->row()));
            target == 0 ? update.bindNull(parameter) : update.bind(parameter, target);
        } else {
            zqBindField(update, parameter, field, object->row(), (object->m_nulls >> column.field) & 1U);
        }
        ++parameter;
    }
    update.bind(parameter++, object->m_key);
    if (expectedVersion) {
        update.bind(parameter, *expectedVersion);
    }
    return update.run();
}

bool ZQRowWriter::deleteRows()
{
    if (!noteNeighboursOfDeleted()) {
        return false;
    }
    for (const Object &object : m_work.deleted) {
        const QString sql =
            QStringLiteral("DELETE FROM %1 WHERE \"id\" = ?").arg(zqQuoted(object->m_entity->tableName));
        const bool isChecked = m_context.mergePolicy == ZQMergePolicy::Error;
        ZQSQLiteStatement remove =
            m_context.store.prepare(isChecked ? sql + QStringLiteral(" AND \"version\" = ?") : sql);
        remove.bind(0, object->m_key);
        if (isChecked) {
            remove.bind(1, object->m_version);
        }
        if (!remove.run()) {
            return false;
        }
        if (!isChecked || changedRows() > 0) {
            continue;
        }
        const auto isThere = rowExists(object->m_entity, object->m_key);
        if (!isThere) {
            return false;
        }
        if (*isThere) { // a row that somebody else deleted already is as it should be
            m_work.conflicts.append(object->objectID());
        }
    }
    return true;
}

// A save that cannot tell whom it changes is none: who shows the neighbours would go on showing the deleted.
bool ZQRowWriter::noteNeighboursOfDeleted()
{
    std::map<const ZQEntityPlan *, QList<ZQManagedObject *>> byEntity;
    for (const Object &object : m_work.deleted) {
        byEntity[object->m_plan].append(object.get());
    }
    for (const auto &[entityPlan, objects] : byEntity) {
        QList<qint64> owners;
        for (const ZQManagedObject *object : objects) {
            owners.append(object->m_key);
        }
        for (size_t i = 0; i < entityPlan->entity->relationships.size(); ++i) {
            const ZQRelationshipDescription &forward = entityPlan->entity->relationships[i];
            QSet<qint64> keys;
            if (forward.isManyToMany()) {
                QHash<qint64, QList<qint64>> stored;
                if (!m_context.relationships.storedKeysOf(forward, owners, stored)) {
                    return false;
                }
                for (const QList<qint64> &list : std::as_const(stored)) {
                    keys.unite(QSet<qint64>(list.cbegin(), list.cend()));
                }
            } else if (!forward.toMany) {
                for (const ZQManagedObject *object : objects) {
                    keys.insert(ZQRelationships::toOneKey(object, int(i)));
                }
            }
            for (const qint64 key : std::as_const(keys)) {
                if (key > 0) {
                    m_work.neighbours.append({forward.destination, key});
                }
            }
        }
    }
    return true;
}

bool ZQRowWriter::writeJoins()
{
    for (const QList<Object> *objects : {&m_work.inserted, &m_work.updated}) {
        for (const Object &object : *objects) {
            for (size_t i = 0; i < object->m_toMany.size(); ++i) {
                const ZQRelationshipDescription &forward = object->m_entity->relationships[i];
                const ZQRelationships::ToMany &many = object->m_toMany[i];
                // Both sides recorded the pair; the side whose column sorts first writes it.
                if (!forward.isManyToMany() || forward.joinOwnColumn > forward.joinOtherColumn ||
                    m_work.goneFromStore.contains(object.get())) {
                    continue;
                }
                const QString own = zqQuoted(forward.joinOwnColumn);
                const QString other = zqQuoted(forward.joinOtherColumn);
                const QString table = zqQuoted(forward.joinTable);
                const auto writeAll = [&](const QList<qint64> &keys, const QString &sql) {
                    for (const qint64 key : keys) {
                        const qint64 target = m_work.permanent(key);
                        ZQSQLiteStatement statement = m_context.store.prepare(sql);
                        statement.bind(0, m_work.permanent(object->m_key));
                        statement.bind(1, target);
                        if (target != 0 && !statement.run()) {
                            return false;
                        }
                    }
                    return true;
                };
                if (!writeAll(many.removed,
                              QStringLiteral("DELETE FROM %1 WHERE %2 = ? AND %3 = ?").arg(table, own, other)) ||
                    !writeAll(
                        many.added,
                        QStringLiteral("INSERT OR IGNORE INTO %1 (%2, %3) VALUES (?, ?)").arg(table, own, other))) {
                    return false;
                }
            }
        }
    }
    return true;
}

std::optional<bool> ZQRowWriter::rowExists(const ZQEntityDescription *entity, qint64 key)
{
    ZQSQLiteStatement select =
        m_context.store.prepare(QStringLiteral("SELECT 1 FROM %1 WHERE \"id\" = ?").arg(zqQuoted(entity->tableName)));
    select.bind(0, key);
    const bool isThere = select.next();
    return select.failed() ? std::nullopt : std::optional(isThere);
}

// Something written here refers to a row that others deleted: a conflict, or a reference to be dropped.
bool ZQRowWriter::clearDanglingReferences()
{
    for (const QList<Object> *objects : {&m_work.inserted, &m_work.updated}) {
        for (const Object &object : *objects) {
            if (!clearToOnes(object.get()) || !clearJoins(object.get())) {
                return false;
            }
        }
    }
    return true;
}

bool ZQRowWriter::clearToOnes(ZQManagedObject *object)
{
    for (size_t i = 0; i < object->m_entity->relationships.size(); ++i) {
        const ZQRelationshipDescription &forward = object->m_entity->relationships[i];
        const qint64 target = forward.toMany ? 0 : m_work.permanent(ZQRelationships::toOneKey(object, int(i)));
        const auto isThere = target == 0 ? std::optional(true) : rowExists(forward.destination, target);
        if (!isThere) {
            return false;
        }
        if (*isThere) {
            continue;
        }
        if (m_context.mergePolicy == ZQMergePolicy::Error) {
            m_work.conflicts.append(object->objectID());
            break;
        }
        ZQSQLiteStatement clear =
            m_context.store.prepare(QStringLiteral("UPDATE %1 SET %2 = NULL WHERE \"id\" = ?")
                                        .arg(zqQuoted(object->m_entity->tableName), zqQuoted(forward.columnName)));
        clear.bind(0, m_work.permanent(object->m_key));
        if (!clear.run()) {
            return false;
        }
        m_work.mergedWithStore.insert(object);
    }
    return true;
}

bool ZQRowWriter::clearJoins(ZQManagedObject *object)
{
    for (size_t i = 0; i < object->m_toMany.size(); ++i) {
        const ZQRelationshipDescription &forward = object->m_entity->relationships[i];
        if (!forward.isManyToMany() || object->m_toMany[i].added.isEmpty()) {
            continue;
        }
        ZQSQLiteStatement clear = m_context.store.prepare(
            QStringLiteral("DELETE FROM %1 WHERE %2 = ? AND (%3 NOT IN (SELECT \"id\" FROM %4) "
                           "OR %2 NOT IN (SELECT \"id\" FROM %5))")
                .arg(zqQuoted(forward.joinTable), zqQuoted(forward.joinOwnColumn), zqQuoted(forward.joinOtherColumn),
                     zqQuoted(forward.destination->tableName), zqQuoted(object->m_entity->tableName)));
        clear.bind(0, m_work.permanent(object->m_key));
        if (!clear.run()) {
            return false;
        }
        if (changedRows() == 0) {
            continue;
        }
        if (m_context.mergePolicy == ZQMergePolicy::Error) {
            m_work.conflicts.append(object->objectID());
        } else {
            m_work.mergedWithStore.insert(object);
        }
    }
    return true;
}
