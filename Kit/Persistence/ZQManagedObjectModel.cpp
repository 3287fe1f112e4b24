#include "Kit/Persistence/ZQManagedObjectModel.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQModelReader.h"

#include <QCryptographicHash>

#include <algorithm>

bool ZQEntityDescription::isKindOf(const ZQEntityDescription *other) const
{
    for (const ZQEntityDescription *entity = this; entity; entity = entity->parent) {
        if (entity == other) {
            return true;
        }
    }
    return false;
}

QList<int> ZQEntityDescription::codesIncludingSubentities() const
{
    QList<int> codes{code};
    for (const ZQEntityDescription *subentity : subentities) {
        codes += subentity->codesIncludingSubentities();
    }
    return codes;
}

const ZQAttributeDescription *ZQEntityDescription::attribute(const QString &attributeName) const
{
    for (const ZQAttributeDescription &attribute : attributes) {
        if (attribute.name == attributeName) {
            return &attribute;
        }
    }
    return nullptr;
}

const ZQRelationshipDescription *ZQEntityDescription::relationship(const QString &relationshipName) const
{
    for (const ZQRelationshipDescription &relationship : relationships) {
        if (relationship.name == relationshipName) {
            return &relationship;
        }
    }
    return nullptr;
}

QByteArray ZQEntityDescription::versionHash() const
{
    // Sorted, so that the order of a model file does not matter; indexes and defaults do not change a row's form.
    QStringList parts;
    for (const ZQAttributeDescription &attribute : attributes) {
        parts.append(QStringLiteral("a/%1/%2/%3").arg(attribute.name).arg(int(attribute.type)).arg(attribute.optional));
    }
    for (const ZQRelationshipDescription &relationship : relationships) {
        parts.append(QStringLiteral("r/%1/%2/%3/%4")
                         .arg(relationship.name, relationship.destinationName, relationship.inverseName)
                         .arg(relationship.toMany));
    }
    parts.sort();
    parts.prepend(QStringLiteral("e/%1/%2/%3").arg(name, parent ? parent->name : QString()).arg(isAbstract));
    return QCryptographicHash::hash(parts.join(u'\n').toUtf8(), QCryptographicHash::Sha256).toHex();
}

std::shared_ptr<const ZQManagedObjectModel> ZQManagedObjectModel::modelFromJSON(const QByteArray &json, ZQError *error)
{
    ZQModelReader reader;
    if (!reader.read(json)) {
        zqSetError(error, ZQError::with(QStringLiteral("ZQModel"), 1, zqLocalized("The data model cannot be read."),
                                        reader.problem()));
        return nullptr;
    }
    auto model = std::make_shared<ZQManagedObjectModel>();
    model->m_versionIdentifiers = reader.versionIdentifiers();
    model->m_entities = reader.takeEntities();
    model->m_json = json;
    for (const auto &entity : model->m_entities) {
        model->m_byName.insert(entity->name, entity.get());
    }
    return model;
}

const ZQEntityDescription *ZQManagedObjectModel::entity(const QString &name) const
{
    return m_byName.value(name);
}

const ZQEntityDescription *ZQManagedObjectModel::entityWithCode(int code) const
{
    const auto found =
        std::find_if(m_entities.begin(), m_entities.end(), [code](const auto &entity) { return entity->code == code; });
    return found == m_entities.end() ? nullptr : found->get();
}

QHash<QString, QByteArray> ZQManagedObjectModel::entityVersionHashes() const
{
    QHash<QString, QByteArray> hashes;
    for (const auto &entity : m_entities) {
        hashes.insert(entity->name, entity->versionHash());
    }
    return hashes;
}
