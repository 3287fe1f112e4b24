#include "Kit/Persistence/ZQManagedObjectContext.h"

#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQChangeMerger.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQDeleteRules.h"
#include "Kit/Persistence/ZQFetcher.h"
#include "Kit/Persistence/ZQObjectURIs.h"
#include "Kit/Persistence/ZQPrefetcher.h"
#include "Kit/Persistence/ZQSave.h"

#include <atomic>

namespace {

qint64 nextTemporaryKey()
{
    static std::atomic<qint64> last{0};
    return --last;
}

} // namespace

qsizetype ZQObjectAccess::heldObjects(const ZQManagedObjectContext &context)
{
    qsizetype count = 0;
    for (const auto &root : context.d->rows.roots()) {
        count += root->objects.size();
    }
    return count;
}

ZQManagedObjectContext::Private::Private(ZQManagedObjectContext *context,
                                         std::shared_ptr<ZQPersistentStoreCoordinator> coordinator,
                                         ZQMergePolicy policy)
    : q(context), mergePolicy(policy), store(std::move(coordinator)), rows(context, store), changes(store),
      relationships(store, rows, changes)
{
}

void ZQManagedObjectContext::Private::released(ZQManagedObject *object)
{
    orphan(object);
    delete object;
}

void ZQManagedObjectContext::setFetchesAreCancellable(bool areCancellable)
{
    d->store.assertThread();
    if (ZQSQLiteConnection *connection = d->store.connection()) {
        connection->setReadsAreCancellable(areCancellable);
    }
}

ZQManagedObjectContext::ZQManagedObjectContext(std::shared_ptr<ZQPersistentStoreCoordinator> coordinator,
                                               ZQMergePolicy mergePolicy)
    : d(std::make_unique<Private>(this, std::move(coordinator), mergePolicy))
{
}

ZQManagedObjectContext::~ZQManagedObjectContext()
{
    reset();
}

const std::shared_ptr<ZQPersistentStoreCoordinator> &ZQManagedObjectContext::persistentStoreCoordinator() const
{
    return d->store.coordinator();
}

const ZQManagedObjectModel &ZQManagedObjectContext::model() const
{
    return d->rows.plan().model();
}

