#include "Kit/Persistence/ZQSQLPath.h"

#include "Kit/Foundation/ZQLocalized.h"

QString zqSQLName(const QString &name)
{
    QString escaped = name;
    return u'"' + escaped.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString zqSQLColumn(const QString &alias, const QString &name)
{
    return zqSQLName(alias) + u'.' + zqSQLName(name);
}

ZQSQLType zqSQLTypeOfAttribute(ZQAttributeType type)
{
    switch (type) {
    case ZQAttributeType::String:
        return ZQSQLType::Text;
    case ZQAttributeType::Date:
        return ZQSQLType::Date;
    case ZQAttributeType::Binary:
        return ZQSQLType::Binary;
    default:
        return ZQSQLType::Number;
    }
}

QString ZQSQLPath::scalar() const
{
    return from.isEmpty() ? value : QStringLiteral("(SELECT %1 FROM %2 WHERE %3)").arg(value, from, where);
}

namespace {

const QString idColumn = QStringLiteral("id");

// One step after another along the path: the object reached is known by its key, and by its row once that is joined.
class Walk
{
public:
    Walk(const ZQEntityDescription *entity, const QString &alias, ZQSQLAliases *aliases)
        : m_entity(entity), m_alias(alias), m_key(zqSQLColumn(alias, idColumn)), m_aliases(aliases)
    {
    }

    const ZQEntityDescription *entity() const { return m_entity; }

    void follow(const ZQRelationshipDescription &relationship)
    {
        if (relationship.toMany) {
            followToMany(relationship);
        } else {
            m_key = column(relationship.columnName);
            m_alias.clear();
            m_keyIsCertain = false;
        }
        m_entity = relationship.destination;
    }

    QString column(const QString &name)
    {
        if (m_alias.isEmpty()) {
            const QString key = m_key;
            // A to-one may name nothing, and its null then counts as a value; a row of a join table names a row.
            joinTable(m_entity->tableName, m_keyIsCertain ? "JOIN" : "LEFT JOIN", idColumn, key);
        }
        return zqSQLColumn(m_alias, name);
    }

    ZQSQLPath finish(const QString &value, ZQSQLType type)
    {
        m_path.value = value;
        m_path.type = type;
        m_path.root = type == ZQSQLType::Object ? m_entity->root : nullptr;
        return m_path;
    }
    const QString &key() const { return m_key; }

private:
    void joinTable(const QString &table, const char *join, const QString &column, const QString &key)
    {
        m_alias = m_aliases->next();
        const QString source = zqSQLName(table) + QStringLiteral(" AS ") + zqSQLName(m_alias);
        const QString condition = zqSQLColumn(m_alias, column) + QStringLiteral(" = ") + key;
        if (m_path.from.isEmpty()) {
            m_path.from = source;
            m_path.where = condition;
        } else {
            m_path.from += QStringLiteral(" %1 %2 ON %3").arg(QLatin1String(join), source, condition);
        }
    }

    // Entities of one family may share a column, so the column alone does not say whose relationship it is.
    void requireKind(const ZQEntityDescription *entity)
    {
        if (!entity->parent) {
            return;
        }
        QStringList codes;
        for (const int code : entity->codesIncludingSubentities()) {
            codes.append(QString::number(code));
        }
        QString &condition = m_path.from.contains(QStringLiteral(" ON ")) ? m_path.from : m_path.where;
        condition +=
            QStringLiteral(" AND %1 IN (%2)").arg(zqSQLColumn(m_alias, QStringLiteral("entity")), codes.join(u','));
    }

    void followToMany(const ZQRelationshipDescription &relationship)
    {
        const bool isFirstHop = !m_alias.isEmpty() && m_path.from.isEmpty();
        m_path.ownColumn.clear();
        QString key = m_key;
        if (!m_path.isToMany) {
            m_path.isToMany = true;
            if (!m_path.from.isEmpty()) {
                key = QStringLiteral("(SELECT %1 FROM %2 WHERE %3)").arg(key, m_path.from, m_path.where);
            }
            m_path.startKey = key;
            m_path.from.clear();
            m_path.where.clear();
        }
        if (relationship.isManyToMany()) {
            joinTable(relationship.joinTable, "JOIN", relationship.joinOwnColumn, key);
            m_path.ownColumn = isFirstHop ? zqSQLColumn(m_alias, relationship.joinOwnColumn) : QString();
            m_key = zqSQLColumn(m_alias, relationship.joinOtherColumn);
            m_alias.clear();
            m_keyIsCertain = true;
        } else {
            joinTable(relationship.destination->tableName, "JOIN", relationship.inverse->columnName, key);
            m_key = zqSQLColumn(m_alias, idColumn);
            requireKind(relationship.destination);
        }
    }

    const ZQEntityDescription *m_entity;
    QString m_alias; // empty: the row is not joined
    QString m_key;
    bool m_keyIsCertain = false;
    ZQSQLAliases *m_aliases;
    ZQSQLPath m_path;
};

std::nullopt_t fail(const QStringList &keys, qsizetype index, const ZQEntityDescription *entity, ZQError *error)
{
    zqSetError(error, ZQError::with(QStringLiteral("ZQPredicate"), 3,
                                    zqFormat(zqLocalized("The key path \"%@\" leads nowhere:"), {keys.join(u'.')}),
                                    zqFormat(zqLocalized("%@ has no property \"%@\" to follow."),
                                             {entity ? entity->name : QString(), keys[index]})));
    return std::nullopt;
}

} // namespace

std::optional<ZQSQLPath> zqSQLPathForKeys(const QStringList &keys, const ZQEntityDescription *entity,
                                          const QString &alias, ZQSQLAliases *aliases, ZQError *error)
{
    Walk walk(entity, alias, aliases);
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (const ZQRelationshipDescription *relationship = walk.entity()->relationship(keys[i])) {
            walk.follow(*relationship);
            continue;
        }
        const ZQAttributeDescription *attribute = walk.entity()->attribute(keys[i]);
        if (!attribute) {
            return fail(keys, i, walk.entity(), error);
        }
        if (i + 1 < keys.size()) {
            return fail(keys, i + 1, walk.entity(), error);
        }
        const QString column = walk.column(attribute->columnName);
        return walk.finish(column, zqSQLTypeOfAttribute(attribute->type));
    }
    return walk.finish(walk.key(), ZQSQLType::Object);
}
