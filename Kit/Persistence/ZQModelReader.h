#pragma once

#include "Kit/Persistence/ZQManagedObjectModel.h"

#include <QHash>
#include <QJsonObject>

// Turns the JSON of a model file into linked entity descriptions. One use an object.
//
// Tables and columns carry the names of entities and properties; a name that the store keeps for itself gets "_"
// appended. Entity codes follow the order of names, so that models with equal hashes agree on them.
class ZQModelReader
{
public:
    bool read(const QByteArray &json);
    QString problem() const { return m_problem; } // what is wrong, naming entity and property
    QStringList versionIdentifiers() const { return m_versionIdentifiers; }
    std::vector<std::unique_ptr<ZQEntityDescription>> takeEntities() { return std::move(m_entities); }

private:
    bool fail(const QString &where, const QString &what);
    bool readEntities(const QJsonArray &list);
    bool linkParents();
    bool readProperties();
    bool readAttributes(ZQEntityDescription &entity, const QJsonObject &source);
    bool readRelationships(ZQEntityDescription &entity, const QJsonObject &source);
    bool checkNames(const ZQEntityDescription &entity);
    bool checkColumns();
    bool linkRelationships();
    bool linkRelationship(const ZQEntityDescription &owner, ZQRelationshipDescription &relationship);
    bool readIndexes(ZQEntityDescription &entity);
    bool readIndex(const ZQEntityDescription &entity, const QJsonObject &source, ZQIndexDescription &index);
    bool readIndexCondition(const ZQEntityDescription &entity, const QString &property, const QJsonValue &value,
                            ZQIndexDescription::Condition &condition);
    void nameJoinTable(ZQRelationshipDescription &relationship) const;
    ZQEntityDescription *find(const QString &name) const;

    QString m_problem;
    QStringList m_versionIdentifiers;
    std::vector<std::unique_ptr<ZQEntityDescription>> m_entities;
    std::vector<ZQEntityDescription *> m_parentsFirst;
    QHash<QString, QJsonObject> m_sources;
    // The entity each relationship was written in, by "ENTITY/RELATIONSHIP" of every entity that has it.
    QHash<QString, QString> m_declaring;
};

// The value of an attribute's type that JSON stands for; invalid when it does not fit. Dates are ISO 8601 texts or
// milliseconds since 1970, binaries base64.
QVariant zqValueFromJSON(const QJsonValue &json, ZQAttributeType type);