ZQMergePolicy ZQManagedObjectContext::mergePolicy() const
{
    return d->mergePolicy;
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::insertNewObjectForEntityForName(const QString &entityName)
{
    d->store.assertThread();
    const ZQEntityDescription *entity = model().entity(entityName);
    if (!entity || entity->isAbstract) {
        qCWarning(zqLogStore, "no objects of the entity \"%s\" can be made", qUtf8Printable(entityName));
        return nullptr;
    }
    ZQRef<ZQManagedObject> object = d->rows.make(*d->rows.plan().planFor(entity), nextTemporaryKey());
    if (object) {
        object->m_isInserted = true;
        d->rows.setDefaults(object.get());
        d->changes.didInsert(object.get());
        object->awakeFromInsert();
    }
    return object;
}

void ZQManagedObjectContext::deleteObject(ZQManagedObject *object)
{
    d->store.assertThread();
    if (object && object->m_context == this) {
        ZQDeleteRules(*d).deleteObject(object);
    }
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::objectWithID(const ZQObjectID &id)
{
    d->store.assertThread();
    if (id.isNull() || !d->rows.findRoot(id.entity)) {
        return nullptr;
    }
    return d->rows.objectForKey(id.entity, id.key);
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::existingObjectWithID(const ZQObjectID &id, ZQError *error)
{
    d->store.assertThread();
    if (id.isNull() || !d->rows.findRoot(id.entity)) {
        return nullptr;
    }
    if (id.isTemporary()) {
        return ZQRef<ZQManagedObject>(d->rows.held(id.entity, id.key));
    }
    ZQRef<ZQManagedObject> object;
    ZQRowCache::Root &root = d->rows.rootOf(id.entity);
    const bool isRead =
        d->rows.selectRows(root, {id.key}, [&](ZQSQLiteStatement &row) { object = d->rows.objectFromRow(row, root); });
    if (!isRead) {
        zqSetError(error, d->store.error());
    }
    return object;
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::objectWithURIRepresentation(const QString &uri)
{
    d->store.assertThread();
    const ZQObjectID id = ZQObjectURIs(*d).possibleID(uri);
    ZQRef<ZQManagedObject> object = existingObjectWithID(id);
    return object && object->entity()->isKindOf(id.entity) ? object : nullptr;
}

std::optional<QList<ZQObjectID>> ZQManagedObjectContext::objectIDsWithURIRepresentations(const QStringList &uris,
                                                                                         ZQError *error)
{
    d->store.assertThread();
    return ZQObjectURIs(*d).existingIDs(uris, error);
}

std::optional<QList<ZQRef<ZQManagedObject>>> ZQManagedObjectContext::executeFetchRequest(const ZQFetchRequest &request,
                                                                                         ZQError *error)
{
    return ZQFetcher(*d).objects(request, error);
}

std::optional<QList<ZQObjectID>> ZQManagedObjectContext::fetchObjectIDs(const ZQFetchRequest &request, ZQError *error)
{
    return ZQFetcher(*d).objectIDs(request, error);
}

std::optional<ZQRelatedIDs> ZQManagedObjectContext::fetchObjectIDsWithRelated(const ZQFetchRequest &request,
                                                                              const QString &relationship,
                                                                              ZQError *error)
{
    return ZQFetcher(*d).objectIDsWithRelated(request, relationship, error);
}

std::optional<qint64> ZQManagedObjectContext::countForFetchRequest(const ZQFetchRequest &request, ZQError *error)
{
    return ZQFetcher(*d).count(request, error);
}

std::optional<QList<QVariantMap>>
ZQManagedObjectContext::fetchDictionaries(const ZQFetchRequest &request, const QStringList &attributes, ZQError *error)
{
    return ZQFetcher(*d).dictionaries(request, attributes, error);
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::prefetchObjects(const QList<ZQRef<ZQManagedObject>> &objects,
                                                                      const QString &keyPath)
{
    return ZQPrefetcher(*d).prefetch(objects, keyPath.split(u'.'), true);
}

void ZQManagedObjectContext::fillFaults(const QList<ZQObjectID> &ids)
{
    d->store.assertThread();
    QHash<ZQRowCache::Root *, QList<qint64>> faults;
    for (const ZQObjectID &id : ids) {
        ZQRowCache::Root *root = d->rows.findRoot(id.entity);
        const ZQManagedObject *object = root ? root->objects.value(id.key) : nullptr;
        if (object && object->m_isFault) {
            faults[root].append(id.key);
        }
    }
    for (auto entry = faults.cbegin(); entry != faults.cend(); ++entry) {
        d->rows.fill(*entry.key(), entry.value());
    }
}

bool ZQManagedObjectContext::hasChanges() const
{
    return d->changes.hasChanges();
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::insertedObjects() const
{
    return d->changes.inserted().objects();
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::updatedObjects() const
{
    return d->changes.reallyUpdated();
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::deletedObjects() const
{
    return d->changes.deleted().objects();
}

bool ZQManagedObjectContext::save(ZQError *error)
{
    d->store.assertThread();
    ZQTrace trace("store", "save");
    ZQSave save(*d);
    if (!save.collect(error)) {
        return false;
    }
    if (save.isEmpty()) {
        d->changes.didFindNothingToSave();
        return true;
    }
    d->willSaveObservers.notify({});
    if (!save.write(error)) {
        return false;
    }
    const ZQSave::Outcome outcome = save.apply();
    d->didSaveObservers.notify(outcome.notification);
    d->didChangeObservers.notify(outcome.announcement);
    return true;
}

void ZQManagedObjectContext::rollback()
{
    d->store.assertThread();
    ZQChangeMerger(*d).rollBack();
    processPendingChanges();
}

void ZQManagedObjectContext::reset()
{
    d->store.assertThread();
    d->rows.orphanAll();
    d->changes.clear();
}

void ZQManagedObjectContext::refreshObject(ZQManagedObject *object, bool mergeChanges)
{
    d->store.assertThread();
    if (object && object->m_context == this && !object->m_isInserted && !object->m_isDeleted) {
        ZQChangeMerger(*d).refresh(object, mergeChanges);
    }
}

void ZQManagedObjectContext::mergeChangesFromContextDidSaveNotification(const ZQContextDidSave &notification)
{
    d->store.assertThread();
    if (notification.source != this) {
        d->didChangeObservers.notify(ZQChangeMerger(*d).merge(notification));
    }
}

void ZQManagedObjectContext::processPendingChanges()
{
    d->store.assertThread();
    if (const auto announcement = d->changes.takeAnnouncement(this)) {
        d->didChangeObservers.notify(*announcement);
    }
}

ZQManagedObjectContext::Token ZQManagedObjectContext::observeWillSave(std::function<void()> observer)
{
    return d->willSaveObservers.add([observer = std::move(observer)](const auto &) { observer(); });
}

ZQManagedObjectContext::Token
ZQManagedObjectContext::observeDidSave(std::function<void(const ZQContextDidSave &)> observer)
{
    return d->didSaveObservers.add(std::move(observer));
}

ZQManagedObjectContext::Token
ZQManagedObjectContext::observeObjectsDidChange(std::function<void(const ZQContextDidSave &)> observer)
{
    return d->didChangeObservers.add(std::move(observer));
}
