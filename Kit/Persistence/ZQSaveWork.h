#pragma once

#include "Kit/Persistence/ZQManagedObject.h"

#include <QHash>
#include <QList>
#include <QSet>

// What one save is about to do. Nothing in here touches an object before the transaction is committed.
struct ZQSaveWork
{
    using Object = ZQRef<ZQManagedObject>;

    QList<Object> inserted;
    QList<Object> updated; // with changed rows or lists
    QList<Object> deleted;

    QHash<qint64, qint64> keys;                // temporary to permanent; temporary keys are unique among all entities
    QHash<ZQManagedObject *, qint64> versions; // of the rows written
    QSet<ZQManagedObject *> mergedWithStore;   // rows that others had changed: to be read again
    QSet<ZQManagedObject *> goneFromStore;     // updated here, deleted by others
    QList<ZQObjectID> neighbours;              // objects whose lists a deletion changes
    QList<ZQObjectID> conflicts;

    bool isEmpty() const { return inserted.isEmpty() && updated.isEmpty() && deleted.isEmpty(); }
    qint64 permanent(qint64 key) const { return key < 0 ? keys.value(key, 0) : key; }
};
