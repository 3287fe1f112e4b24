#include "Kit/Persistence/ZQStoreMigration.h"

#include "Kit/Foundation/ZQCancellation.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"
#include "Kit/Persistence/ZQStoreIndexes.h"
#include "Kit/Persistence/ZQStoreSchema.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <algorithm>

namespace {

const QString oldPrefix = QStringLiteral("zq_old_");

int versionNumber(const QStringList &identifiers)
{
    int highest = 0;
    for (const QString &identifier : identifiers) {
        if (identifier.startsWith(QStringLiteral("Version"))) {
            highest = std::max(highest, identifier.mid(7).toInt());
        }
    }
    return highest;
}

ZQError migrationError(ZQStoreError code, const QString &description, const QString &reason)
{
    return ZQError::with(ZQStoreErrorDomain, int(code), description, reason);
}

// The value that stands for "empty" where a required attribute has no default.
QVariant emptyValue(const ZQAttributeDescription &attribute)
{
    switch (attribute.type) {
    case ZQAttributeType::String:
        return QStringLiteral("");
    case ZQAttributeType::Binary:
        return QByteArray("");
    case ZQAttributeType::Float:
    case ZQAttributeType::Double:
        return 0.0;
    default:
        return 0;
    }
}

bool isWhole(ZQAttributeType type)
{
    return type == ZQAttributeType::Boolean || type == ZQAttributeType::Integer16 ||
           type == ZQAttributeType::Integer32 || type == ZQAttributeType::Integer64;
}

bool isReal(ZQAttributeType type)
{
    return type == ZQAttributeType::Float || type == ZQAttributeType::Double;
}

// The order of the enumeration is that of growing width within whole numbers and within reals.
bool isWidening(ZQAttributeType from, ZQAttributeType to)
{
    return from == to || (isWhole(from) && isWhole(to) && from < to) || (isReal(from) && isReal(to) && from < to) ||
           (isWhole(from) && isReal(to));
}

// What an entity or property was called in the old model, most likely name first.
QStringList oldNames(const QString &renamingIdentifier, const QString &name)
{
    return renamingIdentifier.isEmpty() ? QStringList{name} : QStringList{renamingIdentifier, name};
}

// Whether `to` is `from` with more attributes, which the rows that are there have no value of.
bool addsAttributesOnly(const ZQEntityDescription &from, const ZQEntityDescription &to)
{
    const bool keepsAttributes =
        std::all_of(to.attributes.begin(), to.attributes.end(), [&](const ZQAttributeDescription &attribute) {
            const bool mayBeEmpty = attribute.optional && !attribute.defaultValue.isValid();
            return !from.attribute(attribute.renamingIdentifier) && (mayBeEmpty || from.attribute(attribute.name));
        });
    const bool keepsRelationships = std::none_of(
        to.relationships.begin(), to.relationships.end(), [&](const ZQRelationshipDescription &relationship) {
            return from.relationship(relationship.renamingIdentifier) != nullptr;
        });
    if (!keepsAttributes || !keepsRelationships) {
        return false;
    }
    ZQEntityDescription before = to;
    std::erase_if(before.attributes, [&from](const auto &attribute) { return !from.attribute(attribute.name); });
    return before.code == from.code && before.versionHash() == from.versionHash();
}

bool addsColumnsOnly(const ZQManagedObjectModel &from, const ZQManagedObjectModel &to)
{
    return from.entities().size() == to.entities().size() &&
           std::all_of(to.entities().begin(), to.entities().end(), [&from](const auto &entity) {
               const ZQEntityDescription *old = from.entity(entity->name);
               return old && !from.entity(entity->renamingIdentifier) && addsAttributesOnly(*old, *entity);
           });
}

class Migration
{
public:
    Migration(ZQSQLiteConnection &connection, const ZQManagedObjectModel &from, const ZQManagedObjectModel &to,
              const QString &copy)
        : m_connection(connection), m_from(from), m_to(to), m_copy(copy)
    {
    }

