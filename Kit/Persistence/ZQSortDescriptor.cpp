#include "Kit/Persistence/ZQSortDescriptor.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Persistence/ZQCollator.h"
#include "Kit/Persistence/ZQManagedObject.h"
#include "Kit/Persistence/ZQSQLPath.h"
#include "Kit/Persistence/ZQScalar.h"

#include <QHash>

namespace {

std::nullopt_t fail(const QString &keyPath, ZQError *error)
{
    zqSetError(error,
               ZQError::with(QStringLiteral("ZQSortDescriptor"), 1,
                             zqFormat(zqLocalized("Objects cannot be sorted by \"%@\"."), {keyPath}),
                             zqLocalized("A sort key is an attribute, or to-one relationships leading to one.")));
    return std::nullopt;
}

// The rows that the sort keys of one statement reach, each joined once.
class Joins
{
public:
    Joins(const ZQEntityDescription *entity, const QString &alias)
        : m_entity(entity), m_alias(alias), m_aliases(alias + QStringLiteral("_s"))
    {
    }

    std::optional<std::pair<QString, ZQSQLType>> column(const QString &keyPath, ZQError *error)
    {
        const QStringList keys = keyPath.split(u'.');
        const ZQEntityDescription *entity = m_entity;
        QString alias = m_alias;
        for (qsizetype i = 0; i + 1 < keys.size(); ++i) {
            const ZQRelationshipDescription *relationship = entity->relationship(keys[i]);
            if (!relationship || relationship->toMany) {
                return fail(keyPath, error);
            }
            alias = rowOf(*relationship, alias, keys.mid(0, i + 1).join(u'.'));
            entity = relationship->destination;
        }
        const ZQAttributeDescription *attribute = entity->attribute(keys.last());
        if (!attribute) {
            return fail(keyPath, error);
        }
        return std::pair(zqSQLColumn(alias, attribute->columnName), zqSQLTypeOfAttribute(attribute->type));
    }
    const QString &text() const { return m_text; }

private:
    QString rowOf(const ZQRelationshipDescription &relationship, const QString &owner, const QString &path)
    {
        QString &alias = m_byPath[path];
        if (alias.isEmpty()) {
            alias = m_aliases.next();
            m_text += QStringLiteral(" LEFT JOIN %1 AS %2 ON %3 = %4")
                          .arg(zqSQLName(relationship.destination->tableName), zqSQLName(alias),
                               zqSQLColumn(alias, QStringLiteral("id")), zqSQLColumn(owner, relationship.columnName));
        }
        return alias;
    }

    const ZQEntityDescription *m_entity;
    QString m_alias;
    ZQSQLAliases m_aliases;
    QHash<QString, QString> m_byPath;
    QString m_text;
};

QVariant valueForKeyPath(const ZQManagedObject *object, const QString &keyPath)
{
    ZQRef<ZQManagedObject> held;
    qsizetype start = 0;
    for (qsizetype dot = keyPath.indexOf(u'.'); object && dot >= 0; dot = keyPath.indexOf(u'.', start)) {
        held = object->relatedObject(keyPath.mid(start, dot - start));
        object = held.get();
        start = dot + 1;
    }
    return object ? object->valueForKey(start ? keyPath.mid(start) : keyPath) : QVariant();
}

} // namespace

std::optional<ZQSQLOrder> zqSQLForSortDescriptors(const QList<ZQSortDescriptor> &descriptors,
                                                  const ZQEntityDescription *entity, const QString &alias,
                                                  ZQError *error)
{
    Joins joins(entity, alias);
    QStringList terms;
    for (const ZQSortDescriptor &descriptor : descriptors) {
        const auto column = joins.column(descriptor.keyPath, error);
        if (!column) {
            return std::nullopt;
        }
        const bool isLocalized = descriptor.comparison == ZQSortDescriptor::Comparison::LocalizedStandard &&
                                 column->second == ZQSQLType::Text;
        terms.append(column->first + (isLocalized ? QStringLiteral(" COLLATE zq_localized") : QString()) +
                     (descriptor.ascending ? QStringLiteral(" ASC") : QStringLiteral(" DESC")));
    }
    terms.append(zqSQLColumn(alias, QStringLiteral("id")) + QStringLiteral(" ASC"));
    return ZQSQLOrder{joins.text(), terms.join(QStringLiteral(", "))};
}

int zqCompareValues(const QVariant &a, const QVariant &b, ZQSortDescriptor::Comparison comparison)
{
    const ZQScalar x = zqScalarFromVariant(a);
    const ZQScalar y = zqScalarFromVariant(b);
    if (comparison == ZQSortDescriptor::Comparison::LocalizedStandard) {
        const QString *textA = std::get_if<QString>(&x);
        const QString *textB = std::get_if<QString>(&y);
        if (textA && textB) {
            return ZQCollator::forThisThread().compare(*textA, *textB);
        }
    }
    if (const std::optional<int> order = zqOrderOfScalars(x, y)) {
        return *order;
    }
    // Null is the first alternative; values of two types have no order of their own but need a stable one.
    return x.index() < y.index() ? -1 : (x.index() > y.index() ? 1 : 0);
}

int zqCompareObjectIDs(const ZQObjectID &a, const ZQObjectID &b)
{
    if (a.isTemporary() != b.isTemporary()) {
        return a.isTemporary() ? 1 : -1;
    }
    const int order = a.key < b.key ? -1 : (a.key > b.key ? 1 : 0);
    return a.isTemporary() ? -order : order;
}

int zqCompareObjects(const ZQManagedObject *a, const ZQManagedObject *b, const QList<ZQSortDescriptor> &descriptors)
{
    for (const ZQSortDescriptor &descriptor : descriptors) {
        const int order = zqCompareValues(valueForKeyPath(a, descriptor.keyPath),
                                          valueForKeyPath(b, descriptor.keyPath), descriptor.comparison);
        if (order != 0) {
            return descriptor.ascending ? order : -order;
        }
    }
    return zqCompareObjectIDs(a->objectID(), b->objectID());
}
