#pragma once

#include "Kit/Persistence/ZQFetchRequest.h"
#include "Kit/Persistence/ZQManagedObject.h"
#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"

#include <functional>
#include <memory>
#include <optional>

enum class ZQMergePolicy {
    Error,               // a row changed by others fails the save
    PropertyObjectTrump, // attribute by attribute: what was changed here wins, the rest comes from the store
};

// What a save changed; a value that may cross threads. `updated` includes objects whose to-many relationships changed.
struct ZQContextDidSave
{
    QList<ZQObjectID> inserted;
    QList<ZQObjectID> updated;
    QList<ZQObjectID> deleted;
    const void *source = nullptr; // the context that saved, for comparison only
};

// Rows and, at the same places, what each leads to; a null identifier where it leads nowhere.
struct ZQRelatedIDs
{
    QList<ZQObjectID> ids;
    QList<ZQObjectID> related;
    friend bool operator==(const ZQRelatedIDs &, const ZQRelatedIDs &) = default;
};

// The objects of one thread: an identity map over the store with change tracking.
//
// Bound to the thread that made it; every call asserts that. Costs are stated where they are not constant.
class ZQManagedObjectContext
{
public:
    explicit ZQManagedObjectContext(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator,
                                    ZQMergePolicy mergePolicy = ZQMergePolicy::Error);
    ~ZQManagedObjectContext();
    ZQManagedObjectContext(const ZQManagedObjectContext &) = delete;
    ZQManagedObjectContext &operator=(const ZQManagedObjectContext &) = delete;

    const std::shared_ptr<ZQPersistentStoreCoordinator> &persistentStoreCoordinator() const;
    const ZQManagedObjectModel &model() const;
    ZQMergePolicy mergePolicy() const;

    // For a context that only reads, and whose fetches may be given up: whether they fail with ZQStoreError::Cancelled
    // once the thread's ZQCancellation is cancelled, also while they run. Objects that were not filled then stay as
    // they were, and the context can be used on. Saves are never given up. No by default.
    void setFetchesAreCancellable(bool areCancellable);

    // A new object with its defaults set and a temporary identifier. Null for an unknown or abstract entity.
    ZQRef<ZQManagedObject> insertNewObjectForEntityForName(const QString &entityName);
    template <class T>
    ZQRef<T> insertNewObject()
    {
        return zqCast<T>(insertNewObjectForEntityForName(T::entityName()));
    }

    // Marks for deletion at the next save, following delete rules. Deleting a never-saved object just forgets it.
    void deleteObject(ZQManagedObject *object);

    // The object with this identifier: the held one, or a fault that is not checked against the store. Null for a null
    // identifier, a temporary identifier this context does not know, or one whose entity cannot be told without the
    // store and has no row.
    ZQRef<ZQManagedObject> objectWithID(const ZQObjectID &id);
    // The same, read from the store at once; null when the row is gone.
    ZQRef<ZQManagedObject> existingObjectWithID(const ZQObjectID &id, ZQError *error = nullptr);
    // From `URIRepresentation`; null when it names another store, an unknown entity or no row.
    ZQRef<ZQManagedObject> objectWithURIRepresentation(const QString &uri);
    // The same for many, as identifiers: a query for each root entity. What names nothing is left out; nothing after an
    // error.
    std::optional<QList<ZQObjectID>> objectIDsWithURIRepresentations(const QStringList &uris, ZQError *error = nullptr);

    // Fetches. Unsaved changes of this context count unless the request says otherwise. Nothing after an error.
    std::optional<QList<ZQRef<ZQManagedObject>>> executeFetchRequest(const ZQFetchRequest &request,
                                                                     ZQError *error = nullptr);
    template <class T>
    std::optional<QList<ZQRef<T>>> fetch(const ZQFetchRequest &request, ZQError *error = nullptr)
    {
        const auto objects = executeFetchRequest(request, error);
        if (!objects) {
            return std::nullopt;
        }
        QList<ZQRef<T>> typed;
        typed.reserve(objects->size());
        for (const ZQRef<ZQManagedObject> &object : *objects) {
            if (ZQRef<T> cast = zqCast<T>(object)) {
                typed.append(std::move(cast));
            }
        }
        return typed;
    }
    // Identifiers only: 16 bytes a row, no objects made.
    std::optional<QList<ZQObjectID>> fetchObjectIDs(const ZQFetchRequest &request, ZQError *error = nullptr);
    // The same, each with what its to-one relationship leads to; saved state only.
    std::optional<ZQRelatedIDs> fetchObjectIDsWithRelated(const ZQFetchRequest &request, const QString &relationship,
                                                          ZQError *error = nullptr);
    std::optional<qint64> countForFetchRequest(const ZQFetchRequest &request, ZQError *error = nullptr);
    // One map a row with the named attributes; saved state only, no objects made.
    std::optional<QList<QVariantMap>> fetchDictionaries(const ZQFetchRequest &request, const QStringList &attributes,
                                                        ZQError *error = nullptr);
    // Makes sure the rows of these objects are in memory: one query for every 500 faults among them.
    void fillFaults(const QList<ZQObjectID> &ids);
    // Reads what the relationships of `keyPath` lead to from all of these objects, a query for every 500 rows and one
    // for all lists; following them afterwards asks the store for nothing as long as the answer is held.
    template <class T>
    [[nodiscard]] QList<ZQRef<ZQManagedObject>> prefetchRelatedObjects(const QList<ZQRef<T>> &objects,
                                                                       const QString &keyPath)
    {
        QList<ZQRef<ZQManagedObject>> plain;
        plain.reserve(objects.size());
        for (const ZQRef<T> &object : objects) {
            if (object && object->managedObjectContext() == this) {
                plain.append(ZQRef<ZQManagedObject>(object.get()));
            }
        }
        return prefetchObjects(plain, keyPath);
    }

    // One transaction. Everything or nothing: after a failure all changes are still pending. True when nothing was to
    // save.
    bool save(ZQError *error = nullptr);
    bool hasChanges() const;
    QList<ZQRef<ZQManagedObject>> insertedObjects() const;
    QList<ZQRef<ZQManagedObject>> updatedObjects() const;
    QList<ZQRef<ZQManagedObject>> deletedObjects() const;

    void rollback();              // forgets all unsaved changes
    void reset();                 // forgets all objects; held ones lose their context
    void processPendingChanges(); // announces what changed since the last announcement
    void refreshObject(ZQManagedObject *object, bool mergeChanges);

    // Brings the state of another context's save into the held objects: unchanged ones become faults, changed ones keep
    // their own unsaved values over the new row, deleted ones go. Linear in the notification.
    void mergeChangesFromContextDidSaveNotification(const ZQContextDidSave &notification);

    // Observers are called on this context's thread and live until their token is destroyed or reset.
    using Token = std::shared_ptr<void>;
    // Before a save that has something to write, also one that fails then.
    [[nodiscard]] Token observeWillSave(std::function<void()> observer);
    [[nodiscard]] Token observeDidSave(std::function<void(const ZQContextDidSave &)> observer);
    // After processPendingChanges, a save or a merge: what became different in this context, temporary identifiers
    // included.
    [[nodiscard]] Token observeObjectsDidChange(std::function<void(const ZQContextDidSave &)> observer);

    struct Private; // of this folder only

private:
    QList<ZQRef<ZQManagedObject>> prefetchObjects(const QList<ZQRef<ZQManagedObject>> &objects, const QString &keyPath);

    friend class ZQManagedObject;
    friend class ZQObjectAccess;
    std::unique_ptr<Private> d;
};