    bool run() { return addsColumnsOnly(m_from, m_to) ? addColumns() : match() && copyAll(); }
    QString problem() const { return m_problem; } // empty when the database failed

private:
    // No row is touched: moments, however large the store is. Its indexes follow when it opens.
    bool addColumns()
    {
        return zqExecuteAll(m_connection, zqNewColumnStatements(m_from, m_to)) && zqForgetStatistics(m_connection) &&
               notePending() && zqWriteModelMetadata(m_connection, m_to);
    }
    bool copyAll()
    {
        return setOldTablesAside() && zqExecuteAll(m_connection, zqTableStatements(m_to)) && copyEntities() &&
               copyJoins() && clearDanglingReferences() && dropOldTables() && zqCreateIndexes(m_connection, m_to) &&
               zqForgetStatistics(m_connection) && notePending() && zqWriteModelMetadata(m_connection, m_to);
    }
    bool refuse(const QString &what)
    {
        m_problem = what;
        return false;
    }
    bool match();
    bool setOldTablesAside();
    bool copyEntities();
    bool copyEntity(const ZQEntityDescription &to, const ZQEntityDescription &from);
    bool copyJoins();
    bool copyJoin(const ZQJoinTable &join);
    bool clearDanglingReferences();
    bool dropOldTables();
    bool notePending();
    bool addLines(const QString &key, const QStringList &lines);
    std::optional<QString> attributeExpression(const ZQAttributeDescription &attribute,
                                               const ZQEntityDescription &owner, const ZQEntityDescription &from,
                                               QVariantList &bindings);
    static QString aside(const QString &table) { return zqQuoted(oldPrefix + table); }
    static const ZQAttributeDescription *oldAttribute(const ZQAttributeDescription &attribute,
                                                      const ZQEntityDescription &from);
    static const ZQRelationshipDescription *oldRelationship(const ZQRelationshipDescription &relationship,
                                                            const ZQEntityDescription &from);

