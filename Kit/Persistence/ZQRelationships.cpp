#include "Kit/Persistence/ZQRelationships.h"

#include "Kit/Persistence/ZQSQLList.h"

namespace {
constexpr qsizetype shortList = 1000; // that may be searched from one end to the other
}

const ZQRelationshipDescription &ZQRelationships::relationship(const ZQManagedObject *object, int index)
{
    return object->m_entity->relationships[size_t(index)];
}

ZQManagedObject::ToMany &ZQRelationships::list(const ZQManagedObject *object, int index)
{
    if (object->m_toMany.empty()) {
        object->m_toMany.resize(object->m_entity->relationships.size());
    }
    return object->m_toMany[size_t(index)];
}

qint64 ZQRelationships::toOneKey(const ZQManagedObject *object, int index)
{
    const int field = object->m_plan->relationshipFields[size_t(index)];
    return field < 0 ? 0 : zqKeySlot(object->m_plan->root->fields[size_t(field)], const_cast<void *>(object->row()));
}

void ZQRelationships::forgetLoadedLists(ZQManagedObject *object)
{
    for (ToMany &many : object->m_toMany) {
        many.isLoaded = false;
        many.keys.clear();
    }
}

void ZQRelationships::writeToOne(ZQManagedObject *object, int index, qint64 key)
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

void ZQRelationships::setToOne(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    object->willAccess();
    const qint64 before = toOneKey(object, index);
    if (before == (target ? target->m_key : 0)) {
        return;
    }
    const ZQRelationshipDescription &forward = relationship(object, index);
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (before != 0) {
        if (const Object old = m_rows.objectForKey(forward.destination, before)) {
            if (forward.inverse->toMany) {
                removeFromList(old.get(), inverse, object->m_key);
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
        addToList(target, inverse, object->m_key);
        return;
    }
    target->willAccess();
    const qint64 partner = toOneKey(target, inverse);
    if (partner != 0 && partner != object->m_key) {
        if (const Object old = m_rows.objectForKey(forward.inverse->destination, partner)) {
            writeToOne(old.get(), index, 0);
        }
    }
    writeToOne(target, inverse, object->m_key);
}

void ZQRelationships::addToMany(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (!relationship(object, index).inverse->toMany) {
        setToOne(target, inverse, object);
    } else if (!isRelated(object, index, target)) {
        addToList(object, index, target->m_key);
        addToList(target, inverse, object->m_key);
    }
}

void ZQRelationships::removeFromMany(ZQManagedObject *object, int index, ZQManagedObject *target)
{
    const int inverse = object->m_plan->inverses[size_t(index)];
    if (!relationship(object, index).inverse->toMany) {
        target->willAccess();
        if (toOneKey(target, inverse) == object->m_key) {
            setToOne(target, inverse, nullptr);
        }
    } else if (isRelated(object, index, target)) {
        removeFromList(object, index, target->m_key);
        removeFromList(target, inverse, object->m_key);
    }
}

void ZQRelationships::addToList(ZQManagedObject *object, int index, qint64 key)
{
    ToMany &many = list(object, index);
    if (!many.removed.removeOne(key)) {
        many.added.append(key);
    }
    if (many.isLoaded) {
        many.keys.append(key);
    }
    m_changes.touch(object);
}

void ZQRelationships::removeFromList(ZQManagedObject *object, int index, qint64 key)
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
    m_changes.touch(object);
}

// Many-to-many only. Membership is symmetric, so the shorter record answers.
bool ZQRelationships::isRelated(ZQManagedObject *object, int index, ZQManagedObject *target)
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
    ZQSQLiteStatement select = m_store.prepare(
        QStringLiteral("SELECT 1 FROM %1 WHERE %2 = ? AND %3 = ?")
            .arg(zqQuoted(forward.joinTable), zqQuoted(forward.joinOwnColumn), zqQuoted(forward.joinOtherColumn)));
    select.bind(0, object->m_key);
    select.bind(1, target->m_key);
    return select.next();
}

