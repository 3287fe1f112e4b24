#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

// What a library's entities look like: read from a JSON model file, immutable afterwards, shared by all threads.

enum class ZQAttributeType { String, Boolean, Integer16, Integer32, Integer64, Float, Double, Date, Binary };

enum class ZQDeleteRule { Nullify, Cascade, Deny };

class ZQEntityDescription;

struct ZQAttributeDescription
{
    QString name;
    ZQAttributeType type = ZQAttributeType::String;
    bool optional = true;
    bool indexed = false;
    QVariant defaultValue;      // invalid: null
    QString renamingIdentifier; // the name this attribute had in older versions; empty: unchanged
    QString columnName;         // in the root entity's table
};

struct ZQRelationshipDescription
{
    QString name;
    QString destinationName;
    QString inverseName;
    QString renamingIdentifier;
    bool toMany = false;
    ZQDeleteRule deleteRule = ZQDeleteRule::Nullify;

    const ZQEntityDescription *destination = nullptr;
    const ZQRelationshipDescription *inverse = nullptr; // belongs to `destination` or one of its parents

    // To-one: the column that holds the target's key, in this entity's table.
    QString columnName;
    // Both sides to-many: the join table, the column of this side and the column of the other side. Both sides of the
    // pair name the same table. Empty otherwise.
    QString joinTable;
    QString joinOwnColumn;
    QString joinOtherColumn;

    bool isManyToMany() const { return toMany && inverse && inverse->toMany; }
};

// An index of a family's table, beside those that each "indexed" attribute and each to-one relationship has.
struct ZQIndexDescription
{
    struct Column
    {
        QString name;
        bool descending = false;
    };
    // What a row must hold to be in a partial index.
    struct Condition
    {
        enum class Kind { IsValue, IsNull, IsNotNull };
        QString column;
        Kind kind = Kind::IsValue;
        qint64 value = 0;
    };

    std::vector<Column> columns;
    std::vector<Condition> conditions; // none: every row is in it
    bool isCovering = false;           // names its rows without a look at the table
};

// One entity. An entity with a parent shares its root's table and inherits all properties, so `attributes` and
// `relationships` list the inherited ones first, in the order of the model file.
class ZQEntityDescription
{
public:
    QString name;
    QString renamingIdentifier;
    bool isAbstract = false;
    const ZQEntityDescription *parent = nullptr;
    const ZQEntityDescription *root = nullptr;            // itself for a root
    std::vector<const ZQEntityDescription *> subentities; // direct ones
    QString tableName;                                    // the root's
    int code = 0; // the value of the entity column for rows of exactly this entity; unique within the model

    std::vector<ZQAttributeDescription> attributes;
    std::vector<ZQRelationshipDescription> relationships;
    std::vector<ZQIndexDescription> indexes; // those written with this entity; not inherited

    bool isKindOf(const ZQEntityDescription *other) const;
    // The codes of this entity and all entities below it.
    QList<int> codesIncludingSubentities() const;
    const ZQAttributeDescription *attribute(const QString &attributeName) const;          // null when there is none
    const ZQRelationshipDescription *relationship(const QString &relationshipName) const; // null when there is none

    // A digest of everything that decides the entity's stored form (names, types, optionality, relationships, parent).
    QByteArray versionHash() const;
};

class ZQManagedObjectModel
{
public:
    // Reads one model from the JSON text of a `.zqmodel` version file:
    //   { "versionIdentifiers": ["Version7"],
    //     "entities": [ { "name", "parent"?, "abstract"?, "renamingIdentifier"?,
    //                     "attributes": [ { "name", "type", "optional"?, "indexed"?, "default"?, "renamingIdentifier"?
    //                     } ], "relationships": [ { "name", "destination", "inverse", "toMany"?, "deleteRule"?,
    //                                          "renamingIdentifier"? } ],
    //                     "indexes"?: [ { "properties", "where"?, "covering"? } ] } ] }
    // An index lists attributes and to-one relationships, "-NAME" for a descending one. "where" maps a property to the
    // boolean or whole number it must hold, null, or {"not": null}; only such rows are in the index. A covering index
    // also holds which objects its rows are, so that it alone answers a list of identifiers in its order, or a count.
    // Types are written as the names of `ZQAttributeType` in lower camel case ("string", "integer32", …), rules as
    // "nullify", "cascade", "deny". Null with an error that names the entity and property at fault.
    static std::shared_ptr<const ZQManagedObjectModel> modelFromJSON(const QByteArray &json, ZQError *error = nullptr);

    QStringList versionIdentifiers() const { return m_versionIdentifiers; }
    const std::vector<std::unique_ptr<ZQEntityDescription>> &entities() const { return m_entities; }
    const ZQEntityDescription *entity(const QString &name) const; // null when there is none
    const ZQEntityDescription *entityWithCode(int code) const;    // null when there is none

    // Entity name to version hash; two models are compatible when these are equal.
    QHash<QString, QByteArray> entityVersionHashes() const;
    // The model's own JSON, kept in each store it makes so that a later model can migrate it.
    QByteArray json() const { return m_json; }

private:
    QStringList m_versionIdentifiers;
    std::vector<std::unique_ptr<ZQEntityDescription>> m_entities;
    QHash<QString, const ZQEntityDescription *> m_byName;
    QByteArray m_json;
};