    ZQSQLiteConnection &m_connection;
    const ZQManagedObjectModel &m_from;
    const ZQManagedObjectModel &m_to;
    QString m_copy;
    QHash<const ZQEntityDescription *, const ZQEntityDescription *> m_old; // new entity to old one
    QString m_problem;
};

bool Migration::match()
{
    QHash<const ZQEntityDescription *, const ZQEntityDescription *> oldRoots;
    for (const auto &entity : m_to.entities()) {
        for (const QString &name : oldNames(entity->renamingIdentifier, entity->name)) {
            if (const ZQEntityDescription *old = m_from.entity(name)) {
                m_old.insert(entity.get(), old);
                break;
            }
        }
        const ZQEntityDescription *old = m_old.value(entity.get());
        if (!old) {
            continue;
        }
        const ZQEntityDescription *&oldRoot = oldRoots[entity->root];
        if (oldRoot && oldRoot != old->root) {
            return refuse(QStringLiteral("%1 moved to another family of entities").arg(entity->name));
        }
        oldRoot = old->root;
    }
    return true;
}

bool Migration::setOldTablesAside()
{
    // Old tables keep their indexes; those go with them when they are dropped.
    QStringList names;
    for (const ZQEntityDescription *root : zqRootEntities(m_from)) {
        names.append(root->tableName);
    }
    for (const ZQJoinTable &join : zqJoinTables(m_from)) {
        names.append(join.relationship->joinTable);
    }
    for (const QString &name : names) {
        if (!m_connection.execute(QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(zqQuoted(name), aside(name)))) {
            return false;
        }
    }
    return true;
}

const ZQAttributeDescription *Migration::oldAttribute(const ZQAttributeDescription &attribute,
                                                      const ZQEntityDescription &from)
{
    for (const QString &name : oldNames(attribute.renamingIdentifier, attribute.name)) {
        if (const ZQAttributeDescription *old = from.attribute(name)) {
            return old;
        }
    }
    return nullptr;
}

const ZQRelationshipDescription *Migration::oldRelationship(const ZQRelationshipDescription &relationship,
                                                            const ZQEntityDescription &from)
{
    for (const QString &name : oldNames(relationship.renamingIdentifier, relationship.name)) {
        if (const ZQRelationshipDescription *old = from.relationship(name)) {
            return old;
        }
    }
    return nullptr;
}

std::optional<QString> Migration::attributeExpression(const ZQAttributeDescription &attribute,
                                                      const ZQEntityDescription &owner, const ZQEntityDescription &from,
                                                      QVariantList &bindings)
{
    QVariant filler = attribute.defaultValue;
    if (!filler.isValid() && !attribute.optional) {
        filler = emptyValue(attribute);
    }
    const ZQAttributeDescription *old = oldAttribute(attribute, from);
    if (!old) {
        bindings.append(filler);
        return QStringLiteral("?");
    }
    if (!isWidening(old->type, attribute.type)) {
        refuse(QStringLiteral("the type of %1.%2 changed in a way that loses values").arg(owner.name, attribute.name));
        return std::nullopt;
    }
    QString expression = zqQuoted(old->columnName);
    if (isReal(attribute.type) && isWhole(old->type)) {
        expression = QStringLiteral("CAST(%1 AS REAL)").arg(expression);
    }
    if (!attribute.optional && old->optional) {
        bindings.append(filler);
        return QStringLiteral("COALESCE(%1, ?)").arg(expression);
    }
    return expression;
}

bool Migration::copyEntity(const ZQEntityDescription &to, const ZQEntityDescription &from)
{
    QStringList columns{QStringLiteral("\"id\", \"entity\", \"version\"")};
    QStringList expressions{QStringLiteral("\"id\", %1, \"version\"").arg(to.code)};
    QVariantList bindings;
    for (const ZQAttributeDescription &attribute : to.attributes) {
        const std::optional<QString> expression = attributeExpression(attribute, to, from, bindings);
        if (!expression) {
            return false;
        }
        columns.append(zqQuoted(attribute.columnName));
        expressions.append(*expression);
    }
    for (const ZQRelationshipDescription &relationship : to.relationships) {
        const ZQRelationshipDescription *old = oldRelationship(relationship, from);
        if (!old) {
            continue;
        }
        if (old->toMany && !relationship.toMany) {
            return refuse(QStringLiteral("%1.%2 holds one object where it held many").arg(to.name, relationship.name));
        }
        // Keys mean something only within the table they came from.
        const ZQEntityDescription *oldDestination = m_old.value(relationship.destination);
        if (!relationship.toMany && oldDestination && oldDestination->root == old->destination->root) {
            columns.append(zqQuoted(relationship.columnName));
            expressions.append(zqQuoted(old->columnName));
        }
    }
    ZQSQLiteStatement copy =
        m_connection.prepare(QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4 WHERE \"entity\" = %5")
                                 .arg(zqQuoted(to.tableName), columns.join(QStringLiteral(", ")),
                                      expressions.join(QStringLiteral(", ")), aside(from.tableName))
                                 .arg(from.code));
    copy.bindVariants(0, bindings);
    return copy.run();
}

bool Migration::copyEntities()
{
    for (const auto &entity : m_to.entities()) {
        if (const ZQEntityDescription *old = m_old.value(entity.get()); old && !copyEntity(*entity, *old)) {
            return false;
        }
    }
    // Keys are never used twice, so a renamed table goes on counting where it was.
    for (const ZQEntityDescription *root : zqRootEntities(m_to)) {
        const ZQEntityDescription *old = m_old.value(root);
        if (old && old->root->tableName != root->tableName) {
            ZQSQLiteStatement write = m_connection.prepare(
                QStringLiteral("INSERT OR REPLACE INTO \"zq_sequence\" SELECT ?, \"last\" FROM \"zq_sequence\" "
                               "WHERE \"name\" = ?"));
            write.bindVariants(0, {root->tableName, old->root->tableName});
            if (!write.run()) {
                return false;
            }
        }
    }
    return true;
}

