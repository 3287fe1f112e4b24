#include "Kit/Persistence/ZQPrefetcher.h"

void ZQPrefetcher::fillFaults(const QList<Object> &objects)
{
    QHash<ZQRowCache::Root *, QList<qint64>> faults;
    for (const Object &object : objects) {
        if (object->m_isFault) {
            faults[&m_context.rows.rootOf(object.get())].append(object->m_key);
        }
    }
    for (auto entry = faults.cbegin(); entry != faults.cend(); ++entry) {
        m_context.rows.fill(*entry.key(), entry.value());
    }
}

void ZQPrefetcher::addTargets(const QList<Object> &objects, const ZQPlanProperty &property, bool isWanted,
                              QHash<const ZQEntityDescription *, QSet<qint64>> &targets)
{
    const ZQRelationshipDescription &forward = ZQRelationships::relationship(objects.first().get(), property.index);
    if (forward.toMany) {
        m_context.relationships.loadLists(objects, property.index);
    }
    QSet<qint64> &wanted = targets[forward.destination];
    for (const Object &object : isWanted ? objects : QList<Object>()) {
        if (forward.toMany) {
            for (const qint64 key : m_context.relationships.loadedKeys(object.get(), property.index)) {
                wanted.insert(key);
            }
        } else if (const qint64 key = ZQRelationships::toOneKey(object.get(), property.index)) {
            wanted.insert(key);
        }
    }
}

QList<ZQRef<ZQManagedObject>> ZQPrefetcher::prefetch(const QList<Object> &objects, const QStringList &keys,
                                                     bool includesLast)
{
    m_context.store.assertThread();
    QList<Object> kept;
    QList<Object> here = objects;
    for (qsizetype i = 0; i < keys.size() && !here.isEmpty(); ++i) {
        QHash<const ZQEntityPlan *, QList<Object>> byEntity;
        for (const Object &object : std::as_const(here)) {
            byEntity[object->m_plan].append(object);
        }
        fillFaults(here);
        const bool isWanted = includesLast || i + 1 < keys.size();
        QHash<const ZQEntityDescription *, QSet<qint64>> targets;
        for (auto entry = byEntity.cbegin(); entry != byEntity.cend(); ++entry) {
            const ZQPlanProperty property = entry.key()->properties.value(keys.at(i));
            if (property.isRelationship) {
                addTargets(entry.value(), property, isWanted, targets);
            }
        }
        here.clear();
        for (auto entry = targets.cbegin(); entry != targets.cend(); ++entry) {
            here += m_context.rows.objectsForKeys(entry.key(), entry.value());
        }
        kept += here;
    }
    return kept;
}
