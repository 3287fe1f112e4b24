#pragma once

#include "Kit/Persistence/ZQManagedObjectContext.h"
#include "Kit/Persistence/ZQObjectPlan.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"

#include <QSet>

#include <functional>
#include <thread>

// Objects kept alive, in the order they came.
class ZQObjectList
{
public:
    using Object = ZQRef<ZQManagedObject>;
    bool contains(ZQManagedObject *object) const { return m_positions.contains(object); }
    bool isEmpty() const { return m_positions.isEmpty(); }
    qsizetype size() const { return m_positions.size(); }
    void add(ZQManagedObject *object);
    void remove(ZQManagedObject *object);
    void clear();
    QList<Object> objects() const;
    // In the same order, without a copy. The list must not change meanwhile.
    template <class Visit>
    void visit(const Visit &visitor) const
    {
        for (const Object &object : m_objects) {
            if (object) {
                visitor(object);
            }
        }
    }

private:
    std::vector<Object> m_objects; // removed ones leave an empty place
    QHash<ZQManagedObject *, size_t> m_positions;
};

// Identifiers without repetition, in the order they came.
struct ZQIDList
{
    QList<ZQObjectID> list;
    QSet<ZQObjectID> set;

    void add(const ZQObjectID &id);
    void remove(const ZQObjectID &id);
    void clear();
};

struct ZQSaveWork;
struct ZQFetchQuery;

struct ZQManagedObjectContext::Private
{
    using Object = ZQRef<ZQManagedObject>;
    using ToMany = ZQManagedObject::ToMany;
    using Observer = std::function<void(const ZQContextDidSave &)>;
    using Observers = std::vector<std::weak_ptr<Observer>>;

    // The held objects of one root entity.
    struct Root
    {
        const ZQRootPlan *plan = nullptr;
        QHash<qint64, ZQManagedObject *> objects;
        ZQManagedObject *firstFault = nullptr;
        ZQManagedObject *lastFault = nullptr;
    };

    Private(ZQManagedObjectContext *context, std::shared_ptr<ZQPersistentStoreCoordinator> store, ZQMergePolicy policy);

    void assertThread() const;
    ZQError storeError() const; // of the last failed statement
    // Whether a read failed after there were `before`: what was looked at in memory may then have been looked at empty.
    bool hasReadFailed(quint64 before, ZQError *error) const;
    ZQSQLiteStatement prepare(const QString &sql);
    ZQObjectID
    idForURI(const QString &uri) const; // null when it names nothing there can be; saved ones are not looked up

    // Objects (ZQContextObjects.cpp)
    Root &rootOf(const ZQEntityDescription *entity) { return *rootsByEntity.value(entity->root); }
    Root &rootOf(const ZQManagedObject *object) { return rootOf(object->m_entity); }
    // Null for an entity of another model, too.
    ZQManagedObject *held(const ZQEntityDescription *entity, qint64 key) const
    {
        const Root *root = entity ? rootsByEntity.value(entity->root) : nullptr;
        return root ? root->objects.value(key) : nullptr;
    }
    Object make(const ZQEntityPlan &entityPlan, qint64 key);
    void setDefaults(ZQManagedObject *object);
    // The object of a key: the held one, a fault when the entity is certain, else read from the store. Null without a
    // row.
    Object objectForKey(const ZQEntityDescription *entity, qint64 key);
    Object objectFromRow(ZQSQLiteStatement &row, Root &root); // null when no class can hold it
    void readRow(ZQSQLiteStatement &row, ZQManagedObject *object, quint64 keptFields);
    // Calls `visit` for the rows that exist; any number of keys.
    bool selectRows(Root &root, const QList<qint64> &keys, const std::function<void(ZQSQLiteStatement &)> &visit);
    void fire(ZQManagedObject *object);
    void fillObjects(Root &root, const QList<qint64> &keys);
    void becomeFault(ZQManagedObject *object); // forgets values and changes
    void linkFault(ZQManagedObject *object);
    void unlinkFault(ZQManagedObject *object);
    void orphan(ZQManagedObject *object); // no longer of this context
    void released(ZQManagedObject *object);
    void touch(ZQManagedObject *object); // something of it changed
    static bool hasListChanges(const ZQManagedObject *object);
    static bool isDirty(const ZQManagedObject *object);
    // Whether it is deleted, or one of these fields or of the lists at these positions changed.
    static bool isTouched(const ZQManagedObject &object, quint64 fields, const QSet<int> &lists);
    template <class Visit>
    void visitDirtyObjects(const Visit &visitor) const // inserted, updated and deleted
    {
        inserted.visit(visitor);
        updated.visit(visitor);
        deleted.visit(visitor);
    }

