#include "Kit/Persistence/ZQManagedObjectContext.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQContextPrivate.h"
#include "Kit/Persistence/ZQSQLList.h"

#include <QUrl>

#include <atomic>

namespace {

qint64 nextTemporaryKey()
{
    static std::atomic<qint64> last{0};
    return --last;
}

} // namespace

void ZQObjectList::add(ZQManagedObject *object)
{
    if (!m_positions.contains(object)) {
        m_positions.insert(object, m_objects.size());
        m_objects.emplace_back(object);
    }
}

void ZQObjectList::remove(ZQManagedObject *object)
{
    const auto found = m_positions.constFind(object);
    if (found == m_positions.cend()) {
        return;
    }
    const Object kept = std::exchange(m_objects[*found], Object());
    m_positions.erase(found);
    if (m_positions.isEmpty()) {
        m_objects.clear();
    }
}

void ZQObjectList::clear()
{
    // Letting go of an object may reach back into the context, which must not find it here any more.
    const auto objects = std::exchange(m_objects, {});
    m_positions.clear();
}

QList<ZQObjectList::Object> ZQObjectList::objects() const
{
    QList<Object> all;
    all.reserve(m_positions.size());
    for (const Object &object : m_objects) {
        if (object) {
            all.append(object);
        }
    }
    return all;
}

void ZQIDList::add(const ZQObjectID &id)
{
    if (!set.contains(id)) {
        set.insert(id);
        list.append(id);
    }
}

void ZQIDList::remove(const ZQObjectID &id)
{
    if (set.remove(id)) {
        list.removeOne(id);
    }
}

void ZQIDList::clear()
{
    list.clear();
    set.clear();
}

qsizetype ZQObjectAccess::heldObjects(const ZQManagedObjectContext &context)
{
    qsizetype count = 0;
    for (const auto &root : context.d->roots) {
        count += root->objects.size();
    }
    return count;
}

ZQManagedObjectContext::Private::Private(ZQManagedObjectContext *context,
                                         std::shared_ptr<ZQPersistentStoreCoordinator> store, ZQMergePolicy policy)
    : q(context), coordinator(std::move(store)), mergePolicy(policy),
      plan(std::make_shared<ZQModelPlan>(coordinator->managedObjectModel())),
      connection(coordinator->newConnection(&connectionError))
{
    for (const auto &rootPlan : plan->roots()) {
        roots.push_back(std::make_unique<Root>());
        roots.back()->plan = rootPlan.get();
        rootsByEntity.insert(rootPlan->entity, roots.back().get());
    }
    if (!connection) {
        qCWarning(zqLogStore, "%s", qUtf8Printable(connectionError.localizedDescription()));
    }
}

void ZQManagedObjectContext::Private::assertThread() const
{
    Q_ASSERT_X(thread == std::this_thread::get_id(), "ZQManagedObjectContext",
               "used on another thread than it was made on");
}

ZQError ZQManagedObjectContext::Private::storeError() const
{
    const ZQError error = connection ? connection->error() : connectionError;
    if (error.domain == ZQStoreErrorDomain && error.code == int(ZQStoreError::Damaged)) {
        coordinator->noteDamage();
    }
    return error;
}

bool ZQManagedObjectContext::Private::hasReadFailed(quint64 before, ZQError *error) const
{
    if (failedReads == before) {
        return false;
    }
    zqSetError(error, storeError());
    return true;
}

void ZQManagedObjectContext::setFetchesAreCancellable(bool areCancellable)
{
    d->assertThread();
    if (d->connection) {
        d->connection->setReadsAreCancellable(areCancellable);
    }
}

ZQSQLiteStatement ZQManagedObjectContext::Private::prepare(const QString &sql)
{
    return connection ? connection->prepare(sql) : ZQSQLiteStatement();
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
    return d->coordinator;
}

const ZQManagedObjectModel &ZQManagedObjectContext::model() const
{
    return d->plan->model();
}

