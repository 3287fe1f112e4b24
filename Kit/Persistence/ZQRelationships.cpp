#include "Kit/Foundation/ZQLog.h"
#include "Kit/Persistence/ZQContextPrivate.h"

using Private = ZQManagedObjectContext::Private;

namespace {
constexpr qsizetype shortList = 1000; // that may be searched from one end to the other
}

// Both sides of a relationship change together. A to-one side is a field of the row; a to-many side is a list that may
// not have been read yet, so it records what was added to and removed from the stored list.

const ZQRelationshipDescription &Private::relationship(const ZQManagedObject *object, int index)
{
    return object->m_entity->relationships[size_t(index)];
}

ZQManagedObject::ToMany &Private::list(const ZQManagedObject *object, int index)
{
    if (object->m_toMany.empty()) {
        object->m_toMany.resize(object->m_entity->relationships.size());
    }
    return object->m_toMany[size_t(index)];
}

qint64 Private::toOneKey(const ZQManagedObject *object, int index)
{
    const int field = object->m_plan->relationshipFields[size_t(index)];
    return field < 0 ? 0 : zqKeySlot(object->m_plan->root->fields[size_t(field)], const_cast<void *>(object->row()));
}

void Private::writeToOne(ZQManagedObject *object, int index, qint64 key)
{
    const int field = object->m_plan->relationshipFields[size_t(index)];
    if (field < 0) {
        return;
    }
    object->willAccess();
    qint64 &slot = zqKeySlot(object->m_plan->root->fields[size_t(field)], object->row());
    if (slot == key) {
        return;
    }
    slot = key;
    const quint64 bit = quint64(1) << field;
    object->m_nulls = key == 0 ? object->m_nulls | bit : object->m_nulls & ~bit;
    object->didChangeField(field);
}

void Private::setToOne(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    object->willAccess();
    const qint64 before = toOneKey(object, index);
    if (before == (target ? target->m_key : 0)) {
        return;
    }
    const ZQRelationshipDescription &forward = relationship(object, index);
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (before != 0) {
        if (const Object old = objectForKey(forward.destination, before)) {
            if (forward.inverse->toMany) {
                listRemove(old.get(), inverse, object->m_key);
            } else {
                writeToOne(old.get(), inverse, 0);
            }
        }
    }
    writeToOne(object, index, target ? target->m_key : 0);
    if (!target) {
        return;
    }
    if (forward.inverse->toMany) {
        listAdd(target, inverse, object->m_key);
        return;
    }
    target->willAccess();
    const qint64 partner = toOneKey(target, inverse);
    if (partner != 0 && partner != object->m_key) {
        if (const Object old = objectForKey(forward.inverse->destination, partner)) {
            writeToOne(old.get(), index, 0);
        }
    }
    writeToOne(target, inverse, object->m_key);
}

void Private::addToMany(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (!relationship(object, index).inverse->toMany) {
        setToOne(target, inverse, object);
    } else if (!isRelated(object, index, target)) {
        listAdd(object, index, target->m_key);
        listAdd(target, inverse, object->m_key);
    }
}

void Private::removeFromMany(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (!relationship(object, index).inverse->toMany) {
        target->willAccess();
        if (toOneKey(target, inverse) == object->m_key) {
            setToOne(target, inverse, nullptr);
        }
    } else if (isRelated(object, index, target)) {
        listRemove(object, index, target->m_key);
        listRemove(target, inverse, object->m_key);
    }
}

void Private::listAdd(ZQManagedObject *object, int index, qint64 key)
{
    ToMany &many = list(object, index);
    if (!many.removed.removeOne(key)) {
        many.added.append(key);
    }
    if (many.isLoaded) {
        many.keys.append(key);
    }
    touch(object);
}

void Private::listRemove(ZQManagedObject *object, int index, qint64 key)
{
    // A long list is read again when it is next asked for: cheaper than closing one gap after the other.
    ToMany &many = list(object, index);
    if (!many.added.removeOne(key)) {
        many.removed.append(key);
    }
    if (many.isLoaded && (many.keys.size() <= shortList || object->m_isInserted)) {
        many.keys.removeOne(key);
    } else {
        many.isLoaded = false;
        many.keys.clear();
    }
    touch(object);
}

// Many-to-many only. Membership is symmetric, so the shorter record answers.
bool Private::isRelated(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    const int inverse = object->m_plan->inverses[size_t(index)];
    const ToMany &here = list(object, index);
    const ToMany &there = list(target, inverse);
    const auto holds = [&](const QList<qint64> &a, const QList<qint64> &b) {
        return a.size() <= b.size() ? a.contains(target->m_key) : b.contains(object->m_key);
    };
    if (holds(here.added, there.added)) {
        return true;
    }
    if (holds(here.removed, there.removed) || object->m_key < 0 || target->m_key < 0) {
        return false;
    }
    if (here.isLoaded && here.keys.size() <= shortList) {
        return here.keys.contains(target->m_key);
    }
    const ZQRelationshipDescription &forward = relationship(object, index);
    ZQSQLiteStatement select = prepare(
        QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ? AND %3 = ?")
            .arg(zqQuoted(forward.joinTable), zqQuoted(forward.joinOwnColumn), zqQuoted(forward.joinOtherColumn)));
    select.bind(0, object->m_key);
    select.bind(1, target->m_key);
    return select.next();
}

