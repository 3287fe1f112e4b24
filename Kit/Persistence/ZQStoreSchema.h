#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <QList>

class ZQSQLiteConnection;

// The SQL form of a model: which tables and columns a store has (ZQStoreIndexes.h: which indexes), and what it says of
// itself.
//
// A root entity's table has "id", "entity" (an entity code), "version" and a column for each attribute and to-one
// relationship of the family. A many-to-many pair has a join table. Deleting a row clears the references to it.

// One column of a root's table beyond the three of every row.
struct ZQStoreColumn
{
    QString name;
    ZQAttributeType type = ZQAttributeType::Integer64;
    bool indexed = false;
    QString referencedTable; // for a to-one relationship
};
QList<ZQStoreColumn> zqColumnsOfFamily(const ZQManagedObjectModel &model, const ZQEntityDescription *root);

// One join table, seen from the side whose column sorts first.
struct ZQJoinTable
{
    const ZQEntityDescription *owner = nullptr; // declares `relationship`
    const ZQRelationshipDescription *relationship = nullptr;
};
QList<ZQJoinTable> zqJoinTables(const ZQManagedObjectModel &model);

QList<const ZQEntityDescription *> zqRootEntities(const ZQManagedObjectModel &model);

QStringList zqTableStatements(const ZQManagedObjectModel &model);
// Gives the tables of `from` the columns that `to` has beyond them, empty in every row.
QStringList zqNewColumnStatements(const ZQManagedObjectModel &from, const ZQManagedObjectModel &to);
QStringList zqBookkeepingStatements(); // metadata and key sequences

bool zqExecuteAll(ZQSQLiteConnection &connection, const QStringList &statements);

// Entries of the metadata table beside those of the model.
inline const QString zqCreatedKey = QStringLiteral("created");     // milliseconds since 1970
inline const QString zqRecoveredKey = QStringLiteral("recovered"); // milliseconds since 1970; 0: not, or seen to
// "": closed properly and checked. "unclean": to be checked. "damaged": damage was met.
inline const QString zqSuspicionKey = QStringLiteral("suspicion");
// After a migration: versions whose content is not filled in yet, the names of the copies made before it, and how far
// whoever fills something in has come ("VERSION=KEY"). One a line.
inline const QString zqPendingVersionsKey = QStringLiteral("pendingVersions");
inline const QString zqPendingCopiesKey = QStringLiteral("copiesBeforeMigration");
inline const QString zqProgressKey = QStringLiteral("pendingProgress");
inline const QString zqLastKeysKey = QStringLiteral("lastKeysBeforeMigration"); // "TABLE=KEY"

// What is written in the metadata table about the model.
bool zqWriteModelMetadata(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model);
bool zqWriteMetadata(ZQSQLiteConnection &connection, const QString &key, const QVariant &value);
// An invalid value for an entry that is not there; nothing after an error, which the connection knows.
std::optional<QVariant> zqReadMetadata(ZQSQLiteConnection &connection, const QString &key);
// Nothing, with the error, when the database is no store.
std::optional<ZQStoreMetadata> zqReadStoreMetadata(ZQSQLiteConnection &connection, ZQError *error);

// Makes an empty store in an empty database, in the caller's transaction.
bool zqCreateStore(ZQSQLiteConnection &connection, const ZQManagedObjectModel &model, const QUuid &uuid);