ZQMergePolicy ZQManagedObjectContext::mergePolicy() const
{
    return d->mergePolicy;
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::insertNewObjectForEntityForName(const QString &entityName)
{
    d->assertThread();
    const ZQEntityDescription *entity = model().entity(entityName);
    if (!entity || entity->isAbstract) {
        qCWarning(zqLogStore, "no objects of the entity \"%s\" can be made", qUtf8Printable(entityName));
        return nullptr;
    }
    ZQRef<ZQManagedObject> object = d->make(*d->plan->planFor(entity), nextTemporaryKey());
    if (object) {
        object->m_isInserted = true;
        d->setDefaults(object.get());
        d->inserted.add(object.get());
        d->newlyInserted.add(object->objectID());
        object->awakeFromInsert();
    }
    return object;
}

void ZQManagedObjectContext::deleteObject(ZQManagedObject *object)
{
    d->assertThread();
    if (object && object->m_context == this) {
        d->deleteWithRules(object);
    }
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::objectWithID(const ZQObjectID &id)
{
    d->assertThread();
    if (id.isNull() || !id.entity || !d->rootsByEntity.contains(id.entity->root)) {
        return nullptr;
    }
    return d->objectForKey(id.entity, id.key);
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::existingObjectWithID(const ZQObjectID &id, ZQError *error)
{
    d->assertThread();
    if (id.isNull() || !id.entity || !d->rootsByEntity.contains(id.entity->root)) {
        return nullptr;
    }
    if (id.isTemporary()) {
        return ZQRef<ZQManagedObject>(d->held(id.entity, id.key));
    }
    ZQRef<ZQManagedObject> object;
    Private::Root &root = d->rootOf(id.entity);
    const bool isRead =
        d->selectRows(root, {id.key}, [&](ZQSQLiteStatement &row) { object = d->objectFromRow(row, root); });
    if (!isRead) {
        zqSetError(error, d->storeError());
    }
    return object;
}

ZQObjectID ZQManagedObjectContext::Private::idForURI(const QString &uri) const
{
    const QUuid store = coordinator->storeUUID();
    const QStringList parts = uri.split(u'/');
    const ZQEntityDescription *entity = parts.size() == 5 ? plan->model().entity(parts.at(3)) : nullptr;
    if (!entity || parts.at(0) != QStringLiteral("x-zelto:") || !parts.at(1).isEmpty()) {
        return {};
    }
    if (parts.at(2).isEmpty()) {
        for (const Object &object : inserted.objects()) {
            if (object->objectID().URIRepresentation(store) == uri) {
                return object->objectID();
            }
        }
        return {};
    }
    bool isNumber = false;
    const qint64 key = parts.at(4).mid(1).toLongLong(&isNumber);
    const bool isOfStore =
        QUuid::fromString(parts.at(2)) == store && parts.at(4).startsWith(u'p') && isNumber && key > 0;
    return isOfStore ? ZQObjectID{entity, key} : ZQObjectID();
}

ZQRef<ZQManagedObject> ZQManagedObjectContext::objectWithURIRepresentation(const QString &uri)
{
    d->assertThread();
    const ZQObjectID id = d->idForURI(uri);
    ZQRef<ZQManagedObject> object = existingObjectWithID(id);
    return object && object->entity()->isKindOf(id.entity) ? object : nullptr;
}

std::optional<QList<ZQObjectID>> ZQManagedObjectContext::objectIDsWithURIRepresentations(const QStringList &uris,
                                                                                         ZQError *error)
{
    d->assertThread();
    QList<ZQObjectID> named;
    QHash<Private::Root *, QList<qint64>> keys;
    for (const QString &uri : uris) {
        if (const ZQObjectID id = d->idForURI(uri); !id.isNull()) {
            named.append(id);
            if (!id.isTemporary()) {
                keys[&d->rootOf(id.entity)].append(id.key);
            }
        }
    }
    QHash<Private::Root *, QHash<qint64, const ZQEntityDescription *>> entities;
    for (auto entry = keys.cbegin(); entry != keys.cend(); ++entry) {
        ZQSQLiteStatement select = d->prepare(
            QStringLiteral("SELECT \"id\", \"entity\" FROM %1 WHERE \"id\" IN (SELECT value FROM json_each(?))")
                .arg(zqQuoted(entry.key()->plan->entity->tableName)));
        const QString list = zqKeysAsJSON(entry.value());
        select.bind(0, list);
        while (select.next()) {
            const ZQEntityPlan *entityPlan = d->plan->planForCode(int(select.int64(1)));
            entities[entry.key()].insert(select.int64(0), entityPlan ? entityPlan->entity : nullptr);
        }
        if (select.failed()) {
            zqSetError(error, d->storeError());
            return std::nullopt;
        }
    }
    QList<ZQObjectID> ids;
    for (const ZQObjectID &id : std::as_const(named)) {
        const ZQEntityDescription *entity =
            id.isTemporary() ? id.entity : entities[&d->rootOf(id.entity)].value(id.key);
        if (entity && entity->isKindOf(id.entity)) {
            ids.append({entity, id.key});
        }
    }
    return ids;
}

void ZQManagedObjectContext::fillFaults(const QList<ZQObjectID> &ids)
{
    d->assertThread();
    QHash<Private::Root *, QList<qint64>> faults;
    for (const ZQObjectID &id : ids) {
        Private::Root *root = id.entity ? d->rootsByEntity.value(id.entity->root) : nullptr;
        const ZQManagedObject *object = root ? root->objects.value(id.key) : nullptr;
        if (object && object->m_isFault) {
            faults[root].append(id.key);
        }
    }
    for (auto entry = faults.cbegin(); entry != faults.cend(); ++entry) {
        d->fillObjects(*entry.key(), entry.value());
    }
}

bool ZQManagedObjectContext::hasChanges() const
{
    if (!d->inserted.isEmpty() || !d->deleted.isEmpty()) {
        return true;
    }
    const QList<ZQRef<ZQManagedObject>> updated = d->updated.objects();
    return std::any_of(updated.begin(), updated.end(),
                       [](const auto &object) { return Private::isDirty(object.get()); });
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::insertedObjects() const
{
    return d->inserted.objects();
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::updatedObjects() const
{
    QList<ZQRef<ZQManagedObject>> objects = d->updated.objects();
    objects.removeIf([](const auto &object) { return !Private::isDirty(object.get()); });
    return objects;
}

QList<ZQRef<ZQManagedObject>> ZQManagedObjectContext::deletedObjects() const
{
    return d->deleted.objects();
}

void ZQManagedObjectContext::reset()
{
    d->assertThread();
    for (const auto &root : d->roots) {
        const auto objects = std::exchange(root->objects, {});
        for (ZQManagedObject *object : objects) {
            d->unlinkFault(object);
            d->orphan(object);
        }
    }
    d->inserted.clear();
    d->updated.clear();
    d->deleted.clear();
    d->lastTouched = nullptr;
    for (ZQIDList *list : {&d->newlyInserted, &d->newlyUpdated, &d->newlyDeleted}) {
        list->clear();
    }
    d->announcedTemporary.clear();
}