    // Relationships (ZQContextRelationships.cpp)
    static const ZQRelationshipDescription &relationship(const ZQManagedObject *object, int index);
    static ToMany &list(const ZQManagedObject *object, int index);
    static qint64 toOneKey(const ZQManagedObject *object, int index);
    void writeToOne(ZQManagedObject *object, int index, qint64 key);
    void setToOne(ZQManagedObject *object, int index, ZQManagedObject *target);
    void addToMany(ZQManagedObject *object, int index, ZQManagedObject *target);
    void removeFromMany(ZQManagedObject *object, int index, ZQManagedObject *target);
    void listAdd(ZQManagedObject *object, int index, qint64 key);
    void listRemove(ZQManagedObject *object, int index, qint64 key);
    bool isRelated(ZQManagedObject *object, int index, ZQManagedObject *target);
    // After an error, which is logged, only what was added here; the list stays unloaded, so that the next read tries
    // again.
    const QList<qint64> &loadedKeys(const ZQManagedObject *object, int index);
    std::optional<QList<qint64>> storedKeys(const ZQManagedObject *object, int index);
    void takeStoredKeys(const ZQManagedObject *object, int index, const QList<qint64> &stored);
    QList<Object> related(const ZQManagedObject *object, int index);
    void deleteWithRules(ZQManagedObject *object);
    void deleteOne(ZQManagedObject *object, QList<Object> &cascade);
    void releaseTargets(ZQManagedObject *object, int index, QList<Object> &cascade);

    // Reading ahead (ZQContextPrefetching.cpp)
    // Reads what `keys` lead to from `objects`, of one root, in a few queries; the answer keeps it in memory. Without
    // the last: only what is needed to say which objects these are.
    QList<Object> prefetch(const QList<Object> &objects, const QStringList &keys, bool includesLast);
    void loadLists(const QList<Object> &objects, int index); // all of one entity
    // What the store holds of a list, for many objects of one entity; false after an error.
    bool storedKeysOf(const ZQRelationshipDescription &forward, const QList<qint64> &owners,
                      QHash<qint64, QList<qint64>> &stored);
    QList<Object> objectsForKeys(const ZQEntityDescription *entity, const QSet<qint64> &keys);

    // Fetching (ZQContextFetching.cpp)
    bool prepareQuery(const ZQFetchRequest &request, ZQFetchQuery &query, ZQError *error);
    // Leaves out of `query` what the store cannot know; `matching` is what belongs there instead.
    bool correct(const ZQFetchRequest &request, bool isOrdered, ZQFetchQuery &query, QList<Object> &matching,
                 ZQError *error);
    // Where in `ids`, which are in the order of the request, each of `sorted` belongs: the number of those before it.
    QList<qsizetype> placesAmong(const QList<ZQObjectID> &ids, const QList<Object> &sorted,
                                 const QList<ZQSortDescriptor> &descriptors);

    // Saving (ZQContextSaving.cpp, ZQContextSavingRows.cpp)
    bool collect(ZQSaveWork &work, ZQError *error);
    bool validate(const ZQSaveWork &work, ZQError *error);
    bool isDenied(ZQManagedObject *object, ZQError *error);
    bool write(ZQSaveWork &work, ZQError *error);
    bool allocateKeys(ZQSaveWork &work);
    bool insertRows(ZQSaveWork &work);
    bool updateRows(ZQSaveWork &work);
    bool updateRow(ZQSaveWork &work, ZQManagedObject *object);
    bool updateColumns(ZQSaveWork &work, ZQManagedObject *object, std::optional<qint64> expectedVersion);
    bool deleteRows(ZQSaveWork &work);
    bool noteNeighboursOfDeleted(ZQSaveWork &work);
    bool writeJoins(ZQSaveWork &work);
    bool clearDanglingReferences(ZQSaveWork &work);
    std::optional<bool> rowExists(const ZQEntityDescription *entity, qint64 key); // nothing after an error
    void applySave(ZQSaveWork &work, ZQContextDidSave &notification, ZQContextDidSave &announcement);
    void replaceTemporaryKeys(const ZQSaveWork &work, ZQManagedObject *object);

    // Merging and announcing (ZQContextMerging.cpp)
    void mergeDeleted(ZQManagedObject *object);
    void discardChanges(ZQManagedObject *object);
    void reloadKeepingChanges(const QList<Object> &objects);
    static void forgetLoadedLists(ZQManagedObject *object);
    static void notify(Observers &observers, const ZQContextDidSave &notification);
    static Token addObserver(Observers &observers, Observer observer);

    ZQManagedObjectContext *q;
    std::shared_ptr<ZQPersistentStoreCoordinator> coordinator;
    ZQMergePolicy mergePolicy;
    std::thread::id thread = std::this_thread::get_id();
    std::shared_ptr<const ZQModelPlan> plan;
    ZQError connectionError;
    std::unique_ptr<ZQSQLiteConnection> connection; // null when the store could not be reached
    quint64 failedReads = 0;                        // of rows and lists, whoever needed them

    std::vector<std::unique_ptr<Root>> roots;
    QHash<const ZQEntityDescription *, Root *> rootsByEntity;
    ZQObjectList inserted;
    ZQObjectList updated;
    ZQObjectList deleted;

    ZQManagedObject *lastTouched = nullptr; // spares the bookkeeping when one object is changed many times in a row
    ZQIDList newlyInserted;                 // since the last announcement
    ZQIDList newlyUpdated;
    ZQIDList newlyDeleted;
    QSet<ZQObjectID> announcedTemporary;
    Observers willSaveObservers;
    Observers didSaveObservers;
    Observers didChangeObservers;
};

// The context's insides for tests and tools of this folder.
class ZQObjectAccess
{
public:
    static ZQSQLiteConnection *connection(ZQManagedObjectContext &context) { return context.d->connection.get(); }
    static qsizetype heldObjects(const ZQManagedObjectContext &context);
};
