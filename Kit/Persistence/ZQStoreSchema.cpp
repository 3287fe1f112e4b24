#include "Kit/Persistence/ZQStoreSchema.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreIndexes.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace {

QString columnType(ZQAttributeType type)
{
    switch (type) {
    case ZQAttributeType::String:
        return QStringLiteral("TEXT");
    case ZQAttributeType::Float:
    case ZQAttributeType::Double:
        return QStringLiteral("REAL");
    case ZQAttributeType::Binary:
        return QStringLiteral("BLOB");
    default:
        return QStringLiteral("INTEGER");
    }
}

QString reference(const QString &table, const QString &rule)
{
    return QStringLiteral(" REFERENCES %1(\"id\") ON DELETE %2 DEFERRABLE INITIALLY DEFERRED")
        .arg(zqQuoted(table), rule);
}

QByteArray hashesAsJSON(const ZQManagedObjectModel &model)
{
    QJsonObject object;
    const QHash<QString, QByteArray> hashes = model.entityVersionHashes();
    for (auto entry = hashes.cbegin(); entry != hashes.cend(); ++entry) {
        object.insert(entry.key(), QString::fromLatin1(entry.value()));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

QList<const ZQEntityDescription *> zqRootEntities(const ZQManagedObjectModel &model)
{
    QList<const ZQEntityDescription *> roots;
    for (const auto &entity : model.entities()) {
        if (!entity->parent) {
            roots.append(entity.get());
        }
    }
    return roots;
}

QList<ZQStoreColumn> zqColumnsOfFamily(const ZQManagedObjectModel &model, const ZQEntityDescription *root)
{
    QList<ZQStoreColumn> columns;
    QHash<QString, qsizetype> known;
    for (const auto &entity : model.entities()) {
        if (entity->root != root) {
            continue;
        }
        for (const ZQAttributeDescription &attribute : entity->attributes) {
            if (const auto found = known.constFind(attribute.columnName); found != known.cend()) {
                columns[*found].indexed |= attribute.indexed;
                continue;
            }
            known.insert(attribute.columnName, columns.size());
            columns.append({attribute.columnName, attribute.type, attribute.indexed, {}});
        }
        for (const ZQRelationshipDescription &relationship : entity->relationships) {
            if (!relationship.toMany && !known.contains(relationship.columnName)) {
                known.insert(relationship.columnName, columns.size());
                columns.append(
                    {relationship.columnName, ZQAttributeType::Integer64, true, relationship.destination->tableName});
            }
        }
    }
    return columns;
}

QList<ZQJoinTable> zqJoinTables(const ZQManagedObjectModel &model)
{
    QList<ZQJoinTable> tables;
    QSet<QString> known;
    for (const auto &entity : model.entities()) {
        for (const ZQRelationshipDescription &relationship : entity->relationships) {
            if (relationship.isManyToMany() && relationship.joinOwnColumn < relationship.joinOtherColumn &&
                !known.contains(relationship.joinTable)) {
                known.insert(relationship.joinTable);
                tables.append({model.entity(relationship.inverse->destinationName), &relationship});
            }
        }
    }
    return tables;
}

QStringList zqTableStatements(const ZQManagedObjectModel &model)
{
    QStringList statements;
    for (const ZQEntityDescription *root : zqRootEntities(model)) {
        QString columns = QStringLiteral(
            "\"id\" INTEGER PRIMARY KEY, \"entity\" INTEGER NOT NULL, \"version\" INTEGER NOT NULL DEFAULT 1");
        for (const ZQStoreColumn &column : zqColumnsOfFamily(model, root)) {
            columns += QStringLiteral(", ") + zqQuoted(column.name) + u' ' + columnType(column.type);
            if (!column.referencedTable.isEmpty()) {
                columns += reference(column.referencedTable, QStringLiteral("SET NULL"));
            }
        }
        statements.append(QStringLiteral("CREATE TABLE %1 (%2)").arg(zqQuoted(root->tableName), columns));
    }
    for (const ZQJoinTable &join : zqJoinTables(model)) {
        const ZQRelationshipDescription &relationship = *join.relationship;
        const QString own = zqQuoted(relationship.joinOwnColumn);
        const QString other = zqQuoted(relationship.joinOtherColumn);
        statements.append(QStringLiteral("CREATE TABLE %1 (%2 INTEGER NOT NULL%4, %3 INTEGER NOT NULL%5, "
                                         "PRIMARY KEY(%2, %3)) WITHOUT ROWID")
                              .arg(zqQuoted(relationship.joinTable), own, other,
                                   reference(join.owner->tableName, QStringLiteral("CASCADE")),
                                   reference(relationship.destination->tableName, QStringLiteral("CASCADE"))));
    }
    return statements;
}

QStringList zqNewColumnStatements(const ZQManagedObjectModel &from, const ZQManagedObjectModel &to)
{
    QStringList statements;
    for (const ZQEntityDescription *root : zqRootEntities(to)) {
        QSet<QString> known;
        for (const ZQStoreColumn &column : zqColumnsOfFamily(from, from.entity(root->name))) {
            known.insert(column.name);
        }
        for (const ZQStoreColumn &column : zqColumnsOfFamily(to, root)) {
            if (!known.contains(column.name)) {
                statements.append(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                                      .arg(zqQuoted(root->tableName), zqQuoted(column.name), columnType(column.type)));
            }
        }
    }
    return statements;
}

QStringList zqBookkeepingStatements()
{
    return {QStringLiteral("CREATE TABLE \"zq_metadata\" (\"key\" TEXT PRIMARY KEY, \"value\") WITHOUT ROWID"),
            QStringLiteral(
                "CREATE TABLE \"zq_sequence\" (\"name\" TEXT PRIMARY KEY, \"last\" INTEGER NOT NULL) WITHOUT ROWID")};
}

bool zqExecuteAll(ZQSQLiteConnection &connection, const QStringList &statements)
{
    for (const QString &statement : statements) {
        if (!connection.execute(statement)) {
            return false;
        }
    }
    return true;
}

bool zqWriteMetadata(ZQSQLiteConnection &connection, const QString &key, const QVariant &value)
{
    ZQSQLiteStatement statement =
        connection.prepare(QStringLiteral("INSERT OR REPLACE INTO \"zq_metadata\" VALUES (?, ?)"));
    statement.bindVariants(0, {key, value});
    return statement.run();
}

std::optional<QVariant> zqReadMetadata(ZQSQLiteConnection &connection, const QString &key)
{
    ZQSQLiteStatement statement =
        connection.prepare(QStringLiteral("SELECT \"value\" FROM \"zq_metadata\" WHERE \"key\" = ?"));
    statement.bindVariants(0, {key});
    const bool isThere = statement.next();
    if (statement.failed()) {
        return std::nullopt;
    }
    return isThere ? statement.variant(0) : QVariant();
}

bool zqWriteModelMetadata(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model)
{
    return zqWriteMetadata(connection, QStringLiteral("versionIdentifiers"), model.versionIdentifiers().join(u'\n')) &&
           zqWriteMetadata(connection, QStringLiteral("entityVersionHashes"), QString::fromUtf8(hashesAsJSON(model))) &&
           zqWriteMetadata(connection, QStringLiteral("model"), QString::fromUtf8(model.json()));
}

std::optional<ZQStoreMetadata> zqReadStoreMetadata(ZQSQLiteConnection &connection, ZQError *error)
{
    ZQStoreMetadata metadata;
    // A damaged store is to say as much of itself as it can.
    const auto read = [&](const QString &key) {
        const auto value = zqReadMetadata(connection, key);
        metadata.isFormKnown = metadata.isFormKnown && value;
        return value.value_or(QVariant()).toString();
    };
    const QVariant tables =
        connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = 'zq_metadata'"));
    if (!tables.isValid()) {
        zqSetError(error, connection.error());
        return std::nullopt;
    }
    if (tables.toInt() == 1) {
        metadata.storeUUID = QUuid::fromString(read(QStringLiteral("uuid")));
    }
    if (metadata.storeUUID.isNull()) {
        const bool isBroken = tables.toInt() == 1 && (connection.errorCode() & 0xFF) != 0;
        zqSetError(error, isBroken ? connection.error()
                                   : ZQError::with(ZQStoreErrorDomain, int(ZQStoreError::CannotOpen),
                                                   zqLocalized("The file is not a library database."),
                                                   zqLocalized("Choose another library, recover it, or put back a copy "
                                                               "from a backup.")));
        return std::nullopt;
    }
    metadata.versionIdentifiers = read(QStringLiteral("versionIdentifiers")).split(u'\n', Qt::SkipEmptyParts);
    const QString hashes = read(QStringLiteral("entityVersionHashes"));
    const QJsonObject object = QJsonDocument::fromJson(hashes.toUtf8()).object();
    for (auto entry = object.constBegin(); entry != object.constEnd(); ++entry) {
        metadata.entityVersionHashes.insert(entry.key(), entry.value().toString().toLatin1());
    }
    metadata.modelJSON = read(QStringLiteral("model")).toUtf8();
    const auto pending = zqReadMetadata(connection, zqPendingVersionsKey);
    metadata.pendingVersions = pending.value_or(QVariant()).toString().split(u'\n', Qt::SkipEmptyParts);
    return metadata;
}

bool zqCreateStore(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model, const QUuid &uuid)
{
    return zqExecuteAll(connection, zqBookkeepingStatements()) && zqExecuteAll(connection, zqTableStatements(model)) &&
           zqCreateIndexes(connection, model) &&
           zqWriteMetadata(connection, QStringLiteral("uuid"), uuid.toString(QUuid::WithoutBraces)) &&
           zqWriteMetadata(connection, zqCreatedKey, QDateTime::currentMSecsSinceEpoch()) &&
           zqWriteModelMetadata(connection, model);
}
