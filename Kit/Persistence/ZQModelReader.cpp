#include "Kit/Persistence/ZQModelReader.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QSet>

#include <algorithm>
#include <limits>

namespace {

struct TypeName
{
    const char *name;
    ZQAttributeType type;
};
constexpr TypeName typeNames[] = {
    {"string", ZQAttributeType::String},       {"boolean", ZQAttributeType::Boolean},
    {"integer16", ZQAttributeType::Integer16}, {"integer32", ZQAttributeType::Integer32},
    {"integer64", ZQAttributeType::Integer64}, {"float", ZQAttributeType::Float},
    {"double", ZQAttributeType::Double},       {"date", ZQAttributeType::Date},
    {"binary", ZQAttributeType::Binary},
};

struct RuleName
{
    const char *name;
    ZQDeleteRule rule;
};
constexpr RuleName ruleNames[] = {
    {"nullify", ZQDeleteRule::Nullify}, {"cascade", ZQDeleteRule::Cascade}, {"deny", ZQDeleteRule::Deny}};

template <class Table>
auto findName(const Table &table, const QString &name)
{
    return std::find_if(std::begin(table), std::end(table),
                        [&name](const auto &entry) { return name == QLatin1String(entry.name); });
}

QString columnFor(const QString &property)
{
    static const QSet<QString> reserved{QStringLiteral("id"), QStringLiteral("entity"), QStringLiteral("version")};
    return reserved.contains(property.toLower()) ? property + u'_' : property;
}

bool isIdentifier(const QString &name)
{
    return !name.isEmpty() && std::all_of(name.begin(), name.end(), [](QChar c) {
        return c == u'_' || (c < QChar(128) && c.isLetterOrNumber());
    });
}

QString slash(const QString &a, const QString &b)
{
    return a + u'/' + b;
}

// The column of an attribute or a to-one relationship; empty when the entity has none of this name.
QString columnOfProperty(const ZQEntityDescription &entity, const QString &property)
{
    if (const ZQAttributeDescription *attribute = entity.attribute(property)) {
        return attribute->columnName;
    }
    const ZQRelationshipDescription *relationship = entity.relationship(property);
    return relationship && !relationship->toMany ? relationship->columnName : QString();
}

QVariant integerFromJSON(const QJsonValue &json, double low, double high)
{
    const double number = json.toDouble();
    return json.isDouble() && number >= low && number <= high ? json.toVariant().toLongLong() : QVariant();
}

} // namespace

QVariant zqValueFromJSON(const QJsonValue &json, ZQAttributeType type)
{
    switch (type) {
    case ZQAttributeType::String:
        return json.isString() ? json.toString() : QVariant();
    case ZQAttributeType::Boolean:
        return json.isBool()                           ? json.toBool()
               : integerFromJSON(json, 0, 1).isValid() ? QVariant(json.toInt() != 0)
                                                       : QVariant();
    case ZQAttributeType::Integer16:
        return integerFromJSON(json, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max());
    case ZQAttributeType::Integer32:
        return integerFromJSON(json, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max());
    case ZQAttributeType::Integer64:
        return integerFromJSON(json, -9.2e18, 9.2e18);
    case ZQAttributeType::Float:
    case ZQAttributeType::Double:
        return json.isDouble() ? QVariant(json.toDouble()) : QVariant();
    case ZQAttributeType::Date: {
        const QDateTime date = json.isDouble() ? QDateTime::fromMSecsSinceEpoch(json.toInteger(), Qt::UTC)
                                               : QDateTime::fromString(json.toString(), Qt::ISODateWithMs).toUTC();
        return date.isValid() ? date : QVariant();
    }
    case ZQAttributeType::Binary:
        return json.isString() ? QByteArray::fromBase64(json.toString().toLatin1()) : QVariant();
    }
    return {};
}

bool ZQModelReader::fail(const QString &where, const QString &what)
{
    m_problem = where.isEmpty() ? what : where + QStringLiteral(": ") + what;
    return false;
}

ZQEntityDescription *ZQModelReader::find(const QString &name) const
{
    const auto found = std::find_if(m_entities.begin(), m_entities.end(),
                                    [&name](const auto &entity) { return entity->name == name; });
    return found == m_entities.end() ? nullptr : found->get();
}

bool ZQModelReader::read(const QByteArray &json)
{
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parse);
    if (!document.isObject()) {
        return fail({}, QStringLiteral("not a JSON object (%1 at byte %2)").arg(parse.errorString()).arg(parse.offset));
    }
    const QJsonArray identifiers = document[QStringLiteral("versionIdentifiers")].toArray();
    for (const QJsonValue &identifier : identifiers) {
        m_versionIdentifiers.append(identifier.toString());
    }
    return readEntities(document[QStringLiteral("entities")].toArray()) && linkParents() && readProperties() &&
           checkColumns() && linkRelationships() &&
           std::all_of(m_entities.begin(), m_entities.end(),
                       [this](const auto &entity) { return readIndexes(*entity); });
}

