#pragma once

#include "Kit/Persistence/ZQContextStore.h"
#include "Kit/Persistence/ZQManagedObject.h"
#include "Kit/Persistence/ZQObjectPlan.h"

#include <QHash>
#include <QSet>

#include <functional>

// The objects that a context holds: one for each key, filled from the store or waiting for that as a fault.
//
// Keeps nobody alive: an object that nobody holds is taken out when it goes. Finding one takes constant time; what
// reads the store says so. On the context's thread. After a failed read, which the store counts, an object is as it
// was.
class ZQRowCache
{
public:
    using Object = ZQRef<ZQManagedObject>;

    // The held objects of one root entity.
    struct Root
    {
        const ZQRootPlan *plan = nullptr;
        QHash<qint64, ZQManagedObject *> objects;
        ZQManagedObject *firstFault = nullptr;
        ZQManagedObject *lastFault = nullptr;
    };

    ZQRowCache(ZQManagedObjectContext *context, ZQContextStore &store);

    const ZQModelPlan &plan() const { return *m_plan; }
    const std::vector<std::unique_ptr<Root>> &roots() const { return m_roots; }
    Root &rootOf(const ZQEntityDescription *entity) { return *m_rootsByEntity.value(entity->root); }
    Root &rootOf(const ZQManagedObject *object) { return rootOf(object->entity()); }
    // Null for an entity of another model, too.
    Root *findRoot(const ZQEntityDescription *entity) const
    {
        return entity ? m_rootsByEntity.value(entity->root) : nullptr;
    }
    ZQManagedObject *held(const ZQEntityDescription *entity, qint64 key) const
    {
        const Root *root = findRoot(entity);
        return root ? root->objects.value(key) : nullptr;
    }

    // A new object, without values. Null, which is logged, when no class is registered for the entity.
    Object make(const ZQEntityPlan &entityPlan, qint64 key);
    void setDefaults(ZQManagedObject *object);
    // The object of a key: the held one, a fault when the entity is certain, else read from the store. Null without a
    // row.
    Object objectForKey(const ZQEntityDescription *entity, qint64 key);
    // Those of many keys, filled: a query for every 500 that are not. In no order.
    QList<Object> objectsForKeys(const ZQEntityDescription *entity, const QSet<qint64> &keys);
    // The object of a row of `Root::plan`'s selection; one that holds values keeps them. Null when no class can hold
    // it.
    Object objectFromRow(ZQSQLiteStatement &row, Root &root);
    void readRow(ZQSQLiteStatement &row, ZQManagedObject *object, quint64 keptFields);
    // Calls `visit` for the rows that exist, a query for every 500 keys. False after an error.
    bool selectRows(Root &root, const QList<qint64> &keys, const std::function<void(ZQSQLiteStatement &)> &visit);

    // Fills a fault, and its neighbours with it: one query for up to 200.
    void fire(ZQManagedObject *object);
    void fill(Root &root, const QList<qint64> &keys); // a query for every 500
    void becomeFault(ZQManagedObject *object);        // forgets values and changes
    void changeKey(ZQManagedObject *object, qint64 key);
    void orphan(ZQManagedObject *object); // no longer of this context; it keeps its values
    void orphanAll();

private:
    void linkFault(ZQManagedObject *object);
    void unlinkFault(ZQManagedObject *object);

    ZQManagedObjectContext *m_context;
    ZQContextStore &m_store;
    std::shared_ptr<const ZQModelPlan> m_plan;
    std::vector<std::unique_ptr<Root>> m_roots;
    QHash<const ZQEntityDescription *, Root *> m_rootsByEntity;
};
