#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <optional>

// Where a key path's values are in the tables.

enum class ZQSQLType { Null, Number, Text, Date, Binary, Object };

struct ZQSQLPath
{
    QString from;  // the tables of the hops, joined; empty when the value is in the starting row
    QString where; // ties `from` to the starting row
    QString value; // the column
    ZQSQLType type = ZQSQLType::Null;
    const ZQEntityDescription *root = nullptr; // of an Object
    bool isToMany = false;
    QString startKey; // to-many: the key of the object that has the relationship; null when a to-one before it is

    QString ownColumn; // one many-to-many hop from the starting row: the join table's column that holds that row's key

    bool isColumn() const { return from.isEmpty(); }
    // To-one only: the value as one expression over the starting row.
    QString scalar() const;
};

// Makes aliases that are unique in one statement.
class ZQSQLAliases
{
public:
    explicit ZQSQLAliases(const QString &prefix) : m_prefix(prefix) {}
    QString next() { return m_prefix + QString::number(++m_count); }

private:
    QString m_prefix;
    int m_count = 0;
};

QString zqSQLName(const QString &name);                         // quoted
QString zqSQLColumn(const QString &alias, const QString &name); // "alias"."name"
ZQSQLType zqSQLTypeOfAttribute(ZQAttributeType type);

// Follows `keys` from a row of `entity` aliased as `alias`; no keys: the object itself. Nothing, with an error that
// names the path, for a key the entity does not have or a key below an attribute.
std::optional<ZQSQLPath> zqSQLPathForKeys(const QStringList &keys, const ZQEntityDescription *entity,
                                          const QString &alias, ZQSQLAliases *aliases, ZQError *error);