bool ZQModelReader::readEntities(const QJsonArray &list)
{
    QSet<QString> seen;
    for (const QJsonValue &value : list) {
        const QJsonObject source = value.toObject();
        auto entity = std::make_unique<ZQEntityDescription>();
        entity->name = source[QStringLiteral("name")].toString();
        if (!isIdentifier(entity->name)) {
            return fail(entity->name, QStringLiteral("an entity needs a name of letters, digits and underscores"));
        }
        if (entity->name.startsWith(u"sqlite_", Qt::CaseInsensitive) ||
            entity->name.startsWith(u"zq_", Qt::CaseInsensitive)) {
            return fail(entity->name, QStringLiteral("the name is reserved"));
        }
        if (seen.contains(entity->name.toLower())) {
            return fail(entity->name, QStringLiteral("two entities have this name"));
        }
        seen.insert(entity->name.toLower());
        entity->isAbstract = source[QStringLiteral("abstract")].toBool();
        entity->renamingIdentifier = source[QStringLiteral("renamingIdentifier")].toString();
        m_sources.insert(entity->name, source);
        m_entities.push_back(std::move(entity));
    }
    QStringList names = m_sources.keys();
    names.sort();
    for (const auto &entity : m_entities) {
        entity->code = int(names.indexOf(entity->name)) + 1;
    }
    return !m_entities.empty() || fail({}, QStringLiteral("the model has no entities"));
}

bool ZQModelReader::linkParents()
{
    for (const auto &entity : m_entities) {
        const QString parentName = m_sources.value(entity->name)[QStringLiteral("parent")].toString();
        if (parentName.isEmpty()) {
            continue;
        }
        ZQEntityDescription *parent = find(parentName);
        if (!parent) {
            return fail(entity->name, QStringLiteral("the parent \"%1\" does not exist").arg(parentName));
        }
        entity->parent = parent;
        parent->subentities.push_back(entity.get());
    }
    for (const auto &entity : m_entities) {
        if (!entity->parent) {
            m_parentsFirst.push_back(entity.get());
        }
    }
    for (size_t i = 0; i < m_parentsFirst.size(); ++i) {
        ZQEntityDescription *entity = m_parentsFirst[i];
        entity->root = entity->parent ? entity->parent->root : entity;
        entity->tableName = entity->root->name;
        for (const ZQEntityDescription *subentity : entity->subentities) {
            m_parentsFirst.push_back(find(subentity->name));
        }
    }
    return m_parentsFirst.size() == m_entities.size() || fail({}, QStringLiteral("entities are parents of each other"));
}

bool ZQModelReader::readProperties()
{
    for (ZQEntityDescription *entity : m_parentsFirst) {
        if (entity->parent) {
            entity->attributes = entity->parent->attributes;
            entity->relationships = entity->parent->relationships;
            for (const ZQRelationshipDescription &inherited : entity->relationships) {
                m_declaring[slash(entity->name, inherited.name)] =
                    m_declaring.value(slash(entity->parent->name, inherited.name));
            }
        }
        const QJsonObject source = m_sources.value(entity->name);
        if (!readAttributes(*entity, source) || !readRelationships(*entity, source) || !checkNames(*entity)) {
            return false;
        }
    }
    return true;
}

bool ZQModelReader::readAttributes(ZQEntityDescription &entity, const QJsonObject &source)
{
    const QJsonArray list = source[QStringLiteral("attributes")].toArray();
    for (const QJsonValue &value : list) {
        const QJsonObject json = value.toObject();
        ZQAttributeDescription attribute;
        attribute.name = json[QStringLiteral("name")].toString();
        const QString where = entity.name + u'.' + attribute.name;
        const QString typeName = json[QStringLiteral("type")].toString();
        const auto type = findName(typeNames, typeName);
        if (type == std::end(typeNames)) {
            return fail(where, QStringLiteral("unknown type \"%1\"").arg(typeName));
        }
        attribute.type = type->type;
        attribute.optional = json[QStringLiteral("optional")].toBool(true);
        attribute.indexed = json[QStringLiteral("indexed")].toBool();
        attribute.renamingIdentifier = json[QStringLiteral("renamingIdentifier")].toString();
        attribute.columnName = columnFor(attribute.name);
        const QJsonValue defaultValue = json[QStringLiteral("default")];
        if (!defaultValue.isUndefined() && !defaultValue.isNull()) {
            attribute.defaultValue = zqValueFromJSON(defaultValue, attribute.type);
            if (!attribute.defaultValue.isValid()) {
                return fail(where, QStringLiteral("the default does not fit the type \"%1\"").arg(typeName));
            }
        }
        entity.attributes.push_back(attribute);
    }
    return true;
}