bool Migration::copyJoin(const ZQJoinTable &join)
{
    const ZQRelationshipDescription &relationship = *join.relationship;
    const ZQEntityDescription *owner = m_old.value(join.owner);
    const ZQRelationshipDescription *old = owner ? oldRelationship(relationship, *owner) : nullptr;
    const ZQEntityDescription *destination = m_old.value(relationship.destination);
    if (!old || !destination || old->destination->root != destination->root) {
        return true;
    }
    QString own = QStringLiteral("\"id\"");
    QString other = zqQuoted(old->columnName);
    QString table = aside(owner->tableName);
    if (old->isManyToMany()) {
        own = zqQuoted(old->joinOwnColumn);
        other = zqQuoted(old->joinOtherColumn);
        table = aside(old->joinTable);
    } else if (old->toMany) {
        own = zqQuoted(old->inverse->columnName);
        other = QStringLiteral("\"id\"");
        table = aside(old->destination->tableName);
    }
    // The + keeps the planner from looking for each pair of the two sets, instead of looking up what each row names.
    return m_connection.execute(
        QStringLiteral("INSERT OR IGNORE INTO %1 (%2, %3) SELECT %4, %5 FROM %6 "
                       "WHERE +%4 IN (SELECT \"id\" FROM %7) AND +%5 IN (SELECT \"id\" FROM %8)")
            .arg(zqQuoted(relationship.joinTable), zqQuoted(relationship.joinOwnColumn),
                 zqQuoted(relationship.joinOtherColumn), own, other, table, zqQuoted(join.owner->tableName),
                 zqQuoted(relationship.destination->tableName)));
}

bool Migration::copyJoins()
{
    for (const ZQJoinTable &join : zqJoinTables(m_to)) {
        if (!copyJoin(join)) {
            return false;
        }
    }
    return true;
}

bool Migration::clearDanglingReferences()
{
    for (const ZQEntityDescription *root : zqRootEntities(m_to)) {
        for (const ZQStoreColumn &column : zqColumnsOfFamily(m_to, root)) {
            if (!column.referencedTable.isEmpty() &&
                !m_connection.execute(
                    QStringLiteral("UPDATE %1 SET %2 = NULL WHERE %2 NOT IN (SELECT \"id\" FROM %3)")
                        .arg(zqQuoted(root->tableName), zqQuoted(column.name), zqQuoted(column.referencedTable)))) {
                return false;
            }
        }
    }
    return true;
}

bool Migration::dropOldTables()
{
    for (const ZQJoinTable &join : zqJoinTables(m_from)) {
        if (!m_connection.execute(QStringLiteral("DROP TABLE ") + aside(join.relationship->joinTable))) {
            return false;
        }
    }
    for (const ZQEntityDescription *root : zqRootEntities(m_from)) {
        if (!m_connection.execute(QStringLiteral("DROP TABLE ") + aside(root->tableName))) {
            return false;
        }
    }
    return true;
}

bool Migration::addLines(const QString &key, const QStringList &lines)
{
    const auto before = zqReadMetadata(m_connection, key);
    if (!before) {
        return false;
    }
    QStringList all = before->toString().split(u'\n', Qt::SkipEmptyParts) + lines;
    all.removeDuplicates();
    return zqWriteMetadata(m_connection, key, all.join(u'\n'));
}

// New columns are empty; what belongs in them is known above this folder. A store that passes several versions at once
// owes what each of them brought.
bool Migration::notePending()
{
    QStringList versions;
    const int last = versionNumber(m_to.versionIdentifiers());
    for (int version = versionNumber(m_from.versionIdentifiers()) + 1; version <= last; ++version) {
        versions.append(QStringLiteral("Version%1").arg(version));
    }
    QStringList lastKeys;
    for (const ZQEntityDescription *root : zqRootEntities(m_to)) {
        const QVariant highest =
            m_connection.value(QStringLiteral("SELECT ifnull(max(\"id\"), 0) FROM ") + zqQuoted(root->tableName));
        if (!highest.isValid()) {
            return false; // all that is there would count as new
        }
        lastKeys.append(QStringLiteral("%1=%2").arg(root->tableName).arg(highest.toLongLong()));
    }
    return zqWriteMetadata(m_connection, zqLastKeysKey, lastKeys.join(u'\n')) &&
           addLines(zqPendingVersionsKey, versions) && addLines(zqPendingCopiesKey, {QFileInfo(m_copy).fileName()});
}

