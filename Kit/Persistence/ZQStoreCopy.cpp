#include "Kit/Persistence/ZQStoreCopy.h"

#include "Kit/Persistence/ZQPersistentStoreCoordinator.h"
#include "Kit/Persistence/ZQSQLiteConnection.h"

bool zqCopyStore(const ZQPersistentStoreCoordinator &store, const QString &path, ZQError *error)
{
    const auto connection = store.newConnection(error);
    if (!connection) {
        return false;
    }
    // Without one that has read already, the copying begins anew with each save of another connection.
    const ZQSQLiteTransaction moment(*connection, ZQSQLiteTransaction::Kind::Read);
    if (!moment.isOpen() || !connection->value(QStringLiteral("SELECT count(*) FROM sqlite_schema")).isValid()) {
        zqSetError(error, connection->error());
        return false;
    }
    return connection->copyTo(path, error);
}