bool ZQModelReader::readRelationships(ZQEntityDescription &entity, const QJsonObject &source)
{
    const QJsonArray list = source[QStringLiteral("relationships")].toArray();
    for (const QJsonValue &value : list) {
        const QJsonObject json = value.toObject();
        ZQRelationshipDescription relationship;
        relationship.name = json[QStringLiteral("name")].toString();
        relationship.destinationName = json[QStringLiteral("destination")].toString();
        relationship.inverseName = json[QStringLiteral("inverse")].toString();
        relationship.renamingIdentifier = json[QStringLiteral("renamingIdentifier")].toString();
        relationship.toMany = json[QStringLiteral("toMany")].toBool();
        const QString ruleName = json[QStringLiteral("deleteRule")].toString(QStringLiteral("nullify"));
        const auto rule = findName(ruleNames, ruleName);
        if (rule == std::end(ruleNames)) {
            return fail(entity.name + u'.' + relationship.name,
                        QStringLiteral("unknown delete rule \"%1\"").arg(ruleName));
        }
        relationship.deleteRule = rule->rule;
        if (!relationship.toMany) {
            relationship.columnName = columnFor(relationship.name);
        }
        m_declaring[slash(entity.name, relationship.name)] = entity.name;
        entity.relationships.push_back(relationship);
    }
    return true;
}

bool ZQModelReader::checkNames(const ZQEntityDescription &entity)
{
    QSet<QString> seen;
    const auto check = [&](const QString &name) {
        if (!isIdentifier(name)) {
            return fail(entity.name + u'.' + name,
                        QStringLiteral("a property needs a name of letters, digits and underscores"));
        }
        if (seen.contains(name.toLower())) {
            return fail(entity.name + u'.' + name, QStringLiteral("two properties have this name"));
        }
        seen.insert(name.toLower());
        return true;
    };
    for (const ZQAttributeDescription &attribute : entity.attributes) {
        if (!check(attribute.name)) {
            return false;
        }
    }
    for (const ZQRelationshipDescription &relationship : entity.relationships) {
        if (!check(relationship.name)) {
            return false;
        }
    }
    return true;
}

// Entities of one family share a table, so a column that two of them declare must hold the same thing.
bool ZQModelReader::checkColumns()
{
    QHash<QString, QString> forms; // "TABLE/COLUMN" to what is stored there
    const auto check = [&](const ZQEntityDescription &entity, const QString &column, const QString &form) {
        QString &known = forms[slash(entity.tableName, column.toLower())];
        if (!known.isEmpty() && known != form) {
            return fail(entity.name + u'.' + column,
                        QStringLiteral("another entity of the family stores something else "
                                       "under this name"));
        }
        known = form;
        return true;
    };
    for (const auto &entity : m_entities) {
        for (const ZQAttributeDescription &attribute : entity->attributes) {
            if (!check(*entity, attribute.columnName, attribute.columnName + QString::number(int(attribute.type)))) {
                return false;
            }
        }
        for (const ZQRelationshipDescription &relationship : entity->relationships) {
            const ZQEntityDescription *destination = find(relationship.destinationName);
            if (!relationship.toMany && destination &&
                !check(*entity, relationship.columnName, relationship.columnName + destination->tableName)) {
                return false;
            }
        }
    }
    return true;
}

bool ZQModelReader::linkRelationships()
{
    for (const auto &entity : m_entities) {
        for (ZQRelationshipDescription &relationship : entity->relationships) {
            if (!linkRelationship(*entity, relationship)) {
                return false;
            }
        }
    }
    for (const auto &entity : m_entities) {
        for (ZQRelationshipDescription &relationship : entity->relationships) {
            if (relationship.isManyToMany()) {
                nameJoinTable(relationship);
            }
        }
    }
    return true;
}

bool ZQModelReader::linkRelationship(const ZQEntityDescription &owner, ZQRelationshipDescription &relationship)
{
    const QString where = owner.name + u'.' + relationship.name;
    relationship.destination = find(relationship.destinationName);
    if (!relationship.destination) {
        return fail(where, QStringLiteral("the destination \"%1\" does not exist").arg(relationship.destinationName));
    }
    relationship.inverse = relationship.destination->relationship(relationship.inverseName);
    if (!relationship.inverse) {
        return fail(where, QStringLiteral("the inverse \"%1\" does not exist").arg(relationship.inverseName));
    }
    const QString ownDeclaring = m_declaring[slash(owner.name, relationship.name)];
    const QString inverseDeclaring = m_declaring[slash(relationship.destinationName, relationship.inverseName)];
    if (relationship.inverse->inverseName != relationship.name ||
        relationship.inverse->destinationName != ownDeclaring || relationship.destinationName != inverseDeclaring) {
        return fail(where, QStringLiteral("the inverse \"%1\" does not lead back here").arg(relationship.inverseName));
    }
    if (ownDeclaring == inverseDeclaring && relationship.name == relationship.inverseName) {
        return fail(where, QStringLiteral("a relationship cannot be its own inverse"));
    }
    return true;
}

