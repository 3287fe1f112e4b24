#pragma once

#include "Kit/Foundation/ZQRef.h"
#include "Kit/Persistence/ZQEntityClass.h"
#include "Kit/Persistence/ZQObjectID.h"

#include <QDateTime>
#include <QList>
#include <QVariant>

#include <memory>
#include <vector>

class ZQManagedObjectContext;
class ZQModelPlan;
struct ZQEntityPlan;

// Whether a value stands for null by itself.
inline bool zqIsNullValue(const QString &value)
{
    return value.isNull();
}
inline bool zqIsNullValue(const QByteArray &value)
{
    return value.isNull();
}
inline bool zqIsNullValue(const QDateTime &value)
{
    return !value.isValid();
}
template <class V>
bool zqIsNullValue(const V &)
{
    return false;
}

// One object of a context: a typed row, the identifiers of its related objects, and what changed since the last save.
//
// Belongs to its context's thread. Held by `ZQRef`; an unchanged object nobody holds is dropped by the context. An
// object is a fault until one of its values is read; the read fills it together with other faults of the same entity.
// An object that was deleted, or whose context is gone, keeps the values last read and has no context.
class ZQManagedObject
{
public:
    virtual ~ZQManagedObject();
    ZQManagedObject(const ZQManagedObject &) = delete;
    ZQManagedObject &operator=(const ZQManagedObject &) = delete;

    void retain() const { ++m_references; }
    void release() const;

    ZQManagedObjectContext *managedObjectContext() const { return m_context; }
    const ZQEntityDescription *entity() const { return m_entity; }
    ZQObjectID objectID() const { return {m_entity, m_key}; }

    bool isFault() const { return m_isFault; }
    bool isInserted() const { return m_isInserted; }
    bool isUpdated() const;
    bool isDeleted() const { return m_isDeleted; }
    bool hasChanges() const;
    bool hasChangeForKey(const QString &key) const;

    // Key-value access by attribute or relationship name. A to-one relationship is a ZQObjectID (invalid for none), a
    // to-many a QVariantList of ZQObjectID. An unknown key answers an invalid variant, or changes nothing, and is
    // logged.
    QVariant valueForKey(const QString &key) const;
    void setValueForKey(const QVariant &value, const QString &key);

    // Related objects by relationship name; the inverse is kept by the context. Order is that of the store's keys, new
    // ones last.
    ZQRef<ZQManagedObject> relatedObject(const QString &toOne) const;
    void setRelatedObject(const QString &toOne, ZQManagedObject *target);
    QList<ZQRef<ZQManagedObject>>
    relatedObjects(const QString &toMany) const;                     // fetches the rows not yet held in one query
    QList<ZQObjectID> relatedObjectIDs(const QString &toMany) const; // identifiers only
    void addRelatedObject(const QString &toMany, ZQManagedObject *target);
    void removeRelatedObject(const QString &toMany, ZQManagedObject *target);

    // Called once after the object was inserted into a context, with defaults set; for values that no default can give.
    virtual void awakeFromInsert() {}

    // "ENTITY (IDENTIFIER)" followed by its values; for logs.
    virtual QString description() const;

protected:
    ZQManagedObject();

    // The typed row of the subclass, laid out as its field table says.
    virtual void *row() = 0;
    const void *row() const { return const_cast<ZQManagedObject *>(this)->row(); }

    // For generated accessors. `field` is the position in the field table.
    void willAccess() const
    {
        if (m_isFault) {
            fireFault();
        }
    }
    template <class V>
    void setField(int field, V &slot, const V &value)
    {
        willAccess();
        const quint64 bit = quint64(1) << field;
        const bool isNull = zqIsNullValue(value);
        if (slot == value && isNull == ((m_nulls & bit) != 0)) {
            return;
        }
        slot = value;
        m_nulls = isNull ? m_nulls | bit : m_nulls & ~bit;
        didChangeField(field);
    }
    bool isNullField(int field) const
    {
        willAccess();
        return (m_nulls >> field) & 1U;
    }

private:
    // The context and its parts, which are of this folder only.
    friend class ZQManagedObjectContext;
    friend class ZQRowCache;
    friend class ZQChangeTracker;
    friend class ZQRelationships;
    friend class ZQPrefetcher;
    friend class ZQDeleteRules;
    friend class ZQRowWriter;
    friend class ZQSave;
    friend class ZQChangeMerger;

    void fireFault() const;
    void didChangeField(int field);

    // A to-many relationship: the list once read, and what changed against the store.
    struct ToMany
    {
        bool isLoaded = false;
        QList<qint64> keys;
        QList<qint64> added;
        QList<qint64> removed;
    };

    ZQManagedObjectContext *m_context = nullptr;
    const ZQEntityDescription *m_entity = nullptr;
    const ZQEntityPlan *m_plan = nullptr;
    qint64 m_key = 0;
    qint64 m_version = 0; // the row's version when it was read
    quint64 m_nulls = ~quint64(0);
    quint64 m_changed = 0; // bits of fields changed since the last save
    mutable quint32 m_references = 0;
    bool m_isFault = false;
    bool m_isInserted = false;
    bool m_isDeleted = false;
    mutable std::vector<ToMany> m_toMany; // by position among the entity's relationships; empty until one is used
    // Faults of one root form a list in the order they became one.
    ZQManagedObject *m_previousFault = nullptr;
    ZQManagedObject *m_nextFault = nullptr;
    std::shared_ptr<const ZQModelPlan> m_keptPlan; // keeps `m_entity` and `m_plan` alive once there is no context
};