std::optional<QList<qint64>> ZQRelationships::storedKeys(const ZQManagedObject *object, int index)
{
    const ZQRelationshipDescription &forward = relationship(object, index);
    const QString sql = QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ? ORDER BY %1");
    ZQSQLiteStatement select = m_store.prepare(
        forward.isManyToMany()
            ? sql.arg(zqQuoted(forward.joinOtherColumn), zqQuoted(forward.joinTable), zqQuoted(forward.joinOwnColumn))
            : sql.arg(QStringLiteral("\"id\""), zqQuoted(forward.destination->tableName),
                      zqQuoted(forward.inverse->columnName)));
    QList<qint64> keys;
    select.bind(0, object->m_key);
    while (select.next()) {
        keys.append(select.int64(0));
    }
    if (select.failed()) {
        m_store.noteFailedRead(QStringLiteral("the list \"%1\"").arg(forward.name));
        return std::nullopt;
    }
    return keys;
}

const QList<qint64> &ZQRelationships::loadedKeys(const ZQManagedObject *object, int index)
{
    m_store.assertThread();
    ToMany &many = list(object, index);
    if (!many.isLoaded) {
        const auto stored = object->m_key > 0 ? storedKeys(object, index) : QList<qint64>();
        takeStoredKeys(object, index, stored.value_or(QList<qint64>()));
        many.isLoaded = stored.has_value();
    }
    return many.keys;
}

// The list as it is now: what is stored, and what changed since.
void ZQRelationships::takeStoredKeys(const ZQManagedObject *object, int index, const QList<qint64> &stored)
{
    ToMany &many = list(object, index);
    many.keys.clear();
    const QSet<qint64> removed(many.removed.cbegin(), many.removed.cend());
    const ZQRowCache::Root &destination = m_rows.rootOf(relationship(object, index).destination);
    for (const qint64 key : stored) {
        const ZQManagedObject *other = m_changes.deleted().isEmpty() ? nullptr : destination.objects.value(key);
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

bool ZQRelationships::storedKeysOf(const ZQRelationshipDescription &forward, const QList<qint64> &owners,
                                   QHash<qint64, QList<qint64>> &stored)
{
    const bool isJoined = forward.isManyToMany();
    const QString own = zqQuoted(isJoined ? forward.joinOwnColumn : forward.inverse->columnName);
    const QString other = isJoined ? zqQuoted(forward.joinOtherColumn) : QStringLiteral("\"id\"");
    ZQSQLiteStatement select = m_store.prepare(
        QStringLiteral("SELECT %1, %2 FROM %3 WHERE %1 IN (SELECT value FROM json_each(?)) ORDER BY %1, %2")
            .arg(own, other, zqQuoted(isJoined ? forward.joinTable : forward.destination->tableName)));
    const QString keys = zqKeysAsJSON(owners);
    select.bind(0, keys);
    while (select.next()) {
        stored[select.int64(0)].append(select.int64(1));
    }
    if (select.failed()) {
        m_store.noteFailedRead(QStringLiteral("the lists \"%1\"").arg(forward.name));
        return false;
    }
    return true;
}

void ZQRelationships::loadLists(const QList<Object> &objects, int index)
{
    QHash<qint64, const ZQManagedObject *> waiting;
    for (const Object &object : objects) {
        if (!list(object.get(), index).isLoaded && object->m_key > 0) {
            waiting.insert(object->m_key, object.get());
        }
    }
    QHash<qint64, QList<qint64>> stored;
    // Where that fails, each is read when it is asked for.
    if (!waiting.isEmpty() && storedKeysOf(relationship(objects.first().get(), index), waiting.keys(), stored)) {
        for (auto entry = waiting.cbegin(); entry != waiting.cend(); ++entry) {
            takeStoredKeys(entry.value(), index, stored.value(entry.key()));
        }
    }
}

QList<ZQRef<ZQManagedObject>> ZQRelationships::related(const ZQManagedObject *object, int index)
{
    const QList<qint64> keys = loadedKeys(object, index);
    ZQRowCache::Root &root = m_rows.rootOf(relationship(object, index).destination);
    QList<qint64> missing;
    for (const qint64 key : keys) {
        const ZQManagedObject *other = root.objects.value(key);
        if (key > 0 && (!other || other->m_isFault)) {
            missing.append(key);
        }
    }
    QHash<qint64, Object> read; // keeps the new ones alive until they are in the answer
    m_rows.selectRows(root, missing, [&](ZQSQLiteStatement &row) {
        if (const Object other = m_rows.objectFromRow(row, root)) {
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
