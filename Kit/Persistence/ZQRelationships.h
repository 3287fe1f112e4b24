#pragma once

#include "Kit/Persistence/ZQChangeTracker.h"
#include "Kit/Persistence/ZQRowCache.h"

// The relationships of a context's objects, by their position among the entity's relationships.
//
// Both sides of a relationship change together. A to-one side is a field of the row; a to-many side is a list that may
// not have been read yet, so it records what was added to and removed from the stored list. On the context's thread.
class ZQRelationships
{
public:
    using Object = ZQRef<ZQManagedObject>;
    using ToMany = ZQManagedObject::ToMany;

    ZQRelationships(ZQContextStore &store, ZQRowCache &rows, ZQChangeTracker &changes)
        : m_store(store), m_rows(rows), m_changes(changes)
    {
    }

    static const ZQRelationshipDescription &relationship(const ZQManagedObject *object, int index);
    static ToMany &list(const ZQManagedObject *object, int index);
    static qint64 toOneKey(const ZQManagedObject *object, int index);
    static void forgetLoadedLists(ZQManagedObject *object); // what changed in them is kept

    // Both sides.
    void setToOne(ZQManagedObject *object, int index, ZQManagedObject *target);
    void addToMany(ZQManagedObject *object, int index, ZQManagedObject *target);
    void removeFromMany(ZQManagedObject *object, int index, ZQManagedObject *target);
    // One side only.
    void writeToOne(ZQManagedObject *object, int index, qint64 key);
    void removeFromList(ZQManagedObject *object, int index, qint64 key);

    // The list as it is now, read when it was not yet. After an error, which is logged, only what was added here; the
    // list stays unloaded, so that the next read tries again.
    const QList<qint64> &loadedKeys(const ZQManagedObject *object, int index);
    // The same as filled objects: a query for every 500 that are not.
    QList<Object> related(const ZQManagedObject *object, int index);
    // Reads the lists of many objects of one entity in one query. Where that fails, each is read when it is asked for.
    void loadLists(const QList<Object> &objects, int index);
    // What the store holds of a list, for many objects of one entity, in one query; false after an error.
    bool storedKeysOf(const ZQRelationshipDescription &forward, const QList<qint64> &owners,
                      QHash<qint64, QList<qint64>> &stored);

private:
    void addToList(ZQManagedObject *object, int index, qint64 key);
    bool isRelated(ZQManagedObject *object, int index, ZQManagedObject *target);
    std::optional<QList<qint64>> storedKeys(const ZQManagedObject *object, int index);
    void takeStoredKeys(const ZQManagedObject *object, int index, const QList<qint64> &stored);

    ZQContextStore &m_store;
    ZQRowCache &m_rows;
    ZQChangeTracker &m_changes;
};
