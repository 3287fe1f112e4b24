#include "Kit/Persistence/ZQManagedObject.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQContextPrivate.h"

namespace {

void logUnknownKey(const ZQManagedObject &object, const QString &key)
{
    qCWarning(zqLogStore, "%s has no property \"%s\"",
              qUtf8Printable(object.entity() ? object.entity()->name : QString()), qUtf8Printable(key));
}

} // namespace

ZQManagedObject::ZQManagedObject() = default;
ZQManagedObject::~ZQManagedObject() = default;

void ZQManagedObject::release() const
{
    if (--m_references > 0) {
        return;
    }
    auto *self = const_cast<ZQManagedObject *>(this);
    if (m_context) {
        m_context->d->released(self);
    } else {
        delete self;
    }
}

bool ZQManagedObject::isUpdated() const
{
    return m_context && !m_isInserted && !m_isDeleted && ZQChangeTracker::isDirty(this);
}

bool ZQManagedObject::hasChanges() const
{
    return m_context && ZQChangeTracker::isDirty(this);
}

bool ZQManagedObject::hasChangeForKey(const QString &key) const
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(key) : ZQPlanProperty();
    if (property.index < 0) {
        logUnknownKey(*this, key);
        return false;
    }
    if (property.field >= 0) {
        return (m_changed >> property.field) & 1U;
    }
    if (!property.isRelationship || m_toMany.empty()) {
        return false;
    }
    const ToMany &list = m_toMany[size_t(property.index)];
    return !list.added.isEmpty() || !list.removed.isEmpty();
}

void ZQManagedObject::fireFault() const
{
    if (m_context) {
        // The fault fills itself and its neighbours; a constant object changes only in that it now has values.
        m_context->d->rows.fire(const_cast<ZQManagedObject *>(this));
    }
}

void ZQManagedObject::didChangeField(int field)
{
    if (m_context && !m_isDeleted) {
        m_changed |= quint64(1) << field;
        m_context->d->changes.touch(this);
    }
}

QVariant ZQManagedObject::valueForKey(const QString &key) const
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(key) : ZQPlanProperty();
    if (property.index < 0) {
        logUnknownKey(*this, key);
        return {};
    }
    if (!property.isRelationship) {
        willAccess();
        return property.field < 0 ? QVariant()
                                  : zqFieldValue(m_plan->root->fields[size_t(property.field)], row(),
                                                 (m_nulls >> property.field) & 1U);
    }
    const ZQRelationshipDescription &relationship = m_entity->relationships[size_t(property.index)];
    if (relationship.toMany) {
        QVariantList list;
        for (const ZQObjectID &id : relatedObjectIDs(key)) {
            list.append(QVariant::fromValue(id));
        }
        return list;
    }
    willAccess();
    const qint64 target = ZQRelationships::toOneKey(this, property.index);
    if (target == 0) {
        return {};
    }
    const ZQManagedObject *held = m_context ? m_context->d->rows.held(relationship.destination, target) : nullptr;
    return QVariant::fromValue(held ? held->objectID() : ZQObjectID{relationship.destination, target});
}

void ZQManagedObject::setValueForKey(const QVariant &value, const QString &key)
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(key) : ZQPlanProperty();
    if (property.index < 0) {
        logUnknownKey(*this, key);
        return;
    }
    if (!property.isRelationship) {
        if (property.field < 0) {
            return;
        }
        const ZQField &field = m_plan->root->fields[size_t(property.field)];
        QVariant converted;
        if (!zqConvertFieldValue(value, field.type, converted)) {
            qCWarning(zqLogStore, "%s.%s cannot hold the value \"%s\"", qUtf8Printable(m_entity->name),
                      qUtf8Printable(key), qUtf8Printable(value.toString()));
            return;
        }
        willAccess();
        const quint64 bit = quint64(1) << property.field;
        const bool wasNull = m_nulls & bit;
        const QVariant before = zqFieldValue(field, row(), wasNull);
        bool isNull = false;
        zqStoreFieldValue(field, row(), converted, isNull);
        m_nulls = isNull ? m_nulls | bit : m_nulls & ~bit;
        if (wasNull != isNull || before != zqFieldValue(field, row(), isNull)) {
            didChangeField(property.field);
        }
        return;
    }
    if (!m_context) {
        return;
    }
    if (!m_entity->relationships[size_t(property.index)].toMany) {
        const ZQRef<ZQManagedObject> target = m_context->objectWithID(value.value<ZQObjectID>());
        setRelatedObject(key, target.get());
        return;
    }
    QSet<ZQObjectID> wanted;
    const QVariantList list = value.toList();
    for (const QVariant &id : list) {
        wanted.insert(id.value<ZQObjectID>());
    }
    for (const ZQRef<ZQManagedObject> &present : relatedObjects(key)) {
        if (!wanted.remove(present->objectID())) {
            removeRelatedObject(key, present.get());
        }
    }
    for (const QVariant &id : list) {
        if (wanted.contains(id.value<ZQObjectID>())) {
            addRelatedObject(key, m_context->objectWithID(id.value<ZQObjectID>()).get());
        }
    }
}