std::optional<QList<qint64>> Private::storedKeys(const ZQManagedObject *object, int index)
{
    const ZQRelationshipDescription &forward = relationship(object, index);
    const QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? ORDER BY %1");
    ZQSQLiteStatement select =
        prepare(forward.isManyToMany() ? sql.arg(zqQuoted(forward.joinOtherColumn), zqQuoted(forward.joinTable),
                                                 zqQuoted(forward.joinOwnColumn))
                                       : sql.arg(QStringLiteral("\"id\""), zqQuoted(forward.destination->tableName),
                                                 zqQuoted(forward.inverse->columnName)));
    QList<qint64> keys;
    select.bind(0, object->m_key);
    while (select.next()) {
        keys.append(select.int64(0));
    }
    if (select.failed()) {
        ++failedReads;
        const ZQError failure = storeError();
        if (failure.code != int(ZQStoreError::Cancelled)) {
            qCWarning(zqLogStore, "reading the list \"%s\" failed: %s", qUtf8Printable(forward.name),
                      qUtf8Printable(failure.localizedDescription()));
        }
        return std::nullopt;
    }
    return keys;
}

const QList<qint64> &Private::loadedKeys(const ZQManagedObject *object, int index)
{
    assertThread();
    ToMany &many = list(object, index);
    if (!many.isLoaded) {
        const auto stored = object->m_key > 0 ? storedKeys(object, index) : QList<qint64>();
        takeStoredKeys(object, index, stored.value_or(QList<qint64>()));
        many.isLoaded = stored.has_value();
    }
    return many.keys;
}

// The list as it is now: what is stored, and what changed since.
void Private::takeStoredKeys(const ZQManagedObject *object, int index, const QList<qint64> &stored)
{
    ToMany &many = list(object, index);
    many.keys.clear();
    const QSet<qint64> removed(many.removed.cbegin(), many.removed.cend());
    const Root &destination = rootOf(relationship(object, index).destination);
    for (const qint64 key : stored) {
        const ZQManagedObject *other = deleted.isEmpty() ? nullptr : destination.objects.value(key);
        if (!removed.contains(key) && !(other && other->m_isDeleted)) {
            many.keys.append(key);
        }
    }
    const QSet<qint64> present =
        many.added.isEmpty() ? QSet<qint64>() : QSet<qint64>(many.keys.cbegin(), many.keys.cend());
    for (const qint64 key : std::as_const(many.added)) {
        if (!present.contains(key)) {
            many.keys.append(key);
        }
    }
    many.isLoaded = true;
}

QList<ZQRef<ZQManagedObject>> Private::related(const ZQManagedObject *object, int index)
{
    const QList<qint64> keys = loadedKeys(object, index);
    Root &root = rootOf(relationship(object, index).destination);
    QList<qint64> missing;
    for (const qint64 key : keys) {
        const ZQManagedObject *other = root.objects.value(key);
        if (key > 0 && (!other || other->m_isFault)) {
            missing.append(key);
        }
    }
    QHash<qint64, Object> read; // keeps the new ones alive until they are in the answer
    selectRows(root, missing, [&](ZQSQLiteStatement &row) {
        if (const Object other = objectFromRow(row, root)) {
            read.insert(other->m_key, other);
        }
    });
    QList<Object> objects;
    objects.reserve(keys.size());
    for (const qint64 key : keys) {
        if (ZQManagedObject *other = root.objects.value(key)) {
            objects.append(Object(other));
        }
    }
    return objects;
}

// Cascades are a list of work rather than a recursion: a tree may be deep.
void Private::deleteWithRules(ZQManagedObject *object)
{
    QList<Object> work{Object(object)};
    while (!work.isEmpty()) {
        const Object next = work.takeLast();
        if (next->m_context == q && !next->m_isDeleted) {
            deleteOne(next.get(), work);
        }
    }
}

void Private::deleteOne(ZQManagedObject *object, QList<Object> &cascade)
{
    object->willAccess();
    object->m_isDeleted = true;
    for (size_t i = 0; i < object->m_entity->relationships.size(); ++i) {
        releaseTargets(object, int(i), cascade);
    }
    const ZQObjectID id = object->objectID();
    newlyUpdated.remove(id);
    if (object->m_isInserted) {
        newlyInserted.remove(id);
        if (announcedTemporary.remove(id)) {
            newlyDeleted.add(id);
        }
        const Object kept(object);
        inserted.remove(object);
        orphan(object);
    } else {
        newlyDeleted.add(id);
        deleted.add(object);
        updated.remove(object);
    }
}

void Private::releaseTargets(ZQManagedObject *object, int index, QList<Object> &cascade)
{
    const ZQRelationshipDescription &forward = relationship(object, index);
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (forward.deleteRule == ZQDeleteRule::Deny) {
        return; // looked at when saving: the targets may be deleted by then
    }
    if (forward.toMany) {
        if (forward.deleteRule == ZQDeleteRule::Cascade) {
            cascade += related(object, index);
        } else if (!forward.inverse->toMany) {
            for (const Object &target : related(object, index)) {
                writeToOne(target.get(), inverse, 0);
            }
            return;
        }
        if (forward.inverse->toMany) {
            // The store removes the pairs with the row; only what is in memory has to follow.
            for (const qint64 key : QList<qint64>(loadedKeys(object, index))) {
                if (ZQManagedObject *target = held(forward.destination, key)) {
                    listRemove(target, inverse, object->m_key);
                }
            }
        }
        return;
    }
    const qint64 key = toOneKey(object, index);
    const bool needsTarget = forward.deleteRule == ZQDeleteRule::Cascade || !forward.inverse->toMany;
    const Object target = key == 0      ? Object()
                          : needsTarget ? objectForKey(forward.destination, key)
                                        : Object(held(forward.destination, key));
    if (!target || target->m_isDeleted) {
        return;
    }
    if (forward.inverse->toMany) {
        listRemove(target.get(), inverse, object->m_key);
    } else {
        writeToOne(target.get(), inverse, 0);
    }
    if (forward.deleteRule == ZQDeleteRule::Cascade) {
        cascade.append(target);
    }
}
