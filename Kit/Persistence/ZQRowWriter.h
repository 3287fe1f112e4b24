#pragma once

#include "Kit/Persistence/ZQContextPrivate.h"

struct ZQSaveWork;

// The statements of a save, all inside its transaction. What they find out (permanent keys, new versions, conflicts)
// goes into the work; no object changes. On the context's thread.
class ZQRowWriter
{
public:
    ZQRowWriter(ZQManagedObjectContext::Private &context, ZQSaveWork &work) : m_context(context), m_work(work) {}

    bool write(); // false after an error of the database

private:
    using Object = ZQRef<ZQManagedObject>;

    bool allocateKeys();
    bool insertRows();
    bool updateRows();
    bool updateRow(ZQManagedObject *object);
    bool updateColumns(ZQManagedObject *object, std::optional<qint64> expectedVersion);
    bool deleteRows();
    bool noteNeighboursOfDeleted();
    bool writeJoins();
    bool clearDanglingReferences();
    bool clearToOnes(ZQManagedObject *object);
    bool clearJoins(ZQManagedObject *object);
    std::optional<bool> rowExists(const ZQEntityDescription *entity, qint64 key); // nothing after an error
    qint64 changedRows() const { return m_context.store.connection()->changedRows(); }

    ZQManagedObjectContext::Private &m_context;
    ZQSaveWork &m_work;
};
