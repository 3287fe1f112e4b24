#include "Kit/Persistence/ZQRowCache.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQSQLList.h"

#include <algorithm>

namespace {

constexpr qsizetype keysOfAQuery = 500;
constexpr int faultsFilledAhead = 150;
constexpr int faultsFilledBehind = 49;

// Few sizes, so that the statements are found in the cache; missing places repeat the last key.
qsizetype placesFor(qsizetype keys)
{
    for (const qsizetype size : {1, 8, 50, 200}) {
        if (keys <= size) {
            return size;
        }
    }
    return keysOfAQuery;
}

} // namespace

ZQRowCache::ZQRowCache(ZQManagedObjectContext *context, ZQContextStore &store)
    : m_context(context), m_store(store),
      m_plan(std::make_shared<ZQModelPlan>(store.coordinator()->managedObjectModel()))
{
    for (const auto &rootPlan : m_plan->roots()) {
        m_roots.push_back(std::make_unique<Root>());
        m_roots.back()->plan = rootPlan.get();
        m_rootsByEntity.insert(rootPlan->entity, m_roots.back().get());
    }
}

ZQRef<ZQManagedObject> ZQRowCache::make(const ZQEntityPlan &entityPlan, qint64 key)
{
    if (!entityPlan.entityClass) {
        qCWarning(zqLogStore, "no class is registered for the entity \"%s\"", qUtf8Printable(entityPlan.entity->name));
        return nullptr;
    }
    Object object(entityPlan.entityClass->create());
    object->m_context = m_context;
    object->m_entity = entityPlan.entity;
    object->m_plan = &entityPlan;
    object->m_key = key;
    rootOf(entityPlan.entity).objects.insert(key, object.get());
    return object;
}

void ZQRowCache::setDefaults(ZQManagedObject *object)
{
    const ZQEntityPlan &entityPlan = *object->m_plan;
    for (const ZQAttributeDescription &attribute : object->m_entity->attributes) {
        const int field = entityPlan.properties.value(attribute.name).field;
        if (!attribute.defaultValue.isValid() || field < 0) {
            continue;
        }
        bool isNull = true;
        zqStoreFieldValue(entityPlan.root->fields[size_t(field)], object->row(), attribute.defaultValue, isNull);
        if (!isNull) {
            object->m_nulls &= ~(quint64(1) << field);
        }
    }
}

ZQRef<ZQManagedObject> ZQRowCache::objectForKey(const ZQEntityDescription *entity, qint64 key)
{
    Root &root = rootOf(entity);
    if (ZQManagedObject *object = root.objects.value(key)) {
        return Object(object);
    }
    if (key < 0) {
        return nullptr;
    }
    if (entity->subentities.empty() && !entity->isAbstract) {
        Object fault = make(*m_plan->planFor(entity), key);
        if (fault) {
            linkFault(fault.get());
        }
        return fault;
    }
    Object object;
    selectRows(root, {key}, [&](ZQSQLiteStatement &row) { object = objectFromRow(row, root); });
    return object;
}

ZQRef<ZQManagedObject> ZQRowCache::objectFromRow(ZQSQLiteStatement &row, Root &root)
{
    const qint64 key = row.int64(0);
    Object object(root.objects.value(key));
    if (object && !object->m_isFault) {
        return object;
    }
    if (object) {
        unlinkFault(object.get());
    } else {
        const ZQEntityPlan *entityPlan = m_plan->planForCode(int(row.int64(1)));
        object = entityPlan && entityPlan->root == root.plan ? make(*entityPlan, key) : Object();
    }
    if (object) {
        readRow(row, object.get(), 0);
    }
    return object;
}

void ZQRowCache::readRow(ZQSQLiteStatement &row, ZQManagedObject *object, quint64 keptFields)
{
    const ZQRootPlan &root = *object->m_plan->root;
    void *slots_ = object->row();
    object->m_version = row.int64(2);
    int column = 2;
    for (const ZQPlanColumn &planned : root.columns) {
        ++column;
        if (planned.field < 0) {
            continue;
        }
        const quint64 bit = quint64(1) << planned.field;
        if (keptFields & bit) {
            continue;
        }
        const bool isNull = zqReadField(row, column, root.fields[size_t(planned.field)], slots_);
        object->m_nulls = isNull ? object->m_nulls | bit : object->m_nulls & ~bit;
    }
}