// The refusals that need no look at the rows.
bool mayMigrate(const ZQStoreMetadata &metadata, const ZQManagedObjectModel &model, const ZQStoreOptions &options,
                ZQError *error)
{
    if (versionNumber(metadata.versionIdentifiers) > versionNumber(model.versionIdentifiers())) {
        zqSetError(error, migrationError(ZQStoreError::NewerVersion,
                                         zqLocalized("The library was made by a newer version of the application."),
                                         zqLocalized("Install the newer version to open it.")));
        return false;
    }
    if (!options.migratePersistentStoresAutomatically || !options.inferMappingModelAutomatically) {
        zqSetError(error, migrationError(ZQStoreError::NeedsMigration,
                                         zqLocalized("The library was made by an older version of the application."),
                                         zqLocalized("Open it once with migration allowed.")));
        return false;
    }
    return true;
}

bool migrateInTransaction(ZQSQLiteConnection &connection, Migration &migration)
{
    // References must not follow the tables that are set aside, nor be enforced between the steps. What is sorted for
    // the new indexes of a large library belongs on the disk.
    if (!connection.execute(
            QStringLiteral("PRAGMA foreign_keys=OFF; PRAGMA legacy_alter_table=ON; PRAGMA temp_store=FILE"))) {
        return false;
    }
    ZQSQLiteTransaction transaction(connection);
    return transaction.isOpen() && migration.run() && !ZQCancellation::isCurrentCancelled() && transaction.commit();
}

} // namespace

bool zqMigrateStore(ZQSQLiteConnection &connection, const ZQStoreMetadata &metadata, const ZQManagedObjectModel &model,
                    const ZQStoreOptions &options, ZQError *error)
{
    if (!mayMigrate(metadata, model, options, error)) {
        return false;
    }
    const QString description = zqLocalized("The library could not be brought to this version; it is unchanged.");
    ZQError modelError;
    const auto oldModel = ZQManagedObjectModel::modelFromJSON(metadata.modelJSON, &modelError);
    if (!oldModel) {
        zqSetError(error,
                   migrationError(ZQStoreError::MigrationFailed, description, modelError.localizedDescription()));
        return false;
    }
    const QString version = metadata.versionIdentifiers.value(0, QStringLiteral("migration"));
    const QString copy = connection.path() + QStringLiteral(".before-") + QString(version).replace(u'/', u'_');
    QFile::remove(copy);
    ZQError copyError;
    if (!connection.copyTo(copy, &copyError)) {
        QFile::remove(copy);
        if (copyError.code == int(ZQStoreError::Cancelled)) {
            zqSetError(error, copyError);
            return false;
        }
        const auto code =
            copyError.code == int(ZQStoreError::DiskFull) ? ZQStoreError::DiskFull : ZQStoreError::MigrationFailed;
        zqSetError(error, migrationError(code, description, copyError.localizedDescription()));
        return false;
    }
    Migration migration(connection, *oldModel, model, copy);
    if (!migrateInTransaction(connection, migration)) {
        QFile::remove(copy);
        if (ZQCancellation::isCurrentCancelled()) {
            zqSetError(error, zqStoreErrorForSQLite(SQLITE_INTERRUPT, {}, connection.path()));
            return false;
        }
        const ZQError cause = connection.error();
        const QString reason = migration.problem().isEmpty() ? cause.localizedDescription() : migration.problem();
        // A damaged store can be recovered, in its old form, and migrated then.
        zqSetError(error, cause.code == int(ZQStoreError::Damaged) && migration.problem().isEmpty()
                              ? cause
                              : migrationError(ZQStoreError::MigrationFailed, description, reason));
        qCWarning(zqLogStore, "migration failed: %s (%s)", qUtf8Printable(reason),
                  qUtf8Printable(cause.userInfo.value(QStringLiteral("sqliteMessage")).toString()));
        return false;
    }
    if (!connection.execute(
            QStringLiteral("PRAGMA legacy_alter_table=OFF; PRAGMA foreign_keys=ON; PRAGMA temp_store=MEMORY"))) {
        zqSetError(error, connection.error());
        return false;
    }
    return true;
}