void ZQModelReader::nameJoinTable(ZQRelationshipDescription &relationship) const
{
    const QString own = relationship.inverse->destinationName + u'_' + relationship.name;
    const QString other = relationship.destinationName + u'_' + relationship.inverseName;
    relationship.joinTable =
        QStringLiteral("zq_join_") + std::min(own, other) + QStringLiteral("__") + std::max(own, other);
    relationship.joinOwnColumn = own;
    relationship.joinOtherColumn = other;
}

bool ZQModelReader::readIndexes(ZQEntityDescription &entity)
{
    const QJsonValue list = m_sources.value(entity.name).value(QStringLiteral("indexes"));
    if (!list.isUndefined() && !list.isArray()) {
        return fail(entity.name, QStringLiteral("\"indexes\" is not a list"));
    }
    for (const QJsonValue &value : list.toArray()) {
        ZQIndexDescription index;
        if (!readIndex(entity, value.toObject(), index)) {
            return false;
        }
        entity.indexes.push_back(std::move(index));
    }
    return true;
}

bool ZQModelReader::readIndex(const ZQEntityDescription &entity, const QJsonObject &source, ZQIndexDescription &index)
{
    static const QSet<QString> known{QStringLiteral("properties"), QStringLiteral("where"), QStringLiteral("covering")};
    for (const QString &key : source.keys()) {
        if (!known.contains(key)) {
            return fail(entity.name, QStringLiteral("an index has no \"%1\"").arg(key));
        }
    }
    for (const QJsonValue &value : source[QStringLiteral("properties")].toArray()) {
        const QString text = value.toString();
        const bool descending = text.startsWith(u'-');
        const QString property = descending ? text.mid(1) : text;
        const QString column = columnOfProperty(entity, property);
        if (column.isEmpty()) {
            return fail(entity.name + u'.' + property,
                        QStringLiteral("an index needs attributes or to-one relationships"));
        }
        if (std::any_of(index.columns.begin(), index.columns.end(),
                        [&column](const auto &other) { return other.name == column; })) {
            return fail(entity.name + u'.' + property, QStringLiteral("is twice in one index"));
        }
        index.columns.push_back({column, descending});
    }
    if (index.columns.empty()) {
        return fail(entity.name, QStringLiteral("an index needs a list of \"properties\""));
    }
    const QJsonValue covering = source[QStringLiteral("covering")];
    const QJsonValue where = source[QStringLiteral("where")];
    if ((!covering.isUndefined() && !covering.isBool()) || (!where.isUndefined() && !where.isObject())) {
        return fail(entity.name,
                    QStringLiteral("an index is \"covering\" or not, and its \"where\" maps properties to values"));
    }
    index.isCovering = covering.toBool();
    const QJsonObject conditions = where.toObject();
    for (auto entry = conditions.begin(); entry != conditions.end(); ++entry) {
        ZQIndexDescription::Condition condition;
        if (!readIndexCondition(entity, entry.key(), entry.value(), condition)) {
            return false;
        }
        index.conditions.push_back(condition);
    }
    return true;
}

bool ZQModelReader::readIndexCondition(const ZQEntityDescription &entity, const QString &property,
                                       const QJsonValue &value, ZQIndexDescription::Condition &condition)
{
    using Kind = ZQIndexDescription::Condition::Kind;
    const QString where = entity.name + u'.' + property;
    condition.column = columnOfProperty(entity, property);
    if (condition.column.isEmpty()) {
        return fail(where, QStringLiteral("an index has no condition on what is no attribute or to-one relationship"));
    }
    if (value.isNull()) {
        condition.kind = Kind::IsNull;
        return true;
    }
    if (value.isObject()) {
        condition.kind = Kind::IsNotNull;
        return value.toObject() == QJsonObject{{QStringLiteral("not"), QJsonValue::Null}} ||
               fail(where, QStringLiteral("the condition of an index is a value, null or {\"not\": null}"));
    }
    const ZQAttributeDescription *attribute = entity.attribute(property);
    const bool isNumber =
        attribute && (attribute->type == ZQAttributeType::Boolean || attribute->type == ZQAttributeType::Integer16 ||
                      attribute->type == ZQAttributeType::Integer32);
    const QVariant number = isNumber ? zqValueFromJSON(value, attribute->type) : QVariant();
    condition.value = number.toLongLong();
    return number.isValid() ||
           fail(where,
                QStringLiteral("the condition of an index does not fit the type; only booleans and whole numbers "
                               "of 16 and 32 bits have values there"));
}