bool ZQRowCache::selectRows(Root &root, const QList<qint64> &keys,
                            const std::function<void(ZQSQLiteStatement &)> &visit)
{
    for (qsizetype start = 0; start < keys.size(); start += keysOfAQuery) {
        const qsizetype count = std::min(keysOfAQuery, keys.size() - start);
        const qsizetype places = placesFor(count);
        ZQSQLiteStatement select =
            m_store.prepare(QStringLiteral("SELECT %1 FROM %2 t WHERE t.\"id\" IN (%3)")
                                .arg(root.plan->selection, zqQuoted(root.plan->entity->tableName),
                                     QStringList(places, QStringLiteral("?")).join(u',')));
        for (qsizetype i = 0; i < places; ++i) {
            select.bind(int(i), keys.at(start + std::min(i, count - 1)));
        }
        while (select.next()) {
            visit(select);
        }
        if (select.failed()) {
            m_store.noteFailedRead(QStringLiteral("rows"));
            return false;
        }
    }
    return true;
}

QList<ZQRef<ZQManagedObject>> ZQRowCache::objectsForKeys(const ZQEntityDescription *entity, const QSet<qint64> &keys)
{
    Root &root = rootOf(entity);
    QList<Object> objects;
    QList<qint64> missing;
    for (const qint64 key : keys) {
        ZQManagedObject *object = root.objects.value(key);
        if (object) {
            objects.append(Object(object));
        }
        if (key > 0 && (!object || object->m_isFault)) {
            missing.append(key);
        }
    }
    std::sort(missing.begin(), missing.end()); // neighbours are on one page
    selectRows(root, missing, [&](ZQSQLiteStatement &row) {
        if (Object object = objectFromRow(row, root)) {
            objects.append(std::move(object));
        }
    });
    return objects;
}

// Who reads one fault soon reads its neighbours, mostly the following ones.
void ZQRowCache::fire(ZQManagedObject *object)
{
    m_store.assertThread();
    Root &root = rootOf(object);
    QList<qint64> keys{object->m_key};
    const ZQManagedObject *neighbour = object->m_nextFault;
    for (int i = 0; neighbour && i < faultsFilledAhead; ++i, neighbour = neighbour->m_nextFault) {
        keys.append(neighbour->m_key);
    }
    neighbour = object->m_previousFault;
    for (int i = 0; neighbour && i < faultsFilledBehind; ++i, neighbour = neighbour->m_previousFault) {
        keys.append(neighbour->m_key);
    }
    const bool isRead = selectRows(root, keys, [&](ZQSQLiteStatement &row) { objectFromRow(row, root); });
    if (!isRead && m_store.error().code == int(ZQStoreError::Cancelled)) {
        return; // still a fault, for when it is wanted again
    }
    if (object->m_isFault) {
        // The row is gone or cannot be read; the object keeps what it has.
        unlinkFault(object);
        qCWarning(zqLogStore, "%s has no row",
                  qUtf8Printable(object->objectID().URIRepresentation(m_store.coordinator()->storeUUID())));
    }
}

void ZQRowCache::fill(Root &root, const QList<qint64> &keys)
{
    selectRows(root, keys, [&](ZQSQLiteStatement &row) { objectFromRow(row, root); });
}

void ZQRowCache::becomeFault(ZQManagedObject *object)
{
    object->m_changed = 0;
    object->m_toMany.clear();
    if (!object->m_isFault) {
        linkFault(object);
    }
}

void ZQRowCache::linkFault(ZQManagedObject *object)
{
    Root &root = rootOf(object);
    object->m_isFault = true;
    object->m_previousFault = root.lastFault;
    object->m_nextFault = nullptr;
    (root.lastFault ? root.lastFault->m_nextFault : root.firstFault) = object;
    root.lastFault = object;
}

void ZQRowCache::unlinkFault(ZQManagedObject *object)
{
    if (!object->m_isFault) {
        return;
    }
    Root &root = rootOf(object);
    (object->m_previousFault ? object->m_previousFault->m_nextFault : root.firstFault) = object->m_nextFault;
    (object->m_nextFault ? object->m_nextFault->m_previousFault : root.lastFault) = object->m_previousFault;
    object->m_previousFault = nullptr;
    object->m_nextFault = nullptr;
    object->m_isFault = false;
}

void ZQRowCache::changeKey(ZQManagedObject *object, qint64 key)
{
    Root &root = rootOf(object);
    root.objects.remove(object->m_key);
    object->m_key = key;
    root.objects.insert(key, object);
}

void ZQRowCache::orphan(ZQManagedObject *object)
{
    unlinkFault(object);
    Root &root = rootOf(object);
    if (root.objects.value(object->m_key) == object) {
        root.objects.remove(object->m_key);
    }
    object->m_context = nullptr;
    object->m_isInserted = false;
    object->m_changed = 0;
    object->m_keptPlan = m_plan;
}

void ZQRowCache::orphanAll()
{
    for (const auto &root : m_roots) {
        const auto objects = std::exchange(root->objects, {});
        for (ZQManagedObject *object : objects) {
            orphan(object);
        }
    }
}