ZQRef<ZQManagedObject> ZQManagedObject::relatedObject(const QString &toOne) const
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toOne) : ZQPlanProperty();
    if (!property.isRelationship || m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toOne);
        return nullptr;
    }
    if (!m_context) {
        return nullptr;
    }
    willAccess();
    const qint64 target = ZQRelationships::toOneKey(this, property.index);
    return target ? m_context->d->rows.objectForKey(m_entity->relationships[size_t(property.index)].destination, target)
                  : nullptr;
}

void ZQManagedObject::setRelatedObject(const QString &toOne, ZQManagedObject *target)
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toOne) : ZQPlanProperty();
    if (!property.isRelationship || m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toOne);
        return;
    }
    if (m_context && !m_isDeleted && (!target || target->m_context == m_context)) {
        const ZQEntityDescription *destination = m_entity->relationships[size_t(property.index)].destination;
        if (target && !target->m_entity->isKindOf(destination)) {
            qCWarning(zqLogStore, "%s.%s cannot hold a %s", qUtf8Printable(m_entity->name), qUtf8Printable(toOne),
                      qUtf8Printable(target->m_entity->name));
            return;
        }
        willAccess();
        m_context->d->relationships.setToOne(this, property.index, target && target->m_isDeleted ? nullptr : target);
    }
}

QList<ZQRef<ZQManagedObject>> ZQManagedObject::relatedObjects(const QString &toMany) const
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toMany) : ZQPlanProperty();
    if (!property.isRelationship || !m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toMany);
        return {};
    }
    return m_context ? m_context->d->relationships.related(this, property.index) : QList<ZQRef<ZQManagedObject>>();
}

QList<ZQObjectID> ZQManagedObject::relatedObjectIDs(const QString &toMany) const
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toMany) : ZQPlanProperty();
    if (!property.isRelationship || !m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toMany);
        return {};
    }
    const ZQEntityDescription *destination = m_entity->relationships[size_t(property.index)].destination;
    QList<qint64> keys;
    if (m_context) {
        keys = m_context->d->relationships.loadedKeys(this, property.index);
    } else if (!m_toMany.empty()) {
        keys = m_toMany[size_t(property.index)].keys;
    }
    QList<ZQObjectID> ids;
    ids.reserve(keys.size());
    for (const qint64 key : keys) {
        const ZQManagedObject *held = m_context ? m_context->d->rows.held(destination, key) : nullptr;
        ids.append(held ? held->objectID() : ZQObjectID{destination, key});
    }
    return ids;
}

void ZQManagedObject::addRelatedObject(const QString &toMany, ZQManagedObject *target)
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toMany) : ZQPlanProperty();
    if (!property.isRelationship || !m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toMany);
        return;
    }
    if (!m_context || m_isDeleted || !target || target->m_context != m_context || target->m_isDeleted) {
        return;
    }
    const ZQEntityDescription *destination = m_entity->relationships[size_t(property.index)].destination;
    if (!target->m_entity->isKindOf(destination)) {
        qCWarning(zqLogStore, "%s.%s cannot hold a %s", qUtf8Printable(m_entity->name), qUtf8Printable(toMany),
                  qUtf8Printable(target->m_entity->name));
        return;
    }
    m_context->d->relationships.addToMany(this, property.index, target);
}

void ZQManagedObject::removeRelatedObject(const QString &toMany, ZQManagedObject *target)
{
    const ZQPlanProperty property = m_plan ? m_plan->properties.value(toMany) : ZQPlanProperty();
    if (!property.isRelationship || !m_entity->relationships[size_t(property.index)].toMany) {
        logUnknownKey(*this, toMany);
        return;
    }
    if (m_context && !m_isDeleted && target && target->m_context == m_context &&
        target->m_entity->isKindOf(m_entity->relationships[size_t(property.index)].destination)) {
        m_context->d->relationships.removeFromMany(this, property.index, target);
    }
}

QString ZQManagedObject::description() const
{
    if (!m_entity) {
        return QStringLiteral("(no entity)");
    }
    const QUuid store = m_context ? m_context->persistentStoreCoordinator()->storeUUID() : QUuid();
    QStringList values;
    for (const ZQAttributeDescription &attribute : m_entity->attributes) {
        const QVariant value = valueForKey(attribute.name);
        const QString text = attribute.type == ZQAttributeType::Binary && value.isValid()
                                 ? QStringLiteral("%1 bytes").arg(value.toByteArray().size())
                                 : value.toString();
        values.append(attribute.name + QStringLiteral(" = ") + (value.isValid() ? text : QStringLiteral("nil")));
    }
    return QStringLiteral("%1 (%2) { %3 }")
        .arg(m_entity->name, objectID().URIRepresentation(store), values.join(QStringLiteral("; ")));
}
